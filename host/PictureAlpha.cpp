// In whole numbers: all channels are bytes.
#include "PictureAlpha.h"

#include <algorithm>
#include <cassert>
#include <cstdint>

namespace {

constexpr int kOpaque = 255;

int Channel(std::uint32_t pixel, int shift) { return static_cast<int>(pixel >> shift & 0xFF); }

std::uint32_t Pixel(std::uint32_t black, std::uint32_t white) {
    int missing = 0;  // what the background adds, over all channels
    for (const int shift : {16, 8, 0}) missing += std::max(Channel(white, shift) - Channel(black, shift), 0);
    const int alpha = kOpaque - (missing + 1) / 3;  // rounded to the nearest
    if (alpha == 0) return 0;
    auto pixel = static_cast<std::uint32_t>(alpha) << 24;
    for (const int shift : {16, 8, 0}) {
        const int color = std::min((Channel(black, shift) * kOpaque + alpha / 2) / alpha, kOpaque);
        pixel |= static_cast<std::uint32_t>(color) << shift;
    }
    return pixel;
}

}  // namespace

void SetAlphaFrom(KV_ScenePane::Picture& onBlack, const KV_ScenePane::Picture& onWhite) {
    assert(onBlack.pixels.size() == onWhite.pixels.size());
    std::ranges::transform(onBlack.pixels, onWhite.pixels, onBlack.pixels.begin(), Pixel);
}
