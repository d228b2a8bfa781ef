// Free points: uploads that fail in the driver, and the calls of a frame. DriverStandIn.h counts the calls and
// makes uploads fail.
#include "render/SceneFixture.h"
#include "support/DriverStandIn.h"
#include "support/DriverTraits.h"

using namespace lighting;

namespace {

constexpr const char* kLine = "not enough graphics memory for point set ";

class FreePointDriverCalls : public SceneTest {
protected:
    FreePointDriverCalls() {
        pane->SetPointCloudRenderPointSize(0.25f);
        pane->PerformRefresh();
        Look(320, 240);
        pane.debugOutput.Clear();
    }
    /// Points of one colour in a row from the left edge of the window on.
    std::int32_t ImportRow(int count, float y, const Vec3& color, float alpha = 1.0f) {
        std::vector<float> xyz, colors;
        for (int i = 0; i < count; ++i) {
            xyz.insert(xyz.end(), {-6.0f + 0.01f * static_cast<float>(i), y, 0});
            for (const double channel : color) colors.push_back(static_cast<float>(channel));
        }
        return pane->ImportPoints(count, xyz.data(), colors.data(), alpha);
    }
};

class FailedPointUpload : public FreePointDriverCalls, public testing::WithParamInterface<int> {};
// Positions, colours.
INSTANTIATE_TEST_SUITE_P(EachBuffer, FailedPointUpload, testing::Values(1, 2));

TEST_P(FailedPointUpload, LeavesASetThatIsNotDrawnAndIsReportedOnce) {
    ImportRow(1, 2, {0, 1, 0});
    {
        const ScopedDriverFaults faults({.failUpload = GetParam()});
        EXPECT_EQ(ImportRow(1000, 0, {1, 0, 0}), 1);
        EXPECT_EQ(ReadDriverCounters().failedUploads, 1);
    }
    EXPECT_EQ(pane.debugOutput.Take(), std::string(kLine) + "1\n");
    EXPECT_EQ(glGetError(), GLenum{GL_NO_ERROR});
    const FreePointSet& failed = pane->m_mapFreePoints[1];
    EXPECT_EQ(failed.vertexArray + failed.positionBuffer + failed.colorBuffer, 0u);
    EXPECT_EQ(failed.numPoints, 1000);
    EXPECT_EQ(pane->GetSceneBoundingBox().min, (Float3{-6, 0, 0})) << "its box counts";
    ImportRow(1, -2, {0, 0, 1}, 0.5f);
    Frame();
    EXPECT_EQ(DrawnPixelsIn(0, 100, 320, 140), 0);
    ExpectPixel(16, 72, {0, 1, 0});
    ExpectPixel(16, 168, 0.5 * Vec3{0, 0, 1} + 0.5 * kBackground);
    pane->SetPointsVisibility(1, 0);
    pane->SetPointsVisibility(1, -1);
    pane->DeletePoints(1);
    EXPECT_EQ(ImportRow(1, 0, {1, 0, 0}), 1);
    Frame();
    ExpectPixel(16, 120, {1, 0, 0});
    EXPECT_EQ(pane.debugOutput.Take(), "");
}

TEST_F(FailedPointUpload, OfBothBuffersIsOneLine) {
    const ScopedDriverFaults faults({.failUpload = 1, .failUploadCount = 2});
    ImportRow(10, 0, {1, 0, 0});
    EXPECT_EQ(pane.debugOutput.Take(), std::string(kLine) + "0\n");
}

// The reader of the line belongs to the host.
TEST_F(FailedPointUpload, MayDeleteTheSetInTheReportOfItself) {
    const ScopedDriverFaults faults({.failUpload = 1});
    KV_ScenePane::SetDebugOutputSink([&](std::string_view) { pane->DeletePoints(0); });
    EXPECT_EQ(ImportRow(10, 0, {1, 0, 0}), 0);
    KV_ScenePane::SetDebugOutputSink({});
    EXPECT_TRUE(pane->m_mapFreePoints.empty());
    Frame();
}

TEST_F(FailedPointUpload, IsFoundWhereAnOlderErrorIsPendingWhichStays) {
    const ScopedDriverFaults faults({.failUpload = 2});
    glEnable(GL_NONE);
    ImportRow(10, 0, {1, 0, 0});
    EXPECT_EQ(pane->m_mapFreePoints[0].vertexArray, 0u);
    EXPECT_EQ(glGetError(), GLenum{GL_INVALID_ENUM});
    EXPECT_EQ(glGetError(), GLenum{GL_NO_ERROR});
}

TEST_F(FreePointDriverCalls, OfAnImportAreTwoUploadsAndNoneLater) {
    const ScopedDriverFaults none({});
    ImportRow(100000, 0, {1, 0, 0});
    EXPECT_EQ(ReadDriverCounters().uploads, 2);
    for (int i = 0; i < 3; ++i) Frame();
    pane->SetPointsVisibility(0, 0);
    pane->SetPointsVisibility(0, -1);
    pane->SetPointCloudRenderPointSize(0.5f);
    Frame();
    EXPECT_EQ(ReadDriverCounters().uploads, 2);
    EXPECT_EQ(pane.debugOutput.Take(), "");
}

TEST_F(FreePointDriverCalls, OfAFrameAreOneDrawPerShownSetOfUsualSize) {
    const auto inFrame = [&](std::int64_t DriverCounters::*counter) {
        const ScopedDriverFaults none({});
        pane->PerformRefresh();
        return ReadDriverCounters().*counter;
    };
    const std::int64_t empty = inFrame(&DriverCounters::draws);
    ImportRow(100000, 0, {1, 0, 0});
    EXPECT_EQ(inFrame(&DriverCounters::draws), empty + 1);
    for (int i = 0; i < 5; ++i) ImportRow(1000 * i, 1, {1, 0, 0}, i % 2 == 0 ? 0.5f : 1.0f);  // one has no points
    EXPECT_EQ(inFrame(&DriverCounters::draws), empty + 5);
    EXPECT_EQ(inFrame(&DriverCounters::uniformLookUps), 3) << "per frame, not per set";
    EXPECT_EQ(inFrame(&DriverCounters::queries), 0);
    EXPECT_EQ(inFrame(&DriverCounters::uploads), 0);
    pane->SetPointsVisibility(0, 0);
    EXPECT_EQ(inFrame(&DriverCounters::draws), empty + 4);
}

TEST_F(FreePointDriverCalls, OfAFrameAreSlicesOfALargeSetWhereTheDriverQueuesPoints) {
    const auto drawsOfAFrame = [&] {
        const ScopedDriverFaults none({});
        pane->PerformRefresh();
        return ReadDriverCounters().draws;
    };
    const std::int64_t empty = drawsOfAFrame();
    for (const auto& [points, slices] : {std::pair{250'000, 1}, {250'001, 2}, {600'000, 3}}) {
        const std::int32_t id = ImportRow(points, 0, {1, 0, 0});
        EXPECT_EQ(drawsOfAFrame() - empty, QueuesPoints() ? slices : 1) << points;
        pane->DeletePoints(id);
    }
}

}  // namespace
