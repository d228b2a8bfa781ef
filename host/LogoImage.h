// An image file as the viewer takes overlays.
#pragma once
#include <QImage>
#include <QString>
#include <cstdint>
#include <optional>
#include <vector>

struct LogoImage {
    std::int32_t width = 0, height = 0;
    std::vector<std::uint8_t> bytes;  ///< b, g, r, a a pixel, top row first, colours not multiplied by alpha
};

/// @param image  not null
[[nodiscard]] LogoImage LogoOfImage(const QImage& image);

/// The file types that Qt can read here, as a file dialog takes them; what it reads depends on its installed plugins.
[[nodiscard]] QString LogoFileFilter();

/// Reads an image file of any kind that Qt knows.
/// @param reason  takes why there is none, in words for a user
[[nodiscard]] std::optional<LogoImage> LoadLogo(const QString& path, QString* reason);
