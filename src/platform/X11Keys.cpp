// Keysyms are looked up before positions: layouts move letters, and servers number the keys beyond the letter block
// differently.
#include "platform/X11Keys.h"

#include <X11/XKBlib.h>
#include <X11/Xlib.h>
#include <X11/keysym.h>

#include <algorithm>
#include <iterator>
#include <optional>

namespace {

/// Keys whose meaning does not depend on the layout, by keysym.
struct NamedKey {
    unsigned long symbol;
    X11Key key;
};

constexpr NamedKey kNamedKeys[] = {
    {XK_Cancel, {3, 0x46, true}},        {XK_BackSpace, {8, 0x0E, false}},
    {XK_Tab, {9, 0x0F, false}},          {XK_Clear, {12, 0x4C, false}},
    {XK_Return, {13, 0x1C, false}},      {XK_Shift_L, {16, 0x2A, false}},
    {XK_Shift_R, {16, 0x36, false}},     {XK_Control_L, {17, 0x1D, false}},
    {XK_Control_R, {17, 0x1D, true}},    {XK_Alt_L, {kKeyAlt, 0x38, false}},
    {XK_Alt_R, {kKeyAlt, 0x38, true}},   {XK_Meta_L, {kKeyAlt, 0x38, false}},
    {XK_Meta_R, {kKeyAlt, 0x38, true}},  {XK_ISO_Level3_Shift, {kKeyAlt, 0x38, true}},
    {XK_Pause, {19, 0x45, false}},       {XK_Caps_Lock, {20, 0x3A, false}},
    {XK_Escape, {27, 0x01, false}},      {XK_space, {32, 0x39, false}},
    {XK_Prior, {33, 0x49, true}},        {XK_Next, {34, 0x51, true}},
    {XK_End, {35, 0x4F, true}},          {XK_Home, {36, 0x47, true}},
    {XK_Left, {37, 0x4B, true}},         {XK_Up, {38, 0x48, true}},
    {XK_Right, {39, 0x4D, true}},        {XK_Down, {40, 0x50, true}},
    {XK_Select, {41, 0, false}},         {XK_Print, {44, 0x37, true}},
    {XK_Insert, {45, 0x52, true}},       {XK_Delete, {46, 0x53, true}},
    {XK_Help, {47, 0x63, false}},        {XK_Super_L, {91, 0x5B, true}},
    {XK_Super_R, {92, 0x5C, true}},      {XK_Menu, {93, 0x5D, true}},
    {XK_Num_Lock, {144, 0x45, true}},    {XK_Scroll_Lock, {145, 0x46, false}},
    {XK_KP_Enter, {13, 0x1C, true}},     {XK_KP_0, {96, 0x52, false}},
    {XK_KP_1, {97, 0x4F, false}},        {XK_KP_2, {98, 0x50, false}},
    {XK_KP_3, {99, 0x51, false}},        {XK_KP_4, {100, 0x4B, false}},
    {XK_KP_5, {101, 0x4C, false}},       {XK_KP_6, {102, 0x4D, false}},
    {XK_KP_7, {103, 0x47, false}},       {XK_KP_8, {104, 0x48, false}},
    {XK_KP_9, {105, 0x49, false}},       {XK_KP_Multiply, {106, 0x37, false}},
    {XK_KP_Add, {107, 0x4E, false}},     {XK_KP_Subtract, {109, 0x4A, false}},
    {XK_KP_Decimal, {110, 0x53, false}}, {XK_KP_Separator, {110, 0x53, false}},  // the decimal comma of some layouts
    {XK_KP_Divide, {111, 0x35, true}},   {XK_KP_Equal, {146, 0x59, false}},
    {XK_KP_Insert, {45, 0x52, false}},   {XK_KP_End, {35, 0x4F, false}},
    {XK_KP_Down, {40, 0x50, false}},     {XK_KP_Next, {34, 0x51, false}},
    {XK_KP_Left, {37, 0x4B, false}},     {XK_KP_Begin, {12, 0x4C, false}},
    {XK_KP_Right, {39, 0x4D, false}},    {XK_KP_Home, {36, 0x47, false}},
    {XK_KP_Up, {38, 0x48, false}},       {XK_KP_Prior, {33, 0x49, false}},
    {XK_KP_Delete, {46, 0x53, false}},
};

/// Function keys by their number, all others by the table.
std::optional<X11Key> NamedKeyOf(unsigned long symbol) {
    if (symbol >= XK_F1 && symbol <= XK_F24) {
        const auto n = static_cast<std::int32_t>(symbol - XK_F1);
        // F1 to F10 are one block of scan codes; the others were added later, in three more.
        const std::int32_t scanCode = n < 10 ? 0x3B + n : n < 12 ? 0x57 + n - 10 : n < 23 ? 0x64 + n - 12 : 0x76;
        return X11Key{112 + n, scanCode, false};
    }
    const auto* const found = std::find_if(std::begin(kNamedKeys), std::end(kNamedKeys),
                                           [&](const NamedKey& k) { return k.symbol == symbol; });
    return found == std::end(kNamedKeys) ? std::nullopt : std::optional(found->key);
}

bool IsKeypadSymbol(unsigned long symbol) { return symbol >= XK_KP_Space && symbol <= XK_KP_Equal; }

bool IsDigit(unsigned long symbol) { return symbol >= XK_0 && symbol <= XK_9; }

/// X11Key::code of the character that a key types without Shift; 0 for other characters.
std::int32_t CodeOfCharacter(unsigned long symbol) {
    if (IsDigit(symbol) || (symbol >= XK_A && symbol <= XK_Z)) return static_cast<std::int32_t>(symbol);
    if (symbol >= XK_a && symbol <= XK_z) return static_cast<std::int32_t>(symbol - XK_a + 'A');
    switch (symbol) {
        case XK_semicolon:
            return 186;
        case XK_equal:
        case XK_plus:
            return 187;
        case XK_comma:
            return 188;
        case XK_minus:
            return 189;
        case XK_period:
            return 190;
        case XK_slash:
            return 191;
        case XK_grave:
            return 192;
        case XK_bracketleft:
            return 219;
        case XK_backslash:
            return 220;
        case XK_bracketright:
            return 221;
        case XK_apostrophe:
            return 222;
        case XK_less:
            return 226;
        default:
            return 0;
    }
}

/// The keysym that the key with this scan code types on a US keyboard; 0 for keys that type nothing.
unsigned long SymbolAtScanCode(std::int32_t scanCode) {
    // In the order of the scan codes from 2 on; a space marks a named key.
    constexpr char kCharacters[] = "1234567890-=  qwertyuiop[]  asdfghjkl;'` \\zxcvbnm,./";
    constexpr std::int32_t kFirst = 2, kBetweenShiftAndZ = 0x56;
    if (scanCode == kBetweenShiftAndZ) return XK_less;
    const std::int32_t place = scanCode - kFirst;
    if (place < 0 || place >= static_cast<std::int32_t>(std::size(kCharacters)) - 1) return 0;
    return kCharacters[place] == ' '
               ? 0
               : static_cast<unsigned char>(kCharacters[place]);  // Latin-1 characters are their own keysyms
}

/// X keycodes of the letter block are scan codes plus 8, on every server in use. 0 beyond the block.
std::int32_t ScanCodeOf(unsigned keycode) {
    constexpr unsigned kFirst = 9, kLast = 8 + 0x58;
    return keycode >= kFirst && keycode <= kLast ? static_cast<std::int32_t>(keycode - 8) : 0;
}

/// The key by one layout of the keyboard; nothing when that has neither a named key nor an ASCII character there.
std::optional<X11Key> KeyInGroup(const X11Keyboard& keyboard, unsigned keycode, int group, unsigned state) {
    const unsigned long plain = keyboard.symbol(keycode, group, 0);
    const unsigned long shifted = keyboard.symbol(keycode, group, 1);
    // Only on the keypad does the level decide which key it is. Shift reverses Num Lock there.
    const bool hasNumLock = (state & keyboard.numLockMask) != 0, hasShift = (state & ShiftMask) != 0;
    const bool isOnKeypad = IsKeypadSymbol(plain) || IsKeypadSymbol(shifted);
    const unsigned long symbol = isOnKeypad && hasNumLock != hasShift && shifted != NoSymbol ? shifted : plain;
    if (const auto named = NamedKeyOf(symbol)) return named;
    std::int32_t code = CodeOfCharacter(plain);
    // The digits of a French keyboard are typed with Shift.
    const bool isLetter = code >= 'A' && code <= 'Z';
    if (!isLetter && IsDigit(shifted)) code = static_cast<std::int32_t>(shifted);
    if (code == 0) return std::nullopt;
    return X11Key{code, ScanCodeOf(keycode), false};
}

}  // namespace

X11Keyboard X11Keyboard::Of(_XDisplay* display) {
    X11Keyboard keyboard;
    keyboard.symbol = [display](unsigned keycode, int group, int level) -> unsigned long {
        return XkbKeycodeToKeysym(display, static_cast<KeyCode>(keycode), group, level);
    };
    keyboard.numLockMask = XkbKeysymToModifiers(display, XK_Num_Lock);
    keyboard.altMask = XkbKeysymToModifiers(display, XK_Alt_L);
    if (keyboard.altMask == 0) keyboard.altMask = Mod1Mask;  // by convention, where no key is mapped to Alt
    return keyboard;
}

X11Key FindKey(const X11Keyboard& keyboard, unsigned keycode, unsigned state) {
    constexpr int kGroups = 4;
    // The active layout, the others in their order, the position.
    if (const auto key = KeyInGroup(keyboard, keycode, XkbGroupForCoreState(state), state)) return *key;
    for (int group = 0; group < kGroups; ++group)
        if (const auto key = KeyInGroup(keyboard, keycode, group, state)) return *key;
    const std::int32_t scanCode = ScanCodeOf(keycode);
    const std::int32_t code = CodeOfCharacter(SymbolAtScanCode(scanCode));
    return {code != 0 ? code : kKeyUnknown, scanCode, false};
}
