// The clip plane in a frame.
#include <GL/glew.h>

#include "control/ScenePaneCtrl.h"

void CKV_ScenePaneCtrl::DrawClipPlane() {
    glPushAttrib(m_clipPlane.m_uAttribMask);
    m_clipPlane.Draw();
    glPopAttrib();
}
