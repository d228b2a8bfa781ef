// Rasterisation at sample places, and the shadow map.
#include "support/ReferenceVisibility.h"

namespace reference {

std::vector<WindowTriangle> ProjectTriangles(const Scene& scene, const View& view, const Window& window) {
    std::vector<WindowTriangle> triangles;
    for (std::size_t o = 0; o < scene.objects.size(); ++o) {
        const Object& object = scene.objects[o];
        if (!object.visible) continue;
        for (std::size_t t = 0; t < object.triangles.size(); ++t) {
            WindowTriangle triangle;
            for (std::size_t i = 0; i < 3; ++i) {
                const auto vertex = static_cast<std::size_t>(object.triangles[t][i]);
                triangle.corners[i] = window.At(view.At(object.positions[vertex]));
            }
            const auto& [a, b, c] = triangle.corners;
            const double area = (b.x - a.x) * (c.y - a.y) - (c.x - a.x) * (b.y - a.y);
            if (area == 0.0) continue;
            triangle.front = area > 0.0;
            triangle.object = static_cast<int>(o);
            triangle.index = static_cast<int>(t);
            triangles.push_back(triangle);
        }
    }
    return triangles;
}

Vec SharesAt(const WindowTriangle& triangle, double x, double y) {
    const auto& [a, b, c] = triangle.corners;
    const double area = (b.x - a.x) * (c.y - a.y) - (c.x - a.x) * (b.y - a.y);
    const double second = ((x - a.x) * (c.y - a.y) - (c.x - a.x) * (y - a.y)) / area;
    const double third = ((b.x - a.x) * (y - a.y) - (x - a.x) * (b.y - a.y)) / area;
    return {1.0 - second - third, second, third};
}

double DistanceFromEdges(const WindowTriangle& triangle, double x, double y) {
    const auto& [a, b, c] = triangle.corners;
    const double area = std::abs((b.x - a.x) * (c.y - a.y) - (c.x - a.x) * (b.y - a.y));
    const Vec shares = SharesAt(triangle, x, y);
    const auto height = [area](const Vec& p, const Vec& q) { return area / std::hypot(q.x - p.x, q.y - p.y); };
    return std::min({shares.x * height(b, c), shares.y * height(c, a), shares.z * height(a, b)});
}

std::vector<Hit> CastAll(const std::vector<WindowTriangle>& triangles, int width, int height, double dx, double dy) {
    std::vector<Hit> hits(static_cast<std::size_t>(width) * static_cast<std::size_t>(height));
    for (std::size_t t = 0; t < triangles.size(); ++t)
        ForEachSample(triangles[t], width, height, dx, dy, [&](int column, int row, double depth) {
            const auto& kept = triangles[t].kept;
            if (kept && Dot(SharesAt(triangles[t], column + dx, row + dy), *kept) < 0.0) return;
            Hit& hit = hits[static_cast<std::size_t>(row) * static_cast<std::size_t>(width) +
                            static_cast<std::size_t>(column)];
            if (depth < hit.depth) {
                if (hit.triangle >= 0) hit.next = hit.depth;
                hit.depth = depth;
                hit.triangle = static_cast<int>(t);
            } else {
                hit.next = std::min(hit.next, depth);
            }
        });
    return hits;
}

ShadowMap::ShadowMap(const Scene& scene) : m_depths(static_cast<std::size_t>(kSide) * kSide, 1.0F) {
    const View view = ShadowView(scene.camera, scene.lighting);
    for (const WindowTriangle& triangle : ProjectTriangles(scene, view, WindowOf(scene.camera, kSide, kSide)))
        ForEachSample(triangle, kSide, kSide, 0.5, 0.5, [this](int column, int row, double depth) {
            float& texel = m_depths[static_cast<std::size_t>(row) * kSide + static_cast<std::size_t>(column)];
            texel = std::min(texel, static_cast<float>(depth));
        });
}

double ShadowMap::DepthAt(const Vec& place, int columnsAside, int rowsAside) const {
    const auto texel = [](double part, int aside) {
        const double cell = std::floor(std::clamp(part, 0.0, 1.0) * kSide) + aside;
        return static_cast<std::size_t>(std::clamp(cell, 0.0, kSide - 1.0));
    };
    return static_cast<double>(m_depths[texel(place.y, rowsAside) * kSide + texel(place.x, columnsAside)]);
}

ShadowMap::Answer ShadowMap::Ask(const Vec& place, double bias) const {
    constexpr double kRounding = 1e-5;  // of depths in single precision
    int lit = 0, dark = 0;
    for (int row = -1; row <= 1; ++row)
        for (int column = -1; column <= 1; ++column) {
            const double depth = DepthAt(place, column, row);
            lit += depth > place.z - bias + kRounding ? 1 : 0;
            dark += depth < place.z - bias - kRounding ? 1 : 0;
        }
    if (lit == 9) return Answer::Lit;
    return dark == 9 ? Answer::InShadow : Answer::Undecided;
}

}  // namespace reference
