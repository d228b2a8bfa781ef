// --cut with --info, --screenshot and --export: the whole runs without a window.
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <ostream>
#include <string>
#include <vector>

#include "host/CutScene.h"
#include "host/MeshFiles.h"

namespace {

const std::string kNothingChanged = "scenepane: no lasso has changed an object\n";
/// Left of the grid.
const std::string kBesideTheGrid = ":0.02,0.02;0.06,0.02;0.06,0.98";
constexpr unsigned kBackground = 0x191932;  // 0xRRGGBB

struct CutMode {
    const char* name;
    const char* option;
    bool keepsRight;  ///< by kLeftHalf
};
void PrintTo(const CutMode& row, std::ostream* out) { *out << row.name; }

const CutMode kModes[] = {{"PolygonInside", "inside", true},
                          {"PolygonOutside", "outside", false},
                          {"PolygonVisible", "visible", true},
                          {"FreehandInside", "freehand-inside", true},
                          {"FreehandOutside", "freehand-outside", false},
                          {"FreehandVisible", "freehand-visible", true}};

class CutIn : public CutRuns, public testing::WithParamInterface<CutMode> {};

TEST_P(CutIn, LeavesWholeColumnsOfTheGrid) {
    SetCuts({GetParam().option + kLeftHalf});
    const CutInfoRun run = Info();
    EXPECT_EQ(run.status, kExitGood);
    EXPECT_EQ(run.err, "");
    const int columns = GetParam().keepsRight ? 5 : 6;
    EXPECT_EQ(run.vertices, std::vector{11 * columns});
    EXPECT_EQ(run.triangles, std::vector{2 * 10 * (columns - 1)});
    EXPECT_EQ(run.cuts, std::vector{GetParam().option + std::string(" yes")});
}

TEST_P(CutIn, ShowsWhatIsLeftInAPictureWithTheCameraOfTheWholeScene) {
    const Png whole = Picture();
    SetCuts({GetParam().option + kLeftHalf});
    const Png cut = Picture();
    // The columns that are left begin or end at these pixels.
    const int left = GetParam().keepsRight ? 114 : 29, right = GetParam().keepsRight ? 171 : 100;
    int shown = 0;
    for (int y = 0; y < 200; ++y) {
        for (int x = 0; x < 200; ++x) {
            const bool isAtTheCut = std::abs(x - left) < 3 || std::abs(x - right) < 3;
            const bool isKept = x > left && x < right;
            if (isAtTheCut) continue;
            ASSERT_EQ(cut.At(x, y), isKept ? whole.At(x, y) : kBackground) << x << ',' << y;
            shown += cut.At(x, y) != kBackground ? 1 : 0;
        }
    }
    EXPECT_GT(shown, 5000);
}

TEST_P(CutIn, WritesWhatIsLeftAsAnotherFormat) {
    SetCuts({GetParam().option + kLeftHalf});
    for (const char* const file : {"o.ply", "o.stl", "o.hps"}) {
        m_options.exportPath = m_folder / file;
        const Printed err;
        EXPECT_EQ(RunExport(m_options, err), kExitGood);
        EXPECT_EQ(err.Text(), "");
        EXPECT_EQ(InfoOf({m_options.exportPath}).triangles, Info().triangles) << file;
    }
}
INSTANTIATE_TEST_SUITE_P(HeadlessCut, CutIn, testing::ValuesIn(kModes),
                         [](const auto& row) { return std::string(row.param.name); });

using HeadlessCut = CutRuns;

TEST_F(HeadlessCut, ReportsTheObjectsAfterTheCutsAndEachLassoAsText) {
    SetCuts({"inside" + kBesideTheGrid, "freehand-outside" + kLeftHalf});
    const Printed out, err;
    EXPECT_EQ(RunInfo(m_options, out, err), kExitGood) << "one of the lassos has hit";
    EXPECT_EQ(err.Text(), "");
    EXPECT_NE(out.Text().find("  vertices       66\n"), std::string::npos) << out.Text();
    EXPECT_NE(out.Text().find("  box         x  0 5\n"), std::string::npos) << out.Text();
    EXPECT_EQ(out.Text().substr(out.Text().find("cuts\n")),
              "cuts\n"
              "  inside           changed nothing\n"
              "  freehand-outside changed an object\n");
}

TEST_F(HeadlessCut, DependsOnTheViewAndOnTheZoom) {
    SetCuts({"inside" + kLeftHalf});
    m_options.view = KV_ScenePane::ViewFromMinusZYUp;
    EXPECT_EQ(Info().vertices, std::vector{55}) << "the columns 5 to 10 are at the left from behind";
    m_options.view = KV_ScenePane::ViewFromPlusZYUp;
    // Twice the distance of pixels: of the columns 2 to 5 the rows 2 to 8 are in the window and in the lasso.
    m_options.zoom = 2;
    EXPECT_EQ(Info().vertices, std::vector{121 - 4 * 7});
    // The distance of pixels is that of a square window, whose side is the height of this one.
    m_options.zoom = 1;
    m_options.width = 400;
    SetCuts({"inside:0.02,0.02;0.6,0.02;0.6,0.98;0.02,0.98"});
    EXPECT_EQ(Info().vertices, std::vector{33}) << "column 7 is at pixel 228, the lasso ends at 240";
}

// A grid in front of a smaller one, which is hidden by it. The diagonal is 14.28.
class CutsOfTwoGrids : public CutRuns {
protected:
    void SetUp() override {
        CutRuns::SetUp();
        WriteCutGrid(m_folder / "a.pcm", {.z = 2});
        WriteCutGrid(m_folder / "back.pcm", {.columns = 9, .rows = 9, .x = 1, .y = 1});
        m_options.files = {m_folder / "a.pcm", m_folder / "back.pcm"};
    }
    static constexpr int kFrontLeft = 55, kBackLeft = 36;  ///< vertices after the columns up to x = 5 are gone
};

TEST_F(CutsOfTwoGrids, AVisibleLassoKeepsWhatIsHidden) {
    for (const std::string mode : {"visible", "freehand-visible"}) {
        SetCuts({mode + kLeftHalf});
        const CutInfoRun run = Info();
        EXPECT_EQ(run.vertices, (std::vector{kFrontLeft, 81})) << mode;
        EXPECT_EQ(run.cuts, std::vector{mode + " yes"});
    }
}

TEST_F(CutsOfTwoGrids, ASecondVisibleLassoSeesWhatTheFirstHasUncovered) {
    SetCuts({"visible" + kLeftHalf, "freehand-visible" + kLeftHalf});
    EXPECT_EQ(Info().vertices, (std::vector{kFrontLeft, kBackLeft}));
    SetCuts({"freehand-visible" + kLeftHalf, "visible" + kLeftHalf, "visible" + kLeftHalf});
    const CutInfoRun run = Info();
    EXPECT_EQ(run.vertices, (std::vector{kFrontLeft, kBackLeft}));
    EXPECT_EQ(run.cuts, (std::vector<std::string>{"freehand-visible yes", "visible yes", "visible no"}));
}

TEST_F(CutsOfTwoGrids, AreAppliedInTheOrderOfTheCommandLine) {
    SetCuts({"visible" + kLeftHalf, "inside" + kLeftHalf});
    EXPECT_EQ(Info().cuts, (std::vector<std::string>{"visible yes", "inside yes"}));
    SetCuts({"inside" + kLeftHalf, "visible" + kLeftHalf});
    EXPECT_EQ(Info().cuts, (std::vector<std::string>{"inside yes", "visible no"}));
}

// The clip plane hides the front grid: it is not seen, and a visible lasso removes what is behind it.
TEST_F(CutsOfTwoGrids, AVisibleLassoSeesThroughWhatThePlaneClips) {
    SetCuts({"visible" + kLeftHalf});
    m_options.clip = ClipPlane{{0, 0, 1}, {0, 0, -1}};
    const CutInfoRun run = Info();
    EXPECT_EQ(run.vertices.at(1), kBackLeft);
    EXPECT_EQ(run.status, kExitGood);
}

TEST_F(CutsOfTwoGrids, APictureShowsTheGridBehindWhereTheFrontIsCut) {
    SetCuts({"visible" + kLeftHalf});
    const Png visible = Picture();
    SetCuts({"inside" + kLeftHalf});
    const Png inside = Picture();
    m_options.files = {m_folder / "back.pcm", m_folder / "a.pcm"};
    m_options.cuts.clear();
    int uncovered = 0;
    for (int y = 50; y < 150; ++y) {
        for (int x = 50; x < 100; ++x) {
            EXPECT_EQ(inside.At(x, y), kBackground);
            uncovered += visible.At(x, y) != kBackground ? 1 : 0;
        }
    }
    EXPECT_EQ(uncovered, 50 * 100);
    EXPECT_EQ(visible.At(36, 100), kBackground) << "left of the grid behind";
}

TEST_F(HeadlessCut, OfNothingIsAFailureThatPrintsAndShowsTheWholeScene) {
    const CutInfoRun whole = Info();
    const Png picture = Picture();
    for (const std::string mode : {"inside", "visible", "freehand-inside", "freehand-visible"}) {
        SetCuts({mode + kBesideTheGrid, mode + kBesideTheGrid});
        const CutInfoRun run = Info();
        EXPECT_EQ(run.status, kExitFailure);
        EXPECT_EQ(run.err, kNothingChanged);
        EXPECT_EQ(run.vertices, whole.vertices);
        EXPECT_EQ(run.cuts, (std::vector{mode + " no", mode + " no"}));
        EXPECT_EQ(Picture(kExitFailure, kNothingChanged).bytes, picture.bytes);
    }
}

TEST_F(HeadlessCut, OfNothingExportsNothingAndKeepsAnOlderFile) {
    SetCuts({"inside" + kBesideTheGrid});
    m_options.exportPath = m_folder / "o.ply";
    WriteText(m_options.exportPath, "older");
    const Printed err;
    EXPECT_EQ(RunExport(m_options, err), kExitFailure);
    EXPECT_EQ(err.Text(), kNothingChanged + "scenepane: " + m_options.exportPath +
                              ": not written, no lasso has changed an object\n");
    EXPECT_EQ(ReadBytes(m_options.exportPath).size(), 5u);
}

TEST_F(HeadlessCut, OfAFileThatIsMissingReportsItAndCutsTheOthers) {
    m_options.files.insert(m_options.files.begin(), m_folder / "none.pcm");
    SetCuts({"inside" + kLeftHalf});
    const CutInfoRun run = Info();
    EXPECT_EQ(run.status, kExitFailure);
    EXPECT_EQ(run.err,
              "scenepane: " + (m_folder / "none.pcm") + ": there is no such file: check its name and its folder\n");
    EXPECT_EQ(run.vertices, std::vector{55});
    m_options.files.pop_back();
    m_options.exportPath = m_folder / "o.ply";
    const Printed err;
    EXPECT_EQ(RunExport(m_options, err), kExitFailure);
    EXPECT_EQ(err.Text(), run.err);
    EXPECT_FALSE(std::filesystem::exists(m_options.exportPath));
}

TEST_F(HeadlessCut, ThatRemovesEverythingLeavesAnEmptyObject) {
    SetCuts({"outside" + kBesideTheGrid});
    const CutInfoRun run = Info();
    EXPECT_EQ(run.status, kExitGood);
    EXPECT_EQ(run.vertices, std::vector{0});
    const Png picture = Picture();
    for (int i = 0; i < 200; ++i) EXPECT_EQ(picture.At(i, i), kBackground);
}

TEST_F(HeadlessCut, WithPointsFarOutsideTheWindowNeitherCrashesNorCutsBesideIt) {
    const std::string far = ":1e300,1e300;-1e300,3e9;0.5,-1e300;1e-300,-5";
    for (const std::string mode : {"inside", "visible", "freehand-inside", "freehand-visible"}) {
        SetCuts({mode + far});
        EXPECT_EQ(Info().vertices, std::vector{121}) << mode;
    }
}

}  // namespace
