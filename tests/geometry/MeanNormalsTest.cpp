// Normals of meshes that come as arrays, on faces whose normals are plain to see.
#include "geometry/MeanNormals.h"

#include <gtest/gtest.h>

#include <cmath>

#include "geometry/Mesh.h"

namespace {

void ExpectNormal(const Vertex& vertex, float x, float y, float z) {
    EXPECT_FLOAT_EQ(vertex.nx, x);
    EXPECT_FLOAT_EQ(vertex.ny, y);
    EXPECT_FLOAT_EQ(vertex.nz, z);
}

}  // namespace

TEST(ComputeMeanNormals, HaveLength07071BetweenPerpendicularFaces) {
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

TEST(ComputeMeanNormals, CountDegenerateFacesAsZero) {
    MeshBuffers buffers(false);
    buffers.m_vVertices = {{0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {2, 0, 0}};
    buffers.m_vTriangles = {{{0, 1, 2}}, {{0, 1, 3}}};  // the second one is collinear
    ComputeMeanNormals(buffers);
    ExpectNormal(buffers.m_vVertices[0], 0, 0, 0.5f);
    ExpectNormal(buffers.m_vVertices[2], 0, 0, 1);
    ExpectNormal(buffers.m_vVertices[3], 0, 0, 0);
}

TEST(ComputeMeanNormals, AreNotWeightedByTheArea) {
    MeshBuffers buffers(false);
    buffers.m_vVertices = {{0, 0, 0}, {100, 0, 0}, {0, 100, 0}, {0, 0, 1}, {0, 1, 0}};
    buffers.m_vTriangles = {{{0, 1, 2}}, {{0, 4, 3}}};
    ComputeMeanNormals(buffers);
    ExpectNormal(buffers.m_vVertices[0], 0.5f, 0, 0.5f);
}

TEST(ComputeMeanNormals, CancelBetweenOppositeFacesAsUnitNormalsDo) {
    MeshBuffers buffers(false);
    buffers.m_vVertices = {{0, 0, 0}, {1, 0, 0}, {0, 1, 0}};
    buffers.m_vTriangles = {{{0, 1, 2}}, {{0, 2, 1}}};
    Mesh mesh(std::vector<Vertex>(buffers.m_vVertices), std::vector<Triangle>(buffers.m_vTriangles), L"", false);
    ComputeMeanNormals(buffers);
    mesh.ComputeVertexNormals();
    ExpectNormal(buffers.m_vVertices[0], 0, 0, 0);
    ExpectNormal(mesh.m_vVertices[0], 0, 0, 0);
}

TEST(ComputeMeanNormals, ReplaceFormerNormalsAlsoWhereNoFaceIs) {
    MeshBuffers buffers(false);
    buffers.m_vVertices = {{0, 0, 0, 1, 2, 3}, {1, 0, 0, 1, 2, 3}, {0, 1, 0, 1, 2, 3}, {0, 0, 9, 1, 2, 3}};
    buffers.m_vTriangles = {{{0, 1, 2}}};
    ComputeMeanNormals(buffers);
    ExpectNormal(buffers.m_vVertices[0], 0, 0, 1);
    ExpectNormal(buffers.m_vVertices[3], 0, 0, 0);
}
