// A host that uses EGL itself and ends its use: eglTerminate() ends the display also for the viewers of the process.
#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <string>

#include "KV_ScenePane/ScenePane.h"
#include "platform/EglDisplay.h"
#include "support/Wait.h"

// Last: it includes Xlib, which defines common words.
#include <EGL/egl.h>

namespace {

using KV_ScenePane::ScenePane;
using KV_ScenePane::WindowRequest;

std::unique_ptr<ScenePane> Open() {
    WindowRequest request;
    request.width = 60, request.height = 40;
    return CreateScenePane(request, nullptr);
}

void TerminateAsHost() {
    const EglDisplay display = SharedEglDisplay(WindowRequest::kAnyGpu, {3, 3}, nullptr);
    ASSERT_EQ(eglTerminate(display.handle), static_cast<EGLBoolean>(EGL_TRUE));
}

void ImportTriangle(ScenePane& pane) {
    const float corners[] = {0, 0, 0, 100, 10, 0, 30, 90, 0};
    const std::int32_t triangle[] = {0, 1, 2};
    pane.Methods().ImportMeshFromMemory(3, 1, corners, triangle);
    pane.Methods().CenterView();
}

/// Whether a frame shows something before the background.
bool ShowsSomething(ScenePane& pane) {
    KV_ScenePane::Picture picture;
    if (!pane.CapturePicture(&picture)) return false;
    return std::any_of(picture.pixels.begin(), picture.pixels.end(),
                       [&](std::uint32_t pixel) { return pixel != picture.pixels.front(); });
}

TEST(TerminatedDisplay, AViewerMadeAfterwardsDraws) {
    (void)Open();
    TerminateAsHost();
    const auto pane = Open();
    ASSERT_NE(pane, nullptr);
    ImportTriangle(*pane);
    EXPECT_TRUE(ShowsSomething(*pane));
}

TEST(TerminatedDisplay, AViewerOfThatMomentHasNoWindowAndItsMethodsDrawNothing) {
    const auto pane = Open();
    ASSERT_NE(pane, nullptr);
    ImportTriangle(*pane);
    ASSERT_TRUE(ShowsSomething(*pane));
    TerminateAsHost();
    EXPECT_FALSE(pane->HasWindow());
    EXPECT_FALSE(ShowsSomething(*pane));
    KV_ScenePane::GraphicsInfo info;
    EXPECT_FALSE(pane->GetGraphicsInfo(&info));
    pane->Methods().PerformRefresh();
    pane->Methods().SetSize(80, 70);
    pane->Methods().SetShadowMode(1);
    pane->SendMouse({});
    ImportTriangle(*pane);
    EXPECT_EQ(pane->Methods().GetNumObjects(), 2) << "the scene needs no display";
    pane->ProcessEvents();
    EXPECT_EQ(pane->Methods().GetNumObjects(), 0) << "as after the loss of any window";
    pane->ProcessEvents();
}

TEST(TerminatedDisplay, AViewerOfThatMomentLeavesLaterOnesAlone) {
    auto lost = Open();
    ASSERT_NE(lost, nullptr);
    ImportTriangle(*lost);
    ASSERT_TRUE(ShowsSomething(*lost));
    TerminateAsHost();
    const auto later = Open();
    ASSERT_NE(later, nullptr);
    ImportTriangle(*later);
    ASSERT_TRUE(ShowsSomething(*later));
    lost->Methods().ClearData();
    EXPECT_FALSE(lost->HasWindow());
    EXPECT_TRUE(ShowsSomething(*later));
    lost.reset();
    EXPECT_TRUE(ShowsSomething(*later));
}

class ReadyStateCount final : public KV_ScenePane::_DKV_ScenePaneEvents {
public:
    int changes = 0;
    void ReadyStateChange() override { ++changes; }
};

TEST(TerminatedDisplay, IsReportedAsAReadyStateByTheNextProcessEventsAndSoIsARecreation) {
    const auto pane = Open();
    ASSERT_NE(pane, nullptr);
    ReadyStateCount events;
    pane->Connect(&events);
    while (IsReadable(*pane)) pane->ProcessEvents();
    TerminateAsHost();
    EXPECT_EQ(pane->Methods().GetReadyState(), 0);
    EXPECT_EQ(events.changes, 0);
    pane->Methods().PerformRefresh();
    EXPECT_TRUE(IsReadable(*pane)) << "a host that waits for its descriptor would not learn of the loss";
    pane->ProcessEvents();
    EXPECT_EQ(events.changes, 1);
    pane->ProcessEvents();
    EXPECT_FALSE(IsReadable(*pane));
    EXPECT_EQ(events.changes, 1);
    pane->Methods().RecreateOpenglContext(3, 3, 0);
    EXPECT_EQ(events.changes, 2);
    EXPECT_EQ(pane->Methods().GetReadyState(), 4);
}

TEST(TerminatedDisplay, ThatARecreationRepairsFirstChangesNoReadyState) {
    const auto pane = Open();
    ASSERT_NE(pane, nullptr);
    ReadyStateCount events;
    pane->Connect(&events);
    TerminateAsHost();
    pane->Methods().RecreateOpenglContext(3, 3, 0);
    pane->ProcessEvents();
    EXPECT_EQ(pane->Methods().GetReadyState(), 4);
    EXPECT_EQ(events.changes, 0) << "the host was told of no loss";
}

TEST(TerminatedDisplay, ARecreationGivesTheViewerAContextAgain) {
    const auto pane = Open();
    ASSERT_NE(pane, nullptr);
    TerminateAsHost();
    pane->Methods().RecreateOpenglContext(3, 3, 0);
    ASSERT_TRUE(pane->HasWindow());
    ImportTriangle(*pane);
    EXPECT_TRUE(ShowsSomething(*pane));
}

}  // namespace
