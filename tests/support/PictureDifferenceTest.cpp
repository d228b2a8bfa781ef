// What the comparison of two drivers' pictures lets pass, and what it does not.
#include "support/PictureDifference.h"

#include <gtest/gtest.h>

using KV_ScenePane::Picture;
using picture_difference::Compare;
using picture_difference::EdgeMask;
using picture_difference::ShareOf;

namespace {

constexpr std::uint32_t kGround = 0xFF404040, kShape = 0xFFC08020;

Picture Plain(int width, int height, std::uint32_t color = kGround) {
    Picture picture{width, height, {}};
    picture.pixels.assign(static_cast<std::size_t>(width * height), color);
    return picture;
}

std::uint32_t& At(Picture& picture, int x, int y) {
    return picture.pixels.at(static_cast<std::size_t>(y * picture.width + x));
}

/// Fills the pixels from (left, top) to before (right, bottom).
Picture WithRectangle(Picture picture, int left, int top, int right, int bottom, std::uint32_t color = kShape) {
    for (int y = top; y < bottom; ++y)
        for (int x = left; x < right; ++x) At(picture, x, y) = color;
    return picture;
}

TEST(PictureDifference, EqualPicturesHaveNone) {
    const Picture picture = WithRectangle(Plain(20, 20), 5, 5, 15, 15);
    const auto difference = Compare(picture, picture);
    EXPECT_TRUE(difference.IsAllowed());
    EXPECT_EQ(difference.changed, 0);
    EXPECT_EQ(difference.edges, 12 * 12 - 8 * 8);
}

TEST(PictureDifference, OneStepIsAllowedAndTwoAreNot) {
    const Picture reference = Plain(9, 9, 0xFF808080);
    EXPECT_TRUE(Compare(reference, Plain(9, 9, 0xFF81807F)).IsAllowed());
    EXPECT_EQ(Compare(reference, Plain(9, 9, 0xFF81807F)).changed, 81);
    EXPECT_EQ(Compare(reference, Plain(9, 9, 0xFF808082)).wrong, 81);
    EXPECT_EQ(Compare(reference, Plain(9, 9, 0xFF7E8080)).wrong, 81);
    Picture onePixel = reference;
    At(onePixel, 4, 4) = 0xFF828080;
    EXPECT_FALSE(Compare(reference, onePixel).IsAllowed());
}

TEST(PictureDifference, AnEdgeMayMoveByOnePixelAndNotByTwo) {
    const Picture reference = WithRectangle(Plain(20, 20), 5, 5, 15, 15);
    EXPECT_EQ(Compare(reference, WithRectangle(Plain(20, 20), 4, 5, 14, 15)).unknownColors, 0);
    EXPECT_TRUE(Compare(reference, WithRectangle(Plain(20, 20), 4, 5, 14, 15)).IsAllowed());
    EXPECT_TRUE(Compare(reference, WithRectangle(Plain(20, 20), 5, 6, 15, 16)).IsAllowed());
    // Of the two columns of ten pixels the inner one is outside the mask, but for its ends.
    const auto byTwo = Compare(reference, WithRectangle(Plain(20, 20), 7, 5, 15, 15));
    EXPECT_EQ(byTwo.wrong, 8);
    EXPECT_EQ(byTwo.unknownColors, 10);
    EXPECT_FALSE(Compare(reference, WithRectangle(Plain(20, 20), 5, 5, 15, 17)).IsAllowed());
}

TEST(PictureDifference, AThinLineMayMoveAndMustNotBeMissing) {
    const Picture reference = WithRectangle(Plain(20, 20), 8, 0, 9, 20);
    EXPECT_TRUE(Compare(reference, WithRectangle(Plain(20, 20), 9, 0, 10, 20)).IsAllowed());
    EXPECT_EQ(Compare(reference, Plain(20, 20)).unknownColors, 20);
    EXPECT_FALSE(Compare(reference, Plain(20, 20)).IsAllowed());
    EXPECT_FALSE(Compare(reference, WithRectangle(Plain(20, 20), 10, 0, 11, 20)).IsAllowed());
}

TEST(PictureDifference, FewPixelsOfAnEdgeMayHaveAnotherColor) {
    const Picture reference = WithRectangle(Plain(20, 20), 5, 5, 15, 15);
    Picture red = reference;
    At(red, 5, 8) = 0xFFFF0000;  // one of 80
    EXPECT_EQ(Compare(reference, red).unknownColors, 1);
    EXPECT_EQ(Compare(reference, red).firstX, 5);
    EXPECT_EQ(Compare(reference, red).firstY, 8);
    EXPECT_TRUE(Compare(reference, red).IsAllowed());
    At(red, 5, 9) = 0xFFFF0000;
    EXPECT_FALSE(Compare(reference, red).IsAllowed());
}

// The picture of a driver that shades front faces as back faces: the shape keeps its edges and has one grey.
TEST(PictureDifference, AGreyShapeIsWrongInsideItsEdges) {
    const Picture reference = WithRectangle(Plain(40, 40), 10, 10, 30, 30);
    const auto difference = Compare(reference, WithRectangle(Plain(40, 40), 10, 10, 30, 30, 0xFF080808));
    EXPECT_EQ(difference.wrong, 18 * 18);
    EXPECT_FALSE(difference.IsAllowed());
}

TEST(PictureDifference, AnotherSizeIsADifference) { EXPECT_FALSE(Compare(Plain(4, 3), Plain(3, 4)).IsAllowed()); }

TEST(PictureDifference, TheMaskHasThePixelsBesideEdges) {
    EXPECT_EQ(ShareOf(EdgeMask(Plain(10, 10))), 0);
    // The columns on both sides of the edge.
    EXPECT_EQ(ShareOf(EdgeMask(WithRectangle(Plain(10, 10), 5, 0, 10, 10))), 0.2);
    // A step of one is no edge, one of two is.
    EXPECT_EQ(ShareOf(EdgeMask(WithRectangle(Plain(10, 10), 5, 0, 10, 10, kGround + 1))), 0);
    EXPECT_EQ(ShareOf(EdgeMask(WithRectangle(Plain(10, 10), 5, 0, 10, 10, kGround + 2))), 0.2);
}

}  // namespace
