// Background, centre cross and lighting arrow, pixel by pixel. FrameTest.cpp tests the corners of the background, too.
#include <algorithm>
#include <numbers>
#include <tuple>

#include "render/FlatView.h"
#include "render/ReadFrame.h"
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

/// The bilinear blend of the corners tl, tr, bl, br at the centre of a pixel.
Vec3 BlendAt(const std::array<Vec3, 4>& corners, int x, int y, int width, int height) {
    const double right = (x + 0.5) / width, down = (y + 0.5) / height;
    const Vec3 top = (1 - right) * corners[0] + right * corners[1];
    const Vec3 bottom = (1 - right) * corners[2] + right * corners[3];
    return (1 - down) * top + down * bottom;
}

Vec3 ColorOf(std::uint32_t hostColor) {
    return {(hostColor & 0xFF) / 255.0, (hostColor >> 8 & 0xFF) / 255.0, (hostColor >> 16 & 0xFF) / 255.0};
}

struct Gradient {
    const char* name;
    std::array<std::uint32_t, 4> colors;  ///< tl, tr, bl, br
};

const Gradient kGradients[] = {
    {"FourColours", {HostColor(200, 0, 40), HostColor(0, 100, 40), HostColor(40, 20, 240), HostColor(0, 0, 0)}},
    {"LargestTwist", {0xFFFFFF, 0, 0, 0xFFFFFF}},
    {"SmallestTwist", {HostColor(20, 20, 20), HostColor(20, 20, 20), HostColor(20, 20, 20), HostColor(20, 21, 20)}},
    {"OneBrightCorner", {0, 0, 0xFFFFFF, 0}},
    {"TopAndBottom", {HostColor(10, 200, 30), HostColor(10, 200, 30), HostColor(250, 0, 90), HostColor(250, 0, 90)}},
    {"LeftAndRight", {HostColor(10, 200, 30), HostColor(250, 0, 90), HostColor(10, 200, 30), HostColor(250, 0, 90)}},
    {"OneColour", {0x5A321E, 0x5A321E, 0x5A321E, 0x5A321E}},
};

class Background : public Decorations {
protected:
    void Set(const std::array<std::uint32_t, 4>& c) {
        const auto at = [&](std::size_t i) { return static_cast<std::int32_t>(c[i]); };
        pane->SetBackgroundColorsFourCorners(at(0), at(1), at(2), at(3));
    }
    void ExpectBlend(const std::array<std::uint32_t, 4>& c) {
        const std::array<Vec3, 4> corners{ColorOf(c[0]), ColorOf(c[1]), ColorOf(c[2]), ColorOf(c[3])};
        for (int y = 0; y < picture.height; ++y)
            for (int x = 0; x < picture.width; ++x) {
                const Vec3 expected = BlendAt(corners, x, y, picture.width, picture.height);
                if (DistanceAt(x, y, expected) <= 1.0) continue;
                ExpectPixel(x, y, expected, 1.0);
                return;  // one failure is enough
            }
    }
};

INSTANTIATE_TEST_SUITE_P(Windows, Background, testing::ValuesIn(WindowKinds()),
                         [](const auto& row) { return NameOf(row.param); });

TEST_P(Background, IsTheBilinearBlendOfItsCornersInEveryPixel) {
    for (const Gradient& gradient : kGradients) {
        SCOPED_TRACE(gradient.name);
        Set(gradient.colors);
        for (const auto& [width, height] : {std::pair{201, 143}, {320, 240}, {333, 777}, {3, 50}, {1, 1}}) {
            Resize(width, height);
            Frame();
            ASSERT_EQ(picture.height, height);
            ExpectBlend(gradient.colors);
        }
    }
}

TEST_P(Background, OfTwoColoursIsThatOfASingleQuad) {
    // A gradient without twist is a plane, which one quad shows however it is split into triangles.
    for (const Gradient& gradient : {kGradients[4], kGradients[5], kGradients[6]}) {
        SCOPED_TRACE(gradient.name);
        Set(gradient.colors);
        Frame();
        const KV_ScenePane::Picture frame = picture;
        ASSERT_TRUE(pane->MakeContextCurrent());
        {
            const FlatView view(1, 1);
            glBegin(GL_QUADS);
            for (const auto& [corner, x, y] : {std::tuple{0u, -1, 1}, {1u, 1, 1}, {3u, 1, -1}, {2u, -1, -1}}) {
                const Vec3 color = ColorOf(gradient.colors[corner]);
                glColor3f(static_cast<float>(color[0]), static_cast<float>(color[1]), static_cast<float>(color[2]));
                glVertex2i(x, y);
            }
            glEnd();
        }
        EXPECT_EQ(ReadFrame(picture.width, picture.height), frame.pixels);
    }
}

TEST_P(Background, OfTheScreenshotIsTheBilinearBlend) {
    Set(kGradients[0].colors);
    picture = {kOffscreenSize, kOffscreenSize,
               std::vector<std::uint32_t>(std::size_t{kOffscreenSize} * kOffscreenSize)};
    pane->CaptureScreenShot(picture.pixels.data());
    ExpectBlend(kGradients[0].colors);
}

TEST_P(Background, LeavesNoDepthBehind) {
    Set(kGradients[1].colors);
    ASSERT_TRUE(pane->MakeContextCurrent());
    pane->DrawBackground();
    for (const auto& [x, y] : {std::pair{0, 0}, {160, 120}, {319, 239}}) {
        float depth = 0;
        glReadPixels(x, y, 1, 1, GL_DEPTH_COMPONENT, GL_FLOAT, &depth);
        EXPECT_GT(depth, 0.999f);  // that of the quads is 0.5; virgl reads 1 - 1 / 65536 for 1
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
