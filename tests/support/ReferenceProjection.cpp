// The camera and the light of the shadows in double precision.
#include "support/ReferenceProjection.h"

#include <algorithm>
#include <numbers>

namespace reference {
namespace {

constexpr double kDegree = std::numbers::pi / 180.0;

/// Right-handed rotation about a coordinate axis.
Vec TurnedAboutX(const Vec& v, double t) {
    return {v.x, v.y * std::cos(t) - v.z * std::sin(t), v.y * std::sin(t) + v.z * std::cos(t)};
}
Vec TurnedAboutY(const Vec& v, double t) {
    return {v.z * std::sin(t) + v.x * std::cos(t), v.y, v.z * std::cos(t) - v.x * std::sin(t)};
}
Vec TurnedAboutZ(const Vec& v, double t) {
    return {v.x * std::cos(t) - v.y * std::sin(t), v.x * std::sin(t) + v.y * std::cos(t), v.z};
}

}  // namespace

double Camera::HalfWidth() const {
    const double aspect = width > height ? static_cast<double>(width) / height : 1.0;
    return aspect * zoom * sceneSize * 0.5;
}

double Camera::HalfHeight() const {
    const double aspect = width > height ? 1.0 : static_cast<double>(height) / width;
    return aspect * zoom * sceneSize * 0.5;
}

double Camera::DepthRange() const { return 4.0 * sceneSize * std::max(zoom, 1.0); }

View LookAt(const Vec& eye, const Vec& target, const Vec& up) {
    const Vec forward = Unit(target - eye);
    const Vec side = Unit(Cross(forward, up));
    return {side, Cross(side, forward), -forward, eye};
}

View CameraView(const Camera& camera) {
    return LookAt(camera.center + 2.0 * camera.sceneSize * camera.ToViewer(), camera.center, camera.up);
}

View ShadowView(const Camera& camera, const Lighting& lighting) {
    const Vec viewer = camera.ToViewer();
    double t = 90.0 * kDegree;
    if (std::abs(viewer.x) >= 0.0001 || std::abs(viewer.y) >= 0.0001) t -= std::atan2(-viewer.y, -viewer.x);
    Vec light = TurnedAboutY({0.0, 0.0, 1.0}, -lighting.shadowTilt * kDegree);
    light = TurnedAboutX(light, std::acos(std::clamp(viewer.z, -1.0, 1.0)));
    light = TurnedAboutZ(light, -t);
    return LookAt(camera.center + light, camera.center, camera.up);
}

Window WindowOf(const Camera& camera, int width, int height) {
    return {camera.HalfWidth(), camera.HalfHeight(), camera.DepthRange(), width, height};
}

}  // namespace reference
