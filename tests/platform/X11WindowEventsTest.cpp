// Sizes and paints of a window on an X server: what the host requests, what the server reports, and in which order both
// may arrive.
#include <gtest/gtest.h>

#include "platform/X11WindowTest.h"

namespace {

// ---- size

TEST_F(X11WindowTest, ResizeIsDoneForClientAndServerWhenItReturns) {
    ASSERT_TRUE(window.Create(client, &reason)) << reason;
    ASSERT_TRUE(HandleAllEvents(host, window));
    window.Resize(300, 220);
    EXPECT_EQ(window.ClientSize().width, 300);
    EXPECT_EQ(window.ClientSize().height, 220);
    EXPECT_EQ(host.PlaceOf(window.NativeHandle()).width, 300);
    client.color = {7, 8, 9};
    window.Refresh();
    EXPECT_EQ(client.pixelInside, (Rgba{7, 8, 9})) << "at (299, 219)";
    EXPECT_EQ(host.ShownAt(20 + 299, 30), (Rgba{7, 8, 9}));
}

TEST_F(X11WindowTest, ResizeByTheHostIsAppliedAndPaintedByTheNextProcessEvents) {
    ASSERT_TRUE(window.Create(client, &reason)) << reason;
    ASSERT_TRUE(HandleAllEvents(host, window));
    const int painted = client.painted;
    host.Resize(window.NativeHandle(), 111, 222);
    ASSERT_TRUE(BecomesReadable(window));
    ASSERT_TRUE(HandleAllEvents(host, window));
    EXPECT_EQ(window.ClientSize().width, 111);
    EXPECT_EQ(window.ClientSize().height, 222);
    EXPECT_GT(client.painted, painted);
    EXPECT_EQ(client.pixelInside, (Rgba{40, 120, 200})) << "at (110, 221)";
}

TEST_F(X11WindowTest, ResizeIsNotUndoneByAnEarlierOneOfTheHost) {
    ASSERT_TRUE(window.Create(client, &reason)) << reason;
    host.Resize(window.NativeHandle(), 111, 222);
    window.Resize(300, 220);
    int widthInPaint = 0;
    client.onPaint = [&] { widthInPaint = window.ClientSize().width; };
    window.ProcessEvents();
    EXPECT_EQ(widthInPaint, 300);
    EXPECT_EQ(window.ClientSize().height, 220);
}

TEST_F(X11WindowTest, HandlerCalledBetweenTwoResizeEventsSeesTheLaterSize) {
    ASSERT_TRUE(window.Create(client, &reason)) << reason;
    ASSERT_TRUE(HandleAllEvents(host, window));
    host.Resize(window.NativeHandle(), 111, 222);
    host.SendMove(window.NativeHandle(), 5, 5);
    window.Resize(300, 220);
    int width = 0;
    client.onMouse = [&](const KV_ScenePane::MouseInput&) { width = window.ClientSize().width; };
    window.ProcessEvents();
    ASSERT_EQ(client.mouse.size(), 1u);
    EXPECT_EQ(width, 300);
}

TEST_F(X11WindowTest, FrameHasTheSizeWhoseEventIsStillQueued) {
    ASSERT_TRUE(window.Create(client, &reason)) << reason;
    ASSERT_TRUE(HandleAllEvents(host, window));
    host.Resize(window.NativeHandle(), 111, 222);
    ASSERT_TRUE(BecomesReadable(window));
    client.color = {7, 8, 9};
    window.Refresh();
    EXPECT_EQ(window.ClientSize().width, 111);
    EXPECT_EQ(window.ClientSize().height, 222);
    EXPECT_EQ(client.pixelInside, (Rgba{7, 8, 9})) << "at (110, 221)";
    EXPECT_EQ(host.ShownAt(20 + 110, 30), (Rgba{7, 8, 9}));
    EXPECT_EQ(host.ShownAt(20 + 9, 30 + 221), (Rgba{255, 255, 255})) << "the square is at the new lower left";
    EXPECT_TRUE(IsReadable(window)) << "the event itself is still to be handled";
}

TEST_F(X11WindowTest, SizeOfZeroHasAWindowAndATooLargeSizeChangesNothing) {
    ASSERT_TRUE(window.Create(client, &reason)) << reason;
    window.Resize(50, 0);
    ASSERT_TRUE(HandleAllEvents(host, window));
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

TEST_F(X11WindowTest, RefreshHasPaintedWhenItReturnsAndInvalidateHasNot) {
    ASSERT_TRUE(window.Create(client, &reason)) << reason;
    ASSERT_TRUE(HandleAllEvents(host, window));
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
    EXPECT_EQ(client.painted, painted + 2) << "two requests are coalesced";
    EXPECT_EQ(host.ShownAt(120, 60), (Rgba{0, 200, 0}));
    EXPECT_FALSE(client.lastErase);
    EXPECT_TRUE(HandleAllEvents(host, window));
    EXPECT_EQ(client.painted, painted + 2);
}

TEST_F(X11WindowTest, BlockedPaintStaysPendingWithoutWakingTheLoopAndIsDoneWhenRetried) {
    ASSERT_TRUE(window.Create(client, &reason)) << reason;
    ASSERT_TRUE(HandleAllEvents(host, window));
    client.blockPaint = true;
    client.color = {1, 100, 1};
    const int painted = client.painted;
    window.Refresh();
    window.Invalidate(true);
    EXPECT_TRUE(HandleAllEvents(host, window)) << "a blocked paint keeps the descriptor readable";
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

TEST_F(X11WindowTest, ExposedPartIsPaintedAgain) {
    ASSERT_TRUE(window.Create(client, &reason)) << reason;
    ASSERT_TRUE(HandleAllEvents(host, window));
    const Window cover = XCreateSimpleWindow(host.Display(), host.Id(), 30, 40, 50, 50, 0, 0, 0xFFFF00);
    XMapRaised(host.Display(), cover);
    XSync(host.Display(), False);
    ASSERT_EQ(host.ShownAt(40, 50), (Rgba{255, 255, 0}));
    ASSERT_TRUE(HandleAllEvents(host, window));
    const int painted = client.painted;
    XDestroyWindow(host.Display(), cover);
    XSync(host.Display(), False);
    ASSERT_TRUE(BecomesReadable(window));
    ASSERT_TRUE(HandleAllEvents(host, window));
    EXPECT_EQ(client.painted, painted + 1);
    EXPECT_EQ(host.ShownAt(40, 50), (Rgba{40, 120, 200}));
}

TEST_F(X11WindowTest, ExposureHandledInsideAPaintWakesTheLoop) {
    ASSERT_TRUE(window.Create(client, &reason)) << reason;
    ASSERT_TRUE(HandleAllEvents(host, window));
    const int painted = client.painted;
    client.onPaint = [&] {
        if (client.painted != painted + 1) return;
        XClearArea(host.Display(), window.NativeHandle(), 0, 0, 0, 0, True);  // exposes the whole window
        EXPECT_TRUE(HandleAllEvents(host, window));
        EXPECT_EQ(client.painted, painted + 1) << "no paint inside a paint";
    };
    window.Refresh();
    EXPECT_TRUE(window.IsPaintPending());
    EXPECT_TRUE(IsReadable(window));
    ASSERT_TRUE(HandleAllEvents(host, window));
    EXPECT_EQ(client.painted, painted + 2);
}

TEST_F(X11WindowTest, EventsThatXlibReadDuringARequestWakeTheLoop) {
    ASSERT_TRUE(window.Create(client, &reason)) << reason;
    ASSERT_TRUE(HandleAllEvents(host, window));
    host.Resize(window.NativeHandle(), 111, 222);
    window.BeginWaitCursor();  // Xlib reads the socket empty
    EXPECT_TRUE(IsReadable(window));
    ASSERT_TRUE(HandleAllEvents(host, window));
    EXPECT_EQ(window.ClientSize().width, 111);
}

}  // namespace
