#include "TemporaryPly.h"

#include <gtest/gtest.h>
#include <stdlib.h>

#include <filesystem>
#include <stdexcept>

#include "MessageTable.h"
#include "support/ScratchFolder.h"

namespace {

const std::vector<std::uint8_t> kBytes = {'p', 'l', 'y', 0, 7};

std::vector<std::byte> AsBytes(const std::vector<std::uint8_t>& values) {
    std::vector<std::byte> bytes;
    for (const std::uint8_t value : values) bytes.push_back(std::byte{value});
    return bytes;
}

TEST(TemporaryPly, HasItsContentUntilItIsDestroyed) {
    const ScratchFolder folder;
    std::string path;
    {
        const TemporaryPly ply(kBytes, {folder.Path().string()});
        path = ply.Path();
        EXPECT_TRUE(path.starts_with(folder.Path().string())) << path;
        EXPECT_TRUE(path.ends_with(".ply")) << path;
        EXPECT_EQ(ReadBytes(path), AsBytes(kBytes));
    }
    EXPECT_FALSE(std::filesystem::exists(std::filesystem::symlink_status(path)));
    EXPECT_EQ(folder.FileCount(), 0u);
}

TEST(TemporaryPly, IsMadeInTheFirstFolderThatCanBeWritten) {
    const ScratchFolder folder;
    WriteBytes(folder / "file", {});
    const TemporaryPly ply(kBytes, {folder / "none", folder / "file", folder.Path().string()});
    EXPECT_EQ(ReadBytes(ply.Path()), AsBytes(kBytes));
    EXPECT_TRUE(ply.Path().starts_with(folder.Path().string())) << ply.Path();
}

TEST(TemporaryPly, NamesTheRemedyWhereNoFolderCanBeWritten) {
    try {
        const TemporaryPly ply(kBytes, {"/none", "/proc"});
        FAIL() << ply.Path();
    } catch (const std::runtime_error& error) {
        EXPECT_STREQ(error.what(), kNoTemporaryFile);
    }
}

TEST(TemporaryFolders, BeginWithThatOfTheUser) {
    setenv("TMPDIR", "/a/b", 1);
    EXPECT_EQ(TemporaryFolders().front(), "/a/b");
    setenv("TMPDIR", "", 1);
    EXPECT_EQ(TemporaryFolders().front(), "/tmp");
    unsetenv("TMPDIR");
    EXPECT_EQ(TemporaryFolders().front(), "/tmp");
}

}  // namespace
