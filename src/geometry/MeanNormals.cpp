// Mean normals of meshes that come as arrays, four faces at a time. The sums at a vertex are taken in the order of the
// triangles, so that every bit is that of one face after the other. The unit normals of all other meshes:
// Mesh::ComputeVertexNormals().
#include "geometry/MeanNormals.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "geometry/FaceNormal.h"
#include "geometry/FloatLanes.h"

namespace {

constexpr std::size_t kFour = 4;

/// Four rows as four columns.
KV_LANES void Transpose(Float4 (&rows)[kFour]) {
    const Float4 low01 = __builtin_shufflevector(rows[0], rows[1], 0, 4, 1, 5);
    const Float4 low23 = __builtin_shufflevector(rows[2], rows[3], 0, 4, 1, 5);
    const Float4 high01 = __builtin_shufflevector(rows[0], rows[1], 2, 6, 3, 7);
    const Float4 high23 = __builtin_shufflevector(rows[2], rows[3], 2, 6, 3, 7);
    rows[0] = __builtin_shufflevector(low01, low23, 0, 1, 4, 5);
    rows[1] = __builtin_shufflevector(low01, low23, 2, 3, 6, 7);
    rows[2] = __builtin_shufflevector(high01, high23, 0, 1, 4, 5);
    rows[3] = __builtin_shufflevector(high01, high23, 2, 3, 6, 7);
}

/// The positions of one corner of four triangles.
KV_LANES Vec3x4 CornersOf(const Triangle* triangles, int corner, const std::vector<Vertex>& vertices) {
    Float4 rows[kFour];
    for (std::size_t i = 0; i < kFour; ++i)
        rows[i] = LoadLanes<Float4>(&vertices[static_cast<std::size_t>(triangles[i].v[corner])].x);
    Transpose(rows);
    return {rows[0], rows[1], rows[2]};
}

/// Sum of the face normals at a vertex, and how many there were.
using Sum = Float4;
/// From here on a float no longer grows by one.
constexpr float kMaxCounted = 1 << 24;

std::vector<Sum> SumsOf(const std::vector<Triangle>& triangles, const std::vector<Vertex>& vertices) {
    std::vector<Sum> sums(vertices.size(), Sum{});
    const auto add = [&sums](const Triangle& triangle, const Sum& normalAndOne) {
        for (const auto corner : triangle.v) sums[static_cast<std::size_t>(corner)] += normalAndOne;
    };
    std::size_t done = 0;
    for (; done + kFour <= triangles.size(); done += kFour) {
        const Triangle* const four = &triangles[done];
        const Vec3x4 p0 = CornersOf(four, 0, vertices), p1 = CornersOf(four, 1, vertices);
        const Vec3x4 normals = Normalized(Cross(p1 - p0, CornersOf(four, 2, vertices) - p0));
        Float4 rows[kFour] = {normals.x, normals.y, normals.z, SplatFloat4(1.0f)};
        Transpose(rows);
        for (std::size_t i = 0; i < kFour; ++i) add(four[i], rows[i]);
    }
    for (; done < triangles.size(); ++done) {
        const FaceNormal normal = FaceNormalOf(triangles[done], vertices);
        add(triangles[done], Sum{normal.x, normal.y, normal.z, 1.0f});
    }
    return sums;
}

std::int32_t FaceCountOf(std::size_t vertex, const std::vector<Triangle>& triangles) {
    std::int32_t count = 0;
    for (const Triangle& triangle : triangles)
        for (const auto corner : triangle.v) count += static_cast<std::size_t>(corner) == vertex ? 1 : 0;
    return count;
}

}  // namespace

void ComputeMeanNormals(MeshBuffers& buffers) {
    std::vector<Vertex>& vertices = buffers.m_vVertices;
    const std::vector<Sum> sums = SumsOf(buffers.m_vTriangles, vertices);
    for (std::size_t i = 0; i < sums.size(); ++i) {
        float count = std::max(sums[i][3], 1.0f);  // without a face the normal is zero
        if (count == kMaxCounted) count = static_cast<float>(FaceCountOf(i, buffers.m_vTriangles));
        const Sum mean = sums[i] / SplatFloat4(count);
        vertices[i].nx = mean[0];
        vertices[i].ny = mean[1];
        vertices[i].nz = mean[2];
    }
}
