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

inline long ResidentMegabytes() {
    malloc_trim(0);
    long pages = 0, resident = 0;
    std::ifstream("/proc/self/statm") >> pages >> resident;
    return resident * sysconf(_SC_PAGESIZE) / (1024 * 1024);
}
