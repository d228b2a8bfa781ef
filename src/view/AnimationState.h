// The turntable animation of a control.
#pragma once
#include <cstdint>

#include "base/PerformanceCounter.h"
#include "geometry/Vector3.h"

/// Written by view/Animation.cpp.
///
/// Invariant: m_nAnimationStart and m_nAnimationLast are readings of m_pfnCounter, Start <= Last, and mean nothing
/// while no animation runs.
struct AnimationState {
    float m_fAnimationSpeed = 0.2f;                       ///< revolutions per second
    Float3 m_fAnimationAxis{0, 0, 1};                     ///< world frame
    std::int64_t m_nAnimationStart = 0;                   ///< counter reading
    std::int64_t m_nAnimationLast = 0;                    ///< counter reading of the last step
    std::int64_t (*m_pfnCounter)() = PerformanceCounter;  ///< tests replace it by a clock of their own
    std::uint8_t m_bAnimationRunning = 0, m_bToggleAnimationOnSpacebar = 0;
};
