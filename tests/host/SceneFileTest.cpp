#include "SceneFile.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include "ImportPlan.h"
#include "host/ScanFiles.h"
#include "host/UnprivilegedUser.h"

namespace {

TEST(ExportRefusal, IsEmptyForTheTypesThatAreWrittenOnly) {
    for (const char* const name : {"a.ply", "a.STL", "x/a.b.hps"}) EXPECT_EQ(ExportRefusal(name), "") << name;
    for (const char* const name : {"a.ois", "a.msh", "a.pcm", "a.dat", "a", "a.ply.bak", "a.", ""})
        EXPECT_EQ(ExportRefusal(name), "only ply, stl and hps files can be written") << name;
}

TEST(ImportRefusal, NamesMissingFilesFoldersAndUnknownTypes) {
    const ScratchFolder folder;
    WriteBytes(folder / "a.pcm", {std::byte{1}});
    WriteBytes(folder / "a.dat", {std::byte{1}});
    ASSERT_EQ(mkdir((folder / "f.pax").c_str(), 0700), 0);
    for (const char* const name : {"a.ply", "a.STL", "a.Hps", "a.ois", "a.msh", "a.xdt"}) {
        WriteBytes(folder / name, {std::byte{1}});
        EXPECT_EQ(ImportRefusal(folder / name), "") << name;
    }
    EXPECT_EQ(ImportRefusal(folder / "a.pcm"), "");
    EXPECT_EQ(ImportRefusal(folder / "b.pcm"), "there is no such file: check its name and its folder");
    EXPECT_EQ(ImportRefusal(folder / "f.pax"), "this is a folder: name its files, or open it in the window");
    EXPECT_EQ(
        ImportRefusal(folder / "a.dat"),
        "the type of the file is not known: it is none of pcm, pax, xdt, ply, stl, hps, ois, msh, obj, off, gltf, "
        "glb, 3mf, dae and others");
}

/// A folder that any user may search, with one file.
class FilePermissions : public testing::Test {
protected:
    void SetUp() override {
        ASSERT_EQ(chmod(m_folder.Path().c_str(), 0755), 0);
        WriteBytes(m_file, {std::byte{1}});
    }
    const ScratchFolder m_folder;
    const std::string m_file = m_folder / "a.pcm";
};

TEST_F(FilePermissions, RefuseTheImportOfAFileThatTheUserMayNotRead) {
    ASSERT_EQ(chmod(m_file.c_str(), 0), 0);
    const UnprivilegedUser user;
    if (!user.HasEffect()) GTEST_SKIP() << "root that may not change its user";
    EXPECT_EQ(ImportRefusal(m_file), "Permission denied");
}

TEST_F(FilePermissions, RefuseToWriteAWriteProtectedFile) {
    ASSERT_EQ(chmod(m_folder.Path().c_str(), 0777), 0);
    ASSERT_EQ(chmod(m_file.c_str(), 0444), 0);
    const UnprivilegedUser user;
    if (!user.HasEffect()) GTEST_SKIP() << "root that may not change its user";
    EXPECT_EQ(WriteRefusal(m_file), "Permission denied");
    EXPECT_EQ(WriteRefusal(m_folder / "new.ply"), "");
}

TEST_F(FilePermissions, RefuseToWriteIntoAWriteProtectedFolder) {
    ASSERT_EQ(chmod(m_folder.Path().c_str(), 0555), 0);
    ASSERT_EQ(chmod(m_file.c_str(), 0666), 0);
    const UnprivilegedUser user;
    if (!user.HasEffect()) GTEST_SKIP() << "root that may not change its user";
    EXPECT_EQ(WriteRefusal(m_folder / "new.ply"), "no file can be created in its folder: Permission denied");
    EXPECT_EQ(WriteRefusal(m_file), "no file can be created in its folder: Permission denied");
}

TEST(PlanImport, JoinsConsecutivePcmFilesAndKeepsTheOrder) {
    const auto runs = PlanImport({"a.pcm", "b.PCM", "c.pax", "d.pcm", "e.xdt", "f.xdt", "g.stl"}, 2);
    ASSERT_EQ(runs.size(), 6u);
    EXPECT_EQ(runs[0].kind, ImportRun::Kind::Grids);
    EXPECT_EQ(runs[0].files, (std::vector<std::size_t>{0, 1}));
    EXPECT_EQ(runs[1].kind, ImportRun::Kind::Viewer);
    EXPECT_EQ(runs[1].files, (std::vector<std::size_t>{2}));
    EXPECT_EQ(runs[2].kind, ImportRun::Kind::Grids);
    EXPECT_EQ(runs[2].files, (std::vector<std::size_t>{3}));
    for (std::size_t i = 3; i < 6; ++i) {
        EXPECT_EQ(runs[i].kind, ImportRun::Kind::Viewer);
        EXPECT_EQ(runs[i].files, (std::vector<std::size_t>{i + 1}));
    }
}

/// The numbers of files of the runs of @p count pcm files.
std::vector<std::size_t> RunsOf(std::size_t count, std::size_t threads) {
    std::vector<std::size_t> sizes;
    std::size_t next = 0;
    for (const ImportRun& run : PlanImport(std::vector<std::string>(count, "a.pcm"), threads)) {
        EXPECT_EQ(run.kind, ImportRun::Kind::Grids);
        for (const std::size_t file : run.files) EXPECT_EQ(file, next++);
        sizes.push_back(run.files.size());
    }
    EXPECT_EQ(next, count);
    return sizes;
}

TEST(PlanImport, BeginsWithAFileForEachThreadAndDoublesEachRun) {
    using Sizes = std::vector<std::size_t>;
    EXPECT_EQ(RunsOf(24, 2), (Sizes{2, 4, 8, 10}));
    EXPECT_EQ(RunsOf(24, 16), (Sizes{16, 8}));
    EXPECT_EQ(RunsOf(2, 2), Sizes{2});
    EXPECT_EQ(RunsOf(3, 2), (Sizes{2, 1}));
    EXPECT_EQ(RunsOf(3, 0), (Sizes{1, 2})) << "the number of cores is not known";
}

TEST(PlanImport, JoinsFilesForTheReaderProcessUpToTheNumberOfThreads) {
    const auto runs = PlanImport({"a.obj", "b.glb", "c.off", "d.hps", "e.OBJ"}, 2);
    ASSERT_EQ(runs.size(), 4u);
    for (const std::size_t i : {0, 1, 3}) EXPECT_EQ(runs[i].kind, ImportRun::Kind::Process) << i;
    EXPECT_EQ(runs[0].files, (std::vector<std::size_t>{0, 1}));
    EXPECT_EQ(runs[1].files, std::vector<std::size_t>{2});
    EXPECT_EQ(runs[2].kind, ImportRun::Kind::Viewer);
    EXPECT_EQ(runs[3].files, std::vector<std::size_t>{4});
}

TEST(PlanImport, OfNothingIsNothing) { EXPECT_TRUE(PlanImport({}, 2).empty()); }

}  // namespace
