// The depth buffer under a pixel.
#pragma once
#include <cstdint>
#include <optional>

/// Window depth of what was drawn there last, from the current context; nothing when it is not below @p limit.
/// @param y       downward
/// @param height  of the drawing area, pixels
[[nodiscard]] std::optional<float> ReadDepthAt(std::int32_t x, std::int32_t y, std::int32_t height, float limit);
