// Resident memory of the process, as the kernel counts it.
#pragma once
#include <fstream>
#include <string>

/// @param key  entry of /proc/self/status: "VmHWM" is the peak, "VmRSS" the present size
/// @return MiB; -1 when there is no such entry
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

/// Resets the peak to the present size.
inline void ResetPeak() { std::ofstream("/proc/self/clear_refs") << 5; }
