// Which grids may reach the triangulation.
#pragma once
#include <cstdint>
#include <limits>
#include <string>

/// Whether the triangulation can count the pixels of a grid: its sides are 16-bit numbers. A size of zero is possible:
/// it yields nothing, or an empty object where those are allowed.
[[nodiscard]] constexpr bool IsPossibleGrid(std::int32_t width, std::int32_t height) {
    constexpr std::int32_t kMaxSide = std::numeric_limits<std::int16_t>::max();
    return width >= 0 && height >= 0 && width <= kMaxSide && height <= kMaxSide;
}

/// Why a grid of this size and skip value cannot be triangulated; empty when it can.
[[nodiscard]] inline std::string GridRefusal(std::int32_t width, std::int32_t height, std::int32_t skip) {
    if (skip < 1) return "the skip value " + std::to_string(skip) + " is below 1";
    if (!IsPossibleGrid(width, height))
        return "a grid of " + std::to_string(width) + " x " + std::to_string(height) + " is not possible";
    return {};
}
