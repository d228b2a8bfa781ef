// The helpers for large arrays. Whether the system uses huge pages cannot be tested: it depends on its settings.
#include "base/HugePages.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <new>

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

TEST(MakeArrayInHugePages, ReturnsSmallAndEmptyArrays) {
    for (const std::size_t count : {0, 1, 100}) {
        const auto values = MakeArrayInHugePages<std::uint32_t>(count);
        ASSERT_NE(values, nullptr);
        for (std::size_t i = 0; i < count; ++i) values[i] = static_cast<std::uint32_t>(i);
    }
    EXPECT_THROW((void)MakeArrayInHugePages<std::uint32_t>(SIZE_MAX / 4), std::bad_alloc);
}

TEST(MakeZeroedArrayInHugePages, ReturnsZerosThatCanBeWritten) {
    for (const std::size_t count : {std::size_t{1}, std::size_t{5000}, kLarge}) {
        const auto values = MakeZeroedArrayInHugePages<std::uint8_t>(count);
        EXPECT_EQ(std::count(values.get(), values.get() + count, 0), static_cast<std::ptrdiff_t>(count));
        std::fill_n(values.get(), count, std::uint8_t{7});
        EXPECT_EQ(std::count(values.get(), values.get() + count, 7), static_cast<std::ptrdiff_t>(count));
    }
    EXPECT_THROW((void)MakeZeroedArrayInHugePages<std::uint32_t>(SIZE_MAX / 4), std::bad_alloc);
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
