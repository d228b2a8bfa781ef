// The sums of the face normals at the vertices of a mesh, from which all vertex normals are made.
#pragma once
#include <cstddef>
#include <functional>
#include <vector>

#include "base/HugePages.h"
#include "geometry/FloatLanes.h"
#include "geometry/Vertex.h"

/// Lanes 0 to 2: sum of the unit normals of the faces at a vertex, a degenerate face counting as zero; lane 3: the
/// number of these faces, which stays at 2^24 where there are more.
using FaceNormalSum = Float4;

/// One sum per vertex, added in the order of the triangles, so that the bits are those of one face after the other.
/// Linear; 16 bytes of memory per vertex, with several threads 16 per triangle as well while it runs.
/// @param triangles  indices must be valid
/// @param threads    at most so many work on a large mesh; the result does not depend on them
[[nodiscard]] HugePageArray<FaceNormalSum> SumFaceNormals(const std::vector<Triangle>& triangles,
                                                          const std::vector<Vertex>& vertices, unsigned threads);

/// Calls visit(first, last) for ranges of indices below @p vertexCount, on up to @p threads threads.
void ForEachVertexRange(std::size_t vertexCount, unsigned threads,
                        const std::function<void(std::size_t first, std::size_t last)>& visit);
