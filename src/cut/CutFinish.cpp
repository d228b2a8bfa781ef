// The end of a session: the cut itself, or its cancellation.
#include "control/ScenePaneCtrl.h"

bool CKV_ScenePaneCtrl::FinishSegmentation(bool /*cancel*/) { return false; }

std::shared_ptr<const ACAD::CutMask> CKV_ScenePaneCtrl::CreateCutMask(std::uint32_t /*kind*/,
                                                                      const CutSource& /*source*/) {
    return nullptr;
}
