// What a release ends.
#include "control/ScenePaneCtrl.h"

using KV_ScenePane::kMouseCtrl;

namespace {

/// Any release ends the drag of these modes.
bool IsDragMode(std::int32_t mode) {
    return mode == ModeRotate || mode == ModePan || mode == ModeAlignInteractive || mode == ModeAlignPickPoints ||
           mode == ModePlaneRotate || mode == ModePlaneMove;
}

}  // namespace

void CKV_ScenePaneCtrl::OnLeftUp(std::uint32_t flags, std::int32_t x, std::int32_t y) {
    // In the delayed scheme the right button still holds the drag.
    if (m_nIgdRotation == 1 && m_nInteractionMode == ModePan) {
        m_nInteractionMode = ModeRotate;
    } else if (m_nIgdRotation == 1 && m_nInteractionMode == ModePlaneMove) {
        EnterPlaneDrag(x, y, ModePlaneRotate);
    } else if (m_nInteractionMode == ModeIdle) {
        m_pWindow->ReleaseCapture();
        RefreshControl();
    } else if (IsDragMode(m_nInteractionMode)) {
        EndDrag(flags, x, y);
    } else if (m_nInteractionMode == ModePlaneHandle) {
        EndPlaneDrag((flags & kMouseCtrl) != 0);
        m_nInteractionMode = m_nSavedInteractionMode;
        RefreshControl();
    }
}

void CKV_ScenePaneCtrl::OnRightUp(std::uint32_t flags, std::int32_t x, std::int32_t y) {
    m_bRightButtonPressed = 0;
    if (IsDragMode(m_nInteractionMode)) EndDrag(flags, x, y);
}

void CKV_ScenePaneCtrl::OnMiddleUp(std::uint32_t flags, std::int32_t x, std::int32_t y) {
    if (m_nInteractionMode == ModePlaneRotate) {
        EndDrag(flags, x, y);
    } else if (m_nInteractionMode == ModeRotate) {
        ReleaseDrag(x, y);
        LeaveDragMode();
    }
}

void CKV_ScenePaneCtrl::EndDrag(std::uint32_t flags, std::int32_t x, std::int32_t y) {
    ReleaseDrag(x, y);
    EndPlaneDrag((flags & kMouseCtrl) != 0);
    LeaveDragMode();
}

void CKV_ScenePaneCtrl::ReleaseDrag(std::int32_t x, std::int32_t y) {
    m_pWindow->ReleaseCapture();
    if (m_pInteractionDlg != nullptr) m_pInteractionDlg->OnRotateEnd(x, y);
    if (m_pInteractionDlg != nullptr) m_pInteractionDlg->OnMoveEnd(x, y);
}

void CKV_ScenePaneCtrl::LeaveDragMode() {
    m_nInteractionMode = m_nSavedInteractionMode;
    m_bMoving = 0;
    RefreshControl();
    if (m_bRollRotation == 0) return;
    m_bRollRotation = 0;
    ShowCursor(PaneCursor::Default);
}

void CKV_ScenePaneCtrl::ShowCursor(PaneCursor cursor) {
    m_bLassoCursor = cursor == PaneCursor::Lasso;
    m_pWindow->SetCursor(cursor);
}
