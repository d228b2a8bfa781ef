// Windows that are opened and closed by the hundred, several at once, and hosts or servers that end before the window.
#include <GL/glew.h>
#include <gtest/gtest.h>
#include <malloc.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>

#include "platform/DrawingClient.h"
#include "platform/HostWindow.h"
#include "platform/WindowFactory.h"
#include "support/ProcessSize.h"
#include "support/Wait.h"
#include "support/WindowKindText.h"
#include "support/XvfbServer.h"

// After the others, whose names its macros would replace.
#include <X11/Xlib.h>

namespace {

using KV_ScenePane::WindowRequest;
using Kind = WindowRequest::Kind;

WindowRequest ChildOf(std::uintptr_t parent) {
    WindowRequest request;
    request.kind = Kind::Child;
    request.parent = parent;
    request.width = 200;
    request.height = 100;
    return request;
}

WindowRequest OfKind(Kind kind) {
    WindowRequest request;
    request.kind = kind;
    request.width = 64;
    request.height = 32;
    return request;
}

/// A window with its client, like a viewer.
struct Pane {
    explicit Pane(const WindowRequest& request) : window(MakePaneWindow(request)), client(*window) {}
    bool Open() { return window->Create(client, &reason); }
    std::unique_ptr<PaneWindow> window;
    DrawingClient client;
    std::string reason;
};

bool NoContextIsCurrent() { return glGetString(GL_VERSION) == nullptr; }

// ---- many

class OpenedAndClosed : public testing::TestWithParam<Kind> {};

TEST_P(OpenedAndClosed, ManyTimesLeaksNothing) {
    XvfbServer& server = XvfbServer::Shared();
    HostWindow host;
    WindowRequest request = ChildOf(host.Id());
    request.kind = GetParam();
    const auto openAndClose = [&request](int times) {
        for (int i = 0; i < times; ++i) {
            Pane pane(request);
            ASSERT_TRUE(pane.Open()) << pane.reason;
            if (i % 10 != 0) continue;  // the first frame of a context is slow
            pane.window->Refresh();
            ASSERT_EQ(pane.client.pixelInside, (Rgba{40, 120, 200}));
            ASSERT_EQ(pane.client.error, static_cast<GLenum>(GL_NO_ERROR));
        }
    };
    openAndClose(20);  // fills the driver's own caches
    ASSERT_TRUE(server.WaitForClients(1)) << "the host's";
    const int descriptors = OpenDescriptors();
    const long kilobytes = ResidentKilobytes();
    openAndClose(kManyViewers);
    EXPECT_TRUE(server.WaitForClients(1));
    EXPECT_EQ(OpenDescriptors(), descriptors);
    EXPECT_EQ(host.ChildCount(), 0);
    const long growth = ResidentKilobytes() - kilobytes;
    RecordProperty("growthKilobytes", std::to_string(growth));
    EXPECT_LT(growth, kManyViewers * 16 + 1024 * kQuarantineMegabytes) << "kilobytes";
}

INSTANTIATE_TEST_SUITE_P(Windows, OpenedAndClosed, testing::Values(Kind::Child, Kind::OffScreen),
                         [](const auto& row) { return std::string(TextOf(row.param)); });

// ---- neighbours

struct WindowLife : testing::Test {
    XvfbServer& server = XvfbServer::Shared();
};

TEST_F(WindowLife, ClosingOneOfTwoWindowsDoesNotAffectTheOther) {
    HostWindow host;
    Pane left(ChildOf(host.Id()));
    WindowRequest besideIt = ChildOf(host.Id());
    besideIt.x = 300;
    auto right = std::make_unique<Pane>(besideIt);
    right->client.color = {250, 10, 20};
    ASSERT_TRUE(left.Open()) << left.reason;
    ASSERT_TRUE(right->Open()) << right->reason;
    EXPECT_NE(left.window->ContextHandle(), right->window->ContextHandle());
    left.window->Refresh();
    right->window->Refresh();
    EXPECT_EQ(host.ShownAt(100, 20), (Rgba{40, 120, 200}));
    EXPECT_EQ(host.ShownAt(400, 20), (Rgba{250, 10, 20}));
    right.reset();
    EXPECT_TRUE(NoContextIsCurrent());
    left.client.color = {1, 2, 3};
    left.window->Refresh();
    EXPECT_EQ(left.client.pixelInside, (Rgba{1, 2, 3}));
    EXPECT_EQ(host.ShownAt(100, 20), (Rgba{1, 2, 3}));
    EXPECT_EQ(host.ChildCount(), 1);
}

// GLX and EGL each refuse to make a context current while one of the other is.
TEST_F(WindowLife, WindowsAndOffScreenSurfacesDrawInTurns) {
    HostWindow host;
    Pane shown(ChildOf(host.Id())), offScreen(OfKind(Kind::OffScreen)), secondOffScreen(OfKind(Kind::OffScreen));
    ASSERT_TRUE(shown.Open()) << shown.reason;
    ASSERT_TRUE(offScreen.Open()) << offScreen.reason;
    ASSERT_TRUE(secondOffScreen.Open()) << secondOffScreen.reason;
    shown.client.color = {10, 0, 0};
    offScreen.client.color = {0, 20, 0};
    secondOffScreen.client.color = {0, 0, 30};
    for (int i = 0; i < 3; ++i) {
        for (Pane* const pane : {&shown, &offScreen, &secondOffScreen}) {
            pane->client.pixelInside = {};
            pane->window->Refresh();
            EXPECT_EQ(pane->client.pixelInside, pane->client.color);
        }
    }
    EXPECT_EQ(host.ShownAt(100, 20), (Rgba{10, 0, 0}));
    offScreen.window->Destroy();
    ASSERT_TRUE(shown.window->MakeCurrent());
    EXPECT_EQ(PixelAt(9, 9), (Rgba{255, 255, 255}));
    shown.window->Destroy();
    ASSERT_TRUE(secondOffScreen.window->MakeCurrent());
    EXPECT_EQ(PixelAt(63, 31), (Rgba{0, 0, 30}));
}

TEST_F(WindowLife, WindowMayBeDestroyedInItsOwnMessage) {
    HostWindow host;
    Pane pane(ChildOf(host.Id()));
    ASSERT_TRUE(pane.Open()) << pane.reason;
    pane.client.onMessage = [&](std::uint32_t) { pane.window->Destroy(); };
    pane.window->PostPrivateMessage(5);
    pane.window->PostPrivateMessage(6);
    pane.window->ProcessEvents();
    EXPECT_EQ(pane.client.messages, (std::vector<std::uint32_t>{5}));
    EXPECT_FALSE(pane.window->Exists());
    EXPECT_EQ(pane.client.destroyed, 1);
    pane.window->ProcessEvents();
    EXPECT_EQ(pane.client.destroyed, 1);
}

// ---- the host's window is destroyed first

TEST_F(WindowLife, DestructionOfTheHostsWindowRunsOnDestroyOnce) {
    auto host = std::make_unique<HostWindow>();
    HostWindow otherHost;
    Pane orphan(ChildOf(host->Id())), other(ChildOf(otherHost.Id()));
    ASSERT_TRUE(orphan.Open()) << orphan.reason;
    ASSERT_TRUE(other.Open()) << other.reason;
    ASSERT_TRUE(other.window->MakeCurrent());
    void* contextInOnDestroy = nullptr;
    orphan.client.onDestroy = [&] { contextInOnDestroy = orphan.window->ContextHandle(); };
    host->Destroy();

    EXPECT_FALSE(orphan.window->MakeCurrent());
    EXPECT_TRUE(NoContextIsCurrent()) << "what the orphan deletes now would be objects of the other";
    EXPECT_FALSE(orphan.window->Exists());
    EXPECT_EQ(orphan.window->NativeHandle(), 0u);
    EXPECT_TRUE(BecomesReadable(*orphan.window));
    orphan.window->ProcessEvents();
    EXPECT_EQ(orphan.client.destroyed, 1);
    EXPECT_FALSE(orphan.client.currentInOnDestroy);
    EXPECT_NE(contextInOnDestroy, nullptr);
    EXPECT_EQ(orphan.window->ContextHandle(), nullptr);
    EXPECT_FALSE(IsReadable(*orphan.window)) << "the connection is closed";
    host.reset();
    EXPECT_TRUE(server.WaitForClients(2)) << "the other host and the other pane";

    orphan.window->Refresh();
    orphan.window->Resize(10, 10);
    orphan.window->SwapBuffers();
    orphan.window->BeginWaitCursor();
    orphan.window->EndWaitCursor();
    EXPECT_FALSE(orphan.window->Recreate()) << "its parent is destroyed";
    orphan.window->Destroy();
    EXPECT_EQ(orphan.client.destroyed, 1);
    other.client.color = {5, 6, 7};
    other.window->Refresh();
    EXPECT_EQ(other.client.pixelInside, (Rgba{5, 6, 7}));
    EXPECT_EQ(otherHost.ShownAt(100, 20), (Rgba{5, 6, 7}));
}

TEST_F(WindowLife, ContextIsNotCurrentOnceItsWindowIsDestroyed) {
    HostWindow host;
    Pane orphan(ChildOf(host.Id()));
    ASSERT_TRUE(orphan.Open()) << orphan.reason;
    orphan.window->Refresh();
    ASSERT_TRUE(orphan.window->MakeCurrent());
    host.Destroy();
    EXPECT_FALSE(orphan.window->MakeCurrent());
    EXPECT_TRUE(NoContextIsCurrent());
}

TEST_F(WindowLife, DrawingIntoADestroyedWindowIsHarmless) {
    HostWindow host;
    Pane orphan(ChildOf(host.Id()));
    ASSERT_TRUE(orphan.Open()) << orphan.reason;
    orphan.client.deleteContextInOnDestroy = false;
    ASSERT_TRUE(orphan.window->MakeCurrent());
    host.Destroy();
    orphan.client.Draw();
    orphan.client.Draw();
    orphan.window->Destroy();  // before any event was handled
    EXPECT_EQ(orphan.client.destroyed, 1);
    EXPECT_EQ(orphan.window->ContextHandle(), nullptr) << "the window frees what the client did not";
    EXPECT_TRUE(server.WaitForClients(1)) << "the host's";
}

TEST_F(WindowLife, EndOfTheHostsConnectionRunsOnDestroyOnce) {
    auto host = std::make_unique<HostWindow>();
    Pane orphan(ChildOf(host->Id()));
    ASSERT_TRUE(orphan.Open()) << orphan.reason;
    host.reset();  // a host that ends without closing anything
    EXPECT_TRUE(ProcessEventsUntil(*orphan.window, [&] { return !orphan.window->Exists(); }));
    EXPECT_EQ(orphan.client.destroyed, 1);
}

// ---- the server ends first

TEST(WindowLifeWithoutServer, EndOfTheServerEndsTheWindowButNotTheProcess) {
    XvfbServer server;
    HostWindow host;
    Pane pane(ChildOf(host.Id())), offScreen(OfKind(Kind::OffScreen));
    ASSERT_TRUE(pane.Open()) << pane.reason;
    ASSERT_TRUE(offScreen.Open()) << offScreen.reason;
    pane.window->Refresh();
    testing::internal::CaptureStderr();
    host.Forget();
    server.Kill();
    EXPECT_TRUE(BecomesReadable(*pane.window));
    pane.window->ProcessEvents();
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "") << "the library prints nothing";
    EXPECT_FALSE(pane.window->Exists());
    EXPECT_EQ(pane.client.destroyed, 1);
    EXPECT_FALSE(pane.client.currentInOnDestroy);
    EXPECT_EQ(pane.window->ContextHandle(), nullptr);
    EXPECT_FALSE(IsReadable(*pane.window)) << "the connection is closed";
    pane.window->Refresh();
    EXPECT_FALSE(pane.window->MakeCurrent());
    EXPECT_FALSE(pane.window->Recreate());
    offScreen.window->Refresh();
    EXPECT_EQ(offScreen.client.pixelInside, (Rgba{40, 120, 200}));
}

TEST(WindowLifeWithoutServer, EveryCallReturnsAfterTheEndOfTheServer) {
    XvfbServer server;
    HostWindow host;
    Pane pane(ChildOf(host.Id()));
    ASSERT_TRUE(pane.Open()) << pane.reason;
    pane.window->Refresh();
    ASSERT_TRUE(pane.window->MakeCurrent());
    for (int i = 0; i < 50; ++i) XMoveWindow(host.Display(), pane.window->NativeHandle(), i, i);  // unread events
    XSync(host.Display(), False);
    host.Forget();
    server.Kill();
    pane.client.Draw();
    pane.window->SwapBuffers();
    pane.window->Resize(300, 200);
    pane.window->SetCursor(PaneCursor::Lasso);
    pane.window->SetCapture();
    pane.window->ReleaseCapture();
    EXPECT_FALSE(pane.window->Reparent(1, 0, 0));
    pane.window->Refresh();
    EXPECT_FALSE(pane.window->MakeCurrent());
    EXPECT_TRUE(NoContextIsCurrent());
    EXPECT_FALSE(pane.window->Exists());
    EXPECT_EQ(pane.client.destroyed, 0) << "runs in ProcessEvents() or Destroy()";
    pane.window->Destroy();
    EXPECT_EQ(pane.client.destroyed, 1);
}

}  // namespace
