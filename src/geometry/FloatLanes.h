// Several floats at once, by the compiler's vector extension: every lane rounds as a single float does, so a vectorised
// loop gives the bits of the plain one. Vectors of four exist on every 64-bit processor; vectors of eight need AVX2 and
// are chosen at run time.
#pragma once
#include <cstddef>
#include <cstdint>
#include <cstring>
#if defined(__SSE2__)
#include <emmintrin.h>
#else
#include <cmath>
#endif

using Float4 = float __attribute__((vector_size(16)));
/// Also the result of a comparison: -1 in a lane where it is true, else 0.
using Int4 = std::int32_t __attribute__((vector_size(16)));

/// Eight lanes; without AVX2 the compiler splits each operation into two of four lanes.
using Float8 = float __attribute__((vector_size(32)));
using Int8 = std::int32_t __attribute__((vector_size(32)));

// Everything here is inlined into its caller and compiled for the caller's instruction set. So no vector is passed
// between functions, and the warning about the calling convention of wide vectors has no object.
#pragma GCC diagnostic ignored "-Wpsabi"
#define KV_LANES [[gnu::always_inline]] inline

// Before a function: compiles it with AVX2, whatever the rest of the program is compiled for. Call it only when
// BestLaneCount() is kEight.
#if defined(__x86_64__) && defined(__GNUC__) && !defined(__clang__)
#define KV_HAS_EIGHT_LANES [[gnu::target("avx2")]]
#endif

/// Lane count and companion types of a float vector: masks, bytes and 16-bit words with as many lanes.
template <typename F>
struct Lanes;
template <>
struct Lanes<Float4> {
    static constexpr std::size_t kCount = 4;
    using Int = Int4;
    using Byte = std::uint8_t __attribute__((vector_size(4)));
    using Word = std::uint16_t __attribute__((vector_size(8)));
};
template <>
struct Lanes<Float8> {
    static constexpr std::size_t kCount = 8;
    using Int = Int8;
    using Byte = std::uint8_t __attribute__((vector_size(8)));
    using Word = std::uint16_t __attribute__((vector_size(16)));
};

/// The bytes at @p from, at any alignment, as a vector.
template <typename V, typename T>
[[nodiscard]] KV_LANES V LoadLanes(const T* from) {
    V value;
    std::memcpy(&value, from, sizeof(value));
    return value;
}

template <typename T, typename V>
KV_LANES void StoreLanes(T* to, const V& value) {
    std::memcpy(to, &value, sizeof(value));
}

[[nodiscard]] KV_LANES Float4 SplatFloat4(float value) { return Float4{value, value, value, value}; }

/// The value in the lanes where the mask is set, zero in the others, also where the value is not a number.
template <typename I, typename F>
[[nodiscard]] KV_LANES F KeepWhere(const I& mask, const F& value) {
    I bits;
    std::memcpy(&bits, &value, sizeof(bits));
    bits &= mask;
    F kept;
    std::memcpy(&kept, &bits, sizeof(kept));
    return kept;
}

/// mask ? a : b, lane by lane.
template <typename I, typename F>
[[nodiscard]] KV_LANES F Select(const I& mask, const F& a, const F& b) {
    return mask ? a : b;
}

[[nodiscard]] KV_LANES Float4 Sqrt(Float4 value) {
#if defined(__SSE2__)
    return _mm_sqrt_ps(value);
#else
    return Float4{std::sqrt(value[0]), std::sqrt(value[1]), std::sqrt(value[2]), std::sqrt(value[3])};
#endif
}

/// By a shuffle instead of two stores and a load: a load that spans two stores cannot be forwarded and stalls until
/// both have reached the cache.
[[nodiscard]] KV_LANES Float8 JoinHalves(Float4 low, Float4 high) {
    return __builtin_shufflevector(low, high, 0, 1, 2, 3, 4, 5, 6, 7);
}

[[nodiscard]] KV_LANES Float8 Sqrt(const Float8& value) {
    return JoinHalves(Sqrt(__builtin_shufflevector(value, value, 0, 1, 2, 3)),
                      Sqrt(__builtin_shufflevector(value, value, 4, 5, 6, 7)));
}

/// Whether any bit of any lane is set.
[[nodiscard]] KV_LANES bool HasAny(Int4 mask) {
#if defined(__SSE2__)
    return _mm_movemask_epi8(LoadLanes<__m128i>(&mask)) != 0;
#else
    return (mask[0] | mask[1] | mask[2] | mask[3]) != 0;
#endif
}

[[nodiscard]] KV_LANES bool HasAny(const Int8& mask) {
    Int4 halves[2];
    std::memcpy(halves, &mask, sizeof(mask));
    return HasAny(halves[0] | halves[1]);
}

/// Turns four rows of four into their four columns.
KV_LANES void Transpose(Float4& a, Float4& b, Float4& c, Float4& d) {
    const Float4 ab01 = __builtin_shufflevector(a, b, 0, 4, 1, 5), ab23 = __builtin_shufflevector(a, b, 2, 6, 3, 7);
    const Float4 cd01 = __builtin_shufflevector(c, d, 0, 4, 1, 5), cd23 = __builtin_shufflevector(c, d, 2, 6, 3, 7);
    a = __builtin_shufflevector(ab01, cd01, 0, 1, 4, 5);
    b = __builtin_shufflevector(ab01, cd01, 2, 3, 6, 7);
    c = __builtin_shufflevector(ab23, cd23, 0, 1, 4, 5);
    d = __builtin_shufflevector(ab23, cd23, 2, 3, 6, 7);
}

/// The coordinates of several points, one vector per axis. It repeats the functions of Vector3.h, in the same order of
/// operations, because these must be inlined into their caller for its instruction set.
template <typename F>
struct Vec3 {
    F x, y, z;
};
using Vec3x4 = Vec3<Float4>;

template <typename F>
[[nodiscard]] KV_LANES Vec3<F> operator-(const Vec3<F>& a, const Vec3<F>& b) {
    return {a.x - b.x, a.y - b.y, a.z - b.z};
}
template <typename F>
[[nodiscard]] KV_LANES Vec3<F> operator+(const Vec3<F>& a, const Vec3<F>& b) {
    return {a.x + b.x, a.y + b.y, a.z + b.z};
}
template <typename F>
[[nodiscard]] KV_LANES F Dot(const Vec3<F>& a, const Vec3<F>& b) {
    return a.x * b.x + a.y * b.y + a.z * b.z;
}
template <typename F>
[[nodiscard]] KV_LANES Vec3<F> Cross(const Vec3<F>& a, const Vec3<F>& b) {
    return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}
template <typename I, typename F>
[[nodiscard]] KV_LANES Vec3<F> KeepWhere(const I& mask, const Vec3<F>& v) {
    return {KeepWhere(mask, v.x), KeepWhere(mask, v.y), KeepWhere(mask, v.z)};
}
template <typename I, typename F>
[[nodiscard]] KV_LANES Vec3<F> Select(const I& mask, const Vec3<F>& a, const Vec3<F>& b) {
    return {Select(mask, a.x, b.x), Select(mask, a.y, b.y), Select(mask, a.z, b.z)};
}

/// Divided by its length; unchanged in the lanes where the length is zero or not a number.
template <typename F>
[[nodiscard]] KV_LANES Vec3<F> Normalized(const Vec3<F>& v) {
    const F length = Sqrt(Dot(v, v));
    return Select(length > 0.0f, Vec3<F>{v.x / length, v.y / length, v.z / length}, v);
}

/// The vector width of a loop; both give the same bits.
enum class LaneCount : std::uint8_t { kFour, kEight };

/// Eight lanes where this processor has AVX2, else four.
[[nodiscard]] LaneCount BestLaneCount();
