// Reads the pixels of a frame and flips its rows.
#include "render/ReadFrame.h"

#include <GL/glew.h>

#include <algorithm>
#include <cstddef>

std::vector<std::uint32_t> ReadFrame(std::int32_t width, std::int32_t height) {
    if (width <= 0 || height <= 0) return {};
    std::vector<std::uint32_t> pixels(static_cast<std::size_t>(width) * static_cast<std::size_t>(height));
    glReadPixels(0, 0, width, height, GL_BGRA, GL_UNSIGNED_INT_8_8_8_8_REV, pixels.data());

    // To the form that hosts receive.
    for (std::uint32_t& pixel : pixels) pixel |= 0xFF000000;  // opaque, whatever alpha the drawing wrote
    const auto row = [&](std::int32_t y) { return pixels.begin() + std::ptrdiff_t{y} * width; };
    for (std::int32_t y = 0; y < height / 2; ++y)  // OpenGL returns the bottom row first
        std::swap_ranges(row(y), row(y) + width, row(height - 1 - y));
    return pixels;
}
