// What each release does in each interaction mode: the mode that it returns to, the capture, the dialog, the handles of
// the plane, the repaint.
#include "view/InputHelp.h"

namespace {

constexpr std::int32_t kX = 300, kY = 200;

enum class Effect {
    Nothing,
    EndsDrag,      ///< back to the saved mode
    EndsViewDrag,  ///< the same, and the plane is not touched
    KeepsRight,    ///< the chord's left button: the right one still holds the drag, now rotating
    ReleasesOnly,  ///< the capture, and a repaint
    EndsHandle,    ///< back to the saved mode; a handle never had the capture
};

struct Release {
    std::int32_t mode, igd;
    Effect effect;
};

constexpr auto kNothing = Effect::Nothing, kEnds = Effect::EndsDrag;

const Release kLeftReleases[] = {
    {ModeIdle, 0, Effect::ReleasesOnly},
    {ModeIdle, 1, Effect::ReleasesOnly},
    {ModeRotate, 0, kEnds},
    {ModeRotate, 1, kEnds},
    {2, 0, kNothing},
    {ModePan, 0, kEnds},
    {ModePan, 1, Effect::KeepsRight},
    {ModePan, 2, kEnds},
    {ModeLasso, 0, kNothing},
    {ModeLasso, 1, kNothing},
    {5, 0, kNothing},
    {ModeAlignInteractive, 0, kEnds},
    {ModeAlignInteractive, 1, kEnds},
    {ModeAlignPickPoints, 0, kEnds},
    {ModeAlignPickPoints, 1, kEnds},
    {8, 0, kNothing},
    {ModePlaneHandle, 0, Effect::EndsHandle},
    {ModePlaneHandle, 1, Effect::EndsHandle},
    {ModeMaskLasso, 0, kNothing},
    {ModePlaneRotate, 0, kEnds},
    {ModePlaneRotate, 1, kEnds},
    {ModePlaneMove, 0, kEnds},
    {ModePlaneMove, 1, Effect::KeepsRight},
    {ModePlaneMove, 2, kEnds},
};
const Release kRightReleases[] = {
    {ModeIdle, 0, kNothing},
    {ModeIdle, 1, kNothing},
    {ModeRotate, 0, kEnds},
    {ModeRotate, 1, kEnds},
    {2, 0, kNothing},
    {ModePan, 0, kEnds},
    {ModePan, 1, kEnds},
    {ModeLasso, 0, kNothing},
    {5, 0, kNothing},
    {ModeAlignInteractive, 0, kEnds},
    {ModeAlignInteractive, 1, kEnds},
    {ModeAlignPickPoints, 0, kEnds},
    {8, 0, kNothing},
    {ModePlaneHandle, 0, kNothing},
    {ModeMaskLasso, 0, kNothing},
    {ModePlaneRotate, 0, kEnds},
    {ModePlaneMove, 0, kEnds},
    {ModePlaneMove, 1, kEnds},
};
const Release kMiddleReleases[] = {
    {ModeIdle, 0, kNothing},
    {ModeIdle, 1, kNothing},
    {ModeRotate, 0, Effect::EndsViewDrag},
    {ModeRotate, 1, Effect::EndsViewDrag},
    {2, 0, kNothing},
    {ModePan, 0, kNothing},
    {ModeLasso, 0, kNothing},
    {5, 0, kNothing},
    {ModeAlignInteractive, 0, kNothing},
    {ModeAlignPickPoints, 0, kNothing},
    {8, 0, kNothing},
    {ModePlaneHandle, 0, kNothing},
    {ModeMaskLasso, 0, kNothing},
    {ModePlaneRotate, 0, kEnds},
    {ModePlaneMove, 0, kNothing},
};

/// In the middle of a drag, with everything set that its end may clear.
struct DraggingControl : InputControl {
    void Drag(const Release& row, bool hasDialog, bool rolls) {
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
    EXPECT_EQ(c.RepaintsAsked(), 0);
    EXPECT_TRUE(c.dialog.calls.empty());
}

void ExpectEnded(const DraggingControl& c, bool hasDialog, bool rolls) {
    EXPECT_EQ(c->m_nInteractionMode, kNoMode) << "the saved one";
    EXPECT_FALSE(c.window->HasCapture());
    EXPECT_EQ(c->m_bMoving, 0);
    EXPECT_EQ(c->m_bRollRotation, 0);
    EXPECT_EQ(c->m_bLassoCursor, rolls ? 0 : 1) << "the end of a roll takes the cursor with it";
    EXPECT_EQ(c.window->refreshes, 1);
    EXPECT_EQ(c.RepaintsAsked(), 1);
    EXPECT_EQ(c.dialog.calls, hasDialog ? (Calls{"OnRotateEnd 300 200", "OnMoveEnd 300 200"}) : Calls{});
}

void ExpectEffect(const DraggingControl& c, const Release& row, bool hasDialog, bool rolls, bool ctrl) {
    const Plane& plane = c->m_clipPlane;
    switch (row.effect) {
        case Effect::Nothing:
            EXPECT_EQ(c->m_nInteractionMode, row.mode);
            ExpectStillDragging(c, rolls);
            ExpectUntouchedPlane(plane);
            break;
        case Effect::EndsDrag:
            ExpectEnded(c, hasDialog, rolls);
            ExpectPlane(plane, ctrl);
            break;
        case Effect::EndsViewDrag:
            ExpectEnded(c, hasDialog, rolls);
            ExpectUntouchedPlane(plane);
            break;
        case Effect::KeepsRight:
            EXPECT_EQ(c->m_nInteractionMode, row.mode == ModePan ? ModeRotate : ModePlaneRotate);
            ExpectStillDragging(c, rolls);
            break;
        case Effect::ReleasesOnly:
            EXPECT_EQ(c->m_nInteractionMode, ModeIdle);
            EXPECT_FALSE(c.window->HasCapture());
            EXPECT_EQ(c->m_bMoving, 1) << "nothing clears it here";
            EXPECT_EQ(c.window->refreshes, 1);
            EXPECT_TRUE(c.dialog.calls.empty());
            ExpectUntouchedPlane(plane);
            break;
        case Effect::EndsHandle:
            EXPECT_EQ(c->m_nInteractionMode, kNoMode);
            EXPECT_TRUE(c.window->HasCapture());
            EXPECT_EQ(c.window->refreshes, 1);
            EXPECT_TRUE(c.dialog.calls.empty());
            ExpectPlane(plane, ctrl);
            break;
    }
    EXPECT_EQ(c->m_nSavedInteractionMode, kNoMode) << "only presses write it";
    EXPECT_TRUE(c.KeptNoPoint());
    EXPECT_EQ(c->m_bAnimationRunning, 1) << "only presses stop it";
}

using Handler = void (CKV_ScenePaneCtrl::*)(std::uint32_t, std::int32_t, std::int32_t);

template <std::size_t N>
void ExpectReleases(const Release (&rows)[N], Handler handler, bool clearsRight) {
    DraggingControl c;
    for (const Release& row : rows) {
        for (const bool hasDialog : {false, true}) {
            for (const bool ctrl : {false, true}) {
                const bool rolls = ctrl;  // any pairing will do: neither knows of the other
                SCOPED_TRACE(testing::Message() << "mode " << row.mode << ", scheme " << row.igd << ", dialog "
                                                << hasDialog << ", ctrl " << ctrl);
                c.Drag(row, hasDialog, rolls);
                ((*c).*handler)(ctrl ? kCtrl : 0, kX, kY);
                ExpectEffect(c, row, hasDialog, rolls, ctrl);
                EXPECT_EQ(c->m_bRightButtonPressed, clearsRight ? 0 : 1);
            }
        }
    }
}

TEST(LeftRelease, EndsWhatItsModeSays) { ExpectReleases(kLeftReleases, &CKV_ScenePaneCtrl::OnLeftUp, false); }
TEST(RightRelease, EndsWhatItsModeSays) { ExpectReleases(kRightReleases, &CKV_ScenePaneCtrl::OnRightUp, true); }
TEST(MiddleRelease, EndsWhatItsModeSays) { ExpectReleases(kMiddleReleases, &CKV_ScenePaneCtrl::OnMiddleUp, false); }

TEST(LeftRelease, OfAPlaneChordTakesThePlaneAnew) {
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

// ---- whole drags

TEST(Release, ReturnsToTheModeBeforeThePress) {
    struct Row {
        std::int32_t mode;
        std::uint32_t flags;
    };
    for (const Row& row : {Row{ModeIdle, 0}, Row{ModeAlignInteractive, 0}, Row{ModeAlignInteractive, kCtrl},
                           Row{ModeAlignPickPoints, 0}, Row{ModeAlignPickPoints, kCtrl}}) {
        for (const bool left : {true, false}) {
            SCOPED_TRACE(testing::Message() << "mode " << row.mode << ", flags " << row.flags << ", left " << left);
            InputControl c({.mode = row.mode, .dialog = row.mode != ModeIdle});
            if (left) {
                c->OnLeftDown(kLeft | row.flags, kX, kY);
                c->OnLeftUp(row.flags, kX, kY);
            } else {
                c->OnRightDown(kRight | row.flags, kX, kY);
                c->OnRightUp(row.flags, kX, kY);
            }
            EXPECT_EQ(c->m_nInteractionMode, row.mode);
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

TEST(Release, InAWrongModeLeavesTheCapture) {
    InputControl c;
    c->OnLeftDown(kLeft, kX, kY);
    c->m_nInteractionMode = ModeLasso;  // the host started one during the drag
    c->OnLeftUp(0, kX, kY);
    EXPECT_TRUE(c.window->HasCapture());
    EXPECT_EQ(c->m_bMoving, 1);
    EXPECT_EQ(c->m_nInteractionMode, ModeLasso);
}

TEST(Release, WorksWithoutTheHostsLeaveToMove) {
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

TEST(Release, OfAPlainClickInTheDelayedSchemeLeavesTheViewMoving) {
    InputControl c({.igd = 1});
    c->OnLeftDown(kLeft, kX, kY);
    c->OnLeftUp(kLeft, kX, kY);
    EXPECT_EQ(c->m_nInteractionMode, ModeIdle);
    EXPECT_FALSE(c.window->HasCapture());
    EXPECT_EQ(c->m_bMoving, 1);
}

TEST(Release, OfAShiftAndLeftPanInTheDelayedSchemeGoesOnRotating) {
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

// The plane is hidden while a right drag with Ctrl begins.
TEST(RightDragWithCtrl, WithoutAPlanePansFromTheSecondMoveOn) {
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

TEST(PlaneHandleDrag, KeepsTheNewPlaceByARelease) {
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

TEST(PlaneHandleDrag, GoesBackByEscape) {
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
