// The pixels of a polygon by scan lines. A pixel is inside when a ray from its centre to the right crosses an odd
// number of edges. In one row an edge is crossed by the rays of all pixels up to some column: one bit there, and each
// pixel is the parity of the bits from its column on.
#include "cut/PolygonRaster.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstddef>

namespace {

constexpr std::size_t kWordBits = 64;
using Word = std::uint64_t;

struct Corner {
    float x = 0.0f, y = 0.0f;
};

/// The pixels of a rectangle, row after row, each row beginning with a word of its own.
struct RowBits {
    explicit RowBits(const ACAD::CutMask::Rectangle& bounds)
        : left(bounds[0]),
          top(bounds[1]),
          columns(bounds[2] - bounds[0] + 1),
          rows(bounds[3] - bounds[1] + 1),
          wordsPerRow((static_cast<std::size_t>(columns) + kWordBits - 1) / kWordBits),
          words(wordsPerRow * static_cast<std::size_t>(rows)) {}

    Word* Row(std::int32_t row) { return words.data() + static_cast<std::size_t>(row) * wordsPerRow; }
    [[nodiscard]] float CenterX(std::int32_t column) const { return static_cast<float>(left + column) + 0.5f; }
    [[nodiscard]] float CenterY(std::int32_t row) const { return static_cast<float>(top + row) + 0.5f; }

    std::int32_t left, top, columns, rows;
    std::size_t wordsPerRow;
    std::vector<Word> words;
};

/// The number of columns whose centres are not right of @p x. @p x is a number.
std::int32_t ColumnsUpTo(const RowBits& bits, float x) {
    const double estimate = static_cast<double>(x) - bits.left + 0.5;
    auto count = static_cast<std::int32_t>(std::clamp(estimate, 0.0, static_cast<double>(bits.columns)));
    // The centres are rounded to float, which in very wide windows places some on x that are right of it.
    while (count < bits.columns && bits.CenterX(count) <= x) ++count;
    return count;
}

/// Sets in every row that the edge crosses the bit of the last column whose centre is not right of it.
void AddEdge(RowBits& bits, const Corner& a, const Corner& b) {
    const float low = std::min(a.y, b.y), high = std::max(a.y, b.y);
    if (!(low < high)) return;  // horizontal, or not a number
    const double estimate = static_cast<double>(low) - bits.top - 1.0;
    auto row = static_cast<std::int32_t>(std::clamp(estimate, 0.0, static_cast<double>(bits.rows)));
    while (row < bits.rows && !(bits.CenterY(row) > low)) ++row;
    const float right = std::max(a.x, b.x);
    for (; row < bits.rows && bits.CenterY(row) <= high; ++row) {
        const float y = bits.CenterY(row);
        float x = right;
        if (a.x != b.x) {
            x = (b.x - a.x) * (y - a.y) / (b.y - a.y) + a.x;
            if (std::isnan(x)) continue;
            x = std::min(right, x);  // rounding may place the crossing beyond the edge
        }
        const std::int32_t count = ColumnsUpTo(bits, x);
        if (count == 0) continue;
        const auto last = static_cast<std::size_t>(count - 1);
        bits.Row(row)[last / kWordBits] ^= Word{1} << (last % kWordBits);
    }
}

/// Replaces each bit by the parity of the bits from its place to the end of the row.
void FillRow(Word* row, std::size_t words) {
    Word carry = 0;  // all bits: the parity of the words after this one
    for (std::size_t i = words; i-- > 0;) {
        Word word = row[i];
        for (unsigned step = 1; step < kWordBits; step *= 2) word ^= word >> step;
        word ^= carry;
        row[i] = word;
        carry = Word{0} - (word & 1);
    }
}

/// Sets the bits of a row in an image; the bits there are 0.
void CopyRow(const Word* row, std::size_t words, std::vector<std::uint32_t>& image, std::size_t firstBit) {
    const unsigned shift = firstBit % 32;
    for (std::size_t i = 0; i < words; ++i) {
        if (row[i] == 0) continue;
        // Three words of 32 hold 64 bits at any place. Bits after the row are 0, so nothing is stored after the
        // image.
        const std::size_t at = firstBit / 32 + 2 * i;
        const Word low = row[i] << shift, high = shift == 0 ? 0 : row[i] >> (kWordBits - shift);
        if (static_cast<std::uint32_t>(low) != 0) image[at] |= static_cast<std::uint32_t>(low);
        if (low >> 32 != 0) image[at + 1] |= static_cast<std::uint32_t>(low >> 32);
        if (high != 0) image[at + 2] |= static_cast<std::uint32_t>(high);
    }
}

/// Extends the rectangle by the pixel of a corner when it is in the window. The corner may be anything, also not a
/// number.
void ExtendBounds(ACAD::CutMask::Rectangle& bounds, double x, double y, std::int32_t width, std::int32_t height) {
    // Truncation is towards zero: a corner less than a pixel left of the window or above it counts as in it.
    if (!(x > -1.0 && x < width && y > -1.0 && y < height)) return;
    const auto column = static_cast<std::int32_t>(x), row = static_cast<std::int32_t>(y);
    bounds = {std::min(bounds[0], column), std::min(bounds[1], row), std::max(bounds[2], column),
              std::max(bounds[3], row)};
}

}  // namespace

MaskBits CreateMaskBits(std::int32_t width, std::int32_t height, std::span<const KV_ScenePane::LassoPoint> points) {
    MaskBits mask;
    if (width <= 0 || height <= 0) return mask;
    std::vector<Corner> corners;
    corners.reserve(points.size());
    for (const KV_ScenePane::LassoPoint& point : points) {
        const double x = width * point.x, y = height * point.y;
        ExtendBounds(mask.m_rcBounds, x, y, width, height);
        corners.push_back({static_cast<float>(x), static_cast<float>(y)});
    }
    mask.m_vBits.m_uCount = static_cast<std::uint64_t>(width) * static_cast<std::uint64_t>(height);
    mask.m_vBits.m_vWords.resize((mask.m_vBits.m_uCount + 31) / 32);
    if (mask.m_rcBounds == ACAD::CutMask::kNoPixel) return mask;

    RowBits bits(mask.m_rcBounds);
    for (std::size_t i = 1; i < corners.size(); ++i) AddEdge(bits, corners[i - 1], corners[i]);
    for (std::int32_t row = 0; row < bits.rows; ++row) {
        FillRow(bits.Row(row), bits.wordsPerRow);
        CopyRow(bits.Row(row), bits.wordsPerRow, mask.m_vBits.m_vWords,
                static_cast<std::size_t>(bits.top + row) * static_cast<std::size_t>(width) +
                    static_cast<std::size_t>(bits.left));
    }
    return mask;
}
