// Conversion of the pixels that OpenGL reads back to the integers of a host.
#include "render/FlipPixels.h"

#include <gtest/gtest.h>

#include <random>
#include <vector>

namespace {

constexpr std::uint32_t kGuard = 0xA5A5A5A5;

TEST(FlipToArgb, PutsTheTopRowFirstAndAlphaIntoTheHighByte) {
    const std::uint8_t bottomUp[] = {0x11, 0x12, 0x13, 0x14, 0x21, 0x22, 0x23, 0x24,   //
                                     0x31, 0x32, 0x33, 0x34, 0x41, 0x42, 0x43, 0x44,   //
                                     0x00, 0x00, 0x00, 0xFF, 0xFF, 0x80, 0x01, 0x00};  // the picture's top row
    std::vector<std::uint32_t> picture(6, 0xDDDDDDDD);
    FlipToArgb(bottomUp, 2, picture);
    EXPECT_EQ(picture,
              (std::vector<std::uint32_t>{0xFF000000, 0x00FF8001, 0x34313233, 0x44414243, 0x14111213, 0x24212223}));
}

TEST(FlipToArgb, KeepsTheOrderWithinARow) {
    const std::uint8_t row[] = {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12};
    std::vector<std::uint32_t> picture(3);
    FlipToArgb(row, 3, picture);
    EXPECT_EQ(picture, (std::vector<std::uint32_t>{0x04010203, 0x08050607, 0x0C090A0B}));
}

// One row of guard pixels before and after the empty picture.
TEST(FlipToArgb, WritesNothingForAnEmptyPicture) {
    const std::vector<std::uint8_t> bytes(16, 0x11);
    std::vector<std::uint32_t> guarded(4, kGuard);
    FlipToArgb(std::span(bytes).first(0), 2, std::span(guarded).subspan(2, 0));
    EXPECT_EQ(guarded, std::vector<std::uint32_t>(4, kGuard));
}

struct Size {
    std::size_t width, height;
};
void PrintTo(const Size& size, std::ostream* out) { *out << size.width << "x" << size.height; }
class FlipToArgbAtSize : public testing::TestWithParam<Size> {};

// The source is at an odd address; a guard pixel before and after the result detects writes outside it.
TEST_P(FlipToArgbAtSize, MatchesAConversionByteByByte) {
    const auto [width, height] = GetParam();
    std::mt19937 random(7);
    std::vector<std::uint8_t> bytes(4 * width * height + 1);
    for (std::uint8_t& byte : bytes) byte = static_cast<std::uint8_t>(random());
    std::vector<std::uint32_t> guarded(width * height + 2, kGuard);
    FlipToArgb(std::span(bytes).subspan(1), width, std::span(guarded).subspan(1, width * height));

    std::vector<std::uint32_t> expected(width * height + 2, kGuard);
    for (std::size_t y = 0; y < height; ++y)
        for (std::size_t x = 0; x < width; ++x) {
            const std::uint8_t* const pixel = &bytes[1 + 4 * (y * width + x)];
            const std::uint32_t r = pixel[0], g = pixel[1], b = pixel[2], a = pixel[3];
            expected[1 + (height - 1 - y) * width + x] = (a << 24) | (r << 16) | (g << 8) | b;
        }
    EXPECT_EQ(guarded, expected);
}
INSTANTIATE_TEST_SUITE_P(Sizes, FlipToArgbAtSize,
                         testing::Values(Size{1, 1}, Size{1, 9}, Size{3, 2}, Size{7, 5}, Size{8, 8}, Size{33, 17},
                                         Size{2048, 3}),
                         testing::PrintToStringParamName());

}  // namespace
