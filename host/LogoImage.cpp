// The size is checked before the pixels are read: a file of a few bytes can announce gigabytes.
#include "LogoImage.h"

#include <QFileInfo>
#include <QImageReader>
#include <bit>

namespace {
constexpr int kMaxSide = 4096;  // pixels; an overlay is drawn at its own size, and this is more than any window
}

LogoImage LogoOfImage(const QImage& image) {
    const QImage argb = image.convertToFormat(QImage::Format_ARGB32);
    LogoImage logo{argb.width(), argb.height(), {}};
    // Qt stores a pixel as the number 0xAARRGGBB: on little-endian machines the bytes b, g, r, a.
    static_assert(std::endian::native == std::endian::little);
    const std::size_t rowBytes = 4 * static_cast<std::size_t>(logo.width);
    logo.bytes.reserve(rowBytes * static_cast<std::size_t>(logo.height));
    for (int y = 0; y < logo.height; ++y) {
        const uchar* const row = argb.constScanLine(y);
        logo.bytes.insert(logo.bytes.end(), row, row + rowBytes);
    }
    return logo;
}

QString LogoFileFilter() {
    QStringList patterns;
    for (const QByteArray& format : QImageReader::supportedImageFormats())
        patterns.push_back("*." + QString::fromLatin1(format));
    return QObject::tr("Images (%1);;All files (*)").arg(patterns.join(' '));
}

std::optional<LogoImage> LoadLogo(const QString& path, QString* reason) {
    const auto refuse = [&](const QString& text) {
        *reason = text;
        return std::nullopt;
    };
    if (!QFileInfo::exists(path)) return refuse(QObject::tr("there is no such file"));
    QImageReader reader(path);
    // A wrong extension is no reason to refuse an image; cameras store its orientation beside the pixels.
    reader.setDecideFormatFromContent(true);
    reader.setAutoTransform(true);
    const QSize size = reader.size();
    if (size.width() > kMaxSide || size.height() > kMaxSide)
        return refuse(QObject::tr("the image is larger than %1 x %1 pixels").arg(kMaxSide));
    const QImage image = reader.read();
    if (image.isNull()) return refuse(reader.errorString());
    // Some formats have no size in their header.
    if (image.width() > kMaxSide || image.height() > kMaxSide)
        return refuse(QObject::tr("the image is larger than %1 x %1 pixels").arg(kMaxSide));
    return LogoOfImage(image);
}
