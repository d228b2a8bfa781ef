// One frame of the turntable: the angle since the last frame by the clock, and the rotated view.
#pragma once
#include <cstdint>

#include "geometry/Vector3.h"
#include "view/ViewFrame.h"

/// Readings of one counter, and its frequency in ticks per second.
struct TurntableClock {
    std::int64_t start = 0, last = 0, now = 0;
    std::int64_t frequency = 1;
};

struct TurntableStep {
    bool ended = false;        ///< the time of one revolution since the start is over; this frame rotates nothing
    float revolutions = 0.0f;  ///< since the last frame
};

/// @param speed  revolutions per second. 0 never ends; below 0 it ends with the first step
[[nodiscard]] TurntableStep StepTurntable(const TurntableClock& clock, float speed);

/// The frame with its axes rotated about a world axis, right-handed; the centre is unchanged.
[[nodiscard]] ViewFrame RotateFrameAboutAxis(const ViewFrame& frame, const Float3& axis, float revolutions);
