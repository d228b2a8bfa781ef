// Replacement of a file through the class that src/, host/ and tools/ use. Failing system calls: libs/MsrSaveTest.cpp.
#include "base/AtomicFile.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <string>
#include <system_error>

#include "support/ScratchFolder.h"

namespace {

std::string TextOf(const std::string& path) {
    const std::vector<std::byte> bytes = ReadBytes(path);
    return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

struct AtomicFileTest : testing::Test {
    const ScratchFolder folder;
    const std::string path = folder / "target";
};

TEST_F(AtomicFileTest, CreatesAFileOnCommit) {
    AtomicFile file(path);
    file.WriteAt(0, "new", 3);
    EXPECT_FALSE(std::filesystem::exists(path)) << "before the commit";
    file.Commit();
    EXPECT_EQ(TextOf(path), "new");
    EXPECT_EQ(folder.FileCount(), 1u) << "a temporary file remained";
}

TEST_F(AtomicFileTest, KeepsTheOldFileUntilTheCommit) {
    WriteBytes(path, std::vector<std::byte>(5, std::byte{'o'}));
    AtomicFile file(path);
    file.WriteAt(0, "new", 3);
    EXPECT_EQ(TextOf(path), "ooooo");
    file.Commit();
    EXPECT_EQ(TextOf(path), "new") << "the old file was longer";
}

TEST_F(AtomicFileTest, KeepsTheOldFileAndRemovesTheTemporaryOneWithoutACommit) {
    WriteBytes(path, std::vector<std::byte>(5, std::byte{'o'}));
    {
        AtomicFile file(path);
        file.WriteAt(0, "new", 3);
    }
    EXPECT_EQ(TextOf(path), "ooooo");
    EXPECT_EQ(folder.FileCount(), 1u);
}

TEST_F(AtomicFileTest, WritesInAnyOrderAndFillsGapsWithZeros) {
    AtomicFile file(path);
    file.WriteAt(4, "end", 3);
    file.WriteAt(0, "be", 2);
    file.Commit();
    EXPECT_EQ(TextOf(path), std::string("be\0\0end", 7));
}

TEST_F(AtomicFileTest, ThrowsTheSystemsReasonWhenTheFolderDoesNotExist) {
    try {
        const AtomicFile file(folder / "missing/target");
        FAIL() << "a file in a missing folder was opened";
    } catch (const std::system_error& error) {
        EXPECT_EQ(error.code().value(), ENOENT);
        EXPECT_STREQ(error.what(), "cannot open the folder: No such file or directory");
    }
}

}  // namespace
