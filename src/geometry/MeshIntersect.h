// Where an unbounded line crosses triangles: the search behind Mesh::IntersectLine().
#pragma once
#include <cstddef>
#include <optional>
#include <span>

#include "geometry/FloatLanes.h"
#include "geometry/Vector3.h"
#include "geometry/Vertex.h"

/// The point origin + t direction in a triangle.
struct LineHit {
    double t = 0, squaredDistance = 0;  ///< the distance is that from the origin
    std::size_t triangle = 0;
};

/// The hit nearest to @p origin, on either side of it; the first one in a tie. One pass over all triangles; nothing is
/// kept between two calls.
/// @param lanes  eight, where the processor has AVX2, is four triangles at once, four is two at once; same bits
/// @throws std::out_of_range when a triangle has a vertex that does not exist, whether it is hit or not
[[nodiscard]] std::optional<LineHit> FindNearestHit(std::span<const Vertex> vertices,
                                                    std::span<const Triangle> triangles, const Double3& origin,
                                                    const Double3& direction, LaneCount lanes);
