// Cuts taken back.
#include <utility>

#include "control/ScenePaneCtrl.h"

// The whole list as it was, also when the host has imported or deleted objects since.
std::int32_t CKV_ScenePaneCtrl::PerformUndo() {
    MakeContextCurrent();  // the destructors of the meshes delete their OpenGL buffers
    if (m_vUndoStack.empty()) return 0;
    m_vpMeshes = std::move(m_vUndoStack.back());
    m_vUndoStack.pop_back();
    const int left = GetUndoStepCount();
    RefreshControl();
    return left;
}

void CKV_ScenePaneCtrl::ClearUndoStack() {
    MakeContextCurrent();  // as above
    m_vUndoStack.clear();
}
