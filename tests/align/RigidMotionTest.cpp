// Rigid transforms of alignments against motions by axis and angle in double precision.
#include "align/RigidMotion.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <limits>
#include <numbers>
#include <random>
#include <vector>

#include "KV_UtilsLantern/KV_UtilsLantern.h"
#include "support/RigidReference.h"

namespace {

using reference::Motion;
using reference::Point;

constexpr double kPi = std::numbers::pi;
constexpr double kEpsilon = 0x1p-52;

Motion MotionOf(const CACADQTrafo& trafo) {
    Motion motion;
    for (std::size_t row = 0; row < 3; ++row) {
        for (std::size_t column = 0; column < 3; ++column)
            motion.rows[row][column] = trafo.m_dRotation[3 * column + row];
        motion.t[row] = trafo.m_dTranslation[row];
    }
    return motion;
}

CACADQTrafo TrafoOf(const Motion& m) {
    CACADQTrafo trafo;
    trafo.Set(m.rows[0][0], m.rows[1][0], m.rows[2][0], m.rows[0][1], m.rows[1][1], m.rows[2][1], m.rows[0][2],
              m.rows[1][2], m.rows[2][2], m.t[0], m.t[1], m.t[2]);
    return trafo;
}

/// @param slack  of the rotation; of the translation per unit of @p extent
void ExpectMotion(const CACADQTrafo& trafo, const Motion& expected, double extent, double slack = 16 * kEpsilon) {
    const Motion motion = MotionOf(trafo);
    for (std::size_t i = 0; i < 3; ++i) {
        for (std::size_t k = 0; k < 3; ++k) EXPECT_NEAR(motion.rows[i][k], expected.rows[i][k], slack) << i << ' ' << k;
        EXPECT_NEAR(motion.t[i], expected.t[i], slack * extent) << i;
    }
}

void ExpectUnitQuaternion(const CACADQTrafo& trafo, double slack) {
    double squares = 0;
    for (const double q : trafo.m_dQuat) squares += q * q;
    EXPECT_NEAR(squares, 1, slack);
}

Point Direction(std::mt19937& random) { return reference::RandomMotion(random, 1).rows[0]; }

Vertex PointWithNormal(const Point& p, const Point& n) {
    Vertex vertex;
    vertex.x = static_cast<float>(p[0]), vertex.y = static_cast<float>(p[1]), vertex.z = static_cast<float>(p[2]);
    vertex.nx = static_cast<float>(n[0]), vertex.ny = static_cast<float>(n[1]), vertex.nz = static_cast<float>(n[2]);
    return vertex;
}

Vertex PointOnly(double x, double y, double z) { return PointWithNormal({x, y, z}, {0, 0, 0}); }

TEST(RotationAbout, TurnsRightHandedAboutTheAxis) {
    const CACADQTrafo quarter = RotationAbout({0, 0, 1}, kPi / 2, {0, 0, 0});
    ExpectMotion(quarter, {{{{0, -1, 0}, {1, 0, 0}, {0, 0, 1}}}, {}}, 1);
}

TEST(RotationAbout, LeavesThePivotWhereItIs) {
    // x to y about a vertical axis through (10, 20, .): (10, 20, 5) stays, the origin comes to (30, 10).
    const CACADQTrafo quarter = RotationAbout({0, 0, 1}, kPi / 2, {10, 20, 5});
    ExpectMotion(quarter, {{{{0, -1, 0}, {1, 0, 0}, {0, 0, 1}}}, {30, 10, 0}}, 30);
}

TEST(RotationAbout, IsTheRotationOfTheHalfAngleQuaternion) {
    std::mt19937 random(1);
    std::uniform_real_distribution<double> angles(-7, 7), coordinate(-200, 200);
    for (int i = 0; i < 500; ++i) {
        const Point axis = Direction(random), pivot = {coordinate(random), coordinate(random), coordinate(random)};
        const double angle = angles(random);
        Motion expected = reference::MotionAbout(axis, angle);
        expected.t = pivot - expected.Turn(pivot);
        const CACADQTrafo trafo = RotationAbout({axis[0], axis[1], axis[2]}, angle, {pivot[0], pivot[1], pivot[2]});
        ExpectMotion(trafo, expected, 350);
        ExpectUnitQuaternion(trafo, 4 * kEpsilon);
    }
}

TEST(RotationAbout, AngleZeroIsTheIdentityToTheBit) {
    const CACADQTrafo trafo = RotationAbout({0.6, 0.8, 0}, 0, {7, 8, 9});
    ExpectMotion(trafo, Motion{}, 1, 0);
}

TEST(RotationAbout, AnAxisOfLengthZeroTurnsNothingBelowAQuarterTurn) {
    for (const double angle : {0.0, 0.3, 1.5}) ExpectMotion(RotationAbout({0, 0, 0}, angle, {7, 8, 9}), Motion{}, 1, 0);
}

TEST(TranslationBy, MovesWithoutARotation) {
    ExpectMotion(TranslationBy({1.25, -2, 1e300}), {{{{1, 0, 0}, {0, 1, 0}, {0, 0, 1}}}, {1.25, -2, 1e300}}, 1, 0);
}

TEST(ComposeTrafos, AppliesTheSecondAfterTheFirst) {
    const CACADQTrafo quarter = RotationAbout({0, 0, 1}, kPi / 2, {0, 0, 0}), shift = TranslationBy({5, 0, 0});
    EXPECT_NEAR(Compose(shift, quarter).m_dTranslation[0], 5, kEpsilon * 8);
    EXPECT_NEAR(Compose(quarter, shift).m_dTranslation[1], 5, kEpsilon * 8) << "the shift is turned";
}

TEST(ComposeTrafos, IsTheProductOfTheMatrices) {
    std::mt19937 random(2);
    for (int i = 0; i < 500; ++i) {
        const Motion first = reference::RandomMotion(random, 100), second = reference::RandomMotion(random, 100);
        ExpectMotion(Compose(TrafoOf(second), TrafoOf(first)), reference::Compose(second, first), 300);
    }
}

TEST(ComposeTrafos, KeepsTheLengthOfTheQuaternions) {
    CACADQTrafo twice;
    twice.m_dQuat[0] = 2;
    EXPECT_EQ(Compose(CACADQTrafo{}, twice).m_dQuat[0], 2) << "nothing is normalised";
}

TEST(ComposeTrafos, AThousandStepsStayARotation) {
    std::mt19937 random(3);
    std::normal_distribution<double> angle(0, 0.05);
    CACADQTrafo trafo;
    constexpr int kSteps = 1000;
    for (int i = 0; i < kSteps; ++i) {
        const Point axis = Direction(random);
        trafo = Compose(RotationAbout({axis[0], axis[1], axis[2]}, angle(random), {1, 2, 3}), trafo);
    }
    // Each step has an error of a few roundings, which add up at worst.
    ExpectUnitQuaternion(trafo, kSteps * 8 * kEpsilon);
    EXPECT_NEAR(MotionOf(trafo).Determinant(), 1, kSteps * 16 * kEpsilon);
}

TEST(FiniteTrafo, HasNumbersThatFloatsCanHold) {
    EXPECT_TRUE(IsFinite(CACADQTrafo{}));
    EXPECT_TRUE(IsFinite(TranslationBy({3.4e38, -3.4e38, 0})));
    EXPECT_FALSE(IsFinite(TranslationBy({3.5e38, 0, 0})));
    EXPECT_FALSE(IsFinite(TranslationBy({0, std::numeric_limits<double>::infinity(), 0})));
    EXPECT_FALSE(IsFinite(TranslationBy({0, 0, std::numeric_limits<double>::quiet_NaN()})));
    EXPECT_FALSE(IsFinite(RotationAbout({std::numeric_limits<double>::quiet_NaN(), 0, 0}, 1, {0, 0, 0})));
}

TEST(MoveObject, MovesTheVerticesAndRecordsTheTransform) {
    Mesh mesh({PointWithNormal({10, 0, 0}, {1, 0, 0}), PointWithNormal({0, 10, 5}, {0, 0, 1})}, {}, L"", false);
    mesh.m_Trafo = TranslationBy({10, 0, 0});
    float center[3];
    mesh.GetCenter(center);
    mesh.m_bBuffersDirty = false;

    MoveObject(mesh, RotationAbout({0, 0, 1}, kPi / 2, {0, 0, 0}));

    EXPECT_NEAR(mesh.m_vVertices[0].x, 0, 1e-6);
    EXPECT_NEAR(mesh.m_vVertices[0].y, 10, 1e-6);
    EXPECT_NEAR(mesh.m_vVertices[0].ny, 1, 1e-6);
    EXPECT_NEAR(mesh.m_vVertices[1].x, -10, 1e-6);
    ExpectMotion(mesh.m_Trafo, {{{{0, -1, 0}, {1, 0, 0}, {0, 0, 1}}}, {0, 10, 0}}, 10);
    EXPECT_TRUE(mesh.m_bBuffersDirty);
    EXPECT_FALSE(mesh.m_bCenterValid);
    mesh.GetCenter(center);
    EXPECT_NEAR(center[0], -5, 1e-6);
    float box[6];
    mesh.GetBoundingBox(&box[0], &box[1], &box[2], &box[3], &box[4], &box[5]);
    EXPECT_NEAR(box[0], -10, 1e-6);
    EXPECT_NEAR(box[3], 10, 1e-6);
}

// Also where rounding takes the cosine of a normal with itself above 1 or below it.
TEST(AlignSinglePair, EqualNormalsGiveAPureTranslationToTheBit) {
    std::mt19937 random(4);
    std::uniform_real_distribution<float> coordinate(-300, 300);
    int above = 0, below = 0;
    for (int i = 0; i < 20000; ++i) {
        const Point n = (i % 2 == 0 ? 1.0 : 1.0 + 1e-4 * i) * Direction(random);
        const Vertex source = PointWithNormal({coordinate(random), coordinate(random), coordinate(random)}, n);
        const Vertex target = PointWithNormal({coordinate(random), coordinate(random), coordinate(random)}, n);
        const Float3 normal = Normalized(Float3{source.nx, source.ny, source.nz});
        above += Dot(normal, normal) > 1;
        below += Dot(normal, normal) < 1;
        const CACADQTrafo trafo = AlignSinglePair(source, target);
        const double offset[3] = {double{target.x} - source.x, double{target.y} - source.y,
                                  double{target.z} - source.z};
        for (std::size_t k = 0; k < 3; ++k) ASSERT_EQ(trafo.m_dTranslation[k], offset[k]);
        for (std::size_t k = 0; k < 9; ++k) ASSERT_EQ(trafo.m_dRotation[k], k % 4 == 0 ? 1 : 0);
        ASSERT_EQ(trafo.m_dQuat[0], 1);
    }
    EXPECT_GT(above, 0) << "no case in which the clamp counts";
    EXPECT_GT(below, 0);
}

TEST(AlignSinglePair, TurnsTheNormalByTheShortestWayAndBringsThePointToItsPartner) {
    std::mt19937 random(5);
    for (int i = 0; i < 2000; ++i) {
        const Point a = Direction(random), b = Direction(random);
        const Point from = 100.0 * Direction(random), to = 100.0 * Direction(random);
        const double sine = Length(Cross(a, b)), angle = std::atan2(sine, Dot(a, b));
        // Axis and angle are floats; where the normals are almost parallel, their difference has few digits left.
        if (sine < 0.05) continue;
        const double slack = 8 * 0x1p-24 / sine;
        Motion expected = reference::MotionAbout(Cross(a, b), angle);
        expected.t = to - expected.Turn(from);
        const CACADQTrafo trafo = AlignSinglePair(PointWithNormal(from, a), PointWithNormal(to, b));
        ExpectMotion(trafo, expected, 200, slack);
        EXPECT_LE(Length(MotionOf(trafo)(from) - to), 1e-4) << "rounding of the points to float";
    }
}

struct HalfTurnRow {
    const char* name;
    Point source, target;
};
const HalfTurnRow kHalfTurns[] = {
    {"SurfacesThatFaceEachOther", {0, 0, 1}, {0, 0, -1}},
    {"OppositeAlongX", {1, 0, 0}, {-1, 0, 0}},
    {"OppositeAskew", {0.6, 0, 0.8}, {-0.6, 0, -0.8}},
    {"NoSourceNormal", {0, 0, 0}, {0, 1, 0}},
    {"NoTargetNormal", {0, 1, 0}, {0, 0, 0}},
    {"NoNormal", {0, 0, 0}, {0, 0, 0}},
};

TEST(AlignSinglePair, WithoutAnAxisTurnsHalfAboutTheWorldX) {
    for (const HalfTurnRow& row : kHalfTurns) {
        SCOPED_TRACE(row.name);
        const CACADQTrafo trafo =
            AlignSinglePair(PointWithNormal({1, 2, 3}, row.source), PointWithNormal({10, 20, 30}, row.target));
        // The source point comes to the target point: (1, -2, -3) and then by (9, 22, 33).
        ExpectMotion(trafo, {{{{1, 0, 0}, {0, -1, 0}, {0, 0, -1}}}, {9, 22, 33}}, 33);
    }
}

TEST(AlignSinglePair, NormalsMayHaveAnyLength) {
    const Vertex source = PointWithNormal({1, 2, 3}, {0, 0, 1}), target = PointWithNormal({4, 5, 6}, {0, 1, 0});
    const Motion expected = MotionOf(AlignSinglePair(source, target));
    for (const float length : {2.0f, 0.25f, 1e30f, 1e-30f, 1e-42f}) {
        Vertex longer = source;
        longer.nz = length;
        ExpectMotion(AlignSinglePair(longer, target), expected, 1, 0);
        longer = target;
        longer.ny = length;
        ExpectMotion(AlignSinglePair(source, longer), expected, 1, 0);
    }
}

TEST(MatchPoints, NeedsAPair) { EXPECT_FALSE(MatchPoints({}, {})); }

TEST(MatchPoints, OfOnePairUsesTheNormals) {
    const Vertex source = PointWithNormal({1, 2, 3}, {0, 0, 1}), target = PointWithNormal({4, 5, 6}, {1, 0, 0});
    const auto trafo = MatchPoints({&source, 1}, {&target, 1});
    ASSERT_TRUE(trafo);
    ExpectMotion(*trafo, MotionOf(AlignSinglePair(source, target)), 1, 0);
}

TEST(MatchPoints, OfMorePairsUsesThePointsAlone) {
    std::mt19937 random(6);
    const float nan = std::numeric_limits<float>::quiet_NaN();
    std::vector<Vertex> source, target;
    std::vector<float> from, to;
    for (int i = 0; i < 5; ++i) {
        const Point p = 50.0 * Direction(random), q = 50.0 * Direction(random);
        source.push_back(PointWithNormal(p, {nan, nan, nan}));
        target.push_back(PointWithNormal(q, {0, 0, 1}));
        from.insert(from.end(), {source.back().x, source.back().y, source.back().z});
        to.insert(to.end(), {target.back().x, target.back().y, target.back().z});
    }
    for (const std::size_t count : {std::size_t{2}, std::size_t{3}, std::size_t{5}}) {
        float m[12];
        ASSERT_EQ(LANDLL_PickPointMatching(static_cast<int>(count), from.data(), to.data(), m), 0);
        CACADQTrafo expected;
        expected.Set(m[0], m[1], m[2], m[3], m[4], m[5], m[6], m[7], m[8], m[9], m[10], m[11]);
        const auto trafo = MatchPoints({source.data(), count}, {target.data(), count});
        ASSERT_TRUE(trafo);
        ExpectMotion(*trafo, MotionOf(expected), 1, 0);
        ExpectUnitQuaternion(*trafo, 4 * kEpsilon);
    }
}

TEST(MatchPoints, IsEmptyWithoutAFiniteTransform) {
    const double nan = std::numeric_limits<double>::quiet_NaN(), infinity = std::numeric_limits<double>::infinity();
    const Vertex good = PointWithNormal({1, 2, 3}, {0, 0, 1});
    for (const Vertex& bad : {PointWithNormal({nan, 0, 0}, {0, 0, 1}), PointWithNormal({0, infinity, 0}, {0, 0, 1}),
                              PointWithNormal({0, 0, 0}, {0, nan, 0}), PointWithNormal({0, 0, 0}, {-infinity, 0, 0})}) {
        EXPECT_FALSE(MatchPoints({&bad, 1}, {&good, 1}));
        EXPECT_FALSE(MatchPoints({&good, 1}, {&bad, 1}));
    }
    const Vertex far[] = {PointWithNormal({3e38, 0, 0}, {0, 0, 1}), PointWithNormal({-3e38, 0, 0}, {0, 0, 1})};
    EXPECT_FALSE(MatchPoints({&far[0], 1}, {&far[1], 1})) << "no float holds the translation";
    const Vertex same[] = {good, good}, other[] = {good, far[0]};
    EXPECT_FALSE(MatchPoints(same, other));
}

TEST(DescribeAlignment, GivesTheRowsOfTheMatrixAndTheDistanceOfEachPair) {
    const Vertex source[] = {PointWithNormal({1, 0, 0}, {0, 0, 1}), PointOnly(0, 1, 0), PointOnly(0, 0, 1)};
    const Vertex target[] = {PointWithNormal({7, 9, 9}, {0, 1, 0}), PointOnly(6, 8, 12), PointOnly(7, 8, 10)};
    CACADQTrafo trafo = RotationAbout({0, 0, 1}, kPi / 2, {0, 0, 0});
    trafo.m_dTranslation[0] = 7, trafo.m_dTranslation[1] = 8, trafo.m_dTranslation[2] = 9;

    const KV_ScenePane::AlignmentResult result = DescribeAlignment(source, target, trafo);

    EXPECT_TRUE(result.isFound);
    const double rows[16] = {0, -1, 0, 7, 1, 0, 0, 8, 0, 0, 1, 9, 0, 0, 0, 1};
    for (std::size_t i = 0; i < 16; ++i) EXPECT_NEAR(result.transform[i], rows[i], 1e-15) << i;
    ASSERT_EQ(result.pairs.size(), 3u);
    EXPECT_EQ(result.pairs[0].moving.point[0], 1);
    EXPECT_EQ(result.pairs[0].moving.normal[2], 1);
    EXPECT_EQ(result.pairs[1].fixed.point[2], 12);
    EXPECT_EQ(result.pairs[0].fixed.normal[1], 1);
    // The moved points are (7, 9, 9), (6, 8, 9) and (7, 8, 10).
    ASSERT_EQ(result.residuals.size(), 3u);
    EXPECT_NEAR(result.residuals[0], 0, 1e-14);
    EXPECT_NEAR(result.residuals[1], 3, 1e-14);
    EXPECT_NEAR(result.residuals[2], 0, 1e-14);
    EXPECT_NEAR(result.rms, std::sqrt(3.0), 1e-14);
}

TEST(DescribeAlignment, OfNoTransformHasThePairsAlone) {
    const Vertex point = PointOnly(1, 2, 3);
    const KV_ScenePane::AlignmentResult result = DescribeAlignment({&point, 1}, {&point, 1}, {});
    EXPECT_FALSE(result.isFound);
    EXPECT_EQ(result.pairs.size(), 1u);
    EXPECT_TRUE(result.residuals.empty());
    EXPECT_EQ(result.rms, 0);
    EXPECT_EQ(result.transform[0], 1);
    EXPECT_EQ(result.transform[3], 0);
}

}  // namespace
