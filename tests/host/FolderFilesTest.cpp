#include "FolderFiles.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "support/ScratchFolder.h"

namespace {

class FolderFilesTest : public testing::Test {
protected:
    void Make(const std::string& file) const {
        const std::filesystem::path path = m_folder.Path() / file;
        std::filesystem::create_directories(path.parent_path());
        std::ofstream(path) << "x";
    }
    /// Of the found files, below the folder.
    [[nodiscard]] std::vector<std::string> Names(const FolderFiles& found) const {
        std::vector<std::string> names;
        for (const std::string& file : found.files) names.push_back(file.substr(m_folder.Path().string().size() + 1));
        return names;
    }
    const ScratchFolder m_folder;
};
using Files = std::vector<std::string>;

TEST_F(FolderFilesTest, KnownTypesInNaturalOrderWithTheFilesOfEachFolderTogether) {
    for (const char* const file : {"scan10.pcm", "scan2.pcm", "b/scan1.STL", "b/deep/c.ply", "a.xyz", "notes.txt",
                                   "x.csv", "picture.png", ".hidden.pcm", ".cache/scan.pcm", "pcm", "poses.json"})
        Make(file);
    const FolderFiles found = FilesInFolder(m_folder.Path());
    EXPECT_EQ(Names(found), (Files{"a.xyz", "scan2.pcm", "scan10.pcm", "b/scan1.STL", "b/deep/c.ply"}));
    EXPECT_FALSE(found.isCut);
    EXPECT_EQ(FilesInFolder(m_folder.Path().string() + "/").files.size(), 5u);
}

TEST_F(FolderFilesTest, LinksThatLeadBackAreVisitedOnce) {
    Make("in/a.pcm");
    std::filesystem::create_directory_symlink(m_folder.Path(), m_folder.Path() / "in/up");
    std::filesystem::create_directory_symlink(m_folder.Path() / "in", m_folder.Path() / "again");
    std::filesystem::create_symlink("nowhere.pcm", m_folder.Path() / "broken.pcm");
    EXPECT_EQ(FilesInFolder(m_folder.Path()).files.size(), 1u);
}

TEST_F(FolderFilesTest, NamesThatAreNotUtf8Stay) {
    Make("sc\xff.pcm");
    EXPECT_EQ(Names(FilesInFolder(m_folder.Path())), Files{"sc\xff.pcm"});
}

TEST_F(FolderFilesTest, StopsAtItsLimits) {
    for (int i = 0; i < 5; ++i) Make(std::to_string(i) + ".pcm");
    Make("a/b/c.pcm");
    EXPECT_FALSE(FilesInFolder(m_folder.Path(), {.files = 6}).isCut);
    const FolderFiles few = FilesInFolder(m_folder.Path(), {.files = 5});
    EXPECT_EQ(few.files.size(), 5u);
    EXPECT_TRUE(few.isCut);
    EXPECT_TRUE(FilesInFolder(m_folder.Path(), {.entries = 3}).isCut);
    EXPECT_EQ(FilesInFolder(m_folder.Path(), {.depth = 1}).files.size(), 5u);
}

TEST_F(FolderFilesTest, AFolderThatCannotBeReadHoldsNothing) {
    EXPECT_TRUE(FilesInFolder(m_folder / "none").files.empty());
    EXPECT_TRUE(FilesInFolder(m_folder.Path()).files.empty()) << "an empty one";
    Make("a.pcm");
    EXPECT_TRUE(FilesInFolder(m_folder / "a.pcm").files.empty()) << "a file";
}

}  // namespace
