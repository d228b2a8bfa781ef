// Rotations about one axis go through a quaternion in double precision, the free rotation is computed in floats.
#include "view/Rotation.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace {

constexpr double kPi = std::numbers::pi;

// The larger of the two angles counts, so that the mouse may circle the viewing axis either way.
ViewFrame RotateAboutViewAxis(const ViewFrame& frame, double dx, double dy, const RotationRule& rule) {
    const double byX = dx * kPi / rule.width;
    const double byY = -dy * kPi / rule.height;
    const CACADQTrafo rotation = RotationAbout(frame.wz, std::abs(byY) > std::abs(byX) ? byY : byX);
    return {RotateDirection(rotation, frame.wx), RotateDirection(rotation, frame.wy), frame.wz, frame.center};
}

// Below the centre a travel to the right is anticlockwise, above it clockwise; left and right of the centre differ
// alike. The signs make the picture follow the mouse all the way around.
ViewFrame Roll(const ViewFrame& frame, double dx, double dy, const RotationRule& rule) {
    const bool isBottom = rule.quadrant == 2 || rule.quadrant == 3;
    const bool isRight = rule.quadrant == 1 || rule.quadrant == 2;
    return RotateAboutViewAxis(frame, isBottom ? -dx : dx, isRight ? -dy : dy, rule);
}

struct CosineAndSine {
    float cosine, sine;
};

// A travel across the smaller side of the window is half a turn.
CosineAndSine FreeAngle(std::int32_t travel, const RotationRule& rule) {
    const auto side = static_cast<float>(std::min(rule.width, rule.height));
    const float degrees = static_cast<float>(travel) * 180.0f / side;
    const float radians = degrees * std::numbers::pi_v<float> / 180.0f;
    return {std::cos(radians), std::sin(radians)};
}

ViewFrame RotateFreely(const ViewFrame& frame, std::int32_t dx, std::int32_t dy, const RotationRule& rule) {
    // The centre relative to the pivot, in the axes before the rotation.
    const Float3 offset = frame.center - rule.pivot;
    const float a = Dot(offset, frame.wx), b = Dot(offset, frame.wy), c = Dot(offset, frame.wz);

    // First about the screen's vertical by dx, then about the new horizontal by dy.
    const CosineAndSine x = FreeAngle(dx, rule), y = FreeAngle(dy, rule);
    ViewFrame rotated;
    rotated.wx = x.cosine * frame.wx + x.sine * frame.wz;
    const Float3 wz = x.cosine * frame.wz - x.sine * frame.wx;
    rotated.wy = y.cosine * frame.wy - y.sine * wz;
    rotated.wz = y.sine * frame.wy + y.cosine * wz;

    // The same coordinates in the rotated axes: the scene turns about the pivot.
    rotated.center = rule.pivot + a * rotated.wx + b * rotated.wy + c * rotated.wz;
    return rotated;
}

}  // namespace

ViewFrame RotateFrame(const ViewFrame& frame, const RotationRule& rule, std::int32_t dx, std::int32_t dy) {
    if (rule.width < 1 || rule.height < 1) return frame;
    if (rule.roll) return Roll(frame, dx, dy, rule);
    // About one axis of the screen that axis itself keeps its bits.
    ViewFrame rotated = frame;
    switch (rule.mode) {
        case KV_ScenePane::RotateAboutHorizontal: {
            const CACADQTrafo rotation = RotationAbout(frame.wx, -static_cast<double>(dy) * kPi / rule.height);
            rotated.wy = RotateDirection(rotation, frame.wy);
            rotated.wz = RotateDirection(rotation, frame.wz);
            return rotated;
        }
        case KV_ScenePane::RotateAboutVertical: {
            const CACADQTrafo rotation = RotationAbout(frame.wy, -static_cast<double>(dx) * kPi / rule.width);
            rotated.wx = RotateDirection(rotation, frame.wx);
            rotated.wz = RotateDirection(rotation, frame.wz);
            return rotated;
        }
        case KV_ScenePane::RotateAboutViewAxis:
            return RotateAboutViewAxis(frame, dx, dy, rule);
        default:
            return RotateFreely(frame, dx, dy, rule);
    }
}

CACADQTrafo RotationAbout(const Float3& axis, double angleRad) {
    const double x = axis[0], y = axis[1], z = axis[2];
    // The sine of half the angle per length of the axis: the vector part of the quaternion needs the unit axis.
    const double perLength = std::sin(angleRad / 2) / std::sqrt(x * x + y * y + z * z);
    CACADQTrafo rotation;
    rotation.m_dQuat[0] = std::cos(angleRad / 2);
    rotation.m_dQuat[1] = x * perLength;
    rotation.m_dQuat[2] = y * perLength;
    rotation.m_dQuat[3] = z * perLength;
    rotation.UpdateMatrix();
    return rotation;
}

Float3 RotateDirection(const CACADQTrafo& rotation, const Float3& direction) {
    const double* r = rotation.m_dRotation;  // column-major
    const double x = direction[0], y = direction[1], z = direction[2];
    return {static_cast<float>(x * r[0] + y * r[3] + z * r[6]), static_cast<float>(x * r[1] + y * r[4] + z * r[7]),
            static_cast<float>(x * r[2] + y * r[5] + z * r[8])};
}

// Integer halves, as in IsOutsideInscribedCircle(): both must agree on the centre pixel.
std::int32_t RollQuadrant(std::int32_t x, std::int32_t y, std::int32_t width, std::int32_t height) {
    const bool isRight = x >= width / 2, isBottom = y >= height / 2;
    if (isBottom) return isRight ? 2 : 3;
    return isRight ? 1 : 0;
}

bool IsOutsideInscribedCircle(std::int32_t x, std::int32_t y, std::int32_t width, std::int32_t height) {
    const std::int32_t centerX = width / 2, centerY = height / 2;
    // Doubles: the squares of a captured mouse far outside would overflow.
    const double dx = static_cast<double>(x) - centerX, dy = static_cast<double>(y) - centerY;
    const double radius = std::min(centerX, centerY);
    return dx * dx + dy * dy > radius * radius;
}
