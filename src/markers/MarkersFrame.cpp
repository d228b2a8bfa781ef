// The markers' places in the frame. All their lists are empty until the methods that fill them are there.
#include "control/ScenePaneCtrl.h"

void CKV_ScenePaneCtrl::DrawLines3D(float /*lineWidth*/) {}

void CKV_ScenePaneCtrl::DrawNeedles(int /*textStyle*/) {}

void CKV_ScenePaneCtrl::DrawPickPointSpheres() {}
