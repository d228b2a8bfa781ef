// The parts of a frame that are neither objects nor markers: background, centre cross, lighting arrow.
#include <GL/glew.h>

#include "control/ScenePaneCtrl.h"
#include "render/FlatView.h"

namespace {

void SetHostColor(std::uint32_t color) {
    const auto channel = [color](unsigned shift) { return static_cast<float>(((color >> shift) & 0xFF) / 255.0); };
    glColor3f(channel(0), channel(8), channel(16));
}

/// Over everything and unlit, in a view whose shorter side spans 20 units.
template <typename Draw>
void DrawFlat(float aspectX, float aspectY, Draw draw) {
    glPushAttrib(GL_ENABLE_BIT | GL_CURRENT_BIT);
    glDisable(GL_DEPTH_TEST);
    glDisable(GL_LIGHTING);
    {
        const FlatView view(10.0 * aspectX, 10.0 * aspectY);
        draw();
    }
    glPopAttrib();
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

void CKV_ScenePaneCtrl::DrawCross() {
    DrawFlat(m_fAspectX, m_fAspectY, [this] {
        SetHostColor(m_nCrossColor);
        glLineWidth(3);
        glBegin(GL_LINES);
        glVertex3f(-1, 0, 0);
        glVertex3f(1, 0, 0);
        glVertex3f(0, -1, 0);
        glVertex3f(0, 1, 0);
        glEnd();
        glLineWidth(1);  // what every other line relies on
    });
}

// A dart with its point to the middle of the window; at angle 0 it stands at the top.
void CKV_ScenePaneCtrl::DrawLightingArrow() {
    DrawFlat(m_fAspectX, m_fAspectY, [this] {
        glRotatef(static_cast<float>(m_nArrowAngle), 0, 0, 1);
        SetHostColor(m_nArrowColor);
        glBegin(GL_TRIANGLES);
        glNormal3f(0, 0, 1);
        glVertex3f(0, 9, 0);
        glVertex3f(0, 8, 0);
        glVertex3f(0.5f, 9.5f, 0);
        glNormal3f(0, 0, 1);
        glVertex3f(0, 8, 0);
        glVertex3f(0, 9, 0);
        glVertex3f(-0.5f, 9.5f, 0);
        glEnd();
    });
}
