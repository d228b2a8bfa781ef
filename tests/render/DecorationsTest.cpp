// Background, centre cross and lighting arrow, pixel by pixel. FrameTest.cpp tests the corners of the background, too.
#include <algorithm>
#include <numbers>

#include "render/SceneFixture.h"

using namespace lighting;

namespace {

class Decorations : public SceneInEveryWindow {
protected:
    /// First and last column and row that hold a pixel other than background.
    struct Extent {
        int left = 1 << 20, right = -1, top = 1 << 20, bottom = -1;
        [[nodiscard]] int Width() const { return right - left + 1; }
        [[nodiscard]] int Height() const { return bottom - top + 1; }
    };
    [[nodiscard]] Extent Drawn() const {
        Extent e;
        for (int y = 0; y < picture.height; ++y)
            for (int x = 0; x < picture.width; ++x) {
                if (DistanceAt(x, y, kBackground) <= 1.0) continue;
                e.left = std::min(e.left, x), e.right = std::max(e.right, x);
                e.top = std::min(e.top, y), e.bottom = std::max(e.bottom, y);
            }
        return e;
    }
    [[nodiscard]] int DrawnInColumn(int x) const { return DrawnPixelsIn(x, 0, x + 1, picture.height); }
    [[nodiscard]] int DrawnInRow(int y) const { return DrawnPixelsIn(0, y, picture.width, y + 1); }
};

INSTANTIATE_TEST_SUITE_P(Windows, Decorations, testing::ValuesIn(WindowKinds()),
                         [](const auto& row) { return NameOf(row.param); });

// ---- background

TEST_P(Decorations, TheBackgroundIsInterpolatedBetweenItsFourCorners) {
    pane->SetBackgroundColorsFourCorners(HostColor(200, 0, 40), HostColor(0, 100, 40), HostColor(40, 20, 240),
                                         HostColor(0, 0, 0));
    Resize(201, 143);
    Frame();
    // A driver may split the quad into triangles: along the borders the interpolation is the same.
    for (const int x : {0, 50, 100, 200}) {
        const double right = (x + 0.5) / 201;
        ExpectPixel(x, 0, (1 - right) * Vec3{200 / 255., 0, 40 / 255.} + right * Vec3{0, 100 / 255., 40 / 255.}, 3.0);
        ExpectPixel(x, 142, (1 - right) * Vec3{40 / 255., 20 / 255., 240 / 255.}, 3.0);
    }
}

TEST_P(Decorations, TheHighByteOfAHostColourIsIgnored) {
    const auto color = static_cast<std::int32_t>(0xFF0080C0u);
    pane->SetBackgroundColors(color, color);
    Frame();
    ExpectPixel(100, 100, {0xC0 / 255.0, 0x80 / 255.0, 0});
}

// ---- cross

// The shorter side spans 20 units: 240 pixels make 12 per unit, and the arms are one unit long.
TEST_P(Decorations, TheCrossHasTheSameSizeInBothAspectRatios) {
    pane->m_nPickMode = KV_ScenePane::PickModeCross;
    for (const auto& [width, height] : {std::pair{320, 240}, {240, 320}, {240, 240}}) {
        Resize(width, height);
        Frame();
        const Extent e = Drawn();
        EXPECT_EQ(e.Width(), 24) << width;
        EXPECT_EQ(e.Height(), 24) << width;
        EXPECT_NEAR(e.left, width / 2 - 12, 1);
        EXPECT_NEAR(e.top, height / 2 - 12, 1);
        EXPECT_EQ(PixelsThatAreNotBackground(), 24 * 3 + 3 * 24 - 9) << width;
    }
}

TEST_P(Decorations, TheCrossIsExactlyThreePixelsWide) {
    pane->m_nPickMode = KV_ScenePane::PickModeCross;
    for (const auto& [width, height] : {std::pair{320, 240}, {301, 401}}) {
        Resize(width, height);
        Frame();
        for (const int away : {-8, -5, 5, 8}) {
            EXPECT_EQ(DrawnInColumn(width / 2 + away), 3) << width << " " << away;
            EXPECT_EQ(DrawnInRow(height / 2 + away), 3) << width << " " << away;
            ExpectPixel(width / 2 + away, height / 2, {1, 1, 1});
            ExpectPixel(width / 2, height / 2 + away, {1, 1, 1});
        }
    }
}

TEST_P(Decorations, TheCrossIsUnlitAndNotDepthTested) {
    pane->SetCrossColor(static_cast<std::int32_t>(HostColor(255, 128, 0)));
    pane->m_nPickMode = KV_ScenePane::PickModeCross;
    Add({.center = {0, 0, 55}, .half = 4});  // in front of everything
    Frame();
    ExpectPixel(160, 120, {1, 128 / 255.0, 0});
    ExpectPixel(152, 120, {1, 128 / 255.0, 0});
    ExpectPixel(160, 128, {1, 128 / 255.0, 0});
}

TEST_P(Decorations, TheCrossIsDrawnInPickModeOneOnly) {
    using namespace KV_ScenePane;
    for (const int mode : {int{PickModeOff}, int{PickModeObjects}, int{PickModePoints}, -1}) {
        pane->m_nPickMode = mode;
        Frame();
        EXPECT_EQ(PixelsThatAreNotBackground(), 0) << mode;
    }
}

// ---- arrow

/// The dart as plane geometry: its corners are rotated about the centre of the window, in units of a twentieth of the
/// shorter side.
class Dart {
public:
    Dart(int width, int height, double degrees) {
        const double scale = std::min(width, height) / 20.0, a = degrees * std::numbers::pi / 180;
        const auto place = [&](double x, double y) {
            return Point{width / 2.0 + scale * (x * std::cos(a) - y * std::sin(a)),
                         height / 2.0 - scale * (x * std::sin(a) + y * std::cos(a))};
        };
        m_tip = place(0, 8), m_notch = place(0, 9), m_barbs[0] = place(0.5, 9.5), m_barbs[1] = place(-0.5, 9.5);
    }
    /// Distance of a point from the nearer of the two edges on its side of the dart, pixels; negative outside.
    [[nodiscard]] double Inside(double x, double y) const {
        const Point p{x, y}, barb = SideOf(p, m_tip, m_notch) > 0 ? m_barbs[0] : m_barbs[1];
        const double turn = SideOf(m_notch, m_tip, barb) > 0 ? 1 : -1;
        return std::min(turn * SideOf(p, m_tip, barb), -turn * SideOf(p, m_notch, barb));
    }

private:
    struct Point {
        double x = 0, y = 0;
    };
    static double SideOf(const Point& p, const Point& a, const Point& b) {
        return ((b.x - a.x) * (p.y - a.y) - (b.y - a.y) * (p.x - a.x)) / std::hypot(b.x - a.x, b.y - a.y);
    }
    Point m_tip, m_notch, m_barbs[2];
};

class Arrow : public Decorations {
protected:
    Arrow() { pane->ShowLightingArrow(1); }

    /// Expects the arrow at that angle and nothing else in the frame.
    void ExpectArrowAt(double degrees) {
        const Dart dart(picture.width, picture.height, degrees);
        int inside = 0;
        for (int y = 0; y < picture.height; ++y)
            for (int x = 0; x < picture.width; ++x) {
                const double depth = dart.Inside(x + 0.5, y + 0.5);
                const bool drawn = DistanceAt(x, y, {0xEA / 255.0, 0xEA / 255.0, 1}) <= kTolerance;
                inside += depth > 0.01 ? 1 : 0;
                if (std::abs(depth) <= 0.01) continue;  // on an edge
                ASSERT_EQ(drawn, depth > 0) << degrees << ": (" << x << ", " << y << ")";
            }
        EXPECT_GT(inside, 20);
    }
};

INSTANTIATE_TEST_SUITE_P(Windows, Arrow, testing::ValuesIn(WindowKinds()),
                         [](const auto& row) { return NameOf(row.param); });

const Vec3 kArrow{0xEA / 255.0, 0xEA / 255.0, 1};  // 0xFFEAEA

// 12 pixels per unit: the tip at row 120 - 8 * 12 = 24, the barbs at row 6, 6 columns from the centre, the notch at 12.
TEST_P(Arrow, IsAtTheTopAndPointsDownAtAngleZero) {
    Frame();
    for (const auto& [x, y] : {std::pair{159, 20}, {160, 20}, {159, 15}, {164, 8}, {155, 8}}) ExpectPixel(x, y, kArrow);
    for (const auto& [x, y] : {std::pair{160, 25}, {160, 10}, {160, 7}, {165, 5}, {154, 5}, {167, 8}, {160, 220}})
        ExpectBackground(x, y);
    ExpectArrowAt(0);
}

// Angles are counterclockwise: the dart is at the left with its tip to the right.
TEST_P(Arrow, IsAtTheLeftAtNinetyDegrees) {
    pane->SetArrowAngle(90);
    Frame();
    for (const auto& [x, y] : {std::pair{60, 119}, {60, 120}, {55, 119}, {48, 115}, {48, 124}})
        ExpectPixel(x, y, kArrow);
    for (const auto& [x, y] : {std::pair{65, 120}, {50, 120}, {45, 125}, {45, 114}, {160, 15}}) ExpectBackground(x, y);
    ExpectArrowAt(90);
}

TEST_P(Arrow, GoesAroundTheCentreInWindowsOfEveryShape) {
    for (const auto& [width, height] : {std::pair{320, 240}, {240, 320}, {301, 203}}) {
        Resize(width, height);
        for (const int angle : {-30, 45, 180, 450, 32767}) {
            pane->SetArrowAngle(static_cast<std::int16_t>(angle));
            Frame();
            ExpectArrowAt(angle);
        }
    }
}

TEST_P(Arrow, DoesNotRequestAFrameWhenItsAngleChanges) {
    Frame();
    pane.window->Forget();
    pane->SetArrowAngle(180);
    EXPECT_EQ(pane.window->refreshes + pane.window->invalidates + pane.window->eraseInvalidates, 0);
    EXPECT_FALSE(pane.window->IsPaintPending());
    Frame();
    ExpectArrowAt(180);
}

TEST_P(Arrow, IsUnlitAndNotDepthTested) {
    pane->SetArrowColor(static_cast<std::int32_t>(HostColor(10, 200, 30)));
    Add({.center = {0, 0, 55}, .half = 5});  // in front of everything, over the whole height
    Frame();
    ExpectPixel(160, 20, {10 / 255.0, 200 / 255.0, 30 / 255.0});
}

TEST_P(Arrow, IsDrawnOnlyForTheValueOne) {
    for (const std::int16_t show : std::vector<std::int16_t>{2, 0, -1, 257}) {
        pane->ShowLightingArrow(show);
        Frame();
        EXPECT_EQ(PixelsThatAreNotBackground(), 0) << show;
    }
}

}  // namespace
