#include "InputFiles.h"

#include <gtest/gtest.h>

#include <unistd.h>

#include <filesystem>

#include "host/MeshFiles.h"
#include "host/UnprivilegedUser.h"

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
    EXPECT_EQ(input.failed[3].reason, "this is a folder, not a list of files");
}

TEST_F(InputFilesTest, NameFoldersThatCannotBeReadWithTheReason) {
    const std::string folder = m_folder / "scans";
    const std::filesystem::path more = folder + "/more";
    std::filesystem::permissions(m_folder.Path(), std::filesystem::perms(0755));
    std::filesystem::permissions(more, std::filesystem::perms::none);
    InputFiles input, alone;
    {
        const UnprivilegedUser user;
        if (!user.HasEffect()) GTEST_SKIP() << "this process cannot change its user";
        input = ExpandedFiles({folder});
        alone = ExpandedFiles({more});
    }
    std::filesystem::permissions(more, std::filesystem::perms::owner_all);
    const char* const reason = "the folder could not be read: Permission denied: check its permissions";
    EXPECT_EQ(input.files.size(), 2u);
    for (const InputFiles& found : {input, alone}) {
        ASSERT_EQ(found.failed.size(), 1u);
        EXPECT_EQ(found.failed[0].file, more.string());
        EXPECT_EQ(found.failed[0].reason, reason);
    }
}

TEST_F(InputFilesTest, HaveTheNamesOfAListWithAByteOrderMarkAndBlankLines) {
    WriteText(m_folder / "list.txt",
              "\xEF\xBB\xBF"
              "a.ply\r\n  \n\t\r\n \xEF\xBB\xBF"
              "b.ply\n");
    EXPECT_EQ(ExpandedFiles({"@" + (m_folder / "list.txt")}).files, (::Names{"a.ply",
                                                                             " \xEF\xBB\xBF"
                                                                             "b.ply"}))
        << "only at the start, and blanks may be part of a name";
    WriteText(m_folder / "list.txt", "\xEF\xBB\xBF\n \n");
    EXPECT_EQ(ExpandedFiles({"@" + (m_folder / "list.txt")}).failed.at(0).reason, "the list names no file");
}

TEST_F(InputFilesTest, DoNotComeFromDevices) {
    for (const char* const device : {"@/dev/zero", "@/dev/full", "@/dev/null"}) {
        const InputFiles input = ExpandedFiles({device});
        EXPECT_TRUE(input.files.empty()) << device;
        EXPECT_EQ(input.failed.at(0).reason, "this is a device: a list of files is a text file or a pipe") << device;
    }
}

TEST_F(InputFilesTest, ComeFromAPipeOnce) {
    int ends[2] = {-1, -1};
    ASSERT_EQ(pipe(ends), 0);
    const std::string names = "a.ply\n@b.ply\n", list = "@/proc/self/fd/" + std::to_string(ends[0]);
    ASSERT_EQ(write(ends[1], names.data(), names.size()), static_cast<ssize_t>(names.size()));
    close(ends[1]);
    WriteText(m_folder / "list.txt", "c.ply");
    const std::string file = "@" + (m_folder / "list.txt");
    const ::Names read = WithoutPipedLists({"x.ply", list, file, "@none"});
    EXPECT_EQ(read, (::Names{"x.ply", "a.ply", "./@b.ply", file, "@none"}));
    EXPECT_EQ(WithoutPipedLists({list}), ::Names{list}) << "nothing is left in it";
    close(ends[0]);
}

TEST(InputFilesOfOddNames, AreFilesUnlessTheyBeginWithAnAtSign) {
    EXPECT_TRUE(IsFileList("@a"));
    for (const char* const name : {"@", "./@a", "a@", ""}) EXPECT_FALSE(IsFileList(name)) << name;
    EXPECT_EQ(ExpandedFiles({"@", "./@a", "a@b"}).files, (Names{"@", "./@a", "a@b"}));
}

}  // namespace
