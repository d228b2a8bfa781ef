// A freehand lasso by whole images, pixel by pixel: slow, and independent of the code that is tested.
#pragma once
#include <array>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <optional>
#include <stack>
#include <utility>
#include <vector>

namespace cut_reference {

using Point = std::pair<int, int>;
using Image = std::vector<std::uint32_t>;
using Box = std::array<int, 4>;  ///< min x, min y, max x, max y

inline std::size_t At(int x, int y, int width) {
    return static_cast<std::size_t>(y) * static_cast<std::size_t>(width) + static_cast<std::size_t>(x);
}

inline void DrawLine(Point p0, Point p1, int stride, Image& image, std::uint32_t color) {
    int x0 = p0.first, y0 = p0.second, x1 = p1.first, y1 = p1.second;
    const bool steep = std::abs(y1 - y0) > std::abs(x1 - x0);
    if (steep) {
        std::swap(x0, y0);
        std::swap(x1, y1);
    }
    if (x0 > x1) {
        std::swap(x0, x1);
        std::swap(y0, y1);
    }
    const int ystep = y0 < y1 ? 1 : -1;
    const float dx = static_cast<float>(x1 - x0), dy = static_cast<float>(std::abs(y1 - y0));
    float err = dx * 0.5f;
    int y = y0;
    for (int x = x0; x <= x1; ++x) {
        err -= dy;
        image.at(steep ? At(y, x, stride) : At(x, y, stride)) = color;
        if (err < 0) {
            y += ystep;
            err += dx;
        }
    }
}

inline void FloodFill(Point start, int width, int height, Image& image, std::uint32_t target,
                      std::uint32_t replacement) {
    std::stack<Point> stack;
    stack.push(start);
    while (!stack.empty()) {
        const auto [x, y] = stack.top();
        stack.pop();
        if (y < 0 || y >= height) continue;
        if (image.at(At(x, y, width)) != target) continue;
        image.at(At(x, y, width)) = replacement;
        stack.push({x, y - 1});
        stack.push({x, y + 1});
        if (x > 0 && image.at(At(x - 1, y, width)) == target) stack.push({x - 1, y});
        if (x + 1 < width && image.at(At(x + 1, y, width)) == target) stack.push({x + 1, y});
    }
}

inline void Extend(Box& box, Point p) {
    box = {std::min(box[0], p.first), std::min(box[1], p.second), std::max(box[2], p.first),
           std::max(box[3], p.second)};
}

struct Mask {
    std::vector<bool> bits;
    Box bounds{INT32_MAX, INT32_MAX, INT32_MIN, INT32_MIN};
};

/// Colours as pixels. The line buffer and the fill buffer are what the textures show after Draw().
struct Session {
    int width, height;
    std::uint32_t line, fill, outside;
    Point start, last;
    std::optional<Point> preview, newest;
    std::vector<Point> pending;
    Image lines, composite, lineBuffer, fillBuffer, lineTexture, fillTexture;
    Box bounds, shown;

    Session(int w, int h, Point first, std::uint32_t lineColor, std::uint32_t fillColor, std::uint32_t outsideColor)
        : width(w), height(h), line(lineColor), fill(fillColor), outside(outsideColor) {
        start.first = std::max(1, std::min(first.first, width - 2));
        start.second = std::max(1, std::min(first.second, height - 2));
        last = start;
        bounds = shown = {start.first, start.second, start.first, start.second};
        const std::size_t pixels = static_cast<std::size_t>(width) * static_cast<std::size_t>(height);
        for (Image* image : {&lines, &composite, &lineBuffer, &fillBuffer, &lineTexture, &fillTexture})
            image->assign(pixels, 0);
    }
    /// Only for points whose pixel is an int.
    [[nodiscard]] std::optional<Point> Accept(float fx, float fy) const {
        const int x = static_cast<int>(static_cast<float>(width) * fx),
                  y = static_cast<int>(static_cast<float>(height) * fy);
        const Point p{x, y};
        if (p == last) return std::nullopt;
        if (!pending.empty() && p == pending.back()) return std::nullopt;
        if (!(0 < x && x < width - 1 && 0 < y && y < height - 1)) return std::nullopt;
        return p;
    }
    void AddPoint(float fx, float fy) {
        const auto p = Accept(fx, fy);
        if (!p) return;
        pending.push_back(*p);
        newest = p;
    }
    void SetPreviewPoint(float fx, float fy) {
        const auto p = Accept(fx, fy);
        if (p) preview = newest = p;
    }
    void Draw(bool withFill, bool linesMap = true, bool fillMaps = true) {
        if (pending.empty() && !preview && !withFill) return;
        if ((!pending.empty() || preview) && linesMap) UpdateLines();
        if (withFill && fillMaps) UpdateFill();
        lineTexture = lineBuffer;
        fillTexture = fillBuffer;
    }
    void UpdateLines() {
        for (const Point& p : pending) {
            Extend(bounds, p);
            DrawLine(last, p, width, lines, line);
            last = p;
        }
        pending.clear();
        Box r = bounds;
        Extend(r, {shown[0], shown[1]});
        Extend(r, {shown[2], shown[3]});
        for (int y = r[1]; y <= r[3]; ++y)
            for (int x = r[0]; x <= r[2]; ++x)
                lineBuffer.at(At(x, y, width)) = composite.at(At(x, y, width)) = lines.at(At(x, y, width));
        shown = bounds;
        for (Image* image : {&lineBuffer, &composite}) {
            if (preview) {
                DrawLine(*preview, start, width, *image, line);
                DrawLine(*preview, last, width, *image, line);
            } else {
                DrawLine(last, start, width, *image, line);
            }
        }
        if (preview) Extend(shown, *preview);
        preview.reset();
    }
    void UpdateFill() {
        const Box r{shown[0] - 1, shown[1] - 1, shown[2] + 1, shown[3] + 1};
        for (int y = 0; y < height; ++y)
            for (int x = 0; x < width; ++x) {
                const bool inside = x >= r[0] && x <= r[2] && y >= r[1] && y <= r[3];
                fillBuffer.at(At(x, y, width)) = inside ? composite.at(At(x, y, width)) : 255;
            }
        FloodFill({r[0], r[1]}, width, height, fillBuffer, 0, 255);
        Tint(fillBuffer);
    }
    void Tint(Image& image) const {
        for (std::uint32_t& pixel : image) pixel = pixel == 0 ? fill : pixel == 255 ? outside : pixel;
    }
    [[nodiscard]] Mask CreateMaskBits(int outWidth, int outHeight) const {
        Image image = lines;
        Point at = last;
        for (const Point& p : pending) {
            DrawLine(at, p, width, image, line);
            at = p;
        }
        DrawLine(at, start, width, image, line);
        FloodFill({0, 0}, width, height, image, 0, 255);
        Tint(image);
        Mask mask;
        for (int y = 0; y < outHeight; ++y)
            for (int x = 0; x < outWidth; ++x) {
                const int row = static_cast<int>(static_cast<float>(height) * static_cast<float>(y) /
                                                 static_cast<float>(outHeight));
                const int col =
                    static_cast<int>(static_cast<float>(width) * static_cast<float>(x) / static_cast<float>(outWidth));
                const bool set = image.at(At(col, row, width)) != outside;
                mask.bits.push_back(set);
                if (set) Extend(mask.bounds, {x, y});
            }
        return mask;
    }
};

}  // namespace cut_reference
