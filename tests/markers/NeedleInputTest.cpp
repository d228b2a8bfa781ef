// Needles by mouse and keys: creation, selection, drag, deletion, by calls of the host and by the real pointer and
// keyboard. The scene is in NeedlePlate.h.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "markers/NeedlePlate.h"
#include "support/GlNow.h"
#include "view/UserInput.h"

namespace {

constexpr auto L = Button::Left;

struct InputWay {
    const char* name;
    std::unique_ptr<UserInput> (*makeUser)();
};
void PrintTo(const InputWay& way, std::ostream* out) { *out << way.name; }

class NeedleInput : public testing::TestWithParam<InputWay> {
protected:
    NeedleInput() {
        SetScene(*viewer);
        viewer->Connect(&events);
    }
    void MoveTo(Pixel pixel) { user->MoveTo(pixel.x, pixel.y); }
    void Click(Pixel pixel) {
        MoveTo(pixel);
        user->Press(L);
        user->Release(L);
    }
    void DoubleClick(Pixel pixel) {
        MoveTo(pixel);
        user->DoubleClick();
    }
    /// Whether the viewer handles an input of this kind now, as its window reported it; true by calls, which pass no
    /// window.
    [[nodiscard]] bool Handles(KV_ScenePane::MouseInput::Kind kind) const {
        return viewer.window->mouseHeard.empty() || viewer.window->mouseHeard.back().kind == kind;
    }
    [[nodiscard]] ViewFrame View() const { return viewer->LiveFrame(); }
    void ExpectView(const ViewFrame& expected) const {
        EXPECT_EQ(View().wx, expected.wx);
        EXPECT_EQ(View().wz, expected.wz);
        EXPECT_EQ(View().center, expected.center);
    }

    NeedleEvents events;
    const std::unique_ptr<UserInput> user = GetParam().makeUser();
    TestControl& viewer = user->Viewer();
};
INSTANTIATE_TEST_SUITE_P(Ways, NeedleInput,
                         testing::Values(InputWay{"ByCalls", &MakeCallInput},
                                         InputWay{"RealPointer", &MakePointerInput}),
                         [](const auto& row) { return row.param.name; });

// ---- creation

TEST_P(NeedleInput, CreatesAndSelectsANeedleByADoubleClickOnTheSurface) {
    const ViewFrame view = View();
    DoubleClick(PixelOf(15, 20));
    EXPECT_EQ(events.Take(), (EventList{"Created 1", "Selected 1"}));
    ASSERT_EQ(viewer->GetNumberOfNeedles(), 1);
    const Needle& needle = viewer->m_vNeedles[0];
    ExpectNear(needle.pin, {15, 20, 5}, "pin");
    ExpectNear(needle.head, {15, 20, 25}, "head");
    EXPECT_EQ(needle.headRadius, kHeadRadius);
    EXPECT_EQ(needle.pinColor, 0x505050u);
    EXPECT_TRUE(needle.selected);
    ExpectView(view);
    EXPECT_EQ(viewer->m_nInteractionMode, ModeIdle);
}

TEST_P(NeedleInput, DeselectsTheOtherNeedleByTheFirstPressOfADoubleClick) {
    AddNeedle(*viewer, 7, -40, 0);
    viewer->SelectNeedle(7);
    events.Take();
    using Kind = KV_ScenePane::MouseInput::Kind;
    events.inside = [this](const std::string& event) {
        EXPECT_TRUE(Handles(event == "Deselected 7" ? Kind::LeftDown : Kind::DoubleClick)) << event;
        const Needle* const made = FindNeedle(viewer->m_vNeedles, 8);
        EXPECT_EQ(made != nullptr, event != "Deselected 7") << event;
        EXPECT_EQ(made != nullptr && made->selected, event == "Selected 8") << event;
    };
    DoubleClick(PixelOf(15, 20));
    EXPECT_EQ(events.Take(), (EventList{"Deselected 7", "Created 8", "Selected 8"}));
}

TEST_P(NeedleInput, DeselectsTheOtherNeedleByTheDoubleClickWhenThePressDidNot) {
    AddNeedle(*viewer, 7, 15, 20);
    // On the head: its press selects the needle, and the pin of the new one is on that head.
    DoubleClick(PixelOf(15, 20));
    EXPECT_EQ(events.Take(), (EventList{"Created 7", "Selected 7", "Deselected 7", "Created 8", "Selected 8"}));
    EXPECT_NEAR(viewer->m_vNeedles[1].pin[2], 30, 0.1) << "on the top of the head, within half a pixel";
}

TEST_P(NeedleInput, ReportsAFullListAndGoesOnWithTheDoubleClick) {
    viewer->SetMaxNumberOfNeedles(1);
    viewer->SetPickMode(KV_ScenePane::PickModeObjects);
    AddNeedle(*viewer, 7, -40, 0);
    viewer->SelectNeedle(7);
    events.Take();
    DoubleClick(PixelOf(15, 20));
    EXPECT_EQ(events.Take(), (EventList{"Deselected 7", "Created -1", "Picked"}));
    EXPECT_EQ(IdsOf(*viewer), Ids{7});
}

TEST_P(NeedleInput, CreatesNothingOnTheBackground) {
    viewer->SetMaxNumberOfNeedles(0);
    const ViewFrame view = View();
    DoubleClick(kBackgroundAt);
    EXPECT_EQ(events.Take(), EventList{}) << "not even that the list is full";
    ExpectView(view);
    viewer->SetMaxNumberOfNeedles(8);
    DoubleClick(PixelOf(100, -80));
    EXPECT_EQ(events.Take(), EventList{});
}

TEST_P(NeedleInput, GivesTheFirstFreeIdAfterADeletion) {
    for (const std::int32_t id : {1, 2, 3}) AddNeedle(*viewer, id, -60, 0);
    viewer->DeleteNeedle(2);
    events.Take();
    DoubleClick(PixelOf(15, 20));
    DoubleClick(PixelOf(50, -30));
    EXPECT_EQ(IdsOf(*viewer), (Ids{1, 3, 2, 4}));
}

TEST_P(NeedleInput, CreatesWithFlippedButtonsToo) {
    viewer->FlipMouseButtons(1);
    viewer->SetPickMode(KV_ScenePane::PickModeObjects);
    DoubleClick(PixelOf(15, 20));
    EXPECT_EQ(events.Take(), (EventList{"Created 1", "Selected 1"})) << "the pick is switched off";
}

TEST_P(NeedleInput, DoesNothingWhilePickingIsOff) {
    AddNeedle(*viewer, 7, 15, 20);
    viewer->SetNeedlePickingMode(0);
    viewer->SetPickMode(KV_ScenePane::PickModePoints);  // a double click moves no view
    events.Take();
    DoubleClick(PixelOf(-15, 20));
    Click(PixelOf(15, 20));
    user->Type(KV_ScenePane::kKeyDelete);
    user->Type(KV_ScenePane::kKeyEscape);
    EXPECT_EQ(events.Take(), EventList{"Picked"});
    EXPECT_EQ(IdsOf(*viewer), Ids{7});
}

// ---- selection

TEST_P(NeedleInput, SelectsTheNeedleWhoseHeadIsClicked) {
    AddNeedle(*viewer, 7, -40, 0);
    AddNeedle(*viewer, 9, 40, 10);
    events.Take();
    Click(PixelOf(-40, 0));
    EXPECT_EQ(events.Take(), EventList{"Selected 7"});
    Click(PixelOf(40, 10));
    EXPECT_EQ(events.Take(), (EventList{"Deselected 7", "Selected 9"}));
    Click(PixelOf(43, 11));
    EXPECT_EQ(events.Take(), EventList{"Selected 9"}) << "at another point of the same head";
    Click(PixelOf(0, 0));
    EXPECT_EQ(events.Take(), EventList{"Deselected 9"}) << "on the surface";
    Click(PixelOf(-40, 0));
    events.Take();
    Click(kBackgroundAt);
    EXPECT_EQ(events.Take(), EventList{"Deselected 7"});
    Click(kBackgroundAt);
    EXPECT_EQ(events.Take(), EventList{});
}

TEST_P(NeedleInput, SelectsTheFirstInTheListOfHeadsAtOnePlace) {
    AddNeedle(*viewer, 9, 10, 10);
    AddNeedle(*viewer, 7, 10, 10);
    events.Take();
    Click(PixelOf(10, 10));
    EXPECT_EQ(events.Take(), EventList{"Selected 9"});
}

TEST_P(NeedleInput, SelectsAnInvisibleHeadByTheSurfaceAtIt) {
    viewer->SetNeedleDrawingMode(0);
    AddNeedle(*viewer, 7, -40, 0, 8);  // 3 units above the surface, less than its radius
    AddNeedle(*viewer, 9, 40, 10, 25);
    events.Take();
    Click(PixelOf(-40, 0));
    EXPECT_EQ(events.Take(), EventList{"Selected 7"});
    Click(PixelOf(40, 10));
    EXPECT_EQ(events.Take(), EventList{"Deselected 7"}) << "the surface is 20 units below the head";
}

TEST_P(NeedleInput, SelectsAHeadAfterTheMouseHasMovedOverAVisibleClipPlane) {
    AddNeedle(*viewer, 7, -40, 0);
    viewer->m_clipPlane.SetCenter({0, 0, -50});
    viewer->m_bClipPlaneVisible = 1;
    viewer->PerformRefresh();
    events.Take();
    for (const Pixel pixel : {PixelOf(0, 0), PixelOf(-30, 0), PixelOf(-40, 0)}) MoveTo(pixel);
    user->Press(L);
    EXPECT_EQ(events.Take(), EventList{"Selected 7"});
    user->Release(L);
    Click(PixelOf(30, 30));
    EXPECT_EQ(events.Take(), EventList{"Deselected 7"}) << "the depth is that of the surface";
}

TEST_P(NeedleInput, ShowsASelectionAtTheLatestAfterTheRelease) {
    AddNeedle(*viewer, 7, -40, 0);
    MoveTo(PixelOf(-40, 0));
    user->Press(L);
    viewer.window->Forget();
    user->Release(L);
    EXPECT_GE(viewer.window->refreshes, 1);
}

// ---- drag

TEST_P(NeedleInput, DragsTheHeadParallelToTheScreenAndNothingElse) {
    AddNeedle(*viewer, 7, -10, 20);
    events.Take();
    const ViewFrame view = View();
    MoveTo(PixelOf(-10, 20));
    user->Press(L);
    EXPECT_EQ(events.Take(), EventList{"Selected 7"});
    for (const auto& [x, y] : {std::pair{0.0f, 25.0f}, {10.0f, 30.0f}, {90.0f, -75.0f}, {12.0f, -8.5f}}) {
        viewer.window->Forget();
        MoveTo(PixelOf(x, y));
        ExpectNear(viewer->m_vNeedles[0].head, {x, y, 25}, "head");
        EXPECT_EQ(viewer->m_vNeedles[0].pin, (Float3{-10, 20, 5}));
        EXPECT_GE(viewer.window->refreshes, 1);
    }
    EXPECT_EQ(viewer->m_nLastMouseX, PixelOf(-10, 20).x) << "the point of the press stays the last one";
    user->Release(L);
    MoveTo(PixelOf(40, 40));
    ExpectNear(viewer->m_vNeedles[0].head, {12, -8.5f, 25}, "head after the release");
    EXPECT_EQ(events.Take(), EventList{});
    ExpectView(view);
    float x = 0, y = 0, z = 0;
    viewer->GetNeedle(7, &x, &y, &z, &x, &y, &z);
    EXPECT_NEAR(x, 12, 1e-3) << "the host reads it when it needs it";
}

TEST_P(NeedleInput, DragsANeedleThatTheSameDoubleClickHasMade) {
    MoveTo(PixelOf(15, 20));
    user->DoubleClick();
    user->Press(L);  // on the new head
    MoveTo(PixelOf(30, 20));
    user->Release(L);
    ExpectNear(viewer->m_vNeedles[0].pin, {15, 20, 5}, "pin");
    ExpectNear(viewer->m_vNeedles[0].head, {30, 20, 25}, "head");
}

TEST_P(NeedleInput, DragsTheViewWhenNoHeadWasPressed) {
    AddNeedle(*viewer, 7, -10, 20);
    const ViewFrame view = View();
    MoveTo(PixelOf(40, 0));
    user->Press(L);
    MoveTo(PixelOf(50, 5));
    user->Release(L);
    EXPECT_NE(View().wx, view.wx);
    EXPECT_EQ(viewer->m_vNeedles[0].head, (Float3{-10, 20, 25}));
}

TEST_P(NeedleInput, DragsNothingWhileTheMouseIsNotAllowed) {
    AddNeedle(*viewer, 7, -10, 20);
    viewer->AllowMouseInteraction(0);
    MoveTo(PixelOf(-10, 20));
    user->Press(L);
    EXPECT_EQ(SelectedIdsOf(*viewer), Ids{7}) << "presses act all the same";
    MoveTo(PixelOf(10, 20));
    user->Release(L);
    EXPECT_EQ(viewer->m_vNeedles[0].head, (Float3{-10, 20, 25}));
}

TEST_P(NeedleInput, KeepsTheViewAndAHeadThatIsNowhereWhileItIsHeld) {
    AddNeedle(*viewer, 7, -10, 20);
    const ViewFrame view = View();
    const float kNan = std::numeric_limits<float>::quiet_NaN(), kInf = std::numeric_limits<float>::infinity();
    for (const Float3& head : {Float3{kNan, 0, 0}, Float3{0, kInf, 0}, Float3{0, 0, -kInf}, Float3{3e9f, 0, 0},
                               Float3{0, -3e38f, 0}, Float3{0, 0, kNan}}) {
        MoveTo(PixelOf(30, 0));
        user->Press(L);
        viewer->m_vNeedles[0].head = head;
        viewer->SelectNeedle(7);
        MoveTo(PixelOf(35, 5));
        user->Release(L);
        for (std::size_t i = 0; i < 3; ++i)
            EXPECT_TRUE(viewer->m_vNeedles[0].head[i] == head[i] || std::isnan(head[i])) << head[i];
        ExpectView(view);
        EXPECT_EQ(GlErrorOf(*viewer), GLenum{GL_NO_ERROR});
    }
}

// ---- keys

TEST_P(NeedleInput, DeselectsByEscapeAndDeletesByDelete) {
    AddNeedle(*viewer, 7, -40, 0);
    AddNeedle(*viewer, 9, 40, 10);
    Click(PixelOf(-40, 0));
    events.Take();
    viewer.window->Forget();
    user->Type(KV_ScenePane::kKeyEscape);
    EXPECT_EQ(events.Take(), EventList{"Deselected 7"});
    EXPECT_EQ(viewer.window->refreshes, 1);
    user->Type(KV_ScenePane::kKeyDelete);
    EXPECT_EQ(events.Take(), EventList{}) << "none is selected";
    Click(PixelOf(40, 10));
    events.Take();
    std::vector<int> refreshes;
    events.inside = [&](const std::string&) { refreshes.push_back(viewer.window->refreshes); };
    viewer.window->Forget();
    user->Type(KV_ScenePane::kKeyDelete);
    EXPECT_EQ(events.Take(), (EventList{"Deselected 9", "Deleted 9"}));
    EXPECT_EQ(refreshes, (std::vector{0, 0}));
    EXPECT_EQ(viewer.window->refreshes, 1) << "after both events";
    EXPECT_EQ(IdsOf(*viewer), Ids{7});
}

TEST_P(NeedleInput, DeletesTheFirstOfSeveralSelectedNeedles) {
    for (const std::int32_t id : {5, 3, 4}) AddNeedle(*viewer, id, -40, 0);
    for (Needle& needle : viewer->m_vNeedles) needle.selected = needle.id != 5;
    events.Take();
    user->Type(KV_ScenePane::kKeyDelete);
    EXPECT_EQ(events.Take(), (EventList{"Deselected 3", "Deleted 3"}));
    EXPECT_EQ(SelectedIdsOf(*viewer), Ids{4});
}

// ---- the delayed scheme

TEST_P(NeedleInput, SelectsInTheDelayedSchemeWhenThePressIsDispatched) {
    viewer->SetIGDRotation(1);
    AddNeedle(*viewer, 7, -40, 0);
    events.Take();
    Click(PixelOf(-40, 0));
    EXPECT_EQ(events.Take(), EventList{});
    EndDispatchDelay(viewer);
    EXPECT_EQ(events.Take(), EventList{"Selected 7"});
}

// The press of a double click is dispatched after it there: it finds the head of the new needle when that is drawn.
TEST_P(NeedleInput, CreatesInTheDelayedSchemeBeforeThePressIsDispatched) {
    viewer->SetIGDRotation(1);
    AddNeedle(*viewer, 7, -40, 0);
    viewer->SelectNeedle(7);
    events.Take();
    DoubleClick(PixelOf(15, 20));
    EXPECT_EQ(events.Take(), (EventList{"Deselected 7", "Created 8", "Selected 8"}));
    EndDispatchDelay(viewer);
    EXPECT_EQ(events.Take(), EventList{"Selected 8"});
    viewer->SetNeedleDrawingMode(0);
    DoubleClick(PixelOf(50, 20));
    EXPECT_EQ(events.Take(), (EventList{"Deselected 8", "Created 9", "Selected 9"}));
    EndDispatchDelay(viewer);
    EXPECT_EQ(events.Take(), EventList{"Deselected 9"});
}

}  // namespace
