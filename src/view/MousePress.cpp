// What a press begins, by the interaction mode that it finds: a drag of the view, of the clip plane or of an alignment,
// a lasso point, a pick. view/MouseMove.cpp continues the drags, view/MouseRelease.cpp ends them.
#include "control/ScenePaneCtrl.h"
#include "view/Rotation.h"
#include "view/WindowFraction.h"

using KV_ScenePane::kMouseCtrl;
using KV_ScenePane::kMouseLeft;
using KV_ScenePane::kMouseRight;
using KV_ScenePane::kMouseShift;

namespace {

/// Whether a click on an object fires SelectObjCoords.
bool PickModeReportsObjects(std::int32_t pickMode) {
    return pickMode == KV_ScenePane::PickModeObjects || pickMode == KV_ScenePane::PickModeObjectsSecond ||
           pickMode == KV_ScenePane::PickModePoints;
}

/// What a drag of the left button does outside the delayed scheme; the right button does the opposite.
InteractionMode LeftDragMode(const CKV_ScenePaneCtrl& control) {
    return control.m_nFlipMouseButtons != 0 ? ModePan : ModeRotate;
}
InteractionMode RightDragMode(const CKV_ScenePaneCtrl& control) {
    return control.m_nFlipMouseButtons != 0 ? ModeRotate : ModePan;
}

/// Fires SelectObjCoords when an object was hit and the pick mode asks for it; returns whether it did.
/// @param object  index of the object hit, -1 for none
bool ReportPick(CKV_ScenePaneCtrl& control, std::int32_t object, const Float3& hit, std::uint32_t flags, std::int32_t x,
                std::int32_t y) {
    if (object < 0 || !PickModeReportsObjects(control.m_nPickMode)) return false;
    control.Fire(&KV_ScenePane::_DKV_ScenePaneEvents::SelectObjCoords, static_cast<std::int16_t>(object), hit[0],
                 hit[1], hit[2], static_cast<std::int32_t>(flags), x, y);
    control.RefreshControl();
    return true;
}

/// Fits the view and applies the last view mode again, or places the plane, for which the caller repaints.
void CenterViewOrPlacePlane(CKV_ScenePaneCtrl& control, std::uint32_t flags) {
    if (control.IsForPlane(flags)) {
        control.PlaceClipPlaneAtData();
    } else {
        control.FitViewToScene();
        control.SetViewMode(control.m_nViewMode);
    }
}

// ---- left

/// Directly, or delayed by the dispatcher: then a plain press picks, and only Shift or the chord drags.
void LeftDownInIdle(CKV_ScenePaneCtrl& control, std::uint32_t flags, std::int32_t x, std::int32_t y) {
    control.m_nSavedInteractionMode = ModeIdle;
    if (control.m_bNeedlePickingMode != 0) control.SelectNeedleAt(x, y);
    // A handle under the mouse wins over every other meaning of the press, without a capture. A plane that was hidden
    // since the last hover still holds that pick.
    if (control.m_bClipPlaneVisible != 0 && control.m_clipPlane.IsPicked()) {
        control.BeginPlaneHandleDrag(x, y);
        return;
    }
    if (control.m_nIgdRotation == 0) {
        control.m_nInteractionMode = LeftDragMode(control);
    } else if ((flags & (kMouseShift | kMouseRight)) != 0) {
        control.m_nInteractionMode = ModePan;
    } else if ((flags & kMouseMoved) == 0 && PickModeReportsObjects(control.m_nPickMode)) {
        Float3 hit{};
        const std::int32_t object = control.PickObjectAt(x, y, &hit);
        if (ReportPick(control, object, hit, flags, x, y)) return;
    }
    control.BeginDrag(x, y, true);
    // With Ctrl the drag acts on a visible plane. A press that stays idle only highlights it.
    if (control.IsForPlane(flags)) {
        const std::int32_t mode = control.m_nInteractionMode == ModeRotate ? ModePlaneRotate
                                  : control.m_nInteractionMode == ModePan  ? ModePlaneMove
                                                                           : ModeIdle;
        control.EnterPlaneDrag(x, y, mode);
    }
    control.m_pWindow->SetCapture();
}

/// With Ctrl the drag moves the view in place of the object, outside the delayed scheme.
void LeftDownInAlignment(CKV_ScenePaneCtrl& control, std::uint32_t flags, std::int32_t x, std::int32_t y) {
    control.m_nSavedInteractionMode = ModeAlignInteractive;
    control.m_pWindow->SetCapture();
    if ((flags & kMouseCtrl) != 0 && control.m_nIgdRotation != 1) control.m_nInteractionMode = LeftDragMode(control);
    // The chord ends the rotation that the right button began.
    if (control.m_nIgdRotation == 1 && control.m_bRightButtonPressed != 0 && control.m_pInteractionDlg != nullptr)
        control.m_pInteractionDlg->OnRotateEnd(x, y);
    control.BeginDrag(x, y, true);
}

/// A click sets a point through the dialog; with Ctrl a drag of the view begins.
void LeftDownWhilePickingPoints(CKV_ScenePaneCtrl& control, std::uint32_t flags, std::int32_t x, std::int32_t y) {
    control.m_nSavedInteractionMode = ModeAlignPickPoints;
    control.m_pWindow->SetCapture();
    bool moving = true;
    if ((flags & kMouseCtrl) != 0 && control.m_nIgdRotation != 1) {
        control.m_nInteractionMode = LeftDragMode(control);
    } else if (CInteractionDlg* const dialog = control.m_pInteractionDlg; dialog != nullptr) {
        dialog->OnClick(x, y, flags);
        moving = control.m_pInteractionDlg == dialog;  // the last point closes it; a handler may open the next one
    }
    control.BeginDrag(x, y, moving);
}

/// The first point starts the session, if it can be started.
void LeftDownInMaskLasso(CKV_ScenePaneCtrl& control, std::int32_t x, std::int32_t y) {
    const WindowSize size = control.m_pWindow->ClientSize();
    const auto [relativeX, relativeY] = WindowFraction<float>(x, y, size.width, size.height);
    if (control.m_pCutSession == nullptr)
        control.StartCutSession(relativeX, relativeY);
    else
        control.AddCutSessionPoint(relativeX, relativeY);
    if (control.m_pCutSession != nullptr) control.InvalidateControl(true);
}

// ---- right

void RightDownInIdle(CKV_ScenePaneCtrl& control, std::uint32_t flags, std::int32_t x, std::int32_t y) {
    control.m_nSavedInteractionMode = ModeIdle;
    control.m_pWindow->SetCapture();
    const bool pansAlone = control.m_nIgdRotation == 0 && control.m_nFlipMouseButtons == 0;
    const bool pans = pansAlone || (flags & (kMouseShift | kMouseLeft)) != 0;
    control.m_nInteractionMode = pans ? ModePan : ModeRotate;
    control.BeginDrag(x, y, true);
    // Also while the plane is hidden: the next move switches back to the mode of the view.
    if ((flags & kMouseCtrl) != 0) control.EnterPlaneDrag(x, y, pans ? ModePlaneMove : ModePlaneRotate);
}

void RightDownInAlignment(CKV_ScenePaneCtrl& control, std::uint32_t flags, std::int32_t x, std::int32_t y) {
    control.m_nSavedInteractionMode = control.m_nInteractionMode;
    control.m_pWindow->SetCapture();
    // With Ctrl the drag moves the view in place of the object.
    if ((flags & kMouseCtrl) != 0) {
        if (control.m_nInteractionMode == ModeAlignPickPoints) {
            const bool chord = (flags & (kMouseShift | kMouseLeft)) != 0;
            const bool rotates = (control.m_nIgdRotation != 0 || control.m_nFlipMouseButtons != 0) && !chord;
            control.m_nInteractionMode = rotates ? ModeRotate : ModePan;
        } else if (control.m_nIgdRotation == 0) {
            control.m_nInteractionMode = RightDragMode(control);
        }
    }
    control.BeginDrag(x, y, true);
}

/// The last point of the outline, then the end of the segmentation.
void RightDownInMaskLasso(CKV_ScenePaneCtrl& control, std::int32_t x, std::int32_t y) {
    if (control.m_pCutSession != nullptr) {
        const auto [relativeX, relativeY] = WindowFraction<float>(x, y, control.m_nWidth, control.m_nHeight);
        if (!control.AddCutSessionPoint(relativeX, relativeY)) return;  // not what the operator has drawn
    }
    control.FinishSegmentation(false);
}

}  // namespace

void CKV_ScenePaneCtrl::BeginDrag(std::int32_t x, std::int32_t y, bool moving) {
    m_nLastMouseX = x;
    m_nLastMouseY = y;
    m_bMoving = moving;
    m_savedView = LiveFrame();
    // Only what rotates can roll, and the circle decides once for the whole drag.
    const bool rotates = m_nInteractionMode == ModeRotate || m_nInteractionMode == ModeAlignInteractive;
    if (!rotates || !IsOutsideInscribedCircle(x, y, m_nWidth, m_nHeight)) return;
    m_bRollRotation = 1;
    m_nRollQuadrant = RollQuadrant(x, y, m_nWidth, m_nHeight);
}

void CKV_ScenePaneCtrl::OnLeftDown(std::uint32_t flags, std::int32_t x, std::int32_t y) {
    m_bAnimationRunning = 0;
    switch (m_nInteractionMode) {
        case ModeIdle:
            LeftDownInIdle(*this, flags, x, y);
            break;
        case ModeRotate:
            if (m_nIgdRotation == 1) m_nInteractionMode = ModePan;  // the second button of the chord
            break;
        case ModeLasso:
            AddLassoPoint(x, y);
            break;
        case ModeAlignInteractive:
            LeftDownInAlignment(*this, flags, x, y);
            break;
        case ModeAlignPickPoints:
            LeftDownWhilePickingPoints(*this, flags, x, y);
            break;
        case ModeMaskLasso:
            LeftDownInMaskLasso(*this, x, y);
            break;
        case ModePlaneRotate:
            if (m_nIgdRotation == 1) EnterPlaneDrag(x, y, ModePlaneMove);
            break;
        default:
            break;
    }
}

void CKV_ScenePaneCtrl::OnRightDown(std::uint32_t flags, std::int32_t x, std::int32_t y) {
    m_bAnimationRunning = 0;
    m_bRightButtonPressed = 1;
    switch (m_nInteractionMode) {
        case ModeIdle:
            RightDownInIdle(*this, flags, x, y);
            break;
        case ModeLasso:
            if (AddLassoPoint(x, y)) FinishSegmentation(false);
            break;
        case ModeAlignInteractive:
        case ModeAlignPickPoints:
            RightDownInAlignment(*this, flags, x, y);
            break;
        case ModeMaskLasso:
            RightDownInMaskLasso(*this, x, y);
            break;
        default:
            break;
    }
}

// Outside idle the middle button does nothing; in the delayed scheme it centres the view by its press alone.
void CKV_ScenePaneCtrl::OnMiddleDown(std::uint32_t flags, std::int32_t x, std::int32_t y) {
    m_bAnimationRunning = 0;
    if (m_nInteractionMode != ModeIdle) return;
    if (m_nIgdRotation == 1) {
        CenterViewOrPlacePlane(*this, flags);
        if (IsForPlane(flags)) RefreshControl();
        return;
    }
    m_nSavedInteractionMode = ModeIdle;
    m_pWindow->SetCapture();
    BeginDrag(x, y, true);
    m_nInteractionMode = ModeRotate;  // after BeginDrag(): a middle drag never rolls
    if (IsForPlane(flags)) EnterPlaneDrag(x, y, ModePlaneRotate);
}

void CKV_ScenePaneCtrl::OnDoubleClick(std::uint32_t flags, std::int32_t x, std::int32_t y) {
    m_bAnimationRunning = 0;
    if (m_bNeedlePickingMode != 0) CreateNeedleAt(x, y);
    // Flipped buttons switch picking and centring off.
    if (m_nFlipMouseButtons != 0) {
        RefreshControl();
        return;
    }
    Float3 hit{};
    const std::int32_t object = PickObjectAt(x, y, &hit);
    RefreshControl();
    if (ReportPick(*this, object, hit, flags, x, y)) return;
    if (m_nPickMode != KV_ScenePane::PickModePoints && m_bNeedlePickingMode == 0) CenterViewOrPlacePlane(*this, flags);
    RefreshControl();
}
