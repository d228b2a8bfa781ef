#include "PngFile.h"

#include <gtest/gtest.h>
#include <png.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <filesystem>

#include "host/UnprivilegedUser.h"
#include "support/ScratchFolder.h"

namespace {
int g_umaskCalls = 0;
}  // namespace

/// In place of that of the C library, also for the code under test: even a umask that is set back at once is wrong for
/// the files that another thread creates in between.
extern "C" mode_t umask(mode_t mask) noexcept {
    ++g_umaskCalls;
    return static_cast<mode_t>(syscall(SYS_umask, mask));
}

namespace {

/// The permission bits of a file, links followed.
mode_t ModeOf(const std::string& path) {
    struct stat status {};
    EXPECT_EQ(stat(path.c_str(), &status), 0) << path;
    return status.st_mode & 07777;
}

bool IsPng(const std::string& path) {
    const std::vector<std::byte> bytes = ReadBytes(path);
    return bytes.size() > 8 && bytes[1] == std::byte{'P'} && bytes[2] == std::byte{'N'} && bytes[3] == std::byte{'G'};
}

/// The bytes r, g, b of a PNG file, by libpng's reader.
std::vector<png_byte> ReadRgb(const std::string& path, int* width, int* height) {
    png_image image{};
    image.version = PNG_IMAGE_VERSION;
    if (png_image_begin_read_from_file(&image, path.c_str()) == 0) return {};
    EXPECT_EQ(image.format, static_cast<png_uint_32>(PNG_FORMAT_RGB)) << "no alpha, eight bits a channel";
    image.format = PNG_FORMAT_RGB;
    std::vector<png_byte> bytes(PNG_IMAGE_SIZE(image));
    png_image_finish_read(&image, nullptr, bytes.data(), 0, nullptr);
    *width = static_cast<int>(image.width);
    *height = static_cast<int>(image.height);
    return bytes;
}

KV_ScenePane::Picture ThreeByTwo() {
    // Top row: red, green, blue. Bottom row: white, black, and one whose alpha must not count.
    return {3, 2, {0xFFFF0000, 0xFF00FF00, 0xFF0000FF, 0xFFFFFFFF, 0xFF000000, 0x00123456}};
}

TEST(WritePng, StoresPixelsRowByRowFromTheTopWithoutAlpha) {
    const ScratchFolder folder;
    std::string reason;
    ASSERT_TRUE(WritePng(folder / "a.png", ThreeByTwo(), &reason)) << reason;
    int width = 0, height = 0;
    const std::vector<png_byte> expected = {255, 0, 0, 0, 255, 0, 0, 0, 255, 255, 255, 255, 0, 0, 0, 0x12, 0x34, 0x56};
    EXPECT_EQ(ReadRgb(folder / "a.png", &width, &height), expected);
    EXPECT_EQ(width, 3);
    EXPECT_EQ(height, 2);
}

TEST(WritePng, ReplacesAnOlderFileAndLeavesNoTemporaryFile) {
    const ScratchFolder folder;
    std::string reason;
    WriteBytes(folder / "a.png", {std::byte{1}});
    ASSERT_TRUE(WritePng(folder / "a.png", ThreeByTwo(), &reason)) << reason;
    EXPECT_EQ(folder.FileCount(), 1u);
    EXPECT_GT(ReadBytes(folder / "a.png").size(), 8u);
}

TEST(WritePng, GivesANewFileTheModeOfTheUmaskAndLeavesTheUmaskAlone) {
    const ScratchFolder folder;
    std::string reason;
    const mode_t mask = umask(027);
    g_umaskCalls = 0;
    EXPECT_TRUE(WritePng(folder / "a.png", ThreeByTwo(), &reason)) << reason;
    EXPECT_TRUE(WritePng(folder / "a.png", ThreeByTwo(), &reason)) << reason;
    EXPECT_EQ(g_umaskCalls, 0);
    EXPECT_EQ(umask(mask), 027u);
    EXPECT_EQ(ModeOf(folder / "a.png"), 0640u);
}

TEST(WritePng, KeepsTheModeOfAnOlderFile) {
    const ScratchFolder folder;
    std::string reason;
    for (const mode_t mode : {0600u, 0664u}) {
        WriteBytes(folder / "a.png", {std::byte{1}});
        ASSERT_EQ(chmod((folder / "a.png").c_str(), mode), 0);
        ASSERT_TRUE(WritePng(folder / "a.png", ThreeByTwo(), &reason)) << reason;
        EXPECT_EQ(ModeOf(folder / "a.png"), mode);
        EXPECT_TRUE(IsPng(folder / "a.png"));
    }
}

TEST(WritePng, KeepsASymbolicLinkAndReplacesItsTarget) {
    const ScratchFolder folder;
    std::string reason;
    ASSERT_EQ(mkdir((folder / "other").c_str(), 0700), 0);
    WriteBytes(folder / "other/target.png", {std::byte{1}});
    ASSERT_EQ(chmod((folder / "other/target.png").c_str(), 0600), 0);
    ASSERT_EQ(symlink("other/target.png", (folder / "link.png").c_str()), 0);
    ASSERT_TRUE(WritePng(folder / "link.png", ThreeByTwo(), &reason)) << reason;
    EXPECT_EQ(std::filesystem::read_symlink(folder / "link.png"), "other/target.png");
    EXPECT_TRUE(IsPng(folder / "other/target.png"));
    EXPECT_EQ(ModeOf(folder / "other/target.png"), 0600u);
    EXPECT_EQ(folder.FileCount(), 2u) << "link and folder";
}

TEST(WritePng, CreatesTheMissingTargetOfASymbolicLink) {
    const ScratchFolder folder;
    std::string reason;
    ASSERT_EQ(symlink("target.png", (folder / "link.png").c_str()), 0);
    ASSERT_TRUE(WritePng(folder / "link.png", ThreeByTwo(), &reason)) << reason;
    EXPECT_TRUE(std::filesystem::is_symlink(folder / "link.png"));
    EXPECT_TRUE(IsPng(folder / "target.png"));
}

TEST(WritePng, ReportsAFolderThatIsWriteProtected) {
    const ScratchFolder folder;
    std::string reason;
    WriteBytes(folder / "old.png", {std::byte{1}});
    ASSERT_EQ(chmod((folder / "old.png").c_str(), 0666), 0);
    ASSERT_EQ(chmod(folder.Path().c_str(), 0555), 0);
    const UnprivilegedUser user;
    if (!user.HasEffect()) GTEST_SKIP() << "root that may not change its user";
    for (const char* const name : {"new.png", "old.png"}) {
        EXPECT_FALSE(WritePng(folder / name, ThreeByTwo(), &reason)) << name;
        EXPECT_EQ(reason, "the file could not be replaced: Permission denied: check the folder and its permissions")
            << name;
    }
    EXPECT_EQ(ReadBytes(folder / "old.png").size(), 1u);
}

TEST(WritePng, RefusesAFileThatIsWriteProtected) {
    const ScratchFolder folder;
    std::string reason;
    ASSERT_EQ(chmod(folder.Path().c_str(), 0777), 0);
    WriteBytes(folder / "old.png", {std::byte{1}});
    ASSERT_EQ(chmod((folder / "old.png").c_str(), 0444), 0);
    const UnprivilegedUser user;
    if (!user.HasEffect()) GTEST_SKIP() << "root that may not change its user";
    EXPECT_FALSE(WritePng(folder / "old.png", ThreeByTwo(), &reason));
    EXPECT_EQ(reason, "the file must not be written: Permission denied: change its permissions or choose another name");
    EXPECT_EQ(ReadBytes(folder / "old.png").size(), 1u);
    EXPECT_EQ(folder.FileCount(), 1u);
}

TEST(WritePng, KeepsTheOwnerOfAnOlderFile) {
    if (geteuid() != 0) GTEST_SKIP() << "only root can keep another owner";
    const ScratchFolder folder;
    std::string reason;
    WriteBytes(folder / "a.png", {std::byte{1}});
    ASSERT_EQ(chown((folder / "a.png").c_str(), 12345, 54321), 0);
    ASSERT_TRUE(WritePng(folder / "a.png", ThreeByTwo(), &reason)) << reason;
    struct stat status {};
    ASSERT_EQ(stat((folder / "a.png").c_str(), &status), 0);
    EXPECT_EQ(status.st_uid, 12345u);
    EXPECT_EQ(status.st_gid, 54321u);
    EXPECT_TRUE(IsPng(folder / "a.png"));
}

TEST(WritePng, ReportsAMissingFolder) {
    const ScratchFolder folder;
    std::string reason;
    EXPECT_FALSE(WritePng(folder / "no/a.png", ThreeByTwo(), &reason));
    EXPECT_EQ(reason,
              "the file could not be replaced: No such file or directory: check the folder and its permissions");
}

TEST(WritePng, ReportsAFullDeviceAndDoesNotReplaceIt) {
    std::string reason;
    EXPECT_FALSE(WritePng("/dev/full", ThreeByTwo(), &reason));
    EXPECT_EQ(reason, "the disk is full: free some space or choose another folder");
    struct stat status {};
    ASSERT_EQ(stat("/dev/full", &status), 0);
    EXPECT_TRUE(S_ISCHR(status.st_mode));
}

TEST(WritePng, ReportsAFolderOfTheSameName) {
    const ScratchFolder folder;
    std::string reason;
    const std::string target = folder / "folder.png";
    ASSERT_EQ(mkdir(target.c_str(), 0700), 0);
    EXPECT_FALSE(WritePng(target, ThreeByTwo(), &reason));
    EXPECT_EQ(reason, "this is a folder: choose the name of a file");
    EXPECT_EQ(folder.FileCount(), 1u) << "the folder, and no temporary file";
}

TEST(WritePng, RefusesAPictureWithoutPixels) {
    const ScratchFolder folder;
    std::string reason;
    EXPECT_FALSE(WritePng(folder / "a.png", {}, &reason));
    EXPECT_NE(reason, "");
    EXPECT_EQ(folder.FileCount(), 0u);
}

}  // namespace
