// The number beside the head of a needle, pixel by pixel: where it is, in frames and in screenshots.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "markers/NeedleFrames.h"
#include "render/ScreenshotHelp.h"

using namespace lighting;

namespace {

class NeedleNumbers : public NeedleFrames {};

struct NumberRow {
    const char* name;
    std::int32_t id;
    Vec3 head;
    float radius;
    double zoom;
};
void PrintTo(const NumberRow& row, std::ostream* out) { *out << row.name; }

class NumberOfANeedle : public NeedleNumbers, public testing::WithParamInterface<NumberRow> {};

TEST_P(NumberOfANeedle, IsBlackToTheRightOfTheHead) {
    const NumberRow& row = GetParam();
    Look(320, 240, row.zoom);
    AddNeedle(row.id, {0, 0, -1}, row.head, {.headRadius = row.radius});
    Frame();
    const TextPicture expected = ExpectedNumber(std::to_string(row.id), row.head, row.radius);
    ASSERT_GT(expected.Count(), 20u);
    EXPECT_EQ(BlackPixels(), expected);
}

// Heads that keep the beginning of the text away from the borders of pixels, where the driver's rounding decides.
const NumberRow kNumbers[] = {
    {"Digit", 8, {0.0125, 0.0125, 0}, 1, 1},
    {"TwoDigits", 42, {-1.0125, 1.5125, 2}, 1, 1},
    {"Zero", 0, {0.5125, 0.0125, -4}, 0.5f, 1},
    {"Negative", -7, {-2.0125, -1.0125, 0}, 1, 1},
    {"Largest", 2147483647, {-5.5125, 0.0125, 0}, 0.5f, 1},
    {"Smallest", -2147483647 - 1, {-5.5125, -2.0125, 0}, 0.5f, 1},
    {"WithoutAHead", 5, {0.0125, 0.0125, 0}, 0, 1},
    {"Zoomed", 31, {0.0125, 0.0125, 0}, 1, 0.5},
    {"ZoomedOut", 31, {0.025, 0.025, 0}, 2, 2},
};
INSTANTIATE_TEST_SUITE_P(Needle, NumberOfANeedle, testing::ValuesIn(kNumbers),
                         [](const auto& row) { return row.param.name; });

TEST_F(NeedleNumbers, AreOnTheRightOfTheScreenInEveryView) {
    for (const Vec3& down : {Vec3{1, 0, 0}, Vec3{0, 0, 1}, Vec3{1, -2, 3}, Vec3{-3, -1, -2}}) {
        pane->DeleteNeedles();
        LookAcross(down);
        const Vec3 head = -0.5125 * camera.axisX + 1.0125 * camera.axisY;
        AddNeedle(77, {0, 0, 0}, head, {.headRadius = 0.5f});
        Frame();
        EXPECT_EQ(BlackPixels(), ExpectedNumber("77", head, 0.5)) << down[0] << " " << down[1] << " " << down[2];
    }
}

TEST_F(NeedleNumbers, AreNotDrawnWhenTheyBeginOutsideTheWindow) {
    for (const double x : {6.4, 7.0, 100.0, -8.2, -20.0}) {  // a part of the first head is visible
        pane->DeleteNeedles();
        AddNeedle(8, {0, 0, 0}, {x, 0, 0});
        Frame();
        EXPECT_EQ(BlackPixels().Count(), 0u) << x;
    }
    // Further than the view volume is deep.
    pane->DeleteNeedles();
    AddNeedle(8, {0, 0, 0}, {0, 0, -21});
    Frame();
    EXPECT_EQ(PixelsThatAreNotBackground(), 0);
}

TEST_F(NeedleNumbers, GrowWithTheScaleOfTheScreen) {
    pane->SetScale(2);
    AddNeedle(42, {0, 0, 0}, {-2.0125, 0.5125, 0});
    Frame();
    const TextPicture expected = ExpectedNumber("42", {-2.0125, 0.5125, 0}, 1, {"Courier New", 700, -48});
    ASSERT_GT(expected.Count(), 200u);
    EXPECT_EQ(BlackPixels(), expected);
}

// At half the radius of the head: its number is in the depth of its centre.
TEST_F(NeedleNumbers, AreInTheDepthOfTheCentreOfTheHead) {
    AddNeedle(8, {0, 0, 0}, {-2, 1, 0});
    Square square{.center = {0, 0, 0.5}, .half = 10};
    Add(square);
    Frame();
    EXPECT_EQ(BlackPixels().Count(), 0u);
    ExpectPixel(112, 96, Lit({0, 0, 1}, kWhite), 4);
    pane->m_vpMeshes.clear();
    square.center[2] = -0.5;
    Add(square);
    Frame();
    EXPECT_EQ(BlackPixels(), ExpectedNumber("8", {-2, 1, 0}, 1));
    EXPECT_GT(BlackPixels().Count(), 20u);
}

// ---- screenshots

class NeedleScreenshots : public NeedleFrames {
protected:
    struct Extent {
        int left = kSide, top = kSide, right = -1, bottom = -1;  ///< right and bottom are inclusive
        void Add(int x, int y) {
            left = std::min(left, x), right = std::max(right, x);
            top = std::min(top, y), bottom = std::max(bottom, y);
        }
    };
    template <typename Predicate>
    static Extent ExtentOf(const Shot& shot, Predicate isIn) {
        Extent extent;
        for (int y = 0; y < kSide; ++y)
            for (int x = 0; x < kSide; ++x)
                if (isIn(PixelOf(shot, x, y))) extent.Add(x, y);
        return extent;
    }
    static Extent BlackOf(const Shot& shot) {
        return ExtentOf(shot, [](std::uint32_t pixel) { return pixel == kBlackPixel; });
    }
    /// What is neither background nor text.
    static Extent BallOf(const Shot& shot) {
        return ExtentOf(shot, [](std::uint32_t pixel) { return pixel != kBlackPixel && pixel != kBackgroundPixel; });
    }
};

TEST_F(NeedleScreenshots, HaveNumbersInTheFontOfHundredPixels) {
    AddNeedle(42, {-2, 1, 0}, {-2, 1, 0}, {.headColor = 0x0000FF});
    const Shot shot = Capture(*pane);
    const Extent black = BlackOf(shot), ball = BallOf(shot);
    ASSERT_GE(black.right, 0);
    ASSERT_GE(ball.right, 0);
    const GlyphSet glyphs = RasterizeFont(kFonts[2]);
    TextPicture expected(400, 200);
    const int width = expected.Write(glyphs, "42", 100, 50) - 100;
    // The same pixels, row by row, from the first one that is set.
    int left = 400, top = 200, right = -1, bottom = -1;
    for (int y = 0; y < 200; ++y)
        for (int x = 0; x < 400; ++x)
            if (expected.Rows()[static_cast<std::size_t>(y)][static_cast<std::size_t>(x)] == '#') {
                left = std::min(left, x), right = std::max(right, x);
                top = std::min(top, y), bottom = std::max(bottom, y);
            }
    ASSERT_EQ(black.right - black.left, right - left);
    ASSERT_EQ(black.bottom - black.top, bottom - top);
    int different = 0;
    for (int y = top; y <= bottom; ++y)
        for (int x = left; x <= right; ++x) {
            const bool isSet = PixelOf(shot, black.left + x - left, black.top + y - top) == kBlackPixel;
            different += isSet != (expected.Rows()[static_cast<std::size_t>(y)][static_cast<std::size_t>(x)] == '#');
        }
    EXPECT_EQ(different, 0);
    // Half its width to the right of the ball, half a line below the middle.
    EXPECT_NEAR(black.left - (left - 100), ball.right + 1 + width / 2.0, 1.5);
    const double middle = (ball.top + ball.bottom + 1) / 2.0;
    const int baseline = black.bottom + (150 - 1 - bottom);  // the row below which nothing of a digit is
    EXPECT_NEAR(baseline + 1, middle + glyphs.lineHeight / 2.0, 1.5);
}

TEST_F(NeedleScreenshots, AreTheSameOnEveryScreen) {
    AddNeedle(42, {2, -1, 0}, {-2, 1, 0}, {.headColor = 0x0000FF, .pinSize = 0.5f, .hitPointRadius = 0.5f});
    const Shot shot = Capture(*pane);
    pane->SetScale(2);
    ExpectSame(Capture(*pane), shot, "at twice the pixels per inch");
    Resize(200, 500);
    pane->PerformRefresh();
    ExpectSame(Capture(*pane), shot, "from a window of another shape");
}

TEST_F(NeedleScreenshots, HaveNeedlesOnlyWhileDrawingIsOn) {
    Add({});
    AddNeedle(42, {0, 0, 0}, {0, 0, 3}, {.headColor = 0x0000FF});
    pane->SetNeedleDrawingMode(0);
    EXPECT_EQ(BlackOf(Capture(*pane)).right, -1);
    pane->SetNeedleDrawingMode(-1);
    EXPECT_GT(BlackOf(Capture(*pane)).right, 0);
}

TEST_F(NeedleScreenshots, LeaveTheNextFrameAsItWas) {
    AddNeedle(42, {2, -1, 0}, {-2, 1, 0}, {.pinSize = 0.5f});
    Frame();
    const KV_ScenePane::Picture before = picture;
    const ViewState state = StateOf(*pane);
    Capture(*pane);
    ExpectSame(StateOf(*pane), state);
    Frame();
    EXPECT_EQ(picture.pixels, before.pixels);
    EXPECT_EQ(BlackPixels(), ExpectedNumber("42", {-2, 1, 0}, 1)) << "in the font of frames";
}

}  // namespace
