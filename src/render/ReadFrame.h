// Reading back a finished frame.
#pragma once
#include <cstdint>
#include <vector>

/// Reads the back buffer of the current context's window. Call it before the swap: afterwards the buffer is undefined.
/// @param width, height  size of the drawing area, pixels
/// @return 0xFFRRGGBB per pixel, top row first, the mean of the samples; empty for an empty area
[[nodiscard]] std::vector<std::uint32_t> ReadBackBuffer(std::int32_t width, std::int32_t height);
