// The clock of the animation.
#pragma once
#include <cstdint>

/// Ticks of a clock that never jumps.
[[nodiscard]] std::int64_t PerformanceCounter();
/// Ticks a second.
[[nodiscard]] std::int64_t PerformanceFrequency();
