// Which values of $TMPDIR are used.
#include "base/TempFolder.h"

#include <gtest/gtest.h>

#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>

namespace {

struct TempFolderTest : testing::Test {
    TempFolderTest() : root("/tmp/kv_temp_folder_test_" + std::to_string(getpid())) {
        std::filesystem::create_directory(root);
    }
    ~TempFolderTest() override {
        std::filesystem::remove_all(root);
        unsetenv("TMPDIR");
    }
    /// Creates a folder whose path has @p length bytes.
    std::string FolderOfLength(std::size_t length) const {
        std::string path = root;
        while (path.size() + 101 < length) path.append(1, '/').append(99, 'x');
        path.append(1, '/').append(length - path.size(), 'y');
        std::filesystem::create_directories(path);
        return path;
    }
    std::string root;
};

TEST_F(TempFolderTest, IsTheFolderThatTmpdirNames) {
    setenv("TMPDIR", root.c_str(), 1);
    EXPECT_EQ(TempFolder(), root);
}

TEST_F(TempFolderTest, HasNoSlashAtTheEnd) {
    setenv("TMPDIR", (root + "//").c_str(), 1);
    EXPECT_EQ(TempFolder(), root);
    setenv("TMPDIR", "/", 1);
    EXPECT_EQ(TempFolder() + "/viewer.log", "/viewer.log");
}

TEST_F(TempFolderTest, IsTmpWhenTmpdirIsUnsetOrEmpty) {
    unsetenv("TMPDIR");
    EXPECT_EQ(TempFolder(), "/tmp");
    setenv("TMPDIR", "", 1);
    EXPECT_EQ(TempFolder(), "/tmp");
}

TEST_F(TempFolderTest, IsTmpWhenTmpdirNamesNoFolder) {
    setenv("TMPDIR", (root + "/none").c_str(), 1);
    EXPECT_EQ(TempFolder(), "/tmp");
    std::ofstream(root + "/file") << "x";
    setenv("TMPDIR", (root + "/file").c_str(), 1);
    EXPECT_EQ(TempFolder(), "/tmp");
}

TEST_F(TempFolderTest, AcceptsAPathOf260BytesAndNoLongerOne) {
    const std::string longest = FolderOfLength(260), tooLong = FolderOfLength(261);
    ASSERT_EQ(longest.size(), 260u);
    setenv("TMPDIR", longest.c_str(), 1);
    EXPECT_EQ(TempFolder(), longest);
    setenv("TMPDIR", tooLong.c_str(), 1);
    EXPECT_EQ(TempFolder(), "/tmp");
}

}  // namespace
