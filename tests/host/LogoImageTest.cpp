#include "LogoImage.h"

#include <gtest/gtest.h>

#include <QImage>
#include <QImageReader>

#include "host/QtUnderXvfb.h"
#include "support/ScratchFolder.h"

namespace {

TEST(LogoImage, IsBlueGreenRedAlphaFromTheTopLeft) {
    QImage image(2, 2, QImage::Format_ARGB32);
    image.setPixel(0, 0, qRgba(1, 2, 3, 4));
    image.setPixel(1, 0, qRgba(250, 0, 0, 255));
    image.setPixel(0, 1, qRgba(0, 250, 0, 128));
    image.setPixel(1, 1, qRgba(0, 0, 250, 0));
    const LogoImage logo = LogoOfImage(image);
    EXPECT_EQ(logo.width, 2);
    EXPECT_EQ(logo.height, 2);
    EXPECT_EQ(logo.bytes, (std::vector<std::uint8_t>{3, 2, 1, 4, 0, 0, 250, 255, 0, 250, 0, 128, 250, 0, 0, 0}));
}

TEST(LogoImage, IsOpaqueForAnImageWithoutAlphaInAnyFormat) {
    QImage image(3, 1, QImage::Format_RGB888);  // rows of 3 x 3 bytes, padded
    image.fill(qRgb(10, 20, 30));
    EXPECT_EQ(LogoOfImage(image).bytes, (std::vector<std::uint8_t>{30, 20, 10, 255, 30, 20, 10, 255, 30, 20, 10, 255}));
    const LogoImage grey = LogoOfImage(image.convertToFormat(QImage::Format_Grayscale8));
    EXPECT_EQ(grey.bytes[0], grey.bytes[2]);
    EXPECT_EQ(grey.bytes[3], 255);
}

TEST(LogoImage, IsReadFromAFile) {
    const ScratchFolder folder;
    QImage image(2, 1, QImage::Format_ARGB32);
    image.setPixel(0, 0, qRgba(255, 0, 0, 255));
    image.setPixel(1, 0, qRgba(0, 0, 255, 7));
    const QString path = QString::fromStdString(folder / "logo.png");
    ASSERT_TRUE(image.save(path));
    QString reason;
    const auto logo = LoadLogo(path, &reason);
    ASSERT_TRUE(logo.has_value()) << reason.toStdString();
    EXPECT_EQ(logo->bytes, (std::vector<std::uint8_t>{0, 0, 255, 255, 255, 0, 0, 7}));
}

TEST(LogoImage, ReportsWhyAFileCannotBeRead) {
    const ScratchFolder folder;
    const auto reasonOf = [&](const std::string& path) {
        QString reason;
        EXPECT_FALSE(LoadLogo(QString::fromStdString(path), &reason).has_value()) << path;
        return reason.toStdString();
    };
    EXPECT_EQ(reasonOf(folder / "none.png"), "there is no such file");
    WriteBytes(folder / "text.png", {std::byte{'a'}, std::byte{'b'}});
    EXPECT_NE(reasonOf(folder / "text.png"), "");
    EXPECT_NE(reasonOf(folder.Path().string()), "") << "a folder";
    // A header alone announces 100000 x 100000 pixels: refused before memory is allocated.
    std::vector<std::byte> huge;
    for (const int byte : {0x89, 0x50, 0x4e, 0x47, 0xd,  0xa, 0x1a, 0xa,  0,    0,    0,    0xd,  0x49, 0x48, 0x44,
                           0x52, 0,    1,    0x86, 0xa0, 0,   1,    0x86, 0xa0, 8,    6,    0,    0,    0,    0xa8,
                           0x52, 0xb,  0xc8, 0,    0,    0,   0,    0x49, 0x44, 0x41, 0x54, 0x35, 0xaf, 6,    0x1e})
        huge.push_back(static_cast<std::byte>(byte));
    WriteBytes(folder / "huge.png", huge);
    EXPECT_EQ(reasonOf(folder / "huge.png"), "the image is larger than 4096 x 4096 pixels");
    ASSERT_TRUE(QImage(4097, 1, QImage::Format_RGB32).save(QString::fromStdString(folder / "wide.png")));
    EXPECT_EQ(reasonOf(folder / "wide.png"), "the image is larger than 4096 x 4096 pixels");
    ASSERT_TRUE(QImage(4096, 1, QImage::Format_RGB32).save(QString::fromStdString(folder / "fits.png")));
    QString reason;
    EXPECT_TRUE(LoadLogo(QString::fromStdString(folder / "fits.png"), &reason).has_value());
}

TEST(LogoImage, IsOfferedInTheFormatsThatQtCanRead) {
    const QStringList filters = LogoFileFilter().split(";;");
    ASSERT_EQ(filters.size(), 2);
    EXPECT_EQ(filters[1], "All files (*)");
    ASSERT_TRUE(filters[0].startsWith("Images (*.") && filters[0].endsWith(")")) << filters[0].toStdString();
    const QStringList patterns = filters[0].mid(8).chopped(1).split(' ');
    EXPECT_TRUE(patterns.contains("*.png"));
    EXPECT_TRUE(patterns.contains("*.jpg"));
    EXPECT_EQ(patterns.size(), QImageReader::supportedImageFormats().size());
    for (const QString& pattern : patterns)
        EXPECT_TRUE(QImageReader::supportedImageFormats().contains(pattern.mid(2).toLatin1())) << pattern.toStdString();
}

}  // namespace
