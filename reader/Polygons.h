// Polygons of three and more corners as triangles.
#pragma once
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "geometry/Vertex.h"

/// Appends the triangles of one polygon, two fewer than it has corners, with its direction. Convex polygons become a
/// fan, concave ones are cut ear by ear; what crosses itself becomes some triangles of the same number. Fewer than
/// three corners give none.
/// @param vertices  that the corners refer to
/// @param corners   indices of @p vertices, valid
/// @param picked    receives the positions of the corners of each triangle in @p corners, three per triangle; may be
///                  null
void AppendPolygon(std::span<const Vertex> vertices, std::span<const std::int32_t> corners,
                   std::vector<Triangle>& triangles, std::vector<std::size_t>* picked);
