// Imports and exports hps files.
#include "control/ScenePaneCtrl.h"

void CKV_ScenePaneCtrl::SetHpsSourceApp(BSTR, BSTR) {}

int CKV_ScenePaneCtrl::ImportHps(const wchar_t*) { return -1; }

void CKV_ScenePaneCtrl::ExportHps(std::int16_t, const wchar_t*) {}
