// The rigid transform: p' = R p + t.
#pragma once

/// Keeps a unit quaternion and the rotation matrix derived from it, never the caller's matrix.
class CACADQTrafo {
public:
    virtual ~CACADQTrafo() = default;

    /// Stores the translation t and the rotation of the quaternion that the 3 x 3 matrix m gives, column after column.
    /// Scale and shear of m are lost on purpose; the rotation of such a matrix is not the nearest one.
    void Set(double m00, double m10, double m20, double m01, double m11, double m21, double m02, double m12, double m22,
             double tx, double ty, double tz);
    /// Recomputes m_dRotation from m_dQuat.
    void UpdateMatrix();

    double m_dQuat[4] = {1, 0, 0, 0};  ///< unit quaternion w, x, y, z
    double m_dTranslation[3] = {0, 0, 0};
    double m_dRotation[9] = {1, 0, 0, 0, 1, 0, 0, 0, 1};  ///< column after column: R00, R10, R20, R01, ...
};
