#include "HpsNormals.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace KvComponents::Hps {

namespace {

/// To length 1; a vector without a length stays.
void Normalize(float* v) {
    const float length = std::sqrt(v[0] * v[0] + v[1] * v[1] + v[2] * v[2]);
    if (!(length > 0.0f)) return;
    for (int axis = 0; axis < 3; ++axis) v[axis] /= length;
}

}  // namespace

void ComputeNormals(std::span<const float> positions, std::span<const std::int32_t> indices, std::span<float> normals) {
    std::fill(normals.begin(), normals.end(), 0.0f);
    for (std::size_t i = 0; i + 2 < indices.size(); i += 3) {
        const auto at = [&](std::size_t corner) { return 3 * static_cast<std::size_t>(indices[i + corner]); };
        const float *p0 = &positions[at(0)], *p1 = &positions[at(1)], *p2 = &positions[at(2)];
        const float a[3] = {p1[0] - p0[0], p1[1] - p0[1], p1[2] - p0[2]};
        const float b[3] = {p2[0] - p0[0], p2[1] - p0[1], p2[2] - p0[2]};
        float normal[3] = {a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]};
        Normalize(normal);
        for (std::size_t corner = 0; corner < 3; ++corner)
            for (std::size_t axis = 0; axis < 3; ++axis) normals[at(corner) + axis] += normal[axis];
    }
    for (std::size_t i = 0; i + 2 < normals.size(); i += 3) Normalize(&normals[i]);
}

}  // namespace KvComponents::Hps
