// From a measurement grid to a mesh: averaging by cells, triangles per quad, sliver test, normals. Any thread. Linear
// in the grid points; peak memory is the mesh, one byte per grid point and, when averaging, the list of cells.
#pragma once
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "geometry/Mesh.h"
#include "geometry/Vertex.h"

/// Cosine of about 15.02 degrees: a triangle with a corner sharper than that, or blunter than 180 degrees minus that,
/// is a sliver. Scanner grids have them where the surface is seen at a grazing angle or steps back.
inline constexpr float kMaxEdgeCosine = 0.965826f;

/// The reduced grid: its size in cells and the vertices of the cells that have one, in row order.
struct GridVertexList {
    std::int32_t m_iHeight = 0, m_iWidth = 0;
    std::vector<Vertex> m_vVertices;  ///< normals zero; gridIndex is (cell row << 16) | cell column
};

/// One vertex per valid pixel, or one per cell of skip x skip pixels that has enough of them and no step to its left or
/// upper neighbour.
/// @param points  3 floats per pixel, row after row; pixel (x, y) has the index y * width + x; sensor frame
/// @param mask    one word per pixel, 0 is valid
/// @param colors  one word per pixel in the form of Vertex::color, or null
/// @param skip    1 keeps every pixel, s averages cells of s x s pixels; at least 1
/// @param threads  used for averages alone; the result does not depend on them
[[nodiscard]] GridVertexList BuildGridVertexList(std::int16_t width, std::int16_t height, const float* points,
                                                 const std::uint16_t* mask, const std::uint32_t* colors,
                                                 std::int32_t skip, unsigned threads = 1);

/// Connects neighbouring grid points to triangles, without normals. The grid is that of BuildGridVertexList(); the
/// vertices are in the order in which the triangles use them first.
/// @param sliverLimit          cosine limit of IsSliver(); negative switches the test off
/// @param vertices, triangles  replaced; their capacity becomes exact
void TriangulateGrid(std::int16_t width, std::int16_t height, const float* points, const std::uint16_t* mask,
                     const std::uint32_t* colors, std::int32_t skip, float sliverLimit, std::vector<Vertex>* vertices,
                     std::vector<Triangle>* triangles);

/// -1 when a corner of the triangle is sharper or blunter than the limit allows, else 0. Points are 3 floats.
/// @param sliverLimit  cosine; negative accepts every triangle
[[nodiscard]] int IsSliver(const float* p0, const float* p1, const float* p2, float sliverLimit);

/// Whether some colour is not grey (its three low bytes are not all equal); false for null or no colours.
[[nodiscard]] bool HasNonGrayColor(const std::uint32_t* colors, std::int64_t count);

/// Makes an object from a grid: triangles without slivers, unit vertex normals, box and colour.
/// @param trafo       16 floats, row-major, sensor to world, or null; the vertices keep its scale and shear, m_Trafo
///                    its rotation and translation
/// @param color       object colour, 0x00BBGGRR, used when the grid has no colours of its own
/// @param allowEmpty  also return an object when the grid produced nothing
/// @param threads     at most so many work on a large grid; the result does not depend on them
/// @return null when there is no vertex or no triangle and @p allowEmpty is false
[[nodiscard]] std::unique_ptr<Mesh> CreateInternalMesh(const std::wstring& name, std::int16_t width,
                                                       std::int16_t height, const float* points,
                                                       const std::uint16_t* mask, const float* trafo,
                                                       std::uint32_t color, const std::uint32_t* colors,
                                                       bool allowEmpty, std::int32_t skip, unsigned threads = 1);

/// The same triangles as plain arrays: without a transform, with the normals of ComputeMeanNormals().
[[nodiscard]] std::unique_ptr<MeshBuffers> CreateInternalMeshBuffers(std::int16_t width, std::int16_t height,
                                                                     const float* points, const std::uint16_t* mask,
                                                                     const std::uint32_t* colors, bool allowEmpty,
                                                                     std::int32_t skip);
