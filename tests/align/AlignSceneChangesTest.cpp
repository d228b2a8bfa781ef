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

}  // namespace
