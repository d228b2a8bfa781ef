// The clip plane: a frame in space whose normal side is kept.
#pragma once
#include <array>
#include <cstdint>

using Double3 = std::array<double, 3>;

class Plane {
public:
    [[nodiscard]] Double3 GetCenter() const;
    void SetCenter(const Double3& center);
    /// Unit length, world frame.
    [[nodiscard]] Double3 GetNormal() const;
    /// Turns the plane from the Z axis by the shortest way; a twist about the normal is lost. The length of @p n does
    /// not matter, n = (0, 0, -1) gives the reflection -1 on the diagonal.
    void SetNormal(const Double3& n);
    /// (n, d) with n dot p + d at least 0 on the side that is kept.
    [[nodiscard]] std::array<double, 4> GetEquation() const;
    /// Foot of @p point on the plane.
    [[nodiscard]] Double3 ProjectOntoPlane(const Double3& point) const;
    /// The square's inscribed circle gets this radius.
    void SetRadiusFromExtent(double extent);
    /// Clips with GL_CLIP_PLANE0; the view matrix must be in force, without an object's transform.
    void EnableClipping() const;
    static void DisableClipping();

    bool m_bHighlighted = false;          ///< shows the hot colours and opacity
    bool m_bMoveHandleVisible = true;     ///< the double arrow
    bool m_bRotateHandlesVisible = true;  ///< the two balls
    double m_dRadius = 0.0;               ///< distance of the corners from the centre
    std::uint32_t m_nCorners = 4;
    /// Column-major; column 2 is the normal direction, column 3 the centre, world frame.
    std::array<double, 16> m_dMatrix{1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};
};
