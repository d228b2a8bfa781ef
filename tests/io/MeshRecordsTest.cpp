// Blocks of records, also of inputs with fewer bytes than announced.
#include "io/MeshRecords.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <cstring>
#include <limits>

namespace {

/// The value of each byte is its offset. Size and bytes can differ, as in a file that another process shortens.
class CountingInput final : public ByteInput {
public:
    CountingInput(std::size_t bytes, std::uint64_t promised) : m_uBytes(bytes), m_uPromised(promised) {}
    [[nodiscard]] std::uint64_t Size() const override { return m_uPromised; }
    std::size_t ReadAt(std::uint64_t offset, void* to, std::size_t size) const override {
        const std::size_t part = std::min<std::uint64_t>(size, m_uBytes - offset);
        for (std::size_t i = 0; i < part; ++i) static_cast<unsigned char*>(to)[i] = ByteAt(offset + i);
        return part;
    }
    static unsigned char ByteAt(std::size_t at) { return static_cast<unsigned char>(at % 251); }

private:
    std::size_t m_uBytes;
    std::uint64_t m_uPromised;
};

/// Every byte of the blocks, which must be whole records.
std::vector<std::byte> AllOf(RecordBlocks& blocks, std::size_t recordSize) {
    std::vector<std::byte> all;
    for (auto records = blocks.Next(); !records.empty(); records = blocks.Next()) {
        EXPECT_EQ(records.size() % recordSize, 0u);
        all.insert(all.end(), records.begin(), records.end());
    }
    return all;
}

void ExpectCounted(std::span<const std::byte> bytes, std::size_t first) {
    for (std::size_t i = 0; i < bytes.size(); ++i)
        ASSERT_EQ(std::to_integer<unsigned char>(bytes[i]), CountingInput::ByteAt(first + i)) << i;
}

constexpr std::size_t kRecord = 50;
constexpr std::size_t kMany = 15'000;  // three blocks

}  // namespace

TEST(RecordBlocks, GiveTheAnnouncedRecordsAndNothingAfterThem) {
    for (const std::size_t count : {std::size_t{0}, std::size_t{1}, kMany}) {
        CountingInput input(count * kRecord + 7, count * kRecord + 7);
        RecordBlocks blocks(input, kRecord, count);
        const auto all = AllOf(blocks, kRecord);
        EXPECT_EQ(all.size(), count * kRecord);
        ExpectCounted(all, 0);
        EXPECT_EQ(blocks.Missing(), 0u);
        EXPECT_TRUE(blocks.Tail().empty());
    }
}

TEST(RecordBlocks, CountTheMissingRecordsOfAFileThatShrank) {
    const struct {
        std::size_t bytes, whole, tail;
    } rows[] = {{0, 0, 0}, {49, 0, 49}, {50, 1, 0}, {kRecord * 14'999 + 13, 14'999, 13}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.bytes);
        CountingInput input(row.bytes, kMany * kRecord);
        RecordBlocks blocks(input, kRecord, kMany);
        const auto all = AllOf(blocks, kRecord);
        EXPECT_EQ(all.size(), row.whole * kRecord);
        ExpectCounted(all, 0);
        EXPECT_EQ(blocks.Missing(), kMany - row.whole);
        ASSERT_EQ(blocks.Tail().size(), row.tail);
        ExpectCounted(blocks.Tail(), row.whole * kRecord);
        EXPECT_TRUE(blocks.Next().empty()) << "nothing follows the end";
    }
}

TEST(RequireHalf, CountsTheBytesAfterTheHeaderAndRoundsUp) {
    const auto isEnough = [](std::uint64_t size, std::uint64_t announced) {
        try {
            RequireHalf(CountingInput(0, size), 84, announced);
            return true;
        } catch (const FileReadError&) {
            return false;
        }
    };
    EXPECT_TRUE(isEnough(84 + 25, 50));
    EXPECT_FALSE(isEnough(84 + 24, 50));
    EXPECT_TRUE(isEnough(84 + 13, 25));
    EXPECT_FALSE(isEnough(84 + 12, 25));
    EXPECT_TRUE(isEnough(84, 0));
    EXPECT_TRUE(isEnough(3, 0)) << "fewer bytes than the header: no bytes after it";
    EXPECT_FALSE(isEnough(3, 1));
    EXPECT_FALSE(isEnough(std::numeric_limits<std::uint32_t>::max(), std::numeric_limits<std::uint64_t>::max()));
}
