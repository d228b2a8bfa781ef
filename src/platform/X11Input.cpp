// The state mask of an X event is from before the event; the viewer's flags are from after it: they contain a button
// that was just pressed and not one that was just released.
#include "platform/X11Input.h"

#include <X11/Xlib.h>

#include <algorithm>
#include <cstdlib>
#include <iterator>

using KV_ScenePane::KeyInput;
using KV_ScenePane::MouseInput;
using Kind = MouseInput::Kind;

namespace {

constexpr std::uint32_t kDoubleClickMilliseconds = 500;
constexpr std::int32_t kDoubleClickPixels = 2;

constexpr std::uint32_t kAnyButton = KV_ScenePane::kMouseLeft | KV_ScenePane::kMouseRight | KV_ScenePane::kMouseMiddle;
constexpr std::uint32_t kAnyModifier = KV_ScenePane::kMouseShift | KV_ScenePane::kMouseCtrl;

// KeyInput::nFlags: the scan code in the low byte, then these.
constexpr std::int32_t kExtendedBit = 1 << 8;
constexpr std::int32_t kAltBit = 1 << 13;
constexpr std::int32_t kWasDownBit = 1 << 14;
constexpr std::int32_t kReleaseBit = 1 << 15;

std::uint32_t FlagsOf(unsigned state) {
    std::uint32_t flags = 0;
    if ((state & Button1Mask) != 0) flags |= KV_ScenePane::kMouseLeft;
    if ((state & Button2Mask) != 0) flags |= KV_ScenePane::kMouseMiddle;
    if ((state & Button3Mask) != 0) flags |= KV_ScenePane::kMouseRight;
    if ((state & ShiftMask) != 0) flags |= KV_ScenePane::kMouseShift;
    if ((state & ControlMask) != 0) flags |= KV_ScenePane::kMouseCtrl;
    return flags;
}

struct Button {
    unsigned number;
    std::uint32_t flag;
    Kind down, up;
};
constexpr Button kButtons[] = {{Button1, KV_ScenePane::kMouseLeft, Kind::LeftDown, Kind::LeftUp},
                               {Button2, KV_ScenePane::kMouseMiddle, Kind::MiddleDown, Kind::MiddleUp},
                               {Button3, KV_ScenePane::kMouseRight, Kind::RightDown, Kind::RightUp}};

const Button* FindButton(unsigned number) {
    const auto* const found = std::ranges::find(kButtons, number, &Button::number);
    return found == std::end(kButtons) ? nullptr : found;
}

bool IsWheel(unsigned number) { return number == Button4 || number == Button5; }

}  // namespace

bool X11Input::CanCoalesce(const _XEvent& event, const _XEvent& next) {
    return event.type == MotionNotify && next.type == MotionNotify && event.xany.window == next.xany.window &&
           event.xmotion.state == next.xmotion.state;
}

bool X11Input::IsNotchOrRepeat(const _XEvent& event) const {
    if (event.type == ButtonPress) return IsWheel(event.xbutton.button);
    return event.type == KeyPress && m_keysDown[event.xkey.keycode % m_keysDown.size()].has_value();
}

bool X11Input::IsNotchRelease(const _XEvent& event) {
    return event.type == ButtonRelease && IsWheel(event.xbutton.button);
}

std::vector<MouseInput> X11Input::FindLostReleases(const _XEvent& event) {
    return ReleaseAllBut(FlagsOf(event.type == MotionNotify ? event.xmotion.state : event.xbutton.state));
}

std::vector<MouseInput> X11Input::ReleaseButtons() { return ReleaseAllBut(m_last.flags & kAnyModifier); }

// Each release has the flags of the buttons whose releases follow, as if they had come one after the other.
std::vector<MouseInput> X11Input::ReleaseAllBut(std::uint32_t flags) {
    std::vector<MouseInput> releases;
    for (const Button& button : kButtons) {
        if ((m_buttonsHeld & ~flags & button.flag) == 0) continue;
        m_buttonsHeld &= ~button.flag;
        releases.push_back({button.up, flags | m_buttonsHeld, m_last.x, m_last.y, 0});
    }
    return releases;
}

std::optional<MouseInput> X11Input::TranslateMouse(const _XEvent& event) {
    const XMotionEvent& move = event.xmotion;
    const std::optional<MouseInput> input = event.type == MotionNotify
                                                ? MouseInput{Kind::Move, FlagsOf(move.state), move.x, move.y, 0}
                                                : TranslateButton(event);
    if (input) m_last = *input;
    return input;
}

// X reports a notch of the wheel as press and release of a button of its own.
std::optional<MouseInput> X11Input::TranslateButton(const _XEvent& event) {
    const XButtonEvent& press = event.xbutton;
    MouseInput input{Kind::Wheel, FlagsOf(press.state), press.x, press.y, 0};
    if (event.type == ButtonPress && IsWheel(press.button)) {
        m_firstClick.reset();  // the wheel zooms: another point is under the pointer now
        input.delta = press.button == Button4 ? KV_ScenePane::kWheelNotch : -KV_ScenePane::kWheelNotch;
        return input;
    }
    const Button* const button = FindButton(press.button);
    if (button == nullptr) return std::nullopt;  // horizontal wheel, side buttons, the release of a wheel notch
    if (event.type == ButtonRelease) {
        if ((m_buttonsHeld & button->flag) == 0) return std::nullopt;  // pressed elsewhere, or already reported as lost
        m_buttonsHeld &= ~button->flag;
        input.kind = button->up;
        input.flags &= ~button->flag;
        return input;
    }
    // A press while another button is held is part of a chord, never of a double click.
    const bool isAlone = (input.flags & kAnyButton) == 0;
    m_buttonsHeld |= button->flag;
    input.kind = button->down;
    input.flags |= button->flag;
    if (press.button != Button1 || !isAlone)
        m_firstClick.reset();
    else if (CompletesDoubleClick({static_cast<std::uint32_t>(press.time), press.x, press.y}))
        input.kind = Kind::DoubleClick;
    return input;
}

// Whether this press is the second one of a double click. A third press is a first one again. The times are unsigned
// and wrap, and so does their difference.
bool X11Input::CompletesDoubleClick(const Click& click) {
    const bool isSecond = m_firstClick && click.time - m_firstClick->time <= kDoubleClickMilliseconds &&
                          std::abs(click.x - m_firstClick->x) <= kDoubleClickPixels &&
                          std::abs(click.y - m_firstClick->y) <= kDoubleClickPixels;
    m_firstClick = isSecond ? std::nullopt : std::optional(click);
    return isSecond;
}

KeyInput X11Input::TranslateKey(const _XEvent& event, const X11Keyboard& keyboard) {
    const XKeyEvent& press = event.xkey;
    std::optional<X11Key>& down = m_keysDown[press.keycode % m_keysDown.size()];
    const X11Key key = down ? *down : FindKey(keyboard, press.keycode, press.state);
    KeyInput input;
    input.isDown = event.type == KeyPress;
    input.nChar = key.code;
    input.nFlags = key.scanCode;
    if (key.isExtended) input.nFlags |= kExtendedBit;
    // The state mask of the Alt key's own events does not contain the key yet, or still does.
    const bool isAltHeld = key.code == kKeyAlt ? input.isDown : (press.state & keyboard.altMask) != 0;
    if (isAltHeld) input.nFlags |= kAltBit;
    if (down || !input.isDown) input.nFlags |= kWasDownBit;
    if (!input.isDown) input.nFlags |= kReleaseBit;
    down = input.isDown ? std::optional(key) : std::nullopt;
    return input;
}
