// The clip plane under the mouse: sequences of mouse and key input on a control that shows it. Two views, 48 pixels per
// unit: down z, the plane's square from 48 to 432 about the window's centre; or along x with y to the right and the
// normal up.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "render/SceneFixture.h"
#include "view/InputHelp.h"

namespace {

using KV_ScenePane::KeyInput;
using KV_ScenePane::MouseInput;
using Kind = MouseInput::Kind;

constexpr double kHalf = 0.70710678118654752;

void ExpectNear(const Double3& actual, const Double3& expected, double tolerance = 1e-6) {
    for (std::size_t i = 0; i < 3; ++i) EXPECT_NEAR(actual[i], expected[i], tolerance) << "component " << i;
}

class PlaneInput : public SceneTest {
protected:
    PlaneInput() : SceneTest(KV_ScenePane::WindowRequest::Kind::OffScreen, 640, 480), plane(pane->m_clipPlane) {
        Frame();
        plane.SetCenter({0, 0, 0});
        plane.SetRadiusFromExtent(4);
        pane->m_bClipPlaneVisible = 1;
        pane.events.events.clear();
        pane.window->Forget();
    }
    void LookFromTheSide() {
        pane->SetViewParams(0, 1, 0, 0, 0, 1, 0, 0, 0, 1, 0);
        pane->PerformRefresh();
        pane.window->Forget();
    }
    void Mouse(Kind kind, int x, int y, std::uint32_t flags = 0) { pane->SendMouse({kind, flags, x, y, 0}); }
    void Key(std::int32_t key, bool isDown = true, std::int32_t flags = 0) { pane->SendKey({isDown, key, 1, flags}); }
    [[nodiscard]] std::int32_t Mode() const { return pane->m_nInteractionMode; }
    void ExpectHandles(bool move, bool rotate) {
        EXPECT_EQ(plane.m_bMoveHandleVisible, move);
        EXPECT_EQ(plane.m_bRotateHandlesVisible, rotate);
    }

    static constexpr PlaneHandle kArrow{0, PlaneHandle::kArrow}, kBall0{0, PlaneHandle::kSphere},
        kBall1{1, PlaneHandle::kSphere};
    Plane& plane;
};

// ---- hovering

TEST_F(PlaneInput, HoverPicksAHandleAndRepaintsOnlyOnAChange) {
    Mouse(Kind::Move, 320, 432);  // the sphere at -y
    EXPECT_EQ(plane.GetPick(), kBall0);
    EXPECT_EQ(pane.window->refreshes, 1);
    Mouse(Kind::Move, 322, 431);
    EXPECT_EQ(plane.GetPick(), kBall0);
    EXPECT_EQ(pane.window->refreshes, 1);
    Mouse(Kind::Move, 128, 240);  // straight to the other sphere: still picked
    EXPECT_EQ(plane.GetPick(), kBall1);
    EXPECT_EQ(pane.window->refreshes, 1);
    Mouse(Kind::Move, 512, 432);  // and to the arrow
    EXPECT_EQ(plane.GetPick(), kArrow);
    EXPECT_EQ(pane.window->refreshes, 1);
    Mouse(Kind::Move, 320, 240);  // the face is no handle
    EXPECT_FALSE(plane.IsPicked());
    EXPECT_EQ(pane.window->refreshes, 2);
    Mouse(Kind::Move, 20, 20);
    EXPECT_EQ(pane.window->refreshes, 2);
    EXPECT_EQ(pane.window->invalidates + pane.window->eraseInvalidates, 0);
    EXPECT_EQ(Mode(), ModeIdle);
}

TEST_F(PlaneInput, HoverOverAHandleShowsTheHotColour) {
    plane.m_nHotColor = HostColor(0, 0, 200);
    Frame();
    const Vec3 cold = ColorAt(320, 200);
    Mouse(Kind::Move, 512, 432);
    Frame();
    EXPECT_GT(DistanceAt(320, 200, cold), 50);
    Mouse(Kind::Move, 320, 240);
    Frame();
    ExpectPixel(320, 200, cold);
}

TEST_F(PlaneInput, HoverDoesNotPickAHiddenPlane) {
    pane->m_bClipPlaneVisible = 0;
    pane->m_bClipPlaneActive = 1;
    Mouse(Kind::Move, 512, 432);
    EXPECT_FALSE(plane.IsPicked());
    EXPECT_EQ(pane.window->refreshes, 0);
}

TEST_F(PlaneInput, HoverDoesNothingWhileTheMouseIsNotAllowed) {
    pane->AllowMouseInteraction(0);
    Mouse(Kind::Move, 512, 432);
    EXPECT_FALSE(plane.IsPicked());
}

TEST_F(PlaneInput, HoverHighlightsByCtrlWithoutRepainting) {
    Mouse(Kind::Move, 320, 240, kCtrl);
    EXPECT_TRUE(plane.m_bHighlighted);
    EXPECT_EQ(pane.window->refreshes, 0);
    Mouse(Kind::Move, 320, 240);
    EXPECT_FALSE(plane.m_bHighlighted);
}

TEST_F(PlaneInput, HoverPicksWhileTheContextOfAnotherWindowIsCurrent) {
    OffscreenControl other(100, 100);
    ASSERT_TRUE(other->MakeContextCurrent());
    Mouse(Kind::Move, 512, 432);
    EXPECT_EQ(plane.GetPick(), kArrow);
}

TEST_F(PlaneInput, HoverFollowsAResizedWindow) {
    pane->SetSize(320, 240);
    pane->PerformRefresh();
    Mouse(Kind::Move, 160 + 96, 120 + 96);
    EXPECT_EQ(plane.GetPick(), kArrow);
    Mouse(Kind::Move, 160, 120 + 96);
    EXPECT_EQ(plane.GetPick(), kBall0);
}

// ---- the handles

TEST_F(PlaneInput, ArrowDragMovesThePlaneAndTheReleaseKeepsIt) {
    LookFromTheSide();
    plane.SetCenter({0, 3, 0});
    plane.m_dStartAngle = -3 * std::numbers::pi / 4;  // the arrow's corner to the left, in front of nothing else
    const int x = 320 + static_cast<int>(48 * (3 - 4)), y = 240 - 18;
    Mouse(Kind::Move, x, y);
    ASSERT_EQ(plane.GetPick(), kArrow);
    Mouse(Kind::LeftDown, x, y, kLeft);
    EXPECT_EQ(Mode(), ModePlaneHandle);
    EXPECT_FALSE(pane.window->HasCapture());
    ExpectHandles(true, false);
    pane.window->Forget();
    Mouse(Kind::Move, x, y - 10, kLeft);
    ExpectNear(plane.GetCenter(), {0, 3, 1});
    EXPECT_EQ(pane.window->refreshes, 1);
    Mouse(Kind::Move, x + 40, y + 25, kLeft);
    ExpectNear(plane.GetCenter(), {0, 3, -2.5});
    ExpectNear(plane.GetNormal(), {0, 0, 1});
    Mouse(Kind::LeftUp, x + 40, y + 25);
    EXPECT_EQ(Mode(), ModeIdle);
    ExpectNear(plane.GetCenter(), {0, 3, -2.5});
    ExpectHandles(true, true);
    EXPECT_FALSE(plane.m_bHighlighted);
}

TEST_F(PlaneInput, ArrowDragEndsHighlightedWhileCtrlIsHeld) {
    LookFromTheSide();
    plane.OnPicked(0);
    Mouse(Kind::LeftDown, 10, 10, kLeft);
    ASSERT_EQ(Mode(), ModePlaneHandle);
    Mouse(Kind::LeftUp, 10, 10, kCtrl);
    EXPECT_TRUE(plane.m_bHighlighted);
}

TEST_F(PlaneInput, EscapeUndoesAHandleDrag) {
    LookFromTheSide();
    for (const bool ctrl : {false, true}) {
        const auto before = plane.m_dMatrix;
        plane.OnPicked(0);
        Mouse(Kind::LeftDown, 100, 100, kLeft);
        Mouse(Kind::Move, 100, 60, kLeft);
        ASSERT_NE(plane.m_dMatrix, before);
        pane.window->Forget();
        Key(KV_ScenePane::kKeyEscape, true, ctrl ? 0x8 : 0x7);
        EXPECT_EQ(plane.m_dMatrix, before);
        EXPECT_EQ(Mode(), ModeIdle);
        EXPECT_EQ(plane.m_bHighlighted, ctrl);
        EXPECT_EQ(pane.window->refreshes, 1);
        ExpectHandles(true, true);
        Mouse(Kind::Move, 100, 20, kLeft);  // the button is still down, the drag is over
        EXPECT_EQ(plane.m_dMatrix, before);
        Mouse(Kind::LeftUp, 100, 20);
        EXPECT_EQ(plane.m_dMatrix, before);
    }
}

TEST_F(PlaneInput, SphereDragTiltsThePlaneTowardsTheMouse) {
    LookFromTheSide();
    Mouse(Kind::Move, 128, 240);  // the sphere at -y, left of the centre; nothing else there
    ASSERT_EQ(plane.GetPick(), kBall0);
    Mouse(Kind::LeftDown, 128, 240, kLeft);
    ASSERT_EQ(Mode(), ModePlaneHandle);
    ExpectHandles(false, true);
    Mouse(Kind::Move, 320 - 136, 240 - 136, kLeft);  // 45 degrees up, on the circle of the sphere
    ExpectNear(plane.GetNormal(), {0, kHalf, kHalf}, 1e-5);
    ExpectNear(plane.GetCenter(), {0, 0, 0}, 0);
    Mouse(Kind::Move, 320, 240 - 60, kLeft);  // straight up, inside the circle
    ExpectNear(plane.GetNormal(), {0, 1, 0}, 1e-5);
    Mouse(Kind::Move, 320, 240, kLeft);  // the centre has no angle
    ExpectNear(plane.GetNormal(), {0, 1, 0}, 1e-5);
    Mouse(Kind::LeftUp, 320, 240);
    ExpectNear(plane.GetNormal(), {0, 1, 0}, 1e-5);
    ExpectHandles(true, true);
}

TEST_F(PlaneInput, ArrowDoesNotReactOnAPlaneSeenFaceOn) {
    for (std::int16_t mode = 0; mode <= 7; ++mode) {
        pane->SetViewMode(mode);
        for (const double off : {0.0, 3.7}) {
            plane.SetNormal({pane->m_fAxisZ[0], pane->m_fAxisZ[1], pane->m_fAxisZ[2]});
            plane.SetCenter({off, 0.3 * off, -off});
            const Double3 before = plane.GetCenter();
            plane.OnPicked(0);
            Mouse(Kind::LeftDown, 300, 200, kLeft);
            ASSERT_EQ(Mode(), ModePlaneHandle);
            Mouse(Kind::Move, 620, 470, kLeft);
            ExpectNear(plane.GetCenter(), before, 1e-12);
            Mouse(Kind::Move, 10, 470, kLeft);
            ExpectNear(plane.GetCenter(), before, 1e-12);
            Mouse(Kind::LeftUp, 10, 470);
        }
    }
}

TEST_F(PlaneInput, ArrowReactsToADragOnASlightlyTiltedPlane) {
    plane.SetNormal({0.001, 0, 1});  // a twentieth of a degree from face-on
    plane.OnPicked(0);
    Mouse(Kind::LeftDown, 300, 200, kLeft);
    Mouse(Kind::Move, 310, 200, kLeft);
    EXPECT_NEAR(plane.GetCenter()[2], 1, 1e-5);
}

TEST_F(PlaneInput, ObjectsAreNotClippedDuringAHandleDrag) {
    Add({});
    pane->m_bClipPlaneActive = 1;
    plane.SetCenter({0, 0, 2});  // keeps what lies above it: nothing
    plane.m_bFaceVisible = false;
    Frame();
    ExpectBackground(320, 230);
    plane.OnPicked(0);
    Mouse(Kind::LeftDown, 300, 200, kLeft);
    Frame();
    EXPECT_GT(DistanceAt(320, 230, kBackground), 20);
    Mouse(Kind::LeftUp, 300, 200);
    Frame();
    ExpectBackground(320, 230);
}

// ---- the plane as a whole, with Ctrl

TEST_F(PlaneInput, CtrlSwitchesARotationOfTheViewToOneOfThePlaneAndBack) {
    Mouse(Kind::LeftDown, 300, 240, kLeft);
    ASSERT_EQ(Mode(), ModeRotate);
    const Float3 axisX = pane->m_fAxisX;
    Key(KV_ScenePane::kKeyCtrl);
    EXPECT_EQ(Mode(), ModeRotate);  // until the next move
    EXPECT_TRUE(plane.m_bHighlighted);
    ExpectHandles(false, true);

    Mouse(Kind::Move, 310, 240, kLeft | kCtrl);
    EXPECT_EQ(Mode(), ModePlaneRotate);
    ExpectNear(plane.GetNormal(), {0, 0, 1});  // that move only changes the mode; the last point stays
    Mouse(Kind::Move, 340, 240, kLeft | kCtrl);
    // 40 of 480 pixels are a twelfth of a half turn; the normal follows the mouse
    ExpectNear(plane.GetNormal(), {std::sin(std::numbers::pi / 12), 0, std::cos(std::numbers::pi / 12)}, 1e-5);
    EXPECT_EQ(pane->m_fAxisX, axisX);  // the view stays
    EXPECT_GT(pane.window->eraseInvalidates, 0);
    ExpectNear(plane.GetCenter(), {0, 0, 0}, 0);

    const Double3 turned = plane.GetNormal();
    Mouse(Kind::Move, 350, 240, kLeft);
    EXPECT_EQ(Mode(), ModeRotate);
    EXPECT_EQ(plane.GetNormal(), turned);
    EXPECT_EQ(pane->m_fAxisX, axisX);
    EXPECT_FALSE(plane.m_bHighlighted);
    ExpectHandles(true, true);
    Mouse(Kind::Move, 360, 240, kLeft);
    EXPECT_NE(pane->m_fAxisX, axisX);
    EXPECT_EQ(plane.GetNormal(), turned);
    Mouse(Kind::LeftUp, 360, 240);
    EXPECT_EQ(Mode(), ModeIdle);
}

TEST_F(PlaneInput, PlaneRotatesOnTheScreenAsTheSceneWould) {
    const auto onScreen = [this] {
        const Double3 n = plane.GetNormal();
        const auto along = [&n](const Float3& axis) { return axis[0] * n[0] + axis[1] * n[1] + axis[2] * n[2]; };
        return Double3{along(pane->m_fAxisX), along(pane->m_fAxisY), along(pane->m_fAxisZ)};
    };
    for (const std::int16_t rotation : {KV_ScenePane::RotateAboutHorizontal, KV_ScenePane::RotateAboutVertical,
                                        KV_ScenePane::RotateAboutViewAxis, KV_ScenePane::RotateFree}) {
        pane->SetRotationMode(rotation);
        const auto drag = [&](std::uint32_t flags) {
            pane->SetViewMode(KV_ScenePane::ViewObliqueZUp);
            plane.SetNormal({0.2, -0.5, 0.6});
            Mouse(Kind::LeftDown, 300, 240, flags);
            Mouse(Kind::Move, 340, 225, flags);
            // About one axis the moves add up; each free rotation starts from the view after the last one.
            if (rotation != KV_ScenePane::RotateFree) Mouse(Kind::Move, 333, 290, flags);
            const Double3 seen = onScreen();
            Mouse(Kind::LeftUp, 333, 290);
            return seen;
        };
        const Double3 byView = drag(kLeft);
        const Double3 byPlane = drag(kLeft | kCtrl);
        ExpectNear(byPlane, byView, 1e-5);
        plane.SetNormal({0.2, -0.5, 0.6});
        pane->SetViewMode(KV_ScenePane::ViewObliqueZUp);
        EXPECT_GT(std::hypot(byView[0] - onScreen()[0], byView[1] - onScreen()[1]), 0.05) << rotation;
    }
}

TEST_F(PlaneInput, ReleaseOfTheCtrlKeySwitchesBackToTheDragOfTheView) {
    for (const bool pans : {false, true}) {
        const Kind down = pans ? Kind::RightDown : Kind::LeftDown, up = pans ? Kind::RightUp : Kind::LeftUp;
        const std::uint32_t button = pans ? kRight : kLeft;
        Mouse(down, 320, 240, button | kCtrl);
        ASSERT_EQ(Mode(), pans ? ModePlaneMove : ModePlaneRotate);
        ExpectHandles(pans, !pans);
        pane.window->Forget();
        Key(KV_ScenePane::kKeyCtrl, false);
        EXPECT_EQ(Mode(), pans ? ModePan : ModeRotate);
        EXPECT_FALSE(plane.m_bHighlighted);
        EXPECT_EQ(pane.window->eraseInvalidates, 1);
        ExpectHandles(true, true);
        Mouse(up, 320, 240);
        EXPECT_EQ(Mode(), ModeIdle);
    }
}

TEST_F(PlaneInput, CtrlWithAPanningDragMovesThePlaneAlongItsNormal) {
    LookFromTheSide();
    Mouse(Kind::RightDown, 300, 300, kRight | kCtrl);
    EXPECT_EQ(Mode(), ModePlaneMove);
    EXPECT_TRUE(pane.window->HasCapture());
    EXPECT_TRUE(plane.m_bHighlighted);
    Mouse(Kind::Move, 333, 270, kRight | kCtrl);
    ExpectNear(plane.GetCenter(), {0, 0, 3});
    Mouse(Kind::Move, 333, 305, kRight | kCtrl);
    ExpectNear(plane.GetCenter(), {0, 0, -0.5});
    Mouse(Kind::RightUp, 333, 305, kCtrl);
    EXPECT_EQ(Mode(), ModeIdle);
    EXPECT_FALSE(pane.window->HasCapture());
    EXPECT_TRUE(plane.m_bHighlighted);  // Ctrl is still held
    ExpectHandles(true, true);
    EXPECT_EQ(pane->m_fViewCenter, (Float3{0, 0, 0}));
}

TEST_F(PlaneInput, RightPressWithCtrlAndAHiddenPlanePansFromTheNextMoveOn) {
    pane->m_bClipPlaneVisible = 0;
    Mouse(Kind::RightDown, 300, 300, kRight | kCtrl);
    EXPECT_EQ(Mode(), ModePlaneMove);
    Mouse(Kind::Move, 320, 300, kRight | kCtrl);
    EXPECT_EQ(Mode(), ModePan);
    EXPECT_FALSE(plane.m_bHighlighted);
    ExpectHandles(true, true);
    EXPECT_EQ(pane->m_fViewCenter, (Float3{0, 0, 0}));
    Mouse(Kind::Move, 368, 300, kRight | kCtrl);  // from the press on: 68 pixels
    EXPECT_NEAR(pane->m_fViewCenter[0], -68.0 / 48, 1e-5);
    ExpectNear(plane.GetCenter(), {0, 0, 0}, 0);
}

TEST_F(PlaneInput, LeftPressWithCtrlAndAHiddenPlaneRotatesTheView) {
    pane->m_bClipPlaneVisible = 0;
    Mouse(Kind::LeftDown, 300, 240, kLeft | kCtrl);
    EXPECT_EQ(Mode(), ModeRotate);
}

TEST_F(PlaneInput, MiddleDragWithCtrlRotatesThePlane) {
    Mouse(Kind::MiddleDown, 300, 240, kMiddle | kCtrl);
    EXPECT_EQ(Mode(), ModePlaneRotate);
    Mouse(Kind::Move, 340, 240, kMiddle | kCtrl);
    ExpectNear(plane.GetNormal(), {std::sin(std::numbers::pi / 12), 0, std::cos(std::numbers::pi / 12)}, 1e-5);
    Mouse(Kind::MiddleUp, 340, 240);
    EXPECT_EQ(Mode(), ModeIdle);
    EXPECT_FALSE(plane.m_bHighlighted);
}

TEST_F(PlaneInput, ChordOfTheDelayedSchemeMovesThePlaneAndThenRotatesItAgain) {
    LookFromTheSide();
    pane->m_nIgdRotation = 1;  // the handlers as the dispatcher calls them, without its delay
    pane->OnRightDown(kRight | kCtrl, 300, 240);
    EXPECT_EQ(Mode(), ModePlaneRotate);
    pane->OnLeftDown(kLeft | kRight | kCtrl, 300, 240);
    EXPECT_EQ(Mode(), ModePlaneMove);
    ExpectHandles(true, false);
    pane->OnMouseMoved(kLeft | kRight | kCtrl, 300, 230);
    ExpectNear(plane.GetCenter(), {0, 0, 1});
    pane->OnLeftUp(kRight | kCtrl, 300, 230);
    EXPECT_EQ(Mode(), ModePlaneRotate);
    ExpectHandles(false, true);
    pane->OnMouseMoved(kRight | kCtrl, 300, 190);  // 40 pixels up
    EXPECT_NEAR(plane.GetNormal()[2], std::cos(std::numbers::pi / 12), 1e-5);
    ExpectNear(plane.GetCenter(), {0, 0, 1});
    pane->OnRightUp(0, 300, 190);
    EXPECT_EQ(Mode(), ModeIdle);
}

// ---- keys

TEST_F(PlaneInput, UpAndDownMoveAVisiblePlaneByOneUnit) {
    Key(KV_ScenePane::kKeyUp);
    EXPECT_EQ(plane.GetCenter(), (Double3{0, 0, 1}));
    EXPECT_EQ(pane.window->refreshes, 1);
    Key(KV_ScenePane::kKeyDown);
    Key(KV_ScenePane::kKeyDown);
    EXPECT_EQ(plane.GetCenter(), (Double3{0, 0, -1}));
    plane.SetNormal({1, 0, 0});
    Key(KV_ScenePane::kKeyUp);
    ExpectNear(plane.GetCenter(), {0, 0, -2}, 1e-12);  // not along its normal
    pane->m_bClipPlaneVisible = 0;
    Key(KV_ScenePane::kKeyUp);
    ExpectNear(plane.GetCenter(), {0, 0, -2}, 1e-12);
    EXPECT_EQ(pane.window->refreshes, 4);
}

TEST_F(PlaneInput, CtrlKeyAloneHighlightsAVisiblePlane) {
    plane.m_bMoveHandleVisible = false;
    Key(KV_ScenePane::kKeyCtrl);
    EXPECT_TRUE(plane.m_bHighlighted);
    ExpectHandles(true, true);
    Key(KV_ScenePane::kKeyCtrl, false);
    EXPECT_FALSE(plane.m_bHighlighted);
    EXPECT_EQ(pane.window->eraseInvalidates, 2);
    pane->m_bClipPlaneVisible = 0;
    Key(KV_ScenePane::kKeyCtrl);
    EXPECT_FALSE(plane.m_bHighlighted);
    EXPECT_EQ(pane.window->eraseInvalidates, 2);
}

TEST_F(PlaneInput, EscapeOutsideAHandleDragDoesNotMoveThePlane) {
    Mouse(Kind::LeftDown, 300, 240, kLeft | kCtrl);
    Mouse(Kind::Move, 340, 240, kLeft | kCtrl);
    const auto turned = plane.m_dMatrix;
    Key(KV_ScenePane::kKeyEscape);
    EXPECT_EQ(plane.m_dMatrix, turned);
    EXPECT_EQ(Mode(), ModePlaneRotate);
}

// The window position of such a plane is not a number; a drag must not make it one for ever.
TEST_F(PlaneInput, DragsInASceneWithoutAFiniteSizeLeaveThePlaneFinite) {
    for (const float size : {0.0f, std::numeric_limits<float>::infinity(), std::numeric_limits<float>::quiet_NaN()}) {
        SCOPED_TRACE(size);
        pane->m_fSceneSize = size;
        pane->SetupViewMatrices();
        for (const std::uint32_t button : {kLeft, kRight}) {
            const bool isLeft = button == kLeft;
            Mouse(isLeft ? Kind::LeftDown : Kind::RightDown, 300, 240, button | kCtrl);
            Mouse(Kind::Move, 340, 200, button | kCtrl);
            Mouse(isLeft ? Kind::LeftUp : Kind::RightUp, 340, 200, kCtrl);
        }
        for (const std::uint32_t handle : {0u, 1u, 2u}) {
            plane.OnPicked(handle);
            Mouse(Kind::LeftDown, 300, 240, kLeft);
            ASSERT_EQ(Mode(), ModePlaneHandle);
            Mouse(Kind::Move, 340, 200, kLeft);
            Mouse(Kind::LeftUp, 340, 200);
        }
        for (const double value : plane.m_dMatrix) ASSERT_TRUE(std::isfinite(value));
    }
}

TEST(PlaneInputWithoutAContext, DoesNotMoveThePlane) {
    NoPictureControl control;
    control->m_bClipPlaneVisible = 1;
    const auto before = control->m_clipPlane.m_dMatrix;
    const auto mouse = [&](Kind kind, int x, std::uint32_t flags) { control->SendMouse({kind, flags, x, 10, 0}); };
    mouse(Kind::Move, 10, 0);
    mouse(Kind::LeftDown, 10, kLeft | kCtrl);
    mouse(Kind::Move, 50, kLeft | kCtrl);
    mouse(Kind::LeftUp, 50, 0);
    control->m_clipPlane.OnPicked(1);
    mouse(Kind::LeftDown, 10, kLeft);
    mouse(Kind::Move, 50, kLeft);
    mouse(Kind::LeftUp, 50, 0);
    EXPECT_EQ(control->m_clipPlane.m_dMatrix, before);
    EXPECT_EQ(control->m_nInteractionMode, ModeIdle);
}

}  // namespace
