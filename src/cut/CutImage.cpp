// Lines and areas in the images of a freehand lasso.
#include "cut/CutImage.h"

#include <algorithm>
#include <cstdlib>
#include <utility>

namespace {

/// The first pixel from @p x to before @p end that is empty, or that is not; @p end without one. In blocks, which the
/// compiler turns into vector instructions.
template <bool kEmpty>
std::size_t FindPixel(std::span<const std::uint8_t> row, std::size_t x, std::size_t end) {
    constexpr std::size_t kBlock = 32;
    for (; end - x >= kBlock; x += kBlock) {
        std::uint8_t found = 0;
        for (std::size_t i = 0; i < kBlock; ++i)
            found = static_cast<std::uint8_t>(found | ((row[x + i] == kEmptyPixel) == kEmpty ? 1 : 0));
        if (found != 0) break;
    }
    while (x < end && (row[x] == kEmptyPixel) != kEmpty) ++x;
    return x;
}

/// Pushes the first pixel of every run of empty pixels from @p left to before @p end of a row.
void PushRuns(std::span<const std::uint8_t> row, std::int32_t y, std::size_t left, std::size_t end,
              std::vector<LassoPixel>& stack) {
    for (std::size_t x = FindPixel<true>(row, left, end); x < end; x = FindPixel<true>(row, x, end)) {
        stack.push_back({static_cast<std::int32_t>(x), y});
        x = FindPixel<false>(row, x, end);
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
void FloodFill(LassoPixel start, std::int32_t width, std::int32_t height, std::span<std::uint8_t> markers,
               std::vector<LassoPixel>& stack) {
    const auto rowAt = [&](std::int32_t y) {
        const auto stride = static_cast<std::size_t>(width);
        return markers.subspan(static_cast<std::size_t>(y) * stride, stride);
    };
    stack.assign(1, start);
    while (!stack.empty()) {
        const auto [x, y] = stack.back();
        stack.pop_back();
        const std::span<std::uint8_t> row = rowAt(y);
        auto left = static_cast<std::size_t>(x);
        if (row[left] != kEmptyPixel) continue;
        const std::size_t end = FindPixel<false>(row, left, row.size());
        while (left > 0 && row[left - 1] == kEmptyPixel) --left;
        std::ranges::fill(row.subspan(left, end - left), kReachedPixel);
        if (y > 0) PushRuns(rowAt(y - 1), y - 1, left, end, stack);
        if (y + 1 < height) PushRuns(rowAt(y + 1), y + 1, left, end, stack);
    }
}
