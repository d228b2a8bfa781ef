// Normals of meshes whose files hold none.
#pragma once
#include <cstdint>
#include <span>

namespace KvComponents::Hps {

/// The direction of the sum of the unit normals of a vertex's triangles, added in the order of the triangles, neither
/// weighted by area nor by angle. Triangles without an area count as zero; so do vertices whose sum is.
/// @param indices  each a vertex
/// @param normals  three values a vertex, as positions has them
void ComputeNormals(std::span<const float> positions, std::span<const std::int32_t> indices, std::span<float> normals);

}  // namespace KvComponents::Hps
