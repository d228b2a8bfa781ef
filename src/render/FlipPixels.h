// Conversion of the pixels that OpenGL reads back to the pixel integers that hosts receive.
#pragma once
#include <cstddef>
#include <cstdint>
#include <span>

/// Flips a picture vertically and converts its pixels to integers: bytes r, g, b, a become 0xAARRGGBB on machines of
/// either byte order.
/// @param rgba   bytes r, g, b, a per pixel, bottom row first, no padding, any alignment; argb.size() pixels
/// @param width  pixels per row, at least 1
/// @param argb   receives the picture, top row first; a whole number of rows; must not overlap @p rgba
void FlipToArgb(std::span<const std::uint8_t> rgba, std::size_t width, std::span<std::uint32_t> argb);
