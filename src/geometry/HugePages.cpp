// The hint for large pages.
#include "geometry/HugePages.h"

#if defined(__linux__)
#include <sys/mman.h>
#include <unistd.h>

#include <cstdint>
#endif

void AdviseHugePages(void* begin, std::size_t byteCount) {
#if defined(__linux__)
    // Large pages have 2 MB: smaller blocks would hardly hold a whole one.
    constexpr std::size_t kWorthwhile = 4 << 20;
    if (byteCount < kWorthwhile) return;
    const auto pageSize = static_cast<std::uintptr_t>(sysconf(_SC_PAGESIZE));
    const auto address = reinterpret_cast<std::uintptr_t>(begin);
    const std::uintptr_t first = (address + pageSize - 1) / pageSize * pageSize;
    const std::uintptr_t end = (address + byteCount) / pageSize * pageSize;
    (void)madvise(reinterpret_cast<void*>(first), end - first, MADV_HUGEPAGE);  // a refusal costs time only
#else
    (void)begin, (void)byteCount;
#endif
}
