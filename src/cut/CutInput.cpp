// The freehand lasso under the mouse.
#include "control/ScenePaneCtrl.h"

void CKV_ScenePaneCtrl::StartCutSession(float /*x*/, float /*y*/) {}

void CKV_ScenePaneCtrl::AddCutSessionPoint(float /*x*/, float /*y*/) {}

void CKV_ScenePaneCtrl::PreviewCutSessionPoint(float /*x*/, float /*y*/) {}
