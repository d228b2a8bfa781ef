// The freehand lasso under the mouse.
#include <algorithm>
#include <new>
#include <stdexcept>
#include <utility>

#include "control/ScenePaneCtrl.h"

namespace {

constexpr LassoTint kLineTint{0xFFFF00, 1.0f};  // cyan

/// A fraction of @p size pixels as a pixel; anything outside becomes the nearest one.
std::int32_t PixelAt(float fraction, std::int32_t size) {
    const float at = static_cast<float>(size) * fraction;
    if (!(at > 0.0f)) return 0;
    return at < static_cast<float>(size) ? static_cast<std::int32_t>(at) : size - 1;
}

}  // namespace

void CKV_ScenePaneCtrl::StartCutSession(float x, float y) {
    if (m_pCutMask == nullptr) return;
    const WindowSize window = m_pWindow->ClientSize();
    const std::int32_t width = m_pCutMask->m_nWidth, height = m_pCutMask->m_nHeight;
    if (std::min({window.width, window.height, width, height}) < kMinLassoSide) return;
    // What is to be cut has the tint of the inside, also where that is outside the lasso.
    const bool isOutsideCut = m_nSegmentationKind == ACAD::CutKindOutside;
    const LassoTint& fill = isOutsideCut ? m_lassoOutside : m_lassoInside;
    const LassoTint& outside = isOutsideCut ? m_lassoInside : m_lassoOutside;
    MakeContextCurrent();  // a session that cannot be made deletes the textures
    std::string failure;
    try {
        m_pCutSession = std::make_unique<CutSession>(std::exchange(m_pCutMask, nullptr),
                                                     LassoPixel{PixelAt(x, width), PixelAt(y, height)}, kLineTint, fill,
                                                     outside, m_progUseMask);
    } catch (const std::invalid_argument& error) {
        failure = error.what();
    } catch (const std::bad_alloc&) {
        failure = "Not enough memory for a lasso in a window of this size";
    }
    // Last: the host may do anything in it.
    if (!failure.empty()) m_pWindow->ShowModalMessage(failure);
}

void CKV_ScenePaneCtrl::AddCutSessionPoint(float x, float y) {
    if (m_pCutSession != nullptr) m_pCutSession->AddPoint(x, y);
}

void CKV_ScenePaneCtrl::PreviewCutSessionPoint(float x, float y) {
    if (m_pCutSession != nullptr) m_pCutSession->SetPreviewPoint(x, y);
}
