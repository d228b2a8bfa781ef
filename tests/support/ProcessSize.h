// What the process of a test holds.
#pragma once
#include <malloc.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>

inline int OpenDescriptors() {
    int count = 0;
    for ([[maybe_unused]] const auto& entry : std::filesystem::directory_iterator("/proc/self/fd")) ++count;
    return count;
}

inline long ResidentKilobytes() {
    malloc_trim(0);
    long pages = 0, resident = 0;
    std::ifstream("/proc/self/statm") >> pages >> resident;
    return resident * (sysconf(_SC_PAGESIZE) / 1024);
}

inline long ResidentMegabytes() { return ResidentKilobytes() / 1024; }

/// What the address sanitizer keeps of freed memory. Growth within it says nothing there; its leak check does.
#if defined(__SANITIZE_ADDRESS__)
inline constexpr long kQuarantineMegabytes = 256;
#else
inline constexpr long kQuarantineMegabytes = 0;
#endif
