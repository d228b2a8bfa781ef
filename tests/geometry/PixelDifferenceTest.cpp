// Differences of pixels: exact where they have a number, the nearest number otherwise.
#include "geometry/PixelDifference.h"

#include <gtest/gtest.h>

namespace {

constexpr std::int32_t kMin = std::numeric_limits<std::int32_t>::min(), kMax = std::numeric_limits<std::int32_t>::max();

TEST(PixelDifference, IsExactWhereItHasANumber) {
    EXPECT_EQ(PixelDifference(640, 100), 540);
    EXPECT_EQ(PixelDifference(-30000, 30000), -60000);
    EXPECT_EQ(PixelDifference(kMin, 0), kMin);
    EXPECT_EQ(PixelDifference(kMax, kMax), 0);
    EXPECT_EQ(PixelDifference(-1, kMax), kMin);
    EXPECT_EQ(PixelDifference(-1, kMin), kMax);
}

TEST(PixelDifference, IsTheNearestNumberOtherwise) {
    EXPECT_EQ(PixelDifference(0, kMin), kMax);
    EXPECT_EQ(PixelDifference(kMax, -1), kMax);
    EXPECT_EQ(PixelDifference(kMin, 1), kMin);
    EXPECT_EQ(PixelDifference(kMin, kMax), kMin);
}

}  // namespace
