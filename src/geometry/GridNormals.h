// Vertex normals of a triangulated grid, row by row while its points are in the cache. The sums are those of
// Mesh::ComputeVertexNormals() to the last bit: a grid point has up to six triangles, and they are added in the order
// in which the triangles stand in the mesh.
#pragma once
#include <cstddef>
#include <cstdint>

#include "geometry/GridRows.h"

class GridNormals {
public:
    explicit GridNormals(std::size_t width, LaneCount lanes = BestLaneCount());

    /// Adds the triangles between two rows. Call it for every pair of rows from above.
    /// @param quads  GridQuads::Row()
    void AddRowPair(const PointRow& upper, const PointRow& lower, const std::uint8_t* quads);
    /// Unit normals of the upper row of the last pair: it has all its triangles now.
    [[nodiscard]] const Vec3Row& UpperRow() const { return m_upper; }
    /// Unit normals of the lower row, for the last row of a grid.
    void FinishLowerRow();

private:
    /// Quads start here: the quad to the left of column 0 may be read.
    static constexpr std::size_t kLeft = 1;

    template <typename F>
    void ComputeFaceNormals(const PointRow& upper, const PointRow& lower, const std::uint8_t* quads);
    template <typename F>
    void AddFaceNormals(const PointRow& upper, const PointRow& lower);
    void AddRowPairEight(const PointRow& upper, const PointRow& lower, const std::uint8_t* quads);

    LaneCount m_lanes;
    std::size_t m_uWidth;
    Vec3Row m_first, m_second;  ///< unit normals of the two triangles of each quad, zero for one that is not kept
    Vec3Row m_lowerSum;         ///< what the triangles so far give to the lower row
    Vec3Row m_upper;
};
