// Imports and exports ply files.
#include "control/ScenePaneCtrl.h"

int CKV_ScenePaneCtrl::ImportPly(const wchar_t*) { return -1; }

void CKV_ScenePaneCtrl::ExportPly(std::int16_t, const wchar_t*) {}
