// Pixels as fractions of the window.
#include "view/WindowFraction.h"

#include <gtest/gtest.h>

namespace {

TEST(WindowFraction, IsThePixelDividedByTheSize) {
    EXPECT_EQ(WindowFraction<double>(160, 360, 640, 480), (std::array{0.25, 0.75}));
    EXPECT_EQ(WindowFraction<float>(-64, 960, 640, 480), (std::array{-0.1f, 2.0f})) << "a drag outside the window";
}

TEST(WindowFraction, HasThePrecisionOfItsType) {
    EXPECT_EQ(WindowFraction<double>(1, 2, 3, 7), (std::array{1.0 / 3.0, 2.0 / 7.0}));
    EXPECT_EQ(WindowFraction<float>(1, 2, 3, 7), (std::array{1.0f / 3.0f, 2.0f / 7.0f}));
}

TEST(WindowFraction, IsZeroInADirectionWithoutPixels) {
    EXPECT_EQ(WindowFraction<double>(5, 120, 0, 480), (std::array{0.0, 0.25}));
    EXPECT_EQ(WindowFraction<double>(160, 5, 640, -1), (std::array{0.25, 0.0}));
}

}  // namespace
