// The objects of point statistics in a host that has set another rounding mode, or that flushes denormal numbers to 0.
#include <xmmintrin.h>

#include <array>
#include <cfenv>
#include <cfloat>
#include <cmath>
#include <numeric>
#include <random>
#include <utility>

#include "GeometryObjects.h"
#include "KV_Components/HeightHistogram.h"

namespace {

using namespace GeometryObjects;
namespace hh = height_histogram;

struct Host {
    const char* name;
    int rounding;
    bool flushesDenormals;
};
void PrintTo(const Host& host, std::ostream* out) { *out << host.name; }

const Host kHosts[] = {
    {"RoundsUpward", FE_UPWARD, false},
    {"RoundsDownward", FE_DOWNWARD, false},
    {"RoundsTowardZero", FE_TOWARDZERO, false},
    {"FlushesDenormals", FE_TONEAREST, true},
    {"RoundsUpwardAndFlushesDenormals", FE_UPWARD, true},
};
constexpr unsigned kFlushAndReadAsZero = 0x8040, kExceptionFlags = 0x3f;  // in the SSE control and status register

/// Its settings on this thread, for its lifetime.
class HostFloats {
public:
    explicit HostFloats(const Host& host) {
        std::fegetenv(&m_before);
        std::fesetround(host.rounding);
        if (host.flushesDenormals) _mm_setcsr(_mm_getcsr() | kFlushAndReadAsZero);
        m_settings = Settings();
    }
    ~HostFloats() { std::fesetenv(&m_before); }
    HostFloats(const HostFloats&) = delete;
    HostFloats& operator=(const HostFloats&) = delete;
    [[nodiscard]] bool AreKept() const { return Settings() == m_settings; }

private:
    static std::pair<int, unsigned> Settings() { return {std::fegetround(), _mm_getcsr() & ~kExceptionFlags}; }
    std::fenv_t m_before{};
    std::pair<int, unsigned> m_settings;
};

class ObjectsInAHost : public NoLeak, public testing::WithParamInterface<Host> {};
INSTANTIATE_TEST_SUITE_P(Hosts, ObjectsInAHost, testing::ValuesIn(kHosts),
                         [](const auto& row) { return row.param.name; });

float Uniform(std::mt19937& random, float low, float high) {
    return std::uniform_real_distribution<float>(low, high)(random);
}

struct Sample {
    float value, spread, weight;
};

struct Histogram {
    float low = 0.0f, high = 1.0f;
    std::int32_t bins = 1;
    std::vector<Sample> samples;
};

/// Samples at both ends and between them, most of them spread over several bins.
Histogram RandomHistogram(std::mt19937& random) {
    Histogram made;
    made.low = static_cast<float>(static_cast<int>(random() % 20'000) - 10'000) / 37.0f;
    made.high = made.low + static_cast<float>(random() % 100'000 + 1) / 53.0f;
    made.bins = random() % 2 == 0 ? 500 : static_cast<std::int32_t>(1 + random() % HeightHistogram::kMaxBins);
    const float width = (made.high - made.low) / static_cast<float>(made.bins);
    for (const float spread : {0.0f, 5.0f * width, made.high - made.low})
        for (const float value : {made.low, std::nextafter(made.high, made.low), made.high})
            made.samples.push_back({value, spread, 1.0f});
    for (int i = 0; i < 50; ++i) {
        const float value = std::clamp(Uniform(random, made.low, made.high), made.low, made.high);
        made.samples.push_back({value, Uniform(random, 0.0f, 20.0f) * width, Uniform(random, 0.0f, 1.0f)});
    }
    return made;
}

struct Results {
    float width = -1.0f, mean = -1.0f, variance = -1.0f;
    std::int32_t mainPeak = -1;
    std::vector<float> centers, values;
    std::vector<std::int32_t> peaks;
};

Results ResultsOf(const Histogram& made) {
    const ObjectPointer owner = Make(hh::kFactory);
    Object* const object = owner.get();
    EXPECT_EQ(hh::kInitialize(object, made.low, made.high, made.bins), kOk);
    for (const auto& [value, spread, weight] : made.samples)
        EXPECT_EQ(hh::kAddSample(object, value, spread, weight), kOk);
    Results results;
    hh::PeakList peaks{0, nullptr};
    results.centers.resize(static_cast<std::size_t>(made.bins));
    results.values.resize(static_cast<std::size_t>(made.bins));
    EXPECT_EQ(hh::kGetBinWidth(object, &results.width), kOk);
    EXPECT_EQ(hh::kGetMean(object, &results.mean), kOk);
    EXPECT_EQ(hh::kGetVariance(object, &results.variance), kOk);
    EXPECT_EQ(hh::kGetBinCenters(object, made.bins, results.centers.data()), kOk);
    EXPECT_EQ(hh::kGetBinValues(object, made.bins, results.values.data()), kOk);
    EXPECT_EQ(hh::kFindMainPeak(object, made.bins, 1, &results.mainPeak), kOk);
    EXPECT_EQ(hh::kFindPeaks(object, made.bins, &peaks), kOk);
    results.peaks.assign(peaks.indices, peaks.indices + peaks.count);
    return results;
}

TEST_P(ObjectsInAHost, AHistogramHasTheSameBinsToItsAccuracy) {
    std::mt19937 random(1);
    for (int round = 0; round < 300; ++round) {
        const Histogram made = RandomHistogram(random);
        const Results usual = ResultsOf(made);
        const HostFloats host(GetParam());
        const Results results = ResultsOf(made);
        ASSERT_TRUE(host.AreKept());
        ASSERT_EQ(results.width, usual.width);
        ASSERT_EQ(results.centers, usual.centers);
        ASSERT_FLOAT_EQ(results.mean, usual.mean);
        ASSERT_FLOAT_EQ(results.variance, usual.variance);
        for (std::size_t bin = 0; bin < usual.values.size(); ++bin)
            ASSERT_NEAR(results.values[bin], usual.values[bin], usual.values[bin] * FLT_EPSILON + 60 * 3e-10)
                << "bin " << bin << " of round " << round;
    }
}

TEST_P(ObjectsInAHost, AHistogramFindsTheSamePeaks) {
    const Histogram made{0.0f, 10.0f, 500, {{1.03f, 0.3f, 0.7f}, {4.05f, 0.3f, 0.9f}, {9.99f, 0.2f, 0.4f}}};
    const Results usual = ResultsOf(made);
    const HostFloats host(GetParam());
    const Results results = ResultsOf(made);
    EXPECT_EQ(results.mainPeak, usual.mainPeak);
    EXPECT_EQ(results.peaks, usual.peaks);
    EXPECT_FALSE(results.peaks.empty());
}

TEST_P(ObjectsInAHost, AHistogramKeepsAllWeightsInItsBins) {
    std::mt19937 random(2);
    for (int round = 0; round < 300; ++round) {
        const Histogram made = RandomHistogram(random);
        double expected = 0.0;
        for (const Sample& sample : made.samples) expected += sample.weight;
        const HostFloats host(GetParam());
        HeightHistogram histogram(made.low, made.high, made.bins);
        for (const auto& [value, spread, weight] : made.samples) histogram.Add(value, spread, weight);
        const std::span<const float> values = histogram.Values();
        ASSERT_NEAR(std::accumulate(values.begin(), values.end(), 0.0), expected, 1e-4) << round;
    }
}

TEST_P(ObjectsInAHost, AHistogramOfDenormalNumbersKeepsAllWeightsInItsBins) {
    const HostFloats host(GetParam());
    const ObjectPointer histogram = Make(hh::kFactory);
    ASSERT_EQ(hh::kInitialize(histogram.get(), 0, 4 * FLT_TRUE_MIN, 4), kOk);
    for (const float value : {0.0f, FLT_TRUE_MIN, 3 * FLT_TRUE_MIN, 4 * FLT_TRUE_MIN})
        for (const float spread : {0.0f, 2 * FLT_TRUE_MIN, 1.0f, FLT_MAX})
            EXPECT_EQ(hh::kAddSample(histogram.get(), value, spread, 1), kOk);
    std::array<float, 4> values{};
    ASSERT_EQ(hh::kGetBinValues(histogram.get(), 4, values.data()), kOk);
    EXPECT_NEAR(values[0] + values[1] + values[2] + values[3], 16.0f, 1e-5f);
}

TEST_P(ObjectsInAHost, CentroidAndNormalsAreTheSameToTheBit) {
    std::mt19937 random(3);
    std::vector<float> points(3 * 2000);
    for (std::size_t i = 0; i < points.size(); ++i) points[i] = Uniform(random, 90.0f, i % 3 == 2 ? 90.7f : 99.3f);
    const auto compute = [&] {
        const ObjectPointer cloud = CloudOf(points), search = SearchIn(cloud),
                            estimator = Make(normal_estimator::kFactory);
        Object *handedCloud = Handed(cloud), *handedSearch = Handed(search);
        EXPECT_EQ(normal_estimator::kInitialize(estimator.get(), &handedCloud, &handedSearch), kOk);
        std::vector<std::array<float, 3>> vectors(1);
        EXPECT_EQ(point_cloud::kGetCentroid(cloud.get(), vectors[0].data()), kOk);
        for (const float radius : {FLT_MAX, 20.0f, 2.0f, 1.0f}) {
            std::array<float, 3> normal{};
            EXPECT_EQ(normal_estimator::kEstimateNormal(estimator.get(), points.data(), radius, normal.data()), kOk);
            vectors.push_back(normal);
        }
        return vectors;
    };
    const auto usual = compute();
    const HostFloats host(GetParam());
    EXPECT_EQ(compute(), usual);
    EXPECT_TRUE(host.AreKept());
}

}  // namespace
