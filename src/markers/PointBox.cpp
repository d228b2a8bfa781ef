// The box of a point cloud, four points at once: 12 floats are three vectors, whose lanes belong to the axes in turn.
#include "markers/PointBox.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>

#include "geometry/FloatLanes.h"

namespace {

constexpr std::size_t kLaneFloats = 12;  // four points
// Points that are not finite are looked for by block: in the cache, since a block with such a point is read again.
constexpr std::size_t kBlockFloats = kLaneFloats * 256;

struct LaneBox {
    std::array<Float4, 3> min, max;
};

/// Grows the box by whole groups of four points.
/// @return false, with the box as before, when some coordinate is not finite
bool MergeFinite(LaneBox& box, const float* xyz, std::size_t size) {
    LaneBox grown = box;
    std::array<Float4, 3> notFinite{};  // 0, or not a number
    for (std::size_t i = 0; i < size; i += kLaneFloats) {
        for (std::size_t k = 0; k < 3; ++k) {
            const auto value = LoadLanes<Float4>(xyz + i + 4 * k);
            grown.min[k] = Select(value < grown.min[k], value, grown.min[k]);
            grown.max[k] = Select(value > grown.max[k], value, grown.max[k]);
            notFinite[k] += value - value;
        }
    }
    const Float4 sum = notFinite[0] + notFinite[1] + notFinite[2];
    if (HasAny(Int4(sum != sum))) return false;
    box = grown;
    return true;
}

void MergeEach(Box& box, std::span<const float> xyz) {
    for (std::size_t i = 0; i + 3 <= xyz.size(); i += 3) box.MergeIfFinite(ToFloat3(&xyz[i]));
}

}  // namespace

Box BoxOfFinitePoints(std::span<const float> xyz) {
    Box box;
    LaneBox lanes;
    lanes.min.fill(SplatFloat4(FLT_MAX));
    lanes.max.fill(SplatFloat4(-FLT_MAX));
    std::size_t i = 0;
    for (; i + kLaneFloats <= xyz.size();) {
        const std::size_t size = std::min(kBlockFloats, (xyz.size() - i) / kLaneFloats * kLaneFloats);
        if (!MergeFinite(lanes, &xyz[i], size)) MergeEach(box, xyz.subspan(i, size));
        i += size;
    }
    MergeEach(box, xyz.subspan(i));
    for (std::size_t j = 0; j < kLaneFloats; ++j) {
        const std::size_t axis = j % 3;
        box.min[axis] = std::min(box.min[axis], lanes.min[j / 4][j % 4]);
        box.max[axis] = std::max(box.max[axis], lanes.max[j / 4][j % 4]);
    }
    // Of two zeros the lanes may keep the other one than a plain loop.
    for (std::size_t axis = 0; axis < 3; ++axis) box.min[axis] += 0.0f, box.max[axis] += 0.0f;
    return box;
}
