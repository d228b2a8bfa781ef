// The axes of the world as a small tripod in the upper left corner. It turns with the scene and is depth-tested
// against it. The cones are drawn by Cone.cpp.
#include <GL/glew.h>

#include <cmath>
#include <string_view>

#include "control/ScenePaneCtrl.h"
#include "render/Cone.h"

namespace {

/// Lengths in scene units. They scale with the zoom, so that the tripod has the same size in the window at every zoom.
struct TripodSizes {
    TripodSizes(float sceneSize, float zoom)
        : cone(sceneSize / 50.0f * zoom),
          coneDistance(sceneSize / 20.0f * zoom),
          shaft(coneDistance + sceneSize / 60.0f * zoom),
          labelGap(sceneSize / 200.0f * zoom),
          coneRadius(cone / 3.0f) {}
    float cone, coneDistance, shaft, labelGap, coneRadius;
};

struct Axis {
    Float3 direction, color;
    std::u16string_view label;
};
constexpr Axis kAxes[] = {
    {{1, 0, 0}, {1, 0, 0}, u" X "}, {{0, 1, 0}, {0, 1, 0}, u" Y "}, {{0, 0, 1}, {0.25f, 0.25f, 1}, u" Z "}};

constexpr float kDepth = 0.1f;        // window depth: in front of objects near the centre of the view
constexpr double kLabelWidthPx = 15;  // reserved for the label after the end of the x axis

/// Distance of the origin from the left and from the top of the window, pixels: the length of an axis with its label.
/// The standard view must be set up.
double CornerMargin(CKV_ScenePaneCtrl& control, const TripodSizes& sizes) {
    // The upper left corner in the world, and the window position of the label of an x axis that started there.
    Float3 corner{};
    control.UnprojectPoint(0, 0, kDepth, &corner[0], &corner[1], &corner[2]);
    std::int32_t labelX = 0, labelY = 0;
    control.ProjectPoint(corner[0] + sizes.coneDistance + sizes.cone + sizes.labelGap, corner[1], corner[2], &labelX,
                         &labelY);
    const double x = labelX + kLabelWidthPx * control.m_fScale, y = labelY;
    return std::sqrt(x * x + y * y);
}

/// A line that ends in a cone, and the label after the tip.
void DrawAxis(const Axis& axis, const Float3& origin, const TripodSizes& sizes, const COpenGLTextDraw& text) {
    const auto at = [&](float distance) { return origin + distance * axis.direction; };
    glColor3fv(axis.color.data());
    glBegin(GL_LINE_STRIP);
    glVertex3fv(origin.data());
    glVertex3fv(at(sizes.shaft).data());
    glEnd();
    glRasterPos3fv(at(sizes.shaft + sizes.labelGap).data());
    DrawCone(at(sizes.coneDistance), at(sizes.coneDistance + sizes.cone), sizes.coneRadius, axis.color);
    text.PrintText(axis.label, 0);
}

}  // namespace

// The margin is measured in the standard view, so that the tripod keeps its position while the scene turns. Hosts can
// see this: the view mode is the standard one after each frame with axes. SetViewMode() asks for a refresh, which a
// frame in progress ignores.
void CKV_ScenePaneCtrl::DrawAxes() {
    const TripodSizes sizes(m_fSceneSize, m_fZoom);
    const ViewFrame frame = LiveFrame();
    SetViewMode(KV_ScenePane::ViewFromPlusZYUp);
    const double margin = CornerMargin(*this, sizes);
    SetLiveFrame(frame);
    SetupViewMatrices();
    // Outside the window there is nothing to draw. This also covers a window without area, and a scene too large for
    // single precision, whose margin is far outside.
    if (!(margin < m_nWidth + m_nHeight)) return;

    const auto pixel = static_cast<std::int32_t>(margin);
    Float3 origin{};
    UnprojectPoint(pixel, pixel, kDepth, &origin[0], &origin[1], &origin[2]);
    glPushAttrib(GL_DEPTH_BUFFER_BIT | GL_LIGHTING_BIT | GL_CURRENT_BIT);
    glEnable(GL_DEPTH_TEST);
    for (const Axis& axis : kAxes) DrawAxis(axis, origin, sizes, m_textDraw);
    glPopAttrib();
}
