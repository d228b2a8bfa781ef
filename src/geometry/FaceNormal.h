// The unit normal of one face. Every normal of a mesh is computed from this one, and the vectorised versions
// (GridNormals.h, MeanNormals.cpp) round in the same order, so that all of them agree to the last bit.
#pragma once
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "geometry/Vector3.h"
#include "geometry/Vertex.h"

[[nodiscard]] inline Float3 PositionOf(const Vertex& vertex) { return {vertex.x, vertex.y, vertex.z}; }

/// (p1 - p0) x (p2 - p0) over its length; the plain zero product of a degenerate triangle. Indices must be valid.
[[nodiscard]] inline Float3 FaceNormalOf(const Triangle& triangle, const std::vector<Vertex>& vertices) {
    const Float3 p0 = PositionOf(vertices[static_cast<std::size_t>(triangle.v[0])]);
    const Float3 p1 = PositionOf(vertices[static_cast<std::size_t>(triangle.v[1])]);
    const Float3 p2 = PositionOf(vertices[static_cast<std::size_t>(triangle.v[2])]);
    return Normalized(Cross(p1 - p0, p2 - p0));
}

/// Adds the normal to the normals of the triangle's three corners, in that order.
inline void AddFaceNormal(const Float3& normal, const Triangle& triangle, std::vector<Vertex>& vertices) {
    for (const auto corner : triangle.v) {
        Vertex& vertex = vertices[static_cast<std::size_t>(corner)];
        vertex.nx += normal[0];
        vertex.ny += normal[1];
        vertex.nz += normal[2];
    }
}

/// Calls visit(i) for the triangles first <= i < last in order and prefetches the vertices of later ones: in a mesh
/// whose neighbouring triangles use vertices far apart in memory, cache misses are most of the time. Invalid indices
/// are not followed.
template <typename Visit>
void ForEachTriangle(const std::vector<Triangle>& triangles, const std::vector<Vertex>& vertices, std::size_t first,
                     std::size_t last, const Visit& visit) {
    constexpr std::size_t kAhead = 24;  // triangles; long enough for a load from memory, short enough for the cache
    for (std::size_t i = first; i < last; ++i) {
        const Triangle& upcoming = triangles[std::min(i + kAhead, triangles.size() - 1)];
        for (const auto corner : upcoming.v) {
            const auto index = static_cast<std::size_t>(static_cast<std::uint32_t>(corner));
            if (index < vertices.size()) __builtin_prefetch(&vertices[index]);
        }
        visit(i);
    }
}
