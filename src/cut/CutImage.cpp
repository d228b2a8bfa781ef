// Lines and areas in the images of a freehand lasso.
#include "cut/CutImage.h"

#include <algorithm>
#include <cassert>
#include <cstdlib>
#include <utility>

namespace {

/// Pushes the first pixel of every run of @p target among the pixels @p left to @p right of a row.
void PushRuns(std::span<const std::uint32_t> row, std::int32_t y, std::int32_t left, std::int32_t right,
              std::uint32_t target, std::vector<LassoPixel>& stack) {
    bool isInRun = false;
    for (std::int32_t x = left; x <= right; ++x) {
        const bool isTarget = row[static_cast<std::size_t>(x)] == target;
        if (isTarget && !isInRun) stack.push_back({x, y});
        isInRun = isTarget;
    }
}

}  // namespace

PixelRectangle BoxOf(LassoPixel pixel) { return {pixel.x, pixel.y, pixel.x, pixel.y}; }

PixelRectangle Union(const PixelRectangle& a, const PixelRectangle& b) {
    return {std::min(a[0], b[0]), std::min(a[1], b[1]), std::max(a[2], b[2]), std::max(a[3], b[3])};
}

PixelRectangle Widened(const PixelRectangle& rectangle) {
    return {rectangle[0] - 1, rectangle[1] - 1, rectangle[2] + 1, rectangle[3] + 1};
}

std::size_t WidthOf(const PixelRectangle& rectangle) {
    return static_cast<std::size_t>(rectangle[2] - rectangle[0]) + 1;
}

std::size_t HeightOf(const PixelRectangle& rectangle) {
    return static_cast<std::size_t>(rectangle[3] - rectangle[1]) + 1;
}

void DrawLine(LassoPixel from, LassoPixel to, std::size_t stride, std::span<std::uint32_t> image, std::uint32_t color) {
    // The longer axis becomes x, upward.
    const bool isSteep = std::abs(to.y - from.y) > std::abs(to.x - from.x);
    if (isSteep) {
        std::swap(from.x, from.y);
        std::swap(to.x, to.y);
    }
    if (from.x > to.x) std::swap(from, to);
    const std::size_t xStep = isSteep ? stride : 1, yStep = isSteep ? 1 : stride;

    const std::int32_t direction = from.y < to.y ? 1 : -1;
    const auto length = static_cast<float>(to.x - from.x), rise = static_cast<float>(std::abs(to.y - from.y));
    float error = length * 0.5f;
    std::int32_t y = from.y;
    for (std::int32_t x = from.x; x <= to.x; ++x) {
        error -= rise;
        image[static_cast<std::size_t>(x) * xStep + static_cast<std::size_t>(y) * yStep] = color;
        if (error < 0.0f) {
            y += direction;
            error += length;
        }
    }
}

// By horizontal spans: each pixel is written once, and the result does not depend on the order. Two spans of adjacent
// rows push at most one entry between them, which bounds the stack.
void FloodFill(LassoPixel start, std::int32_t width, std::int32_t height, std::span<std::uint32_t> image,
               std::vector<LassoPixel>& stack, std::uint32_t target, std::uint32_t replacement) {
    assert(target != replacement);
    const auto rowAt = [&](std::int32_t y) {
        const auto stride = static_cast<std::size_t>(width);
        return image.subspan(static_cast<std::size_t>(y) * stride, stride);
    };
    stack.assign(1, start);
    while (!stack.empty()) {
        const auto [x, y] = stack.back();
        stack.pop_back();
        const std::span<std::uint32_t> row = rowAt(y);
        if (row[static_cast<std::size_t>(x)] != target) continue;
        std::int32_t left = x, right = x;
        while (left > 0 && row[static_cast<std::size_t>(left) - 1] == target) --left;
        while (right + 1 < width && row[static_cast<std::size_t>(right) + 1] == target) ++right;
        std::fill(row.begin() + left, row.begin() + right + 1, replacement);
        if (y > 0) PushRuns(rowAt(y - 1), y - 1, left, right, target, stack);
        if (y + 1 < height) PushRuns(rowAt(y + 1), y + 1, left, right, target, stack);
    }
}
