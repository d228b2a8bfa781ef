// Vertex normals on several threads: the bits of one face after the other.
#include "geometry/FaceNormalSums.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <random>
#include <vector>

#include "geometry/FaceNormal.h"
#include "geometry/MeanNormals.h"
#include "geometry/Mesh.h"

namespace {

enum class Order { kStrip, kRandom };

/// @param order  kStrip: triangles use neighbouring vertices; kRandom: any
MeshBuffers MakeMesh(std::size_t vertices, std::size_t triangles, Order order) {
    std::mt19937 random(3);
    std::uniform_real_distribution<float> coordinate(-50, 50);
    MeshBuffers mesh(false);
    mesh.m_vVertices.resize(vertices);
    for (Vertex& v : mesh.m_vVertices) v = {.x = coordinate(random), .y = coordinate(random), .z = coordinate(random)};
    mesh.m_vTriangles.resize(triangles);
    for (std::size_t i = 0; i < triangles; ++i)
        for (std::int32_t& corner : mesh.m_vTriangles[i].v) {
            const std::size_t vertex = order == Order::kRandom ? random() : i * vertices / triangles + random() % 5;
            corner = static_cast<std::int32_t>(vertex % vertices);
        }
    for (std::size_t i = 0; i < triangles; i += 1000) mesh.m_vTriangles[i].v[1] = mesh.m_vTriangles[i].v[0];  // no area
    return mesh;
}

/// One face after the other; lane 3 is the number of faces.
std::vector<Float4> PlainSums(const MeshBuffers& mesh) {
    std::vector<Float4> sums(mesh.m_vVertices.size(), Float4{});
    for (const Triangle& triangle : mesh.m_vTriangles) {
        const Float3 n = FaceNormalOf(triangle, mesh.m_vVertices);
        for (const auto corner : triangle.v) {
            Float4& sum = sums[static_cast<std::size_t>(corner)];
            sum = Float4{sum[0] + n[0], sum[1] + n[1], sum[2] + n[2], sum[3] + 1.0f};
        }
    }
    return sums;
}

bool SameBits(float a, float b) { return std::memcmp(&a, &b, sizeof a) == 0; }

TEST(SumFaceNormals, AddsTheFacesInTheirOrderOnAnyNumberOfThreads) {
    for (const Order order : {Order::kStrip, Order::kRandom}) {
        const MeshBuffers mesh = MakeMesh(90'001, 180'003, order);  // enough for seven threads
        const std::vector<Float4> expected = PlainSums(mesh);
        for (const unsigned threads : {1u, 2u, 3u, 7u}) {
            const auto sums = SumFaceNormals(mesh.m_vTriangles, mesh.m_vVertices, threads);
            EXPECT_EQ(std::memcmp(sums.get(), expected.data(), expected.size() * sizeof(Float4)), 0)
                << threads << " threads";
        }
    }
}

TEST(SumFaceNormals, AddsAnyNumberOfFaces) {
    for (std::size_t triangles = 0; triangles < 70; ++triangles) {
        const MeshBuffers mesh = MakeMesh(11, triangles, Order::kRandom);
        const auto sums = SumFaceNormals(mesh.m_vTriangles, mesh.m_vVertices, 3);
        const std::vector<Float4> expected = PlainSums(mesh);
        EXPECT_EQ(std::memcmp(sums.get(), expected.data(), expected.size() * sizeof(Float4)), 0) << triangles;
    }
}

TEST(SumFaceNormals, GivesTheVertexNormalsOfMeshesOnAnyNumberOfThreads) {
    for (const std::size_t vertices : {std::size_t{7}, std::size_t{210'001}}) {
        MeshBuffers buffers = MakeMesh(vertices, 2 * vertices, Order::kStrip);
        Mesh mesh(std::vector(buffers.m_vVertices), std::vector(buffers.m_vTriangles), L"", false);
        const std::vector<Float4> sums = PlainSums(buffers);
        for (const unsigned threads : {1u, 2u, 3u, 7u}) {
            mesh.ComputeVertexNormals(threads);
            ComputeMeanNormals(buffers, threads);
            std::size_t different = 0;
            for (std::size_t i = 0; i < vertices; ++i) {
                const Float4& sum = sums[i];
                const Vertex &unit = mesh.m_vVertices[i], &mean = buffers.m_vVertices[i];
                const float length = std::sqrt(sum[0] * sum[0] + sum[1] * sum[1] + sum[2] * sum[2]);
                const float divisor = length > 0 ? length : 1.0f, count = std::max(sum[3], 1.0f);
                different += !SameBits(unit.nx, sum[0] / divisor) || !SameBits(unit.ny, sum[1] / divisor) ||
                             !SameBits(unit.nz, sum[2] / divisor) || !SameBits(mean.nx, sum[0] / count) ||
                             !SameBits(mean.ny, sum[1] / count) || !SameBits(mean.nz, sum[2] / count);
            }
            EXPECT_EQ(different, 0u) << vertices << " vertices, " << threads << " threads";
        }
    }
}

}  // namespace
