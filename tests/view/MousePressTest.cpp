// What a press of each button does in each interaction mode: the mode that it leads to, the mode that a release will
// return to, the capture, the start of a drag, the repaints. And lasso points, and where a press begins a roll.
#include "support/TestCutSession.h"
#include "view/InputHelp.h"

namespace {

constexpr std::int32_t kX = 300, kY = 200;  // within the inscribed circle
constexpr auto L = Button::Left, M = Button::Middle, R = Button::Right;

enum class Effect {
    Drag,    ///< captures, keeps point and view of the press, and saves the mode before it
    NoDrag,  ///< at most another mode
};
constexpr auto kDrag = Effect::Drag, kNoDrag = Effect::NoDrag;

struct PressRow {
    const char* name;
    Button button;
    Before before;
    std::uint32_t held;  ///< flags beside that of the button
    std::int32_t mode;   ///< after the press
    Effect effect = kDrag;
    Calls dialogCalls{};
};
void PrintTo(const PressRow& row, std::ostream* out) { *out << row.name; }

const PressRow kPresses[] = {
    // left button
    {"LeftInIdleRotates", L, {}, 0, ModeRotate},
    {"LeftInIdleWithShiftRotates", L, {}, kShift, ModeRotate},
    {"LeftInIdleWithRightHeldRotates", L, {}, kRight, ModeRotate},
    {"LeftInIdleWithCtrlAndNoPlaneRotates", L, {}, kCtrl, ModeRotate},
    {"LeftInIdleWithCtrlRotatesThePlane", L, {.plane = true}, kCtrl, ModePlaneRotate},
    {"LeftInIdleWithThePlaneShownRotates", L, {.plane = true}, 0, ModeRotate},
    {"LeftInIdleFlippedPans", L, {.flip = 1}, 0, ModePan},
    {"LeftInIdleFlippedByAnyNumberPans", L, {.flip = -5}, 0, ModePan},
    {"LeftInIdleFlippedWithCtrlMovesThePlane", L, {.flip = 1, .plane = true}, kCtrl, ModePlaneMove},
    {"LeftInIdleFlippedWithCtrlAndNoPlanePans", L, {.flip = 1}, kCtrl, ModePan},
    {"LeftInIdleDelayedStaysIdle", L, {.igd = 1}, 0, ModeIdle},
    {"LeftInIdleDelayedFlippedStaysIdle", L, {.igd = 1, .flip = 1}, 0, ModeIdle},
    {"LeftInIdleDelayedAndMovedStaysIdle", L, {.igd = 1}, kMouseMoved, ModeIdle},
    {"LeftInIdleDelayedWithShiftPans", L, {.igd = 1}, kShift, ModePan},
    {"LeftInIdleDelayedChordPans", L, {.igd = 1}, kRight, ModePan},
    {"LeftInIdleDelayedByAnyNumberWithShiftPans", L, {.igd = -2}, kShift, ModePan},
    {"LeftInIdleDelayedWithCtrlStaysIdle", L, {.igd = 1, .plane = true}, kCtrl, ModeIdle},
    {"LeftInIdleDelayedWithShiftAndCtrlMovesThePlane", L, {.igd = 1, .plane = true}, kShift | kCtrl, ModePlaneMove},
    {"LeftInRotateKeepsTheMode", L, {.mode = ModeRotate}, 0, ModeRotate, kNoDrag},
    {"LeftInRotateFlippedKeepsTheMode", L, {.mode = ModeRotate, .flip = 1}, kRight, ModeRotate, kNoDrag},
    {"LeftInRotateDelayedBecomesPan", L, {.mode = ModeRotate, .igd = 1}, kRight, ModePan, kNoDrag},
    {"LeftInRotateWithIgdTwoKeepsTheMode", L, {.mode = ModeRotate, .igd = 2}, kRight, ModeRotate, kNoDrag},
    {"LeftInPanKeepsTheMode", L, {.mode = ModePan}, 0, ModePan, kNoDrag},
    {"LeftInPanDelayedKeepsTheMode", L, {.mode = ModePan, .igd = 1}, kRight, ModePan, kNoDrag},
    {"LeftInPlaneRotateKeepsTheMode", L, {.mode = ModePlaneRotate, .plane = true}, kCtrl, ModePlaneRotate, kNoDrag},
    {"LeftInPlaneRotateDelayedBecomesPlaneMove",
     L,
     {.mode = ModePlaneRotate, .igd = 1, .plane = true},
     kCtrl,
     ModePlaneMove,
     kNoDrag},
    {"LeftInPlaneRotateWithIgdTwoKeepsTheMode",
     L,
     {.mode = ModePlaneRotate, .igd = 2, .plane = true},
     kCtrl,
     ModePlaneRotate,
     kNoDrag},
    {"LeftInPlaneMoveKeepsTheMode", L, {.mode = ModePlaneMove, .plane = true}, kCtrl, ModePlaneMove, kNoDrag},
    {"LeftInPlaneHandleKeepsTheMode", L, {.mode = ModePlaneHandle, .plane = true}, 0, ModePlaneHandle, kNoDrag},
    {"LeftInUnassignedModeKeepsTheMode", L, {.mode = 5}, 0, 5, kNoDrag},
    {"LeftInAlignmentDrags", L, Aligning(), 0, ModeAlignInteractive},
    {"LeftInAlignmentWithoutDialogCaptures", L, {.mode = ModeAlignInteractive}, 0, ModeAlignInteractive},
    {"LeftInAlignmentWithCtrlRotates", L, Aligning(), kCtrl, ModeRotate},
    {"LeftInAlignmentWithCtrlFlippedPans", L, Aligning({.flip = 1}), kCtrl, ModePan},
    {"LeftInAlignmentWithCtrlAndPlaneRotatesTheView", L, Aligning({.plane = true}), kCtrl, ModeRotate},
    {"LeftInAlignmentDelayedWithCtrlKeepsTheMode", L, Aligning({.igd = 1}), kCtrl, ModeAlignInteractive},
    {"LeftInAlignmentWithIgdTwoAndCtrlRotates", L, Aligning({.igd = 2}), kCtrl, ModeRotate},
    {"LeftInAlignmentChordEndsTheRotation",
     L,
     Aligning({.igd = 1, .rightPressed = true}),
     kRight,
     ModeAlignInteractive,
     kDrag,
     {"OnRotateEnd 300 200"}},
    {"LeftInAlignmentChordWithoutDialog",
     L,
     {.mode = ModeAlignInteractive, .igd = 1, .rightPressed = true},
     kRight,
     ModeAlignInteractive},
    {"LeftInAlignmentSecondButtonWithIgdZeroEndsNothing", L, Aligning({.rightPressed = true}), kRight,
     ModeAlignInteractive},
    {"LeftInAlignmentSecondButtonWithIgdTwoEndsNothing", L, Aligning({.igd = 2, .rightPressed = true}), kRight,
     ModeAlignInteractive},
    {"LeftInPickPointsClickStartsADrag", L, PickingPoints(), 0, ModeAlignPickPoints},
    {"LeftInPickPointsWithoutDialogCaptures", L, {.mode = ModeAlignPickPoints}, 0, ModeAlignPickPoints},
    {"LeftInPickPointsWithCtrlRotates", L, PickingPoints(), kCtrl, ModeRotate},
    {"LeftInPickPointsWithCtrlFlippedPans", L, PickingPoints({.flip = 1}), kCtrl, ModePan},
    {"LeftInPickPointsDelayedWithCtrlKeepsTheMode", L, PickingPoints({.igd = 1}), kCtrl, ModeAlignPickPoints},
    {"LeftInPickPointsWithIgdTwoAndCtrlRotates", L, {.mode = ModeAlignPickPoints, .igd = 2}, kCtrl, ModeRotate},
    // right button
    {"RightInIdlePans", R, {}, 0, ModePan},
    {"RightInIdleWithShiftPans", R, {}, kShift, ModePan},
    {"RightInIdleFlippedRotates", R, {.flip = 1}, 0, ModeRotate},
    {"RightInIdleFlippedWithShiftPans", R, {.flip = 1}, kShift, ModePan},
    {"RightInIdleFlippedWithLeftHeldPans", R, {.flip = 1}, kLeft, ModePan},
    {"RightInIdleFlippedWithMiddleHeldRotates", R, {.flip = 1}, kMiddle, ModeRotate},
    {"RightInIdleDelayedRotates", R, {.igd = 1}, 0, ModeRotate},
    {"RightInIdleDelayedAndMovedRotates", R, {.igd = 1}, kMouseMoved, ModeRotate},
    {"RightInIdleDelayedFlippedRotates", R, {.igd = 1, .flip = 1}, 0, ModeRotate},
    {"RightInIdleDelayedWithShiftPans", R, {.igd = 1}, kShift, ModePan},
    {"RightInIdleDelayedChordPans", R, {.igd = 1}, kLeft, ModePan},
    {"RightInIdleDelayedByAnyNumberRotates", R, {.igd = 2}, 0, ModeRotate},
    {"RightInIdleWithCtrlMovesThePlane", R, {.plane = true}, kCtrl, ModePlaneMove},
    {"RightInIdleWithCtrlMovesAHiddenPlane", R, {}, kCtrl, ModePlaneMove},
    {"RightInIdleFlippedWithCtrlRotatesAHiddenPlane", R, {.flip = 1}, kCtrl, ModePlaneRotate},
    {"RightInIdleDelayedWithCtrlRotatesThePlane", R, {.igd = 1, .plane = true}, kCtrl, ModePlaneRotate},
    {"RightInIdleDelayedWithShiftAndCtrlMovesThePlane", R, {.igd = 1, .plane = true}, kShift | kCtrl, ModePlaneMove},
    {"RightInRotateKeepsTheMode", R, {.mode = ModeRotate}, 0, ModeRotate, kNoDrag},
    {"RightInRotateDelayedKeepsTheMode", R, {.mode = ModeRotate, .igd = 1}, 0, ModeRotate, kNoDrag},
    {"RightInPanKeepsTheMode", R, {.mode = ModePan}, 0, ModePan, kNoDrag},
    {"RightInPlaneHandleKeepsTheMode", R, {.mode = ModePlaneHandle}, 0, ModePlaneHandle, kNoDrag},
    {"RightInPlaneRotateKeepsTheMode", R, {.mode = ModePlaneRotate, .plane = true}, kCtrl, ModePlaneRotate, kNoDrag},
    {"RightInPlaneMoveKeepsTheMode", R, {.mode = ModePlaneMove, .plane = true}, kCtrl, ModePlaneMove, kNoDrag},
    {"RightInUnassignedModeKeepsTheMode", R, {.mode = 8}, 0, 8, kNoDrag},
    {"RightInAlignmentDrags", R, Aligning(), 0, ModeAlignInteractive},
    {"RightInAlignmentWithoutDialogCaptures", R, {.mode = ModeAlignInteractive}, 0, ModeAlignInteractive},
    {"RightInAlignmentWithCtrlPans", R, Aligning(), kCtrl, ModePan},
    {"RightInAlignmentWithCtrlFlippedRotates", R, Aligning({.flip = 1}), kCtrl, ModeRotate},
    {"RightInAlignmentDelayedWithCtrlKeepsTheMode", R, Aligning({.igd = 1}), kCtrl, ModeAlignInteractive},
    {"RightInAlignmentWithIgdTwoAndCtrlKeepsTheMode", R, Aligning({.igd = 2}), kCtrl, ModeAlignInteractive},
    {"RightInPickPointsDrags", R, PickingPoints(), 0, ModeAlignPickPoints},
    {"RightInPickPointsWithoutDialogCaptures", R, {.mode = ModeAlignPickPoints}, 0, ModeAlignPickPoints},
    {"RightInPickPointsWithCtrlPans", R, {.mode = ModeAlignPickPoints}, kCtrl, ModePan},
    {"RightInPickPointsWithCtrlFlippedRotates", R, {.mode = ModeAlignPickPoints, .flip = 1}, kCtrl, ModeRotate},
    {"RightInPickPointsWithCtrlDelayedRotates", R, {.mode = ModeAlignPickPoints, .igd = 1}, kCtrl, ModeRotate},
    {"RightInPickPointsWithCtrlAndShiftDelayedPans",
     R,
     {.mode = ModeAlignPickPoints, .igd = 1},
     kCtrl | kShift,
     ModePan},
    {"RightInPickPointsWithCtrlAndLeftFlippedPans",
     R,
     {.mode = ModeAlignPickPoints, .flip = 1},
     kCtrl | kLeft,
     ModePan},
    // middle button
    {"MiddleInIdleRotates", M, {}, 0, ModeRotate},
    {"MiddleInIdleFlippedRotates", M, {.flip = 1}, 0, ModeRotate},
    {"MiddleInIdleWithShiftRotates", M, {}, kShift, ModeRotate},
    {"MiddleInIdleWithIgdTwoRotates", M, {.igd = 2}, 0, ModeRotate},
    {"MiddleInIdleWithCtrlAndNoPlaneRotates", M, {}, kCtrl, ModeRotate},
    {"MiddleInIdleWithCtrlRotatesThePlane", M, {.plane = true}, kCtrl, ModePlaneRotate},
    {"MiddleInIdleFlippedWithCtrlRotatesThePlane", M, {.flip = 1, .plane = true}, kCtrl, ModePlaneRotate},
    {"MiddleInRotateKeepsTheMode", M, {.mode = ModeRotate}, 0, ModeRotate, kNoDrag},
    {"MiddleInPanKeepsTheMode", M, {.mode = ModePan}, 0, ModePan, kNoDrag},
    {"MiddleInLassoKeepsTheMode", M, {.mode = ModeLasso}, 0, ModeLasso, kNoDrag},
    {"MiddleInAlignmentKeepsTheMode", M, Aligning(), kCtrl, ModeAlignInteractive, kNoDrag},
    {"MiddleInAlignmentDelayedKeepsTheMode", M, Aligning({.igd = 1}), 0, ModeAlignInteractive, kNoDrag},
    {"MiddleInPickPointsKeepsTheMode", M, PickingPoints(), 0, ModeAlignPickPoints, kNoDrag},
    {"MiddleInPlaneHandleKeepsTheMode", M, {.mode = ModePlaneHandle}, 0, ModePlaneHandle, kNoDrag},
    {"MiddleInMaskLassoKeepsTheMode", M, {.mode = ModeMaskLasso}, 0, ModeMaskLasso, kNoDrag},
    {"MiddleInPlaneRotateKeepsTheMode", M, {.mode = ModePlaneRotate, .plane = true}, kCtrl, ModePlaneRotate, kNoDrag},
    {"MiddleInPlaneMoveKeepsTheMode", M, {.mode = ModePlaneMove, .plane = true}, kCtrl, ModePlaneMove, kNoDrag},
    {"MiddleInRotateDelayedKeepsTheMode", M, {.mode = ModeRotate, .igd = 1}, 0, ModeRotate, kNoDrag},
};

class MousePress : public testing::TestWithParam<PressRow> {};

TEST_P(MousePress, BeginsTheDragOfItsModeWithoutARepaint) {
    const PressRow& row = GetParam();
    InputControl c(row.before);
    const Float3 center = c->m_fViewCenter;
    c.Press(row.button, FlagOf(row.button) | row.held, kX, kY);
    EXPECT_EQ(c->m_nInteractionMode, row.mode);
    EXPECT_EQ(c->m_nSavedInteractionMode, row.effect == kDrag ? row.before.mode : kNoMode);
    EXPECT_EQ(c.window->HasCapture(), row.effect == kDrag);
    EXPECT_EQ(c->m_bAnimationRunning, 0) << "every press stops it";
    EXPECT_EQ(c->m_bRollRotation, 0) << "the press was within the circle";
    if (row.effect == kDrag) {
        EXPECT_TRUE(c.BeganDragAt(kX, kY));
        EXPECT_EQ(c->m_bMoving, 1);
    } else {
        EXPECT_TRUE(c.LastPointUnchanged());
        EXPECT_EQ(c->m_bMoving, 0);
    }
    EXPECT_EQ(c->m_bRightButtonPressed, row.button == R || row.before.rightPressed ? 1 : 0);
    EXPECT_EQ(c->m_fViewCenter, center);
    EXPECT_EQ(c.dialog.calls, row.dialogCalls);
    EXPECT_TRUE(c.events.events.empty());
    EXPECT_EQ(c.RepaintRequests(), 0);
}
INSTANTIATE_TEST_SUITE_P(Modes, MousePress, testing::ValuesIn(kPresses),
                         [](const auto& row) { return std::string(row.param.name); });

// ---- the middle button in the delayed scheme

TEST(MiddlePressInTheDelayedScheme, CentersTheViewAndAppliesTheViewModeAgain) {
    InputControl c({.igd = 1});
    AddMesh(*c, {{.x = 0, .y = 0, .z = 0}, {.x = 20, .y = 0, .z = 0}, {.x = 0, .y = 30, .z = 60}}, {{{0, 1, 2}}});
    c->m_nViewMode = KV_ScenePane::ViewFromMinusXZUp;
    c->m_fZoom = 3;
    c->OnMiddleDown(kMiddle, kX, kY);
    EXPECT_EQ(c->m_fViewCenter, (Float3{10, 15, 30}));
    EXPECT_FLOAT_EQ(c->m_fSceneSize, 70.0f);
    EXPECT_EQ(c->m_fZoom, 1.0f);
    EXPECT_EQ(c->m_fAxisX, (Float3{0, -1, 0}));
    EXPECT_EQ(c->m_fAxisZ, (Float3{-1, 0, 0}));
    EXPECT_EQ(c->m_nInteractionMode, ModeIdle);
    EXPECT_EQ(c->m_nSavedInteractionMode, kNoMode);
    EXPECT_FALSE(c.window->HasCapture());
    EXPECT_TRUE(c.LastPointUnchanged());
    EXPECT_EQ(c->m_bMoving, 0);
    EXPECT_EQ(c->m_bAnimationRunning, 0);
    EXPECT_EQ(c.window->invalidates, 1) << "the fit";
    EXPECT_EQ(c.window->refreshes, 1) << "the view mode";
}

TEST(MiddlePressInTheDelayedScheme, WithCtrlAndAVisiblePlaneDoesNotCenterTheView) {
    InputControl c({.igd = 1, .plane = true});
    c->m_nViewMode = KV_ScenePane::ViewFromMinusXZUp;
    const Float3 axis = c->m_fAxisX;
    c->OnMiddleDown(kMiddle | kCtrl, kX, kY);
    EXPECT_EQ(c->m_fAxisX, axis);
    EXPECT_EQ(c->m_nInteractionMode, ModeIdle);
    c->m_bClipPlaneVisible = 0;
    c->OnMiddleDown(kMiddle | kCtrl, kX, kY);
    EXPECT_EQ(c->m_fAxisX, (Float3{0, -1, 0})) << "without a plane the view is centred";
}

// ---- a second press

TEST(SecondRightPress, DuringAPanBeginsNoOtherDragAndOneReleaseEndsBoth) {
    InputControl c;
    c->OnRightDown(kRight, kX, kY);
    c->m_savedView.wx = kNoAxis;
    c->OnRightDown(kRight | kShift, 310, 220);
    EXPECT_EQ(c->m_nInteractionMode, ModePan);
    EXPECT_EQ(c->m_nSavedInteractionMode, ModeIdle);
    EXPECT_EQ(c->m_nLastMouseX, kX) << "no second drag began";
    EXPECT_EQ(c->m_nLastMouseY, kY);
    EXPECT_TRUE(c.SavedViewUnchanged());
    c->OnRightUp(0, 310, 220);
    EXPECT_EQ(c->m_nInteractionMode, ModeIdle);
    EXPECT_FALSE(c.window->HasCapture());
    EXPECT_EQ(c->m_bRightButtonPressed, 0);
}

TEST(SecondRightPress, InAnAlignmentBeginsTheDragAgain) {
    InputControl c(Aligning());
    c->OnRightDown(kRight, kX, kY);
    c->OnRightDown(kRight | kCtrl, 310, 220);
    EXPECT_EQ(c->m_nInteractionMode, ModePan);
    EXPECT_EQ(c->m_nSavedInteractionMode, ModeAlignInteractive);
    EXPECT_TRUE(c.BeganDragAt(310, 220));
}

// ---- lassos

TEST(LassoPress, AddsAPointInFractionsOfTheWindow) {
    InputControl c({.mode = ModeLasso});
    c->OnLeftDown(kLeft, 160, 120);
    c->OnLeftDown(kLeft | kCtrl, 639, 1);
    ASSERT_EQ(c->m_vLassoPoints.size(), 2u);
    EXPECT_DOUBLE_EQ(c->m_vLassoPoints[0].x, 0.25);
    EXPECT_DOUBLE_EQ(c->m_vLassoPoints[0].y, 0.25);
    EXPECT_DOUBLE_EQ(c->m_vLassoPoints[1].x, 639.0 / 640.0);
    EXPECT_DOUBLE_EQ(c->m_vLassoPoints[1].y, 1.0 / 480.0);
    EXPECT_DOUBLE_EQ(c->m_lassoCursor.x, 639.0 / 640.0);
    EXPECT_DOUBLE_EQ(c->m_lassoCursor.y, 1.0 / 480.0);
    EXPECT_EQ(c.window->eraseInvalidates, 2);
    EXPECT_EQ(c.window->refreshes + c.window->invalidates, 0);
    EXPECT_EQ(c->m_nInteractionMode, ModeLasso);
    EXPECT_EQ(c->m_nSavedInteractionMode, kNoMode);
    EXPECT_FALSE(c.window->HasCapture());
    EXPECT_TRUE(c.LastPointUnchanged());
    EXPECT_EQ(c->m_bMoving, 0);
    EXPECT_EQ(c->m_bAnimationRunning, 0);
}

TEST(MaskLassoPress, StartsASessionAndRepaintsWithEraseWithoutACapture) {
    InputControl c({.mode = ModeMaskLasso});
    c->m_pCutMask = std::make_unique<CutMaskTextures>();
    c->m_pCutMask->m_nWidth = 640;
    c->m_pCutMask->m_nHeight = 480;
    ASSERT_TRUE(c->MakeContextCurrent());
    c->m_pCutMask->m_dModelView = c->m_viewMatrices.ModelView();  // the view has not turned since the start
    c->OnLeftDown(kLeft, 160, 120);
    ASSERT_NE(c->m_pCutSession, nullptr);
    EXPECT_EQ(c->m_pCutMask, nullptr);
    EXPECT_EQ(c->m_pCutSession->m_ptStart, (LassoPixel{160, 120}));
    EXPECT_EQ(c.window->eraseInvalidates, 1);
    EXPECT_EQ(c.RepaintRequests(), 1);
    EXPECT_TRUE(c->m_vLassoPoints.empty()) << "points of the other lasso";
    EXPECT_EQ(c->m_nInteractionMode, ModeMaskLasso);
    EXPECT_FALSE(c.window->HasCapture());
    EXPECT_TRUE(c.LastPointUnchanged());
}

TEST(MaskLassoPress, WithoutTexturesDoesNothing) {
    InputControl c({.mode = ModeMaskLasso});
    c->OnLeftDown(kLeft, 160, 120);
    EXPECT_EQ(c->m_pCutSession, nullptr);
    EXPECT_EQ(c.RepaintRequests(), 0);
    EXPECT_EQ(c->m_nInteractionMode, ModeMaskLasso);
    EXPECT_TRUE(c.LastPointUnchanged());
}

TEST(MaskLassoPress, DuringASessionRepaintsWithErase) {
    InputControl c({.mode = ModeMaskLasso});
    c->m_pCutSession = MakeTestCutSession();
    c->OnLeftDown(kLeft, 160, 120);
    EXPECT_EQ(c.window->eraseInvalidates, 1);
    EXPECT_EQ(c.RepaintRequests(), 1);
    EXPECT_FALSE(c.window->HasCapture());
}

TEST(LassoPress, OfTheRightButtonAddsTheLastPointAndClosesTheLasso) {
    InputControl c({.mode = ModeLasso});
    c->m_vLassoPoints = {{0.5, 0.25}};
    c->OnRightDown(kRight, 480, 360);
    ASSERT_EQ(c->m_vLassoPoints.size(), 3u);
    EXPECT_DOUBLE_EQ(c->m_vLassoPoints[1].x, 0.75);
    EXPECT_DOUBLE_EQ(c->m_vLassoPoints[1].y, 0.75);
    EXPECT_DOUBLE_EQ(c->m_vLassoPoints[2].x, 0.5);
    EXPECT_DOUBLE_EQ(c->m_vLassoPoints[2].y, 0.25);
    EXPECT_DOUBLE_EQ(c->m_lassoCursor.x, 0.75);
    EXPECT_EQ(c.window->eraseInvalidates, 2) << "of the point, and of the cut that hit nothing";
    EXPECT_EQ(c->m_nInteractionMode, ModeIdle);
    EXPECT_FALSE(c.window->HasCapture());
    EXPECT_EQ(c->m_nSavedInteractionMode, kNoMode);
    EXPECT_EQ(c->m_bRightButtonPressed, 1);
}

// ---- rolls

struct RollPress {
    const char* name;
    std::int32_t x, y;
    bool roll;
    std::int32_t quadrant;
};
// The centre pixel is (320, 240), the radius 240.
constexpr RollPress kRollPresses[] = {
    {"on the circle, left", 80, 240, false, 0},
    {"just outside it, left", 79, 240, true, 3},
    {"on the circle, top", 320, 0, false, 0},
    {"on the circle by 3-4-5", 464, 48, false, 0},
    {"just outside there", 465, 48, true, 1},
    {"top left", 20, 20, true, 0},
    {"top right", 620, 20, true, 1},
    {"bottom right", 620, 470, true, 2},
    {"bottom left", 20, 470, true, 3},
    {"right of the circle, level with the centre", 570, 240, true, 2},
    {"right of the circle, a pixel above", 570, 239, true, 1},
};

TEST(PressOutsideTheCircle, BeginsARollInTheQuadrantOfThePress) {
    InputControl c;
    for (const RollPress& row : kRollPresses) {
        SCOPED_TRACE(row.name);
        c.Set({});
        c->OnLeftDown(kLeft, row.x, row.y);
        EXPECT_EQ(c->m_bRollRotation, row.roll);
        if (row.roll) {
            EXPECT_EQ(c->m_nRollQuadrant, row.quadrant);
        }
    }
}

TEST(PressOutsideTheCircle, BeginsARollOnlyInModesThatRotate) {
    struct Row {
        const char* name;
        Before before;
        Button button;
        std::uint32_t held;
        bool roll;
    };
    const Row rows[] = {
        {"left", {}, L, 0, true},
        {"right pans", {}, R, 0, false},
        {"middle: the mode comes after the drag's start", {}, M, 0, false},
        {"left, flipped, pans", {.flip = 1}, L, 0, false},
        {"right, flipped", {.flip = 1}, R, 0, true},
        {"middle, flipped", {.flip = 1}, M, 0, false},
        {"left, delayed, does nothing", {.igd = 1}, L, 0, false},
        {"right, delayed", {.igd = 1}, R, 0, true},
        {"left with ctrl becomes a plane drag afterwards", {.plane = true}, L, kCtrl, true},
        {"alignment, left", {.mode = ModeAlignInteractive}, L, 0, true},
        {"alignment, right", {.mode = ModeAlignInteractive}, R, 0, true},
        {"alignment, right with ctrl, pans", {.mode = ModeAlignInteractive}, R, kCtrl, false},
        {"pick points, left", {.mode = ModeAlignPickPoints}, L, 0, false},
        {"pick points, left with ctrl, rotates", {.mode = ModeAlignPickPoints}, L, kCtrl, true},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        InputControl c(row.before);
        c.Press(row.button, FlagOf(row.button) | row.held, 20, 20);
        EXPECT_EQ(c->m_bRollRotation, row.roll);
    }
}

}  // namespace
