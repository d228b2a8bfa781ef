// Tints that would make a freehand session end with an error or without a region are moved aside.
#include "LassoTints.h"

#include <algorithm>

namespace {

constexpr std::uint32_t kFillMarker = 255;         // the viewer's mark of pixels that its fill has reached
constexpr std::uint32_t kLineColor = 0xFFFFFF00u;  // opaque cyan

/// The nearest colour whose tint is none of the three words.
std::int32_t FreeColor(std::int32_t color, float opacity, std::uint32_t taken) {
    for (std::int32_t step = 0; step < 4; ++step) {
        const std::int32_t candidate = color ^ (step << 16);
        const std::uint32_t tint = PackedTint(candidate, opacity);
        if (tint != kFillMarker && tint != kLineColor && tint != taken) return candidate;
    }
    return color;  // not reached: four candidates, three words
}

}  // namespace

std::uint32_t PackedTint(std::int32_t color, float opacity) {
    const auto alpha = static_cast<std::uint32_t>(std::clamp(opacity * 255.0f, 0.0f, 255.0f));
    return (alpha << 24) | static_cast<std::uint32_t>(color & 0xFFFFFF);
}

LassoTints TintsOf(const LassoSettings& settings) {
    const auto fraction = [](int percent) { return static_cast<float>(percent) / 100.0f; };
    LassoTints tints;
    tints.insideOpacity = fraction(settings.insideOpacity);
    tints.outsideOpacity = fraction(settings.outsideOpacity);
    tints.outside = FreeColor(settings.outsideColor, tints.outsideOpacity, kFillMarker);
    tints.inside =
        FreeColor(settings.insideColor, tints.insideOpacity, PackedTint(tints.outside, tints.outsideOpacity));
    return tints;
}
