// An alignment by hand from its start to its end: roles, colours, keys, events, and viewers that cannot draw.
#include <string>

#include "align/HandScene.h"
#include "view/InputHelp.h"

namespace {

using KV_ScenePane::AlignmentPhase;
using KV_ScenePane::kMouseLeft;
using KV_ScenePane::kMouseRight;

std::size_t CountDone(const TestControl& control) {
    return static_cast<std::size_t>(
        std::ranges::count(control.events.events, "AlignmentDone", &EventsRecorder::Event::name));
}

std::vector<std::uint32_t> ColorsOf(CKV_ScenePaneCtrl& pane) {
    std::vector<std::uint32_t> colors;
    for (std::int16_t idx = 0; idx < pane.GetNumObjects(); ++idx)
        colors.push_back(static_cast<std::uint32_t>(pane.GetObjectColor(idx)));
    return colors;
}

const std::vector<std::uint32_t> kOwnColors(std::begin(HandScene::kColors), std::end(HandScene::kColors));
const std::vector<std::uint32_t> kColorsByHand = {0x000055, HandScene::kColors[1], HandScene::kColors[2], 0x050A10};

// ---- the start

TEST(AlignInteractive, StartsWithADialogAndItsMode) {
    HandScene scene;
    EXPECT_EQ(scene.pane.GetAlignmentPicks().phase, AlignmentPhase::Idle);
    scene.pane.AlignInteractive();
    ASSERT_NE(scene.Dialog(), nullptr);
    EXPECT_TRUE(scene.Dialog()->HasWindow());
    EXPECT_EQ(scene.pane.m_nInteractionMode, ModeAlignInteractive);
    EXPECT_EQ(scene.pane.GetAlignmentPicks().phase, AlignmentPhase::ByHand);
    EXPECT_TRUE(scene.pane.GetAlignmentPicks().moving.empty());
    EXPECT_EQ(CountDone(scene.control), 0u);
    EXPECT_EQ(scene.control.window->swaps, 1) << "the operator sees at once what cannot move";
}

TEST(AlignInteractive, TagsTheObjectsByTheirRole) {
    HandScene scene;
    for (const auto& mesh : scene.pane.m_vpMeshes) mesh->m_iObjectTag = 7;
    scene.Begin();
    std::vector<int> tags;
    for (const auto& mesh : scene.pane.m_vpMeshes) tags.push_back(mesh->m_iObjectTag);
    EXPECT_EQ(tags, (std::vector{-1, 0, 0, -1}));
}

TEST(AlignInteractive, RotatesAboutTheMeanOfTheCentres) {
    HandScene scene;
    scene.pane.AddVariableObject(2);  // a second time: it counts twice
    scene.Begin();
    Double3 mean{};
    for (const auto idx : {std::int16_t{1}, std::int16_t{2}, std::int16_t{2}}) {
        Float3 center{};
        ASSERT_NE(scene.pane.GetObjectCenter(idx, &center[0], &center[1], &center[2]), 0);
        mean = mean + (1.0 / 3) * ToDouble3(center);
    }
    EXPECT_LT(Length(ToDouble3(scene.Dialog()->m_fPivot) - mean), 1e-5);
}

TEST(AlignInteractive, IgnoresIndicesThatNoObjectHas) {
    HandScene scene;
    scene.pane.ResetVariableObjects();
    for (const int idx : {-1, 4, -32768, 32767}) scene.pane.AddVariableObject(static_cast<std::int16_t>(idx));
    EXPECT_TRUE(scene.pane.m_vpVariableObjects.empty());
    scene.Begin();
    scene.Drag(kMouseRight, {{300, 200}, {320, 230}});
    scene.Check(1e-5);
}

// ---- colours

TEST(AlignInteractive, DimsTheFixedObjectsUntilItsEnd) {
    HandScene scene;
    ASSERT_EQ(ColorsOf(scene.pane), kOwnColors);
    scene.Begin();
    EXPECT_EQ(ColorsOf(scene.pane), kColorsByHand);
    scene.Drag(kMouseLeft, {{320, 240}, {340, 250}});
    EXPECT_EQ(ColorsOf(scene.pane), kColorsByHand);
    scene.pane.FinishInteraction();
    EXPECT_EQ(ColorsOf(scene.pane), kOwnColors);
}

TEST(AlignInteractive, GivesBackTheColorsThatItFoundWhenTheHostChangesThemMeanwhile) {
    HandScene scene;
    scene.Begin();
    scene.pane.SetObjectColor(0, 0x123456);
    scene.pane.SetObjectColor(1, 0x654321);
    scene.pane.FinishInteraction();
    EXPECT_EQ(ColorsOf(scene.pane),
              (std::vector<std::uint32_t>{kOwnColors[0], 0x654321, kOwnColors[2], kOwnColors[3]}));
}

TEST(AlignInteractive, DimsEveryObjectWithoutVariableOnes) {
    HandScene scene;
    scene.pane.ResetVariableObjects();
    scene.Begin();
    EXPECT_EQ(ColorsOf(scene.pane), (std::vector<std::uint32_t>{0x000055, 0x2A4015, 0x552A01, 0x050A10}));
    scene.pane.FinishInteraction();
    EXPECT_EQ(ColorsOf(scene.pane), kOwnColors);
}

/// Colours of vertices are mixed with the object colour when the buffers are made.
TEST(AlignInteractive, ShowsTheDimmedColorAtOnceOnGreyAndBlendedScans) {
    for (const bool isBlended : {false, true}) {
        SCOPED_TRACE(isBlended ? "blended" : "grey");
        OffscreenControl control(64, 48);
        const std::uint32_t color = isBlended ? 0x2040FF : 0xC0C0C0;  // not grey: it is blended on request only
        std::vector<Vertex> vertices;
        for (const auto& [x, y] : {std::pair{-99.0f, -99.0f}, {99.0f, -99.0f}, {0.0f, 99.0f}})
            vertices.push_back({.x = x, .y = y, .nz = 1, .color = color});
        control->m_vpMeshes.push_back(
            std::make_shared<Mesh>(std::move(vertices), std::vector<Triangle>{{{0, 1, 2}}}, std::wstring(), true));
        control->SetObjectColor(0, 0xE0E0E0);
        control->SetBlendObjectColors(0, isBlended ? 1 : 0);
        control->SetViewMode(KV_ScenePane::ViewFromPlusZYUp);
        const auto brightness = [&] {
            KV_ScenePane::Picture picture;
            EXPECT_TRUE(control->CapturePicture(&picture));
            const std::uint32_t pixel = picture.pixels.at(24 * 64 + 32);
            return static_cast<int>((pixel >> 16 & 0xFF) + (pixel >> 8 & 0xFF) + (pixel & 0xFF));
        };
        const int before = brightness();
        control->AlignInteractive();
        const int during = brightness();
        control->FinishInteraction();
        EXPECT_LT(during, before * 2 / 3);
        EXPECT_EQ(brightness(), before);
    }
}

// ---- drags

TEST(AlignInteractive, MovesNothingByTheFirstMoveOfADragOrOnTheSamePixel) {
    for (const std::uint32_t button : {kMouseLeft, kMouseRight}) {
        SCOPED_TRACE(button);
        HandScene scene;
        scene.Begin();
        scene.Press(button, 100, 100);
        scene.Move(button, 200, 300);  // the first one the dialog receives
        scene.Move(button, 200, 300);
        EXPECT_EQ(scene.control.window->swaps, 0);
        scene.Release(button, 200, 300);
        EXPECT_EQ(scene.control.window->swaps, 1) << "the one of every release";
        scene.Check(1e-5);
    }
}

TEST(AlignInteractive, MovesAnObjectThatIsListedTwiceTwice) {
    HandScene scene;
    scene.pane.AddVariableObject(1);
    scene.Begin();
    EXPECT_EQ(ColorsOf(scene.pane), kColorsByHand);
    EXPECT_EQ(scene.pane.m_vpMeshes[1]->m_iObjectTag, 0);
    scene.Drag(kMouseRight, {{300, 200}, {320, 210}});
    const Pose shift = ShiftBy(HandCamera(scene.pane).Travel(20, 10));
    scene.expected[1] = After(shift, After(shift, scene.expected[1]));
    scene.expected[2] = After(shift, scene.expected[2]);
    scene.Check();
    scene.pane.FinishInteraction();
    EXPECT_EQ(ColorsOf(scene.pane), kOwnColors);
}

TEST(AlignInteractive, MovesAndDimsHiddenObjectsToo) {
    HandScene scene;
    for (const std::int16_t idx : {std::int16_t{0}, std::int16_t{1}}) scene.pane.SetObjectVisibility(idx, 0);
    scene.Begin();
    EXPECT_EQ(ColorsOf(scene.pane), kColorsByHand);
    scene.Drag(kMouseRight, {{300, 200}, {320, 210}});
    scene.ExpectShift(20, 10);
    scene.Check();
}

TEST(AlignInteractive, MovesNothingWithoutVariableObjectsAndEndsAsUsual) {
    HandScene scene;
    scene.pane.ResetVariableObjects();
    scene.pane.AlignInteractive();
    EXPECT_TRUE(std::isnan(scene.Dialog()->m_fPivot[0]));
    for (const std::uint32_t button : {kMouseLeft, kMouseRight}) scene.Drag(button, {{300, 200}, {320, 210}, {0, 0}});
    scene.Check(1e-5);
    scene.pane.FinishInteraction();
    EXPECT_EQ(CountDone(scene.control), 1u);
}

/// A host may add objects while the alignment runs: they move, and nothing becomes not-a-number.
TEST(AlignInteractive, MovesObjectsThatAreAddedMeanwhile) {
    HandScene scene;
    scene.pane.ResetVariableObjects();
    scene.Begin();
    for (const std::int16_t idx : HandScene::kMoving) scene.pane.AddVariableObject(idx);
    scene.Drag(kMouseLeft, {{320, 240}, {340, 250}});  // about no centre
    scene.Drag(kMouseRight, {{300, 200}, {320, 210}});
    scene.ExpectShift(20, 10);
    scene.Check();
}

TEST(AlignInteractive, UpdatesBoxAndCentreWithEachStep) {
    HandScene scene;
    scene.Begin();
    Float3 before{}, after{};
    scene.pane.GetObjectCenter(1, &before[0], &before[1], &before[2]);
    float low[6] = {}, high[6] = {};
    scene.pane.GetObjectBoundingBox(1, &low[0], &low[1], &low[2], &low[3], &low[4], &low[5]);
    scene.Press(kMouseRight, 300, 200);
    for (const int x : {300, 340}) scene.Move(kMouseRight, x, 200);
    scene.pane.GetObjectCenter(1, &after[0], &after[1], &after[2]);
    scene.pane.GetObjectBoundingBox(1, &high[0], &high[1], &high[2], &high[3], &high[4], &high[5]);
    const Double3 shift = HandCamera(scene.pane).Travel(40, 0);
    for (std::size_t i = 0; i < 3; ++i) {
        EXPECT_NEAR(static_cast<double>(after[i]) - before[i], shift[i], 1e-4);
        EXPECT_NEAR(static_cast<double>(high[2 * i]) - low[2 * i], shift[i], 1e-4);
        EXPECT_NEAR(static_cast<double>(high[2 * i + 1]) - low[2 * i + 1], shift[i], 1e-4);
    }
}

TEST(AlignInteractive, DrawsOneFramePerStep) {
    HandScene scene;
    scene.Begin();
    scene.Press(kMouseLeft, 320, 240);
    for (const int x : {320, 330, 340, 350}) scene.Move(kMouseLeft, x, 240);
    EXPECT_EQ(scene.control.window->swaps, 3);
}

// ---- the end

TEST(AlignInteractive, EndsByFinishInteractionWithOneEvent) {
    HandScene scene;
    scene.Begin();
    scene.pane.FinishInteraction();
    EXPECT_EQ(scene.pane.m_pInteractionDlg, nullptr);
    EXPECT_TRUE(scene.pane.m_vInteractionDlgs.empty());
    EXPECT_EQ(scene.pane.m_nInteractionMode, ModeIdle);
    EXPECT_EQ(scene.pane.GetAlignmentPicks().phase, AlignmentPhase::Idle);
    EXPECT_EQ(CountDone(scene.control), 1u);
    scene.pane.FinishInteraction();
    EXPECT_EQ(CountDone(scene.control), 1u);
}

TEST(AlignInteractive, EndsByEscapeAndKeepsTheMovement) {
    HandScene scene;
    scene.Begin();
    scene.Drag(kMouseRight, {{300, 200}, {320, 210}});
    scene.ExpectShift(20, 10);
    for (const std::int32_t key : {int{'A'}, KV_ScenePane::kKeySpace, KV_ScenePane::kKeyDelete, 13})
        scene.pane.SendKey({.nChar = key});
    EXPECT_NE(scene.Dialog(), nullptr) << "no other key ends it";
    scene.pane.SendKey({.nChar = KV_ScenePane::kKeyEscape});
    EXPECT_EQ(scene.pane.m_pInteractionDlg, nullptr);
    EXPECT_EQ(scene.pane.m_nInteractionMode, ModeIdle);
    EXPECT_EQ(CountDone(scene.control), 1u);
    EXPECT_EQ(ColorsOf(scene.pane), kOwnColors);
    scene.Check();
}

TEST(AlignInteractive, EndsByOkAndByCancelOfItsWindow) {
    for (const bool isOk : {true, false}) {
        HandScene scene;
        scene.Begin();
        if (isOk)
            scene.Dialog()->OnOK();
        else
            scene.Dialog()->OnCancel();
        EXPECT_EQ(scene.pane.m_pInteractionDlg, nullptr);
        EXPECT_EQ(scene.pane.m_nInteractionMode, ModeIdle);
        EXPECT_EQ(CountDone(scene.control), 1u);
        EXPECT_EQ(ColorsOf(scene.pane), kOwnColors);
    }
}

/// What the handler of AlignmentDone finds.
struct DoneHost final : KV_ScenePane::_DKV_ScenePaneEvents {
    explicit DoneHost(HandScene& s) : scene(s) { scene.pane.Connect(this); }
    ~DoneHost() { scene.pane.Connect(&scene.control.events); }
    void AlignmentDone() override {
        colors = ColorsOf(scene.pane);
        phase = scene.pane.GetAlignmentPicks().phase;
        swapsBefore = scene.control.window->swaps;
        ++done;
    }
    HandScene& scene;
    std::vector<std::uint32_t> colors;
    AlignmentPhase phase{};
    int swapsBefore = -1, done = 0;
};

TEST(AlignInteractive, GivesTheColorsBackThenFiresThenDraws) {
    HandScene scene;
    scene.Begin();
    DoneHost host(scene);
    scene.pane.FinishInteraction();
    EXPECT_EQ(host.done, 1);
    EXPECT_EQ(host.colors, kOwnColors);
    EXPECT_EQ(host.phase, AlignmentPhase::Idle) << "the alignment is over";
    EXPECT_EQ(host.swapsBefore, 0);
    EXPECT_EQ(scene.control.window->swaps, 1);
}

// ---- a button that is held when an alignment starts or ends

TEST(HeldButton, DragsNothingAfterTheEnd) {
    for (const std::uint32_t button : {kMouseLeft, kMouseRight})
        for (const std::uint32_t keys : {0u, std::uint32_t{KV_ScenePane::kMouseCtrl}}) {
            SCOPED_TRACE(testing::Message() << "button " << button << ", keys " << keys);
            HandScene scene;
            scene.Begin();
            scene.Press(button, 600, 40, keys);  // rolls
            scene.Move(button | keys, 600, 40);
            scene.pane.SendKey({.nChar = KV_ScenePane::kKeyEscape});
            const ViewFrame view = scene.pane.LiveFrame();
            EXPECT_EQ(scene.pane.m_bMoving, 0) << "the objects are drawn whole again";
            scene.Move(button | keys, 500, 300);
            scene.Release(button, 500, 300, keys);
            EXPECT_EQ(scene.pane.m_nInteractionMode, ModeIdle);
            EXPECT_FALSE(scene.control.window->HasCapture());
            EXPECT_EQ(scene.pane.m_fAxisX, view.wx);
            EXPECT_EQ(scene.pane.m_fViewCenter, view.center);
            scene.Check(1e-5);
        }
}

TEST(HeldButton, RollsNoLaterDragOfTheView) {
    HandScene scene;
    scene.Begin();
    scene.Press(kMouseRight, 600, 40);
    for (const int x : {600, 590}) scene.Move(kMouseRight, x, 40);
    scene.pane.FinishInteraction();
    scene.Release(kMouseRight, 590, 40);
    const Float3 toViewer = scene.pane.m_fAxisZ;
    scene.Drag(kMouseLeft, {{320, 240}, {360, 240}});
    EXPECT_NE(scene.pane.m_fAxisZ, toViewer) << "a roll would keep the viewing axis";
}

TEST(HeldButton, OfADragOfTheViewReturnsToTheAlignmentThatTheHostHasStarted) {
    HandScene scene;
    scene.Press(kMouseLeft, 320, 240);
    scene.Move(kMouseLeft, 330, 240);
    scene.Begin();
    scene.Release(kMouseLeft, 330, 240);
    EXPECT_EQ(scene.pane.m_nInteractionMode, ModeAlignInteractive);
    scene.Drag(kMouseRight, {{300, 200}, {320, 210}});
    scene.ExpectShift(20, 10);
    scene.Check();
}

TEST(Lasso, ThatIsStartedMeanwhileOutlivesTheAlignment) {
    HandScene scene;
    scene.Begin();
    scene.pane.StartSegmentation(KV_ScenePane::PolygonInside);
    scene.pane.FinishInteraction();
    EXPECT_EQ(scene.pane.m_nInteractionMode, ModeLasso);
    EXPECT_EQ(CountDone(scene.control), 1u);
}

// ---- viewers that cannot draw

TEST(AlignInteractive, WorksWithoutAPicture) {
    NoPictureControl control;
    for (const std::uint32_t color : {0x906030u, 0x00FF00u}) control->m_vpMeshes.push_back(MakeScan(color));
    control->AddVariableObject(1);
    control->AlignInteractive();
    EXPECT_EQ(control->GetObjectColor(0), 0x302010);
    const auto send = [&](KV_ScenePane::MouseInput::Kind kind, std::uint32_t flags, int x, int y) {
        control->SendMouse({.kind = kind, .flags = flags, .x = x, .y = y});
    };
    using Kind = KV_ScenePane::MouseInput::Kind;
    send(Kind::RightDown, kMouseRight, 30, 30);
    for (const int x : {30, 40, 50}) send(Kind::Move, kMouseRight, x, 30);
    send(Kind::RightUp, 0, 60, 30);
    EXPECT_LT(Difference(PoseOfScan(*control, 1), Pose{}), 1e-6) << "no pixel has a point in the world";
    for (const std::int16_t mode : {std::int16_t{0}, std::int16_t{1}, std::int16_t{3}}) {
        control->SetRotationMode(mode);
        send(Kind::LeftDown, kMouseLeft, 30, 30);
        for (const int x : {30, 40, 50}) send(Kind::Move, kMouseLeft, x, 30);
        send(Kind::LeftUp, 0, 60, 30);
    }
    for (const Double3& column : PoseOfScan(*control, 1).columns) EXPECT_NEAR(Length(column), 1, 1e-6);
    EXPECT_EQ(control->m_nInteractionMode, ModeAlignInteractive);
    control->SendKey({.nChar = KV_ScenePane::kKeyEscape});
    EXPECT_EQ(control->GetObjectColor(0), 0x906030);
    EXPECT_EQ(CountDone(control), 1u);
}

TEST(AlignInteractive, WorksAfterTheEndOfTheWindow) {
    HandScene scene;
    scene.control.window->Destroy();
    scene.pane.m_vpMeshes.push_back(MakeScan(0x906030));
    scene.pane.m_vpMeshes.push_back(MakeScan(0x00FF00));
    scene.pane.ResetVariableObjects();
    scene.pane.AddVariableObject(1);
    scene.pane.AlignInteractive();
    EXPECT_EQ(scene.pane.GetObjectColor(0), 0x302010);
    for (const std::uint32_t button : {kMouseLeft, kMouseRight}) scene.Drag(button, {{300, 200}, {320, 210}});
    for (const Vertex& v : scene.pane.m_vpMeshes[1]->m_vVertices) EXPECT_TRUE(std::isfinite(v.x));
    scene.pane.FinishInteraction();
    EXPECT_EQ(scene.pane.GetObjectColor(0), 0x906030);
    EXPECT_EQ(CountDone(scene.control), 1u);
}

TEST(AlignInteractive, CostsNoEventWhenTheControlEndsWithoutAWindow) {
    EventsRecorder events;
    {
        HandScene scene;
        scene.control.window->Destroy();
        scene.pane.Connect(&events);
        scene.pane.AlignInteractive();
        scene.pane.AlignInteractive();
    }
    EXPECT_TRUE(events.events.empty()) << events.events[0].name;
}

}  // namespace
