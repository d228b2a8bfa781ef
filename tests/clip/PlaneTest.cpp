// The clip plane's frame, its equation and its position, by numbers computed by hand.
#include "clip/Plane.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <numbers>
#include <vector>

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

// ---- the rotation from the Z axis, by another way

/// 3 x 3, row by row.
using Block = std::array<std::array<long double, 3>, 3>;

/// The rotation that takes Z to the unit vector of @p n by the shortest way: the product of two half turns, first about
/// Z, then about Z + n. No angle, and no axis from a vector product.
Block FromZByHalfTurns(const Double3& n) {
    const long double x = n[0], y = n[1], z = n[2], length = std::sqrt(x * x + y * y + z * z);
    const std::array<long double, 3> unit{x / length, y / length, z / length};
    // About the sum of both: twice its dyad over its square, less 1. Near -Z the sum is small: 1 + z by x and y there.
    const long double across = unit[0] * unit[0] + unit[1] * unit[1];
    const long double rest = unit[2] < 0 ? across / (1 - unit[2]) : 1 + unit[2];  // 1 + z
    const std::array<long double, 3> sum{unit[0], unit[1], rest};
    Block block{};
    for (std::size_t i = 0; i < 3; ++i)
        for (std::size_t j = 0; j < 3; ++j) {
            // The half turn about the sum takes Z to n. The one about Z before it changes the sign of columns 0 and 1.
            const long double halfTurn = sum[i] * sum[j] / rest - (i == j ? 1 : 0);  // |sum|^2 = 2 (1 + z)
            block[i][j] = j == 2 ? halfTurn : -halfTurn;
        }
    return block;
}

/// What the arc cosine leaves of an angle: a rounding of its argument changes it by that over its sine. Within 3e-8 of
/// either pole the angle is lost.
double AngleRounding(double sine) { return std::min(3e-8, 1e-15 + 5e-16 / sine); }

TEST(Plane, RotatesFromTheZAxisAsTwoHalfTurnsDo) {
    constexpr double kPi = std::numbers::pi;
    std::vector<double> fromZ;
    for (double angle = 1e-11; angle < 0.1; angle *= 1.7) fromZ.push_back(angle);
    for (int degrees = 6; degrees <= 90; degrees += 6) fromZ.push_back(degrees * kPi / 180);
    int compared = 0;
    for (const double theta : fromZ)
        for (const bool down : {false, true})
            for (int step = 0; step < 24; ++step)
                for (const double length : {1.0, 1e-4, 3e10}) {
                    const double phi = (step + 0.5) * kPi / 12, up = down ? -1 : 1;
                    const Double3 n{length * std::sin(theta) * std::cos(phi), length * std::sin(theta) * std::sin(phi),
                                    up * length * std::cos(theta)};
                    Plane plane;
                    plane.SetCenter({1, 2, 3});
                    plane.SetNormal(n);
                    const Block expected = FromZByHalfTurns(n);
                    for (std::size_t row = 0; row < 3; ++row)
                        for (std::size_t column = 0; column < 3; ++column) {
                            ASSERT_NEAR(plane.m_dMatrix[column * 4 + row], static_cast<double>(expected[row][column]),
                                        AngleRounding(std::sin(theta)))
                                << theta << (down ? " from -Z, " : " from Z, ") << phi << ": " << row << ',' << column;
                            ++compared;
                        }
                    ASSERT_EQ(plane.GetCenter(), (Double3{1, 2, 3}));
                }
    EXPECT_GT(compared, 50'000);
}

TEST(Plane, KeepsTheDirectionOfATiltThatTheAngleLoses) {
    for (const double up : {1.0, -1.0})
        for (const double tilt : {1e-10, 1e-11, 2e-12}) {
            Plane plane;
            plane.SetNormal({0, tilt, up});  // acos gives 0 or pi; the axis is (-1, 0, 0)
            ExpectBlock(plane, {1, 0, 0, 0, up, 0, 0, 0, up});
        }
}

TEST(Plane, BecomesTheIdentityForNormalsAlongZOfAnyLength) {
    const auto isIdentity = [](const Double3& n) {
        Plane plane;
        plane.SetNormal({1, 1, 1});
        plane.SetNormal(n);
        return plane.m_dMatrix == Plane().m_dMatrix;
    };
    EXPECT_TRUE(isIdentity({0, 0, 1}));
    EXPECT_TRUE(isIdentity({0.99e-12, 0, 1}));
    EXPECT_TRUE(isIdentity({0, 0, 2})) << "an angle of 0";
    EXPECT_TRUE(isIdentity({0, 0, 1e-150}));
    EXPECT_FALSE(isIdentity({1e-7, 0, 1}));
    EXPECT_FALSE(isIdentity({0, 0, -1}));
}

TEST(Plane, KeepsNumbersThatAreNotFiniteAsTheyCome) {
    for (const double odd : {std::numeric_limits<double>::quiet_NaN(), std::numeric_limits<double>::infinity()}) {
        Plane plane;
        plane.SetNormal({odd, 0, 1});
        plane.SetCenter({0, odd, 0});
        EXPECT_FALSE(std::isfinite(plane.GetEquation()[3]));
        plane.SetNormal({0, 1, 0});
        plane.SetCenter({1, 2, 3});
        ExpectBlock(plane, {1, 0, 0, 0, 0, 1, 0, -1, 0});  // the former one has no influence
        ExpectNear(plane.GetCenter(), {1, 2, 3});
    }
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
    ExpectNear(plane.GetNormal(), {0, 0, 1});  // that cosine is about 6e-17, not 0
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
