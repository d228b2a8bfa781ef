// The parts of a frame that are no objects. The cross, the arrow, the axes and the overlays have their places in the
// frame and show nothing yet.
#include <GL/glew.h>

#include "control/ScenePaneCtrl.h"
#include "render/FlatView.h"

namespace {

void SetHostColor(std::uint32_t color) {
    const auto channel = [color](unsigned shift) { return static_cast<float>(((color >> shift) & 0xFF) / 255.0); };
    glColor3f(channel(0), channel(8), channel(16));
}

}  // namespace

void CKV_ScenePaneCtrl::DrawBackground() {
    {
        const FlatView view(1, 1);
        const auto& [topLeft, topRight, bottomLeft, bottomRight] = m_nBackgroundColors;
        glBegin(GL_QUADS);
        SetHostColor(topLeft);
        glVertex3f(-1, 1, 0);
        SetHostColor(topRight);
        glVertex3f(1, 1, 0);
        SetHostColor(bottomRight);
        glVertex3f(1, -1, 0);
        SetHostColor(bottomLeft);
        glVertex3f(-1, -1, 0);
        glEnd();
    }
    glClear(GL_DEPTH_BUFFER_BIT);  // the quad must leave no depth behind
}

void CKV_ScenePaneCtrl::DrawCross() {}

void CKV_ScenePaneCtrl::DrawLightingArrow() {}

void CKV_ScenePaneCtrl::DrawAxes() {}

void CKV_ScenePaneCtrl::DrawOverlays() {}
