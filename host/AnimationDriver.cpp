// The timer refreshes the viewer while its animation runs and is stopped otherwise, so that an idle window costs
// nothing.
#include "AnimationDriver.h"

namespace {
constexpr int kFramePeriodMs = 16;  // about 60 frames per second
}

AnimationDriver::AnimationDriver(QObject* parent) : QObject(parent) {
    m_timer.setInterval(kFramePeriodMs);
    // A coarse timer may be 5 % late, which is visible as uneven motion.
    m_timer.setTimerType(Qt::PreciseTimer);
    connect(&m_timer, &QTimer::timeout, this, &AnimationDriver::DrawFrame);
}

void AnimationDriver::SetViewer(KV_ScenePane::_DKV_ScenePane* methods) {
    m_pMethods = methods;
    Check();
}

void AnimationDriver::Check() {
    const bool running = m_pMethods != nullptr && m_pMethods->IsAnimationRunning() != KV_ScenePane::kVariantFalse;
    if (running == m_timer.isActive()) return;
    if (running)
        m_timer.start();
    else
        m_timer.stop();
    emit RunningChanged(running);
}

void AnimationDriver::DrawFrame() {
    // The refresh that completes the revolution ends the animation; so does a press or a key between two frames.
    m_pMethods->PerformRefresh();
    Check();
}
