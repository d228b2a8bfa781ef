// The methods that start and cancel a cut.
#include <algorithm>
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
            control.m_pCutSession->AddPoint(x, y);  // without memory for it nothing is cut
    }
}

bool HasSession(const CKV_ScenePaneCtrl& control) {
    return control.m_nInteractionMode == ModeLasso || control.m_nInteractionMode == ModeMaskLasso;
}

/// @return false when the window has more pixels in a row or column than a texture
bool BeginSession(CKV_ScenePaneCtrl& control, const SessionKind& session) {
    // The lasso receives the release of a button that is held.
    if (control.m_pInteractionDlg != nullptr) control.m_pInteractionDlg->AbandonMouseDrag();
    control.m_nInteractionMode = session.interaction;
    control.m_nSegmentationKind = static_cast<std::int32_t>(session.kind);
    control.m_bSessionEnds = false;
    if (!control.MakeContextCurrent()) return true;
    // Points are fractions of a size, which no frame has stored yet while the host blocks painting.
    if (control.m_nWidth < 0) control.StoreWindowSize();
    if (session.interaction != ModeMaskLasso) return true;
    control.m_pCutMask.reset();  // of a session without a click
    control.m_pCutMask = control.CreateCutMaskTextures();
    return control.m_pCutMask != nullptr || std::min(control.m_nWidth, control.m_nHeight) < 1;
}

/// A session that could not be started, as after its end. Without an event: the host receives the exception.
void DropSession(CKV_ScenePaneCtrl& control) {
    control.m_nInteractionMode = RestingMode(control);
    control.ShowLassoCursor(HasLassoCursorAtRest(control));
    control.m_bToggleAnimationOnSpacebar = 1;
    control.MakeContextCurrent();  // in which the textures are deleted
    control.m_pCutSession.reset();
    control.m_pCutMask.reset();
}

}  // namespace

void CKV_ScenePaneCtrl::ShowLassoCursor(bool show) {
    m_bLassoCursor = show ? 1 : 0;
    m_pWindow->SetCursor(show ? PaneCursor::Lasso : PaneCursor::Default);
}

// A mode outside the list starts no session, and has the other effects all the same.
void CKV_ScenePaneCtrl::StartSegmentation(std::int16_t mode) {
    const bool starts = IsSegmentationMode(mode);
    m_bToggleAnimationOnSpacebar = 0;
    try {
        const bool fits = !starts || BeginSession(*this, kSessionKinds[mode]);
        ShowLassoCursor(true);
        m_vLassoPoints.clear();
        RefreshControl();
        if (!fits) m_pWindow->ShowModalMessage("The window is too large for a freehand lasso");
    } catch (...) {
        if (starts) DropSession(*this);
        throw;
    }
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
