// Mouse and keyboard input in a form that is independent of the window system. A window translates its events into
// these records; SendMouse() and SendKey() accept the same records from a host.
#pragma once
#include <cstdint>

namespace KV_ScenePane {

// Bits of MouseInput::flags: the buttons and modifiers that are held. A press includes its own button, a release does
// not.
inline constexpr std::uint32_t kMouseLeft = 0x0001;
inline constexpr std::uint32_t kMouseRight = 0x0002;
inline constexpr std::uint32_t kMouseShift = 0x0004;
inline constexpr std::uint32_t kMouseCtrl = 0x0008;
inline constexpr std::uint32_t kMouseMiddle = 0x0010;

/// MouseInput::delta of one notch of the wheel.
inline constexpr std::int32_t kWheelNotch = 120;

/// One mouse event.
struct MouseInput {
    enum class Kind {
        Move,
        LeftDown,
        LeftUp,
        MiddleDown,
        MiddleUp,
        RightDown,
        RightUp,
        DoubleClick,  ///< of the left button: replaces the second press
        Wheel
    };
    Kind kind = Kind::Move;
    /// Buttons and modifiers that are held, kMouseLeft and so on.
    std::uint32_t flags = 0;
    std::int32_t x = 0, y = 0;  ///< pixels of the drawing area, y downward; outside it while a button is held
    std::int32_t delta = 0;     ///< of the wheel: 120 per notch, positive away from the user
};

/// Codes of KeyInput::nChar. Letters and digits have the codes of their upper-case characters, F1 is 112.
inline constexpr std::int32_t kKeyCtrl = 17;
inline constexpr std::int32_t kKeyEscape = 27;
inline constexpr std::int32_t kKeySpace = 32;
inline constexpr std::int32_t kKeyUp = 38;
inline constexpr std::int32_t kKeyDown = 40;
inline constexpr std::int32_t kKeyDelete = 46;

/// One key event.
struct KeyInput {
    bool isDown = true;        ///< false for a release
    std::int32_t nChar = 0;    ///< key code
    std::int32_t nRepCnt = 1;  ///< number of presses; a window reports each repeat of a held key by itself, with 1
    /// Bits 0 to 7 scan code, 8 extended key, 13 Alt held, 14 the key was down before, 15 release.
    std::int32_t nFlags = 0;
};

}  // namespace KV_ScenePane
