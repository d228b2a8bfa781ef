// One frame of the turntable: how far the clock has turned the view, and the turned view.
#pragma once
#include <cstdint>

#include "geometry/Float3.h"
#include "view/ViewFrame.h"

/// Readings of one counter, and its ticks a second.
struct TurntableClock {
    std::int64_t start = 0, last = 0, now = 0;
    std::int64_t frequency = 1;
};

struct TurntableStep {
    bool ended = false;        ///< more than one revolution's time has passed since the start; nothing turns any more
    float revolutions = 0.0f;  ///< since the last frame
};

/// @param speed  revolutions per second. 0 never ends; below 0 it ends with the first step
[[nodiscard]] TurntableStep StepTurntable(const TurntableClock& clock, float speed);

/// The axes turned about a world axis; the centre stays.
[[nodiscard]] ViewFrame TurnedFrame(const ViewFrame& frame, const Float3& axis, float revolutions);
