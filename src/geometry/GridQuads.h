// The quads of a measurement grid: which corners are there, which triangles are kept, and the vertex indices that
// follow. All decisions are made in a first pass, so that the second one can write into arrays of exactly the right
// size.
#pragma once
#include <cstddef>
#include <cstdint>
#include <vector>

#include "geometry/GridRows.h"
#include "geometry/Vertex.h"

// One byte for each quad. The quad at (x, y) has the corners A (x, y), B (x + 1, y), C (x, y + 1), D (x + 1, y + 1).
// Its first triangle holds A and C, and B or else D; its second one D and B, and C or else A.
inline constexpr std::int32_t kQuadA = 1, kQuadB = 2, kQuadC = 4, kQuadD = 8;
inline constexpr std::int32_t kQuadCorners = 15;  ///< all zero when fewer than three corners are there
inline constexpr std::int32_t kQuadFirst = 16;    ///< the first triangle is kept
inline constexpr std::int32_t kQuadSecond = 32;   ///< the second triangle is kept

class GridQuads {
public:
    /// Looks at every quad once; @p sliverLimit as for IsSliver().
    GridQuads(GridRows& rows, float sliverLimit, LaneCount lanes = BestLaneCount());

    /// The quads between the rows y and y + 1, preceded and followed by a zero byte: [0] to [Width() - 2] are quads,
    /// [-1] and [Width() - 1] may be read.
    [[nodiscard]] const std::uint8_t* Row(std::size_t y) const { return &m_vQuads[(y + 1) * m_uStride + kLeft]; }
    [[nodiscard]] std::size_t VertexCount() const { return m_uVertexCount; }
    [[nodiscard]] std::size_t TriangleCount() const { return m_uTriangleCount; }

private:
    static constexpr std::size_t kLeft = 1;

    std::uint8_t* RowToWrite(std::size_t y) { return &m_vQuads[(y + 1) * m_uStride + kLeft]; }
    void CountVertices(std::size_t width, std::size_t height);

    std::size_t m_uStride;
    std::vector<std::uint8_t> m_vQuads;  ///< with a row of zeros before the first and after the last one
    std::size_t m_uVertexCount = 0, m_uTriangleCount = 0;
};

/// Gives indices to grid points in the order in which the triangles touch them.
class GridIndexer {
public:
    explicit GridIndexer(std::size_t width);

    /// The triangles of one row of quads, to be looked at until the next call. Corners of rejected triangles get an
    /// index too.
    void TriangulateRowPair(const std::uint8_t* quads);
    [[nodiscard]] const std::vector<std::int32_t>& UpperRow() const { return m_vPrevRow; }
    [[nodiscard]] const std::vector<std::int32_t>& LowerRow() const { return m_vNextRow; }
    [[nodiscard]] std::size_t VertexCount() const { return static_cast<std::size_t>(m_iVertexCount); }
    [[nodiscard]] const Triangle* TrianglesBegin() const { return m_vTriangles.data(); }
    [[nodiscard]] const Triangle* TrianglesEnd() const { return m_vTriangles.data() + m_uTriangleCount; }
    /// The lower row becomes the upper one.
    void Advance();

private:
    std::size_t m_uWidth;
    std::int32_t m_iVertexCount = 0;
    std::vector<std::int32_t> m_vPrevRow, m_vNextRow;  ///< -1 for a grid point that has no vertex yet; padded
    std::vector<Triangle> m_vTriangles;
    std::size_t m_uTriangleCount = 0;
};
