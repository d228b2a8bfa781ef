// A drag whose release never arrives because the window was hidden by then. It ends all the same.
#include "view/UserInput.h"

// After the others: their macros would replace names in those.
#include <X11/Xlib.h>
#include <X11/extensions/XTest.h>

namespace {

class DragInAHiddenWindow : public testing::Test {
protected:
    DragInAHiddenWindow() { BeginDrag(300, 200); }
    ~DragInAHiddenWindow() override { XCloseDisplay(display); }

    void BeginDrag(int x, int y) {
        user->MoveTo(x, y);
        user->Press(Button::Left);
        user->MoveTo(x + 10, y + 5);
    }
    void PumpUntilViewable() {
        PumpUntil(*viewer, "the visible window", [this] {
            XWindowAttributes attributes{};
            XGetWindowAttributes(display, viewer->NativeWindow(), &attributes);
            return attributes.map_state == IsViewable;
        });
    }
    /// Not by UserInput, which waits until the viewer has received it.
    void ReleaseWhileHidden() {
        XTestFakeButtonEvent(display, 1, False, CurrentTime);
        XSync(display, False);
    }
    void ExpectMovesToRotateNothing() {
        const Float3 x = viewer->m_fAxisX, y = viewer->m_fAxisY;
        user->MoveTo(350, 220);
        user->MoveTo(360, 260);
        EXPECT_EQ(viewer->m_fAxisX, x);
        EXPECT_EQ(viewer->m_fAxisY, y);
        EXPECT_EQ(viewer->m_nInteractionMode, ModeIdle);
        EXPECT_EQ(viewer->m_bMoving, 0);
        EXPECT_FALSE(viewer.window->HasCapture());
    }

    const std::unique_ptr<UserInput> user = MakePointerInput();
    TestControl& viewer = user->Viewer();
    Display* const display = XOpenDisplay(nullptr);
};

TEST_F(DragInAHiddenWindow, EndsAtOnceWhenTheWindowItselfIsHidden) {
    ASSERT_EQ(viewer->m_nInteractionMode, ModeRotate);
    XUnmapWindow(display, viewer->NativeWindow());
    XSync(display, False);
    PumpUntil(*viewer, "the end of the drag", [this] { return viewer->m_nInteractionMode == ModeIdle; });
    ReleaseWhileHidden();
    XMapWindow(display, viewer->NativeWindow());
    XSync(display, False);
    PumpUntilViewable();
    ExpectMovesToRotateNothing();
}

TEST_F(DragInAHiddenWindow, EndsWhenThePointerReturnsToAViewerWhoseHostWasHidden) {
    user->Release(Button::Left);
    const Window host =
        XCreateSimpleWindow(display, DefaultRootWindow(display), 0, 0, UserInput::kWidth, UserInput::kHeight, 0, 0, 0);
    XMapRaised(display, host);
    XReparentWindow(display, viewer->NativeWindow(), host, 0, 0);
    XSync(display, False);
    PumpUntilViewable();
    BeginDrag(330, 240);  // too far from the first press for a double click
    ASSERT_EQ(viewer->m_nInteractionMode, ModeRotate);
    XUnmapWindow(display, host);
    ReleaseWhileHidden();
    XMapWindow(display, host);
    XSync(display, False);
    PumpUntilViewable();
    ExpectMovesToRotateNothing();
    XReparentWindow(display, viewer->NativeWindow(), DefaultRootWindow(display), 0, 0);
    XSync(display, False);
}

}  // namespace
