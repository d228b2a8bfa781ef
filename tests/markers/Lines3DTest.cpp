// 3D lines: the list, frames and screenshots with lines.
#include <algorithm>
#include <cstdlib>
#include <limits>
#include <new>

#include "render/GlSnapshot.h"
#include "render/SceneFixture.h"
#include "render/ScreenshotHelp.h"

using namespace lighting;

// The address sanitizer replaces the same operators.
#ifndef __SANITIZE_ADDRESS__
namespace {
// Of this thread: the allocation of this number, counted down from here, fails; 0 for none.
thread_local int g_refusedAllocation = 0;
}  // namespace

// Not inlined: the compiler would report a pair of new and free().
[[gnu::noinline]] void* operator new(std::size_t size) {
    const bool isRefused = g_refusedAllocation > 0 && --g_refusedAllocation == 0;
    void* const memory = isRefused ? nullptr : std::malloc(size > 0 ? size : 1);
    if (memory == nullptr) throw std::bad_alloc();
    return memory;
}
[[gnu::noinline]] void operator delete(void* memory) noexcept { std::free(memory); }
[[gnu::noinline]] void operator delete(void* memory, std::size_t) noexcept { std::free(memory); }
#endif

namespace {

constexpr float kNan = std::numeric_limits<float>::quiet_NaN(), kInf = std::numeric_limits<float>::infinity();

// Black with the ambient light of material and scene: 0.3 x 0.3.
const Vec3 kLine{0.09, 0.09, 0.09};

// A unit of the scene is 24 pixels; the origin is at (160, 120).
class Lines3D : public SceneTest {
protected:
    Lines3D() {
        pane->PerformRefresh();  // adopts the size of the window
        Look(320, 240);
        pane->SetBackgroundColors(0xC0C0C0, 0xC0C0C0);
        pane->SetLine3DDrawingMode(-1);
        pane.window->Forget();
    }
    bool Create(std::int32_t id, const std::vector<Float3>& points) {
        return pane->CreateLine3D(id, static_cast<std::int32_t>(points.size()),
                                  points.empty() ? nullptr : points[0].data()) == KV_ScenePane::kVariantTrue;
    }
    /// Pixels of a line in the rectangle; right and bottom are exclusive.
    [[nodiscard]] int LinePixelsIn(int left, int top, int right, int bottom) const {
        int count = 0;
        for (int y = top; y < bottom; ++y)
            for (int x = left; x < right; ++x) count += DistanceAt(x, y, kLine) <= kTolerance ? 1 : 0;
        return count;
    }
    [[nodiscard]] int LinePixels() const { return LinePixelsIn(0, 0, picture.width, picture.height); }
};

/// The y coordinate of the centre of a pixel row.
float RowCenter(int row) { return static_cast<float>((119.5 - row) / 24); }

// ---- the list

TEST_F(Lines3D, AreStoredInTheOrderOfTheirCreation) {
    EXPECT_TRUE(Create(7, {{1, 2, 3}, {4, 5, 6}}));
    EXPECT_TRUE(Create(-1, {{7, 8, 9}}));
    EXPECT_TRUE(Create(3, {}));
    ASSERT_EQ(pane->m_vLines3D.size(), 3u);
    EXPECT_EQ(pane->m_vLines3D[0].id, 7);
    EXPECT_EQ(pane->m_vLines3D[0].points, (std::vector<Float3>{{1, 2, 3}, {4, 5, 6}}));
    EXPECT_EQ(pane->m_vLines3D[1].id, -1);
    EXPECT_EQ(pane->m_vLines3D[1].points, (std::vector<Float3>{{7, 8, 9}}));
    EXPECT_TRUE(pane->m_vLines3D[2].points.empty());
}

#ifndef __SANITIZE_ADDRESS__
TEST_F(Lines3D, AreNotAddedAtAllWhenMemoryIsExhausted) {
    const float points[6] = {1, 2, 3, 4, 5, 6};
    pane->BlockPaintEvents(-1);  // a frame allocates, too
    int failures = 0;
    for (bool isAdded = false; !isAdded && failures < 10; failures += isAdded ? 0 : 1) {
        pane->m_vLines3D.shrink_to_fit();
        try {
            g_refusedAllocation = failures + 1;
            isAdded = pane->CreateLine3D(7, 2, points) == KV_ScenePane::kVariantTrue;
        } catch (const std::bad_alloc&) {
            EXPECT_TRUE(pane->m_vLines3D.empty()) << "allocation " << failures + 1;
            EXPECT_TRUE(pane->m_setLine3DIds.empty()) << "allocation " << failures + 1;
        }
        g_refusedAllocation = 0;
    }
    EXPECT_GE(failures, 3) << "the points, the list, the ids";
    ASSERT_EQ(pane->m_vLines3D.size(), 1u);
    EXPECT_FALSE(Create(7, {}));
}
#endif

TEST_F(Lines3D, KeepTheFirstOfAnIdAndReportTheSecond) {
    ASSERT_TRUE(Create(7, {{1, 2, 3}, {4, 5, 6}}));
    pane.window->Forget();
    EXPECT_FALSE(Create(7, {{0, 0, 0}, {9, 9, 9}, {8, 8, 8}}));
    EXPECT_FALSE(Create(7, {}));
    EXPECT_EQ(pane.window->refreshes, 0);
    ASSERT_EQ(pane->m_vLines3D.size(), 1u);
    EXPECT_EQ(pane->m_vLines3D[0].points, (std::vector<Float3>{{1, 2, 3}, {4, 5, 6}}));
}

TEST_F(Lines3D, AreCopiedAndRefreshTheWindow) {
    std::vector<Float3> points{{1, 2, 3}, {4, 5, 6}};
    Create(1, points);
    EXPECT_EQ(pane.window->refreshes, 1);
    points.assign(2, Float3{0, 0, 0});
    EXPECT_EQ(pane->m_vLines3D[0].points, (std::vector<Float3>{{1, 2, 3}, {4, 5, 6}}));
    Create(2, {});
    EXPECT_EQ(pane.window->refreshes, 2);
    EXPECT_EQ(pane.window->invalidates + pane.window->eraseInvalidates, 0);
}

TEST_F(Lines3D, AreRemovedByClearDataAndTheIdsAreFreeAgain) {
    Create(1, {{0, 0, 0}, {1, 1, 1}});
    pane->ClearData();
    EXPECT_TRUE(pane->m_vLines3D.empty());
    EXPECT_TRUE(Create(1, {{0, 0, 0}}));
}

TEST_F(Lines3D, AreDrawnForEveryModeValueButZero) {
    for (const std::int16_t value : std::initializer_list<std::int16_t>{-1, 0, 1, 256}) {
        pane->SetLine3DDrawingMode(value);
        EXPECT_EQ(pane->GetLine3DDrawingMode(), value != 0 ? KV_ScenePane::kVariantTrue : KV_ScenePane::kVariantFalse);
    }
    EXPECT_EQ(pane.window->refreshes + pane.window->invalidates + pane.window->eraseInvalidates, 0);
}

#ifndef NDEBUG
TEST_F(Lines3D, RefuseNegativeCountsAndNullArrays) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    const float point[3] = {};
    EXPECT_DEATH(pane->CreateLine3D(1, -1, point), "numberOfXYZs");
    EXPECT_DEATH(pane->CreateLine3D(1, 1, nullptr), "XYZs");
}
#endif

TEST(Lines3DWithoutAPicture, AreStored) {
    NoPictureControl control;
    const float points[] = {1, 2, 3, 4, 5, 6};
    EXPECT_EQ(control->CreateLine3D(1, 2, points), KV_ScenePane::kVariantTrue);
    EXPECT_EQ(control->CreateLine3D(1, 2, points), KV_ScenePane::kVariantFalse);
    EXPECT_EQ(control->m_vLines3D.size(), 1u);
    EXPECT_EQ(control->GetSceneBoundingBox().max, (Float3{50, 50, 50})) << "lines do not count";
}

// ---- frames

TEST_F(Lines3D, AreThreePixelsWideBetweenTheirPoints) {
    Create(1, {{-3, RowCenter(100), 0}, {3, RowCenter(100), 0}});  // columns 88 to 232
    Frame();
    ExpectPixel(160, 100, kLine);
    EXPECT_EQ(LinePixelsIn(95, 99, 225, 102), 3 * 130);
    EXPECT_NEAR(LinePixels(), 3 * 144, 6);  // the ends by the driver
    EXPECT_EQ(LinePixelsIn(0, 0, 320, 99) + LinePixelsIn(0, 102, 320, 240), 0);
    EXPECT_EQ(LinePixelsIn(0, 0, 86, 240) + LinePixelsIn(234, 0, 320, 240), 0);
}

TEST_F(Lines3D, AreWiderOnScreensWithMorePixels) {
    Create(1, {{-3, RowCenter(100), 0}, {3, RowCenter(100), 0}});
    pane->SetScale(2.0);
    Frame();
    EXPECT_EQ(LinePixelsIn(160, 0, 161, 240), 6);
}

TEST_F(Lines3D, ConnectNeighboursAndNothingElse) {
    // Down the column 112 and along the row 168: not closed.
    Create(1, {{-2, 2, 0}, {-2, -2, 0}, {2, -2, 0}});
    Create(2, {{2, 2, 0}});
    Create(3, {});
    Create(4, {{3, 2, 0}, {3, 1, 0}});  // column 232, rows 72 to 96
    Frame();
    EXPECT_EQ(LinePixelsIn(105, 100, 120, 101), 3);
    EXPECT_EQ(LinePixelsIn(160, 160, 161, 176), 3);
    EXPECT_EQ(LinePixelsIn(120, 60, 228, 160), 0) << "no diagonal, and nothing from the point at (208, 72)";
    EXPECT_EQ(LinePixelsIn(225, 80, 240, 81), 3);
    pane->SetLine3DDrawingMode(0);
    Frame();
    EXPECT_EQ(LinePixels(), 0);
    EXPECT_EQ(pane->m_vLines3D.size(), 4u);
    pane->SetLine3DDrawingMode(-1);
    Frame();
    EXPECT_EQ(LinePixelsIn(105, 100, 120, 101), 3);
}

TEST_F(Lines3D, AreTestedAgainstTheObjects) {
    Add({.center = {0, 0, 0}, .half = 2});  // columns 112 to 207
    Create(1, {{-5, RowCenter(100), -1}, {5, RowCenter(100), -1}});
    Create(2, {{-5, RowCenter(140), 1}, {5, RowCenter(140), 1}});
    Frame();
    ExpectPixel(60, 100, kLine);
    EXPECT_EQ(LinePixelsIn(112, 95, 208, 105), 0);
    ExpectPixel(160, 140, kLine);
    EXPECT_EQ(LinePixelsIn(112, 139, 208, 142), 3 * 96);
}

TEST_F(Lines3D, AreBlackWhateverIsDrawnAndHowItShines) {
    Add({.center = {0, 0, 0}, .half = 4}, {0.2, 1, 0.3});
    Create(1, {{-3, RowCenter(100), 1}, {3, RowCenter(100), 1}});
    pane->SetReflection(1.0f, 1.0f);
    pane->m_nShowAxes = pane->m_nShowArrow = 1;
    for (const std::int16_t shadows : std::initializer_list<std::int16_t>{0, 1})
        for (std::int16_t mode = 0; mode < 8; ++mode) {
            pane->SetShadowMode(shadows);
            pane->m_nDrawMode = mode;
            Frame();
            ExpectPixel(160, 100, kLine);
        }
}

TEST_F(Lines3D, AreNotClipped) {
    Create(1, {{-3, RowCenter(100), 0}, {3, RowCenter(100), 0}});
    Frame();
    const auto expected = picture.pixels;
    pane->m_bClipPlaneActive = 1;
    pane->m_clipPlane.SetCenter({0, 0, 0});
    pane->m_clipPlane.SetNormal({1, 0, 0});
    Frame();
    EXPECT_EQ(picture.pixels, expected);
}

TEST_F(Lines3D, WithPointsThatAreNotFiniteDoNotDisturbTheOthers) {
    Add({.center = {0, -2, 0}, .half = 1});
    Create(1, {{-3, RowCenter(60), 0}, {3, RowCenter(60), 0}});
    Frame();
    const auto expected = picture.pixels;
    std::int32_t id = 2;
    for (const float odd : {kNan, kInf, -kInf})
        for (std::size_t axis = 0; axis < 3; ++axis) {
            Float3 point{0, 4, 1};
            point[axis] = odd;
            Create(id++, {{0, 4, 1}, point, {0, 4, 1}});
        }
    Create(id, {{-3, RowCenter(40), 0}, {3, RowCenter(40), 0}});  // after them
    Frame();
    ExpectPixel(160, 40, kLine);
    // The segments of those lines start in row 24 at column 160: what they may draw is a line through it.
    int different = 0;
    for (int y = 50; y < 240; ++y)
        for (int x = 0; x < 320; ++x)
            if (x < 155 || x > 165)
                different += picture.pixels[static_cast<std::size_t>(320 * y + x)] !=
                                     expected[static_cast<std::size_t>(320 * y + x)]
                                 ? 1
                                 : 0;
    EXPECT_EQ(different, 0);
    EXPECT_EQ(pane->GetSceneBoundingBox().max, (Float3{1, -1, 0.01f}));  // 0.01 thick on each side
    const Box box = pane->GetPictureBoundingBox();
    EXPECT_EQ(box.max, (Float3{3, 4, 1}));
    EXPECT_EQ(box.min, (Float3{-3, -3, -0.01f}));
}

TEST_F(Lines3D, RestoreTheOpenGlState) {
    Create(1, {{-3, 0, 0}, {3, 0, 0}}), Create(2, {{0, 1, 0}}), Create(3, {});
    Frame();
    pane->m_bInDraw = 1;
    for (const bool enabled : {false, true}) {
        for (const GLenum name : {GL_DEPTH_TEST, GL_LIGHTING, GL_LIGHT0}) enabled ? glEnable(name) : glDisable(name);
        for (const float width : {3.0f, 8.0f, 1000.0f, 1e9f}) {  // above what the driver has
            const GlSnapshot before = TakeGlSnapshot();
            pane->DrawLines3D(width);
            EXPECT_EQ(glGetError(), GLenum{GL_NO_ERROR}) << width;
            ExpectSameGlState(before, TakeGlSnapshot(), "DrawLines3D");
        }
    }
    pane->m_bInDraw = 0;
}

TEST_F(Lines3D, OfManyPointsAndManyLinesAreDrawn) {
    std::vector<Float3> zigzag;  // rows 90 and 110, columns 40 to 280
    for (int i = 0; i <= 20000; ++i)
        zigzag.push_back({static_cast<float>(-5 + i * 0.0005), RowCenter(i % 2 == 0 ? 90 : 110), 0});
    Create(1, zigzag);
    for (std::int32_t id = 2; id < 500; ++id)
        pane->m_vLines3D.push_back({id,
                                    {{0.002f * static_cast<float>(id), RowCenter(150), 0},
                                     {0.002f * static_cast<float>(id), RowCenter(160), 0}}});
    Frame();
    EXPECT_EQ(LinePixelsIn(45, 92, 275, 109), 230 * 17);
    EXPECT_EQ(LinePixelsIn(161, 151, 183, 159), 22 * 8);
}

// ---- screenshots

TEST_F(Lines3D, AreEightPixelsWideInAScreenshotThatHoldsThem) {
    // The box is 204 x 4 x 4 with the margin: 2048 pixels are its diagonal of 204.0784 units. The line is in the
    // middle, 200 units long.
    Create(1, {{100, 5, 7}, {300, 5, 7}});
    Shot shot = Capture(*pane);
    const auto isLine = [&](int x, int y) { return (PixelOf(shot, x, y) & 0xFF) < 60; };
    int rows = 0;
    for (int y = 0; y < kSide; ++y) rows += isLine(1024, y) ? 1 : 0;
    EXPECT_EQ(rows, 8);
    EXPECT_TRUE(isLine(1024, 1021) && isLine(1024, 1026)) << "in the middle";
    int left = 0, right = kSide - 1;
    while (left < kSide && !isLine(left, 1024)) ++left;
    while (right >= 0 && !isLine(right, 1024)) --right;
    const double half = 100 * 2048 / std::sqrt(204.0 * 204 + 4 * 4 + 4 * 4);
    EXPECT_NEAR(left, 1024 - half, 1.0);
    EXPECT_NEAR(right + 1, 1024 + half, 1.0);

    pane->SetLine3DDrawingMode(0);
    shot = Capture(*pane);
    EXPECT_EQ(CountOf(shot, 0xFFC0C0C0u), std::ptrdiff_t{kSide} * kSide);
}

TEST_F(Lines3D, InAScreenshotLeaveTheViewOfTheWindowAsItWas) {
    Add({});
    Create(1, {{-500, 0, 0}, {700, kNan, 0}, {500, 0, 9}});
    Frame();
    const auto before = picture.pixels;
    const ViewState view = StateOf(*pane);
    Capture(*pane);
    ExpectSame(StateOf(*pane), view);
    EXPECT_EQ(glGetError(), GLenum{GL_NO_ERROR});
    Frame();
    EXPECT_EQ(picture.pixels, before);
}

// ---- the box of screenshots

class PictureBox : public testing::Test {
protected:
    void ExpectBox(const Float3& min, const Float3& max) {
        EXPECT_EQ(control->GetPictureBoundingBox().min, min);
        EXPECT_EQ(control->GetPictureBoundingBox().max, max);
    }
    void AddNeedle(const Float3& pin, const Float3& head) {
        Needle needle;
        needle.pin = pin;
        needle.head = head;
        control->m_vNeedles.push_back(needle);
    }
    NoPictureControl control;
};

TEST_F(PictureBox, IsFixedWhileNothingIsShown) {
    ExpectBox({-50, -50, -50}, {50, 50, 50});
    const float points[] = {1, 2, 3, 4, 5, 6};
    control->CreateLine3D(1, 2, points);
    AddNeedle({7, 8, 9}, {10, 11, 12});
    ExpectBox({-50, -50, -50}, {50, 50, 50});
    const float odd[] = {kNan, 2, 3, 4, kInf, 6};
    control->ClearData();
    control->m_vNeedles.clear();
    control->CreateLine3D(1, 2, odd);
    control->CreateLine3D(2, 0, nullptr);
    AddNeedle({kNan, 0, 0}, {0, kInf, 0});
    control->SetLine3DDrawingMode(-1);
    control->m_bNeedleDrawingMode = 1;
    ExpectBox({-50, -50, -50}, {50, 50, 50});
}

TEST_F(PictureBox, HoldsTheLinesAndNeedlesThatAreDrawn) {
    const float points[] = {1, 2, 3, 4, 5, 6};
    control->CreateLine3D(1, 2, points);
    const float one[] = {2, 9, 4};
    control->CreateLine3D(2, 1, one);
    AddNeedle({-7, 8, 4}, {3, 3, 12});
    control->SetLine3DDrawingMode(-1);
    ExpectBox({1, 2, 3}, {4, 9, 6});
    control->m_bNeedleDrawingMode = 1;
    ExpectBox({-7, 2, 3}, {4, 9, 12});
    control->SetLine3DDrawingMode(0);
    ExpectBox({-7, 3, 4}, {3, 8, 12});
    EXPECT_EQ(control->GetSceneBoundingBox().max, (Float3{50, 50, 50})) << "the fit of the view does not count them";
}

TEST_F(PictureBox, HoldsTheSceneAsWell) {
    AddMesh(*control, {{0, 0, 0}, {10, 0, 0}, {0, 10, 0}}, {Triangle{{0, 1, 2}}});
    const float xyz[] = {3, 3, -20}, color[] = {1, 1, 1};
    control->ImportPoints(1, xyz, color, 1.0f);
    const float points[] = {5, 5, 5, kNan, 900, 900, 5, 40, 5};
    control->CreateLine3D(1, 3, points);
    AddNeedle({5, 5, 0}, {-30, kNan, 5});
    ExpectBox({0, 0, -20}, {10, 10, 0.01f});  // the box of the flat object is 0.01 thick on each side
    control->SetLine3DDrawingMode(-1);
    control->m_bNeedleDrawingMode = 1;
    ExpectBox({0, 0, -20}, {10, 40, 5});
    EXPECT_EQ(control->GetSceneBoundingBox().max, (Float3{10, 10, 0.01f}));
    control->CenterView();
    EXPECT_EQ(control->m_fViewCenter, (Float3{5, 5, -9.995f}));
}

}  // namespace
