// The bytes that a mesh sends to the GPU: pure functions on arrays, so that a large mesh can be packed piece by piece.
#pragma once
#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

#include "geometry/Vertex.h"

/// Position 3 x f32 and normal 3 x f32.
inline constexpr std::size_t kPlainStride = 24;
/// As the plain layout, then red, green, blue, alpha, a byte each.
inline constexpr std::size_t kColoredStride = 28;
/// As the plain layout, then the texture coordinate 2 x f32.
inline constexpr std::size_t kTexturedStride = 32;

/// What becomes of each value of a colour channel at upload.
struct VertexColorTable {
    std::array<std::uint8_t, 256> red, green, blue;
    std::uint8_t alpha;
};

/// @param objectColor  r, g, b in 0..1
/// @param blend        true keeps 15 % of the vertex colour and takes 85 % of the object colour; false keeps it whole
[[nodiscard]] VertexColorTable MakeVertexColorTable(const float objectColor[3], bool blend);

/// @param out  kPlainStride bytes a vertex
void PackPlain(std::span<const Vertex> vertices, std::byte* out);

/// @param out  kColoredStride bytes a vertex
void PackColored(std::span<const Vertex> vertices, const VertexColorTable& table, std::byte* out);

/// The corners of the triangles in order, not indexed.
/// @param texCoords  three a triangle
/// @param out        kTexturedStride bytes a corner
void PackTextured(std::span<const Vertex> vertices, std::span<const Triangle> triangles,
                  std::span<const TexCoord> texCoords, std::byte* out);

/// Corner 0 of every @p step-th triangle, beginning with the first.
/// @param out  takes triangles.size() / step indices, rounded up
void PackFirstCorners(std::span<const Triangle> triangles, std::size_t step, std::uint32_t* out);
