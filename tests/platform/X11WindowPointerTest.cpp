// A window of an X server under a pointer: what its presses, drags and releases become.
#include "platform/X11WindowInput.h"

// After the others, whose names its macros would replace.
#include <X11/keysym.h>

namespace {

TEST_F(X11WindowInputTest, FlagsOfAPressContainItsButtonAndThoseOfAReleaseDoNot) {
    user.MoveTo(50, 60);
    EXPECT_EQ(MouseInputs(), (Mouse{{Kind::Move, 0, 50, 60}}));
    user.Press(kLeft);
    EXPECT_EQ(MouseInputs(), (Mouse{{Kind::LeftDown, 1, 50, 60}}));
    user.MoveTo(51, 62);
    EXPECT_EQ(MouseInputs(), (Mouse{{Kind::Move, 1, 51, 62}}));
    user.Press(kRight);
    EXPECT_EQ(MouseInputs(), (Mouse{{Kind::RightDown, 1 | 2, 51, 62}}));
    user.Press(kMiddle);
    EXPECT_EQ(MouseInputs(), (Mouse{{Kind::MiddleDown, 1 | 2 | 16, 51, 62}}));
    user.Release(kLeft);
    EXPECT_EQ(MouseInputs(), (Mouse{{Kind::LeftUp, 2 | 16, 51, 62}}));
    user.MoveTo(0, 0);
    EXPECT_EQ(MouseInputs(), (Mouse{{Kind::Move, 2 | 16, 0, 0}}));
    user.Release(kRight);
    user.Release(kMiddle);
    EXPECT_EQ(MouseInputs(), (Mouse{{Kind::RightUp, 16, 0, 0}, {Kind::MiddleUp, 0, 0, 0}}));
}

TEST_F(X11WindowInputTest, ShiftAndCtrlAreInTheFlagsOfPressMoveReleaseAndWheel) {
    user.MoveTo(10, 10);
    (void)MouseInputs();
    user.PressKey(XK_Shift_L);
    user.Press(kRight);
    user.PressKey(XK_Control_R);
    user.MoveTo(20, 10);
    user.ReleaseKey(XK_Shift_L);
    user.Click(4);
    user.Release(kRight);
    EXPECT_EQ(MouseInputs(), (Mouse{{Kind::RightDown, 2 | 4, 10, 10},
                                    {Kind::Move, 2 | 4 | 8, 20, 10},
                                    {Kind::Wheel, 2 | 8, 20, 10, 120},
                                    {Kind::RightUp, 8, 20, 10}}));
}

TEST_F(X11WindowInputTest, WheelEventsAreNotchesOf120AndDoNotRequestTheFocus) {
    user.MoveTo(10, 10);
    (void)MouseInputs();
    for (const unsigned button : {4u, 4u, 5u, 6u, 7u}) user.Click(button);
    EXPECT_EQ(MouseInputs(),
              (Mouse{{Kind::Wheel, 0, 10, 10, 120}, {Kind::Wheel, 0, 10, 10, 120}, {Kind::Wheel, 0, 10, 10, -120}}));
    EXPECT_NE(FocusedWindow(), window.NativeHandle()) << "the wheel does not request the focus";
}

TEST_F(X11WindowInputTest, SecondPressOfTheLeftButtonIsReportedAsDoubleClickOnly) {
    user.MoveTo(70, 80);
    (void)MouseInputs();
    user.Clicks(kLeft, 3);
    const MouseInput press{Kind::LeftDown, 1, 70, 80}, release{Kind::LeftUp, 0, 70, 80};
    EXPECT_EQ(MouseInputs(), (Mouse{press, release, {Kind::DoubleClick, 1, 70, 80}, release, press, release}));
    user.Clicks(kRight, 2);
    const MouseInput rightPress{Kind::RightDown, 2, 70, 80}, rightRelease{Kind::RightUp, 0, 70, 80};
    EXPECT_EQ(MouseInputs(), (Mouse{rightPress, rightRelease, rightPress, rightRelease}));
}

TEST_F(X11WindowInputTest, TwoClicksAreADoubleClickByTheTimesOfTheServer) {
    const MouseInput press{Kind::LeftDown, 1, 70, 80}, release{Kind::LeftUp, 0, 70, 80};
    host.SendClick(window.NativeHandle(), kLeft, 70, 80, 10'000);
    host.SendClick(window.NativeHandle(), kLeft, 70, 80, 10'501);
    EXPECT_EQ(MouseInputs(), (Mouse{press, release, press, release})) << "too slow";
    host.SendClick(window.NativeHandle(), kLeft, 70, 80, 11'001);
    EXPECT_EQ(MouseInputs(), (Mouse{{Kind::DoubleClick, 1, 70, 80}, release}));
}

TEST_F(X11WindowInputTest, QueuedMovesAreCoalescedUpToTheNextPress) {
    for (int x = 0; x <= 100; ++x) user.MoveTo(x, 40);
    user.Press(kLeft);
    for (int x = 100; x >= 30; --x) user.MoveTo(x, 41);
    user.Release(kLeft);
    for (int x = 30; x <= 60; ++x) user.MoveTo(x, 42);
    window.ProcessEvents();
    EXPECT_EQ(MouseInputs(), (Mouse{{Kind::Move, 0, 100, 40},
                                    {Kind::LeftDown, 1, 100, 40},
                                    {Kind::Move, 1, 30, 41},
                                    {Kind::LeftUp, 0, 30, 41},
                                    {Kind::Move, 0, 60, 42}}));
}

TEST_F(X11WindowInputTest, DragContinuesOutsideTheWindowAndMayEndThere) {
    user.MoveTo(50, 50);
    user.Press(kLeft);
    (void)MouseInputs();
    user.MoveTo(300, -25);
    EXPECT_EQ(MouseInputs(), (Mouse{{Kind::Move, 1, 300, -25}}));
    user.MoveTo(-15, 200);
    user.Release(kLeft);
    EXPECT_EQ(MouseInputs(), (Mouse{{Kind::Move, 1, -15, 200}, {Kind::LeftUp, 0, -15, 200}}));
    user.MoveTo(300, 200);
    EXPECT_EQ(MouseInputs(), Mouse{}) << "no button is held";
}

TEST_F(X11WindowInputTest, CaptureAfterTheReleaseDoesNotGrabThePointer) {
    client.onMouse = [&](const MouseInput& input) {
        if (input.kind == Kind::LeftDown) window.SetCapture();
    };
    user.MoveTo(50, 50);
    user.Press(kLeft);
    (void)MouseInputs();
    EXPECT_FALSE(host.CanGrabPointer());
    user.Release(kLeft);
    EXPECT_TRUE(host.CanGrabPointer()) << "also while the viewer is busy";
    (void)MouseInputs();
    EXPECT_TRUE(window.HasCapture());
    EXPECT_TRUE(host.CanGrabPointer());
    user.MoveTo(300, 200);
    EXPECT_EQ(MouseInputs(), Mouse{});
    user.MoveTo(60, 60);
    user.Press(kRight);
    user.MoveTo(300, 200);
    user.Release(kRight);
    EXPECT_EQ(MouseInputs(), (Mouse{{Kind::Move, 0, 60, 60},
                                    {Kind::RightDown, 2, 60, 60},
                                    {Kind::Move, 2, 300, 200},
                                    {Kind::RightUp, 0, 300, 200}}))
        << "the next drag continues outside as well";
    EXPECT_TRUE(host.CanGrabPointer());
}

TEST_F(X11WindowInputTest, CaptureWithoutAButtonDoesNotGrabThePointer) {
    window.SetCapture();
    EXPECT_TRUE(window.HasCapture());
    EXPECT_TRUE(host.CanGrabPointer());
    window.ReleaseCapture();
    EXPECT_FALSE(window.HasCapture());
}

/// As the viewer's handlers do: any release ends the capture, also that of the first of two buttons.
struct X11WindowCaptureTest : X11WindowInputTest {
    void SetUp() override {
        X11WindowInputTest::SetUp();
        client.onMouse = [&](const MouseInput& input) {
            if (input.kind == Kind::LeftDown || input.kind == Kind::RightDown) window.SetCapture();
            if (input.kind == Kind::LeftUp || input.kind == Kind::RightUp) window.ReleaseCapture();
        };
    }
};

TEST_F(X11WindowCaptureTest, ReleasedWhileAnotherButtonIsHeldLosesNoMoveAndNoRelease) {
    user.MoveTo(50, 50);
    user.Press(kRight);
    user.Press(kLeft);
    user.Release(kLeft);
    (void)MouseInputs();
    EXPECT_FALSE(window.HasCapture());
    user.MoveTo(300, 200);
    EXPECT_EQ(MouseInputs(), (Mouse{{Kind::Move, 2, 300, 200}}));
    user.Release(kRight);
    EXPECT_EQ(MouseInputs(), (Mouse{{Kind::RightUp, 0, 300, 200}}));
    EXPECT_TRUE(host.CanGrabPointer());
    user.MoveTo(301, 200);
    EXPECT_EQ(MouseInputs(), Mouse{});
}

TEST_F(X11WindowCaptureTest, ReleasedByTheHostDuringADragDoesNotAffectTheNextPress) {
    client.onMouse = [&](const MouseInput& input) {
        if (input.kind == Kind::LeftDown || input.kind == Kind::RightDown) window.SetCapture();
    };
    user.MoveTo(50, 50);
    user.Press(kLeft);
    (void)MouseInputs();
    window.ReleaseCapture();
    EXPECT_FALSE(window.HasCapture());
    user.MoveTo(300, 200);
    user.Release(kLeft);
    user.MoveTo(60, 60);
    EXPECT_EQ(MouseInputs(), (Mouse{{Kind::Move, 1, 300, 200}, {Kind::LeftUp, 0, 300, 200}, {Kind::Move, 0, 60, 60}}));
    EXPECT_TRUE(host.CanGrabPointer());
    user.Press(kRight);
    EXPECT_EQ(MouseInputs(), (Mouse{{Kind::RightDown, 2, 60, 60}}));
    EXPECT_TRUE(window.HasCapture());
}

TEST_F(X11WindowCaptureTest, WindowHiddenDuringADragReleasesItsButtonAndStartsTheNextDrag) {
    user.MoveTo(50, 50);
    user.Press(kLeft);
    (void)MouseInputs();
    XUnmapWindow(host.Display(), window.NativeHandle());
    XSync(host.Display(), False);
    EXPECT_EQ(MouseInputs(), (Mouse{{Kind::LeftUp, 0, 50, 50}})) << "X sends no release";
    EXPECT_FALSE(window.HasCapture());
    user.Release(kLeft);
    XMapWindow(host.Display(), window.NativeHandle());
    XSync(host.Display(), False);
    EXPECT_EQ(MouseInputs(), Mouse{});
    user.MoveTo(80, 50);
    user.Press(kLeft);
    EXPECT_EQ(MouseInputs(), (Mouse{{Kind::Move, 0, 80, 50}, {Kind::LeftDown, 1, 80, 50}}));
    user.MoveTo(300, 50);
    EXPECT_EQ(MouseInputs(), (Mouse{{Kind::Move, 1, 300, 50}}));
    EXPECT_TRUE(window.HasCapture());
}

TEST_F(X11WindowCaptureTest, HostHiddenDuringADragGetsTheReleaseWithTheNextMove) {
    user.MoveTo(50, 50);
    user.Press(kLeft);
    (void)MouseInputs();
    XUnmapWindow(host.Display(), host.Id());
    user.Release(kLeft);
    user.MoveTo(80, 50);
    XMapWindow(host.Display(), host.Id());
    XSync(host.Display(), False);
    (void)MouseInputs();
    EXPECT_TRUE(host.CanGrabPointer());
    user.MoveTo(81, 50);
    user.Press(kRight);
    EXPECT_EQ(MouseInputs(), (Mouse{{Kind::LeftUp, 0, 50, 50}, {Kind::Move, 0, 81, 50}, {Kind::RightDown, 2, 81, 50}}));
    user.MoveTo(300, 50);
    user.Release(kRight);
    EXPECT_EQ(MouseInputs(), (Mouse{{Kind::Move, 2, 300, 50}, {Kind::RightUp, 0, 300, 50}}));
    EXPECT_TRUE(host.CanGrabPointer());
}

TEST_F(X11WindowCaptureTest, WindowHiddenWithTwoButtonsHeldReleasesBothOnce) {
    user.MoveTo(50, 50);
    user.PressKey(XK_Shift_L);
    user.Press(kRight);
    user.Press(kLeft);
    user.MoveTo(60, 55);
    (void)MouseInputs();
    XUnmapWindow(host.Display(), window.NativeHandle());
    XMapWindow(host.Display(), window.NativeHandle());
    XSync(host.Display(), False);
    EXPECT_EQ(MouseInputs(), (Mouse{{Kind::LeftUp, 2 | 4, 60, 55}, {Kind::RightUp, 4, 60, 55}}));
    user.Release(kLeft);
    user.Release(kRight);
    EXPECT_EQ(MouseInputs(), Mouse{}) << "both were reported";
}

TEST_F(X11WindowCaptureTest, DragContinuesInARecreatedWindow) {
    user.MoveTo(50, 50);
    user.Press(kLeft);
    (void)MouseInputs();
    ASSERT_TRUE(window.Recreate());
    (void)MouseInputs();
    user.MoveTo(70, 60);
    user.Release(kLeft);
    EXPECT_EQ(MouseInputs(), (Mouse{{Kind::Move, 1, 70, 60}, {Kind::LeftUp, 0, 70, 60}}));
}

TEST_F(X11WindowCaptureTest, ProcessEventsInTheHandlerOfALostReleaseKeepsTheOrder) {
    user.MoveTo(50, 50);
    user.Press(kLeft);
    (void)MouseInputs();
    XUnmapWindow(host.Display(), host.Id());
    user.Release(kLeft);
    XMapWindow(host.Display(), host.Id());
    XSync(host.Display(), False);
    client.onMouse = [&](const MouseInput& input) {
        if (input.kind == Kind::LeftUp && input.x == 50) window.ProcessEvents();
    };
    user.Press(kRight);
    user.MoveTo(80, 50);
    user.Release(kRight);
    EXPECT_EQ(MouseInputs(), (Mouse{{Kind::LeftUp, 0, 50, 50},
                                    {Kind::RightDown, 2, 50, 50},
                                    {Kind::Move, 2, 80, 50},
                                    {Kind::RightUp, 0, 80, 50}}));
}

TEST_F(X11WindowCaptureTest, HandlerOfALostReleaseMayDestroyTheWindow) {
    user.MoveTo(50, 50);
    user.Press(kLeft);
    user.Press(kRight);
    (void)MouseInputs();
    client.onMouse = [&](const MouseInput&) { window.Destroy(); };
    XUnmapWindow(host.Display(), window.NativeHandle());
    XSync(host.Display(), False);
    EXPECT_EQ(MouseInputs(), (Mouse{{Kind::LeftUp, 2, 50, 50}})) << "no client is left for the right button";
    EXPECT_FALSE(window.Exists());
}

// ---- handlers that destroy or recreate the window

TEST_F(X11WindowInputTest, HandlerMayDestroyTheWindowWhileEventsAreQueued) {
    client.onMouse = [&](const MouseInput& input) {
        if (input.kind == Kind::LeftDown) window.Destroy();
    };
    user.MoveTo(50, 50);
    user.Click(kLeft);
    user.Click(kRight);
    HandleAll();
    EXPECT_FALSE(window.Exists());
    EXPECT_EQ(client.destroyed, 1);
    EXPECT_EQ(client.mouse.back().kind, Kind::LeftDown);
}

TEST_F(X11WindowInputTest, HandlerMayRecreateTheWindowAndTheNextProcessEventsReturns) {
    bool recreated = false;
    client.onMouse = [&](const MouseInput& input) {
        recreated = recreated || (input.kind == Kind::LeftDown && window.Recreate());
    };
    user.MoveTo(50, 50);
    user.Click(kLeft);
    for (int i = 0; i < 20; ++i) user.Click(kRight);
    HandleAll();
    EXPECT_TRUE(recreated);
    EXPECT_EQ(client.created, 2);
    client.mouse.clear();
    user.MoveTo(60, 60);
    user.Click(kRight);
    EXPECT_EQ(MouseInputs(), (Mouse{{Kind::LeftUp, 0, 50, 50},
                                    {Kind::Move, 0, 60, 60},
                                    {Kind::RightDown, 2, 60, 60},
                                    {Kind::RightUp, 0, 60, 60}}))
        << "the release was sent to the former window";
    user.Type(XK_Tab);
    EXPECT_EQ(KeyInputs().size(), 2u);
}

TEST_F(X11WindowInputTest, HandlerThatThrowsLosesNeitherLaterInputNorAnExposure) {
    HandleAll();
    const int paintedBefore = client.painted;
    client.onMouse = [](const MouseInput& input) {
        if (input.kind == Kind::LeftDown) throw std::runtime_error("handler");
    };
    user.MoveTo(50, 50);
    HandleAll();
    client.mouse.clear();
    XClearArea(host.Display(), window.NativeHandle(), 0, 0, 0, 0, True);  // an exposure, before the press
    host.Sync();
    user.Click(kLeft);
    EXPECT_TRUE(BecomesReadable(window));
    const bool thrown = WaitUntil([&] {
        try {
            window.ProcessEvents();
        } catch (const std::runtime_error&) {
            return true;
        }
        return false;
    });
    EXPECT_TRUE(thrown);
    EXPECT_TRUE(IsReadable(window));
    EXPECT_EQ(MouseInputs(), (Mouse{{Kind::LeftDown, 1, 50, 50}, {Kind::LeftUp, 0, 50, 50}}));
    EXPECT_GT(client.painted, paintedBefore);
}

// A release that the server could not deliver arrives together with the next event: two inputs of one event.
TEST_F(X11WindowInputTest, HandlerThatThrowsLosesNoInputOfTheSameEvent) {
    user.MoveTo(50, 50);
    user.Press(kLeft);
    HandleAll();
    client.mouse.clear();
    client.onMouse = [](const MouseInput& input) {
        if (input.kind == Kind::LeftUp) throw std::runtime_error("handler");
    };
    host.SendMove(window.NativeHandle(), 60, 60);  // without the button in its state
    EXPECT_TRUE(BecomesReadable(window));
    EXPECT_THROW(window.ProcessEvents(), std::runtime_error);
    EXPECT_EQ(client.mouse.size(), 1u);
    EXPECT_TRUE(IsReadable(window));
    window.ProcessEvents();
    ASSERT_GE(client.mouse.size(), 2u) << "it would wait for the next event of the pointer";
    EXPECT_EQ(client.mouse[1].kind, Kind::Move);
}

TEST_F(X11WindowInputTest, HandlerMayCallProcessEventsAndTheOrderIsKept) {
    client.onMouse = [&](const MouseInput& input) {
        if (input.kind == Kind::LeftDown) window.ProcessEvents();
    };
    user.MoveTo(50, 50);
    user.Click(kLeft);
    user.Click(kRight);
    user.Click(kMiddle);
    Mouse mouse = MouseInputs();
    std::vector<Kind> kinds;
    for (const MouseInput& input : mouse) kinds.push_back(input.kind);
    EXPECT_EQ(kinds, (std::vector{Kind::Move, Kind::LeftDown, Kind::LeftUp, Kind::RightDown, Kind::RightUp,
                                  Kind::MiddleDown, Kind::MiddleUp}));
}

}  // namespace
