// What the process holds, as the kernel counts it.
#pragma once
#include <fstream>
#include <string>

/// A value of /proc/self/status in MiB; VmHWM is the peak, VmRSS what is resident now. -1 when there is none.
inline double StatusMiB(const std::string& key) {
    std::ifstream status("/proc/self/status");
    std::string word;
    while (status >> word)
        if (word == key + ":") {
            double kib = 0;
            status >> kib;
            return kib / 1024;
        }
    return -1;
}

/// From here on the peak counts anew.
inline void ResetPeak() { std::ofstream("/proc/self/clear_refs") << 5; }
