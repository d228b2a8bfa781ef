// What a move does, by the interaction mode.
#include "control/ScenePaneCtrl.h"
#include "view/Rotation.h"
#include "view/WindowFraction.h"

using KV_ScenePane::kMouseCtrl;
using KV_ScenePane::kMouseLeft;
using KV_ScenePane::kMouseRight;
using KV_ScenePane::kMouseShift;

void CKV_ScenePaneCtrl::OnMouseMoved(std::uint32_t flags, std::int32_t x, std::int32_t y) {
    if (m_nAllowMouse != 1) return;
    m_nRollQuadrant = RollQuadrant(m_nLastMouseX, m_nLastMouseY, m_nWidth, m_nHeight);  // it follows the mouse
    if (m_bNeedlePickingMode != 0 && (flags & kMouseLeft) != 0 && DragSelectedNeedle(x, y)) {
        RefreshControl();
        return;
    }
    if (!MoveInMode(flags, x, y)) return;
    m_nLastMouseX = x;
    m_nLastMouseY = y;
}

bool CKV_ScenePaneCtrl::MoveInMode(std::uint32_t flags, std::int32_t x, std::int32_t y) {
    switch (m_nInteractionMode) {
        case ModeIdle:
            HoverOverPlane(flags, x, y);
            return false;
        case ModeRotate:
        case ModePan:
            return DragView(flags, x, y);
        case ModeLasso:
            return MoveInLasso(x, y);
        case ModeAlignInteractive:
            DragAlignment(flags, x, y);
            return true;
        case ModePlaneHandle:
        case ModePlaneRotate:
        case ModePlaneMove:
            return DragPlane(flags, x, y);
        case ModeMaskLasso:
            return MoveInMaskLasso(flags, x, y);
        default:
            return true;
    }
}

bool CKV_ScenePaneCtrl::DragView(std::uint32_t flags, std::int32_t x, std::int32_t y) {
    const bool rotates = m_nInteractionMode == ModeRotate;
    if (m_bClipPlaneVisible != 0 && (flags & kMouseCtrl) != 0) {
        EnterPlaneDrag(x, y, rotates ? ModePlaneRotate : ModePlaneMove);
        return false;
    }
    const std::int32_t dx = x - m_nLastMouseX, dy = y - m_nLastMouseY;
    if (rotates)
        RotateView(dx, dy);
    else
        PanView(dx, dy);
    return true;
}

bool CKV_ScenePaneCtrl::MoveInLasso(std::int32_t x, std::int32_t y) {
    if (!m_vLassoPoints.empty()) {
        const auto [relativeX, relativeY] = WindowFraction<double>(x, y, m_nWidth, m_nHeight);
        m_lassoCursor = {relativeX, relativeY};
        InvalidateControl(true);
    }
    return false;
}

bool CKV_ScenePaneCtrl::MoveInMaskLasso(std::uint32_t flags, std::int32_t x, std::int32_t y) {
    if (m_pCutSession == nullptr) return false;
    const WindowSize size = m_pWindow->ClientSize();
    const auto [relativeX, relativeY] = WindowFraction<float>(x, y, size.width, size.height);
    if ((flags & kMouseLeft) != 0)
        AddCutSessionPoint(relativeX, relativeY);
    else
        PreviewCutSessionPoint(relativeX, relativeY);
    InvalidateControl(true);
    return false;
}

void CKV_ScenePaneCtrl::DragAlignment(std::uint32_t flags, std::int32_t x, std::int32_t y) {
    if (m_pInteractionDlg == nullptr) return;
    const bool right = (flags & kMouseRight) != 0;
    if (m_nIgdRotation != 1) {
        const bool flipped = m_nFlipMouseButtons != 0;
        if ((flags & (flipped ? kMouseRight : kMouseLeft)) != 0) m_pInteractionDlg->OnRotateDrag(x, y);
        if ((flags & (flipped ? kMouseLeft : kMouseRight)) != 0) m_pInteractionDlg->OnMoveDrag(x, y);
        return;
    }
    if (!right) return;
    const std::int32_t dx = x - m_nLastMouseX, dy = y - m_nLastMouseY;
    const bool moves = (flags & (kMouseLeft | kMouseShift)) != 0;
    if ((flags & kMouseCtrl) != 0) {
        if (moves)
            PanView(dx, dy);
        else
            RotateView(dx, dy);
    } else if (moves) {
        m_pInteractionDlg->OnMoveDrag(x, y);
    } else {
        m_pInteractionDlg->OnRotateDrag(x, y);
    }
}
