// Needles by mouse and keys: creation, selection, the drag of a head, deletion. Which inputs these are is in
// view/MousePress.cpp, view/MouseMove.cpp and view/Keys.cpp.
#include <algorithm>
#include <cmath>
#include <optional>

#include "control/ScenePaneCtrl.h"
#include "markers/ReadDepth.h"

using Events = KV_ScenePane::_DKV_ScenePaneEvents;

namespace {

constexpr float kBackgroundDepth = 0.99f;  // no surface is shown from this window depth on

/// Whether the last frame has the size that the view is computed for. SetSize() changes the view at once.
bool IsFrameOfThisSize(const CKV_ScenePaneCtrl& control) {
    const FrameTarget& frame = control.m_frameTarget;
    return frame.Width() == control.m_nWidth && frame.Height() == control.m_nHeight;
}

/// Window depth of the surface that the last frame shows at a pixel; nothing on the background. Without a frame of the
/// present size one is drawn; where none can be drawn there is no depth either.
std::optional<float> ShownDepthAt(CKV_ScenePaneCtrl& control, std::int32_t x, std::int32_t y) {
    if (control.m_nWidth < 1 || control.m_nHeight < 1) return std::nullopt;  // no frame has this size
    if (!IsFrameOfThisSize(control)) control.RefreshControl();
    if (!IsFrameOfThisSize(control) || !control.MakeContextCurrent()) return std::nullopt;
    return ReadDepthAt(x, y, control.m_nWidth, control.m_nHeight, kBackgroundDepth);
}

/// The point of the world at a pixel and a window depth; nothing where the view has no inverse.
std::optional<Float3> PointAt(CKV_ScenePaneCtrl& control, std::int32_t x, std::int32_t y, float depth) {
    Float3 point{};
    if (control.UnprojectPoint(x, y, depth, &point[0], &point[1], &point[2]) == 0) return std::nullopt;
    return point;
}

}  // namespace

// The new needle is selected after the host has its id.
void CKV_ScenePaneCtrl::CreateNeedleAt(std::int32_t x, std::int32_t y) {
    const auto depth = ShownDepthAt(*this, x, y);
    if (!depth) return;
    if (IsNeedleListFull()) {
        Fire(&Events::NeedleCreated, -1);
        return;
    }
    const auto pin = PointAt(*this, x, y, *depth);
    if (!pin) return;
    // The needle points to the viewer. Without a vertex that faces the viewer the direction is (depth, depth, depth),
    // which has no geometric sense; it is kept because hosts rely on the result.
    const Float3 direction = FindViewAxisHit(m_fAxisZ) ? m_fAxisZ : Float3{*depth, *depth, *depth};
    const std::int32_t id = NextNeedleId(m_vNeedles);
    m_vNeedles.push_back(MakeNeedle(id, *pin, *pin + m_needleRender.needleLength * direction, m_needleRender));
    DeselectNeedlesBut(id);
    if (FindNeedle(m_vNeedles, id) != nullptr) Fire(&Events::NeedleCreated, id);
    SelectOnlyNeedle(id);
    RefreshControl();
}

// The point is on what the last frame shows: the head itself where it was drawn, otherwise the surface behind it.
void CKV_ScenePaneCtrl::SelectNeedleAt(std::int32_t x, std::int32_t y) {
    const auto depth = ShownDepthAt(*this, x, y);
    const auto point = depth ? PointAt(*this, x, y, *depth) : std::nullopt;
    const auto isHit = [&](const Needle& needle) { return point && IsOnHead(needle, *point); };
    const auto needle = std::ranges::find_if(m_vNeedles, isHit);
    if (needle == m_vNeedles.end())
        DeselectAllNeedles();
    else
        SelectOnlyNeedle(needle->id);
}

// The head keeps its distance to the viewer. One that is nowhere in the window stays where it is.
bool CKV_ScenePaneCtrl::DragSelectedNeedle(std::int32_t x, std::int32_t y) {
    const auto needle = std::ranges::find_if(m_vNeedles, &Needle::selected);
    if (needle == m_vNeedles.end()) return false;
    const Float3& head = needle->head;
    std::int32_t windowX = 0, windowY = 0;
    float depth = 0.0f;
    if (!ProjectPointWithDepth(head[0], head[1], head[2], &windowX, &windowY, &depth) || !std::isfinite(depth))
        return true;
    if (const auto moved = PointAt(*this, x, y, depth)) needle->head = *moved;
    return true;
}

void CKV_ScenePaneCtrl::DeleteSelectedNeedle() {
    const auto needle = std::ranges::find_if(m_vNeedles, &Needle::selected);
    if (needle == m_vNeedles.end()) return;
    const std::int32_t id = needle->id;
    needle->selected = false;
    Fire(&Events::NeedleDeselected, id);
    if (std::erase_if(m_vNeedles, [id](const Needle& other) { return other.id == id; }) != 0)
        Fire(&Events::NeedleDeleted, id);
}
