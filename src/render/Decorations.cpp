// The parts of a frame that are neither objects nor markers: background, centre cross, lighting arrow. The axes are in
// Axes.cpp, the images of the host in Overlays.cpp.
#include <GL/glew.h>

#include "control/ScenePaneCtrl.h"
#include "render/FlatView.h"

namespace {

/// @param color  0x00BBGGRR; the high byte is ignored
void SetHostColor(std::uint32_t color) {
    const auto channel = [color](unsigned shift) { return static_cast<float>(((color >> shift) & 0xFF) / 255.0); };
    glColor3f(channel(0), channel(8), channel(16));
}

/// Calls @p draw without depth test and lighting, in a flat view whose shorter side spans 20 units: its drawing covers
/// the scene and keeps its proportions in every window. The state is restored.
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

// Replaces all pixels, so that a frame needs no clear of the colour buffer.
void CKV_ScenePaneCtrl::DrawBackground() {
    {
        // One quad over the whole drawing area; OpenGL interpolates the colours of the corners.
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
    glClear(GL_DEPTH_BUFFER_BIT);  // the quad has written its own depth
}

// Two lines of 2 units through the centre of the window.
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
        glLineWidth(1);  // the default, which the lines of axes and boxes rely on
    });
}

// Two triangles that form a dart. Its tip points to the centre of the window; at angle 0 it is at the top, larger
// angles are counterclockwise.
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
