// Windows on an X server of the test: creation, drawing, refusals, parents, cursors. Their sizes and paints are tested
// in X11WindowEventsTest.cpp; what they share with other windows in ContextTest.cpp and QueuedWindowTest.cpp.
#include "platform/X11Window.h"

#include <gtest/gtest.h>

#include <cstdlib>

#include "platform/X11WindowTest.h"

namespace {

TEST_F(X11WindowTest, DrawsIntoAChildOfTheHostsWindow) {
    ASSERT_TRUE(window.Create(client, &reason)) << reason;
    EXPECT_TRUE(window.Exists());
    ASSERT_TRUE(HandleAllEvents(host, window));
    EXPECT_GE(client.painted, 1) << "the server exposed the new window";
    EXPECT_TRUE(client.lastErase);
    EXPECT_EQ(client.error, static_cast<GLenum>(GL_NO_ERROR));
    EXPECT_EQ(client.pixelInside, (Rgba{40, 120, 200}));

    const WindowPlace place = host.PlaceOf(window.NativeHandle());
    EXPECT_EQ(place.parent, host.Id());
    EXPECT_EQ(place.x, 20);
    EXPECT_EQ(place.y, 30);
    EXPECT_EQ(place.width, 200);
    EXPECT_EQ(place.height, 100);
    EXPECT_TRUE(place.isMapped);
    // What the screen shows, in the host's coordinates; rows run downward there.
    EXPECT_EQ(host.ShownAt(20 + 199, 30 + 0), (Rgba{40, 120, 200}));
    EXPECT_EQ(host.ShownAt(20 + 9, 30 + 99 - 9), (Rgba{255, 255, 255}));
    EXPECT_EQ(host.ShownAt(20 + 10, 30 + 99 - 9), (Rgba{40, 120, 200}));
}

TEST_F(X11WindowTest, BootstrapWindowIsHiddenAndDestroyedAgain) {
    struct Client final : WindowClient {
        Client(PaneWindow& w, HostWindow& h) : window(w), host(h) {}
        int OnCreate() override {
            before = host.CountTitled("InitWIndow", nullptr);
            (void)window.BeginBootstrap({});
            during = host.CountTitled("InitWIndow", &place);
            window.EndBootstrap();
            // The server may process the requests of this connection after those of the host's.
            isDestroyed = WaitUntil([&] { return host.CountTitled("InitWIndow", nullptr) == 0; });
            return -1;
        }
        void OnDestroy() override {}
        void OnPaint() override {}
        void OnPrivateMessage(std::uint32_t) override {}
        PaneWindow& window;
        HostWindow& host;
        WindowPlace place;
        int before = -1, during = -1;
        bool isDestroyed = false;
    } looking(window, host);
    EXPECT_FALSE(window.Create(looking, &reason));
    EXPECT_EQ(looking.before, 0);
    EXPECT_EQ(looking.during, 1);
    EXPECT_TRUE(looking.isDestroyed);
    EXPECT_EQ(looking.place.width, 100);
    EXPECT_EQ(looking.place.height, 100);
    EXPECT_EQ(looking.place.x, 0);
    EXPECT_EQ(looking.place.y, 0);
    EXPECT_FALSE(looking.place.isMapped);
}

TEST_F(X11WindowTest, RecreateKeepsPlaceSizeAndParent) {
    ASSERT_TRUE(window.Create(client, &reason)) << reason;
    window.Resize(150, 60);
    ASSERT_TRUE(window.Recreate());
    const WindowPlace place = host.PlaceOf(window.NativeHandle());
    EXPECT_EQ(place.parent, host.Id());
    EXPECT_EQ(place.x, 20);
    EXPECT_EQ(place.width, 150);
    EXPECT_EQ(host.ChildCount(), 1);
}

// ---- refusals

TEST(X11WindowRefusal, NoDisplayIsReportedWithItsName) {
    unsetenv("DISPLAY");
    std::string reason;
    X11Window window(ChildOf(1));
    DrawingClient client(window);
    EXPECT_FALSE(window.Create(client, &reason));
    EXPECT_EQ(reason, "No X display: $DISPLAY is not set");
    setenv("DISPLAY", ":59999", 1);
    EXPECT_FALSE(window.Create(client, &reason));
    EXPECT_EQ(reason, "No X display: $DISPLAY is :59999, which cannot be opened");
    KV_ScenePane::WindowRequest request = ChildOf(1);
    request.display = ":59998";
    X11Window named(request);
    EXPECT_FALSE(named.Create(client, &reason));
    EXPECT_EQ(reason, "No X display: :59998 cannot be opened");
    EXPECT_FALSE(named.Create(client, nullptr)) << "the reason is optional";
    EXPECT_EQ(client.created, 0);
}

TEST_F(X11WindowTest, ParentThatIsNoXWindowIsRefusedWithItsId) {
    struct Row {
        std::uintptr_t handle;
        const char* text;
    };
    const Row rows[] = {{0, "0x0"},
                        {0x1234, "0x1234"},                   // an id of no window
                        {0x55d0c0ffee00, "0x55d0c0ffee00"},   // the address of a Wayland surface
                        {host.Id() | 0x100000000u, nullptr},  // looks like the host when cut to 32 bits
                        {static_cast<std::uintptr_t>(host.MakePixmap()), nullptr}};  // drawable, but not a window
    for (const Row& row : rows) {
        X11Window refused(ChildOf(row.handle));
        DrawingClient other(refused);
        EXPECT_FALSE(refused.Create(other, &reason));
        EXPECT_EQ(other.created, 0);
        if (row.text != nullptr) {
            EXPECT_EQ(reason,
                      "The parent " + std::string(row.text) + " is not a window of the X display " + server.Name());
        }
        EXPECT_NE(reason.find("is not a window of the X display"), std::string::npos) << reason;
    }
    X11Window inputOnly(ChildOf(host.MakeInputOnly()));
    DrawingClient other(inputOnly);
    EXPECT_FALSE(inputOnly.Create(other, &reason));
    EXPECT_NE(reason.find("is a window for input only"), std::string::npos) << reason;
}

// ---- top-level

TEST_F(X11WindowTest, TopLevelHasItsTitleAndClosesOnRequestOfTheWindowManager) {
    KV_ScenePane::WindowRequest request;
    request.kind = KV_ScenePane::WindowRequest::Kind::TopLevel;
    request.title = L"Zähne 歯";
    X11Window topLevel(request);
    DrawingClient other(topLevel);
    ASSERT_TRUE(topLevel.Create(other, &reason)) << reason;
    EXPECT_EQ(host.PlaceOf(topLevel.NativeHandle()).parent, DefaultRootWindow(host.Display()));
    EXPECT_EQ(host.TextProperty(topLevel.NativeHandle(), "_NET_WM_NAME"), "Z\xC3\xA4hne \xE6\xAD\xAF");
    EXPECT_TRUE(ProcessEventsUntil(topLevel, [&] { return other.painted > 0; }));
    EXPECT_EQ(other.pixelInside, (Rgba{40, 120, 200})) << "640 x 480";
    host.SendDelete(topLevel.NativeHandle());
    EXPECT_TRUE(ProcessEventsUntil(topLevel, [&] { return !topLevel.Exists(); }));
    EXPECT_EQ(other.destroyed, 1);
    EXPECT_TRUE(other.currentInOnDestroy);
    EXPECT_FALSE(topLevel.Reparent(host.Id(), 0, 0));
}

// ---- re-parenting

TEST_F(X11WindowTest, ReparentMovesTheWindowWhichKeepsDrawing) {
    HostWindow other;
    ASSERT_TRUE(window.Create(client, &reason)) << reason;
    ASSERT_TRUE(window.Reparent(other.Id(), 3, 4));
    const WindowPlace place = host.PlaceOf(window.NativeHandle());
    EXPECT_EQ(place.parent, other.Id());
    EXPECT_EQ(place.x, 3);
    EXPECT_EQ(place.y, 4);
    ASSERT_TRUE(HandleAllEvents(host, window));
    client.color = {90, 91, 92};
    window.Refresh();
    EXPECT_EQ(other.ShownAt(3 + 100, 4 + 10), (Rgba{90, 91, 92}));
    EXPECT_FALSE(window.Reparent(0x1234, 0, 0));
    EXPECT_FALSE(window.Reparent(0x55d0c0ffee00, 0, 0));
    EXPECT_FALSE(window.Reparent(window.NativeHandle(), 0, 0)) << "into itself";
    EXPECT_EQ(host.PlaceOf(window.NativeHandle()).parent, other.Id());
    ASSERT_TRUE(window.Recreate());
    EXPECT_EQ(host.PlaceOf(window.NativeHandle()).parent, other.Id()) << "recreated in its last parent";
    EXPECT_EQ(host.PlaceOf(window.NativeHandle()).y, 4);
}

// ---- pointer

TEST_F(X11WindowTest, CursorFollowsTheModeAndWaitCursorsNest) {
    setenv("XCURSOR_CORE", "1", 1);  // the wait cursor of a theme is animated: its look changes
    ASSERT_TRUE(window.Create(client, &reason)) << reason;
    host.PointAt(window.NativeHandle());
    const auto shown = [&] {
        EXPECT_TRUE(HandleAllEvents(host, window));  // the server has seen the window's requests then
        return host.ShownCursor();
    };
    const unsigned long standard = shown();
    window.SetCursor(PaneCursor::Lasso);
    const unsigned long lasso = shown();
    EXPECT_NE(lasso, standard);
    window.BeginWaitCursor();
    const unsigned long wait = shown();
    EXPECT_NE(wait, lasso);
    EXPECT_NE(wait, standard);
    window.BeginWaitCursor();
    window.SetCursor(PaneCursor::Default);
    window.EndWaitCursor();
    EXPECT_EQ(shown(), wait) << "one is still open";
    window.EndWaitCursor();
    EXPECT_EQ(shown(), standard);
    window.EndWaitCursor();
    window.BeginWaitCursor();
    EXPECT_EQ(shown(), wait) << "an End without a Begin has no effect";
}

}  // namespace
