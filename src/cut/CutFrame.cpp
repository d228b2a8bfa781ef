// What a running cut draws over the scene and takes from the mouse. Nothing starts a session yet.
#include "control/ScenePaneCtrl.h"

void CKV_ScenePaneCtrl::DrawLassoPolygon() {}

void CKV_ScenePaneCtrl::DrawCutSession() {}

void CKV_ScenePaneCtrl::FinishSegmentation(bool /*cancel*/) {}

void CKV_ScenePaneCtrl::StartCutSession(float /*x*/, float /*y*/) {}

void CKV_ScenePaneCtrl::AddCutSessionPoint(float /*x*/, float /*y*/) {}

void CKV_ScenePaneCtrl::PreviewCutSessionPoint(float /*x*/, float /*y*/) {}
