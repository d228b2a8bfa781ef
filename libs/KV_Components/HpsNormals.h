// Vertex normals, which hps files do not store.
#pragma once
#include <cstdint>
#include <span>

namespace KvComponents::Hps {

/// The normal of a vertex is the direction of the sum of the unit normals of its triangles, added in the order of the
/// triangles and weighted neither by area nor by angle. A triangle without an area adds zero; a vertex whose sum is
/// zero gets the normal (0, 0, 0).
/// @param positions  x, y, z of each vertex
/// @param indices    three per triangle, each a vertex
/// @param normals    receives three values per vertex; must not overlap the positions
/// @param threads    at most so many work on a large mesh; the result does not depend on them
void ComputeNormals(std::span<const float> positions, std::span<const std::int32_t> indices, std::span<float> normals,
                    unsigned threads = 1);

}  // namespace KvComponents::Hps
