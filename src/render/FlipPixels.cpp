// One pass over the picture: each row goes to its mirrored position and each pixel to its integer.
#include "render/FlipPixels.h"

#include <bit>
#include <cassert>
#include <cstring>

namespace {

/// @param word  the bytes r, g, b, a as they are in memory
/// @return 0xAARRGGBB
std::uint32_t ToArgb(std::uint32_t word) {
    if constexpr (std::endian::native == std::endian::little)
        return (word & 0xFF00FF00) | ((word >> 16) & 0xFF) | ((word & 0xFF) << 16);
    else
        return std::rotr(word, 8);
}

}  // namespace

void FlipToArgb(std::span<const std::uint8_t> rgba, std::size_t width, std::span<std::uint32_t> argb) {
    assert(width > 0 && argb.size() % width == 0 && rgba.size() == 4 * argb.size());
    const std::size_t height = argb.size() / width;
    for (std::size_t y = 0; y < height; ++y) {
        const std::uint8_t* const from = rgba.data() + 4 * width * y;
        std::uint32_t* const to = argb.data() + width * (height - 1 - y);
        for (std::size_t x = 0; x < width; ++x) {
            std::uint32_t word = 0;  // whole words: the code for single bytes is several times slower
            std::memcpy(&word, from + 4 * x, sizeof(word));
            to[x] = ToArgb(word);
        }
    }
}
