// An image file in the form that the viewer's overlays need.
#pragma once
#include <QImage>
#include <QString>
#include <cstdint>
#include <optional>
#include <vector>

struct LogoImage {
    std::int32_t width = 0, height = 0;
    std::vector<std::uint8_t> bytes;  ///< b, g, r, a per pixel, top row first, colours not multiplied by alpha
};

/// @param image  not null
[[nodiscard]] LogoImage LogoOfImage(const QImage& image);

/// The filter of a file dialog for the image types that Qt can read, which depend on its installed plugins.
[[nodiscard]] QString LogoFileFilter();

/// Reads an image file of any kind that Qt knows.
/// @param path    at most 4096 x 4096 pixels
/// @param reason  receives why there is no image, in words for a user
/// @return empty when the file cannot be read or is too large
[[nodiscard]] std::optional<LogoImage> LoadLogo(const QString& path, QString* reason);
