// The layouts of the GPU buffers of a mesh, and functions that pack vertices and indices into them. They work on parts
// of the arrays, so that a large mesh can be packed piece by piece.
#pragma once
#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

#include "geometry/Vertex.h"

/// Position 3 x f32 and normal 3 x f32.
inline constexpr std::size_t kPlainStride = 24;
/// As the plain layout, then red, green, blue, alpha, one byte each.
inline constexpr std::size_t kColoredStride = 28;
/// As the plain layout, then the texture coordinate 2 x f32.
inline constexpr std::size_t kTexturedStride = 32;

/// Uploaded value for each value of a colour channel; the alpha is the same for all vertices.
struct VertexColorTable {
    std::array<std::uint8_t, 256> red, green, blue;
    std::uint8_t alpha;
};

/// @param objectColor  r, g, b in 0..1
/// @param blend        true mixes 15 % of the vertex colour with 85 % of the object colour; false keeps the vertex
///                     colour
[[nodiscard]] VertexColorTable MakeVertexColorTable(const float objectColor[3], bool blend);

/// @param out  receives kPlainStride bytes per vertex
void PackPlain(std::span<const Vertex> vertices, std::byte* out);

/// @param out  receives kColoredStride bytes per vertex
void PackColored(std::span<const Vertex> vertices, const VertexColorTable& table, std::byte* out);

/// The corners of the triangles in order, without an index buffer: corners that share a vertex differ in their texture
/// coordinates.
/// @param texCoords  three per triangle
/// @param out        receives kTexturedStride bytes per corner
void PackTextured(std::span<const Vertex> vertices, std::span<const Triangle> triangles,
                  std::span<const TexCoord> texCoords, std::byte* out);

/// Indices of corner 0 of every @p step-th triangle, beginning with the first: the points of draw mode 0 (step 1) and
/// of reduced drawing.
/// @param out  receives triangles.size() / step indices, rounded up
void PackFirstCorners(std::span<const Triangle> triangles, std::size_t step, std::uint32_t* out);
