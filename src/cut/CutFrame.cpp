// What a running cut draws over the scene, and the mouse input that it receives. The methods that start a cut are not
// implemented yet, so none of these has anything to do.
#include "control/ScenePaneCtrl.h"

void CKV_ScenePaneCtrl::DrawLassoPolygon() {}

void CKV_ScenePaneCtrl::DrawCutSession() {}

void CKV_ScenePaneCtrl::FinishSegmentation(bool /*cancel*/) {}

void CKV_ScenePaneCtrl::StartCutSession(float /*x*/, float /*y*/) {}

void CKV_ScenePaneCtrl::AddCutSessionPoint(float /*x*/, float /*y*/) {}

void CKV_ScenePaneCtrl::PreviewCutSessionPoint(float /*x*/, float /*y*/) {}
