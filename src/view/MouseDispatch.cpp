// The two modes of the dispatcher. A handler may call back into the dispatcher, for example to switch the mode, so the
// record is read again after each handler.
#include "view/MouseDispatch.h"

#include <cmath>
#include <exception>

#include "KV_ScenePane/Input.h"
#include "base/ScopeExit.h"

using KV_ScenePane::kMouseLeft;
using KV_ScenePane::kMouseMiddle;
using KV_ScenePane::kMouseRight;

namespace {

// Tests the owner at each call: a handler may have cleared it.
void Call(const MouseDispatch& dispatch, MouseHandler handler, std::uint32_t flags, MousePoint point) {
    if (dispatch.owner != nullptr && handler != nullptr) handler(dispatch.owner, flags, point.x, point.y);
}

/// Calls a handler with the flags and the point of the pending press; keeps its exception when it is the first.
void CallAndKeep(const MouseDispatch& dispatch, MouseHandler handler, std::exception_ptr* failure) {
    try {
        Call(dispatch, handler, dispatch.flags, dispatch.pressPoint);
    } catch (...) {
        if (*failure == nullptr) *failure = std::current_exception();
    }
}

MouseHandler PressHandler(const MouseDispatch& dispatch, std::int32_t button) {
    switch (button) {
        case kLeftButton:
            return dispatch.onLeftDown;
        case kMiddleButton:
            return dispatch.onMiddleDown;
        case kRightButton:
            return dispatch.onRightDown;
        default:
            return nullptr;
    }
}

MouseHandler ReleaseHandler(const MouseDispatch& dispatch, std::int32_t button) {
    switch (button) {
        case kLeftButton:
            return dispatch.onLeftUp;
        case kMiddleButton:
            return dispatch.onMiddleUp;
        case kRightButton:
            return dispatch.onRightUp;
        default:
            return nullptr;
    }
}

// Straight-line distance between press and last point: a mouse that came back has not travelled.
bool HasTravelled(const MouseDispatch& dispatch) {
    const double dx = static_cast<double>(dispatch.lastPoint.x) - dispatch.pressPoint.x;
    const double dy = static_cast<double>(dispatch.lastPoint.y) - dispatch.pressPoint.y;
    return static_cast<float>(std::sqrt(dx * dx + dy * dy)) >= static_cast<float>(dispatch.moveThreshold);
}

// A click shorter than the delay: its release follows its press at once, for every button of the chord. A handler that
// switches the delay off clears the flags, and the remaining releases are not dispatched.
void DispatchReleases(const MouseDispatch& dispatch, std::exception_ptr* failure) {
    if ((dispatch.flags & kMouseLeft) != 0) CallAndKeep(dispatch, dispatch.onLeftUp, failure);
    if ((dispatch.flags & kMouseMiddle) != 0) CallAndKeep(dispatch, dispatch.onMiddleUp, failure);
    if ((dispatch.flags & kMouseRight) != 0) CallAndKeep(dispatch, dispatch.onRightUp, failure);
}

void ClearPending(MouseDispatch& dispatch) {
    dispatch.timerId = 0;
    dispatch.flags = 0;
    dispatch.pending = false;
    dispatch.pendingButton = 0;
    dispatch.pressFlags = 0;
    dispatch.pressPoint = {};
    dispatch.releasePending = false;
    dispatch.lastPoint = {};
    dispatch.movedSinceCheck = false;
}

}  // namespace

void DispatchPress(MouseDispatch& dispatch, std::int32_t button, std::uint32_t flags, MousePoint point,
                   const StartDispatchTimer& startTimer) {
    if (dispatch.mode != kDelayedDispatch) {
        Call(dispatch, PressHandler(dispatch, button), flags, point);
        return;
    }
    if (dispatch.pending) {
        dispatch.flags |= flags;  // a chord: the first button keeps its time and point
    } else {
        dispatch.timerId = startTimer(dispatch.delay);  // first: without a timer nothing may be pending
        dispatch.pendingButton = button;
        dispatch.pressFlags = flags;
        dispatch.pressPoint = point;
        dispatch.flags = flags;
        dispatch.pending = true;
    }
    // The second press of a chord may lie elsewhere: that counts as travel.
    dispatch.lastPoint = point;
    dispatch.movedSinceCheck = true;
}

void DispatchRelease(MouseDispatch& dispatch, std::int32_t button, std::uint32_t flags, MousePoint point) {
    const MouseHandler handler = ReleaseHandler(dispatch, button);
    if (dispatch.mode != kDelayedDispatch)
        Call(dispatch, handler, flags, point);
    else if (dispatch.pending)
        dispatch.releasePending = true;
    else
        Call(dispatch, handler, dispatch.flags, dispatch.pressPoint);
}

// The last point is stored after the handler, which may compare with the point before; also when it throws.
void DispatchMove(MouseDispatch& dispatch, std::uint32_t flags, MousePoint point) {
    if (dispatch.owner == nullptr || dispatch.onMove == nullptr) return;
    const ScopeExit store([&] {
        dispatch.lastPoint = point;
        dispatch.movedSinceCheck = true;
    });
    Call(dispatch, dispatch.onMove, flags, point);
}

void DispatchDoubleClick(MouseDispatch& dispatch, std::uint32_t flags, MousePoint point) {
    Call(dispatch, dispatch.onDoubleClick, flags, point);
}

void OnDispatchTimer(MouseDispatch& dispatch) {
    if (!dispatch.pending) return;
    // Last: a press that a handler dispatches joins the one under way. Also when a handler throws, or no press would be
    // dispatched any more.
    const ScopeExit clear([&dispatch] { ClearPending(dispatch); });
    // The press, with its own point and the flags of the whole chord.
    if (dispatch.movedSinceCheck && HasTravelled(dispatch)) dispatch.flags |= kMouseMoved;
    std::exception_ptr failure;  // of the first handler that threw: the others end what a press has begun
    CallAndKeep(dispatch, PressHandler(dispatch, dispatch.pendingButton), &failure);
    if (dispatch.releasePending) DispatchReleases(dispatch, &failure);
    if (failure != nullptr) std::rethrow_exception(failure);
}

void SetDispatchMode(MouseDispatch& dispatch, std::int32_t mode) {
    // From direct to delayed nothing is pending, and the same mode again changes nothing.
    const bool dropsPending = dispatch.mode == kDelayedDispatch && mode == kDirectDispatch;
    dispatch.mode = mode;
    if (!dropsPending) return;
    // pressPoint, pressFlags, pendingButton and movedSinceCheck stay: see the header.
    dispatch.timerId = 0;
    dispatch.flags = 0;
    dispatch.pending = false;
    dispatch.releasePending = false;
    dispatch.lastPoint = {};
}
