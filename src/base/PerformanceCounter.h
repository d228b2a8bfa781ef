// A monotonic clock with a fixed frequency, for animations and for time spans.
#pragma once
#include <cstdint>

/// Ticks since an arbitrary start. Never runs backward, and does not follow changes of the system time.
[[nodiscard]] std::int64_t PerformanceCounter();
/// Ticks per second.
[[nodiscard]] std::int64_t PerformanceFrequency();
