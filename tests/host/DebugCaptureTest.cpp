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

/// Makes the viewer write three lines to the debugger output.
void WriteThreeLines(KV_ScenePane::ScenePane& pane) {
    float box[6];
    pane.Methods().GetObjectBoundingBox(7, &box[0], &box[1], &box[2], &box[3], &box[4], &box[5]);
}

constexpr const char* kThreeLines =
    "CKV_ScenePaneCtrl::GetObjectBoundingBox() object index out of range!; - objectIdx = 7; - m_vpMeshes.size() = 0";

TEST(JoinLines, DropsEmptyLinesAndLineEnds) {
    EXPECT_EQ(JoinLines("a\nb\r\n\n\nc"), "a; b; c");
    EXPECT_EQ(JoinLines("\n"), "");
    EXPECT_EQ(JoinLines(""), "");
    EXPECT_EQ(JoinLines("one line\n"), "one line");
}

TEST(DebugCapture, CollectsTheOutputOfItsThreadAndTheRouterGetsTheRest) {
    const auto pane = EmptyScene();
    ASSERT_TRUE(pane);
    std::string rest;
    const DebugRouter router([&](std::string_view text) { rest += text; });
    {
        const DebugCapture capture;
        WriteThreeLines(*pane);
        EXPECT_EQ(capture.OneLine(), kThreeLines);
        EXPECT_EQ(rest, "");
    }
    WriteThreeLines(*pane);
    EXPECT_EQ(JoinLines(rest), kThreeLines);
}

TEST(DebugCapture, CollectsNothingThatAnotherThreadWrites) {
    const auto pane = EmptyScene();
    ASSERT_TRUE(pane);
    std::string rest;
    const DebugRouter router([&](std::string_view text) { rest += text; });
    const DebugCapture capture;
    std::thread([&] { WriteThreeLines(*pane); }).join();
    EXPECT_EQ(capture.OneLine(), "");
    EXPECT_EQ(JoinLines(rest), kThreeLines);
}

struct Messages {
    const char* name;
    std::string_view written, thrown;
    const char* text;
};
void PrintTo(const Messages& row, std::ostream* out) { *out << row.name; }

const Messages kMessages[] = {
    {"Nothing", "", "", ""},
    {"ALine", "bad\n", "", "bad"},
    {"ALineWithAFunctionName", "ImportPly(): bad\n", "", "bad"},
    {"ALineWithAQualifiedFunctionName", "CPLYFile::Read_2(): bad\n", "", "bad"},
    {"AFunctionNameAlone", "ImportPly(): \n", "", ""},
    {"AFunctionNameInsideALine", "bad ImportPly(): worse\n", "", "bad ImportPly(): worse"},
    {"ParenthesesThatFollowNoName", "(): bad\n", "", "(): bad"},
    {"AFunctionNameInAnException", "", "CPLYFile::Read(): bad", "bad"},
    {"TwoFunctionsWithTheSameMessage", "First(): bad\nSecond(): bad\n", "", "bad"},
    {"AGridWithoutTriangles",
     "ImportScan(): /d/a.ply: no pixel was measured\nSetScanData(): CreateInternalMesh() returned nullptr\n", "",
     "the scan is empty: the sensor measured no point"},
    {"AGridWithoutTrianglesAndWithoutAReason", "SetScanData(): CreateInternalMesh() returned nullptr\n", "",
     "no triangle is left of the scan: import with a smaller skip or a lower confidence limit"},
    {"TwoTextsOfTheSameSentence", "ImportPly(): Unexpected end of data.\nfile is cut short\n", "",
     "the file is cut short: copy or export it again from its source"},
    {"AnException", "", "bad", "bad"},
    {"AnExceptionOfTwoLines", "", "bad\nworse\n", "bad; worse"},
    {"LinesAndAnException", "first\nsecond\n", "bad", "first; second; bad"},
    {"TheSameLineTwice", "bad\nother\nbad\n", "", "bad; other"},
    {"AnExceptionThatALineContains", "ImportPly(): very bad\n", "bad", "very bad"},
    {"ThePath", "ImportPly(): /d/a.ply: bad\n", "/d/a.ply: worse", "bad"},
    {"TheSameTextInBoth", "/d/a.ply: bad\n", "/d/a.ply: bad", "bad"},
    {"AnotherPath", "ImportPly(): /d/b.ply: bad\n", "", "/d/b.ply: bad"},
};
class MessageOfAFile : public testing::TestWithParam<Messages> {};

TEST_P(MessageOfAFile, HasEachReasonOnceWithoutPathAndFunctionName) {
    EXPECT_EQ(FileMessage("/d/a.ply", GetParam().written, GetParam().thrown), GetParam().text);
}
INSTANTIATE_TEST_SUITE_P(DebugCapture, MessageOfAFile, testing::ValuesIn(kMessages),
                         [](const auto& row) { return row.param.name; });

TEST(FileMessage, DropsAPathWithALineFeedInIt) {
    EXPECT_EQ(FileMessage("a\nb.ply", "ImportPly(): a\nb.ply: bad\n"), "bad");
}

TEST(FileMessage, ReplacesControlCharactersOfTheFile) {
    EXPECT_EQ(FileMessage("a.ply", "",
                          "found this: z\x1B[31m\x7F\t\b\xC2\x9B"
                          "2J\xC3\xB6\xC2\xA0"),
              "found this: z?[31m????2J\xC3\xB6\xC2\xA0");
}

TEST(FileMessage, IsCutAfterAThousandBytesBetweenTwoCharacters) {
    const std::string thousand(1000, 'a');
    EXPECT_EQ(FileMessage("a.ply", thousand), thousand);
    EXPECT_EQ(FileMessage("a.ply", "", thousand + "b"), thousand + "...");
    EXPECT_EQ(FileMessage("a.ply", thousand.substr(2) + "\xE2\x82\xAC"), thousand.substr(2) + "...");
    EXPECT_EQ(FileMessage("a.ply", thousand.substr(3) + "\xE2\x82\xAC"
                                                        "b"),
              thousand.substr(3) + "\xE2\x82\xAC...");
}

TEST(FailureReason, OfASilentFailureIsAGeneralSentence) {
    EXPECT_EQ(FailureReason("a.ply", ""), "nothing in it could be imported");
    EXPECT_EQ(FailureReason("a.ply", "a.ply: \n"), "nothing in it could be imported");
    EXPECT_EQ(FailureReason("a.ply", "bad\n"), "bad");
}

}  // namespace
