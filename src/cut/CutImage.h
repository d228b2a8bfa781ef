// Lines and areas in the images of a freehand lasso. No OpenGL.
#pragma once
#include <array>
#include <cstdint>
#include <span>
#include <vector>

/// A pixel of an image, y downward.
struct LassoPixel {
    std::int32_t x = 0, y = 0;
    bool operator==(const LassoPixel&) const = default;
};

/// Min x, min y, max x, max y, all inclusive.
using PixelRectangle = std::array<std::int32_t, 4>;

[[nodiscard]] PixelRectangle BoxOf(LassoPixel pixel);
[[nodiscard]] PixelRectangle Union(const PixelRectangle& a, const PixelRectangle& b);
/// By one pixel on every side.
[[nodiscard]] PixelRectangle Widened(const PixelRectangle& rectangle);
/// Pixels per row and per column of a rectangle that is not empty.
[[nodiscard]] std::size_t WidthOf(const PixelRectangle& rectangle);
[[nodiscard]] std::size_t HeightOf(const PixelRectangle& rectangle);

/// Draws a line of one pixel in width, both ends included. The same pixels in both directions.
/// @param stride  pixels per row of @p image; both ends lie in the image
void DrawLine(LassoPixel from, LassoPixel to, std::size_t stride, std::span<std::uint32_t> image, std::uint32_t color);

/// What a pixel is for a flood fill: its marker in bytes, which are quicker to search than colours.
enum LassoMarker : std::uint8_t { kEmptyPixel = 0, kLinePixel = 1, kReachedPixel = 255 };

/// Marks the empty pixels that are connected with @p start by their sides as reached.
/// @param start    in the image; nothing happens when it is not empty
/// @param markers  width x height LassoMarkers
/// @param stack    working memory, empty afterwards; it never needs more than width x height entries
void FloodFill(LassoPixel start, std::int32_t width, std::int32_t height, std::span<std::uint8_t> markers,
               std::vector<LassoPixel>& stack);
