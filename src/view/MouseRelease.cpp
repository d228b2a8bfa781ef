// What the release of a button ends, by the interaction mode. view/MousePress.cpp begins what ends here.
#include "control/ScenePaneCtrl.h"

using KV_ScenePane::kMouseCtrl;

namespace {

/// Any release of the left or right button ends the drag of these modes.
bool IsDragMode(std::int32_t mode) {
    return mode == ModeRotate || mode == ModePan || mode == ModeAlignInteractive || mode == ModeAlignPickPoints ||
           mode == ModePlaneRotate || mode == ModePlaneMove;
}

/// The capture and the dialog: before the end of a plane drag.
void ReleaseDrag(CKV_ScenePaneCtrl& control, std::int32_t x, std::int32_t y) {
    control.m_pWindow->ReleaseCapture();
    // Tested twice: the first call may close the dialog.
    if (control.m_pInteractionDlg != nullptr) control.m_pInteractionDlg->OnRotateEnd(x, y);
    if (control.m_pInteractionDlg != nullptr) control.m_pInteractionDlg->OnMoveEnd(x, y);
}

/// The mode, the repaint and a roll: after the end of a plane drag, so that the repaint shows its handles again.
void LeaveDragMode(CKV_ScenePaneCtrl& control) {
    control.m_nInteractionMode = control.m_nSavedInteractionMode;
    control.m_bMoving = 0;
    control.RefreshControl();
    if (control.m_bRollRotation == 0) return;
    control.m_bRollRotation = 0;
    control.ShowLassoCursor(false);
}

void EndDrag(CKV_ScenePaneCtrl& control, std::uint32_t flags, std::int32_t x, std::int32_t y) {
    ReleaseDrag(control, x, y);
    control.EndPlaneDrag((flags & kMouseCtrl) != 0);
    LeaveDragMode(control);
}

}  // namespace

void CKV_ScenePaneCtrl::OnLeftUp(std::uint32_t flags, std::int32_t x, std::int32_t y) {
    // In the delayed scheme the right button of the chord is still held and rotates.
    if (m_nIgdRotation == 1 && m_nInteractionMode == ModePan) {
        m_nInteractionMode = ModeRotate;
    } else if (m_nIgdRotation == 1 && m_nInteractionMode == ModePlaneMove) {
        EnterPlaneDrag(x, y, ModePlaneRotate);
    } else if (m_nInteractionMode == ModeIdle) {
        // The delayed scheme captures on a plain left press without a mode of its own. m_bMoving stays set.
        m_pWindow->ReleaseCapture();
        RefreshControl();
    } else if (IsDragMode(m_nInteractionMode)) {
        EndDrag(*this, flags, x, y);
    } else if (m_nInteractionMode == ModePlaneHandle) {
        // A handle drag never captured.
        EndPlaneDrag((flags & kMouseCtrl) != 0);
        m_nInteractionMode = m_nSavedInteractionMode;
        RefreshControl();
    }
}

// Outside a drag only the flag of the button changes.
void CKV_ScenePaneCtrl::OnRightUp(std::uint32_t flags, std::int32_t x, std::int32_t y) {
    m_bRightButtonPressed = 0;
    if (IsDragMode(m_nInteractionMode)) EndDrag(*this, flags, x, y);
}

void CKV_ScenePaneCtrl::OnMiddleUp(std::uint32_t flags, std::int32_t x, std::int32_t y) {
    if (m_nInteractionMode == ModePlaneRotate) {
        EndDrag(*this, flags, x, y);
    } else if (m_nInteractionMode == ModeRotate) {
        // A middle drag of the view hides no handle, so the plane is not touched.
        ReleaseDrag(*this, x, y);
        LeaveDragMode(*this);
    }
}
