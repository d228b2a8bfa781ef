// The light position from the camera axes by three rotations. Each rounds to single precision: the shadow matrices
// depend on these bits.
#include "render/ShadowCamera.h"

#include <algorithm>
#include <cmath>
#include <numbers>

#include "geometry/Vector3.h"

namespace {

float Single(double value) { return static_cast<float>(value); }

Float3 RotateAboutX(const Float3& v, double angleRad) {
    const double c = std::cos(angleRad), s = std::sin(angleRad);
    return {v[0], Single(c * v[1] - s * v[2]), Single(s * v[1] + c * v[2])};
}

Float3 RotateAboutY(const Float3& v, double angleRad) {
    const double c = std::cos(angleRad), s = std::sin(angleRad);
    return {Single(c * v[0] + s * v[2]), v[1], Single(c * v[2] - s * v[0])};
}

Float3 RotateAboutZ(const Float3& v, double angleRad) {
    const double c = std::cos(angleRad), s = std::sin(angleRad);
    return {Single(c * v[0] - s * v[1]), Single(s * v[0] + c * v[1]), v[2]};
}

}  // namespace

ShadowLookAt ComputeShadowLookAt(const float axisY[3], const float axisZ[3], const float center[3]) {
    constexpr double kSideRad = -20.0 * std::numbers::pi / 180.0;
    constexpr float kAlongZ = 0.0001f;  // closer to the z axis the azimuth is undefined
    // Azimuth and tilt of the viewing axis.
    double azimuthRad = std::numbers::pi / 2.0;
    if (std::fabs(axisZ[0]) >= kAlongZ || std::fabs(axisZ[1]) >= kAlongZ) {
        azimuthRad -= std::atan2(-static_cast<double>(axisZ[1]), -static_cast<double>(axisZ[0]));
    }
    // Clamped, because rounding can make a component of a unit vector larger than 1.
    const double tiltRad = std::acos(std::clamp(static_cast<double>(axisZ[2]), -1.0, 1.0));

    // From the z axis: to the side, then by tilt and azimuth into the direction of the camera.
    Float3 v = RotateAboutY({0.0f, 0.0f, 1.0f}, kSideRad);
    v = RotateAboutX(v, tiltRad);
    v = RotateAboutZ(v, -azimuthRad);
    return {.eye = {center[0] + v[0], center[1] + v[1], center[2] + v[2]},
            .center = {center[0], center[1], center[2]},
            .up = {axisY[0], axisY[1], axisY[2]}};
}
