// The clip plane's frame, its equation and its position, by numbers computed by hand.
#include "clip/Plane.h"

#include <gtest/gtest.h>

#include <cmath>
#include <numbers>

namespace {

using Matrix = std::array<double, 16>;

void ExpectNear(const Double3& actual, const Double3& expected, double tolerance = 1e-12) {
    for (std::size_t i = 0; i < 3; ++i) EXPECT_NEAR(actual[i], expected[i], tolerance) << "component " << i;
}
/// Row by row of the 3 x 3 block.
void ExpectBlock(const Plane& plane, const std::array<double, 9>& rows) {
    for (std::size_t row = 0; row < 3; ++row)
        for (std::size_t column = 0; column < 3; ++column)
            EXPECT_NEAR(plane.m_dMatrix[column * 4 + row], rows[row * 3 + column], 1e-12) << row << ',' << column;
}

TEST(Plane, StartsAtTheOriginWithItsNormalAlongZAndBothHandlesShown) {
    const Plane plane;
    ExpectNear(plane.GetCenter(), {0, 0, 0});
    ExpectNear(plane.GetNormal(), {0, 0, 1});
    ExpectBlock(plane, {1, 0, 0, 0, 1, 0, 0, 0, 1});
    EXPECT_FALSE(plane.m_bHighlighted);
    EXPECT_TRUE(plane.m_bMoveHandleVisible);
    EXPECT_TRUE(plane.m_bRotateHandlesVisible);
    EXPECT_EQ(plane.m_nCorners, 4u);
}

TEST(Plane, MovesItsCentreWithoutRotating) {
    Plane plane;
    plane.SetNormal({1, 0, 0});
    const Matrix before = plane.m_dMatrix;
    plane.SetCenter({4, -5, 6});
    ExpectNear(plane.GetCenter(), {4, -5, 6});
    for (const std::size_t i : {0u, 1u, 2u, 4u, 5u, 6u, 8u, 9u, 10u}) EXPECT_EQ(plane.m_dMatrix[i], before[i]);
    EXPECT_EQ(plane.m_dMatrix[15], 1.0);
}

TEST(Plane, RotatesWithoutMovingItsCentre) {
    Plane plane;
    plane.SetCenter({4, -5, 6});
    plane.SetNormal({0, 3, 4});
    ExpectNear(plane.GetCenter(), {4, -5, 6});
    ExpectNear(plane.GetNormal(), {0, 0.6, 0.8});
}

TEST(Plane, RotatesFromTheZAxisByTheShortestWay) {
    Plane plane;
    plane.SetNormal({1, 0, 0});  // a quarter turn about Y
    ExpectBlock(plane, {0, 0, 1, 0, 1, 0, -1, 0, 0});
    plane.SetNormal({0, 1, 0});  // a quarter turn about -X
    ExpectBlock(plane, {1, 0, 0, 0, 0, 1, 0, -1, 0});
    plane.SetNormal({0, -0.6, 0.8});  // about X
    ExpectBlock(plane, {1, 0, 0, 0, 0.8, -0.6, 0, 0.6, 0.8});
    // about (-1, 1, 0) / sqrt 2 by the angle whose cosine is 1 / 3: c + (1 - c) / 2 = 2 / 3 on the diagonal
    plane.SetNormal({2, 2, 1});
    ExpectBlock(plane, {2.0 / 3, -1.0 / 3, 2.0 / 3, -1.0 / 3, 2.0 / 3, 2.0 / 3, -2.0 / 3, -2.0 / 3, 1.0 / 3});
}

TEST(Plane, IgnoresTheLengthOfTheNormal) {
    Plane unit, twice, tiny;
    unit.SetNormal({0.6, 0, 0.8});
    twice.SetNormal({1.2, 0, 1.6});
    tiny.SetNormal({0.6e-3, 0, 0.8e-3});
    for (std::size_t i = 0; i < 16; ++i) {
        EXPECT_NEAR(twice.m_dMatrix[i], unit.m_dMatrix[i], 1e-12);
        EXPECT_NEAR(tiny.m_dMatrix[i], unit.m_dMatrix[i], 1e-12);
    }
}

TEST(Plane, BecomesAReflectionWhenItsNormalPointsDown) {
    Plane plane;
    plane.SetNormal({0, 0, -1});
    ExpectBlock(plane, {-1, 0, 0, 0, -1, 0, 0, 0, -1});
    ExpectNear(plane.GetNormal(), {0, 0, -1});
}

TEST(Plane, BecomesTheIdentityWithinATrillionthOfTheZAxis) {
    Plane inside, outside;
    inside.SetNormal({0.9e-12, 0, 1});  // distance squared 0.81e-24 is at most 1e-24
    EXPECT_EQ(inside.m_dMatrix, Matrix({1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1}));
    outside.SetNormal({1.0e-6, 0, 1});
    EXPECT_NE(outside.m_dMatrix[8], 0.0);
    EXPECT_NEAR(outside.m_dMatrix[8], 1.0e-6, 1e-9);
}

TEST(Plane, TreatsAZeroNormalAsAQuarterTurnAboutNoAxis) {
    Plane plane;
    plane.SetNormal({0, 0, 0});  // acos 0 about a zero axis: only the cosine remains, on the diagonal
    ExpectBlock(plane, {0, 0, 0, 0, 0, 0, 0, 0, 0});
}

TEST(Plane, LosesATwistWhenItsOwnNormalIsSetAgain) {
    Plane plane;
    plane.m_dMatrix = {0, 1, 0, 0, -1, 0, 0, 0, 0, 0, 1, 0, 1, 2, 3, 1};  // a quarter turn about its normal
    plane.SetNormal(plane.GetNormal());
    ExpectBlock(plane, {1, 0, 0, 0, 1, 0, 0, 0, 1});
    ExpectNear(plane.GetCenter(), {1, 2, 3});
}

TEST(Plane, NormalisesANormalOfAScaledFrame) {
    Plane plane;
    plane.m_dMatrix[8] = 3, plane.m_dMatrix[10] = 4;
    ExpectNear(plane.GetNormal(), {0.6, 0, 0.8});
}

TEST(Plane, HasAnEquationThatIsPositiveOnTheSideOfTheNormal) {
    Plane plane;
    plane.SetCenter({0, 0, 10});
    const std::array<double, 4> flat = plane.GetEquation();
    EXPECT_EQ(flat, (std::array<double, 4>{0, 0, 1, -10}));
    plane.SetNormal({3, 0, 4});
    plane.SetCenter({10, 7, 5});
    const std::array<double, 4> tilted = plane.GetEquation();
    const double expected[] = {0.6, 0, 0.8, -10};
    for (std::size_t i = 0; i < 4; ++i) EXPECT_NEAR(tilted[i], expected[i], 1e-12);
}

TEST(Plane, ProjectsAPointToItsFoot) {
    Plane plane;
    plane.SetCenter({0, 0, 10});
    ExpectNear(plane.ProjectOntoPlane({3, 4, -7}), {3, 4, 10});
    plane.SetNormal({1, 0, 1});
    plane.SetCenter({0, 5, 0});  // the plane x + z = 0
    ExpectNear(plane.ProjectOntoPlane({4, 9, 0}), {2, 9, -2});
    ExpectNear(plane.ProjectOntoPlane({2, 9, -2}), {2, 9, -2});
}

TEST(Plane, SizesItsInscribedCircleToTheExtent) {
    Plane plane;
    plane.SetRadiusFromExtent(10);
    EXPECT_NEAR(plane.m_dRadius, 10 * std::numbers::sqrt2, 1e-12);
    plane.m_nCorners = 6;  // cos 30 degrees
    plane.SetRadiusFromExtent(std::sqrt(3.0));
    EXPECT_NEAR(plane.m_dRadius, 2, 1e-12);
    plane.SetRadiusFromExtent(0);
    EXPECT_EQ(plane.m_dRadius, 0);
}

}  // namespace
