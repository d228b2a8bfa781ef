// Picking clicks, keys, drags of an alignment, and the mouse disallowed by the host: by calls, and by the real pointer
// and keyboard.
#include <string>
#include <vector>

#include "view/InputHelp.h"
#include "view/UserInput.h"

namespace {

constexpr auto L = Button::Left, R = Button::Right;

struct InputWay {
    const char* name;
    std::unique_ptr<UserInput> (*makeUser)();
};
void PrintTo(const InputWay& way, std::ostream* out) { *out << way.name; }

const auto kBothWays = testing::Values(InputWay{"ByCalls", &MakeCallInput}, InputWay{"RealPointer", &MakePointerInput});
std::string NameOfWay(const testing::TestParamInfo<InputWay>& row) { return row.param.name; }

// ---- clicks that pick

/// Half a unit per pixel, the world's origin in the window's centre, a plate at z = 5 from (-40, -30) to (20, 30).
void ShowPlate(TestControl& viewer) {
    AddMesh(*viewer,
            {{.x = -40, .y = -30, .z = 5},
             {.x = 20, .y = -30, .z = 5},
             {.x = 20, .y = 30, .z = 5},
             {.x = -40, .y = 30, .z = 5}},
            {{{0, 1, 2}}, {{0, 2, 3}}});
    viewer->SetViewMode(KV_ScenePane::ViewFromPlusZYUp);
    viewer->m_fSceneSize = 240;  // over 480 pixels
    viewer->SetViewMode(9);
    viewer->SetPickMode(KV_ScenePane::PickModeObjects);
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

class PickingClick : public testing::TestWithParam<InputWay> {
protected:
    PickingClick() { ShowPlate(viewer); }
    const std::unique_ptr<UserInput> user = GetParam().makeUser();
    TestControl& viewer = user->Viewer();
};

TEST_P(PickingClick, IsASingleClickInTheDelayedScheme) {
    viewer->SetIGDRotation(1);
    user->MoveTo(350, 200);
    user->Press(L);
    user->Release(L);
    EXPECT_TRUE(viewer.events.events.empty()) << "not before the delay is over";
    EndDispatchDelay(viewer);
    ExpectPicked(viewer, KV_ScenePane::kMouseLeft, 350, 200, 15, 20);
    EXPECT_EQ(viewer->m_bMoving, 0) << "a pick begins no drag";
}

TEST_P(PickingClick, PicksNothingAfterATravelOfFivePixels) {
    viewer->SetIGDRotation(1);
    user->MoveTo(350, 200);
    user->Press(L);
    user->MoveTo(353, 196);  // 3-4-5
    EndDispatchDelay(viewer);
    user->Release(L);
    EXPECT_TRUE(viewer.events.events.empty());
    EXPECT_EQ(viewer->m_bMoving, 1) << "it was a press like any other";
}

TEST_P(PickingClick, PicksAtThePointOfThePressAfterAShorterTravel) {
    viewer->SetIGDRotation(1);
    user->MoveTo(350, 200);
    user->Press(L);
    user->MoveTo(353, 197);
    EndDispatchDelay(viewer);
    user->Release(L);
    ExpectPicked(viewer, KV_ScenePane::kMouseLeft, 350, 200, 15, 20);
}

TEST_P(PickingClick, IsADoubleClickInTheNormalScheme) {
    user->MoveTo(330, 250);
    user->DoubleClick();
    ExpectPicked(viewer, KV_ScenePane::kMouseLeft, 330, 250, 5, -5);
    EXPECT_EQ(viewer->m_nInteractionMode, ModeIdle);
}

TEST_P(PickingClick, ReportsShiftAndCtrlWhileTheyAreHeld) {
    user->MoveTo(330, 250);
    user->HoldShift(true);
    user->HoldCtrl(true);
    viewer.events.events.clear();  // of the keys
    user->DoubleClick();
    ExpectPicked(viewer, KV_ScenePane::kMouseLeft | KV_ScenePane::kMouseShift | KV_ScenePane::kMouseCtrl, 330, 250, 5,
                 -5);
}

TEST_P(PickingClick, DoesNothingWithFlippedButtons) {
    viewer->FlipMouseButtons(1);
    user->MoveTo(330, 250);
    user->DoubleClick();
    EXPECT_TRUE(viewer.events.events.empty());
}
INSTANTIATE_TEST_SUITE_P(Ways, PickingClick, kBothWays, NameOfWay);

// ---- keys, alignment, the mouse disallowed by the host

class UserAtTheViewer : public testing::TestWithParam<InputWay> {
protected:
    UserAtTheViewer() {
        user->MoveTo(300, 200);
        viewer.events.events.clear();
    }
    ~UserAtTheViewer() override { viewer->m_pInteractionDlg = nullptr; }
    const std::unique_ptr<UserInput> user = GetParam().makeUser();
    TestControl& viewer = user->Viewer();
    RecordingDialog dialog;
};

TEST_P(UserAtTheViewer, TypesAndTheHostReceivesEveryKeyOnce) {
    const std::int32_t keys[] = {KV_ScenePane::kKeyEscape, KV_ScenePane::kKeySpace,  KV_ScenePane::kKeyUp,
                                 KV_ScenePane::kKeyDown,   KV_ScenePane::kKeyDelete, 'A'};
    for (const std::int32_t key : keys) user->Type(key);
    ASSERT_EQ(viewer.events.events.size(), std::size(keys));
    for (std::size_t i = 0; i < std::size(keys); ++i) {
        EXPECT_EQ(viewer.events.events[i].name, "CustomKeyDown");
        EXPECT_EQ(viewer.events.events[i].arguments[0], keys[i]);
        EXPECT_EQ(viewer.events.events[i].arguments[1], 1) << "no repeat";
    }
}

TEST_P(UserAtTheViewer, TogglesTheAnimationWithTheSpaceBar) {
    viewer->SetAnimationSpeed(0);  // it never ends by itself
    viewer->ToggleAnimationOnSpacebar(1);
    user->Type(KV_ScenePane::kKeySpace);
    EXPECT_NE(viewer->IsAnimationRunning(), 0);
    user->Type(KV_ScenePane::kKeySpace);
    EXPECT_EQ(viewer->IsAnimationRunning(), 0);
    user->Type(KV_ScenePane::kKeySpace);
    EXPECT_NE(viewer->IsAnimationRunning(), 0);
    user->Press(Button::Middle);
    EXPECT_EQ(viewer->IsAnimationRunning(), 0) << "any press stops it";
}

TEST_P(UserAtTheViewer, MovesThePlaneWithTheArrowKeys) {
    viewer->m_bClipPlaneVisible = 1;
    viewer->m_clipPlane.SetCenter({9000, 9000, 5});
    user->Type(KV_ScenePane::kKeyUp);
    user->Type(KV_ScenePane::kKeyUp);
    EXPECT_NEAR(viewer->m_clipPlane.GetCenter()[2], 7, 1e-9);
    user->Type(KV_ScenePane::kKeyDown);
    EXPECT_NEAR(viewer->m_clipPlane.GetCenter()[2], 6, 1e-9);
}

TEST_P(UserAtTheViewer, UndoesAHandleDragWithEscape) {
    viewer->m_bClipPlaneVisible = 1;
    Plane& plane = viewer->m_clipPlane;
    plane.SetCenter({0, 0, 0});
    viewer->SetViewParams(0, 1, 0, 0, 0, 1, 0, 0, 0, 1, 0);  // the plane's normal is up in the window
    const auto before = plane.m_dMatrix;
    plane.OnPicked(0);  // the arrow
    user->Press(L);
    ASSERT_EQ(viewer->m_nInteractionMode, ModePlaneHandle);
    user->MoveTo(300, 160);
    EXPECT_NE(plane.m_dMatrix, before);
    user->Type(KV_ScenePane::kKeyEscape);
    EXPECT_EQ(plane.m_dMatrix, before);
    EXPECT_EQ(viewer->m_nInteractionMode, ModeIdle);
    user->MoveTo(300, 120);
    EXPECT_EQ(plane.m_dMatrix, before) << "the button is still down, the drag is over";
    user->Release(L);
    EXPECT_EQ(plane.m_dMatrix, before);
}

TEST_P(UserAtTheViewer, DoesNotBlockThePointerForOthersWhenTheHostEndedTheDrag) {
    user->Press(R);
    EXPECT_TRUE(viewer.window->HasCapture());
    viewer->m_nInteractionMode = ModeIdle;
    user->Release(R);
    EXPECT_TRUE(viewer.window->HasCapture()) << "a release in another mode keeps it";
    EXPECT_TRUE(user->OthersCanGrabThePointer());
}

TEST_P(UserAtTheViewer, DragsInAnAlignmentWithBothButtons) {
    viewer->m_pInteractionDlg = &dialog;
    viewer->m_nInteractionMode = ModeAlignInteractive;
    user->Press(L);
    user->MoveTo(310, 205);
    user->Press(R);
    user->MoveTo(320, 210);
    user->Release(L);
    EXPECT_EQ(dialog.calls, (Calls{"OnRotateDrag 310 205", "OnRotateDrag 320 210", "OnMoveDrag 320 210",
                                   "OnRotateEnd 320 210", "OnMoveEnd 320 210"}));
    EXPECT_EQ(viewer->m_nInteractionMode, ModeAlignInteractive);
    EXPECT_FALSE(viewer.window->HasCapture());
}

TEST_P(UserAtTheViewer, EndsTheRotationOfADelayedAlignmentByTheChord) {
    viewer->m_pInteractionDlg = &dialog;
    viewer->m_nInteractionMode = ModeAlignInteractive;
    viewer->SetIGDRotation(1);
    user->Press(R);
    EndDispatchDelay(viewer);
    user->MoveTo(310, 205);
    user->Press(L);
    EndDispatchDelay(viewer);
    user->MoveTo(320, 210);
    EXPECT_EQ(dialog.calls, (Calls{"OnRotateDrag 310 205", "OnRotateEnd 310 205", "OnMoveDrag 320 210"}));
    dialog.calls.clear();
    user->Release(L);
    EXPECT_EQ(dialog.calls, (Calls{"OnRotateEnd 0 0", "OnMoveEnd 0 0"})) << "a late release has lost its point";
}

TEST_P(UserAtTheViewer, PressesAndReleasesButMovesNothingWhileTheHostDoesNotAllowTheMouse) {
    viewer->AllowMouseInteraction(0);
    const Float3 axis = viewer->m_fAxisX;
    user->Press(L);
    EXPECT_EQ(viewer->m_nInteractionMode, ModeRotate);
    EXPECT_TRUE(viewer.window->HasCapture());
    user->MoveTo(400, 300);
    user->Wheel(1);
    EXPECT_EQ(viewer->m_fAxisX, axis);
    EXPECT_EQ(viewer->m_fZoom, 1.0f);
    user->Release(L);
    EXPECT_EQ(viewer->m_nInteractionMode, ModeIdle);
    EXPECT_FALSE(viewer.window->HasCapture());
}
INSTANTIATE_TEST_SUITE_P(Ways, UserAtTheViewer, kBothWays, NameOfWay);

}  // namespace
