// The masks of the objects as the host reads them.
#include "control/ScenePaneCtrl.h"

KV_ScenePane::VARIANT_BOOL CKV_ScenePaneCtrl::GetCutMasks(std::int32_t* /*count*/,
                                                          const ACAD::CutMask** /*cutMaskPtrs*/) {
    return KV_ScenePane::kVariantFalse;
}

void CKV_ScenePaneCtrl::ClearCutMasks() {}
