// Which key of a PC keyboard an X key is: its key code and scan code, independent of the keyboard layout.
#pragma once
#include <cstdint>
#include <functional>

struct _XDisplay;

/// The keyboard mapping, as far as FindKey() needs it.
struct X11Keyboard {
    /// The keysym of a key in a group (0 to 3: the layouts between which the user switches) and level (0 plain, 1 with
    /// Shift); 0 for none.
    std::function<unsigned long(unsigned keycode, int group, int level)> symbol;
    unsigned numLockMask = 0, altMask = 0;  ///< their bits in the state mask of events

    /// Reads keysyms from the display whenever it is used, so the display must outlive it. The masks are valid until
    /// the mapping changes (MappingNotify).
    static X11Keyboard Of(_XDisplay* display);
};

struct X11Key {
    /// Letters and digits: their upper-case ASCII characters, with and without Shift. Punctuation: 186 to 192 for
    /// ; = , - . / ` and 219 to 222 for [ \ ] ', 226 for the key between Shift and Z. Named keys: see the table in
    /// X11Keys.cpp. Keypad: digits 96 to 105; without Num Lock the cursor and editing keys printed on it.
    std::int32_t code = 0;
    std::int32_t scanCode = 0;  ///< of scan code set 1; 0 when it is not known
    bool isExtended = false;    ///< set 1 has the prefix E0 for it
};

inline constexpr std::int32_t kKeyAlt = 18;
/// A key without a code of its own, such as those for the volume.
inline constexpr std::int32_t kKeyUnknown = 255;

/// The active layout decides when it has an ASCII letter, a digit or a named key there (the Z of a German keyboard is
/// Z). Without one (Cyrillic, Greek) the other layouts of the keyboard are tried, then the key's position on a US
/// keyboard.
/// @param state  state mask of the event: group, Shift and Num Lock
[[nodiscard]] X11Key FindKey(const X11Keyboard& keyboard, unsigned keycode, unsigned state);
