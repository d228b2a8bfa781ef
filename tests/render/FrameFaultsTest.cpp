// Frames, pictures and picks on a driver that drops the depth and the back buffer at each swap, as OpenGL allows.
#include "markers/ReadDepth.h"
#include "render/SceneFixture.h"
#include "support/DriverStandIn.h"
#include "support/DriverTraits.h"
#include "support/GlNow.h"

namespace {

struct SpoiledAtTheSwap {
    const ScopedDriverFaults faults{{.dropDepth = true, .garbageBackBuffer = true}};
};

class FramesOfAForgetfulDriver : private SpoiledAtTheSwap, public SceneInEveryWindow {
protected:
    /// One square in front of another: window depths 0.5 and 0.75, see ReadDepthTest.cpp.
    void DrawTwoSquares() {
        Add({});
        Add({.center = {0, 0, 20}, .half = 1});
        Frame();
    }
    void ExpectBothDepths() {
        ASSERT_TRUE(pane->MakeContextCurrent());
        EXPECT_NEAR(ReadDepthAt(160, 120, 320, 240, 0.99f).value_or(9), 0.5, 1e-5);
        EXPECT_NEAR(ReadDepthAt(160 + 36, 120, 320, 240, 0.99f).value_or(9), 0.75, 1e-5);
        EXPECT_FALSE(ReadDepthAt(10, 10, 320, 240, 0.99f).has_value());
        EXPECT_EQ(glGetError(), GLenum{GL_NO_ERROR});
    }
    /// The shown frame as it can be read now, without another one.
    [[nodiscard]] std::vector<std::uint32_t> ReadShownFrame() {
        EXPECT_TRUE(pane->MakeContextCurrent());
        std::vector<std::uint32_t> pixels(320 * 240);
        glReadPixels(0, 0, 320, 240, GL_RGBA, GL_UNSIGNED_BYTE, pixels.data());
        return pixels;
    }
};

INSTANTIATE_TEST_SUITE_P(Windows, FramesOfAForgetfulDriver, testing::ValuesIn(WindowKinds()),
                         [](const auto& row) { return NameOf(row.param); });

TEST_P(FramesOfAForgetfulDriver, KeepTheirDepthForPicks) {
    DrawTwoSquares();
    ExpectBothDepths();
    EXPECT_GT(ReadDriverCounters().swaps, 0);
}

TEST_P(FramesOfAForgetfulDriver, KeepTheirDepthWithSeveralSamples) {
    ASSERT_TRUE(pane->MakeContextCurrent());
    if (AvailableSamples(4) == 0) GTEST_SKIP() << "the driver has no samples";
    pane->RecreateOpenglContext(3, 3, 4);
    pane->PerformRefresh();
    ASSERT_TRUE(pane->MakeContextCurrent());
    ASSERT_EQ(Get(GL_SAMPLES), 4);
    Look(320, 240);
    DrawTwoSquares();
    ExpectBothDepths();
}

TEST_P(FramesOfAForgetfulDriver, AreNotChangedByAPickOfHandles) {
    DrawTwoSquares();
    const auto before = ReadShownFrame();
    pane->m_clipPlane.SetCenter({0, 0, 0});
    pane->m_clipPlane.SetRadiusFromExtent(4);
    pane->m_bClipPlaneVisible = 1;
    const DriverCounters atStart = ReadDriverCounters();
    RenderObject* const objects[] = {&pane->m_clipPlane};
    int picked = 0;
    for (int y = 0; y < 240; y += 2)
        for (int x = 0; x < 320; x += 2) {
            pane->PickRenderObjectsAt(objects, x, y);
            picked += pane->m_clipPlane.IsPicked() ? 1 : 0;
        }
    EXPECT_GT(picked, 10);
    EXPECT_TRUE(ReadShownFrame() == before);
    ExpectBothDepths();
    EXPECT_EQ(ReadDriverCounters().swaps, atStart.swaps);
}

TEST_P(FramesOfAForgetfulDriver, CanBeFrozenAfterTheSwap) {
    DrawTwoSquares();
    const auto before = picture.pixels;
    pane->FreezeFrame();
    pane->m_vpMeshes.clear();
    Frame();
    EXPECT_TRUE(picture.pixels == before);
}

TEST_P(FramesOfAForgetfulDriver, AreNeverReadFromTheWindow) {
    DrawTwoSquares();
    ExpectBothDepths();
    pane->FreezeFrame();
    pane->m_pFrozenImage.reset();
    std::vector<std::uint32_t> shot(2048 * 2048);
    pane->CaptureScreenShot(shot.data());
    pane->SetShadowMode(1);
    Frame();
    RenderObject* const objects[] = {&pane->m_clipPlane};
    pane->PickRenderObjectsAt(objects, 10, 10);
    EXPECT_EQ(ReadDriverCounters().backBufferReads, 0);
}

}  // namespace
