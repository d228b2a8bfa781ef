#include "DebugCapture.h"

#include <gtest/gtest.h>

#include <thread>

#include "KV_ScenePane/ScenePane.h"

namespace {

std::unique_ptr<KV_ScenePane::ScenePane> EmptyScene() {
    KV_ScenePane::WindowRequest request;
    request.kind = KV_ScenePane::WindowRequest::Kind::NoPicture;
    return CreateScenePane(request, nullptr);
}

/// Makes the viewer write three lines.
void MakeItWrite(KV_ScenePane::ScenePane& pane) {
    float box[6];
    pane.Methods().GetObjectBoundingBox(7, &box[0], &box[1], &box[2], &box[3], &box[4], &box[5]);
}

constexpr const char* kThreeLines =
    "CKV_ScenePaneCtrl::GetObjectBoundingBox() object index out of range!; - objectIdx = 7; - m_vpMeshes.size() = 0";

TEST(JoinLines, LeavesOutEmptyLinesAndLineEnds) {
    EXPECT_EQ(JoinLines("a\nb\r\n\n\nc"), "a; b; c");
    EXPECT_EQ(JoinLines("\n"), "");
    EXPECT_EQ(JoinLines(""), "");
    EXPECT_EQ(JoinLines("one line\n"), "one line");
}

TEST(DebugCapture, TakesWhatItsThreadWritesAndLeavesTheRestToTheRouter) {
    const auto pane = EmptyScene();
    ASSERT_TRUE(pane);
    std::string rest;
    const DebugRouter router([&](std::string_view text) { rest += text; });
    {
        const DebugCapture capture;
        MakeItWrite(*pane);
        EXPECT_EQ(capture.OneLine(), kThreeLines);
        EXPECT_EQ(rest, "");
    }
    MakeItWrite(*pane);
    EXPECT_EQ(JoinLines(rest), kThreeLines);
}

TEST(DebugCapture, OfAnotherThreadTakesNothingFromThisOne) {
    const auto pane = EmptyScene();
    ASSERT_TRUE(pane);
    std::string rest;
    const DebugRouter router([&](std::string_view text) { rest += text; });
    const DebugCapture capture;
    std::thread([&] { MakeItWrite(*pane); }).join();
    EXPECT_EQ(capture.OneLine(), "");
    EXPECT_EQ(JoinLines(rest), kThreeLines);
}

TEST(DebugCapture, OfASilentFailureStillGivesAReason) {
    const DebugCapture capture;
    EXPECT_EQ(ReasonOf("a.ply", capture), "nothing in it could be imported");
}

}  // namespace
