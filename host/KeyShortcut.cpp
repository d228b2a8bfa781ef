// Conversion of key codes, and the search among actions and menus.
#include "KeyShortcut.h"

#include <QAction>
#include <QKeySequence>

namespace {

struct CodeOfKey {
    std::int32_t code;
    Qt::Key key;
};

// Codes that differ from the number of the key in Qt. For digits and letters both are the same.
constexpr CodeOfKey kOtherKeys[] = {
    {8, Qt::Key_Backspace},  {9, Qt::Key_Tab},       {13, Qt::Key_Return},  {27, Qt::Key_Escape}, {32, Qt::Key_Space},
    {33, Qt::Key_PageUp},    {34, Qt::Key_PageDown}, {35, Qt::Key_End},     {36, Qt::Key_Home},   {37, Qt::Key_Left},
    {38, Qt::Key_Up},        {39, Qt::Key_Right},    {40, Qt::Key_Down},    {45, Qt::Key_Insert}, {46, Qt::Key_Delete},
    {106, Qt::Key_Asterisk}, {107, Qt::Key_Plus},    {109, Qt::Key_Minus},  {111, Qt::Key_Slash}, {187, Qt::Key_Plus},
    {188, Qt::Key_Comma},    {189, Qt::Key_Minus},   {190, Qt::Key_Period},
};
// Ranges of codes whose keys are consecutive in Qt too.
constexpr std::int32_t kF1 = 112, kF24 = 135;
constexpr std::int32_t kPad0 = 96, kPad9 = 105;

/// The modifiers that distinguish shortcuts. Without the one of the number pad: its digits trigger the same shortcuts.
constexpr Qt::KeyboardModifiers kShortcutModifiers =
    Qt::ShiftModifier | Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier;

bool IsForWholeWindow(const QAction& action) {
    return action.shortcutContext() == Qt::WindowShortcut || action.shortcutContext() == Qt::ApplicationShortcut;
}

}  // namespace

void HeldModifiers::Press(std::int32_t nChar) {
    constexpr std::int32_t kShift = 16, kCtrl = 17, kAlt = 18;
    if (nChar == kShift) m_held |= Qt::ShiftModifier;
    if (nChar == kCtrl) m_held |= Qt::ControlModifier;
    if (nChar == kAlt) m_held |= Qt::AltModifier;
}

Qt::Key KeyOfCode(std::int32_t nChar) {
    if ((nChar >= '0' && nChar <= '9') || (nChar >= 'A' && nChar <= 'Z')) return static_cast<Qt::Key>(nChar);
    if (nChar >= kPad0 && nChar <= kPad9) return static_cast<Qt::Key>(Qt::Key_0 + nChar - kPad0);
    if (nChar >= kF1 && nChar <= kF24) return static_cast<Qt::Key>(Qt::Key_F1 + nChar - kF1);
    for (const CodeOfKey& other : kOtherKeys) {
        if (other.code == nChar) return other.key;
    }
    return Qt::Key_unknown;
}

QAction* ActionOfKey(const QList<QAction*>& actions, std::int32_t nChar, Qt::KeyboardModifiers modifiers) {
    const Qt::Key key = KeyOfCode(nChar);
    if (key == Qt::Key_unknown) return nullptr;
    // As a sequence of one key: the form in which actions keep their shortcuts.
    const QKeySequence pressed(QKeyCombination(modifiers & kShortcutModifiers, key));
    for (QAction* const action : actions) {
        if (action->isEnabled() && IsForWholeWindow(*action) && action->shortcuts().contains(pressed)) return action;
    }
    return nullptr;
}

QAction* MenuOfKey(const QList<QAction*>& menus, std::int32_t nChar, Qt::KeyboardModifiers modifiers) {
    const Qt::Key key = KeyOfCode(nChar);
    if (key == Qt::Key_unknown || (modifiers & kShortcutModifiers) != Qt::AltModifier) return nullptr;
    for (QAction* const menu : menus) {
        if (menu->isEnabled() && QKeySequence::mnemonic(menu->text()) == QKeySequence(QKeyCombination(Qt::ALT, key)))
            return menu;
    }
    return nullptr;
}
