// What a running cut draws over the scene.
#include <GL/glew.h>

#include "control/ScenePaneCtrl.h"
#include "render/FlatView.h"

void CKV_ScenePaneCtrl::DrawLassoPolygon() {
    if (m_vLassoPoints.empty()) return;
    const auto vertex = [this](const LassoPoint& point) { glVertex2d(point.x * m_nWidth, point.y * m_nHeight); };
    glPushAttrib(GL_ALL_ATTRIB_BITS);
    glDisable(GL_DEPTH_TEST);
    {
        const FlatView view(0, m_nWidth, m_nHeight, 0, 0, 1);
        glColor3f(0, 1, 1);
        glBegin(GL_LINE_STRIP);
        for (const LassoPoint& point : m_vLassoPoints) vertex(point);
        vertex(m_lassoCursor);
        vertex(m_vLassoPoints.front());
        glEnd();
        glPointSize(3 * m_fScale);
        glColor3f(1, 0, 0);
        glBegin(GL_POINTS);
        for (const LassoPoint& point : m_vLassoPoints) vertex(point);
        vertex(m_lassoCursor);
        glEnd();
    }
    glPopAttrib();
}

void CKV_ScenePaneCtrl::DrawCutSession() { m_pCutSession->Draw(true); }
