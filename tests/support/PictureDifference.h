// Pictures of two drivers compared by the differences that OpenGL allows them: rounding of a colour, and rasterisation
// of an edge one pixel beside.
#pragma once
#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <ostream>
#include <string>
#include <vector>

#include "KV_ScenePane/ScenePane.h"

namespace picture_difference {

/// Steps of 255 by which a channel may differ.
inline constexpr int kStep = 1;
/// The part of the edge pixels that may have a colour which the neighbourhood does not show: where a shape with a
/// texture gains a pixel, a line ends, or one of the drivers draws with samples.
inline constexpr double kUnknownColorShare = 0.02;

/// Smallest and largest value of each channel in a pixel and its eight neighbours.
struct Range {
    std::array<int, 3> low{255, 255, 255}, high{0, 0, 0};

    [[nodiscard]] bool IsEdge() const {
        for (std::size_t c = 0; c < 3; ++c)
            if (high[c] - low[c] > kStep) return true;
        return false;
    }
    [[nodiscard]] bool HasColor(const std::array<int, 3>& color) const {
        for (std::size_t c = 0; c < 3; ++c)
            if (color[c] < low[c] - kStep || color[c] > high[c] + kStep) return false;
        return true;
    }
};

/// Red, green, blue.
inline std::array<int, 3> ColorOf(const KV_ScenePane::Picture& picture, int x, int y) {
    const std::uint32_t p = picture.pixels.at(static_cast<std::size_t>(y) * static_cast<std::size_t>(picture.width) +
                                              static_cast<std::size_t>(x));
    return {static_cast<int>(p >> 16 & 0xFF), static_cast<int>(p >> 8 & 0xFF), static_cast<int>(p & 0xFF)};
}

inline Range RangeAround(const KV_ScenePane::Picture& picture, int x, int y) {
    Range range;
    for (int ny = std::max(y - 1, 0); ny <= std::min(y + 1, picture.height - 1); ++ny)
        for (int nx = std::max(x - 1, 0); nx <= std::min(x + 1, picture.width - 1); ++nx) {
            const std::array<int, 3> color = ColorOf(picture, nx, ny);
            for (std::size_t c = 0; c < 3; ++c) {
                range.low[c] = std::min(range.low[c], color[c]);
                range.high[c] = std::max(range.high[c], color[c]);
            }
        }
    return range;
}

/// The mask: 1 at the pixels of a picture whose neighbourhood holds an edge, row by row.
inline std::vector<std::uint8_t> EdgeMask(const KV_ScenePane::Picture& picture) {
    std::vector<std::uint8_t> mask;
    mask.reserve(picture.pixels.size());
    for (int y = 0; y < picture.height; ++y)
        for (int x = 0; x < picture.width; ++x) mask.push_back(RangeAround(picture, x, y).IsEdge() ? 1 : 0);
    return mask;
}

/// The part of the pixels that a mask holds.
inline double ShareOf(const std::vector<std::uint8_t>& mask) {
    return static_cast<double>(std::count(mask.begin(), mask.end(), 1)) /
           static_cast<double>(std::max<std::size_t>(mask.size(), 1));
}

struct Difference {
    bool sameSize = true;
    std::int64_t changed = 0;                ///< pixels with any difference
    std::int64_t edges = 0;                  ///< pixels of the mask
    std::int64_t wrong = 0;                  ///< more than one step, outside the mask
    std::int64_t unknownColors = 0;          ///< in the mask, with a colour from nowhere around
    int firstX = -1, firstY = -1;            ///< the first of both kinds
    std::array<int, 3> expected{}, found{};  ///< there
    std::vector<std::uint8_t> isWrong;       ///< of both kinds, row by row

    [[nodiscard]] bool IsAllowed() const {
        return sameSize && wrong == 0 &&
               static_cast<double>(unknownColors) <= kUnknownColorShare * static_cast<double>(edges);
    }
};

inline std::ostream& operator<<(std::ostream& out, const Difference& d) {
    if (!d.sameSize) return out << "the sizes differ";
    out << d.changed << " pixels differ, " << d.wrong << " wrongly, " << d.unknownColors << " of " << d.edges
        << " at edges have unknown colours";
    if (d.firstX < 0) return out;
    out << ", the first at (" << d.firstX << ", " << d.firstY << "):";
    for (const int channel : d.found) out << " " << channel;
    out << " instead of";
    for (const int channel : d.expected) out << " " << channel;
    return out;
}

/// Compares a picture with the reference. Outside the edges of the reference each channel may differ by one step. At
/// its edges a pixel has a colour between those of the reference's neighbourhood, and the reference one between those
/// around the pixel, again with one step: an edge may move by one pixel, a thin line must not be missing. Few may have
/// another.
inline Difference Compare(const KV_ScenePane::Picture& reference, const KV_ScenePane::Picture& picture) {
    Difference result;
    result.sameSize = reference.width == picture.width && reference.height == picture.height &&
                      reference.pixels.size() == picture.pixels.size();
    if (!result.sameSize) return result;
    result.isWrong.assign(reference.pixels.size(), 0);
    std::size_t index = 0;
    for (int y = 0; y < reference.height; ++y)
        for (int x = 0; x < reference.width; ++x, ++index) {
            const Range around = RangeAround(reference, x, y);
            result.edges += around.IsEdge() ? 1 : 0;
            const std::array<int, 3> expected = ColorOf(reference, x, y), found = ColorOf(picture, x, y);
            int largest = 0;
            for (std::size_t c = 0; c < 3; ++c) largest = std::max(largest, std::abs(expected[c] - found[c]));
            result.changed += largest > 0 ? 1 : 0;
            if (largest <= kStep) continue;
            if (around.IsEdge() && around.HasColor(found) && RangeAround(picture, x, y).HasColor(expected)) continue;
            ++(around.IsEdge() ? result.unknownColors : result.wrong);
            result.isWrong[index] = 1;
            if (result.firstX < 0)
                result.firstX = x, result.firstY = y, result.expected = expected, result.found = found;
        }
    return result;
}

}  // namespace picture_difference
