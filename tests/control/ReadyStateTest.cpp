// The ready state and its event: with the window, without it, and over the recreations of the context.
#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include "base/DebugOutput.h"
#include "control/ScenePaneHandle.h"
#include "platform/HostWindow.h"
#include "support/ControlFixture.h"
#include "support/Wait.h"
#include "support/XvfbServer.h"

namespace {

using KV_ScenePane::ScenePane;
using KV_ScenePane::WindowRequest;
using Kind = WindowRequest::Kind;

constexpr std::int32_t kComplete = 4, kUninitialised = 0;

/// Records the events and the ready state in each of them, and runs a function in ReadyStateChange.
class StateEvents final : public KV_ScenePane::_DKV_ScenePaneEvents {
public:
    ScenePane* pane = nullptr;
    std::vector<std::string> fired;
    std::function<void()> inside = [] {};

    void ReadyStateChange() override {
        fired.push_back("ready " + std::to_string(pane->Methods().GetReadyState()));
        EXPECT_EQ(pane->HasWindow(), pane->Methods().GetReadyState() == kComplete);
        inside();
    }
    void AlignmentDone() override {
        fired.push_back("aligned " + std::to_string(pane->Methods().GetReadyState()));
        insideAlignmentDone();
    }
    std::function<void()> insideAlignmentDone = [] {};
};
using Fired = std::vector<std::string>;

class ReadyState : public testing::TestWithParam<Kind> {
protected:
    ReadyState() {
        if (GetParam() != Kind::OffScreen) {
            XvfbServer::Shared();
            host.emplace();
        }
        WindowRequest request;
        request.kind = GetParam();
        request.parent = host ? host->Id() : 0;
        request.width = 60, request.height = 40;
        request.showMessage = [this](const std::string&) { insideMessage(); };
        std::string reason;
        pane = CreateScenePane(request, &reason);
        if (pane == nullptr) throw std::runtime_error(reason);
        events.pane = pane.get();
        pane->Connect(&events);
    }
    ~ReadyState() override { KV_ScenePane::SetDebugOutputSink({}); }

    std::int32_t State() { return pane->Methods().GetReadyState(); }
    void Recreate(std::int32_t major = 3) { pane->Methods().RecreateOpenglContext(major, 3, 0); }
    void StartAlignment() {
        const float vertices[] = {0, 0, 0, 1, 0, 0, 0, 1, 0};
        const std::int32_t triangle[] = {0, 1, 2};
        pane->Methods().ImportMeshFromMemory(3, 1, vertices, triangle);
        pane->Methods().AddVariableObject(0);
        pane->Methods().AlignInteractive();
    }

    std::optional<HostWindow> host;
    std::function<void()> insideMessage = [] {};
    StateEvents events;
    std::unique_ptr<ScenePane> pane;
};

INSTANTIATE_TEST_SUITE_P(Windows, ReadyState, testing::Values(Kind::OffScreen, Kind::Child, Kind::TopLevel),
                         [](const auto& row) {
                             return row.param == Kind::OffScreen ? "OffScreen"
                                    : row.param == Kind::Child   ? "Child"
                                                                 : "TopLevel";
                         });

TEST_P(ReadyState, IsCompleteFromTheCreationOnWithoutAnEvent) {
    EXPECT_EQ(State(), kComplete);
    pane->ProcessEvents();
    pane->Methods().PerformRefresh();
    EXPECT_EQ(events.fired, Fired{});
}

TEST_P(ReadyState, StaysCompleteOverASuccessfulRecreation) {
    for (int i = 0; i < 3; ++i) Recreate();
    pane->ProcessEvents();
    EXPECT_EQ(State(), kComplete);
    EXPECT_EQ(events.fired, Fired{});
}

TEST_P(ReadyState, ChangesOnceWithAFailedRecreationAndOnceWithALaterSuccessfulOne) {
    Recreate(9);
    EXPECT_EQ(events.fired, Fired{"ready 0"});
    EXPECT_EQ(State(), kUninitialised);
    Recreate(9);
    pane->ProcessEvents();
    EXPECT_EQ(events.fired, Fired{"ready 0"}) << "there was no further change";
    Recreate();
    EXPECT_EQ(events.fired, (Fired{"ready 0", "ready 4"}));
    EXPECT_EQ(State(), kComplete);
    pane->ProcessEvents();
    EXPECT_EQ(events.fired.size(), 2u);
}

TEST_P(ReadyState, ChangesAfterTheAlignmentsHaveEnded) {
    StartAlignment();
    Recreate(9);
    EXPECT_EQ(events.fired, (Fired{"aligned 4", "ready 0"}));
}

TEST_P(ReadyState, ChangesAlsoWhenTheHookOfTheMessageThrows) {
    insideMessage = [] { throw std::runtime_error("hook"); };
    EXPECT_THROW(Recreate(9), std::runtime_error);
    EXPECT_EQ(events.fired, Fired{"ready 0"});
    EXPECT_EQ(State(), kUninitialised);
}

TEST_P(ReadyState, IsReportedOnceThoughTheHandlerThrows) {
    events.inside = [] { throw std::runtime_error("handler"); };
    EXPECT_THROW(Recreate(9), std::runtime_error);
    pane->ProcessEvents();
    EXPECT_EQ(events.fired, Fired{"ready 0"});
    EXPECT_THROW(Recreate(), std::runtime_error);
    EXPECT_EQ(events.fired, (Fired{"ready 0", "ready 4"}));
    EXPECT_TRUE(pane->HasWindow());
}

TEST_P(ReadyState, MayBeRepairedByItsHandler) {
    events.inside = [&] {
        if (State() == kUninitialised) Recreate();
    };
    Recreate(9);
    EXPECT_EQ(events.fired, (Fired{"ready 0", "ready 4"}));
    EXPECT_EQ(State(), kComplete);
    KV_ScenePane::Picture picture;
    EXPECT_TRUE(pane->CapturePicture(&picture));
}

TEST_P(ReadyState, EndsTheAttemptsOfAHandlerThatCannotRepairIt) {
    events.inside = [&] { Recreate(9); };
    Recreate(9);
    EXPECT_EQ(events.fired, Fired{"ready 0"});
}

TEST_P(ReadyState, MayBeTheLastThingThatAViewerReports) {
    events.inside = [&] { pane.reset(); };
    Recreate(9);
    EXPECT_EQ(pane, nullptr);
    EXPECT_EQ(events.fired, Fired{"ready 0"});
}

TEST_P(ReadyState, FiresNothingAtTheEndOfTheViewer) {
    StartAlignment();
    pane.reset();
    EXPECT_EQ(events.fired, Fired{});
}

// In the middle of a recreation there is no window; a host that handles events then learns the result only.
TEST_P(ReadyState, IsNotReportedInTheMiddleOfARecreation) {
    int withoutWindow = 0;
    insideMessage = [&] {
        if (!pane->HasWindow()) ++withoutWindow;
        pane->ProcessEvents();
        Recreate();  // refused: one is running
        EXPECT_EQ(events.fired, Fired{});
    };
    events.insideAlignmentDone = [&] {
        Recreate();
        pane->ProcessEvents();
    };
    StartAlignment();
    Recreate();
    EXPECT_EQ(events.fired, Fired{"aligned 4"});
    events.fired.clear();
    pane->Methods().RecreateOpenglContext(3, 3, 999);  // refused before there is a window
    EXPECT_EQ(withoutWindow, 1);
    EXPECT_EQ(events.fired, Fired{"ready 0"});
}

TEST_P(ReadyState, IsWhatTheHostThatConnectsLaterReads) {
    pane->Connect(nullptr);
    Recreate(9);
    pane->Connect(&events);
    pane->ProcessEvents();
    EXPECT_EQ(events.fired, Fired{}) << "a change before the connection";
    EXPECT_EQ(State(), kUninitialised);
    Recreate();
    EXPECT_EQ(events.fired, Fired{"ready 4"});
}

// ---- windows that the window system destroys

TEST(ReadyStateOfAnX11Child, ChangesWhenTheHostDestroysItsWindow) {
    XvfbServer::Shared();
    HostWindow host;
    WindowRequest request;
    request.kind = Kind::Child;
    request.parent = host.Id();
    request.width = 60, request.height = 40;
    const auto pane = CreateScenePane(request, nullptr);
    ASSERT_NE(pane, nullptr);
    StateEvents events;
    events.pane = pane.get();
    pane->Connect(&events);
    ASSERT_TRUE(HandleAllEvents(host, *pane));
    EXPECT_EQ(events.fired, Fired{});
    host.Destroy();
    EXPECT_TRUE(ProcessEventsUntil(*pane, [&] { return !events.fired.empty(); }));
    EXPECT_EQ(events.fired, Fired{"ready 0"});
    EXPECT_EQ(pane->Methods().GetReadyState(), kUninitialised);
    pane->ProcessEvents();
    pane->Methods().RecreateOpenglContext(3, 3, 0);  // fails: the parent is gone
    EXPECT_EQ(events.fired, Fired{"ready 0"});
    HostWindow next;
    EXPECT_FALSE(pane->Reparent(next.Id(), 0, 0));
    EXPECT_EQ(pane->Methods().GetReadyState(), kUninitialised);
}

// A method finds the loss first: the property says so at once, the event waits for ProcessEvents().
TEST(ReadyStateOfAnX11Child, IsReportedByProcessEventsWhenAMethodHasFoundTheLoss) {
    XvfbServer::Shared();
    HostWindow host;
    WindowRequest request;
    request.kind = Kind::Child;
    request.parent = host.Id();
    const auto pane = CreateScenePane(request, nullptr);
    ASSERT_NE(pane, nullptr);
    StateEvents events;
    events.pane = pane.get();
    pane->Connect(&events);
    ASSERT_TRUE(HandleAllEvents(host, *pane));
    host.Destroy();
    const auto loseIt = [&] {
        (void)pane->Reparent(0, 0, 0);  // refused, after the connection has read all events; none is handled
        pane->Methods().PerformRefresh();
    };
    ASSERT_TRUE(WaitUntil([&] { return pane->Methods().GetReadyState() == kUninitialised; }, loseIt));
    EXPECT_EQ(events.fired, Fired{});
    ASSERT_TRUE(BecomesReadable(*pane));
    pane->ProcessEvents();
    EXPECT_EQ(events.fired, Fired{"ready 0"});
}

TEST(ReadyStateOfAnX11Window, ChangesWhenTheUserClosesItAndWhenItIsMadeAgain) {
    XvfbServer::Shared();
    HostWindow host;
    WindowRequest request;
    request.kind = Kind::TopLevel;
    request.width = 60, request.height = 40;
    const auto pane = CreateScenePane(request, nullptr);
    ASSERT_NE(pane, nullptr);
    StateEvents events;
    events.pane = pane.get();
    pane->Connect(&events);
    host.SendDelete(pane->NativeWindow());
    EXPECT_TRUE(ProcessEventsUntil(*pane, [&] { return !events.fired.empty(); }));
    EXPECT_EQ(events.fired, Fired{"ready 0"});
    pane->Methods().RecreateOpenglContext(3, 3, 0);
    EXPECT_EQ(events.fired, (Fired{"ready 0", "ready 4"}));
    EXPECT_NE(pane->NativeWindow(), 0u);
}

// ---- without a picture, and before a window

TEST(ReadyStateWithoutAPicture, IsCompleteFromTheCreationOn) {
    WindowRequest request;
    request.kind = Kind::NoPicture;
    const auto pane = CreateScenePane(request, nullptr);
    ASSERT_NE(pane, nullptr);
    StateEvents events;
    events.pane = pane.get();
    pane->Connect(&events);
    EXPECT_EQ(pane->Methods().GetReadyState(), kComplete);
    pane->Methods().RecreateOpenglContext(9, 9, 0);
    pane->ProcessEvents();
    EXPECT_EQ(pane->Methods().GetReadyState(), kComplete);
    EXPECT_EQ(events.fired, Fired{});
}

TEST(ReadyStateOfAControl, IsUninitialisedBeforeAndAfterItsWindow) {
    WindowRequest request;
    CKV_ScenePaneCtrl control(MakePaneWindow(request));
    EventsRecorder events;
    control.Connect(&events);
    EXPECT_EQ(control.GetReadyState(), kUninitialised);
    control.ProcessEvents();
    ASSERT_TRUE(control.CreateControlWindow(nullptr));
    EXPECT_EQ(control.GetReadyState(), kComplete);
    control.m_pWindow->Destroy();
    EXPECT_EQ(control.GetReadyState(), kUninitialised);
    EXPECT_TRUE(events.events.empty());
}

TEST(ReadyStateOfAControl, IsUninitialisedWhenItsWindowWasRefused) {
    WindowRequest request;
    const CapturedDebugOutput output;
    CKV_ScenePaneCtrl control(MakePaneWindow(request));
    control.m_nGlMajorVersion = 9;
    EXPECT_FALSE(control.CreateControlWindow(nullptr));
    EXPECT_EQ(control.GetReadyState(), kUninitialised);
}

}  // namespace
