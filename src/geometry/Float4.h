// Four floats at once, in the plain arithmetic of the compiler's vector extension: every lane rounds as a float does.
#pragma once
#include <cstdint>
#include <cstring>
#if defined(__SSE2__)
#include <emmintrin.h>
#else
#include <cmath>
#endif

using Float4 = float __attribute__((vector_size(16)));
/// Also the result of comparing: -1 in a lane where it holds, else 0.
using Int4 = std::int32_t __attribute__((vector_size(16)));

/// From any alignment.
[[nodiscard]] inline Float4 LoadFloat4(const float* from) {
    Float4 value;
    std::memcpy(&value, from, sizeof(value));
    return value;
}

[[nodiscard]] inline Int4 LoadInt4(const std::int32_t* from) {
    Int4 value;
    std::memcpy(&value, from, sizeof(value));
    return value;
}

inline void Store(float* to, Float4 value) { std::memcpy(to, &value, sizeof(value)); }
inline void Store(std::int32_t* to, Int4 value) { std::memcpy(to, &value, sizeof(value)); }

[[nodiscard]] inline Float4 SplatFloat4(float value) { return Float4{value, value, value, value}; }

/// Zero in the lanes that the mask leaves out, whatever stood there.
[[nodiscard]] inline Float4 KeepWhere(Int4 mask, Float4 value) {
    Int4 bits;
    std::memcpy(&bits, &value, sizeof(bits));
    bits &= mask;
    std::memcpy(&value, &bits, sizeof(value));
    return value;
}

/// mask ? a : b, lane by lane.
[[nodiscard]] inline Float4 Select(Int4 mask, Float4 a, Float4 b) { return mask ? a : b; }

[[nodiscard]] inline Float4 Sqrt(Float4 value) {
#if defined(__SSE2__)
    return _mm_sqrt_ps(value);
#else
    return Float4{std::sqrt(value[0]), std::sqrt(value[1]), std::sqrt(value[2]), std::sqrt(value[3])};
#endif
}

[[nodiscard]] inline bool HasAny(Int4 mask) {
#if defined(__SSE2__)
    __m128i bits;
    std::memcpy(&bits, &mask, sizeof(bits));
    return _mm_movemask_epi8(bits) != 0;
#else
    return (mask[0] | mask[1] | mask[2] | mask[3]) != 0;
#endif
}

/// Three coordinates of four points.
struct Vec3x4 {
    Float4 x, y, z;
};

[[nodiscard]] inline Vec3x4 operator-(const Vec3x4& a, const Vec3x4& b) { return {a.x - b.x, a.y - b.y, a.z - b.z}; }
[[nodiscard]] inline Vec3x4 operator+(const Vec3x4& a, const Vec3x4& b) { return {a.x + b.x, a.y + b.y, a.z + b.z}; }
[[nodiscard]] inline Float4 Dot(const Vec3x4& a, const Vec3x4& b) { return a.x * b.x + a.y * b.y + a.z * b.z; }
[[nodiscard]] inline Vec3x4 Cross(const Vec3x4& a, const Vec3x4& b) {
    return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}
[[nodiscard]] inline Vec3x4 KeepWhere(Int4 mask, const Vec3x4& v) {
    return {KeepWhere(mask, v.x), KeepWhere(mask, v.y), KeepWhere(mask, v.z)};
}
[[nodiscard]] inline Vec3x4 Select(Int4 mask, const Vec3x4& a, const Vec3x4& b) {
    return {Select(mask, a.x, b.x), Select(mask, a.y, b.y), Select(mask, a.z, b.z)};
}

/// Divided by its length; as it is where the length is zero or not a number.
[[nodiscard]] inline Vec3x4 Normalized(const Vec3x4& v) {
    const Float4 length = Sqrt(Dot(v, v));
    return Select(length > 0.0f, Vec3x4{v.x / length, v.y / length, v.z / length}, v);
}
