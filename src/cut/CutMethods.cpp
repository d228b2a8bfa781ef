// The methods that start and cancel a cut.
#include <iterator>
#include <utility>
#include <vector>

#include "control/ScenePaneCtrl.h"

namespace {

struct SessionKind {
    InteractionMode interaction;
    ACAD::CutKind kind;
};

/// By SegmentationMode.
constexpr SessionKind kSessionKinds[] = {
    {ModeLasso, ACAD::CutKindOutside},       {ModeLasso, ACAD::CutKindInside},
    {ModeLasso, ACAD::CutKindVisibleInside}, {ModeMaskLasso, ACAD::CutKindOutside},
    {ModeMaskLasso, ACAD::CutKindInside},    {ModeMaskLasso, ACAD::CutKindVisibleInside}};

bool IsSegmentationMode(std::int32_t mode) { return mode >= 0 && mode < static_cast<int>(std::size(kSessionKinds)); }

/// As an operator does by clicks. A message about colours that a session refuses runs code of the host.
void DrawFreehandLasso(CKV_ScenePaneCtrl& control, std::span<const KV_ScenePane::LassoPoint> points) {
    for (const KV_ScenePane::LassoPoint& point : points) {
        const auto x = static_cast<float>(point.x), y = static_cast<float>(point.y);
        if (control.m_pCutSession == nullptr)
            control.StartCutSession(x, y);
        else
            control.AddCutSessionPoint(x, y);
    }
}

bool HasSession(const CKV_ScenePaneCtrl& control) {
    return control.m_nInteractionMode == ModeLasso || control.m_nInteractionMode == ModeMaskLasso;
}

}  // namespace

void CKV_ScenePaneCtrl::ShowLassoCursor(bool show) {
    m_bLassoCursor = show ? 1 : 0;
    m_pWindow->SetCursor(show ? PaneCursor::Lasso : PaneCursor::Default);
}

// A mode outside the list starts no session, and has the other effects all the same.
void CKV_ScenePaneCtrl::StartSegmentation(std::int16_t mode) {
    m_bToggleAnimationOnSpacebar = 0;
    if (IsSegmentationMode(mode)) {
        const SessionKind& session = kSessionKinds[mode];
        m_nInteractionMode = session.interaction;
        m_nSegmentationKind = static_cast<std::int32_t>(session.kind);
        m_bSessionEnds = false;
        if (session.interaction == ModeMaskLasso) {
            MakeContextCurrent();  // textures of a session without a click are deleted
            m_pCutMask.reset();
            m_pCutMask = CreateCutMaskTextures();
        }
    }
    ShowLassoCursor(true);
    m_vLassoPoints.clear();
    RefreshControl();
}

void CKV_ScenePaneCtrl::EndSegmentation() {
    if (HasSession(*this)) FinishSegmentation(true);
}

// The next session packs them.
void CKV_ScenePaneCtrl::SetLassoCuttingColors(std::int32_t inside, float insideOpacity, std::int32_t outside,
                                              float outsideOpacity) {
    m_lassoInside = {static_cast<std::uint32_t>(inside), insideOpacity};
    m_lassoOutside = {static_cast<std::uint32_t>(outside), outsideOpacity};
}

// By the steps of the mouse handlers. Handlers of the host run in the cancellation and in the frame of the start.
bool CKV_ScenePaneCtrl::CutWithLasso(KV_ScenePane::SegmentationMode mode,
                                     std::span<const KV_ScenePane::LassoPoint> points) {
    if (!IsSegmentationMode(mode) || !MakeContextCurrent()) return false;
    std::vector<LassoPoint> corners(points.begin(), points.end());
    EndSegmentation();
    StartSegmentation(mode);
    if (m_bClosed || !HasSession(*this) || !MakeContextCurrent()) return false;
    // While the host blocks painting no frame was drawn: the window may show another size and other objects.
    StoreWindowSize();
    if (m_bBlockPaint != 0) m_bObjectDepths = false;
    if (m_nInteractionMode == ModeLasso) {
        m_vLassoPoints = std::move(corners);
    } else {
        try {
            DrawFreehandLasso(*this, corners);
        } catch (...) {
            EndSegmentation();
            throw;
        }
    }
    return HasSession(*this) && FinishSegmentation(false);
}
