// What grows with the scale of the screen: fonts, lines, points. What does not: sizes in scene units and in the window.
#include <limits>

#include "control/ScenePaneHandle.h"
#include "render/SceneFixture.h"
#include "support/TextPicture.h"

using namespace lighting;

namespace {

class ScreenScale : public SceneInEveryWindow {
protected:
    [[nodiscard]] static GLfloat LineWidth() {
        GLfloat width = -1;
        glGetFloatv(GL_LINE_WIDTH, &width);
        return width;
    }
    [[nodiscard]] int DrawnInColumn(int x) const { return DrawnPixelsIn(x, 0, x + 1, picture.height); }
    [[nodiscard]] int DrawnInRow(int y) const { return DrawnPixelsIn(0, y, picture.width, y + 1); }
};

INSTANTIATE_TEST_SUITE_P(Windows, ScreenScale, testing::ValuesIn(WindowKinds()),
                         [](const auto& row) { return NameOf(row.param); });

TEST_P(ScreenScale, IsOneAtTheStart) {
    EXPECT_EQ(pane->m_fScale, 1.0f);
    ASSERT_TRUE(pane->MakeContextCurrent());
    EXPECT_EQ(LineWidth(), 1.0f);
}

TEST_P(ScreenScale, QueuesARepaintWhenItChanges) {
    pane->PerformRefresh();
    pane.window->Forget();
    pane->SetScale(1);
    EXPECT_EQ(pane.window->invalidates, 0);
    pane->SetScale(2);
    EXPECT_EQ(pane.window->invalidates, 1);
    EXPECT_EQ(pane.window->refreshes + pane.window->eraseInvalidates, 0);
}

TEST_P(ScreenScale, IsLimitedAndCountsAsOneWhenItIsNoFactor) {
    using Double = std::numeric_limits<double>;
    const std::pair<double, float> rows[] = {{2, 2.0f},
                                             {1.5, 1.5f},
                                             {0.25, 0.25f},
                                             {0.1, 0.25f},
                                             {8, 8.0f},
                                             {1e300, 8.0f},
                                             {Double::quiet_NaN(), 1.0f},
                                             {0, 1.0f},
                                             {-2, 1.0f},
                                             {2, 2.0f},
                                             {Double::infinity(), 1.0f}};
    for (const auto& [scale, used] : rows) {
        pane->SetScale(scale);
        EXPECT_EQ(pane->m_fScale, used) << scale;
    }
}

TEST_P(ScreenScale, EnlargesTheFontsOfFramesAndTheBoldLists) {
    pane->SetScale(1.5);
    ASSERT_TRUE(pane->MakeContextCurrent());
    const FontRequest enlarged[] = {{"", 400, 18}, {"Courier New", 700, -36}, {"Courier New", 900, -100}};
    for (int font = 0; font < 3; ++font) {
        const GlyphSet glyphs = RasterizeFont(enlarged[font]);
        ASSERT_FALSE(glyphs.IsEmpty());
        TextPicture expected(320, 240);
        const int end = expected.Write(glyphs, "8 1", 20, 60);
        BeginText(20, 60);
        pane->m_textDraw.PrintText(u"8 1", font);
        EXPECT_EQ(TextPicture::OfFramebuffer(320, 240), expected) << "font " << font;
        EXPECT_EQ(pane->m_textDraw.GetFontHeight(font + 1), glyphs.lineHeight);
        EXPECT_EQ(pane->m_textDraw.GetTextWidth("8 1", font + 1), end - 20);
    }
    TextPicture bold(320, 240);
    bold.Write(RasterizeFont({.family = "Courier New", .weight = 700, .height = -24}), "A", 20, 60);
    BeginText(20, 60);
    glCallList(pane->m_nFontListBase + 'A' - ' ');
    EXPECT_EQ(TextPicture::OfFramebuffer(320, 240), bold);
}

TEST_P(ScreenScale, ReturnsToTheSamePixels) {
    pane->ShowAxes(1);
    pane->m_nPickMode = KV_ScenePane::PickModeCross;
    Add({});
    pane->m_nDrawMode = KV_ScenePane::DrawModeWireframe;
    Frame();
    const KV_ScenePane::Picture before = picture;
    pane->SetScale(3);
    Frame();
    EXPECT_NE(picture.pixels, before.pixels);
    pane->SetScale(1);
    Frame();
    EXPECT_EQ(picture.pixels, before.pixels);
}

// The cross: 12 pixels per unit at a height of 240, its arms one unit long.
TEST_P(ScreenScale, WidensTheCrossAndKeepsItsLength) {
    pane->m_nPickMode = KV_ScenePane::PickModeCross;
    pane->SetScale(2);
    Frame();
    EXPECT_EQ(DrawnInColumn(160 - 9), 6);
    EXPECT_EQ(DrawnInRow(120 + 9), 6);
    EXPECT_EQ(DrawnPixelsIn(0, 120, 320, 121), 24);
    EXPECT_EQ(LineWidth(), 2.0f) << "for the axes";
}

TEST_P(ScreenScale, WidensWiresAndBoxes) {
    // A square from -2 to 2, at 24 pixels per unit: its wires and its box cross column 180 at the upper and lower edge;
    // the diagonal of the wires leads through the middle.
    Add({}).ComputeBoundingBox();
    for (const auto& [mode, lines] :
         {std::pair{KV_ScenePane::DrawModeWireframe, 3}, {KV_ScenePane::DrawModeBoundingBoxes, 2}}) {
        pane->m_nDrawMode = mode;
        pane->SetScale(1);
        Frame();
        const int thin = DrawnInColumn(180);
        EXPECT_EQ(thin, lines) << mode;
        pane->SetScale(4);
        Frame();
        EXPECT_NEAR(DrawnInColumn(180), 4 * thin, 1) << mode;  // the diagonal: drivers differ by a pixel at its edge
    }
}

TEST_P(ScreenScale, EnlargesThePointsOfObjectsAndKeepsTheStoredSize) {
    AddMesh(*pane,
            {MakeVertex({0.3, 0.3, 0}, {0, 0, 1}), MakeVertex({1, 0, 0}, {0, 0, 1}), MakeVertex({0, 1, 0}, {0, 0, 1})},
            {Triangle{{0, 1, 2}}});
    pane->m_nDrawMode = KV_ScenePane::DrawModePoints;
    pane->SetPointCloudRenderPointSize(3);
    for (const auto& [scale, side] : {std::pair{1.0, 3}, {2.0, 6}, {3.0, 9}}) {
        pane->SetScale(scale);
        Frame();
        EXPECT_EQ(PixelsThatAreNotBackground(), side * side) << scale;
        EXPECT_EQ(pane->m_fPointCloudSize, 3.0f);
    }
}

TEST_P(ScreenScale, KeepsTheSizeOfOverlaysAndObjects) {
    const std::vector<std::uint8_t> white(4 * 8 * 8, 255);
    pane->AddOverlayData(white.data(), 8, 8, 0, 0, 0, 0, 10, 20);
    Add({});
    pane->m_nDrawMode = KV_ScenePane::DrawModeFlat;
    Frame();
    const KV_ScenePane::Picture before = picture;
    pane->SetScale(2);
    Frame();
    EXPECT_EQ(picture.pixels, before.pixels);
}

TEST_P(ScreenScale, RemainsInANewContext) {
    pane->SetScale(2);
    pane->RecreateOpenglContext(3, 3, 0);
    ASSERT_TRUE(pane->MakeContextCurrent());
    EXPECT_EQ(LineWidth(), 2.0f);
    EXPECT_EQ(pane->m_textDraw.GetFontHeight(2), RasterizeFont({"Courier New", 700, -48}).lineHeight);
}

TEST(ScreenScaleOfARequest, CountsFromTheFirstFrame) {
    KV_ScenePane::WindowRequest request;
    request.scale = 2;
    TestFolder();
    const auto pane = KV_ScenePane::CreateScenePane(request, nullptr);
    ASSERT_NE(pane, nullptr);
    EXPECT_EQ(ControlOf(*pane).m_fScale, 2.0f);
    EXPECT_EQ(ControlOf(*pane).m_textDraw.GetFontHeight(2), RasterizeFont({"Courier New", 700, -48}).lineHeight);
    pane->SetScale(1);
    EXPECT_EQ(ControlOf(*pane).m_textDraw.GetFontHeight(2), RasterizeFont({"Courier New", 700, -24}).lineHeight);
}

TEST(ScreenScaleWithoutOpenGl, IsOnlyStored) {
    const NoPictureControl pane;
    pane->SetScale(2);
    EXPECT_EQ(pane->m_fScale, 2.0f);
}

}  // namespace
