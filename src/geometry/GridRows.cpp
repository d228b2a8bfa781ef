// Rows of a measurement grid from pixels or from averaged cells, four or eight points at a time.
#include "geometry/GridRows.h"

#include <algorithm>
#include <cassert>

namespace {

// From points to coordinates: x y z x, y z x y, z x y z become four x, four y, four z.
template <typename F>
KV_LANES Vec3<F> Deinterleave(const float* from);

template <>
KV_LANES Vec3<Float4> Deinterleave<Float4>(const float* from) {
    const Float4 a = LoadLanes<Float4>(from), b = LoadLanes<Float4>(from + 4), c = LoadLanes<Float4>(from + 8);
    const Float4 x = __builtin_shufflevector(a, b, 0, 3, 6, 6);
    const Float4 y = __builtin_shufflevector(a, b, 1, 4, 7, 7);
    const Float4 z = __builtin_shufflevector(a, b, 2, 5, 5, 5);
    return {__builtin_shufflevector(x, c, 0, 1, 2, 5), __builtin_shufflevector(y, c, 0, 1, 2, 6),
            __builtin_shufflevector(z, c, 0, 1, 4, 7)};
}

// In blocks without a valid pixel only the mask is read: a scan has large holes. The points there stay undefined.
template <typename F>
KV_LANES void LoadPixelLanes(const float* points, const std::uint16_t* mask, std::size_t width, PointRow& row) {
    constexpr std::size_t kCount = Lanes<F>::kCount;
    std::size_t x = 0;
    for (; x + kCount <= width; x += kCount) {
        const auto isHole = LoadLanes<typename Lanes<F>::Word>(mask + x) != 0;
        const typename Lanes<F>::Int isValid = ~__builtin_convertvector(isHole, typename Lanes<F>::Int);
        StoreLanes(&row.m_vValid[x], isValid);
        if (HasAny(isValid)) row.m_points.Store(x, Deinterleave<F>(points + 3 * x));
    }
    // The last columns one by one: the grid's own arrays have no padding.
    for (; x < width; ++x) {
        row.m_vValid[x] = mask[x] == 0 ? -1 : 0;
        row.m_points.m_vX[x] = points[3 * x];
        row.m_points.m_vY[x] = points[3 * x + 1];
        row.m_points.m_vZ[x] = points[3 * x + 2];
    }
}

#if defined(KV_HAS_EIGHT_LANES)
KV_LANES Float8 LoadHalves(const float* low, const float* high) {
    return JoinHalves(LoadLanes<Float4>(low), LoadLanes<Float4>(high));
}

// The first four points are in the lower half, the next four in the upper one. Each coordinate is first blended into
// one vector, so that a single shuffle per coordinate puts it in order.
template <>
KV_LANES Vec3<Float8> Deinterleave<Float8>(const float* from) {
    const Float8 a = LoadHalves(from, from + 12), b = LoadHalves(from + 4, from + 16),
                 c = LoadHalves(from + 8, from + 20);
    const Int8 at1{0, -1, 0, 0, 0, -1, 0, 0}, at2{0, 0, -1, 0, 0, 0, -1, 0};
    const Float8 x = Select(at1, c, Select(at2, b, a)), y = Select(at1, a, Select(at2, c, b)),
                 z = Select(at1, b, Select(at2, a, c));
    return {__builtin_shufflevector(x, x, 0, 3, 2, 1, 4, 7, 6, 5),
            __builtin_shufflevector(y, y, 1, 0, 3, 2, 5, 4, 7, 6),
            __builtin_shufflevector(z, z, 2, 1, 0, 3, 6, 5, 4, 7)};
}

KV_HAS_EIGHT_LANES void LoadPixelsEight(const float* points, const std::uint16_t* mask, std::size_t width,
                                        PointRow& row) {
    LoadPixelLanes<Float8>(points, mask, width, row);
}
#endif

void LoadPixelRow(LaneCount lanes, const float* points, const std::uint16_t* mask, std::size_t width, PointRow& row) {
#if defined(KV_HAS_EIGHT_LANES)
    if (lanes == LaneCount::kEight) return LoadPixelsEight(points, mask, width, row);
#endif
    (void)lanes;
    LoadPixelLanes<Float4>(points, mask, width, row);
}

// The sums run from left to right, as in the plain loop that the tests compare with.
template <typename F>
KV_LANES void TransformLanes(const float* m, std::size_t width, PointRow& row) {
    for (std::size_t x = 0; x < width; x += Lanes<F>::kCount) {
        if (!HasAny(LoadLanes<typename Lanes<F>::Int>(&row.m_vValid[x]))) continue;
        const Vec3<F> p = row.m_points.Load<F>(x);
        row.m_points.Store(
            x, Vec3<F>{p.x * m[0] + p.y * m[1] + p.z * m[2] + m[3], p.x * m[4] + p.y * m[5] + p.z * m[6] + m[7],
                       p.x * m[8] + p.y * m[9] + p.z * m[10] + m[11]});
    }
}

#if defined(KV_HAS_EIGHT_LANES)
KV_HAS_EIGHT_LANES void TransformEight(const float* m, std::size_t width, PointRow& row) {
    TransformLanes<Float8>(m, width, row);
}
#endif

}  // namespace

GridRows::GridRows(std::int32_t width, std::int32_t height, const float* points, const std::uint16_t* mask,
                   const std::uint32_t* colors, LaneCount lanes)
    : m_lanes(lanes),
      m_uWidth(static_cast<std::size_t>(width)),
      m_uHeight(static_cast<std::size_t>(height)),
      m_pPoints(points),
      m_pMask(mask),
      m_pColors(colors) {}

GridRows::GridRows(const GridVertexList& cells)
    : m_lanes(LaneCount::kFour),
      m_uWidth(static_cast<std::size_t>(cells.m_iWidth)),
      m_uHeight(static_cast<std::size_t>(cells.m_iHeight)),
      m_pCells(&cells) {}

void GridRows::Load(std::size_t y, PointRow& row) {
    assert(y < m_uHeight);
    if (m_pCells != nullptr)
        LoadCells(y, row);
    else
        LoadPixels(y, row);
}

void GridRows::LoadPixels(std::size_t y, PointRow& row) const {
    LoadPixelRow(m_lanes, m_pPoints + 3 * y * m_uWidth, m_pMask + y * m_uWidth, m_uWidth, row);
    if (m_pColors != nullptr) std::copy_n(m_pColors + y * m_uWidth, m_uWidth, row.m_vColors.data());
}

void GridRows::LoadCells(std::size_t y, PointRow& row) {
    // The list is in row order and has no entry for an empty cell.
    const auto& cells = m_pCells->m_vVertices;
    const auto rowOf = [](const Vertex& cell) { return std::size_t{cell.gridIndex >> 16}; };
    if (y != m_uNextRow)
        m_uNextCell = static_cast<std::size_t>(std::ranges::lower_bound(cells, y, {}, rowOf) - cells.begin());
    m_uNextRow = y + 1;
    std::fill(row.m_vValid.begin(), row.m_vValid.end(), 0);
    for (; m_uNextCell < cells.size() && cells[m_uNextCell].gridIndex >> 16 == y; ++m_uNextCell) {
        const Vertex& cell = cells[m_uNextCell];
        const std::size_t x = cell.gridIndex & 0xFFFF;
        row.m_points.m_vX[x] = cell.x;
        row.m_points.m_vY[x] = cell.y;
        row.m_points.m_vZ[x] = cell.z;
        row.m_vValid[x] = -1;
        row.m_vColors[x] = cell.color;
    }
}

void TransformRow(const float* trafo, std::size_t width, PointRow& row, LaneCount lanes) {
#if defined(KV_HAS_EIGHT_LANES)
    if (lanes == LaneCount::kEight) return TransformEight(trafo, width, row);
#endif
    (void)lanes;
    TransformLanes<Float4>(trafo, width, row);
}
