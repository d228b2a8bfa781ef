// A rigid transform, p' = R p + t, such as the pose of a scan: sensor frame to world frame.
#pragma once

/// Invariant after Set() and UpdateMatrix(): m_dRotation is the matrix of m_dQuat. The caller's matrix itself is not
/// kept.
class CACADQTrafo {
public:
    virtual ~CACADQTrafo() = default;

    /// Stores the translation t and the rotation that the 3 x 3 matrix m has as a unit quaternion.
    /// The arguments are m column after column. Scale and shear of m are dropped by intent; the rotation of such a
    /// matrix is not the nearest one. The four candidates for the largest component: Shepperd's method.
    void Set(double m00, double m10, double m20, double m01, double m11, double m21, double m02, double m12, double m22,
             double tx, double ty, double tz);
    /// Recomputes the matrix from the quaternion, which must have unit length.
    void UpdateMatrix();

    double m_dQuat[4] = {1, 0, 0, 0};  ///< unit quaternion w, x, y, z
    double m_dTranslation[3] = {0, 0, 0};
    double m_dRotation[9] = {1, 0, 0, 0, 1, 0, 0, 0, 1};  ///< column after column: R00, R10, R20, R01, ...
};
