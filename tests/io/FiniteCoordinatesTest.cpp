// Counts of coordinates that are not finite, against std::isfinite() one by one.
#include "io/FiniteCoordinates.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <random>
#include <string>
#include <vector>

#include "KV_ScenePane/DebugOutput.h"

namespace {

constexpr float kInf = std::numeric_limits<float>::infinity();

/// Mostly ordinary numbers, with extremes of both kinds among them.
std::vector<float> OddNumbers(std::size_t count, std::uint32_t seed) {
    const float odd[] = {NAN,
                         -NAN,
                         kInf,
                         -kInf,
                         std::numeric_limits<float>::max(),
                         std::numeric_limits<float>::lowest(),
                         std::numeric_limits<float>::denorm_min(),
                         -0.0f};
    std::mt19937 random(seed);
    std::vector<float> numbers(count);
    for (float& number : numbers) number = random() % 3 == 0 ? odd[random() % std::size(odd)] : 1.5f;
    return numbers;
}

std::size_t PlainCount(std::span<const float> numbers) {
    return static_cast<std::size_t>(
        std::ranges::count_if(numbers, [](float number) { return !std::isfinite(number); }));
}

TEST(CountNotFinite, CountsEveryNumberAtEveryLength) {
    for (std::size_t count = 0; count < 70; ++count) {
        const std::vector<float> numbers = OddNumbers(count + 1, static_cast<std::uint32_t>(count));
        const std::span<const float> unaligned(numbers.data() + 1, count);
        EXPECT_EQ(CountNotFinite(unaligned), PlainCount(unaligned)) << count;
    }
    EXPECT_EQ(CountNotFinite(std::vector<float>(100000, NAN)), 100000u);
    EXPECT_EQ(CountNotFinite(std::vector<float>(100000, std::numeric_limits<float>::max())), 0u);
}

TEST(CountNotFinite, LeavesOutTheNormalsOfVertices) {
    const std::vector<float> numbers = OddNumbers(3 * 200, 7);
    std::vector<Vertex> vertices;
    for (std::size_t i = 0; i < numbers.size(); i += 3)
        vertices.push_back({numbers[i], numbers[i + 1], numbers[i + 2], NAN, kInf, NAN, 0x7F800000, 0x7FFFFFFF});
    EXPECT_EQ(CountNotFinite(vertices), PlainCount(numbers));
    EXPECT_EQ(CountNotFinite(std::span<const Vertex>()), 0u);
}

TEST(CountNotFinite, LeavesOutMaskedPixels) {
    for (const std::size_t pixels : {std::size_t{0}, std::size_t{5}, std::size_t{1024}, std::size_t{3000}}) {
        const std::vector<float> points = OddNumbers(3 * pixels, 3);
        std::vector<std::uint16_t> mask(pixels);
        std::size_t expected = 0;
        for (std::size_t i = 0; i < pixels; ++i) {
            mask[i] = i % 5 < 2 ? 0 : 1;
            if (mask[i] == 0) expected += PlainCount(std::span(points).subspan(3 * i, 3));
        }
        EXPECT_EQ(CountNotFinite(points.data(), mask), expected) << pixels;
    }
}

TEST(ReportNotFinite, WritesOneLineUnlessTheCountIsZero) {
    std::string text;
    KV_ScenePane::SetDebugOutputSink([&](std::string_view line) { text += line; });
    ReportNotFinite(L"/d/caf\u00E9.stl", 0);
    EXPECT_EQ(text, "");
    ReportNotFinite(L"/d/caf\u00E9.stl", 1234567);
    ReportNotFinite({}, 2);
    KV_ScenePane::SetDebugOutputSink({});
    EXPECT_EQ(text,
              "/d/caf\xC3\xA9.stl: 1234567 coordinates are not finite\n(no file): 2 coordinates are not finite\n");
}

}  // namespace
