// One object: defaults, box, centre, transform, normals, clone. Its intersection with a line: MeshIntersectTest.cpp.
#include "geometry/Mesh.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <limits>
#include <random>

using testing::ElementsAre;

namespace {

bool operator==(const Triangle& a, const Triangle& b) { return std::equal(a.v, a.v + 3, b.v); }

Vertex At(float x, float y, float z, std::uint32_t color = 0) { return {x, y, z, 0, 0, 0, color, 0}; }

void ExpectPosition(const Vertex& vertex, float x, float y, float z) {
    EXPECT_FLOAT_EQ(vertex.x, x);
    EXPECT_FLOAT_EQ(vertex.y, y);
    EXPECT_FLOAT_EQ(vertex.z, z);
}

void ExpectNormal(const Vertex& vertex, float x, float y, float z) {
    EXPECT_NEAR(vertex.nx, x, 1e-6);
    EXPECT_NEAR(vertex.ny, y, 1e-6);
    EXPECT_NEAR(vertex.nz, z, 1e-6);
}

std::vector<Triangle> OneTriangle() { return {{{0, 1, 2}}}; }

}  // namespace

TEST(Mesh, StartsEmptyWithTheDefaultsOfAnObject) {
    const Mesh mesh(L"scan.pcm", true);
    EXPECT_EQ(mesh.m_sName, L"scan.pcm");
    EXPECT_TRUE(mesh.m_bHasVertexColors);
    EXPECT_FALSE(mesh.m_bGrayColors);
    EXPECT_TRUE(mesh.m_bBuffersDirty);
    EXPECT_FALSE(mesh.m_bBlendObjectColor);
    EXPECT_FALSE(mesh.m_optCutView.has_value());
    EXPECT_EQ(mesh.m_iReducedStep, 10);
    EXPECT_EQ(mesh.m_fPointSize, 2.0f);
    EXPECT_EQ(mesh.GetVertexCount(), 0u);
    EXPECT_EQ(mesh.GetTriangleCount(), 0u);
    EXPECT_THAT(mesh.m_fBoundingBox, ElementsAre(-1, 1, -1, 1, -1, 1));
}

TEST(Mesh, MovesItsArraysWithoutACopy) {
    std::vector<Vertex> vertices{At(0, 0, 0), At(1, 0, 0), At(0, 1, 0)};
    std::vector<Triangle> triangles = OneTriangle();
    const Vertex* const vertexStorage = vertices.data();
    const Triangle* const triangleStorage = triangles.data();
    const Mesh mesh(std::move(vertices), std::move(triangles), L"", false);
    EXPECT_EQ(mesh.m_vVertices.data(), vertexStorage);
    EXPECT_EQ(mesh.m_vTriangles.data(), triangleStorage);
}

TEST(Mesh, IsGreyWhenAllVerticesHaveEqualColourBytes) {
    EXPECT_TRUE(Mesh({}, {}, L"", false).m_bGrayColors);
    EXPECT_TRUE(Mesh({At(0, 0, 0, 0x12000000), At(0, 0, 0, 0xFF7F7F7F)}, {}, L"", true).m_bGrayColors);
    for (const std::uint32_t color : {0x7F7F7Eu, 0x7F7E7Fu, 0x7E7F7Fu})
        EXPECT_FALSE(Mesh({At(0, 0, 0, 0), At(0, 0, 0, color)}, {}, L"", true).m_bGrayColors) << color;
}

TEST(Mesh, HasTheBoxOfItsVertices) {
    const Mesh mesh({At(3, -4, 5), At(-2, 7, 6), At(1, 1, -9)}, {}, L"", false);
    EXPECT_THAT(mesh.m_fBoundingBox, ElementsAre(-2, 3, -4, 7, -9, 6));
}

TEST(Mesh, HasTheSameBoxForAnyNumberOfVertices) {
    for (int count = 1; count < 20; ++count)
        for (int extreme = 0; extreme < count; ++extreme) {
            std::vector<Vertex> vertices(static_cast<std::size_t>(count), At(0, 0, 0));
            vertices[static_cast<std::size_t>(extreme)] = At(5, -6, 7);
            const Mesh mesh(std::move(vertices), {}, L"", false);
            if (count > 1) {
                EXPECT_THAT(mesh.m_fBoundingBox, ElementsAre(0, 5, -6, 0, 0, 7)) << count << ", " << extreme;
            }
        }
}

TEST(Mesh, ExcludesPointsThatAreNotNumbersFromItsBox) {
    const Mesh mesh({At(0, 1, 2), At(NAN, 9, NAN), At(3, NAN, 4)}, {}, L"", false);
    EXPECT_THAT(mesh.m_fBoundingBox, ElementsAre(0, 3, 1, 9, 2, 4));
}

struct OddCoordinates {
    const char* name;
    std::vector<Vertex> vertices;
    std::array<float, 6> box;
    std::array<float, 3> center;
    bool hasPosition;
};
void PrintTo(const OddCoordinates& row, std::ostream* out) { *out << row.name; }

constexpr float kInf = std::numeric_limits<float>::infinity();
const std::array<float, 2> kNone{0.99f, -0.99f};  // the sides of the box of a mesh without vertices

const OddCoordinates kOddCoordinates[] = {
    {"NanFirst", {At(NAN, NAN, NAN), At(1, 2, 3), At(3, 4, 5)}, {1, 3, 2, 4, 3, 5}, {2, 3, 4}, true},
    {"InfiniteLast", {At(1, 2, 3), At(3, 4, 5), At(kInf, -kInf, kInf)}, {1, 3, 2, 4, 3, 5}, {2, 3, 4}, true},
    {"EachCoordinateForItself", {At(NAN, 2, 3), At(3, -kInf, 5), At(5, 4, kInf)}, {3, 5, 2, 4, 3, 5}, {4, 3, 4}, true},
    {"OneFiniteCoordinatePerAxis",
     {At(NAN, 2, kInf), At(3, kInf, NAN), At(-kInf, NAN, 7)},
     {3 - 0.01f, 3 + 0.01f, 2 - 0.01f, 2 + 0.01f, 7 - 0.01f, 7 + 0.01f},
     {3, 2, 7},
     true},
    {"NoneOnOneAxis", {At(1, kInf, 3), At(3, NAN, 5)}, {1, 3, kNone[0], kNone[1], 3, 5}, {2, 0, 4}, false},
    {"NoneAtAll",
     {At(NAN, kInf, -kInf), At(kInf, NAN, NAN)},
     {kNone[0], kNone[1], kNone[0], kNone[1], kNone[0], kNone[1]},
     {0, 0, 0},
     false},
};
class MeshWithOddCoordinates : public testing::TestWithParam<OddCoordinates> {};

TEST_P(MeshWithOddCoordinates, HasBoxAndCentreOfTheFiniteOnes) {
    Mesh mesh(std::vector<Vertex>(GetParam().vertices), {}, L"", false);
    EXPECT_THAT(mesh.m_fBoundingBox, testing::ElementsAreArray(GetParam().box));
    EXPECT_EQ(mesh.HasPosition(), GetParam().hasPosition);
    float center[3];
    mesh.GetCenter(center);
    EXPECT_THAT(center, testing::ElementsAreArray(GetParam().center));
}

TEST_P(MeshWithOddCoordinates, IsNotHitWhereItHasNoPosition) {
    std::vector<Vertex> vertices = GetParam().vertices;
    vertices.resize(3, vertices.front());
    const Mesh mesh(std::move(vertices), OneTriangle(), L"", false);
    const float origin[3] = {0, 0, 20}, direction[3] = {0, 0, 1};
    std::int32_t triangle = -1;
    float hit[3] = {};
    EXPECT_EQ(mesh.IntersectLine(origin, direction, &triangle, hit), -1.0f);
    EXPECT_EQ(triangle, -1);
}
INSTANTIATE_TEST_SUITE_P(Mesh, MeshWithOddCoordinates, testing::ValuesIn(kOddCoordinates),
                         [](const auto& row) { return row.param.name; });

TEST(Mesh, IsHitBesideAnInfiniteVertex) {
    Mesh mesh({At(0, 0, 5), At(2, 0, 5), At(0, 2, 5), At(kInf, 0, 5)}, {{{0, 1, 2}}, {{1, 2, 3}}}, L"", false);
    const float origin[3] = {0.5f, 0.5f, 20}, direction[3] = {0, 0, 1};
    std::int32_t triangle = -1;
    float hit[3] = {};
    EXPECT_EQ(mesh.IntersectLine(origin, direction, &triangle, hit), 15.0f);
    EXPECT_EQ(triangle, 0);
    EXPECT_THAT(hit, ElementsAre(0.5f, 0.5f, 5));
}

TEST(Mesh, ATransformThatOverflowsLeavesAFiniteBox) {
    Mesh mesh({At(0, 0, 5), At(3e38f, 0, 5), At(0, 3e38f, 6)}, OneTriangle(), L"", false);
    CACADQTrafo trafo;
    trafo.m_dTranslation[0] = 3e38;
    mesh.ApplyTrafo(trafo);
    EXPECT_EQ(mesh.m_vVertices[1].x, kInf);
    EXPECT_THAT(mesh.m_fBoundingBox, ElementsAre(3e38f, 3e38f + 0.01f, 0, 3e38f, 5, 6));
    EXPECT_TRUE(mesh.HasPosition());
}

TEST(Mesh, WithoutVerticesHasAnInvertedBox) {
    Mesh mesh(L"", false);
    mesh.ComputeBoundingBox();
    EXPECT_THAT(mesh.m_fBoundingBox, ElementsAre(0.99f, -0.99f, 0.99f, -0.99f, 0.99f, -0.99f));
}

TEST(Mesh, AFlatMeshHasABoxWithSomeThickness) {
    const Mesh mesh({At(0, 0, 5), At(1, 0, 5), At(0, 1, 5)}, OneTriangle(), L"", false);
    EXPECT_THAT(mesh.m_fBoundingBox, ElementsAre(0, 1, 0, 1, 4.99f, 5.01f));
}

TEST(Mesh, HasItsCentreAtTheMeanOfAllVertices) {
    Mesh mesh({At(0, 0, 3), At(2, 0, 3), At(1, 6, 0)}, {}, L"", false);
    float center[3];
    mesh.GetCenter(center);
    EXPECT_THAT(center, ElementsAre(1, 2, 2));
    EXPECT_TRUE(mesh.m_bCenterValid);
}

TEST(Mesh, SumsItsCentreInSinglePrecisionInVertexOrder) {
    // 16777216 + 1 is 16777216 in single precision, twice; in the opposite order it would be 16777218.
    Mesh mesh({At(16777216, 1, 0), At(1, 1, 0), At(1, 16777216, 0)}, {}, L"", false);
    mesh.ComputeCenter();
    EXPECT_EQ(mesh.m_fCenter[0], 16777216.0f / 3.0f);
    EXPECT_EQ(mesh.m_fCenter[1], 16777218.0f / 3.0f);
}

TEST(Mesh, WithoutVerticesKeepsItsFormerCentre) {
    Mesh mesh(L"", false);
    mesh.m_fCenter[0] = 4;
    mesh.ComputeCenter();
    float center[3];
    mesh.GetCenter(center);
    EXPECT_THAT(center, ElementsAre(4, 0, 0));
}

TEST(Mesh, AppliesATransformToPositionsAndNormals) {
    Mesh mesh({{1, 2, 3, 0, 2, 0}, {4, 5, 6, 1, 0, 0}}, {}, L"", false);
    mesh.m_bBuffersDirty = false;
    mesh.m_bCenterValid = true;
    CACADQTrafo quarterAboutZ;
    quarterAboutZ.Set(0, 1, 0, -1, 0, 0, 0, 0, 1, 10, 20, 30);  // x, y to -y, x
    mesh.ApplyTrafo(quarterAboutZ);
    ExpectPosition(mesh.m_vVertices[0], 8, 21, 33);
    ExpectPosition(mesh.m_vVertices[1], 5, 24, 36);
    ExpectNormal(mesh.m_vVertices[0], -2, 0, 0);
    ExpectNormal(mesh.m_vVertices[1], 0, 1, 0);
    EXPECT_TRUE(mesh.m_bBuffersDirty);
    EXPECT_FALSE(mesh.m_bCenterValid);
    EXPECT_NEAR(mesh.m_fBoundingBox[0], 5, 1e-5);
    EXPECT_NEAR(mesh.m_fBoundingBox[5], 36, 1e-5);
}

TEST(Mesh, RevertsATransformWithoutMarkingTheBuffersDirty) {
    Mesh mesh({{8, 21, 33, -2, 0, 0}, {5, 24, 36, 0, 1, 0}}, {}, L"", false);
    mesh.m_bBuffersDirty = false;
    mesh.m_bCenterValid = true;
    CACADQTrafo quarterAboutZ;
    quarterAboutZ.Set(0, 1, 0, -1, 0, 0, 0, 0, 1, 10, 20, 30);
    mesh.RevertTrafo(quarterAboutZ);
    ExpectPosition(mesh.m_vVertices[0], 1, 2, 3);
    ExpectPosition(mesh.m_vVertices[1], 4, 5, 6);
    ExpectNormal(mesh.m_vVertices[0], 0, 2, 0);
    ExpectNormal(mesh.m_vVertices[1], 1, 0, 0);
    EXPECT_FALSE(mesh.m_bBuffersDirty);
    EXPECT_FALSE(mesh.m_bCenterValid);
    EXPECT_NEAR(mesh.m_fBoundingBox[0], 1, 1e-5);
}

TEST(Mesh, RotatesInDoubleAndAddsTheTranslationInFloat) {
    // The rotated position rounds to 0.1f before the translation, which rounds to 16777216, is added.
    Mesh mesh({At(0.1f, 0, 0)}, {}, L"", false);
    CACADQTrafo shift;
    shift.Set(1, 0, 0, 0, 1, 0, 0, 0, 1, 16777217.0, 0.25, 0);
    mesh.ApplyTrafo(shift);
    EXPECT_EQ(mesh.m_vVertices[0].x, 16777216.0f);
    EXPECT_EQ(mesh.m_vVertices[0].y, 0.25f);
}

TEST(Mesh, RevertsTheTranslationInFloatBeforeTheRotation) {
    // The translation rounds to 16777216 first; in double precision the difference would be 1.
    Mesh mesh({At(16777218, 0, 0)}, {}, L"", false);
    CACADQTrafo shift;
    shift.Set(1, 0, 0, 0, 1, 0, 0, 0, 1, 16777217.0, 0, 0);
    mesh.RevertTrafo(shift);
    EXPECT_EQ(mesh.m_vVertices[0].x, 2.0f);
}

TEST(Mesh, NormalisesTheSumOfUnitFaceNormals) {
    // +z twice as large in area as +x, and both count the same.
    Mesh mesh({At(0, 0, 0), At(2, 0, 0), At(0, 1, 0), At(0, 0, 1)}, {{{0, 1, 2}}, {{0, 2, 3}}}, L"", false);
    mesh.ComputeVertexNormals();
    const auto half = static_cast<float>(std::sqrt(0.5));
    ExpectNormal(mesh.m_vVertices[0], half, 0, half);
    ExpectNormal(mesh.m_vVertices[1], 0, 0, 1);
    ExpectNormal(mesh.m_vVertices[3], 1, 0, 0);
}

TEST(Mesh, VerticesOfOnlyCollinearTrianglesHaveAZeroNormal) {
    Mesh mesh({{0, 0, 0, 9, 9, 9}, {1, 0, 0, 9, 9, 9}, {2, 0, 0, 9, 9, 9}, {0, 1, 0, 9, 9, 9}},
              {{{0, 1, 2}}, {{0, 1, 3}}}, L"", false);
    mesh.ComputeVertexNormals();
    ExpectNormal(mesh.m_vVertices[0], 0, 0, 1);
    ExpectNormal(mesh.m_vVertices[2], 0, 0, 0);
}

TEST(Mesh, VerticesBetweenOppositeFacesHaveAZeroNormal) {
    Mesh mesh({{0, 0, 0, 9, 9, 9}, {1, 0, 0, 9, 9, 9}, {0, 1, 0, 9, 9, 9}, {0, 0, 5, 9, 9, 9}},
              {{{0, 1, 2}}, {{1, 0, 2}}}, L"", false);
    mesh.ComputeVertexNormals();
    for (const Vertex& vertex : mesh.m_vVertices) ExpectNormal(vertex, 0, 0, 0);
}

TEST(Mesh, ReturnsTheUnitNormalOfATriangle) {
    const Mesh mesh({At(1, 1, 1), At(1, 4, 1), At(1, 1, 6), At(1, 7, 1)}, {{{0, 1, 2}}, {{0, 1, 3}}}, L"", false);
    float x, y, z;
    mesh.GetTriangleNormal(0, &x, &y, &z);
    EXPECT_EQ(x, 1);
    EXPECT_EQ(y, 0);
    EXPECT_EQ(z, 0);
    mesh.GetTriangleNormal(1, &x, &y, &z);
    EXPECT_EQ(x, 0) << "collinear";
    EXPECT_EQ(y, 0);
    EXPECT_EQ(z, 0);
}

TEST(Mesh, ReleasesSpareCapacity) {
    Mesh mesh({At(0, 0, 0), At(1, 0, 0), At(0, 1, 0)}, OneTriangle(), L"", false);
    mesh.m_vVertices.reserve(1000);
    mesh.m_vTriangles.reserve(1000);
    mesh.ShrinkToFit();
    EXPECT_EQ(mesh.m_vVertices.capacity(), 3u);
    EXPECT_EQ(mesh.m_vTriangles.capacity(), 1u);
}

TEST(Mesh, MarksItsBuffersDirtyOnlyWhenTheBlendChanges) {
    Mesh mesh(L"", false);
    mesh.m_bBuffersDirty = false;
    mesh.SetBlendColors(false);
    EXPECT_FALSE(mesh.m_bBuffersDirty);
    mesh.SetBlendColors(true);
    EXPECT_TRUE(mesh.m_bBuffersDirty);
    EXPECT_TRUE(mesh.m_bBlendObjectColor);
    mesh.m_bBuffersDirty = false;
    mesh.SetBlendColors(true);
    EXPECT_FALSE(mesh.m_bBuffersDirty);
    mesh.MarkBuffersDirty();
    EXPECT_TRUE(mesh.m_bBuffersDirty);
}

class MeshClone : public testing::Test {
protected:
    // Four triangles on six vertices; vertex 5 is used by the last triangle only.
    Mesh m_mesh{{At(0, 0, 0), At(1, 0, 0), At(2, 0, 0), At(0, 3, 0), At(1, 1, 0), At(9, 9, 9)},
                {{{4, 3, 0}}, {{0, 1, 4}}, {{1, 2, 4}}, {{2, 5, 4}}},
                L"scan.pcm",
                true};
};

TEST_F(MeshClone, KeepsTheVerticesInTheOrderOfTheirFirstUse) {
    const std::uint32_t removeVertex2[] = {1u << 2};
    const auto clone = m_mesh.CloneWithoutVertices(removeVertex2);
    ASSERT_EQ(clone->m_vTriangles.size(), 2u);
    EXPECT_TRUE(clone->m_vTriangles[0] == (Triangle{{0, 1, 2}}));
    EXPECT_TRUE(clone->m_vTriangles[1] == (Triangle{{2, 3, 0}}));
    ASSERT_EQ(clone->m_vVertices.size(), 4u) << "vertex 5 was used by no other triangle";
    ExpectPosition(clone->m_vVertices[0], 1, 1, 0);
    ExpectPosition(clone->m_vVertices[1], 0, 3, 0);
    ExpectPosition(clone->m_vVertices[2], 0, 0, 0);
    ExpectPosition(clone->m_vVertices[3], 1, 0, 0);
    EXPECT_EQ(clone->m_vVertices.capacity(), 4u);
    EXPECT_THAT(clone->m_fBoundingBox, ElementsAre(0, 1, 0, 3, -0.01f, 0.01f));
}

TEST_F(MeshClone, CopiesTheDescriptionOfTheObjectButNotItsCuts) {
    m_mesh.m_Trafo.Set(0, 1, 0, -1, 0, 0, 0, 0, 1, 10, 20, 30);
    m_mesh.m_fColor[0] = 0.5f;  // 127.5 becomes 127
    m_mesh.m_pTexture = std::make_shared<Mesh::Texture>(0, nullptr, std::vector<std::uint8_t>{1});
    m_mesh.m_vpCutMasks.emplace_back();
    m_mesh.m_bBuffersDirty = false;
    const std::uint32_t none[] = {0};
    const auto clone = m_mesh.CloneWithoutVertices(none);
    EXPECT_EQ(clone->m_sName, L"scan.pcm");
    EXPECT_TRUE(clone->m_bHasVertexColors);
    EXPECT_TRUE(clone->m_bGrayColors);
    EXPECT_EQ(clone->m_pTexture, m_mesh.m_pTexture) << "one texture for both";
    EXPECT_NEAR(clone->m_Trafo.m_dRotation[1], 1, 1e-15);
    EXPECT_EQ(clone->m_Trafo.m_dTranslation[2], 30);
    EXPECT_FLOAT_EQ(clone->m_fColor[0], 127.0f / 255.0f);
    EXPECT_TRUE(clone->m_bBuffersDirty);
    EXPECT_TRUE(clone->m_vpCutMasks.empty());
    EXPECT_EQ(clone->GetTriangleCount(), 4u);
    EXPECT_EQ(clone->GetVertexCount(), 6u);
}

TEST_F(MeshClone, CopiesTheTextureCoordinatesOfTheKeptTriangles) {
    for (int i = 0; i < 12; ++i) m_mesh.m_vTexCoords.push_back({static_cast<float>(i), static_cast<float>(-i)});
    const std::uint32_t removeVertex3[] = {1u << 3};
    const auto clone = m_mesh.CloneWithoutVertices(removeVertex3);
    ASSERT_EQ(clone->m_vTexCoords.size(), 9u);
    for (int i = 0; i < 9; ++i) {
        EXPECT_EQ(clone->m_vTexCoords[static_cast<std::size_t>(i)].u, static_cast<float>(i + 3));
        EXPECT_EQ(clone->m_vTexCoords[static_cast<std::size_t>(i)].v, static_cast<float>(-i - 3));
    }
}

TEST_F(MeshClone, ReadsTheBitsOfEveryWord) {
    std::vector<Vertex> vertices(70, At(0, 0, 0));
    Mesh mesh(std::move(vertices), {{{0, 1, 69}}, {{0, 1, 37}}, {{0, 1, 5}}}, L"", false);
    const std::uint32_t remove69[] = {0, 0, 1u << 5};
    EXPECT_EQ(mesh.CloneWithoutVertices(remove69)->GetTriangleCount(), 2u);
    const std::uint32_t remove37[] = {0, 1u << 5, 0};
    const auto clone = mesh.CloneWithoutVertices(remove37);
    EXPECT_EQ(clone->GetTriangleCount(), 2u);
    EXPECT_EQ(clone->GetVertexCount(), 4u);
}

TEST_F(MeshClone, IsEmptyWithTheDefaultBoxWhenAllVerticesAreRemoved) {
    const std::uint32_t all[] = {0xFFFFFFFF};
    const auto clone = m_mesh.CloneWithoutVertices(all);
    EXPECT_EQ(clone->GetVertexCount(), 0u);
    EXPECT_EQ(clone->GetTriangleCount(), 0u);
    EXPECT_THAT(clone->m_fBoundingBox, ElementsAre(-1, 1, -1, 1, -1, 1));
}

TEST(ComputeVertexNormals, SumsScatteredTrianglesInTriangleOrder) {
    std::mt19937 random(1);
    std::uniform_real_distribution<float> coordinate(-1, 1);
    std::uniform_int_distribution<std::int32_t> pick(0, 999);
    std::vector<Vertex> vertices(1000);
    for (Vertex& v : vertices) v.x = coordinate(random), v.y = coordinate(random), v.z = coordinate(random);
    std::vector<Triangle> triangles(5000);
    for (Triangle& t : triangles) t = {{pick(random), pick(random), pick(random)}};
    std::vector<Vertex> plain = vertices;
    for (const Triangle& t : triangles) {
        const Vertex &a = vertices[static_cast<std::size_t>(t.v[0])], &b = vertices[static_cast<std::size_t>(t.v[1])],
                     &c = vertices[static_cast<std::size_t>(t.v[2])];
        const float ux = b.x - a.x, uy = b.y - a.y, uz = b.z - a.z, vx = c.x - a.x, vy = c.y - a.y, vz = c.z - a.z;
        float x = uy * vz - uz * vy, y = uz * vx - ux * vz, z = ux * vy - uy * vx;
        const float length = std::sqrt(x * x + y * y + z * z);
        if (length > 0) x /= length, y /= length, z /= length;
        for (const std::int32_t corner : t.v) {
            Vertex& v = plain[static_cast<std::size_t>(corner)];
            v.nx += x, v.ny += y, v.nz += z;
        }
    }
    for (Vertex& v : plain) {
        const float length = std::sqrt(v.nx * v.nx + v.ny * v.ny + v.nz * v.nz);
        if (length > 0) v.nx /= length, v.ny /= length, v.nz /= length;
    }
    Mesh mesh(std::move(vertices), std::move(triangles), L"", false);
    mesh.ComputeVertexNormals();
    EXPECT_EQ(std::memcmp(mesh.m_vVertices.data(), plain.data(), plain.size() * sizeof(Vertex)), 0);
}
