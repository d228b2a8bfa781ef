#include "DebugCapture.h"

#include <gtest/gtest.h>

#include <ostream>
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

struct Said {
    const char* name;
    std::string_view written, thrown;
    const char* text;
};
void PrintTo(const Said& row, std::ostream* out) { *out << row.name; }

const Said kSaid[] = {
    {"Nothing", "", "", ""},
    {"ALine", "ImportPly(): bad\n", "", "ImportPly(): bad"},
    {"AnException", "", "bad", "bad"},
    {"AnExceptionOfTwoLines", "", "bad\nworse\n", "bad; worse"},
    {"LinesAndAnException", "first\nsecond\n", "bad", "first; second; bad"},
    {"TheSameLineTwice", "bad\nother\nbad\n", "", "bad; other"},
    {"AnExceptionThatALineHolds", "ImportPly(): bad\n", "bad", "ImportPly(): bad"},
    {"ThePath", "ImportPly(): /d/a.ply: bad\n", "/d/a.ply: worse", "ImportPly(): bad; worse"},
    {"ThePathOfBothTheSame", "/d/a.ply: bad\n", "/d/a.ply: bad", "bad"},
    {"AnotherPath", "ImportPly(): /d/b.ply: bad\n", "", "ImportPly(): /d/b.ply: bad"},
};
class TextAboutAFile : public testing::TestWithParam<Said> {};

TEST_P(TextAboutAFile, SaysEverythingOnceAndLeavesItsNameOut) {
    EXPECT_EQ(TextAbout("/d/a.ply", GetParam().written, GetParam().thrown), GetParam().text);
}
INSTANTIATE_TEST_SUITE_P(DebugCapture, TextAboutAFile, testing::ValuesIn(kSaid),
                         [](const auto& row) { return row.param.name; });

TEST(TextAbout, LeavesOutANameWithALineFeedInIt) {
    EXPECT_EQ(TextAbout("a\nb.ply", "ImportPly(): a\nb.ply: bad\n"), "ImportPly(): bad");
}

TEST(TextAbout, HasNoControlCharactersOfTheFileInIt) {
    EXPECT_EQ(TextAbout("a.ply", "",
                        "found this: z\x1B[31m\x7F\t\b\xC2\x9B"
                        "2J\xC3\xB6\xC2\xA0"),
              "found this: z?[31m????2J\xC3\xB6\xC2\xA0");
}

TEST(TextAbout, EndsAfterAThousandBytesAtAWholeCharacter) {
    const std::string thousand(1000, 'a');
    EXPECT_EQ(TextAbout("a.ply", thousand), thousand);
    EXPECT_EQ(TextAbout("a.ply", "", thousand + "b"), thousand + "...");
    EXPECT_EQ(TextAbout("a.ply", thousand.substr(2) + "\xE2\x82\xAC"), thousand.substr(2) + "...");
    EXPECT_EQ(TextAbout("a.ply", thousand.substr(3) + "\xE2\x82\xAC"
                                                      "b"),
              thousand.substr(3) + "\xE2\x82\xAC...");
}

TEST(ReasonOf, ASilentFailureIsNeverEmpty) {
    EXPECT_EQ(ReasonOf("a.ply", ""), "nothing in it could be imported");
    EXPECT_EQ(ReasonOf("a.ply", "a.ply: \n"), "nothing in it could be imported");
    EXPECT_EQ(ReasonOf("a.ply", "bad\n"), "bad");
}

}  // namespace
