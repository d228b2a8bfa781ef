// Vector lanes: four triangles, then four vertices at a time. Each lane computes the scalar formula, so that the result
// is the same to the bit.
#include "HpsNormals.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstddef>
#include <cstdint>
#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace KvComponents::Hps {

namespace {

using Float4 = float __attribute__((vector_size(16)));
using Int4 = std::int32_t __attribute__((vector_size(16)));

constexpr std::size_t kLanes = 4;

/// Four vectors, one per lane.
struct Vectors {
    Float4 x, y, z;
};

/// Correctly rounded, as std::sqrt() is.
Float4 SquareRoots(Float4 values) {
#if defined(__SSE2__)
    return _mm_sqrt_ps(values);
#else
    return Float4{std::sqrt(values[0]), std::sqrt(values[1]), std::sqrt(values[2]), std::sqrt(values[3])};
#endif
}

/// Scales to length 1. A vector of length 0 is divided by 1 and stays zero.
Vectors Normalized(const Vectors& v) {
    const Float4 length = SquareRoots(v.x * v.x + v.y * v.y + v.z * v.z);
    const Int4 hasLength = length > Float4{};
    const Int4 one = std::bit_cast<Int4>(Float4{1, 1, 1, 1});
    const auto divisor = std::bit_cast<Float4>((std::bit_cast<Int4>(length) & hasLength) | (one & ~hasLength));
    return {v.x / divisor, v.y / divisor, v.z / divisor};
}

/// The unit normals of up to four triangles. Lanes without a triangle are zero.
Vectors FaceNormals(std::span<const float> positions, std::span<const std::int32_t> indices) {
    Vectors a{}, b{};
    for (std::size_t lane = 0; 3 * lane < indices.size(); ++lane) {
        const auto at = [&](std::size_t corner) {
            return &positions[3 * static_cast<std::size_t>(indices[3 * lane + corner])];
        };
        const float *p0 = at(0), *p1 = at(1), *p2 = at(2);
        a.x[lane] = p1[0] - p0[0], a.y[lane] = p1[1] - p0[1], a.z[lane] = p1[2] - p0[2];
        b.x[lane] = p2[0] - p0[0], b.y[lane] = p2[1] - p0[1], b.z[lane] = p2[2] - p0[2];
    }
    return Normalized({a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x});
}

/// Adds each face normal to the three vertices of its triangle.
void AddFaceNormals(const Vectors& faces, std::span<const std::int32_t> indices, std::span<float> normals) {
    for (std::size_t i = 0; i < indices.size(); ++i) {
        float* const normal = &normals[3 * static_cast<std::size_t>(indices[i])];
        normal[0] += faces.x[i / 3];
        normal[1] += faces.y[i / 3];
        normal[2] += faces.z[i / 3];
    }
}

/// @param normals  sums of up to four vertices, replaced by their directions
void NormalizeSums(std::span<float> normals) {
    Vectors sums{};
    for (std::size_t lane = 0; 3 * lane < normals.size(); ++lane)
        sums.x[lane] = normals[3 * lane], sums.y[lane] = normals[3 * lane + 1], sums.z[lane] = normals[3 * lane + 2];
    const Vectors unit = Normalized(sums);
    for (std::size_t lane = 0; 3 * lane < normals.size(); ++lane)
        normals[3 * lane] = unit.x[lane], normals[3 * lane + 1] = unit.y[lane], normals[3 * lane + 2] = unit.z[lane];
}

}  // namespace

void ComputeNormals(std::span<const float> positions, std::span<const std::int32_t> indices, std::span<float> normals) {
    std::fill(normals.begin(), normals.end(), 0.0f);
    // Whole groups of four triangles, then the rest.
    const std::size_t wholeIndices = indices.size() / (3 * kLanes) * (3 * kLanes);
    for (std::size_t i = 0; i < wholeIndices; i += 3 * kLanes) {
        const auto four = indices.subspan(i).first<3 * kLanes>();
        AddFaceNormals(FaceNormals(positions, four), four, normals);
    }
    const auto rest = indices.subspan(wholeIndices);
    AddFaceNormals(FaceNormals(positions, rest), rest, normals);
    for (std::size_t i = 0; i < normals.size(); i += 3 * kLanes)
        NormalizeSums(normals.subspan(i, std::min(3 * kLanes, normals.size() - i)));
}

}  // namespace KvComponents::Hps
