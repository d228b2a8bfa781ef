// What mouse and keys do beside picking points: drags of the view with Ctrl, the delayed scheme, double clicks, needles
// and the animation.
#include <cmath>

#include "align/PickScene.h"
#include "view/UserInput.h"

using KV_ScenePane::AlignmentPhase;
using KV_ScenePane::kKeyDelete;
using KV_ScenePane::kKeyEscape;
using KV_ScenePane::kKeySpace;

namespace {

constexpr double kTolerance = 1e-5;
using Kind = KV_ScenePane::MouseInput::Kind;

class InputWhilePickingPoints : public testing::Test {
protected:
    InputWhilePickingPoints() { v->AlignPickPoints(); }

    /// A drag with Ctrl held, from the first pixel to the last in two moves.
    void DragWithCtrl(Kind down, Kind up, std::uint32_t button, int fromX, int fromY, int toX, int toY) {
        const std::uint32_t flags = button | KV_ScenePane::kMouseCtrl;
        v.Mouse(down, fromX, fromY, flags);
        v.Mouse(Kind::Move, (fromX + toX) / 2, (fromY + toY) / 2, flags);
        v.Mouse(Kind::Move, toX, toY, flags);
        v.Mouse(up, toX, toY, KV_ScenePane::kMouseCtrl);
    }
    /// The pick of a pixel in the plane z = @p height, by the axes of the view: 48 pixels per unit.
    [[nodiscard]] std::array<double, 3> PointAt(int x, int y, double height) const {
        const double right = (x - 320) / 48.0, up = (240 - y) / 48.0;
        std::array<double, 3> p{};
        for (std::size_t i = 0; i < 3; ++i)
            p[i] = double{v->m_fViewCenter[i]} + right * double{v->m_fAxisX[i]} + up * double{v->m_fAxisY[i]};
        const double t = (height - p[2]) / double{v->m_fAxisZ[2]};
        for (std::size_t i = 0; i < 3; ++i) p[i] += t * double{v->m_fAxisZ[i]};
        return p;
    }
    void ExpectLastMoving(std::size_t count, const std::array<double, 3>& expected) {
        const auto picks = v->GetAlignmentPicks();
        ASSERT_EQ(picks.moving.size(), count);
        for (std::size_t i = 0; i < 3; ++i) EXPECT_NEAR(picks.moving.back().point[i], expected[i], 4 * kTolerance) << i;
    }

    PickControl v;
};

TEST_F(InputWhilePickingPoints, RotatesTheViewWithCtrlAndPicksInTheNewOne) {
    v.Click(176, 240);
    DragWithCtrl(Kind::LeftDown, Kind::LeftUp, KV_ScenePane::kMouseLeft, 300, 220, 340, 250);
    EXPECT_LT(v->m_fAxisZ[2], 0.99f) << "the view has turned";
    EXPECT_EQ(v->m_nInteractionMode, ModeAlignPickPoints);
    EXPECT_NE(v->m_bLassoCursor, 0);
    ExpectLastMoving(1, {-3, 0, 1});
    v.Click(176, 230);
    ExpectLastMoving(2, PointAt(176, 230, 1));
}

TEST_F(InputWhilePickingPoints, PansTheViewWithCtrlAndTheRightButton) {
    DragWithCtrl(Kind::RightDown, Kind::RightUp, KV_ScenePane::kMouseRight, 300, 220, 348, 172);
    EXPECT_NEAR(v->m_fViewCenter[0], -1, kTolerance);
    EXPECT_NEAR(v->m_fViewCenter[1], -1, kTolerance);
    v.Click(224, 192);  // 48 pixels further to the right and up
    ExpectLastMoving(1, {-3, 0, 1});
}

TEST_F(InputWhilePickingPoints, SwapsTheDragsOfTheViewWithFlippedButtons) {
    v->FlipMouseButtons(1);
    const Float3 axis = v->m_fAxisX;
    DragWithCtrl(Kind::LeftDown, Kind::LeftUp, KV_ScenePane::kMouseLeft, 300, 220, 348, 220);
    EXPECT_EQ(v->m_fAxisX, axis);
    EXPECT_NEAR(v->m_fViewCenter[0], -1, kTolerance);
    DragWithCtrl(Kind::RightDown, Kind::RightUp, KV_ScenePane::kMouseRight, 300, 220, 348, 220);
    EXPECT_NE(v->m_fAxisX, axis);
    EXPECT_EQ(v->m_nInteractionMode, ModeAlignPickPoints);
}

// The end of a roll resets the cursor, whatever it was before.
TEST_F(InputWhilePickingPoints, LosesItsCursorByARoll) {
    DragWithCtrl(Kind::LeftDown, Kind::LeftUp, KV_ScenePane::kMouseLeft, 620, 20, 600, 60);
    EXPECT_NE(v->m_fAxisX[1], 0) << "the view has rolled";
    EXPECT_NEAR(v->m_fAxisZ[2], 1, kTolerance);
    EXPECT_EQ(v->m_bRollRotation, 0);
    EXPECT_EQ(v->m_bLassoCursor, 0);
    EXPECT_EQ(v->m_nInteractionMode, ModeAlignPickPoints);
}

TEST_F(InputWhilePickingPoints, ZoomsByTheWheelAndPicksInTheZoomedView) {
    v->SendMouse({.kind = Kind::Wheel, .x = 320, .y = 240, .delta = 120});
    const double pixelsPerUnit = 48.0 / 1.12;
    EXPECT_NEAR(v->m_fZoom, 1.12, kTolerance);
    v.Click(200, 240);
    ExpectLastMoving(1, {(200 - 320) / pixelsPerUnit, 0, 1});
}

TEST_F(InputWhilePickingPoints, MovesNothingByDragsWithoutCtrl) {
    const Float3 axis = v->m_fAxisX, center = v->m_fViewCenter;
    for (const auto& [down, up, flag] : {std::tuple{Kind::LeftDown, Kind::LeftUp, KV_ScenePane::kMouseLeft},
                                         std::tuple{Kind::RightDown, Kind::RightUp, KV_ScenePane::kMouseRight}}) {
        v.Mouse(down, 176, 240, flag);
        v.Mouse(Kind::Move, 300, 300, flag);
        v.Mouse(up, 310, 310);
    }
    EXPECT_EQ(v->m_fAxisX, axis);
    EXPECT_EQ(v->m_fViewCenter, center);
    EXPECT_EQ(v.Trafo(kMovingPlate), kIdentity);
    ExpectLastMoving(1, {-3, 0, 1});
}

TEST_F(InputWhilePickingPoints, PicksByPressesThatReachTheViewerWhileMovesAreOff) {
    v->AllowMouseInteraction(0);
    v.Click(176, 240);
    ExpectLastMoving(1, {-3, 0, 1});
    DragWithCtrl(Kind::LeftDown, Kind::LeftUp, KV_ScenePane::kMouseLeft, 300, 220, 340, 250);
    EXPECT_EQ(v->m_fAxisZ[2], 1.0f);
    v.Click(200, 240);
    ExpectLastMoving(2, {-2.5, 0, 1});
}

// The first press picks a point; the second one fits the view, as everywhere.
TEST_F(InputWhilePickingPoints, FitsTheViewByADoubleClickAfterOnePoint) {
    v->SetViewMode(KV_ScenePane::ViewFromPlusZYUp);
    v.Mouse(Kind::LeftDown, 176, 240, KV_ScenePane::kMouseLeft);
    v.Mouse(Kind::LeftUp, 176, 240);
    v.Mouse(Kind::DoubleClick, 176, 240, KV_ScenePane::kMouseLeft);
    v.Mouse(Kind::LeftUp, 176, 240);
    ExpectLastMoving(1, {-3, 0, 1});
    EXPECT_EQ(v->m_nInteractionMode, ModeAlignPickPoints);
    EXPECT_NEAR(v->m_fSceneSize, std::sqrt(9.8 * 9.8 * 2 + 4.01 * 4.01), 0.02) << "the diagonal of all three plates";
    EXPECT_TRUE(v.host.others.empty());
    v->SetPickMode(KV_ScenePane::PickModeObjects);
    v.Mouse(Kind::DoubleClick, 320, 240, KV_ScenePane::kMouseLeft);
    v.Mouse(Kind::LeftUp, 320, 240);
    EXPECT_EQ(v.host.others, std::vector<std::string>{"SelectObjCoords"});
    ExpectLastMoving(1, {-3, 0, 1});
}

TEST_F(InputWhilePickingPoints, BothStartsTheAnimationAndTheNextPhaseBySpace) {
    v->ToggleAnimationOnSpacebar(1);
    v->SetAnimationSpeed(0);
    v.Type(kKeySpace);
    EXPECT_NE(v->IsAnimationRunning(), 0);
    EXPECT_EQ(v.Dialog().m_nPhase, 1);
    v.Click(176, 240);
    EXPECT_EQ(v->IsAnimationRunning(), 0) << "a press stops it";
    v.Type(kKeySpace);
    EXPECT_NE(v->IsAnimationRunning(), 0);
    EXPECT_EQ(v.Dialog().m_nPhase, 2);
    v.Type(kKeySpace);
    EXPECT_EQ(v->IsAnimationRunning(), 0);
    EXPECT_EQ(v.Dialog().m_nPhase, 2);
}

TEST_F(InputWhilePickingPoints, BothDeletesTheSelectedNeedleAndTheLastPoint) {
    v->SetNeedlePickingMode(-1);
    v->SetMaxNumberOfNeedles(2);
    ASSERT_NE(v->CreateNeedle(7, 0, 0, 0, 0, 0, 2), 0);
    ASSERT_NE(v->CreateNeedle(8, 1, 0, 0, 1, 0, 2), 0);
    v->SelectNeedle(7);
    v.Click(176, 240);
    EXPECT_EQ(v.host.others, std::vector<std::string>{}) << "a press while points are picked selects no needle";
    v.Type(kKeyDelete);
    EXPECT_EQ(v.host.others, std::vector<std::string>{"NeedleDeleted"});
    EXPECT_EQ(v->GetNumberOfNeedles(), 1);
    EXPECT_TRUE(v->GetAlignmentPicks().moving.empty());
    v.Type(kKeyEscape);
    EXPECT_EQ(v.host.done, 1);
    EXPECT_EQ(v->GetNumberOfNeedles(), 1);
}

// ---- the delayed scheme

class DelayedInputWhilePickingPoints : public InputWhilePickingPoints {
protected:
    DelayedInputWhilePickingPoints() {
        v->SetIGDRotation(1);
        HoldDispatchTimer(v);
    }
};

TEST_F(DelayedInputWhilePickingPoints, PicksWhereTheButtonWentDown) {
    v.Mouse(Kind::LeftDown, 176, 240, KV_ScenePane::kMouseLeft);
    EXPECT_TRUE(v->GetAlignmentPicks().moving.empty()) << "the press waits";
    v.Mouse(Kind::LeftUp, 178, 241);
    EndDispatchDelay(v);
    ExpectLastMoving(1, {-3, 0, 1});
    EXPECT_EQ(v->m_nInteractionMode, ModeAlignPickPoints);
    EXPECT_FALSE(v.window->HasCapture());
}

TEST_F(DelayedInputWhilePickingPoints, PicksWithCtrlToo) {
    v.Mouse(Kind::LeftDown, 176, 240, KV_ScenePane::kMouseLeft | KV_ScenePane::kMouseCtrl);
    EndDispatchDelay(v);
    v.Mouse(Kind::LeftUp, 176, 240, KV_ScenePane::kMouseCtrl);
    ExpectLastMoving(1, {-3, 0, 1});
}

TEST_F(DelayedInputWhilePickingPoints, RotatesWithCtrlAndTheRightButtonAndPansWithShift) {
    const Float3 axis = v->m_fAxisX;
    const auto drag = [&](std::uint32_t modifiers) {
        const std::uint32_t flags = KV_ScenePane::kMouseRight | KV_ScenePane::kMouseCtrl | modifiers;
        v.Mouse(Kind::RightDown, 300, 220, flags);
        EndDispatchDelay(v);
        v.Mouse(Kind::Move, 348, 220, flags);
        v.Mouse(Kind::RightUp, 348, 220, KV_ScenePane::kMouseCtrl | modifiers);
        EXPECT_EQ(v->m_nInteractionMode, ModeAlignPickPoints);
    };
    drag(KV_ScenePane::kMouseShift);
    EXPECT_EQ(v->m_fAxisX, axis);
    EXPECT_NEAR(v->m_fViewCenter[0], -1, kTolerance);
    drag(0);
    EXPECT_NE(v->m_fAxisX, axis);
}

TEST_F(DelayedInputWhilePickingPoints, AlignsByTheSameClicks) {
    const auto click = [&](int x, int y) {
        v.Click(x, y);
        EndDispatchDelay(v);
    };
    for (const PixelPair& pair : kQuarterTurn) click(pair.movingX, pair.movingY);
    v.Type(kKeySpace);
    for (const PixelPair& pair : kQuarterTurn) click(pair.fixedX, pair.fixedY);
    EXPECT_EQ(v.host.done, 1);
    EXPECT_EQ(v->m_nInteractionMode, ModeIdle);
    EXPECT_FALSE(v.window->HasCapture());
    ExpectTrafo(v.Trafo(kMovingPlate), kQuarterTurnTrafo);
}

}  // namespace
