// One step of the turntable by hand: when it ends, by which angle it rotates, and about which axis.
#include "view/Turntable.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <limits>

#include "view/VectorHelp.h"

namespace {

constexpr std::int64_t kSecond = 1'000'000'000;  // ticks

TurntableClock Clock(double start, double last, double now) {
    const auto ticks = [](double seconds) { return static_cast<std::int64_t>(std::llround(seconds * kSecond)); };
    return {ticks(start), ticks(last), ticks(now), kSecond};
}

// ---- the end

TEST(StepTurntable, EndsAfterTheTimeOfOneRevolution) {
    EXPECT_FALSE(StepTurntable(Clock(5, 6.9, 6.99), 0.5f).ended);
    EXPECT_FALSE(StepTurntable(Clock(5, 6.9, 7.0), 0.5f).ended);
    EXPECT_TRUE(StepTurntable(Clock(5, 6.9, 7.001), 0.5f).ended);
    EXPECT_FALSE(StepTurntable(Clock(0, 0, 0.249), 4.0f).ended);
    EXPECT_TRUE(StepTurntable(Clock(0, 0, 0.251), 4.0f).ended);
}

TEST(StepTurntable, DoesNotRotateInTheStepThatEndsIt) {
    EXPECT_EQ(StepTurntable(Clock(5, 6.9, 7.5), 0.5f).revolutions, 0.0f);
}

TEST(StepTurntable, AtSpeedZeroNeverEndsAndDoesNotRotate) {
    for (const double now : {0.0, 1.0, 86400.0, 5e9}) {
        const TurntableStep step = StepTurntable(Clock(0, 0, now), 0.0f);
        EXPECT_FALSE(step.ended) << now;
        EXPECT_EQ(step.revolutions, 0.0f) << now;
    }
}

TEST(StepTurntable, AtANegativeSpeedEndsWithTheFirstStepWithoutRotating) {
    for (const float speed : {-0.5f, -1000.0f, -1e-6f, -0.0f})
        for (const double now : {5.0, 5.001, 900.0}) {
            const TurntableStep step = StepTurntable(Clock(5, 5, now), speed);
            EXPECT_TRUE(step.ended) << speed << " at " << now;
            EXPECT_EQ(step.revolutions, 0.0f);
        }
}

TEST(StepTurntable, MeasuresTheTimeByTheFrequencyOfTheCounter) {
    const TurntableClock slow{.start = 100, .last = 130, .now = 140, .frequency = 10};
    EXPECT_FALSE(StepTurntable(slow, 0.25f).ended) << "4 seconds of 4";
    EXPECT_EQ(StepTurntable(slow, 0.25f).revolutions, 0.25f) << "1 second";
    EXPECT_TRUE(StepTurntable(slow, 0.26f).ended);
}

TEST(StepTurntable, KeepsItsPrecisionWhenTheCounterRanForYears) {
    constexpr std::int64_t kYears = 300'000'000 * kSecond;
    const TurntableClock late{kYears, kYears + kSecond, kYears + kSecond + 16'000'000, kSecond};
    EXPECT_FLOAT_EQ(StepTurntable(late, 0.5f).revolutions, 0.008f);
}

// ---- the angle

// Rounded by hand to single precision after each operation; in double precision the last digit would be another.
TEST(StepTurntable, IsComputedInSinglePrecision) {
    const auto revolutions = [](std::int64_t ticks, float speed) {
        return StepTurntable({.start = 0, .last = 0, .now = ticks, .frequency = kSecond}, speed).revolutions;
    };
    EXPECT_EQ(revolutions(16666667, 0.37f), 0x1.942382p-8f) << "double precision gives 0x1.942380p-8";
    EXPECT_EQ(revolutions(33333333, 0.2f), 0x1.b4e81ap-8f) << "double precision gives 0x1.b4e81cp-8";
    EXPECT_EQ(revolutions(16666667, 0.2f), 0x1.b4e81cp-9f) << "divided first it is 0x1.b4e81ep-9";
    EXPECT_EQ(revolutions(123456789, 1.7f), 0x1.add3c4p-3f) << "divided first it is 0x1.add3c2p-3";
}

double TotalRevolutions(double framesPerSecond, double seconds, float speed) {
    double total = 0, last = 0;
    for (double now = 1 / framesPerSecond; now < seconds + 1e-9; now += 1 / framesPerSecond) {
        const TurntableStep step = StepTurntable(Clock(0, last, now), speed);
        if (step.ended) break;
        total += step.revolutions;
        last = now;
    }
    return total;
}

TEST(StepTurntable, RotatesByTheSameAngleAtAnyFrameRate) {
    for (const double rate : {1.0, 4.0, 60.0, 1000.0})
        EXPECT_NEAR(TotalRevolutions(rate, 3.0, 0.25f), 0.75, 1e-5) << rate << " frames per second";
}

TEST(StepTurntable, EndsWithinOneFrameOfAWholeRevolution) {
    for (const double rate : {3.0, 7.0, 60.0}) {
        const double total = TotalRevolutions(rate, 100.0, 0.23f);
        EXPECT_LT(total, 1.0 + 1e-5) << rate;
        EXPECT_GT(total, 1.0 - 0.23 / rate - 1e-5) << rate;
    }
}

// ---- the rotated frame

// The view from (0, -1, 0); a quarter of a revolution later from (1, 0, 0).
TEST(RotateFrameAboutAxis, MovesTheCameraAnticlockwiseAroundTheAxis) {
    const ViewFrame front{{1, 0, 0}, {0, 0, 1}, {0, -1, 0}, {5, 6, 7}};
    const ViewFrame turned = RotateFrameAboutAxis(front, {0, 0, 1}, 0.25f);
    ExpectNear(turned.wx, {0, 1, 0}, 1e-7, "wx");
    ExpectNear(turned.wy, {0, 0, 1}, 1e-7, "wy");
    ExpectNear(turned.wz, {1, 0, 0}, 1e-7, "wz");
    EXPECT_EQ(turned.center, front.center);
}

TEST(RotateFrameAboutAxis, RotatesBackByNegativeRevolutionsAndNotByZero) {
    const ViewFrame front{{1, 0, 0}, {0, 0, 1}, {0, -1, 0}, {5, 6, 7}};
    ExpectNear(RotateFrameAboutAxis(front, {0, 0, 1}, -0.25f).wx, {0, -1, 0}, 1e-7, "wx");
    const ViewFrame same = RotateFrameAboutAxis(front, {0, 0, 1}, 0.0f);
    EXPECT_EQ(same.wx, front.wx);
    EXPECT_EQ(same.wy, front.wy);
    EXPECT_EQ(same.wz, front.wz);
}

// The axis is the world's, not the screen's: an oblique view keeps its inclination.
TEST(RotateFrameAboutAxis, KeepsTheComponentsAlongTheAxisOfTheTurntable) {
    const float s = 0.70710678f;
    const ViewFrame oblique{{-s, s, 0}, {-0.5f, -0.5f, s}, {0.5f, 0.5f, s}, {}};
    const ViewFrame turned = RotateFrameAboutAxis(oblique, {0, 0, 1}, 0.125f);  // 45 degrees
    ExpectNear(turned.wx, {-1, 0, 0}, 1e-7, "wx");
    ExpectNear(turned.wy, {0, -s, s}, 1e-7, "wy");
    ExpectNear(turned.wz, {0, s, s}, 1e-7, "wz");
}

TEST(RotateFrameAboutAxis, RotatesAboutAnyAxis) {
    ExpectNear(RotateFrameAboutAxis({}, {0, 3, 0}, 0.25f).wx, {0, 0, -1}, 1e-7, "wx about Y");
    ExpectNear(RotateFrameAboutAxis({}, {1, 1, 1}, 1.0f / 3).wx, {0, 1, 0}, 3e-7, "a third about the diagonal");
}

}  // namespace
