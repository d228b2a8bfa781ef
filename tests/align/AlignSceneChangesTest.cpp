// The list of objects changes while an alignment by hand runs: imports, deletions, cuts, undo.
#include "align/HandScene.h"

namespace {

using KV_ScenePane::kMouseLeft;
using KV_ScenePane::kMouseRight;

constexpr std::uint32_t kRed = 0x0000FF, kGreen = 0x00FF00, kDimRed = 0x000055;

class ChangedScene : public testing::Test {
protected:
    ChangedScene() { scene.Begin(); }
    std::uint32_t ColorOf(std::int16_t idx) { return static_cast<std::uint32_t>(scene.pane.GetObjectColor(idx)); }
    void Finish() {
        scene.pane.FinishInteraction();
        EXPECT_EQ(scene.control.events.events.back().name, "AlignmentDone");
    }
    /// Cuts the left half of the window; the moving scan 1 and the fixed one 0 are at the same place.
    void CutAHalf() {
        const std::vector<KV_ScenePane::LassoPoint> left = {{0.0, 0.0}, {0.0, 0.99}, {cutX, 0.99}, {cutX, 0.0}};
        EXPECT_TRUE(scene.pane.CutWithLasso(KV_ScenePane::PolygonInside, left));
    }
    double cutX = 0.5;
    HandScene scene;
};

TEST_F(ChangedScene, KeepsTheColorOfAnImportedObject) {
    scene.pane.m_vpMeshes.insert(scene.pane.m_vpMeshes.begin(), MakeScan(kGreen));
    Finish();
    EXPECT_EQ(ColorOf(0), kGreen);
    for (std::int16_t idx = 0; idx < 4; ++idx)
        EXPECT_EQ(ColorOf(static_cast<std::int16_t>(idx + 1)), HandScene::kColors[static_cast<std::size_t>(idx)]);
}

TEST_F(ChangedScene, GivesNoColorOfADeletedObjectToAnother) {
    scene.pane.DeleteObject(0);
    Finish();
    for (std::int16_t idx = 0; idx < 3; ++idx)
        EXPECT_EQ(ColorOf(idx), HandScene::kColors[static_cast<std::size_t>(idx + 1)]);
}

TEST_F(ChangedScene, MovesWhatIsLeftWhenAVariableObjectIsDeletedInADrag) {
    scene.Press(kMouseRight, 300, 200);
    for (const int x : {300, 310}) scene.Move(kMouseRight, x, 200);
    scene.ExpectShift(10, 0);
    scene.pane.DeleteObject(1);
    scene.Move(kMouseRight, 330, 210);
    scene.Release(kMouseRight, 330, 210);
    scene.ExpectShift(20, 10);
    EXPECT_LT(Difference(PoseOfScan(scene.pane, 1), scene.expected[2]), 1e-3);
    Finish();
}

TEST_F(ChangedScene, EndsAsUsualAfterClearData) {
    scene.Press(kMouseLeft, 320, 240);
    scene.Move(kMouseLeft, 320, 240);
    scene.pane.ClearData();
    scene.pane.m_vpMeshes.push_back(MakeScan(kGreen));  // perhaps at the address of one that is gone
    scene.Move(kMouseLeft, 350, 260);
    scene.Release(kMouseLeft, 360, 260);
    scene.Drag(kMouseRight, {{300, 200}, {320, 210}});
    EXPECT_LT(Difference(PoseOfScan(scene.pane, 0), Pose{}), 1e-9) << "it is not variable";
    Finish();
    EXPECT_EQ(ColorOf(0), kGreen);
}

TEST_F(ChangedScene, GivesWhatACutLeavesOfADimmedObjectItsColor) {
    const auto original = scene.pane.m_vpMeshes[0];
    CutAHalf();
    ASSERT_NE(scene.pane.m_vpMeshes[0], original) << "the cut hits it";
    EXPECT_EQ(ColorOf(0), kDimRed);
    Finish();
    EXPECT_EQ(ColorOf(0), kRed);
    EXPECT_EQ(original->GetColorRef(), kRed);
    scene.pane.PerformUndo();
    EXPECT_EQ(scene.pane.m_vpMeshes[0], original);
    EXPECT_EQ(ColorOf(0), kRed);
}

TEST_F(ChangedScene, GivesTheOriginalItsColorAfterUndo) {
    CutAHalf();
    scene.pane.PerformUndo();
    EXPECT_EQ(ColorOf(0), kDimRed);
    Finish();
    EXPECT_EQ(ColorOf(0), kRed);
}

TEST_F(ChangedScene, GivesWhatTwoCutsLeaveItsColor) {
    cutX = 0.4;
    CutAHalf();
    cutX = 0.52;
    CutAHalf();
    scene.pane.ClearUndoStack();
    Finish();
    EXPECT_EQ(ColorOf(0), kRed);
}

TEST_F(ChangedScene, LeavesTheObjectsOfUndoStepsWhereTheyAre) {
    const auto original = scene.pane.m_vpMeshes[1];
    CutAHalf();
    ASSERT_NE(scene.pane.m_vpMeshes[1], original);
    scene.Drag(kMouseRight, {{300, 200}, {320, 210}});
    scene.pane.PerformUndo();
    scene.Check(1e-5);
    scene.Drag(kMouseRight, {{300, 200}, {320, 210}});  // it is in the scene again
    scene.ExpectShift(20, 10);
    scene.Check();
}

TEST_F(ChangedScene, GoesOnAfterALasso) {
    for (const bool isCut : {true, false}) {
        scene.pane.StartSegmentation(KV_ScenePane::PolygonInside);
        for (const auto& [x, y] : {std::pair{2, 2}, {2, 9}, {9, 9}}) scene.Press(kMouseLeft, x, y);
        if (isCut)
            scene.Press(kMouseRight, 9, 2);
        else
            scene.pane.EndSegmentation();
        EXPECT_EQ(scene.pane.m_nInteractionMode, ModeAlignInteractive);
        scene.Release(kMouseLeft, 9, 2);
        scene.Release(kMouseRight, 9, 2);
        scene.Drag(kMouseRight, {{300, 200}, {320, 210}});
        scene.ExpectShift(20, 10);
        scene.Check();
    }
}

TEST_F(ChangedScene, CountsATransformThatTheHostSetsMeanwhile) {
    const Pose other = TurnAbout({0, 1, 1}, 1.0, {1, 1, 1});
    SetPoseOfScan(scene.pane, 1, other);
    scene.expected[1] = other;
    scene.Drag(kMouseLeft, {{320, 240}, {350, 230}});
    scene.ExpectRotation(3, 30, -10);
    scene.Check();
}

// ---- a release that the dialog does not receive

using LoseRelease = void (*)(HandScene&);
struct LostRow {
    const char* name;
    LoseRelease lose;  ///< the right button has moved the objects to (320, 210) and is held
};
void PrintTo(const LostRow& row, std::ostream* out) { *out << row.name; }

void RunLasso(HandScene& scene, bool isReleased) {
    scene.pane.StartSegmentation(KV_ScenePane::PolygonInside);
    if (isReleased) scene.Release(kMouseRight, 400, 300);
    scene.pane.EndSegmentation();
}

const LostRow kLostRows[] = {
    {"ReleasedInALasso", [](HandScene& s) { RunLasso(s, true); }},
    {"HeldUntilAfterALasso", [](HandScene& s) { RunLasso(s, false), s.Release(kMouseRight, 400, 300); }},
    {"ReleasedInACutByTheHost",
     [](HandScene& s) {
         s.pane.StartSegmentation(KV_ScenePane::FreehandInside);
         s.Release(kMouseRight, 400, 300);
         s.pane.EndSegmentation();
     }},
    {"SwallowedByTheFilterOfTheHost",
     [](HandScene& s) {
         s.pane.SetMouseFilter([](const KV_ScenePane::MouseInput&) { return true; });
         s.Release(kMouseRight, 400, 300);
         s.pane.SetMouseFilter({});
     }},
    {"NeverSent", [](HandScene&) {}},
    {"DroppedByTheEndOfTheDelay",
     [](HandScene& s) {
         s.Release(kMouseRight, 320, 210);
         s.pane.SetIGDRotation(1);
         s.Press(kMouseRight, 320, 210);  // pending; the moves pass it by
         for (const int x : {320, 321}) s.Move(kMouseRight, x, 210);
         s.Release(kMouseRight, 321, 210);
         s.pane.SetIGDRotation(0);
         s.expected[1] = PoseOfScan(s.pane, 1);  // turned by one pixel
         s.expected[2] = PoseOfScan(s.pane, 2);
     }},
};

class LostRelease : public testing::TestWithParam<LostRow> {};

/// The travel from the last pixel before to the first one of the next drag is not for the objects.
TEST_P(LostRelease, MovesNothingAtTheStartOfTheNextDrag) {
    for (const std::uint32_t button : {kMouseLeft, kMouseRight}) {
        SCOPED_TRACE(button);
        HandScene scene;
        scene.Begin();
        scene.Press(kMouseRight, 300, 200);
        scene.Move(kMouseRight, 300, 200);
        scene.Move(kMouseRight, 320, 210);
        scene.ExpectShift(20, 10);
        scene.Check();
        GetParam().lose(scene);
        EXPECT_EQ(scene.pane.m_nInteractionMode, ModeAlignInteractive);
        scene.Check(2e-3);
        scene.Press(button, 100, 100);
        EXPECT_TRUE(scene.pane.WantsEveryMove()) << "the first move of the drag is not merged with later ones";
        scene.Move(button, 100, 100);
        scene.Check(2e-3);
        scene.Move(button, 130, 90);
        EXPECT_GT(Difference(PoseOfScan(scene.pane, 1), scene.expected[1]), 0.1) << "the drag goes on";
        scene.Release(button, 130, 90);
        EXPECT_EQ(scene.Dialog()->m_nDragState, CAlignInteractiveDlg::kNoDrag);
    }
}
INSTANTIATE_TEST_SUITE_P(All, LostRelease, testing::ValuesIn(kLostRows),
                         [](const auto& row) { return std::string(row.param.name); });

TEST(DragInWhichALassoStarts, IsOverAlsoWhenTheButtonIsStillHeld) {
    HandScene scene;
    scene.Begin();
    scene.Press(kMouseRight, 600, 40);  // a rotation would roll there
    scene.Move(kMouseRight, 600, 40);
    scene.Move(kMouseRight, 620, 50);
    scene.ExpectShift(20, 10);
    scene.pane.StartSegmentation(KV_ScenePane::PolygonInside);
    EXPECT_FALSE(scene.control.window->HasCapture());
    EXPECT_EQ(scene.pane.m_bMoving, 0) << "the objects are drawn whole again";
    EXPECT_EQ(scene.pane.m_bRollRotation, 0);
    scene.Move(kMouseRight, 400, 300);
    scene.pane.EndSegmentation();
    scene.Move(kMouseRight, 300, 200);  // the first one of a drag
    scene.Check();
    scene.Move(kMouseRight, 330, 220);
    scene.ExpectShift(30, 20);
    scene.Check();
    scene.Release(kMouseRight, 330, 220);
    EXPECT_EQ(scene.pane.m_nInteractionMode, ModeAlignInteractive);
    scene.Check();
}

TEST(SecondButton, ThatIsPressedInADragLeavesItGoingOn) {
    HandScene scene;
    scene.Begin();
    scene.Press(kMouseRight, 300, 200);
    scene.Move(kMouseRight, 300, 200);
    scene.Move(kMouseRight, 310, 200);
    scene.Press(kMouseLeft, 330, 200, kMouseRight);
    scene.Release(kMouseLeft, 330, 200, kMouseRight);
    scene.Release(kMouseRight, 330, 200);
    scene.ExpectShift(10, 0);
    scene.ExpectShift(20, 0);
    scene.Check();
}

}  // namespace
