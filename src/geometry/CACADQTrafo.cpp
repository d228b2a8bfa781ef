// The quaternion of a matrix and the matrix of a quaternion.
#include "geometry/CACADQTrafo.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace {

// Shepperd's method: the largest component is computed from the diagonal and the others by dividing by it, so that no
// division is by a small number. In a tie the first of w, x, y, z is used: the order fixes the bits of the result.
std::array<double, 4> QuaternionOf(double m00, double m10, double m20, double m01, double m11, double m21, double m02,
                                   double m12, double m22) {
    const double a = 1 + m00 - m11 - m22;  // 4 x^2
    const double b = 1 + m00 + m11 + m22;  // 4 w^2
    const double c = 1 - m00 + m11 - m22;  // 4 y^2
    const double d = 1 - m00 - m11 + m22;  // 4 z^2
    if (b >= a && b >= c && b >= d) {
        const double w = std::sqrt(b) * 0.5;
        const double f = 4 * w;
        return {w, (m21 - m12) / f, (m02 - m20) / f, (m10 - m01) / f};
    }
    if (a >= b && a >= c && a >= d) {
        const double x = std::sqrt(a) * 0.5;
        const double f = 4 * x;
        return {(m21 - m12) / f, x, (m10 + m01) / f, (m02 + m20) / f};
    }
    if (c >= a && c >= b && c >= d) {
        const double y = std::sqrt(c) * 0.5;
        const double f = 4 * y;
        return {(m02 - m20) / f, (m10 + m01) / f, y, (m21 + m12) / f};
    }
    const double z = std::sqrt(d) * 0.5;
    const double f = 4 * z;
    return {(m10 - m01) / f, (m02 + m20) / f, (m21 + m12) / f, z};
}

}  // namespace

void CACADQTrafo::Set(double m00, double m10, double m20, double m01, double m11, double m21, double m02, double m12,
                      double m22, double tx, double ty, double tz) {
    const auto [w, x, y, z] = QuaternionOf(m00, m10, m20, m01, m11, m21, m02, m12, m22);
    // A matrix with scale or shear has a quaternion of another length than 1.
    const double length = std::sqrt(w * w + x * x + y * y + z * z);
    m_dQuat[0] = w / length;
    m_dQuat[1] = x / length;
    m_dQuat[2] = y / length;
    m_dQuat[3] = z / length;
    UpdateMatrix();
    m_dTranslation[0] = tx;
    m_dTranslation[1] = ty;
    m_dTranslation[2] = tz;
}

void CACADQTrafo::UpdateMatrix() {
    const auto& [w, x, y, z] = m_dQuat;
    const double columns[9] = {
        w * w + x * x - y * y - z * z, 2 * (x * y + w * z),           2 * (x * z - w * y),
        2 * (x * y - w * z),           w * w - x * x + y * y - z * z, 2 * (y * z + w * x),
        2 * (x * z + w * y),           2 * (y * z - w * x),           w * w - x * x - y * y + z * z};
    std::copy_n(columns, 9, m_dRotation);
}
