// Vertex normals of a triangulated grid, row by row while its points are in the cache. The result equals that of
// Mesh::ComputeVertexNormals() to the last bit: a grid point has up to six triangles, and they are added in the order
// of the triangles in the mesh.
#pragma once
#include <cstddef>
#include <cstdint>

#include "geometry/GridRows.h"

/// Call AddRowPair() for every pair of rows from the top, then FinishLowerRow() once.
class GridNormals {
public:
    /// @param width  of the grid, points
    explicit GridNormals(std::size_t width, LaneCount lanes = BestLaneCount());

    /// Adds the triangles between two neighbouring rows.
    /// @param upper, lower  the points as they become vertices: transformed, when there is a transform
    /// @param quads         GridQuads::Row() of the upper row
    void AddRowPair(const PointRow& upper, const PointRow& lower, const std::uint8_t* quads);
    /// Unit normals of the upper row of the last pair, whose triangles are now all added. Undefined at grid points that
    /// are not vertices.
    [[nodiscard]] const Vec3Row& UpperRow() const { return m_upper; }
    /// Moves the last row of the grid into UpperRow(): no row below adds to it.
    void FinishLowerRow();

private:
    /// Index of the first quad: the sums read one quad to the left of column 0, which is zero.
    static constexpr std::size_t kLeft = 1;

    template <typename F>
    void ComputeFaceNormals(const PointRow& upper, const PointRow& lower, const std::uint8_t* quads);
    template <typename F>
    void AddFaceNormals(const PointRow& upper, const PointRow& lower);
    void AddRowPairEight(const PointRow& upper, const PointRow& lower, const std::uint8_t* quads);

    LaneCount m_lanes;
    std::size_t m_uWidth;
    Vec3Row m_first, m_second;  ///< unit normals of the two triangles of each quad, zero for one that is not kept
    Vec3Row m_lowerSum;         ///< of the lower row, from the triangles above it
    Vec3Row m_upper;
};
