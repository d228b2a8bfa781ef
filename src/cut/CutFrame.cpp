// What a running cut draws over the scene.
#include "control/ScenePaneCtrl.h"

void CKV_ScenePaneCtrl::DrawLassoPolygon() {}

void CKV_ScenePaneCtrl::DrawCutSession() {}
