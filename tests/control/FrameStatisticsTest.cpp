// Which frames ScenePane::GetFrameStatistics() counts, and what it says about their duration.
#include <gtest/gtest.h>

#include <chrono>
#include <memory>
#include <vector>

#include "KV_ScenePane/ScenePane.h"

namespace {

using namespace KV_ScenePane;
using Clock = std::chrono::steady_clock;

std::unique_ptr<ScenePane> MakePane(WindowRequest::Kind kind) {
    WindowRequest request;
    request.kind = kind;
    return CreateScenePane(request, nullptr);
}

class TheFrameStatistics : public testing::Test {
protected:
    std::unique_ptr<ScenePane> pane = MakePane(WindowRequest::Kind::OffScreen);

    void SetUp() override {
        ASSERT_NE(pane, nullptr);
        m_nFirst = pane->GetFrameStatistics().count;
    }

    /// Since the creation.
    [[nodiscard]] std::uint64_t Frames() const { return pane->GetFrameStatistics().count - m_nFirst; }

private:
    std::uint64_t m_nFirst = 0;
};

TEST_F(TheFrameStatistics, StartWithTheFrameOfTheCreation) {
    EXPECT_EQ(pane->GetFrameStatistics().count, 1u);
    EXPECT_GT(pane->GetFrameStatistics().seconds, 0);
}

TEST_F(TheFrameStatistics, CountRefreshesAndQueuedRepaints) {
    pane->Methods().PerformRefresh();
    EXPECT_EQ(Frames(), 1u);
    pane->Methods().PerformInvalidate();
    pane->Methods().PerformInvalidate();
    EXPECT_EQ(Frames(), 1u) << "a queued repaint is not a frame yet";
    pane->ProcessEvents();
    EXPECT_EQ(Frames(), 2u);
}

TEST_F(TheFrameStatistics, CountTheFrameOfACapturedPictureAndNotAScreenshot) {
    Picture picture;
    ASSERT_TRUE(pane->CapturePicture(&picture));
    EXPECT_EQ(Frames(), 1u);
    std::int32_t width = 0, height = 0;
    pane->Methods().GetScreenShotResolution(&width, &height);
    std::vector<std::uint32_t> pixels(static_cast<std::size_t>(width) * static_cast<std::size_t>(height));
    pane->Methods().CaptureScreenShot(pixels.data());
    EXPECT_EQ(Frames(), 1u);
}

TEST_F(TheFrameStatistics, DoNotCountARefusedPaint) {
    pane->Methods().BlockPaintEvents(kVariantTrue);
    pane->Methods().PerformRefresh();
    EXPECT_EQ(Frames(), 0u);
    pane->Methods().BlockPaintEvents(kVariantFalse);
    pane->ProcessEvents();
    EXPECT_EQ(Frames(), 1u);
}

TEST_F(TheFrameStatistics, GiveADurationWithinThatOfTheCall) {
    for (int i = 0; i < 3; ++i) {
        const Clock::time_point start = Clock::now();
        pane->Methods().PerformRefresh();
        const std::chrono::duration<double> call = Clock::now() - start;
        EXPECT_GT(pane->GetFrameStatistics().seconds, 0);
        EXPECT_LE(pane->GetFrameStatistics().seconds, call.count());
    }
}

TEST_F(TheFrameStatistics, AreContinuedByANewContext) {
    pane->Methods().PerformRefresh();
    ASSERT_EQ(pane->Methods().RecreateOpenglContext(3, 3, 0), kVariantTrue);
    const std::uint64_t before = Frames();
    EXPECT_GE(before, 2u) << "the frames of the former context count";
    pane->Methods().PerformRefresh();
    EXPECT_EQ(Frames(), before + 1);
}

TEST(TheFrameStatisticsWithoutAPicture, StayZero) {
    const auto pane = MakePane(WindowRequest::Kind::NoPicture);
    ASSERT_NE(pane, nullptr);
    pane->Methods().PerformRefresh();
    pane->ProcessEvents();
    EXPECT_EQ(pane->GetFrameStatistics().count, 0u);
    EXPECT_EQ(pane->GetFrameStatistics().seconds, 0);
}

}  // namespace
