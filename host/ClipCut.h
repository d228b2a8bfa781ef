// What a clip plane cuts away as a whole.
#pragma once
#include <array>
#include <cstddef>

/// Length of the point along a direction.
[[nodiscard]] inline double LengthAlong(const std::array<float, 3>& direction, const std::array<float, 3>& point) {
    double sum = 0.0;
    for (std::size_t i = 0; i < 3; ++i) sum += static_cast<double>(direction[i]) * static_cast<double>(point[i]);
    return sum;
}

/// Whether the box from @p low to @p high lies wholly on the side away from the normal of the plane.
[[nodiscard]] inline bool IsCutAway(const std::array<float, 3>& low, const std::array<float, 3>& high,
                                    const std::array<float, 3>& center, const std::array<float, 3>& normal) {
    std::array<float, 3> farthest{};  // corner along the normal
    for (std::size_t i = 0; i < 3; ++i) farthest[i] = normal[i] > 0 ? high[i] : low[i];
    return LengthAlong(normal, farthest) < LengthAlong(normal, center);
}
