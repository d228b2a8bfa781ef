// Screenshots of windows of any shape, before the first frame, in other contexts, and without OpenGL.
#include "render/ScreenshotHelp.h"
#include "support/DriverTraits.h"
#include "support/GlNow.h"

namespace {

struct Shape {
    const char* name;
    std::int16_t width, height;
};
void PrintTo(const Shape& shape, std::ostream* out) { *out << shape.name; }
class ScreenshotsOfWindows : public testing::TestWithParam<Shape> {
protected:
    static void Fill(CKV_ScenePaneCtrl& control) {
        for (const Square& square : {Square{.center = {1, 2, 3}, .normal = {0.6, 0, 0.8}},
                                     Square{.center = {-3, 0, 1}, .half = 1, .color = 0x0040FF80}})
            control.m_vpMeshes.push_back(square.ToMesh(square.half == 1));
    }
};
INSTANTIATE_TEST_SUITE_P(Shapes, ScreenshotsOfWindows,
                         testing::Values(Shape{"Wide", 640, 48}, Shape{"High", 33, 700}, Shape{"Large", 2500, 2100},
                                         Shape{"OnePixel", 1, 1}, Shape{"NoHeight", 320, 0}, Shape{"NoWidth", 0, 200},
                                         Shape{"NoArea", 0, 0}),
                         [](const auto& row) { return row.param.name; });

TEST_P(ScreenshotsOfWindows, DoNotDependOnTheWindowSizeAndKeepItsView) {
    const OffscreenControl square(256, 256);
    Fill(*square);
    const Shot expected = Capture(*square);
    ASSERT_GT(CountOfOthers(expected, kBackgroundPixel), 100'000);

    const OffscreenControl window(300, 150);  // without height it keeps this aspect
    Fill(*window);
    window->SetSize(GetParam().width, GetParam().height);
    window->PerformRefresh();
    EXPECT_EQ(GlErrorOf(*window), GLenum{GL_NO_ERROR});
    const ViewState state = StateOf(*window);
    const Shot shot = Capture(*window);
    ExpectSame(shot, expected, GetParam().name);
    EXPECT_EQ(GlErrorOf(*window), GLenum{GL_NO_ERROR});
    ExpectSame(StateOf(*window), state);
}

TEST(Screenshot, KeepsTheAspectOfAWindowWithNegativeWidth) {
    const OffscreenControl window(300, 150);
    window->m_nWidth = -5, window->m_nHeight = 100;
    window->m_fAspectX = 3, window->m_fAspectY = 0.5f;
    window->SetupViewMatrices();
    const ViewState state = StateOf(*window);
    Capture(*window);
    EXPECT_EQ(window->m_fAspectX, 3);
    EXPECT_EQ(window->m_fAspectY, 0.5f);
    ExpectSame(StateOf(*window), state);
}

TEST_P(ScreenshotsOfWindows, ReportAFixedResolution) {
    const OffscreenControl window(GetParam().width, GetParam().height);
    Fill(*window);
    std::int32_t width = 0, height = 0;
    window->GetScreenShotResolution(&width, &height);
    EXPECT_EQ(width, 2048);
    EXPECT_EQ(height, 2048);
}

TEST(Screenshot, BeforeTheFirstFrameIsComplete) {
    TestControl pane(WindowKind::OffScreen, 300, 200);
    pane->m_nWidth = pane->m_nHeight = -1;
    AddMesh(*pane, Square{}.Vertices(), Square{}.Triangles());
    const Shot shot = Capture(*pane);
    EXPECT_EQ(CountOfOthers(shot, kBackgroundPixel), kPixelsOfOneSquare);
    EXPECT_EQ(pane->m_nWidth, -1);
    EXPECT_EQ(pane->m_nHeight, -1);
}

TEST(Screenshot, DoesNotDependOnTheSamplesOfTheWindow) {
    Shot shots[2];
    for (const int wanted : {0, 4}) {
        const OffscreenControl pane(64, 64);
        const int samples = AvailableSamples(wanted);
        if (samples != 0) pane->RecreateOpenglContext(3, 3, samples);
        ASSERT_EQ(GlInteger(GL_SAMPLES), samples);
        AddMesh(*pane, {{.x = -9, .y = -8, .nz = 1}, {.x = 9, .y = -5, .nz = 1}, {.x = 1, .y = 9, .nz = 1}},
                {{{0, 1, 2}}});
        shots[wanted / 4] = Capture(*pane);
        EXPECT_EQ(GlErrorOf(*pane), GLenum{GL_NO_ERROR});
    }
    ExpectSame(shots[1], shots[0], "with samples");
}

TEST(Screenshot, WorksInARecreatedContext) {
    const OffscreenControl pane(64, 64);
    AddMesh(*pane, Square{}.Vertices(), Square{}.Triangles());
    const Shot before = Capture(*pane);
    pane->RecreateOpenglContext(3, 3, 0);
    AddMesh(*pane, Square{}.Vertices(), Square{}.Triangles());
    ExpectSame(Capture(*pane), before, "after the recreation");
}

// ---- no picture

TEST(Screenshot, WithoutOpenGlIsAllZeroAndChangesNothing) {
    const NoPictureControl pane;
    AddMesh(*pane, Square{}.Vertices(), Square{}.Triangles());
    pane->m_fSceneSize = 77.0f;
    pane->m_fViewCenter = {1, 2, 3};
    const Shot shot = Capture(*pane);
    EXPECT_EQ(CountOf(shot, 0), std::ptrdiff_t{kSide} * kSide);
    EXPECT_EQ(pane->m_fSceneSize, 77.0f);
    EXPECT_EQ(pane->m_fViewCenter, (Float3{1, 2, 3}));
    std::int32_t width = 0, height = 0;
    pane->GetScreenShotResolution(&width, &height);
    EXPECT_EQ(width * height, 2048 * 2048);
}

TEST(Screenshot, AfterTheWindowIsDestroyedIsAllZero) {
    const OffscreenControl pane(64, 64);
    AddMesh(*pane, Square{}.Vertices(), Square{}.Triangles());
    pane.window->Destroy();
    EXPECT_EQ(CountOf(Capture(*pane), 0), std::ptrdiff_t{kSide} * kSide);
}

}  // namespace
