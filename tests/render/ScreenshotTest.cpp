// Screenshots: what they show at which position, and that they do not change the window.
#include <new>

#include "render/FrameWitness.h"
#include "render/ScreenshotHelp.h"

using namespace lighting;

namespace {

/// A square that calls a function whenever it is drawn, in frames and in screenshots.
class WitnessMesh final : public Mesh {
public:
    explicit WitnessMesh(const Square& square = {})
        : Mesh(square.Vertices(), square.Triangles(), std::wstring(), false) {}
    void Draw(std::int32_t mode, bool reduced) override {
        ++draws;
        if (atDraw) atDraw(mode, reduced);
        Mesh::Draw(mode, reduced);
    }
    int draws = 0;
    std::function<void(std::int32_t mode, bool reduced)> atDraw;
};

class Screenshots : public SceneInEveryWindow {
protected:
    Screenshots() {
        pane->PerformRefresh();  // the first frame stores the size of the window
        Look(320, 240);
    }

    /// Takes a screenshot, which must raise no OpenGL error and restore the state.
    void Take() {
        shot = Capture(*pane);
        ASSERT_TRUE(pane->MakeContextCurrent());
        ExpectDefaultStacksAndBindings();
        EXPECT_EQ(Get(GL_MATRIX_MODE), GL_MODELVIEW);
        EXPECT_EQ(Get(GL_COLOR_MATERIAL), 0);
        EXPECT_EQ(Get(GL_DEPTH_TEST), 0);
        picture = {kSide, kSide, shot};  // for ColorAt() and the other checks of pixels
    }
    WitnessMesh& AddWitness(const Square& square = {}) {
        auto mesh = std::make_shared<WitnessMesh>(square);
        pane->m_vpMeshes.push_back(mesh);
        return *mesh;
    }
    /// The box of a flat mesh is widened by a hundredth on both sides; with the margin its size is 8 x 8 x 4.02.
    static constexpr double kSizeOfOneSquare = 12.006682;

    Shot shot;
};
INSTANTIATE_TEST_SUITE_P(Windows, Screenshots, testing::ValuesIn(WindowKinds()),
                         [](const auto& row) { return NameOf(row.param); });

// ---- content and position

// Two squares of two units, three units apart: the box with its margin of two units is 6 x 6 x 7, its diagonal 11
// units, so that a unit is 2048 / 11 pixels. Edges one unit from the centre are at 1024 -+ 186.18 pixels: the first
// pixel whose centre is inside is 838, the last one 1209.
TEST_P(Screenshots, FrameTheSceneByTheDiagonalOfItsWidenedBox) {
    const Square far{.half = 1}, near{.center = {0, 0, 3}, .half = 1};
    Add(far);
    Add(near, {1, 0.5, 0});
    Take();
    Camera c;
    c.center = {0, 0, 1.5};
    c.sceneSize = 11;
    c.width = c.height = kSide;
    for (const auto& [x, y] : {std::pair{838, 838}, {1209, 838}, {838, 1209}, {1209, 1209}, {1000, 1100}})
        ExpectPixel(x, y, FixedFunction(c, near.At(c, x, y, {1, 0.5, 0})));
    for (const auto& [x, y] : {std::pair{837, 1000}, {1210, 1000}, {1000, 837}, {1000, 1210}}) ExpectBackground(x, y);
    EXPECT_EQ(CountOfOthers(shot, kBackgroundPixel), 372 * 372);
}

// One square at the upper left, a smaller one at the lower right: the box is -4 .. 3.5, -1.5 .. 6, 0, its centre is
// (-0.25, 2.25, 0), and its diagonal that of 11.5 x 11.5 x 4.02.
TEST_P(Screenshots, ShowEachObjectAtItsPositionFromTheCentreOfTheBox) {
    Add({.center = {-3, 5, 0}, .half = 1}, {1, 0, 0});
    Add({.center = {3, -1, 0}, .half = 0.5}, {0, 0, 1});
    Take();
    const double unit = 2048 / std::sqrt(2 * 11.5 * 11.5 + 4.02 * 4.02);  // pixels
    const auto x = [&](double world) { return 1024 + (world + 0.25) * unit; };
    const auto y = [&](double world) { return 1024 - (world - 2.25) * unit; };
    // Whether the pixel is lit in one of red (0) and blue (2) and dark in the other.
    const auto has = [&](std::size_t channel, double px, double py) {
        const Vec3 color = ColorAt(static_cast<int>(px), static_cast<int>(py));
        return color[channel] > 0.9 && color[2 - channel] < 0.2;
    };
    EXPECT_TRUE(has(0, x(-4) + 1, y(6) + 1)) << "the upper left corner";
    EXPECT_TRUE(has(0, x(-2) - 1, y(4) - 1)) << "the lower right one";
    ExpectBackground(static_cast<int>(x(-4)) - 1, static_cast<int>(y(5)));
    ExpectBackground(static_cast<int>(x(-3)), static_cast<int>(y(6)) - 1);
    EXPECT_TRUE(has(2, x(2.5) + 1, y(-0.5) + 1));
    EXPECT_TRUE(has(2, x(3.5) - 1, y(-1.5) - 1));
    ExpectBackground(static_cast<int>(x(3.5)) + 1, static_cast<int>(y(-1)));
    ExpectBackground(static_cast<int>(x(3)), static_cast<int>(y(-1.5)) + 1);
}

TEST_P(Screenshots, HaveTheViewingDirectionOfTheWindow) {
    const Square square;
    Add(square);
    pane->SetViewMode(KV_ScenePane::ViewObliqueZUp);
    Take();
    const double s = std::sqrt(0.5);
    Camera c;
    c.sceneSize = kSizeOfOneSquare;
    c.width = c.height = kSide;
    c.axisX = {-s, s, 0};
    c.axisY = {-0.5, -0.5, s};
    c.axisZ = {0.5, 0.5, s};
    // The corners (2, 2), (-2, -2), (2, -2), (-2, 2): a rhombus, wider than high.
    for (const Vec3& corner : {Vec3{2, 2, 0}, {-2, -2, 0}, {2, -2, 0}, {-2, 2, 0}}) {
        const auto inside = c.ToWindow(0.98 * corner), outside = c.ToWindow(1.02 * corner);
        const int x = static_cast<int>(inside[0]), y = static_cast<int>(inside[1]);
        ExpectPixel(x, y, FixedFunction(c, square.At(c, x, y, {1, 1, 1})));
        ExpectBackground(static_cast<int>(outside[0]), static_cast<int>(outside[1]));
    }
    EXPECT_LT(c.ToWindow({2, -2, 0})[0], 600) << "the corner on the left";
    EXPECT_GT(c.ToWindow({2, 2, 0})[1], 1300) << "the corner below";
}

TEST_P(Screenshots, KeepTheZoomOfTheWindow) {
    Add({});
    pane->m_fZoom = 2.0f;  // shows twice as much: from pixel 853.43 to 1194.57
    Take();
    EXPECT_EQ(CountOfOthers(shot, kBackgroundPixel), 342 * 342);
    EXPECT_NE(PixelOf(shot, 853, 853), kBackgroundPixel);
    EXPECT_EQ(PixelOf(shot, 852, 1000), kBackgroundPixel);
}

TEST_P(Screenshots, AreDepthTested) {
    Add({.center = {0, 0, 3}, .half = 2}, {1, 0, 0});
    Add({.center = {0, 0, 0}, .half = 2}, {0, 1, 0});
    Take();
    ExpectPixel(1024, 1024, Vec3{1.0, 0.09, 0.09}, 3);
}

TEST_P(Screenshots, IgnoreHiddenObjects) {
    Add({});
    Take();
    const Shot alone = shot;
    Add({.center = {40, -70, 9}, .half = 30}).m_iVisible = 0;
    Add({.center = {0, 0, 1}}, {1, 0, 0}).m_iVisible = 0;
    Take();
    ExpectSame(shot, alone, "with hidden objects");
}

TEST_P(Screenshots, IncludeFreePointsInTheBoxButDoNotDrawThem) {
    Add({});
    FreePointSet points;
    points.id = 1;
    points.boxMin = {-14, -2, 0};
    points.boxMax = {2, 2, 0};  // 20 x 8 x 4 with the margin, the middle at (-6, 0, 0)
    pane->m_mapFreePoints.emplace(1, points);
    Take();
    const double unit = 2048 / std::sqrt(20 * 20 + 8 * 8 + 4 * 4);
    const int left = static_cast<int>(std::ceil(1024 + 4 * unit - 0.5));
    EXPECT_EQ(PixelOf(shot, left - 1, 1024), kBackgroundPixel);
    EXPECT_NE(PixelOf(shot, left, 1024), kBackgroundPixel);
    pane->m_mapFreePoints.clear();
}

TEST_P(Screenshots, OfAnEmptySceneShowTheBackground) {
    Take();
    EXPECT_EQ(CountOf(shot, kBackgroundPixel), std::ptrdiff_t{kSide} * kSide);
}

TEST_P(Screenshots, ShowTheFourColoursInTheCornersOfTheWindow) {
    pane->SetBackgroundColorsFourCorners(HostColor(255, 0, 0), HostColor(0, 255, 0), HostColor(0, 0, 255),
                                         HostColor(255, 255, 255));
    Frame();
    const std::uint32_t windowTopLeft = picture.pixels.front(), windowBottomRight = picture.pixels.back();
    Take();
    ExpectPixel(0, 0, {1, 0, 0}, 1);
    ExpectPixel(kSide - 1, 0, {0, 1, 0}, 1);
    ExpectPixel(0, kSide - 1, {0, 0, 1}, 1);
    ExpectPixel(kSide - 1, kSide - 1, {1, 1, 1}, 1);
    ExpectPixel(1024, 0, {0.5, 0.5, 0}, 1);
    ExpectPixel(0, 512, {0.75, 0, 0.25}, 1);
    EXPECT_NEAR(windowTopLeft >> 16 & 0xFF, PixelOf(shot, 0, 0) >> 16 & 0xFF, 3);
    EXPECT_NEAR(windowBottomRight & 0xFF, PixelOf(shot, kSide - 1, kSide - 1) & 0xFF, 3);
}

TEST_P(Screenshots, AreOpaqueEverywhere) {
    Add({.center = {-2, 0, 0}});
    Add({.center = {2, 0, 0}, .color = 0x00FF8040}, {1, 1, 1}, true);  // vertex colours with alpha 0
    Add({.center = {0, 3, 0}, .turned = true});
    Take();
    EXPECT_GT(CountOfOthers(shot, kBackgroundPixel), 100'000);
    EXPECT_TRUE(std::ranges::all_of(shot, [](std::uint32_t pixel) { return pixel >> 24 == 0xFF; }));
}

TEST_P(Screenshots, OmitWhatTheWindowDrawsOverTheScene) {
    Mesh& mesh = Add({});
    Take();
    const Shot plain = shot;
    const std::vector<std::uint8_t> white(4 * 64 * 64, 255);
    pane->AddOverlayData(white.data(), 64, 64, 0, 0, 0, 0, 0, 0);
    pane->m_vpSelection = {&mesh};
    pane->m_nShowArrow = pane->m_nShowAxes = 1;
    pane->m_vLassoPoints = {{0.1, 0.1}, {0.9, 0.1}, {0.5, 0.9}};
    pane->m_bClipPlaneVisible = 1;
    pane->m_nPickMode = KV_ScenePane::PickModeCross;
    pane->m_nInteractionMode = ModeLasso;
    Take();
    ExpectSame(shot, plain, "with the cross and a lasso");
    pane->m_nPickMode = KV_ScenePane::PickModePoints;
    pane->m_bPickPointValid = 1;
    pane->m_nInteractionMode = ModeIdle;  // because the window does not draw the plane during a lasso
    Take();
    ExpectSame(shot, plain, "with a valid pick and the plane");
    Frame();
    ExpectPixel(1, 1, {1, 1, 1});
    ExpectPixel(63, 63, {1, 1, 1});
}

// ---- how the objects are drawn

TEST_P(Screenshots, AreTheSameInEveryDrawMode) {
    Add({.normal = {0.6, 0, 0.8}}, {0.9, 0.5, 0.1});
    Take();
    const Shot expected = shot;
    pane->SetShadowMode(1);
    pane->m_bMoveReduced = 1;
    pane->m_bMoving = 1;
    for (std::int16_t mode = 0; mode < 9; ++mode) {
        pane->m_nDrawMode = mode;
        Take();
        ExpectSame(shot, expected, "draw mode " + std::to_string(mode));
    }
    EXPECT_GT(CountOfOthers(expected, kBackgroundPixel), 400'000);
}

TEST_P(Screenshots, DrawGouraudInFullDetailWithoutProgramOrClipPlane) {
    pane->m_nDrawMode = KV_ScenePane::DrawModePerPixel;
    pane->m_bMoveReduced = 1;
    pane->m_bMoving = 1;
    pane->m_bClipPlaneActive = 1;
    Frame();  // one that clips
    WitnessMesh& mesh = AddWitness({.center = {10, 0, 0}});
    mesh.atDraw = [&](std::int32_t mode, bool reduced) {
        EXPECT_EQ(mode, KV_ScenePane::DrawModeGouraud);
        EXPECT_FALSE(reduced);
        EXPECT_EQ(Get(GL_CURRENT_PROGRAM), 0);
        EXPECT_EQ(Get(GL_CLIP_PLANE0), 0);
        EXPECT_EQ(Get(GL_COLOR_MATERIAL), 1);
        EXPECT_EQ(Get(GL_COLOR_MATERIAL_FACE), GL_FRONT);
        EXPECT_EQ(Get(GL_COLOR_MATERIAL_PARAMETER), GL_DIFFUSE);
        EXPECT_EQ(Get(GL_DEPTH_TEST), 1);
        EXPECT_EQ(Get(GL_FRAMEBUFFER_BINDING), static_cast<GLint>(pane->m_nOffscreenFbo));
        std::array<GLint, 4> viewport{};
        glGetIntegerv(GL_VIEWPORT, viewport.data());
        EXPECT_EQ(viewport, (std::array<GLint, 4>{0, 0, 2048, 2048}));
        EXPECT_EQ(pane->m_nWidth, 2048);
        EXPECT_EQ(pane->m_nHeight, 2048);
        EXPECT_EQ(pane->m_fAspectX, 1.0f);
        EXPECT_EQ(pane->m_fAspectY, 1.0f);
        EXPECT_EQ(pane->m_fViewCenter, (Float3{10, 0, 0}));
        EXPECT_EQ(pane->m_fRotationCenter, (Float3{10, 0, 0}));
        EXPECT_FLOAT_EQ(pane->m_fSceneSize, static_cast<float>(kSizeOfOneSquare));
        EXPECT_TRUE(DrawLockIsHeld());
    };
    Take();
    EXPECT_EQ(mesh.draws, 1);
    EXPECT_FALSE(DrawLockIsHeld());
}

TEST_P(Screenshots, BuildTheBuffersOfANewObject) {
    Mesh& mesh = Add({});
    ASSERT_TRUE(mesh.m_bBuffersDirty);
    Take();
    EXPECT_FALSE(mesh.m_bBuffersDirty);
    EXPECT_EQ(CountOfOthers(shot, kBackgroundPixel), kPixelsOfOneSquare);
}

// ---- the window afterwards

TEST_P(Screenshots, ChangeNeitherTheViewNorTheNextFrame) {
    Add({.center = {1, 2, 3}, .normal = {0.6, 0, 0.8}}, {0.9, 0.5, 0.1});
    Add({.center = {-3, 0, 1}, .half = 1}, {0.2, 0.5, 0.9});
    pane->SetViewParams(0.8f, 0, 0.6f, 0, 1, 0, 0.25f, -0.5f, 7, 1.5f, 0);
    pane->m_fRotationCenter = {4, 5, 6};
    pane->m_fSceneSize = 23.0f;
    pane->SetupViewMatrices();
    Frame();
    const auto before = picture.pixels;
    const ViewState state = StateOf(*pane);
    Take();
    ExpectSame(StateOf(*pane), state);
    Frame();
    EXPECT_EQ(picture.pixels.size(), before.size());
    EXPECT_TRUE(picture.pixels == before);
    ASSERT_GT(PixelsThatAreNotBackground(), 1000);
}

TEST_P(Screenshots, ChangeNoFrameWithShadowsOrPrograms) {
    Add({.center = {0, 0, -1}});
    Add({.center = {1, 1, 2}, .half = 1});
    using namespace KV_ScenePane;
    for (const std::int16_t shadows : std::vector<std::int16_t>{0, 1})
        for (const DrawMode mode : {DrawModeWireframe, DrawModeGouraud, DrawModePerPixel, DrawModeShadowMap}) {
            pane->SetShadowMode(shadows);
            pane->m_nDrawMode = mode;
            Frame();
            const auto before = picture.pixels;
            Take();
            Frame();
            EXPECT_TRUE(picture.pixels == before) << "mode " << mode << ", shadows " << shadows;
        }
}

TEST_P(Screenshots, RequestRepaintsThatCoalesceAndNeverErase) {
    Add({});
    pane.window->ProcessEvents();
    pane.window->Forget();
    Take();
    EXPECT_EQ(pane.window->invalidates, 2);
    EXPECT_EQ(pane.window->eraseInvalidates, 0);
    EXPECT_EQ(pane.window->refreshes, 0);
    EXPECT_TRUE(pane.window->IsPaintPending());
    WitnessMesh& mesh = AddWitness();
    pane.window->ProcessEvents();
    EXPECT_EQ(mesh.draws, 1);
    EXPECT_FALSE(pane.window->IsPaintPending());
}

TEST_P(Screenshots, AreTakenWhilePaintingIsBlocked) {
    Add({});
    Take();
    const Shot expected = shot;
    pane->BlockPaintEvents(-1);
    Take();
    ExpectSame(shot, expected, "while painting is blocked");
    EXPECT_TRUE(pane.window->IsPaintPending());
    pane->BlockPaintEvents(0);
}

TEST_P(Screenshots, FireNoEvent) {
    Add({});
    pane->TracingMode(1);
    Take();
    EXPECT_TRUE(pane.events.events.empty());
}

TEST_P(Screenshots, AreIdenticalWhenRepeated) {
    Add({.center = {1, 2, 3}, .normal = {0.6, 0, 0.8}}, {0.9, 0.5, 0.1});
    Take();
    const Shot first = shot;
    Take();
    ExpectSame(shot, first, "the second call");
    Frame();
    Take();
    ExpectSame(shot, first, "after a frame");
}

// The exception of a draw that runs out of memory reaches the host, and the window is unchanged.
TEST_P(Screenshots, RestoreTheViewWhenADrawRunsOutOfMemory) {
    WitnessMesh& mesh = AddWitness({.center = {1, 0, 0}});
    Frame();
    const auto before = picture.pixels;
    const ViewState state = StateOf(*pane);
    mesh.atDraw = [](std::int32_t, bool) { throw std::bad_alloc(); };
    EXPECT_THROW(Capture(*pane), std::bad_alloc);
    mesh.atDraw = nullptr;
    ExpectSame(StateOf(*pane), state);
    EXPECT_FALSE(DrawLockIsHeld());
    Frame();
    EXPECT_TRUE(picture.pixels == before);
}

TEST_P(Screenshots, UseTheContextOfTheirOwnControl) {
    Add({});
    Take();
    const Shot expected = shot;
    const OffscreenControl other(100, 50);
    other->SetBackgroundColors(HostColor(9, 8, 7), HostColor(9, 8, 7));
    const Shot othersShot = Capture(*other);
    EXPECT_EQ(CountOf(othersShot, 0xFF090807), std::ptrdiff_t{kSide} * kSide);
    shot = Capture(*pane);  // the context of the other control was current
    ExpectSame(shot, expected, "with a second control");
}

}  // namespace
