// The keys that the viewer reports, as the shortcuts of a window. A click gives the viewer's own window the keyboard;
// its keys then never come by the toolkit.
#pragma once
#include <QList>
#include <Qt>
#include <cstdint>

class QAction;

/// The modifiers at the time of a key press. The viewer reports presses alone, some time after they happened, and the
/// keyboard tells what is held now: who looks then misses a modifier that was let go in between. So a modifier counts
/// as held until the input that waited together has been handled.
class HeldModifiers {
public:
    /// A key was reported; modifiers are remembered, others are nothing to this.
    void Press(std::int32_t nChar);
    /// Those of the key that was just reported. @param now  what the keyboard says
    [[nodiscard]] Qt::KeyboardModifiers With(Qt::KeyboardModifiers now) const { return m_held | now; }
    [[nodiscard]] bool AreRemembered() const { return m_held != Qt::NoModifier; }
    /// All that waited has been handled. @param now  what the keyboard says
    void Settle(Qt::KeyboardModifiers now) { m_held = now; }

private:
    Qt::KeyboardModifiers m_held;
};

/// The key that a code of CustomKeyDown stands for; Qt::Key_unknown for modifiers and for codes without one.
[[nodiscard]] Qt::Key KeyOfCode(std::int32_t nChar);

/// The first enabled action of the whole window that has the key as a shortcut; null when there is none. Actions of a
/// single widget are left out: that widget does not have the keyboard.
[[nodiscard]] QAction* ActionOfKey(const QList<QAction*>& actions, std::int32_t nChar, Qt::KeyboardModifiers modifiers);

/// The first enabled action that opens a menu by Alt and the letter marked in its text; null when there is none.
[[nodiscard]] QAction* MenuOfKey(const QList<QAction*>& menus, std::int32_t nChar, Qt::KeyboardModifiers modifiers);
