// Draws the clip plane in a frame, and places it at the data. This version has no method that shows the plane,
// so a host cannot switch it on.
#include <GL/glew.h>

#include "control/ScenePaneCtrl.h"

void CKV_ScenePaneCtrl::DrawClipPlane() {
    glPushAttrib(m_clipPlane.m_uAttribMask);
    m_clipPlane.Draw();
    glPopAttrib();
}

// Called by double clicks while the plane is visible, which it cannot be yet.
void CKV_ScenePaneCtrl::PlaceClipPlaneAtData() {}
