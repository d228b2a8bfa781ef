// The quads of a measurement grid: which of their corners are valid, which triangles are kept, and the vertex indices
// that follow. A first pass makes all decisions and counts, so that a second pass can write into arrays of the exact
// size.
#pragma once
#include <cstddef>
#include <cstdint>
#include <vector>

#include "geometry/GridRows.h"
#include "geometry/Vertex.h"

// One byte per quad. The quad at (x, y) has the corners A (x, y), B (x + 1, y), C (x, y + 1), D (x + 1, y + 1):
//
//     A - B      y grows downward. With all four corners the diagonal is B - C: triangles A C B and C D B.
//     | / |      With three corners there is one triangle.
//     C - D
//
// The first triangle has A and C, and B or else D; the second one has D and B, and C or else A.
inline constexpr std::int32_t kQuadA = 1, kQuadB = 2, kQuadC = 4, kQuadD = 8;
inline constexpr std::int32_t kQuadCorners = 15;  ///< mask; all zero when fewer than three corners are valid
inline constexpr std::int32_t kQuadFirst = 16;    ///< the first triangle is kept
inline constexpr std::int32_t kQuadSecond = 32;   ///< the second triangle is kept

/// The decisions about all quads of a grid: one byte per quad.
class GridQuads {
public:
    /// Reads every row and decides about every quad.
    /// @param sliverLimit  as for IsSliver()
    /// @param threads      number of threads, each with a band of the rows; the result does not depend on it
    GridQuads(const GridRows& rows, float sliverLimit, LaneCount lanes = BestLaneCount(), unsigned threads = 1);

    /// The quads between the rows y and y + 1, preceded and followed by a zero byte: [0] to [width - 2] are quads, [-1]
    /// and [width - 1] may be read.
    [[nodiscard]] const std::uint8_t* Row(std::size_t y) const { return &m_vQuads[(y + 1) * m_uStride + kLeft]; }
    /// Grid points that are a corner of a triangle, also of a rejected one: these become vertices.
    [[nodiscard]] std::size_t VertexCount() const { return m_vVerticesBefore.back(); }
    /// Triangles that are kept.
    [[nodiscard]] std::size_t TriangleCount() const { return m_vTrianglesBefore.back(); }
    /// Vertices that the triangles of the rows of quads above row @p y use: the first number that row y gives. For y up
    /// to the number of rows of quads.
    [[nodiscard]] std::size_t VerticesBefore(std::size_t y) const { return m_vVerticesBefore[y]; }
    /// Kept triangles of the rows of quads above row @p y.
    [[nodiscard]] std::size_t TrianglesBefore(std::size_t y) const { return m_vTrianglesBefore[y]; }

private:
    static constexpr std::size_t kLeft = 1;  ///< the zero byte before the first quad of a row

    void ClassifyBand(GridRows rows, std::size_t first, std::size_t last, float squaredLimit, LaneCount lanes);
    void CountBand(std::size_t first, std::size_t last, std::size_t width);
    std::uint8_t* RowToWrite(std::size_t y) { return &m_vQuads[(y + 1) * m_uStride + kLeft]; }

    std::size_t m_uStride;
    std::vector<std::uint8_t> m_vQuads;  ///< with a row of zeros before the first and after the last one
    std::vector<std::size_t> m_vVerticesBefore,
        m_vTrianglesBefore;  ///< per row of quads, and the sums of all at the end
};

/// Numbers the grid points in the order in which the triangles use them first, row by row, and makes the triangles.
/// Vertices that are used together are therefore near each other in memory.
class GridIndexer {
public:
    /// @param width  of the grid, points
    explicit GridIndexer(std::size_t width);

    /// Continues as if all rows of quads above row @p y had been triangulated. The indices of the vertices above that
    /// row are then not those of the mesh: they are valid from the row of grid points y + 1 on.
    void StartAt(const GridQuads& quads, std::size_t y);
    /// Makes the triangles of one row of quads; they are valid until the next call. Corners of rejected triangles are
    /// numbered too.
    /// @param quads  GridQuads::Row()
    void TriangulateRowPair(const std::uint8_t* quads);
    /// Vertex indices of the row above the quads, -1 where there is no vertex; padded.
    [[nodiscard]] const std::vector<std::int32_t>& UpperRow() const { return m_vPrevRow; }
    [[nodiscard]] const std::vector<std::int32_t>& LowerRow() const { return m_vNextRow; }
    [[nodiscard]] std::size_t VertexCount() const { return static_cast<std::size_t>(m_iVertexCount); }
    [[nodiscard]] const Triangle* TrianglesBegin() const { return m_vTriangles.data(); }
    [[nodiscard]] const Triangle* TrianglesEnd() const { return m_vTriangles.data() + m_uTriangleCount; }
    /// Goes on to the next row of quads: the lower row becomes the upper one.
    void Advance();

private:
    std::size_t m_uWidth;
    std::int32_t m_iVertexCount = 0;
    std::vector<std::int32_t> m_vPrevRow, m_vNextRow;  ///< -1 for a grid point without a vertex so far; padded
    std::vector<Triangle> m_vTriangles;
    std::size_t m_uTriangleCount = 0;
};
