// The clip plane's own picture in the frame. No method shows the plane yet.
#include "control/ScenePaneCtrl.h"

void CKV_ScenePaneCtrl::DrawClipPlane() {}
