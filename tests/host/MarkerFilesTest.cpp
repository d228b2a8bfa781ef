#include "MarkerFiles.h"

#include <gtest/gtest.h>

#include <memory>

#include "DebugCapture.h"
#include "KV_ScenePane/ScenePane.h"
#include "host/MeshFiles.h"
#include "support/DriverStandIn.h"

namespace {

using KV_ScenePane::PointCloud;
using KV_ScenePane::ScenePane;

std::unique_ptr<ScenePane> OpenPane(KV_ScenePane::WindowRequest::Kind kind) {
    KV_ScenePane::WindowRequest request;
    request.kind = kind;
    request.width = request.height = 100;
    std::string reason;
    auto pane = CreateScenePane(request, &reason);
    EXPECT_TRUE(pane) << reason;
    return pane;
}

class MarkerFiles : public testing::Test {
protected:
    KV_ScenePane::_DKV_ScenePane& Methods() { return m_pane->Methods(); }
    /// Whether the viewer has a line of this id; makes one of no points otherwise.
    bool HasLine(std::int32_t id) {
        const float none[3] = {};
        return Methods().CreateLine3D(id, 0, none) == KV_ScenePane::kVariantFalse;
    }
    /// The colour of the middle of a frame, RRGGBB.
    std::uint32_t MiddleColor() {
        Methods().CenterView();
        KV_ScenePane::Picture picture;
        EXPECT_TRUE(m_pane->CapturePicture(&picture));
        return picture.pixels.at(50 * 100 + 50) & 0xFFFFFF;
    }

    ScratchFolder m_folder;
    std::unique_ptr<ScenePane> m_pane = OpenPane(KV_ScenePane::WindowRequest::Kind::OffScreen);
};

const PointCloud kCross = {{-5, 0, 0, 5, 0, 0, 0, -5, 0, 0, 5, 0, 0, 0, 0}, {}};

TEST_F(MarkerFiles, GivePointsWithoutColoursTheOneThatWasChosen) {
    AddPoints(Methods(), kCross, 0xFF3366, 1.0f);
    EXPECT_EQ(MiddleColor(), 0x6633FFu);
}

TEST_F(MarkerFiles, KeepTheColoursOfPoints) {
    PointCloud cloud = kCross;
    cloud.colors = {1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 0, 0};
    AddPoints(Methods(), cloud, 0xFF3366, 1.0f);
    EXPECT_EQ(MiddleColor(), 0xFF0000u);
}

TEST_F(MarkerFiles, PassTheOpacityOfPointsOn) {
    AddPoints(Methods(), kCross, 0x0000FF, 0.5f);
    const std::uint32_t red = MiddleColor() >> 16;
    EXPECT_GT(red, 120u);
    EXPECT_LT(red, 160u) << "half red, half background";
}

TEST_F(MarkerFiles, NumberPointSetsFromZeroAlsoWithoutPoints) {
    EXPECT_EQ(AddPoints(Methods(), kCross, 0, 1.0f), 0);
    EXPECT_EQ(AddPoints(Methods(), {}, 0, 1.0f), 1);
    EXPECT_EQ(AddPoints(Methods(), kCross, 0, 1.0f), 2);
}

TEST_F(MarkerFiles, ReportPointsForWhichGraphicsMemoryIsShort) {
    const DebugRouter router([](std::string_view) {});
    WriteText(m_folder / "p.xyz", "0 0 0\n1 0 0\n");
    {
        const ScopedDriverFaults faults({.failUpload = 1});
        EXPECT_EQ(AddPointFile(Methods(), m_folder / "p.xyz", 0, 1.0f), "not enough graphics memory");
        EXPECT_EQ(ReadDriverCounters().failedUploads, 1);
    }
    EXPECT_EQ(AddPointFile(Methods(), m_folder / "p.xyz", 0, 1.0f), "");
    EXPECT_EQ(AddPoints(Methods(), kCross, 0, 1.0f), 1) << "the set without memory is deleted";
}

TEST_F(MarkerFiles, GiveEachLineTheSmallestFreeNumber) {
    const Polyline line = {0, 0, 0, 1, 1, 1};
    ASSERT_TRUE(Methods().CreateLine3D(1, 2, line.data()));
    const std::vector<Polyline> three = {line, line, line};
    EXPECT_EQ(AddLines(Methods(), three), (std::vector<std::int32_t>{0, 2, 3}));
    EXPECT_EQ(AddLines(Methods(), {{line}}), (std::vector<std::int32_t>{4}));
    EXPECT_FALSE(HasLine(5));
    EXPECT_FALSE(Methods().GetLine3DDrawingMode()) << "the caller decides";
}

TEST_F(MarkerFiles, NumberLinesFromZeroAgainInAClearedScene) {
    const std::vector<Polyline> two(2, {0, 0, 0, 1, 1, 1});
    AddLines(Methods(), two);
    Methods().ClearData();
    EXPECT_EQ(AddLines(Methods(), two), (std::vector<std::int32_t>{0, 1}));
}

TEST_F(MarkerFiles, CreateALineWithoutPoints) {
    EXPECT_EQ(AddLines(Methods(), {{Polyline{}}}), (std::vector<std::int32_t>{0}));
    EXPECT_TRUE(HasLine(0));
}

TEST_F(MarkerFiles, AllowPaintingAgainAfterManyLines) {
    AddLines(Methods(), {{Polyline{0, 0, 0, 1, 1, 1}}});
    KV_ScenePane::Picture picture;
    EXPECT_TRUE(m_pane->CapturePicture(&picture)) << "fails while painting is blocked";
}

TEST_F(MarkerFiles, AddLinesOfAFileAndSwitchTheirDrawingOn) {
    WriteText(m_folder / "l.txt", "0 0 0\n1 0 0\n\n5 5 5\n6 6 6\n");
    std::vector<Polyline> polylines;
    EXPECT_EQ(AddLineFile(Methods(), m_folder / "l.txt", &polylines), "");
    EXPECT_EQ(polylines, (std::vector<Polyline>{{0, 0, 0, 1, 0, 0}, {5, 5, 5, 6, 6, 6}}));
    EXPECT_TRUE(HasLine(0) && HasLine(1));
    EXPECT_FALSE(HasLine(2));
    EXPECT_TRUE(Methods().GetLine3DDrawingMode());
}

TEST_F(MarkerFiles, AddNothingOfABadFile) {
    WriteText(m_folder / "l.txt", "0 0 0\n1 0\n");
    WriteText(m_folder / "p.xyz", "0 0 0\n1 0\n");
    WriteText(m_folder / "n.json", "[]");
    std::vector<Polyline> polylines;
    std::vector<NeedleMark> marks;
    std::int32_t limit = kStartNeedleLimit;
    EXPECT_EQ(AddLineFile(Methods(), m_folder / "l.txt", &polylines),
              "line 2: 2 numbers, not x y z as in the lines before");
    EXPECT_NE(AddPointFile(Methods(), m_folder / "p.xyz", 0, 1.0f), "");
    EXPECT_NE(AddNeedleFile(Methods(), m_folder / "n.json", {}, &limit, &marks), "");
    EXPECT_EQ(AddPointFile(Methods(), m_folder / "none", 0, 1.0f),
              "there is no such file: check its name and its folder");
    EXPECT_EQ(AddNeedleFile(Methods(), m_folder.Path().string(), {}, &limit, &marks),
              "this is a folder: name its files, or open it in the window");
    EXPECT_TRUE(polylines.empty() && marks.empty());
    EXPECT_FALSE(HasLine(0));
    EXPECT_FALSE(Methods().GetLine3DDrawingMode());
    EXPECT_FALSE(Methods().GetNeedleDrawingMode());
    EXPECT_EQ(AddPoints(Methods(), {}, 0, 1.0f), 0) << "no point set was added";
}

TEST_F(MarkerFiles, AddNeedlesOfAFileAndSwitchTheirDrawingOn) {
    WriteText(m_folder / "n.json",
              R"({"format": "scenepane needles", "version": 1, "needles": [
                  {"id": 3, "pin": [1, 2, 3], "head": [4, 5, 6]}, {"id": 9, "pin": [0, 0, 0], "head": [0, 0, 1]}]})");
    std::vector<NeedleMark> marks;
    std::int32_t limit = kStartNeedleLimit;
    EXPECT_EQ(AddNeedleFile(Methods(), m_folder / "n.json", {}, &limit, &marks), "");
    EXPECT_EQ(marks.size(), 2u);
    EXPECT_EQ(Methods().GetNumberOfNeedles(), 2);
    EXPECT_TRUE(Methods().GetNeedleDrawingMode());
    float p[6] = {};
    EXPECT_TRUE(Methods().GetNeedle(3, &p[0], &p[1], &p[2], &p[3], &p[4], &p[5]));
    for (int i = 0; i < 6; ++i) EXPECT_EQ(p[i], static_cast<float>(i + 1));
    EXPECT_EQ(AddNeedleFile(Methods(), m_folder / "n.json", {}, &limit, &marks),
              "needles were not added, their numbers are in use: 3, 9");
}

TEST(MarkerFilesWithoutOpenGL, AreAddedAllTheSame) {
    const auto pane = OpenPane(KV_ScenePane::WindowRequest::Kind::NoPicture);
    EXPECT_EQ(AddPoints(pane->Methods(), kCross, 0, 1.0f), 0);
    EXPECT_EQ(AddLines(pane->Methods(), {{Polyline{0, 0, 0, 1, 1, 1}}}), (std::vector<std::int32_t>{0}));
}

}  // namespace
