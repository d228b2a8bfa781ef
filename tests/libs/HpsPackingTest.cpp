// The entropy coding: numbers, blocks and lists of texture coordinates.
#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <random>

#include "HpsSample.h"

namespace {

using namespace HpsSample;
using namespace KvComponents::Hps;

TEST(HpsNumbers, ZigzagEncodingMapsSmallDifferencesToSmallNumbers) {
    const std::uint32_t differences[] = {0, 0xFFFFFFFF, 1, 0xFFFFFFFE, 2, 0x7FFFFFFF, 0x80000000};
    const std::uint32_t encoded[] = {0, 1, 2, 3, 4, 0xFFFFFFFE, 0xFFFFFFFF};
    for (std::size_t i = 0; i < std::size(encoded); ++i) {
        EXPECT_EQ(ZigzagEncode(differences[i]), encoded[i]);
        EXPECT_EQ(ZigzagDecode(encoded[i]), differences[i]);
    }
}

TEST(HpsNumbers, OrderedBitsKeepTheOrderOfFloatsAndAreInvertible) {
    const float rising[] = {-INFINITY, -3e38f, -1.0f, -1e-45f, -0.0f, 0.0f, 1e-45f, 1.0f, 3e38f, INFINITY};
    for (std::size_t i = 1; i < std::size(rising); ++i)
        EXPECT_LT(OrderedBits(std::bit_cast<std::uint32_t>(rising[i - 1])),
                  OrderedBits(std::bit_cast<std::uint32_t>(rising[i])));
    EXPECT_EQ(OrderedBits(0) - OrderedBits(0x80000000), 1u) << "the zeros are neighbours";
    for (const std::uint32_t bits : {0u, 1u, 0x7FC12345u, 0xFFFFFFFFu, 0x80000000u, 0x7FFFFFFFu})
        EXPECT_EQ(FloatBits(OrderedBits(bits)), bits);
}

TEST(HpsNumbers, EveryNumberIsInTheRangeOfItsClass) {
    std::uint32_t expected = 0;
    for (std::uint32_t kind = 0; kind < kClassCount; ++kind) {
        EXPECT_EQ(SmallestOf(kind), expected) << kind;
        const std::uint32_t largest = expected + ((1u << ExtraBitCount(kind)) - 1);
        EXPECT_EQ(ClassOf(expected), kind);
        EXPECT_EQ(ClassOf(largest), kind);
        expected = largest + 1;
    }
    EXPECT_EQ(expected, 0u) << "the last class ends with the largest number";
}

TEST(HpsNumbers, AreReadAsTheyWereWrittenForAllMagnitudesAndScales) {
    std::mt19937 random(5);
    std::vector<std::uint32_t> numbers;
    for (int i = 0; i < 3000; ++i) numbers.push_back(static_cast<std::uint32_t>(random()) >> (random() % 33 % 32));
    NumberWriter writer(3);
    for (std::size_t i = 0; i < numbers.size(); ++i) writer.Put(i % 3, numbers[i], static_cast<std::uint32_t>(i % 256));
    ByteVector bytes;
    writer.Append(bytes);
    ByteReader from(bytes);
    NumberReader reader(from, 3, 1000);
    for (std::size_t i = 0; i < numbers.size(); i += 6) {
        const std::uint32_t scales[] = {static_cast<std::uint32_t>(i % 256), static_cast<std::uint32_t>((i + 1) % 256),
                                        static_cast<std::uint32_t>((i + 2) % 256)};
        const auto three = reader.ReadThree(scales);
        for (std::size_t k = 0; k < 3; ++k) ASSERT_EQ(three[k], numbers[i + k]) << i;
        for (std::size_t k = 3; k < 6; ++k)
            ASSERT_EQ(reader.Read(k % 3, static_cast<std::uint32_t>((i + k) % 256)), numbers[i + k]) << i;
    }
    reader.ExpectEnd();
    EXPECT_THROW((void)reader.Read(0), DamagedData);
    EXPECT_TRUE(from.Rest().empty());
}

TEST(HpsNumbers, MoreThanAnnouncedAreRefused) {
    NumberWriter writer(2);
    for (std::uint32_t i = 0; i < 5; ++i) writer.Put(1, 100 * i);
    ByteVector bytes;
    writer.Append(bytes);
    ByteReader four(bytes), five(bytes);
    EXPECT_THROW(NumberReader(four, 2, 4), DamagedData);
    NumberReader reader(five, 2, 5);
    EXPECT_THROW(reader.ExpectEnd(), DamagedData) << "numbers that were not read";
}

TEST(HpsBlocks, AreReadAsTheyWereWrittenCompressedOrNot) {
    std::mt19937 random(3);
    for (const std::size_t size : {0, 1, 7, 1000, 5'000'000}) {
        for (const bool isRandom : {false, true}) {
            ByteVector bytes(size);
            if (isRandom)
                for (std::byte& byte : bytes) byte = static_cast<std::byte>(random());
            ByteVector packed;
            AppendBlock(packed, bytes, Redundancy::kMatches);
            ByteReader from(packed);
            const RawArray<std::byte> back = ReadBlock(from, size);
            ASSERT_EQ(back.size(), size + kBlockPadding);
            EXPECT_TRUE(std::equal(bytes.begin(), bytes.end(), back.data()));
            for (std::size_t i = 0; i < kBlockPadding; ++i) EXPECT_EQ(back[size + i], std::byte{});
            if (size > 0) {
                ByteReader again(packed);
                EXPECT_THROW((void)ReadBlock(again, size - 1), DamagedData);
            }
        }
    }
}

// ---- pairs of texture coordinates

struct Lists {
    std::vector<std::uint8_t> lengths;
    std::vector<float> pairs;
};

Lists ListsOf(const ByteVector& block) {
    const UvCounts counts = MeasureUv(block);
    Lists lists{std::vector<std::uint8_t>(counts.vertices), std::vector<float>(2 * std::size_t{counts.pairs})};
    UnpackUv(block, lists.lengths, lists.pairs);
    return lists;
}

/// The pairs of all corners by the rule for readers: each corner of a vertex has the next pair of its list.
std::vector<float> CornerPairs(const Lists& lists, const std::vector<std::int32_t>& indices) {
    std::vector<std::size_t> begins, uses(lists.lengths.size());
    std::size_t begin = 0;
    for (const std::uint8_t length : lists.lengths) {
        begins.push_back(begin);
        begin += length;
    }
    std::vector<float> corners;
    for (const std::int32_t index : indices) {
        const auto vertex = static_cast<std::size_t>(index);
        const std::size_t pair = begins[vertex] + uses[vertex]++ % lists.lengths[vertex];
        corners.insert(corners.end(), {lists.pairs[2 * pair], lists.pairs[2 * pair + 1]});
    }
    return corners;
}

struct PairCase {
    const char* name;
    std::vector<std::int32_t> indices;
    std::vector<float> us;  ///< one per corner; v is 1 - u
    std::vector<std::uint8_t> lengths;
};
void PrintTo(const PairCase& row, std::ostream* out) { *out << row.name; }

const PairCase kPairs[] = {
    {"None", {}, {}, {0, 0}},
    {"UnusedVertex", {0, 2, 2}, {1, 2, 2}, {1, 0, 1}},
    {"AllTheSame", {0, 0, 0, 1, 1, 0}, {5, 5, 5, 5, 5, 5}, {1, 1}},
    {"AllDifferent", {0, 0, 0}, {1, 2, 3}, {3}},
    {"ARepeatedPart", {0, 0, 0, 0, 0, 0}, {1, 2, 1, 2, 1, 2}, {2}},
    {"ARepeatedPartThatEndsEarly", {0, 0, 0, 0, 0, 0}, {1, 2, 3, 4, 1, 2}, {4}},
    {"ARepeatedPartWithinIt", {0, 0, 0, 0, 0, 0}, {1, 1, 2, 1, 1, 2}, {3}},
    {"DifferentAtTheVeryEnd", {0, 0, 0, 0, 0, 0}, {1, 1, 1, 1, 1, 2}, {6}},
    {"ZerosOfBothSigns", {0, 0, 0}, {0.0f, -0.0f, 0.0f}, {2}},
    {"NotNumbers", {0, 0, 0}, {NAN, NAN, -NAN}, {3}},
};

class HpsPairs : public testing::TestWithParam<PairCase> {};

TEST_P(HpsPairs, AreStoredAsShortestListAndReadAtEveryCorner) {
    std::vector<float> pairs;
    for (const float u : GetParam().us) pairs.insert(pairs.end(), {u, 1.0f - u});
    const auto vertexCount = static_cast<std::uint32_t>(GetParam().lengths.size());
    const std::optional<ByteVector> block = PackUv(GetParam().indices, vertexCount, pairs);
    ASSERT_TRUE(block);
    const Lists lists = ListsOf(*block);
    EXPECT_EQ(lists.lengths, GetParam().lengths);
    EXPECT_TRUE(SameBits(CornerPairs(lists, GetParam().indices), pairs));
}

INSTANTIATE_TEST_SUITE_P(Lists, HpsPairs, testing::ValuesIn(kPairs), [](const auto& row) { return row.param.name; });

TEST(HpsPairLists, OfRandomCornersAreReadToTheBit) {
    std::mt19937 random(11);
    for (const std::uint32_t kinds : {1u, 2u, 5u, 0xFFFFFFFFu}) {
        std::vector<std::int32_t> indices;
        std::vector<float> pairs;
        for (int i = 0; i < 3 * 1000; ++i) {
            indices.push_back(static_cast<std::int32_t>(random() % 300));
            for (int k = 0; k < 2; ++k)
                pairs.push_back(std::bit_cast<float>(0x3F000000u + static_cast<std::uint32_t>(random()) % kinds));
        }
        const std::optional<ByteVector> block = PackUv(indices, 300, pairs);
        ASSERT_TRUE(block);
        EXPECT_TRUE(SameBits(CornerPairs(ListsOf(*block), indices), pairs)) << kinds;
    }
}

/// A fan of triangles. The corners at its centre have @p distinct pairs in turn.
SampleMesh TexturedFan(int triangles, int distinct) {
    SampleMesh mesh = {std::vector<float>(9), {}, {}, RedAboveBlue(), "", ""};
    for (int i = 0; i < triangles; ++i) {
        mesh.indices.insert(mesh.indices.end(), {0, 1, 2});
        mesh.pairs.insert(mesh.pairs.end(), {static_cast<float>(i % distinct), 0, 0, 0, 1, 1});
    }
    return mesh;
}

TEST(HpsPairLists, HaveAtMost255PairsPerVertex) {
    const ScratchFolder folder;
    EXPECT_EQ(Save(TexturedFan(255, 1000), folder / "mesh.hps"), kSucceeded);
    EXPECT_EQ(Save(TexturedFan(10'000, 255), folder / "encoded.hps"), kSucceeded);
    EXPECT_EQ(Save(TexturedFan(256, 1000), folder / "more.hps"), kFailed);
    EXPECT_EQ(Save(TexturedFan(10'000, 256), folder / "more.hps"), kFailed);
    EXPECT_EQ(folder.FileCount(), 2u) << "nothing is written";
}

TEST(HpsPairLists, ThatCompressTooWellArePadded) {
    const std::vector<std::int32_t> indices(3 * 1000, 0);
    const ByteVector block = PackUv(indices, 1'000'000, std::vector<float>(6 * 1000)).value();
    EXPECT_GE(block.size(), 1'000'000u / 64);
    EXPECT_LT(block.size(), 1'000'000u / 60);
    EXPECT_EQ(ListsOf(block).lengths.size(), 1'000'000u);
}

TEST(HpsPairLists, CutShortAreRefused) {
    const SampleMesh mesh = TexturedTetrahedron();
    const ByteVector block = PackUv(mesh.indices, 4, mesh.pairs).value();
    std::vector<std::uint8_t> lengths(4);
    std::vector<float> pairs(24);
    for (std::size_t size = 0; size < block.size(); ++size)
        EXPECT_THROW(UnpackUv(ByteSpan(block).first(size), lengths, pairs), DamagedData) << size;
    UnpackUv(block, lengths, pairs);
    EXPECT_TRUE(SameBits(CornerPairs({lengths, pairs}, mesh.indices), mesh.pairs));
}

}  // namespace
