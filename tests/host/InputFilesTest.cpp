#include "InputFiles.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "host/MeshFiles.h"

namespace {

class InputFilesTest : public testing::Test {
protected:
    void SetUp() override {
        std::filesystem::create_directories(m_folder.Path() / "scans/more");
        std::filesystem::create_directories(m_folder.Path() / "empty");
        for (const char* const name : {"scans/s10.pcm", "scans/s9.pcm", "scans/more/t.ply", "scans/notes.txt"})
            WriteText(m_folder / name, "x");
    }
    /// Each without the folder of the test.
    [[nodiscard]] std::vector<std::string> Names(std::vector<std::string> files) const {
        for (std::string& file : files)
            if (file.starts_with(m_folder.Path().string())) file.erase(0, m_folder.Path().string().size() + 1);
        return files;
    }
    const ScratchFolder m_folder;
};
using Names = std::vector<std::string>;

TEST_F(InputFilesTest, HaveTheFilesOfAFolderInItsPlace) {
    const InputFiles input = ExpandedFiles({"a.ply", m_folder / "scans", "b.ply"});
    EXPECT_EQ(this->Names(input.files),
              (::Names{"a.ply", "scans/s9.pcm", "scans/s10.pcm", "scans/more/t.ply", "b.ply"}));
    EXPECT_TRUE(input.failed.empty());
    EXPECT_TRUE(input.warnings.empty());
}

TEST_F(InputFilesTest, HaveTheLinesOfAListInItsPlace) {
    WriteText(m_folder / "list.txt", "a b.ply\r\n\n# no comment\n@none\n" + (m_folder / "scans") + "\nlast");
    EXPECT_EQ(this->Names(ExpandedFiles({"first", "@" + (m_folder / "list.txt")}).files),
              (::Names{"first", "a b.ply", "# no comment", "@none", "scans/s9.pcm", "scans/s10.pcm", "scans/more/t.ply",
                       "last"}));
    EXPECT_EQ(this->Names(ExpandedLists({"@" + (m_folder / "list.txt"), m_folder / "scans"}).files),
              (::Names{"a b.ply", "# no comment", "@none", "scans", "last", "scans"}))
        << "the window opens folders itself";
}

TEST_F(InputFilesTest, NameFoldersAndListsWithoutFiles) {
    WriteText(m_folder / "blank.txt", "\n\r\n");
    const std::string none = "@" + (m_folder / "none.txt"), blank = "@" + (m_folder / "blank.txt"),
                      folder = "@" + (m_folder / "scans");
    const InputFiles input = ExpandedFiles({m_folder / "empty", none, blank, folder, "a.ply"});
    EXPECT_EQ(input.files, ::Names{"a.ply"});
    ASSERT_EQ(input.failed.size(), 4u);
    EXPECT_EQ(input.failed[0].reason, "the folder holds no file that can be opened");
    EXPECT_EQ(input.failed[1].file, none);
    EXPECT_EQ(input.failed[1].reason, "there is no such file: check its name and its folder");
    EXPECT_EQ(input.failed[2].reason, "the list names no file");
    EXPECT_EQ(input.failed[3].reason, "this is a folder: name its files, or open it in the window");
}

TEST(InputFilesOfOddNames, AreFilesUnlessTheyBeginWithAnAtSign) {
    EXPECT_TRUE(IsFileList("@a"));
    for (const char* const name : {"@", "./@a", "a@", ""}) EXPECT_FALSE(IsFileList(name)) << name;
    EXPECT_EQ(ExpandedFiles({"@", "./@a", "a@b"}).files, (Names{"@", "./@a", "a@b"}));
}

}  // namespace
