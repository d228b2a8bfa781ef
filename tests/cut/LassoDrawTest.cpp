// Lassos as the operator sees them: the outline of a polygon, the tint and the lines of a freehand lasso.
#include "render/GlSnapshot.h"
#include "render/SceneFixture.h"

using KV_ScenePane::kMouseLeft;
using namespace lighting;

namespace {

const Vec3 kCyan{0, 1, 1}, kRed{1, 0, 0};

class LassoDraw : public SceneInEveryWindow {
protected:
    /// A plain square of one colour: columns 112 to 207, rows 72 to 167. Dim, because softpipe blends over colours
    /// above 1 before it clamps them.
    void AddPlate() {
        Mesh& plate = Add({});
        AddPlainTexture(plate, {110, 120, 100, 255});
        Frame();
        plateColor = ColorAt(160, 120);
    }
    void Drag(std::initializer_list<std::array<int, 2>> points) {
        for (const auto& [x, y] : points) pane->OnMouseMoved(kMouseLeft, x, y);
    }
    /// Half of the tint over the colour below, by the alpha of 127 of 255.
    static Vec3 Tinted(const Vec3& below, const Vec3& tint) {
        constexpr double kAlpha = 127 / 255.0;
        Vec3 mixed{};
        for (std::size_t i = 0; i < 3; ++i) mixed[i] = kAlpha * tint[i] + (1 - kAlpha) * below[i];
        return mixed;
    }
    [[nodiscard]] int PixelsOf(const Vec3& color) const {
        int count = 0;
        for (int y = 0; y < picture.height; ++y)
            for (int x = 0; x < picture.width; ++x) count += DistanceAt(x, y, color) <= 1 ? 1 : 0;
        return count;
    }

    /// Whether a pixel is not cyan where the nearest texel is a line, or cyan where it is none. Between two texels
    /// either is right.
    [[nodiscard]] bool IsWrong(int x, int y) const {
        const CutSession& session = *pane->m_pCutSession;
        const double s = (x + 0.5) * session.m_nWidth / picture.width,
                     t = (y + 0.5) * session.m_nHeight / picture.height;
        const auto isBetween = [](double at) { return std::abs(at - std::round(at)) < 1e-3; };
        if (isBetween(s) || isBetween(t)) return false;
        const std::uint32_t texel = session.m_vComposite.at(
            static_cast<std::size_t>(t) * static_cast<std::size_t>(session.m_nWidth) + static_cast<std::size_t>(s));
        return (texel != 0) != (DistanceAt(x, y, kCyan) <= 1);
    }

    Vec3 plateColor{};
};

INSTANTIATE_TEST_SUITE_P(Kinds, LassoDraw, testing::ValuesIn(WindowKinds()),
                         [](const auto& row) { return NameOf(row.param); });

// ---- polygon

TEST_P(LassoDraw, PolygonHasCyanLinesAndRedPoints) {
    AddPlate();
    pane->StartSegmentation(KV_ScenePane::PolygonInside);
    pane->OnLeftDown(kMouseLeft, 40, 30);
    pane->OnLeftDown(kMouseLeft, 240, 30);
    pane->OnMouseMoved(0, 240, 200);
    Frame();
    for (const auto& [x, y] : {std::pair{40, 30}, {240, 30}, {240, 200}}) ExpectPixel(x, y, kRed);
    // Along the edges, and along the closing one from the mouse to the first point.
    const auto hasLineAround = [&](int x, int y) {
        bool found = false;
        for (int dy = -1; dy <= 1; ++dy)
            for (int dx = -1; dx <= 1; ++dx) found = found || DistanceAt(x + dx, y + dy, kCyan) <= kTolerance;
        return found;
    };
    EXPECT_TRUE(hasLineAround(100, 30));
    EXPECT_TRUE(hasLineAround(240, 100));
    EXPECT_TRUE(hasLineAround(140, 115)) << "over an object";
    ExpectPixel(200, 80, plateColor);
    ExpectBackground(60, 200);
    EXPECT_NEAR(PixelsOf(kRed), 27, 3) << "three points of 3 x 3 pixels";
}

TEST_P(LassoDraw, PolygonIsNotDrawnWithoutPointsOrAfterTheSession) {
    AddPlate();
    const KV_ScenePane::Picture before = picture;
    pane->StartSegmentation(KV_ScenePane::PolygonInside);
    pane->OnMouseMoved(0, 240, 200);
    Frame();
    EXPECT_EQ(picture.pixels, before.pixels);
    pane->OnLeftDown(kMouseLeft, 40, 30);
    Frame();
    EXPECT_NE(picture.pixels, before.pixels);
    pane->EndSegmentation();
    Frame();
    EXPECT_EQ(picture.pixels, before.pixels);
}

TEST_P(LassoDraw, PolygonGrowsWithTheScaleOfTheScreen) {
    Frame();
    pane->StartSegmentation(KV_ScenePane::PolygonInside);
    pane->OnLeftDown(kMouseLeft, 40, 60);
    pane->OnLeftDown(kMouseLeft, 240, 60);
    Frame();
    const int thin = DrawnPixelsIn(100, 0, 101, 240), small = PixelsOf(kRed);
    pane->SetScale(3);
    Frame();
    EXPECT_EQ(thin, 1);
    EXPECT_EQ(DrawnPixelsIn(100, 0, 101, 240), 3);
    EXPECT_NEAR(small, 18, 2);
    EXPECT_NEAR(PixelsOf(kRed), 162, 18);
}

TEST_P(LassoDraw, PolygonFollowsAChangeOfTheWindow) {
    Frame();
    pane->StartSegmentation(KV_ScenePane::PolygonInside);
    pane->OnLeftDown(kMouseLeft, 80, 60);
    pane->OnLeftDown(kMouseLeft, 240, 60);
    Resize(160, 480);
    Frame();
    ExpectPixel(40, 120, kRed);
    ExpectPixel(120, 120, kRed);
}

TEST_P(LassoDraw, PolygonLeavesTheStateOfOpenGlAsItWas) {
    Frame();
    pane->m_vLassoPoints = {{0.1, 0.1}, {0.5, 0.9}};
    glPointSize(7);
    glColor3f(0.25f, 0.5f, 0.75f);
    const GlSnapshot before = TakeGlSnapshot();
    pane->DrawLassoPolygon();
    ExpectSameGlState(before, TakeGlSnapshot(), "the polygon");
}

TEST_P(LassoDraw, PolygonOfAnyPointsRaisesNoError) {
    Frame();
    pane->m_nInteractionMode = ModeLasso;
    for (const double odd : {0.0, -1e9, 1e300, -1e300, double{NAN}, double{INFINITY}}) {
        pane->m_vLassoPoints = {{0.1, 0.1}, {odd, 0.5}, {0.5, odd}};
        pane->m_lassoCursor = {odd, odd};
        Frame();
    }
}

// ---- freehand

TEST_P(LassoDraw, FreehandTintsTheObjectsAndNotTheBackground) {
    AddPlate();
    pane->StartSegmentation(KV_ScenePane::FreehandInside);
    pane->OnLeftDown(kMouseLeft, 60, 40);
    Drag({{180, 40}, {180, 130}, {60, 130}});
    Frame();
    ExpectPixel(150, 100, Tinted(plateColor, kRed));
    ExpectPixel(113, 73, Tinted(plateColor, kRed));
    ExpectPixel(190, 100, plateColor);
    ExpectPixel(150, 140, plateColor);
    ExpectBackground(80, 100);
    ExpectBackground(150, 60);
    ExpectBackground(250, 200);
    // The lines are over everything, the closing one as well.
    for (const auto& [x, y] : {std::pair{100, 40}, {180, 100}, {150, 130}, {100, 130}, {60, 80}})
        ExpectPixel(x, y, kCyan);
    EXPECT_EQ(PixelsOf(kCyan), 2 * (120 + 90));
}

TEST_P(LassoDraw, FreehandOutsideTintsWhatGoes) {
    AddPlate();
    pane->StartSegmentation(KV_ScenePane::FreehandOutside);
    pane->OnLeftDown(kMouseLeft, 60, 40);
    Drag({{180, 40}, {180, 130}, {60, 130}});
    Frame();
    ExpectPixel(150, 100, plateColor);
    ExpectPixel(190, 100, Tinted(plateColor, kRed));
    ExpectPixel(150, 140, Tinted(plateColor, kRed));
    ExpectBackground(250, 200);
}

TEST_P(LassoDraw, FreehandHasTheColoursOfItsStart) {
    AddPlate();
    pane->SetLassoCuttingColors(0x0000FF00, 0.5f, 0x00FF0000, 0.5f);
    pane->StartSegmentation(KV_ScenePane::FreehandVisible);
    pane->OnLeftDown(kMouseLeft, 60, 40);
    pane->SetLassoCuttingColors(0, 1, 0, 1);
    Drag({{180, 40}, {180, 130}, {60, 130}});
    Frame();
    ExpectPixel(150, 100, Tinted(plateColor, {0, 1, 0}));
    ExpectPixel(190, 100, Tinted(plateColor, {0, 0, 1}));
}

TEST_P(LassoDraw, FreehandMixesDragsClicksAndTheRubberBand) {
    AddPlate();
    pane->StartSegmentation(KV_ScenePane::FreehandInside);
    pane->OnLeftDown(kMouseLeft, 60, 40);
    Drag({{100, 40}, {180, 40}});
    pane->OnMouseMoved(0, 180, 130);  // the band to the mouse, and back to the start
    Frame();
    ExpectPixel(180, 100, kCyan);
    ExpectPixel(150, 90, Tinted(plateColor, kRed));
    ExpectPixel(130, 110, plateColor);
    pane->OnMouseMoved(0, 60, 130);
    Frame();
    ExpectPixel(60, 100, kCyan);
    ExpectPixel(150, 90, plateColor);
    pane->OnLeftDown(kMouseLeft, 180, 130);
    pane->OnLeftDown(kMouseLeft, 60, 130);
    Frame();
    ExpectPixel(130, 110, Tinted(plateColor, kRed));
    ExpectPixel(60, 100, kCyan);
}

TEST_P(LassoDraw, FreehandStretchesWithTheWindow) {
    AddPlate();
    pane->StartSegmentation(KV_ScenePane::FreehandInside);
    pane->OnLeftDown(kMouseLeft, 80, 60);
    Drag({{240, 60}, {240, 180}, {80, 180}});
    Frame();
    Resize(640, 480);
    Frame();
    for (const auto& [x, y] : {std::pair{200, 120}, {480, 300}, {200, 360}, {160, 300}}) ExpectPixel(x, y, kCyan);
    ExpectPixel(320, 240, Tinted(plateColor, kRed));
    pane->OnMouseMoved(kMouseLeft, 100, 100);  // a point of the new window
    EXPECT_EQ(pane->m_pCutSession->GetLastPoint(), (LassoPixel{50, 50}));
    const MaskBits mask = pane->m_pCutSession->CreateMaskBits(pane->m_nWidth, pane->m_nHeight);
    EXPECT_EQ(mask.m_vBits.m_uCount, 640u * 480u);
    EXPECT_TRUE(mask.m_vBits.IsSet(640 * 240 + 320));
}

// Every pixel of the frame, in windows that have another size than the images: each shows the nearest texel, and what
// is left out around the box of the lasso was invisible.
TEST_P(LassoDraw, FreehandShowsTheNearestTexelInEverySizeOfTheWindow) {
    Add({.half = 20});  // the whole window
    for (const auto& corner : {std::array{5, 5}, {250, 5}, {5, 180}, {250, 180}, {120, 90}}) {
        Resize(321, 241);
        pane->StartSegmentation(KV_ScenePane::FreehandInside);
        pane->OnLeftDown(kMouseLeft, corner[0], corner[1]);
        Drag({{corner[0] + 50, corner[1] + 10}, {corner[0] + 30, corner[1] + 50}, {corner[0] + 2, corner[1] + 7}});
        for (const auto& [width, height] : {std::pair{321, 241}, {400, 500}, {101, 90}, {643, 60}, {33, 481}}) {
            Resize(width, height);
            Frame();
            int wrong = 0;
            for (int y = 0; y < height; ++y)
                for (int x = 0; x < width; ++x) wrong += IsWrong(x, y) ? 1 : 0;
            EXPECT_EQ(wrong, 0) << width << " x " << height << " from " << corner[0] << " " << corner[1];
            EXPECT_GT(PixelsOf(kCyan), 10);
        }
        pane->EndSegmentation();
    }
}

TEST_P(LassoDraw, FreehandIsGoneAfterTheSession) {
    AddPlate();
    const KV_ScenePane::Picture before = picture;
    pane->StartSegmentation(KV_ScenePane::FreehandInside);
    Frame();
    EXPECT_EQ(picture.pixels, before.pixels) << "before the first click";
    pane->OnLeftDown(kMouseLeft, 60, 40);
    Frame();
    EXPECT_EQ(picture.pixels, before.pixels) << "the start alone";
    Drag({{180, 40}, {180, 130}});
    Frame();
    EXPECT_NE(picture.pixels, before.pixels);
    pane->EndSegmentation();
    Frame();
    EXPECT_EQ(picture.pixels, before.pixels);
}

TEST_P(LassoDraw, FreehandIsDrawnWithTheShadowProgramAndWithSamples) {
    ASSERT_TRUE(pane->MakeContextCurrent());
    pane->RecreateOpenglContext(3, 3, Get(GL_MAX_SAMPLES) >= 4 ? 4 : 0);
    Frame();
    Look(320, 240);
    pane->m_bShadowEnabled = 1;
    Add({}, {0.3, 0.35, 0.25});
    Frame();
    const Vec3 inside = ColorAt(150, 100), outside = ColorAt(190, 100);
    pane->StartSegmentation(KV_ScenePane::FreehandInside);
    ASSERT_TRUE(pane->MakeContextCurrent());
    while (glGetError() != GL_NO_ERROR) continue;  // of the shadow pass in the frame of the start
    pane->OnLeftDown(kMouseLeft, 60, 40);
    Drag({{180, 40}, {180, 130}, {60, 130}});
    Frame();
    ExpectPixel(150, 100, Tinted(inside, kRed));
    ExpectPixel(190, 100, outside);
    ExpectPixel(180, 100, kCyan);
}

TEST_P(LassoDraw, KeepsTheAlphaOfTheFrame) {
    AddPlate();
    pane->StartSegmentation(KV_ScenePane::FreehandInside);
    pane->OnLeftDown(kMouseLeft, 60, 40);
    Drag({{180, 40}, {180, 130}, {60, 130}});
    Frame();
    pane->m_frameTarget.Bind();
    std::vector<std::uint8_t> alpha(320 * 240);
    glReadPixels(0, 0, 320, 240, GL_ALPHA, GL_UNSIGNED_BYTE, alpha.data());
    EXPECT_EQ(std::ranges::count(alpha, 255), 320 * 240);
}

// ---- a lost context

TEST_P(LassoDraw, FreehandEndsWithItsContext) {
    AddPlate();
    for (const bool isStarted : {false, true}) {
        pane->StartSegmentation(KV_ScenePane::FreehandInside);
        if (isStarted) {
            pane->OnLeftDown(kMouseLeft, 60, 40);
            Drag({{180, 40}, {180, 130}});
            Frame();
            ASSERT_NE(pane->m_pCutSession, nullptr);
        }
        pane->RecreateOpenglContext(3, 3, 0);
        EXPECT_EQ(pane->m_pCutMask, nullptr);
        EXPECT_EQ(pane->m_pCutSession, nullptr);
        EXPECT_EQ(pane->m_nInteractionMode, ModeMaskLasso) << "the host ends it";
        pane->OnLeftDown(kMouseLeft, 60, 40);
        Drag({{180, 40}});
        EXPECT_EQ(pane->m_pCutSession, nullptr);
        Frame();
    }
    // A new session works in the new context.
    Look(320, 240);
    AddPlate();
    pane->StartSegmentation(KV_ScenePane::FreehandInside);
    pane->OnLeftDown(kMouseLeft, 60, 40);
    Drag({{180, 40}, {180, 130}, {60, 130}});
    Frame();
    ExpectPixel(150, 100, Tinted(plateColor, kRed));
}

}  // namespace
