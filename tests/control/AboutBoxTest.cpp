// The about dialog goes through the window to the host's hook, which may do what any hook may.
#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "KV_ScenePane/ScenePane.h"
#include "control/AutomationTable.h"
#include "support/ControlFixture.h"
#include "support/XvfbServer.h"

namespace {

using KV_ScenePane::AboutText;
using KV_ScenePane::ScenePane;
using KV_ScenePane::WindowRequest;
using Kind = WindowRequest::Kind;

/// A host whose hook records the text and then runs a function.
class AboutBox : public testing::TestWithParam<Kind> {
protected:
    void Open() {
        if (GetParam() == Kind::TopLevel) XvfbServer::Shared();
        WindowRequest request;
        request.kind = GetParam();
        request.width = 60, request.height = 40;
        if (m_bHook)
            request.showAbout = [this](const AboutText& text) {
                shown.push_back(text.title + " | " + text.line);
                inside();
            };
        std::string reason;
        pane = CreateScenePane(request, &reason);
        ASSERT_NE(pane, nullptr) << reason;
        output.Clear();
    }

    bool m_bHook = true;
    CapturedDebugOutput output;
    std::vector<std::string> shown;
    std::function<void()> inside = [] {};
    std::unique_ptr<ScenePane> pane;
    const std::string expected = "About KV_ScenePane Control | KV_ScenePane Control, Version 5.5";
};

INSTANTIATE_TEST_SUITE_P(Windows, AboutBox, testing::Values(Kind::OffScreen, Kind::TopLevel, Kind::NoPicture),
                         [](const auto& row) {
                             return row.param == Kind::OffScreen  ? "OffScreen"
                                    : row.param == Kind::TopLevel ? "TopLevel"
                                                                  : "NoPicture";
                         });

TEST_P(AboutBox, IsShownByTheHookWithItsTitleAndItsLine) {
    Open();
    pane->Methods().AboutBox();
    pane->Methods().AboutBox();
    EXPECT_EQ(shown, (std::vector<std::string>{expected, expected}));
    EXPECT_EQ(output.Text(), "");
}

TEST_P(AboutBox, IsALineOfTheDebuggerOutputWithoutAHook) {
    m_bHook = false;
    Open();
    pane->Methods().AboutBox();
    EXPECT_EQ(output.Text(), "KV_ScenePane Control, Version 5.5\n");
}

TEST_P(AboutBox, IsShownByItsId) {
    Open();
    EXPECT_EQ(InvokeMethod(pane->Methods(), -552, {}, nullptr), AutomationStatus::Done);
    EXPECT_EQ(shown, std::vector<std::string>{expected});
}

TEST_P(AboutBox, MayRunAnEventLoopAndCallMethodsAlsoItself) {
    Open();
    int depth = 0;
    inside = [&] {
        pane->Methods().PerformInvalidate();
        pane->ProcessEvents();
        pane->Methods().SetDrawMode(static_cast<std::int16_t>(depth));
        if (++depth < 3) pane->Methods().AboutBox();
    };
    pane->Methods().AboutBox();
    EXPECT_EQ(shown, (std::vector<std::string>{expected, expected, expected}));
    EXPECT_EQ(pane->Methods().GetDrawMode(), 2);
}

TEST_P(AboutBox, MayMakeTheContextAgain) {
    Open();
    inside = [&] { pane->Methods().RecreateOpenglContext(3, 3, 0); };
    pane->Methods().AboutBox();
    EXPECT_TRUE(pane->HasWindow());
    KV_ScenePane::Picture picture;
    EXPECT_EQ(pane->CapturePicture(&picture), GetParam() != Kind::NoPicture);
}

TEST_P(AboutBox, MayDestroyTheViewer) {
    Open();
    inside = [&] { pane.reset(); };
    pane->Methods().AboutBox();
    EXPECT_EQ(pane, nullptr);
    EXPECT_EQ(shown.size(), 1u);
}

TEST_P(AboutBox, PassesTheExceptionOfTheHookOn) {
    Open();
    inside = [] { throw std::runtime_error("hook"); };
    EXPECT_THROW(pane->Methods().AboutBox(), std::runtime_error);
    inside = [] {};
    pane->Methods().AboutBox();
    EXPECT_EQ(shown.size(), 2u);
    EXPECT_TRUE(pane->HasWindow());
}

// After the loss of the window the dialog needs no window of the viewer.
TEST_P(AboutBox, IsShownAfterARefusedRecreation) {
    Open();
    pane->Methods().RecreateOpenglContext(9, 9, 0);
    ASSERT_EQ(pane->HasWindow(), GetParam() == Kind::NoPicture);
    pane->Methods().AboutBox();
    EXPECT_EQ(shown, std::vector<std::string>{expected});
}

}  // namespace
