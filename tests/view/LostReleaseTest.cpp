// A drag of whose end the window system tells nothing, for the window was hidden by then: it is over all the same.
#include <poll.h>

#include "view/UserInput.h"

// After the others: their macros take the names of those.
#include <X11/Xlib.h>
#include <X11/extensions/XTest.h>

namespace {

class HiddenInADrag : public testing::Test {
protected:
    HiddenInADrag() {
        hands->MoveTo(300, 200);
        hands->Press(Button::Left);
        hands->MoveTo(310, 205);
    }
    ~HiddenInADrag() override { XCloseDisplay(display); }

    void Pump() {
        for (int i = 0; i < 10; ++i) {
            pollfd waiting{viewer->EventDescriptor(), POLLIN, 0};
            poll(&waiting, 1, 20);
            viewer->ProcessEvents();
        }
    }
    /// Not by the hands, which wait until the viewer has heard of it.
    void ReleaseUnheard() {
        XTestFakeButtonEvent(display, 1, False, CurrentTime);
        XSync(display, False);
    }
    void ExpectHoveringToTurnNothing() {
        const Float3 x = viewer->m_fAxisX, y = viewer->m_fAxisY;
        hands->MoveTo(350, 220);
        hands->MoveTo(360, 260);
        EXPECT_EQ(viewer->m_fAxisX, x);
        EXPECT_EQ(viewer->m_fAxisY, y);
        EXPECT_EQ(viewer->m_nInteractionMode, ModeIdle);
        EXPECT_EQ(viewer->m_bMoving, 0);
        EXPECT_FALSE(viewer.window->HasCapture());
    }

    const std::unique_ptr<UserInput> hands = HandsOnTheRealPointer();
    TestControl& viewer = hands->Viewer();
    Display* const display = XOpenDisplay(nullptr);
};

TEST_F(HiddenInADrag, ThePaneEndsItAtOnce) {
    ASSERT_EQ(viewer->m_nInteractionMode, ModeRotate);
    XUnmapWindow(display, viewer->NativeWindow());
    XSync(display, False);
    Pump();
    EXPECT_EQ(viewer->m_nInteractionMode, ModeIdle);
    ReleaseUnheard();
    XMapWindow(display, viewer->NativeWindow());
    XSync(display, False);
    Pump();
    ExpectHoveringToTurnNothing();
}

TEST_F(HiddenInADrag, ThePaneInAHostThatIsHiddenEndsItWhenThePointerIsBack) {
    hands->Release(Button::Left);
    const Window host =
        XCreateSimpleWindow(display, DefaultRootWindow(display), 0, 0, UserInput::kWidth, UserInput::kHeight, 0, 0, 0);
    XMapRaised(display, host);
    XReparentWindow(display, viewer->NativeWindow(), host, 0, 0);
    XSync(display, False);
    Pump();
    hands->MoveTo(330, 240);  // too far for a double click
    hands->Press(Button::Left);
    hands->MoveTo(340, 245);
    ASSERT_EQ(viewer->m_nInteractionMode, ModeRotate);
    XUnmapWindow(display, host);
    ReleaseUnheard();
    XMapWindow(display, host);
    XSync(display, False);
    Pump();
    ExpectHoveringToTurnNothing();
    XReparentWindow(display, viewer->NativeWindow(), DefaultRootWindow(display), 0, 0);
    XSync(display, False);
}

}  // namespace
