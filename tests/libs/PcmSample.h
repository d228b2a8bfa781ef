// Measurements for tests of the pcm format, and an assembler of pcm files that shares no code with the writer.
#pragma once
#include <gtest/gtest.h>
#include <xxhash.h>

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <random>
#include <string>
#include <string_view>
#include <vector>

#include "MSRDLL/PcmFile.h"

/// A grid whose values are compared by their bits: a comparison of floats ignores the payload of NaNs and the sign of
/// zero.
struct PcmSample {
    int width = 0, height = 0;
    std::vector<float> points, confidence;
    std::vector<std::uint8_t> classification;
    std::vector<std::uint32_t> colors;
    std::array<float, 16> trafo{};
    std::vector<MsrStorage::PcmForeignSection> foreign;

    PcmSample(int w, int h) : width(w), height(h) {
        const std::size_t pixels = static_cast<std::size_t>(w) * static_cast<std::size_t>(h);
        points.resize(3 * pixels);
        confidence.resize(pixels);
        classification.resize(pixels);
    }
    [[nodiscard]] std::size_t Pixels() const { return confidence.size(); }
    void SetPoint(std::size_t pixel, std::array<std::uint32_t, 3> bits) {
        std::memcpy(&points[3 * pixel], bits.data(), sizeof bits);
    }
    [[nodiscard]] MsrStorage::PcmView View() const {
        return {.m_iWidth = width,
                .m_iHeight = height,
                .m_pPoints = points.data(),
                .m_pConfidence = confidence.data(),
                .m_pClassification = classification.data(),
                .m_pColors = colors.empty() ? nullptr : colors.data(),
                .m_pTrafo = trafo.data(),
                .m_foreign = foreign};
    }
};

/// A grid of random bits, NaNs among them. A fraction of the pixels are holes, which all have the same values.
inline PcmSample RandomSample(int width, int height, double holes, bool withColors, unsigned seed) {
    std::mt19937 random(seed);
    std::uniform_real_distribution<double> share(0, 1);
    const auto bits = [&] { return static_cast<std::uint32_t>(random()); };
    PcmSample sample(width, height);
    if (withColors) sample.colors.resize(sample.Pixels());
    for (std::size_t i = 0; i < sample.Pixels(); ++i) {
        const bool hole = share(random) < holes;
        sample.SetPoint(i, hole ? std::array<std::uint32_t, 3>{0x7FC01234, 0, 0x80000000}
                                : std::array<std::uint32_t, 3>{bits(), bits(), bits()});
        const std::uint32_t confidence = hole ? 0xBF800000 : bits();
        std::memcpy(&sample.confidence[i], &confidence, sizeof confidence);
        sample.classification[i] = hole ? 240 : static_cast<std::uint8_t>(bits());
        if (withColors) sample.colors[i] = hole ? 0 : bits();
    }
    for (float& element : sample.trafo) element = std::bit_cast<float>(bits());
    return sample;
}

/// A grid with holes and colours that is small enough to be damaged at every byte.
inline PcmSample SmallSample() { return RandomSample(8, 5, 0.4, true, 7); }

template <class T>
bool SameBits(const T* got, const std::vector<T>& expected) {
    return got != nullptr && std::memcmp(got, expected.data(), expected.size() * sizeof(T)) == 0;
}

inline void ExpectSame(const MsrStorage::PcmMeasurement& got, const PcmSample& expected) {
    ASSERT_EQ(got.m_iWidth, expected.width);
    ASSERT_EQ(got.m_iHeight, expected.height);
    EXPECT_TRUE(SameBits(got.m_pPoints.get(), expected.points));
    EXPECT_TRUE(SameBits(got.m_pConfidence.get(), expected.confidence));
    EXPECT_TRUE(SameBits(got.m_pClassification.get(), expected.classification));
    ASSERT_EQ(got.m_pColors != nullptr, !expected.colors.empty());
    if (got.m_pColors) {
        EXPECT_TRUE(SameBits(got.m_pColors.get(), expected.colors));
    }
    EXPECT_EQ(std::memcmp(got.m_fTrafo.data(), expected.trafo.data(), sizeof expected.trafo), 0);
}

/// One section of a file that is assembled by hand.
struct RawSection {
    std::string id;
    std::uint16_t encoding, flags;
    std::string bytes;
};

/// The little-endian bytes of numbers.
template <class... T>
std::string Packed(T... values) {
    std::string bytes;
    (bytes.append(reinterpret_cast<const char*>(&values), sizeof values), ...);
    return bytes;
}

struct RawHead {
    std::string_view magic = "KVPCM\r\n\x1A";
    std::uint32_t version = 1;
    std::uint32_t width = 2, height = 1;
    std::uint64_t addedToSize = 0;
    std::uint32_t addedToCount = 0;
};

inline std::vector<std::byte> Assemble(const RawHead& head, const std::vector<RawSection>& sections) {
    std::string table, bodies;
    for (const RawSection& section : sections) {
        const std::uint64_t checksum = XXH3_64bits(section.bytes.data(), section.bytes.size());
        table += section.id + Packed(section.encoding, section.flags, std::uint64_t{section.bytes.size()}, checksum);
        bodies += section.bytes;
    }
    const auto count = static_cast<std::uint32_t>(sections.size()) + head.addedToCount;
    const std::uint64_t size = 32 + table.size() + 8 + bodies.size() + head.addedToSize;
    std::string file = std::string(head.magic) + Packed(head.version, count, head.width, head.height, size) + table;
    file += Packed(std::uint64_t{XXH3_64bits(file.data(), file.size())}) + bodies;
    const auto* bytes = reinterpret_cast<const std::byte*>(file.data());
    return {bytes, bytes + file.size()};
}
