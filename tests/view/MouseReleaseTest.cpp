// What the release of each button does in each interaction mode: the mode that it returns to, the capture, the dialog,
// the handles of the plane, the repaint.
#include "view/InputHelp.h"

namespace {

constexpr std::int32_t kX = 300, kY = 200;

enum class Effect {
    Nothing,
    EndsDrag,         ///< back to the saved mode
    EndsViewDrag,     ///< the same, and the plane is not touched
    RightContinues,   ///< the left button of a chord: the right one still drags, and rotates now
    ReleasesCapture,  ///< and repaints
    EndsHandleDrag,   ///< back to the saved mode; a handle never had the capture
};
using enum Effect;

struct ReleaseRow {
    std::int32_t mode, igd;
    Effect left, right, middle;
};

const ReleaseRow kReleases[] = {
    {ModeIdle, 0, ReleasesCapture, Nothing, Nothing},
    {ModeIdle, 1, ReleasesCapture, Nothing, Nothing},
    {ModeRotate, 0, EndsDrag, EndsDrag, EndsViewDrag},
    {ModeRotate, 1, EndsDrag, EndsDrag, EndsViewDrag},
    {2, 0, Nothing, Nothing, Nothing},
    {ModePan, 0, EndsDrag, EndsDrag, Nothing},
    {ModePan, 1, RightContinues, EndsDrag, Nothing},
    {ModePan, 2, EndsDrag, EndsDrag, Nothing},
    {ModeLasso, 0, Nothing, Nothing, Nothing},
    {ModeLasso, 1, Nothing, Nothing, Nothing},
    {5, 0, Nothing, Nothing, Nothing},
    {ModeAlignInteractive, 0, EndsDrag, EndsDrag, Nothing},
    {ModeAlignInteractive, 1, EndsDrag, EndsDrag, Nothing},
    {ModeAlignPickPoints, 0, EndsDrag, EndsDrag, Nothing},
    {ModeAlignPickPoints, 1, EndsDrag, EndsDrag, Nothing},
    {8, 0, Nothing, Nothing, Nothing},
    {ModePlaneHandle, 0, EndsHandleDrag, Nothing, Nothing},
    {ModePlaneHandle, 1, EndsHandleDrag, Nothing, Nothing},
    {ModeMaskLasso, 0, Nothing, Nothing, Nothing},
    {ModePlaneRotate, 0, EndsDrag, EndsDrag, EndsDrag},
    {ModePlaneRotate, 1, EndsDrag, EndsDrag, EndsDrag},
    {ModePlaneMove, 0, EndsDrag, EndsDrag, Nothing},
    {ModePlaneMove, 1, RightContinues, EndsDrag, Nothing},
    {ModePlaneMove, 2, EndsDrag, EndsDrag, Nothing},
};

/// During a drag, with everything set that its end may clear.
struct DraggingControl : InputControl {
    void Drag(const ReleaseRow& row, bool hasDialog, bool rolls) {
        Set({.mode = row.mode, .igd = row.igd, .plane = true, .dialog = hasDialog, .rightPressed = true});
        CKV_ScenePaneCtrl& c = *control;
        window->SetCapture();
        c.m_bMoving = 1;
        c.m_bRollRotation = rolls;
        c.m_bLassoCursor = 1;
        c.m_clipPlane.m_bHighlighted = true;
        c.m_clipPlane.m_bMoveHandleVisible = c.m_clipPlane.m_bRotateHandlesVisible = false;
    }
};

void ExpectUntouchedPlane(const Plane& plane) {
    EXPECT_TRUE(plane.m_bHighlighted);
    EXPECT_FALSE(plane.m_bMoveHandleVisible);
    EXPECT_FALSE(plane.m_bRotateHandlesVisible);
}

void ExpectPlane(const Plane& plane, bool highlighted) {
    EXPECT_EQ(plane.m_bHighlighted, highlighted);
    EXPECT_TRUE(plane.m_bMoveHandleVisible);
    EXPECT_TRUE(plane.m_bRotateHandlesVisible);
}

void ExpectStillDragging(const DraggingControl& c, bool rolls) {
    EXPECT_TRUE(c.window->HasCapture());
    EXPECT_EQ(c->m_bMoving, 1);
    EXPECT_EQ(c->m_bRollRotation, rolls);
    EXPECT_EQ(c->m_bLassoCursor, 1);
    EXPECT_EQ(c.RepaintRequests(), 0);
    EXPECT_TRUE(c.dialog.calls.empty());
}

void ExpectEnded(const DraggingControl& c, bool hasDialog, bool rolls) {
    EXPECT_EQ(c->m_nInteractionMode, kNoMode) << "the saved one";
    EXPECT_FALSE(c.window->HasCapture());
    EXPECT_EQ(c->m_bMoving, 0);
    EXPECT_EQ(c->m_bRollRotation, 0);
    EXPECT_EQ(c->m_bLassoCursor, rolls ? 0 : 1) << "the end of a roll resets the cursor";
    EXPECT_EQ(c.window->refreshes, 1);
    EXPECT_EQ(c.RepaintRequests(), 1);
    EXPECT_EQ(c.dialog.calls, hasDialog ? (Calls{"OnRotateEnd 300 200", "OnMoveEnd 300 200"}) : Calls{});
}

void ExpectEffect(const DraggingControl& c, std::int32_t mode, Effect effect, bool hasDialog, bool rolls, bool ctrl) {
    const Plane& plane = c->m_clipPlane;
    switch (effect) {
        case Nothing:
            EXPECT_EQ(c->m_nInteractionMode, mode);
            ExpectStillDragging(c, rolls);
            ExpectUntouchedPlane(plane);
            break;
        case EndsDrag:
            ExpectEnded(c, hasDialog, rolls);
            ExpectPlane(plane, ctrl);
            break;
        case EndsViewDrag:
            ExpectEnded(c, hasDialog, rolls);
            ExpectUntouchedPlane(plane);
            break;
        case RightContinues:
            EXPECT_EQ(c->m_nInteractionMode, mode == ModePan ? ModeRotate : ModePlaneRotate);
            ExpectStillDragging(c, rolls);
            break;
        case ReleasesCapture:
            EXPECT_EQ(c->m_nInteractionMode, ModeIdle);
            EXPECT_FALSE(c.window->HasCapture());
            EXPECT_EQ(c->m_bMoving, 1) << "nothing clears it here";
            EXPECT_EQ(c.window->refreshes, 1);
            EXPECT_TRUE(c.dialog.calls.empty());
            ExpectUntouchedPlane(plane);
            break;
        case EndsHandleDrag:
            EXPECT_EQ(c->m_nInteractionMode, kNoMode);
            EXPECT_TRUE(c.window->HasCapture());
            EXPECT_EQ(c.window->refreshes, 1);
            EXPECT_TRUE(c.dialog.calls.empty());
            ExpectPlane(plane, ctrl);
            break;
    }
    EXPECT_EQ(c->m_nSavedInteractionMode, kNoMode) << "only presses write it";
    EXPECT_TRUE(c.LastPointUnchanged());
    EXPECT_EQ(c->m_bAnimationRunning, 1) << "only presses stop it";
}

class MouseRelease : public testing::TestWithParam<Button> {};

TEST_P(MouseRelease, EndsTheDragOfItsMode) {
    const Button button = GetParam();
    DraggingControl c;
    for (const ReleaseRow& row : kReleases) {
        const Effect effect = button == Button::Left ? row.left : button == Button::Right ? row.right : row.middle;
        for (const bool hasDialog : {false, true}) {
            for (const bool ctrl : {false, true}) {
                const bool rolls = ctrl;  // independent of each other, so one loop varies both
                SCOPED_TRACE(testing::Message() << "mode " << row.mode << ", igd " << row.igd << ", dialog "
                                                << hasDialog << ", ctrl " << ctrl);
                c.Drag(row, hasDialog, rolls);
                c.Release(button, ctrl ? kCtrl : 0, kX, kY);
                ExpectEffect(c, row.mode, effect, hasDialog, rolls, ctrl);
                EXPECT_EQ(c->m_bRightButtonPressed, button == Button::Right ? 0 : 1);
            }
        }
    }
}
INSTANTIATE_TEST_SUITE_P(Buttons, MouseRelease, testing::Values(Button::Left, Button::Middle, Button::Right),
                         [](const auto& row) { return testing::PrintToString(row.param); });

TEST(LeftRelease, OfAChordOnThePlaneStartsAPlaneRotation) {
    InputControl c({.mode = ModePlaneMove, .igd = 1, .plane = true});
    c->m_clipPlane.m_drag = {};
    c->m_clipPlane.OnPicked(0);
    c->OnLeftUp(0, kX, kY);
    EXPECT_EQ(c->m_nInteractionMode, ModePlaneRotate);
    EXPECT_FALSE(c->m_clipPlane.IsPicked());
    EXPECT_TRUE(c->m_clipPlane.m_bHighlighted);
    EXPECT_FALSE(c->m_clipPlane.m_bMoveHandleVisible);
    EXPECT_TRUE(c->m_clipPlane.m_bRotateHandlesVisible);
    EXPECT_EQ(c->m_clipPlane.m_drag.pressX, kX);
    EXPECT_EQ(c->m_clipPlane.m_drag.pressY, kY);
}

// ---- press and release

TEST(Release, ReturnsToTheModeBeforeThePress) {
    struct Row {
        Before before;
        std::uint32_t flags;
    };
    for (const Row& row : {Row{{}, 0}, Row{Aligning(), 0}, Row{Aligning(), kCtrl}, Row{PickingPoints(), 0},
                           Row{PickingPoints(), kCtrl}}) {
        for (const Button button : {Button::Left, Button::Right}) {
            SCOPED_TRACE(testing::Message() << "mode " << row.before.mode << ", flags " << row.flags << ", "
                                            << testing::PrintToString(button));
            InputControl c(row.before);
            c.Press(button, FlagOf(button) | row.flags, kX, kY);
            c.Release(button, row.flags, kX, kY);
            EXPECT_EQ(c->m_nInteractionMode, row.before.mode);
            EXPECT_EQ(c->m_bMoving, 0);
            EXPECT_FALSE(c.window->HasCapture());
        }
    }
}

TEST(Release, OfTheOtherButtonEndsARoll) {
    InputControl c;
    c->OnLeftDown(kLeft, 20, 20);
    ASSERT_EQ(c->m_bRollRotation, 1);
    c->OnRightUp(kLeft, 30, 20);
    EXPECT_EQ(c->m_nInteractionMode, ModeIdle);
    EXPECT_EQ(c->m_bRollRotation, 0);
    EXPECT_EQ(c->m_bMoving, 0);
    EXPECT_FALSE(c.window->HasCapture());
}

TEST(Release, InAnotherModeThanThatOfTheDragKeepsTheCapture) {
    InputControl c;
    c->OnLeftDown(kLeft, kX, kY);
    c->m_nInteractionMode = ModeLasso;  // the host started one during the drag
    c->OnLeftUp(0, kX, kY);
    EXPECT_TRUE(c.window->HasCapture());
    EXPECT_EQ(c->m_bMoving, 1);
    EXPECT_EQ(c->m_nInteractionMode, ModeLasso);
}

TEST(Release, EndsADragWhileTheHostDoesNotAllowTheMouse) {
    InputControl c;
    c->AllowMouseInteraction(0);
    const Float3 axis = c->m_fAxisX;
    c->OnLeftDown(kLeft, kX, kY);
    EXPECT_EQ(c->m_nInteractionMode, ModeRotate);
    EXPECT_TRUE(c.window->HasCapture());
    c->OnMouseMoved(kLeft, kX + 50, kY + 50);
    EXPECT_EQ(c->m_fAxisX, axis);
    EXPECT_EQ(c->m_nLastMouseX, kX);
    c->OnLeftUp(0, kX + 50, kY + 50);
    EXPECT_EQ(c->m_nInteractionMode, ModeIdle);
    EXPECT_FALSE(c.window->HasCapture());
}

TEST(Release, OfALeftClickInTheDelayedSchemeKeepsTheMovingFlag) {
    InputControl c({.igd = 1});
    c->OnLeftDown(kLeft, kX, kY);
    c->OnLeftUp(kLeft, kX, kY);
    EXPECT_EQ(c->m_nInteractionMode, ModeIdle);
    EXPECT_FALSE(c.window->HasCapture());
    EXPECT_EQ(c->m_bMoving, 1);
}

TEST(Release, OfAPanByShiftAndLeftInTheDelayedSchemeContinuesAsARotation) {
    InputControl c({.igd = 1});
    c->OnLeftDown(kLeft | kShift, kX, kY);
    ASSERT_EQ(c->m_nInteractionMode, ModePan);
    c->OnLeftUp(0, 0, 0);
    EXPECT_EQ(c->m_nInteractionMode, ModeRotate);
    EXPECT_TRUE(c.window->HasCapture());
    EXPECT_EQ(c->m_bMoving, 1);
    c->OnLeftUp(0, 0, 0);
    EXPECT_EQ(c->m_nInteractionMode, ModeIdle) << "the next release ends it";
}

TEST(RightDragWithCtrl, WithoutAVisiblePlanePansFromTheSecondMoveOn) {
    InputControl c;
    c->OnRightDown(kRight | kCtrl, kX, kY);
    ASSERT_EQ(c->m_nInteractionMode, ModePlaneMove);
    const Float3 center = c->m_fViewCenter;
    c->OnMouseMoved(kRight | kCtrl, kX + 10, kY);
    EXPECT_EQ(c->m_nInteractionMode, ModePan);
    EXPECT_EQ(c->m_fViewCenter, center);
    c->OnMouseMoved(kRight | kCtrl, kX + 20, kY);
    EXPECT_NE(c->m_fViewCenter, center);
}

// ---- a handle of the plane

TEST(PlaneHandleDrag, KeepsTheNewPositionAfterTheRelease) {
    InputControl c({.plane = true});
    c->m_clipPlane.SetCenter({0, 0, 0});
    c->m_clipPlane.SetNormal({1, 0, 0});
    c->m_clipPlane.OnPicked(0);  // the arrow
    c->OnLeftDown(kLeft, kX, kY);
    ASSERT_EQ(c->m_nInteractionMode, ModePlaneHandle);
    c->OnMouseMoved(kLeft, kX - 60, kY - 30);
    const Double3 moved = c->m_clipPlane.GetCenter();
    EXPECT_GT(std::abs(moved[0]), 1.0);
    c->OnLeftUp(0, kX - 60, kY - 30);
    EXPECT_EQ(c->m_clipPlane.GetCenter(), moved);
    EXPECT_EQ(c->m_nInteractionMode, ModeIdle);
}

TEST(PlaneHandleDrag, IsUndoneByEscape) {
    for (const std::int32_t flags : {0, 8}) {
        InputControl c({.plane = true});
        c->m_clipPlane.SetCenter({0, 0, 0});
        c->m_clipPlane.SetNormal({1, 0, 0});
        const auto start = c->m_clipPlane.m_dMatrix;
        c->m_clipPlane.OnPicked(0);
        c->OnLeftDown(kLeft, kX, kY);
        c->OnMouseMoved(kLeft, kX - 60, kY - 30);
        ASSERT_NE(c->m_clipPlane.m_dMatrix, start);
        c.window->Forget();
        c->OnKeyPressed(KV_ScenePane::kKeyEscape, 1, flags);
        EXPECT_EQ(c->m_clipPlane.m_dMatrix, start);
        EXPECT_EQ(c->m_nInteractionMode, ModeIdle);
        ExpectPlane(c->m_clipPlane, flags == 8);
        EXPECT_EQ(c.window->refreshes, 1);
    }
}

}  // namespace
