#include "host/RefusedMemory.h"

#ifndef __SANITIZE_ADDRESS__
#include <cstdlib>
#include <new>

std::size_t g_refusedBytes = SIZE_MAX;

void* operator new(std::size_t size) {
    void* const memory = size >= g_refusedBytes ? nullptr : std::malloc(size);
    if (memory == nullptr) throw std::bad_alloc();
    return memory;
}
void operator delete(void* memory) noexcept { std::free(memory); }
void operator delete(void* memory, std::size_t) noexcept { std::free(memory); }
#endif
