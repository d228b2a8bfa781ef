// Sentences about alignments, and the motion in them.
#include "AlignSummary.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <numbers>

namespace {

using KV_ScenePane::AlignmentPair;
using KV_ScenePane::AlignmentResult;

constexpr Matrix4 kIdentity{1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};

/// About z, then a translation.
Matrix4 TurnedAboutZ(double degrees, float x, float y) {
    const double angle = degrees * std::numbers::pi / 180.0;
    const auto c = static_cast<float>(std::cos(angle)), s = static_cast<float>(std::sin(angle));
    return {c, -s, 0, x, s, c, 0, y, 0, 0, 1, 0, 0, 0, 0, 1};
}

AlignmentPair Pair(float moving, float fixed) { return {{{moving, 0, 0}, {}}, {{fixed, 0, 0}, {}}}; }

AlignmentResult Found(std::vector<AlignmentPair> pairs, std::vector<double> residuals, double rms) {
    AlignmentResult result;
    result.isFound = true;
    result.pairs = std::move(pairs);
    result.residuals = std::move(residuals);
    result.rms = rms;
    return result;
}

std::string Text(AlignWay way, int moved, const AlignmentResult& result, Displacement displacement = {}) {
    AlignOutcome outcome;
    outcome.way = way;
    outcome.movedObjects = moved;
    outcome.displacement = displacement;
    outcome.result = result;
    return SummaryOf(outcome).toStdString();
}

TEST(DisplacementBetween, IsNoneForTheSamePlace) {
    const Matrix4 place = TurnedAboutZ(33, 5, 6);
    const Displacement none = DisplacementBetween(place, place, {1, 2, 3});
    EXPECT_EQ(none.degrees, 0.0);
    EXPECT_NEAR(none.distance, 0.0, 1e-6);
}

TEST(DisplacementBetween, MeasuresSmallAndLargeTurns) {
    for (const double degrees : {0.001, 0.5, 45.0, 90.0, 179.9}) {
        const Displacement turn = DisplacementBetween(TurnedAboutZ(20, 0, 0), TurnedAboutZ(20 + degrees, 0, 0), {});
        EXPECT_NEAR(turn.degrees, degrees, 1e-3 + 1e-4 * degrees);
    }
    EXPECT_NEAR(DisplacementBetween(kIdentity, TurnedAboutZ(180, 0, 0), {}).degrees, 180.0, 0.02);
}

TEST(DisplacementBetween, FollowsThePointAndNotTheOrigin) {
    // A quarter turn about z takes (2, 0, 0) to (0, 2, 0), and the translation to (0, 5, 0).
    const Displacement motion = DisplacementBetween(kIdentity, TurnedAboutZ(90, 0, 3), {2, 0, 0});
    EXPECT_NEAR(motion.distance, std::hypot(2.0, 5.0), 1e-6);
    // The same motion of an object that was somewhere else before: the point is in the world frame.
    const Displacement again = DisplacementBetween(TurnedAboutZ(0, 100, 0), TurnedAboutZ(90, 0, 103), {2, 0, 0});
    EXPECT_NEAR(again.distance, std::hypot(2.0, 5.0), 1e-4);
}

TEST(AlignSummary, DescribesAMotionByHand) {
    EXPECT_EQ(Text(AlignWay::ByHand, 0, {}), "Alignment by hand: nothing was moved.");
    EXPECT_EQ(Text(AlignWay::ByHand, 1, {}, {12.345, 0.5}),
              "Aligned by hand: 1 object turned by 12.35°, its centre moved by 0.50 mm.");
    EXPECT_EQ(Text(AlignWay::ByHand, 3, {}, {1, 2}),
              "Aligned by hand: 3 objects turned by 1.00°, the centre of the first moved by 2.00 mm.");
}

TEST(AlignSummary, DescribesTheEndsOfPoints) {
    EXPECT_EQ(Text(AlignWay::ByPoints, 0, {}), "Alignment by points: ended, nothing was moved.");
    EXPECT_EQ(Text(AlignWay::ByPoints, 2, Found({Pair(0, 1)}, {0}, 0)),
              "Aligned by one point and the surface normals there: 2 objects moved.");
    const AlignmentPair beside{{{1, 2, 0}, {}}, {{2, 2, 0}, {}}};
    const std::string three =
        "Aligned by 3 points: 1 object moved; residual 0.0216 mm (RMS), at most 0.0300 mm at pair 2.";
    EXPECT_EQ(Text(AlignWay::ByPoints, 1, Found({Pair(0, 1), beside, Pair(2, 3)}, {0.01, 0.03, 0.02}, 0.0216)), three);
    EXPECT_EQ(Text(AlignWay::ByPoints, 1, Found({Pair(0, 1), Pair(1, 2), Pair(2, 3)}, {0.01, 0.03, 0.02}, 0.0216)),
              three + " The points are on one line: they do not fix the turn about it.");
}

TEST(AlignSummary, NamesTheReasonOfAFailure) {
    AlignmentResult result;
    result.pairs = {Pair(1, 1), Pair(1, 2)};
    EXPECT_EQ(Text(AlignWay::ByPoints, 0, result),
              "No transform was found: the points on the moving scans are all at one place. Nothing was moved.");
    result.pairs = {Pair(1, 1), Pair(2, 1)};
    EXPECT_EQ(FailureReason(result).toStdString(), "the points on the fixed scans are all at one place");
    result.pairs = {Pair(1, std::numeric_limits<float>::quiet_NaN())};
    EXPECT_EQ(FailureReason(result).toStdString(), "a point has no finite coordinates");
}

TEST(AlignSummary, FindsTheLargestResidualAmongSeveral) {
    EXPECT_EQ(LargestResidual({}), -1);
    EXPECT_EQ(LargestResidual(Found({Pair(0, 1)}, {0}, 0)), -1) << "one pair always fits";
    EXPECT_EQ(LargestResidual(Found({Pair(0, 1), Pair(0, 1)}, {0.2, 0.1}, 0)), 0);
}

TEST(SetupHint, IsEmptyWhenTheObjectsAllowTheAlignment) {
    EXPECT_TRUE(SetupHint(AlignWay::ByHand, 1, 1).isEmpty());
    EXPECT_TRUE(SetupHint(AlignWay::ByHand, 3, 2).isEmpty());
    EXPECT_TRUE(SetupHint(AlignWay::ByPoints, 2, 1).isEmpty());
}

TEST(SetupHint, NamesWhatIsMissing) {
    for (const AlignWay way : {AlignWay::ByHand, AlignWay::ByPoints}) {
        EXPECT_EQ(SetupHint(way, 0, 0).toStdString(), "There is no object to align.");
        EXPECT_TRUE(SetupHint(way, 2, 0).contains("May move"));
    }
    EXPECT_TRUE(SetupHint(AlignWay::ByPoints, 2, 2).contains("uncheck"));
    EXPECT_TRUE(SetupHint(AlignWay::ByPoints, 1, 1).contains("second scan"));
}

}  // namespace
