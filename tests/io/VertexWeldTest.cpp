// The weld compared with an ordered map, on positions of every kind.
#include "io/VertexWeld.h"

#include <gmock/gmock.h>

#include <bit>
#include <cmath>
#include <cstring>
#include <limits>
#include <map>
#include <random>

using testing::ElementsAre;

namespace {

struct Welded {
    std::vector<Vertex> vertices;
    std::vector<std::int32_t> indices;
};

/// The reference: a map ordered by x, then y, then z.
Welded WeldByMap(const std::vector<Float3>& positions) {
    Welded welded;
    std::map<Float3, std::int32_t> indexOf;
    for (const Float3& p : positions) {
        const auto next = static_cast<std::int32_t>(welded.vertices.size());
        // A NaN cannot be ordered.
        const bool hasNan = std::isnan(p[0]) || std::isnan(p[1]) || std::isnan(p[2]);
        const std::int32_t index = hasNan ? next : indexOf.try_emplace(p, next).first->second;
        if (index == next) {
            Vertex vertex;
            vertex.x = p[0];
            vertex.y = p[1];
            vertex.z = p[2];
            welded.vertices.push_back(vertex);
        }
        welded.indices.push_back(index);
    }
    return welded;
}

/// Welds in pieces of different sizes, into a table that is small at first.
Welded WeldInPieces(const std::vector<Float3>& positions, std::size_t expected = 0) {
    Welded welded;
    welded.indices.resize(positions.size());
    VertexWeld weld(welded.vertices, expected);
    for (std::size_t at = 0, piece = 1; at < positions.size(); at += piece, piece = piece * 3 + 1) {
        piece = std::min(piece, positions.size() - at);
        weld.Weld({&positions[at], piece}, &welded.indices[at]);
    }
    EXPECT_EQ(weld.ReseedCount(), 0);
    return welded;
}

void ExpectSame(const Welded& actual, const Welded& expected) {
    EXPECT_EQ(actual.indices, expected.indices);
    ASSERT_EQ(actual.vertices.size(), expected.vertices.size());
    EXPECT_EQ(std::memcmp(actual.vertices.data(), expected.vertices.data(), actual.vertices.size() * sizeof(Vertex)),
              0);
}

constexpr float kSmallest = std::numeric_limits<float>::denorm_min();
constexpr float kInfinity = std::numeric_limits<float>::infinity();

}  // namespace

TEST(VertexWeld, GivesEqualPositionsOneVertexInOrderOfFirstUse) {
    const Welded welded = WeldInPieces({{1, 2, 3}, {4, 5, 6}, {1, 2, 3}, {1, 2, 4}, {4, 5, 6}});
    EXPECT_THAT(welded.indices, ElementsAre(0, 1, 0, 2, 1));
    ASSERT_EQ(welded.vertices.size(), 3u);
    EXPECT_EQ(welded.vertices[2].z, 4.0f);
    EXPECT_EQ(welded.vertices[1].nx, 0.0f);
    EXPECT_EQ(welded.vertices[1].color, 0u);
    EXPECT_EQ(welded.vertices[1].gridIndex, 0u);
}

TEST(VertexWeld, DoesNotWeldPositionsThatDifferInTheLastBit) {
    const float next = std::nextafter(1.0f, 2.0f);
    EXPECT_THAT(WeldInPieces({{1, 1, 1}, {next, 1, 1}, {1, next, 1}, {1, 1, next}}).indices, ElementsAre(0, 1, 2, 3));
}

TEST(VertexWeld, WeldsBothZerosWithTheFirstSign) {
    const Welded welded = WeldInPieces({{-0.0f, 0.0f, -0.0f}, {0.0f, -0.0f, 0.0f}, {0.0f, 0.0f, 1.0f}});
    EXPECT_THAT(welded.indices, ElementsAre(0, 0, 1));
    EXPECT_TRUE(std::signbit(welded.vertices[0].x));
    EXPECT_FALSE(std::signbit(welded.vertices[0].y));
    EXPECT_TRUE(std::signbit(welded.vertices[0].z));
}

TEST(VertexWeld, WeldsDenormalsLikeOtherNumbers) {
    EXPECT_THAT(
        WeldInPieces({{0, 0, 0}, {kSmallest, 0, 0}, {-kSmallest, 0, 0}, {2 * kSmallest, 0, 0}, {kSmallest, 0, 0}})
            .indices,
        ElementsAre(0, 1, 2, 3, 1));
}

TEST(VertexWeld, NeverWeldsNanAndKeepsItsBits) {
    const float payload = std::bit_cast<float>(0xFFC12345u);
    const Welded welded = WeldInPieces({{NAN, 0, 0}, {NAN, 0, 0}, {0, payload, 0}, {0, 0, NAN}, {0, 0, 0}, {0, 0, 0}});
    EXPECT_THAT(welded.indices, ElementsAre(0, 1, 2, 3, 4, 4));
    EXPECT_EQ(std::bit_cast<std::uint32_t>(welded.vertices[2].y), 0xFFC12345u);
}

TEST(VertexWeld, WeldsInfinities) {
    EXPECT_THAT(WeldInPieces({{kInfinity, 0, 0}, {-kInfinity, 0, 0}, {kInfinity, 0, 0}}).indices, ElementsAre(0, 1, 0));
}

TEST(VertexWeld, AgreesWithTheMapOnGridsOfManyRepeats) {
    std::mt19937 random(1);
    for (const int side : {1, 2, 7, 40, 1000}) {
        std::uniform_int_distribution<int> pick(-side, side);
        std::vector<Float3> positions(200'000);
        for (Float3& p : positions)
            p = {static_cast<float>(pick(random)) * 0.25f, static_cast<float>(pick(random)),
                 static_cast<float>(pick(random)) * 1e-3f};
        SCOPED_TRACE(side);
        ExpectSame(WeldInPieces(positions), WeldByMap(positions));
        ExpectSame(WeldInPieces(positions, 100'000), WeldByMap(positions));
    }
}

TEST(VertexWeld, AgreesWithTheMapOnRandomBits) {
    std::mt19937 random(2);
    // few patterns, so that many are equal: zeros, denormals, NaNs, infinities, their neighbours
    const std::uint32_t patterns[] = {0u,          0x80000000u, 1u,          0x80000001u, 0x007FFFFFu,
                                      0x00800000u, 0x7F800000u, 0xFF800000u, 0x7F800001u, 0x7FC00000u,
                                      0xFFC00000u, 0x3F800000u, 0x3F800001u, 0xBF800000u};
    std::uniform_int_distribution<std::size_t> pick(0, std::size(patterns) - 1);
    const auto any = [&] { return std::bit_cast<float>(patterns[pick(random)]); };
    std::vector<Float3> positions(100'000);
    for (Float3& p : positions) p = {any(), any(), any()};
    ExpectSame(WeldInPieces(positions), WeldByMap(positions));
    for (Float3& p : positions)
        for (float& coordinate : p) coordinate = std::bit_cast<float>(static_cast<std::uint32_t>(random()));
    ExpectSame(WeldInPieces(positions), WeldByMap(positions));
}

TEST(VertexWeld, AgreesWithTheMapOnMillionsOfEqualPoints) {
    std::vector<Float3> positions(2'000'000, {1, 2, 3});
    positions[1'000'000] = {1, 2, -3};
    ExpectSame(WeldInPieces(positions), WeldByMap(positions));
}

TEST(VertexWeld, IsFastForPositionsThatCollideUnderAKnownSeed) {
    // Three thousand positions whose searches start in the same 512 of 2^20 slots: each would be compared with all
    // before it.
    constexpr std::uint64_t kSeed = 12345, kSlots = 1 << 20;
    std::vector<Float3> positions;
    for (std::uint32_t i = 1; positions.size() < 3'000; ++i) {
        const Float3 p = {std::bit_cast<float>(0x3F000000u + i), 1.0f, 2.0f};
        if (VertexWeld::HashOf(p, kSeed) % kSlots < 512) positions.push_back(p);
    }
    Welded welded;
    welded.indices.resize(positions.size());
    VertexWeld weld(welded.vertices, 600'000, kSeed);
    weld.Weld(positions, welded.indices.data());
    EXPECT_EQ(weld.ReseedCount(), 1) << "the seed changed once, after a long search";
    ExpectSame(welded, WeldByMap(positions));
    // Under a random seed the same positions do not collide.
    ExpectSame(WeldInPieces(positions, 600'000), WeldByMap(positions));
}

TEST(VertexWeld, FindsTheVerticesThatItHas) {
    std::mt19937 random(8);
    std::vector<Float3> positions(5000);
    for (Float3& p : positions) p = {static_cast<float>(random() % 20), static_cast<float>(random() % 20), 1.0f};
    positions[7] = {0.0f, -0.0f, 3.0f};
    positions[8] = {NAN, 0.0f, 0.0f};
    Welded welded;
    VertexWeld weld(welded.vertices, 10);
    welded.indices.resize(positions.size());
    weld.Weld(positions, welded.indices.data());

    std::vector<std::int32_t> found(positions.size());
    weld.Find(positions, found.data());
    welded.indices[8] = -1;  // a NaN is equal to none
    EXPECT_EQ(found, welded.indices);
    const Float3 others[] = {{-0.0f, 0.0f, 3.0f}, {0.5f, 0.0f, 1.0f}, {0.0f, 0.0f, 2.0f}};
    std::int32_t indices[3];
    weld.Find(others, indices);
    EXPECT_THAT(indices, ElementsAre(welded.indices[7], -1, -1));
}
