// The clip plane's own picture in the frame, and its placement by the data. No method shows the plane yet.
#include <GL/glew.h>

#include "control/ScenePaneCtrl.h"

void CKV_ScenePaneCtrl::DrawClipPlane() {
    glPushAttrib(m_clipPlane.m_uAttribMask);
    m_clipPlane.Draw();
    glPopAttrib();
}

void CKV_ScenePaneCtrl::PlaceClipPlaneAtData() {}
