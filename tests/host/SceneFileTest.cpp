#include "SceneFile.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include "ImportPlan.h"
#include "host/ScanFiles.h"

namespace {

TEST(KindOfFile, GoesByTheTextBehindTheLastPointInAnyCase) {
    EXPECT_EQ(KindOfFile("a.pcm"), FileKind::Pcm);
    EXPECT_EQ(KindOfFile("a.PaX"), FileKind::Pax);
    EXPECT_EQ(KindOfFile("a.pcm.XDT"), FileKind::Xdt);
    EXPECT_EQ(KindOfFile("a.pcm.bak"), FileKind::Unknown);
    EXPECT_EQ(KindOfFile("a.pcm/b"), FileKind::Unknown);
    EXPECT_EQ(KindOfFile("a."), FileKind::Unknown);
}

TEST(KindOfFile, WithoutAPointGoesByTheWholeName) {
    EXPECT_EQ(KindOfFile("pax"), FileKind::Pax);
    EXPECT_EQ(KindOfFile("apax"), FileKind::Unknown);
}

TEST(KindOfFile, KnowsTheTypesOfMeshes) {
    for (const char* const name : {"a.ply", "a.STL", "a.Hps", "a.ois", "a.msh"})
        EXPECT_EQ(KindOfFile(name), FileKind::Mesh) << name;
}

TEST(WhyNoExportName, TakesTheTypesThatAreWrittenAndNoOther) {
    for (const char* const name : {"a.ply", "a.STL", "x/a.b.hps"}) EXPECT_EQ(WhyNoExportName(name), "") << name;
    for (const char* const name : {"a.ois", "a.msh", "a.pcm", "a.obj", "a", "a.ply.bak", "a.", ""})
        EXPECT_EQ(WhyNoExportName(name), "only ply, stl and hps files can be written") << name;
}

TEST(WhyNoSceneFile, TellsMissingFilesFoldersAndForeignTypesApart) {
    const ScratchFolder folder;
    WriteBytes(folder / "a.pcm", {std::byte{1}});
    WriteBytes(folder / "a.obj", {std::byte{1}});
    ASSERT_EQ(mkdir((folder / "f.pax").c_str(), 0700), 0);
    EXPECT_EQ(WhyNoSceneFile(folder / "a.pcm"), "");
    EXPECT_EQ(WhyNoSceneFile(folder / "b.pcm"), "No such file or directory");
    EXPECT_EQ(WhyNoSceneFile(folder / "f.pax"), "Is a directory");
    EXPECT_EQ(WhyNoSceneFile(folder / "a.obj"), "unknown file type");
}

TEST(WhyNoSceneFile, TellsOfFilesThatMayNotBeRead) {
    if (geteuid() == 0) GTEST_SKIP() << "root may read everything";
    const ScratchFolder folder;
    WriteBytes(folder / "a.pcm", {std::byte{1}});
    ASSERT_EQ(chmod((folder / "a.pcm").c_str(), 0), 0);
    EXPECT_EQ(WhyNoSceneFile(folder / "a.pcm"), "Permission denied");
}

TEST(PlanImport, JoinsNeighbouringPcmFilesAndKeepsTheOrder) {
    const auto runs = PlanImport({"a.pcm", "b.PCM", "c.pax", "d.pcm", "e.xdt", "f.xdt", "g.stl"});
    ASSERT_EQ(runs.size(), 6u);
    EXPECT_TRUE(runs[0].parallel);
    EXPECT_EQ(runs[0].files, (std::vector<std::size_t>{0, 1}));
    EXPECT_FALSE(runs[1].parallel);
    EXPECT_EQ(runs[1].files, (std::vector<std::size_t>{2}));
    EXPECT_TRUE(runs[2].parallel);
    EXPECT_EQ(runs[2].files, (std::vector<std::size_t>{3}));
    for (std::size_t i = 3; i < 6; ++i) {
        EXPECT_FALSE(runs[i].parallel);
        EXPECT_EQ(runs[i].files, (std::vector<std::size_t>{i + 1}));
    }
}

TEST(PlanImport, OfNothingIsNothing) { EXPECT_TRUE(PlanImport({}).empty()); }

}  // namespace
