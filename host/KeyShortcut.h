// The shortcuts of a window for keys that the viewer reports. After a click the viewer's own window has the keyboard,
// and its keys never pass through Qt.
#pragma once
#include <QList>
#include <Qt>
#include <cstdint>

class QAction;

/// The modifiers at the time of a key press. The viewer reports only presses, and some time after they happened; a
/// query of the keyboard returns what is held now. A modifier that was released in between would be missed, so it
/// counts as held until all pending input has been handled.
class HeldModifiers {
public:
    /// Must be called for each reported key; only modifiers have an effect. @param nChar  a key code of the viewer's
    /// events
    void Press(std::int32_t nChar);
    /// The modifiers of the key that was just reported. @param now  what a query of the keyboard returns
    [[nodiscard]] Qt::KeyboardModifiers With(Qt::KeyboardModifiers now) const { return m_held | now; }
    [[nodiscard]] bool AreRemembered() const { return m_held != Qt::NoModifier; }
    /// Must be called when all pending input has been handled. @param now  what a query of the keyboard returns
    void Settle(Qt::KeyboardModifiers now) { m_held = now; }

private:
    Qt::KeyboardModifiers m_held;
};

/// The key of a code of CustomKeyDown; Qt::Key_unknown for modifiers and unknown codes.
/// Digits of the number pad are the keys of the digits.
[[nodiscard]] Qt::Key KeyOfCode(std::int32_t nChar);

/// The first enabled action with exactly this shortcut; null when there is none. Actions whose shortcut is limited to
/// one widget are ignored, because that widget does not have the keyboard.
[[nodiscard]] QAction* ActionOfKey(const QList<QAction*>& actions, std::int32_t nChar, Qt::KeyboardModifiers modifiers);

/// The first enabled menu of a menu bar that Alt and the letter marked in its text open; null when there is none.
[[nodiscard]] QAction* MenuOfKey(const QList<QAction*>& menus, std::int32_t nChar, Qt::KeyboardModifiers modifiers);
