// Lines across triangles and boxes, with hits computed by hand.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <stdexcept>

#include "geometry/Mesh.h"

using testing::ElementsAre;

namespace {

// A right triangle with legs of the given length in the plane at height z, one corner on the z axis.
Mesh TriangleAt(float z, float leg = 2) { return {{{0, 0, z}, {leg, 0, z}, {0, leg, z}}, {{{0, 1, 2}}}, L"", false}; }

struct Hit {
    float distance = 0;
    std::int32_t triangle = 77;
    float point[3] = {77, 77, 77};
};

Hit Intersect(const Mesh& mesh, float ox, float oy, float oz, float dx, float dy, float dz) {
    const float origin[3] = {ox, oy, oz}, direction[3] = {dx, dy, dz};
    Hit hit;
    hit.distance = mesh.IntersectLine(origin, direction, &hit.triangle, hit.point);
    return hit;
}

bool TestBox(const Mesh& mesh, float ox, float oy, float oz, float dx, float dy, float dz) {
    const float origin[3] = {ox, oy, oz}, direction[3] = {dx, dy, dz};
    return mesh.TestLineBox(origin, direction);
}

}  // namespace

TEST(IntersectLine, ReportsDistanceTriangleAndPoint) {
    const Hit hit = Intersect(TriangleAt(5), 0.5f, 0.25f, 1, 0, 0, 1);
    EXPECT_FLOAT_EQ(hit.distance, 4);
    EXPECT_EQ(hit.triangle, 0);
    EXPECT_THAT(hit.point, ElementsAre(0.5f, 0.25f, 5));
}

TEST(IntersectLine, CountsHitsOnBothSidesOfTheOrigin) {
    const Hit hit = Intersect(TriangleAt(5), 0.5f, 0.25f, 7, 0, 0, 1);
    EXPECT_FLOAT_EQ(hit.distance, 2);
    EXPECT_THAT(hit.point, ElementsAre(0.5f, 0.25f, 5));
}

TEST(IntersectLine, MeasuresInWorldUnitsForADirectionOfAnyLength) {
    EXPECT_FLOAT_EQ(Intersect(TriangleAt(5), 0.5f, 0.25f, 1, 0, 0, 20).distance, 4);
    EXPECT_FLOAT_EQ(Intersect(TriangleAt(5), 0.5f, 0.25f, 1, 0, 0, -0.01f).distance, 4);
}

TEST(IntersectLine, DoesNotWriteTheOutputsWhenNothingIsHit) {
    const Hit beside = Intersect(TriangleAt(5), 1.5f, 1.5f, 0, 0, 0, 1);  // in the box, not in the triangle
    EXPECT_EQ(beside.distance, -1);
    EXPECT_EQ(beside.triangle, 77);
    EXPECT_THAT(beside.point, ElementsAre(77, 77, 77));
    EXPECT_EQ(Intersect(TriangleAt(5), 9, 9, 0, 0, 0, 1).distance, -1);
}

TEST(IntersectLine, CountsEdgesAndCornersAsHits) {
    EXPECT_EQ(Intersect(TriangleAt(5), 0, 0, 0, 0, 0, 1).distance, 5);
    EXPECT_EQ(Intersect(TriangleAt(5), 1, 1, 0, 0, 0, 1).distance, 5) << "u + v is 1";
    EXPECT_EQ(Intersect(TriangleAt(5), 2, 0, 0, 0, 0, 1).distance, 5);
    EXPECT_EQ(Intersect(TriangleAt(5), 1.001f, 1, 0, 0, 0, 1).distance, -1);
}

TEST(IntersectLine, ReturnsTheNearestTriangleAndTheFirstInATie) {
    const Mesh mesh(
        {{0, 0, 9}, {2, 0, 9}, {0, 2, 9}, {0, 0, -3}, {2, 0, -3}, {0, 2, -3}, {0, 0, 3}, {2, 0, 3}, {0, 2, 3}},
        {{{0, 1, 2}}, {{3, 4, 5}}, {{6, 7, 8}}}, L"", false);
    const Hit hit = Intersect(mesh, 0.5f, 0.5f, 0, 0, 0, 1);
    EXPECT_EQ(hit.triangle, 1)
        << "the hit 3 before the origin is first in the list, the one 3 after it is not strictly nearer";
    EXPECT_FLOAT_EQ(hit.distance, 3);
    EXPECT_EQ(Intersect(mesh, 0.5f, 0.5f, 0.25f, 0, 0, 1).triangle, 2);
}

TEST(IntersectLine, MissesTrianglesWhoseDeterminantIsTooSmall) {
    // The determinant of a line along z is the square of the leg: the limit 1.0e-5 is at a leg of 0.0031623.
    EXPECT_EQ(Intersect(TriangleAt(5, 0.00316f), 0.001f, 0.001f, 0, 0, 0, 1).distance, -1);
    EXPECT_FLOAT_EQ(Intersect(TriangleAt(5, 0.00317f), 0.001f, 0.001f, 0, 0, 0, 1).distance, 5);
    EXPECT_FLOAT_EQ(Intersect(TriangleAt(5, 0.00316f), 0.001f, 0.001f, 0, 0, 0, 2).distance, 5)
        << "the determinant grows with the direction: a longer one hits";
}

TEST(IntersectLine, MissesTrianglesParallelToTheLine) {
    EXPECT_EQ(Intersect(TriangleAt(5), -1, 0.5f, 5, 1, 0, 0).distance, -1);
}

TEST(IntersectLine, IsExactFarFromTheOrigin) {
    // Two triangles that share the edge x = 4096: single precision would leave a gap or hit both sides.
    const Mesh mesh({{4095, 0, 0}, {4096, 0, 0}, {4096, 3, 0}, {4097, 3, 0}}, {{{0, 1, 2}}, {{1, 3, 2}}}, L"", false);
    const float just = std::nextafter(4096.0f, 4095.0f), beyond = std::nextafter(4096.0f, 4097.0f);
    EXPECT_EQ(Intersect(mesh, just, 1, 8000, 0, 0, -1).triangle, 0);
    EXPECT_EQ(Intersect(mesh, beyond, 1, 8000, 0, 0, -1).triangle, 1);
}

TEST(IntersectLine, ThrowsForATriangleWithAnInvalidIndex) {
    for (const std::int32_t bad : {3, -1}) {
        Mesh mesh({{0, 0, 5}, {2, 0, 5}, {0, 2, 5}}, {{{0, 1, 2}}}, L"", false);
        mesh.m_vTriangles.push_back({{0, 1, bad}});
        try {
            Intersect(mesh, 0.5f, 0.25f, 1, 0, 0, 1);
            FAIL() << "index " << bad << " was accepted";
        } catch (const std::out_of_range& error) {
            EXPECT_STREQ(error.what(), "invalid vector subscript");
        }
        EXPECT_EQ(Intersect(mesh, 50, 50, 1, 0, 0, 1).distance, -1) << "beside the box no triangle is read";
    }
}

TEST(IntersectLine, SkipsTheTrianglesWhenTheLineMissesTheStoredBox) {
    Mesh mesh = TriangleAt(5);
    mesh.SetBoundingBox(10, 11, 10, 11, 4, 6);
    EXPECT_EQ(Intersect(mesh, 0.5f, 0.25f, 1, 0, 0, 1).distance, -1);
}

TEST(TestLineBox, HitsInBothDirectionsOfTheLine) {
    Mesh mesh(L"", false);
    mesh.SetBoundingBox(-1, 1, -2, 2, -3, 3);
    EXPECT_TRUE(TestBox(mesh, 0, 0, -10, 0, 0, 1));
    EXPECT_TRUE(TestBox(mesh, 0, 0, -10, 0, 0, -1));
    EXPECT_TRUE(TestBox(mesh, 0, 0, 0, 1, 1, 1)) << "from inside";
    EXPECT_TRUE(TestBox(mesh, 5, 6, 7, -5, -6, -7));
    EXPECT_FALSE(TestBox(mesh, 1.001f, 0, -10, 0, 0, 1));
    EXPECT_FALSE(TestBox(mesh, 5, 0, 0, 0, 1, 0));
}

TEST(TestLineBox, CountsFacesEdgesAndCornersAsInside) {
    Mesh mesh(L"", false);
    mesh.SetBoundingBox(-1, 1, -2, 2, -3, 3);
    EXPECT_TRUE(TestBox(mesh, 1, 0, -10, 0, 0, 1)) << "along a face";
    EXPECT_TRUE(TestBox(mesh, 1, 2, -10, 0, 0, 1)) << "along an edge";
    EXPECT_TRUE(TestBox(mesh, 0, 1, 5, 1, 1, -2)) << "touches only the corner 1, 2, 3";
    EXPECT_FALSE(TestBox(mesh, 0.01f, 1, 5, 1, 1, -2)) << "just beside the corner";
}

TEST(TestLineBox, SkipsFacesParallelToTheLine) {
    Mesh mesh(L"", false);
    mesh.SetBoundingBox(-1, 1, -1, 1, -1, 1);
    EXPECT_FALSE(TestBox(mesh, -1, 0, 0, 0.9e-6f, 0, 0)) << "no component reaches 1e-6";
    EXPECT_TRUE(TestBox(mesh, -1, 0, 0, 1.1e-6f, 0, 0));
}

TEST(TestLineBox, MissesTheInvertedBoxOfAnEmptyMesh) {
    const Mesh mesh({}, {}, L"", false);
    EXPECT_FALSE(TestBox(mesh, 0, 0, -10, 0, 0, 1));
}
