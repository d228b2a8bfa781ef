// The bounding box of a point cloud.
#pragma once
#include <span>

#include "geometry/Box.h"

/// The box of the points whose coordinates are all finite; inverted when there is none. Its zeros are positive.
/// @param xyz  3 floats per point
[[nodiscard]] Box BoxOfFinitePoints(std::span<const float> xyz);
