// From a measurement grid to a mesh: thinning by cells, quad patterns, sliver test. No OpenGL, any thread.
#pragma once
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "geometry/Mesh.h"
#include "geometry/Vertex.h"

/// Cosine of about 15.02 degrees: triangles with a sharper (or blunter) corner are slivers.
inline constexpr float kMaxEdgeCosine = 0.965826f;

/// The reduced grid: its size in cells and the vertices of the cells that have one, in row order.
struct GridVertexList {
    std::int32_t m_iHeight = 0, m_iWidth = 0;
    std::vector<Vertex> m_vVertices;  ///< normals zero; gridIndex is (cell row << 16) | cell column
};

/// @param points  3 floats a pixel, row after row; pixel (x, y) stands at y * width + x
/// @param mask    one word a pixel, 0 is valid
/// @param colors  one word a pixel in the form of Vertex::color, or null
/// @param skip    1 keeps every pixel, s averages cells of s x s pixels; not below 1
[[nodiscard]] GridVertexList BuildGridVertexList(std::int16_t width, std::int16_t height, const float* points,
                                                 const std::uint16_t* mask, const std::uint32_t* colors,
                                                 std::int32_t skip);

/// Connects neighbouring grid points to triangles, as BuildGridVertexList() yields them.
/// @param sliverLimit  cosine limit of IsSliver(); negative switches the test off
void TriangulateGrid(std::int16_t width, std::int16_t height, const float* points, const std::uint16_t* mask,
                     const std::uint32_t* colors, std::int32_t skip, float sliverLimit, std::vector<Vertex>* vertices,
                     std::vector<Triangle>* triangles);

/// -1 when a corner of the triangle is sharper or blunter than the limit allows, else 0. Points are 3 floats.
[[nodiscard]] int IsSliver(const float* p0, const float* p1, const float* p2, float sliverLimit);

/// Whether some colour is not grey (its three low bytes are not all equal); false for null or no colours.
[[nodiscard]] bool HasNonGrayColor(const std::uint32_t* colors, std::int64_t count);

/// The road from a grid to an object.
/// @param trafo       16 floats, row-major, sensor to world, or null; the vertices keep its scale and shear, m_Trafo
///                    its rotation and translation
/// @param color       object colour, 0x00BBGGRR, used when the grid has no colours of its own
/// @param allowEmpty  also return an object when the grid produced nothing
/// @return null when there is no vertex or no triangle and @p allowEmpty is false
[[nodiscard]] std::unique_ptr<Mesh> CreateInternalMesh(const std::wstring& name, std::int16_t width,
                                                       std::int16_t height, const float* points,
                                                       const std::uint16_t* mask, const float* trafo,
                                                       std::uint32_t color, const std::uint32_t* colors,
                                                       bool allowEmpty, std::int32_t skip);

/// The same road without an object and without a transform, with mean normals.
[[nodiscard]] std::unique_ptr<MeshBuffers> CreateInternalMeshBuffers(std::int16_t width, std::int16_t height,
                                                                     const float* points, const std::uint16_t* mask,
                                                                     const std::uint32_t* colors, bool allowEmpty,
                                                                     std::int32_t skip);
