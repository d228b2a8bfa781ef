#include "PictureFile.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>

#include "host/HeadlessRuns.h"

namespace {

/// 4 x 2 pixels: red, green, blue, white in the upper row, black below.
KV_ScenePane::Picture SmallPicture() {
    return {4, 2, {0xFFFF0000, 0xFF00FF00, 0xFF0000FF, 0xFFFFFFFF, 0xFF000000, 0xFF000000, 0xFF000000, 0xFF000000}};
}

/// A flat red picture, whose colour JPEG keeps nearly.
KV_ScenePane::Picture RedPicture(int width, int height) {
    return {width, height,
            std::vector<std::uint32_t>(static_cast<std::size_t>(width) * static_cast<std::size_t>(height), 0xFFE01020)};
}

std::string Start(const std::string& path, std::size_t size) {
    std::string text;
    for (const std::byte byte : ReadBytes(path)) text += static_cast<char>(byte);
    return text.substr(0, size);
}

TEST(PictureFormat, FollowsTheExtensionInAnyCase) {
    EXPECT_EQ(PictureFormatOf("a.png"), PictureFormat::Png);
    EXPECT_EQ(PictureFormatOf("a.b/c.JPG"), PictureFormat::Jpeg);
    EXPECT_EQ(PictureFormatOf("x.jpeg"), PictureFormat::Jpeg);
    EXPECT_EQ(PictureFormatOf("x.WebP"), PictureFormat::WebP);
    for (const char* const name : {"", "png", "a.pn", "a.png.gz", "a.stl", "png/a"})
        EXPECT_EQ(PictureFormatOf(name), std::nullopt) << name;
}

TEST(PictureFile, HasTheFormatOfItsName) {
    const ScratchFolder folder;
    std::string reason = "kept";
    for (const char* const name : {"a.png", "a.jpg", "a.jpeg", "a.webp"})
        EXPECT_TRUE(WritePicture(folder / name, SmallPicture(), &reason)) << name;
    EXPECT_EQ(reason, "kept");
    EXPECT_EQ(Start(folder / "a.png", 4), "\x89PNG");
    EXPECT_EQ(Start(folder / "a.jpg", 3), "\xFF\xD8\xFF");
    EXPECT_EQ(Start(folder / "a.jpeg", 3), "\xFF\xD8\xFF");
    EXPECT_EQ(Start(folder / "a.webp", 4), "RIFF");
    EXPECT_EQ(Start(folder / "a.webp", 16).substr(8), "WEBPVP8L") << "without losses";
    EXPECT_EQ(folder.FileCount(), 4u) << "nothing is left over";
}

TEST(PictureFile, HasThePixelsOfThePicture) {
    const ScratchFolder folder;
    std::string reason;
    ASSERT_TRUE(WritePicture(folder / "a.png", SmallPicture(), &reason)) << reason;
    const Png png = ReadPng(folder / "a.png");
    EXPECT_EQ(png.At(0, 0), 0xFF0000u);
    EXPECT_EQ(png.At(2, 0), 0x0000FFu);
    EXPECT_EQ(png.At(3, 1), 0x000000u);
}

/// By an other program than ours, where this machine has it.
std::string Converted(const std::string& path, const std::string& png) {
    const std::string command = "convert '" + path + "' 'png24:" + png + "' 2>/dev/null";
    return std::system(command.c_str()) == 0 ? png : "";
}

TEST(PictureFile, IsReadByAnotherProgram) {
    const ScratchFolder folder;
    std::string reason;
    ASSERT_TRUE(WritePicture(folder / "a.jpg", RedPicture(40, 30), &reason)) << reason;
    ASSERT_TRUE(WritePicture(folder / "b.webp", SmallPicture(), &reason)) << reason;
    const std::string jpeg = Converted(folder / "a.jpg", folder / "a.png");
    if (jpeg.empty()) GTEST_SKIP() << "this machine has no program that reads jpeg files";
    const Png red = ReadPng(jpeg);
    EXPECT_EQ(red.width, 40);
    EXPECT_EQ(red.height, 30);
    EXPECT_NEAR(red.At(20, 15) >> 16, 0xE0, 2);
    EXPECT_NEAR(red.At(20, 15) & 0xFF, 0x20, 2);
    const std::string webp = Converted(folder / "b.webp", folder / "b.png");
    if (webp.empty()) GTEST_SKIP() << "this machine has no program that reads webp files";
    const Png small = ReadPng(webp);
    EXPECT_EQ(small.At(1, 0), 0x00FF00u);
    EXPECT_EQ(small.At(3, 0), 0xFFFFFFu);
    EXPECT_EQ(small.At(0, 1), 0x000000u);
}

TEST(PictureFile, KeepsAnOlderFileWhenItCannotBeEncoded) {
    const ScratchFolder folder;
    WriteBytes(folder / "a.webp", {std::byte{1}});
    std::string reason;
    EXPECT_FALSE(WritePicture(folder / "a.webp", RedPicture(16384, 1), &reason));
    EXPECT_EQ(reason, "a webp file has at most 16383 pixels a side: write a png file");
    EXPECT_EQ(ReadBytes(folder / "a.webp").size(), 1u);
    reason.clear();
    EXPECT_FALSE(WritePicture(folder / "a.jpg", RedPicture(65501, 1), &reason));
    EXPECT_NE(reason.find("Maximum supported image dimension"), std::string::npos) << reason;
    EXPECT_FALSE(WritePicture(folder / "no/a.jpg", RedPicture(2, 1), &reason));
    EXPECT_NE(reason, "");
}

/// Standard output is a file while this lives.
class OutputInto {
public:
    explicit OutputInto(const std::string& path, int flags = O_TRUNC) : m_nSaved(dup(STDOUT_FILENO)) {
        std::fflush(stdout);
        const int file = open(path.c_str(), O_WRONLY | O_CREAT | flags, 0600);
        dup2(file, STDOUT_FILENO);
        close(file);
    }
    ~OutputInto() {
        std::fflush(stdout);
        dup2(m_nSaved, STDOUT_FILENO);
        close(m_nSaved);
    }

private:
    const int m_nSaved;
};

TEST(PictureFile, OfADashIsPrintedAsPng) {
    const ScratchFolder folder;
    WriteBytes(folder / "a.png", {std::byte{'x'}});
    struct stat before {
    }, after{};
    ASSERT_EQ(stat((folder / "a.png").c_str(), &before), 0);
    std::string reason;
    {
        const OutputInto file(folder / "a.png");
        EXPECT_TRUE(WritePicture("-", SmallPicture(), &reason)) << reason;
    }
    ASSERT_EQ(stat((folder / "a.png").c_str(), &after), 0);
    EXPECT_EQ(before.st_ino, after.st_ino) << "the file that the shell has opened, not another one of its name";
    EXPECT_EQ(ReadPng(folder / "a.png").At(1, 0), 0x00FF00u);
    EXPECT_EQ(folder.FileCount(), 1u);
}

TEST(PictureFile, OfADashFailsOnAFullDevice) {
    std::string reason;
    bool isWritten = false;
    {
        const OutputInto full("/dev/full");
        isWritten = WritePicture("-", RedPicture(500, 500), &reason);
        std::clearerr(stdout);
    }
    EXPECT_FALSE(isWritten);
    EXPECT_EQ(reason, "No space left on device");
}

}  // namespace
