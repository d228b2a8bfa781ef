// Which triangle is seen at which place: the rasterisation of the reference renderer.
#pragma once
#include <algorithm>
#include <cmath>
#include <limits>

#include "support/ReferenceProjection.h"

namespace reference {

struct WindowTriangle {
    std::array<Vec, 3> corners;  ///< x, y upward, depth
    int object = 0, index = 0;
    bool front = true;
    std::optional<Vec> kept;  ///< distances of the corners from a clip plane, negative where it cuts
};

/// The triangles of the visible objects that cover an area.
[[nodiscard]] std::vector<WindowTriangle> ProjectTriangles(const Scene& scene, const View& view, const Window& window);

/// Barycentric coordinates of a place in a triangle.
[[nodiscard]] Vec SharesAt(const WindowTriangle& triangle, double x, double y);

/// Pixels from a place in a triangle to its nearest edge; negative outside.
[[nodiscard]] double DistanceFromEdges(const WindowTriangle& triangle, double x, double y);

/// Calls visit(column, row, depth) for each cell of width x height whose sample, at (dx, dy) in the cell, is inside.
template <class Visit>
void ForEachSample(const WindowTriangle& triangle, int width, int height, double dx, double dy, Visit visit) {
    const auto& [a, b, c] = triangle.corners;
    const double area = (b.x - a.x) * (c.y - a.y) - (c.x - a.x) * (b.y - a.y);
    const double slopeX = ((b.z - a.z) * (c.y - a.y) - (c.z - a.z) * (b.y - a.y)) / area;
    const double slopeY = ((c.z - a.z) * (b.x - a.x) - (b.z - a.z) * (c.x - a.x)) / area;
    const int bottom = std::max(0, static_cast<int>(std::ceil(std::min({a.y, b.y, c.y}) - dy)));
    const int top = std::min(height - 1, static_cast<int>(std::floor(std::max({a.y, b.y, c.y}) - dy)));
    for (int row = bottom; row <= top; ++row) {
        const double y = row + dy;
        double low = dx, high = width - 1 + dx;
        for (int i = 0; i < 3; ++i) {
            const Vec& p = triangle.corners[static_cast<std::size_t>(i)];
            const Vec& q = triangle.corners[static_cast<std::size_t>((i + 1) % 3)];
            const double turn = area > 0.0 ? 1.0 : -1.0;
            // Inside is where rise * x + offset is not negative.
            const double rise = -turn * (q.y - p.y);
            const double offset = turn * ((q.x - p.x) * (y - p.y) + (q.y - p.y) * p.x);
            if (rise > 0.0) low = std::max(low, -offset / rise);
            if (rise < 0.0) high = std::min(high, -offset / rise);
            if (rise == 0.0 && offset < 0.0) high = -1.0;
        }
        const int first = std::max(0, static_cast<int>(std::ceil(low - dx)));
        const int last = std::min(width - 1, static_cast<int>(std::floor(high - dx)));
        for (int column = first; column <= last; ++column)
            visit(column, row, a.z + slopeX * (column + dx - a.x) + slopeY * (y - a.y));
    }
}

/// What is seen at one place, and the depth of what is next after it.
struct Hit {
    int triangle = -1;
    double depth = 1.0;
    double next = std::numeric_limits<double>::max();
};

/// One hit per cell, bottom row first, with the sample at (dx, dy) in the cell.
[[nodiscard]] std::vector<Hit> CastAll(const std::vector<WindowTriangle>& triangles, int width, int height, double dx,
                                       double dy);

/// The depths that the shadow pass leaves in its square map.
class ShadowMap {
public:
    static constexpr int kSide = 2048;

    explicit ShadowMap(const Scene& scene);

    /// The texel under a place between 0 and 1; places outside have the texel at the edge.
    [[nodiscard]] double DepthAt(const Vec& place, int columnsAside = 0, int rowsAside = 0) const;

    enum class Answer { Lit, InShadow, Undecided };
    /// Undecided within one texel of the border of a shadow, where the rounding of a driver decides.
    [[nodiscard]] Answer Ask(const Vec& place, double bias) const;

private:
    std::vector<float> m_depths;
};

}  // namespace reference
