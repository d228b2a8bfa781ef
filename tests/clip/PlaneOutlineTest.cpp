// Points on the plane's outline, by hand and by a reference, and which handle a picked number means.
#include <gtest/gtest.h>

#include <cmath>
#include <numbers>

#include "clip/Plane.h"
#include "clip/PlaneReference.h"

namespace {

constexpr double kDegree = std::numbers::pi / 180;

struct OutlineCase {
    const char* name;
    double degrees;
    double x, y;
};
void PrintTo(const OutlineCase& row, std::ostream* out) { *out << row.name; }

// The square has its corners at (1, -1), (1, 1), (-1, 1), (-1, -1). Between two corners a point moves by the share of
// the angle: 90 degrees for an edge of length 2.
const OutlineCase kOutlineCases[] = {
    {"FirstSphere", 0, 0, -1},
    {"SecondSphere", -90, -1, 0},
    {"FirstCorner", 45, 1, -1},
    {"MiddleOfTheFirstEdge", 90, 1, 0},
    {"SecondCorner", 135, 1, 1},
    {"OppositeToTheFirstSphere", 180, 0, 1},
    {"ThirdCorner", -135, -1, 1},
    {"LastCorner", -45, -1, -1},
    {"TwoThirdsOfTheWayToTheFirstCorner", 30, 2.0 / 3, -1},
    {"ATenthOfAnEdgeAfterTheFirstCorner", 54, 1, -0.8},
    {"OneTurnOn", 360, 0, -1},
    {"SeveralTurnsBack", -90 - 1080, -1, 0},
};
class PlaneOutline : public testing::TestWithParam<OutlineCase> {};

TEST_P(PlaneOutline, HasThePointAtAnAngle) {
    Plane plane;
    plane.m_dRadius = std::numbers::sqrt2;
    const Double3 point = plane.OutlinePoint(GetParam().degrees * kDegree);
    EXPECT_NEAR(point[0], GetParam().x, 1e-12);
    EXPECT_NEAR(point[1], GetParam().y, 1e-12);
    EXPECT_EQ(point[2], 0.0);
}
INSTANTIATE_TEST_SUITE_P(Square, PlaneOutline, testing::ValuesIn(kOutlineCases),
                         [](const auto& row) { return row.param.name; });

TEST(PlaneOutlineShape, UsesTheStartAngleTwice) {
    Plane plane;
    plane.m_dRadius = std::numbers::sqrt2;
    plane.m_dStartAngle = 0;  // corners on the axes; the point at 0 is the first corner
    EXPECT_NEAR(plane.OutlinePoint(0)[0], std::numbers::sqrt2, 1e-12);
    EXPECT_NEAR(plane.OutlinePoint(0)[1], 0, 1e-12);
    plane.m_dStartAngle = std::numbers::pi / 4;  // corners at (1, 1) and (-1, 1), and half of the edge between them
    EXPECT_NEAR(plane.OutlinePoint(0)[0], 0, 1e-12);
    EXPECT_NEAR(plane.OutlinePoint(0)[1], 1, 1e-12);
}

TEST(PlaneOutlineShape, HasAsManyCornersAsThePolygon) {
    Plane plane;
    plane.m_dRadius = 1;
    plane.m_dStartAngle = 0;
    plane.m_nCorners = 3;
    const Double3 middle = plane.OutlinePoint(60 * kDegree);  // between (1, 0) and (-1 / 2, sqrt 3 / 2)
    EXPECT_NEAR(middle[0], 0.25, 1e-12);
    EXPECT_NEAR(middle[1], std::sqrt(3.0) / 4, 1e-12);
}

TEST(PlaneOutlineShape, ScalesWithTheRadiusAndIgnoresTheFrame) {
    Plane plane;
    plane.SetRadiusFromExtent(5);
    plane.SetCenter({7, 8, 9});
    plane.SetNormal({1, 0, 0});
    EXPECT_NEAR(plane.OutlinePoint(0)[0], 0, 1e-12);
    EXPECT_NEAR(plane.OutlinePoint(0)[1], -5, 1e-12);
}

TEST(PlaneOutlineShape, StaysOnTheOutlineJustBelowAFullTurn) {
    Plane plane;
    plane.m_dRadius = std::numbers::sqrt2;
    plane.m_dStartAngle = -1e-20;  // a negative rest that a full turn rounds to the full turn itself
    const Double3 point = plane.OutlinePoint(0);
    EXPECT_NEAR(point[0], std::numbers::sqrt2, 1e-12);
    EXPECT_NEAR(point[1], 0, 1e-12);
}

// ---- against the reference

/// Rounding of the angle itself, which grows with the number of turns, and of the rest.
void ExpectAsReference(const Plane& plane, double theta) {
    const auto expected =
        plane_reference::OutlineAt(theta, plane.m_dStartAngle, static_cast<int>(plane.m_nCorners), plane.m_dRadius);
    const Double3 point = plane.OutlinePoint(theta);
    const double tolerance = plane.m_dRadius * (1e-12 + 1e-15 * std::abs(theta));
    ASSERT_NEAR(point[0], static_cast<double>(expected.real()), tolerance) << "at " << theta;
    ASSERT_NEAR(point[1], static_cast<double>(expected.imag()), tolerance) << "at " << theta;
    ASSERT_EQ(point[2], 0.0);
}

Plane PolygonOf(std::uint32_t corners, double start) {
    Plane plane;
    plane.m_dRadius = 7;
    plane.m_nCorners = corners;
    plane.m_dStartAngle = start;
    return plane;
}

TEST(PlaneOutlineReference, IsFollowedAtAllAngles) {
    for (const std::uint32_t corners : {3u, 4u, 5u, 12u})
        for (const double start : {-std::numbers::pi / 4, 0.0, 1.0, -3.0, 5.5}) {
            const Plane plane = PolygonOf(corners, start);
            for (int i = -2000; i <= 2000; ++i) ExpectAsReference(plane, i * 0.0137);
        }
}

TEST(PlaneOutlineReference, IsFollowedAtMultiplesOfAQuarterTurnAndBesideThem) {
    for (const std::uint32_t corners : {3u, 4u, 7u, 9u})
        for (const double start : {-std::numbers::pi / 4, 0.0, std::numbers::pi / 2, -std::numbers::pi}) {
            const Plane plane = PolygonOf(corners, start);
            for (int quarters = -40; quarters <= 40; ++quarters) {
                const double theta = quarters * (std::numbers::pi / 2);
                ExpectAsReference(plane, theta);
                ExpectAsReference(plane, theta - start);
                for (const double beside : {std::nextafter(theta, 1e9), std::nextafter(theta, -1e9), theta - 1e-9})
                    ExpectAsReference(plane, beside);
            }
        }
}

TEST(PlaneOutlineReference, IsFollowedAfterManyTurns) {
    const Plane plane = PolygonOf(4, -std::numbers::pi / 4);
    for (const double turns : {1e2, -1e2, 1e4, -12345.0, 1e6, -1e6})
        for (int i = 0; i < 36; ++i) ExpectAsReference(plane, turns * 2 * std::numbers::pi + i * 10 * kDegree);
}

// The sum with the start angle is just below a multiple of the full turn: its rest, or the number of edges in it,
// rounds to a whole turn.
TEST(PlaneOutlineReference, IsFollowedWhereTheRestRoundsToAWholeTurn) {
    for (const std::uint32_t corners : {3u, 4u, 5u, 6u, 7u, 9u, 11u}) {
        for (const double below : {1e-300, 1e-20, 1e-17, 1e-16, 2e-16, 4e-16, 1e-15}) {
            ExpectAsReference(PolygonOf(corners, -below), 0);
            ExpectAsReference(PolygonOf(corners, 0), -below);
        }
        double full = 2 * std::numbers::pi;
        for (int i = 0; i < 8; ++i, full = std::nextafter(full, 0)) ExpectAsReference(PolygonOf(corners, 0), full);
    }
}

TEST(PlaneOutlineReference, ContinuesFromEdgeToEdge) {
    const Plane plane = PolygonOf(4, -std::numbers::pi / 4);
    Double3 last = plane.OutlinePoint(-20);
    for (int i = 1; i <= 40000; ++i) {
        const Double3 next = plane.OutlinePoint(-20 + i * 0.001);
        // A quarter of a turn is one edge, of length 7 times the root of 2.
        const double step = 0.001 * 7 * std::numbers::sqrt2 / (std::numbers::pi / 2);
        ASSERT_LE(std::hypot(next[0] - last[0], next[1] - last[1]), step * (1 + 1e-9)) << i;
        last = next;
    }
}

struct HandleCase {
    const char* name;
    bool arrow, spheres;
    std::uint32_t number;
    std::optional<PlaneHandle> pick;
};
void PrintTo(const HandleCase& row, std::ostream* out) { *out << row.name; }

constexpr PlaneHandle kArrow{0, PlaneHandle::kArrow}, kSphere0{0, PlaneHandle::kSphere},
    kSphere1{1, PlaneHandle::kSphere};
const HandleCase kHandleCases[] = {
    {"ArrowOfAll", true, true, 0, kArrow},
    {"FirstSphereOfAll", true, true, 1, kSphere0},
    {"SecondSphereOfAll", true, true, 2, kSphere1},
    {"AfterAll", true, true, 3, std::nullopt},
    {"ArrowAlone", true, false, 0, kArrow},
    {"AfterTheArrow", true, false, 1, std::nullopt},
    {"FirstOfTheSpheresAlone", false, true, 0, kSphere0},
    {"SecondOfTheSpheresAlone", false, true, 1, kSphere1},
    {"AfterTheSpheres", false, true, 2, std::nullopt},
    {"NothingShown", false, false, 0, std::nullopt},
    {"NearTheEndOfAllNumbers", true, true, 0xFFFFFFFF, std::nullopt},
};
class PlaneHandles : public testing::TestWithParam<HandleCase> {};

TEST_P(PlaneHandles, AreNumberedByWhatIsShown) {
    Plane plane;
    plane.m_bMoveHandleVisible = GetParam().arrow;
    plane.m_bRotateHandlesVisible = GetParam().spheres;
    EXPECT_FALSE(plane.IsPicked());
    plane.OnPicked(GetParam().number);
    EXPECT_EQ(plane.GetPick(), GetParam().pick);
    EXPECT_EQ(plane.IsPicked(), GetParam().pick.has_value());
    plane.ClearPick();
    EXPECT_FALSE(plane.IsPicked());
}
INSTANTIATE_TEST_SUITE_P(Plane, PlaneHandles, testing::ValuesIn(kHandleCases),
                         [](const auto& row) { return row.param.name; });

}  // namespace
