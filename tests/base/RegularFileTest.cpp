// Reading by offset and as a whole, and the paths that are refused.
#include "base/RegularFile.h"

#include <gmock/gmock.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

#include "support/ScratchFolder.h"

namespace {

using testing::StartsWith;
using testing::StrEq;
using testing::ThrowsMessage;

std::vector<std::byte> Numbers(int from, int to) {
    std::vector<std::byte> bytes;
    for (int i = from; i < to; ++i) bytes.push_back(static_cast<std::byte>(i));
    return bytes;
}

struct RegularFileTest : testing::Test {
    RegularFileTest() { WriteBytes(path, Numbers(0, 100)); }

    const ScratchFolder folder;
    const std::string path = folder / "numbers";
};

TEST_F(RegularFileTest, ReadsTheWholeFile) {
    const RegularFile file(path);
    EXPECT_EQ(file.Size(), 100u);
    EXPECT_EQ(file.ReadWhole(), Numbers(0, 100));
}

TEST_F(RegularFileTest, ReadsAnEmptyFileAsNoBytes) {
    WriteBytes(path, {});
    const RegularFile file(path);
    EXPECT_EQ(file.Size(), 0u);
    EXPECT_TRUE(file.ReadWhole().empty());
}

TEST_F(RegularFileTest, ReportsAnErrorOfTheSystemWhileReading) {
    const RegularFile file("/proc/self/mem");  // a regular file whose first page cannot be read
    std::byte byte{};
    EXPECT_THAT([&] { (void)file.ReadAt(0, &byte, 1); }, ThrowsMessage<FileAccessError>(StartsWith("cannot be read")));
}

TEST_F(RegularFileTest, ReadsAtAnyOffsetInAnyOrder) {
    const RegularFile file(path);
    std::vector<std::byte> bytes(10);
    for (const int offset : {90, 0, 37}) {
        EXPECT_EQ(file.ReadAt(static_cast<std::uint64_t>(offset), bytes.data(), bytes.size()), bytes.size());
        EXPECT_EQ(bytes, Numbers(offset, offset + 10));
    }
}

TEST_F(RegularFileTest, ReturnsFewerBytesAtTheEndOfTheFileAndNoneAfterIt) {
    const RegularFile file(path);
    std::vector<std::byte> bytes(10);
    EXPECT_EQ(file.ReadAt(91, bytes.data(), bytes.size()), 9u);
    bytes.resize(9);
    EXPECT_EQ(bytes, Numbers(91, 100));
    EXPECT_EQ(file.ReadAt(100, bytes.data(), bytes.size()), 0u);
    EXPECT_EQ(file.ReadAt(std::uint64_t{1} << 40, bytes.data(), bytes.size()), 0u);
}

TEST_F(RegularFileTest, ReadsWhatRemainsOfAFileThatWasShortenedAfterItWasOpened) {
    const RegularFile file(path);
    ASSERT_EQ(::truncate(path.c_str(), 40), 0);
    EXPECT_EQ(file.Size(), 100u) << "the size when it was opened";
    EXPECT_EQ(file.ReadWhole(), Numbers(0, 40));
}

TEST_F(RegularFileTest, FollowsASymbolicLink) {
    std::filesystem::create_symlink("numbers", folder / "link");
    EXPECT_EQ(RegularFile(folder / "link").ReadWhole(), Numbers(0, 100));
}

TEST_F(RegularFileTest, ReportsTheSystemsReasonForAMissingFile) {
    try {
        const RegularFile file(folder / "missing");
        FAIL() << "a file that does not exist was opened";
    } catch (const FileAccessError& error) {
        EXPECT_STREQ(error.what(), "cannot be opened: No such file or directory");
        EXPECT_EQ(error.Error(), ENOENT);
    }
    EXPECT_THAT([&] { RegularFile(path + "/below"); }, ThrowsMessage<FileAccessError>(StartsWith("cannot be opened: ")))
        << "a file is not a folder";
}

TEST_F(RegularFileTest, RefusesFoldersPipesAndDevicesWithoutWaiting) {
    const std::string pipe = folder / "pipe";
    ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
    for (const std::string& other : {folder.Path().string(), pipe, std::string("/dev/null")}) {
        EXPECT_THAT([&] { RegularFile{other}; }, ThrowsMessage<FileAccessError>(StrEq("is not a regular file")))
            << other;
    }
}

// Address 0 of a process is never mapped, so the read fails with EIO.
TEST_F(RegularFileTest, ReportsTheSystemsReasonForAReadThatFails) {
    const RegularFile file("/proc/self/mem");
    std::byte byte{};
    EXPECT_THAT([&] { (void)file.ReadAt(0, &byte, 1); },
                ThrowsMessage<FileAccessError>(StrEq("cannot be read: Input/output error")));
}

}  // namespace
