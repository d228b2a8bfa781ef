// Imports ois and msh files.
#include "control/ScenePaneCtrl.h"

int CKV_ScenePaneCtrl::ImportOis(const wchar_t*) { return -1; }

int CKV_ScenePaneCtrl::ImportMsh(const wchar_t*) { return -1; }
