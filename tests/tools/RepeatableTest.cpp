// Sines and random numbers, which must be the same on every machine.
#include "simulate-scans/Repeatable.h"

#include <gtest/gtest.h>

#include <cmath>
#include <numbers>

namespace simulate {
namespace {

TEST(SinTurns, AgreesWithTheStandardLibrary) {
    for (int i = -1000; i <= 1000; ++i) {
        const double turns = i / 400.0;
        ASSERT_NEAR(SinTurns(turns), std::sin(turns * 2 * std::numbers::pi), 2e-14) << turns;
        ASSERT_NEAR(CosTurns(turns), std::cos(turns * 2 * std::numbers::pi), 2e-14) << turns;
    }
}

TEST(RandomStream, IsSplitmix64) {
    // With seed, scan and pixel 0 the state starts at 0, and these are the generator's published first numbers for it.
    RandomStream random(0, 0, 0);
    EXPECT_EQ(random.Next(), 0xE220A8397B1DCDAFu);
    EXPECT_EQ(random.Next(), 0x6E789E6AA1B965F4u);
    EXPECT_EQ(random.Next(), 0x06C45D188009454Fu);
}

TEST(RandomStream, DiffersBySeedScanAndPixel) {
    const std::uint64_t base = RandomStream(1, 2, 3).Next();
    EXPECT_NE(base, RandomStream(2, 2, 3).Next());
    EXPECT_NE(base, RandomStream(1, 3, 3).Next());
    EXPECT_NE(base, RandomStream(1, 2, 4).Next());
    EXPECT_NE(base, RandomStream(1, 3, 2).Next());
}

TEST(RandomStream, UniformNumbersAreEvenlyDistributed) {
    constexpr int kCount = 100'000;
    int tenth[10] = {};
    for (int i = 0; i < kCount; ++i) {
        const float value = RandomStream(7, 1, static_cast<std::uint64_t>(i)).Uniform();
        ASSERT_GE(value, 0.0f);
        ASSERT_LT(value, 1.0f);
        ++tenth[static_cast<int>(value * 10)];
    }
    for (const int count : tenth) EXPECT_NEAR(count, kCount / 10, 5 * std::sqrt(kCount * 0.09));
}

TEST(RandomStream, GaussianNumbersHaveMeanZeroAndDeviationOne) {
    constexpr int kCount = 200'000;
    double sum = 0, squares = 0;
    int beyondOne = 0, beyondTwo = 0;
    for (int i = 0; i < kCount; ++i) {
        const double value = double{RandomStream(7, 1, static_cast<std::uint64_t>(i)).Gaussian()};
        ASSERT_LE(std::abs(value), 6.0);
        sum += value;
        squares += value * value;
        beyondOne += std::abs(value) > 1;
        beyondTwo += std::abs(value) > 2;
    }
    EXPECT_NEAR(sum / kCount, 0, 5 / std::sqrt(kCount));
    EXPECT_NEAR(squares / kCount, 1, 5 * std::sqrt(2.0 / kCount));
    EXPECT_NEAR(beyondOne / double{kCount}, 0.3173, 0.01);  // fractions of the normal distribution
    EXPECT_NEAR(beyondTwo / double{kCount}, 0.0455, 0.005);
}

}  // namespace
}  // namespace simulate
