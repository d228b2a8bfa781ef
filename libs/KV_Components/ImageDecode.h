// Decodes png and jpeg files to pixels of four bytes.
#pragma once
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

namespace KvComponents {

/// Pixels of 4 bytes: red, green, blue, alpha. Row by row without padding, the top row first.
struct Picture {
    std::int32_t m_iWidth = 0;
    std::int32_t m_iHeight = 0;
    std::vector<std::uint8_t> m_vRgba;
};

inline constexpr std::int32_t kMaxImageSide = 16384;  ///< pixels

/// Whether a file of @p fileSize bytes may announce a picture of that size: no side is longer than kMaxImageSide, and
/// there are no more pixels than the format can compress into the file, so that a small file cannot make the decoder
/// allocate much memory.
[[nodiscard]] bool IsPictureSize(std::uint32_t width, std::uint32_t height, std::size_t fileSize);

/// Decodes a png or jpeg file, by its first bytes. The sample values are not changed: no colour management, and the
/// orientation in the metadata is ignored. Alpha is 255 where the file has none. CMYK becomes RGB by multiplication.
/// @return nullopt when the file is in another format, is cut short or damaged as far as the format can detect, or is
///         refused by IsPictureSize()
/// @throws std::bad_alloc
[[nodiscard]] std::optional<Picture> DecodeImage(std::span<const std::uint8_t> file);

// One decoder per format, in ImageDecodePng.cpp and ImageDecodeJpeg.cpp.
[[nodiscard]] std::optional<Picture> DecodePng(std::span<const std::uint8_t> file);
[[nodiscard]] std::optional<Picture> DecodeJpeg(std::span<const std::uint8_t> file);

}  // namespace KvComponents
