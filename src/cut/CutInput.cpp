// The lasso under the mouse.
#include <algorithm>
#include <new>
#include <stdexcept>
#include <utility>

#include "control/ScenePaneCtrl.h"
#include "view/WindowFraction.h"

namespace {

constexpr LassoTint kLineTint{0xFFFF00, 1.0f};  // cyan

/// A fraction of @p size pixels as a pixel; anything outside becomes the nearest one.
std::int32_t PixelAt(float fraction, std::int32_t size) {
    const float at = static_cast<float>(size) * fraction;
    if (!(at > 0.0f)) return 0;
    return at < static_cast<float>(size) ? static_cast<std::int32_t>(at) : size - 1;
}

/// @throws what CutSession() throws: the textures are gone then
void MakeCutSession(CKV_ScenePaneCtrl& control, float x, float y) {
    const WindowSize window = control.m_pWindow->ClientSize();
    const std::int32_t width = control.m_pCutMask->m_nWidth, height = control.m_pCutMask->m_nHeight;
    if (std::min({window.width, window.height, width, height}) < kMinLassoSide) return;
    // What is to be cut has the tint of the inside, also where that is outside the lasso.
    const bool isOutsideCut = control.m_nSegmentationKind == ACAD::CutKindOutside;
    const LassoTint& fill = isOutsideCut ? control.m_lassoOutside : control.m_lassoInside;
    const LassoTint& outside = isOutsideCut ? control.m_lassoInside : control.m_lassoOutside;
    control.m_pCutSession = std::make_unique<CutSession>(std::exchange(control.m_pCutMask, nullptr),
                                                         LassoPixel{PixelAt(x, width), PixelAt(y, height)}, kLineTint,
                                                         fill, outside, control.m_progUseMask);
}

/// Without memory for a point its lasso goes on without it, and the user can end the session. Last in its caller: the
/// host may do anything in the message.
template <typename Add>
bool AddOrShowWhy(PaneWindow& window, Add add) {
    try {
        add();
        return true;
    } catch (const std::bad_alloc&) {
    }
    window.ShowModalMessage("Not enough memory for a further point of the lasso");
    return false;
}

}  // namespace

// Fractions, so that the points survive a change of the window's size.
bool CKV_ScenePaneCtrl::AddLassoPoint(std::int32_t x, std::int32_t y) {
    if (m_nWidth < 0 && MakeContextCurrent()) StoreWindowSize();  // no frame since the context was made
    return AddOrShowWhy(*m_pWindow, [&] {
        const auto [relativeX, relativeY] = WindowFraction<double>(x, y, m_nWidth, m_nHeight);
        m_vLassoPoints.push_back({relativeX, relativeY});
        m_lassoCursor = m_vLassoPoints.back();
        InvalidateControl(true);
    });
}

void CKV_ScenePaneCtrl::StartCutSession(float x, float y) {
    MakeContextCurrent();  // textures that go are deleted in it
    std::string failure;
    try {
        // A turntable that ran on has turned the view until this click.
        if (m_pCutMask != nullptr && m_pCutMask->m_dModelView != m_viewMatrices.ModelView())
            m_pCutMask = CreateCutMaskTextures();
        if (m_pCutMask != nullptr) MakeCutSession(*this, x, y);
    } catch (const std::invalid_argument& error) {
        failure = error.what();
    } catch (const std::bad_alloc&) {
        failure = "Not enough memory for a lasso in a window of this size";
    }
    // Last: the host may do anything in it.
    if (!failure.empty()) m_pWindow->ShowModalMessage(failure);
}

bool CKV_ScenePaneCtrl::AddCutSessionPoint(float x, float y) {
    if (m_pCutSession == nullptr) return true;
    return AddOrShowWhy(*m_pWindow, [&] { m_pCutSession->AddPoint(x, y); });
}

void CKV_ScenePaneCtrl::PreviewCutSessionPoint(float x, float y) {
    if (m_pCutSession != nullptr) m_pCutSession->SetPreviewPoint(x, y);
}
