// The dispatcher of mouse input to the handlers of a control: direct, or delayed so that a chord of two buttons, and a
// click without travel, can be distinguished from a drag. Plain functions on a record; the clock comes from outside.
#pragma once
#include <cstdint>
#include <functional>

class CKV_ScenePaneCtrl;

/// Pixels of the drawing area, y downward.
struct MousePoint {
    std::int32_t x = 0, y = 0;
};

using MouseHandler = void (*)(CKV_ScenePaneCtrl* owner, std::uint32_t flags, std::int32_t x, std::int32_t y);

/// Buttons of MouseDispatch::pendingButton, and its modes.
inline constexpr std::int32_t kLeftButton = 1, kMiddleButton = 2, kRightButton = 3;
inline constexpr std::int32_t kDirectDispatch = 1, kDelayedDispatch = 2;
/// Added to the flags of a delayed press: the mouse travelled at least moveThreshold before the dispatch.
inline constexpr std::uint32_t kMouseMoved = 0x0100;

/// The record of one dispatcher.
///
/// Invariants: in direct mode nothing is pending. While a press is pending, timerId is the timer that dispatches it;
/// with none pending, timerId, flags and releasePending are 0.
struct MouseDispatch {
    CKV_ScenePaneCtrl* owner = nullptr;  ///< passed to the handlers; null disables all of them
    std::int32_t mode = kDirectDispatch;
    MouseHandler onMove = nullptr;
    MouseHandler onLeftDown = nullptr, onMiddleDown = nullptr, onRightDown = nullptr;
    MouseHandler onLeftUp = nullptr, onMiddleUp = nullptr, onRightUp = nullptr;
    MouseHandler onDoubleClick = nullptr;
    MouseHandler onRightDoubleClick = nullptr;  ///< no input reaches it
    std::uint32_t timerPeriod = 50;   ///< milliseconds; the timers of our window systems need no such preparation
    bool pending = false;             ///< a press waits to be dispatched
    std::int32_t pendingButton = 0;   ///< the first button of a chord
    std::uint32_t pressFlags = 0;     ///< flags at the press
    MousePoint pressPoint{};          ///< point at the press
    std::uint32_t flags = 0;          ///< of all presses since the first one of the chord
    bool releasePending = false;      ///< a release came while a press was pending
    std::uint32_t timerId = 0;        ///< one-shot timer, 0 when none
    std::uint32_t delay = 100;        ///< milliseconds
    std::uint32_t moveThreshold = 5;  ///< pixels
    MousePoint lastPoint{};           ///< last mouse position seen
    bool movedSinceCheck = false;
};

/// Starts a one-shot timer and returns its id, never 0; its expiry must call OnDispatchTimer().
using StartDispatchTimer = std::function<std::uint32_t(std::uint32_t milliseconds)>;

// In all of these, without an owner or without the handler concerned nothing is dispatched.

/// In delayed mode the press is pending until OnDispatchTimer(); a press during that time only adds its flags to it.
/// @param flags       as in KV_ScenePane::MouseInput
/// @param startTimer  called for the first press of a chord only
void DispatchPress(MouseDispatch& dispatch, std::int32_t button, std::uint32_t flags, MousePoint point,
                   const StartDispatchTimer& startTimer);
/// In delayed mode a release while a press is pending is dispatched after that press. With none pending it is
/// dispatched at once with the flags and the press point of the record: both 0, but for a press point that
/// SetDispatchMode() kept.
void DispatchRelease(MouseDispatch& dispatch, std::int32_t button, std::uint32_t flags, MousePoint point);
/// At once in both modes; after the handler the point becomes the last one.
void DispatchMove(MouseDispatch& dispatch, std::uint32_t flags, MousePoint point);
/// At once in both modes, also while a press is pending.
void DispatchDoubleClick(MouseDispatch& dispatch, std::uint32_t flags, MousePoint point);
/// Dispatches the pending press and after it the releases, if one came meanwhile. Does nothing with none pending.
/// @throws the first exception of a handler, after all of them were called; nothing is pending then
void OnDispatchTimer(MouseDispatch& dispatch);
/// Switches between direct and delayed; a real change to direct drops a pending press. The press point is kept: the
/// first release after the delay is switched on again may still report it.
void SetDispatchMode(MouseDispatch& dispatch, std::int32_t mode);
