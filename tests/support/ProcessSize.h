// File descriptors and memory of the process of a test.
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

/// Freed memory that the address sanitizer keeps. A growth below it is no evidence there; the leak check is, and finds
/// a single lost block: a few viewers are enough for it.
#if defined(__SANITIZE_ADDRESS__)
inline constexpr long kQuarantineMegabytes = 256;
inline constexpr int kManyViewers = 60;
#else
inline constexpr long kQuarantineMegabytes = 0;
inline constexpr int kManyViewers = 300;
#endif
