// Memory for large arrays in huge pages, so that the page faults do not take longer than the work on the array.
#pragma once
#include <cstddef>
#include <memory>
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

/// An array of @p count values in huge pages whose elements are not initialised.
template <typename T>
[[nodiscard]] std::unique_ptr<T[]> MakeArrayInHugePages(std::size_t count) {
    auto values = std::make_unique_for_overwrite<T[]>(count);
    AdviseHugePages(values.get(), count * sizeof(T));
    return values;
}
