// The steady clock of the standard library, in nanoseconds.
#include "base/PerformanceCounter.h"

#include <chrono>

std::int64_t PerformanceCounter() {
    return std::chrono::duration_cast<std::chrono::nanoseconds>(std::chrono::steady_clock::now().time_since_epoch())
        .count();
}

std::int64_t PerformanceFrequency() { return std::nano::den; }
