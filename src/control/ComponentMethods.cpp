// The component registry as a host starts and stops it.
#include "KV_Components/Registry.h"
#include "control/ScenePaneCtrl.h"

void CKV_ScenePaneCtrl::InitializeKVReg() { KV_Components_Ordinal1(); }

void CKV_ScenePaneCtrl::FinalizeKVReg() { KV_Components_Ordinal3(); }
