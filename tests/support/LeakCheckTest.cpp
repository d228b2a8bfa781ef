// The sanitizer's leak check, as cmake/UnderAddressSanitizer.cpp configures it. It runs after the last test and fails
// the process, not a test here.
#include <dlfcn.h>
#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <cstdlib>
#include <cstring>

namespace {

constexpr std::uintptr_t kPage = 4096, kHeaderSize = 16;

std::uintptr_t PlaceInPage(const void* block) { return reinterpret_cast<std::uintptr_t>(block) % kPage; }

std::array<void*, 1024> g_blocks;  // not freed, so that none of them is allocated again

/// Makes the next block of up to 16 bytes start 16 bytes into a page: the sanitizer's allocator returns them in a row.
void FillPage() {
    for (void*& block : g_blocks) {
        block = std::malloc(kHeaderSize);
        if (PlaceInPage(block) == kPage - kHeaderSize) return;
    }
}

TEST(LeakCheck, AcceptsAThreadLocalBlockAfterTheStartOfAPage) {
    void* const library = dlopen(KV_LATE_LIBRARY, RTLD_NOW);
    ASSERT_NE(library, nullptr) << dlerror();
    const auto threadLocal = reinterpret_cast<char* (*)()>(dlsym(library, "LateThreadLocal"));
    ASSERT_NE(threadLocal, nullptr) << dlerror();
    FillPage();
    char* const data = threadLocal();
    ASSERT_EQ(PlaceInPage(data), kHeaderSize);
    void* const held = std::malloc(100);  // reachable from there: no leak
    std::memcpy(data, &held, sizeof held);
}

TEST(LeakCheck, FindsALeak) {
    const auto leak = [] {
        g_blocks.front() = std::malloc(100);
        g_blocks.front() = nullptr;
        std::exit(0);
    };
    EXPECT_EXIT(leak(), testing::ExitedWithCode(1), "detected memory leaks");
}

}  // namespace
