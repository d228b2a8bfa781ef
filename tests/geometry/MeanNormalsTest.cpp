// Normals of meshes that come as arrays, on faces whose normals are obvious.
#include "geometry/MeanNormals.h"

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <random>

#include "geometry/FaceNormal.h"
#include "geometry/Mesh.h"

namespace {

void ExpectNormal(const Vertex& vertex, float x, float y, float z) {
    EXPECT_FLOAT_EQ(vertex.nx, x);
    EXPECT_FLOAT_EQ(vertex.ny, y);
    EXPECT_FLOAT_EQ(vertex.nz, z);
}

// The definition, one face after the other.
void ComputeMeanNormalsPlainly(MeshBuffers& buffers) {
    std::vector<std::int32_t> faceCount(buffers.m_vVertices.size(), 0);
    for (Vertex& vertex : buffers.m_vVertices) vertex.nx = vertex.ny = vertex.nz = 0.0f;
    for (const Triangle& triangle : buffers.m_vTriangles) {
        AddFaceNormal(FaceNormalOf(triangle, buffers.m_vVertices), triangle, buffers.m_vVertices);
        for (const auto corner : triangle.v) ++faceCount[static_cast<std::size_t>(corner)];
    }
    for (std::size_t i = 0; i < faceCount.size(); ++i) {
        if (faceCount[i] == 0) continue;
        Vertex& vertex = buffers.m_vVertices[i];
        const auto count = static_cast<float>(faceCount[i]);
        vertex.nx /= count;
        vertex.ny /= count;
        vertex.nz /= count;
    }
}

/// Random bits, except that every NaN is the one that arithmetic produces: which of two different NaNs a sum keeps
/// depends on the compiler.
std::uint32_t BitsOf(float value) { return std::isnan(value) ? 0x7FC00000u : std::bit_cast<std::uint32_t>(value); }

void ExpectBitsOfThePlainWay(MeshBuffers buffers) {
    MeshBuffers plain = buffers;
    ComputeMeanNormals(buffers);
    ComputeMeanNormalsPlainly(plain);
    for (std::size_t i = 0; i < plain.m_vVertices.size(); ++i) {
        const Vertex &a = buffers.m_vVertices[i], &b = plain.m_vVertices[i];
        ASSERT_EQ(BitsOf(a.nx), BitsOf(b.nx)) << "vertex " << i;
        ASSERT_EQ(BitsOf(a.ny), BitsOf(b.ny)) << "vertex " << i;
        ASSERT_EQ(BitsOf(a.nz), BitsOf(b.nz)) << "vertex " << i;
        ASSERT_EQ(std::memcmp(&a.x, &b.x, 12) + std::memcmp(&a.color, &b.color, 8), 0) << "vertex " << i;
    }
}

/// Small meshes around few points, so that most faces share vertices with the faces just before them.
MeshBuffers RandomMesh(std::mt19937& random, std::size_t vertices, std::size_t triangles, bool anyBits) {
    MeshBuffers buffers(false);
    buffers.m_vVertices.resize(vertices);
    buffers.m_vTriangles.resize(triangles);
    std::uniform_real_distribution<float> coordinate(-10, 10);
    for (Vertex& vertex : buffers.m_vVertices) {
        for (float* value : {&vertex.x, &vertex.y, &vertex.z, &vertex.nx})
            *value = anyBits ? std::bit_cast<float>(static_cast<std::uint32_t>(random())) : coordinate(random);
        vertex.color = static_cast<std::uint32_t>(random());
        vertex.gridIndex = static_cast<std::uint32_t>(random());
    }
    for (Triangle& triangle : buffers.m_vTriangles)
        for (auto& corner : triangle.v) corner = static_cast<std::int32_t>(random() % vertices);
    return buffers;
}

}  // namespace

TEST(ComputeMeanNormals, HasTheBitsOfOneFaceAfterTheOther) {
    std::mt19937 random(7);
    for (std::size_t triangles = 0; triangles <= 40; ++triangles)
        for (const std::size_t vertices : {1, 3, 4, 7, 50})
            ExpectBitsOfThePlainWay(RandomMesh(random, vertices, triangles, triangles % 2 == 1));
    ExpectBitsOfThePlainWay(RandomMesh(random, 5'000, 20'001, false));
    ExpectBitsOfThePlainWay(RandomMesh(random, 5'000, 20'003, true));
}

TEST(ComputeMeanNormals, CountsMoreFacesThanAFloatCan) {
    MeshBuffers buffers(false);
    buffers.m_vVertices = {{0, 0, 0}, {1, 0, 0}, {0, 1, 0}};
    buffers.m_vTriangles.assign((1 << 24) / 3 + 2, {{0, 0, 0}});  // each adds 3 to the count of vertex 0
    buffers.m_vTriangles.insert(buffers.m_vTriangles.begin(), 1000, {{0, 1, 2}});
    ExpectBitsOfThePlainWay(buffers);
}

TEST(ComputeMeanNormals, GivesLength07071BetweenPerpendicularFaces) {
    MeshBuffers buffers(false);
    buffers.m_vVertices = {{0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {0, 0, 1}};
    buffers.m_vTriangles = {{{0, 1, 2}}, {{0, 2, 3}}};  // +z and +x
    ComputeMeanNormals(buffers);
    ExpectNormal(buffers.m_vVertices[0], 0.5f, 0, 0.5f);
    ExpectNormal(buffers.m_vVertices[1], 0, 0, 1);
    ExpectNormal(buffers.m_vVertices[2], 0.5f, 0, 0.5f);
    ExpectNormal(buffers.m_vVertices[3], 1, 0, 0);
    EXPECT_NEAR(std::hypot(buffers.m_vVertices[0].nx, buffers.m_vVertices[0].nz), 0.7071, 1e-4);
}

TEST(ComputeMeanNormals, CountsDegenerateFacesAsZero) {
    MeshBuffers buffers(false);
    buffers.m_vVertices = {{0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {2, 0, 0}};
    buffers.m_vTriangles = {{{0, 1, 2}}, {{0, 1, 3}}};  // the second one is collinear
    ComputeMeanNormals(buffers);
    ExpectNormal(buffers.m_vVertices[0], 0, 0, 0.5f);
    ExpectNormal(buffers.m_vVertices[2], 0, 0, 1);
    ExpectNormal(buffers.m_vVertices[3], 0, 0, 0);
}

TEST(ComputeMeanNormals, DoesNotWeightByTheArea) {
    MeshBuffers buffers(false);
    buffers.m_vVertices = {{0, 0, 0}, {100, 0, 0}, {0, 100, 0}, {0, 0, 1}, {0, 1, 0}};
    buffers.m_vTriangles = {{{0, 1, 2}}, {{0, 4, 3}}};
    ComputeMeanNormals(buffers);
    ExpectNormal(buffers.m_vVertices[0], 0.5f, 0, 0.5f);
}

TEST(ComputeMeanNormals, CancelsBetweenOppositeFacesAsUnitNormalsDo) {
    MeshBuffers buffers(false);
    buffers.m_vVertices = {{0, 0, 0}, {1, 0, 0}, {0, 1, 0}};
    buffers.m_vTriangles = {{{0, 1, 2}}, {{0, 2, 1}}};
    Mesh mesh(std::vector<Vertex>(buffers.m_vVertices), std::vector<Triangle>(buffers.m_vTriangles), L"", false);
    ComputeMeanNormals(buffers);
    mesh.ComputeVertexNormals();
    ExpectNormal(buffers.m_vVertices[0], 0, 0, 0);
    ExpectNormal(mesh.m_vVertices[0], 0, 0, 0);
}

TEST(ComputeMeanNormals, ReplacesFormerNormalsEvenWithoutAFace) {
    MeshBuffers buffers(false);
    buffers.m_vVertices = {{0, 0, 0, 1, 2, 3}, {1, 0, 0, 1, 2, 3}, {0, 1, 0, 1, 2, 3}, {0, 0, 9, 1, 2, 3}};
    buffers.m_vTriangles = {{{0, 1, 2}}};
    ComputeMeanNormals(buffers);
    ExpectNormal(buffers.m_vVertices[0], 0, 0, 1);
    ExpectNormal(buffers.m_vVertices[3], 0, 0, 0);
}
