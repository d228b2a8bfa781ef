// The markers' places in the frame and under the mouse. All their lists are empty and no needle mode can be switched on
// until the methods that do so are there.
#include "control/ScenePaneCtrl.h"

void CKV_ScenePaneCtrl::DrawLines3D(float /*lineWidth*/) {}

void CKV_ScenePaneCtrl::DrawNeedles(int /*textStyle*/) {}

void CKV_ScenePaneCtrl::DrawPickPointSpheres() {}

bool CKV_ScenePaneCtrl::SelectNeedleAt(std::int32_t /*x*/, std::int32_t /*y*/) { return false; }

bool CKV_ScenePaneCtrl::DragSelectedNeedle(std::int32_t /*x*/, std::int32_t /*y*/) { return false; }

void CKV_ScenePaneCtrl::CreateNeedleAt(std::int32_t /*x*/, std::int32_t /*y*/) {}

void CKV_ScenePaneCtrl::DeleteSelectedNeedle() {}
