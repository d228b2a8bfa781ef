// The method that writes cuts into the measurement files.
#include "control/ScenePaneCtrl.h"

KV_ScenePane::VARIANT_BOOL CKV_ScenePaneCtrl::SaveCuttingToPcms() { return 0; }

std::vector<KV_ScenePane::CutSaveEntry> CKV_ScenePaneCtrl::PlanCutSave() const { return {}; }
