#include "platform/OffscreenWindow.h"

#include <gtest/gtest.h>

#include <cstdlib>

#include "platform/DrawingClient.h"

namespace {

PaneWindowRequest Request(int width, int height) {
    PaneWindowRequest request;
    request.kind = PaneWindowRequest::Kind::OffScreen;
    request.width = width;
    request.height = height;
    return request;
}

struct OffscreenWindowTest : testing::Test {
    OffscreenWindowTest() { unsetenv("DISPLAY"); }

    OffscreenWindow window{Request(333, 77)};
    DrawingClient client{window};
    std::string reason;
};

TEST_F(OffscreenWindowTest, DrawsWithoutADisplay) {
    ASSERT_TRUE(window.Create(client, &reason)) << reason;
    EXPECT_TRUE(window.Exists());
    EXPECT_EQ(window.NativeHandle(), 0u);
    window.Refresh();
    EXPECT_EQ(client.pixelInside, (Rgba{40, 120, 200}));
    EXPECT_EQ(client.pixelInSquare, (Rgba{255, 255, 255}));
    EXPECT_EQ(client.error, static_cast<GLenum>(GL_NO_ERROR));
}

TEST_F(OffscreenWindowTest, ReportsWhatTheBootstrapFound) {
    ASSERT_TRUE(window.Create(client, &reason)) << reason;
    EXPECT_TRUE(client.report.contextMade);
    EXPECT_NE(client.report.formatNumber, 0);
    EXPECT_TRUE(client.report.entryPointsLoaded);
    EXPECT_TRUE(client.report.pixelFormatExtension);
    EXPECT_TRUE(client.report.createContextExtension);
    EXPECT_TRUE(client.report.version33);
}

TEST_F(OffscreenWindowTest, ContextIsACompatibilityProfileOfTheVersion) {
    ASSERT_TRUE(window.Create(client, &reason)) << reason;
    GLint major = 0, minor = 0, profile = 0, alphaBits = 0, depthBits = 0;
    glGetIntegerv(GL_MAJOR_VERSION, &major);
    glGetIntegerv(GL_MINOR_VERSION, &minor);
    glGetIntegerv(GL_CONTEXT_PROFILE_MASK, &profile);
    glGetIntegerv(GL_ALPHA_BITS, &alphaBits);
    glGetIntegerv(GL_DEPTH_BITS, &depthBits);
    EXPECT_GE(major * 10 + minor, 33);
    EXPECT_EQ(profile, GL_CONTEXT_COMPATIBILITY_PROFILE_BIT);
    EXPECT_EQ(alphaBits, 8);
    EXPECT_GE(depthBits, 24);
    glBegin(GL_TRIANGLES);  // gone from a core profile
    glEnd();
    EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
}

TEST_F(OffscreenWindowTest, FourSamplesSmoothAnEdge) {
    client.pixelFormat.sampleBuffers = 1;
    client.pixelFormat.samples = 4;
    ASSERT_TRUE(window.Create(client, &reason)) << reason;
    GLint samples = 0;
    glGetIntegerv(GL_SAMPLES, &samples);
    EXPECT_EQ(samples, 4);
    client.color = {200, 200, 200};
    window.Refresh();
    glLoadIdentity();
    glColor3f(0.0f, 0.0f, 0.0f);
    glRectf(-1.0f, -1.0f, 0.0f, 1.0f);  // 333 pixels wide: the edge halves the pixels of column 166
    BindResolvedCopy(333, 77);
    EXPECT_EQ(PixelAt(165, 40), (Rgba{0, 0, 0}));
    EXPECT_EQ(PixelAt(166, 40), (Rgba{100, 100, 100})) << "two of the four samples";
    EXPECT_EQ(PixelAt(167, 40), (Rgba{200, 200, 200}));
    EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
}

TEST_F(OffscreenWindowTest, NoSamplesMeansNoSampleBuffers) {
    ASSERT_TRUE(window.Create(client, &reason)) << reason;
    GLint samples = -1, buffers = -1;
    glGetIntegerv(GL_SAMPLES, &samples);
    glGetIntegerv(GL_SAMPLE_BUFFERS, &buffers);
    EXPECT_EQ(samples, 0);
    EXPECT_EQ(buffers, 0);
}

TEST_F(OffscreenWindowTest, ARefusedVersionIsARefusedWindow) {
    client.context = {9, 9};
    EXPECT_FALSE(window.Create(client, &reason));
    EXPECT_TRUE(client.formatFound);
    EXPECT_EQ(reason, "") << "the client refused, not the window system";
    EXPECT_FALSE(window.Exists());
    EXPECT_EQ(window.ContextHandle(), nullptr);
    EXPECT_EQ(client.destroyed, 0);
    client.context = {3, 3};
    EXPECT_TRUE(window.Create(client, &reason)) << reason;
}

TEST_F(OffscreenWindowTest, SamplesThatNoFormatHasAreNotFound) {
    client.pixelFormat.sampleBuffers = 1;
    for (const int samples : {3, 999}) {
        client.pixelFormat.samples = samples;
        EXPECT_FALSE(window.Create(client, &reason)) << samples;
        EXPECT_FALSE(client.formatFound) << samples;
    }
}

TEST_F(OffscreenWindowTest, AnUnknownFormatNumberIsRefused) {
    ASSERT_TRUE(window.Create(client, &reason)) << reason;
    EXPECT_FALSE(window.SetPixelFormat(1)) << "it has one already";
    window.Destroy();
    struct Client final : WindowClient {
        explicit Client(PaneWindow& w) : window(w) {}
        int OnCreate() override { return window.SetPixelFormat(123456) ? 0 : -1; }
        void OnDestroy() override {}
        void OnPaint() override {}
        void OnPrivateMessage(std::uint32_t) override {}
        PaneWindow& window;
    } other(window);
    EXPECT_FALSE(window.Create(other, &reason));
}

TEST_F(OffscreenWindowTest, ResizeReplacesTheSurfaceAndKeepsTheContext) {
    ASSERT_TRUE(window.Create(client, &reason)) << reason;
    window.Refresh();
    void* const context = window.ContextHandle();
    const GLuint list = glGenLists(1);
    window.Resize(700, 500);
    EXPECT_EQ(window.ClientSize().width, 700);
    EXPECT_EQ(window.ClientSize().height, 500);
    EXPECT_EQ(window.ContextHandle(), context);
    EXPECT_TRUE(window.IsPaintPending()) << "the picture went with the surface";
    client.Draw();  // without a MakeCurrent()
    EXPECT_EQ(client.pixelInside, (Rgba{40, 120, 200})) << "at (699, 499)";
    EXPECT_EQ(client.error, static_cast<GLenum>(GL_NO_ERROR));
    EXPECT_EQ(glGenLists(1), list + 1) << "the context is another one";
}

TEST_F(OffscreenWindowTest, ASizeOfNothingStillHasASurface) {
    window.Resize(0, -5);
    ASSERT_TRUE(window.Create(client, &reason)) << reason;
    EXPECT_EQ(window.ClientSize().width, 0);
    EXPECT_EQ(window.ClientSize().height, -5);
    EXPECT_TRUE(window.MakeCurrent());
}

TEST(OffscreenWindowSize, TheLargestSideIsMadeAndOneMoreIsRefusedInWords) {
    OffscreenWindow longest(Request(16384, 8)), tooLong(Request(16385, 8)), tooLarge(Request(16384, 8193));
    DrawingClient client(longest), other(tooLong), another(tooLarge);
    std::string reason;
    ASSERT_TRUE(longest.Create(client, &reason)) << reason;
    longest.Refresh();
    EXPECT_EQ(client.pixelInside, (Rgba{40, 120, 200}));
    longest.Resize(16385, 8);
    EXPECT_EQ(longest.ClientSize().width, 16384) << "an impossible size changes nothing";
    EXPECT_FALSE(tooLong.Create(other, &reason));
    EXPECT_EQ(reason, "An off-screen surface of 16385 x 8 pixels is too large");
    EXPECT_FALSE(tooLarge.Create(another, &reason));
    EXPECT_EQ(reason, "An off-screen surface of 16384 x 8193 pixels is too large");
    EXPECT_EQ(another.created, 0);
}

TEST_F(OffscreenWindowTest, TwoSideBySideAndOneCloses) {
    OffscreenWindow second(Request(50, 50));
    DrawingClient secondClient(second);
    secondClient.color = {250, 10, 20};
    ASSERT_TRUE(window.Create(client, &reason)) << reason;
    ASSERT_TRUE(second.Create(secondClient, &reason)) << reason;
    EXPECT_NE(window.ContextHandle(), second.ContextHandle());
    window.Refresh();
    second.Refresh();
    EXPECT_EQ(secondClient.pixelInside, (Rgba{250, 10, 20}));
    second.Destroy();
    client.color = {1, 2, 3};
    window.Refresh();
    EXPECT_EQ(client.pixelInside, (Rgba{1, 2, 3}));
}

TEST_F(OffscreenWindowTest, DestroyTellsTheClientOnceWithTheContextStillThere) {
    ASSERT_TRUE(window.Create(client, &reason)) << reason;
    window.Destroy();
    window.Destroy();
    EXPECT_EQ(client.destroyed, 1);
    EXPECT_TRUE(client.currentInOnDestroy);
    EXPECT_FALSE(window.Exists());
    EXPECT_EQ(window.ContextHandle(), nullptr);
    EXPECT_FALSE(window.MakeCurrent());
    window.Refresh();
    window.Invalidate(true);
    window.SwapBuffers();
    window.ProcessEvents();
    EXPECT_EQ(client.paintCalls, 0);
}

TEST_F(OffscreenWindowTest, RecreateMakesAnotherContextWithWhatIsAskedNow) {
    ASSERT_TRUE(window.Create(client, &reason)) << reason;
    client.pixelFormat.sampleBuffers = 1;
    client.pixelFormat.samples = 4;
    ASSERT_TRUE(window.Recreate());
    EXPECT_EQ(client.created, 2);
    EXPECT_EQ(client.destroyed, 1);
    GLint samples = 0;
    glGetIntegerv(GL_SAMPLES, &samples);
    EXPECT_EQ(samples, 4);
    client.context = {9, 9};
    EXPECT_FALSE(window.Recreate());
    EXPECT_FALSE(window.Exists());
    client.context = {3, 3};
    EXPECT_TRUE(window.Recreate()) << "a refusal is not the end";
    window.Refresh();
    EXPECT_EQ(client.pixelInside, (Rgba{40, 120, 200}));
}

TEST_F(OffscreenWindowTest, AFailedMakeCurrentLeavesNoOtherContextCurrent) {
    OffscreenWindow second(Request(50, 50));
    ASSERT_TRUE(window.Create(client, &reason)) << reason;
    ASSERT_TRUE(window.MakeCurrent());
    ASSERT_NE(glGetString(GL_VERSION), nullptr);
    EXPECT_FALSE(second.MakeCurrent());
    EXPECT_EQ(glGetString(GL_VERSION), nullptr);
}

}  // namespace
