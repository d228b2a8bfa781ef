// Drags of the plane whose release, or whose keys, go to somebody else: the window is hidden, or another window has the
// keyboard. By the real pointer.
#include "view/UserInput.h"

// After the others: their macros would replace names in those.
#include <X11/Xlib.h>
#include <X11/extensions/XTest.h>

namespace {

/// The plane is seen edge-on, its normal up in the window.
class InterruptedPlaneDrag : public testing::Test {
protected:
    InterruptedPlaneDrag() {
        viewer->SetViewMode(KV_ScenePane::ViewFromMinusYZUp);
        viewer->m_fSceneSize = 100;  // 4.8 pixels per unit
        viewer->SetViewMode(KV_ScenePane::ViewFromMinusYZUp);
        viewer->m_bClipPlaneVisible = 1;
        plane.SetCenter({0, 0, 0});
        plane.SetRadiusFromExtent(30);
        viewer->PerformRefresh();
    }
    ~InterruptedPlaneDrag() override { XCloseDisplay(display); }

    /// The arrow's shaft is above the corner at the right.
    void DragTheArrow() {
        user->MoveTo(kX, kY);
        ASSERT_EQ(plane.GetPick(), (PlaneHandle{0, PlaneHandle::kArrow}));
        user->Press(Button::Left);
        user->MoveTo(kX, kY - 20);
        ASSERT_EQ(viewer->m_nInteractionMode, ModePlaneHandle);
        ASSERT_NEAR(plane.GetCenter()[2], 2, 1e-4);
    }
    void ExpectDragIsOver() {
        EXPECT_EQ(viewer->m_nInteractionMode, ModeIdle);
        EXPECT_TRUE(plane.m_bRotateHandlesVisible);
        user->MoveTo(kX, kY - 90);
        user->MoveTo(kX, kY + 50);
        EXPECT_NEAR(plane.GetCenter()[2], 2, 1e-4) << "it stays where the drag has left it";
    }
    /// As a user does who switches to another program by the keyboard. A focus on the root window would not do: its
    /// keys go to the window under the pointer.
    void FocusElsewhere() {
        const Window other = XCreateSimpleWindow(display, DefaultRootWindow(display), 900, 700, 50, 50, 0, 0, 0);
        XMapWindow(display, other);
        XSync(display, False);
        PumpUntil(*viewer, "the other window", [&] {
            XWindowAttributes attributes{};
            XGetWindowAttributes(display, other, &attributes);
            return attributes.map_state == IsViewable;
        });
        XSetInputFocus(display, other, RevertToParent, CurrentTime);
        XSync(display, False);
        viewer->ProcessEvents();
    }

    static constexpr int kX = 320 + 144, kY = 240 - 6;
    const std::unique_ptr<UserInput> user = MakePointerInput();
    TestControl& viewer = user->Viewer();
    Plane& plane = viewer->m_clipPlane;
    Display* const display = XOpenDisplay(nullptr);
};

TEST_F(InterruptedPlaneDrag, EndsWhenTheWindowIsHidden) {
    ASSERT_NO_FATAL_FAILURE(DragTheArrow());
    XUnmapWindow(display, viewer->NativeWindow());
    XSync(display, False);
    PumpUntil(*viewer, "the end of the drag", [this] { return viewer->m_nInteractionMode == ModeIdle; });
    XTestFakeButtonEvent(display, 1, False, CurrentTime);
    XMapWindow(display, viewer->NativeWindow());
    XSync(display, False);
    PumpUntil(*viewer, "the visible window", [this] {
        XWindowAttributes attributes{};
        XGetWindowAttributes(display, viewer->NativeWindow(), &attributes);
        return attributes.map_state == IsViewable;
    });
    ExpectDragIsOver();
}

TEST_F(InterruptedPlaneDrag, GoesOnWithoutTheKeyboardAndEndsByItsRelease) {
    ASSERT_NO_FATAL_FAILURE(DragTheArrow());
    FocusElsewhere();
    user->MoveTo(kX, kY - 30);
    EXPECT_NEAR(plane.GetCenter()[2], 3, 1e-4);
    user->MoveTo(kX, kY - 20);
    user->Release(Button::Left);
    ExpectDragIsOver();
}

// The key is released over another window; the next move shows that it is up.
TEST_F(InterruptedPlaneDrag, TurnsBackIntoADragOfTheViewWhenCtrlIsReleasedElsewhere) {
    user->MoveTo(320, 300);
    user->Press(Button::Left);
    user->HoldCtrl(true);
    user->MoveTo(320, 310);
    ASSERT_EQ(viewer->m_nInteractionMode, ModePlaneRotate);
    FocusElsewhere();
    XTestFakeKeyEvent(display, XKeysymToKeycode(display, XStringToKeysym("Control_L")), False, CurrentTime);
    XSync(display, False);
    viewer->ProcessEvents();
    EXPECT_EQ(viewer->m_nInteractionMode, ModePlaneRotate);
    user->MoveTo(320, 320);
    EXPECT_EQ(viewer->m_nInteractionMode, ModeRotate);
    EXPECT_FALSE(plane.m_bHighlighted);
    EXPECT_TRUE(plane.m_bMoveHandleVisible);
    const auto before = plane.m_dMatrix;
    const Float3 axis = viewer->m_fAxisZ;
    user->MoveTo(320, 330);
    EXPECT_NE(viewer->m_fAxisZ, axis);
    EXPECT_EQ(plane.m_dMatrix, before);
    user->Release(Button::Left);
    EXPECT_EQ(viewer->m_nInteractionMode, ModeIdle);
}

}  // namespace
