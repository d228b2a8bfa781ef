// A captured picture of a multisampled window holds the mean of the samples.
#include <gtest/gtest.h>

#include <algorithm>
#include <set>
#include <string>

#include "KV_ScenePane/Modes.h"
#include "KV_ScenePane/ScenePane.h"
#include "support/BareContext.h"
#include "support/DriverTraits.h"

namespace {

// One flat triangle with slanted edges on a plain background, 64 x 64 pixels.
KV_ScenePane::Picture TrianglePicture(int samples) {
    KV_ScenePane::WindowRequest request;
    request.width = request.height = 64;
    request.samples = samples;
    std::string reason;
    const auto pane = KV_ScenePane::CreateScenePane(request, &reason);
    EXPECT_NE(pane, nullptr) << reason;
    KV_ScenePane::Picture picture;
    if (!pane) return picture;
    const float vertices[] = {-9, -8, 0, 9, -5, 0, 1, 9, 0};
    const std::int32_t triangles[] = {0, 1, 2};
    auto& methods = pane->Methods();
    methods.ImportMeshFromMemory(3, 1, vertices, triangles);
    methods.SetViewMode(KV_ScenePane::ViewFromPlusZYUp);
    methods.CenterView();
    EXPECT_TRUE(pane->CapturePicture(&picture));
    return picture;
}

std::set<std::uint32_t> ColorsOf(const KV_ScenePane::Picture& picture) {
    return {picture.pixels.begin(), picture.pixels.end()};
}

TEST(ReadFrame, GivesOnlyTheTwoPlainColoursWithoutSamples) {
    const auto colors = ColorsOf(TrianglePicture(0));
    EXPECT_EQ(colors.size(), 2u);
    EXPECT_TRUE(colors.contains(0xFF191932)) << "the background";
}

TEST(ReadFrame, GivesTheMeanOfTheSamplesAtTheEdges) {
    const KV_ScenePane::Picture plain = TrianglePicture(0), smooth = TrianglePicture(4);
    const std::uint32_t background = 0xFF191932;
    const std::uint32_t inside = plain.pixels[32 * 64 + 32];
    ASSERT_NE(inside, background);
    EXPECT_EQ(smooth.pixels[32 * 64 + 32], inside);
    const auto green = [](std::uint32_t pixel) { return static_cast<int>((pixel >> 8) & 0xFF); };
    const auto isBetween = [&](std::uint32_t pixel) {
        return green(pixel) > green(background) + 5 && green(pixel) < green(inside) - 5;
    };
    const BareContext context;
    if (AvailableSamples(4) == 0) {  // the viewer was made without
        EXPECT_EQ(smooth.pixels, plain.pixels);
        return;
    }
    // Three edges of about 40 pixels each; most pixels that an edge crosses mix both colours.
    EXPECT_GT(std::ranges::count_if(smooth.pixels, isBetween), 30);
}

}  // namespace
