// The clip plane under the mouse: hovering, and the drags that move or turn it. The plane itself is clip/Plane.h.
#include <Eigen/Dense>
#include <cmath>

#include "control/ScenePaneCtrl.h"

using KV_ScenePane::kMouseCtrl;

namespace {

constexpr double kFaceOnSine = 1e-6;  // of the angle between normal and view axis

}  // namespace

void CKV_ScenePaneCtrl::ShowPlaneHandles(PlaneHandles handles) {
    m_clipPlane.m_bMoveHandleVisible = handles != PlaneHandles::Rotate;
    m_clipPlane.m_bRotateHandlesVisible = handles != PlaneHandles::Move;
}

Double2 CKV_ScenePaneCtrl::PlaneCenterOnScreen() {
    const Double3 center = m_clipPlane.GetCenter();
    Double2 onScreen{};
    if (MakeContextCurrent()) ProjectPointDouble(center[0], center[1], center[2], &onScreen[0], &onScreen[1]);
    return onScreen;
}

Double2 CKV_ScenePaneCtrl::PlaneNormalOnScreen() {
    if (!MakeContextCurrent()) return {};
    const Double3 center = m_clipPlane.GetCenter(), normal = m_clipPlane.GetNormal();
    const auto onScreen = [&](const auto& offset) {
        Double2 point{};
        ProjectPointDouble(center[0] + offset[0], center[1] + offset[1], center[2] + offset[2], &point[0], &point[1]);
        return point;
    };
    const Double2 from = onScreen(Double3{}), to = onScreen(normal), aside = onScreen(m_fAxisX);
    const Double2 direction{to[0] - from[0], to[1] - from[1]};
    // The matrices of OpenGL are floats: their rounding must not become the direction of a plane seen face-on.
    const double unit = std::hypot(aside[0] - from[0], aside[1] - from[1]);
    if (std::hypot(direction[0], direction[1]) < kFaceOnSine * unit) return {};
    return direction;
}

void CKV_ScenePaneCtrl::HoverOverPlane(std::uint32_t flags, std::int32_t x, std::int32_t y) {
    const bool wasPicked = m_clipPlane.IsPicked();
    m_clipPlane.m_bHighlighted = (flags & kMouseCtrl) != 0;
    m_clipPlane.ClearPick();
    if (m_bClipPlaneVisible == 0) return;
    const std::lock_guard lock(*g_drawLock);  // the pick draws, into the buffer that frames draw into
    RenderObject* const objects[] = {&m_clipPlane};
    PickRenderObjectsAt(objects, x, m_pWindow->ClientSize().height - y - 1);
    if (m_clipPlane.IsPicked() != wasPicked) RefreshControl();
}

void CKV_ScenePaneCtrl::BeginPlaneHandleDrag(std::int32_t x, std::int32_t y) {
    const PlaneHandle pick = *m_clipPlane.GetPick();
    m_nInteractionMode = ModePlaneHandle;
    m_clipPlane.BeginHandleDrag(x, y, PlaneCenterOnScreen(), PlaneNormalOnScreen(), pick);
    const bool moves = pick.kind == PlaneHandle::kArrow;
    if (moves)
        m_clipPlane.m_bRotateHandlesVisible = false;
    else
        m_clipPlane.m_bMoveHandleVisible = false;
}

void CKV_ScenePaneCtrl::EnterPlaneDrag(std::int32_t x, std::int32_t y, std::int32_t mode) {
    m_nInteractionMode = mode;
    m_clipPlane.ClearPick();
    m_clipPlane.m_bHighlighted = true;
    m_clipPlane.BeginPlaneDrag(x, y, PlaneNormalOnScreen());
    if (mode == ModePlaneRotate) ShowPlaneHandles(PlaneHandles::Rotate);
    if (mode == ModePlaneMove) ShowPlaneHandles(PlaneHandles::Move);
}

void CKV_ScenePaneCtrl::EndPlaneDrag(bool ctrl) {
    ShowPlaneHandles(PlaneHandles::Both);
    m_clipPlane.m_bHighlighted = ctrl;
}

bool CKV_ScenePaneCtrl::DragPlane(std::uint32_t flags, std::int32_t x, std::int32_t y) {
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
    if (m_bClipPlaneVisible == 0 || (flags & kMouseCtrl) == 0) {
        EndPlaneDrag(false);
        m_nInteractionMode = rotates ? ModeRotate : ModePan;
        return false;
    }
    if (rotates)
        RotatePlane(x - m_nLastMouseX, y - m_nLastMouseY);
    else
        m_clipPlane.DragAlongNormal(x, y);
    InvalidateControl(true);
    return true;
}

// The view does not move; m_savedView turns in its place, and the plane follows that.
void CKV_ScenePaneCtrl::RotatePlane(std::int32_t dx, std::int32_t dy) {
    if (!MakeContextCurrent()) return;
    Eigen::Matrix4f before, after;
    ComputeFrameMatrix(m_savedView, before.data());
    m_savedView = ComputeRotatedFrame(m_savedView, dx, dy);
    ComputeFrameMatrix(m_savedView, after.data());
    const Eigen::Matrix4d turn = before.cast<double>().inverse() * after.cast<double>();
    if (!turn.allFinite()) return;  // a scene without extent
    const Double3 normal = m_clipPlane.GetNormal();
    const Eigen::Vector3d turned = turn.topLeftCorner<3, 3>() * Eigen::Vector3d(normal[0], normal[1], normal[2]);
    m_clipPlane.SetNormal({turned[0], turned[1], turned[2]});
}
