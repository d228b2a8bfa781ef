// Large arrays in large pages: new memory costs a page fault per page, and at 4 KiB these take longer than the work on
// the array (measured in bench/PcmBench.cpp).
#pragma once
#include <sys/mman.h>

#include <cstddef>
#include <cstdint>
#include <vector>

/// To be called for fresh memory, before anything is written there. Advice only: what the system does not offer is
/// left.
inline void AdviseHugePages(void* memory, std::size_t size) {
    constexpr std::uintptr_t kHugePage = 2 * 1024 * 1024;
    const auto begin = reinterpret_cast<std::uintptr_t>(memory);
    const std::uintptr_t first = (begin + kHugePage - 1) / kHugePage * kHugePage;
    const std::uintptr_t last = (begin + size) / kHugePage * kHugePage;
    // Pages of which a part belongs to somebody else stay as they are.
    if (first < last) (void)::madvise(static_cast<std::byte*>(memory) + (first - begin), last - first, MADV_HUGEPAGE);
}

/// Room for so many values in an empty vector.
template <typename T>
void ReserveInHugePages(std::vector<T>& values, std::size_t count) {
    values.reserve(count);
    AdviseHugePages(values.data(), count * sizeof(T));
}
