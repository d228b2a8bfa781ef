#include "PngFile.h"

#include <gtest/gtest.h>
#include <png.h>
#include <sys/stat.h>
#include <unistd.h>

#include "support/ScratchFolder.h"

namespace {

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

TEST(WritePng, KeepsPixelsRowByRowFromTheTopAndLeavesAlphaOut) {
    const ScratchFolder folder;
    std::string reason;
    ASSERT_TRUE(WritePng(folder / "a.png", ThreeByTwo(), &reason)) << reason;
    int width = 0, height = 0;
    const std::vector<png_byte> expected = {255, 0, 0, 0, 255, 0, 0, 0, 255, 255, 255, 255, 0, 0, 0, 0x12, 0x34, 0x56};
    EXPECT_EQ(ReadRgb(folder / "a.png", &width, &height), expected);
    EXPECT_EQ(width, 3);
    EXPECT_EQ(height, 2);
}

TEST(WritePng, ReplacesAnOlderFileAndLeavesNothingBesideIt) {
    const ScratchFolder folder;
    std::string reason;
    WriteBytes(folder / "a.png", {std::byte{1}});
    ASSERT_TRUE(WritePng(folder / "a.png", ThreeByTwo(), &reason)) << reason;
    EXPECT_EQ(folder.FileCount(), 1u);
    EXPECT_GT(ReadBytes(folder / "a.png").size(), 8u);
}

TEST(WritePng, GivesTheFileTheRightsOfAnyNewFile) {
    const ScratchFolder folder;
    std::string reason;
    const mode_t mask = umask(027);
    EXPECT_TRUE(WritePng(folder / "a.png", ThreeByTwo(), &reason)) << reason;
    umask(mask);
    struct stat status {};
    ASSERT_EQ(stat((folder / "a.png").c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777, 0640u);
}

TEST(WritePng, SaysWhyAFolderTakesNoFile) {
    const ScratchFolder folder;
    std::string reason;
    EXPECT_FALSE(WritePng(folder / "no/a.png", ThreeByTwo(), &reason));
    EXPECT_EQ(reason, "No such file or directory");
}

TEST(WritePng, SaysThatADeviceIsFullAndDoesNotReplaceIt) {
    std::string reason;
    EXPECT_FALSE(WritePng("/dev/full", ThreeByTwo(), &reason));
    EXPECT_EQ(reason, "No space left on device");
    struct stat status {};
    ASSERT_EQ(stat("/dev/full", &status), 0);
    EXPECT_TRUE(S_ISCHR(status.st_mode));
}

TEST(WritePng, LeavesTheOldFileWholeWhenItFails) {
    const ScratchFolder folder;
    std::string reason;
    const std::string target = folder / "folder.png";
    ASSERT_EQ(mkdir(target.c_str(), 0700), 0);
    EXPECT_FALSE(WritePng(target, ThreeByTwo(), &reason));
    EXPECT_NE(reason, "");
    EXPECT_EQ(folder.FileCount(), 1u) << "the folder in the way, and no left-over beside it";
}

TEST(WritePng, RefusesAPictureOfNoSize) {
    const ScratchFolder folder;
    std::string reason;
    EXPECT_FALSE(WritePng(folder / "a.png", {}, &reason));
    EXPECT_NE(reason, "");
    EXPECT_EQ(folder.FileCount(), 0u);
}

}  // namespace
