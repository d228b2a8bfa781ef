// The plane under the mouse: moved along its normal, or tilted by one of the two spheres on its outline.
#include <Eigen/Geometry>
#include <algorithm>
#include <cmath>
#include <numbers>

#include "clip/Plane.h"

namespace {

constexpr double kPixelsPerUnit = 10.0;
/// Nearer to the centre than this many pixels the mouse has no direction that could steer the tilt.
constexpr double kMinSteeringDistance = 1.0;
/// The steps of the search for a tilt, degrees: coarse to fine, each half of the one before.
constexpr double kTiltSteps[] = {5.0, 2.5, 1.25, 0.625, 0.3125};

Eigen::Vector2d ToEigen(const Double2& v) { return {v[0], v[1]}; }

/// About a unit axis through the centre that lies in the plane's own surface.
Eigen::Matrix4d TiltAbout(const Eigen::Vector2d& axis, double degrees) {
    Eigen::Matrix4d tilt = Eigen::Matrix4d::Identity();
    const Eigen::Vector3d inSurface(axis.x(), axis.y(), 0.0);
    tilt.topLeftCorner<3, 3>() = Eigen::AngleAxisd(degrees * (std::numbers::pi / 180), inSurface).toRotationMatrix();
    return tilt;
}

Double3 Apply(const Eigen::Matrix4d& matrix, const Double3& p) {
    const Eigen::Vector4d q = matrix * Eigen::Vector4d(p[0], p[1], p[2], 1.0);
    return {q[0], q[1], q[2]};
}

/// The mouse, moved outward along its ray from the centre to the distance of the handle: inside the handle's circle it
/// steers the angle without pulling the handle inward. Nothing when it is too near to the centre to have a direction.
std::optional<Eigen::Vector2d> SteeringPoint(const Eigen::Vector2d& mouse, const Eigen::Vector2d& center,
                                             const Eigen::Vector2d& handle) {
    const double reach = (handle - center).norm(), present = (mouse - center).norm();
    if (!(reach > present)) return mouse;
    if (present < kMinSteeringDistance) return std::nullopt;
    return center + (reach / present) * (mouse - center);
}

/// The angle in degrees that brings the handle nearest to the target: a descent with steps that get finer. A step size
/// is tried only where its first step ends no farther from the target than the handle was at the start.
/// @param distanceAt  pixels from the handle to the target after a turn by that angle
template <class DistanceAt>
double FindTilt(const DistanceAt& distanceAt) {
    const double atStart = distanceAt(0.0);
    double best = 0.0;
    for (const double step : kTiltSteps) {
        const double forward = distanceAt(best + step), backward = distanceAt(best - step);
        if (!(forward <= atStart || backward <= atStart)) continue;
        const double direction = backward <= forward ? -step : step;
        double distance = std::min(forward, backward), travel = 0.0, previous = atStart;
        while (distance < previous) {
            travel += direction;
            previous = distance;
            distance = distanceAt(best + travel + direction);
        }
        best += travel;
    }
    return best;
}

}  // namespace

// The translation is multiplied from the right, so the plane's own rotation turns it once more: this is how the keys
// move a tilted plane.
void Plane::MoveAlongNormal(double distance) {
    SetCenter(Apply(Eigen::Map<const Eigen::Matrix4d>(m_dMatrix.data()), distance * GetNormal()));
}

void Plane::BeginHandleDrag(std::int32_t x, std::int32_t y, const Double2& centerOnScreen,
                            const Double2& normalOnScreen, const PlaneHandle& pick) {
    BeginPlaneDrag(x, y, normalOnScreen);
    m_drag.pick = pick;
    m_drag.centerOnScreen = centerOnScreen;
}

void Plane::BeginPlaneDrag(std::int32_t x, std::int32_t y, const Double2& normalOnScreen) {
    const double length = ToEigen(normalOnScreen).norm();
    m_drag.pressX = x;
    m_drag.pressY = y;
    m_drag.normalOnScreen =
        length > 0.0 ? Double2{normalOnScreen[0] / length, normalOnScreen[1] / length} : normalOnScreen;
    m_drag.center = GetCenter();
    m_drag.matrix = m_dMatrix;
}

void Plane::DragAlongNormal(std::int32_t x, std::int32_t y) {
    const double travelX = static_cast<double>(x) - m_drag.pressX, travelY = static_cast<double>(y) - m_drag.pressY;
    const double s = (travelX * m_drag.normalOnScreen[0] + travelY * m_drag.normalOnScreen[1]) / kPixelsPerUnit;
    SetCenter(m_drag.center + s * GetNormal());
}

void Plane::DragHandle(std::int32_t x, std::int32_t y, const ScreenProjector& project) {
    if (m_drag.pick.kind == PlaneHandle::kArrow) {
        DragAlongNormal(x, y);
        return;
    }
    // The tilt axis lies in the surface, across the direction from the centre to the handle.
    const Double3 handle = SpherePoint(m_drag.pick.index);
    const double length = std::sqrt(handle[0] * handle[0] + handle[1] * handle[1]);
    if (!(length > 0.0)) return;  // a plane without extent has no axis to tilt about
    const Eigen::Vector2d axis(handle[1] / length, -handle[0] / length);
    Eigen::Map<Eigen::Matrix4d> matrix(m_dMatrix.data());
    const auto handleAt = [&](double degrees) {
        return ToEigen(project(Apply(matrix * TiltAbout(axis, degrees), handle)));
    };
    const Eigen::Vector2d mouse(x, y);
    const auto target = SteeringPoint(mouse, ToEigen(project(GetCenter())), handleAt(0.0));
    if (!target) return;
    const double tilt = FindTilt([&](double degrees) { return (handleAt(degrees) - *target).norm(); });
    matrix = matrix * TiltAbout(axis, tilt);  // the product is evaluated before it is stored
}

void Plane::RestoreDragStart(bool restore) {
    if (restore) m_dMatrix = m_drag.matrix;
}
