// The real window under a real pointer: what its presses, drags and releases become.
#include <unistd.h>

#include "platform/X11WindowInput.h"

// After the others: its macros take the names of theirs.
#include <X11/keysym.h>

namespace {

TEST_F(X11WindowInputTest, APressHasItsButtonInItsWordAndAReleaseHasNot) {
    hands.MoveTo(50, 60);
    EXPECT_EQ(TakeMouse(), (Mouse{{Kind::Move, 0, 50, 60}}));
    hands.Press(kLeft);
    EXPECT_EQ(TakeMouse(), (Mouse{{Kind::LeftDown, 1, 50, 60}}));
    hands.MoveTo(51, 62);
    EXPECT_EQ(TakeMouse(), (Mouse{{Kind::Move, 1, 51, 62}}));
    hands.Press(kRight);
    EXPECT_EQ(TakeMouse(), (Mouse{{Kind::RightDown, 1 | 2, 51, 62}}));
    hands.Press(kMiddle);
    EXPECT_EQ(TakeMouse(), (Mouse{{Kind::MiddleDown, 1 | 2 | 16, 51, 62}}));
    hands.Release(kLeft);
    EXPECT_EQ(TakeMouse(), (Mouse{{Kind::LeftUp, 2 | 16, 51, 62}}));
    hands.MoveTo(0, 0);
    EXPECT_EQ(TakeMouse(), (Mouse{{Kind::Move, 2 | 16, 0, 0}}));
    hands.Release(kRight);
    hands.Release(kMiddle);
    EXPECT_EQ(TakeMouse(), (Mouse{{Kind::RightUp, 16, 0, 0}, {Kind::MiddleUp, 0, 0, 0}}));
}

TEST_F(X11WindowInputTest, ShiftAndCtrlAreInTheWordOfPressMoveReleaseAndWheel) {
    hands.MoveTo(10, 10);
    (void)TakeMouse();
    hands.PressKey(XK_Shift_L);
    hands.Press(kRight);
    hands.PressKey(XK_Control_R);
    hands.MoveTo(20, 10);
    hands.ReleaseKey(XK_Shift_L);
    hands.Click(4);
    hands.Release(kRight);
    EXPECT_EQ(TakeMouse(), (Mouse{{Kind::RightDown, 2 | 4, 10, 10},
                                  {Kind::Move, 2 | 4 | 8, 20, 10},
                                  {Kind::Wheel, 2 | 8, 20, 10, 120},
                                  {Kind::RightUp, 8, 20, 10}}));
}

TEST_F(X11WindowInputTest, TheWheelTurnsInNotches) {
    hands.MoveTo(10, 10);
    (void)TakeMouse();
    hands.Click(4);
    hands.Click(4);
    hands.Click(5);
    hands.Click(6);
    hands.Click(7);
    EXPECT_EQ(TakeMouse(),
              (Mouse{{Kind::Wheel, 0, 10, 10, 120}, {Kind::Wheel, 0, 10, 10, 120}, {Kind::Wheel, 0, 10, 10, -120}}));
    EXPECT_NE(FocusedWindow(), window.NativeHandle()) << "the wheel does not take the focus";
}

TEST_F(X11WindowInputTest, TheSecondPressOfTheLeftButtonArrivesAsDoubleClickOnly) {
    hands.MoveTo(70, 80);
    (void)TakeMouse();
    for (int i = 0; i < 3; ++i) hands.Click(kLeft);
    const MouseInput press{Kind::LeftDown, 1, 70, 80}, release{Kind::LeftUp, 0, 70, 80};
    EXPECT_EQ(TakeMouse(), (Mouse{press, release, {Kind::DoubleClick, 1, 70, 80}, release, press, release}));
    for (int i = 0; i < 2; ++i) hands.Click(kRight);
    const MouseInput rightPress{Kind::RightDown, 2, 70, 80}, rightRelease{Kind::RightUp, 0, 70, 80};
    EXPECT_EQ(TakeMouse(), (Mouse{rightPress, rightRelease, rightPress, rightRelease}));
}

TEST_F(X11WindowInputTest, TwoSlowClicksAreNoDoubleClick) {
    hands.MoveTo(70, 80);
    (void)TakeMouse();
    hands.Click(kLeft);
    usleep(650'000);
    hands.Click(kLeft);
    const MouseInput press{Kind::LeftDown, 1, 70, 80}, release{Kind::LeftUp, 0, 70, 80};
    EXPECT_EQ(TakeMouse(), (Mouse{press, release, press, release}));
}

TEST_F(X11WindowInputTest, MovesThatWaitTogetherAreOneUpToTheNextPress) {
    for (int x = 0; x <= 100; ++x) hands.MoveTo(x, 40);
    hands.Press(kLeft);
    for (int x = 100; x >= 30; --x) hands.MoveTo(x, 41);
    hands.Release(kLeft);
    for (int x = 30; x <= 60; ++x) hands.MoveTo(x, 42);
    window.ProcessEvents();
    EXPECT_EQ(TakeMouse(), (Mouse{{Kind::Move, 0, 100, 40},
                                  {Kind::LeftDown, 1, 100, 40},
                                  {Kind::Move, 1, 30, 41},
                                  {Kind::LeftUp, 0, 30, 41},
                                  {Kind::Move, 0, 60, 42}}));
}

TEST_F(X11WindowInputTest, ADragGoesOnOutsideTheWindowAndEndsThere) {
    hands.MoveTo(50, 50);
    hands.Press(kLeft);
    (void)TakeMouse();
    hands.MoveTo(300, -25);
    EXPECT_EQ(TakeMouse(), (Mouse{{Kind::Move, 1, 300, -25}}));
    hands.MoveTo(-15, 200);
    hands.Release(kLeft);
    EXPECT_EQ(TakeMouse(), (Mouse{{Kind::Move, 1, -15, 200}, {Kind::LeftUp, 0, -15, 200}}));
    hands.MoveTo(300, 200);
    EXPECT_EQ(TakeMouse(), Mouse{}) << "nothing is held";
}

TEST_F(X11WindowInputTest, ACaptureThatOutlastsTheReleaseLeavesThePointerToTheOthers) {
    client.onMouse = [&](const MouseInput& input) {
        if (input.kind == Kind::LeftDown) window.SetCapture();
    };
    hands.MoveTo(50, 50);
    hands.Press(kLeft);
    (void)TakeMouse();
    EXPECT_FALSE(host.CanGrabPointer());
    hands.Release(kLeft);
    EXPECT_TRUE(host.CanGrabPointer()) << "a viewer that is busy keeps nobody waiting";
    (void)TakeMouse();
    EXPECT_TRUE(window.HasCapture());
    EXPECT_TRUE(host.CanGrabPointer());
    hands.MoveTo(300, 200);
    EXPECT_EQ(TakeMouse(), Mouse{});
    hands.MoveTo(60, 60);
    hands.Press(kRight);
    hands.MoveTo(300, 200);
    hands.Release(kRight);
    EXPECT_EQ(TakeMouse(), (Mouse{{Kind::Move, 0, 60, 60},
                                  {Kind::RightDown, 2, 60, 60},
                                  {Kind::Move, 2, 300, 200},
                                  {Kind::RightUp, 0, 300, 200}}))
        << "the next drag goes on outside all the same";
    EXPECT_TRUE(host.CanGrabPointer());
}

TEST_F(X11WindowInputTest, ACaptureWithoutAButtonIsANoteOnly) {
    window.SetCapture();
    EXPECT_TRUE(window.HasCapture());
    EXPECT_TRUE(host.CanGrabPointer());
    window.ReleaseCapture();
    EXPECT_FALSE(window.HasCapture());
}

/// As the handlers do it: any release gives the capture back, also that of the first of two buttons.
struct X11WindowCaptureTest : X11WindowInputTest {
    void SetUp() override {
        X11WindowInputTest::SetUp();
        client.onMouse = [&](const MouseInput& input) {
            if (input.kind == Kind::LeftDown || input.kind == Kind::RightDown) window.SetCapture();
            if (input.kind == Kind::LeftUp || input.kind == Kind::RightUp) window.ReleaseCapture();
        };
    }
};

TEST_F(X11WindowCaptureTest, GivenBackWhileAnotherButtonIsHeldLosesNoMoveAndNoRelease) {
    hands.MoveTo(50, 50);
    hands.Press(kRight);
    hands.Press(kLeft);
    hands.Release(kLeft);
    (void)TakeMouse();
    EXPECT_FALSE(window.HasCapture());
    hands.MoveTo(300, 200);
    EXPECT_EQ(TakeMouse(), (Mouse{{Kind::Move, 2, 300, 200}}));
    hands.Release(kRight);
    EXPECT_EQ(TakeMouse(), (Mouse{{Kind::RightUp, 0, 300, 200}}));
    EXPECT_TRUE(host.CanGrabPointer());
    hands.MoveTo(301, 200);
    EXPECT_EQ(TakeMouse(), Mouse{});
}

TEST_F(X11WindowCaptureTest, GivenBackByTheHostDuringADragDoesNotBreakTheNextPress) {
    client.onMouse = [&](const MouseInput& input) {
        if (input.kind == Kind::LeftDown || input.kind == Kind::RightDown) window.SetCapture();
    };
    hands.MoveTo(50, 50);
    hands.Press(kLeft);
    (void)TakeMouse();
    window.ReleaseCapture();
    EXPECT_FALSE(window.HasCapture());
    hands.MoveTo(300, 200);
    hands.Release(kLeft);
    hands.MoveTo(60, 60);
    EXPECT_EQ(TakeMouse(), (Mouse{{Kind::Move, 1, 300, 200}, {Kind::LeftUp, 0, 300, 200}, {Kind::Move, 0, 60, 60}}));
    EXPECT_TRUE(host.CanGrabPointer());
    hands.Press(kRight);
    EXPECT_EQ(TakeMouse(), (Mouse{{Kind::RightDown, 2, 60, 60}}));
    EXPECT_TRUE(window.HasCapture());
}

TEST_F(X11WindowCaptureTest, AWindowThatIsHiddenDuringADragIsReadyForTheNext) {
    hands.MoveTo(50, 50);
    hands.Press(kLeft);
    (void)TakeMouse();
    XUnmapWindow(host.Display(), window.NativeHandle());
    XSync(host.Display(), False);
    EXPECT_EQ(TakeMouse(), (Mouse{{Kind::LeftUp, 0, 50, 50}})) << "X sends none";
    EXPECT_FALSE(window.HasCapture());
    hands.Release(kLeft);
    XMapWindow(host.Display(), window.NativeHandle());
    XSync(host.Display(), False);
    EXPECT_EQ(TakeMouse(), Mouse{});
    hands.MoveTo(80, 50);
    hands.Press(kLeft);
    EXPECT_EQ(TakeMouse(), (Mouse{{Kind::Move, 0, 80, 50}, {Kind::LeftDown, 1, 80, 50}}));
    hands.MoveTo(300, 50);
    EXPECT_EQ(TakeMouse(), (Mouse{{Kind::Move, 1, 300, 50}}));
    EXPECT_TRUE(window.HasCapture());
}

TEST_F(X11WindowCaptureTest, AHostThatIsHiddenDuringADragFindsThePaneReadyForTheNext) {
    hands.MoveTo(50, 50);
    hands.Press(kLeft);
    (void)TakeMouse();
    XUnmapWindow(host.Display(), host.Id());
    hands.Release(kLeft);
    hands.MoveTo(80, 50);
    XMapWindow(host.Display(), host.Id());
    XSync(host.Display(), False);
    (void)TakeMouse();
    EXPECT_TRUE(host.CanGrabPointer());
    hands.MoveTo(81, 50);
    hands.Press(kRight);
    EXPECT_EQ(TakeMouse(), (Mouse{{Kind::LeftUp, 0, 50, 50}, {Kind::Move, 0, 81, 50}, {Kind::RightDown, 2, 81, 50}}));
    hands.MoveTo(300, 50);
    hands.Release(kRight);
    EXPECT_EQ(TakeMouse(), (Mouse{{Kind::Move, 2, 300, 50}, {Kind::RightUp, 0, 300, 50}}));
    EXPECT_TRUE(host.CanGrabPointer());
}

TEST_F(X11WindowCaptureTest, AWindowHiddenWithTwoButtonsHeldReleasesBothAndTheirOwnReleasesAreNone) {
    hands.MoveTo(50, 50);
    hands.PressKey(XK_Shift_L);
    hands.Press(kRight);
    hands.Press(kLeft);
    hands.MoveTo(60, 55);
    (void)TakeMouse();
    XUnmapWindow(host.Display(), window.NativeHandle());
    XMapWindow(host.Display(), window.NativeHandle());
    XSync(host.Display(), False);
    EXPECT_EQ(TakeMouse(), (Mouse{{Kind::LeftUp, 2 | 4, 60, 55}, {Kind::RightUp, 4, 60, 55}}));
    hands.Release(kLeft);
    hands.Release(kRight);
    EXPECT_EQ(TakeMouse(), Mouse{}) << "both are over";
}

TEST_F(X11WindowCaptureTest, ADragGoesOnInAWindowThatIsMadeAnew) {
    hands.MoveTo(50, 50);
    hands.Press(kLeft);
    (void)TakeMouse();
    ASSERT_TRUE(window.Recreate());
    (void)TakeMouse();
    hands.MoveTo(70, 60);
    hands.Release(kLeft);
    EXPECT_EQ(TakeMouse(), (Mouse{{Kind::Move, 1, 70, 60}, {Kind::LeftUp, 0, 70, 60}}));
}

TEST_F(X11WindowCaptureTest, ARoundInTheHandlerOfALostReleaseKeepsTheOrder) {
    hands.MoveTo(50, 50);
    hands.Press(kLeft);
    (void)TakeMouse();
    XUnmapWindow(host.Display(), host.Id());
    hands.Release(kLeft);
    XMapWindow(host.Display(), host.Id());
    XSync(host.Display(), False);
    client.onMouse = [&](const MouseInput& input) {
        if (input.kind == Kind::LeftUp && input.x == 50) window.ProcessEvents();
    };
    hands.Press(kRight);
    hands.MoveTo(80, 50);
    hands.Release(kRight);
    EXPECT_EQ(TakeMouse(), (Mouse{{Kind::LeftUp, 0, 50, 50},
                                  {Kind::RightDown, 2, 50, 50},
                                  {Kind::Move, 2, 80, 50},
                                  {Kind::RightUp, 0, 80, 50}}));
}

TEST_F(X11WindowCaptureTest, AHandlerOfALostReleaseMayDestroyTheWindow) {
    hands.MoveTo(50, 50);
    hands.Press(kLeft);
    hands.Press(kRight);
    (void)TakeMouse();
    client.onMouse = [&](const MouseInput&) { window.Destroy(); };
    XUnmapWindow(host.Display(), window.NativeHandle());
    XSync(host.Display(), False);
    EXPECT_EQ(TakeMouse(), (Mouse{{Kind::LeftUp, 2, 50, 50}})) << "of the right button nobody is left to hear";
    EXPECT_FALSE(window.Exists());
}

// ---- handlers that do away with the window

TEST_F(X11WindowInputTest, AHandlerMayDestroyTheWindowWithEventsStillWaiting) {
    client.onMouse = [&](const MouseInput& input) {
        if (input.kind == Kind::LeftDown) window.Destroy();
    };
    hands.MoveTo(50, 50);
    hands.Click(kLeft);
    hands.Click(kRight);
    Pump();
    EXPECT_FALSE(window.Exists());
    EXPECT_EQ(client.destroyed, 1);
    EXPECT_EQ(client.mouse.back().kind, Kind::LeftDown);
}

TEST_F(X11WindowInputTest, AHandlerMayMakeTheWindowAnewAndTheNextRoundDoesNotHang) {
    bool recreated = false;
    client.onMouse = [&](const MouseInput& input) {
        recreated = recreated || (input.kind == Kind::LeftDown && window.Recreate());
    };
    hands.MoveTo(50, 50);
    hands.Click(kLeft);
    for (int i = 0; i < 20; ++i) hands.Click(kRight);
    Pump();
    EXPECT_TRUE(recreated);
    EXPECT_EQ(client.created, 2);
    client.mouse.clear();
    hands.MoveTo(60, 60);
    hands.Click(kRight);
    EXPECT_EQ(TakeMouse(), (Mouse{{Kind::LeftUp, 0, 50, 50},
                                  {Kind::Move, 0, 60, 60},
                                  {Kind::RightDown, 2, 60, 60},
                                  {Kind::RightUp, 0, 60, 60}}))
        << "the release went to the former window";
    hands.Type(XK_Tab);
    EXPECT_EQ(TakeKeys().size(), 2u);
}

TEST_F(X11WindowInputTest, AHandlerMayRunARoundOfItsOwnAndTheOrderStays) {
    client.onMouse = [&](const MouseInput& input) {
        if (input.kind == Kind::LeftDown) window.ProcessEvents();
    };
    hands.MoveTo(50, 50);
    hands.Click(kLeft);
    hands.Click(kRight);
    hands.Click(kMiddle);
    Mouse mouse = TakeMouse();
    std::vector<Kind> kinds;
    for (const MouseInput& input : mouse) kinds.push_back(input.kind);
    EXPECT_EQ(kinds, (std::vector{Kind::Move, Kind::LeftDown, Kind::LeftUp, Kind::RightDown, Kind::RightUp,
                                  Kind::MiddleDown, Kind::MiddleUp}));
}

}  // namespace
