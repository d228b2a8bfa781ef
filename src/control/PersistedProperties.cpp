// The persisted properties, and the stores that they are written to.
#include "control/ScenePaneCtrl.h"

std::string CKV_ScenePaneCtrl::SaveProperties(KV_ScenePane::PropertyFormat /*format*/) { return {}; }

bool CKV_ScenePaneCtrl::LoadProperties(std::string_view /*store*/, std::string* /*reason*/) { return false; }
