// Replacement of a file through the class that src/, host/ and tools/ use. Failing system calls: libs/MsrSaveTest.cpp.
#include "base/AtomicFile.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <fstream>
#include <functional>
#include <string>
#include <system_error>

#include "files/TemporaryFiles.h"
#include "support/ScratchFolder.h"

namespace {

std::string TextOf(const std::string& path) {
    const std::vector<std::byte> bytes = ReadBytes(path);
    return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

/// A file system that makes no files without a name.
class NamedFiles : public FileStorage::FileCalls {
public:
    int Open(const char* path, int flags, mode_t mode) override {
        if ((flags & O_TMPFILE) != O_TMPFILE) return FileCalls::Open(path, flags, mode);
        errno = EOPNOTSUPP;
        return -1;
    }
};

struct AtomicFileTest : testing::Test {
    /// Runs a function in a process that is then killed.
    static void InAKilledProcess(const std::function<void()>& run) {
        const pid_t child = fork();
        if (child == 0) {
            run();
            ::kill(::getpid(), SIGKILL);
        }
        int status = 0;
        ASSERT_EQ(waitpid(child, &status, 0), child);
        ASSERT_TRUE(WIFSIGNALED(status));
    }
    /// The path of the temporary file that a killed process left.
    std::string LeftFile() {
        InAKilledProcess([this] { new AtomicFile(path, named); });
        for (const auto& entry : std::filesystem::directory_iterator(folder.Path()))
            if (entry.path().extension() == ".tmp") return entry.path();
        return {};
    }
    void Write(const std::string& target) {
        AtomicFile file(target);
        file.WriteAt(0, "new", 3);
        file.Commit();
    }

    const ScratchFolder folder;
    const std::string path = folder / "target";
    NamedFiles named;
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

TEST_F(AtomicFileTest, HasNoNameBeforeTheCommit) {
    if (!folder.HasNamelessFiles()) GTEST_SKIP() << "this file system makes none";
    AtomicFile file(path);
    file.WriteAt(0, "new", 3);
    EXPECT_EQ(folder.FileCount(), 0u);
}

TEST_F(AtomicFileTest, RemovesWhatAKilledProcessLeftOfTheSameTarget) {
    ASSERT_NE(LeftFile(), "");
    ASSERT_NE(LeftFile(), "");
    Write(path);
    EXPECT_EQ(TextOf(path), "new");
    EXPECT_EQ(folder.FileCount(), 1u);
}

TEST_F(AtomicFileTest, LeavesTheTemporaryFilesOfOtherTargets) {
    const std::string left = LeftFile();
    Write(folder / "another");
    EXPECT_TRUE(std::filesystem::exists(left));
}

TEST_F(AtomicFileTest, LeavesTheTemporaryFileOfAnotherWriteThatIsNotOver) {
    AtomicFile first(path, named);
    first.WriteAt(0, "first", 5);
    Write(path);
    EXPECT_EQ(folder.FileCount(), 2u) << "the first write has lost its file";
    first.Commit();
    EXPECT_EQ(TextOf(path), "first");
}

TEST_F(AtomicFileTest, RemovesNothingThatItHasNotMade) {
    const std::string left = LeftFile();
    ASSERT_NE(left, "");
    const std::string start = left.substr(0, left.size() - 5);  // names of this target
    // Its last digit is replaced by letters that are no hexadecimal digits: all names differ.
    std::filesystem::create_directory(start + "x.tmp");
    std::filesystem::create_symlink(folder / "elsewhere", start + "y.tmp");
    ASSERT_EQ(mkfifo((start + "z.tmp").c_str(), 0600), 0);
    std::ofstream(start + "x.txt") << "mine";
    std::ofstream(folder / "elsewhere") << "mine";
    const std::size_t before = folder.FileCount();
    Write(path);
    EXPECT_FALSE(std::filesystem::exists(left));
    EXPECT_EQ(folder.FileCount(), before) << "the new file in place of the left one";
    EXPECT_EQ(TextOf(folder / "elsewhere"), "mine");
}

TEST_F(AtomicFileTest, LeavesTheFilesOfOtherUsers) {
    if (::geteuid() != 0) GTEST_SKIP() << "only root can give a file to another user";
    const std::string left = LeftFile();
    ASSERT_EQ(chown(left.c_str(), 12345, 12345), 0);
    Write(path);
    EXPECT_TRUE(std::filesystem::exists(left));
    // Of the target's owner: a privileged process gives its temporary file to him.
    ASSERT_EQ(chown(path.c_str(), 12345, 12345), 0);
    Write(path);
    EXPECT_FALSE(std::filesystem::exists(left));
}

TEST_F(AtomicFileTest, OpenTemporaryFilesAreRemovedBeforeTheProcessEnds) {
    InAKilledProcess([this] {
        AtomicFile file(path, named);
        AtomicFile other(folder / "other", named);
        FileStorage::RemoveOpenTemporaryFiles();
    });
    EXPECT_EQ(folder.FileCount(), 0u);
    AtomicFile file(path, named);
    InAKilledProcess([] { FileStorage::RemoveOpenTemporaryFiles(); });
    EXPECT_EQ(folder.FileCount(), 1u) << "a process removed the file of its parent";
}

}  // namespace
