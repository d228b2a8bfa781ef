// What becomes of an alignment by picked points when objects are deleted, cut, undone or imported in between, when the
// scene is cleared, and when the host ends the viewer.
#include <stdexcept>

#include "align/PickScene.h"
#include "control/ScenePaneHandle.h"

using KV_ScenePane::AlignmentPhase;
using KV_ScenePane::kKeyEscape;
using KV_ScenePane::kKeySpace;

namespace {

class PicksWhileTheSceneChanges : public testing::Test {
protected:
    /// In the second phase, with three points on the moving plate and @p fixed on the fixed one.
    void PickUntilTheLast(std::size_t fixed = 2) {
        v->AlignPickPoints();
        v.PickMoving(kQuarterTurn);
        v.Type(kKeySpace);
        v.PickFixed(std::span(kQuarterTurn, fixed));
    }
    void PickTheLast() { v.Click(kQuarterTurn[2].fixedX, kQuarterTurn[2].fixedY); }
    void ExpectEnded() {
        EXPECT_EQ(v.host.done, 1);
        EXPECT_TRUE(v->m_vInteractionDlgs.empty());
        EXPECT_EQ(v->m_nInteractionMode, ModeIdle);
        EXPECT_EQ(v->m_bLassoCursor, 0);
    }
    /// A lasso around the centre of an object, as the host draws it.
    void CutAround(int x, int y) {
        const auto at = [](int px, int py) { return KV_ScenePane::LassoPoint{px / 640.0, py / 480.0}; };
        const KV_ScenePane::LassoPoint square[] = {at(x - 100, y - 100), at(x + 100, y - 100), at(x + 100, y + 100),
                                                   at(x - 100, y + 100)};
        EXPECT_TRUE(v->CutWithLasso(KV_ScenePane::PolygonInside, square));
    }

    PickControl v;
    const std::vector<std::uint32_t> colors = v.Colors();
};

TEST_F(PicksWhileTheSceneChanges, MoveNothingWhenTheMovingObjectIsDeleted) {
    PickUntilTheLast();
    v->DeleteObject(kMovingPlate);
    PickTheLast();
    ExpectEnded();
    EXPECT_TRUE(v->m_lastAlignment.isFound) << "the points are still there";
    EXPECT_EQ(v.Trafo(0), kIdentity);
    EXPECT_EQ(v.Trafo(1), kIdentity);
    EXPECT_EQ(v.Colors(), (std::vector<std::uint32_t>{colors[1], colors[2]}));
}

TEST_F(PicksWhileTheSceneChanges, HitNothingWhenAllFixedObjectsAreDeletedBetweenThePhases) {
    v->AlignPickPoints();
    v.PickMoving(kQuarterTurn);
    v->DeleteObject(kBackPlate);
    v->DeleteObject(kFixedPlate);
    v.Type(kKeySpace);
    v.PickFixed(kQuarterTurn);
    EXPECT_EQ(v->GetAlignmentPicks().phase, AlignmentPhase::PickFixed);
    EXPECT_TRUE(v->GetAlignmentPicks().fixed.empty());
    v.Type(kKeyEscape);
    ExpectEnded();
    EXPECT_EQ(v.Color(0), colors[0]);
}

TEST_F(PicksWhileTheSceneChanges, HitNothingWhenAllMovingObjectsAreDeletedInTheFirstPhase) {
    v->AlignPickPoints();
    v->DeleteObject(kMovingPlate);
    v.PickMoving(kQuarterTurn);
    EXPECT_TRUE(v->GetAlignmentPicks().moving.empty());
    v.Type(kKeySpace);
    EXPECT_EQ(v.Dialog().m_nPhase, 1);
    v.Type(kKeyEscape);
    ExpectEnded();
    EXPECT_EQ(v.Color(0), colors[1]);
    EXPECT_EQ(v.Color(1), colors[2]);
}

TEST_F(PicksWhileTheSceneChanges, StayOpenWhenTheSceneIsCleared) {
    for (const bool second : {false, true}) {
        v.host.done = 0;
        v->m_vpMeshes.clear();
        SetPickScene(*v);
        v->AlignPickPoints();
        v.PickMoving(kQuarterTurn);
        if (second) v.Type(kKeySpace);
        v->ClearData();
        EXPECT_EQ(v.host.done, 0);
        v.PickMoving(kQuarterTurn);
        v.PickFixed(kQuarterTurn);
        EXPECT_EQ(v->GetAlignmentPicks().moving.size(), 3u);
        EXPECT_TRUE(v->GetAlignmentPicks().fixed.empty());
        v.Type(kKeySpace);
        v->PerformRefresh();
        v.Type(kKeyEscape);
        ExpectEnded();
    }
}

// The place of an object that is gone may be that of another one: the pick list is not by address.
TEST_F(PicksWhileTheSceneChanges, DoNotHitObjectsThatWereImportedSince) {
    v->AlignPickPoints();
    v->DeleteObject(kMovingPlate);
    for (int i = 0; i < 20; ++i) v->m_vpMeshes.push_back(MakeSlopedPlate(kMovingSpec));
    v.PickMoving(kQuarterTurn);
    EXPECT_TRUE(v->GetAlignmentPicks().moving.empty());
    v->FinishInteraction();
    for (std::size_t i = 2; i < v->m_vpMeshes.size(); ++i) EXPECT_EQ(v.Color(i), kMovingSpec.color) << i;
}

// The undo step holds the object from before the cut, which is in the window no more.
TEST_F(PicksWhileTheSceneChanges, DoNotHitWhatACutHasRemovedUntilItIsUndone) {
    v->AlignPickPoints();
    v.PickMoving(kQuarterTurn);
    v.Type(kKeySpace);
    CutAround(464, 240);  // the fixed plate, and the moving one and that at the back are not cut: no vertex is inside
    EXPECT_EQ(v->m_nInteractionMode, ModeAlignPickPoints);
    const auto fixedPlate = v->m_vUndoStack.back().at(kFixedPlate);
    EXPECT_NE(fixedPlate, v->m_vpMeshes.at(kFixedPlate));
    v.Click(464, 240);
    ASSERT_EQ(v->GetAlignmentPicks().fixed.size(), 1u) << "the plate at the back";
    EXPECT_NEAR(v->GetAlignmentPicks().fixed[0].point[2], -3, 1e-5);
    v->PerformUndo();
    v.Click(464, 240);
    ASSERT_EQ(v->GetAlignmentPicks().fixed.size(), 2u);
    EXPECT_NEAR(v->GetAlignmentPicks().fixed[1].point[2], -1, 1e-5);
    v.Type(kKeyEscape);
    ExpectEnded();
    EXPECT_EQ(v.Colors(), colors);
}

// ---- the host ends more than the alignment

TEST_F(PicksWhileTheSceneChanges, ShowTheirCursorAgainAfterALasso) {
    for (const bool isCut : {false, true}) {
        SCOPED_TRACE(isCut);
        v.host.done = 0;
        v->AlignPickPoints();
        v->StartSegmentation(KV_ScenePane::FreehandInside);
        if (isCut)
            CutAround(464, 240);
        else
            v->EndSegmentation();
        EXPECT_EQ(v->m_nInteractionMode, ModeAlignPickPoints);
        EXPECT_NE(v->m_bLassoCursor, 0);
        v->FinishInteraction();
        ExpectEnded();
    }
}

// In the handler the picking is over, whatever the mode.
TEST_F(PicksWhileTheSceneChanges, LeaveTheDefaultCursorAfterALassoInTheHandler) {
    v->AlignPickPoints();
    v.host.onDone = [&] { CutAround(464, 240); };
    v->FinishInteraction();
    ExpectEnded();
}

TEST_F(PicksWhileTheSceneChanges, MayBeClearedInTheHandler) {
    v.host.onDone = [&] { v->ClearData(); };
    PickUntilTheLast();
    PickTheLast();
    ExpectEnded();
    EXPECT_EQ(v->GetNumObjects(), 0);
}

TEST_F(PicksWhileTheSceneChanges, FireOnceWhenTheControlEnds) {
    PickUntilTheLast();
    v.control.reset();
    EXPECT_EQ(v.host.done, 1);
}

TEST_F(PicksWhileTheSceneChanges, EndWithTheirContext) {
    PickUntilTheLast();
    v->RecreateOpenglContext(3, 3, 0);
    ExpectEnded();
    EXPECT_EQ(v->GetNumObjects(), 0);
}

TEST(PickPointsOfAHandle, MayDestroyTheViewerInTheHandler) {
    KV_ScenePane::WindowRequest request;
    auto control = std::make_shared<CKV_ScenePaneCtrl>(MakePaneWindow(request));
    std::string reason;
    ASSERT_TRUE(control->CreateControlWindow(&reason)) << reason;
    control->PerformRefresh();
    SetPickScene(*control);
    const std::weak_ptr<CKV_ScenePaneCtrl> life = control;
    auto pane = MakeHandle(std::move(control));
    AlignHost host;
    host.onDone = [&] {
        pane.reset();
        EXPECT_FALSE(life.expired()) << "it is still on the stack";
    };
    pane->Connect(&host);
    pane->Methods().AlignPickPoints();
    using Kind = KV_ScenePane::MouseInput::Kind;
    const auto click = [&](int x, int y) {
        pane->SendMouse({.kind = Kind::LeftDown, .flags = KV_ScenePane::kMouseLeft, .x = x, .y = y});
        if (pane != nullptr) pane->SendMouse({.kind = Kind::LeftUp, .x = x, .y = y});
    };
    click(176, 240);
    pane->SendKey({.nChar = kKeySpace});
    click(464, 240);
    EXPECT_EQ(pane, nullptr);
    EXPECT_TRUE(life.expired());
    EXPECT_EQ(host.done, 1);
}

// ---- a repaint may end the alignment: it runs code of the host where a driver refuses buffers

/// Runs a function once after the next repaint.
class EndingProbe final : public WindowProbe {
public:
    using WindowProbe::WindowProbe;
    std::function<void()> afterRefresh;
    void Refresh() override {
        WindowProbe::Refresh();
        if (const auto run = std::exchange(afterRefresh, nullptr)) run();
    }
};

class PicksThatEndInARepaint : public testing::Test {
protected:
    PicksThatEndInARepaint() {
        auto made = std::make_unique<EndingProbe>(MakePaneWindow({}));
        probe = made.get();
        control = std::make_unique<CKV_ScenePaneCtrl>(std::move(made));
        std::string reason;
        if (!control->CreateControlWindow(&reason)) ADD_FAILURE() << reason;
        control->PerformRefresh();
        SetPickScene(*control);
        control->Connect(&host);
    }
    ~PicksThatEndInARepaint() override { control->Connect(nullptr); }

    void Press(int x, int y) {
        using Kind = KV_ScenePane::MouseInput::Kind;
        control->SendMouse({.kind = Kind::LeftDown, .flags = KV_ScenePane::kMouseLeft, .x = x, .y = y});
    }
    void Release() { control->SendMouse({.kind = KV_ScenePane::MouseInput::Kind::LeftUp}); }
    void ExpectEnded() const {
        EXPECT_EQ(host.done, 1);
        EXPECT_TRUE(control->m_vInteractionDlgs.empty());
        EXPECT_EQ(control->m_pInteractionDlg, nullptr);
        EXPECT_EQ(control->m_nInteractionMode, ModeIdle);
    }

    EndingProbe* probe = nullptr;
    std::unique_ptr<CKV_ScenePaneCtrl> control;
    AlignHost host;
};

TEST_F(PicksThatEndInARepaint, OfTheStart) {
    probe->afterRefresh = [&] { control->FinishInteraction(); };
    control->AlignPickPoints();
    ExpectEnded();
}

TEST_F(PicksThatEndInARepaint, OfAPoint) {
    control->AlignPickPoints();
    probe->afterRefresh = [&] { control->FinishInteraction(); };
    Press(176, 240);
    Release();
    ExpectEnded();
}

TEST_F(PicksThatEndInARepaint, OfThePointThatWouldAlign) {
    control->AlignPickPoints();
    Press(176, 240);
    Release();
    control->SendKey({.nChar = kKeySpace});
    probe->afterRefresh = [&] { control->FinishInteraction(); };
    Press(464, 240);
    Release();
    ExpectEnded();
    EXPECT_FALSE(control->m_lastAlignment.isFound) << "it ended before";
    EXPECT_EQ(control->m_vpMeshes[0]->m_Trafo.m_dTranslation[0], 0);
}

TEST_F(PicksThatEndInARepaint, OfTheNextPhaseAndOfADroppedPoint) {
    for (const std::int32_t key : {KV_ScenePane::kKeySpace, KV_ScenePane::kKeyDelete}) {
        host.done = 0;
        control->AlignPickPoints();
        Press(176, 240);
        Release();
        probe->afterRefresh = [&] { control->FinishInteraction(); };
        control->SendKey({.nChar = key});
        ExpectEnded();
    }
}

TEST_F(PicksThatEndInARepaint, MayBeFollowedByTheNextAlignmentThere) {
    control->AlignPickPoints();
    Press(176, 240);
    Release();
    control->SendKey({.nChar = kKeySpace});
    probe->afterRefresh = [&] {
        control->FinishInteraction();
        control->AlignPickPoints();
    };
    Press(464, 240);
    Release();
    EXPECT_EQ(host.done, 1);
    ASSERT_EQ(control->m_vInteractionDlgs.size(), 1u);
    EXPECT_EQ(control->GetAlignmentPicks().phase, AlignmentPhase::PickMoving);
    EXPECT_TRUE(control->GetAlignmentPicks().moving.empty());
    EXPECT_EQ(control->m_nInteractionMode, ModeAlignPickPoints);
}

}  // namespace
