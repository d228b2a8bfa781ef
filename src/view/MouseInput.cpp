// Mouse input of the window to the dispatcher, and the wheel. The dispatcher is view/MouseDispatch.h; the handlers that
// it calls are in view/MousePress.cpp, view/MouseMove.cpp and view/MouseRelease.cpp.
#include <utility>

#include "control/ScenePaneCtrl.h"

namespace {

/// A handler of the control as the plain function that the dispatcher calls.
template <auto Handler>
void CallHandler(CKV_ScenePaneCtrl* owner, std::uint32_t flags, std::int32_t x, std::int32_t y) {
    (owner->*Handler)(flags, x, y);
}

/// A press while no other button is held begins a drag. One of objects that is still under way has lost its release, to
/// a filter of the host or to another window. At the press, not when the dispatcher passes it on: moves may be before
/// that.
void ForgetLostDrag(CKV_ScenePaneCtrl& control, std::int32_t button, std::uint32_t flags) {
    using KV_ScenePane::kMouseLeft, KV_ScenePane::kMouseRight;
    const std::uint32_t own = button == kLeftButton ? kMouseLeft : button == kRightButton ? kMouseRight : 0;
    const bool othersHeld = (flags & (kMouseLeft | kMouseRight) & ~own) != 0;
    if (!othersHeld && control.m_pInteractionDlg != nullptr) control.m_pInteractionDlg->ForgetDrag();
}

}  // namespace

void CKV_ScenePaneCtrl::ConnectMouseHandlers() {
    m_mouseDispatch.owner = this;
    m_mouseDispatch.onMove = CallHandler<&CKV_ScenePaneCtrl::OnMouseMoved>;
    m_mouseDispatch.onLeftDown = CallHandler<&CKV_ScenePaneCtrl::OnLeftDown>;
    m_mouseDispatch.onMiddleDown = CallHandler<&CKV_ScenePaneCtrl::OnMiddleDown>;
    m_mouseDispatch.onRightDown = CallHandler<&CKV_ScenePaneCtrl::OnRightDown>;
    m_mouseDispatch.onLeftUp = CallHandler<&CKV_ScenePaneCtrl::OnLeftUp>;
    m_mouseDispatch.onMiddleUp = CallHandler<&CKV_ScenePaneCtrl::OnMiddleUp>;
    m_mouseDispatch.onRightUp = CallHandler<&CKV_ScenePaneCtrl::OnRightUp>;
    m_mouseDispatch.onDoubleClick = CallHandler<&CKV_ScenePaneCtrl::OnDoubleClick>;
    m_mouseDispatch.onRightDoubleClick = CallHandler<&CKV_ScenePaneCtrl::OnRightDoubleClick>;
}

void CKV_ScenePaneCtrl::SetMouseFilter(std::function<bool(const KV_ScenePane::MouseInput&)> filter) {
    // The former one ends after the exchange: what it owns may call the viewer while it is destroyed.
    decltype(m_pMouseFilter) next;
    if (filter) next = std::make_shared<const std::function<bool(const KV_ScenePane::MouseInput&)>>(std::move(filter));
    m_pMouseFilter.swap(next);
}

// A freehand lasso is the way of the mouse, also where frames are slower than the hand. The first move of a drag of
// objects only says where it starts: merged with the later ones, their travel would be lost.
bool CKV_ScenePaneCtrl::WantsEveryMove() const {
    if (m_nInteractionMode == ModeMaskLasso) return true;
    return m_nInteractionMode == ModeAlignInteractive && m_pInteractionDlg != nullptr &&
           m_pInteractionDlg->AwaitsDrag();
}

// Double clicks and moves pass the delay by; presses and releases may wait in it.
void CKV_ScenePaneCtrl::OnMouse(const KV_ScenePane::MouseInput& input) {
    if (const auto filter = m_pMouseFilter; filter != nullptr && (*filter)(input)) return;
    if (m_bClosed) return;  // destroyed by the host, perhaps in its filter
    using Kind = KV_ScenePane::MouseInput::Kind;
    const MousePoint point{input.x, input.y};
    const auto press = [&](std::int32_t button) {
        ForgetLostDrag(*this, button, input.flags);
        DispatchPress(m_mouseDispatch, button, input.flags, point,
                      [this](std::uint32_t milliseconds) { return m_pWindow->StartTimer(milliseconds); });
    };
    const auto release = [&](std::int32_t button) { DispatchRelease(m_mouseDispatch, button, input.flags, point); };
    switch (input.kind) {
        case Kind::Move:
            DispatchMove(m_mouseDispatch, input.flags, point);
            break;
        case Kind::LeftDown:
            press(kLeftButton);
            break;
        case Kind::LeftUp:
            release(kLeftButton);
            break;
        case Kind::MiddleDown:
            press(kMiddleButton);
            break;
        case Kind::MiddleUp:
            release(kMiddleButton);
            break;
        case Kind::RightDown:
            press(kRightButton);
            break;
        case Kind::RightUp:
            release(kRightButton);
            break;
        case Kind::DoubleClick:
            DispatchDoubleClick(m_mouseDispatch, input.flags, point);
            break;
        case Kind::Wheel:
            OnMouseWheel(input.flags, input.delta);
            break;
    }
}

// The window posts the message when the timer that DispatchPress() started has expired.
void CKV_ScenePaneCtrl::OnPrivateMessage(std::uint32_t message) {
    if (message == kTimerMessage && !m_bClosed) OnDispatchTimer(m_mouseDispatch);
}

// While there was no window the message of the timer may have been dropped; the press would wait for ever.
void CKV_ScenePaneCtrl::RestartDispatchTimer() {
    if (!m_mouseDispatch.pending) return;
    m_pWindow->StopTimer(m_mouseDispatch.timerId);
    m_mouseDispatch.timerId = m_pWindow->StartTimer(m_mouseDispatch.delay);
}

// Zooms in the modes listed; in a lasso or a drag of the whole plane the wheel does nothing.
void CKV_ScenePaneCtrl::OnMouseWheel(std::uint32_t /*flags*/, std::int32_t delta) {
    if (m_nAllowMouse != 1) return;
    switch (m_nInteractionMode) {
        case ModeIdle:
        case ModeRotate:
        case 2:  // never assigned by this control, but among the modes that zoom
        case ModePan:
        case ModeAlignInteractive:
        case ModeAlignPickPoints:
        case ModePlaneHandle:
            // Half the delta is the travel of a zoom drag in pixels: 12 % per notch. The delayed scheme has the other
            // direction.
            ZoomView(m_nIgdRotation != 0 ? delta / 2 : -(delta / 2), 0);
            break;
        default:
            break;
    }
}

void CKV_ScenePaneCtrl::AllowMouseInteraction(std::int16_t on) { m_nAllowMouse = on; }

void CKV_ScenePaneCtrl::FlipMouseButtons(std::int16_t flip) { m_nFlipMouseButtons = flip; }

void CKV_ScenePaneCtrl::SetIGDRotation(std::int16_t on) {
    m_nIgdRotation = on;
    const std::uint32_t timer = m_mouseDispatch.timerId;
    SetDispatchMode(m_mouseDispatch, on != 0 ? kDelayedDispatch : kDirectDispatch);
    // The timer of a press that was dropped must not dispatch the next one early.
    if (timer != 0 && m_mouseDispatch.timerId == 0) m_pWindow->StopTimer(timer);
}
