// Memory for large arrays in huge pages, so that the page faults do not take longer than the work on the array.
#pragma once
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <new>
#include <type_traits>
#include <vector>

#include "files/HugePages.h"

/// Advice to the system to back fresh memory with huge pages; to be given before anything is written to the memory.
using FileStorage::AdviseHugePages;

/// Reserves memory for @p count values in a vector, in huge pages. An empty vector profits most: what it holds already
/// is moved before the advice is given.
template <typename T>
void ReserveInHugePages(std::vector<T>& values, std::size_t count) {
    values.reserve(count);
    // The memory after the values is fresh: nothing was written there.
    AdviseHugePages(values.data() + values.size(), (values.capacity() - values.size()) * sizeof(T));
}

/// Zeroed memory that is returned to the system when it is freed.
struct UnmapMemory {
    void* begin = nullptr;
    std::size_t size = 0;
    void operator()(void*) const { ::munmap(begin, size); }
};
template <typename T>
using ZeroedPageArray = std::unique_ptr<T[], UnmapMemory>;

/// An array of @p count values whose bytes are zero, in huge pages, without a pass over it. For large arrays that any
/// thread may allocate.
template <typename T>
[[nodiscard]] ZeroedPageArray<T> MakeZeroedArrayInHugePages(std::size_t count) {
    constexpr std::size_t kPage = FileStorage::kHugePage;
    if (count > (SIZE_MAX - 2 * kPage) / sizeof(T)) throw std::bad_alloc();
    // More than needed, so that the array can begin at a huge page.
    const std::size_t size = count * sizeof(T) + (count * sizeof(T) < kPage ? 0 : kPage);
    void* const begin = ::mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (begin == MAP_FAILED) throw std::bad_alloc();
    const auto address = reinterpret_cast<std::uintptr_t>(begin);
    const std::uintptr_t first = size < kPage ? address : (address + kPage - 1) / kPage * kPage;
    auto* const values = static_cast<std::byte*>(begin) + (first - address);
    AdviseHugePages(values, count * sizeof(T));
    return {reinterpret_cast<T*>(values), UnmapMemory{begin, size}};
}

struct FreeMemory {
    void operator()(void* memory) const { std::free(memory); }
};
/// Values that need no destructor.
template <typename T>
using HugePageArray = std::unique_ptr<T[], FreeMemory>;

/// An array of @p count values in huge pages whose elements are not initialised. Allocate those of helper threads in
/// the thread that starts them: the memory of other threads grows in small steps, which stop all threads each time.
template <typename T>
[[nodiscard]] HugePageArray<T> MakeArrayInHugePages(std::size_t count) {
    static_assert(std::is_trivially_destructible_v<T> && alignof(T) <= alignof(std::max_align_t));
    constexpr std::size_t kPage = FileStorage::kHugePage;
    if (count > (SIZE_MAX - kPage) / sizeof(T)) throw std::bad_alloc();
    const std::size_t size = count * sizeof(T);
    // Whole huge pages: a page that is shared with another allocation would stay a small one.
    void* const memory = size < kPage ? std::malloc(std::max<std::size_t>(size, 1))
                                      : std::aligned_alloc(kPage, (size + kPage - 1) / kPage * kPage);
    if (memory == nullptr) throw std::bad_alloc();
    if (size >= kPage) AdviseHugePages(memory, (size + kPage - 1) / kPage * kPage);
    return HugePageArray<T>(static_cast<T*>(memory));
}
