// An axis-aligned box in the world frame.
#pragma once
#include <algorithm>
#include <cfloat>
#include <cstddef>

#include "geometry/Vector3.h"

/// Starts inverted, min above max on every axis, so that the first Merge() replaces it.
struct Box {
    Float3 min{FLT_MAX, FLT_MAX, FLT_MAX};
    Float3 max{-FLT_MAX, -FLT_MAX, -FLT_MAX};

    /// Grows the box to contain the box from @p low to @p high.
    void Merge(const Float3& low, const Float3& high) {
        for (std::size_t i = 0; i < 3; ++i) {
            min[i] = std::min(min[i], low[i]);
            max[i] = std::max(max[i], high[i]);
        }
    }
    /// True until something was merged that is not inverted itself.
    [[nodiscard]] bool IsEmpty() const { return min[0] > max[0] || min[1] > max[1] || min[2] > max[2]; }
    [[nodiscard]] Float3 Center() const { return 0.5f * (min + max); }
    /// Distance between the two extreme corners.
    [[nodiscard]] float Diagonal() const { return Length(max - min); }
};
