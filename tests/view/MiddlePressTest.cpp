// What a press of the middle button does in each interaction mode: the mode that it leads to, the mode that a release
// will return to, the capture, the start of a drag, the repaints.
#include "view/PressHelp.h"

namespace {

const Press kMiddlePresses[] = {
    {"IdleRotates", {}, kMiddle, ModeRotate, 0, true, Drag::Moving},
    {"IdleFlippedRotates", {.flip = 1}, kMiddle, ModeRotate, 0, true, Drag::Moving},
    {"IdleWithShiftRotates", {}, kMiddle | kShift, ModeRotate, 0, true, Drag::Moving},
    {"IdleWithTheSchemeAtTwoRotates", {.igd = 2}, kMiddle, ModeRotate, 0, true, Drag::Moving},
    {"IdleWithCtrlAndNoPlaneRotates", {}, kMiddle | kCtrl, ModeRotate, 0, true, Drag::Moving},
    {"IdleWithCtrlTurnsThePlane", {.plane = true}, kMiddle | kCtrl, ModePlaneRotate, 0, true, Drag::Moving},
    {"IdleFlippedWithCtrlTurnsThePlane",
     {.flip = 1, .plane = true},
     kMiddle | kCtrl,
     ModePlaneRotate,
     0,
     true,
     Drag::Moving},
    {"RotateStays", {.mode = ModeRotate}, kMiddle, ModeRotate, kNoMode, false, Drag::None},
    {"PanStays", {.mode = ModePan}, kMiddle, ModePan, kNoMode, false, Drag::None},
    {"LassoStays", {.mode = ModeLasso}, kMiddle, ModeLasso, kNoMode, false, Drag::None},
    {"AlignmentStays",
     {.mode = ModeAlignInteractive, .dialog = true},
     kMiddle | kCtrl,
     ModeAlignInteractive,
     kNoMode,
     false,
     Drag::None},
    {"AlignmentDelayedStays",
     {.mode = ModeAlignInteractive, .igd = 1, .dialog = true},
     kMiddle,
     ModeAlignInteractive,
     kNoMode,
     false,
     Drag::None},
    {"PickPointsStays",
     {.mode = ModeAlignPickPoints, .dialog = true},
     kMiddle,
     ModeAlignPickPoints,
     kNoMode,
     false,
     Drag::None},
    {"PlaneHandleStays", {.mode = ModePlaneHandle}, kMiddle, ModePlaneHandle, kNoMode, false, Drag::None},
    {"MaskLassoStays", {.mode = ModeMaskLasso}, kMiddle, ModeMaskLasso, kNoMode, false, Drag::None},
    {"PlaneRotateStays",
     {.mode = ModePlaneRotate, .plane = true},
     kMiddle | kCtrl,
     ModePlaneRotate,
     kNoMode,
     false,
     Drag::None},
    {"PlaneMoveStays",
     {.mode = ModePlaneMove, .plane = true},
     kMiddle | kCtrl,
     ModePlaneMove,
     kNoMode,
     false,
     Drag::None},
    {"RotateDelayedStays", {.mode = ModeRotate, .igd = 1}, kMiddle, ModeRotate, kNoMode, false, Drag::None},
};

class MiddlePress : public testing::TestWithParam<Press> {};

TEST_P(MiddlePress, LeadsToItsModeAndAsksForNoRepaint) {
    const Press& row = GetParam();
    InputControl c(row.before);
    const Float3 center = c->m_fViewCenter;
    c->OnMiddleDown(row.flags, kX, kY);
    ExpectAfter(c, row);
    EXPECT_EQ(c->m_fViewCenter, center);
    EXPECT_EQ(c.RepaintsAsked(), 0);
}
INSTANTIATE_TEST_SUITE_P(Mode, MiddlePress, testing::ValuesIn(kMiddlePresses), RowName());

TEST(MiddlePressInTheDelayedScheme, CentersTheViewAndAppliesTheViewModeAgain) {
    InputControl c({.igd = 1});
    AddMesh(*c, {{.x = 0, .y = 0, .z = 0}, {.x = 20, .y = 0, .z = 0}, {.x = 0, .y = 30, .z = 60}}, {{{0, 1, 2}}});
    c->m_nViewMode = 3;
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
    EXPECT_TRUE(c.KeptNoPoint());
    EXPECT_EQ(c->m_bMoving, 0);
    EXPECT_EQ(c->m_bAnimationRunning, 0);
    EXPECT_EQ(c.window->invalidates, 1) << "the fit";
    EXPECT_EQ(c.window->refreshes, 1) << "the view mode";
}

TEST(MiddlePressInTheDelayedScheme, WithCtrlPlacesAPlaneThatIsShownAndLeavesTheView) {
    InputControl c({.igd = 1, .plane = true});
    c->m_nViewMode = 3;
    const Float3 axis = c->m_fAxisX;
    c->OnMiddleDown(kMiddle | kCtrl, kX, kY);
    EXPECT_EQ(c->m_fAxisX, axis);
    EXPECT_EQ(c->m_nInteractionMode, ModeIdle);
    c->m_bClipPlaneVisible = 0;
    c->OnMiddleDown(kMiddle | kCtrl, kX, kY);
    EXPECT_EQ(c->m_fAxisX, (Float3{0, -1, 0})) << "without a plane the view is centred";
}

}  // namespace
