// The methods of the clip plane. Its drags are in PlaneInput.cpp, its placement at the data in ClipPlacement.cpp.
#include "control/ScenePaneCtrl.h"

// The flags come first: after an exception of the placement the plane clips where it was.
void CKV_ScenePaneCtrl::SetClipPlaneEnabled(std::int32_t displayClipPlane) {
    m_bClipPlaneVisible = static_cast<std::uint8_t>(displayClipPlane);
    m_bClipPlaneActive = 1;
    if (m_bClipPlaneVisible != 0) PlaceClipPlaneAtData();
    InvalidateControl(true);
}

void CKV_ScenePaneCtrl::SetClipPlaneDisabled() {
    m_bClipPlaneVisible = 0;
    m_bClipPlaneActive = 0;
    InvalidateControl(true);
}

void CKV_ScenePaneCtrl::SetClipPlane(float centerX, float centerY, float centerZ, float normalX, float normalY,
                                     float normalZ) {
    m_clipPlane.SetNormal({normalX, normalY, normalZ});
    m_clipPlane.SetCenter({centerX, centerY, centerZ});
    RefreshControl();
}

void CKV_ScenePaneCtrl::SetClipPlaneColor(std::int32_t color, std::int32_t handleColor, std::int32_t outlineColor) {
    m_clipPlane.m_nColor = m_clipPlane.m_nHotColor = static_cast<std::uint32_t>(color);
    m_clipPlane.m_nHandleColor = static_cast<std::uint32_t>(handleColor);
    m_clipPlane.m_nOutlineColor = m_clipPlane.m_nHotOutlineColor = static_cast<std::uint32_t>(outlineColor);
    RefreshControl();
}

void CKV_ScenePaneCtrl::GetClipPlane(float* centerX, float* centerY, float* centerZ, float* normalX, float* normalY,
                                     float* normalZ) {
    const Double3 center = m_clipPlane.GetCenter(), normal = m_clipPlane.GetNormal();
    *centerX = static_cast<float>(center[0]);
    *centerY = static_cast<float>(center[1]);
    *centerZ = static_cast<float>(center[2]);
    *normalX = static_cast<float>(normal[0]);
    *normalY = static_cast<float>(normal[1]);
    *normalZ = static_cast<float>(normal[2]);
}

// Within its own surface: height and tilt stay.
void CKV_ScenePaneCtrl::DisplayClipPlanePartCloseToData() {
    m_clipPlane.SetCenter(m_clipPlane.ProjectOntoPlane(ToDouble3(GetSceneBoundingBox().Center())));
    InvalidateControl(true);
}
