// The order of the steps of a frame, checked by which step covers which, and the OpenGL state after each step.
#include "render/FrameWitness.h"
#include "render/GlSnapshot.h"
#include "render/SceneFixture.h"

using namespace lighting;

namespace {

/// Fills a rectangle of pixels with one colour, without depth test; the interaction dialog of the tests draws it.
void FillPixels(int windowWidth, int windowHeight, int left, int top, int right, int bottom, const Vec3& color) {
    glPushAttrib(GL_ENABLE_BIT | GL_CURRENT_BIT);
    glDisable(GL_DEPTH_TEST);
    glMatrixMode(GL_PROJECTION);
    glPushMatrix();
    glLoadIdentity();
    glOrtho(0, windowWidth, windowHeight, 0, -1, 1);
    glMatrixMode(GL_MODELVIEW);
    glPushMatrix();
    glLoadIdentity();
    glColor3dv(color.data());
    glRecti(left, top, right, bottom);
    glPopMatrix();
    glMatrixMode(GL_PROJECTION);
    glPopMatrix();
    glMatrixMode(GL_MODELVIEW);
    glPopAttrib();
}

// 140 x 140 pixels: 14 per unit of the scene, which is 10 units high; 7 per unit of cross and arrow, whose view is 20
// units high. The axes start 10 + 15 = 25 pixels from the corner (10.5 rounded down, plus 15); their shafts are 140 /
// 15 = 9 pixels long.
class FrameOrder : public SceneTest {
protected:
    static constexpr int kSide = 140;
    const Vec3 kDialog{0.5, 0.25, 0};
    const Vec3 kCross{1, 0, 1}, kArrow{0, 1, 1}, kPoint{1, 1, 0}, kBox{0.0, 0.4, 0.9};

    FrameOrder() : SceneTest(WindowKind::OffScreen, kSide, kSide) {}

    /// Everything that draws, overlapping. Each test says which parts cover which.
    void ShowEverything() {
        // The object covers columns and rows 35 to 104. Its selection box crosses the rectangle of the dialog.
        Add(square);
        pane->AddSelection(0);
        pane->m_nPickMode = KV_ScenePane::PickModeCross;
        pane->SetCrossColor(static_cast<std::int32_t>(HostColor(255, 0, 255)));
        pane->m_nShowArrow = 1;
        pane->m_nArrowColor = HostColor(0, 255, 255);
        pane->m_nArrowAngle = 45;
        pane->m_nShowAxes = 1;
        ASSERT_TRUE(pane->MakeContextCurrent());
        witness.inside = [this] {
            FillPixels(kSide, kSide, 15, 15, 70, 80, kDialog);  // over parts of cross, box, arrow and axes
        };
    }
    void AddOverlay(int left, int top, int width, int height, const std::array<std::uint8_t, 3>& rgb) {
        std::vector<std::uint8_t> bytes;
        for (int i = 0; i < width * height; ++i) bytes.insert(bytes.end(), {rgb[2], rgb[1], rgb[0], 255});
        pane->AddOverlayData(bytes.data(), width, height, 0, 0, 0, 0, static_cast<float>(left),
                             static_cast<float>(top));
    }
    /// Pixels of that colour in the rectangle; right and bottom are exclusive.
    [[nodiscard]] int CountIn(int left, int top, int right, int bottom, const Vec3& color) const {
        int count = 0;
        for (int y = top; y < bottom; ++y)
            for (int x = left; x < right; ++x) count += DistanceAt(x, y, color) <= kTolerance ? 1 : 0;
        return count;
    }

    const Square square{.half = 2.5};
    FrameWitness witness{*pane};
};

TEST_F(FrameOrder, TheSelectionComesAfterTheObjectsAndTheDialogAfterTheSelection) {
    ShowEverything();
    pane->m_nPickMode = KV_ScenePane::PickModeOff;
    Frame();
    ExpectPixel(90, 90, FixedFunction(camera, square.At(camera, 90, 90, {1, 1, 1})));
    EXPECT_GE(CountIn(103, 60, 107, 64, kBox), 4);  // the right side of the box covers the edge of the object
    EXPECT_GE(CountIn(33, 90, 37, 94, kBox), 4);    // its left side, where the dialog does not draw
    EXPECT_EQ(CountIn(33, 60, 37, 64, kBox), 0);    // and where the dialog covers it
    ExpectPixel(35, 62, kDialog);
    ExpectPixel(69, 79, kDialog);
    ExpectPixel(60, 60, kDialog);
}

TEST_F(FrameOrder, TheCrossComesAfterTheDialog) {
    ShowEverything();
    Frame();
    // Its left arm starts at column 63, inside the rectangle of the dialog.
    EXPECT_EQ(CountIn(63, 66, 68, 74, kCross), 5 * 3);
    ExpectPixel(65, 70, kCross);
    ExpectPixel(65, 66, kDialog);
    ExpectPixel(75, 70, kCross);
}

TEST_F(FrameOrder, TheArrowComesAfterTheDialogAndTheAxesAfterTheArrow) {
    ShowEverything();
    pane->m_nShowAxes = 0;
    Frame();
    // Rotated by 45 degrees the right barb is the upper one: at (-6.36, 7.07), with an edge to the tip at
    // (-5.66, 5.66). In the row of the x axis, 25 from the top, it covers columns 26 and 27.
    ExpectPixel(26, 24, kArrow);
    ExpectPixel(26, 25, kArrow);
    pane->m_nShowAxes = 1;
    Frame();
    EXPECT_GE(CountIn(26, 24, 28, 27, {1, 0, 0}), 2);
    EXPECT_GE(CountIn(24, 17, 27, 22, {0, 1, 0}), 2);  // the y axis over the rectangle
}

// 34 x 34 pixels: the cross has arms of 1.7 pixels around the centre. The axes start there, 17 pixels from the corner
// (2.6 rounded down, plus 15), and their shafts of 2.3 pixels cover a part of it, on a driver that begins lines one
// pixel farther too.
TEST_F(FrameOrder, TheAxesComeAfterTheCross) {
    Resize(34, 34);
    pane->SetCrossColor(static_cast<std::int32_t>(HostColor(255, 0, 255)));
    const auto show = [&](int pickMode, int axes) {
        pane->m_nPickMode = pickMode;
        pane->m_nShowAxes = axes;
        Frame();
        return picture.pixels;
    };
    const auto background = show(0, 0), cross = show(1, 0), axes = show(0, 1), both = show(1, 1);
    int shared = 0;
    for (std::size_t i = 0; i < both.size(); ++i) {
        const bool onAxes = axes[i] != background[i];
        EXPECT_EQ(both[i], onAxes ? axes[i] : cross[i]) << i % 34 << " " << i / 34;
        shared += onAxes && cross[i] != background[i] ? 1 : 0;
    }
    EXPECT_GE(shared, 2);
    EXPECT_GE(CountIn(16, 15, 21, 19, {1, 0, 0}), 1);  // the x axis, all of it within the cross
}

TEST_F(FrameOrder, OverlaysComeAfterEverythingButTheFreePoints) {
    ShowEverything();
    AddOverlay(20, 20, 20, 20, {0, 128, 0});                      // over axes and arrow
    AddOverlay(66, 66, 10, 10, {128, 0, 0});                      // over the centre of the cross
    AddOverlay(100, 60, 10, 10, {0, 0, 128});                     // over the box
    pane->m_mapFreePoints[1] = MakePoint(1, {0, 0, 30}, kPoint);  // in front of the object
    pane->SetPointCloudRenderPointSize(0.2f);                     // 140 / 5 * 0.2 = 5.6 pixels
    Frame();
    EXPECT_EQ(CountIn(20, 20, 40, 40, {0, 128 / 255.0, 0}), 400);
    EXPECT_EQ(CountIn(100, 60, 110, 70, {0, 0, 128 / 255.0}), 100);
    ExpectPixel(70, 70, kPoint);
    ExpectPixel(69, 69, kPoint);
    const int ofPoint = CountIn(66, 66, 76, 76, kPoint);
    EXPECT_GE(ofPoint, 25);
    EXPECT_LE(ofPoint, 36);
    EXPECT_EQ(CountIn(66, 66, 76, 76, {128 / 255.0, 0, 0}), 100 - ofPoint);
    ExpectPixel(65, 70, kCross);
}

// Overlays write no depth: a free point is tested against the scene below them.
TEST_F(FrameOrder, FreePointsBehindAnObjectStayHiddenUnderAnOverlay) {
    ShowEverything();
    AddOverlay(66, 66, 10, 10, {128, 0, 0});
    pane->m_mapFreePoints[1] = MakePoint(1, {0, 0, -1}, kPoint);
    pane->SetPointCloudRenderPointSize(0.2f);
    Frame();
    EXPECT_EQ(CountIn(0, 0, kSide, kSide, kPoint), 0);
    EXPECT_EQ(CountIn(66, 66, 76, 76, {128 / 255.0, 0, 0}), 100);
}

TEST_F(FrameOrder, RepeatedFramesAreIdentical) {
    ShowEverything();
    AddOverlay(66, 66, 10, 10, {128, 0, 0});
    pane->m_mapFreePoints[1] = MakePoint(1, {1, 1, 30}, kPoint);
    Frame();
    const auto first = picture.pixels;
    for (int i = 0; i < 3; ++i) {
        Frame();
        EXPECT_EQ(picture.pixels, first) << i;
    }
}

// ---- state

struct Step {
    const char* name;
    void (CKV_ScenePaneCtrl::*draw)();
    std::vector<std::string> changed;  ///< states that the step does not restore, on purpose
};
void PrintTo(const Step& step, std::ostream* out) { *out << step.name; }

const Step kSteps[] = {
    {"DrawBackground", &CKV_ScenePaneCtrl::DrawBackground, {"GL_CURRENT_COLOR"}},  // later steps set their own
    {"DrawCross", &CKV_ScenePaneCtrl::DrawCross, {}},
    {"DrawLightingArrow", &CKV_ScenePaneCtrl::DrawLightingArrow, {}},
    {"DrawAxes", &CKV_ScenePaneCtrl::DrawAxes, {}},
    {"DrawOverlays", &CKV_ScenePaneCtrl::DrawOverlays, {}},
    {"DrawFreePoints", &CKV_ScenePaneCtrl::DrawFreePoints, {}},
};

class FrameSteps : public FrameOrder, public testing::WithParamInterface<Step> {
protected:
    FrameSteps() {
        ShowEverything();
        AddOverlay(10, 10, 7, 5, {1, 2, 3});
        pane->m_mapFreePoints[1] = MakePoint(1, {0, 0, 30}, kPoint);
        Frame();
        pane->m_bInDraw = 1;  // as inside a frame
    }
    void RunStep() {
        GlSnapshot before = TakeGlSnapshot();
        ((*pane).*GetParam().draw)();
        EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
        GlSnapshot after = TakeGlSnapshot();
        for (const std::string& name : GetParam().changed) before.erase(name), after.erase(name);
        ExpectSameGlState(before, after, GetParam().name);
    }
};

INSTANTIATE_TEST_SUITE_P(Table, FrameSteps, testing::ValuesIn(kSteps), [](const auto& row) { return row.param.name; });

TEST_P(FrameSteps, RestoreTheOpenGlStateOfAFrame) { RunStep(); }

TEST_P(FrameSteps, RestoreAnUnusualOpenGlState) {
    GLuint texture = 0;
    glGenTextures(1, &texture);
    glBindTexture(GL_TEXTURE_2D, texture);
    for (const GLenum name : {GL_DEPTH_TEST, GL_LIGHTING, GL_LIGHT0, GL_BLEND, GL_CULL_FACE}) glEnable(name);
    glBlendFunc(GL_ONE, GL_ONE);
    glColor4f(0.1f, 0.2f, 0.3f, 0.4f);
    glNormal3f(0.6f, 0, 0.8f);
    glTexCoord2f(0.3f, 0.7f);
    glRasterPos3f(0, 0.1f, 0.2f);
    glListBase(77);
    RunStep();
    glDeleteTextures(1, &texture);
}

}  // namespace
