// A user who moves the clip plane by Ctrl, by keys and in the delayed scheme, and what keeps the mouse away from it: by
// calls, and by the real pointer and keyboard.
#include <cmath>
#include <numbers>

#include "clip/PlaneUser.h"

namespace {

constexpr auto L = Button::Left, R = Button::Right, M = Button::Middle;

class PlaneAtTheControls : public PlaneUnderThePointer {};

// ---- Ctrl

TEST_P(PlaneAtTheControls, RotatesAsIfGluedToTheViewWhileCtrlIsHeldDuringARotation) {
    user->MoveTo(320, 300);
    user->Press(L);
    user->MoveTo(330, 300);
    ASSERT_EQ(Mode(), ModeRotate);
    const Float3 axisX = viewer->m_fAxisX, axisZ = viewer->m_fAxisZ;
    user->HoldCtrl(true);
    EXPECT_EQ(Mode(), ModeRotate) << "until the next move";
    EXPECT_TRUE(plane.m_bHighlighted);
    Settle();
    EXPECT_EQ(Shown(), (ShownHandles{.arrow = false, .balls = true}));
    user->MoveTo(330, 310);
    EXPECT_EQ(Mode(), ModePlaneRotate);
    ExpectPlane({0, 0, 0}, {0, 0, 1}, 0);
    // 20 of 480 pixels down are 7.5 degrees about the screen's horizontal, counted from the last move of the view.
    for (const int steps : {1, 2, 3}) {
        user->MoveTo(330, 300 + 20 * steps);
        const double angle = steps * 7.5 * std::numbers::pi / 180;
        EXPECT_NEAR(NormalOnScreen()[0], 0, 1e-5);
        EXPECT_NEAR(NormalOnScreen()[1], std::cos(angle), 1e-5);
        EXPECT_NEAR(NormalOnScreen()[2], std::sin(angle), 1e-5);
    }
    EXPECT_EQ(viewer->m_fAxisX, axisX) << "the view stays";
    EXPECT_EQ(viewer->m_fAxisZ, axisZ);

    const auto rotated = plane.m_dMatrix;
    user->HoldCtrl(false);
    EXPECT_EQ(Mode(), ModeRotate);
    EXPECT_FALSE(plane.m_bHighlighted);
    Settle();
    EXPECT_TRUE(plane.m_bMoveHandleVisible);
    user->MoveTo(400, 360);
    EXPECT_NE(viewer->m_fAxisX, axisX) << "the view rotates on";
    EXPECT_EQ(plane.m_dMatrix, rotated);
    user->HoldCtrl(true);
    user->MoveTo(401, 360);
    EXPECT_EQ(Mode(), ModePlaneRotate);
    user->Release(L);
    EXPECT_EQ(Mode(), ModeIdle);
    EXPECT_TRUE(plane.m_bHighlighted) << "Ctrl is still held";
    EXPECT_EQ(plane.m_dMatrix, rotated);
    user->HoldCtrl(false);
    EXPECT_FALSE(plane.m_bHighlighted);
}

TEST_P(PlaneAtTheControls, MovesAlongItsNormalWhileCtrlIsHeldDuringAPan) {
    user->MoveTo(320, 300);
    user->Press(R);
    user->MoveTo(330, 300);
    ASSERT_EQ(Mode(), ModePan);
    const Float3 center = viewer->m_fViewCenter;
    ASSERT_NE(center[0], 0.0f);
    user->HoldCtrl(true);
    EXPECT_EQ(Mode(), ModePan);
    EXPECT_TRUE(plane.m_bHighlighted);
    EXPECT_TRUE(plane.m_bMoveHandleVisible);
    EXPECT_FALSE(plane.m_bRotateHandlesVisible);
    user->MoveTo(340, 310);
    EXPECT_EQ(Mode(), ModePlaneMove);
    ExpectPlane({0, 0, 0}, {0, 0, 1}, 0);
    user->MoveTo(390, 280);  // 30 pixels up from where Ctrl took effect
    ExpectPlane({0, 0, 3}, {0, 0, 1});
    user->MoveTo(390, 325);
    ExpectPlane({0, 0, -1.5}, {0, 0, 1});
    EXPECT_EQ(viewer->m_fViewCenter, center);
    user->HoldCtrl(false);
    EXPECT_EQ(Mode(), ModePan);
    user->MoveTo(400, 335);
    EXPECT_LT(viewer->m_fViewCenter[0], center[0]);
    ExpectPlane({0, 0, -1.5}, {0, 0, 1});
    user->Release(R);
    EXPECT_EQ(Mode(), ModeIdle);
    EXPECT_FALSE(plane.m_bHighlighted);
}

TEST_P(PlaneAtTheControls, IsHighlightedByTheCtrlKeyAlone) {
    LookObliquely();
    const Pixel onFace = PixelOnPlane(12, 8, 0);
    const Rgb cold = At(ShownFrame(), onFace);
    user->HoldCtrl(true);
    viewer->ProcessEvents();
    ExpectShownHot(onFace, cold);
    EXPECT_EQ(Shown(), (ShownHandles{true, true}));
    user->HoldCtrl(false);
    viewer->ProcessEvents();
    EXPECT_EQ(At(ShownFrame(), onFace), cold);
}

TEST_P(PlaneAtTheControls, FollowsCtrlWithTheButtonsExchanged) {
    viewer->FlipMouseButtons(1);
    struct Row {
        Button button;
        std::int32_t mode;
    };
    user->HoldCtrl(true);
    for (const Row& row : {Row{L, ModePlaneMove}, {R, ModePlaneRotate}, {M, ModePlaneRotate}}) {
        SCOPED_TRACE(testing::PrintToString(row.button));
        viewer->SetClipPlane(0, 0, 0, 0, 0, 1);
        user->MoveTo(320, 300);
        user->Press(row.button);
        EXPECT_EQ(Mode(), row.mode);
        user->MoveTo(320, 340);  // 15 degrees, or 4 units
        if (row.mode == ModePlaneMove)
            ExpectPlane({0, 0, -4}, {0, 0, 1});
        else
            ExpectPlane({0, 0, 0}, {0, -std::sin(std::numbers::pi / 12), std::cos(std::numbers::pi / 12)});
        user->Release(row.button);
        EXPECT_EQ(Mode(), ModeIdle);
        user->MoveTo(20, 20);
    }
}

// ---- keys

TEST_P(PlaneAtTheControls, MovesByExactlyOneUnitPerArrowKey) {
    user->Type(KV_ScenePane::kKeyUp);
    user->Type(KV_ScenePane::kKeyUp);
    EXPECT_EQ(plane.GetCenter(), (Double3{0, 0, 2}));
    user->Type(KV_ScenePane::kKeyDown);
    EXPECT_EQ(plane.GetCenter(), (Double3{0, 0, 1}));
    EXPECT_EQ(viewer.window->swaps, 3);
}

TEST_P(PlaneAtTheControls, MovesByTheNormalRotatedOnceMoreWhenItIsTilted) {
    viewer->SetClipPlane(1, 2, 3, 0, 0.6f, 0.8f);
    user->Type(KV_ScenePane::kKeyUp);
    // The rotation that maps (0, 0, 1) to (0, 0.6, 0.8) maps that to (0, 2 * 0.6 * 0.8, 0.64 - 0.36).
    ExpectPlane({1, 2.96, 3.28}, {0, 0.6, 0.8}, 1e-6);
    viewer->SetClipPlane(1, 2, 3, 1, 0, 0);
    user->Type(KV_ScenePane::kKeyDown);
    ExpectPlane({1, 2, 4}, {1, 0, 0}, 1e-6);
}

// ---- what keeps the mouse away from the plane

TEST_P(PlaneAtTheControls, IsOutOfReachWhileItIsHidden) {
    const Pixel arrow = Arrow();
    viewer->SetClipPlaneEnabled(0);
    MoveTo(arrow);
    EXPECT_FALSE(plane.IsPicked());
    user->Press(L);
    EXPECT_EQ(Mode(), ModeRotate);
    user->HoldCtrl(true);
    MoveTo(arrow + Pixel{0, -40});
    EXPECT_EQ(Mode(), ModeRotate);
    user->Release(L);
    user->HoldCtrl(false);
    user->Type(KV_ScenePane::kKeyUp);
    ExpectPlane({0, 0, 0}, {0, 0, 1}, 0);
}

TEST_P(PlaneAtTheControls, IsOutOfReachWhenItIsHiddenUnderThePointer) {
    MoveTo(Arrow());
    ASSERT_TRUE(plane.IsPicked());
    viewer->SetClipPlaneEnabled(0);
    user->Press(L);
    EXPECT_EQ(Mode(), ModeRotate);
    user->MoveTo(320, 100);
    user->Release(L);
    ExpectPlane({0, 0, 0}, {0, 0, 1}, 0);
}

TEST_P(PlaneAtTheControls, LeavesTheDoubleClickToTheViewWhenItIsDisabled) {
    viewer->SetClipPlane(0, 0, 0, 0, 0.6f, 0.8f);
    viewer->SetClipPlaneDisabled();
    viewer->m_fViewCenter = {5, 6, 7};
    viewer->m_fZoom = 2;
    user->MoveTo(320, 300);
    user->HoldCtrl(true);
    user->DoubleClick();
    EXPECT_EQ(viewer->m_fViewCenter, (Float3{0, 0, 0}));
    EXPECT_EQ(viewer->m_fZoom, 1.0f);
    EXPECT_NEAR(Get().normal[1], 0.6, 1e-6) << "the plane was not placed";
    EXPECT_EQ(Mode(), ModeIdle);
}

TEST_P(PlaneAtTheControls, IsPlacedAtTheDataByADoubleClickWithCtrl) {
    viewer->SetClipPlane(0, 0, 9, 0, 0.6f, 0.8f);
    viewer->m_fViewCenter = {5, 6, 7};
    user->MoveTo(320, 300);
    user->HoldCtrl(true);
    viewer.window->Forget();
    user->DoubleClick();
    const auto height = static_cast<double>(viewer->GetClipHeight().height);
    EXPECT_NE(height, 9);
    ExpectPlane({0, 0, height}, {0, 0, 1}, 1e-5);
    EXPECT_EQ(viewer->m_fViewCenter, (Float3{5, 6, 7})) << "the view stays";
    EXPECT_EQ(viewer.window->waitCursorsBegun, 1);
    EXPECT_EQ(viewer.window->waitCursorsEnded, 1);
    EXPECT_EQ(Mode(), ModeIdle);
}

TEST_P(PlaneAtTheControls, StaysWhileTheHostDoesNotAllowTheMouse) {
    const Pixel arrow = Arrow();
    MoveTo(arrow);
    ASSERT_TRUE(plane.IsPicked());
    viewer->AllowMouseInteraction(0);
    viewer.window->Forget();
    user->Press(L);
    EXPECT_EQ(Mode(), ModePlaneHandle) << "presses are not held back";
    MoveTo(arrow + Pixel{0, -50});
    ExpectPlane({0, 0, 0}, {0, 0, 1}, 0);
    EXPECT_EQ(viewer.window->swaps, 0);
    user->Release(L);
    EXPECT_EQ(Mode(), ModeIdle);
    MoveTo(kNowhere);
    EXPECT_TRUE(plane.IsPicked()) << "no hover clears it";
    viewer->AllowMouseInteraction(1);
    MoveTo(kNowhere + Pixel{1, 0});
    EXPECT_FALSE(plane.IsPicked());
}

// ---- the delayed scheme

TEST_P(PlaneAtTheControls, IsDraggedByAHandleInTheDelayedScheme) {
    viewer->SetIGDRotation(1);
    const Pixel arrow = Arrow();
    MoveTo(arrow);
    user->Press(L);
    EXPECT_EQ(Mode(), ModeIdle) << "not before the delay is over";
    EndDispatchDelay(viewer);
    ASSERT_EQ(Mode(), ModePlaneHandle);
    MoveTo(arrow + Pixel{0, -20});
    ExpectPlane({0, 0, 2}, {0, 0, 1});
    user->Release(L);
    EXPECT_EQ(Mode(), ModeIdle);
    EXPECT_TRUE(plane.m_bRotateHandlesVisible);
    MoveTo(arrow + Pixel{0, -90});
    ExpectPlane({0, 0, 2}, {0, 0, 1});
}

TEST_P(PlaneAtTheControls, IsMovedByTheChordOfTheDelayedSchemeAndRotatedByTheRightButton) {
    viewer->SetIGDRotation(1);
    user->MoveTo(320, 300);
    user->HoldCtrl(true);
    user->Press(R);
    EndDispatchDelay(viewer);
    EXPECT_EQ(Mode(), ModePlaneRotate);
    user->Press(L);
    EndDispatchDelay(viewer);
    EXPECT_EQ(Mode(), ModePlaneMove);
    user->MoveTo(320, 290);
    ExpectPlane({0, 0, 1}, {0, 0, 1});
    user->Release(L);
    EXPECT_EQ(Mode(), ModePlaneRotate);
    user->MoveTo(320, 330);
    ExpectPlane({0, 0, 1}, {0, -std::sin(std::numbers::pi / 12), std::cos(std::numbers::pi / 12)});
    user->Release(R);
    EXPECT_EQ(Mode(), ModeIdle);
}

TEST_P(PlaneAtTheControls, IsMovedByBothButtonsPressedAtOnceInTheDelayedScheme) {
    viewer->SetIGDRotation(1);
    user->MoveTo(320, 300);
    user->HoldCtrl(true);
    user->Press(R);
    user->Press(L);
    EndDispatchDelay(viewer);
    EXPECT_EQ(Mode(), ModePlaneMove);
    user->MoveTo(320, 280);
    ExpectPlane({0, 0, 2}, {0, 0, 1});
    user->Release(L);
    user->Release(R);
    EXPECT_EQ(Mode(), ModeIdle);
}

TEST_P(PlaneAtTheControls, IsPlacedByAMiddleClickWithCtrlInTheDelayedScheme) {
    viewer->SetIGDRotation(1);
    viewer->SetClipPlane(0, 0, 9, 0, 0.6f, 0.8f);
    viewer->m_fViewCenter = {5, 6, 7};
    const auto click = [&] {
        user->Press(M);
        user->Release(M);
        EndDispatchDelay(viewer);
    };
    user->MoveTo(320, 300);
    user->HoldCtrl(true);
    Settle();
    const auto before = ShownFrame();
    click();
    EXPECT_EQ(viewer.window->swaps, 1);
    EXPECT_FALSE(ShownFrame() == before) << "the placed plane is shown at once";
    ExpectPlane({0, 0, static_cast<double>(viewer->GetClipHeight().height)}, {0, 0, 1}, 1e-5);
    EXPECT_EQ(viewer->m_fViewCenter, (Float3{5, 6, 7}));
    user->HoldCtrl(false);
    viewer->SetClipPlane(0, 0, 9, 0, 0.6f, 0.8f);
    click();
    EXPECT_EQ(viewer->m_fViewCenter, (Float3{0, 0, 0}));
    EXPECT_NEAR(Get().normal[1], 0.6, 1e-6);
}

INSTANTIATE_TEST_SUITE_P(Ways, PlaneAtTheControls, BothWays(), NameOfWay);

}  // namespace
