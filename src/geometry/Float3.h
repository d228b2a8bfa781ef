// Three floats as a point or a direction.
#pragma once
#include <array>
#include <cmath>

using Float3 = std::array<float, 3>;

[[nodiscard]] constexpr Float3 operator+(const Float3& a, const Float3& b) {
    return {a[0] + b[0], a[1] + b[1], a[2] + b[2]};
}
[[nodiscard]] constexpr Float3 operator-(const Float3& a, const Float3& b) {
    return {a[0] - b[0], a[1] - b[1], a[2] - b[2]};
}
[[nodiscard]] constexpr Float3 operator*(float s, const Float3& a) { return {s * a[0], s * a[1], s * a[2]}; }
[[nodiscard]] constexpr float Dot(const Float3& a, const Float3& b) { return a[0] * b[0] + a[1] * b[1] + a[2] * b[2]; }
[[nodiscard]] constexpr Float3 Cross(const Float3& a, const Float3& b) {
    return {a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]};
}
[[nodiscard]] inline float Length(const Float3& a) { return std::sqrt(Dot(a, a)); }
