// The camera as it must be after an input, in double precision and by other formulas than those of the viewer:
// rotations by Rodrigues' formula about the axes of the screen, pan and zoom by what a pixel and a notch mean to the
// user.
#pragma once
#include <algorithm>
#include <cmath>
#include <numbers>

#include "support/ControlFixture.h"
#include "view/VectorHelp.h"

struct ExpectedView {
    Double3 right{}, up{}, viewer{}, center{}, pivot{};
    double zoom = 1, sceneSize = 1;
    int width = 640, height = 480;

    static ExpectedView Of(const CKV_ScenePaneCtrl& control) {
        return {ToDouble3(control.m_fAxisX),
                ToDouble3(control.m_fAxisY),
                ToDouble3(control.m_fAxisZ),
                ToDouble3(control.m_fViewCenter),
                ToDouble3(control.m_fRotationCenter),
                control.m_fZoom,
                control.m_fSceneSize,
                control.m_nWidth,
                control.m_nHeight};
    }

    void RotateDirections(const Double3 axis, double angle) {
        for (Double3* const v : {&right, &up, &viewer}) *v = RotateByRodrigues(axis, angle, *v);
    }
    /// The free rotation: half a turn for the smaller side of the window; the camera moves around the pivot.
    void Rotate(int dx, int dy) {
        const double perPixel = std::numbers::pi / std::min(width, height);
        RotateAboutPivot(up, -dx * perPixel);
        RotateAboutPivot(right, -dy * perPixel);
    }
    void RotateAboutHorizontal(int dy) { RotateDirections(right, -dy * std::numbers::pi / height); }
    void RotateAboutVertical(int dx) { RotateDirections(up, -dx * std::numbers::pi / width); }
    void RotateAboutViewer(int dx, int dy) {
        const double byX = dx * std::numbers::pi / width, byY = -dy * std::numbers::pi / height;
        RotateDirections(viewer, std::abs(byY) > std::abs(byX) ? byY : byX);
    }
    /// @param fromX, fromY  where the mouse was before the travel: the picture follows it around the window's centre
    void Roll(int fromX, int fromY, int dx, int dy) {
        const bool low = fromY >= height / 2, atRight = fromX >= width / 2;
        RotateAboutViewer(low ? -dx : dx, atRight ? -dy : dy);
    }
    /// The point under the mouse stays under it.
    void Pan(int dx, int dy) {
        const double perPixel = sceneSize * zoom / std::min(width, height);
        center = center + -dx * perPixel * right;
        center = center + dy * perPixel * up;
    }
    void Fit(const Double3& low, const Double3& high, double defaultZoom) {
        const Double3 diagonal = high - low;
        center = pivot = low + 0.5 * diagonal;
        sceneSize = Length(diagonal);
        zoom = defaultZoom;
    }

private:
    /// The axis is a copy: it may be one of those that rotate.
    void RotateAboutPivot(const Double3 axis, double angle) {
        RotateDirections(axis, angle);
        center = pivot + RotateByRodrigues(axis, angle, center - pivot);
    }
};

/// Axes within a rounding of every step; the centre in units of the scene's size.
inline void ExpectView(const CKV_ScenePaneCtrl& control, const ExpectedView& view) {
    ExpectNear<double>(control.m_fAxisX, view.right, 4e-6, "wx");
    ExpectNear<double>(control.m_fAxisY, view.up, 4e-6, "wy");
    ExpectNear<double>(control.m_fAxisZ, view.viewer, 4e-6, "wz");
    ExpectNear<double>(control.m_fViewCenter, view.center, 4e-6 * view.sceneSize, "centre");
    EXPECT_NEAR(control.m_fZoom, view.zoom, 4e-6 * view.zoom);
    EXPECT_NEAR(control.m_fSceneSize, view.sceneSize, 1e-6 * view.sceneSize);
}
