// Differences of pixel coordinates, which hosts may send as far away as an integer allows.
#pragma once
#include <algorithm>
#include <cstdint>
#include <limits>

/// a - b; the nearest number that there is where the difference has none.
[[nodiscard]] constexpr std::int32_t PixelDifference(std::int32_t a, std::int32_t b) {
    using Limits = std::numeric_limits<std::int32_t>;
    const std::int64_t difference = std::int64_t{a} - b;
    return static_cast<std::int32_t>(std::clamp<std::int64_t>(difference, Limits::min(), Limits::max()));
}
