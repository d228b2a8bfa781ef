// A component library that fails during the placement of the clip plane: what the caller gets, and that the viewer goes
// on working. By methods, by the mouse, by the delayed input scheme, off-screen and in a window of an X server.
#include <gtest/gtest.h>

#include <memory>
#include <stdexcept>
#include <thread>

#include "clip/ClipScript.h"
#include "control/AutomationTable.h"
#include "view/UserInput.h"

namespace {

using Kind = KV_ScenePane::MouseInput::Kind;

constexpr const char* kText = "an exception occurred";

/// Runs the action; the text of its exception.
template <class Action>
std::string ThrownBy(const Action& action) {
    try {
        action();
    } catch (const std::runtime_error& error) {
        return error.what();
    }
    return "nothing";
}

/// What a failed placement must leave as it was.
struct Kept {
    std::array<double, 16> matrix;
    bool found;
    float height;
    KV_ScenePane::ClipHeightKind kind;
    bool operator==(const Kept&) const = default;
};
Kept KeptOf(const CKV_ScenePaneCtrl& control) {
    return {control.m_clipPlane.m_dMatrix, control.m_clipHeight.found, control.m_clipHeight.height,
            control.m_clipHeight.kind};
}

/// A viewer with an object, whose library fails at the first object.
void Prepare(TestControl& viewer, ScriptedLibrary& library) {
    AddMesh(*viewer, {At(0, 0, 0), At(10, 0, 0), At(10, 20, 1)}, {{{0, 1, 2}}});
    viewer->CenterView();
    viewer->m_clipPlane.SetNormal({1, 2, 3});
    viewer->m_clipPlane.SetCenter({4, 5, 6});
    viewer->m_clipHeight = {.found = true, .height = 8, .kind = KV_ScenePane::HeightCurvedSpot};
    viewer->m_bClipPlaneVisible = viewer->m_bClipPlaneActive = 1;
    library.answers["histogram.initialize"] = -2;
    library.mean = 7;
    viewer.window->Forget();
}

bool OtherThreadsCanDraw() {
    bool locked = false;
    std::thread([&] {
        locked = g_drawLock->try_lock();
        if (locked) g_drawLock->unlock();
    }).join();
    return locked;
}

/// Nothing is left of the input that failed.
void ExpectIdle(TestControl& viewer) {
    EXPECT_EQ(viewer->m_nInteractionMode, ModeIdle);
    EXPECT_FALSE(viewer.window->HasCapture());
    EXPECT_EQ(viewer->m_bRollRotation, 0);
    EXPECT_EQ(viewer->m_bLassoCursor, 0);
    EXPECT_FALSE(viewer->m_mouseDispatch.pending);
    EXPECT_EQ(viewer.window->waitCursorsBegun, viewer.window->waitCursorsEnded);
    EXPECT_GT(viewer.window->waitCursorsBegun, 0) << "the placement was not reached";
    EXPECT_EQ(viewer->m_bInDraw, 0);
    EXPECT_TRUE(OtherThreadsCanDraw());
}

/// The viewer paints, and the same placement succeeds with a library that works.
void ExpectWorks(TestControl& viewer, ScriptedLibrary& library) {
    const int swaps = viewer.window->swaps;
    viewer->RefreshControl();
    EXPECT_EQ(viewer.window->swaps, swaps + 1);
    library.answers.clear();
    viewer->PlaceClipPlaneAtData();
    EXPECT_EQ(viewer->m_clipHeight.height, 7.0f);
    EXPECT_EQ(viewer->m_clipPlane.GetCenter(), (Double3{5, 10, 7}));
}

// ---- methods

TEST(FailedPlacement, LeavesPlaneHeightAndCursorAsTheyWere) {
    for (const char* operation : {"histogram.initialize", "histogram.binWidth", "histogram.binCenters",
                                  "histogram.binValues", "histogram.mean"}) {
        ScriptedLibrary library;
        NoPictureControl viewer;
        Prepare(viewer, library);
        library.answers.clear();
        library.answers[operation] = -2;
        const Kept before = KeptOf(*viewer);
        EXPECT_EQ(ThrownBy([&] { viewer->PlaceClipPlaneAtData(); }), kText) << operation;
        EXPECT_EQ(KeptOf(*viewer), before) << operation;
        EXPECT_EQ(viewer.window->waitCursorsBegun, 1);
        EXPECT_EQ(viewer.window->waitCursorsEnded, 1);
        EXPECT_EQ(library.Alive(), 0);
    }
}

TEST(FailedPlacement, WithoutAStartedRegistryNamesTheObject) {
    NoPictureControl viewer;  // without a library
    AddMesh(*viewer, {At(0, 0, 0), At(10, 0, 0), At(10, 20, 1)}, {{{0, 1, 2}}});
    EXPECT_EQ(ThrownBy([&] { viewer->SetClipPlaneEnabled(1); }),
              "the component library gives no object {9D7D1BCB-F55C-4D00-9793-96553FE8F32E}: is the registry started "
              "(InitializeKVReg)?");
    EXPECT_EQ(viewer.window->waitCursorsEnded, 1);
}

TEST(FailedPlacement, ByAMethodLeavesClippingOnWithThePlaneAsItWas) {
    ScriptedLibrary library;
    OffscreenControl viewer;
    Prepare(viewer, library);
    viewer->m_bClipPlaneVisible = viewer->m_bClipPlaneActive = 0;
    const Kept before = KeptOf(*viewer);
    EXPECT_EQ(ThrownBy([&] { viewer->SetClipPlaneEnabled(1); }), kText);
    EXPECT_EQ(viewer->m_bClipPlaneVisible, 1);
    EXPECT_EQ(viewer->m_bClipPlaneActive, 1);
    EXPECT_EQ(KeptOf(*viewer), before);
    ExpectIdle(viewer);
    ExpectWorks(viewer, library);
}

TEST(FailedPlacement, PassesThroughTheCallOfAMethodById) {
    ScriptedLibrary library;
    OffscreenControl viewer;
    Prepare(viewer, library);
    std::int32_t id = -1;
    for (const AutomationMethod& method : AutomationMethods())
        if (method.name == "SetClipPlaneEnabled") id = method.id;
    const AutomationValue on[] = {std::int32_t{1}};
    const Kept before = KeptOf(*viewer);
    EXPECT_EQ(ThrownBy([&] { InvokeMethod(*viewer, id, on, nullptr); }), kText);
    EXPECT_EQ(KeptOf(*viewer), before);
    ExpectIdle(viewer);
    ExpectWorks(viewer, library);
}

// The handle of the host shares the viewer with each call: the exception passes it, too.
TEST(FailedPlacement, PassesThroughTheHandleOfTheHost) {
    ScriptedLibrary library;
    library.answers["histogram.initialize"] = -2;
    KV_ScenePane::WindowRequest request;
    request.kind = KV_ScenePane::WindowRequest::Kind::OffScreen;
    request.width = request.height = 64;
    const auto pane = KV_ScenePane::CreateScenePane(request, nullptr);
    ASSERT_NE(pane, nullptr);
    KV_ScenePane::MeshBuffers buffers(false);
    buffers.m_vVertices = {At(0, 0, 0), At(10, 0, 0), At(10, 20, 1)};
    buffers.m_vTriangles = {{{0, 1, 2}}};
    pane->Methods().ImportMeshedMeasurement(&buffers, nullptr, 0);
    ASSERT_EQ(pane->Methods().GetNumObjects(), 1);
    EXPECT_EQ(ThrownBy([&] { pane->Methods().SetClipPlaneEnabled(1); }), kText);
    EXPECT_FALSE(pane->GetClipHeight().found);
    EXPECT_EQ(ThrownBy([&] { pane->SendMouse({.kind = Kind::DoubleClick, .flags = kLeft | kCtrl, .x = 1, .y = 1}); }),
              kText);
    library.answers.clear();
    library.mean = 7;
    pane->Methods().SetClipPlaneEnabled(1);
    EXPECT_TRUE(pane->GetClipHeight().found);
    EXPECT_EQ(pane->GetClipHeight().height, 7.0f);
}

// ---- the mouse

enum class Way { Calls, Pointer };
void PrintTo(Way way, std::ostream* out) { *out << (way == Way::Calls ? "Calls" : "Pointer"); }

/// A user at an off-screen viewer, and one at a window of an X server.
class FailedPlacementByMouse : public testing::TestWithParam<Way> {
protected:
    FailedPlacementByMouse() : user(GetParam() == Way::Calls ? MakeCallInput() : MakePointerInput()) {
        Prepare(Viewer(), library);
        user->MoveTo(20, 20);  // beside the object and the handles
        Viewer().window->Forget();
        before = KeptOf(*Viewer());
    }
    TestControl& Viewer() { return user->Viewer(); }
    /// The rest of a double click after the call that failed.
    void FinishDoubleClick() {
        if (GetParam() == Way::Calls) return user->Release(Button::Left);
        const auto& heard = Viewer().window->mouseHeard;
        PumpUntil(*Viewer(), "the rest of the double click", [&] {
            return heard.size() >= 2 && heard.back().kind == Kind::LeftUp &&
                   heard[heard.size() - 2].kind == Kind::DoubleClick;
        });
    }

    ScriptedLibrary library;
    std::unique_ptr<UserInput> user;
    Kept before{};
};
INSTANTIATE_TEST_SUITE_P(Both, FailedPlacementByMouse, testing::Values(Way::Calls, Way::Pointer),
                         testing::PrintToStringParamName());

TEST_P(FailedPlacementByMouse, OfADoubleClickWithCtrlReachesTheHost) {
    user->HoldCtrl(true);
    EXPECT_EQ(ThrownBy([&] { user->DoubleClick(); }), kText);
    FinishDoubleClick();
    EXPECT_EQ(KeptOf(*Viewer()), before);
    user->HoldCtrl(false);
    ExpectIdle(Viewer());
    ExpectWorks(Viewer(), library);
}

// The press waits in the dispatcher; its placement fails in the message of the timer.
TEST_P(FailedPlacementByMouse, OfAMiddleClickWithCtrlInTheDelayedSchemeReachesTheHost) {
    Viewer()->SetIGDRotation(1);
    user->HoldCtrl(true);
    user->Press(Button::Middle);
    user->Release(Button::Middle);
    EXPECT_TRUE(Viewer()->m_mouseDispatch.pending);
    EXPECT_EQ(ThrownBy([&] { EndDispatchDelay(Viewer()); }), kText);
    EXPECT_EQ(KeptOf(*Viewer()), before);
    EXPECT_EQ(Viewer()->m_mouseDispatch.flags, 0u);
    EXPECT_FALSE(Viewer()->m_mouseDispatch.releasePending);
    user->HoldCtrl(false);
    ExpectIdle(Viewer());

    // The next press is a new one.
    user->Press(Button::Right);
    EndDispatchDelay(Viewer());
    EXPECT_EQ(Viewer()->m_nInteractionMode, ModeRotate);
    user->Release(Button::Right);
    ExpectIdle(Viewer());
    ExpectWorks(Viewer(), library);
}

TEST_P(FailedPlacementByMouse, OfADoubleClickInTheDelayedSchemeLeavesThePendingPress) {
    Viewer()->SetIGDRotation(1);
    user->HoldCtrl(true);
    EXPECT_EQ(ThrownBy([&] { user->DoubleClick(); }), kText);
    FinishDoubleClick();
    EXPECT_TRUE(Viewer()->m_mouseDispatch.pending) << "the first press of the double click";
    EndDispatchDelay(Viewer());
    user->HoldCtrl(false);
    ExpectIdle(Viewer());
    EXPECT_EQ(KeptOf(*Viewer()), before);
    ExpectWorks(Viewer(), library);
}

// A repaint that was requested before the failure is painted by the next call of the host.
TEST_P(FailedPlacementByMouse, KeepsTheRequestedRepaint) {
    Viewer()->SetIGDRotation(1);
    user->HoldCtrl(true);
    user->Press(Button::Middle);
    PumpUntil(*Viewer(), "the frames so far", [&] { return !Viewer().window->IsPaintPending(); });
    Viewer()->InvalidateControl(true);
    const int swaps = Viewer().window->swaps;
    Viewer().window->PostPrivateMessage(kTimerMessage);
    EXPECT_EQ(ThrownBy([&] { Viewer()->ProcessEvents(); }), kText);
    EXPECT_EQ(Viewer().window->swaps, swaps);
    Viewer()->ProcessEvents();
    EXPECT_EQ(Viewer().window->swaps, swaps + 1);
    user->Release(Button::Middle);
    user->HoldCtrl(false);
    ExpectIdle(Viewer());
}

// ---- the same input with a library that works

class PlacementByMouse : public FailedPlacementByMouse {
protected:
    PlacementByMouse() { library.answers.clear(); }
};
INSTANTIATE_TEST_SUITE_P(Both, PlacementByMouse, testing::Values(Way::Calls, Way::Pointer),
                         testing::PrintToStringParamName());

TEST_P(PlacementByMouse, OfADoubleClickWithCtrlPlacesThePlaneAndRepaints) {
    const Float3 center = Viewer()->m_fViewCenter;
    Viewer()->m_fViewCenter = {3, 3, 3};
    user->HoldCtrl(true);
    user->DoubleClick();
    EXPECT_EQ(Viewer()->m_clipPlane.GetCenter(), (Double3{5, 10, 7}));
    EXPECT_EQ(Viewer()->m_fViewCenter, (Float3{3, 3, 3})) << "the view is not fitted";
    EXPECT_NE(center, (Float3{3, 3, 3}));
    EXPECT_EQ(Viewer().window->waitCursorsBegun, 1);
    EXPECT_GE(Viewer().window->swaps, 1);
    user->HoldCtrl(false);
    ExpectIdle(Viewer());
}

TEST_P(PlacementByMouse, NeedsCtrlAndAPlaneThatIsShown) {
    user->DoubleClick();
    EXPECT_EQ(KeptOf(*Viewer()).height, 8.0f);
    Viewer()->m_bClipPlaneVisible = 0;
    user->HoldCtrl(true);
    user->DoubleClick();
    user->HoldCtrl(false);
    EXPECT_EQ(KeptOf(*Viewer()).height, 8.0f);
    EXPECT_EQ(Viewer().window->waitCursorsBegun, 0);
}

}  // namespace
