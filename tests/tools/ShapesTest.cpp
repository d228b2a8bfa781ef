// The objects: closed, oriented outwards, of the documented size.
#include "simulate-scans/Shapes.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <numbers>

#include "simulate-scans/Blocks.h"
#include "tools/MeshChecks.h"

namespace simulate {
namespace {

constexpr double kPi = std::numbers::pi;

class EveryShape : public testing::TestWithParam<std::string> {};

TEST_P(EveryShape, IsAClosedSurface) {
    const TriangleMesh mesh = MakeShape(GetParam());
    ASSERT_GT(mesh.TriangleCount(), 0u);
    EXPECT_EQ(UnpairedEdges(mesh), 0);
}

TEST_P(EveryShape, FacesOutwards) { EXPECT_GT(VolumeOf(MakeShape(GetParam())), 10'000.0); }

TEST_P(EveryShape, IsSixtyToAHundredMillimetresLargeAroundTheOrigin) {
    const TriangleMesh mesh = MakeShape(GetParam());
    float largest = 0;
    for (int axis = 0; axis < 3; ++axis) {
        const auto [low, high] = std::minmax_element(mesh.corners.begin(), mesh.corners.end(),
                                                     [&](Vec3 a, Vec3 b) { return a[axis] < b[axis]; });
        largest = std::max(largest, (*high)[axis] - (*low)[axis]);
        EXPECT_NEAR((*high)[axis], -(*low)[axis], 8.0f) << "axis " << axis;
    }
    EXPECT_GE(largest, 60.0f);
    EXPECT_LE(largest, 100.0f);
}

INSTANTIATE_TEST_SUITE_P(Shapes, EveryShape, testing::ValuesIn(ShapeNames()),
                         [](const auto& row) { return row.param; });

TEST(Shapes, AreTheSixNamesOfTheHelpText) {
    EXPECT_THAT(ShapeNames(), testing::ElementsAre("bust", "bracket", "gear", "sphere", "steps", "torus"));
}

TEST(Shapes, AnUnknownNameGivesAnEmptyMesh) { EXPECT_EQ(MakeShape("teapot").TriangleCount(), 0u); }

TEST(Shapes, HaveTheVolumesOfTheFormulas) {
    EXPECT_NEAR(VolumeOf(MakeShape("sphere")), 4.0 / 3 * kPi * 40 * 40 * 40, 100);
    EXPECT_NEAR(VolumeOf(MakeShape("torus")), 2 * kPi * kPi * 32 * 14 * 14, 200);
    // Plates of 72 x 8 x 36 and 8 x 48 x 36 mm, minus the holes, which are polygons of 64 corners.
    const double polygon = 32 * std::sin(2 * kPi / 64);
    EXPECT_NEAR(VolumeOf(MakeShape("bracket")), 72 * 8 * 36 + 8 * 48 * 36 - 8 * polygon * (2 * 9 * 9 + 12 * 12), 1);
    // 15 columns of 16 x 20 mm with 83 layers of 5 mm in total.
    EXPECT_NEAR(VolumeOf(MakeShape("steps")), (15 + 28 + 40) * 5.0 * 16 * 20, 1);
}

TEST(Shapes, CornersOfTheSphereAreOnTheSphere) {
    for (const Vec3& corner : MakeShape("sphere").corners)
        ASSERT_NEAR(Length(corner), kSphereRadius, 1e-5f * kSphereRadius);
}

TEST(MeshOf, ASingleBlockIsABoxOfTwelveTriangles) {
    BlockGrid grid;
    grid.breaks = {{{0, 1}, {0, 2}, {0, 3}}};
    grid.blockAt = [](int, int, int) { return Block{true}; };
    const TriangleMesh mesh = MeshOf(grid);
    EXPECT_EQ(mesh.TriangleCount(), 12u);
    EXPECT_EQ(UnpairedEdges(mesh), 0);
    EXPECT_DOUBLE_EQ(VolumeOf(mesh), 6.0);
}

TEST(MeshOf, AHoleAlongEveryAxisKeepsTheSurfaceClosed) {
    for (int axis = 0; axis < 3; ++axis) {
        BlockGrid grid;
        grid.breaks = {{{0, 2}, {0, 2}, {0, 2}}};
        grid.blockAt = [axis](int, int, int) { return Block{true, axis, 0.5f}; };
        const TriangleMesh mesh = MeshOf(grid);
        EXPECT_EQ(UnpairedEdges(mesh), 0) << axis;
        EXPECT_NEAR(VolumeOf(mesh), 8 - 2 * 0.25 * 32 * std::sin(2 * kPi / 64), 1e-5) << axis;
    }
}

TEST(MeshOf, BlocksThatTouchHaveNoWallBetweenThem) {
    BlockGrid grid;
    grid.breaks = {{{0, 1, 2}, {0, 1}, {0, 1}}};
    grid.blockAt = [](int, int, int) { return Block{true}; };
    EXPECT_EQ(MeshOf(grid).TriangleCount(), 20u);
}

}  // namespace
}  // namespace simulate
