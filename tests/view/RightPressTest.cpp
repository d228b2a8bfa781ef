// What a press of the right button does in each interaction mode: the mode that it leads to, the mode that a release
// will return to, the capture, the start of a drag, the repaints.
#include "view/PressHelp.h"

namespace {

const Press kRightPresses[] = {
    {"IdlePans", {}, kRight, ModePan, 0, true, Drag::Moving},
    {"IdleWithShiftPans", {}, kRight | kShift, ModePan, 0, true, Drag::Moving},
    {"IdleFlippedRotates", {.flip = 1}, kRight, ModeRotate, 0, true, Drag::Moving},
    {"IdleFlippedWithShiftPans", {.flip = 1}, kRight | kShift, ModePan, 0, true, Drag::Moving},
    {"IdleFlippedWithLeftHeldPans", {.flip = 1}, kRight | kLeft, ModePan, 0, true, Drag::Moving},
    {"IdleFlippedWithMiddleHeldRotates", {.flip = 1}, kRight | kMiddle, ModeRotate, 0, true, Drag::Moving},
    {"IdleDelayedRotates", {.igd = 1}, kRight, ModeRotate, 0, true, Drag::Moving},
    {"IdleDelayedAndMovedRotates", {.igd = 1}, kRight | 0x100, ModeRotate, 0, true, Drag::Moving},
    {"IdleDelayedFlippedRotates", {.igd = 1, .flip = 1}, kRight, ModeRotate, 0, true, Drag::Moving},
    {"IdleDelayedWithShiftPans", {.igd = 1}, kRight | kShift, ModePan, 0, true, Drag::Moving},
    {"IdleDelayedChordPans", {.igd = 1}, kRight | kLeft, ModePan, 0, true, Drag::Moving},
    {"IdleDelayedByAnyNumberRotates", {.igd = 2}, kRight, ModeRotate, 0, true, Drag::Moving},
    {"IdleWithCtrlMovesThePlane", {.plane = true}, kRight | kCtrl, ModePlaneMove, 0, true, Drag::Moving},
    {"IdleWithCtrlMovesAPlaneThatIsHidden", {}, kRight | kCtrl, ModePlaneMove, 0, true, Drag::Moving},
    {"IdleFlippedWithCtrlTurnsAPlaneThatIsHidden", {.flip = 1}, kRight | kCtrl, ModePlaneRotate, 0, true, Drag::Moving},
    {"IdleDelayedWithCtrlTurnsThePlane",
     {.igd = 1, .plane = true},
     kRight | kCtrl,
     ModePlaneRotate,
     0,
     true,
     Drag::Moving},
    {"IdleDelayedWithShiftAndCtrlMovesThePlane",
     {.igd = 1, .plane = true},
     kRight | kShift | kCtrl,
     ModePlaneMove,
     0,
     true,
     Drag::Moving},
    {"RotateStays", {.mode = ModeRotate}, kRight, ModeRotate, kNoMode, false, Drag::None},
    {"RotateDelayedStays", {.mode = ModeRotate, .igd = 1}, kRight, ModeRotate, kNoMode, false, Drag::None},
    {"PanStays", {.mode = ModePan}, kRight, ModePan, kNoMode, false, Drag::None},
    {"PlaneHandleStays", {.mode = ModePlaneHandle}, kRight, ModePlaneHandle, kNoMode, false, Drag::None},
    {"PlaneRotateStays",
     {.mode = ModePlaneRotate, .plane = true},
     kRight | kCtrl,
     ModePlaneRotate,
     kNoMode,
     false,
     Drag::None},
    {"PlaneMoveStays",
     {.mode = ModePlaneMove, .plane = true},
     kRight | kCtrl,
     ModePlaneMove,
     kNoMode,
     false,
     Drag::None},
    {"UnassignedModeStays", {.mode = 8}, kRight, 8, kNoMode, false, Drag::None},
    {"AlignmentDrags",
     {.mode = ModeAlignInteractive, .dialog = true},
     kRight,
     ModeAlignInteractive,
     6,
     true,
     Drag::Moving},
    {"AlignmentWithoutDialogStillCaptures",
     {.mode = ModeAlignInteractive},
     kRight,
     ModeAlignInteractive,
     6,
     true,
     Drag::Moving},
    {"AlignmentWithCtrlPans",
     {.mode = ModeAlignInteractive, .dialog = true},
     kRight | kCtrl,
     ModePan,
     6,
     true,
     Drag::Moving},
    {"AlignmentWithCtrlFlippedRotates",
     {.mode = ModeAlignInteractive, .flip = 1, .dialog = true},
     kRight | kCtrl,
     ModeRotate,
     6,
     true,
     Drag::Moving},
    {"AlignmentDelayedWithCtrlStays",
     {.mode = ModeAlignInteractive, .igd = 1, .dialog = true},
     kRight | kCtrl,
     ModeAlignInteractive,
     6,
     true,
     Drag::Moving},
    {"AlignmentWithTheSchemeAtTwoAndCtrlStays",
     {.mode = ModeAlignInteractive, .igd = 2, .dialog = true},
     kRight | kCtrl,
     ModeAlignInteractive,
     6,
     true,
     Drag::Moving},
    {"PickPointsDrags",
     {.mode = ModeAlignPickPoints, .dialog = true},
     kRight,
     ModeAlignPickPoints,
     7,
     true,
     Drag::Moving},
    {"PickPointsWithoutDialogStillCaptures",
     {.mode = ModeAlignPickPoints},
     kRight,
     ModeAlignPickPoints,
     7,
     true,
     Drag::Moving},
    {"PickPointsWithCtrlPans", {.mode = ModeAlignPickPoints}, kRight | kCtrl, ModePan, 7, true, Drag::Moving},
    {"PickPointsWithCtrlFlippedRotates",
     {.mode = ModeAlignPickPoints, .flip = 1},
     kRight | kCtrl,
     ModeRotate,
     7,
     true,
     Drag::Moving},
    {"PickPointsWithCtrlDelayedRotates",
     {.mode = ModeAlignPickPoints, .igd = 1},
     kRight | kCtrl,
     ModeRotate,
     7,
     true,
     Drag::Moving},
    {"PickPointsWithCtrlAndShiftDelayedPans",
     {.mode = ModeAlignPickPoints, .igd = 1},
     kRight | kCtrl | kShift,
     ModePan,
     7,
     true,
     Drag::Moving},
    {"PickPointsWithCtrlAndLeftFlippedPans",
     {.mode = ModeAlignPickPoints, .flip = 1},
     kRight | kCtrl | kLeft,
     ModePan,
     7,
     true,
     Drag::Moving},
};

class RightPress : public testing::TestWithParam<Press> {};

TEST_P(RightPress, LeadsToItsModeAndAsksForNoRepaint) {
    const Press& row = GetParam();
    InputControl c(row.before);
    c->OnRightDown(row.flags, kX, kY);
    ExpectAfter(c, row);
    EXPECT_EQ(c->m_bRightButtonPressed, 1);
    EXPECT_EQ(c.RepaintsAsked(), 0);
}
INSTANTIATE_TEST_SUITE_P(Mode, RightPress, testing::ValuesIn(kRightPresses), RowName());

TEST(RightPressTwice, ActsOnlyByTheModeThatItFinds) {
    InputControl c;
    c->OnRightDown(kRight, kX, kY);
    c->m_savedView.wx = kNoAxis;
    c->OnRightDown(kRight | kShift, 310, 220);
    EXPECT_EQ(c->m_nInteractionMode, ModePan);
    EXPECT_EQ(c->m_nSavedInteractionMode, 0);
    EXPECT_EQ(c->m_nLastMouseX, kX) << "no second drag began";
    EXPECT_EQ(c->m_nLastMouseY, kY);
    EXPECT_TRUE(c.SavedNoView());
    c->OnRightUp(0, 310, 220);
    EXPECT_EQ(c->m_nInteractionMode, ModeIdle) << "one release ends both";
    EXPECT_FALSE(c.window->HasCapture());
    EXPECT_EQ(c->m_bRightButtonPressed, 0);
}

TEST(RightPressTwice, InAnAlignmentBeginsTheDragAgain) {
    InputControl c({.mode = ModeAlignInteractive, .dialog = true});
    c->OnRightDown(kRight, kX, kY);
    c->OnRightDown(kRight | kCtrl, 310, 220);
    EXPECT_EQ(c->m_nInteractionMode, ModePan);
    EXPECT_EQ(c->m_nSavedInteractionMode, 6);
    EXPECT_TRUE(c.BeganDragAt(310, 220));
}

}  // namespace
