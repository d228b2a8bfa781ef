// What the keys do. The dialogs of the alignments hear each press behind the control's own answer.
#include "control/ScenePaneCtrl.h"

void CKV_ScenePaneCtrl::OnKey(const KV_ScenePane::KeyInput& input) {
    if (input.isDown)
        OnKeyPressed(input.nChar, input.nRepCnt, input.nFlags);
    else
        OnKeyReleased(input.nChar, input.nRepCnt, input.nFlags);
}

void CKV_ScenePaneCtrl::OnKeyPressed(std::int32_t nChar, std::int32_t nRepCnt, std::int32_t nFlags) {
    if (m_pEvents != nullptr) m_pEvents->CustomKeyDown(nChar, nRepCnt, nFlags);
    const bool animationRan = m_bAnimationRunning != 0;
    m_bAnimationRunning = 0;
    switch (nChar) {
        case KV_ScenePane::kKeyEscape:
            EscapePressed(nFlags);
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
        case KV_ScenePane::kKeyUp:
        case KV_ScenePane::kKeyDown:
            if (m_bClipPlaneVisible != 0) {
                m_clipPlane.MoveAlongNormal(nChar == KV_ScenePane::kKeyUp ? 1.0 : -1.0);
                RefreshControl();
            }
            break;
        case KV_ScenePane::kKeyCtrl:
            if (m_bClipPlaneVisible != 0) CtrlPressed();
            break;
        default:
            break;
    }
    if (m_pInteractionDlg != nullptr) m_pInteractionDlg->OnInteractionKey(nChar, nRepCnt, nFlags);
}

void CKV_ScenePaneCtrl::EscapePressed(std::int32_t nFlags) {
    if (m_bNeedlePickingMode != 0) {
        DeselectAllNeedles();
        RefreshControl();
    }
    if (m_nInteractionMode == ModeLasso || m_nInteractionMode == ModeMaskLasso) {
        FinishSegmentation(true);
    } else if (m_nInteractionMode == ModePlaneHandle) {
        constexpr std::int32_t kCtrlBit = 0x8;
        m_clipPlane.RestoreDragStart(true);
        EndPlaneDrag((nFlags & kCtrlBit) != 0);
        m_nInteractionMode = m_nSavedInteractionMode;
        RefreshControl();
    }
}

void CKV_ScenePaneCtrl::CtrlPressed() {
    if (m_nInteractionMode == ModeIdle) {
        m_clipPlane.m_bHighlighted = true;
        ShowPlaneHandles(PlaneHandles::Both);
    } else if (m_nInteractionMode == ModeRotate) {
        m_clipPlane.m_bHighlighted = true;
        ShowPlaneHandles(PlaneHandles::Rotate);
    } else if (m_nInteractionMode == ModePan) {
        m_clipPlane.m_bHighlighted = true;
        ShowPlaneHandles(PlaneHandles::Move);
    }
    InvalidateControl(true);
}

void CKV_ScenePaneCtrl::OnKeyReleased(std::int32_t nChar, std::int32_t /*nRepCnt*/, std::int32_t /*nFlags*/) {
    if (nChar != KV_ScenePane::kKeyCtrl || m_bClipPlaneVisible == 0) return;
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
