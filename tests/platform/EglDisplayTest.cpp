// The EGL of this machine, and a host that ends its own use of it: eglTerminate() ends a display for everybody in the
// process.
#include "platform/EglDisplay.h"

#include <EGL/egl.h>
#include <gtest/gtest.h>

#include <memory>

#include "platform/CurrentContext.h"
#include "platform/DrawingClient.h"
#include "platform/OffscreenWindow.h"

namespace {

using KV_ScenePane::WindowRequest;

constexpr ContextAttributes kLowest{3, 3};

/// A window of 64 x 32 pixels with its client.
struct Viewer {
    explicit Viewer(int gpu = WindowRequest::kAnyGpu) : window(Request(gpu)), client(window) {}
    static WindowRequest Request(int gpu) {
        WindowRequest request;
        request.width = 64, request.height = 32, request.gpu = gpu;
        return request;
    }
    bool Create() { return window.Create(client, &reason); }
    /// Whether a refresh draws the client's frame.
    bool Draws() {
        client.pixelInside = {};
        window.Refresh();
        return client.pixelInside == Rgba{40, 120, 200} && client.error == static_cast<GLenum>(GL_NO_ERROR);
    }

    OffscreenWindow window;
    DrawingClient client;
    std::string reason;
};

/// Ends the display in use as a host does that initialised the same one.
void TerminateAsHost() {
    const EglDisplay display = SharedEglDisplay(WindowRequest::kAnyGpu, kLowest, nullptr);
    ASSERT_NE(display.handle, nullptr);
    ASSERT_EQ(eglTerminate(display.handle), static_cast<EGLBoolean>(EGL_TRUE));
}

struct HostTerminates : testing::Test {
    HostTerminates() { unsetenv("DISPLAY"); }
};

TEST_F(HostTerminates, AViewerMadeAfterwardsDraws) {
    {
        Viewer first;
        ASSERT_TRUE(first.Create()) << first.reason;
        ASSERT_TRUE(first.Draws());
    }
    for (int round = 0; round < 3; ++round) {
        TerminateAsHost();
        Viewer later;
        ASSERT_TRUE(later.Create()) << later.reason;
        EXPECT_TRUE(later.Draws());
    }
}

TEST_F(HostTerminates, AViewerOfThatMomentLosesItsWindow) {
    Viewer viewer;
    ASSERT_TRUE(viewer.Create()) << viewer.reason;
    ASSERT_TRUE(viewer.Draws());
    TerminateAsHost();
    EXPECT_FALSE(viewer.window.Exists());
    EXPECT_FALSE(viewer.window.MakeCurrent());
    EXPECT_EQ(CurrentContext(), nullptr) << "OpenGL calls still reach a context without a display";
    EXPECT_FALSE(viewer.Draws());
    viewer.window.Resize(100, 50);
    EXPECT_EQ(viewer.client.destroyed, 0);
    viewer.window.ProcessEvents();
    EXPECT_EQ(viewer.client.destroyed, 1) << "as for a window that its window system has destroyed";
    EXPECT_EQ(viewer.window.ContextHandle(), nullptr);
    EXPECT_EQ(eglGetCurrentContext(), EGL_NO_CONTEXT);
}

TEST_F(HostTerminates, ALostViewerDoesNotTouchALaterOne) {
    auto lost = std::make_unique<Viewer>();
    auto alsoLost = std::make_unique<Viewer>();
    ASSERT_TRUE(lost->Create() && alsoLost->Create());
    TerminateAsHost();
    Viewer later;
    ASSERT_TRUE(later.Create()) << later.reason;
    ASSERT_TRUE(later.Draws());
    // The new surfaces and contexts may be at the addresses of the old ones.
    EXPECT_FALSE(lost->window.Exists());
    EXPECT_FALSE(lost->window.MakeCurrent());
    lost->window.ProcessEvents();
    alsoLost.reset();
    lost.reset();
    EXPECT_TRUE(later.window.Exists());
    EXPECT_TRUE(later.Draws());
}

TEST_F(HostTerminates, AHostThatInitialisesAgainDoesNotReviveTheViewer) {
    Viewer viewer;
    ASSERT_TRUE(viewer.Create()) << viewer.reason;
    const EglDisplay before = SharedEglDisplay(WindowRequest::kAnyGpu, kLowest, nullptr);
    EXPECT_TRUE(IsEglDisplayAlive(before));
    TerminateAsHost();
    ASSERT_EQ(eglInitialize(before.handle, nullptr, nullptr), static_cast<EGLBoolean>(EGL_TRUE));
    EXPECT_FALSE(IsEglDisplayAlive(before));
    EXPECT_FALSE(viewer.window.Exists());
    Viewer later;
    ASSERT_TRUE(later.Create()) << later.reason;
    EXPECT_TRUE(later.Draws());
}

TEST_F(HostTerminates, ARecreationMakesTheWindowAgain) {
    Viewer viewer;
    ASSERT_TRUE(viewer.Create()) << viewer.reason;
    TerminateAsHost();
    EXPECT_TRUE(viewer.window.Recreate());
    EXPECT_TRUE(viewer.Draws());
}

TEST(SharedEglDisplay, IsOneForAllViewersAndVersions) {
    const EglDisplay first = SharedEglDisplay(WindowRequest::kAnyGpu, kLowest, nullptr);
    const EglDisplay second = SharedEglDisplay(WindowRequest::kAnyGpu, {3, 2}, nullptr);
    ASSERT_NE(first.handle, nullptr);
    EXPECT_EQ(second.handle, first.handle);
    EXPECT_EQ(second.generation, first.generation);
    EXPECT_FALSE(first.name.empty());
}

TEST(SharedEglDisplay, WithoutTheVersionThereIsADisplayThatRefusesTheContext) {
    Viewer viewer;
    viewer.client.context = {9, 8};
    EXPECT_FALSE(viewer.Create());
    EXPECT_EQ(viewer.reason, "") << "the client refused, not the window system";
    EXPECT_TRUE(viewer.client.formatFound);
}

TEST(SharedEglDisplay, SoftwareIsDrawnByTheProcessor) {
    Viewer viewer(WindowRequest::kSoftware);
    ASSERT_TRUE(viewer.Create()) << viewer.reason;
    EXPECT_TRUE(viewer.Draws());
    EXPECT_EQ(viewer.window.DeviceName(), "software device");
}

TEST(SharedEglDisplay, ANumberWithoutADeviceIsRefusedWithAReason) {
    for (const int number : {1000, -3}) {
        Viewer viewer(number);
        EXPECT_FALSE(viewer.Create());
        const std::string start = "There is no graphics device " + std::to_string(number) + ": EGL lists ";
        EXPECT_EQ(viewer.reason.substr(0, start.size()), start);
    }
}

TEST(SharedEglDisplay, TheEglApiOfTheThreadStaysThatOfTheHost) {
    ASSERT_EQ(eglBindAPI(EGL_OPENGL_ES_API), static_cast<EGLBoolean>(EGL_TRUE));
    Viewer viewer;
    ASSERT_TRUE(viewer.Create()) << viewer.reason;
    EXPECT_EQ(eglQueryAPI(), static_cast<EGLenum>(EGL_OPENGL_ES_API));
}

}  // namespace
