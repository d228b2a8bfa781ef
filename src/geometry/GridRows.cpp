// Rows of a measurement grid from pixels or from averaged cells.
#include "geometry/GridRows.h"

#include <algorithm>
#include <cassert>

namespace {

// x y z x, y z x y, z x y z to four x, four y, four z.
Vec3x4 Deinterleave(const float* from) {
    const Float4 a = LoadLanes<Float4>(from), b = LoadLanes<Float4>(from + 4), c = LoadLanes<Float4>(from + 8);
    const Float4 x = __builtin_shufflevector(a, b, 0, 3, 6, 6);
    const Float4 y = __builtin_shufflevector(a, b, 1, 4, 7, 7);
    const Float4 z = __builtin_shufflevector(a, b, 2, 5, 5, 5);
    return {__builtin_shufflevector(x, c, 0, 1, 2, 5), __builtin_shufflevector(y, c, 0, 1, 2, 6),
            __builtin_shufflevector(z, c, 0, 1, 4, 7)};
}

}  // namespace

GridRows::GridRows(std::int32_t width, std::int32_t height, const float* points, const std::uint16_t* mask,
                   const std::uint32_t* colors)
    : m_uWidth(static_cast<std::size_t>(width)),
      m_uHeight(static_cast<std::size_t>(height)),
      m_pPoints(points),
      m_pMask(mask),
      m_pColors(colors) {}

GridRows::GridRows(const GridVertexList& cells)
    : m_uWidth(static_cast<std::size_t>(cells.m_iWidth)),
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
    const float* points = m_pPoints + 3 * y * m_uWidth;
    const std::uint16_t* mask = m_pMask + y * m_uWidth;
    std::size_t x = 0;
    for (; x + 4 <= m_uWidth; x += 4) row.m_points.Store(x, Deinterleave(points + 3 * x));
    for (; x < m_uWidth; ++x) {
        row.m_points.m_vX[x] = points[3 * x];
        row.m_points.m_vY[x] = points[3 * x + 1];
        row.m_points.m_vZ[x] = points[3 * x + 2];
    }
    std::int32_t* valid = row.m_vValid.data();
    for (x = 0; x < m_uWidth; ++x) valid[x] = mask[x] == 0 ? -1 : 0;
    if (m_pColors != nullptr) std::copy_n(m_pColors + y * m_uWidth, m_uWidth, row.m_vColors.data());
}

void GridRows::LoadCells(std::size_t y, PointRow& row) {
    if (y == 0) m_uNextCell = 0;
    std::fill(row.m_vValid.begin(), row.m_vValid.end(), 0);
    const auto& cells = m_pCells->m_vVertices;
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
