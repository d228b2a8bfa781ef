// The turntable's maths, in single precision up to the angle.
#include "view/Turntable.h"

#include <numbers>

#include "view/Rotation.h"

TurntableStep StepTurntable(const TurntableClock& clock, float speed) {
    const auto frequency = static_cast<float>(clock.frequency);
    const float seconds = static_cast<float>(clock.now - clock.start) / frequency;
    if (seconds > 1.0f / speed) return {.ended = true};
    return {.revolutions = speed * static_cast<float>(clock.now - clock.last) / frequency};
}

ViewFrame TurnedFrame(const ViewFrame& frame, const Float3& axis, float revolutions) {
    const CACADQTrafo turn = RotationAbout(axis, 2.0 * std::numbers::pi * revolutions);
    return {TurnedDirection(turn, frame.wx), TurnedDirection(turn, frame.wy), TurnedDirection(turn, frame.wz),
            frame.center};
}
