// What stands between the window's input and the handlers of the control: direct, or delayed so that a chord of two
// buttons and a click without travel can be told from a drag.
#pragma once
#include <cstdint>
#include <functional>

class CKV_ScenePaneCtrl;

struct MousePoint {
    std::int32_t x = 0, y = 0;
};

using MouseHandler = void (*)(CKV_ScenePaneCtrl* owner, std::uint32_t flags, std::int32_t x, std::int32_t y);

struct MouseDispatch {
    CKV_ScenePaneCtrl* owner = nullptr;  ///< null disables all delivery
    std::int32_t mode = 1;               ///< 1 direct, 2 delayed
    MouseHandler onMove = nullptr;
    MouseHandler onLeftDown = nullptr, onMiddleDown = nullptr, onRightDown = nullptr;
    MouseHandler onLeftUp = nullptr, onMiddleUp = nullptr, onRightUp = nullptr;
    MouseHandler onDoubleClick = nullptr;
    MouseHandler onRightDoubleClick = nullptr;
    std::uint32_t timerPeriod = 50;   ///< milliseconds; the timers of our window systems need no such preparation
    bool pending = false;             ///< a press waits to be delivered
    std::int32_t pendingButton = 0;   ///< 1 left, 2 middle, 3 right
    std::uint32_t pressFlags = 0;     ///< flags at the press
    MousePoint pressPoint;            ///< point at the press
    std::uint32_t flags = 0;          ///< accumulated flags
    bool releasePending = false;      ///< a release came while waiting
    std::uint32_t timerId = 0;        ///< one-shot timer, 0 when none
    std::uint32_t delay = 100;        ///< milliseconds
    std::uint32_t moveThreshold = 5;  ///< pixels
    MousePoint lastPoint;             ///< last mouse position seen
    bool movedSinceCheck = false;
};

/// Buttons of MouseDispatch::pendingButton.
inline constexpr std::int32_t kLeftButton = 1, kMiddleButton = 2, kRightButton = 3;
inline constexpr std::int32_t kDirectDispatch = 1, kDelayedDispatch = 2;
/// Added to the flags of a delayed press: the mouse travelled at least moveThreshold before the delivery.
inline constexpr std::uint32_t kMouseMoved = 0x0100;

/// Starts a one-shot timer of so many milliseconds and returns its id; the expiry runs OnDispatchTimer().
using StartDispatchTimer = std::function<std::uint32_t(std::uint32_t milliseconds)>;

// Without an owner, or without the handler concerned, nothing is delivered.
/// Delayed, the press waits for OnDispatchTimer(); a press that finds one waiting only adds its flags to it.
void DispatchPress(MouseDispatch& dispatch, std::int32_t button, std::uint32_t flags, MousePoint point,
                   const StartDispatchTimer& startTimer);
/// Delayed, a release is delivered behind the press that waits; with none waiting it is delivered at once, with the
/// accumulated flags and the press point, which are 0 by then.
void DispatchRelease(MouseDispatch& dispatch, std::int32_t button, std::uint32_t flags, MousePoint point);
/// Straight to the handler in both modes; afterwards the point is kept as the last one.
void DispatchMove(MouseDispatch& dispatch, std::uint32_t flags, MousePoint point);
void DispatchDoubleClick(MouseDispatch& dispatch, std::uint32_t flags, MousePoint point);
/// Delivers the press that waits, and the release that came meanwhile. Nothing waits: nothing happens.
void OnDispatchTimer(MouseDispatch& dispatch);
/// Switches between direct and delayed; a real change to direct drops what waits. The press point stays: the first
/// release after the delay is switched on again may still report it.
void SetDispatchMode(MouseDispatch& dispatch, std::int32_t mode);
