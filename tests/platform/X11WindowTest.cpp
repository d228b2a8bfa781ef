// The real window on an X server of the test's own: making, drawing, events, pointer.
#include "platform/X11Window.h"

#include <gtest/gtest.h>
#include <poll.h>
#include <unistd.h>

#include <cstdlib>

#include "platform/DrawingClient.h"
#include "platform/HostWindow.h"
#include "support/XvfbServer.h"

// After the others: its macros take the names of theirs.
#include <X11/Xlib.h>

namespace {

PaneWindowRequest ChildOf(Window parent, int width = 200, int height = 100) {
    PaneWindowRequest request;
    request.kind = PaneWindowRequest::Kind::Child;
    request.parent = parent;
    request.x = 20;
    request.y = 30;
    request.width = width;
    request.height = height;
    return request;
}

bool IsReadable(const PaneWindow& window, int milliseconds = 0) {
    pollfd waiting{window.EventDescriptor(), POLLIN, 0};
    return poll(&waiting, 1, milliseconds) == 1;
}

/// Runs rounds until nothing is left to do; false when the descriptor never comes to rest.
bool ComesToRest(PaneWindow& window) {
    for (int i = 0; i < 100; ++i) {
        window.ProcessEvents();
        if (!IsReadable(window, 20)) return true;
    }
    return false;
}

struct X11WindowTest : testing::Test {
    XvfbServer& server = XvfbServer::Shared();
    HostWindow host;
    X11Window window{ChildOf(host.Id())};
    DrawingClient client{window};
    std::string reason;
};

TEST_F(X11WindowTest, DrawsIntoAChildOfTheHostsWindow) {
    ASSERT_TRUE(window.Create(client, &reason)) << reason;
    EXPECT_TRUE(window.Exists());
    ASSERT_TRUE(ComesToRest(window));
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

TEST_F(X11WindowTest, ReportsWhatTheBootstrapFound) {
    ASSERT_TRUE(window.Create(client, &reason)) << reason;
    EXPECT_TRUE(client.report.contextMade);
    EXPECT_NE(client.report.formatNumber, 0);
    EXPECT_TRUE(client.report.entryPointsLoaded);
    EXPECT_TRUE(client.report.pixelFormatExtension);
    EXPECT_TRUE(client.report.createContextExtension);
    EXPECT_TRUE(client.report.version33);
}

TEST_F(X11WindowTest, BootstrapWindowIsHiddenAndGoesAgain) {
    struct Client final : WindowClient {
        Client(PaneWindow& w, HostWindow& h) : window(w), host(h) {}
        int OnCreate() override {
            before = host.CountTitled("InitWIndow", nullptr);
            (void)window.BeginBootstrap();
            during = host.CountTitled("InitWIndow", &place);
            window.EndBootstrap();
            after = host.CountTitled("InitWIndow", nullptr);
            return -1;
        }
        void OnDestroy() override {}
        void OnPaint() override {}
        void OnPrivateMessage(std::uint32_t) override {}
        PaneWindow& window;
        HostWindow& host;
        WindowPlace place;
        int before = -1, during = -1, after = -1;
    } looking(window, host);
    EXPECT_FALSE(window.Create(looking, &reason));
    EXPECT_EQ(looking.before, 0);
    EXPECT_EQ(looking.during, 1);
    EXPECT_EQ(looking.after, 0);
    EXPECT_EQ(looking.place.width, 100);
    EXPECT_EQ(looking.place.height, 100);
    EXPECT_EQ(looking.place.x, 0);
    EXPECT_EQ(looking.place.y, 0);
    EXPECT_FALSE(looking.place.isMapped);
}

TEST_F(X11WindowTest, ContextIsACompatibilityProfileOfTheVersion) {
    ASSERT_TRUE(window.Create(client, &reason)) << reason;
    GLint major = 0, minor = 0, profile = 0, alphaBits = 0, depthBits = 0, doubleBuffer = 0;
    glGetIntegerv(GL_MAJOR_VERSION, &major);
    glGetIntegerv(GL_MINOR_VERSION, &minor);
    glGetIntegerv(GL_CONTEXT_PROFILE_MASK, &profile);
    glGetIntegerv(GL_ALPHA_BITS, &alphaBits);
    glGetIntegerv(GL_DEPTH_BITS, &depthBits);
    glGetIntegerv(GL_DOUBLEBUFFER, &doubleBuffer);
    EXPECT_GE(major * 10 + minor, 33);
    EXPECT_EQ(profile, GL_CONTEXT_COMPATIBILITY_PROFILE_BIT);
    EXPECT_EQ(alphaBits, 8);
    EXPECT_GE(depthBits, 24);
    EXPECT_EQ(doubleBuffer, GL_TRUE);
}

TEST_F(X11WindowTest, FourSamplesSmoothAnEdge) {
    window.Resize(333, 77);
    client.pixelFormat.sampleBuffers = 1;
    client.pixelFormat.samples = 4;
    ASSERT_TRUE(window.Create(client, &reason)) << reason;
    GLint samples = 0;
    glGetIntegerv(GL_SAMPLES, &samples);
    EXPECT_EQ(samples, 4);
    client.color = {200, 200, 200};
    window.Refresh();
    glClearColor(200 / 255.0f, 200 / 255.0f, 200 / 255.0f, 1.0f);
    glClear(GL_COLOR_BUFFER_BIT);
    glColor3f(0.0f, 0.0f, 0.0f);
    glRectf(-1.0f, -1.0f, 0.0f, 1.0f);  // 333 pixels wide: the edge halves the pixels of column 166
    BindResolvedCopy(333, 77);
    EXPECT_EQ(PixelAt(165, 40), (Rgba{0, 0, 0}));
    EXPECT_EQ(PixelAt(166, 40), (Rgba{100, 100, 100})) << "two of the four samples";
    EXPECT_EQ(PixelAt(167, 40), (Rgba{200, 200, 200}));
    EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
}

TEST_F(X11WindowTest, ARefusedVersionIsARefusedWindowAndNotTheEndOfTheProcess) {
    client.context = {9, 9};
    EXPECT_FALSE(window.Create(client, &reason));
    EXPECT_TRUE(client.formatFound);
    EXPECT_EQ(reason, "") << "the client refused, not the window system";
    EXPECT_FALSE(window.Exists());
    EXPECT_EQ(window.NativeHandle(), 0u);
    EXPECT_EQ(window.ContextHandle(), nullptr);
    EXPECT_EQ(client.destroyed, 0);
    EXPECT_EQ(host.ChildCount(), 0);
    client.context = {3, 3};
    EXPECT_TRUE(window.Create(client, &reason)) << reason;
}

TEST_F(X11WindowTest, SamplesThatNoFormatHasAreNotFound) {
    client.pixelFormat.sampleBuffers = 1;
    for (const int samples : {3, 999}) {
        client.pixelFormat.samples = samples;
        EXPECT_FALSE(window.Create(client, &reason)) << samples;
        EXPECT_FALSE(client.formatFound) << samples;
    }
}

TEST_F(X11WindowTest, RecreateKeepsThePlaceAndTakesWhatIsAskedNow) {
    ASSERT_TRUE(window.Create(client, &reason)) << reason;
    window.Resize(150, 60);
    client.pixelFormat.sampleBuffers = 1;
    client.pixelFormat.samples = 4;
    ASSERT_TRUE(window.Recreate());
    EXPECT_EQ(client.created, 2);
    EXPECT_EQ(client.destroyed, 1);
    EXPECT_TRUE(client.currentInOnDestroy);
    GLint samples = 0;
    glGetIntegerv(GL_SAMPLES, &samples);
    EXPECT_EQ(samples, 4);
    const WindowPlace place = host.PlaceOf(window.NativeHandle());
    EXPECT_EQ(place.parent, host.Id());
    EXPECT_EQ(place.x, 20);
    EXPECT_EQ(place.width, 150);
    EXPECT_EQ(host.ChildCount(), 1);
    client.context = {9, 9};
    EXPECT_FALSE(window.Recreate());
    EXPECT_FALSE(window.Exists());
    client.context = {3, 3};
    EXPECT_TRUE(window.Recreate()) << "a refusal is not the end";
}

// ---- size

TEST_F(X11WindowTest, AResizeHoldsAtOnceOnBothSides) {
    ASSERT_TRUE(window.Create(client, &reason)) << reason;
    ASSERT_TRUE(ComesToRest(window));
    window.Resize(300, 220);
    EXPECT_EQ(window.ClientSize().width, 300);
    EXPECT_EQ(window.ClientSize().height, 220);
    EXPECT_EQ(host.PlaceOf(window.NativeHandle()).width, 300);
    client.color = {7, 8, 9};
    window.Refresh();
    EXPECT_EQ(client.pixelInside, (Rgba{7, 8, 9})) << "at (299, 219)";
    EXPECT_EQ(host.ShownAt(20 + 299, 30), (Rgba{7, 8, 9}));
}

TEST_F(X11WindowTest, AResizeByTheHostArrivesWithTheNextRound) {
    ASSERT_TRUE(window.Create(client, &reason)) << reason;
    ASSERT_TRUE(ComesToRest(window));
    const int painted = client.painted;
    XResizeWindow(host.Display(), window.NativeHandle(), 111, 222);
    XSync(host.Display(), False);
    ASSERT_TRUE(IsReadable(window, 5000));
    ASSERT_TRUE(ComesToRest(window));
    EXPECT_EQ(window.ClientSize().width, 111);
    EXPECT_EQ(window.ClientSize().height, 222);
    EXPECT_GT(client.painted, painted);
    EXPECT_EQ(client.pixelInside, (Rgba{40, 120, 200})) << "at (110, 221)";
}

TEST_F(X11WindowTest, AResizeIsNotUndoneByAnEarlierOneOfTheHost) {
    ASSERT_TRUE(window.Create(client, &reason)) << reason;
    XResizeWindow(host.Display(), window.NativeHandle(), 111, 222);
    XSync(host.Display(), False);
    window.Resize(300, 220);
    int widthInPaint = 0;
    client.onPaint = [&] { widthInPaint = window.ClientSize().width; };
    window.ProcessEvents();
    EXPECT_EQ(widthInPaint, 300);
    EXPECT_EQ(window.ClientSize().height, 220);
}

TEST_F(X11WindowTest, ASizeOfNothingKeepsAWindowAndOneTooLargeChangesNothing) {
    ASSERT_TRUE(window.Create(client, &reason)) << reason;
    window.Resize(50, 0);
    ASSERT_TRUE(ComesToRest(window));
    EXPECT_EQ(window.ClientSize().width, 50);
    EXPECT_EQ(window.ClientSize().height, 0);
    EXPECT_EQ(host.PlaceOf(window.NativeHandle()).height, 1);
    window.Resize(32768, 10);
    EXPECT_EQ(window.ClientSize().width, 50);
    X11Window tooLarge(ChildOf(host.Id(), 10, 32768));
    DrawingClient other(tooLarge);
    EXPECT_FALSE(tooLarge.Create(other, &reason));
    EXPECT_EQ(reason, "A window of 10 x 32768 pixels is too large");
}

// ---- painting

TEST_F(X11WindowTest, ARefreshHasPaintedWhenItReturnsAndAnInvalidateHasNot) {
    ASSERT_TRUE(window.Create(client, &reason)) << reason;
    ASSERT_TRUE(ComesToRest(window));
    client.color = {200, 0, 0};
    const int painted = client.painted;
    window.Refresh();
    EXPECT_EQ(client.painted, painted + 1);
    EXPECT_EQ(host.ShownAt(120, 60), (Rgba{200, 0, 0}));

    client.color = {0, 200, 0};
    window.Invalidate(false);
    window.Invalidate(false);
    EXPECT_EQ(client.painted, painted + 1);
    EXPECT_TRUE(window.IsPaintPending());
    EXPECT_EQ(host.ShownAt(120, 60), (Rgba{200, 0, 0}));
    EXPECT_TRUE(IsReadable(window));
    window.ProcessEvents();
    EXPECT_EQ(client.painted, painted + 2) << "two requests are one paint";
    EXPECT_EQ(host.ShownAt(120, 60), (Rgba{0, 200, 0}));
    EXPECT_FALSE(client.lastErase);
    EXPECT_TRUE(ComesToRest(window));
    EXPECT_EQ(client.painted, painted + 2);
}

TEST_F(X11WindowTest, ABlockedPaintStaysPendingWithoutSpinningAndComesWhenRetried) {
    ASSERT_TRUE(window.Create(client, &reason)) << reason;
    ASSERT_TRUE(ComesToRest(window));
    client.blockPaint = true;
    client.color = {1, 100, 1};
    const int painted = client.painted;
    window.Refresh();
    window.Invalidate(true);
    EXPECT_TRUE(ComesToRest(window)) << "a blocked paint keeps the descriptor readable";
    EXPECT_TRUE(window.IsPaintPending());
    EXPECT_EQ(client.painted, painted);
    client.blockPaint = false;
    window.RetryPaint();
    EXPECT_TRUE(IsReadable(window));
    window.ProcessEvents();
    EXPECT_EQ(client.painted, painted + 1);
    EXPECT_TRUE(client.lastErase);
    EXPECT_EQ(host.ShownAt(120, 60), (Rgba{1, 100, 1}));
}

TEST_F(X11WindowTest, WhatTheHostUncoversIsPaintedAgain) {
    ASSERT_TRUE(window.Create(client, &reason)) << reason;
    ASSERT_TRUE(ComesToRest(window));
    const Window cover = XCreateSimpleWindow(host.Display(), host.Id(), 30, 40, 50, 50, 0, 0, 0xFFFF00);
    XMapRaised(host.Display(), cover);
    XSync(host.Display(), False);
    ASSERT_EQ(host.ShownAt(40, 50), (Rgba{255, 255, 0}));
    ASSERT_TRUE(ComesToRest(window));
    const int painted = client.painted;
    XDestroyWindow(host.Display(), cover);
    XSync(host.Display(), False);
    ASSERT_TRUE(IsReadable(window, 5000));
    ASSERT_TRUE(ComesToRest(window));
    EXPECT_EQ(client.painted, painted + 1);
    EXPECT_EQ(host.ShownAt(40, 50), (Rgba{40, 120, 200}));
}

TEST_F(X11WindowTest, EventsReadDuringARoundTripStillWakeTheLoop) {
    ASSERT_TRUE(window.Create(client, &reason)) << reason;
    ASSERT_TRUE(ComesToRest(window));
    XResizeWindow(host.Display(), window.NativeHandle(), 111, 222);
    XSync(host.Display(), False);
    window.BeginWaitCursor();  // Xlib reads the socket empty
    EXPECT_TRUE(IsReadable(window));
    ASSERT_TRUE(ComesToRest(window));
    EXPECT_EQ(window.ClientSize().width, 111);
}

// ---- refusals

TEST(X11WindowRefusal, NoDisplayIsToldInWords) {
    unsetenv("DISPLAY");
    std::string reason;
    X11Window window(ChildOf(1));
    DrawingClient client(window);
    EXPECT_FALSE(window.Create(client, &reason));
    EXPECT_EQ(reason, "No X display: $DISPLAY is not set");
    setenv("DISPLAY", ":59999", 1);
    EXPECT_FALSE(window.Create(client, &reason));
    EXPECT_EQ(reason, "No X display: $DISPLAY is :59999, which cannot be opened");
    PaneWindowRequest request = ChildOf(1);
    request.display = ":59998";
    X11Window named(request);
    EXPECT_FALSE(named.Create(client, &reason));
    EXPECT_EQ(reason, "No X display: :59998 cannot be opened");
    EXPECT_FALSE(named.Create(client, nullptr)) << "nobody need ask for the reason";
    EXPECT_EQ(client.created, 0);
}

TEST_F(X11WindowTest, AParentThatIsNoXWindowIsRefusedInWords) {
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

TEST_F(X11WindowTest, ATopLevelHasItsTitleAndClosesOnTheManagersRequest) {
    PaneWindowRequest request;
    request.kind = PaneWindowRequest::Kind::TopLevel;
    request.title = L"Zähne 歯";
    X11Window topLevel(request);
    DrawingClient other(topLevel);
    ASSERT_TRUE(topLevel.Create(other, &reason)) << reason;
    EXPECT_EQ(host.PlaceOf(topLevel.NativeHandle()).parent, DefaultRootWindow(host.Display()));
    EXPECT_EQ(host.TextProperty(topLevel.NativeHandle(), "_NET_WM_NAME"), "Z\xC3\xA4hne \xE6\xAD\xAF");
    ASSERT_TRUE(ComesToRest(topLevel));
    EXPECT_EQ(other.pixelInside, (Rgba{40, 120, 200})) << "640 x 480";
    host.SendDelete(topLevel.NativeHandle());
    ASSERT_TRUE(IsReadable(topLevel, 5000));
    topLevel.ProcessEvents();
    EXPECT_FALSE(topLevel.Exists());
    EXPECT_EQ(other.destroyed, 1);
    EXPECT_TRUE(other.currentInOnDestroy);
    EXPECT_FALSE(topLevel.Reparent(host.Id(), 0, 0));
}

// ---- re-parenting

TEST_F(X11WindowTest, MovesIntoAnotherParentAndGoesOnDrawing) {
    HostWindow other;
    ASSERT_TRUE(window.Create(client, &reason)) << reason;
    ASSERT_TRUE(window.Reparent(other.Id(), 3, 4));
    const WindowPlace place = host.PlaceOf(window.NativeHandle());
    EXPECT_EQ(place.parent, other.Id());
    EXPECT_EQ(place.x, 3);
    EXPECT_EQ(place.y, 4);
    ASSERT_TRUE(ComesToRest(window));
    client.color = {90, 91, 92};
    window.Refresh();
    EXPECT_EQ(other.ShownAt(3 + 100, 4 + 10), (Rgba{90, 91, 92}));
    EXPECT_FALSE(window.Reparent(0x1234, 0, 0));
    EXPECT_FALSE(window.Reparent(0x55d0c0ffee00, 0, 0));
    EXPECT_FALSE(window.Reparent(window.NativeHandle(), 0, 0)) << "into itself";
    EXPECT_EQ(host.PlaceOf(window.NativeHandle()).parent, other.Id());
    ASSERT_TRUE(window.Recreate());
    EXPECT_EQ(host.PlaceOf(window.NativeHandle()).parent, other.Id()) << "made again where it is";
    EXPECT_EQ(host.PlaceOf(window.NativeHandle()).y, 4);
}

// ---- pointer

TEST_F(X11WindowTest, CursorsFollowTheModeAndTheWaitCursorNests) {
    setenv("XCURSOR_CORE", "1", 1);  // the wait cursor of a theme moves, and is never the same twice
    ASSERT_TRUE(window.Create(client, &reason)) << reason;
    host.PointAt(window.NativeHandle());
    const unsigned long standard = host.ShownCursor();
    // The pane's connection may be served later than the host's.
    const auto becomesOtherThan = [&](unsigned long look) {
        for (int i = 0; i < 200 && host.ShownCursor() == look; ++i) usleep(10'000);
        return host.ShownCursor();
    };
    window.SetCursor(PaneCursor::Lasso);
    const unsigned long lasso = becomesOtherThan(standard);
    EXPECT_NE(lasso, standard);
    window.BeginWaitCursor();
    const unsigned long wait = becomesOtherThan(lasso);
    EXPECT_NE(wait, lasso);
    EXPECT_NE(wait, standard);
    window.BeginWaitCursor();
    window.SetCursor(PaneCursor::Default);
    window.EndWaitCursor();
    usleep(50'000);
    EXPECT_EQ(host.ShownCursor(), wait) << "one is still open";
    window.EndWaitCursor();
    EXPECT_EQ(becomesOtherThan(wait), standard);
    window.EndWaitCursor();
    window.BeginWaitCursor();
    EXPECT_EQ(becomesOtherThan(standard), wait) << "an end too many holds nothing back";
}

}  // namespace
