// Reading back a finished frame.
#pragma once
#include <cstdint>
#include <vector>

/// Reads the frame that can be read in the current context, see FrameTarget::Resolve().
/// @param width, height  size of the drawing area, pixels
/// @return 0xFFRRGGBB per pixel, top row first, the mean of the samples; empty for an empty area
[[nodiscard]] std::vector<std::uint32_t> ReadFrame(std::int32_t width, std::int32_t height);
