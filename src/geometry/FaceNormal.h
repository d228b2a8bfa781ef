// The unit normal of one face, in the rounding that all normals of meshes share.
#pragma once
#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "geometry/Vertex.h"

struct FaceNormal {
    float x, y, z;
};

/// (p1 - p0) x (p2 - p0) over its length; the plain zero product of a degenerate triangle. Indices must be valid.
[[nodiscard]] inline FaceNormal FaceNormalOf(const Triangle& triangle, const std::vector<Vertex>& vertices) {
    const Vertex& p0 = vertices[static_cast<std::size_t>(triangle.v[0])];
    const Vertex& p1 = vertices[static_cast<std::size_t>(triangle.v[1])];
    const Vertex& p2 = vertices[static_cast<std::size_t>(triangle.v[2])];
    const float ax = p1.x - p0.x, ay = p1.y - p0.y, az = p1.z - p0.z;
    const float bx = p2.x - p0.x, by = p2.y - p0.y, bz = p2.z - p0.z;
    FaceNormal c{ay * bz - az * by, az * bx - ax * bz, ax * by - ay * bx};
    const float length = std::sqrt(c.x * c.x + c.y * c.y + c.z * c.z);
    if (length > 0.0f) c = {c.x / length, c.y / length, c.z / length};
    return c;
}

inline void AddFaceNormal(const FaceNormal& normal, const Triangle& triangle, std::vector<Vertex>& vertices) {
    for (const auto corner : triangle.v) {
        Vertex& vertex = vertices[static_cast<std::size_t>(corner)];
        vertex.nx += normal.x;
        vertex.ny += normal.y;
        vertex.nz += normal.z;
    }
}

/// Walks over the triangles in order and has the vertices of those to come on their way from memory: where neighbours
/// stand far apart, waiting for them is most of the time.
template <typename Visit>
void ForEachTriangle(const std::vector<Triangle>& triangles, const std::vector<Vertex>& vertices, std::size_t first,
                     std::size_t last, const Visit& visit) {
    constexpr std::size_t kAhead = 24;
    for (std::size_t i = first; i < last; ++i) {
        const Triangle& coming = triangles[std::min(i + kAhead, triangles.size() - 1)];
        for (const auto corner : coming.v) {
            const auto index = static_cast<std::size_t>(static_cast<std::uint32_t>(corner));
            if (index < vertices.size()) __builtin_prefetch(&vertices[index]);
        }
        visit(i);
    }
}
