// What a running cut draws over the scene. Without a session, and nothing starts one yet, there is nothing to draw.
#include "control/ScenePaneCtrl.h"

void CKV_ScenePaneCtrl::DrawLassoPolygon() {}

void CKV_ScenePaneCtrl::DrawCutSession() {}
