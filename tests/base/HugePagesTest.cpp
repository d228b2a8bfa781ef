// The helpers for large arrays. Whether the system uses huge pages cannot be tested: it depends on its settings.
#include "base/HugePages.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>

namespace {

constexpr std::size_t kLarge = 3 * FileStorage::kHugePage;  // bytes: contains whole huge pages wherever it begins

TEST(ReserveInHugePages, ReservesTheMemoryAndKeepsTheValues) {
    std::vector<std::uint8_t> values = {1, 2, 3};
    ReserveInHugePages(values, kLarge);
    EXPECT_GE(values.capacity(), kLarge);
    EXPECT_EQ(values, (std::vector<std::uint8_t>{1, 2, 3}));
    values.resize(kLarge, 7);
    EXPECT_EQ(values[2], 3);
    EXPECT_EQ(std::count(values.begin(), values.end(), 7), static_cast<std::ptrdiff_t>(kLarge - 3));
}

TEST(MakeArrayInHugePages, ReturnsMemoryThatKeepsWhatIsWritten) {
    constexpr std::size_t kCount = kLarge / sizeof(std::uint32_t);
    const auto values = MakeArrayInHugePages<std::uint32_t>(kCount);
    for (std::size_t i = 0; i < kCount; ++i) values[i] = static_cast<std::uint32_t>(i);
    for (std::size_t i = 0; i < kCount; ++i) ASSERT_EQ(values[i], i);
}

// Pages of which other allocations have a part must not be advised.
TEST(AdviseHugePages, KeepsTheContentOfTheMemoryAroundIt) {
    std::vector<std::uint8_t> memory(kLarge, 9);
    AdviseHugePages(memory.data() + 100, kLarge - 200);
    EXPECT_EQ(std::count(memory.begin(), memory.end(), 9), static_cast<std::ptrdiff_t>(kLarge));
}

TEST(AdviseHugePages, AcceptsMemoryWithoutAWholeHugePage) {
    std::uint8_t byte = 4;
    AdviseHugePages(&byte, 1);
    AdviseHugePages(nullptr, 0);
    EXPECT_EQ(byte, 4);
}

}  // namespace
