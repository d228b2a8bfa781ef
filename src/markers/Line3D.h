// A polyline in the world frame. Always black.
#pragma once
#include <cstdint>
#include <vector>

#include "geometry/Vector3.h"

struct Line3D {
    std::int32_t id = 0;
    std::vector<Float3> points;  ///< world frame
};
