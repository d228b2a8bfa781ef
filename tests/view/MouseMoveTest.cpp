// What a move does in each interaction mode: which travel rotates or pans the view, what the dialog receives, whether
// the point becomes the last one, what is repainted. And the wheel.
#include "support/TestCutSession.h"
#include "view/ExpectedView.h"
#include "view/InputHelp.h"

namespace {

// From (310, 190) to (325, 170).
constexpr std::int32_t kFromX = 310, kFromY = 190, kDx = 15, kDy = -20, kToX = kFromX + kDx, kToY = kFromY + kDy;

enum class Effect {
    Nothing,      ///< also the last point stays
    Follows,      ///< the point becomes the last one
    Rotates,      ///< the view; follows and refreshes
    Pans,         ///< the view; follows and refreshes
    DragsHandle,  ///< of the plane: refreshes, and the last point stays
    DragsPlane,   ///< follows, and queues a repaint with erase
};
using enum Effect;

constexpr std::int32_t kSameMode = -1;

struct MoveRow {
    const char* name;
    Before before;
    std::uint32_t flags;
    Effect effect;
    Calls dialogCalls{};
    std::int32_t mode = kSameMode;  ///< after the move
};
void PrintTo(const MoveRow& row, std::ostream* out) { *out << row.name; }

const char* const kRotateDrag = "OnRotateDrag 325 170";
const char* const kMoveDrag = "OnMoveDrag 325 170";

const MoveRow kMoves[] = {
    {"IdleHovers", {}, 0, Nothing},
    {"IdleWithLeftHeldHovers", {.igd = 1}, kLeft, Nothing},
    {"IdleOverThePlaneHovers", {.plane = true}, kCtrl, Nothing},
    {"RotateRotates", {.mode = ModeRotate}, kLeft, Rotates},
    {"RotateRotatesWhateverIsHeld", {.mode = ModeRotate}, 0, Rotates},
    {"RotateWithCtrlAndNoPlaneRotates", {.mode = ModeRotate}, kLeft | kCtrl, Rotates},
    {"RotateWithThePlaneShownRotates", {.mode = ModeRotate, .plane = true}, kLeft, Rotates},
    {"RotateWithCtrlStartsAPlaneDrag",
     {.mode = ModeRotate, .plane = true},
     kLeft | kCtrl,
     Nothing,
     {},
     ModePlaneRotate},
    {"PanPans", {.mode = ModePan}, kRight, Pans},
    {"PanWithCtrlAndNoPlanePans", {.mode = ModePan}, kRight | kCtrl, Pans},
    {"PanWithCtrlStartsAPlaneDrag", {.mode = ModePan, .plane = true}, kRight | kCtrl, Nothing, {}, ModePlaneMove},
    {"LassoWithoutPointsDoesNothing", {.mode = ModeLasso}, 0, Nothing},
    {"PickPointsOnlyFollows", PickingPoints(), kLeft, Follows},
    {"UnassignedModeOnlyFollows", {.mode = 5}, kLeft, Follows},
    {"PlaneHandleRepaints", {.mode = ModePlaneHandle, .plane = true}, kLeft, DragsHandle},
    {"MaskLassoWithoutSessionDoesNothing", {.mode = ModeMaskLasso}, kLeft, Nothing},
    {"PlaneRotateRotatesThePlane", {.mode = ModePlaneRotate, .plane = true}, kLeft | kCtrl, DragsPlane},
    {"PlaneRotateGoesBackToTheViewWithoutCtrl",
     {.mode = ModePlaneRotate, .plane = true},
     kLeft,
     Nothing,
     {},
     ModeRotate},
    {"PlaneRotateGoesBackToTheViewWithoutPlane", {.mode = ModePlaneRotate}, kLeft | kCtrl, Nothing, {}, ModeRotate},
    {"PlaneMoveMovesThePlane", {.mode = ModePlaneMove, .plane = true}, kRight | kCtrl, DragsPlane},
    {"PlaneMoveGoesBackToTheViewWithoutCtrl", {.mode = ModePlaneMove, .plane = true}, kRight, Nothing, {}, ModePan},
    {"PlaneMoveGoesBackToTheViewWithoutPlane", {.mode = ModePlaneMove}, kRight | kCtrl, Nothing, {}, ModePan},
    // interactive alignment, normal and flipped
    {"AlignmentWithNothingHeld", Aligning(), 0, Follows},
    {"AlignmentLeft", Aligning(), kLeft, Follows, {kRotateDrag}},
    {"AlignmentRight", Aligning(), kRight, Follows, {kMoveDrag}},
    {"AlignmentMiddle", Aligning(), kMiddle, Follows},
    {"AlignmentBoth", Aligning(), kLeft | kRight, Follows, {kRotateDrag, kMoveDrag}},
    {"AlignmentLeftWithCtrl", Aligning(), kLeft | kCtrl, Follows, {kRotateDrag}},
    {"AlignmentFlippedLeft", Aligning({.flip = 1}), kLeft, Follows, {kMoveDrag}},
    {"AlignmentFlippedRight", Aligning({.flip = 1}), kRight, Follows, {kRotateDrag}},
    {"AlignmentFlippedBoth", Aligning({.flip = 1}), kLeft | kRight, Follows, {kRotateDrag, kMoveDrag}},
    {"AlignmentWithIgdTwoLeft", Aligning({.igd = 2}), kLeft, Follows, {kRotateDrag}},
    {"AlignmentWithIgdTwoRight", Aligning({.igd = 2}), kRight, Follows, {kMoveDrag}},
    {"AlignmentWithoutDialog", {.mode = ModeAlignInteractive}, kLeft | kRight, Follows},
    // interactive alignment, delayed scheme
    {"AlignmentDelayedLeft", Aligning({.igd = 1}), kLeft, Follows},
    {"AlignmentDelayedShift", Aligning({.igd = 1}), kShift, Follows},
    {"AlignmentDelayedLeftAndShift", Aligning({.igd = 1}), kLeft | kShift, Follows},
    {"AlignmentDelayedRight", Aligning({.igd = 1}), kRight, Follows, {kRotateDrag}},
    {"AlignmentDelayedBoth", Aligning({.igd = 1}), kLeft | kRight, Follows, {kMoveDrag}},
    {"AlignmentDelayedShiftAndRight", Aligning({.igd = 1}), kShift | kRight, Follows, {kMoveDrag}},
    {"AlignmentDelayedShiftAndBoth", Aligning({.igd = 1}), kShift | kLeft | kRight, Follows, {kMoveDrag}},
    {"AlignmentDelayedRightWithCtrl", Aligning({.igd = 1}), kRight | kCtrl, Rotates},
    {"AlignmentDelayedBothWithCtrl", Aligning({.igd = 1}), kLeft | kRight | kCtrl, Pans},
    {"AlignmentDelayedShiftAndRightWithCtrl", Aligning({.igd = 1}), kShift | kRight | kCtrl, Pans},
    {"AlignmentDelayedLeftWithCtrl", Aligning({.igd = 1}), kLeft | kCtrl, Follows},
    {"AlignmentDelayedFlippedRight", Aligning({.igd = 1, .flip = 1}), kRight, Follows, {kRotateDrag}},
    {"AlignmentDelayedRightWithCtrlAndNoDialog", {.mode = ModeAlignInteractive, .igd = 1}, kRight | kCtrl, Follows},
};

class MouseMove : public testing::TestWithParam<MoveRow> {
protected:
    void Prepare() {
        c->m_fRotationCenter = {7, -8, 9};
        c->m_nLastMouseX = kFromX, c->m_nLastMouseY = kFromY;
    }
    void ExpectLastPoint(std::int32_t x, std::int32_t y) const {
        EXPECT_EQ(c->m_nLastMouseX, x);
        EXPECT_EQ(c->m_nLastMouseY, y);
    }
    InputControl c{GetParam().before};
};

TEST_P(MouseMove, ActsByTheMode) {
    const MoveRow& row = GetParam();
    Prepare();
    ExpectedView view = ExpectedView::Of(*c);
    if (row.effect == Rotates) view.Rotate(kDx, kDy);
    if (row.effect == Pans) view.Pan(kDx, kDy);
    c->OnMouseMoved(row.flags, kToX, kToY);
    ExpectView(*c, view);
    EXPECT_EQ(c->m_nInteractionMode, row.mode == kSameMode ? row.before.mode : row.mode);
    EXPECT_EQ(c->m_nSavedInteractionMode, kNoMode);
    const bool stays = row.effect == Nothing || row.effect == DragsHandle;
    ExpectLastPoint(stays ? kFromX : kToX, stays ? kFromY : kToY);
    const bool refreshes = row.effect == Rotates || row.effect == Pans || row.effect == DragsHandle;
    EXPECT_EQ(c.window->refreshes, refreshes ? 1 : 0);
    EXPECT_EQ(c.window->eraseInvalidates, row.effect == DragsPlane ? 1 : 0);
    EXPECT_EQ(c.window->invalidates, 0);
    EXPECT_EQ(c.dialog.calls, row.dialogCalls);
    EXPECT_EQ(c->m_bAnimationRunning, 1) << "only presses stop it";
    EXPECT_TRUE(c.events.events.empty());
    EXPECT_FALSE(c.window->HasCapture());
}

TEST_P(MouseMove, DoesNothingWhileTheHostDoesNotAllowTheMouse) {
    const MoveRow& row = GetParam();
    for (const int allow : {0, 2, -1}) {
        Prepare();
        c->AllowMouseInteraction(static_cast<std::int16_t>(allow));
        const ExpectedView view = ExpectedView::Of(*c);
        c->OnMouseMoved(row.flags, kToX, kToY);
        ExpectView(*c, view);
        EXPECT_EQ(c->m_nInteractionMode, row.before.mode);
        ExpectLastPoint(kFromX, kFromY);
        EXPECT_EQ(c.RepaintRequests(), 0);
        EXPECT_TRUE(c.dialog.calls.empty());
    }
}
INSTANTIATE_TEST_SUITE_P(Modes, MouseMove, testing::ValuesIn(kMoves),
                         [](const auto& row) { return std::string(row.param.name); });

TEST(MouseMoveWhileTracing, ReportsTheViewDirectionToTheHost) {
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

TEST(MouseMoveInNeedlePickingMode, RotatesTheViewWhenNoNeedleIsSelected) {
    InputControl c({.mode = ModeRotate});
    c->m_bNeedlePickingMode = 1;
    c->m_nLastMouseX = kFromX, c->m_nLastMouseY = kFromY;
    ExpectedView view = ExpectedView::Of(*c);
    view.Rotate(kDx, kDy);
    c->OnMouseMoved(kLeft, kToX, kToY);
    ExpectView(*c, view);
    EXPECT_EQ(c->m_nLastMouseX, kToX);
    EXPECT_EQ(c->m_nLastMouseY, kToY);
}

// ---- lassos

TEST(LassoMove, MovesTheEndOfTheRubberBand) {
    InputControl c({.mode = ModeLasso});
    c->m_vLassoPoints = {{0.5, 0.5}};
    c->OnMouseMoved(0, 160, 360);
    EXPECT_DOUBLE_EQ(c->m_lassoCursor.x, 0.25);
    EXPECT_DOUBLE_EQ(c->m_lassoCursor.y, 0.75);
    EXPECT_EQ(c->m_vLassoPoints.size(), 1u);
    EXPECT_EQ(c.window->eraseInvalidates, 1);
    EXPECT_EQ(c.RepaintRequests(), 1);
    EXPECT_TRUE(c.LastPointUnchanged());
}

TEST(MaskLassoMove, RepaintsDuringASession) {
    InputControl c;
    for (const std::uint32_t flags : {0u, kLeft}) {
        c.Set({.mode = ModeMaskLasso});
        c->m_pCutSession = MakeTestCutSession();
        c->OnMouseMoved(flags, 160, 360);
        EXPECT_EQ(c.window->eraseInvalidates, 1);
        EXPECT_EQ(c.RepaintRequests(), 1);
        EXPECT_TRUE(c.LastPointUnchanged());
    }
}

// ---- the plane

TEST(PlaneHover, HighlightsThePlaneByCtrlAndClearsThePick) {
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
            EXPECT_EQ(c.window->refreshes, shown ? 1 : 0) << "only a visible plane is picked again";
        }
    }
}

TEST(PlaneDragByMove, BeginsWithCtrlDuringADragAndEndsWithoutIt) {
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

// The plane rotates as the view would by the same travel, while the view does not move.
TEST(PlaneRotation, RotatesTheNormalAsTheViewWouldRotate) {
    InputControl c({.mode = ModePlaneRotate, .plane = true});
    c->m_clipPlane.SetNormal({0.48, -0.6, 0.64});
    c->m_savedView = c->LiveFrame();
    c->m_nLastMouseX = kFromX, c->m_nLastMouseY = kFromY;
    const ExpectedView live = ExpectedView::Of(*c);
    ExpectedView shadow = live;
    const Double3 normal{0.48, -0.6, 0.64};
    c->OnMouseMoved(kLeft | kCtrl, kToX, kToY);
    shadow.Rotate(kDx, kDy);
    // The normal keeps its coordinates in the axes of the screen: read in the rotated frame, set in the live one.
    const Double3 expected = Dot(normal, shadow.right) * live.right + Dot(normal, shadow.up) * live.up +
                             Dot(normal, shadow.viewer) * live.viewer;
    const Double3 rotated = c->m_clipPlane.GetNormal();
    for (std::size_t i = 0; i < 3; ++i) EXPECT_NEAR(rotated[i], expected[i], 1e-5) << i;
    ExpectView(*c, live);
    for (std::size_t i = 0; i < 3; ++i) EXPECT_NEAR(c->m_savedView.wz[i], shadow.viewer[i], 1e-5) << i;
}

// ---- roll

TEST(RollQuadrantAfterAMove, IsThatOfTheLastPointInEveryMode) {
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

TEST(Wheel, ZoomsInTheModesThatAllowItWithTheDirectionOfTheScheme) {
    InputControl c;
    constexpr double kNotch = 1.12;
    for (const std::int32_t mode : kAllModes) {
        const bool zooms =
            mode <= ModePan || mode == ModeAlignInteractive || mode == ModeAlignPickPoints || mode == ModePlaneHandle;
        for (const std::int32_t igd : {0, 1, 2}) {
            for (const std::int32_t delta : {120, -120}) {
                SCOPED_TRACE(testing::Message() << "mode " << mode << ", scheme " << igd << ", delta " << delta);
                c.Set({.mode = mode, .igd = igd, .flip = 1});
                ExpectedView view = ExpectedView::Of(*c);
                if (zooms) view.zoom = (delta > 0) == (igd == 0) ? kNotch : 1 / kNotch;
                c->OnMouseWheel(0, delta);
                ExpectView(*c, view);
                EXPECT_EQ(c.window->refreshes, zooms ? 1 : 0);
                EXPECT_EQ(c->m_nInteractionMode, mode);
                EXPECT_EQ(c->m_bAnimationRunning, 1);
                EXPECT_TRUE(c.LastPointUnchanged());
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
        EXPECT_EQ(c.window->refreshes, 1) << row.delta << ": also where the zoom does not change";
    }
}

TEST(Wheel, DoesNothingWhileTheHostDoesNotAllowTheMouse) {
    InputControl c;
    for (const int allow : {0, 2, -1}) {
        c.Set({});
        c->AllowMouseInteraction(static_cast<std::int16_t>(allow));
        c->OnMouseWheel(0, 120);
        EXPECT_EQ(c->m_fZoom, 1.0f);
        EXPECT_EQ(c.RepaintRequests(), 0);
    }
}

}  // namespace
