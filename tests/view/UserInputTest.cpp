// Picking clicks, keys, an alignment's drags and the host's lock on the mouse, by calls and by the real pointer and
// keys.
#include <string>
#include <vector>

#include "view/InputHelp.h"
#include "view/UserInput.h"

namespace {

constexpr auto L = Button::Left, R = Button::Right;
using MakeHands = std::unique_ptr<UserInput> (*)();

std::string NameOfHands(const testing::TestParamInfo<MakeHands>& param) {
    return param.index == 0 ? "ByCalls" : "RealPointer";
}
const auto kBothHands = testing::Values(&HandsByCalls, &HandsOnTheRealPointer);

// ---- clicks that pick

/// Half a unit a pixel, the world's origin in the window's centre, a plate at z = 5 from (-40, -30) to (20, 30).
void ShowPlate(TestControl& viewer) {
    AddMesh(*viewer,
            {{.x = -40, .y = -30, .z = 5},
             {.x = 20, .y = -30, .z = 5},
             {.x = 20, .y = 30, .z = 5},
             {.x = -40, .y = 30, .z = 5}},
            {{{0, 1, 2}}, {{0, 2, 3}}});
    viewer->SetViewMode(4);
    viewer->m_fSceneSize = 240;  // over 480 pixels
    viewer->SetViewMode(9);
    viewer->SetPickMode(2);
    viewer.events.events.clear();
}

void ExpectPicked(const TestControl& viewer, std::uint32_t flags, int x, int y, double worldX, double worldY) {
    ASSERT_EQ(viewer.events.events.size(), 1u);
    EXPECT_EQ(viewer.events.events[0].name, "SelectObjCoords");
    const std::vector<double>& got = viewer.events.events[0].arguments;
    const double expected[] = {0, worldX, worldY, 5, static_cast<double>(flags), 1.0 * x, 1.0 * y};
    ASSERT_EQ(got.size(), std::size(expected));
    for (std::size_t i = 0; i < got.size(); ++i) EXPECT_NEAR(got[i], expected[i], 1e-4) << i;
}

class PickingClick : public testing::TestWithParam<MakeHands> {
protected:
    PickingClick() { ShowPlate(viewer); }
    const std::unique_ptr<UserInput> hands = GetParam()();
    TestControl& viewer = hands->Viewer();
};

TEST_P(PickingClick, IsASingleOneInTheDelayedScheme) {
    viewer->SetIGDRotation(1);
    hands->MoveTo(350, 200);
    hands->Press(L);
    hands->Release(L);
    EXPECT_TRUE(viewer.events.events.empty()) << "not before the delay is over";
    hands->WaitForDelivery();
    ExpectPicked(viewer, KV_ScenePane::kMouseLeft, 350, 200, 15, 20);
    EXPECT_EQ(viewer->m_bMoving, 0) << "a pick begins no drag";
}

TEST_P(PickingClick, PicksNothingWhenTheMouseWentFivePixels) {
    viewer->SetIGDRotation(1);
    hands->MoveTo(350, 200);
    hands->Press(L);
    hands->MoveTo(353, 196);  // 3-4-5
    hands->WaitForDelivery();
    hands->Release(L);
    EXPECT_TRUE(viewer.events.events.empty());
    EXPECT_EQ(viewer->m_bMoving, 1) << "it was a press like any other";
}

TEST_P(PickingClick, PicksWhereItWasPressedWhenTheMouseWentLess) {
    viewer->SetIGDRotation(1);
    hands->MoveTo(350, 200);
    hands->Press(L);
    hands->MoveTo(353, 197);
    hands->WaitForDelivery();
    hands->Release(L);
    ExpectPicked(viewer, KV_ScenePane::kMouseLeft, 350, 200, 15, 20);
}

TEST_P(PickingClick, IsADoubleOneInTheNormalScheme) {
    hands->MoveTo(330, 250);
    hands->DoubleClick();
    ExpectPicked(viewer, KV_ScenePane::kMouseLeft, 330, 250, 5, -5);
    EXPECT_EQ(viewer->m_nInteractionMode, ModeIdle);
}

TEST_P(PickingClick, TellsTheKeysThatAreHeld) {
    hands->MoveTo(330, 250);
    hands->HoldShift(true);
    hands->HoldCtrl(true);
    viewer.events.events.clear();  // of the keys
    hands->DoubleClick();
    ExpectPicked(viewer, KV_ScenePane::kMouseLeft | KV_ScenePane::kMouseShift | KV_ScenePane::kMouseCtrl, 330, 250, 5,
                 -5);
}

TEST_P(PickingClick, DoesNothingWithFlippedButtons) {
    viewer->FlipMouseButtons(1);
    hands->MoveTo(330, 250);
    hands->DoubleClick();
    EXPECT_TRUE(viewer.events.events.empty());
}
INSTANTIATE_TEST_SUITE_P(Hands, PickingClick, kBothHands, NameOfHands);

// ---- keys, alignment, the host's lock

class HandsOnTheViewer : public testing::TestWithParam<MakeHands> {
protected:
    HandsOnTheViewer() {
        hands->MoveTo(300, 200);
        viewer.events.events.clear();
    }
    ~HandsOnTheViewer() override { viewer->m_pInteractionDlg = nullptr; }
    const std::unique_ptr<UserInput> hands = GetParam()();
    TestControl& viewer = hands->Viewer();
    RecordingDialog dialog;
};

TEST_P(HandsOnTheViewer, TypeAndTheHostHearsEveryKeyOnce) {
    const std::int32_t keys[] = {KV_ScenePane::kKeyEscape, KV_ScenePane::kKeySpace,  KV_ScenePane::kKeyUp,
                                 KV_ScenePane::kKeyDown,   KV_ScenePane::kKeyDelete, 'A'};
    for (const std::int32_t key : keys) hands->Type(key);
    ASSERT_EQ(viewer.events.events.size(), std::size(keys));
    for (std::size_t i = 0; i < std::size(keys); ++i) {
        EXPECT_EQ(viewer.events.events[i].name, "CustomKeyDown");
        EXPECT_EQ(viewer.events.events[i].arguments[0], keys[i]);
        EXPECT_EQ(viewer.events.events[i].arguments[1], 1) << "no repeat";
    }
}

TEST_P(HandsOnTheViewer, ToggleTheAnimationWithTheSpaceBar) {
    viewer->SetAnimationSpeed(0);  // it never ends by itself
    viewer->ToggleAnimationOnSpacebar(1);
    hands->Type(KV_ScenePane::kKeySpace);
    EXPECT_NE(viewer->IsAnimationRunning(), 0);
    hands->Type(KV_ScenePane::kKeySpace);
    EXPECT_EQ(viewer->IsAnimationRunning(), 0);
    hands->Type(KV_ScenePane::kKeySpace);
    EXPECT_NE(viewer->IsAnimationRunning(), 0);
    hands->Press(Button::Middle);
    EXPECT_EQ(viewer->IsAnimationRunning(), 0) << "any press stops it";
}

TEST_P(HandsOnTheViewer, MoveThePlaneWithTheArrowKeys) {
    viewer->m_bClipPlaneVisible = 1;
    viewer->m_clipPlane.SetCenter({9000, 9000, 5});
    hands->Type(KV_ScenePane::kKeyUp);
    hands->Type(KV_ScenePane::kKeyUp);
    EXPECT_NEAR(viewer->m_clipPlane.GetCenter()[2], 7, 1e-9);
    hands->Type(KV_ScenePane::kKeyDown);
    EXPECT_NEAR(viewer->m_clipPlane.GetCenter()[2], 6, 1e-9);
}

TEST_P(HandsOnTheViewer, PutADraggedHandleBackWithEscape) {
    viewer->m_bClipPlaneVisible = 1;
    Plane& plane = viewer->m_clipPlane;
    plane.SetCenter({0, 0, 0});
    viewer->SetViewParams(0, 1, 0, 0, 0, 1, 0, 0, 0, 1, 0);  // the plane's normal is up in the window
    const auto before = plane.m_dMatrix;
    plane.OnPicked(0);  // the arrow
    hands->Press(L);
    ASSERT_EQ(viewer->m_nInteractionMode, ModePlaneHandle);
    hands->MoveTo(300, 160);
    EXPECT_NE(plane.m_dMatrix, before);
    hands->Type(KV_ScenePane::kKeyEscape);
    EXPECT_EQ(plane.m_dMatrix, before);
    EXPECT_EQ(viewer->m_nInteractionMode, ModeIdle);
    hands->MoveTo(300, 120);
    EXPECT_EQ(plane.m_dMatrix, before) << "the button is still down, the drag is over";
    hands->Release(L);
    EXPECT_EQ(plane.m_dMatrix, before);
}

TEST_P(HandsOnTheViewer, LeaveThePointerToOthersWhenTheHostHasEndedTheDrag) {
    hands->Press(R);
    EXPECT_TRUE(viewer.window->HasCapture());
    viewer->m_nInteractionMode = ModeIdle;
    hands->Release(R);
    EXPECT_TRUE(viewer.window->HasCapture()) << "a release in another mode leaves it";
    EXPECT_TRUE(hands->OthersCanTakeThePointer());
}

TEST_P(HandsOnTheViewer, DragInAnAlignmentWithBothButtons) {
    viewer->m_pInteractionDlg = &dialog;
    viewer->m_nInteractionMode = ModeAlignInteractive;
    hands->Press(L);
    hands->MoveTo(310, 205);
    hands->Press(R);
    hands->MoveTo(320, 210);
    hands->Release(L);
    EXPECT_EQ(dialog.calls, (Calls{"OnRotateDrag 310 205", "OnRotateDrag 320 210", "OnMoveDrag 320 210",
                                   "OnRotateEnd 320 210", "OnMoveEnd 320 210"}));
    EXPECT_EQ(viewer->m_nInteractionMode, ModeAlignInteractive);
    EXPECT_FALSE(viewer.window->HasCapture());
}

TEST_P(HandsOnTheViewer, EndTheRotationOfADelayedAlignmentByTheChord) {
    viewer->m_pInteractionDlg = &dialog;
    viewer->m_nInteractionMode = ModeAlignInteractive;
    viewer->SetIGDRotation(1);
    hands->Press(R);
    hands->WaitForDelivery();
    hands->MoveTo(310, 205);
    hands->Press(L);
    hands->WaitForDelivery();
    hands->MoveTo(320, 210);
    EXPECT_EQ(dialog.calls, (Calls{"OnRotateDrag 310 205", "OnRotateEnd 310 205", "OnMoveDrag 320 210"}));
    dialog.calls.clear();
    hands->Release(L);
    EXPECT_EQ(dialog.calls, (Calls{"OnRotateEnd 0 0", "OnMoveEnd 0 0"})) << "a late release has lost its point";
}

TEST_P(HandsOnTheViewer, PressAndReleaseButMoveNothingWithoutTheHostsLeave) {
    viewer->AllowMouseInteraction(0);
    const Float3 axis = viewer->m_fAxisX;
    hands->Press(L);
    EXPECT_EQ(viewer->m_nInteractionMode, ModeRotate);
    EXPECT_TRUE(viewer.window->HasCapture());
    hands->MoveTo(400, 300);
    hands->Wheel(1);
    EXPECT_EQ(viewer->m_fAxisX, axis);
    EXPECT_EQ(viewer->m_fZoom, 1.0f);
    hands->Release(L);
    EXPECT_EQ(viewer->m_nInteractionMode, ModeIdle);
    EXPECT_FALSE(viewer.window->HasCapture());
}
INSTANTIATE_TEST_SUITE_P(Hands, HandsOnTheViewer, kBothHands, NameOfHands);

}  // namespace
