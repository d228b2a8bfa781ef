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
void CKV_ScenePaneCtrl::StartSegmentation(std::int16_t) { NotYet("StartSegmentation"); }
std::int32_t CKV_ScenePaneCtrl::PerformUndo() {
    NotYet("PerformUndo");
    return 0;
}
void CKV_ScenePaneCtrl::AlignInteractive() { NotYet("AlignInteractive"); }
void CKV_ScenePaneCtrl::AlignPickPoints() { NotYet("AlignPickPoints"); }
VARIANT_BOOL CKV_ScenePaneCtrl::SaveCuttingToPcms() {
    NotYet("SaveCuttingToPcms");
    return 0;
}
void CKV_ScenePaneCtrl::EndSegmentation() { NotYet("EndSegmentation"); }
VARIANT_BOOL CKV_ScenePaneCtrl::GetCutMasks(std::int32_t*, const ACAD::CutMask**) {
    NotYet("GetCutMasks");
    return 0;
}
void CKV_ScenePaneCtrl::ClearCutMasks() { NotYet("ClearCutMasks"); }
void CKV_ScenePaneCtrl::AboutBox() { NotYet("AboutBox"); }
