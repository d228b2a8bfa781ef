// The record that stands between the window's input and the handlers of the control.
#pragma once
#include <cstdint>

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
    std::uint32_t timerPeriod = 50;   ///< milliseconds
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
