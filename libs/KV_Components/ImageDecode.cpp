// Which decoder a file is for, and how large a picture it may hold.
#include "ImageDecode.h"

#include <algorithm>
#include <array>

namespace KvComponents {

namespace {
constexpr std::array<std::uint8_t, 8> kPngStart{0x89, 'P', 'N', 'G', '\r', '\n', 0x1A, '\n'};
constexpr std::array<std::uint8_t, 3> kJpegStart{0xFF, 0xD8, 0xFF};

// Deflate packs at most 1032 bytes in one, a jpeg block of one colour 256 pixels; what is denser than that is made to
// fill memory. The constant lets small pictures of one bit a pixel through.
constexpr std::size_t kPixelsPerByte = 1100;
constexpr std::size_t kPixelsOfAnyFile = std::size_t{4} * 1024 * 1024;

template <std::size_t N>
bool BeginsWith(std::span<const std::uint8_t> file, const std::array<std::uint8_t, N>& start) {
    return file.size() >= N && std::equal(start.begin(), start.end(), file.begin());
}
}  // namespace

bool IsPictureSize(std::uint32_t width, std::uint32_t height, std::size_t fileSize) {
    if (width == 0 || height == 0 || width > kLongestSide || height > kLongestSide) return false;
    const std::size_t pixels = std::size_t{width} * height;
    return pixels <= kPixelsOfAnyFile || (pixels - kPixelsOfAnyFile + kPixelsPerByte - 1) / kPixelsPerByte <= fileSize;
}

std::optional<Picture> DecodeImage(std::span<const std::uint8_t> file) {
    if (BeginsWith(file, kPngStart)) return DecodePng(file);
    if (BeginsWith(file, kJpegStart)) return DecodeJpeg(file);
    return std::nullopt;
}

}  // namespace KvComponents
