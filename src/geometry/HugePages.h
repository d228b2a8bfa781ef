// Large arrays that are filled once: a page fault for every 4 KB costs more than what is written into them.
#pragma once
#include <cstddef>
#include <vector>

/// Asks the system to back a block of memory with large pages; contents stay. A hint: where the system has none, or the
/// block is small, nothing happens.
void AdviseHugePages(void* begin, std::size_t byteCount);

/// Empties the vector and makes room for exactly @p count elements, in large pages where that pays.
template <typename T>
void ReserveExactly(std::vector<T>& vector, std::size_t count) {
    if (vector.capacity() != count) vector = {};
    vector.clear();
    vector.reserve(count);
    AdviseHugePages(vector.data(), count * sizeof(T));
}
