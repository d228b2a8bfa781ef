// Reads the depth buffer at one pixel, or of a whole frame.
#pragma once
#include <cstdint>
#include <optional>
#include <vector>

/// Window depth, 0 to 1, of what was drawn there last into the framebuffer that is bound in the current context, the
/// one of frames after a frame. Nothing when it is not below @p limit, and outside the framebuffer. Waits until the GPU
/// has finished the frame.
/// @param x, y           pixel, y downward from 1 for the top row to the height for the bottom row
/// @param width, height  of the framebuffer, pixels
[[nodiscard]] std::optional<float> ReadDepthAt(std::int32_t x, std::int32_t y, std::int32_t width, std::int32_t height,
                                               float limit);

/// The same of all pixels, 1 where nothing was drawn.
/// @param width, height  of the framebuffer, pixels
/// @return one value per pixel, bottom row first; empty for an empty framebuffer
[[nodiscard]] std::vector<float> ReadDepths(std::int32_t width, std::int32_t height);
