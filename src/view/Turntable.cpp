// The turntable's maths, in single precision up to the angle. The rotation itself is view/Rotation.h.
#include "view/Turntable.h"

#include <numbers>

#include "view/Rotation.h"

TurntableStep StepTurntable(const TurntableClock& clock, float speed) {
    const auto frequency = static_cast<float>(clock.frequency);
    const float seconds = static_cast<float>(clock.now - clock.start) / frequency;
    // At speed 0 the limit is infinite, at a negative speed it has passed at once.
    if (seconds > 1.0f / speed) return {.ended = true};
    return {.revolutions = speed * static_cast<float>(clock.now - clock.last) / frequency};
}

// Rounded to float once per frame, so a whole revolution ends within the rounding of its frames.
ViewFrame RotateFrameAboutAxis(const ViewFrame& frame, const Float3& axis, float revolutions) {
    const CACADQTrafo rotation = RotationAbout(axis, 2.0 * std::numbers::pi * revolutions);
    return {RotateDirection(rotation, frame.wx), RotateDirection(rotation, frame.wy),
            RotateDirection(rotation, frame.wz), frame.center};
}
