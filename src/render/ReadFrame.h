// Reading a finished frame back.
#pragma once
#include <cstdint>
#include <vector>

/// The back buffer of the current context's window, before it is shown: afterwards it holds nothing.
/// @param width, height  the drawing area, pixels
/// @return 0xFFRRGGBB, row after row, top row first; the mean of the samples of a pixel. Empty for an empty area
[[nodiscard]] std::vector<std::uint32_t> ReadBackBuffer(std::int32_t width, std::int32_t height);
