// The rows of a measurement grid, one after the other, in the form that the triangulation works on: one array per
// coordinate with padding at the end, so that vector loops need no remainder. The grid is either one of pixels or a
// list of averaged cells.
#pragma once
#include <cstddef>
#include <cstdint>
#include <vector>

#include "geometry/FloatLanes.h"
#include "geometry/GridTriangulation.h"

/// Points or normals as one array of floats per coordinate.
struct Vec3Row {
    std::vector<float> m_vX, m_vY, m_vZ;

    explicit Vec3Row(std::size_t size) : m_vX(size), m_vY(size), m_vZ(size) {}
    template <typename F = Float4>
    [[nodiscard]] KV_LANES Vec3<F> Load(std::size_t i) const {
        return {LoadLanes<F>(&m_vX[i]), LoadLanes<F>(&m_vY[i]), LoadLanes<F>(&m_vZ[i])};
    }
    template <typename F>
    KV_LANES void Store(std::size_t i, const Vec3<F>& value) {
        StoreLanes(&m_vX[i], value.x);
        StoreLanes(&m_vY[i], value.y);
        StoreLanes(&m_vZ[i], value.z);
    }
};

/// One row of grid points.
struct PointRow {
    /// Entries that may be read after the last column; these grid points are not valid.
    static constexpr std::size_t kPadding = 8;

    explicit PointRow(std::size_t width)
        : m_points(width + kPadding), m_vValid(width + kPadding), m_vColors(width + kPadding) {}

    Vec3Row m_points;                      ///< undefined where a grid point is not valid
    std::vector<std::int32_t> m_vValid;    ///< -1 valid, 0 a hole: a mask for FloatLanes.h
    std::vector<std::uint32_t> m_vColors;  ///< as Vertex::color
};

/// A view of a grid; the arrays that it was made from must outlive it. Not for two threads at once: each has a copy.
class GridRows {
public:
    /// A grid of pixels, with the arguments of BuildGridVertexList().
    GridRows(std::int32_t width, std::int32_t height, const float* points, const std::uint16_t* mask,
             const std::uint32_t* colors, LaneCount lanes = BestLaneCount());
    /// A list of averaged cells.
    explicit GridRows(const GridVertexList& cells);

    [[nodiscard]] std::size_t Width() const { return m_uWidth; }
    [[nodiscard]] std::size_t Height() const { return m_uHeight; }
    /// Reads row @p y. Fastest for rows in their order.
    void Load(std::size_t y, PointRow& row);

private:
    void LoadPixels(std::size_t y, PointRow& row) const;
    void LoadCells(std::size_t y, PointRow& row);

    LaneCount m_lanes;
    std::size_t m_uWidth, m_uHeight;
    const float* m_pPoints = nullptr;
    const std::uint16_t* m_pMask = nullptr;
    const std::uint32_t* m_pColors = nullptr;
    const GridVertexList* m_pCells = nullptr;
    std::size_t m_uNextRow = 0;   ///< the row after the last one that was loaded
    std::size_t m_uNextCell = 0;  ///< the first cell of that row or of a later one
};

/// Applies a transform to the valid points of a row; the others are undefined before and after.
/// @param trafo  row-major 4 x 4, of which the first 12 floats are used; sensor to world
void TransformRow(const float* trafo, std::size_t width, PointRow& row, LaneCount lanes = BestLaneCount());
