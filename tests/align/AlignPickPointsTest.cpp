// Alignment by picked points: phases, keys, what a click hits, the motion at the end, and the order of its last steps.
#include <stdexcept>

#include "align/PickScene.h"
#include "geometry/ObjectPick.h"

using KV_ScenePane::AlignmentPhase;
using KV_ScenePane::kKeyDelete;
using KV_ScenePane::kKeyEscape;
using KV_ScenePane::kKeySpace;

namespace {

constexpr double kTolerance = 1e-5;

void ExpectPoint(const Vertex& pick, double x, double y, double z) {
    EXPECT_NEAR(pick.x, x, kTolerance);
    EXPECT_NEAR(pick.y, y, kTolerance);
    EXPECT_NEAR(pick.z, z, kTolerance);
}

class PickPoints : public testing::Test {
protected:
    /// Numbers of the picks on both sides.
    void ExpectPicks(std::size_t moving, std::size_t fixed) {
        ASSERT_NE(v->m_pInteractionDlg, nullptr);
        EXPECT_EQ(v.Dialog().m_vSourcePoints.size(), moving);
        EXPECT_EQ(v.Dialog().m_vTargetPoints.size(), fixed);
    }
    /// The alignment is over, by its last point or before.
    void ExpectEnded() {
        EXPECT_EQ(v.host.done, 1);
        EXPECT_EQ(v->m_pInteractionDlg, nullptr);
        EXPECT_TRUE(v->m_vInteractionDlgs.empty());
        EXPECT_EQ(v->m_nInteractionMode, ModeIdle);
        EXPECT_EQ(v->m_bLassoCursor, 0);
        EXPECT_FALSE(v.window->HasCapture());
        EXPECT_EQ(v.Colors(), colors);
        EXPECT_EQ(v->GetAlignmentPicks().phase, AlignmentPhase::Idle);
    }
    void ExpectNothingMoved() {
        for (const std::int16_t object : {kMovingPlate, kFixedPlate, kBackPlate})
            EXPECT_EQ(v.Trafo(object), kIdentity) << object;
        ExpectPlateMovedBy(*v->m_vpMeshes.at(0), kMovingSpec, kIdentity);
    }

    PickControl v;
    const std::vector<std::uint32_t> colors = v.Colors();
};

// ---- the start

TEST_F(PickPoints, StartByDimmingAllObjectsThatDoNotMove) {
    v->AlignPickPoints();
    EXPECT_EQ(v->m_nInteractionMode, ModeAlignPickPoints);
    EXPECT_EQ(v.Dialog().m_nPhase, 1);
    EXPECT_NE(v->m_bLassoCursor, 0);
    EXPECT_EQ(v.Color(0), colors[0]);
    EXPECT_EQ(v.Color(1), 0x15402Fu) << "0x40 / 3, 0xC0 / 3, 0x8F / 3";
    EXPECT_EQ(v.Color(2), 0x552A00u);
    EXPECT_EQ(v->m_vpMeshes[0]->m_iObjectTag, 0);
    EXPECT_EQ(v->m_vpMeshes[1]->m_iObjectTag, -1);
    EXPECT_EQ(v->m_vpMeshes[2]->m_iObjectTag, -1);
    EXPECT_EQ(v.window->refreshes, 1);
    EXPECT_EQ(v->GetAlignmentPicks().phase, AlignmentPhase::PickMoving);
    EXPECT_EQ(v.host.done, 0);
}

TEST_F(PickPoints, ForgetTheTagsOfAnEarlierAlignment) {
    v->m_vpMeshes[2]->m_iObjectTag = 0;
    v->AlignPickPoints();
    EXPECT_EQ(v->m_vpMeshes[2]->m_iObjectTag, -1);
    EXPECT_EQ(v.Color(2), DimmedColor(colors[2]));
}

// ---- what a click hits

TEST_F(PickPoints, KeepPointAndNormalOfTheTriangleThatIsHit) {
    v->m_vpMeshes[0] = MakeSlopedPlate({.x = -3, .z = 1, .slopeX = 0.75f, .slopeY = -1});
    v->ResetVariableObjects();
    v->AddVariableObject(kMovingPlate);
    v->AlignPickPoints();
    v.Click(224, 264);  // x = -2, y = -0.5
    ExpectPicks(1, 0);
    const Vertex& pick = v.Dialog().m_vSourcePoints[0];
    ExpectPoint(pick, -2, -0.5, 1 + 0.75 + 0.5);
    // (-slopeX, -slopeY, 1) over its length.
    const double length = std::sqrt(0.75 * 0.75 + 1 + 1);
    EXPECT_NEAR(pick.nx, -0.75 / length, kTolerance);
    EXPECT_NEAR(pick.ny, 1 / length, kTolerance);
    EXPECT_NEAR(pick.nz, 1 / length, kTolerance);
    EXPECT_EQ(pick.color, 0u);
    EXPECT_EQ(pick.gridIndex, 0);
    const auto picks = v->GetAlignmentPicks();
    ASSERT_EQ(picks.moving.size(), 1u);
    EXPECT_TRUE(picks.fixed.empty());
    EXPECT_EQ(picks.moving[0].point[2], pick.z);
    EXPECT_EQ(picks.moving[0].normal[0], pick.nx);
}

// The same triangle from behind: its normal points away from the viewer, and nothing flips it.
TEST_F(PickPoints, KeepTheNormalOfATriangleThatIsSeenFromBehind) {
    for (Triangle& triangle : v->m_vpMeshes[0]->m_vTriangles) std::swap(triangle.v[1], triangle.v[2]);
    v->AlignPickPoints();
    v.Click(176, 240);
    ExpectPicks(1, 0);
    EXPECT_NEAR(v.Dialog().m_vSourcePoints[0].nz, -1, kTolerance);
}

TEST_F(PickPoints, HitOnlyMovingObjectsInTheFirstPhase) {
    v->AlignPickPoints();
    v.Click(464, 240);  // the fixed plate
    v.Click(330, 30);   // the plate at the back
    v.Click(2, 2);      // nothing
    ExpectPicks(0, 0);
    v.Click(176, 240);
    ExpectPicks(1, 0);
}

TEST_F(PickPoints, PassThroughDimmedObjects) {
    v->m_vpMeshes[0] =
        MakeSlopedPlate({.x = 3, .z = -2});  // farther away than the fixed plate, nearer than the plate at the back
    v->ResetVariableObjects();
    v->AddVariableObject(kMovingPlate);
    v->AlignPickPoints();
    v.Click(464, 240);
    ExpectPicks(1, 0);
    ExpectPoint(v.Dialog().m_vSourcePoints[0], 3, 0, -2);
    v.Type(kKeySpace);
    v->m_vpMeshes[kFixedPlate]->m_iVisible = 0;
    v.Click(464, 240);  // through the plate that moves, to that at the back
    EXPECT_EQ(v.host.done, 1);
    const auto result = v->m_lastAlignment;
    ASSERT_EQ(result.pairs.size(), 1u);
    EXPECT_NEAR(result.pairs[0].fixed.point[2], -3, kTolerance);
}

TEST_F(PickPoints, HitNothingWhereOnlyADimmedObjectIs) {
    v->DeleteObject(kBackPlate);
    v->AlignPickPoints();
    v.PickMoving(kQuarterTurn);
    v.Type(kKeySpace);
    v.Click(176, 240);  // the moving plate
    ExpectPicks(3, 0);
}

TEST_F(PickPoints, HitTheNearestOfTheirObjects) {
    v->ResetVariableObjects();
    for (const std::int16_t object : {kBackPlate, kMovingPlate, kFixedPlate}) v->AddVariableObject(object);
    v->AlignPickPoints();
    v.Click(176, 240);
    v.Click(464, 240);
    v.Click(320, 240);
    ExpectPicks(3, 0);
    const double depths[] = {1, -1, -3};
    for (std::size_t i = 0; i < 3; ++i) EXPECT_NEAR(v.Dialog().m_vSourcePoints[i].z, depths[i], kTolerance);
}

TEST_F(PickPoints, DoNotHitHiddenObjects) {
    v->SetObjectVisibility(kMovingPlate, 0);
    v->AlignPickPoints();
    v.Click(176, 240);
    ExpectPicks(0, 0);
    v->SetObjectVisibility(kMovingPlate, 1);
    v.Click(176, 240);
    ExpectPicks(1, 0);
    v.Type(kKeySpace);
    v->SetObjectVisibility(kFixedPlate, 0);
    v.Click(464, 240);
    ASSERT_EQ(v.host.done, 1) << "the plate at the back is hit in its place";
    EXPECT_NEAR(v->m_lastAlignment.pairs.at(0).fixed.point[2], -3, kTolerance);
}

// At the same distance the first one counts, whichever it is in the list of objects.
TEST(FindNearestObject, KeepsTheFirstOfTwoHitsAtTheSameDistance) {
    const auto near = MakeSlopedPlate({.z = 1}), same = MakeSlopedPlate({.z = 1}), far = MakeSlopedPlate({.z = 0.5f}),
               beside = MakeSlopedPlate({.x = 9, .z = 4});
    const Float3 origin{0.25f, 0.5f, 5}, direction{0, 0, 1};
    const std::shared_ptr<Mesh> order[] = {beside, far, same, near};
    const auto hit = FindNearestObject(order, origin, direction);
    ASSERT_TRUE(hit);
    EXPECT_EQ(hit->object, 2u);
    EXPECT_EQ(hit->distance, 4);
    EXPECT_EQ(hit->point, (Float3{0.25f, 0.5f, 1}));
    same->m_iVisible = 0;
    EXPECT_EQ(FindNearestObject(order, origin, direction)->object, 3u);
    near->m_iVisible = far->m_iVisible = 0;
    EXPECT_FALSE(FindNearestObject(order, origin, direction));
    EXPECT_FALSE(FindNearestObject({}, origin, direction));
}

TEST_F(PickPoints, OfASceneWithoutMovingObjectsHitNothingAndEndByTheHost) {
    v->ResetVariableObjects();
    v->AlignPickPoints();
    EXPECT_EQ(v.Color(0), DimmedColor(colors[0]));
    v.PickMoving(kQuarterTurn);
    v.PickFixed(kQuarterTurn);
    v.Type(kKeySpace);
    ExpectPicks(0, 0);
    EXPECT_EQ(v.Dialog().m_nPhase, 1);
    v->FinishInteraction();
    ExpectEnded();
}

// ---- phases and keys

TEST_F(PickPoints, StayInTheFirstPhaseWithoutAPoint) {
    v->AlignPickPoints();
    v.Type(kKeySpace);
    EXPECT_EQ(v.Dialog().m_nPhase, 1);
    EXPECT_EQ(v.Color(0), colors[0]);
    EXPECT_EQ(v.Color(1), DimmedColor(colors[1]));
}

TEST_F(PickPoints, BrightenTheSideThatIsPickedOn) {
    v->AlignPickPoints();
    v.PickMoving(kQuarterTurn);
    v.Type(kKeySpace);
    EXPECT_EQ(v.Dialog().m_nPhase, 2);
    EXPECT_EQ(v->GetAlignmentPicks().phase, AlignmentPhase::PickFixed);
    EXPECT_EQ(v.Color(0), DimmedColor(colors[0]));
    EXPECT_EQ(v.Color(1), colors[1]);
    EXPECT_EQ(v.Color(2), colors[2]);
    EXPECT_NE(v->m_bLassoCursor, 0);
}

TEST_F(PickPoints, IgnoreSpaceInTheSecondPhase) {
    v->AlignPickPoints();
    v.PickMoving(kQuarterTurn);
    v.Type(kKeySpace);
    v.Click(kQuarterTurn[0].fixedX, kQuarterTurn[0].fixedY);
    v.window->Forget();
    v.Type(kKeySpace);
    EXPECT_EQ(v.window->refreshes, 0);
    ExpectPicks(3, 1);
    EXPECT_EQ(v.Dialog().m_nPhase, 2);
    EXPECT_EQ(v.Color(0), DimmedColor(colors[0]));
}

TEST_F(PickPoints, DropTheLastPointOfThePhaseByDelete) {
    v->AlignPickPoints();
    v.Type(kKeyDelete);
    ExpectPicks(0, 0);
    v.PickMoving(kQuarterTurn);
    v.Type(kKeyDelete);
    ExpectPicks(2, 0);
    ExpectPoint(v.Dialog().m_vSourcePoints[1], -2.5, -1, 1);
    v.Click(kQuarterTurn[2].movingX, kQuarterTurn[2].movingY);
    v.Type(kKeySpace);
    v.Type(kKeyDelete);
    ExpectPicks(3, 0);
    EXPECT_EQ(v.Dialog().m_nPhase, 2) << "it does not go back";
    v.Click(464, 200);
    v.Type(kKeyDelete);
    v.Type(kKeyDelete);
    ExpectPicks(3, 0);
    v.PickFixed(kQuarterTurn);
    ExpectEnded();
    ExpectTrafo(v.Trafo(kMovingPlate), kQuarterTurnTrafo);
}

TEST_F(PickPoints, GoOnUntilBothSidesHaveTheSameNumber) {
    const std::span<const PixelPair> two(kQuarterTurn, 2);
    v->AlignPickPoints();
    v.PickMoving(two);
    v.Type(kKeySpace);
    v.Click(two[0].fixedX, two[0].fixedY);
    ExpectPicks(2, 1);
    EXPECT_EQ(v.host.done, 0);
    v.Click(two[1].fixedX, two[1].fixedY);
    ExpectEnded();
    // The line from (-4, -1) to (-2.5, -1) becomes that from (4, -1) to (4, 0.5): a quarter turn, too.
    ExpectTrafo(v.Trafo(kMovingPlate), kQuarterTurnTrafo);
}

TEST_F(PickPoints, DrawAFrameAfterEachChange) {
    v->AlignPickPoints();
    v.window->Forget();
    v.Mouse(PickControl::Kind::LeftDown, 176, 240, KV_ScenePane::kMouseLeft);
    EXPECT_EQ(v.window->refreshes, 1);
    v.Type(kKeyDelete);
    EXPECT_EQ(v.window->refreshes, 2);
    v.Type(kKeyDelete);
    EXPECT_EQ(v.window->refreshes, 2) << "there is no point to drop";
    v.window->Forget();
    v.Mouse(PickControl::Kind::LeftDown, 2, 2, KV_ScenePane::kMouseLeft);
    EXPECT_EQ(v.window->refreshes, 0) << "a click that hits nothing";
}

/// A key press with the flags that the dialog ignores, and near ones.
TEST_F(PickPoints, IgnoreKeysWithAllFlagsButBit14) {
    v->AlignPickPoints();
    v.PickMoving(kQuarterTurn);
    for (const int flags : {0xBFFF, 0x1BFFF, static_cast<int>(0xFFFFBFFF)})
        for (const int key : {kKeyDelete, kKeySpace, kKeyEscape}) v.Type(key, flags);
    ExpectPicks(3, 0);
    EXPECT_EQ(v.Dialog().m_nPhase, 1);
    for (const int flags : {0xFFFF, 0x4000, 0xBFFE}) v.Type(kKeyDelete, flags);
    ExpectPicks(0, 0);
    v.Type(kKeyEscape, 0x3FFF);
    ExpectEnded();
}

TEST_F(PickPoints, SeeTwoKeysFirstWhenTheirWindowHasTheFocus) {
    v->AlignPickPoints();
    v.PickMoving(kQuarterTurn);
    EXPECT_FALSE(v.Dialog().PreTranslateKey(kKeyDelete));
    EXPECT_FALSE(v.Dialog().PreTranslateKey('A'));
    ExpectPicks(3, 0);
    EXPECT_TRUE(v.Dialog().PreTranslateKey(kKeySpace));
    EXPECT_EQ(v.Dialog().m_nPhase, 2);
    EXPECT_TRUE(v.Dialog().PreTranslateKey(kKeyEscape));
    ExpectEnded();
    ExpectNothingMoved();
}

// ---- the motion

TEST_F(PickPoints, MoveTheObjectsOverTheirPoints) {
    v.window->onEndWaitCursor = [&] { EXPECT_EQ(v.Colors(), colors) << "before the motion"; };
    v.AlignBy(kQuarterTurn);
    ExpectEnded();
    ExpectTrafo(v.Trafo(kMovingPlate), kQuarterTurnTrafo);
    ExpectPlateMovedBy(*v->m_vpMeshes[0], kMovingSpec, kQuarterTurnTrafo);
    EXPECT_EQ(v.Trafo(kFixedPlate), kIdentity);
    EXPECT_EQ(v.Trafo(kBackPlate), kIdentity);
    const auto& result = v->m_lastAlignment;
    EXPECT_TRUE(result.isFound);
    Double16 transform;
    std::copy(std::begin(result.transform), std::end(result.transform), transform.begin());
    ExpectTrafo(transform, kQuarterTurnTrafo);
    ASSERT_EQ(result.pairs.size(), 3u);
    EXPECT_NEAR(result.pairs[2].moving.point[1], 1, kTolerance);
    EXPECT_NEAR(result.pairs[2].fixed.point[0], 2, kTolerance);
    ASSERT_EQ(result.residuals.size(), 3u);
    for (const double residual : result.residuals) EXPECT_LT(residual, kTolerance);
    EXPECT_EQ(v.window->waitCursorsBegun, 1);
    EXPECT_EQ(v.window->waitCursorsEnded, 1);
}

// Their boxes and centres follow, so that the next fit shows them.
TEST_F(PickPoints, MoveTheBoxesOfTheObjects) {
    v.AlignBy(kQuarterTurn);
    float box[6];
    v->GetObjectBoundingBox(kMovingPlate, &box[0], &box[1], &box[2], &box[3], &box[4], &box[5]);
    // The centre (-3, 0, 1) goes to (3, 0, -1); a flat box is 0.01 thicker on both sides.
    const float expected[6] = {1.5f, 4.5f, -1.5f, 1.5f, -1.01f, -0.99f};
    for (std::size_t i = 0; i < 6; ++i) EXPECT_NEAR(box[i], expected[i], kTolerance) << i;
    float center[3];
    v->GetObjectCenter(kMovingPlate, &center[0], &center[1], &center[2]);
    EXPECT_NEAR(center[0], 3, kTolerance);
    EXPECT_NEAR(center[1], 0, kTolerance);
    EXPECT_NEAR(center[2], -1, kTolerance);
}

TEST_F(PickPoints, AddTheMotionToATransformThatAnObjectHas) {
    // A half turn about the y axis and a shift, which the vertices contain already.
    constexpr Double16 kBefore = {-1, 0, 0, 2, 0, 1, 0, -7, 0, 0, -1, 0.5, 0, 0, 0, 1};
    v->m_vpMeshes[0]->m_Trafo.Set(-1, 0, 0, 0, 1, 0, 0, 0, -1, 2, -7, 0.5);
    v->m_vpMeshes[1]->m_Trafo.Set(0, 0, 1, 1, 0, 0, 0, 1, 0, 5, 6, 7);
    const Double16 fixedBefore = v.Trafo(kFixedPlate);
    v.AlignBy(kQuarterTurn);
    ExpectTrafo(v.Trafo(kMovingPlate), Product(kQuarterTurnTrafo, kBefore));
    ExpectPlateMovedBy(*v->m_vpMeshes[0], kMovingSpec, kQuarterTurnTrafo);
    EXPECT_EQ(v.Trafo(kFixedPlate), fixedBefore);
}

TEST_F(PickPoints, OfASinglePairWithEqualNormalsOnlyShift) {
    const PixelPair pair[] = {{176, 240, 440, 192}};  // (-3, 0, 1) to (2.5, 1, -1)
    v.AlignBy(pair);
    ExpectEnded();
    const Double16 shift = {1, 0, 0, 5.5, 0, 1, 0, 1, 0, 0, 1, -2, 0, 0, 0, 1};
    const Double16 found = v.Trafo(kMovingPlate);
    ExpectTrafo(found, shift);
    for (const std::size_t i : {0, 1, 2, 4, 5, 6, 8, 9, 10}) EXPECT_EQ(found[i], shift[i]) << "no rotation at all";
}

TEST_F(PickPoints, OfASinglePairTurnTheNormalToo) {
    v->m_vpMeshes[1] = MakeSlopedPlate({.x = 3, .z = -1, .slopeX = 0.75f});  // normal (-0.6, 0, 0.8)
    const PixelPair pair[] = {{152, 264, 464, 240}};                         // (-3.5, -0.5, 1) to (3, 0, -1)
    v.AlignBy(pair);
    // The rotation about -y that takes +z to (-0.6, 0, 0.8), then the point.
    const Double16 turn = {0.8, 0, -0.6, 0, 0, 1, 0, 0, 0.6, 0, 0.8, 0, 0, 0, 0, 1};
    const auto turned = Moved(turn, {-3.5, -0.5, 1});
    Double16 expected = turn;
    for (const auto& [at, value] : {std::pair{0, 3.0}, {1, 0.0}, {2, -1.0}})
        expected[static_cast<std::size_t>(4 * at + 3)] = value - turned[static_cast<std::size_t>(at)];
    ExpectTrafo(v.Trafo(kMovingPlate), expected);
    ExpectPlateMovedBy(*v->m_vpMeshes[0], kMovingSpec, expected);
}

TEST_F(PickPoints, MoveAnObjectThatIsListedTwiceTwice) {
    v->AddVariableObject(kMovingPlate);
    const PixelPair pair[] = {{176, 240, 224 + 240, 240}};  // by 6 in x and -2 in z
    v.AlignBy(pair);
    ExpectEnded();
    const Double16 twice = {1, 0, 0, 12, 0, 1, 0, 0, 0, 0, 1, -4, 0, 0, 0, 1};
    ExpectTrafo(v.Trafo(kMovingPlate), twice);
    ExpectPlateMovedBy(*v->m_vpMeshes[0], kMovingSpec, twice);
}

TEST_F(PickPoints, MoveAllVariableObjectsAlsoHiddenOnes) {
    v->SetObjectVisibility(kBackPlate, 0);
    v->AddVariableObject(kBackPlate);
    v.AlignBy(kQuarterTurn);
    ExpectTrafo(v.Trafo(kMovingPlate), kQuarterTurnTrafo);
    ExpectTrafo(v.Trafo(kBackPlate), kQuarterTurnTrafo);
    EXPECT_EQ(v.Trafo(kFixedPlate), kIdentity);
}

TEST_F(PickPoints, ThatAreAllTheSameMoveNothing) {
    const PixelPair same[] = {{176, 240, 464, 240}, {176, 240, 464, 200}, {176, 240, 440, 200}};
    v.AlignBy(same);
    ExpectEnded();
    ExpectNothingMoved();
    EXPECT_FALSE(v->m_lastAlignment.isFound);
    EXPECT_EQ(v->m_lastAlignment.pairs.size(), 3u);
    EXPECT_TRUE(v->m_lastAlignment.residuals.empty());
}

// ---- the end

TEST_F(PickPoints, EndByEscapeInBothPhasesWithoutMovingAnything) {
    for (const bool second : {false, true}) {
        v.host.done = 0;
        v->AlignPickPoints();
        v.PickMoving(kQuarterTurn);
        if (second) {
            v.Type(kKeySpace);
            v.Click(464, 240);
        }
        v.Type(kKeyEscape);
        ExpectEnded();
        ExpectNothingMoved();
        EXPECT_FALSE(v->m_lastAlignment.isFound);
    }
}

TEST_F(PickPoints, ForgetTheResultOfTheAlignmentBeforeAtTheirStart) {
    v.AlignBy(kQuarterTurn);
    ASSERT_TRUE(v->m_lastAlignment.isFound);
    v->AlignInteractive();
    v->FinishInteraction();
    EXPECT_TRUE(v->m_lastAlignment.isFound) << "that by hand has none";
    v->AlignPickPoints();
    v.Type(kKeyEscape);
    EXPECT_FALSE(v->m_lastAlignment.isFound);
    EXPECT_TRUE(v->m_lastAlignment.pairs.empty());
}

TEST_F(PickPoints, EndByTheHostInBothPhasesWithoutMovingAnything) {
    for (const bool second : {false, true}) {
        v.host.done = 0;
        v->AlignPickPoints();
        v.PickMoving(kQuarterTurn);
        if (second) v.Type(kKeySpace);
        v->FinishInteraction();
        ExpectEnded();
        ExpectNothingMoved();
    }
}

TEST_F(PickPoints, HaveEndedInTheHandlerOfTheHost) {
    bool isChecked = false;
    v.host.onDone = [&] {
        isChecked = true;
        EXPECT_EQ(v.Colors(), colors);
        EXPECT_EQ(v->m_bLassoCursor, 0);
        EXPECT_FALSE(v.window->HasCapture());
        EXPECT_EQ(v->GetAlignmentPicks().phase, AlignmentPhase::Idle);
        EXPECT_TRUE(v->m_lastAlignment.isFound);
        ExpectTrafo(v.Trafo(kMovingPlate), kQuarterTurnTrafo);
        v.window->Forget();
        v->FinishInteraction();  // there is nothing to end any more
    };
    v.AlignBy(kQuarterTurn);
    EXPECT_TRUE(isChecked);
    ExpectEnded();
    EXPECT_GE(v.window->refreshes, 1) << "the moved objects";
}

TEST_F(PickPoints, LeaveNoDragAfterTheClickThatEndsThem) {
    v->AlignPickPoints();
    v.PickMoving(kQuarterTurn);
    v.Type(kKeySpace);
    v.PickFixed(std::span(kQuarterTurn, 2));
    const Float3 axis = v->m_fAxisX, center = v->m_fViewCenter;
    v.Mouse(PickControl::Kind::LeftDown, kQuarterTurn[2].fixedX, kQuarterTurn[2].fixedY, KV_ScenePane::kMouseLeft);
    EXPECT_EQ(v.host.done, 1);
    EXPECT_EQ(v->m_bMoving, 0);
    v.Mouse(PickControl::Kind::Move, 300, 300, KV_ScenePane::kMouseLeft);
    v.Mouse(PickControl::Kind::LeftUp, 300, 300);
    ExpectEnded();
    EXPECT_EQ(v->m_fAxisX, axis);
    EXPECT_EQ(v->m_fViewCenter, center);
    ExpectTrafo(v.Trafo(kMovingPlate), kQuarterTurnTrafo);
}

TEST_F(PickPoints, LetTheHostStartTheNextAlignmentAtTheirEnd) {
    for (const bool byPoints : {false, true}) {
        v.host.done = 0;
        v.host.onDone = [&] {
            if (v.host.done > 1) return;
            if (byPoints)
                v->AlignPickPoints();
            else
                v->AlignInteractive();
        };
        v.AlignBy(kQuarterTurn);
        const std::int32_t mode = byPoints ? ModeAlignPickPoints : ModeAlignInteractive;
        EXPECT_EQ(v->m_nInteractionMode, mode) << "also after the release of the button";
        ASSERT_EQ(v->m_vInteractionDlgs.size(), 1u);
        EXPECT_EQ(v->m_pInteractionDlg, v->m_vInteractionDlgs[0].get());
        EXPECT_EQ(v->m_bLassoCursor != 0, byPoints);
        EXPECT_EQ(v.Color(1), DimmedColor(colors[1])) << "dimmed once";
        v.Type(kKeyEscape);
        EXPECT_EQ(v.host.done, 2);
        EXPECT_EQ(v->m_nInteractionMode, ModeIdle);
        EXPECT_EQ(v.Colors(), colors);
        v.host.onDone = [] {};
        for (const auto& mesh : v->m_vpMeshes) mesh->m_Trafo = {};
        v->m_vpMeshes[0] = MakeSlopedPlate(kMovingSpec);
        v->ResetVariableObjects();
        v->AddVariableObject(kMovingPlate);
    }
}

TEST_F(PickPoints, HaveEndedAlsoWhenTheHandlerThrows) {
    v.host.onDone = [] { throw std::runtime_error("of the host"); };
    v->AlignPickPoints();
    v.PickMoving(kQuarterTurn);
    v.Type(kKeySpace);
    v.PickFixed(std::span(kQuarterTurn, 2));
    EXPECT_THROW(v.Click(kQuarterTurn[2].fixedX, kQuarterTurn[2].fixedY), std::runtime_error);
    ExpectEnded();
    ExpectTrafo(v.Trafo(kMovingPlate), kQuarterTurnTrafo);
    v.host.onDone = [] {};
    v->AlignPickPoints();
    EXPECT_EQ(v.Dialog().m_nPhase, 1);
}

TEST(PickPointsWithoutAPicture, HitNothing) {
    NoPictureControl v;
    AlignHost host;
    v->Connect(&host);
    SetPickScene(*v);
    v->AlignPickPoints();
    v->SendMouse(
        {.kind = KV_ScenePane::MouseInput::Kind::LeftDown, .flags = KV_ScenePane::kMouseLeft, .x = 176, .y = 240});
    EXPECT_TRUE(v->GetAlignmentPicks().moving.empty());
    v->FinishInteraction();
    EXPECT_EQ(host.done, 1);
    v->Connect(nullptr);
}

}  // namespace
