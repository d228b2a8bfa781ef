// Three coordinates, as a point or as a direction, in single or double precision. Every expression is evaluated from
// left to right and rounded after each step, so that all callers get the same bits; several vectors at once:
// FloatLanes.h.
#pragma once
#include <array>
#include <cmath>
#include <type_traits>

template <typename T>
using Vector3 = std::array<T, 3>;
using Float3 = Vector3<float>;
using Double3 = Vector3<double>;

template <typename T>
[[nodiscard]] constexpr Vector3<T> operator+(const Vector3<T>& a, const Vector3<T>& b) {
    return {a[0] + b[0], a[1] + b[1], a[2] + b[2]};
}
template <typename T>
[[nodiscard]] constexpr Vector3<T> operator-(const Vector3<T>& a, const Vector3<T>& b) {
    return {a[0] - b[0], a[1] - b[1], a[2] - b[2]};
}
template <typename T>
[[nodiscard]] constexpr Vector3<T> operator*(std::type_identity_t<T> s, const Vector3<T>& a) {
    return {s * a[0], s * a[1], s * a[2]};
}
template <typename T>
[[nodiscard]] constexpr T Dot(const Vector3<T>& a, const Vector3<T>& b) {
    return a[0] * b[0] + a[1] * b[1] + a[2] * b[2];
}
template <typename T>
[[nodiscard]] constexpr Vector3<T> Cross(const Vector3<T>& a, const Vector3<T>& b) {
    return {a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]};
}
template <typename T>
[[nodiscard]] T Length(const Vector3<T>& a) {
    return std::sqrt(Dot(a, a));
}
/// Divided by its length; unchanged where the length is zero or not a number.
template <typename T>
[[nodiscard]] Vector3<T> Normalized(const Vector3<T>& a) {
    const T length = Length(a);
    return length > T{0} ? Vector3<T>{a[0] / length, a[1] / length, a[2] / length} : a;
}

/// From three floats in memory, such as a point of a grid.
[[nodiscard]] constexpr Float3 ToFloat3(const float* p) { return {p[0], p[1], p[2]}; }
/// Exact: every float is a double.
[[nodiscard]] constexpr Double3 ToDouble3(const Float3& a) { return {a[0], a[1], a[2]}; }
