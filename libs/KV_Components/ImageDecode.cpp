// Chooses the decoder by the first bytes of the file, and limits the size of pictures.
#include "ImageDecode.h"

#include <algorithm>
#include <array>

namespace KvComponents {

namespace {
constexpr std::array<std::uint8_t, 8> kPngStart{0x89, 'P', 'N', 'G', '\r', '\n', 0x1A, '\n'};
constexpr std::array<std::uint8_t, 3> kJpegStart{0xFF, 0xD8, 0xFF};

// Deflate compresses at most 1032 bytes into one, jpeg at most 256 pixels of a uniform block into one byte. A file that
// announces more was made to exhaust memory. Pictures of up to kUncheckedPixels are exempt: a small png of one bit per
// pixel can be denser.
constexpr std::size_t kPixelsPerByte = 1100;
constexpr std::size_t kUncheckedPixels = std::size_t{4} * 1024 * 1024;

template <std::size_t N>
bool BeginsWith(std::span<const std::uint8_t> file, const std::array<std::uint8_t, N>& start) {
    return file.size() >= N && std::equal(start.begin(), start.end(), file.begin());
}
}  // namespace

bool IsPictureSize(std::uint32_t width, std::uint32_t height, std::size_t fileSize) {
    if (width == 0 || height == 0 || width > kMaxImageSide || height > kMaxImageSide) return false;
    const std::size_t pixels = std::size_t{width} * height;
    return pixels <= kUncheckedPixels || (pixels - kUncheckedPixels + kPixelsPerByte - 1) / kPixelsPerByte <= fileSize;
}

std::optional<Picture> DecodeImage(std::span<const std::uint8_t> file) {
    if (BeginsWith(file, kPngStart)) return DecodePng(file);
    if (BeginsWith(file, kJpegStart)) return DecodeJpeg(file);
    return std::nullopt;
}

}  // namespace KvComponents
