// The bytes of the GPU buffers of a mesh.
#include "render/VertexPacking.h"

#include <gtest/gtest.h>

#include <cstring>
#include <limits>
#include <vector>

namespace {

using Bytes = std::vector<std::uint8_t>;

float FloatAt(const std::vector<std::byte>& bytes, std::size_t offset) {
    float value = 0.0f;
    std::memcpy(&value, bytes.data() + offset, sizeof(value));
    return value;
}

Bytes BytesAt(const std::vector<std::byte>& bytes, std::size_t offset, std::size_t count) {
    Bytes part(count);
    std::memcpy(part.data(), bytes.data() + offset, count);
    return part;
}

Vertex MakeVertex(float first, std::uint32_t color) {
    return {first, first + 1, first + 2, first + 3, first + 4, first + 5, color, 0xDEADBEEF};
}

Bytes ColorOf(std::uint32_t word, const float objectColor[3], bool blend) {
    const Vertex vertex = MakeVertex(0, word);
    std::vector<std::byte> out(kColoredStride);
    PackColored({&vertex, 1}, MakeVertexColorTable(objectColor, blend), out.data());
    return BytesAt(out, kPlainStride, 4);
}

constexpr float kWhite[3] = {1.0f, 1.0f, 1.0f};
constexpr float kRed[3] = {1.0f, 0.0f, 0.0f};

TEST(PackPlain, WritesPositionAndNormalOnly) {
    const Vertex vertices[] = {MakeVertex(1, 0xFFFFFFFF), MakeVertex(11, 0)};
    std::vector<std::byte> out(2 * 24);
    PackPlain(vertices, out.data());
    for (std::size_t i = 0; i < 6; ++i) {
        EXPECT_EQ(FloatAt(out, 4 * i), 1.0f + static_cast<float>(i));
        EXPECT_EQ(FloatAt(out, 24 + 4 * i), 11.0f + static_cast<float>(i));
    }
}

TEST(PackPlain, CopiesNansAndInfinitiesBitForBit) {
    Vertex vertex = MakeVertex(0, 0);
    vertex.x = std::numeric_limits<float>::quiet_NaN();
    vertex.nz = -std::numeric_limits<float>::infinity();
    std::vector<std::byte> out(24);
    PackPlain({&vertex, 1}, out.data());
    EXPECT_EQ(std::memcmp(out.data(), &vertex, 24), 0);
}

TEST(PackColored, WritesRedGreenBlueAlphaAfterTheNormal) {
    const Vertex vertices[] = {MakeVertex(1, 0x00112233), MakeVertex(11, 0x77AABBCC)};
    std::vector<std::byte> out(2 * 28);
    PackColored(vertices, MakeVertexColorTable(kWhite, false), out.data());
    EXPECT_EQ(FloatAt(out, 0), 1.0f);
    EXPECT_EQ(FloatAt(out, 20), 6.0f);
    EXPECT_EQ(BytesAt(out, 24, 4), (Bytes{0x11, 0x22, 0x33, 255}));
    EXPECT_EQ(FloatAt(out, 28), 11.0f);
    EXPECT_EQ(BytesAt(out, 52, 4), (Bytes{0xAA, 0xBB, 0xCC, 255}));
}

TEST(VertexColors, AreUnchangedWithoutBlending) {
    const float anyColor[3] = {0.3f, 0.7f, 0.1f};
    for (std::uint32_t value = 0; value < 256; ++value) {
        const auto byte = static_cast<std::uint8_t>(value);
        EXPECT_EQ(ColorOf(value << 16, anyColor, false), (Bytes{byte, 0, 0, 255}));
        EXPECT_EQ(ColorOf(value << 8, anyColor, false), (Bytes{0, byte, 0, 255}));
        EXPECT_EQ(ColorOf(value, anyColor, false), (Bytes{0, 0, byte, 255}));
    }
}

TEST(VertexColors, OfWhiteBlendedWithRedKeepFifteenPercentInGreenAndBlue) {
    // 0.15 * 255 = 38.25; red: (0.15 + 0.85) * 255 = 255.
    EXPECT_EQ(ColorOf(0x00FFFFFF, kRed, true), (Bytes{255, 38, 38, 255}));
}

TEST(VertexColors, OfBlackBlendedHaveEightyFivePercentOfTheObjectColour) {
    // 0.85 * 255 = 216.75.
    EXPECT_EQ(ColorOf(0xFF000000, kRed, true), (Bytes{216, 0, 0, 255}));
}

TEST(VertexColors, BlendedAreRoundedDown) {
    // 100: 0.15 * 100 = 15.000001 in single precision. 0.85 * 0.5 * 255 = 108.375; the sum is 123.375.
    const float half[3] = {0.5f, 0.5f, 0.5f};
    EXPECT_EQ(ColorOf(0x00646464, half, true), (Bytes{123, 123, 123, 255}));
    // 99: 14.85 + 108.375 = 123.225; 105: 15.75 + 108.375 = 124.125.
    EXPECT_EQ(ColorOf(0x00630069, half, true), (Bytes{123, 108, 124, 255}));
}

TEST(VertexColors, OfAnObjectColourBeyondOneKeepTheLowEightBits) {
    // 0.85 * 2 * 255 = 433.5: 433 - 256 = 177. 0.85 * -1 * 255 = -216.75, rounded down -217: 256 - 217 = 39.
    const float wild[3] = {2.0f, -1.0f, std::numeric_limits<float>::quiet_NaN()};
    EXPECT_EQ(ColorOf(0, wild, true), (Bytes{177, 39, 0, 255}));
}

TEST(PackTextured, WritesTheCornersOfEachTriangleInOrderWithTheirOwnCoordinates) {
    const std::vector<Vertex> vertices = {MakeVertex(0, 1), MakeVertex(10, 2), MakeVertex(20, 3)};
    const std::vector<Triangle> triangles = {{{2, 0, 1}}, {{1, 1, 2}}};
    std::vector<TexCoord> coords;
    for (int i = 0; i < 6; ++i) coords.push_back({static_cast<float>(i), static_cast<float>(-i)});
    std::vector<std::byte> out(6 * 32);
    PackTextured(vertices, triangles, coords, out.data());
    const float firstWords[6] = {20, 0, 10, 10, 10, 20};
    for (std::size_t i = 0; i < 6; ++i) {
        EXPECT_EQ(FloatAt(out, 32 * i), firstWords[i]);
        EXPECT_EQ(FloatAt(out, 32 * i + 20), firstWords[i] + 5);
        EXPECT_EQ(FloatAt(out, 32 * i + 24), static_cast<float>(i));
        EXPECT_EQ(FloatAt(out, 32 * i + 28), -static_cast<float>(i));
    }
}

std::vector<std::uint32_t> FirstCorners(int triangleCount, std::size_t step) {
    std::vector<Triangle> triangles;
    for (int i = 0; i < triangleCount; ++i) triangles.push_back({{100 + i, 1, 2}});
    std::vector<std::uint32_t> indices((triangles.size() + step - 1) / step, 7777);
    PackFirstCorners(triangles, step, indices.data());
    return indices;
}

TEST(PackFirstCorners, OfEveryTriangleAreThePointsOfTheMesh) {
    EXPECT_EQ(FirstCorners(3, 1), (std::vector<std::uint32_t>{100, 101, 102}));
}

TEST(PackFirstCorners, OfTwentyFiveTrianglesInStepsOfTenAreThree) {
    EXPECT_EQ(FirstCorners(25, 10), (std::vector<std::uint32_t>{100, 110, 120}));
    EXPECT_EQ(FirstCorners(20, 10), (std::vector<std::uint32_t>{100, 110}));
    EXPECT_EQ(FirstCorners(21, 10), (std::vector<std::uint32_t>{100, 110, 120}));
    EXPECT_EQ(FirstCorners(9, 10), (std::vector<std::uint32_t>{100}));
}

}  // namespace
