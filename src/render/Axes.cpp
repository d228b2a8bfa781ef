// The world's axes, small, in the upper left corner. They turn with the scene and can be hidden by it.
#include <GL/glew.h>

#include <cmath>
#include <string_view>

#include "control/ScenePaneCtrl.h"
#include "render/Cone.h"

namespace {

/// Lengths in the world; the same part of the window at every zoom.
struct CrossSizes {
    CrossSizes(float sceneSize, float zoom)
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

constexpr float kDepth = 0.1f;  // of the window: in front of what lies around the centre of the view
constexpr std::int16_t kStandardView = 4;

/// How far right of and below the corner the cross has room, pixels; the standard view is set up.
double CornerMargin(CKV_ScenePaneCtrl& control, const CrossSizes& sizes) {
    Float3 corner{};
    control.UnprojectPoint(0, 0, kDepth, &corner[0], &corner[1], &corner[2]);
    std::int32_t labelX = 0, labelY = 0;
    control.ProjectPoint(corner[0] + sizes.coneDistance + sizes.cone + sizes.labelGap, corner[1], corner[2], &labelX,
                         &labelY);
    const std::int64_t x = std::int64_t{labelX} + 15, y = labelY;
    return std::sqrt(static_cast<double>(x * x + y * y));
}

void DrawAxis(const Axis& axis, const Float3& origin, const CrossSizes& sizes, const COpenGLTextDraw& text) {
    const auto at = [&](float distance) { return origin + distance * axis.direction; };
    glColor3fv(axis.color.data());
    glBegin(GL_LINE_STRIP);
    glVertex3fv(origin.data());
    glVertex3fv(at(sizes.shaft).data());
    glEnd();
    glRasterPos3fv(at(sizes.shaft + sizes.labelGap).data());
    DrawCone(at(sizes.coneDistance), at(sizes.coneDistance + sizes.cone), sizes.coneRadius);
    text.PrintText(axis.label, 0);
}

}  // namespace

// The margin is measured in the standard view, so that the cross keeps its place while the scene turns. Hosts see it:
// the view mode is the standard one after each frame. The refresh in SetViewMode() comes to nothing inside a frame.
void CKV_ScenePaneCtrl::DrawAxes() {
    const CrossSizes sizes(m_fSceneSize, m_fZoom);
    const ViewFrame frame = LiveFrame();
    SetViewMode(kStandardView);
    const double margin = CornerMargin(*this, sizes);
    SetLiveFrame(frame);
    SetupViewMatrices();
    // Beside the window there is nothing to see. A window without area and a scene beyond the floats have no place for
    // it at all.
    if (!(margin < m_nWidth + m_nHeight)) return;

    const auto pixel = static_cast<std::int32_t>(margin);
    Float3 origin{};
    UnprojectPoint(pixel, pixel, kDepth, &origin[0], &origin[1], &origin[2]);
    glPushAttrib(GL_DEPTH_BUFFER_BIT | GL_LIGHTING_BIT | GL_CURRENT_BIT);
    glEnable(GL_DEPTH_TEST);
    for (const Axis& axis : kAxes) DrawAxis(axis, origin, sizes, m_textDraw);
    glPopAttrib();
}
