// Pictures as files of several formats: the extension of the name chooses one.
#pragma once
#include <optional>
#include <string>
#include <string_view>

#include "KV_ScenePane/ScenePane.h"

enum class PictureFormat { Png, Jpeg, WebP };

/// By the extension: png, jpg or jpeg, webp; small and capital letters. Nothing for any other.
[[nodiscard]] std::optional<PictureFormat> PictureFormatOf(std::string_view path);

/// The name of standard output in place of a file. Its pictures are PNG.
inline constexpr std::string_view kStandardOutput = "-";

/// The reason where there is no standard output.
inline constexpr const char* kClosedOutput = "standard output is closed";

/// Writes the picture without its alpha: PNG and WebP keep every pixel, JPEG has the quality 92 of 100. Files are
/// written as by WriteFileBytes() (PngFile.h).
/// @param path    in bytes, with one of the extensions, or kStandardOutput
/// @param reason  receives why nothing was written, in English; unchanged after a success
[[nodiscard]] bool WritePicture(const std::string& path, const KV_ScenePane::Picture& picture, std::string* reason);
