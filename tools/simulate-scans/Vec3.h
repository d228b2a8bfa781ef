// Points (millimetres) and directions in single precision. Not the viewer's vectors: this program shares no maths with
// the viewer, so that tests can use its scans as an independent reference, and the bits of its files must not change
// when the viewer's maths does (Unit() multiplies by the reciprocal length).
#pragma once
#include <cmath>

namespace simulate {

struct Vec3 {
    float x = 0, y = 0, z = 0;

    /// @param axis  0 x, 1 y, 2 z
    float operator[](int axis) const { return axis == 0 ? x : axis == 1 ? y : z; }
    bool operator==(const Vec3&) const = default;
};

inline Vec3 operator+(Vec3 a, Vec3 b) { return {a.x + b.x, a.y + b.y, a.z + b.z}; }
inline Vec3 operator-(Vec3 a, Vec3 b) { return {a.x - b.x, a.y - b.y, a.z - b.z}; }
inline Vec3 operator*(Vec3 a, float factor) { return {a.x * factor, a.y * factor, a.z * factor}; }
inline float Dot(Vec3 a, Vec3 b) { return a.x * b.x + a.y * b.y + a.z * b.z; }
inline Vec3 Cross(Vec3 a, Vec3 b) { return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x}; }
inline float Length(Vec3 a) { return std::sqrt(Dot(a, a)); }
/// Scaled to length 1. The length must not be 0.
inline Vec3 Unit(Vec3 a) { return a * (1.0f / Length(a)); }

}  // namespace simulate
