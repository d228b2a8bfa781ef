// The rigid transform against matrices by hand and against rotations by axis and angle.
#include "geometry/CACADQTrafo.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <ostream>

namespace {

// A matrix row by row, as in print.
struct Matrix {
    double m[3][3];
};

void SetRows(CACADQTrafo& trafo, const Matrix& rows, double tx = 0, double ty = 0, double tz = 0) {
    const auto& m = rows.m;
    trafo.Set(m[0][0], m[1][0], m[2][0], m[0][1], m[1][1], m[2][1], m[0][2], m[1][2], m[2][2], tx, ty, tz);
}

void ExpectRotation(const CACADQTrafo& trafo, const Matrix& rows, double tolerance) {
    for (int row = 0; row < 3; ++row)
        for (int column = 0; column < 3; ++column)
            EXPECT_NEAR(trafo.m_dRotation[3 * column + row], rows.m[row][column], tolerance) << row << ", " << column;
}

// Rodrigues' formula: a rotation matrix from axis and angle, independent of quaternions.
Matrix RotationAbout(double x, double y, double z, double angleRad) {
    const double length = std::sqrt(x * x + y * y + z * z);
    x /= length, y /= length, z /= length;
    const double c = std::cos(angleRad), s = std::sin(angleRad), k = 1 - c;
    return {{{c + x * x * k, x * y * k - z * s, x * z * k + y * s},
             {y * x * k + z * s, c + y * y * k, y * z * k - x * s},
             {z * x * k - y * s, z * y * k + x * s, c + z * z * k}}};
}

}  // namespace

TEST(CACADQTrafo, StartsAsTheIdentity) {
    const CACADQTrafo trafo;
    EXPECT_EQ(trafo.m_dQuat[0], 1);
    ExpectRotation(trafo, {{{1, 0, 0}, {0, 1, 0}, {0, 0, 1}}}, 0);
    for (const double t : trafo.m_dTranslation) EXPECT_EQ(t, 0);
}

TEST(CACADQTrafo, ExpectsTheMatrixColumnAfterColumn) {
    CACADQTrafo trafo;
    // A quarter turn about z maps x to y: column 0 is (0, 1, 0).
    trafo.Set(0, 1, 0, -1, 0, 0, 0, 0, 1, 7, 8, 9);
    ExpectRotation(trafo, {{{0, -1, 0}, {1, 0, 0}, {0, 0, 1}}}, 1e-15);
    EXPECT_NEAR(trafo.m_dQuat[0], std::sqrt(0.5), 1e-15);
    EXPECT_NEAR(trafo.m_dQuat[3], std::sqrt(0.5), 1e-15);
    EXPECT_EQ(trafo.m_dTranslation[0], 7);
    EXPECT_EQ(trafo.m_dTranslation[1], 8);
    EXPECT_EQ(trafo.m_dTranslation[2], 9);
}

TEST(CACADQTrafo, StoresEveryRotationAsAUnitQuaternion) {
    const std::array<double, 7> parts{-3, -1, -0.2, 0, 0.3, 1, 2};
    for (const double x : parts)
        for (const double y : parts)
            for (const double z : parts)
                for (const double angleRad : {0.1, 1.0, 2.0, 3.0, 3.14159, 4.0, 6.0}) {
                    if (x == 0 && y == 0 && z == 0) continue;
                    const Matrix rotation = RotationAbout(x, y, z, angleRad);
                    CACADQTrafo trafo;
                    SetRows(trafo, rotation);
                    ExpectRotation(trafo, rotation, 1e-12);
                    double squared = 0;
                    for (const double q : trafo.m_dQuat) squared += q * q;
                    EXPECT_NEAR(squared, 1, 1e-14);
                    if (HasFailure()) return;
                }
}

struct HalfTurn {
    const char* name;
    Matrix rotation;
    double quat[4];
};
void PrintTo(const HalfTurn& row, std::ostream* out) { *out << row.name; }

const double kHalf = std::sqrt(0.5);
const HalfTurn kHalfTurns[] = {
    {"AboutX", {{{1, 0, 0}, {0, -1, 0}, {0, 0, -1}}}, {0, 1, 0, 0}},
    {"AboutY", {{{-1, 0, 0}, {0, 1, 0}, {0, 0, -1}}}, {0, 0, 1, 0}},
    {"AboutZ", {{{-1, 0, 0}, {0, -1, 0}, {0, 0, 1}}}, {0, 0, 0, 1}},
    {"BetweenXAndYIsCountedAsX", {{{0, 1, 0}, {1, 0, 0}, {0, 0, -1}}}, {0, kHalf, kHalf, 0}},
    {"BetweenXAndMinusYHasPositiveX", {{{0, -1, 0}, {-1, 0, 0}, {0, 0, -1}}}, {0, kHalf, -kHalf, 0}},
    {"BetweenYAndMinusZHasPositiveY", {{{-1, 0, 0}, {0, 0, -1}, {0, -1, 0}}}, {0, 0, kHalf, -kHalf}},
    // Not a half turn, but the tie of w with x.
    {"QuarterAboutMinusXHasPositiveW", {{{1, 0, 0}, {0, 0, 1}, {0, -1, 0}}}, {kHalf, -kHalf, 0, 0}},
};
class CACADQTrafoTies : public testing::TestWithParam<HalfTurn> {};

TEST_P(CACADQTrafoTies, GoToTheFirstComponentWithAPositiveSign) {
    CACADQTrafo trafo;
    SetRows(trafo, GetParam().rotation);
    for (int i = 0; i < 4; ++i) EXPECT_NEAR(trafo.m_dQuat[i], GetParam().quat[i], 1e-15) << i;
}
INSTANTIATE_TEST_SUITE_P(Quaternion, CACADQTrafoTies, testing::ValuesIn(kHalfTurns),
                         [](const auto& row) { return row.param.name; });

TEST(CACADQTrafo, KeepsOnlyTheRotationOfAScalingMatrix) {
    // diag(4, 4, 4): w^2 = 13 / 4, no off-diagonal elements, so the rotation is the identity.
    CACADQTrafo trafo;
    SetRows(trafo, {{{4, 0, 0}, {0, 4, 0}, {0, 0, 4}}});
    ExpectRotation(trafo, {{{1, 0, 0}, {0, 1, 0}, {0, 0, 1}}}, 1e-15);
}

TEST(CACADQTrafo, UpdateMatrixComputesTheRotationOfTheQuaternion) {
    CACADQTrafo trafo;
    const double quat[4] = {0.5, 0.5, 0.5, 0.5};  // a third of a turn about (1, 1, 1): x to y to z to x
    std::copy_n(quat, 4, trafo.m_dQuat);
    trafo.UpdateMatrix();
    ExpectRotation(trafo, {{{0, 0, 1}, {1, 0, 0}, {0, 1, 0}}}, 1e-15);
}
