// Cuts taken back.
#include "control/ScenePaneCtrl.h"

std::int32_t CKV_ScenePaneCtrl::PerformUndo() { return 0; }

void CKV_ScenePaneCtrl::ClearUndoStack() {}
