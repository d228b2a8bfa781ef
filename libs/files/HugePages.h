// Huge pages for large arrays: fresh memory costs one page fault per page, and with pages of 4 KiB the faults take
// longer than the work on the array (measured in bench/PcmBench.cpp).
#pragma once
#include <sys/mman.h>

#include <cstddef>
#include <cstdint>

namespace FileStorage {

inline constexpr std::size_t kHugePage = 2 * 1024 * 1024;  ///< bytes, on x86-64 and most arm64 systems

/// Asks the system to back fresh memory with huge pages. Call it before anything is written to the memory. This is
/// advice: a system without huge pages ignores it, and the content never changes.
inline void AdviseHugePages(void* memory, std::size_t size) {
    const auto begin = reinterpret_cast<std::uintptr_t>(memory);
    const std::uintptr_t first = (begin + kHugePage - 1) / kHugePage * kHugePage;
    const std::uintptr_t last = (begin + size) / kHugePage * kHugePage;
    // Only pages that lie in this memory as a whole: the rest of a partial page belongs to another allocation.
    if (first < last) (void)::madvise(static_cast<std::byte*>(memory) + (first - begin), last - first, MADV_HUGEPAGE);
}

}  // namespace FileStorage
