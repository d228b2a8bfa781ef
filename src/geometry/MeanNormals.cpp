// The mean normals of meshes that come as arrays. The unit normals of all other meshes: Mesh::ComputeVertexNormals().
#include "geometry/MeanNormals.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "geometry/FaceNormalSums.h"

namespace {

/// At 2^24 a float no longer grows by adding one: such a count must be made again in integers.
constexpr float kMaxCounted = 1 << 24;

/// Linear in the triangles: only for a vertex whose float count has reached its end.
std::int32_t FaceCountOf(std::size_t vertex, const std::vector<Triangle>& triangles) {
    std::int32_t count = 0;
    for (const Triangle& triangle : triangles)
        for (const auto corner : triangle.v) count += static_cast<std::size_t>(corner) == vertex ? 1 : 0;
    return count;
}

}  // namespace

void ComputeMeanNormals(MeshBuffers& buffers, unsigned threads) {
    std::vector<Vertex>& vertices = buffers.m_vVertices;
    const auto sums = SumFaceNormals(buffers.m_vTriangles, vertices, threads);
    ForEachVertexRange(vertices.size(), threads, [&](std::size_t first, std::size_t last) {
        for (std::size_t i = first; i < last; ++i) {
            float count = std::max(sums[i][3], 1.0f);  // not zero: without a face the normal is zero
            if (count == kMaxCounted) count = static_cast<float>(FaceCountOf(i, buffers.m_vTriangles));
            const FaceNormalSum mean = sums[i] / SplatFloat4(count);
            vertices[i].nx = mean[0];
            vertices[i].ny = mean[1];
            vertices[i].nz = mean[2];
        }
    });
}
