// From the pixels that OpenGL reads back to the words that hosts take.
#pragma once
#include <cstddef>
#include <cstdint>
#include <span>

/// Turns a picture upside down and its pixels into integers: bytes r, g, b, a become 0xAARRGGBB on every machine. One
/// pass, both sides row by row.
/// @param rgba   bytes r, g, b, a of each pixel, bottom row first, no padding; @p argb.size() pixels
/// @param width  pixels a row, at least 1
/// @param argb   takes the picture, top row first; whole rows; does not overlap @p rgba
void FlipToArgb(std::span<const std::uint8_t> rgba, std::size_t width, std::span<std::uint32_t> argb);
