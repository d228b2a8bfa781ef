// Comparison of a drawn picture with the one of the reference renderer.
#pragma once
#include <cstdint>
#include <map>
#include <span>
#include <string>

#include "support/ReferenceScene.h"

namespace reference {

/// Counts pixels. Differences are in steps of 255, between the drawn colour and the rounded colour of the reference.
struct Comparison {
    int compared = 0, masked = 0;
    std::map<int, int> comparedOf;  ///< per index of an object; -1 is the background
    int wrong = 0;                  ///< compared pixels that differ by more than the limit
    int largest = 0;
    double largestExact = 0.0;  ///< from the colour before rounding
    std::string firstWrong;     ///< position, object, expected and drawn colour
};

/// @param drawn  0xAARRGGBB, row by row, top row first
[[nodiscard]] Comparison Compare(const Picture& expected, std::span<const std::uint32_t> drawn, int limit = 1);

/// The components of 0xAARRGGBB, 0 to 255.
[[nodiscard]] Vec ColorOf(std::uint32_t pixel);

/// Writes a picture as a file to look at; with an expected one it is written beside the drawn one, masked pixels red.
void WriteBeside(const std::string& path, const Picture& expected, std::span<const std::uint32_t> drawn);

}  // namespace reference
