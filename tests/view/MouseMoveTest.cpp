// What a move does in each interaction mode: which travel turns or shifts the view, what goes to the dialog, which
// point is kept as the last one, what is repainted. And the wheel.
#include "view/ExpectedView.h"
#include "view/InputHelp.h"

namespace {

// From (310, 190) to (325, 170).
constexpr std::int32_t kFromX = 310, kFromY = 190, kDx = 15, kDy = -20, kToX = kFromX + kDx, kToY = kFromY + kDy;

enum class View { Stays, Rotates, Pans };
enum class Point { Stays, Follows };

struct Move {
    const char* name;
    Before before;
    std::uint32_t flags;
    // ---- after
    std::int32_t mode;
    View view;
    Point point;
    int refreshes, eraseInvalidates;
    Calls calls{};  ///< that the dialog hears
};
void PrintTo(const Move& row, std::ostream* out) { *out << row.name; }

const Before kAlignment{.mode = ModeAlignInteractive, .dialog = true};
const Before kAlignmentFlipped{.mode = ModeAlignInteractive, .flip = 1, .dialog = true};
const Before kAlignmentDelayed{.mode = ModeAlignInteractive, .igd = 1, .dialog = true};
const Before kAlignmentAtTwo{.mode = ModeAlignInteractive, .igd = 2, .dialog = true};
const char* const kRotateDrag = "OnRotateDrag 325 170";
const char* const kMoveDrag = "OnMoveDrag 325 170";

const Move kMoves[] = {
    {"IdleHoversAndForgetsThePoint", {}, 0, ModeIdle, View::Stays, Point::Stays, 0, 0},
    {"IdleWithLeftHeldHovers", {.igd = 1}, kLeft, ModeIdle, View::Stays, Point::Stays, 0, 0},
    {"IdleOverThePlaneHovers", {.plane = true}, kCtrl, ModeIdle, View::Stays, Point::Stays, 0, 0},
    {"RotateRotates", {.mode = ModeRotate}, kLeft, ModeRotate, View::Rotates, Point::Follows, 1, 0},
    {"RotateRotatesWhateverIsHeld", {.mode = ModeRotate}, 0, ModeRotate, View::Rotates, Point::Follows, 1, 0},
    {"RotateWithCtrlAndNoPlaneRotates",
     {.mode = ModeRotate},
     kLeft | kCtrl,
     ModeRotate,
     View::Rotates,
     Point::Follows,
     1,
     0},
    {"RotateWithThePlaneShownRotates",
     {.mode = ModeRotate, .plane = true},
     kLeft,
     ModeRotate,
     View::Rotates,
     Point::Follows,
     1,
     0},
    {"RotateTurnsIntoAPlaneDragByCtrl",
     {.mode = ModeRotate, .plane = true},
     kLeft | kCtrl,
     ModePlaneRotate,
     View::Stays,
     Point::Stays,
     0,
     0},
    {"PanPans", {.mode = ModePan}, kRight, ModePan, View::Pans, Point::Follows, 1, 0},
    {"PanWithCtrlAndNoPlanePans", {.mode = ModePan}, kRight | kCtrl, ModePan, View::Pans, Point::Follows, 1, 0},
    {"PanTurnsIntoAPlaneDragByCtrl",
     {.mode = ModePan, .plane = true},
     kRight | kCtrl,
     ModePlaneMove,
     View::Stays,
     Point::Stays,
     0,
     0},
    {"LassoWithoutPointsDoesNothing", {.mode = ModeLasso}, 0, ModeLasso, View::Stays, Point::Stays, 0, 0},
    {"PickPointsKeepsThePoint",
     {.mode = ModeAlignPickPoints, .dialog = true},
     kLeft,
     ModeAlignPickPoints,
     View::Stays,
     Point::Follows,
     0,
     0},
    {"UnassignedModeKeepsThePoint", {.mode = 5}, kLeft, 5, View::Stays, Point::Follows, 0, 0},
    {"PlaneHandleRepaints",
     {.mode = ModePlaneHandle, .plane = true},
     kLeft,
     ModePlaneHandle,
     View::Stays,
     Point::Stays,
     1,
     0},
    {"MaskLassoWithoutSessionDoesNothing",
     {.mode = ModeMaskLasso},
     kLeft,
     ModeMaskLasso,
     View::Stays,
     Point::Stays,
     0,
     0},
    {"PlaneRotateTurnsThePlane",
     {.mode = ModePlaneRotate, .plane = true},
     kLeft | kCtrl,
     ModePlaneRotate,
     View::Stays,
     Point::Follows,
     0,
     1},
    {"PlaneRotateTurnsBackWithoutCtrl",
     {.mode = ModePlaneRotate, .plane = true},
     kLeft,
     ModeRotate,
     View::Stays,
     Point::Stays,
     0,
     0},
    {"PlaneRotateTurnsBackWithoutPlane",
     {.mode = ModePlaneRotate},
     kLeft | kCtrl,
     ModeRotate,
     View::Stays,
     Point::Stays,
     0,
     0},
    {"PlaneMoveMovesThePlane",
     {.mode = ModePlaneMove, .plane = true},
     kRight | kCtrl,
     ModePlaneMove,
     View::Stays,
     Point::Follows,
     0,
     1},
    {"PlaneMoveTurnsBackWithoutCtrl",
     {.mode = ModePlaneMove, .plane = true},
     kRight,
     ModePan,
     View::Stays,
     Point::Stays,
     0,
     0},
    {"PlaneMoveTurnsBackWithoutPlane",
     {.mode = ModePlaneMove},
     kRight | kCtrl,
     ModePan,
     View::Stays,
     Point::Stays,
     0,
     0},
    // interactive alignment, normal and flipped
    {"AlignmentWithNothingHeld", kAlignment, 0, 6, View::Stays, Point::Follows, 0, 0},
    {"AlignmentLeft", kAlignment, kLeft, 6, View::Stays, Point::Follows, 0, 0, {kRotateDrag}},
    {"AlignmentRight", kAlignment, kRight, 6, View::Stays, Point::Follows, 0, 0, {kMoveDrag}},
    {"AlignmentMiddle", kAlignment, kMiddle, 6, View::Stays, Point::Follows, 0, 0},
    {"AlignmentBoth", kAlignment, kLeft | kRight, 6, View::Stays, Point::Follows, 0, 0, {kRotateDrag, kMoveDrag}},
    {"AlignmentLeftWithCtrl", kAlignment, kLeft | kCtrl, 6, View::Stays, Point::Follows, 0, 0, {kRotateDrag}},
    {"AlignmentFlippedLeft", kAlignmentFlipped, kLeft, 6, View::Stays, Point::Follows, 0, 0, {kMoveDrag}},
    {"AlignmentFlippedRight", kAlignmentFlipped, kRight, 6, View::Stays, Point::Follows, 0, 0, {kRotateDrag}},
    {"AlignmentFlippedBoth",
     kAlignmentFlipped,
     kLeft | kRight,
     6,
     View::Stays,
     Point::Follows,
     0,
     0,
     {kRotateDrag, kMoveDrag}},
    {"AlignmentAtTwoLeft", kAlignmentAtTwo, kLeft, 6, View::Stays, Point::Follows, 0, 0, {kRotateDrag}},
    {"AlignmentAtTwoRight", kAlignmentAtTwo, kRight, 6, View::Stays, Point::Follows, 0, 0, {kMoveDrag}},
    {"AlignmentWithoutDialog", {.mode = ModeAlignInteractive}, kLeft | kRight, 6, View::Stays, Point::Follows, 0, 0},
    // interactive alignment, delayed scheme
    {"AlignmentDelayedLeft", kAlignmentDelayed, kLeft, 6, View::Stays, Point::Follows, 0, 0},
    {"AlignmentDelayedShift", kAlignmentDelayed, kShift, 6, View::Stays, Point::Follows, 0, 0},
    {"AlignmentDelayedLeftAndShift", kAlignmentDelayed, kLeft | kShift, 6, View::Stays, Point::Follows, 0, 0},
    {"AlignmentDelayedRight", kAlignmentDelayed, kRight, 6, View::Stays, Point::Follows, 0, 0, {kRotateDrag}},
    {"AlignmentDelayedBoth", kAlignmentDelayed, kLeft | kRight, 6, View::Stays, Point::Follows, 0, 0, {kMoveDrag}},
    {"AlignmentDelayedShiftAndRight",
     kAlignmentDelayed,
     kShift | kRight,
     6,
     View::Stays,
     Point::Follows,
     0,
     0,
     {kMoveDrag}},
    {"AlignmentDelayedAllThree",
     kAlignmentDelayed,
     kShift | kLeft | kRight,
     6,
     View::Stays,
     Point::Follows,
     0,
     0,
     {kMoveDrag}},
    {"AlignmentDelayedRightWithCtrl", kAlignmentDelayed, kRight | kCtrl, 6, View::Rotates, Point::Follows, 1, 0},
    {"AlignmentDelayedBothWithCtrl", kAlignmentDelayed, kLeft | kRight | kCtrl, 6, View::Pans, Point::Follows, 1, 0},
    {"AlignmentDelayedShiftAndRightWithCtrl", kAlignmentDelayed, kShift | kRight | kCtrl, 6, View::Pans, Point::Follows,
     1, 0},
    {"AlignmentDelayedLeftWithCtrl", kAlignmentDelayed, kLeft | kCtrl, 6, View::Stays, Point::Follows, 0, 0},
    {"AlignmentDelayedFlippedRight",
     {.mode = 6, .igd = 1, .flip = 1, .dialog = true},
     kRight,
     6,
     View::Stays,
     Point::Follows,
     0,
     0,
     {kRotateDrag}},
    {"AlignmentDelayedRightWithCtrlAndNoDialog",
     {.mode = ModeAlignInteractive, .igd = 1},
     kRight | kCtrl,
     6,
     View::Stays,
     Point::Follows,
     0,
     0},
};

class MouseMove : public testing::TestWithParam<Move> {
protected:
    void Prepare() {
        c->m_fRotationCenter = {7, -8, 9};
        c->m_nLastMouseX = kFromX, c->m_nLastMouseY = kFromY;
    }
    InputControl c{GetParam().before};
};

TEST_P(MouseMove, ActsByTheMode) {
    const Move& row = GetParam();
    Prepare();
    ExpectedView view = ExpectedView::Of(*c);
    if (row.view == View::Rotates) view.Rotate(kDx, kDy);
    if (row.view == View::Pans) view.Pan(kDx, kDy);
    c->OnMouseMoved(row.flags, kToX, kToY);
    ExpectView(*c, view);
    EXPECT_EQ(c->m_nInteractionMode, row.mode);
    EXPECT_EQ(c->m_nSavedInteractionMode, kNoMode);
    EXPECT_EQ(c->m_nLastMouseX, row.point == Point::Follows ? kToX : kFromX);
    EXPECT_EQ(c->m_nLastMouseY, row.point == Point::Follows ? kToY : kFromY);
    EXPECT_EQ(c.window->refreshes, row.refreshes);
    EXPECT_EQ(c.window->eraseInvalidates, row.eraseInvalidates);
    EXPECT_EQ(c.window->invalidates, 0);
    EXPECT_EQ(c.dialog.calls, row.calls);
    EXPECT_EQ(c->m_bAnimationRunning, 1) << "only presses stop it";
    EXPECT_TRUE(c.events.events.empty());
    EXPECT_FALSE(c.window->HasCapture());
}

TEST_P(MouseMove, DoesNothingWithoutTheHostsLeave) {
    const Move& row = GetParam();
    for (const int allow : {0, 2, -1}) {
        Prepare();
        c->AllowMouseInteraction(static_cast<std::int16_t>(allow));
        const ExpectedView view = ExpectedView::Of(*c);
        c->OnMouseMoved(row.flags, kToX, kToY);
        ExpectView(*c, view);
        EXPECT_EQ(c->m_nInteractionMode, row.before.mode);
        EXPECT_EQ(c->m_nLastMouseX, kFromX);
        EXPECT_EQ(c->m_nLastMouseY, kFromY);
        EXPECT_EQ(c.RepaintsAsked(), 0);
        EXPECT_TRUE(c.dialog.calls.empty());
    }
}
INSTANTIATE_TEST_SUITE_P(Mode, MouseMove, testing::ValuesIn(kMoves),
                         [](const auto& row) { return std::string(row.param.name); });

TEST(MouseMoveWhileTracing, TellsTheHostTheNewDirection) {
    InputControl c;
    for (const std::int32_t mode : {ModeRotate, ModePan}) {
        c.Set({.mode = mode});
        c->TracingMode(1);
        c->OnMouseMoved(kLeft, kToX, kToY);
        ASSERT_EQ(c.events.events.size(), 1u);
        const EventsRecorder::Event expected{"ViewDirectionChanged", {c->m_fAxisZ[0], c->m_fAxisZ[1], c->m_fAxisZ[2]}};
        EXPECT_EQ(c.events.events[0], expected);
    }
}

// ---- lassos

TEST(LassoMove, PullsTheRubberBand) {
    InputControl c({.mode = ModeLasso});
    c->m_vLassoPoints = {{0.5, 0.5}};
    c->OnMouseMoved(0, 160, 360);
    EXPECT_DOUBLE_EQ(c->m_lassoCursor.x, 0.25);
    EXPECT_DOUBLE_EQ(c->m_lassoCursor.y, 0.75);
    EXPECT_EQ(c->m_vLassoPoints.size(), 1u);
    EXPECT_EQ(c.window->eraseInvalidates, 1);
    EXPECT_EQ(c.RepaintsAsked(), 1);
    EXPECT_TRUE(c.KeptNoPoint());
}

TEST(LassoMove, OfTheMaskRepaintsInASession) {
    InputControl c;
    for (const std::uint32_t flags : {0u, kLeft}) {
        c.Set({.mode = ModeMaskLasso});
        c->m_pCutSession = std::make_unique<CutSession>();
        c->OnMouseMoved(flags, 160, 360);
        EXPECT_EQ(c.window->eraseInvalidates, 1);
        EXPECT_EQ(c.RepaintsAsked(), 1);
        EXPECT_TRUE(c.KeptNoPoint());
    }
}

// ---- the plane

TEST(PlaneHover, HighlightsByCtrlAndForgetsTheLastPick) {
    InputControl c;
    for (const bool shown : {false, true}) {
        for (const bool ctrl : {false, true}) {
            c.Set({.plane = shown});
            c->m_clipPlane.SetCenter({1e6, 1e6, 1e6});  // far from the mouse
            c->m_clipPlane.OnPicked(0);
            c->m_clipPlane.m_bHighlighted = !ctrl;
            c->OnMouseMoved(ctrl ? kCtrl : 0, kToX, kToY);
            EXPECT_EQ(c->m_clipPlane.m_bHighlighted, ctrl);
            EXPECT_FALSE(c->m_clipPlane.IsPicked());
            EXPECT_EQ(c.window->refreshes, shown ? 1 : 0) << "the pick was tested anew only where the plane is shown";
        }
    }
}

TEST(PlaneDragByMove, BeginsWhereCtrlIsSeenAndEndsWhereItIsGone) {
    InputControl c;
    struct Row {
        std::int32_t viewMode, planeMode;
        bool moveHandle, rotateHandles;
    };
    for (const Row& row : {Row{ModeRotate, ModePlaneRotate, false, true}, Row{ModePan, ModePlaneMove, true, false}}) {
        SCOPED_TRACE(row.viewMode);
        c.Set({.mode = row.viewMode, .plane = true});
        const Plane& plane = c->m_clipPlane;
        c->m_clipPlane.OnPicked(0);
        c->OnMouseMoved(kLeft | kCtrl, kToX, kToY);
        EXPECT_EQ(c->m_nInteractionMode, row.planeMode);
        EXPECT_TRUE(plane.m_bHighlighted);
        EXPECT_FALSE(plane.IsPicked());
        EXPECT_EQ(plane.m_bMoveHandleVisible, row.moveHandle);
        EXPECT_EQ(plane.m_bRotateHandlesVisible, row.rotateHandles);
        EXPECT_EQ(plane.m_drag.pressX, kToX);
        EXPECT_EQ(plane.m_drag.pressY, kToY);
        c->OnMouseMoved(kLeft, kToX + 1, kToY);
        EXPECT_EQ(c->m_nInteractionMode, row.viewMode);
        EXPECT_FALSE(plane.m_bHighlighted);
        EXPECT_TRUE(plane.m_bMoveHandleVisible);
        EXPECT_TRUE(plane.m_bRotateHandlesVisible);
    }
}

// What the scene would do under the same travel, the plane does while the scene stands still.
TEST(PlaneRotation, TurnsTheNormalAgainstTheShadowFrame) {
    InputControl c({.mode = ModePlaneRotate, .plane = true});
    c->m_clipPlane.SetNormal({0.48, -0.6, 0.64});
    c->m_savedView = c->LiveFrame();
    c->m_nLastMouseX = kFromX, c->m_nLastMouseY = kFromY;
    const ExpectedView live = ExpectedView::Of(*c);
    ExpectedView shadow = live;
    const Vector normal{0.48, -0.6, 0.64};
    c->OnMouseMoved(kLeft | kCtrl, kToX, kToY);
    shadow.Rotate(kDx, kDy);
    // The normal keeps the place that it has in the turned frame's picture: its coordinates there, in the live frame.
    Vector expected = Plus({}, Inner(normal, shadow.right), live.right);
    expected = Plus(expected, Inner(normal, shadow.up), live.up);
    expected = Plus(expected, Inner(normal, shadow.viewer), live.viewer);
    const Double3 turned = c->m_clipPlane.GetNormal();
    for (std::size_t i = 0; i < 3; ++i) EXPECT_NEAR(turned[i], expected[i], 1e-5) << i;
    ExpectView(*c, live);
    for (std::size_t i = 0; i < 3; ++i) EXPECT_NEAR(c->m_savedView.wz[i], shadow.viewer[i], 1e-5) << i;
}

// ---- roll

TEST(RollQuadrantOnAMove, IsThatOfTheLastPointInEveryMode) {
    InputControl c;
    struct Row {
        std::int32_t lastX, lastY, quadrant;
    };
    const Row rows[] = {{319, 239, 0}, {320, 239, 1}, {320, 240, 2}, {319, 240, 3}, {20, 20, 0}, {620, 470, 2}};
    for (const std::int32_t mode : kAllModes) {
        for (const Row& row : rows) {
            SCOPED_TRACE(testing::Message() << "mode " << mode << ", from " << row.lastX << " " << row.lastY);
            c.Set({.mode = mode});
            c->m_nRollQuadrant = 99;
            c->m_nLastMouseX = row.lastX, c->m_nLastMouseY = row.lastY;
            c->OnMouseMoved(0, 640 - row.lastX, 480 - row.lastY);
            EXPECT_EQ(c->m_nRollQuadrant, row.quadrant);
            EXPECT_EQ(c->m_bRollRotation, 0);
        }
    }
}

// ---- wheel

TEST(Wheel, ZoomsByTheSchemeInTheModesThatTakeIt) {
    InputControl c;
    constexpr double kNotch = 1.12;
    for (const std::int32_t mode : kAllModes) {
        const bool takes = mode <= 3 || mode == 6 || mode == 7 || mode == 9;
        for (const std::int32_t igd : {0, 1, 2}) {
            for (const std::int32_t delta : {120, -120}) {
                SCOPED_TRACE(testing::Message() << "mode " << mode << ", scheme " << igd << ", delta " << delta);
                c.Set({.mode = mode, .igd = igd, .flip = 1});
                ExpectedView view = ExpectedView::Of(*c);
                if (takes) view.zoom = (delta > 0) == (igd == 0) ? kNotch : 1 / kNotch;
                c->OnMouseWheel(0, delta);
                ExpectView(*c, view);
                EXPECT_EQ(c.window->refreshes, takes ? 1 : 0);
                EXPECT_EQ(c->m_nInteractionMode, mode);
                EXPECT_EQ(c->m_bAnimationRunning, 1);
                EXPECT_TRUE(c.KeptNoPoint());
            }
        }
    }
}

TEST(Wheel, HalvesOddDeltasTowardsZero) {
    InputControl c;
    struct Row {
        std::int32_t delta;
        double zoom;
    };
    // d / 500 + 1 with d = 60, 120, 0 and 1.
    const Row rows[] = {{121, 1.12}, {-121, 1 / 1.12}, {240, 1.24}, {1, 1.0}, {-1, 1.0}, {3, 1.002}, {-3, 1 / 1.002}};
    for (const Row& row : rows) {
        c.Set({});
        c->OnMouseWheel(0, row.delta);
        EXPECT_NEAR(c->m_fZoom, row.zoom, 1e-6) << row.delta;
        EXPECT_EQ(c.window->refreshes, 1) << row.delta << ": also where the zoom stays";
    }
}

TEST(Wheel, IsDeadWithoutTheHostsLeave) {
    InputControl c;
    for (const int allow : {0, 2, -1}) {
        c.Set({});
        c->AllowMouseInteraction(static_cast<std::int16_t>(allow));
        c->OnMouseWheel(0, 120);
        EXPECT_EQ(c->m_fZoom, 1.0f);
        EXPECT_EQ(c.RepaintsAsked(), 0);
    }
}

}  // namespace
