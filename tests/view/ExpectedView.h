// The camera once more, in double precision and by other formulas than the viewer's: rotations by Rodrigues' formula
// about the screen's axes, pan and zoom by what a pixel and a notch mean to the user.
#pragma once
#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>

#include "support/ControlFixture.h"

using Vector = std::array<double, 3>;

inline Vector Plus(const Vector& a, double s, const Vector& b) {
    return {a[0] + s * b[0], a[1] + s * b[1], a[2] + s * b[2]};
}
inline double Inner(const Vector& a, const Vector& b) { return a[0] * b[0] + a[1] * b[1] + a[2] * b[2]; }
inline Vector Turned(const Vector& v, const Vector& axis, double angle) {
    const Vector across{axis[1] * v[2] - axis[2] * v[1], axis[2] * v[0] - axis[0] * v[2],
                        axis[0] * v[1] - axis[1] * v[0]};
    const double c = std::cos(angle);
    Vector turned = Plus({}, c, v);
    turned = Plus(turned, std::sin(angle), across);
    return Plus(turned, Inner(axis, v) * (1 - c), axis);
}
inline Vector AsVector(const Float3& v) { return {v[0], v[1], v[2]}; }

struct ExpectedView {
    Vector right{}, up{}, viewer{}, center{}, pivot{};
    double zoom = 1, sceneSize = 1;
    int width = 640, height = 480;

    static ExpectedView Of(const CKV_ScenePaneCtrl& control) {
        return {AsVector(control.m_fAxisX),
                AsVector(control.m_fAxisY),
                AsVector(control.m_fAxisZ),
                AsVector(control.m_fViewCenter),
                AsVector(control.m_fRotationCenter),
                control.m_fZoom,
                control.m_fSceneSize,
                control.m_nWidth,
                control.m_nHeight};
    }

    void TurnDirections(const Vector& axis, double angle) {
        for (Vector* const v : {&right, &up, &viewer}) *v = Turned(*v, axis, angle);
    }
    /// The free rotation: half a turn for the smaller side of the window; the camera swings around the pivot.
    void Rotate(int dx, int dy) {
        const double perPixel = std::numbers::pi / std::min(width, height);
        Swing(up, -dx * perPixel);
        Swing(right, -dy * perPixel);
    }
    void RotateAboutHorizontal(int dy) { TurnDirections(right, -dy * std::numbers::pi / height); }
    void RotateAboutVertical(int dx) { TurnDirections(up, -dx * std::numbers::pi / width); }
    void RotateAboutViewer(int dx, int dy) {
        const double byX = dx * std::numbers::pi / width, byY = -dy * std::numbers::pi / height;
        TurnDirections(viewer, std::abs(byY) > std::abs(byX) ? byY : byX);
    }
    /// @param fromX, fromY  where the mouse was before the travel: the picture follows it around the window's centre
    void Roll(int fromX, int fromY, int dx, int dy) {
        const bool low = fromY >= height / 2, atRight = fromX >= width / 2;
        RotateAboutViewer(low ? -dx : dx, atRight ? -dy : dy);
    }
    /// The point under the mouse stays under it.
    void Pan(int dx, int dy) {
        const double perPixel = sceneSize * zoom / std::min(width, height);
        center = Plus(center, -dx * perPixel, right);
        center = Plus(center, dy * perPixel, up);
    }
    void Fit(const Vector& low, const Vector& high, double defaultZoom) {
        const Vector diagonal = Plus(high, -1, low);
        center = pivot = Plus(low, 0.5, diagonal);
        sceneSize = std::sqrt(Inner(diagonal, diagonal));
        zoom = defaultZoom;
    }

private:
    void Swing(const Vector axis, double angle) {
        TurnDirections(axis, angle);
        center = Plus(pivot, 1, Turned(Plus(center, -1, pivot), axis, angle));
    }
};

/// Axes within a rounding of every step; the centre in units of the scene's size.
inline void ExpectView(const CKV_ScenePaneCtrl& control, const ExpectedView& view) {
    const auto near = [](const Float3& got, const Vector& expected, double tolerance, const char* what) {
        for (std::size_t i = 0; i < 3; ++i) EXPECT_NEAR(got[i], expected[i], tolerance) << what << ", component " << i;
    };
    near(control.m_fAxisX, view.right, 4e-6, "wx");
    near(control.m_fAxisY, view.up, 4e-6, "wy");
    near(control.m_fAxisZ, view.viewer, 4e-6, "wz");
    near(control.m_fViewCenter, view.center, 4e-6 * view.sceneSize, "centre");
    EXPECT_NEAR(control.m_fZoom, view.zoom, 4e-6 * view.zoom);
    EXPECT_NEAR(control.m_fSceneSize, view.sceneSize, 1e-6 * view.sceneSize);
}
