// --save-cuts: the lines that it prints, and what it leaves in the files.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <filesystem>
#include <string>
#include <vector>

#include "host/ClipScene.h"
#include "host/CutScene.h"
#include "host/MeshFiles.h"
#include "host/UnprivilegedUser.h"

namespace {

constexpr int kRemoved = 250, kKept = 10;
const std::string kBesideTheGrid = ":0.02,0.02;0.06,0.02;0.06,0.98";

/// Classes of an 11 x 11 grid whose columns @p first to @p last are removed.
std::vector<int> WithoutColumns(int first, int last) {
    std::vector<int> classes;
    for (int i = 0; i < 121; ++i) classes.push_back(i % 11 >= first && i % 11 <= last ? kRemoved : kKept);
    return classes;
}

class HeadlessCutSave : public CutRuns {
protected:
    /// Bytes of a.pcm.
    [[nodiscard]] std::vector<std::byte> Bytes() const { return ReadBytes(m_folder / "a.pcm"); }
    [[nodiscard]] std::string Line(const std::string& file, const std::string& text) const {
        return (m_folder / file) + ": " + text + '\n';
    }
};

TEST_F(HeadlessCutSave, AFileImportedAgainHasTheVerticesThatTheCutObjectHad) {
    for (const std::string mode :
         {"inside", "outside", "visible", "freehand-inside", "freehand-outside", "freehand-visible"}) {
        WriteCutGrid(m_folder / "a.pcm", {});
        SetCuts({mode + kLeftHalf});
        const CutInfoRun cut = Info();
        const SaveRun run = Save();
        EXPECT_EQ(run.status, kExitGood) << mode;
        EXPECT_EQ(run.out, Line("a.pcm", "written"));
        EXPECT_EQ(run.err, "");
        const CutInfoRun again = InfoOf({m_folder / "a.pcm"});
        EXPECT_EQ(again.vertices, cut.vertices);
        EXPECT_EQ(again.triangles, cut.triangles);
        const bool keepsLeft = mode.find("outside") != std::string::npos;
        EXPECT_EQ(ClassesOf(m_folder / "a.pcm"), keepsLeft ? WithoutColumns(6, 10) : WithoutColumns(0, 5)) << mode;
    }
}

TEST_F(HeadlessCutSave, RemovesThePixelsInsideOfASlantedPolygon) {
    // No point is closer than 2 pixels to an edge of this polygon.
    SetCuts({"inside:0.3,0.65;0.9,0.45;0.9,0.1;0.3,0.4"});
    EXPECT_EQ(Save().status, kExitGood);
    const std::array<std::array<double, 2>, 4> corners = {{{60, 130}, {180, 90}, {180, 20}, {60, 80}}};
    std::vector<int> expected;
    for (int i = 0; i < 121; ++i) {
        const double x = 100 + (i % 11 - 5) * 200 / std::sqrt(200.0), y = 100 - (i / 11 - 5) * 200 / std::sqrt(200.0);
        bool isInside = true;  // on the same side of each edge: the polygon is convex
        for (std::size_t a = 0; a < 4; ++a) {
            const auto& [startX, startY] = corners[a];
            const auto& [endX, endY] = corners[(a + 1) % 4];
            isInside = isInside && (endX - startX) * (y - startY) - (endY - startY) * (x - startX) < 0;
        }
        expected.push_back(isInside ? kRemoved : kKept);
    }
    EXPECT_GT(std::ranges::count(expected, kRemoved), 20);
    EXPECT_EQ(ClassesOf(m_folder / "a.pcm"), expected);
}

TEST_F(HeadlessCutSave, SeveralLassosAddUp) {
    SetCuts({"inside:0.02,0.02;0.25,0.02;0.25,0.98;0.02,0.98", "inside" + kBesideTheGrid,
             "freehand-inside:0.7,0.02;0.98,0.02;0.98,0.98;0.7,0.98"});
    EXPECT_EQ(Save().status, kExitGood);
    // Columns 0 to 1 are left of pixel 50, columns 8 to 10 right of pixel 140.
    std::vector<int> expected = WithoutColumns(0, 1);
    std::ranges::transform(expected, WithoutColumns(8, 10), expected.begin(),
                           [](int a, int b) { return std::max(a, b); });
    EXPECT_EQ(ClassesOf(m_folder / "a.pcm"), expected);
}

TEST_F(HeadlessCutSave, WithASkippedGridCutsAllOfItsPixels) {
    m_options.import.skip = 2;
    SetCuts({"inside" + kLeftHalf});
    EXPECT_EQ(Save().status, kExitGood);
    EXPECT_EQ(ClassesOf(m_folder / "a.pcm"), WithoutColumns(0, 5));
}

TEST_F(HeadlessCutSave, PrintsALineForEachFile) {
    WriteCutGrid(m_folder / "b.pcm", {.columns = 4});
    WriteText(m_folder / "c.ply", TetraPlyText());
    // Seen in the columns right of the lasso.
    WriteCutGrid(m_folder / "d.PCM", {.columns = 3, .x = 8});
    m_options.files = {m_folder / "a.pcm", m_folder / "none.pcm", m_folder / "b.pcm", m_folder / "c.ply",
                       m_folder / "d.PCM"};
    SetCuts({"inside" + kLeftHalf});
    const std::vector<std::byte> untouched = ReadBytes(m_folder / "d.PCM");
    const SaveRun run = Save();
    EXPECT_EQ(run.status, kExitFailure) << "of the missing file";
    EXPECT_EQ(run.out,
              Line("a.pcm", "written") + Line("b.pcm", "written, no point is left in it") +
                  Line("c.ply", "skipped, only pcm files can hold cuts") +
                  Line("d.PCM", "skipped, nothing new was cut from it") +
                  Line("none.pcm", "failed, not imported: there is no such file: check its name and its folder"));
    EXPECT_EQ(run.err, "scenepane: " + Line("none.pcm", "there is no such file: check its name and its folder"));
    EXPECT_EQ(ReadBytes(m_folder / "d.PCM"), untouched);
    EXPECT_EQ(std::ranges::count(ClassesOf(m_folder / "b.pcm"), kRemoved), 44);
}

TEST_F(HeadlessCutSave, OfALassoThatHitsNothingWritesNothing) {
    const std::vector<std::byte> before = Bytes();
    SetCuts({"inside" + kBesideTheGrid});
    const SaveRun run = Save();
    EXPECT_EQ(run.status, kExitFailure);
    EXPECT_EQ(run.out, Line("a.pcm", "skipped, nothing new was cut from it"));
    EXPECT_EQ(run.err, "scenepane: no lasso has changed an object\n");
    EXPECT_EQ(Bytes(), before);
    // Nor is the plane written then.
    m_options.clip = ClipPlane{{5.5f, 0, 0}, {1, 0, 0}};
    EXPECT_EQ(Save().out, Line("a.pcm", "skipped, no lasso has changed an object"));
    EXPECT_EQ(Bytes(), before);
}

TEST_F(HeadlessCutSave, OfAMeshAloneIsAFailure) {
    WriteText(m_folder / "c.ply", TetraPlyText());
    m_options.files = {m_folder / "c.ply"};
    SetCuts({"outside" + kBesideTheGrid});
    const SaveRun run = Save();
    EXPECT_EQ(run.status, kExitFailure);
    EXPECT_EQ(run.out, Line("c.ply", "skipped, only pcm files can hold cuts"));
}

TEST_F(HeadlessCutSave, OfAPlaneAloneNeedsNoOpenGL) {
    m_options.gpu = 31;  // no such device
    m_options.clip = ClipPlane{{3.5f, 0, 0}, {1, 0, 0}};
    SaveRun run = Save();
    EXPECT_EQ(run.status, kExitGood);
    EXPECT_EQ(run.out, Line("a.pcm", "written"));
    EXPECT_EQ(run.err, "");
    EXPECT_EQ(ClassesOf(m_folder / "a.pcm"), WithoutColumns(0, 3));
    SetCuts({"inside" + kLeftHalf});
    run = Save();
    EXPECT_EQ(run.status, kExitFailure);
    EXPECT_NE(run.err.find("there is no viewer: There is no graphics device 31"), std::string::npos) << run.err;
}

TEST_F(HeadlessCutSave, OfAPlaneAndALassoRemovesWhatEitherRemoves) {
    m_options.clip = ClipPlane{{8.5f, 0, 0}, {-1, 0, 0}};
    SetCuts({"inside:0.02,0.02;0.25,0.02;0.25,0.98;0.02,0.98"});
    EXPECT_EQ(Save().status, kExitGood);
    std::vector<int> expected = WithoutColumns(0, 1);
    std::ranges::transform(expected, WithoutColumns(9, 10), expected.begin(),
                           [](int a, int b) { return std::max(a, b); });
    EXPECT_EQ(ClassesOf(m_folder / "a.pcm"), expected);
}

TEST_F(HeadlessCutSave, ByAPlaneAtTheDataRemovesWhatIsBelowIt) {
    WriteTwoLevels(m_folder / "levels.ply");  // the plane is at the height 10: the grids do not face up
    WriteCutGrid(m_folder / "b.pcm", {.columns = 2, .rows = 2, .z = 15});
    m_options.files = {m_folder / "a.pcm", m_folder / "levels.ply", m_folder / "b.pcm"};
    m_options.clipAuto = true;
    const SaveRun run = Save();
    EXPECT_EQ(run.status, kExitGood);
    EXPECT_EQ(run.err, "");
    EXPECT_EQ(run.out, Line("a.pcm", "written, no point is left in it") +
                           Line("levels.ply", "skipped, only pcm files can hold cuts") + Line("b.pcm", "written"))
        << "the plane is written into every pcm file";
    EXPECT_EQ(ClassesOf(m_folder / "a.pcm"), WithoutColumns(0, 10));
    EXPECT_EQ(ClassesOf(m_folder / "b.pcm"), std::vector(4, kKept));
}

// All vertices are at one height, which the estimate refuses.
TEST_F(HeadlessCutSave, WithoutAHeightForThePlaneWritesNothing) {
    const std::vector<std::byte> before = Bytes();
    m_options.clipAuto = true;
    for (const bool hasLasso : {false, true}) {
        SetCuts(hasLasso ? std::vector{"inside" + kLeftHalf} : std::vector<std::string>{});
        const SaveRun run = Save();
        EXPECT_EQ(run.status, kExitFailure);
        EXPECT_EQ(run.out, Line("a.pcm", "skipped, no clip height was found"));
        EXPECT_EQ(run.err, "scenepane: no clip height: an invalid argument was passed to an interface method\n");
        EXPECT_EQ(Bytes(), before);
    }
}

// No vertex faces up. The plane would be placed at -20, where nobody asked for it.
TEST_F(HeadlessCutSave, WithThePlaneAtTheDefaultHeightWritesNothing) {
    const std::vector<std::byte> before = Bytes();
    WriteCutGrid(m_folder / "b.pcm", {.columns = 2, .rows = 2, .z = -30});
    m_options.files.push_back(m_folder / "b.pcm");
    m_options.clipAuto = true;
    SetCuts({"inside" + kLeftHalf});
    const SaveRun run = Save();
    EXPECT_EQ(run.status, kExitFailure);
    EXPECT_EQ(run.out,
              Line("a.pcm", "skipped, no clip height was found") + Line("b.pcm", "skipped, no clip height was found"));
    EXPECT_EQ(run.err, "scenepane: no clip height was found, the plane is at -20\n");
    EXPECT_EQ(Bytes(), before);
}

TEST_F(HeadlessCutSave, WarnsThatTheConfidenceFilterRemovesPoints) {
    WriteCutGrid(m_folder / "b.pcm", {.columns = 3, .confidence = 0.25f});
    m_options.files.push_back(m_folder / "b.pcm");
    m_options.import.confidence = 0.5f;
    SetCuts({"inside" + kLeftHalf});
    const SaveRun run = Save();
    EXPECT_EQ(run.status, kExitFailure) << "no point of b.pcm is above the limit";
    EXPECT_NE(run.err.find("scenepane: the confidence filter is above 0: points below it are removed from the files, "
                           "too\n"),
              std::string::npos)
        << run.err;
    EXPECT_EQ(ClassesOf(m_folder / "a.pcm"), WithoutColumns(0, 5));
    m_options.import.confidence = 0;
    EXPECT_EQ(Save().err, "");
}

TEST_F(HeadlessCutSave, ThatFailsForOneFileIsAFailureAndWritesTheOthers) {
    std::filesystem::create_directory(m_folder / "locked");
    WriteCutGrid(m_folder / "locked/b.pcm", {});
    m_options.files.insert(m_options.files.begin(), m_folder / "locked/b.pcm");
    SetCuts({"inside" + kLeftHalf});
    std::filesystem::permissions(m_folder.Path(), std::filesystem::perms(0777));
    std::filesystem::permissions(m_folder / "a.pcm", std::filesystem::perms(0666));
    std::filesystem::permissions(m_folder / "locked", std::filesystem::perms(0555));
    SaveRun run;
    {
        const UnprivilegedUser user;
        if (!user.HasEffect()) GTEST_SKIP() << "root may write everywhere";
        run = Save();
    }
    std::filesystem::permissions(m_folder / "locked", std::filesystem::perms(0755));
    EXPECT_EQ(run.status, kExitFailure);
    EXPECT_NE(run.out.find("locked/b.pcm: failed, "), std::string::npos) << run.out;
    EXPECT_NE(run.out.find(Line("a.pcm", "written")), std::string::npos) << run.out;
    EXPECT_EQ(ClassesOf(m_folder / "a.pcm"), WithoutColumns(0, 5));
    EXPECT_EQ(ClassesOf(m_folder / "locked/b.pcm"), WithoutColumns(11, 11));
}

TEST_F(HeadlessCutSave, OfAFolderThatMayNotBeWrittenFailsAndKeepsTheFile) {
    const std::vector<std::byte> before = Bytes();
    SetCuts({"inside" + kLeftHalf});
    std::filesystem::permissions(m_folder.Path(), std::filesystem::perms(0555));
    SaveRun run;
    {
        const UnprivilegedUser user;
        if (!user.HasEffect()) GTEST_SKIP() << "root may write everywhere";
        run = Save();
    }
    std::filesystem::permissions(m_folder.Path(), std::filesystem::perms(0755));
    EXPECT_EQ(run.status, kExitFailure);
    const std::string start = Line("a.pcm", "failed, the file could not be written and is as before: ");
    EXPECT_EQ(run.out.substr(0, start.size() - 1), start.substr(0, start.size() - 1)) << run.out;
    EXPECT_EQ(run.err, "scenepane: " + run.out) << "once";
    EXPECT_EQ(Bytes(), before);
}

// The second import of the file has the cuts as well: both are written, one after the other.
TEST_F(HeadlessCutSave, OfOneFileTwiceAndByALinkHasALineForEach) {
    std::filesystem::create_symlink("a.pcm", m_folder.Path() / "link.pcm");
    m_options.files = {m_folder / "a.pcm", m_folder / "a.pcm", m_folder / "link.pcm"};
    SetCuts({"inside" + kLeftHalf});
    const SaveRun run = Save();
    EXPECT_EQ(run.status, kExitGood);
    EXPECT_EQ(run.out, Line("a.pcm", "written") + Line("a.pcm", "written") + Line("link.pcm", "written"));
    EXPECT_TRUE(std::filesystem::is_symlink(m_folder.Path() / "link.pcm"));
    EXPECT_EQ(ClassesOf(m_folder / "a.pcm"), WithoutColumns(0, 5));
}

TEST_F(HeadlessCutSave, ReportsAFullStandardOutput) {
    SetCuts({"inside" + kLeftHalf});
    std::FILE* const full = std::fopen("/dev/full", "w");
    ASSERT_NE(full, nullptr);
    const Printed err;
    EXPECT_EQ(RunSaveCuts(m_options, full, err), kExitFailure);
    EXPECT_EQ(err.Text(), "scenepane: standard output: No space left on device\n");
    std::fclose(full);
}

}  // namespace
