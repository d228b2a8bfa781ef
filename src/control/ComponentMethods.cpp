// Start and stop of the component registry by the host. The library counts the starts of all controls of the process.
#include "KV_Components/Registry.h"
#include "control/ScenePaneCtrl.h"

void CKV_ScenePaneCtrl::InitializeKVReg() { KV_Components_Ordinal1(); }

void CKV_ScenePaneCtrl::FinalizeKVReg() { KV_Components_Ordinal3(); }
