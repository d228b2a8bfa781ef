// What frames ask of the driver: uploads that fail, uploads per frame, and queries that would wait for a driver on a
// thread of its own. The driver stand-in counts the calls and makes uploads fail.
#include <array>
#include <cmath>

#include "render/SceneFixture.h"
#include "support/DriverStandIn.h"

using namespace KV_ScenePane;
using namespace lighting;

namespace {

// ---- graphics memory

class FailedUpload : public SceneTest, public testing::WithParamInterface<int> {
protected:
    static constexpr const char* kLine = "not enough graphics memory for object 1\n";
    static constexpr Vec3 kBox{0.0, 0.4, 0.9};

    FailedUpload() : SceneTest(WindowKind::OffScreen, 240, 240) {
        pane->PerformRefresh();
        Look(240, 240);
        Add({.center = {-2.5, 0, 0}, .half = 1});
        Add({.center = {2.5, 0, 0}, .half = 1});
        pane->m_vpMeshes[0]->Draw(DrawModeNothing, false);  // builds its buffers
        pane.debugOutput.Clear();
    }
    /// At the middle of the second object, and at its upper edge.
    [[nodiscard]] Vec3 ColorInside() const { return ColorAt(180, 120); }
    [[nodiscard]] int BoxPixels() const {
        int count = 0;
        for (int y = 90; y < 150; ++y)
            for (int x = 150; x < 210; ++x) count += DistanceAt(x, y, kBox) <= kTolerance ? 1 : 0;
        return count;
    }
    void ExpectBoxOfTheSecond() {
        EXPECT_GT(BoxPixels(), 4 * 40);
        ExpectBackground(180, 120);
    }
};
// Vertices, triangles, points, reduced points.
INSTANTIATE_TEST_SUITE_P(EachBuffer, FailedUpload, testing::Values(1, 2, 3, 4));

TEST_P(FailedUpload, ShowsTheBoxOfTheObjectInEveryModeAndReportsItOnce) {
    {
        const ScopedDriverFaults faults({.failUpload = GetParam()});
        Frame();
        EXPECT_EQ(ReadDriverCounters().failedUploads, 1);
    }
    EXPECT_EQ(pane.debugOutput.Take(), kLine);
    Mesh& failed = *pane->m_vpMeshes[1];
    EXPECT_EQ(failed.m_uVertexBuffer + failed.m_uTriangleBuffer + failed.m_uPointBuffer + failed.m_uReducedBuffer, 0u);
    for (const std::int16_t mode :
         {DrawModePoints, DrawModeWireframe, DrawModeFlat, DrawModeGouraud, DrawModeBoundingBoxes}) {
        pane->m_nDrawMode = mode;
        Frame();
        ExpectBoxOfTheSecond();
        pane->m_bMoveReduced = 1;
        pane->m_bMoving = 1;
        Frame();
        ExpectBoxOfTheSecond();
        pane->m_bMoveReduced = pane->m_bMoving = 0;
    }
    pane->m_nDrawMode = DrawModePerPixel;
    Frame();
    ExpectBackground(180, 120);
    EXPECT_GT(DrawnPixelsIn(150, 90, 210, 150), 100);
    pane->m_nDrawMode = DrawModeNothing;
    Frame();
    EXPECT_EQ(PixelsThatAreNotBackground(), 0);
    EXPECT_EQ(pane.debugOutput.Take(), "");
}

TEST_P(FailedUpload, IsForgottenWhenALaterBuildSucceeds) {
    {
        const ScopedDriverFaults faults({.failUpload = GetParam(), .failUploadCount = 100});
        Frame();
        pane->SetObjectColor(1, 0x00FF00);
        Frame();
        ExpectBoxOfTheSecond();
    }
    EXPECT_EQ(pane.debugOutput.Take(), kLine) << "once for two builds that fail";
    pane->SetObjectColor(1, 0xFFFFFF);
    Frame();
    EXPECT_GT(ColorInside()[0], 0.5);
    EXPECT_EQ(BoxPixels(), 0);
    const ScopedDriverFaults faults({.failUpload = GetParam()});
    pane->SetObjectColor(1, 0x00FF00);
    Frame();
    EXPECT_EQ(pane.debugOutput.Take(), kLine);
}

TEST_P(FailedUpload, IsForgottenWhenTheObjectMoves) {
    {
        const ScopedDriverFaults faults({.failUpload = GetParam()});
        Frame();
    }
    Mesh& mesh = *pane->m_vpMeshes[1];
    ASSERT_TRUE(mesh.m_bBuffersFailed);
    const ScopedDriverFaults none({});
    CACADQTrafo upward;
    upward.m_dTranslation[1] = 2.5;  // 60 pixels
    mesh.ApplyTrafo(upward);
    Frame();
    EXPECT_EQ(ReadDriverCounters().uploads, 4) << "vertices, triangles, points, reduced points";
    EXPECT_FALSE(mesh.m_bBuffersFailed);
    EXPECT_GT(ColorAt(180, 60)[0], 0.5);
    ExpectBackground(180, 120);
}

TEST_P(FailedUpload, IsFoundWhereAnOlderErrorIsPending) {
    glEnable(GL_NONE);  // OpenGL keeps the first error only, here GL_INVALID_ENUM
    {
        const ScopedDriverFaults faults({.failUpload = GetParam()});
        pane->m_vpMeshes[1]->Draw(DrawModeGouraud, false);
    }
    EXPECT_TRUE(pane->m_vpMeshes[1]->m_bBuffersFailed);
    EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_INVALID_ENUM)) << "who looks for it still finds it";
    EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
}

TEST_F(FailedUpload, OfAHiddenSelectedObjectIsReportedToo) {
    pane->m_vpMeshes[1]->m_iVisible = 0;
    pane->m_vpSelection = {pane->m_vpMeshes[1].get()};
    const ScopedDriverFaults faults({.failUpload = 1});
    Frame();
    EXPECT_EQ(pane.debugOutput.Take(), kLine);
}

TEST_F(FailedUpload, LeavesThePendingErrorsOfASuccessfulBuild) {
    for (const GLenum error : {GL_INVALID_ENUM, GL_INVALID_VALUE, GL_INVALID_OPERATION, GL_STACK_UNDERFLOW}) {
        if (error == GL_INVALID_ENUM) glEnable(GL_NONE);
        if (error == GL_INVALID_VALUE) glLineWidth(-1.0f);
        if (error == GL_INVALID_OPERATION) glEndList();
        if (error == GL_STACK_UNDERFLOW) glPopAttrib();
        pane->m_vpMeshes[1]->MarkBuffersDirty();
        pane->m_vpMeshes[1]->Draw(DrawModeGouraud, false);
        EXPECT_FALSE(pane->m_vpMeshes[1]->m_bBuffersFailed);
        EXPECT_EQ(glGetError(), error);
        EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
    }
}

// ---- uploads

class Uploads : public SceneTest {};

TEST_F(Uploads, OfAChangedColourRunOncePerFrame) {
    for (const double x : {-2.5, 2.5}) Add({.center = {x, 0, 0}, .half = 1});
    pane->m_vpSelection = {pane->m_vpMeshes[0].get()};
    Frame();
    for (const std::int16_t shadows : std::array<std::int16_t, 2>{0, 1}) {
        pane->SetShadowMode(shadows);
        Frame();
        const ScopedDriverFaults none({});
        for (int color = 1; color < 9; ++color) pane->SetObjectColor(0, color + 16 * shadows);
        EXPECT_EQ(ReadDriverCounters().uploads, 0);
        Frame();
        EXPECT_EQ(ReadDriverCounters().uploads, 4) << "vertices, triangles, points, reduced points";
        Frame();
        pane->SetObjectColor(0, pane->GetObjectColor(0));
        Frame();
        EXPECT_EQ(ReadDriverCounters().uploads, 4) << "nothing has changed";
    }
}

// The replaced driver functions count the calls that allocate a buffer. Vertices that replace others need none.
TEST_F(Uploads, OfAMovedObjectAllocateNothing) {
    for (const double x : {-2.5, 2.5}) Add({.center = {x, 0, 0}, .half = 0.5});
    Frame();
    const ScopedDriverFaults none({});
    CACADQTrafo upward;
    upward.m_dTranslation[1] = 1.25;  // 30 pixels
    for (int step = 1; step <= 3; ++step) {
        pane->m_vpMeshes[1]->ApplyTrafo(upward);
        Frame();
        EXPECT_EQ(ReadDriverCounters().uploads, 0);
        EXPECT_GT(ColorAt(220, 120 - 30 * step)[0], 0.5) << step;
        ExpectBackground(220, 150 - 30 * step);
        EXPECT_GT(ColorAt(100, 120)[0], 0.5) << "the other one has not moved";
    }
}

// ---- queries

class Queries : public SceneTest {
protected:
    Queries() {
        Add({.center = {-2, 0, 0}});
        AddPlainTexture(Add({.center = {2, 0, 0}}));
        Add({.center = {0, 2, 1}}, {1, 1, 1}, true);
    }
    /// Of a frame that follows two like it.
    std::int64_t InFrame() {
        pane->PerformRefresh();
        pane->PerformRefresh();
        const ScopedDriverFaults none({});
        pane->PerformRefresh();
        return ReadDriverCounters().queries;
    }
};

TEST_F(Queries, AreNotMadeByAFrameInAnyMode) {
    for (const std::int16_t shadows : std::array<std::int16_t, 2>{0, 1})
        for (std::int16_t mode = 0; mode < 8; ++mode) {
            pane->SetShadowMode(shadows);
            pane->m_nDrawMode = mode;
            EXPECT_EQ(InFrame(), 0) << "mode " << mode << ", shadows " << shadows;
        }
}

TEST_F(Queries, AreNotMadeByAFrameWithAxesSelectionAndClipPlane) {
    pane->m_nShowAxes = 1;
    pane->m_nShowArrow = 1;
    pane->m_nPickMode = PickModeCross;
    pane->m_vpSelection = {pane->m_vpMeshes[0].get()};
    pane->m_bClipPlaneActive = pane->m_bClipPlaneVisible = 1;
    EXPECT_EQ(InFrame(), 0);
}

// Modelview and projection once per view, for the axes and the shadows alone.
TEST_F(Queries, AreMadeOnceAfterTheViewHasChanged) {
    pane->m_nShowAxes = 1;
    pane->SetShadowMode(1);
    EXPECT_EQ(InFrame(), 0);
    const ScopedDriverFaults none({});
    for (int i = 1; i < 10; ++i) {
        pane->m_fAxisX = {std::cos(0.1f * static_cast<float>(i)), 0, -std::sin(0.1f * static_cast<float>(i))};
        pane->m_fAxisZ = Cross(pane->m_fAxisX, pane->m_fAxisY);
        pane->SetupViewMatrices();
        pane->PerformRefresh();
        pane->PerformRefresh();
        EXPECT_EQ(ReadDriverCounters().queries, 4 * i) << "camera's two, as floats, and the shadow camera's";
    }
}

TEST_F(Queries, OfConversionsAreMadeOnce) {
    pane->PerformRefresh();
    const ScopedDriverFaults none({});
    for (int i = 0; i < 20; ++i) {
        std::int32_t x = 0, y = 0;
        float p[3] = {};
        pane->ProjectPoint(1, 2, 3, &x, &y);
        pane->UnprojectPoint(x, y, 0.5f, p, p + 1, p + 2);
    }
    EXPECT_EQ(ReadDriverCounters().queries, 3) << "modelview, projection, viewport";
}

}  // namespace
