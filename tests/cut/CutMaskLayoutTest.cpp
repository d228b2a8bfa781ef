// A host reads a mask by its address: the bytes at the documented offsets are its fields.
#include <gtest/gtest.h>

#include <cstring>
#include <type_traits>
#include <vector>

#include "KV_ScenePane/CutMask.h"

using ACAD::CutMask;

namespace {

static_assert(std::is_standard_layout_v<CutMask> && !std::is_polymorphic_v<CutMask>);
static_assert(alignof(CutMask) == 8 && sizeof(std::vector<float>) == 24);
static_assert(offsetof(ACAD::PackedBits, m_vWords) == 0 && offsetof(ACAD::PackedBits, m_uCount) == 24);

/// What a host reads at an offset from the address of a mask.
template <typename T>
T Read(std::int64_t address, std::size_t offset) {
    T value;
    std::memcpy(&value, reinterpret_cast<const std::byte*>(address) + offset, sizeof value);
    return value;
}

TEST(CutMaskLayout, HasItsFieldsAtTheDocumentedOffsets) {
    CutMask mask;
    mask.m_nKind = ACAD::CutKindVisibleInside;
    for (std::size_t i = 0; i < 16; ++i) {
        mask.m_dProjection[i] = 100.0 + static_cast<double>(i);
        mask.m_dModelView[i] = 200.0 + static_cast<double>(i);
    }
    mask.m_nViewport = {1, 2, 3, 4};
    mask.m_vDepth = {0.25f, 0.5f, 0.75f};
    mask.m_rcBounds = {5, 6, 7, 8};
    mask.m_vBits.m_vWords = {0xAABBCCDD, 0x11};
    mask.m_vBits.m_uCount = 37;

    const auto address = static_cast<std::int64_t>(reinterpret_cast<std::intptr_t>(&mask));
    EXPECT_EQ(Read<std::uint32_t>(address, 0), 2u);
    for (std::size_t i = 0; i < 16; ++i) {
        EXPECT_EQ(Read<double>(address, 8 + 8 * i), 100.0 + static_cast<double>(i));
        EXPECT_EQ(Read<double>(address, 136 + 8 * i), 200.0 + static_cast<double>(i));
    }
    EXPECT_EQ((Read<std::array<std::int32_t, 4>>(address, 264)), (std::array<std::int32_t, 4>{1, 2, 3, 4}));
    EXPECT_EQ(Read<const float*>(address, 280), mask.m_vDepth.data());
    EXPECT_EQ((Read<std::array<std::int32_t, 4>>(address, 304)), (std::array<std::int32_t, 4>{5, 6, 7, 8}));
    EXPECT_EQ(Read<const std::uint32_t*>(address, 320), mask.m_vBits.m_vWords.data());
    EXPECT_EQ(Read<std::uint64_t>(address, 344), 37u);
}

TEST(CutMaskLayout, CountsBitsFromTheLowestOfTheFirstWord) {
    ACAD::PackedBits bits;
    bits.m_vWords = {0x80000001, 0x2};
    bits.m_uCount = 40;
    for (std::size_t i = 0; i < 40; ++i) EXPECT_EQ(bits.IsSet(i), i == 0 || i == 31 || i == 33) << i;
}

TEST(CutMaskLayout, AMaskWithoutPixelsHasARectangleThatContainsNothing) {
    const CutMask mask;
    EXPECT_EQ(mask.m_rcBounds, (CutMask::Rectangle{2147483647, 2147483647, -2147483647 - 1, -2147483647 - 1}));
}

}  // namespace
