#include "PictureAlpha.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <ostream>

namespace {

using KV_ScenePane::Picture;

std::uint32_t Grey(int value) { return 0xFF000000u | static_cast<std::uint32_t>(value) * 0x010101u; }

/// One pixel, as it is on black and on white.
std::uint32_t AlphaOf(std::uint32_t onBlack, std::uint32_t onWhite) {
    Picture black{1, 1, {onBlack}};
    SetAlphaFrom(black, {1, 1, {onWhite}});
    return black.pixels.front();
}

struct Case {
    const char* name;
    std::uint32_t onBlack, onWhite, result;
};
void PrintTo(const Case& row, std::ostream* out) { *out << row.name; }

const Case kCases[] = {
    {"NothingCovers", 0xFF000000, 0xFFFFFFFF, 0},
    {"Opaque", 0xFF123456, 0xFF123456, 0xFF123456},
    {"OpaqueBlack", 0xFF000000, 0xFF000000, 0xFF000000},
    {"OpaqueWhite", 0xFFFFFFFF, 0xFFFFFFFF, 0xFFFFFFFF},
    // 128 of 255 is added by the white: a = 127 / 255; black / a: 64 / a is 128.5039.
    {"HalfOfOrange", 0xFF7F4020, 0xFFFFC0A0, 0x7FFF8140},
    {"HalfOfBlack", 0xFF000000, 0xFF808080, 0x7F000000},
    {"ALittle", 0xFF010101, 0xFFFFFFFF, 0x01FFFFFF},
    // Roundings of one step in single channels.
    {"OneChannelDiffers", 0xFF646464, 0xFF646465, 0xFF646464},
    {"TwoChannelsDiffer", 0xFF646464, 0xFF646565, 0xFE646464},
    {"DarkerOnWhite", 0xFF646464, 0xFF636364, 0xFF646464},
};
class AlphaOfTwoPixels : public testing::TestWithParam<Case> {};

TEST_P(AlphaOfTwoPixels, IsWhatTheirDifferenceLeaves) {
    EXPECT_EQ(AlphaOf(GetParam().onBlack, GetParam().onWhite), GetParam().result);
}
INSTANTIATE_TEST_SUITE_P(PictureAlpha, AlphaOfTwoPixels, testing::ValuesIn(kCases),
                         [](const auto& row) { return row.param.name; });

// Blended in double precision and rounded, as a driver does: the alpha comes back to a step, and the colour to the step
// that the rounding of the blended colour is worth.
TEST(SetAlphaFrom, UndoesTheBlendingOfEveryAlphaAndGrey) {
    for (int alpha = 1; alpha <= 255; ++alpha) {
        for (int grey = 0; grey <= 255; grey += 5) {
            const double a = alpha / 255.0;
            const auto black = static_cast<int>(std::lround(a * grey));
            const auto white = static_cast<int>(std::lround(a * grey + (1 - a) * 255));
            const std::uint32_t pixel = AlphaOf(Grey(black), Grey(white));
            ASSERT_LE(std::abs(static_cast<int>(pixel >> 24) - alpha), 1) << alpha << ", " << grey;
            if (alpha < 8) continue;  // a colour of a few steps only
            const double step = 255.0 / alpha;
            ASSERT_LE(std::abs(static_cast<int>(pixel & 0xFF) - grey), 2 * step + 1) << alpha << ", " << grey;
        }
    }
}

}  // namespace
