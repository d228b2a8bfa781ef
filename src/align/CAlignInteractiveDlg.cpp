// Drags of the mouse as steps of the variable objects: what a step rotates about and moves by. The transforms are those
// of RigidMotion.h.
#include "align/CAlignInteractiveDlg.h"

#include <algorithm>
#include <cmath>

#include "align/RigidMotion.h"
#include "base/ScopeExit.h"
#include "control/ScenePaneCtrl.h"
#include "geometry/PixelDifference.h"

namespace {

constexpr float kPi = 3.1415927f;
constexpr float kStepDepth = 0.1f;  // any: the camera is orthographic

/// A rotation about an axis of the world; none about an axis of length 0.
struct AxisAngle {
    Float3 axis{};
    float angle = 0;  ///< radians
};

/// A mouse travel, with the size of the window; pixels, y downward.
struct Travel {
    std::int32_t dx = 0, dy = 0;
    float width = 0, height = 0;
};

/// The larger of the two angles counts, so that the mouse may circle the viewing axis either way.
AxisAngle RollBy(const CKV_ScenePaneCtrl& control, float dx, float dy, const Travel& travel) {
    const float byX = -dx * kPi / travel.width, byY = dy * kPi / travel.height;
    return {control.m_fAxisZ, std::abs(byY) > std::abs(byX) ? byY : byX};
}

/// Signs that make the objects follow a mouse that circles the centre of the window.
AxisAngle RollInQuadrant(const CKV_ScenePaneCtrl& control, const Travel& travel) {
    const auto dx = static_cast<float>(travel.dx), dy = static_cast<float>(travel.dy);
    switch (control.m_nRollQuadrant) {
        case 0:
            return RollBy(control, dx, dy, travel);
        case 1:
            return RollBy(control, dx, -dy, travel);
        case 2:
            return RollBy(control, -dx, -dy, travel);
        default:
            return RollBy(control, -dx, dy, travel);
    }
}

/// World point of a pixel; empty without a context and in a scene without extent.
std::optional<Float3> PointAt(CKV_ScenePaneCtrl& control, std::int32_t x, std::int32_t y) {
    Float3 point{};
    if (control.UnprojectPoint(x, y, kStepDepth, &point[0], &point[1], &point[2]) == 0) return {};
    return point;
}

/// About the direction in the window that is perpendicular to the travel.
AxisAngle RotateFreely(CKV_ScenePaneCtrl& control, const Travel& travel) {
    const auto tip = PointAt(control, travel.dy, PixelDifference(0, travel.dx)), origin = PointAt(control, 0, 0);
    if (!tip || !origin) return {};
    const auto dx = static_cast<float>(travel.dx), dy = static_cast<float>(travel.dy);
    return {Normalized(*tip - *origin), std::sqrt(dx * dx + dy * dy) * kPi / std::min(travel.width, travel.height)};
}

AxisAngle RotationOf(CKV_ScenePaneCtrl& control, const Travel& travel) {
    if (control.m_bRollRotation != 0) return RollInQuadrant(control, travel);
    const auto dx = static_cast<float>(travel.dx), dy = static_cast<float>(travel.dy);
    switch (control.m_nRotationMode) {
        case KV_ScenePane::RotateAboutHorizontal:
            return {control.m_fAxisX, dy * kPi / travel.height};
        case KV_ScenePane::RotateAboutVertical:
            return {control.m_fAxisY, dx * kPi / travel.width};
        case KV_ScenePane::RotateAboutViewAxis:
            return RollBy(control, dx, dy, travel);
        case KV_ScenePane::RotateFree:
            return RotateFreely(control, travel);
        default:
            return {};  // unlike the view, which rotates freely then
    }
}

/// In the delayed scheme a release comes without its pixel. Every move before it has been handled already.
bool HasReleasePixel(const CKV_ScenePaneCtrl& control) {
    return control.m_nIgdRotation == 0 && control.m_nAllowMouse == 1;
}

}  // namespace

void CAlignInteractiveDlg::ForgetDrag() {
    m_nDragState = kNoDrag;
    m_bAwaitsDrag = true;
}

void CAlignInteractiveDlg::OnViewDrag(std::int32_t x, std::int32_t y) {
    m_bAwaitsDrag = false;
    m_nLastX = x;
    m_nLastY = y;
}

void CAlignInteractiveDlg::OnInitDialog() {
    CKV_ScenePaneCtrl& control = *m_pControl;
    const auto moving = control.MovingObjects();
    MarkObjects(moving);
    m_fPivot = {};
    for (const auto& mesh : moving) {
        Float3 center{};
        mesh->GetCenter(center.data());
        m_fPivot = m_fPivot + center;
    }
    const auto count = static_cast<float>(moving.size());
    for (float& coordinate : m_fPivot) coordinate /= count;
    for (const auto& mesh : control.m_vpMeshes)
        if (mesh->m_iObjectTag != kVariableTag) m_savedColors.Dim(mesh);
    control.RefreshControl();
}

// The order is part of the surface: the handler of the host sees the colours as before the alignment.
void CAlignInteractiveDlg::PostNcDestroy() {
    CKV_ScenePaneCtrl& control = *m_pControl;
    const ScopeExit closed([this] { OnInteractionClosed(); });  // also when the handler throws
    AbandonMouseDrag();
    m_savedColors.Restore();
    control.Fire(&KV_ScenePane::_DKV_ScenePaneEvents::AlignmentDone);
    control.RefreshControl();
}

void CAlignInteractiveDlg::Drag(std::int32_t kind, std::int32_t x, std::int32_t y) {
    if (!HasWindow()) return;  // the handler of AlignmentDone may run an event loop
    if (m_nDragState != kNoDrag) {
        Step(kind, x, y);
        return;
    }
    m_bAwaitsDrag = false;
    m_nDragState = kind;
    m_nLastX = x;
    m_nLastY = y;
}

void CAlignInteractiveDlg::EndDrag(std::int32_t kind, std::int32_t x, std::int32_t y) {
    m_bAwaitsDrag = true;
    if (m_nDragState != kind) return;
    m_nDragState = kNoDrag;
    if (HasWindow() && HasReleasePixel(*m_pControl)) Step(kind, x, y);
}

void CAlignInteractiveDlg::Step(std::int32_t kind, std::int32_t x, std::int32_t y) {
    if (x == m_nLastX && y == m_nLastY) return;
    const auto delta = kind == kRotateDrag ? RotationTo(x, y) : TranslationTo(x, y);
    m_nLastX = x;
    m_nLastY = y;
    if (!delta || !IsFinite(*delta)) return;
    m_Delta = *delta;
    for (const auto& mesh : m_pControl->MovingObjects()) MoveObject(*mesh, m_Delta);
    if (kind == kMoveDrag)
        for (std::size_t i = 0; i < 3; ++i) m_fPivot[i] += static_cast<float>(m_Delta.m_dTranslation[i]);
    m_pControl->RefreshControl();
}

std::optional<CACADQTrafo> CAlignInteractiveDlg::RotationTo(std::int32_t x, std::int32_t y) const {
    const WindowSize size = m_pControl->m_pWindow->ClientSize();
    const Travel travel{PixelDifference(x, m_nLastX), PixelDifference(y, m_nLastY), static_cast<float>(size.width),
                        static_cast<float>(size.height)};
    const auto [axis, angle] = RotationOf(*m_pControl, travel);
    if (axis == Float3{} || angle == 0) return {};
    return RotationAbout(ToDouble3(axis), angle, ToDouble3(m_fPivot));
}

// From the last pixel under the present camera, not from the last point: the view may have moved since.
std::optional<CACADQTrafo> CAlignInteractiveDlg::TranslationTo(std::int32_t x, std::int32_t y) const {
    const auto from = PointAt(*m_pControl, m_nLastX, m_nLastY), to = PointAt(*m_pControl, x, y);
    if (!from || !to) return {};
    return TranslationBy(ToDouble3(*to - *from));
}
