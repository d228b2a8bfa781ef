// Imports and exports stl files.
#include "control/ScenePaneCtrl.h"

int CKV_ScenePaneCtrl::ImportStl(const wchar_t*) { return -1; }

void CKV_ScenePaneCtrl::ExportStl(std::int16_t, const wchar_t*) {}
