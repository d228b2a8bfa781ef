// Mean normals of meshes that come as arrays, four faces at a time. The sums at a vertex run in the order of the
// triangles, so that the bits are those of one face after the other. The unit normals of all other meshes:
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

/// The positions of one corner of four triangles.
KV_LANES Vec3x4 CornersOf(const Triangle* triangles, int corner, const std::vector<Vertex>& vertices) {
    Float4 rows[kFour];
    for (std::size_t i = 0; i < kFour; ++i)
        rows[i] = LoadLanes<Float4>(&vertices[static_cast<std::size_t>(triangles[i].v[corner])].x);
    Transpose(rows[0], rows[1], rows[2], rows[3]);
    return {rows[0], rows[1], rows[2]};
}

/// Sum of the face normals at a vertex in lanes 0 to 2, and their number in lane 3: one addition per corner.
using Sum = Float4;
/// At 2^24 a float no longer grows by adding one: such a count must be made again in integers.
constexpr float kMaxCounted = 1 << 24;

std::vector<Sum> SumsOf(const std::vector<Triangle>& triangles, const std::vector<Vertex>& vertices) {
    std::vector<Sum> sums(vertices.size(), Sum{});
    const auto add = [&sums](const Triangle& triangle, const Sum& normalAndOne) {
        for (const auto corner : triangle.v) sums[static_cast<std::size_t>(corner)] += normalAndOne;
    };
    // Four faces at a time, added to the vertices in their order.
    std::size_t done = 0;
    for (; done + kFour <= triangles.size(); done += kFour) {
        const Triangle* const four = &triangles[done];
        const Vec3x4 p0 = CornersOf(four, 0, vertices), p1 = CornersOf(four, 1, vertices);
        const Vec3x4 normals = Normalized(Cross(p1 - p0, CornersOf(four, 2, vertices) - p0));
        Float4 rows[kFour] = {normals.x, normals.y, normals.z, SplatFloat4(1.0f)};
        Transpose(rows[0], rows[1], rows[2], rows[3]);
        for (std::size_t i = 0; i < kFour; ++i) add(four[i], rows[i]);
    }
    // The last ones one by one.
    for (; done < triangles.size(); ++done) {
        const Float3 normal = FaceNormalOf(triangles[done], vertices);
        add(triangles[done], Sum{normal[0], normal[1], normal[2], 1.0f});
    }
    return sums;
}

/// Linear in the triangles: only for a vertex whose float count has reached its end.
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
        float count = std::max(sums[i][3], 1.0f);  // not zero: without a face the normal is zero
        if (count == kMaxCounted) count = static_cast<float>(FaceCountOf(i, buffers.m_vTriangles));
        const Sum mean = sums[i] / SplatFloat4(count);
        vertices[i].nx = mean[0];
        vertices[i].ny = mean[1];
        vertices[i].nz = mean[2];
    }
}
