// Needles by mouse and keys: creation, selection, drag, deletion, by calls of the host and by the real pointer and
// keyboard. Half a unit per pixel, the world's origin in the window's centre, the viewer at +z, so that the pixel (x,
// y) shows ((x - 320) / 2, (240 - y) / 2). A plate at z = 5 reaches from (-80, -60) to (80, 60).
#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "control/ScenePaneHandle.h"
#include "markers/NeedleHelp.h"
#include "support/DriverTraits.h"
#include "support/GlNow.h"
#include "view/UserInput.h"

namespace {

constexpr auto L = Button::Left;
constexpr float kLength = 20, kHeadRadius = 5;

struct Pixel {
    int x, y;
};
constexpr Pixel PixelOf(float worldX, float worldY) {
    return {320 + static_cast<int>(2 * worldX), 240 - static_cast<int>(2 * worldY)};
}
constexpr Pixel kBackgroundPixel = PixelOf(100, 80);

Mesh& AddPlate(CKV_ScenePaneCtrl& control, float normalZ = 1) {
    return AddMesh(control,
                   {{.x = -80, .y = -60, .z = 5, .nz = normalZ},
                    {.x = 80, .y = -60, .z = 5, .nz = normalZ},
                    {.x = 80, .y = 60, .z = 5, .nz = normalZ},
                    {.x = -80, .y = 60, .z = 5, .nz = normalZ}},
                   {{{0, 1, 2}}, {{0, 2, 3}}});
}

void SetScene(CKV_ScenePaneCtrl& control) {
    AddPlate(control);
    control.m_fViewCenter = control.m_fRotationCenter = {};
    control.m_fZoom = 1;
    control.m_fSceneSize = 240;  // over 480 pixels
    control.SetViewMode(KV_ScenePane::ViewFromPlusZYUp);
    control.SetNeedlePickingMode(-1);
    control.SetNeedleDrawingMode(-1);
    control.SetNeedleRenderParameters(kLength, kHeadRadius, 0xFF, 1, 0x505050, 1, 0xFF0000, 0xFF00);
    control.PerformRefresh();
}

/// A needle that stands on the plate; its head is at (x, y, 25).
void AddNeedle(CKV_ScenePaneCtrl& control, std::int32_t id, float x, float y, float headZ = 25) {
    ASSERT_NE(control.CreateNeedle(id, x, y, 5, x, y, headZ), 0);
}

void ExpectNear(const Float3& found, const Float3& expected, const char* what) {
    // The depth buffer has 24 bits over 1920 units.
    for (std::size_t i = 0; i < 3; ++i) EXPECT_NEAR(found[i], expected[i], 5e-4) << what << ", component " << i;
}

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
    // On the head: its press selects the needle, and the new one stands on the head.
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
    DoubleClick(kBackgroundPixel);
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
    Click(kBackgroundPixel);
    EXPECT_EQ(events.Take(), EventList{"Deselected 7"});
    Click(kBackgroundPixel);
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

// ---- by the handlers of the viewer alone

class NeedleInputHandlers : public testing::Test {
protected:
    NeedleInputHandlers() {
        SetScene(*viewer);
        viewer->Connect(&events);
    }
    void DoubleClickAt(Pixel pixel) { viewer->OnDoubleClick(kLeft, pixel.x, pixel.y); }
    void PressAt(Pixel pixel) {
        viewer->OnLeftDown(kLeft, pixel.x, pixel.y);
        viewer->OnLeftUp(0, pixel.x, pixel.y);
    }

    OffscreenControl viewer;
    NeedleEvents events;
};

TEST_F(NeedleInputHandlers, OfADoubleClickAloneDeselectTheOtherNeedleFirst) {
    AddNeedle(*viewer, 7, -40, 0);
    viewer->SelectNeedle(7);
    events.Take();
    viewer.window->Forget();
    std::vector<int> refreshes;
    events.inside = [&](const std::string&) { refreshes.push_back(viewer.window->refreshes); };
    DoubleClickAt(PixelOf(15, 20));
    EXPECT_EQ(events.Take(), (EventList{"Deselected 7", "Created 8", "Selected 8"}));
    EXPECT_EQ(refreshes, (std::vector{0, 0, 0}));
    EXPECT_EQ(viewer.window->refreshes, 3) << "after the creation, after the pick, at the end";
}

TEST_F(NeedleInputHandlers, OfThePressBeforeADoubleClickDeselectTheOtherNeedle) {
    AddNeedle(*viewer, 7, -40, 0);
    viewer->SelectNeedle(7);
    events.Take();
    PressAt(PixelOf(15, 20));
    EXPECT_EQ(events.Take(), EventList{"Deselected 7"});
    DoubleClickAt(PixelOf(15, 20));
    EXPECT_EQ(events.Take(), (EventList{"Created 8", "Selected 8"}));
}

TEST_F(NeedleInputHandlers, PointANeedleInItsOwnDirectionWhenNoVertexFacesTheViewer) {
    viewer->m_vpMeshes.clear();
    AddPlate(*viewer, -1);
    viewer->PerformRefresh();
    DoubleClickAt(PixelOf(15, 20));
    ASSERT_EQ(viewer->GetNumberOfNeedles(), 1);
    const float along = kLength * (1440.0f - 5) / 1920;  // by the window depth of the surface
    ExpectNear(viewer->m_vNeedles[0].pin, {15, 20, 5}, "pin");
    ExpectNear(viewer->m_vNeedles[0].head, {15 + along, 20 + along, 5 + along}, "head");
}

TEST_F(NeedleInputHandlers, PointANeedleToTheViewerByAVertexOfAHiddenObject) {
    viewer->m_vpMeshes.clear();
    AddPlate(*viewer, -1);
    AddPlate(*viewer, 1).m_iVisible = 0;
    viewer->PerformRefresh();
    DoubleClickAt(PixelOf(15, 20));
    ExpectNear(viewer->m_vNeedles.at(0).head, {15, 20, 25}, "head");
}

TEST_F(NeedleInputHandlers, PointANeedleToTheViewerInAnotherView) {
    viewer->SetViewMode(KV_ScenePane::ViewObliqueZUp);
    DoubleClickAt({320, 240});
    const Needle& needle = viewer->m_vNeedles.at(0);
    for (std::size_t i = 0; i < 3; ++i)
        EXPECT_NEAR(needle.head[i] - needle.pin[i], kLength * viewer->m_fAxisZ[i], 1e-4) << i;
    EXPECT_NEAR(needle.pin[2], 5, 0.5) << "on the plate, within a pixel";
}

TEST_F(NeedleInputHandlers, UseTheContextOfTheirOwnViewer) {
    OffscreenControl other(100, 80);
    other->CenterView();
    const auto makeForeign = [&] { ASSERT_TRUE(other->MakeContextCurrent()); };
    makeForeign();
    DoubleClickAt(PixelOf(15, 20));
    ExpectNear(viewer->m_vNeedles.at(0).pin, {15, 20, 5}, "pin");
    ExpectNear(viewer->m_vNeedles.at(0).head, {15, 20, 25}, "head");
    makeForeign();
    PressAt(PixelOf(-50, 0));
    EXPECT_EQ(SelectedIdsOf(*viewer), Ids{});
    makeForeign();
    PressAt(PixelOf(15, 20));
    EXPECT_EQ(SelectedIdsOf(*viewer), Ids{1});
    makeForeign();
    viewer->OnMouseMoved(kLeft, PixelOf(-15, 10).x, PixelOf(-15, 10).y);
    ExpectNear(viewer->m_vNeedles[0].head, {-15, 10, 25}, "head");
    makeForeign();
    viewer->DeleteNeedles();
    EXPECT_TRUE(viewer->m_vNeedles.empty());
}

TEST_F(NeedleInputHandlers, ReadTheDepthOfAWindowWithSamples) {
    ASSERT_TRUE(viewer->MakeContextCurrent());
    const int samples = AvailableSamples(4);
    AddNeedle(*viewer, 7, -40, 0);
    viewer->RecreateOpenglContext(3, 3, samples);
    SetScene(*viewer);
    EXPECT_EQ(IdsOf(*viewer), Ids{7}) << "needles survive their context";
    events.Take();
    PressAt(PixelOf(-40, 0));
    DoubleClickAt(PixelOf(15, 20));
    EXPECT_EQ(events.Take(), (EventList{"Selected 7", "Deselected 7", "Created 8", "Selected 8"}));
    ExpectNear(viewer->m_vNeedles.at(1).pin, {15, 20, 5}, "pin");
    EXPECT_EQ(GlErrorOf(*viewer), GLenum{GL_NO_ERROR});
}

TEST_F(NeedleInputHandlers, IgnoreNeedlesThatAreNowhere) {
    const float kNan = std::numeric_limits<float>::quiet_NaN(), kInf = std::numeric_limits<float>::infinity();
    viewer->CreateNeedle(1, kNan, kNan, kNan, kNan, kNan, kNan);
    viewer->CreateNeedle(2, 0, 0, 0, kInf, 0, -kInf);
    viewer->CreateNeedle(3, kInf, 0, 0, 0, 3e38f, 0);
    AddNeedle(*viewer, 7, -40, 0);
    events.Take();
    PressAt(PixelOf(-40, 0));
    EXPECT_EQ(events.Take(), EventList{"Selected 7"});
    PressAt(PixelOf(0, 0));
    EXPECT_EQ(events.Take(), EventList{"Deselected 7"});
    Float3 hit{};
    EXPECT_EQ(viewer->PickObjectAt(320, 240, &hit), 0);
    viewer->CenterView();
    EXPECT_EQ(viewer->m_fViewCenter, (Float3{0, 0, 5})) << "the fit is that of the plate";
}

TEST_F(NeedleInputHandlers, DoNothingOutsideTheWindow) {
    viewer->SetMaxNumberOfNeedles(0);
    for (const Pixel pixel : {Pixel{-1, 200}, {640, 200}, {300, -1}, {300, 481}, {-30000, 30000}}) DoubleClickAt(pixel);
    EXPECT_EQ(events.Take(), EventList{});
    EXPECT_EQ(GlErrorOf(*viewer), GLenum{GL_NO_ERROR});
}

TEST(NeedleInputWithoutAPicture, DoesNothing) {
    NoPictureControl viewer;
    NeedleEvents events;
    viewer->Connect(&events);
    viewer->SetNeedlePickingMode(-1);
    viewer->CreateNeedle(1, 0, 0, 0, 0, 0, 0);
    viewer->SelectNeedle(1);
    viewer->OnMouseMoved(kLeft, 10, 10);
    viewer->OnDoubleClick(kLeft, 10, 10);
    EXPECT_EQ(events.Take(), (EventList{"Created 1", "Selected 1"}));
    viewer->OnLeftDown(kLeft, 10, 10);
    EXPECT_EQ(events.Take(), EventList{"Deselected 1"});
    EXPECT_EQ(viewer->m_vNeedles.at(0).head, (Float3{0, 0, 0}));
}

// ---- handlers of the host that call back

TEST_F(NeedleInputHandlers, MayFindTheListEmptyAfterEachEvent) {
    for (const char* const when : {"Deselected 7", "Created 8", "Selected 8"}) {
        for (const bool clears : {false, true}) {
            SCOPED_TRACE(testing::Message() << when << ", clears data " << clears);
            events.inside = {};
            viewer->DeleteNeedles();
            viewer->m_vpMeshes.clear();
            SetScene(*viewer);
            AddNeedle(*viewer, 7, -40, 0);
            viewer->SelectNeedle(7);
            events.Take();
            events.inside = [&](const std::string& event) {
                if (event != when) return;
                if (clears) viewer->ClearData();
                viewer->DeleteNeedles();
            };
            DoubleClickAt(PixelOf(15, 20));
            EXPECT_EQ(viewer->GetNumberOfNeedles(), 0);
            EXPECT_EQ(std::ranges::count(events.list, "Deleted 8"), 1);
            const auto deleted = std::ranges::find(events.list, "Deleted 8");
            EXPECT_EQ(std::ranges::count(deleted, events.list.end(), "Selected 8"), 0) << "it was gone";
        }
    }
}

TEST_F(NeedleInputHandlers, MayFindAnotherSelectionAfterAnEvent) {
    AddNeedle(*viewer, 7, -40, 0);
    AddNeedle(*viewer, 9, 40, 10);
    events.Take();
    events.inside = [&](const std::string& event) {
        if (event == "Created 10") viewer->SelectNeedle(7);
    };
    viewer->m_vNeedles[0].id = 7;
    DoubleClickAt(PixelOf(0, -20));
    EXPECT_EQ(IdsOf(*viewer), (Ids{7, 9, 8}));
    events.inside = [&](const std::string& event) {
        if (event == "Created 10") viewer->SelectNeedle(7);
    };
    DoubleClickAt(PixelOf(0, 20));
    EXPECT_EQ(SelectedIdsOf(*viewer), Ids{10}) << "the needle of the double click alone";
}

TEST(NeedleInputThatDestroysTheViewer, EndsWithTheEvent) {
    for (const std::size_t events : {1u, 2u, 3u}) {
        for (const bool isPress : {false, true}) {
            KV_ScenePane::WindowRequest request;
            request.kind = KV_ScenePane::WindowRequest::Kind::OffScreen;
            request.width = 640, request.height = 480;
            auto viewer = KV_ScenePane::CreateScenePane(request, nullptr);
            ASSERT_NE(viewer, nullptr);
            CKV_ScenePaneCtrl& control = ControlOf(*viewer);
            SetScene(control);
            AddNeedle(control, 7, -40, 0);
            AddNeedle(control, 9, 40, 10);
            control.SelectNeedle(7);
            NeedleEvents host;
            host.inside = [&](const std::string&) {
                if (host.list.size() == events) viewer.reset();
            };
            viewer->Connect(&host);
            using Kind = KV_ScenePane::MouseInput::Kind;
            const Pixel pixel = isPress ? PixelOf(40, 10) : PixelOf(15, 20);
            KV_ScenePane::ScenePane& handle = *viewer;
            handle.SendMouse({.kind = isPress ? Kind::LeftDown : Kind::DoubleClick,
                              .flags = KV_ScenePane::kMouseLeft,
                              .x = pixel.x,
                              .y = pixel.y});
            const std::size_t most = isPress ? 2 : 3;
            EXPECT_EQ(host.list.size(), std::min(events, most));
            EXPECT_EQ(viewer == nullptr, events <= most);
        }
    }
}

}  // namespace
