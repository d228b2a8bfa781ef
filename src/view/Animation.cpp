// The turntable: rotates the view by the clock in each frame that is drawn. It requests only its first frame; the host
// or an input requests the others. The maths is view/Turntable.h.
#include "control/ScenePaneCtrl.h"
#include "view/Turntable.h"

void CKV_ScenePaneCtrl::StartAnimation(float revolutionsPerSecond) {
    m_fAnimationSpeed = revolutionsPerSecond;
    if (m_bAnimationRunning != 0) return;  // a running one keeps its start: its time is that of one revolution
    m_nAnimationStart = m_nAnimationLast = m_pfnCounter();
    m_bAnimationRunning = 1;
    InvalidateControl(true);
}

// Without a repaint: the picture is that of the last step already.
void CKV_ScenePaneCtrl::StopAnimation() { m_bAnimationRunning = 0; }

void CKV_ScenePaneCtrl::ToggleAnimationOnSpacebar(std::int32_t enabled) {
    m_bToggleAnimationOnSpacebar = static_cast<std::uint8_t>(enabled);  // only the low byte counts
}

CKV_ScenePaneCtrl::VARIANT_BOOL CKV_ScenePaneCtrl::IsAnimationRunning() {
    return m_bAnimationRunning != 0 ? KV_ScenePane::kVariantTrue : KV_ScenePane::kVariantFalse;
}

void CKV_ScenePaneCtrl::SetAnimationSpeed(float revolutionsPerSecond) { m_fAnimationSpeed = revolutionsPerSecond; }

// Called before the frame is drawn, so that the frame shows the step; it must not request a repaint itself.
void CKV_ScenePaneCtrl::AnimationStep() {
    const std::int64_t now = m_pfnCounter();
    const TurntableClock clock{m_nAnimationStart, m_nAnimationLast, now, PerformanceFrequency()};
    const TurntableStep step = StepTurntable(clock, m_fAnimationSpeed);
    if (step.ended) {
        m_bAnimationRunning = 0;
        return;
    }
    m_nAnimationLast = now;  // the next step counts from here, whatever the speed was until now
    SetLiveFrame(RotateFrameAboutAxis(LiveFrame(), m_fAnimationAxis, step.revolutions));
    SetupViewMatrices();
}
