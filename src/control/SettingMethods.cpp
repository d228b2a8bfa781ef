// Properties, methods that store a setting, and the two plain repaint requests. Which of them repaint, and how, differs
// by method and is fixed for hosts; the public header lists it.
#include <GL/glew.h>

#include "control/ScenePaneCtrl.h"

namespace {

// Writing the present value is not a change: it neither repaints nor marks the control as modified.
template <typename Member, typename Value>
void WriteProperty(CKV_ScenePaneCtrl& control, Member& member, Value value) {
    if (member == static_cast<Member>(value)) return;
    member = static_cast<Member>(value);
    control.m_bModified = true;
    control.InvalidateControl(true);
}

KV_ScenePane::VARIANT_BOOL ToVariant(bool value) {
    return value ? KV_ScenePane::kVariantTrue : KV_ScenePane::kVariantFalse;
}

}  // namespace

CKV_ScenePaneCtrl::VARIANT_BOOL CKV_ScenePaneCtrl::GetDrawMosaic() { return ToVariant(m_bDrawMosaic != 0); }
void CKV_ScenePaneCtrl::SetDrawMosaic(VARIANT_BOOL value) { WriteProperty(*this, m_bDrawMosaic, value != 0); }
std::int16_t CKV_ScenePaneCtrl::GetDrawMode() { return m_nDrawMode; }
void CKV_ScenePaneCtrl::SetDrawMode(std::int16_t value) { WriteProperty(*this, m_nDrawMode, value); }
CKV_ScenePaneCtrl::VARIANT_BOOL CKV_ScenePaneCtrl::GetMoveReduced() { return ToVariant(m_bMoveReduced != 0); }
void CKV_ScenePaneCtrl::SetMoveReduced(VARIANT_BOOL value) { WriteProperty(*this, m_bMoveReduced, value != 0); }

std::int32_t CKV_ScenePaneCtrl::GetReadyState() {
    constexpr std::int32_t kUninitialised = 0, kComplete = 4;
    return HasWindow() ? kComplete : kUninitialised;
}

void CKV_ScenePaneCtrl::SetAllowEmptyObjects(VARIANT_BOOL allow) { m_bAllowEmptyObjects = allow != 0; }

void CKV_ScenePaneCtrl::BlockPaintEvents(VARIANT_BOOL block) {
    m_bBlockPaint = block != 0;
    if (m_bBlockPaint == 0) m_pWindow->RetryPaint();  // a request that stayed pending is painted now
}

void CKV_ScenePaneCtrl::SetReflection(float brightness, float shining) {
    if (MakeContextCurrent()) {
        const GLfloat specular[4] = {brightness, brightness, brightness, brightness};
        glMaterialfv(GL_FRONT, GL_SPECULAR, specular);
        // The shininess is 1 for shining 1 and 128 for shining 0. OpenGL accepts 0 to 128 and would ignore any other.
        const double fromOne = (1.0 - shining) * -127.0;
        if (fromOne > -128.0 && fromOne < 2.0) glMateriali(GL_FRONT, GL_SHININESS, 1 - static_cast<GLint>(fromOne));
    }
    RefreshControl();
}

void CKV_ScenePaneCtrl::SetBackgroundColors(std::int32_t TopColor, std::int32_t BottomColor) {
    MakeContextCurrent();
    m_nBackgroundColors[0] = m_nBackgroundColors[1] = static_cast<std::uint32_t>(TopColor);
    m_nBackgroundColors[2] = m_nBackgroundColors[3] = static_cast<std::uint32_t>(BottomColor);
    RefreshControl();
}

void CKV_ScenePaneCtrl::SetBackgroundColorsFourCorners(std::int32_t TopLeftColor, std::int32_t TopRightColor,
                                                       std::int32_t BottomLeftColor, std::int32_t BottomRightColor) {
    m_nBackgroundColors[0] = static_cast<std::uint32_t>(TopLeftColor);
    m_nBackgroundColors[1] = static_cast<std::uint32_t>(TopRightColor);
    m_nBackgroundColors[2] = static_cast<std::uint32_t>(BottomLeftColor);
    m_nBackgroundColors[3] = static_cast<std::uint32_t>(BottomRightColor);
    RefreshControl();
}

void CKV_ScenePaneCtrl::SetCrossColor(std::int32_t color) { m_nCrossColor = static_cast<std::uint32_t>(color); }

std::int32_t CKV_ScenePaneCtrl::GetCrossColor() { return static_cast<std::int32_t>(m_nCrossColor); }

void CKV_ScenePaneCtrl::SetArrowColor(std::int32_t color) {
    m_nArrowColor = static_cast<std::uint32_t>(color);
    RefreshControl();
}

void CKV_ScenePaneCtrl::ShowLightingArrow(std::int16_t show) {
    m_nShowArrow = show;
    RefreshControl();
}

void CKV_ScenePaneCtrl::ShowAxes(std::int16_t show) {
    m_nShowAxes = show;
    RefreshControl();
}

void CKV_ScenePaneCtrl::SetArrowAngle(std::int16_t angle) { m_nArrowAngle = angle; }

void CKV_ScenePaneCtrl::SetScanSkipVal(std::int16_t skipVal) { m_nScanSkipVal = skipVal; }

std::int16_t CKV_ScenePaneCtrl::GetScanSkipVal() { return static_cast<std::int16_t>(m_nScanSkipVal); }

void CKV_ScenePaneCtrl::SetConfidenceFilter(float confFilter) { m_fConfidenceFilter = confFilter; }

void CKV_ScenePaneCtrl::SetPickRadius(float r) { m_fPickRadius = r; }

void CKV_ScenePaneCtrl::SetPointCloudRenderPointSize(float size) { m_fPointCloudSize = size; }

void CKV_ScenePaneCtrl::PerformRefresh() { RefreshControl(); }

void CKV_ScenePaneCtrl::PerformInvalidate() { InvalidateControl(false); }

// Kept without effect, so that the ids of later methods do not change.
void CKV_ScenePaneCtrl::SetMeshFilename_Removed() {}
