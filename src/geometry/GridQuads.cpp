// Decides which triangles of a grid are kept, several quads at a time, and numbers the vertices of the triangles.
#include "geometry/GridQuads.h"

#include <algorithm>
#include <limits>
#include <utility>

#include "base/ParallelTasks.h"

namespace {

// The comparison of IsSliver() in the same order of operations: the squared cosine at each corner against the squared
// limit. A quotient that is not a number
// does not exceed it.
template <typename F>
KV_LANES typename Lanes<F>::Int IsSliverLanes(const Vec3<F>& p0, const Vec3<F>& p1, const Vec3<F>& p2,
                                              float squaredLimit) {
    const Vec3<F> e0 = p0 - p1, e1 = p1 - p2, e2 = p2 - p0;
    const F s0 = Dot(e0, e0), s1 = Dot(e1, e1), s2 = Dot(e2, e2);
    const F d10 = Dot(e1, e0), d21 = Dot(e2, e1), d20 = Dot(e2, e0);
    return (d10 * d10 / (s1 * s0) > squaredLimit) | (d21 * d21 / (s2 * s1) > squaredLimit) |
           (d20 * d20 / (s2 * s0) > squaredLimit);
}

template <typename F>
KV_LANES void ClassifyLanes(const PointRow& upper, const PointRow& lower, std::size_t width, float squaredLimit,
                            std::uint8_t* quads) {
    using Int = typename Lanes<F>::Int;
    for (std::size_t x = 0; x + 1 < width; x += Lanes<F>::kCount) {
        // Which corners are valid, and which of the two triangles they allow.
        const Int hasA = LoadLanes<Int>(&upper.m_vValid[x]), hasB = LoadLanes<Int>(&upper.m_vValid[x + 1]);
        const Int hasC = LoadLanes<Int>(&lower.m_vValid[x]), hasD = LoadLanes<Int>(&lower.m_vValid[x + 1]);
        const Int hasFirst = hasA & hasC & (hasB | hasD), hasSecond = hasD & hasB & (hasC | hasA);
        if (!HasAny(hasFirst | hasSecond)) continue;  // a block of holes: its bytes are zero already
        // The sliver test on the triangles' corners.
        const Vec3<F> a = upper.m_points.Load<F>(x), b = upper.m_points.Load<F>(x + 1);
        const Vec3<F> c = lower.m_points.Load<F>(x), d = lower.m_points.Load<F>(x + 1);
        const Int isFirst = hasFirst & ~IsSliverLanes(a, c, Select(hasB, b, d), squaredLimit);
        const Int isSecond = hasSecond & ~IsSliverLanes(Select(hasC, c, a), d, b, squaredLimit);
        // One byte per quad.
        const Int corners = (hasA & kQuadA) | (hasB & kQuadB) | (hasC & kQuadC) | (hasD & kQuadD);
        const Int bits = ((hasFirst | hasSecond) & corners) | (isFirst & kQuadFirst) | (isSecond & kQuadSecond);
        StoreLanes(quads + x, __builtin_convertvector(bits, typename Lanes<F>::Byte));
    }
}

#if defined(KV_HAS_EIGHT_LANES)
KV_HAS_EIGHT_LANES void ClassifyEight(const PointRow& upper, const PointRow& lower, std::size_t width,
                                      float squaredLimit, std::uint8_t* quads) {
    ClassifyLanes<Float8>(upper, lower, width, squaredLimit, quads);
}
#endif

void ClassifyRowPair(LaneCount lanes, const PointRow& upper, const PointRow& lower, std::size_t width,
                     float squaredLimit, std::uint8_t* quads) {
#if defined(KV_HAS_EIGHT_LANES)
    if (lanes == LaneCount::kEight) return ClassifyEight(upper, lower, width, squaredLimit, quads);
#endif
    (void)lanes;
    ClassifyLanes<Float4>(upper, lower, width, squaredLimit, quads);
}

// Counts in bytes for 64 elements, which cannot overflow: the compiler then uses the full width of its vectors.
template <typename BitAt>
std::size_t CountBits(std::size_t size, const BitAt& bitAt) {
    std::size_t count = 0;
    for (std::size_t begin = 0; begin < size; begin += 64) {
        const std::size_t end = std::min(size, begin + 64);
        std::uint8_t part = 0;
        for (std::size_t i = begin; i < end; ++i) part = static_cast<std::uint8_t>(part + bitAt(i));
        count += part;
    }
    return count;
}

}  // namespace

GridQuads::GridQuads(const GridRows& rows, float sliverLimit, LaneCount lanes, unsigned threads)
    // The padding: up to eight bytes are read or written at once.
    : m_uStride(kLeft + rows.Width() + PointRow::kPadding),
      m_vQuads(m_uStride * (rows.Height() + 1)),
      m_vVerticesBefore(std::max<std::size_t>(rows.Height(), 1)),
      m_vTrianglesBefore(m_vVerticesBefore.size()) {
    const std::size_t width = rows.Width(), height = rows.Height();
    if (width < 2 || height < 2) return;
    // A negative limit becomes infinity, which nothing exceeds.
    const float limit = sliverLimit < 0 ? std::numeric_limits<float>::infinity() : sliverLimit;
    const std::size_t quadRows = height - 1, bands = std::min<std::size_t>(threads, quadRows);
    const auto firstOf = [quadRows, bands](std::size_t band) { return quadRows * band / bands; };
    RunTasks(bands, threads,
             [&](std::size_t band) { ClassifyBand(rows, firstOf(band), firstOf(band + 1), limit * limit, lanes); });
    // The numbers of each row need the row of quads above it; then their sums.
    RunTasks(bands, threads, [&](std::size_t band) { CountBand(firstOf(band), firstOf(band + 1), width); });
    for (std::size_t y = 0; y < quadRows; ++y) {
        m_vVerticesBefore[y + 1] += m_vVerticesBefore[y];
        m_vTrianglesBefore[y + 1] += m_vTrianglesBefore[y];
    }
}

/// Decides about the rows of quads from @p first to before @p last.
/// @param rows  a copy of the caller's
void GridQuads::ClassifyBand(GridRows rows, std::size_t first, std::size_t last, float squaredLimit, LaneCount lanes) {
    const std::size_t width = rows.Width();
    PointRow upper(width), lower(width);
    rows.Load(first, upper);
    for (std::size_t y = first; y < last; ++y) {
        rows.Load(y + 1, lower);
        ClassifyRowPair(lanes, upper, lower, width, squaredLimit, RowToWrite(y));
        std::swap(upper, lower);
    }
}

// A grid point becomes a vertex when one of the four quads around it has three valid corners and the point is one of
// them: it is corner D and C of the quads above, B and A of the quads below. A row of quads is the first to use the
// points below it, and those above it that the row of quads before does not use.
void GridQuads::CountBand(std::size_t first, std::size_t last, std::size_t width) {
    for (std::size_t y = first; y < last; ++y) {
        const std::uint8_t* const quads = RowToWrite(y);
        const std::uint8_t* const above = quads - m_uStride;
        m_vTrianglesBefore[y + 1] = CountBits(
            width, [quads](std::size_t x) { return (quads[x] / kQuadFirst & 1) + (quads[x] / kQuadSecond & 1); });
        m_vVerticesBefore[y + 1] = CountBits(width, [quads, above](std::size_t x) {
            const int lower = (quads[x - 1] >> 3) | (quads[x] >> 2);
            const int upper = (quads[x - 1] >> 1) | quads[x], used = (above[x - 1] >> 3) | (above[x] >> 2);
            return (lower & 1) + (upper & ~used & 1);
        });
    }
}

GridIndexer::GridIndexer(std::size_t width)
    : m_uWidth(width),
      m_vPrevRow(width + PointRow::kPadding, -1),
      m_vNextRow(width + PointRow::kPadding, -1),
      m_vTriangles(2 * width) {}

// The order of the new vertices of a row of quads depends on which points above it have a number already, not on these
// numbers: that row is numbered with zeros for them.
void GridIndexer::StartAt(const GridQuads& quads, std::size_t y) {
    std::fill(m_vPrevRow.begin(), m_vPrevRow.end(), -1);
    std::fill(m_vNextRow.begin(), m_vNextRow.end(), -1);
    m_iVertexCount = static_cast<std::int32_t>(quads.VerticesBefore(y));
    if (y == 0) return;
    const std::uint8_t* const above = quads.Row(y - 1);
    for (std::size_t x = 0; x < m_uWidth; ++x)
        if ((((above[x - 1] >> 3) | (above[x] >> 2)) & 1) != 0) m_vPrevRow[x] = 0;
}

void GridIndexer::TriangulateRowPair(const std::uint8_t* quads) {
    std::int32_t* const prev = m_vPrevRow.data();
    std::int32_t* const next = m_vNextRow.data();
    std::int32_t count = m_iVertexCount;
    // The index of a grid point; its first use creates it.
    const auto touch = [&count](std::int32_t& index) {
        if (index < 0) index = count++;
    };
    Triangle* out = m_vTriangles.data();
    for (std::size_t x = 0; x + 1 < m_uWidth; ++x) {
        const std::uint32_t quad = quads[x];
        if (quad == 0) continue;
        std::int32_t &a = prev[x], &b = prev[x + 1], &c = next[x], &d = next[x + 1];
        if ((quad & kQuadCorners) == kQuadCorners && (a | b | c) >= 0) {  // inside a surface: only D is new
            d = count++;
            *out = {{a, c, b}};
            out += (quad / kQuadFirst) & 1;
            *out = {{c, d, b}};
            out += (quad / kQuadSecond) & 1;
            continue;
        }
        switch (quad & kQuadCorners) {
            // The order of the calls is the order of the new vertices: corner by corner as the triangles use them.
            case kQuadA | kQuadB | kQuadC | kQuadD:
                touch(a), touch(c), touch(b), touch(d);
                break;
            case kQuadA | kQuadB | kQuadC:
                touch(a), touch(c), touch(b);
                break;
            case kQuadA | kQuadB | kQuadD:
                touch(a), touch(d), touch(b);
                break;
            case kQuadA | kQuadC | kQuadD:
                touch(a), touch(c), touch(d);
                break;
            default:
                touch(c), touch(d), touch(b);
                break;
        }
        // Both triangles are written, and a rejected one is overwritten by the next: no branch that is hard to predict.
        *out = {{a, c, (quad & kQuadB) != 0 ? b : d}};
        out += (quad / kQuadFirst) & 1;
        *out = {{(quad & kQuadC) != 0 ? c : a, d, b}};
        out += (quad / kQuadSecond) & 1;
    }
    m_iVertexCount = count;
    m_uTriangleCount = static_cast<std::size_t>(out - m_vTriangles.data());
}

void GridIndexer::Advance() {
    std::swap(m_vPrevRow, m_vNextRow);
    std::fill(m_vNextRow.begin(), m_vNextRow.end(), -1);
}
