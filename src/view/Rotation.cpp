// Rotations about one axis run through the quaternion in double precision, the free rotation in floats.
#include "view/Rotation.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace {

constexpr double kPi = std::numbers::pi;

// The larger of the two turns wins, so that the mouse may go any way around the viewing axis.
ViewFrame TurnedAboutViewingAxis(const ViewFrame& frame, double dx, double dy, const RotationRule& rule) {
    const double byX = dx * kPi / rule.width;
    const double byY = -dy * kPi / rule.height;
    const CACADQTrafo turn = RotationAbout(frame.wz, std::abs(byY) > std::abs(byX) ? byY : byX);
    return {TurnedDirection(turn, frame.wx), TurnedDirection(turn, frame.wy), frame.wz, frame.center};
}

// Half of the window circles the other way round: the signs make the picture follow the mouse all the way.
ViewFrame Rolled(const ViewFrame& frame, double dx, double dy, const RotationRule& rule) {
    const bool isBottom = rule.quadrant == 2 || rule.quadrant == 3;
    const bool isRight = rule.quadrant == 1 || rule.quadrant == 2;
    return TurnedAboutViewingAxis(frame, isBottom ? -dx : dx, isRight ? -dy : dy, rule);
}

struct CosineAndSine {
    float cosine, sine;
};

// Travel across the smaller side of the window is a half turn.
CosineAndSine FreeTurn(std::int32_t travel, const RotationRule& rule) {
    const auto side = static_cast<float>(std::min(rule.width, rule.height));
    const float degrees = static_cast<float>(travel) * 180.0f / side;
    const float radians = degrees * std::numbers::pi_v<float> / 180.0f;
    return {std::cos(radians), std::sin(radians)};
}

ViewFrame FreelyTurned(const ViewFrame& frame, std::int32_t dx, std::int32_t dy, const RotationRule& rule) {
    // The centre's place as the old axes see it; the new axes put it back.
    const Float3 offset = frame.center - rule.pivot;
    const float a = Dot(offset, frame.wx), b = Dot(offset, frame.wy), c = Dot(offset, frame.wz);

    const CosineAndSine x = FreeTurn(dx, rule), y = FreeTurn(dy, rule);
    ViewFrame turned;
    turned.wx = x.cosine * frame.wx + x.sine * frame.wz;
    const Float3 wz = x.cosine * frame.wz - x.sine * frame.wx;
    turned.wy = y.cosine * frame.wy - y.sine * wz;
    turned.wz = y.sine * frame.wy + y.cosine * wz;
    turned.center = rule.pivot + a * turned.wx + b * turned.wy + c * turned.wz;
    return turned;
}

}  // namespace

ViewFrame ComputeRotatedFrame(const ViewFrame& frame, const RotationRule& rule, std::int32_t dx, std::int32_t dy) {
    if (rule.width < 1 || rule.height < 1) return frame;
    if (rule.roll) return Rolled(frame, dx, dy, rule);
    ViewFrame turned = frame;
    switch (rule.mode) {
        case 0: {
            const CACADQTrafo turn = RotationAbout(frame.wx, -static_cast<double>(dy) * kPi / rule.height);
            turned.wy = TurnedDirection(turn, frame.wy);
            turned.wz = TurnedDirection(turn, frame.wz);
            return turned;
        }
        case 1: {
            const CACADQTrafo turn = RotationAbout(frame.wy, -static_cast<double>(dx) * kPi / rule.width);
            turned.wx = TurnedDirection(turn, frame.wx);
            turned.wz = TurnedDirection(turn, frame.wz);
            return turned;
        }
        case 2:
            return TurnedAboutViewingAxis(frame, dx, dy, rule);
        default:
            return FreelyTurned(frame, dx, dy, rule);
    }
}

CACADQTrafo RotationAbout(const Float3& axis, double angleRad) {
    const double x = axis[0], y = axis[1], z = axis[2];
    const double perLength = std::sin(angleRad / 2) / std::sqrt(x * x + y * y + z * z);
    CACADQTrafo rotation;
    rotation.m_dQuat[0] = std::cos(angleRad / 2);
    rotation.m_dQuat[1] = x * perLength;
    rotation.m_dQuat[2] = y * perLength;
    rotation.m_dQuat[3] = z * perLength;
    rotation.UpdateMatrix();
    return rotation;
}

Float3 TurnedDirection(const CACADQTrafo& rotation, const Float3& direction) {
    const double* r = rotation.m_dRotation;  // column after column
    const double x = direction[0], y = direction[1], z = direction[2];
    return {static_cast<float>(x * r[0] + y * r[3] + z * r[6]), static_cast<float>(x * r[1] + y * r[4] + z * r[7]),
            static_cast<float>(x * r[2] + y * r[5] + z * r[8])};
}

std::int32_t RollQuadrant(std::int32_t x, std::int32_t y, std::int32_t width, std::int32_t height) {
    const bool isRight = x >= width / 2, isBottom = y >= height / 2;
    if (isBottom) return isRight ? 2 : 3;
    return isRight ? 1 : 0;
}

bool IsOutsideInscribedCircle(std::int32_t x, std::int32_t y, std::int32_t width, std::int32_t height) {
    const std::int32_t centerX = width / 2, centerY = height / 2;
    const double dx = static_cast<double>(x) - centerX, dy = static_cast<double>(y) - centerY;
    const double radius = std::min(centerX, centerY);
    return dx * dx + dy * dy > radius * radius;
}
