#include "FolderFiles.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>

#include "host/UnprivilegedUser.h"
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

TEST_F(FolderFilesTest, AFolderThatCannotBeReadHasAReason) {
    EXPECT_TRUE(FilesInFolder(m_folder.Path()).unread.empty()) << "an empty one";
    Make("a.pcm");
    for (const auto& [name, reason] : {std::pair{"none", "No such file or directory"}, {"a.pcm", "Not a directory"}}) {
        const FolderFiles found = FilesInFolder(m_folder / name);
        EXPECT_TRUE(found.files.empty()) << name;
        ASSERT_EQ(found.unread.size(), 1u) << name;
        EXPECT_EQ(found.unread[0].path, m_folder / name);
        EXPECT_EQ(found.unread[0].reason,
                  std::string("the folder could not be read: ") + reason + ": check its permissions");
    }
}

TEST_F(FolderFilesTest, FoldersWithoutPermissionAreNamedBesideTheFilesThatWereFound) {
    using std::filesystem::perms;
    Make("a.pcm");
    Make("closed/b.pcm");
    Make("listed/c.pcm");
    std::filesystem::create_symlink("closed/b.pcm", m_folder.Path() / "link.pcm");
    std::filesystem::permissions(m_folder.Path(), perms(0755));
    std::filesystem::permissions(m_folder.Path() / "closed", perms::none);
    std::filesystem::permissions(m_folder.Path() / "listed", perms(0444));
    FolderFiles found;
    {
        const UnprivilegedUser user;
        if (!user.HasEffect()) GTEST_SKIP() << "this process cannot change its user";
        found = FilesInFolder(m_folder.Path());
    }
    for (const char* const name : {"closed", "listed"})
        std::filesystem::permissions(m_folder.Path() / name, perms::owner_all);
    EXPECT_EQ(Names(found), Files{"a.pcm"});
    ASSERT_EQ(found.unread.size(), 2u);
    Files unread = {found.unread[0].path, found.unread[1].path};
    std::ranges::sort(unread);
    EXPECT_EQ(unread, (Files{m_folder / "closed", m_folder / "listed"}));
    EXPECT_EQ(found.unread[0].reason, "the folder could not be read: Permission denied: check its permissions");
}

}  // namespace
