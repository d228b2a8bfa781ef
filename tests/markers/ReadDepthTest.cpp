// The depth of the last frame at a pixel. The camera looks down the z axis, 24 pixels per unit; window depth runs from
// 0 at z = 60 to 1 at z = -20.
#include "markers/ReadDepth.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <limits>

#include "render/SceneFixture.h"
#include "support/BareContext.h"
#include "support/DriverTraits.h"
#include "support/GlNow.h"

namespace {

class ReadDepth : public SceneInEveryWindow {
protected:
    std::optional<float> At(int x, int y, float limit = 0.99f) {
        EXPECT_TRUE(pane->MakeContextCurrent());
        const auto depth = ReadDepthAt(x, y, 320, 240, limit);
        EXPECT_EQ(glGetError(), GLenum{GL_NO_ERROR});
        return depth;
    }
};

TEST_P(ReadDepth, ReturnsTheWindowDepthOfTheSurface) {
    Add({});
    Add({.center = {0, 0, 20}, .half = 1});
    Frame();
    ASSERT_TRUE(At(160, 120).has_value());
    EXPECT_NEAR(*At(160, 120), 0.5, 1e-5);                   // (60 - 20) / 80
    EXPECT_NEAR(At(160 + 36, 120).value_or(9), 0.75, 1e-5);  // (60 - 0) / 80
}

TEST_P(ReadDepth, FindsNothingOnTheBackground) {
    Add({.half = 1});
    Frame();
    EXPECT_FALSE(At(10, 10).has_value());
}

TEST_P(ReadDepth, FindsNothingAtOrBeyondTheLimit) {
    Add({});
    Frame();
    EXPECT_TRUE(At(160, 120, 0.7501f).has_value());
    EXPECT_FALSE(At(160, 120, 0.7499f).has_value());
}

TEST_P(ReadDepth, CountsRowsDownwardFromOneAboveTheWindow) {
    Add({.half = 20});
    Frame();
    EXPECT_FALSE(At(160, 0).has_value());
    EXPECT_TRUE(At(160, 1).has_value());
    EXPECT_TRUE(At(160, 240).has_value());
    EXPECT_FALSE(At(160, 241).has_value());
    EXPECT_FALSE(At(-1, 120).has_value());
    EXPECT_FALSE(At(320, 120).has_value());
}

// What a driver returns for a pixel outside of the framebuffer is undefined: here there is depth beyond the size.
TEST_P(ReadDepth, FindsNothingBeyondTheSizeWhateverTheDriverHasThere) {
    Frame();
    FrameTarget large;
    large.SetSize(400, 300, 0);
    glClearDepth(0.5);
    glClear(GL_DEPTH_BUFFER_BIT);
    glClearDepth(1);
    const auto at = [](int x, int y) { return ReadDepthAt(x, y, 320, 240, 0.99f); };
    for (const auto& [x, y] : {std::pair{0, 1}, {319, 1}, {0, 240}, {319, 240}})
        EXPECT_TRUE(at(x, y)) << x << ", " << y;
    for (const auto& [x, y] : {std::pair{-1, 120}, {320, 120}, {399, 1}, {160, 0}, {160, -59}, {320, 0}, {160, 241}})
        EXPECT_FALSE(at(x, y)) << x << ", " << y;
    constexpr int kMin = std::numeric_limits<int>::min(), kMax = std::numeric_limits<int>::max();
    for (const int x : {kMin, 160, kMax})
        for (const int y : {kMin, kMax}) {
            EXPECT_FALSE(at(x, y)) << x << ", " << y;
            EXPECT_FALSE(at(y, x)) << y << ", " << x;
        }
    EXPECT_EQ(glGetError(), GLenum{GL_NO_ERROR});
    pane->m_frameTarget.Bind();
    large.SetSize(1, 1, 0);
    pane->m_frameTarget.Bind();
}

/// The depths of a raster of pixels; 1 where nothing is found.
class DepthOfTheShownFrame : public ReadDepth {
protected:
    std::vector<float> All() {
        std::vector<float> depths;
        for (int y = 1; y <= 240; y += 6)
            for (int x = 0; x < 320; x += 6) depths.push_back(At(x, y, 2).value_or(1));
        return depths;
    }
    /// A square in front of a slanted triangle, and background.
    void DrawScene() {
        Add({.center = {2, 1, 20}, .half = 1});
        AddMesh(*pane, {{-4, -4, -9, 0, 0, 1}, {4, -4, 9, 0, 0, 1}, {-4, 4, -3, 0, 0, 1}}, {Triangle{{0, 1, 2}}});
        pane->m_bClipPlaneVisible = 1;
        pane->m_clipPlane.SetCenter({0, 0, -15});
        pane->m_clipPlane.SetRadiusFromExtent(4);
        Frame();
    }
    void ExpectKeptByOperations() {
        const std::vector<float> before = All();
        ASSERT_GT(std::ranges::count(before, 1.0f), 100);
        ASSERT_GT(std::ranges::count_if(before, [](float depth) { return depth < 0.7f; }), 100);
        BareContext foreign;
        const std::pair<const char*, std::function<void()>> operations[] = {
            {"picks of handles",
             [&] {
                 RenderObject* const objects[] = {&pane->m_clipPlane};
                 int found = 0;
                 for (int x = 140; x < 180; ++x) {
                     pane->PickRenderObjectsAt(objects, x, 24);
                     found += pane->m_clipPlane.IsPicked() ? 1 : 0;
                 }
                 EXPECT_GT(found, 1);
             }},
            {"a pick",
             [&] {
                 KV_ScenePane::SurfacePoint hit;
                 EXPECT_TRUE(pane->PickSurface(160 + 48, 120 - 24, &hit));
             }},
            {"a screenshot",
             [&] {
                 std::int32_t width = 0, height = 0;
                 pane->GetScreenShotResolution(&width, &height);
                 std::vector<std::uint32_t> shot(static_cast<std::size_t>(width) * static_cast<std::size_t>(height));
                 pane->CaptureScreenShot(shot.data());
             }},
            {"another view", [&] { pane->SetViewParams(1, 0, 0, 0, 1, 0, 1, 1, 0, 2, 0); }},  // no frame shows it yet
            {"a foreign context", [&] { foreign.MakeCurrent(); }},
        };
        for (const auto& [name, operation] : operations) {
            const int swaps = pane.window->swaps;
            operation();
            EXPECT_TRUE(All() == before) << "after " << name;
            EXPECT_EQ(pane.window->swaps, swaps) << "no frame was drawn by " << name;
        }
    }
};

TEST_P(DepthOfTheShownFrame, IsKeptUntilTheNextFrame) {
    DrawScene();
    ExpectKeptByOperations();
}

TEST_P(DepthOfTheShownFrame, IsKeptWithSeveralSamples) {
    ASSERT_TRUE(pane->MakeContextCurrent());
    const int samples = AvailableSamples(4);
    if (samples == 0) GTEST_SKIP() << "the driver has no samples";
    pane->RecreateOpenglContext(3, 3, samples);
    Look(320, 240);
    DrawScene();
    ASSERT_NE(pane->m_frameTarget.Name(), pane->m_frameTarget.ReadName());
    ExpectKeptByOperations();
}

INSTANTIATE_TEST_SUITE_P(Windows, DepthOfTheShownFrame, testing::ValuesIn(WindowKinds()),
                         [](const auto& row) { return NameOf(row.param); });

INSTANTIATE_TEST_SUITE_P(Windows, ReadDepth, testing::ValuesIn(WindowKinds()),
                         [](const auto& row) { return NameOf(row.param); });

}  // namespace
