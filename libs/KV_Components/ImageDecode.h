// Pictures out of png and jpeg files.
#pragma once
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

namespace KvComponents {

/// Pixels of red, green, blue, alpha, a byte each; row after row, the first is the top.
struct Picture {
    std::int32_t m_iWidth = 0;
    std::int32_t m_iHeight = 0;
    std::vector<std::uint8_t> m_vRgba;
};

inline constexpr std::int32_t kLongestSide = 16384;

/// Whether a file of that size may hold such a picture: no side longer than kLongestSide, and no more pixels than an
/// honest file of that size could bring, so that a small file cannot take memory out of proportion.
[[nodiscard]] bool IsPictureSize(std::uint32_t width, std::uint32_t height, std::size_t fileSize);

/// The sample values as they stand, without colour management or turning; opaque where the file has no alpha. CMYK
/// becomes RGB by multiplication.
/// @return nothing when the file is no png or jpeg, is cut short or damaged as far as the format shows it, or when
///         IsPictureSize() refuses it
/// @throws std::bad_alloc
[[nodiscard]] std::optional<Picture> DecodeImage(std::span<const std::uint8_t> file);

// The two halves; ImageDecodePng.cpp and ImageDecodeJpeg.cpp.
[[nodiscard]] std::optional<Picture> DecodePng(std::span<const std::uint8_t> file);
[[nodiscard]] std::optional<Picture> DecodeJpeg(std::span<const std::uint8_t> file);

}  // namespace KvComponents
