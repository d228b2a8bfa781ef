// An axis-aligned box in the world frame.
#pragma once
#include <algorithm>
#include <cfloat>
#include <cmath>
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
    /// Grows the box to contain the point, which has no place when a coordinate is not finite.
    void MergeIfFinite(const Float3& point) {
        if (std::isfinite(point[0]) && std::isfinite(point[1]) && std::isfinite(point[2])) Merge(point, point);
    }
    /// True until something was merged that is not inverted itself.
    [[nodiscard]] bool IsEmpty() const { return min[0] > max[0] || min[1] > max[1] || min[2] > max[2]; }
    /// Finite for finite corners: where the sum of two coordinates overflows, they are halved first.
    [[nodiscard]] Float3 Center() const {
        Float3 center = 0.5f * (min + max);
        for (std::size_t i = 0; i < 3; ++i)
            if (!std::isfinite(center[i])) center[i] = 0.5f * min[i] + 0.5f * max[i];
        return center;
    }
    /// Lengths along the axes; at most the largest float.
    [[nodiscard]] Float3 Extents() const {
        Float3 extents = max - min;
        for (float& extent : extents) extent = std::min(extent, FLT_MAX);
        return extents;
    }
    /// Distance between the two extreme corners; at most the largest float.
    [[nodiscard]] float Diagonal() const {
        const Float3 extents = Extents();
        if (const float length = Length(extents); std::isfinite(length)) return length;
        return static_cast<float>(std::min(Length(ToDouble3(extents)), double{FLT_MAX}));  // the squares overflow
    }
};
