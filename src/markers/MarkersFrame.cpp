// The steps of a frame that draw markers, and the mouse input of needles. This version has no method that adds markers
// or switches on the needle modes: all lists are empty and the modes are off, so doing nothing is correct.
#include "control/ScenePaneCtrl.h"

void CKV_ScenePaneCtrl::DrawLines3D(float /*lineWidth*/) {}

void CKV_ScenePaneCtrl::DrawNeedles(int /*textStyle*/) {}

void CKV_ScenePaneCtrl::DrawPickPointSpheres() {}

bool CKV_ScenePaneCtrl::SelectNeedleAt(std::int32_t /*x*/, std::int32_t /*y*/) { return false; }

bool CKV_ScenePaneCtrl::DragSelectedNeedle(std::int32_t /*x*/, std::int32_t /*y*/) { return false; }

void CKV_ScenePaneCtrl::CreateNeedleAt(std::int32_t /*x*/, std::int32_t /*y*/) {}

void CKV_ScenePaneCtrl::DeleteSelectedNeedle() {}
