// Lines and flood fills in images.
#include "cut/CutImage.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>

#include "cut/CutReference.h"

namespace {

using Image = std::vector<std::uint32_t>;

/// Rows of text: '#' is 1, everything else 0.
Image Picture(std::initializer_list<const char*> rows) {
    Image image;
    for (const char* row : rows)
        for (; *row != 0; ++row) image.push_back(*row == '#' ? 1 : 0);
    return image;
}

TEST(DrawLine, StepsAsideWhereTheErrorBecomesNegative) {
    // Over 5 columns and 2 rows: the error starts at 2.5 and loses 2 per column.
    Image image(7 * 4);
    DrawLine({1, 1}, {6, 3}, 7, image, 1);
    EXPECT_EQ(image, Picture({".......",  //
                              ".##....",  // 0.5, -1.5 and a step: 3.5
                              "...##..",  // 1.5, -0.5 and a step: 4.5
                              ".....##"}));
}

TEST(DrawLine, FollowsTheLongerAxisUpward) {
    Image image(3 * 5);
    DrawLine({2, 0}, {0, 4}, 3, image, 1);
    Image back(3 * 5);
    DrawLine({0, 4}, {2, 0}, 3, back, 1);
    EXPECT_EQ(image, back);
    for (std::size_t y = 0; y < 5; ++y) EXPECT_EQ(std::count(&image[3 * y], &image[3 * y] + 3, 1u), 1) << "row " << y;
}

TEST(DrawLine, OfOnePointSetsOnePixel) {
    Image image(9);
    DrawLine({1, 2}, {1, 2}, 3, image, 7);
    EXPECT_EQ(image, (Image{0, 0, 0, 0, 0, 0, 0, 7, 0}));
}

TEST(DrawLine, HasThePixelsOfThePlainMethodInAllDirections) {
    constexpr int kSide = 23;
    for (int x = 0; x < kSide; ++x)
        for (int y = 0; y < kSide; ++y)
            for (const cut_reference::Point& from : {cut_reference::Point{11, 11}, {0, 0}, {22, 3}}) {
                Image image(kSide * kSide), expected(kSide * kSide);
                DrawLine({from.first, from.second}, {x, y}, kSide, image, 5);
                cut_reference::DrawLine(from, {x, y}, kSide, expected, 5);
                ASSERT_EQ(image, expected) << from.first << " " << from.second << " to " << x << " " << y;
            }
}

TEST(DrawLine, HasThePixelsOfThePlainMethodOverALargeWindow) {
    std::mt19937 random(1);
    constexpr int kWidth = 3840, kHeight = 2160;
    const auto point = [&random] {
        return cut_reference::Point{std::uniform_int_distribution<int>(0, kWidth - 1)(random),
                                    std::uniform_int_distribution<int>(0, kHeight - 1)(random)};
    };
    Image image(static_cast<std::size_t>(kWidth) * kHeight), expected(image.size());
    for (std::uint32_t i = 1; i <= 100; ++i) {
        const auto from = point(), to = point();
        DrawLine({from.first, from.second}, {to.first, to.second}, kWidth, image, i);
        cut_reference::DrawLine(from, to, kWidth, expected, i);
    }
    EXPECT_EQ(image, expected);
}

using Markers = std::vector<std::uint8_t>;

/// Rows of text: '#' is a line, 'o' reached, everything else empty.
Markers MarkerPicture(std::initializer_list<const char*> rows) {
    Markers markers;
    for (const char* row : rows)
        for (; *row != 0; ++row)
            markers.push_back(*row == '#' ? kLinePixel : *row == 'o' ? kReachedPixel : kEmptyPixel);
    return markers;
}

/// The fill pixel by pixel, with the reserved stack of a session.
void ExpectPlainFill(const Markers& before, LassoPixel start, int width, int height) {
    Image expected(before.begin(), before.end());
    cut_reference::FloodFill({start.x, start.y}, width, height, expected, kEmptyPixel, kReachedPixel);
    Markers markers = before;
    std::vector<LassoPixel> stack;
    stack.reserve(markers.size());
    const std::size_t reserved = stack.capacity();
    FloodFill(start, width, height, markers, stack);
    EXPECT_EQ(markers, Markers(expected.begin(), expected.end())) << width << " x " << height;
    EXPECT_EQ(stack.capacity(), reserved) << "the fill has allocated";
    EXPECT_TRUE(stack.empty());
}

TEST(FloodFill, DoesNotPassDiagonally) {
    Markers markers = MarkerPicture({"..#..",  //
                                     ".#.#.",  //
                                     "..#.."});
    std::vector<LassoPixel> stack;
    FloodFill({0, 0}, 5, 3, markers, stack);
    EXPECT_EQ(markers, MarkerPicture({"oo#..",  //
                                      "o#.#.",  //
                                      "oo#.."}));
}

TEST(FloodFill, FromALineChangesNothing) {
    Markers markers = MarkerPicture({"##", ".."});
    const Markers before = markers;
    std::vector<LassoPixel> stack;
    FloodFill({0, 0}, 2, 2, markers, stack);
    EXPECT_EQ(markers, before);
}

TEST(FloodFill, FindsItsWayThroughASpiral) {
    Markers markers = MarkerPicture({"........",  //
                                     "#######.",  //
                                     "......#.",  //
                                     ".####.#.",  //
                                     ".#..#.#.",  //
                                     ".#.##.#.",  //
                                     ".#....#.",  //
                                     ".######.",  //
                                     "........"});
    Markers expected = markers;
    std::ranges::replace(expected, kEmptyPixel, kReachedPixel);  // all of it is connected
    std::vector<LassoPixel> stack;
    FloodFill({3, 4}, 8, 9, markers, stack);
    EXPECT_EQ(markers, expected);
}

TEST(FloodFill, ReachesWhatThePixelByPixelFillReachesWithinTheReservedStack) {
    std::mt19937 random(2);
    for (int round = 0; round < 3000 && !testing::Test::HasFailure(); ++round) {
        const int width = std::uniform_int_distribution<int>(1, 90)(random),
                  height = std::uniform_int_distribution<int>(1, 24)(random);
        const int share = std::uniform_int_distribution<int>(0, 60)(random);
        Markers markers(static_cast<std::size_t>(width * height));
        for (std::uint8_t& marker : markers)
            marker = std::uniform_int_distribution<int>(0, 99)(random) < share ? kLinePixel : kEmptyPixel;
        ExpectPlainFill(markers,
                        {std::uniform_int_distribution<int>(0, width - 1)(random),
                         std::uniform_int_distribution<int>(0, height - 1)(random)},
                        width, height);
    }
}

// Combs and checkered rows have the most spans.
TEST(FloodFill, OfCombsStaysWithinTheReservedStack) {
    for (const int side : {5, 16, 33, 65}) {
        for (int pattern = 0; pattern < 4; ++pattern) {
            Markers markers;
            for (int y = 0; y < side; ++y)
                for (int x = 0; x < side; ++x) {
                    const bool isTooth = pattern == 0   ? x % 2 == 1 && y > 0
                                         : pattern == 1 ? x % 2 == 1 && y % 4 != 0
                                         : pattern == 2 ? y % 2 == 1 && x != (y % 4 == 1 ? 0 : side - 1)
                                                        : x % 2 == 1 && y % 2 == 1;
                    markers.push_back(isTooth ? kLinePixel : kEmptyPixel);
                }
            for (const LassoPixel start : {LassoPixel{0, 0}, {side / 2, 0}, {0, side - 1}})
                ExpectPlainFill(markers, start, side, side);
        }
    }
}

}  // namespace
