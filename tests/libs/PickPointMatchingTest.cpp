// The fit of pairs of points against another method, and its rules for points that leave the rotation open.
#include "KV_UtilsLantern/KV_UtilsLantern.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>
#include <numbers>
#include <random>
#include <vector>

#include "support/RigidReference.h"

namespace {

using reference::Motion;
using reference::Point;
using Points = std::vector<Point>;

constexpr float kUntouched = -77.0f;
constexpr double kHalfUlp = 0x1p-24;  // of 1, rounding of a double to a float

/// Rounded to floats, as they are passed.
std::vector<float> Floats(const Points& points) {
    std::vector<float> floats;
    floats.reserve(3 * points.size());
    for (const Point& p : points)
        for (const double coordinate : p.v) floats.push_back(static_cast<float>(coordinate));
    return floats;
}

Points Rounded(Points points) {
    for (Point& p : points)
        for (double& coordinate : p.v) coordinate = static_cast<float>(coordinate);
    return points;
}

Points Moved(const Motion& motion, Points points) {
    for (Point& p : points) p = motion(p);
    return points;
}

struct Outcome {
    int status = 0;
    std::vector<float> numbers = std::vector<float>(12, kUntouched);
    Motion motion;
};

Outcome Match(const Points& source, const Points& target) {
    Outcome outcome;
    const auto from = Floats(source), to = Floats(target);
    outcome.status =
        LANDLL_PickPointMatching(static_cast<int>(source.size()), from.data(), to.data(), outcome.numbers.data());
    for (std::size_t row = 0; row < 3; ++row) {
        for (std::size_t column = 0; column < 3; ++column)
            outcome.motion.rows[row][column] = outcome.numbers[3 * column + row];
        outcome.motion.t[row] = outcome.numbers[9 + row];
    }
    return outcome;
}

Motion Matched(const Points& source, const Points& target) {
    const Outcome outcome = Match(source, target);
    EXPECT_EQ(outcome.status, 0);
    return outcome.motion;
}

void ExpectRefused(const Points& source, const Points& target) {
    const Outcome outcome = Match(source, target);
    EXPECT_LT(outcome.status, 0);
    EXPECT_EQ(outcome.numbers, std::vector<float>(12, kUntouched));
}

/// A rotation up to the rounding of its nine floats.
void ExpectRotation(const Motion& motion) {
    for (std::size_t i = 0; i < 3; ++i)
        for (std::size_t k = 0; k < 3; ++k)
            EXPECT_NEAR(Dot(motion.rows[i], motion.rows[k]), i == k ? 1 : 0, 6 * kHalfUlp) << i << ' ' << k;
    EXPECT_NEAR(motion.Determinant(), 1, 6 * kHalfUlp);
}

/// The nine floats are those of the expected rotation, and the mean of the source comes to the mean of the target.
/// @param slack  of each element of the rotation beyond the rounding to float
void ExpectMotion(const Motion& motion, const Motion& expected, const Points& source, double slack = 1e-9) {
    for (std::size_t i = 0; i < 3; ++i)
        for (std::size_t k = 0; k < 3; ++k)
            EXPECT_NEAR(motion.rows[i][k], expected.rows[i][k], kHalfUlp + slack) << i << ' ' << k;
    const Point mean = reference::Mean(source);
    EXPECT_LE(Length(motion(mean) - expected(mean)), 2 * kHalfUlp * Length(motion.t) + 1e-12 * Length(mean));
}

template <typename Random>
Points RandomPoints(Random& random, std::size_t count, double extent, const Point& offset = {}) {
    std::uniform_real_distribution<double> coordinate(-extent, extent);
    Points points(count);
    for (Point& p : points) p = offset + Point{coordinate(random), coordinate(random), coordinate(random)};
    return Rounded(points);
}

template <typename Random>
Points WithNoise(Random& random, Points points, double sigma) {
    std::normal_distribution<double> noise(0, sigma);
    for (Point& p : points) p = p + Point{noise(random), noise(random), noise(random)};
    return Rounded(points);
}

/// Along a line, at uneven distances.
Points OnLine(const Point& direction, std::size_t count, const Point& offset = {}) {
    Points points;
    for (std::size_t i = 0; i < count; ++i)
        points.push_back(offset + (static_cast<double>(i * i) - 2.5) * reference::Unit(direction));
    return points;
}

TEST(PickPointMatching, FindsTheMotionThatMadeTheTargets) {
    std::mt19937 random(1);
    for (std::size_t count = 3; count <= 12; ++count)
        for (int i = 0; i < 30; ++i) {
            const Points source = RandomPoints(random, count, 60);
            const Motion motion = reference::RandomMotion(random, 500);
            const Points target = Rounded(Moved(motion, source));
            // The rounding of the targets is an error of at most |d|, which turns the fit by at most |d| over the
            // smallest moment of the points.
            const auto scatter = reference::PrincipalScatter(source);
            const double d = kHalfUlp * 1000 * std::sqrt(3.0 * static_cast<double>(count));
            ExpectMotion(Matched(source, target), reference::FitByQuaternion(source, target), source, 1e-8);
            EXPECT_LE(reference::AngleBetween(Matched(source, target), motion),
                      d / std::sqrt(scatter[0] + scatter[1]) + 4 * kHalfUlp);
        }
}

TEST(PickPointMatching, NoisyPairsGiveTheLeastSquaresFit) {
    std::mt19937 random(2);
    for (std::size_t count = 3; count <= 40; ++count) {
        const Points source = RandomPoints(random, count, 60, {100, -40, 7});
        const Points target = WithNoise(random, Moved(reference::RandomMotion(random, 300), source), 2.0);
        const Motion fit = Matched(source, target);
        ExpectRotation(fit);
        ExpectMotion(fit, reference::FitByQuaternion(source, target), source, 1e-8);
    }
}

TEST(PickPointMatching, NoSmallChangeOfTheFitIsBetter) {
    std::mt19937 random(3);
    const Points source = RandomPoints(random, 8, 50), mean = {reference::Mean(source)};
    const Points target = WithNoise(random, Moved(reference::RandomMotion(random, 100), source), 3.0);
    const Motion fit = Matched(source, target);
    const double best = SumOfSquares(fit, source, target);
    for (int i = 0; i < 200; ++i) {
        // Steps that are large against the rounding of the result, about the centroid.
        const Motion turn = reference::MotionAbout(reference::RandomMotion(random, 1).rows[0], 1e-3);
        Motion other = Compose(turn, fit);
        other.t = other.t + (fit(mean[0]) - other(mean[0]));
        EXPECT_GT(SumOfSquares(other, source, target), best);
        Motion shifted = fit;
        shifted.t = shifted.t + 0.01 * reference::RandomMotion(random, 1).rows[1];
        EXPECT_GT(SumOfSquares(shifted, source, target), best);
    }
}

TEST(PickPointMatching, MirroredPointsGiveARotation) {
    std::mt19937 random(4);
    for (int i = 0; i < 50; ++i) {
        const Points source = RandomPoints(random, 6, 40);
        Points mirrored = source;
        for (Point& p : mirrored) p[2] = -p[2];
        const Points target = Rounded(Moved(reference::RandomMotion(random, 90), mirrored));
        const Motion fit = Matched(source, target);
        ExpectRotation(fit);
        const Motion best = reference::FitByQuaternion(source, target);
        EXPECT_NEAR(SumOfSquares(fit, source, target), SumOfSquares(best, source, target),
                    1e-5 * SumOfSquares(best, source, target));
    }
}

TEST(PickPointMatching, MirroredPointsOfAPlaneAreTurnedOver) {
    const Points source = {{0, 0, 0}, {30, 0, 0}, {0, 20, 0}, {7, 9, 0}};
    Points target = source;
    for (Point& p : target) p[0] = -p[0];  // half a turn about y, as the points have no height
    const Motion fit = Matched(source, target);
    ExpectMotion(fit, reference::MotionAbout({0, 1, 0}, std::numbers::pi), source);
    EXPECT_LE(SumOfSquares(fit, source, target), 1e-9);
}

TEST(PickPointMatching, DoesNotScale) {
    std::mt19937 random(5);
    const Points source = RandomPoints(random, 5, 40);
    const Motion motion = reference::RandomMotion(random, 10);
    Points target = Moved(motion, source);
    for (Point& p : target) p = 3 * p;
    const Motion fit = Matched(source, target);
    ExpectRotation(fit);
    EXPECT_LE(reference::AngleBetween(fit, motion), 1e-5);
}

// The axis is perpendicular to both directions.
// @param slack  error of the directions, which near opposite ones turns the axis by more
void ExpectShortestRotation(const Points& source, const Points& target, const Point& from, const Point& to,
                            double slack) {
    const Motion fit = Matched(source, target);
    const Point a = reference::Unit(from), b = reference::Unit(to);
    const double angle = std::atan2(Length(Cross(a, b)), Dot(a, b));
    Motion expected = angle == 0 ? Motion{} : reference::MotionAbout(Cross(a, b), angle);
    expected.t = reference::Mean(target) - expected.Turn(reference::Mean(source));
    ExpectRotation(fit);
    ExpectMotion(fit, expected, source, slack * (1 + 2 / Length(a + b)));
}

TEST(PickPointMatching, TwoPairsTurnByTheShortestWay) {
    std::mt19937 random(6);
    for (int i = 0; i < 200; ++i) {
        const Points source = RandomPoints(random, 2, 50, {200, 10, -60}), target = RandomPoints(random, 2, 50);
        ExpectShortestRotation(source, target, source[1] - source[0], target[1] - target[0], 1e-9);
    }
}

TEST(PickPointMatching, TwoPairsOfOtherLengthMeetInTheMiddle) {
    const Motion fit = Matched({{0, 0, 0}, {10, 0, 0}}, {{5, 5, 0}, {5, 9, 0}});
    EXPECT_LE(Length(fit({5, 0, 0}) - Point{5, 7, 0}), 1e-5);
    EXPECT_LE(Length(fit({0, 0, 0}) - Point{5, 2, 0}), 1e-5);
}

TEST(PickPointMatching, PointsOnALineOnBothSidesTurnByTheShortestWay) {
    std::mt19937 random(7);
    for (std::size_t count = 3; count <= 10; ++count)
        for (int i = 0; i < 20; ++i) {
            const Point from = reference::RandomMotion(random, 1).rows[0],
                        to = reference::RandomMotion(random, 1).rows[0];
            // Rounding moves each point by at most half a step of 2^-17, over the length of the line on both sides.
            const double length = std::pow(static_cast<double>(count - 1), 2);
            ExpectShortestRotation(OnLine(from, count, {30, 60, -90}), OnLine(to, count), from, to,
                                   4 * 0x1p-18 / length * std::sqrt(3.0));
        }
}

TEST(PickPointMatching, PointsOnALineOnOneSideFitAsWellAsTheyCan) {
    std::mt19937 random(8);
    for (int i = 0; i < 50; ++i) {
        const Point direction = reference::RandomMotion(random, 1).rows[0];
        const Points line = Rounded(OnLine(direction, 5)), other = WithNoise(random, OnLine({1, 2, 3}, 5), 1.0);
        for (const bool isSource : {true, false}) {
            const Points &source = isSource ? line : other, &target = isSource ? other : line;
            const Motion fit = Matched(source, target), best = reference::FitByQuaternion(source, target);
            ExpectRotation(fit);
            EXPECT_NEAR(SumOfSquares(fit, source, target), SumOfSquares(best, source, target), 1e-4);
            // Of all rotations with this sum it is the one of the smallest angle: its axis is perpendicular to the
            // line.
            const Point axis = {fit.rows[2][1] - fit.rows[1][2], fit.rows[0][2] - fit.rows[2][0],
                                fit.rows[1][0] - fit.rows[0][1]};
            const Point along = isSource ? direction : fit.TurnBack(direction);
            EXPECT_NEAR(Dot(axis, along), 0, 1e-5);
        }
    }
}

TEST(PickPointMatching, TheOrderOfThePairsSaysWhichEndIsWhich) {
    const Points line = OnLine({0, 0, 1}, 4);
    Points target = Moved(reference::MotionAbout({1, 0, 0}, 0.3), line);
    EXPECT_LE(SumOfSquares(Matched(line, target), line, target), 1e-8);
    for (Point& p : target) p = -1.0 * p;
    EXPECT_LE(SumOfSquares(Matched(line, target), line, target), 1e-8);
}

struct HalfTurnRow {
    const char* name;
    Point direction, axis;
};
const HalfTurnRow kHalfTurns[] = {
    {"AlongX", {1, 0, 0}, {0, 1, 0}},
    {"AgainstX", {-1, 0, 0}, {0, 1, 0}},
    {"AlongY", {0, 1, 0}, {1, 0, 0}},
    {"AlongZ", {0, 0, 1}, {1, 0, 0}},
    {"InThePlaneOfXAndY", {1, 1, 0}, {1, -1, 0}},
    {"Askew", {1, 2, 2}, {8, -2, -2}},  // x less its part along the line
};

TEST(PickPointMatching, OppositeDirectionsGiveAlwaysTheSameHalfTurn) {
    for (const HalfTurnRow& row : kHalfTurns)
        for (const std::size_t count : {std::size_t{2}, std::size_t{5}}) {
            SCOPED_TRACE(row.name);
            const Points source = OnLine(row.direction, count, {3, 4, 5});
            Points target = OnLine(-1.0 * row.direction, count, {-30, 8, 1});
            const Motion half = reference::MotionAbout(row.axis, std::numbers::pi);
            const Motion fit = Matched(source, target);
            ExpectRotation(fit);
            for (std::size_t i = 0; i < 3; ++i)
                for (std::size_t k = 0; k < 3; ++k) EXPECT_NEAR(fit.rows[i][k], half.rows[i][k], 2e-6) << i << ' ' << k;
            EXPECT_LE(SumOfSquares(fit, source, target), 1e-9);
        }
}

TEST(PickPointMatching, AlmostOppositeDirectionsMeetExactly) {
    for (const double angle : {1e-2, 1e-4, 1e-5, 1e-6, 3e-7, 1e-7}) {
        const Points source = {{0, 0, 0}, {0, 0, 1}};
        const Points target = {{0, 0, 0}, {0, std::sin(angle), -std::cos(angle)}};
        const Motion fit = Matched(source, target);
        ExpectRotation(fit);
        EXPECT_LE(SumOfSquares(fit, source, target), 1e-13) << angle;
    }
}

TEST(PickPointMatching, PairsThatDoNotSayWhichEndIsWhichTurnByTheShorterWay) {
    const Points source = {{-1, 0, 0}, {0, 0, 0}, {1, 0, 0}}, target = {{1, 0, 0}, {-2, 0, 0}, {1, 0, 0}};
    ExpectMotion(Matched(source, target), Motion{}, source);
}

// A triangle with a height of the limit, and of half and twice of it, above a line of length 2 about the origin.
TEST(PickPointMatching, AHeightBelowRoundingIsALine) {
    for (const double height : {0.5, 2.0}) {
        const double extent = std::sqrt(2.0), norm = extent;
        // The middle of three points is sqrt(2/3) of its height away from the fitted line.
        const double limit = 0x1p-24 * norm + 0x1p-20 * extent;
        const double y = height * limit / std::sqrt(2.0 / 3.0);
        const Points source = {{-1, 0, 0}, {0, y, 0}, {1, 0, 0}};
        // A quarter turn about the line.
        const Motion quarter = reference::MotionAbout({1, 0, 0}, std::numbers::pi / 2);
        const Motion fit = Matched(source, Moved(quarter, source));
        if (height < 1)
            EXPECT_LE(reference::AngleBetween(fit, Motion{}), 1e-5) << "no rotation about the line";
        else
            EXPECT_LE(reference::AngleBetween(fit, quarter), 1e-3);
    }
}

TEST(PickPointMatching, ALineFarFromTheOriginIsALine) {
    std::mt19937 random(9);
    for (int i = 0; i < 50; ++i) {
        const Point from = reference::RandomMotion(random, 1).rows[0], to = reference::RandomMotion(random, 1).rows[0];
        // Coordinates of 1e6 have steps of 1/16 and the lines are 25 long: an error of 1/32 per coordinate.
        ExpectShortestRotation(OnLine(from, 6, {1e6, -3e5, 7e5}), OnLine(to, 6, {-1e6, 1e6, 2}), from, to,
                               4.0 / 32 / 25 * std::sqrt(3.0));
    }
}

TEST(PickPointMatching, PointsThatAreAllTheSameAreRefusedOnEitherSide) {
    const Points same = {{4, 5, 6}, {4, 5, 6}, {4, 5, 6}}, other = {{0, 0, 0}, {10, 0, 0}, {0, 10, 0}};
    ExpectRefused(same, other);
    ExpectRefused(other, same);
    ExpectRefused(same, same);
    ExpectRefused(Points(2), {other[0], other[1]});
    ExpectRefused({{1e6, 1e6, 1e6}, {1e6 + 0.0625, 1e6, 1e6}}, {other[0], other[1]});
}

TEST(PickPointMatching, FewerThanTwoPairsAreRefused) {
    const float points[6] = {1, 2, 3, 4, 5, 6};
    for (const int count : {1, 0, -1, std::numeric_limits<int>::min()}) {
        std::vector<float> result(12, kUntouched);
        EXPECT_LT(LANDLL_PickPointMatching(count, points, points, result.data()), 0);
        EXPECT_EQ(result, std::vector<float>(12, kUntouched));
    }
}

TEST(PickPointMatching, NullPointersAreRefused) {
    const float points[6] = {1, 2, 3, 4, 5, 6};
    std::vector<float> result(12, kUntouched);
    EXPECT_LT(LANDLL_PickPointMatching(2, nullptr, points, result.data()), 0);
    EXPECT_LT(LANDLL_PickPointMatching(2, points, nullptr, result.data()), 0);
    EXPECT_LT(LANDLL_PickPointMatching(2, points, points, nullptr), 0);
    EXPECT_EQ(result, std::vector<float>(12, kUntouched));
}

TEST(PickPointMatching, EveryCoordinateMustBeFinite) {
    const Points good = {{0, 0, 0}, {10, 0, 0}, {0, 10, 0}};
    for (const double bad : {std::numeric_limits<double>::quiet_NaN(), std::numeric_limits<double>::infinity(),
                             -std::numeric_limits<double>::infinity()})
        for (std::size_t i = 0; i < 9; ++i) {
            Points points = good;
            points[i / 3][i % 3] = bad;
            ExpectRefused(points, good);
            ExpectRefused(good, points);
        }
}

// Powers of two only change the exponents: the rotation has the same bits.
TEST(PickPointMatching, HugeAndTinyCoordinatesGiveTheSameRotation) {
    std::mt19937 random(10);
    const Points source = RandomPoints(random, 4, 1), target = RandomPoints(random, 4, 1);
    const std::vector<float> plain = Match(source, target).numbers;
    for (const double scale : {0x1p100, 0x1p120, 0x1p-100, 0x1p-120}) {
        Points from = source, to = target;
        for (std::size_t i = 0; i < from.size(); ++i) from[i] = scale * from[i], to[i] = scale * to[i];
        const Outcome outcome = Match(from, to);
        EXPECT_EQ(outcome.status, 0);
        for (std::size_t i = 0; i < 9; ++i) EXPECT_EQ(outcome.numbers[i], plain[i]) << scale << ' ' << i;
        for (std::size_t i = 9; i < 12; ++i)
            EXPECT_NEAR(outcome.numbers[i] / scale, plain[i], 2 * kHalfUlp * std::abs(plain[i])) << scale << ' ' << i;
    }
}

TEST(PickPointMatching, TheSmallestFloatsHaveADirection) {
    const double step = std::numeric_limits<float>::denorm_min();
    const Points source = {{0, 0, 0}, {1000 * step, 0, 0}}, target = {{0, 0, 0}, {0, 1000 * step, 0}};
    const Motion fit = Matched(source, target);
    EXPECT_LE(reference::AngleBetween(fit, reference::MotionAbout({0, 0, 1}, std::numbers::pi / 2)), 1e-6);
}

TEST(PickPointMatching, AnExtentOfOneFarFromTheOriginIsResolved) {
    std::mt19937 random(11);
    const Point far = {1e6, -1e6, 5e5};
    for (int i = 0; i < 50; ++i) {
        const Points source = Rounded(Moved({.t = far}, {{0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {0, 0, 1}}));
        const Motion turn = reference::RandomMotion(random, 0);
        const Motion motion = Compose(Compose({.t = far}, turn), Motion{.t = -1.0 * far});
        const Points target = Rounded(Moved(motion, source));
        const Motion fit = Matched(source, target);
        ExpectRotation(fit);
        // The targets are rounded to steps of 1/16: an error of at most 1/32 per coordinate of 4 points, over the
        // smallest moment of the points about their mean.
        const auto scatter = reference::PrincipalScatter(source);
        EXPECT_LE(reference::AngleBetween(fit, turn), std::sqrt(12.0) / 32 / std::sqrt(scatter[0] + scatter[1]));
        EXPECT_LE(Length(fit(reference::Mean(source)) - reference::Mean(target)), kHalfUlp * Length(fit.t) + 1e-6)
            << "rounding of the translation";
    }
}

TEST(PickPointMatching, TheRoundingOfTheRotationMovesNoPointsFarFromTheOrigin) {
    std::mt19937 random(14);
    for (int i = 0; i < 50; ++i) {
        const Points source = RandomPoints(random, 5, 20, {1e6, 2e6, 3e5});
        const Points target = Rounded(Moved(reference::RandomMotion(random, 0), source));
        const Motion fit = Matched(source, target);
        EXPECT_LE(Length(fit(reference::Mean(source)) - reference::Mean(target)), kHalfUlp * Length(fit.t) + 1e-6);
    }
}

TEST(PickPointMatching, ATranslationThatNoFloatHoldsIsRefused) {
    ExpectRefused({{-3e38, 0, 0}, {-2e38, 0, 0}}, {{2e38, 0, 0}, {3e38, 0, 0}});
    EXPECT_EQ(Match({{-1e38, 0, 0}, {-2e38, 0, 0}}, {{1e38, 0, 0}, {0, 0, 0}}).status, 0);
}

TEST(PickPointMatching, ThePairsMayComeInAnyOrder) {
    std::mt19937 random(12);
    Points source = RandomPoints(random, 10, 50), target = WithNoise(random, source, 0.5);
    const Motion fit = Matched(source, target);
    std::vector<std::size_t> order = {7, 2, 9, 0, 4, 1, 3, 8, 6, 5};
    Points from, to;
    for (const std::size_t i : order) from.push_back(source[i]), to.push_back(target[i]);
    ExpectMotion(Matched(from, to), fit, source, 2 * kHalfUlp);
    std::rotate(to.begin(), to.begin() + 1, to.end());
    EXPECT_GT(reference::AngleBetween(Matched(from, to), fit), 0.1) << "other pairs are another motion";
}

TEST(PickPointMatching, AllPairsCount) {
    std::mt19937 random(13);
    const Points source = RandomPoints(random, 20000, 50);
    const Motion motion = reference::RandomMotion(random, 100);
    const Points target = WithNoise(random, Moved(motion, source), 1.0);
    const Motion fit = Matched(source, target);
    ExpectMotion(fit, reference::FitByQuaternion(source, target), source, 1e-8);
    EXPECT_LE(reference::AngleBetween(fit, motion), 1e-3) << "the noise of 20000 pairs has a small mean";
}

}  // namespace
