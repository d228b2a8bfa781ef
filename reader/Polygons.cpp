// Ear clipping in the plane of the polygon, at worst cubic in its corners; a fan above a size at which that would be
// slow.
#include "Polygons.h"

#include <array>
#include <cmath>

namespace {

constexpr std::size_t kMostEarCorners = 256;

struct Point2 {
    double x, y;
};

double Turn(Point2 a, Point2 b, Point2 c) { return (b.x - a.x) * (c.y - a.y) - (b.y - a.y) * (c.x - a.x); }

/// The corners in the two axes in which the polygon is largest, counterclockwise.
std::vector<Point2> Flattened(std::span<const Vertex> vertices, std::span<const std::int32_t> corners) {
    // Newell's normal: right for concave and for slightly bent polygons.
    std::array<double, 3> normal{};
    for (std::size_t i = 0; i < corners.size(); ++i) {
        const Vertex& a = vertices[static_cast<std::size_t>(corners[i])];
        const Vertex& b = vertices[static_cast<std::size_t>(corners[(i + 1) % corners.size()])];
        normal[0] += (double{a.y} - b.y) * (double{a.z} + b.z);
        normal[1] += (double{a.z} - b.z) * (double{a.x} + b.x);
        normal[2] += (double{a.x} - b.x) * (double{a.y} + b.y);
    }
    std::size_t axis = 0;
    for (std::size_t i = 1; i < 3; ++i)
        if (std::abs(normal[i]) > std::abs(normal[axis])) axis = i;
    const double sign = normal[axis] < 0 ? -1 : 1;
    std::vector<Point2> points;
    points.reserve(corners.size());
    for (const std::int32_t corner : corners) {
        const Vertex& v = vertices[static_cast<std::size_t>(corner)];
        const std::array<double, 3> p{v.x, v.y, v.z};
        points.push_back({p[(axis + 1) % 3], sign * p[(axis + 2) % 3]});
    }
    return points;
}

bool IsConvex(const std::vector<Point2>& points) {
    const std::size_t count = points.size();
    for (std::size_t i = 0; i < count; ++i)
        if (Turn(points[i], points[(i + 1) % count], points[(i + 2) % count]) < 0) return false;
    return true;
}

bool IsInside(Point2 point, Point2 a, Point2 b, Point2 c) {
    return Turn(a, b, point) >= 0 && Turn(b, c, point) >= 0 && Turn(c, a, point) >= 0;
}

/// Whether the corner after @p at can be cut off: it turns to the left, and no other corner is in its triangle.
bool IsEar(const std::vector<Point2>& points, const std::vector<std::size_t>& left, std::size_t at) {
    const std::size_t count = left.size();
    const std::array<std::size_t, 3> ear{left[at], left[(at + 1) % count], left[(at + 2) % count]};
    const Point2 a = points[ear[0]], b = points[ear[1]], c = points[ear[2]];
    if (Turn(a, b, c) <= 0) return false;
    const auto isSame = [](Point2 p, Point2 q) { return p.x == q.x && p.y == q.y; };
    for (std::size_t i = 3; i < count; ++i) {
        const Point2 p = points[left[(at + i) % count]];
        // A corner at the same place, as where a hole is joined to the outline, does not lie in the triangle.
        if (!isSame(p, a) && !isSame(p, b) && !isSame(p, c) && IsInside(p, a, b, c)) return false;
    }
    return true;
}

/// @return positions in the polygon, three per triangle
std::vector<std::size_t> CutEars(const std::vector<Point2>& points) {
    std::vector<std::size_t> left(points.size()), picked;
    for (std::size_t i = 0; i < left.size(); ++i) left[i] = i;
    while (left.size() >= 3) {
        const std::size_t count = left.size();
        std::size_t at = 0;
        while (at < count && !IsEar(points, left, at)) ++at;
        if (at == count) at = 0;  // crosses itself or has no area: any corner will do
        picked.insert(picked.end(), {left[at], left[(at + 1) % count], left[(at + 2) % count]});
        left.erase(left.begin() + static_cast<std::ptrdiff_t>((at + 1) % count));
    }
    return picked;
}

std::vector<std::size_t> Fan(std::size_t corners) {
    std::vector<std::size_t> picked;
    for (std::size_t i = 2; i < corners; ++i) picked.insert(picked.end(), {0, i - 1, i});
    return picked;
}

}  // namespace

void AppendPolygon(std::span<const Vertex> vertices, std::span<const std::int32_t> corners,
                   std::vector<Triangle>& triangles, std::vector<std::size_t>* picked) {
    if (corners.size() < 3) return;
    std::vector<std::size_t> positions;
    if (corners.size() == 3 || corners.size() > kMostEarCorners) {
        positions = Fan(corners.size());
    } else {
        const std::vector<Point2> points = Flattened(vertices, corners);
        positions = IsConvex(points) ? Fan(corners.size()) : CutEars(points);
    }
    for (std::size_t i = 0; i + 2 < positions.size(); i += 3)
        triangles.push_back({{corners[positions[i]], corners[positions[i + 1]], corners[positions[i + 2]]}});
    if (picked != nullptr) picked->insert(picked->end(), positions.begin(), positions.end());
}
