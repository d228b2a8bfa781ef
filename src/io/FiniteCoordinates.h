// Coordinates that are infinite or not a number, in what an import has read. The object is added all the same; the host
// gets one line about it.
#pragma once
#include <bit>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

#include "geometry/Vertex.h"

/// By the bits, so that no floating-point mode of the thread or the compiler matters: an exponent of all ones is an
/// infinity or a NaN.
[[nodiscard]] inline bool IsNotFinite(float value) {
    constexpr std::uint32_t kExponent = 0x7F800000;
    return (std::bit_cast<std::uint32_t>(value) & kExponent) == kExponent;
}

/// How many of the numbers are infinite or NaN.
[[nodiscard]] std::size_t CountNotFinite(std::span<const float> coordinates);
/// The same over the positions of vertices.
[[nodiscard]] std::size_t CountNotFinite(std::span<const Vertex> vertices);
/// The same over the valid pixels of a grid.
/// @param points  three per pixel
/// @param mask    one word per pixel, 0 is valid
[[nodiscard]] std::size_t CountNotFinite(const float* points, std::span<const std::uint16_t> mask);

/// Writes the line "FILE: N coordinates are not finite" to the debugger output, unless the count is 0. Any thread.
/// @param file  path or name, shown as FileLabel() shows it
void ReportNotFinite(std::wstring_view file, std::size_t count);
