// What the keys do: Escape cancels, Delete removes a needle, Space starts the turntable, Up, Down and Ctrl act on the
// clip plane. The dialog of an alignment receives each press after the control has acted on it.
#include "control/ScenePaneCtrl.h"

namespace {

/// Bit of nFlags that is read as Ctrl held, with the value of kMouseCtrl; in KeyInput it is a bit of the scan code.
constexpr std::int32_t kCtrlBit = 0x8;

/// Deselects the needles, then cancels the lasso or puts a dragged handle of the clip plane back.
void CancelByEscape(CKV_ScenePaneCtrl& control, std::int32_t nFlags) {
    if (control.m_bNeedlePickingMode != 0) {
        control.DeselectAllNeedles();
        control.RefreshControl();
    }
    if (control.m_nInteractionMode == ModeLasso || control.m_nInteractionMode == ModeMaskLasso) {
        control.FinishSegmentation(true);
    } else if (control.m_nInteractionMode == ModePlaneHandle) {
        control.m_clipPlane.RestoreDragStart(true);
        control.EndPlaneDrag((nFlags & kCtrlBit) != 0);
        control.m_nInteractionMode = control.m_nSavedInteractionMode;
        control.RefreshControl();
    }
}

/// Shows what Ctrl would do now: the plane highlighted, with the handles of the drag under way. The drag itself changes
/// with the next move.
void HighlightPlaneByCtrl(CKV_ScenePaneCtrl& control) {
    if (control.m_nInteractionMode == ModeIdle) {
        control.m_clipPlane.m_bHighlighted = true;
        control.ShowPlaneHandles(PlaneHandles::Both);
    } else if (control.m_nInteractionMode == ModeRotate) {
        control.m_clipPlane.m_bHighlighted = true;
        control.ShowPlaneHandles(PlaneHandles::Rotate);
    } else if (control.m_nInteractionMode == ModePan) {
        control.m_clipPlane.m_bHighlighted = true;
        control.ShowPlaneHandles(PlaneHandles::Move);
    }
    control.InvalidateControl(true);
}

}  // namespace

void CKV_ScenePaneCtrl::OnKey(const KV_ScenePane::KeyInput& input) {
    if (m_bClosed) return;
    if (input.isDown)
        OnKeyPressed(input.nChar, input.nRepCnt, input.nFlags);
    else
        OnKeyReleased(input.nChar, input.nRepCnt, input.nFlags);
}

// The order is part of the surface: the host, the viewer, the dialog.
void CKV_ScenePaneCtrl::OnKeyPressed(std::int32_t nChar, std::int32_t nRepCnt, std::int32_t nFlags) {
    Fire(&KV_ScenePane::_DKV_ScenePaneEvents::CustomKeyDown, nChar, nRepCnt, nFlags);
    // Every key stops the turntable, so Space can only start one that did not run.
    const bool animationRan = m_bAnimationRunning != 0;
    m_bAnimationRunning = 0;
    switch (nChar) {
        case KV_ScenePane::kKeyEscape:
            CancelByEscape(*this, nFlags);
            break;
        case KV_ScenePane::kKeyDelete:
            if (m_bNeedlePickingMode != 0) {
                DeleteSelectedNeedle();
                RefreshControl();
            }
            break;
        case KV_ScenePane::kKeySpace:
            if (m_bToggleAnimationOnSpacebar != 0 && !animationRan) StartAnimation(m_fAnimationSpeed);
            break;
        // One unit per press, however often a held key repeats.
        case KV_ScenePane::kKeyUp:
        case KV_ScenePane::kKeyDown:
            if (m_bClipPlaneVisible != 0) {
                m_clipPlane.MoveAlongNormal(nChar == KV_ScenePane::kKeyUp ? 1.0 : -1.0);
                RefreshControl();
            }
            break;
        case KV_ScenePane::kKeyCtrl:
            if (m_bClipPlaneVisible != 0) HighlightPlaneByCtrl(*this);
            break;
        default:
            break;
    }
    if (m_pInteractionDlg != nullptr) m_pInteractionDlg->OnInteractionKey(nChar, nRepCnt, nFlags);
}

// Only the release of Ctrl has a meaning. Releases are reported neither to the host nor to a dialog.
void CKV_ScenePaneCtrl::OnKeyReleased(std::int32_t nChar, std::int32_t /*nRepCnt*/, std::int32_t /*nFlags*/) {
    if (nChar != KV_ScenePane::kKeyCtrl || m_bClipPlaneVisible == 0) return;
    // The end of Ctrl turns a plane drag back into the drag of the view that it came from.
    m_clipPlane.m_bHighlighted = false;
    switch (m_nInteractionMode) {
        case ModeIdle:
            ShowPlaneHandles(PlaneHandles::Both);
            break;
        case ModeRotate:
        case ModePlaneRotate:
            ShowPlaneHandles(PlaneHandles::Both);
            m_nInteractionMode = ModeRotate;
            break;
        case ModePan:
        case ModePlaneMove:
            ShowPlaneHandles(PlaneHandles::Both);
            m_nInteractionMode = ModePan;
            break;
        default:
            break;
    }
    InvalidateControl(true);
}
