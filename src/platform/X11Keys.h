// Which key of a PC keyboard an X key is: its code and scan code, whatever the layout.
#pragma once
#include <cstdint>
#include <functional>

struct _XDisplay;

/// What the keyboard tells of its keys.
struct X11Keyboard {
    /// The symbol of a key in a group (0 to 3: the layouts between which the user switches) on a level (0 plain, 1 with
    /// Shift); 0 where it has none there.
    std::function<unsigned long(unsigned keycode, int group, int level)> symbol;
    unsigned numLockMask = 0, altMask = 0;  ///< their bits in the state word of events

    /// Of the display, which it asks for symbols as long as it is used. The masks hold until the mapping changes.
    static X11Keyboard Of(_XDisplay* display);
};

struct X11Key {
    /// Letters and digits: their upper-case ASCII characters, with and without Shift. Punctuation: 186 to 192 for
    /// ; = , - . / ` and 219 to 222 for [ \ ] ', 226 for the key between Shift and Z. Keys with a name: as the table
    /// in X11Keys.cpp says. Keypad: digits 96 to 105, while Num Lock is off the keys that it stands for then.
    std::int32_t code = 0;
    std::int32_t scanCode = 0;  ///< set 1; 0 when the key has none that is known
    bool isExtended = false;    ///< set 1 sends a prefix
};

inline constexpr std::int32_t kKeyAlt = 18;
/// A key that none of the codes means, such as those for the volume.
inline constexpr std::int32_t kKeyUnknown = 255;

/// The active layout decides where it has letters or digits of ASCII on the key (the Z of a German keyboard is Z). One
/// that has not (Cyrillic, Greek) leaves it to the other layouts of the keyboard, and they to the key's place.
/// @param state  of the event: layout, Shift and Num Lock
[[nodiscard]] X11Key FindKey(const X11Keyboard& keyboard, unsigned keycode, unsigned state);
