// The rotations are single-precision steps, so that every caller sees the same light to the bit.
#include "render/ShadowCamera.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace {

struct Direction {
    float x, y, z;
};

float Single(double value) { return static_cast<float>(value); }

Direction RotateAboutX(const Direction& v, double angleRad) {
    const double c = std::cos(angleRad), s = std::sin(angleRad);
    return {v.x, Single(c * v.y - s * v.z), Single(s * v.y + c * v.z)};
}

Direction RotateAboutY(const Direction& v, double angleRad) {
    const double c = std::cos(angleRad), s = std::sin(angleRad);
    return {Single(c * v.x + s * v.z), v.y, Single(c * v.z - s * v.x)};
}

Direction RotateAboutZ(const Direction& v, double angleRad) {
    const double c = std::cos(angleRad), s = std::sin(angleRad);
    return {Single(c * v.x - s * v.y), Single(s * v.x + c * v.y), v.z};
}

}  // namespace

ShadowLookAt ComputeShadowLookAt(const float axisY[3], const float axisZ[3], const float center[3]) {
    constexpr double kSideRad = -20.0 * std::numbers::pi / 180.0;
    constexpr float kAlongZ = 0.0001f;  // nearer to the z axis the azimuth has no meaning
    double azimuthRad = std::numbers::pi / 2.0;
    if (std::fabs(axisZ[0]) >= kAlongZ || std::fabs(axisZ[1]) >= kAlongZ) {
        azimuthRad -= std::atan2(-static_cast<double>(axisZ[1]), -static_cast<double>(axisZ[0]));
    }
    // Rounding can carry a unit axis just over 1.
    const double tiltRad = std::acos(std::clamp(static_cast<double>(axisZ[2]), -1.0, 1.0));

    Direction v = RotateAboutY({0.0f, 0.0f, 1.0f}, kSideRad);
    v = RotateAboutX(v, tiltRad);
    v = RotateAboutZ(v, -azimuthRad);
    return {.eye = {center[0] + v.x, center[1] + v.y, center[2] + v.z},
            .center = {center[0], center[1], center[2]},
            .up = {axisY[0], axisY[1], axisY[2]}};
}
