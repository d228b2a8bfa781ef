// What a move of the mouse does, by the interaction mode: hover, drag of the view, drag of an alignment, lasso. The
// clip plane's part is clip/PlaneInput.cpp.
#include "base/ScopeExit.h"
#include "control/ScenePaneCtrl.h"
#include "geometry/PixelDifference.h"
#include "view/Rotation.h"
#include "view/WindowFraction.h"

using KV_ScenePane::kMouseCtrl;
using KV_ScenePane::kMouseLeft;
using KV_ScenePane::kMouseRight;
using KV_ScenePane::kMouseShift;

namespace {

/// The travel to this point was not for the objects of an alignment whose drag is under way.
void PassViewDrag(CKV_ScenePaneCtrl& control, std::int32_t x, std::int32_t y) {
    if (control.m_pInteractionDlg != nullptr) control.m_pInteractionDlg->OnViewDrag(x, y);
}

// Each of these returns whether the point becomes the last one, which the next travel counts from.

/// Rotates or pans by the travel since the last point.
bool DragView(CKV_ScenePaneCtrl& control, std::uint32_t flags, std::int32_t x, std::int32_t y) {
    const bool rotates = control.m_nInteractionMode == ModeRotate;
    // Ctrl pressed during a drag: from here on the travel moves the plane.
    if (control.IsForPlane(flags)) {
        control.EnterPlaneDrag(x, y, rotates ? ModePlaneRotate : ModePlaneMove);
        return false;
    }
    const std::int32_t dx = PixelDifference(x, control.m_nLastMouseX), dy = PixelDifference(y, control.m_nLastMouseY);
    if (rotates)
        control.RotateView(dx, dy);
    else
        control.PanView(dx, dy);
    return true;
}

/// The rubber band follows once the first point is set.
bool MoveInLasso(CKV_ScenePaneCtrl& control, std::int32_t x, std::int32_t y) {
    if (!control.m_vLassoPoints.empty()) {
        const auto [relativeX, relativeY] = WindowFraction<double>(x, y, control.m_nWidth, control.m_nHeight);
        control.m_lassoCursor = {relativeX, relativeY};
        control.InvalidateControl(true);
    }
    return false;
}

/// With the left button held the outline grows; without it the next segment is previewed.
bool MoveInMaskLasso(CKV_ScenePaneCtrl& control, std::uint32_t flags, std::int32_t x, std::int32_t y) {
    if (control.m_pCutSession == nullptr) return false;
    const WindowSize size = control.m_pWindow->ClientSize();
    const auto [relativeX, relativeY] = WindowFraction<float>(x, y, size.width, size.height);
    if ((flags & kMouseLeft) != 0)
        control.AddCutSessionPoint(relativeX, relativeY);
    else
        control.PreviewCutSessionPoint(relativeX, relativeY);
    control.InvalidateControl(true);
    return false;
}

/// In the delayed scheme only the right button drags, and a second button or Shift moves instead of rotating.
void DragAlignmentDelayed(CKV_ScenePaneCtrl& control, std::uint32_t flags, std::int32_t x, std::int32_t y) {
    if ((flags & kMouseRight) == 0) return;
    const std::int32_t dx = PixelDifference(x, control.m_nLastMouseX), dy = PixelDifference(y, control.m_nLastMouseY);
    const bool moves = (flags & (kMouseLeft | kMouseShift)) != 0;
    if ((flags & kMouseCtrl) != 0) {
        if (moves)
            control.PanView(dx, dy);
        else
            control.RotateView(dx, dy);
        PassViewDrag(control, x, y);
    } else if (moves) {
        control.m_pInteractionDlg->OnMoveDrag(x, y);
    } else {
        control.m_pInteractionDlg->OnRotateDrag(x, y);
    }
}

/// The dialog moves its objects. Without a dialog nothing moves, and the point becomes the last one all the same.
bool DragAlignment(CKV_ScenePaneCtrl& control, std::uint32_t flags, std::int32_t x, std::int32_t y) {
    if (control.m_pInteractionDlg == nullptr) return true;
    if (control.m_nIgdRotation == 1) {
        DragAlignmentDelayed(control, flags, x, y);
        return true;
    }
    // With both buttons held both calls are made. The first one takes the step to this pixel, so that the second one
    // finds no travel left.
    const bool flipped = control.m_nFlipMouseButtons != 0;
    if ((flags & (flipped ? kMouseRight : kMouseLeft)) != 0) control.m_pInteractionDlg->OnRotateDrag(x, y);
    // Tested twice: the first call may close the dialog.
    if (control.m_pInteractionDlg != nullptr && (flags & (flipped ? kMouseLeft : kMouseRight)) != 0)
        control.m_pInteractionDlg->OnMoveDrag(x, y);
    return true;
}

bool MoveInMode(CKV_ScenePaneCtrl& control, std::uint32_t flags, std::int32_t x, std::int32_t y) {
    switch (control.m_nInteractionMode) {
        case ModeIdle:
            control.HoverOverPlane(flags, x, y);
            return false;
        case ModeRotate:
        case ModePan: {
            const bool becomesLast = DragView(control, flags, x, y);
            PassViewDrag(control, x, y);
            return becomesLast;
        }
        case ModeLasso:
            return MoveInLasso(control, x, y);
        case ModeAlignInteractive:
            return DragAlignment(control, flags, x, y);
        case ModePlaneHandle:
        case ModePlaneRotate:
        case ModePlaneMove: {
            const bool becomesLast = control.DragPlane(flags, x, y);
            PassViewDrag(control, x, y);
            return becomesLast;
        }
        case ModeMaskLasso:
            return MoveInMaskLasso(control, flags, x, y);
        default:
            return true;
    }
}

}  // namespace

void CKV_ScenePaneCtrl::OnMouseMoved(std::uint32_t flags, std::int32_t x, std::int32_t y) {
    if (m_nAllowMouse != 1) return;
    // The quadrant of the point where this travel starts, so that a roll follows the mouse around the centre.
    m_nRollQuadrant = RollQuadrant(m_nLastMouseX, m_nLastMouseY, m_nWidth, m_nHeight);
    if (m_bNeedlePickingMode != 0 && (flags & kMouseLeft) != 0 && DragSelectedNeedle(x, y)) {
        RefreshControl();
        return;
    }
    // Also when a handler of the host throws: the view has moved by this travel already.
    bool becomesLast = true;
    const ScopeExit store([&] {
        if (!becomesLast) return;
        m_nLastMouseX = x;
        m_nLastMouseY = y;
    });
    becomesLast = MoveInMode(*this, flags, x, y);
}
