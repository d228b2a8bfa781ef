// A timer that refreshes for as long as the animation runs: there is no load without one.
#include "AnimationDriver.h"

namespace {
constexpr int kFramePeriodMs = 16;
}

AnimationDriver::AnimationDriver(QObject* parent) : QObject(parent) {
    m_timer.setInterval(kFramePeriodMs);
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
    // The last frame notices that the revolution is over; a press or a key ends it in between.
    m_pMethods->PerformRefresh();
    Check();
}
