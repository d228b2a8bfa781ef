// The placement of the clip plane at the data: plane, stored height, log and wait cursor. The component library is a
// scripted one, so that the height is known.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <regex>

#include "clip/ClipScript.h"
#include "support/ControlFixture.h"
#include "support/TestFolder.h"

namespace {

using KV_ScenePane::ClipHeight;

constexpr float kNan = std::numeric_limits<float>::quiet_NaN(), kInf = std::numeric_limits<float>::infinity();

// Before the first record of the process: the log is in a folder of the test.
const std::string& g_folder = TestFolder();

/// The lines about clip heights that were written meanwhile, without their times.
class NewLogLines {
public:
    NewLogLines() : m_uBefore(ReadLog().size()) {}
    [[nodiscard]] std::vector<std::string> Get() const {
        const std::string log = ReadLog().substr(m_uBefore);
        EXPECT_TRUE(log.empty() || log.back() == '\n') << log;
        static const std::regex record(R"(\[\d\d:\d\d:\d\d\.\d\d\d\] (<[A-Z]+>: .*clip height.*)\n)");
        std::vector<std::string> lines;
        for (std::sregex_iterator it(log.begin(), log.end(), record), end; it != end; ++it) lines.push_back((*it)[1]);
        return lines;
    }

private:
    std::size_t m_uBefore;
};

using Records = std::vector<std::string>;

/// A triangle from (x, y, z) to (x + 10, y + 20, z + 1).
Mesh& AddTriangle(CKV_ScenePaneCtrl& control, float x, float y, float z) {
    return AddMesh(control, {At(x, y, z), At(x + 10, y, z), At(x + 10, y + 20, z + 1)}, {{{0, 1, 2}}});
}

struct ClipPlacement : testing::Test {
    ScriptedLibrary library;
    NoPictureControl viewer;
};

TEST_F(ClipPlacement, PutsALevelPlaneAtTheHeightInTheMiddleOfTheSceneBox) {
    library.mean = 7.5f;
    AddTriangle(*viewer, 100, 200, 0);
    viewer->m_clipPlane.SetNormal({1, 2, 3});
    viewer->m_clipPlane.SetCenter({1, 2, 3});
    viewer->PlaceClipPlaneAtData();
    EXPECT_EQ(viewer->m_clipPlane.GetCenter(), (Double3{105, 210, 7.5}));
    EXPECT_EQ(viewer->m_clipPlane.m_dMatrix,
              (std::array<double, 16>{1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 105, 210, 7.5, 1}));
    EXPECT_TRUE(viewer->m_clipHeight.found);
    EXPECT_EQ(viewer->m_clipHeight.height, 7.5f);
    EXPECT_EQ(viewer->m_clipHeight.kind, KV_ScenePane::HeightFromAllPoints);
}

TEST_F(ClipPlacement, ShowsTheWaitCursorAndAsksForNoRepaint) {
    AddTriangle(*viewer, 0, 0, 0);
    viewer->PlaceClipPlaneAtData();
    EXPECT_EQ(viewer.window->waitCursorsBegun, 1);
    EXPECT_EQ(viewer.window->waitCursorsEnded, 1);
    EXPECT_EQ(viewer.window->refreshes + viewer.window->invalidates + viewer.window->eraseInvalidates, 0);
}

TEST_F(ClipPlacement, OfAnEmptySceneIsAtMinus20InTheMiddleOfTheFixedBox) {
    viewer->m_clipPlane.SetNormal({1, 0, 0});
    viewer->m_clipPlane.SetCenter({1, 2, 3});
    viewer->m_clipHeight = {.found = true, .height = 3, .kind = KV_ScenePane::HeightFlatSpot};
    const NewLogLines log;
    viewer->PlaceClipPlaneAtData();
    EXPECT_EQ(viewer->m_clipPlane.GetCenter(), (Double3{0, 0, -20}));
    EXPECT_EQ(viewer->m_clipPlane.GetNormal(), (Double3{0, 0, 1}));
    EXPECT_FALSE(viewer->m_clipHeight.found);
    EXPECT_EQ(viewer->m_clipHeight.height, -20.0f);
    EXPECT_EQ(viewer->m_clipHeight.kind, KV_ScenePane::HeightNotDecided);
    EXPECT_EQ(log.Get(), Records{"<DEBUG>: Error calculating clip height. Defaulting to -20mm"});
    EXPECT_TRUE(library.calls.empty());
}

TEST_F(ClipPlacement, WithoutAPeakIsAtMinus20InTheMiddleOfTheScene) {
    library.answers["histogram.mainPeak"] = -1;
    AddTriangle(*viewer, 100, 200, 0);
    const NewLogLines log;
    viewer->PlaceClipPlaneAtData();
    EXPECT_EQ(viewer->m_clipPlane.GetCenter(), (Double3{105, 210, -20}));
    EXPECT_FALSE(viewer->m_clipHeight.found);
    EXPECT_EQ(log.Get(), Records{"<DEBUG>: Error calculating clip height. Defaulting to -20mm"});
}

TEST_F(ClipPlacement, WritesTheHeightToTheLogInTheStreamsDefaultFormat) {
    AddTriangle(*viewer, 0, 0, 0);
    for (const auto& [height, text] :
         {std::pair{7.5f, "7.5"}, std::pair{-3.0f, "-3"}, std::pair{1234567.0f, "1.23457e+06"},
          std::pair{0.00001234f, "1.234e-05"}, std::pair{12.345678f, "12.3457"}, std::pair{0.0f, "0"}}) {
        library.mean = height;
        const NewLogLines log;
        viewer->PlaceClipPlaneAtData();
        EXPECT_EQ(log.Get(), Records{"<DEBUG>: clip height automatically calculated to " + std::string(text) + "mm"});
    }
}

TEST_F(ClipPlacement, TakesTheHeightFromHiddenObjectsAndTheMiddleFromVisibleOnes) {
    AddTriangle(*viewer, 0, 0, 0);
    AddTriangle(*viewer, 1000, 1000, 50).m_iVisible = 0;
    AddMesh(*viewer, {At(-500, -500, -7)}, {});  // without a triangle
    library.mean = 2;
    viewer->PlaceClipPlaneAtData();
    EXPECT_EQ(viewer->m_clipPlane.GetCenter(), (Double3{5, 10, 2}));
    EXPECT_EQ(library.CallsOf("histogram.initialize"), Records{"histogram.initialize -7 51 500"});
    EXPECT_EQ(library.samples.size(), 14u) << "each of seven vertices facing up and facing sideways";
}

// No import makes such a box; the plane would be lost.
TEST_F(ClipPlacement, LeavesAMiddleOfThePlaneWhereThatOfTheBoxIsNotFinite) {
    struct Row {
        float minX, maxX, minY, maxY;
        Double3 center;
    };
    const Row rows[] = {
        {-kInf, 10, 0, 20, {11, 10, 3}},
        {0, 10, 0, kInf, {5, 12, 3}},
        {-kInf, kInf, -kInf, kInf, {11, 12, 3}},
    };
    Mesh& mesh = AddTriangle(*viewer, 0, 0, 0);
    library.mean = 3;
    for (const Row& row : rows) {
        mesh.SetBoundingBox(row.minX, row.maxX, row.minY, row.maxY, 0, 1);
        viewer->m_clipPlane.SetCenter({11, 12, 13});
        viewer->PlaceClipPlaneAtData();
        EXPECT_EQ(viewer->m_clipPlane.GetCenter(), row.center);
    }
}

TEST_F(ClipPlacement, OfVerticesThatAreNowhereIsNotFound) {
    AddMesh(*viewer, {At(kNan, kNan, kNan), At(kInf, 0, 0), At(0, 0, -kInf)}, {{{0, 1, 2}}});
    viewer->PlaceClipPlaneAtData();
    EXPECT_FALSE(viewer->m_clipHeight.found);
    EXPECT_EQ(viewer->m_clipPlane.GetCenter()[2], -20.0);
}

TEST_F(ClipPlacement, SamplesEverySecondVertexOfALargeScene) {
    std::vector<Vertex> vertices(3703490, At(0, 0, 1));
    AddMesh(*viewer, std::move(vertices), {});
    library.samples.reserve(8'000'000);
    (void)viewer->EstimateClipHeight();
    EXPECT_EQ(library.samples.size(), 2u * 1851745u);
}

// Each object alone is below the limit.
TEST_F(ClipPlacement, CountsTheVerticesOfAllObjectsForTheStep) {
    AddMesh(*viewer, std::vector<Vertex>(3703488, At(0, 0, 1)), {});
    AddMesh(*viewer, std::vector<Vertex>(2, At(0, 0, 1)), {});
    library.samples.reserve(8'000'000);
    (void)viewer->EstimateClipHeight();
    EXPECT_EQ(library.samples.size(), 2u * (1851744u + 1u));
}

TEST_F(ClipPlacement, ByTheMethodRunsWhenTheLowByteIsNotZero) {
    AddTriangle(*viewer, 0, 0, 0);
    library.mean = 4;
    for (const auto& [argument, runs] : {std::pair{0, false}, std::pair{256, false}, std::pair{-65536, false},
                                         std::pair{1, true}, std::pair{-1, true}, std::pair{128, true}}) {
        viewer->m_clipPlane.SetCenter({1, 2, 3});
        viewer->m_bClipPlaneActive = 0;
        viewer->SetClipPlaneEnabled(argument);
        EXPECT_EQ(viewer->m_clipPlane.GetCenter(), runs ? (Double3{5, 10, 4}) : (Double3{1, 2, 3})) << argument;
        EXPECT_EQ(viewer->m_bClipPlaneActive, 1) << argument;
        EXPECT_EQ(viewer->m_bClipPlaneVisible, argument & 255) << argument;
    }
}

}  // namespace
