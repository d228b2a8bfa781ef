// Vectors of three in tests: rotated by a formula of their own, and compared.
#pragma once
#include <gtest/gtest.h>

#include <cmath>

#include "geometry/Vector3.h"

/// By Rodrigues' formula: right-handed, about an axis of any length through the origin.
inline Double3 RotateByRodrigues(const Double3& axis, double angleRad, const Double3& v) {
    const Double3 unit = Normalized(axis);
    const double c = std::cos(angleRad), s = std::sin(angleRad);
    const Double3 across = Cross(unit, v);
    const double along = Dot(unit, v) * (1 - c);
    Double3 rotated{};
    for (std::size_t i = 0; i < 3; ++i) rotated[i] = v[i] * c + across[i] * s + unit[i] * along;
    return rotated;
}

inline Float3 RoundToFloat3(const Double3& v) {
    return {static_cast<float>(v[0]), static_cast<float>(v[1]), static_cast<float>(v[2])};
}

/// @param what  name of the vector in the message of a failure
template <typename T>
void ExpectNear(const Float3& actual, const Vector3<T>& expected, double tolerance, const char* what) {
    for (std::size_t i = 0; i < 3; ++i) EXPECT_NEAR(actual[i], expected[i], tolerance) << what << ", component " << i;
}
/// For expected values in braces.
inline void ExpectNear(const Float3& actual, const Float3& expected, double tolerance, const char* what) {
    ExpectNear<float>(actual, expected, tolerance, what);
}
