// The test of points against a mask: the projection by the camera of the mask, and the pixel that it falls on. Four
// points at a time where that is possible; single points and lanes go through the same formulas, so the bits are equal.
#include "KV_ScenePane/CutMask.h"

#include <algorithm>
#include <bit>
#include <cassert>
#include <cmath>
#include <cstdint>
#include <optional>

#include "geometry/FloatLanes.h"

namespace ACAD {

namespace {

using KV_ScenePane::Vertex;
using Double4 = double __attribute__((vector_size(32)));

// ---- the projection, of one point (float) or four (Float4)

KV_LANES double Widen(float value) { return value; }
KV_LANES float Round(double value) { return static_cast<float>(value); }
KV_LANES Double4 Widen(const Float4& value) { return __builtin_convertvector(value, Double4); }
KV_LANES Float4 Round(const Double4& value) { return __builtin_convertvector(value, Float4); }

template <typename F>
struct Homogeneous {
    F x, y, z, w;
};

/// A matrix times a point: formed in double, summed in the order x, y, z, w, and rounded once.
template <typename F>
KV_LANES Homogeneous<F> Multiply(const std::array<double, 16>& m, const Homogeneous<F>& point) {
    const auto x = Widen(point.x), y = Widen(point.y), z = Widen(point.z), w = Widen(point.w);
    return {Round(m[0] * x + m[4] * y + m[8] * z + m[12] * w), Round(m[1] * x + m[5] * y + m[9] * z + m[13] * w),
            Round(m[2] * x + m[6] * y + m[10] * z + m[14] * w), Round(m[3] * x + m[7] * y + m[11] * z + m[15] * w)};
}

template <typename F>
KV_LANES Homogeneous<F> ToClip(const CutMask& mask, const Homogeneous<F>& world) {
    return Multiply(mask.m_dProjection, Multiply(mask.m_dModelView, world));
}

/// Pixels of the window, y upward, and the window depth.
template <typename F>
KV_LANES Vec3<F> ToWindow(const std::array<std::int32_t, 4>& viewport, const Homogeneous<F>& clip) {
    const auto left = static_cast<float>(viewport[0]), bottom = static_cast<float>(viewport[1]);
    const auto width = static_cast<float>(viewport[2]), height = static_cast<float>(viewport[3]);
    return {(clip.x / clip.w * 0.5f + 0.5f) * width + left, (clip.y / clip.w * 0.5f + 0.5f) * height + bottom,
            clip.z / clip.w * 0.5f + 0.5f};
}

/// From window y to the distance from the top; the row is one less, truncated.
template <typename F>
KV_LANES F FromTop(const std::array<std::int32_t, 4>& viewport, const F& windowY) {
    return static_cast<float>(viewport[3]) - windowY;
}

// ---- the pixel

/// In the window, y downward.
struct Pixel {
    std::int64_t column = 0, row = 0;
};

bool IsSet(const CutMask& mask, const Pixel& pixel) {
    // Bits are counted by the viewport; a window that was resized since its last frame has another number of them.
    const auto bit = static_cast<std::uint64_t>(pixel.row * mask.m_nViewport[2] + pixel.column);
    return bit < mask.m_vBits.m_uCount && mask.m_vBits.IsSet(bit);
}

/// Whether a point of that depth is hidden by what the window showed at the pixel.
bool IsHidden(const CutMask& mask, const Pixel& pixel, float depth) {
    const auto index =
        static_cast<std::uint64_t>((mask.m_nViewport[3] - pixel.row - 1) * mask.m_nViewport[2] + pixel.column);
    if (index >= mask.m_vDepth.size()) return true;
    // The offset keeps the shown surface from hiding itself. A depth that is not a number hides nothing.
    return static_cast<double>(depth) - 0.001 > mask.m_vDepth[index];
}

/// Whether a point in the rectangle of the mask is in its region.
bool IsInside(const CutMask& mask, const Pixel& pixel, float depth) {
    return IsSet(mask, pixel) && (mask.m_nKind != CutKindVisibleInside || !IsHidden(mask, pixel, depth));
}

// ---- several points

/// Which points a mask removes. For use by one thread; the mask must outlive it.
class VertexTest {
public:
    explicit VertexTest(const CutMask& mask);

    /// Tests up to 32 vertices, those after the ones before. Bit i is that of vertex i.
    /// @param skipped  vertices that are as if they were not there
    std::uint32_t RemovedOf(std::span<const Vertex> vertices, std::uint32_t skipped);

private:
    bool IsInsideAlone(const Vertex& vertex);
    std::optional<std::uint32_t> InsideOfFour(const Vertex* vertices) const;
    std::optional<std::uint32_t> InsideOf32(const Vertex* vertices) const;
    std::uint32_t InsideOneByOne(std::span<const Vertex> vertices, std::uint32_t skipped);

    const CutMask& m_mask;
    /// Coordinates of the rectangle's pixels: above the first and below the second.
    float m_fAboveX = 0.0f, m_fBelowX = 0.0f, m_fAboveFromTop = 0.0f, m_fBelowFromTop = 0.0f;
    bool m_bUseLanes = false;
    Vec3<float> m_window{0.0f, 0.0f, 0.0f};  ///< of the last point with a projection, while m_optPrevious is empty
    std::optional<Homogeneous<float>> m_optPrevious;  ///< the last point with a projection, when it was in a lane
};

/// The largest float below a positive integer.
float Below(std::int32_t value) { return std::nextafter(static_cast<float>(value), 0.0f); }

VertexTest::VertexTest(const CutMask& mask) : m_mask(mask) {
    // Lanes compare floats and convert to 32 bits: the rectangle must be exact in these. That of any window is.
    constexpr std::int32_t kLargest = (1 << 24) - 2;
    const auto [left, top, right, bottom] = mask.m_rcBounds;
    m_bUseLanes = left >= 0 && top >= 0 && left <= right && top <= bottom && right <= kLargest && bottom <= kLargest;
    if (!m_bUseLanes) return;
    // Truncation is towards zero: the first column begins above -1, the first row above 0 from the top.
    m_fAboveX = left > 0 ? Below(left) : -1.0f;
    m_fBelowX = static_cast<float>(right + 1);
    m_fAboveFromTop = top > 0 ? Below(top + 1) : 0.0f;
    m_fBelowFromTop = static_cast<float>(bottom + 2);
}

bool VertexTest::IsInsideAlone(const Vertex& vertex) {
    const auto clip = ToClip<float>(m_mask, {vertex.x, vertex.y, vertex.z, 1.0f});
    // A point without a projection is where the one before it was.
    if (clip.w != 0.0f) m_window = ToWindow(m_mask.m_nViewport, clip);
    // Compared before the conversion: what is not finite or beyond the integers is in no rectangle.
    const double column = std::trunc(static_cast<double>(m_window.x));
    const double row = std::trunc(static_cast<double>(FromTop(m_mask.m_nViewport, m_window.y)) - 1.0);
    const auto [left, top, right, bottom] = m_mask.m_rcBounds;
    return column >= left && column <= right && row >= top && row <= bottom &&
           IsInside(m_mask, {static_cast<std::int64_t>(column), static_cast<std::int64_t>(row)}, m_window.z);
}

/// Nothing when one of them has no projection.
std::optional<std::uint32_t> VertexTest::InsideOfFour(const Vertex* vertices) const {
    Homogeneous<Float4> world = {LoadLanes<Float4>(&vertices[0].x), LoadLanes<Float4>(&vertices[1].x),
                                 LoadLanes<Float4>(&vertices[2].x), LoadLanes<Float4>(&vertices[3].x)};
    Transpose(world.x, world.y, world.z, world.w);
    world.w = SplatFloat4(1.0f);
    const auto clip = ToClip(m_mask, world);
    if (HasAny(Int4(clip.w == 0.0f))) return std::nullopt;
    const auto window = ToWindow(m_mask.m_nViewport, clip);
    const Float4 fromTop = FromTop(m_mask.m_nViewport, window.y);
    const Int4 isNear =
        (window.x > m_fAboveX) & (window.x < m_fBelowX) & (fromTop > m_fAboveFromTop) & (fromTop < m_fBelowFromTop);
    if (!HasAny(isNear)) return 0;
    const Int4 columns = __builtin_convertvector(KeepWhere(isNear, window.x), Int4);
    const Int4 rowsBelow = __builtin_convertvector(KeepWhere(isNear, fromTop), Int4);
    std::uint32_t inside = 0;
    for (std::size_t i = 0; i < 4; ++i) {
        if (isNear[i] == 0) continue;
        const Pixel pixel{columns[i], std::max(rowsBelow[i] - 1, 0)};
        inside |= static_cast<std::uint32_t>(IsInside(m_mask, pixel, window.z[i])) << i;
    }
    return inside;
}

std::optional<std::uint32_t> VertexTest::InsideOf32(const Vertex* vertices) const {
    std::uint32_t inside = 0;
    for (unsigned i = 0; i < 32; i += 4) {
        const auto four = InsideOfFour(vertices + i);
        if (!four) return std::nullopt;
        inside |= *four << i;
    }
    return inside;
}

std::uint32_t VertexTest::InsideOneByOne(std::span<const Vertex> vertices, std::uint32_t skipped) {
    if (m_optPrevious) m_window = ToWindow(m_mask.m_nViewport, ToClip(m_mask, *m_optPrevious));
    m_optPrevious.reset();
    std::uint32_t inside = 0;
    for (std::size_t i = 0; i < vertices.size(); ++i)
        if (((skipped >> i) & 1) == 0 && IsInsideAlone(vertices[i])) inside |= std::uint32_t{1} << i;
    return inside;
}

std::uint32_t VertexTest::RemovedOf(std::span<const Vertex> vertices, std::uint32_t skipped) {
    assert(vertices.size() <= 32);
    const std::uint32_t all = vertices.size() == 32 ? ~std::uint32_t{0} : (std::uint32_t{1} << vertices.size()) - 1;
    const std::uint32_t tested = all & ~skipped;
    if (tested == 0) return 0;
    std::optional<std::uint32_t> inside;
    if (m_bUseLanes && vertices.size() == 32) inside = InsideOf32(vertices.data());
    if (inside) {
        const Vertex& last = vertices[static_cast<std::size_t>(std::bit_width(tested)) - 1];
        m_optPrevious = {last.x, last.y, last.z, 1.0f};
    } else {
        inside = InsideOneByOne(vertices, skipped);
    }
    return (m_mask.m_nKind == CutKindOutside ? ~*inside : *inside) & tested;
}

}  // namespace

bool CutMask::MarkVertices(std::span<const Vertex> vertices, std::span<std::uint32_t> bits) const {
    assert(bits.size() >= (vertices.size() + 31) / 32);
    VertexTest test(*this);
    std::uint32_t anyRemoved = 0;
    for (std::size_t first = 0; first < vertices.size(); first += 32) {
        const std::uint32_t removed =
            test.RemovedOf(vertices.subspan(first, std::min<std::size_t>(32, vertices.size() - first)), 0);
        bits[first / 32] |= removed;
        anyRemoved |= removed;
    }
    return anyRemoved != 0;
}

bool CutMask::InvalidateVertices(std::span<Vertex> vertices) const {
    constexpr std::uint32_t kRemoved = 0xFFFFFFFF;  // -1 as a signed number
    VertexTest test(*this);
    std::uint32_t anyRemoved = 0;
    for (std::size_t first = 0; first < vertices.size(); first += 32) {
        const auto block = vertices.subspan(first, std::min<std::size_t>(32, vertices.size() - first));
        std::uint32_t skipped = 0;
        for (std::size_t i = 0; i < block.size(); ++i) skipped |= (block[i].gridIndex >> 31) << i;
        const std::uint32_t removed = test.RemovedOf(block, skipped);
        for (std::uint32_t rest = removed; rest != 0; rest &= rest - 1)
            block[static_cast<std::size_t>(std::countr_zero(rest))].gridIndex = kRemoved;
        anyRemoved |= removed;
    }
    return anyRemoved != 0;
}

}  // namespace ACAD
