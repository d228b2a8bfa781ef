// Drags of the objects against poses that the test computes in double from the travels of the mouse.
#include <string>
#include <tuple>

#include "align/HandScene.h"

namespace {

using KV_ScenePane::kMouseCtrl;
using KV_ScenePane::kMouseLeft;
using KV_ScenePane::kMouseRight;
using KV_ScenePane::kMouseShift;

constexpr std::int16_t kModes[] = {0, 1, 2, 3, 9};  ///< and one that no rotation has

// ---- moves

TEST(MoveDrag, ShiftsTheVariableObjectsByTheTravelInTheWindow) {
    HandScene scene;
    scene.Begin();
    scene.Drag(kMouseRight, {{300, 200}, {310, 180}, {345, 260}});
    scene.ExpectShift(10, -20);
    scene.ExpectShift(35, 80);
    scene.Check();
}

TEST(MoveDrag, KeepsThePointUnderTheMouse) {
    HandScene scene;
    scene.Begin();
    const auto pixelOfCorner = [&] {
        const Vertex& v = scene.pane.m_vpMeshes[1]->m_vVertices[1];
        double x = 0, y = 0;
        scene.pane.ProjectPointDouble(v.x, v.y, v.z, &x, &y);
        return std::pair(x, y);
    };
    const auto [x0, y0] = pixelOfCorner();
    scene.Drag(kMouseRight, {{100, 400}, {133, 395}, {250, 317}});
    const auto [x1, y1] = pixelOfCorner();
    EXPECT_NEAR(x1 - x0, 150, 1e-3);
    EXPECT_NEAR(y1 - y0, -83, 1e-3);
}

TEST(MoveDrag, EndsAtThePixelOfTheRelease) {
    HandScene scene;
    scene.Begin();
    scene.Press(kMouseRight, 300, 200);
    scene.Move(kMouseRight, 300, 200);
    scene.Release(kMouseRight, 340, 170);
    scene.ExpectShift(40, -30);
    scene.Check();
    scene.Move(0, 500, 400);
    scene.Check();
}

TEST(MoveDrag, ShiftsTheCentreOfRotationToo) {
    HandScene scene;
    scene.Begin();
    scene.Drag(kMouseRight, {{300, 200}, {420, 90}});
    scene.ExpectShift(120, -110);
    scene.Drag(kMouseLeft, {{320, 240}, {350, 285}});
    scene.ExpectRotation(3, 30, 45);
    scene.Check();
    EXPECT_LT(Length(ToDouble3(scene.Dialog()->m_fPivot) - scene.pivot), 1e-4);
}

// ---- rotations

struct RotationRow {
    const char* name;
    std::int16_t mode;
    int dx, dy;
};
void PrintTo(const RotationRow& row, std::ostream* out) { *out << row.name; }

class RotateDrag : public testing::TestWithParam<RotationRow> {};

TEST_P(RotateDrag, TurnsAboutTheCentreByTheTravel) {
    const auto [name, mode, dx, dy] = GetParam();
    HandScene scene;
    scene.pane.SetRotationMode(mode);
    scene.Begin();
    scene.Drag(kMouseLeft, {{320, 240}, {320 + dx, 240 + dy}, {320 - dy, 240 + dx}});
    scene.ExpectRotation(mode, dx, dy);
    scene.ExpectRotation(mode, -dy - dx, dx - dy);
    scene.Check();
    EXPECT_GT(Difference(scene.expected[1], scene.start[1]), 1) << "the row moves something";
}
INSTANTIATE_TEST_SUITE_P(Modes, RotateDrag,
                         testing::Values(RotationRow{"AboutHorizontal", 0, 40, 60},
                                         RotationRow{"AboutVertical", 1, 40, 60},
                                         RotationRow{"AboutViewAxisByX", 2, -70, 20},
                                         RotationRow{"AboutViewAxisByY", 2, 30, 90}, RotationRow{"Free", 3, 50, -35},
                                         RotationRow{"FreeToTheRight", 3, 80, 0}, RotationRow{"FreeDown", 3, 0, 80}),
                         [](const auto& row) { return std::string(row.param.name); });

struct StillRow {
    const char* name;
    std::int16_t mode;
    int dx, dy;
};
void PrintTo(const StillRow& row, std::ostream* out) { *out << row.name; }

class StillDrag : public testing::TestWithParam<StillRow> {};

TEST_P(StillDrag, RotatesNothingAndDrawsNoFrame) {
    const auto [name, mode, dx, dy] = GetParam();
    HandScene scene;
    scene.pane.SetRotationMode(mode);
    scene.Begin();
    scene.Press(kMouseLeft, 320, 240);
    scene.Move(kMouseLeft, 320, 240);
    scene.pane.m_vpMeshes[1]->m_bBuffersDirty = false;
    scene.control.window->Forget();
    scene.Move(kMouseLeft, 320 + dx, 240 + dy);
    scene.Move(kMouseLeft, 320 + 2 * dx, 240 + 2 * dy);
    EXPECT_EQ(scene.control.window->swaps, 0);
    EXPECT_FALSE(scene.pane.m_vpMeshes[1]->m_bBuffersDirty);
    scene.Release(kMouseLeft, 320 + 2 * dx, 240 + 2 * dy);
    scene.Check(1e-5);
    scene.Drag(kMouseRight, {{100, 100}, {130, 100}});
    scene.ExpectShift(30, 0);
    scene.Check();
}
INSTANTIATE_TEST_SUITE_P(Travels, StillDrag,
                         testing::Values(StillRow{"HorizontalAboutHorizontal", 0, 40, 0},
                                         StillRow{"VerticalAboutVertical", 1, 0, 40}, StillRow{"Mode4", 4, 40, 30},
                                         StillRow{"NegativeMode", -1, 40, 30}, StillRow{"LargestMode", 32767, 40, 30}),
                         [](const auto& row) { return std::string(row.param.name); });

TEST(RotateDragOverTheWindow, IsHalfATurnPerSide) {
    for (const auto& [mode, dx, dy] : {std::tuple<std::int16_t, int, int>{0, 0, 480}, {1, 640, 0}, {3, 480, 0}}) {
        SCOPED_TRACE(testing::Message() << "mode " << mode);
        HandScene scene;
        scene.pane.SetRotationMode(mode);
        scene.Begin();
        const HandCamera camera(scene.pane);
        scene.Dialog()->OnRotateDrag(0, 0);
        scene.Dialog()->OnRotateDrag(dx, dy);
        scene.ExpectStep(TurnAbout(mode == 0 ? camera.right : camera.up, std::numbers::pi, scene.pivot));
        scene.Check();
    }
}

/// A press outside the inscribed circle rolls in any mode, following the mouse around the centre.
TEST(RollDrag, FollowsTheMouseInEachQuadrantAndMode) {
    struct Row {
        int x, y;          ///< of the press
        int signX, signY;  ///< of the travel in the quadrant
    };
    for (const Row& row : {Row{40, 40, 1, 1}, Row{600, 40, 1, -1}, Row{600, 440, -1, -1}, Row{40, 440, -1, 1}})
        for (const std::int16_t mode : kModes) {
            SCOPED_TRACE(testing::Message() << "press at " << row.x << ", " << row.y << ", mode " << mode);
            HandScene scene;
            scene.pane.SetRotationMode(mode);
            scene.Begin();
            scene.Drag(kMouseLeft, {{row.x, row.y}, {row.x + 25, row.y + 5}, {row.x + 20, row.y + 30}});
            for (const auto& [dx, dy] : {std::pair{25, 5}, {-5, 25}})
                scene.ExpectStep(HandCamera(scene.pane).Roll(row.signX * dx, row.signY * dy, scene.pivot));
            scene.Check();
        }
}

TEST(RollDrag, IsOverWithItsButton) {
    HandScene scene;
    scene.Begin();
    scene.Drag(kMouseLeft, {{600, 40}, {610, 60}});
    scene.ExpectStep(HandCamera(scene.pane).Roll(10, -20, scene.pivot));
    scene.Drag(kMouseLeft, {{320, 240}, {340, 230}});
    scene.ExpectRotation(3, 20, -10);
    scene.Check();
}

/// The picture after a drag of all objects about the centre of the view is the one after the same drag of the view.
TEST(RotateDrag, TurnsTheObjectsInTheWindowAsADragOfTheViewWould) {
    struct Row {
        std::int16_t mode;
        int x, y, dx, dy;
    };
    // The free rotation of the view turns about two axes one after the other: along one of them both are the same.
    for (const Row& row : {Row{0, 320, 240, 13, 50}, Row{1, 320, 240, 50, 13}, Row{2, 320, 240, 50, 13},
                           Row{3, 320, 240, 60, 0}, Row{3, 320, 240, 0, 60}, Row{0, 40, 40, 30, 10},
                           Row{1, 600, 40, 10, 30}, Row{2, 600, 440, -30, 5}, Row{3, 40, 440, 4, -30}}) {
        SCOPED_TRACE(testing::Message() << "mode " << row.mode << " from " << row.x << ", " << row.y);
        HandScene objects, view;
        for (HandScene* const scene : {&objects, &view}) {
            scene->pane.SetRotationMode(row.mode);
            scene->pane.m_fRotationCenter = scene->pane.m_fViewCenter;
        }
        for (const std::int16_t idx : {std::int16_t{0}, std::int16_t{3}}) objects.pane.AddVariableObject(idx);
        objects.Begin();
        objects.Dialog()->m_fPivot = objects.pane.m_fViewCenter;
        for (HandScene* const scene : {&objects, &view})
            scene->Drag(kMouseLeft, {{row.x, row.y}, {row.x + row.dx, row.y + row.dy}});
        for (std::size_t i = 0; i < 4; ++i)
            for (std::size_t v = 0; v < 4; ++v) {
                double x[2] = {}, y[2] = {};
                HandScene* const scenes[] = {&objects, &view};
                for (std::size_t s = 0; s < 2; ++s) {
                    const Vertex& p = scenes[s]->pane.m_vpMeshes[i]->m_vVertices[v];
                    scenes[s]->pane.ProjectPointDouble(p.x, p.y, p.z, &x[s], &y[s]);
                }
                EXPECT_NEAR(x[0], x[1], 1e-2);
                EXPECT_NEAR(y[0], y[1], 1e-2);
            }
    }
}

// ---- which button does what

TEST(FlippedButtons, MoveByTheLeftAndRotateByTheRight) {
    HandScene scene;
    scene.pane.FlipMouseButtons(1);
    scene.Begin();
    scene.Drag(kMouseLeft, {{300, 200}, {320, 230}});
    scene.ExpectShift(20, 30);
    scene.Drag(kMouseRight, {{300, 200}, {320, 230}});
    scene.ExpectRotation(3, 20, 30);
    scene.Check();
}

TEST(BothButtons, RotateAndTheMoveFindsThePixelHandled) {
    for (const bool isFlipped : {false, true}) {
        SCOPED_TRACE(isFlipped ? "flipped" : "normal");
        HandScene scene;
        scene.pane.FlipMouseButtons(isFlipped ? 1 : 0);
        scene.Begin();
        scene.Press(kMouseLeft, 300, 200);
        scene.Press(kMouseRight, 300, 200, kMouseLeft);
        scene.Move(kMouseLeft | kMouseRight, 300, 200);
        scene.Move(kMouseLeft | kMouseRight, 330, 220);
        scene.ExpectRotation(3, 30, 20);
        scene.Check();
    }
}

TEST(SecondButton, ContinuesTheDragWithoutAJump) {
    HandScene scene;
    scene.Begin();
    scene.Press(kMouseRight, 300, 200);
    scene.Move(kMouseRight, 300, 200);
    scene.Move(kMouseRight, 320, 200);
    scene.ExpectShift(20, 0);
    scene.Press(kMouseLeft, 320, 200, kMouseRight);
    scene.Move(kMouseLeft | kMouseRight, 330, 210);
    scene.ExpectRotation(3, 10, 10);
    scene.Release(kMouseLeft, 330, 210, kMouseRight);
    scene.Check();
    EXPECT_EQ(scene.Dialog()->m_nDragState, CAlignInteractiveDlg::kNoDrag) << "any release ends the drag";
    scene.Move(kMouseRight, 350, 210);  // begins another one
    scene.Check();
    scene.Move(kMouseRight, 360, 215);
    scene.ExpectShift(10, 5);
    scene.Check();
}

// ---- the delayed scheme: the right button rotates, with Shift or the left one it moves

class DelayedScheme : public testing::Test {
protected:
    DelayedScheme() {
        scene.pane.SetIGDRotation(1);
        scene.pane.m_mouseDispatch.delay = 1u << 30;  // until EndDelay(), however slow the machine is
        scene.Begin();
    }
    void EndDelay() { scene.pane.OnPrivateMessage(kTimerMessage); }
    /// Presses and waits for longer than the delay.
    void PressLong(std::uint32_t button, int x, int y, std::uint32_t keys = 0) {
        scene.Press(button, x, y, keys);
        EndDelay();
        ASSERT_FALSE(scene.pane.m_mouseDispatch.pending);
    }
    HandScene scene;
};

TEST_F(DelayedScheme, RotatesByTheRightButtonAndStaysAtItsRelease) {
    PressLong(kMouseRight, 320, 240);
    scene.Move(kMouseRight, 320, 240);
    scene.Move(kMouseRight, 360, 250);
    scene.ExpectRotation(3, 40, 10);
    scene.Release(kMouseRight, 360, 250);
    scene.Check();
    EXPECT_EQ(scene.Dialog()->m_nDragState, CAlignInteractiveDlg::kNoDrag);
    EXPECT_EQ(scene.pane.m_nInteractionMode, ModeAlignInteractive);
}

TEST_F(DelayedScheme, MovesWithShiftAndStaysAtItsRelease) {
    PressLong(kMouseRight, 320, 240, kMouseShift);
    for (const auto& [x, y] : {std::pair{320, 240}, {340, 200}}) scene.Move(kMouseRight | kMouseShift, x, y);
    scene.ExpectShift(20, -40);
    scene.Release(kMouseRight, 340, 200, kMouseShift);
    scene.Check();
}

TEST_F(DelayedScheme, MovesByTheChordAndRotatesAgainAfterIt) {
    PressLong(kMouseRight, 320, 240);
    scene.Move(kMouseRight, 320, 240);
    scene.Move(kMouseRight, 330, 240);
    scene.ExpectRotation(3, 10, 0);
    scene.Press(kMouseLeft, 330, 240, kMouseRight);
    scene.Move(kMouseLeft | kMouseRight, 350, 260);  // while the press still waits
    scene.ExpectShift(20, 20);
    EndDelay();  // the chord ends the rotation, where the press was
    scene.Check();
    scene.Move(kMouseLeft | kMouseRight, 360, 260);  // begins the move
    scene.Move(kMouseLeft | kMouseRight, 380, 290);
    scene.ExpectShift(20, 30);
    scene.Check();
    scene.Release(kMouseLeft, 380, 290, kMouseRight);
    scene.Check();
    scene.Move(kMouseRight, 380, 290);
    scene.Move(kMouseRight, 390, 280);
    scene.ExpectRotation(3, 10, -10);
    scene.Release(kMouseRight, 390, 280);
    scene.Check();
}

TEST_F(DelayedScheme, MovesNothingByTheLeftButtonOrByAShortClick) {
    scene.Press(kMouseLeft, 100, 100);
    EndDelay();
    for (const int x : {100, 150, 300}) scene.Move(kMouseLeft, x, 100);
    scene.Release(kMouseLeft, 300, 100);
    scene.Press(kMouseRight, 320, 240);
    scene.Release(kMouseRight, 323, 241);
    EndDelay();
    scene.Check(1e-5);
    EXPECT_EQ(scene.pane.m_nInteractionMode, ModeAlignInteractive);
}

TEST_F(DelayedScheme, TakesTheViewWithCtrlAndTheObjectsGoOnWithoutAJump) {
    PressLong(kMouseRight, 320, 240);
    scene.Move(kMouseRight, 320, 240);
    scene.Move(kMouseRight, 330, 245);
    scene.ExpectRotation(3, 10, 5);
    for (const auto& [x, y] : {std::pair{380, 245}, {400, 200}}) scene.Move(kMouseRight | kMouseCtrl, x, y);
    scene.Check();
    scene.Move(kMouseRight, 410, 220);
    scene.ExpectRotation(3, 10, 20);  // about the axes of the new view
    scene.Check();
    scene.Move(kMouseRight | kMouseCtrl | kMouseShift, 300, 300);  // pans
    scene.Move(kMouseRight | kMouseShift, 290, 320);
    scene.ExpectShift(-10, 20);
    scene.Release(kMouseRight, 290, 320);
    scene.Check();
}

TEST_F(DelayedScheme, TurnsARotationIntoAMoveWithShiftWithoutAJump) {
    PressLong(kMouseRight, 320, 240);
    scene.Move(kMouseRight, 320, 240);
    scene.Move(kMouseRight, 350, 250);
    scene.ExpectRotation(3, 30, 10);
    scene.Move(kMouseRight | kMouseShift, 360, 270);
    scene.ExpectShift(10, 20);
    scene.Move(kMouseRight, 370, 270);
    scene.ExpectRotation(3, 10, 0);
    scene.Check();
}

TEST(SchemeTwo, HasTheButtonsOfTheDirectSchemeAndReleasesWithoutAPixel) {
    HandScene scene;
    scene.pane.SetIGDRotation(2);
    scene.pane.m_mouseDispatch.delay = 1u << 30;
    scene.Begin();
    scene.Press(kMouseRight, 300, 200);
    scene.pane.OnPrivateMessage(kTimerMessage);
    for (const auto& [x, y] : {std::pair{300, 200}, {320, 210}}) scene.Move(kMouseRight, x, y);
    scene.Release(kMouseRight, 320, 210);
    scene.ExpectShift(20, 10);
    scene.Check();
}

// ---- the view changes during a drag

TEST(ViewDuringADrag, ZoomedByTheWheelMovesNothingByItself) {
    HandScene scene;
    scene.Begin();
    scene.Press(kMouseRight, 100, 100);
    scene.Move(kMouseRight, 100, 100);
    scene.Move(kMouseRight, 120, 110);
    scene.ExpectShift(20, 10);
    const double before = HandCamera(scene.pane).unitsPerPixel;
    scene.pane.SendMouse({.kind = HandScene::Kind::Wheel, .flags = kMouseRight, .delta = 240});
    EXPECT_GT(std::abs(HandCamera(scene.pane).unitsPerPixel / before - 1), 0.1) << "it zooms";
    scene.Check();
    scene.Move(kMouseRight, 130, 130);
    scene.ExpectShift(10, 20);
    scene.Release(kMouseRight, 133, 130);
    scene.ExpectShift(3, 0);
    scene.Check();
}

TEST(ViewDuringADrag, ChangedByTheHostMovesNothingByItself) {
    for (const std::uint32_t button : {kMouseLeft, kMouseRight}) {
        SCOPED_TRACE(button);
        HandScene scene;
        scene.Begin();
        scene.Press(button, 300, 260);
        scene.Move(button, 300, 260);
        scene.pane.SetViewMode(KV_ScenePane::ViewFromPlusXZUp);
        scene.Move(button, 320, 270);
        if (button == kMouseLeft)
            scene.ExpectRotation(3, 20, 10);
        else
            scene.ExpectShift(20, 10);
        scene.Check();
    }
}

TEST(ViewDuringADrag, DraggedByCtrlAndASecondButtonMovesNoObject) {
    for (const std::uint32_t first : {kMouseLeft, kMouseRight}) {
        const std::uint32_t second = first == kMouseLeft ? kMouseRight : kMouseLeft;
        SCOPED_TRACE(first);
        HandScene scene;
        scene.Begin();
        scene.Press(first, 300, 200);
        scene.Move(first, 300, 200);
        const Float3 right = scene.pane.m_fAxisX, center = scene.pane.m_fViewCenter;
        scene.Press(second, 300, 200, first | kMouseCtrl);
        for (const auto& [x, y] : {std::pair{360, 240}, {400, 330}}) scene.Move(first | second | kMouseCtrl, x, y);
        scene.Release(second, 400, 330, first | kMouseCtrl);
        EXPECT_TRUE(right != scene.pane.m_fAxisX || center != scene.pane.m_fViewCenter) << "the view moves";
        scene.Check(1e-5);
        EXPECT_EQ(scene.pane.m_nInteractionMode, ModeAlignInteractive);
    }
}

TEST(CtrlDrag, MovesTheViewInPlaceOfTheObjects) {
    for (const std::uint32_t button : {kMouseLeft, kMouseRight}) {
        SCOPED_TRACE(button);
        HandScene scene;
        scene.Begin();
        const ViewFrame before = scene.pane.LiveFrame();
        scene.Press(button, 300, 200, kMouseCtrl);
        scene.Move(button | kMouseCtrl, 340, 220);
        scene.Release(button, 360, 240, kMouseCtrl);
        EXPECT_TRUE(before.wx != scene.pane.m_fAxisX || before.center != scene.pane.m_fViewCenter);
        scene.Check(1e-5);
        scene.Drag(kMouseRight, {{100, 100}, {110, 120}});
        scene.ExpectShift(10, 20);
        scene.Check();
    }
}

TEST(DisallowedMouse, MovesNothingBeforeItIsAllowedAgain) {
    HandScene scene;
    scene.Begin();
    scene.Press(kMouseRight, 300, 200);
    scene.Move(kMouseRight, 300, 200);
    scene.pane.AllowMouseInteraction(0);
    scene.Move(kMouseRight, 400, 300);
    scene.Release(kMouseRight, 420, 300);
    scene.Check(1e-5);
    scene.pane.AllowMouseInteraction(1);
    scene.Drag(kMouseRight, {{300, 200}, {310, 200}});
    scene.ExpectShift(10, 0);
    scene.Check();
}

}  // namespace
