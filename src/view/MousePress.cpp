// What a press begins, by the interaction mode that it finds.
#include "control/ScenePaneCtrl.h"
#include "view/Rotation.h"
#include "view/WindowFraction.h"

using KV_ScenePane::kMouseCtrl;
using KV_ScenePane::kMouseLeft;
using KV_ScenePane::kMouseRight;
using KV_ScenePane::kMouseShift;

namespace {

bool PickModeReportsObjects(std::int32_t pickMode) {
    return pickMode == KV_ScenePane::PickModeObjects || pickMode == KV_ScenePane::PickModeObjectsSecond ||
           pickMode == KV_ScenePane::PickModePoints;
}

}  // namespace

void CKV_ScenePaneCtrl::BeginDrag(std::int32_t x, std::int32_t y, bool moving) {
    m_nLastMouseX = x;
    m_nLastMouseY = y;
    m_bMoving = moving;
    m_savedView = LiveFrame();
    const bool turns = m_nInteractionMode == ModeRotate || m_nInteractionMode == ModeAlignInteractive;
    if (!turns || !IsOutsideInscribedCircle(x, y, m_nWidth, m_nHeight)) return;
    m_bRollRotation = 1;
    m_nRollQuadrant = RollQuadrant(x, y, m_nWidth, m_nHeight);
}

// ---- left

void CKV_ScenePaneCtrl::OnLeftDown(std::uint32_t flags, std::int32_t x, std::int32_t y) {
    m_bAnimationRunning = 0;
    switch (m_nInteractionMode) {
        case ModeIdle:
            LeftDownInIdle(flags, x, y);
            break;
        case ModeRotate:
            if (m_nIgdRotation == 1) m_nInteractionMode = ModePan;  // the second button of the chord
            break;
        case ModeLasso:
            AddLassoPoint(x, y);
            break;
        case ModeAlignInteractive:
            LeftDownInAlignment(flags, x, y);
            break;
        case ModeAlignPickPoints:
            LeftDownWhilePickingPoints(flags, x, y);
            break;
        case ModeMaskLasso:
            LeftDownInMaskLasso(x, y);
            break;
        case ModePlaneRotate:
            if (m_nIgdRotation == 1) EnterPlaneDrag(x, y, ModePlaneMove);
            break;
        default:
            break;
    }
}

void CKV_ScenePaneCtrl::LeftDownInIdle(std::uint32_t flags, std::int32_t x, std::int32_t y) {
    m_nSavedInteractionMode = ModeIdle;
    if (m_bNeedlePickingMode != 0) SelectNeedleAt(x, y);
    if (m_clipPlane.IsPicked()) {
        BeginPlaneHandleDrag(x, y);
        return;
    }
    if (m_nIgdRotation == 0) {
        m_nInteractionMode = LeftDragMode();
    } else if ((flags & (kMouseShift | kMouseRight)) != 0) {
        m_nInteractionMode = ModePan;
    } else if ((flags & kMouseMoved) == 0 && PickModeReportsObjects(m_nPickMode)) {
        Float3 hit{};
        if (ReportPick(PickObjectAt(x, y, &hit), hit, flags, x, y)) return;
    }
    BeginDrag(x, y, true);
    if (m_bClipPlaneVisible != 0 && (flags & kMouseCtrl) != 0) {
        const std::int32_t mode = m_nInteractionMode == ModeRotate ? ModePlaneRotate
                                  : m_nInteractionMode == ModePan  ? ModePlaneMove
                                                                   : ModeIdle;
        EnterPlaneDrag(x, y, mode);
    }
    m_pWindow->SetCapture();
}

void CKV_ScenePaneCtrl::LeftDownInAlignment(std::uint32_t flags, std::int32_t x, std::int32_t y) {
    m_nSavedInteractionMode = ModeAlignInteractive;
    m_pWindow->SetCapture();
    if ((flags & kMouseCtrl) != 0 && m_nIgdRotation != 1) m_nInteractionMode = LeftDragMode();
    // The chord ends the rotation that the right button began.
    if (m_nIgdRotation == 1 && m_bRightButtonPressed != 0 && m_pInteractionDlg != nullptr)
        m_pInteractionDlg->OnRotateEnd(x, y);
    BeginDrag(x, y, true);
}

void CKV_ScenePaneCtrl::LeftDownWhilePickingPoints(std::uint32_t flags, std::int32_t x, std::int32_t y) {
    m_nSavedInteractionMode = ModeAlignPickPoints;
    m_pWindow->SetCapture();
    bool moving = true;
    if ((flags & kMouseCtrl) != 0 && m_nIgdRotation != 1) {
        m_nInteractionMode = LeftDragMode();
    } else if (m_pInteractionDlg != nullptr) {
        m_pInteractionDlg->OnClick(x, y, flags);
        moving = m_pInteractionDlg != nullptr;  // the last point closes the dialog
    }
    BeginDrag(x, y, moving);
}

void CKV_ScenePaneCtrl::LeftDownInMaskLasso(std::int32_t x, std::int32_t y) {
    const WindowSize size = m_pWindow->ClientSize();
    const auto [relativeX, relativeY] = WindowFraction<float>(x, y, size.width, size.height);
    if (m_pCutSession == nullptr) {
        StartCutSession(relativeX, relativeY);
        return;
    }
    AddCutSessionPoint(relativeX, relativeY);
    InvalidateControl(true);
}

void CKV_ScenePaneCtrl::AddLassoPoint(std::int32_t x, std::int32_t y) {
    const auto [relativeX, relativeY] = WindowFraction<double>(x, y, m_nWidth, m_nHeight);
    m_lassoCursor = {relativeX, relativeY};
    m_vLassoPoints.push_back(m_lassoCursor);
    InvalidateControl(true);
}

// ---- right

void CKV_ScenePaneCtrl::OnRightDown(std::uint32_t flags, std::int32_t x, std::int32_t y) {
    m_bAnimationRunning = 0;
    m_bRightButtonPressed = 1;
    switch (m_nInteractionMode) {
        case ModeIdle:
            RightDownInIdle(flags, x, y);
            break;
        case ModeLasso:
            AddLassoPoint(x, y);
            FinishSegmentation(false);
            break;
        case ModeAlignInteractive:
        case ModeAlignPickPoints:
            RightDownInAlignment(flags, x, y);
            break;
        case ModeMaskLasso:
            RightDownInMaskLasso(x, y);
            break;
        default:
            break;
    }
}

void CKV_ScenePaneCtrl::RightDownInMaskLasso(std::int32_t x, std::int32_t y) {
    if (m_pCutSession != nullptr) {
        const auto [relativeX, relativeY] = WindowFraction<float>(x, y, m_nWidth, m_nHeight);
        AddCutSessionPoint(relativeX, relativeY);
    }
    FinishSegmentation(false);
}

void CKV_ScenePaneCtrl::RightDownInIdle(std::uint32_t flags, std::int32_t x, std::int32_t y) {
    m_nSavedInteractionMode = ModeIdle;
    m_pWindow->SetCapture();
    const bool pans = (m_nIgdRotation == 0 && m_nFlipMouseButtons == 0) || (flags & (kMouseShift | kMouseLeft)) != 0;
    m_nInteractionMode = pans ? ModePan : ModeRotate;
    BeginDrag(x, y, true);
    // Also with the plane hidden: the next move leaves the mode again.
    if ((flags & kMouseCtrl) != 0) EnterPlaneDrag(x, y, pans ? ModePlaneMove : ModePlaneRotate);
}

void CKV_ScenePaneCtrl::RightDownInAlignment(std::uint32_t flags, std::int32_t x, std::int32_t y) {
    m_nSavedInteractionMode = m_nInteractionMode;
    m_pWindow->SetCapture();
    if ((flags & kMouseCtrl) != 0) {
        if (m_nInteractionMode == ModeAlignPickPoints) {
            const bool chord = (flags & (kMouseShift | kMouseLeft)) != 0;
            const bool turns = (m_nIgdRotation != 0 || m_nFlipMouseButtons != 0) && !chord;
            m_nInteractionMode = turns ? ModeRotate : ModePan;
        } else if (m_nIgdRotation == 0) {
            m_nInteractionMode = RightDragMode();
        }
    }
    BeginDrag(x, y, true);
}

// ---- middle

void CKV_ScenePaneCtrl::OnMiddleDown(std::uint32_t flags, std::int32_t x, std::int32_t y) {
    m_bAnimationRunning = 0;
    if (m_nInteractionMode != ModeIdle) return;
    if (m_nIgdRotation == 1) {
        CenterViewOrPlacePlane(flags);
        return;
    }
    m_nSavedInteractionMode = ModeIdle;
    m_pWindow->SetCapture();
    BeginDrag(x, y, true);
    m_nInteractionMode = ModeRotate;  // only now: a middle drag never rolls
    if (m_bClipPlaneVisible != 0 && (flags & kMouseCtrl) != 0) EnterPlaneDrag(x, y, ModePlaneRotate);
}

// ---- double click

void CKV_ScenePaneCtrl::OnDoubleClick(std::uint32_t flags, std::int32_t x, std::int32_t y) {
    m_bAnimationRunning = 0;
    if (m_bNeedlePickingMode != 0) CreateNeedleAt(x, y);
    if (m_nFlipMouseButtons != 0) {
        RefreshControl();
        return;
    }
    Float3 hit{};
    const std::int32_t object = PickObjectAt(x, y, &hit);
    RefreshControl();
    if (ReportPick(object, hit, flags, x, y)) return;
    if (m_nPickMode != KV_ScenePane::PickModePoints && m_bNeedlePickingMode == 0) CenterViewOrPlacePlane(flags);
    RefreshControl();
}

void CKV_ScenePaneCtrl::CenterViewOrPlacePlane(std::uint32_t flags) {
    if (m_bClipPlaneVisible != 0 && (flags & kMouseCtrl) != 0) {
        PlaceClipPlaneAtData();
    } else {
        FitViewToScene();
        SetViewMode(m_nViewMode);
    }
}

bool CKV_ScenePaneCtrl::ReportPick(std::int32_t object, const Float3& hit, std::uint32_t flags, std::int32_t x,
                                   std::int32_t y) {
    if (object < 0 || !PickModeReportsObjects(m_nPickMode)) return false;
    if (m_pEvents != nullptr)
        m_pEvents->SelectObjCoords(static_cast<std::int16_t>(object), hit[0], hit[1], hit[2],
                                   static_cast<std::int32_t>(flags), x, y);
    RefreshControl();
    return true;
}
