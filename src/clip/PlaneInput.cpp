// The clip plane under the mouse: hovering, and the drags that move or rotate it. The plane itself is clip/Plane.h, the
// maths of its drags clip/PlaneDrag.cpp.
#include <Eigen/Dense>
#include <cmath>

#include "control/ScenePaneCtrl.h"
#include "geometry/PixelDifference.h"

using KV_ScenePane::kMouseCtrl;

namespace {

constexpr double kFaceOnSine = 1e-6;  // of the angle between normal and view axis

/// Window pixels, y downward; the origin without a context.
Double2 PlaneCenterOnScreen(CKV_ScenePaneCtrl& control) {
    const Double3 center = control.m_clipPlane.GetCenter();
    Double2 onScreen{};
    if (control.MakeContextCurrent())
        control.ProjectPointDouble(center[0], center[1], center[2], &onScreen[0], &onScreen[1]);
    return onScreen;
}

/// Direction of the plane's normal in window pixels; its length is that of one unit on the screen. Exactly 0 for a
/// plane seen face-on, in a scene without a finite size, and without a context.
Double2 PlaneNormalOnScreen(CKV_ScenePaneCtrl& control) {
    if (!control.MakeContextCurrent()) return {};
    const Double3 center = control.m_clipPlane.GetCenter(), normal = control.m_clipPlane.GetNormal();
    const auto onScreen = [&](const auto& offset) {
        Double2 point{};
        control.ProjectPointDouble(center[0] + offset[0], center[1] + offset[1], center[2] + offset[2], &point[0],
                                   &point[1]);
        return point;
    };
    const Double2 from = onScreen(Double3{}), to = onScreen(normal), aside = onScreen(control.m_fAxisX);
    const Double2 direction{to[0] - from[0], to[1] - from[1]};
    // The matrices of OpenGL are floats: their rounding must not become the direction of a plane seen face-on.
    const double unit = std::hypot(aside[0] - from[0], aside[1] - from[1]);
    const double length = std::hypot(direction[0], direction[1]);
    if (!std::isfinite(length) || length < kFaceOnSine * unit) return {};
    return direction;
}

/// Rotates the plane as the view would rotate by the same travel. The view itself does not move: m_savedView rotates in
/// its place from move to move, and the plane follows it.
void RotatePlane(CKV_ScenePaneCtrl& control, std::int32_t dx, std::int32_t dy) {
    if (!control.MakeContextCurrent()) return;
    Eigen::Matrix4f before, after;
    control.ComputeFrameMatrix(control.m_savedView, before.data());
    control.m_savedView = control.ComputeRotatedFrame(control.m_savedView, dx, dy);
    control.ComputeFrameMatrix(control.m_savedView, after.data());
    // Both matrices contain the projection; it cancels in the product, a rigid motion of the world.
    const Eigen::Matrix4d rotation = before.cast<double>().inverse() * after.cast<double>();
    if (!rotation.allFinite()) return;  // a scene without extent
    const Double3 normal = control.m_clipPlane.GetNormal();
    const Eigen::Vector3d rotated = rotation.topLeftCorner<3, 3>() * Eigen::Vector3d(normal[0], normal[1], normal[2]);
    control.m_clipPlane.SetNormal({rotated[0], rotated[1], rotated[2]});
}

}  // namespace

bool CKV_ScenePaneCtrl::IsForPlane(std::uint32_t flags) const {
    return m_bClipPlaneVisible != 0 && (flags & kMouseCtrl) != 0;
}

void CKV_ScenePaneCtrl::ShowPlaneHandles(PlaneHandles handles) {
    m_clipPlane.m_bMoveHandleVisible = handles != PlaneHandles::Rotate;
    m_clipPlane.m_bRotateHandlesVisible = handles != PlaneHandles::Move;
}

// The pick is cleared first, so that a hidden plane has none.
void CKV_ScenePaneCtrl::HoverOverPlane(std::uint32_t flags, std::int32_t x, std::int32_t y) {
    const bool wasPicked = m_clipPlane.IsPicked();
    m_clipPlane.m_bHighlighted = (flags & kMouseCtrl) != 0;
    m_clipPlane.ClearPick();
    if (m_bClipPlaneVisible == 0) return;
    {
        const std::lock_guard lock(*g_drawLock);  // the pick draws, and so does a frame on another thread
        RenderObject* const objects[] = {&m_clipPlane};
        PickRenderObjectsAt(objects, x, PixelDifference(m_pWindow->ClientSize().height - 1, y));
    }
    if (m_clipPlane.IsPicked() != wasPicked) RefreshControl();
}

void CKV_ScenePaneCtrl::BeginPlaneHandleDrag(std::int32_t x, std::int32_t y) {
    const PlaneHandle pick = *m_clipPlane.GetPick();
    m_nInteractionMode = ModePlaneHandle;
    m_clipPlane.BeginHandleDrag(x, y, PlaneCenterOnScreen(*this), PlaneNormalOnScreen(*this), pick);
    // The handles of the other kind are hidden during the drag.
    const bool moves = pick.kind == PlaneHandle::kArrow;
    if (moves)
        m_clipPlane.m_bRotateHandlesVisible = false;
    else
        m_clipPlane.m_bMoveHandleVisible = false;
}

// Also from idle in the delayed scheme, with ModeIdle as mode: then both kinds of handles stay visible.
void CKV_ScenePaneCtrl::EnterPlaneDrag(std::int32_t x, std::int32_t y, std::int32_t mode) {
    m_nInteractionMode = mode;
    m_clipPlane.ClearPick();
    m_clipPlane.m_bHighlighted = true;
    m_clipPlane.BeginPlaneDrag(x, y, PlaneNormalOnScreen(*this));
    if (mode == ModePlaneRotate) ShowPlaneHandles(PlaneHandles::Rotate);
    if (mode == ModePlaneMove) ShowPlaneHandles(PlaneHandles::Move);
}

void CKV_ScenePaneCtrl::EndPlaneDrag(bool ctrl) {
    ShowPlaneHandles(PlaneHandles::Both);
    m_clipPlane.m_bHighlighted = ctrl;
}

bool CKV_ScenePaneCtrl::DragPlane(std::uint32_t flags, std::int32_t x, std::int32_t y) {
    // A handle follows the mouse by its position on the screen, not by travels: the last point stays.
    if (m_nInteractionMode == ModePlaneHandle) {
        if (!MakeContextCurrent()) return false;
        m_clipPlane.DragHandle(x, y, [this](const Double3& point) {
            Double2 onScreen{};
            ProjectPointDouble(point[0], point[1], point[2], &onScreen[0], &onScreen[1]);
            return onScreen;
        });
        RefreshControl();
        return false;
    }
    const bool rotates = m_nInteractionMode == ModePlaneRotate;
    // Without Ctrl the drag of the view goes on with the next move.
    if (!IsForPlane(flags)) {
        EndPlaneDrag(false);
        m_nInteractionMode = rotates ? ModeRotate : ModePan;
        return false;
    }
    if (rotates)
        RotatePlane(*this, PixelDifference(x, m_nLastMouseX), PixelDifference(y, m_nLastMouseY));
    else
        m_clipPlane.DragAlongNormal(x, y);
    InvalidateControl(true);
    return true;
}
