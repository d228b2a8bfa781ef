// Vector lanes: four triangles, then four vertices at a time. Each lane computes the scalar formula, so that the result
// is the same to the bit.
#include "HpsNormals.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstring>
#if defined(__SSE2__)
#include <emmintrin.h>
#endif

#include "HpsPacking.h"
#include "files/ParallelTasks.h"

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

/// Turns four rows of four into their four columns.
void Transpose(Float4& a, Float4& b, Float4& c, Float4& d) {
    const Float4 ab01 = __builtin_shufflevector(a, b, 0, 4, 1, 5), ab23 = __builtin_shufflevector(a, b, 2, 6, 3, 7);
    const Float4 cd01 = __builtin_shufflevector(c, d, 0, 4, 1, 5), cd23 = __builtin_shufflevector(c, d, 2, 6, 3, 7);
    a = __builtin_shufflevector(ab01, cd01, 0, 1, 4, 5);
    b = __builtin_shufflevector(ab01, cd01, 2, 3, 6, 7);
    c = __builtin_shufflevector(ab23, cd23, 0, 1, 4, 5);
    d = __builtin_shufflevector(ab23, cd23, 2, 3, 6, 7);
}

/// The vertices of a mesh as vectors of four, of which the last lane has any value.
class Points {
public:
    explicit Points(std::span<const float> positions) : m_pFirst(positions.data()) {
        if (positions.empty()) return;
        m_uLast = positions.size() / 3 - 1;
        std::copy_n(&positions[3 * m_uLast], 3, m_last.begin());
    }
    /// Four numbers are read. After the last vertex there is no fourth one: it has a copy.
    [[nodiscard]] Float4 At(std::int32_t index) const {
        const auto vertex = static_cast<std::size_t>(index);
        Float4 point;
        std::memcpy(&point, vertex == m_uLast ? m_last.data() : m_pFirst + 3 * vertex, sizeof point);
        return point;
    }

private:
    const float* m_pFirst;
    std::size_t m_uLast = 0;
    std::array<float, 4> m_last{};
};

/// One corner of four triangles.
/// @param indices  of twelve corners
Vectors CornersOf(const std::int32_t* indices, std::size_t corner, const Points& points) {
    Float4 rows[kLanes];
    for (std::size_t lane = 0; lane < kLanes; ++lane) rows[lane] = points.At(indices[3 * lane + corner]);
    Transpose(rows[0], rows[1], rows[2], rows[3]);
    return {rows[0], rows[1], rows[2]};
}

Vectors Minus(const Vectors& a, const Vectors& b) { return {a.x - b.x, a.y - b.y, a.z - b.z}; }

/// The unit normals of four triangles, one per row.
std::array<Float4, kLanes> FaceNormals(const std::int32_t* indices, const Points& points) {
    const Vectors p0 = CornersOf(indices, 0, points);
    const Vectors a = Minus(CornersOf(indices, 1, points), p0), b = Minus(CornersOf(indices, 2, points), p0);
    Vectors n = Normalized({a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x});
    Float4 none{};
    Transpose(n.x, n.y, n.z, none);
    return {n.x, n.y, n.z, none};
}

/// The directions of four sums as twelve numbers.
std::array<float, 3 * kLanes> DirectionsOf(const Float4* sums) {
    Float4 x = sums[0], y = sums[1], z = sums[2], rest = sums[3];
    Transpose(x, y, z, rest);
    const Vectors unit = Normalized({x, y, z});
    std::array<float, 3 * kLanes> directions;
    for (std::size_t lane = 0; lane < kLanes; ++lane) {
        directions[3 * lane] = unit.x[lane];
        directions[3 * lane + 1] = unit.y[lane];
        directions[3 * lane + 2] = unit.z[lane];
    }
    return directions;
}

/// Computes the normals of the vertices from @p first to before @p last. Each thread has its own vertices, to which all
/// triangles are added in their order: so the sums do not depend on the number of threads.
void ComputeNormalsOf(std::size_t first, std::size_t last, const Points& points, std::span<const std::int32_t> indices,
                      float* normals) {
    const std::size_t count = last - first;
    // One sum more, for the corners at other vertices: a branch per corner would be hard to predict.
    RawArray<Float4> sums((count + 1 + kLanes - 1) / kLanes * kLanes);
    std::fill_n(sums.data(), sums.size(), Float4{});
    const auto placeOf = [first, count](std::int32_t index) {
        return std::min(static_cast<std::size_t>(index) - first, count);
    };
    // Whole groups of four triangles, then the rest, filled up with its first triangle.
    constexpr std::size_t kGroup = 3 * kLanes;
    for (std::size_t begin = 0; begin < indices.size(); begin += kGroup) {
        const std::size_t used = std::min(kGroup, indices.size() - begin);
        std::array<std::int32_t, kGroup> four;
        if (used == kGroup) {
            std::copy_n(&indices[begin], kGroup, four.begin());
        } else {
            for (std::size_t i = 0; i < kGroup; ++i) four[i] = indices[begin + (i < used ? i : i % 3)];
        }
        std::array<std::size_t, kGroup> places;
        std::size_t nearest = count;
        for (std::size_t i = 0; i < kGroup; ++i) {
            places[i] = placeOf(four[i]);
            nearest = std::min(nearest, places[i]);
        }
        if (nearest == count) continue;
        const auto faces = FaceNormals(four.data(), points);
        for (std::size_t i = 0; i < used; ++i) sums[places[i]] += faces[i / 3];
    }
    for (std::size_t begin = 0; begin < count; begin += kLanes) {
        const auto directions = DirectionsOf(&sums[begin]);
        std::copy_n(directions.begin(), 3 * std::min(kLanes, count - begin), normals + 3 * (first + begin));
    }
}

}  // namespace

void ComputeNormals(std::span<const float> positions, std::span<const std::int32_t> indices, std::span<float> normals,
                    unsigned threads) {
    constexpr std::size_t kMinTriangles = 50'000;  // per thread; below this its start costs more than it saves
    const Points points(positions);
    const std::size_t vertices = positions.size() / 3;
    const std::size_t parts = FileStorage::ThreadsFor(indices.size() / 3, kMinTriangles, threads);
    FileStorage::RunTasks(parts, threads, [&](std::size_t part) {
        ComputeNormalsOf(vertices * part / parts, vertices * (part + 1) / parts, points, indices, normals.data());
    });
}

}  // namespace KvComponents::Hps
