// The plane under the mouse: pushed along its normal, or tilted by a ball on its outline.
#include <algorithm>
#include <cmath>
#include <numbers>

#include "clip/Plane.h"

namespace {

using Matrix = std::array<double, 16>;  // column-major

constexpr double kPixelsPerUnit = 10.0;

double Length(const Double2& v) { return std::sqrt(v[0] * v[0] + v[1] * v[1]); }
double Distance(const Double2& a, const Double2& b) { return Length({a[0] - b[0], a[1] - b[1]}); }

/// Rodrigues' formula about a unit axis in the plane's own surface.
Matrix RotationAbout(const Double2& axis, double degrees) {
    const double angle = degrees * (std::numbers::pi / 180);
    const double c = std::cos(angle), s = std::sin(angle), t = 1.0 - c;
    const auto [x, y] = axis;
    return {c + x * x * t, x * y * t, -y * s, 0, x * y * t, c + y * y * t, x * s, 0, y * s, -x * s, c, 0, 0, 0, 0, 1};
}

Matrix Product(const Matrix& a, const Matrix& b) {
    Matrix product{};
    for (std::size_t column = 0; column < 4; ++column)
        for (std::size_t row = 0; row < 4; ++row)
            for (std::size_t k = 0; k < 4; ++k) product[column * 4 + row] += a[k * 4 + row] * b[column * 4 + k];
    return product;
}

Double3 Apply(const Matrix& m, const Double3& p) {
    return {m[0] * p[0] + m[4] * p[1] + m[8] * p[2] + m[12], m[1] * p[0] + m[5] * p[1] + m[9] * p[2] + m[13],
            m[2] * p[0] + m[6] * p[1] + m[10] * p[2] + m[14]};
}

/// The mouse, pushed out along its ray from the centre to the distance of the ball: inside the ball's circle it steers
/// the angle without pulling the ball inward. Nothing when it is too near to the centre to have a direction.
std::optional<Double2> SteeringPoint(const Double2& mouse, const Double2& center, const Double2& ball) {
    const double reach = Distance(ball, center), present = Distance(mouse, center);
    if (!(reach > present)) return mouse;
    if (present < 1.0) return std::nullopt;
    const double stretch = reach / present;
    return Double2{center[0] + (mouse[0] - center[0]) * stretch, center[1] + (mouse[1] - center[1]) * stretch};
}

/// The angle in degrees that brings the ball nearest to the target, walked to in ever finer steps.
/// @param distanceAt  pixels from the ball to the target after a turn by that angle
template <class DistanceAt>
double FindTilt(const DistanceAt& distanceAt) {
    const double atStart = distanceAt(0.0);
    double best = 0.0;
    for (const double step : {5.0, 2.5, 1.25, 0.625, 0.3125}) {
        const double forward = distanceAt(best + step), backward = distanceAt(best - step);
        if (!(forward <= atStart || backward <= atStart)) continue;
        const double direction = backward <= forward ? -step : step;
        double distance = std::min(forward, backward), walked = 0.0, former = atStart;
        while (distance < former) {
            walked += direction;
            former = distance;
            distance = distanceAt(best + walked + direction);
        }
        best += walked;
    }
    return best;
}

}  // namespace

// Multiplied from the right, the translation is turned by the plane's own rotation: the keys move a tilted plane so.
void Plane::MoveAlongNormal(double distance) {
    const Double3 n = GetNormal();
    SetCenter(Apply(m_dMatrix, {distance * n[0], distance * n[1], distance * n[2]}));
}

void Plane::BeginHandleDrag(std::int32_t x, std::int32_t y, const Double2& centerOnScreen,
                            const Double2& normalOnScreen, const PlaneHandle& pick) {
    BeginPlaneDrag(x, y, normalOnScreen);
    m_drag.pick = pick;
    m_drag.centerOnScreen = centerOnScreen;
}

void Plane::BeginPlaneDrag(std::int32_t x, std::int32_t y, const Double2& normalOnScreen) {
    const double length = Length(normalOnScreen);
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
    const Double3 n = GetNormal();
    const Double3& c = m_drag.center;
    SetCenter({c[0] + s * n[0], c[1] + s * n[1], c[2] + s * n[2]});
}

void Plane::DragHandle(std::int32_t x, std::int32_t y, const ScreenProjector& project) {
    if (m_drag.pick.kind == PlaneHandle::kArrow) {
        DragAlongNormal(x, y);
        return;
    }
    const Double3 ball = BallPoint(m_drag.pick.index);
    const double length = Length({ball[0], ball[1]});
    if (!(length > 0.0)) return;  // a plane without extent has no axis to tilt about
    const Double2 axis{ball[1] / length, -ball[0] / length};
    const auto ballAt = [&](double degrees) {
        return project(Apply(Product(m_dMatrix, RotationAbout(axis, degrees)), ball));
    };
    const auto target =
        SteeringPoint({static_cast<double>(x), static_cast<double>(y)}, project(GetCenter()), ballAt(0.0));
    if (!target) return;
    const double tilt = FindTilt([&](double degrees) { return Distance(ballAt(degrees), *target); });
    m_dMatrix = Product(m_dMatrix, RotationAbout(axis, tilt));
}

void Plane::RestoreDragStart(bool restore) {
    if (restore) m_dMatrix = m_drag.matrix;
}
