// The drag that rotates the view, by the rotation mode of the host. The maths is view/Rotation.h.
#include "view/Rotation.h"

#include "control/ScenePaneCtrl.h"

void CKV_ScenePaneCtrl::SetRotationMode(std::int16_t mode) { m_nRotationMode = mode; }

// One step of a drag; a new rotation mode counts from the next step on.
void CKV_ScenePaneCtrl::RotateView(std::int32_t dx, std::int32_t dy) {
    SetLiveFrame(ComputeRotatedFrame(LiveFrame(), dx, dy));
    SetupViewMatrices();
    if (m_bTracingMode != 0) FireViewDirectionChanged();
    RefreshControl();
}

// Of any frame, not of the live one only: a drag of the clip plane rotates m_savedView by the same rule.
ViewFrame CKV_ScenePaneCtrl::ComputeRotatedFrame(const ViewFrame& frame, std::int32_t dx, std::int32_t dy) const {
    const RotationRule rule{m_nRotationMode, m_bRollRotation != 0, m_nRollQuadrant, m_nWidth,
                            m_nHeight,       m_fRotationCenter};
    return RotateFrame(frame, rule, dx, dy);
}
