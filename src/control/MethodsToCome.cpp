// Methods of the surface that this version only declares. Each writes one line to the debugger output, so that a host
// that calls one learns why nothing happened, and returns 0.
#include <string>

#include "base/DebugOutput.h"
#include "control/ScenePaneCtrl.h"

using KV_ScenePane::BSTR;
using KV_ScenePane::VARIANT_BOOL;

namespace {
void NotYet(const char* method) {
    DebugOutput(std::string("CKV_ScenePaneCtrl::") + method + "(): this version does not have this operation yet\n");
}
}  // namespace

void CKV_ScenePaneCtrl::ClearUndoStack() { NotYet("ClearUndoStack"); }
void CKV_ScenePaneCtrl::SetLassoCuttingColors(std::int32_t, float, std::int32_t, float) {
    NotYet("SetLassoCuttingColors");
}
void CKV_ScenePaneCtrl::DisplayClipPlanePartCloseToData() { NotYet("DisplayClipPlanePartCloseToData"); }
std::int32_t CKV_ScenePaneCtrl::FindNearestPickPointSphere(std::int32_t, std::int32_t) {
    NotYet("FindNearestPickPointSphere");
    return 0;
}
void CKV_ScenePaneCtrl::RemovePickPointSphere(std::int32_t) { NotYet("RemovePickPointSphere"); }
void CKV_ScenePaneCtrl::GetPickPointSphereCoords(std::int32_t, float*, float*, float*) {
    NotYet("GetPickPointSphereCoords");
}
std::int32_t CKV_ScenePaneCtrl::GetNumberOfPickPointSpheres() {
    NotYet("GetNumberOfPickPointSpheres");
    return 0;
}
void CKV_ScenePaneCtrl::SetMaxNumberOfNeedles(std::int32_t) { NotYet("SetMaxNumberOfNeedles"); }
VARIANT_BOOL CKV_ScenePaneCtrl::DeselectNeedle(std::int32_t) {
    NotYet("DeselectNeedle");
    return 0;
}
void CKV_ScenePaneCtrl::DeselectAllNeedles() { NotYet("DeselectAllNeedles"); }
void CKV_ScenePaneCtrl::SelectNeedle(std::int32_t) { NotYet("SelectNeedle"); }
void CKV_ScenePaneCtrl::StartSegmentation(std::int16_t) { NotYet("StartSegmentation"); }
void CKV_ScenePaneCtrl::ClearPickPointSpheres() { NotYet("ClearPickPointSpheres"); }
void CKV_ScenePaneCtrl::MovePickPointSphere(std::int32_t, float, float, float) { NotYet("MovePickPointSphere"); }
std::int32_t CKV_ScenePaneCtrl::PerformUndo() {
    NotYet("PerformUndo");
    return 0;
}
void CKV_ScenePaneCtrl::AlignInteractive() { NotYet("AlignInteractive"); }
void CKV_ScenePaneCtrl::AlignPickPoints() { NotYet("AlignPickPoints"); }
VARIANT_BOOL CKV_ScenePaneCtrl::CreateNeedles(std::int32_t, const std::int32_t*, const float*, const float*) {
    NotYet("CreateNeedles");
    return 0;
}
void CKV_ScenePaneCtrl::DeleteNeedles() { NotYet("DeleteNeedles"); }
std::int32_t CKV_ScenePaneCtrl::AddPickPointSphere(float, float, float, std::int32_t) {
    NotYet("AddPickPointSphere");
    return 0;
}
VARIANT_BOOL CKV_ScenePaneCtrl::SaveCuttingToPcms() {
    NotYet("SaveCuttingToPcms");
    return 0;
}
void CKV_ScenePaneCtrl::EndSegmentation() { NotYet("EndSegmentation"); }
VARIANT_BOOL CKV_ScenePaneCtrl::CreateNeedle(std::int32_t, float, float, float, float, float, float) {
    NotYet("CreateNeedle");
    return 0;
}
void CKV_ScenePaneCtrl::SetLine3DDrawingMode(VARIANT_BOOL) { NotYet("SetLine3DDrawingMode"); }
VARIANT_BOOL CKV_ScenePaneCtrl::GetLine3DDrawingMode() {
    NotYet("GetLine3DDrawingMode");
    return 0;
}
VARIANT_BOOL CKV_ScenePaneCtrl::CreateLine3D(std::int32_t, std::int32_t, const float*) {
    NotYet("CreateLine3D");
    return 0;
}
void CKV_ScenePaneCtrl::DeletePoints(std::int32_t) { NotYet("DeletePoints"); }
void CKV_ScenePaneCtrl::SetPointsVisibility(std::int32_t, VARIANT_BOOL) { NotYet("SetPointsVisibility"); }
std::int32_t CKV_ScenePaneCtrl::ImportPoints(std::int32_t, const float*, const float*, float) {
    NotYet("ImportPoints");
    return 0;
}
void CKV_ScenePaneCtrl::SetClipPlaneEnabled(std::int32_t) { NotYet("SetClipPlaneEnabled"); }
void CKV_ScenePaneCtrl::SetClipPlaneDisabled() { NotYet("SetClipPlaneDisabled"); }
void CKV_ScenePaneCtrl::SetClipPlane(float, float, float, float, float, float) { NotYet("SetClipPlane"); }
void CKV_ScenePaneCtrl::SetClipPlaneColor(std::int32_t, std::int32_t, std::int32_t) { NotYet("SetClipPlaneColor"); }
void CKV_ScenePaneCtrl::GetClipPlane(float*, float*, float*, float*, float*, float*) { NotYet("GetClipPlane"); }
void CKV_ScenePaneCtrl::SetNeedlePickingMode(VARIANT_BOOL) { NotYet("SetNeedlePickingMode"); }
void CKV_ScenePaneCtrl::SetNeedleDrawingMode(VARIANT_BOOL) { NotYet("SetNeedleDrawingMode"); }
void CKV_ScenePaneCtrl::SetNeedleRenderParameters(float, float, std::int32_t, float, std::int32_t, float, std::int32_t,
                                                  std::int32_t) {
    NotYet("SetNeedleRenderParameters");
}
VARIANT_BOOL CKV_ScenePaneCtrl::GetNeedlePickingMode() {
    NotYet("GetNeedlePickingMode");
    return 0;
}
VARIANT_BOOL CKV_ScenePaneCtrl::GetNeedleDrawingMode() {
    NotYet("GetNeedleDrawingMode");
    return 0;
}
VARIANT_BOOL CKV_ScenePaneCtrl::DeleteNeedle(std::int32_t) {
    NotYet("DeleteNeedle");
    return 0;
}
std::int32_t CKV_ScenePaneCtrl::GetNumberOfNeedles() {
    NotYet("GetNumberOfNeedles");
    return 0;
}
VARIANT_BOOL CKV_ScenePaneCtrl::GetNeedle(std::int32_t, float*, float*, float*, float*, float*, float*) {
    NotYet("GetNeedle");
    return 0;
}
void CKV_ScenePaneCtrl::GetNeedles(std::int32_t*, float*, float*) { NotYet("GetNeedles"); }
VARIANT_BOOL CKV_ScenePaneCtrl::GetCutMasks(std::int32_t*, const ACAD::CutMask**) {
    NotYet("GetCutMasks");
    return 0;
}
void CKV_ScenePaneCtrl::ClearCutMasks() { NotYet("ClearCutMasks"); }
void CKV_ScenePaneCtrl::AboutBox() { NotYet("AboutBox"); }
