// The three exported functions of the library.
#include "KV_Components/Registry.h"

#include <atomic>
#include <new>

#include "ObjectRegistry.h"

namespace {
std::atomic<int> g_starts{0};
}

void KV_Components_Ordinal1() { ++g_starts; }

KvComponents::Object* KV_Components_Ordinal2(const char* guid) {
    if (guid == nullptr || g_starts <= 0) return nullptr;
    try {
        return KvComponents::MakeObject(guid);
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
}

void KV_Components_Ordinal3() {
    // A stop without a start is ignored: the count never becomes negative.
    int starts = g_starts;
    while (starts > 0 && !g_starts.compare_exchange_weak(starts, starts - 1)) {
    }
}
