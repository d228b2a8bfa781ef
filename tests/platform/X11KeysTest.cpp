// Keyboard mappings written by hand: keysyms by their X names, scan codes of a PC keyboard.
#include "platform/X11Keys.h"

#include <gtest/gtest.h>

#include <array>
#include <map>
#include <string>

// After the others, whose names its macros would replace.
#include <X11/Xlib.h>
#include <X11/keysym.h>

namespace {

using Symbols = std::array<unsigned long, 4>;  // plain and shifted of the first group, then of the second
using Layout = std::map<unsigned, Symbols>;    // by keycode

X11Keyboard KeyboardOf(Layout layout) {
    const auto symbol = [layout = std::move(layout)](unsigned keycode, int group, int level) -> unsigned long {
        const auto found = layout.find(keycode);
        if (found == layout.end() || group > 1 || level > 1) return NoSymbol;
        return found->second[static_cast<std::size_t>(group * 2 + level)];
    };
    return {symbol, Mod2Mask, Mod1Mask};
}

constexpr unsigned kSecondGroup = 1u << 13;

struct KeyRow {
    const char* name;
    unsigned keycode;
    Symbols symbols;
    unsigned state;
    std::int32_t code, scanCode;
    bool isExtended = false;
};
void PrintTo(const KeyRow& row, std::ostream* out) { *out << row.name; }

const KeyRow kKeyRows[] = {
    {"Escape", 9, {XK_Escape}, 0, 27, 0x01},
    {"BackSpace", 22, {XK_BackSpace}, 0, 8, 0x0E},
    {"Tab", 23, {XK_Tab, XK_ISO_Left_Tab}, ShiftMask, 9, 0x0F},
    {"Return", 36, {XK_Return}, 0, 13, 0x1C},
    {"Space", 65, {XK_space}, 0, 32, 0x39},
    {"Delete", 119, {XK_Delete}, 0, 46, 0x53, true},
    {"Insert", 118, {XK_Insert}, 0, 45, 0x52, true},
    {"Home", 110, {XK_Home}, 0, 36, 0x47, true},
    {"End", 115, {XK_End}, 0, 35, 0x4F, true},
    {"PageUp", 112, {XK_Prior}, 0, 33, 0x49, true},
    {"PageDown", 117, {XK_Next}, 0, 34, 0x51, true},
    {"Left", 113, {XK_Left}, 0, 37, 0x4B, true},
    {"Up", 111, {XK_Up}, 0, 38, 0x48, true},
    {"Right", 114, {XK_Right}, 0, 39, 0x4D, true},
    {"Down", 116, {XK_Down}, 0, 40, 0x50, true},
    {"UpWithTheKeycodeOfOldServers", 98, {XK_Up}, 0, 38, 0x48, true},
    {"LeftShift", 50, {XK_Shift_L}, 0, 16, 0x2A},
    {"RightShift", 62, {XK_Shift_R}, 0, 16, 0x36},
    {"LeftCtrl", 37, {XK_Control_L}, 0, 17, 0x1D},
    {"RightCtrl", 105, {XK_Control_R}, 0, 17, 0x1D, true},
    {"LeftAlt", 64, {XK_Alt_L, XK_Meta_L}, 0, 18, 0x38},
    {"RightAlt", 108, {XK_Alt_R}, 0, 18, 0x38, true},
    {"AltGr", 108, {XK_ISO_Level3_Shift}, 0, 18, 0x38, true},
    {"F1", 67, {XK_F1}, 0, 112, 0x3B},
    {"F10", 76, {XK_F10}, 0, 121, 0x44},
    {"F11", 95, {XK_F11}, 0, 122, 0x57},
    {"F12", 96, {XK_F12}, 0, 123, 0x58},
    {"F13", 191, {XK_F13}, 0, 124, 0x64},
    {"F23", 201, {XK_F23}, 0, 134, 0x6E},
    {"F24", 202, {XK_F24}, 0, 135, 0x76},
    {"LetterA", 38, {XK_a, XK_A}, 0, 'A', 0x1E},
    {"LetterAWithShift", 38, {XK_a, XK_A}, ShiftMask, 'A', 0x1E},
    {"LetterZ", 52, {XK_z, XK_Z}, LockMask, 'Z', 0x2C},
    {"GermanZWhereTheUsHasY", 29, {XK_z, XK_Z}, 0, 'Z', 0x15},
    {"Digit1", 10, {XK_1, XK_exclam}, 0, '1', 0x02},
    {"Digit0WithShift", 19, {XK_0, XK_parenright}, ShiftMask, '0', 0x0B},
    {"FrenchDigit1", 10, {XK_ampersand, XK_1}, 0, '1', 0x02},
    {"FrenchDigit6WhoseBaseIsAMinus", 15, {XK_minus, XK_6}, 0, '6', 0x07},
    {"Semicolon", 47, {XK_semicolon, XK_colon}, 0, 186, 0x27},
    {"Equal", 21, {XK_equal, XK_plus}, ShiftMask, 187, 0x0D},
    {"Comma", 59, {XK_comma, XK_less}, 0, 188, 0x33},
    {"Minus", 20, {XK_minus, XK_underscore}, 0, 189, 0x0C},
    {"Period", 60, {XK_period, XK_greater}, 0, 190, 0x34},
    {"Slash", 61, {XK_slash, XK_question}, 0, 191, 0x35},
    {"Grave", 49, {XK_grave, XK_asciitilde}, 0, 192, 0x29},
    {"BracketLeft", 34, {XK_bracketleft, XK_braceleft}, 0, 219, 0x1A},
    {"Backslash", 51, {XK_backslash, XK_bar}, 0, 220, 0x2B},
    {"BracketRight", 35, {XK_bracketright, XK_braceright}, 0, 221, 0x1B},
    {"Apostrophe", 48, {XK_apostrophe, XK_quotedbl}, 0, 222, 0x28},
    {"BetweenShiftAndZ", 94, {XK_less, XK_greater}, 0, 226, 0x56},
    {"Keypad0WithNumLock", 90, {XK_KP_Insert, XK_KP_0}, Mod2Mask, 96, 0x52},
    {"Keypad9WithNumLock", 81, {XK_KP_Prior, XK_KP_9}, Mod2Mask, 105, 0x49},
    {"Keypad9WithShift", 81, {XK_KP_Prior, XK_KP_9}, ShiftMask, 105, 0x49},
    {"Keypad9WithNumLockAndShift", 81, {XK_KP_Prior, XK_KP_9}, Mod2Mask | ShiftMask, 33, 0x49},
    {"KeypadUpWithoutNumLock", 80, {XK_KP_Up, XK_KP_8}, 0, 38, 0x48},
    {"KeypadDeleteWithoutNumLock", 91, {XK_KP_Delete, XK_KP_Decimal}, 0, 46, 0x53},
    {"KeypadPoint", 91, {XK_KP_Delete, XK_KP_Decimal}, Mod2Mask, 110, 0x53},
    {"KeypadPlus", 86, {XK_KP_Add, XK_KP_Add}, Mod2Mask, 107, 0x4E},
    {"KeypadMinus", 82, {XK_KP_Subtract, XK_KP_Subtract}, 0, 109, 0x4A},
    {"KeypadTimes", 63, {XK_KP_Multiply, XK_KP_Multiply}, 0, 106, 0x37},
    {"KeypadDivide", 106, {XK_KP_Divide, XK_KP_Divide}, 0, 111, 0x35, true},
    {"KeypadEnter", 104, {XK_KP_Enter}, Mod2Mask, 13, 0x1C, true},
    {"NumLockDoesNotAffectLetters", 38, {XK_a, XK_A}, Mod2Mask, 'A', 0x1E},
    {"CyrillicActiveAndLatinFirst", 38, {XK_a, XK_A, XK_Cyrillic_ef, XK_Cyrillic_EF}, kSecondGroup, 'A', 0x1E},
    {"CyrillicActiveAndLatinSecond", 38, {XK_Cyrillic_ef, XK_Cyrillic_EF, XK_a, XK_A}, 0, 'A', 0x1E},
    {"CyrillicAlone", 38, {XK_Cyrillic_ef, XK_Cyrillic_EF}, 0, 'A', 0x1E},
    {"CyrillicAloneAtTheCommaKey", 59, {XK_Cyrillic_be, XK_Cyrillic_BE}, 0, 188, 0x33},
    {"GermanActiveAndUsFirst", 29, {XK_y, XK_Y, XK_z, XK_Z}, kSecondGroup, 'Z', 0x15},
    {"UsActiveAndGermanSecond", 29, {XK_y, XK_Y, XK_z, XK_Z}, 0, 'Y', 0x15},
    {"EscapeInAGroupWithoutSymbols", 9, {XK_Escape}, kSecondGroup, 27, 0x01},
    {"GermanOUmlautByItsPosition", 47, {XK_odiaeresis, XK_Odiaeresis}, 0, 186, 0x27},
    {"VolumeKeyIsUnknown", 123, {0x1008FF13}, 0, 255, 0},
    {"NoSymbolAtALetterPosition", 24, {}, 0, 'Q', 0x10},
    {"NoSymbolElsewhere", 36, {}, 0, 255, 0x1C},
    {"LowestKeycode", 8, {}, 0, 255, 0},
    {"HighestKeycode", 255, {}, 0, 255, 0},
};

class X11Keys : public testing::TestWithParam<KeyRow> {};

TEST_P(X11Keys, KeyHasItsCodeAndScanCode) {
    const KeyRow& row = GetParam();
    const X11Key key = FindKey(KeyboardOf({{row.keycode, row.symbols}}), row.keycode, row.state);
    EXPECT_EQ(key.code, row.code);
    EXPECT_EQ(key.scanCode, row.scanCode);
    EXPECT_EQ(key.isExtended, row.isExtended);
}
INSTANTIATE_TEST_SUITE_P(All, X11Keys, testing::ValuesIn(kKeyRows), [](const auto& r) { return r.param.name; });

TEST(X11KeysByPosition, LettersAndDigitsAreThoseOfAUsKeyboard) {
    struct Row {
        unsigned firstKeycode;
        std::string letters;
    };
    const Row rows[] = {{10, "1234567890"}, {24, "QWERTYUIOP"}, {38, "ASDFGHJKL"}, {52, "ZXCVBNM"}};
    for (const Row& row : rows) {
        for (unsigned i = 0; i < row.letters.size(); ++i)
            EXPECT_EQ(FindKey(KeyboardOf({}), row.firstKeycode + i, 0).code, row.letters[i]) << row.letters[i];
    }
}

}  // namespace
