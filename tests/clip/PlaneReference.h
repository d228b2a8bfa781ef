// Outline, rotation and tilt of the clip plane in extended precision, on other formulas than the plane's: complex
// numbers for the outline, quaternions for the rotations.
#pragma once
#include <algorithm>
#include <array>
#include <cmath>
#include <complex>
#include <cstddef>
#include <functional>
#include <numbers>

namespace plane_reference {

using Real = long double;
using Point = std::array<Real, 3>;
using Pixel = std::complex<Real>;

inline constexpr Real kPi = std::numbers::pi_v<Real>;

/// The point at @p theta of the polygon of @p corners corners, the first one at @p start; radians.
inline Pixel OutlineAt(Real theta, Real start, int corners, Real radius) {
    const auto corner = [&](Real k) { return std::polar(radius, start + 2 * kPi * k / corners); };
    const Real turns = (start + theta) / (2 * kPi);
    const Real edges = (turns - std::floor(turns)) * corners;  // how many edges from the first corner
    const Real first = std::floor(edges);
    return corner(first) + (edges - first) * (corner(first + 1) - corner(first));
}

struct Quaternion {
    Real w = 1, x = 0, y = 0, z = 0;

    static Quaternion About(const Point& unitAxis, Real radians) {
        const Real s = std::sin(radians / 2);
        return {std::cos(radians / 2), s * unitAxis[0], s * unitAxis[1], s * unitAxis[2]};
    }
    Quaternion operator*(const Quaternion& q) const {
        return {w * q.w - x * q.x - y * q.y - z * q.z, w * q.x + x * q.w + y * q.z - z * q.y,
                w * q.y - x * q.z + y * q.w + z * q.x, w * q.z + x * q.y - y * q.x + z * q.w};
    }
    [[nodiscard]] Point Rotate(const Point& p) const {
        const Quaternion r = *this * Quaternion{0, p[0], p[1], p[2]} * Quaternion{w, -x, -y, -z};
        return {r.x, r.y, r.z};
    }
};

/// Window pixels of a point, y downward.
using Projection = std::function<Pixel(const Point&)>;

/// What a search has decided, and how clearly.
struct Decisions {
    Real narrowest = 1e9L;  ///< least difference of two lengths that were compared and not equal, pixels
    int ties = 0;           ///< comparisons of equal lengths
    bool isPushed = false;  ///< the mouse was moved outward to a point with a rounding of its own
    int unclearTies = 0;    ///< ties of lengths to that point: not equal in another precision

    /// @return a - b
    Real Difference(Real a, Real b) {
        if (a != b) {
            narrowest = std::min(narrowest, std::abs(a - b));
        } else {
            ++ties;
            unclearTies += isPushed;
        }
        return a - b;
    }
};

/// The pose of a plane under a drag.
struct Pose {
    Quaternion rotation;
    Point center{};

    /// Column-major 4 x 4.
    [[nodiscard]] std::array<double, 16> Matrix() const {
        std::array<double, 16> m{};
        for (std::size_t column = 0; column < 3; ++column) {
            Point unit{};
            unit[column] = 1;
            const Point image = rotation.Rotate(unit);
            for (std::size_t row = 0; row < 3; ++row) m[4 * column + row] = static_cast<double>(image[row]);
        }
        for (std::size_t row = 0; row < 3; ++row) m[12 + row] = static_cast<double>(center[row]);
        m[15] = 1;
        return m;
    }

    /// One mouse move of the drag of a handle at @p handle on the outline.
    Decisions TiltTowards(Pixel mouse, const Pixel& handle, const Projection& project) {
        Decisions decisions;
        const Pixel direction = handle / std::abs(handle);
        const Point axis{direction.imag(), -direction.real(), 0};
        const auto handleAt = [&](Real degrees) {
            const Quaternion turned = rotation * Quaternion::About(axis, degrees * kPi / 180);
            Point p = turned.Rotate({handle.real(), handle.imag(), 0});
            for (std::size_t i = 0; i < 3; ++i) p[i] += center[i];
            return project(p);
        };
        const Pixel middle = project(center);
        const Real reach = std::abs(handleAt(0) - middle), present = std::abs(mouse - middle);
        if (decisions.Difference(reach, present) > 0) {
            if (decisions.Difference(present, 1) < 0) return decisions;
            mouse = middle + (mouse - middle) * (reach / present);
            decisions.isPushed = true;
        }
        const auto gapAt = [&](Real degrees) { return std::abs(handleAt(degrees) - mouse); };
        const Real start = gapAt(0);
        Real best = 0;
        for (int round = 0; round < 5; ++round) {
            const Real step = 5.0L / static_cast<Real>(1 << round);
            const Real a = gapAt(best + step), b = gapAt(best - step);
            if (decisions.Difference(a, start) > 0 && decisions.Difference(b, start) > 0) continue;
            const Real way = decisions.Difference(b, a) <= 0 ? -step : step;
            Real total = 0;
            for (Real former = start, next = std::min(a, b); decisions.Difference(next, former) < 0;) {
                total += way;
                former = next;
                next = gapAt(best + total + way);
            }
            best += total;
        }
        rotation = rotation * Quaternion::About(axis, best * kPi / 180);
        return decisions;
    }
};

}  // namespace plane_reference
