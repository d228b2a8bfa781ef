// Where an unbounded line crosses a mesh, for picks. Computed in double precision, so that a hit does not depend on how
// far the object is from the origin of the world. Nothing is kept between two lines: one pass over all triangles,
// several at a time, drops those that cannot be hit, and the rest is solved one by one.
#include "geometry/MeshIntersect.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <stdexcept>

#include "geometry/Mesh.h"

namespace {

Double3 PositionOf(const Vertex& vertex) { return {vertex.x, vertex.y, vertex.z}; }

// The ray origin + t direction, t >= 0, against the six faces of the box, edges and corners included. An axis along
// which the ray hardly moves is skipped: the faces of the other axes decide.
bool RayHitsBox(const float* box, const float* origin, const double (&direction)[3]) {
    for (int axis = 0; axis < 3; ++axis) {
        if (std::abs(direction[axis]) < 1e-6) continue;
        const int second = (axis + 1) % 3, third = (axis + 2) % 3;
        const auto isInside = [&](int other, double t) {
            const double at = origin[other] + t * direction[other];
            return at >= box[2 * other] && at <= box[2 * other + 1];
        };
        for (int face = 2 * axis; face <= 2 * axis + 1; ++face) {
            const double t = (static_cast<double>(box[face]) - origin[axis]) / direction[axis];
            if (t >= 0 && isInside(second, t) && isInside(third, t)) return true;
        }
    }
    return false;
}

struct Line {
    Double3 origin, direction;
};

constexpr double kLeastDeterminant = 1e-5;

/// The parameter t of the point origin + t direction in a triangle; nothing when the line misses it.
/// o + t d = p0 + u e1 + v e2 by Cramer's rule on the columns -d, e1, e2, as in Moeller and Trumbore, "Fast, Minimum
/// Storage Ray-Triangle Intersection" (1997). The limit is on the plain determinant, which scales with the area: tiny
/// triangles are missed, and that is wanted. The negated comparisons reject what is not a number.
std::optional<double> SolveTriangle(const Vertex* vertices, const Triangle& triangle, const Line& line) {
    const auto& corner = triangle.v;
    const Double3 p0 = PositionOf(vertices[corner[0]]), p1 = PositionOf(vertices[corner[1]]),
                  p2 = PositionOf(vertices[corner[2]]);
    const Double3 e1 = p1 - p0, e2 = p2 - p0, r = line.origin - p0;
    const Double3 normal = Cross(e1, e2);
    const double determinant = -Dot(line.direction, normal);
    if (!(std::abs(determinant) > kLeastDeterminant)) return std::nullopt;
    const Double3 rd = Cross(r, line.direction);
    const double u = Dot(e2, rd) / determinant;
    const double v = -Dot(e1, rd) / determinant;
    if (!(u >= 0 && u <= 1 && v >= 0 && v <= 1 && u + v <= 1)) return std::nullopt;
    return Dot(r, normal) / determinant;
}

// ---- several triangles at once, one per lane: two on every 64-bit processor, four with AVX2

using Double2 = double __attribute__((vector_size(16)));
using Double4 = double __attribute__((vector_size(32)));

template <typename D>
struct LanesOf;
template <>
struct LanesOf<Double2> {
    static constexpr std::size_t kCount = 2;
    using Long = std::int64_t __attribute__((vector_size(16)));
    using Int = Int4;
};
#if defined(KV_HAS_EIGHT_LANES)
template <>
struct LanesOf<Double4> {
    static constexpr std::size_t kCount = 4;
    using Long = std::int64_t __attribute__((vector_size(32)));
    using Int = Int8;
};
#endif

/// In every lane.
template <typename D>
KV_LANES Vec3<D> Splat(const Double3& a) {
    return {a[0] - D{}, a[1] - D{}, a[2] - D{}};  // a sum would lose the sign of a zero
}

/// One corner of as many triangles as @p to has lanes. Each load reads x, y, z and one more float.
KV_LANES void LoadCorners(const Vertex* vertices, const Triangle* triangles, std::size_t corner, Vec3<Double2>* to) {
    using FloatPair = float __attribute__((vector_size(8)));
    const Float4 a = LoadLanes<Float4>(&vertices[triangles[0].v[corner]]);
    const Float4 b = LoadLanes<Float4>(&vertices[triangles[1].v[corner]]);
    const Float4 xy = __builtin_shufflevector(a, b, 0, 4, 1, 5);
    const FloatPair x = __builtin_shufflevector(xy, xy, 0, 1), y = __builtin_shufflevector(xy, xy, 2, 3),
                    z = __builtin_shufflevector(a, b, 2, 6);
    *to = {__builtin_convertvector(x, Double2), __builtin_convertvector(y, Double2),
           __builtin_convertvector(z, Double2)};
}
#if defined(KV_HAS_EIGHT_LANES)
KV_LANES void LoadCorners(const Vertex* vertices, const Triangle* triangles, std::size_t corner, Vec3<Double4>* to) {
    Float4 x = LoadLanes<Float4>(&vertices[triangles[0].v[corner]]);
    Float4 y = LoadLanes<Float4>(&vertices[triangles[1].v[corner]]);
    Float4 z = LoadLanes<Float4>(&vertices[triangles[2].v[corner]]);
    Float4 rest = LoadLanes<Float4>(&vertices[triangles[3].v[corner]]);
    Transpose(x, y, z, rest);
    *to = {__builtin_convertvector(x, Double4), __builtin_convertvector(y, Double4),
           __builtin_convertvector(z, Double4)};
}
#endif

template <typename To, typename From>
KV_LANES To BitsAs(const From& from) {
    static_assert(sizeof(To) == sizeof(From));
    return LoadLanes<To>(&from);
}

/// The lanes whose triangle SolveTriangle() has to look at: every triangle that it finds hit is among them.
///
/// The determinant and the numerators of u and v are the same operations in the same order, so they have the same bits.
/// A quotient has the sign of its operands and is above 1 exactly when the numerator is larger; it never underflows to
/// a zero, because the numerators are multiples of 2^-447 and a finite determinant is below 2^392: floats are multiples
/// of 2^-149 below 2^128, and both are sums of products of one float and two differences of floats. An infinite one
/// comes from an infinite edge, which makes u or v not a number. The sum u + v alone is rounded differently here; its
/// limit is raised by more than that.
template <typename D>
KV_LANES typename LanesOf<D>::Long FindCandidates(const Vertex* vertices, const Triangle* triangles, const Line& line) {
    constexpr double kAboveOne = 1 + 0x1p-50;
    using L = typename LanesOf<D>::Long;
    const Vec3<D> o = Splat<D>(line.origin), d = Splat<D>(line.direction);
    Vec3<D> p0, p1, p2;
    LoadCorners(vertices, triangles, 0, &p0);
    LoadCorners(vertices, triangles, 1, &p1);
    LoadCorners(vertices, triangles, 2, &p2);
    const Vec3<D> e1 = p1 - p0, e2 = p2 - p0;
    const D determinant = -Dot(d, Cross(e1, e2));
    const Vec3<D> rd = Cross(o - p0, d);
    // All three with the sign of the determinant taken off.
    const L sign = BitsAs<L>(determinant) & std::numeric_limits<std::int64_t>::min();
    const D size = BitsAs<D>(BitsAs<L>(determinant) ^ sign);
    const D u = BitsAs<D>(BitsAs<L>(Dot(e2, rd)) ^ sign), v = BitsAs<D>(BitsAs<L>(-Dot(e1, rd)) ^ sign);
    const L isInside = (u >= 0.0) & (u <= size) & (v >= 0.0) & (v <= size) & (u + v <= size * kAboveOne);
    return (size > kLeastDeterminant) & isInside;
}

template <typename D>
KV_LANES std::optional<LineHit> FindNearestByLanes(std::span<const Vertex> vertices,
                                                   std::span<const Triangle> triangles, const Line& line) {
    // Indices are checked some triangles ahead, and their vertices are requested then: in meshes whose vertices are in
    // no order the loop would otherwise wait for the memory.
    constexpr std::size_t kAhead = 32;
    std::size_t checked = 0;
    const auto checkUpTo = [&](std::size_t end) {
        for (end = std::min(end, triangles.size()); checked < end; ++checked)
            for (const std::int32_t corner : triangles[checked].v) {
                const auto index = static_cast<std::size_t>(corner);
                if (index >= vertices.size()) throw std::out_of_range("invalid vector subscript");
                __builtin_prefetch(&vertices[index]);
            }
    };
    const double squaredLength = Dot(line.direction, line.direction);
    std::optional<LineHit> nearest;
    const auto solve = [&](std::size_t i) {
        const auto t = SolveTriangle(vertices.data(), triangles[i], line);
        if (!t) return;
        const double squared = *t * *t * squaredLength;
        if (!nearest || squared < nearest->squaredDistance) nearest = {*t, squared, i};
    };
    constexpr std::size_t kLanes = LanesOf<D>::kCount;
    std::size_t i = 0;
    for (; i + kLanes <= triangles.size(); i += kLanes) {
        checkUpTo(i + kLanes + kAhead);
        const auto candidates = FindCandidates<D>(vertices.data(), &triangles[i], line);
        if (!HasAny(BitsAs<typename LanesOf<D>::Int>(candidates))) continue;
        for (std::size_t lane = 0; lane < kLanes; ++lane)
            if (candidates[lane] != 0) solve(i + lane);
    }
    checkUpTo(triangles.size());
    for (; i < triangles.size(); ++i) solve(i);
    return nearest;
}

#if defined(KV_HAS_EIGHT_LANES)
KV_HAS_EIGHT_LANES std::optional<LineHit> FindNearestByFour(std::span<const Vertex> vertices,
                                                            std::span<const Triangle> triangles, const Line& line) {
    return FindNearestByLanes<Double4>(vertices, triangles, line);
}
#endif

}  // namespace

std::optional<LineHit> FindNearestHit(std::span<const Vertex> vertices, std::span<const Triangle> triangles,
                                      const Double3& origin, const Double3& direction,
                                      [[maybe_unused]] LaneCount lanes) {
#if defined(KV_HAS_EIGHT_LANES)
    if (lanes == LaneCount::kEight) return FindNearestByFour(vertices, triangles, {origin, direction});
#endif
    return FindNearestByLanes<Double2>(vertices, triangles, {origin, direction});
}

bool Mesh::TestLineBox(const float origin[3], const float direction[3]) const {
    return RayHitsBox(m_fBoundingBox, origin, {direction[0], direction[1], direction[2]}) ||
           RayHitsBox(m_fBoundingBox, origin, {-direction[0], -direction[1], -direction[2]});
}

float Mesh::IntersectLine(const float origin[3], const float direction[3], std::int32_t* triangleIndex,
                          float hitPoint[3]) const {
    if (!TestLineBox(origin, direction)) return -1.0f;
    const Double3 o = ToDouble3(ToFloat3(origin)), d = ToDouble3(ToFloat3(direction));
    const auto hit = FindNearestHit(m_vVertices, m_vTriangles, o, d, BestLaneCount());
    if (!hit) return -1.0f;
    *triangleIndex = static_cast<std::int32_t>(hit->triangle);
    for (std::size_t axis = 0; axis < 3; ++axis) hitPoint[axis] = static_cast<float>(o[axis] + hit->t * d[axis]);
    return static_cast<float>(std::sqrt(hit->squaredDistance));
}
