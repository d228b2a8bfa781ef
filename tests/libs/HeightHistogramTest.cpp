// The sums of the histogram against plain summation over all bins, and the search for peaks.
#include "KV_Components/HeightHistogram.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cfloat>
#include <cmath>
#include <numeric>
#include <random>
#include <vector>

namespace {

using namespace KvComponents;

struct Sample {
    float value, spread, weight;
};

/// The plain way: the kernel at the centre of every bin, normalised and added up.
class PlainHistogram {
public:
    PlainHistogram(float low, float high, std::int32_t bins)
        : values(static_cast<std::size_t>(bins)),
          reached(values.size()),
          m_fLow(low),
          m_fHigh(high),
          m_fWidth((double{high} - low) / bins) {}

    void Add(const Sample& sample) {
        if (sample.value < m_fLow || sample.value > m_fHigh) return;
        const auto [first, end] = BinsAround(sample);
        double sum = 0.0;
        for (std::size_t bin = first; bin < end; ++bin) sum += std::max(Kernel(sample, bin), 0.0);
        if (sum > 0.0) {
            for (std::size_t bin = first; bin < end; ++bin) {
                const double kernel = Kernel(sample, bin);
                values[bin] += sample.weight * std::max(kernel, 0.0) / sum;
                // A centre at the very end of the kernel may count as reached or not.
                if (kernel * sample.spread > -1e-9 * m_fWidth) reached[bin] += sample.weight;
            }
            return;
        }
        const auto own = static_cast<std::size_t>((sample.value - m_fLow) / m_fWidth);
        values[std::min(own, values.size() - 1)] += sample.weight;
        reached[std::min(own, values.size() - 1)] += sample.weight;
    }

    std::vector<double> values;
    std::vector<double> reached;  ///< sum of the weights of the samples that can have a share in the bin

private:
    [[nodiscard]] double Center(std::size_t bin) const { return m_fLow + (static_cast<double>(bin) + 0.5) * m_fWidth; }
    [[nodiscard]] double Kernel(const Sample& sample, std::size_t bin) const {
        return sample.spread > 0.0f ? 1.0 - std::abs(Center(bin) - sample.value) / sample.spread : 0.0;
    }
    /// The bins that are near enough, and some more.
    [[nodiscard]] std::pair<std::size_t, std::size_t> BinsAround(const Sample& sample) const {
        const auto inRange = [&](double bin) {
            return static_cast<std::size_t>(std::clamp(bin, 0.0, static_cast<double>(values.size())));
        };
        return {inRange((sample.value - m_fLow - sample.spread) / m_fWidth - 2.0),
                inRange((sample.value - m_fLow + sample.spread) / m_fWidth + 3.0)};
    }
    double m_fLow, m_fHigh, m_fWidth;
};

/// The rounding of a float, and what the integer shares of a sample can be wrong by: half a unit, and half a unit of
/// the slope per bin, with 2^44 units in a weight or more.
void ExpectSameBins(HeightHistogram& histogram, const PlainHistogram& plain) {
    const std::span<const float> values = histogram.Values();
    ASSERT_EQ(values.size(), plain.values.size());
    const double ofWeight = std::ldexp(0.5 + 0.5 * static_cast<double>(values.size()), -44);
    for (std::size_t bin = 0; bin < values.size(); ++bin) {
        const double tolerance = plain.values[bin] * 0x1p-23 + plain.reached[bin] * ofWeight;
        ASSERT_NEAR(values[bin], plain.values[bin], tolerance) << "bin " << bin;
        if (plain.reached[bin] == 0.0) {
            ASSERT_EQ(values[bin], 0.0f) << "bin " << bin << ", which no sample reaches";
        }
    }
}

std::vector<float> BinsOf(HeightHistogram histogram, const std::vector<Sample>& samples) {
    for (const Sample& sample : samples) histogram.Add(sample.value, sample.spread, sample.weight);
    return {histogram.Values().begin(), histogram.Values().end()};
}

/// Adds samples to both histograms and compares them.
void ExpectSameAsPlain(float low, float high, std::int32_t bins, const std::vector<Sample>& samples) {
    HeightHistogram histogram(low, high, bins);
    PlainHistogram plain(low, high, bins);
    for (const Sample& sample : samples) {
        histogram.Add(sample.value, sample.spread, sample.weight);
        plain.Add(sample);
    }
    ExpectSameBins(histogram, plain);
}

using Random = std::mt19937;
float Uniform(Random& random, float low, float high) {
    return std::uniform_real_distribution<float>(low, high)(random);
}

TEST(HeightHistogram, SpreadsAWeightByTheDistanceOfTheBinCentres) {
    // Centres at 0.5, 1.5, ...; distances 1.75, 0.75, 0.25, 1.25 give 0.25, 1.25, 1.75, 0.75 of 4 in all.
    EXPECT_EQ(BinsOf({0, 8, 8}, {{3.25f, 2.0f, 8.0f}}), (std::vector<float>{0, 0.5f, 2.5f, 3.5f, 1.5f, 0, 0, 0}));
}

TEST(HeightHistogram, KeepsTheWholeWeightInsideTheRange) {
    // Distances 0, 1, 2, 3 of a half width of 4: 4, 3, 2, 1 of 10.
    EXPECT_EQ(BinsOf({0, 8, 8}, {{0.5f, 4.0f, 10.0f}}), (std::vector<float>{4, 3, 2, 1, 0, 0, 0, 0}));
    EXPECT_EQ(BinsOf({0, 8, 8}, {{7.5f, 4.0f, 10.0f}}), (std::vector<float>{0, 0, 0, 0, 1, 2, 3, 4}));
    // Left of the first centre and right of the last one: distances 0.5 and 1.5 of 2 give 1.5 and 0.5 of 2.
    EXPECT_EQ(BinsOf({0, 8, 8}, {{0.0f, 2.0f, 4.0f}}), (std::vector<float>{3, 1, 0, 0, 0, 0, 0, 0}));
    EXPECT_EQ(BinsOf({0, 8, 8}, {{8.0f, 2.0f, 4.0f}}), (std::vector<float>{0, 0, 0, 0, 0, 0, 1, 3}));
    EXPECT_EQ(BinsOf({0, 8, 1}, {{8.0f, 100.0f, 4.0f}}), (std::vector<float>{4}));
}

TEST(HeightHistogram, IgnoresValuesOutsideTheRange) {
    const float below = std::nextafter(-2.0f, -3.0f), above = std::nextafter(2.0f, 3.0f);
    EXPECT_EQ(BinsOf({-2, 2, 4}, {{below, 0, 1}, {above, 0, 1}, {-FLT_MAX, 100, 1}, {FLT_MAX, 100, 1}}),
              std::vector<float>(4));
    EXPECT_EQ(BinsOf({-2, 2, 4}, {{-2, 0, 1}, {2, 0, 2}}), (std::vector<float>{1, 0, 0, 2})) << "both ends are inside";
}

TEST(HeightHistogram, AKernelWithoutACentreGivesAllToTheBinOfTheValue) {
    for (const float spread : {0.0f, 0.25f, 0.49f})
        EXPECT_EQ(BinsOf({0, 4, 4}, {{0.0f, spread, 1}, {1.0f, spread, 2}, {2.99f, spread, 4}, {4.0f, spread, 8}}),
                  (std::vector<float>{1, 2, 4, 8}))
            << spread;
    EXPECT_EQ(BinsOf({0, 4, 4}, {{1.0f, 0.5f, 1}}), (std::vector<float>{0, 1, 0, 0})) << "both centres just outside";
    EXPECT_EQ(BinsOf({0, 4, 4}, {{1.25f, 0.5f, 1}}), (std::vector<float>{0, 1, 0, 0})) << "one centre inside";
}

TEST(HeightHistogram, AWideKernelGivesEachBinTheSame) {
    for (const float spread : {1e20f, FLT_MAX})
        EXPECT_EQ(BinsOf({0, 4, 8}, {{0.0f, spread, 1}, {1.3f, spread, 2}, {4.0f, spread, 5}}),
                  std::vector<float>(8, 1.0f))
            << spread;
}

TEST(HeightHistogram, AgreesWithPlainSummationForEverySpread) {
    Random random(1);
    for (const std::int32_t bins : {1, 2, 3, 17, 500, HeightHistogram::kMaxBins}) {
        std::vector<Sample> samples(bins > 1000 ? 200 : 3000);
        for (Sample& sample : samples) {
            const float spread = std::exp2(Uniform(random, -20.0f, 12.0f));
            sample = {Uniform(random, -3.5f, 17.5f), spread, Uniform(random, 0.0f, 1.0f)};
        }
        SCOPED_TRACE(bins);
        ExpectSameAsPlain(-3.0f, 17.0f, bins, samples);
    }
}

TEST(HeightHistogram, AgreesWithPlainSummationInASmallRange) {
    // Bins of 0.0001, and kernels that are twice as wide as the range.
    Random random(2);
    std::vector<Sample> samples(20'000);
    for (Sample& sample : samples)
        sample = {Uniform(random, 12.3f, 12.35f), 0.1f, std::max(Uniform(random, -1.0f, 1.0f), 0.0f)};
    ExpectSameAsPlain(12.3f, 12.35f, 500, samples);
}

TEST(HeightHistogram, AgreesWithPlainSummationAfterMillionsOfSamplesOfAllWeights) {
    Random random(3);
    std::vector<Sample> samples(2'000'000);
    for (Sample& sample : samples) {
        // Heights of a few surfaces, so that there are bins that no sample reaches between them.
        const float height = 2.0f + 3.0f * static_cast<float>(random() % 6) + Uniform(random, 0.0f, 0.4f);
        sample = {height, Uniform(random, 0.0f, 0.2f), std::exp2(Uniform(random, -90.0f, 90.0f))};
    }
    ExpectSameAsPlain(0.0f, 20.0f, 500, samples);
}

TEST(HeightHistogram, LightSamplesKeepTheirDigitsBesideHeavyOnes) {
    std::vector<float> expected(8);
    expected[1] = 1e-30f, expected[3] = 1e30f, expected[6] = FLT_MIN / 4;
    EXPECT_EQ(BinsOf({0, 8, 8}, {{1.5f, 1, 1e-30f}, {3.5f, 1, 1e30f}, {6.5f, 1, FLT_MIN / 4}}), expected);
}

TEST(HeightHistogram, DoesNotDependOnTheOrderOfTheSamples) {
    Random random(4);
    std::vector<Sample> samples(200'000);  // the differences are summed up several times
    for (Sample& sample : samples)
        sample = {Uniform(random, 0.0f, 9.0f), Uniform(random, 0.0f, 3.0f), std::exp2(Uniform(random, -9.0f, 9.0f))};
    const std::vector<float> inOneOrder = BinsOf({0, 9, 100}, samples);
    std::ranges::shuffle(samples, random);
    EXPECT_EQ(BinsOf({0, 9, 100}, samples), inOneOrder);
}

TEST(HeightHistogram, ManyEqualSamplesMakeAnExactPlateau) {
    // Between two centres, to which it is equally near: 3.5, 2.5, 1.5 and 0.5 of 16 on each side.
    const std::vector<Sample> samples(300'000, {4.0f, 4.0f, 0.7f});
    HeightHistogram histogram(0, 8, 8);
    for (const Sample& sample : samples) histogram.Add(sample.value, sample.spread, sample.weight);
    const std::span<const float> values = histogram.Values();
    EXPECT_EQ(values[3], values[4]);
    EXPECT_EQ(values[0], values[7]);
    EXPECT_NEAR(values[3], 300'000 * 0.7 * 3.5 / 16.0, 0.01);
    EXPECT_EQ(HighestBin(values), 3);
    EXPECT_EQ(PeaksOf(values, 1), std::vector<std::int32_t>{3});
}

TEST(HeightHistogram, CountsManySamplesWithoutARoundingError) {
    HeightHistogram histogram(0, 4, 4);
    for (int i = 0; i < 3'000'001; ++i) histogram.Add(2.25f, 0.0f, 0.75f);
    EXPECT_EQ(histogram.Values()[2], static_cast<float>(3'000'001 * 0.75));
    EXPECT_EQ(histogram.Mean(), 2.25);
    EXPECT_EQ(histogram.Variance(), 0.0);
}

TEST(HeightHistogram, ABinDoesNotOverflowWithManySamplesOfTheHeaviestWeightInAGroup) {
    // Weights of 2 up to 8 have one unit. With a slope at the last bins too: its product with their index wraps.
    constexpr int kSamples = 10 * 65'536;
    const float weight = std::nextafter(8.0f, 0.0f);
    const float ofAll = static_cast<float>(kSamples * double{weight});
    HeightHistogram one(0, 4, 4), last(0, 4096, 4096);
    for (int i = 0; i < kSamples; ++i) {
        one.Add(3.5f, 0.0f, weight);
        last.Add(4095.5f, 1.5f, weight);  // heights 1.5 and 0.5 of 2
    }
    EXPECT_EQ(one.Values()[3], ofAll);
    EXPECT_FLOAT_EQ(last.Values()[4095], 0.75f * ofAll);
    EXPECT_FLOAT_EQ(last.Values()[4094], 0.25f * ofAll);
    EXPECT_EQ(last.Values()[4093], 0.0f);
}

TEST(HeightHistogram, CanBeReadBetweenSamples) {
    HeightHistogram histogram(0, 8, 8);
    PlainHistogram plain(0, 8, 8);
    Random random(5);
    for (int i = 0; i < 50; ++i) {
        const Sample sample{Uniform(random, 0.0f, 8.0f), Uniform(random, 0.0f, 3.0f), Uniform(random, 0.0f, 2.0f)};
        histogram.Add(sample.value, sample.spread, sample.weight);
        plain.Add(sample);
        ExpectSameBins(histogram, plain);
    }
}

TEST(HeightHistogram, WeightsBeyondTheLargestFloatStayThere) {
    EXPECT_EQ(BinsOf({0, 1, 1}, {{0.5f, 0, FLT_MAX}, {0.5f, 0, FLT_MAX}}), std::vector<float>{FLT_MAX});
}

TEST(HeightHistogram, ForgetsItsSamplesAtAReset) {
    HeightHistogram histogram(0, 8, 8);
    for (int i = 0; i < 70'000; ++i) histogram.Add(3.3f, 2.0f, 5.0f);
    EXPECT_GT(histogram.Values()[3], 0.0f);
    histogram.Reset();
    EXPECT_TRUE(std::ranges::all_of(histogram.Values(), [](float value) { return value == 0.0f; }));
    EXPECT_FALSE(histogram.Mean());
    EXPECT_FALSE(histogram.Variance());
    histogram.Add(3.25f, 2.0f, 8.0f);
    EXPECT_EQ(histogram.Values()[3], 3.5f);
    EXPECT_EQ(histogram.Mean(), 3.25);
}

TEST(HeightHistogram, MomentsAreThoseOfTheValuesAndNotOfTheBins) {
    HeightHistogram histogram(0, 8, 2);
    EXPECT_FALSE(histogram.Mean()) << "without samples";
    histogram.Add(1.0f, 3.0f, 0.0f);
    EXPECT_FALSE(histogram.Variance()) << "without a weight";
    histogram.Add(1.0f, 3.0f, 1.0f);
    histogram.Add(2.0f, 0.0f, 3.0f);
    histogram.Add(9.0f, 3.0f, 7.0f);  // outside
    EXPECT_EQ(histogram.Mean(), 1.75);
    EXPECT_EQ(histogram.Variance(), 0.1875);  // (0.5625 + 3 * 0.0625) / 4
}

TEST(HeightHistogram, VarianceOfANarrowPeakFarFromZeroKeepsItsDigits) {
    HeightHistogram histogram(0, 1e7f, 500);
    histogram.Add(9'999'999.0f, 0.1f, 0.7f);
    histogram.Add(10'000'000.0f, 0.1f, 0.3f);
    EXPECT_NEAR(histogram.Mean().value(), 9'999'999.3, 1e-6);
    EXPECT_NEAR(histogram.Variance().value(), 0.21, 1e-6);
}

TEST(HeightHistogram, CentresAreInTheMiddleOfEqualBins) {
    const HeightHistogram histogram(-1, 3, 8);
    EXPECT_EQ(histogram.BinCount(), 8);
    EXPECT_EQ(histogram.BinWidth(), 0.5);
    for (std::int32_t bin = 0; bin < 8; ++bin) EXPECT_EQ(histogram.BinCenter(bin), -0.75 + 0.5 * bin);
}

TEST(HighestBin, IsTheFirstOfSeveral) {
    EXPECT_EQ(HighestBin(std::vector<float>{0, 2, 1, 2}), 1);
    EXPECT_EQ(HighestBin(std::vector<float>{FLT_TRUE_MIN}), 0);
    EXPECT_EQ(HighestBin(std::vector<float>(3)), std::nullopt);
}

struct PeakCase {
    const char* name;
    std::vector<float> values;
    std::int32_t reach;
    std::vector<std::int32_t> peaks;
};
void PrintTo(const PeakCase& row, std::ostream* out) { *out << row.name; }

const PeakCase kPeakCases[] = {
    {"AllZero", {0, 0, 0}, 1, {}},
    {"ZeroBinsBesideAPeak", {0, 0, 5, 0, 0}, 1, {2}},
    {"BothEndsCanBePeaks", {3, 1, 0, 1, 2}, 1, {0, 4}},
    {"AHigherBinInsideTheWindow", {3, 1, 5, 1, 2}, 2, {2}},
    {"AHigherBinJustOutsideTheWindow", {3, 1, 1, 5}, 2, {0, 3}},
    {"AHigherBinJustInsideTheWindow", {3, 1, 1, 5}, 3, {3}},
    {"TheFirstBinOfAPlateau", {1, 4, 4, 4, 1}, 2, {1}},
    {"APlateauOfTheWholeRange", {2, 2, 2, 2}, 1, {0}},
    {"APlateauThatEndsTheRange", {1, 1, 2, 2}, 3, {2}},
    {"EqualPeaksWithAValleyBetweenThem", {4, 1, 4}, 2, {0, 2}},
    {"APlateauBelowASteepSlopeBeginsWhereItIsHighest", {9, 2, 2, 2, 2}, 2, {0, 3}},
    {"WithoutAWindowEveryBinAboveZero", {1, 2, 0, 2, 2}, 0, {0, 1, 3}},
    {"AWindowWiderThanTheRange", {1, 2, 3, 2}, 2147483647, {2}},
    {"OneBin", {1}, 0, {0}},
};
class PeaksOfBins : public testing::TestWithParam<PeakCase> {};
INSTANTIATE_TEST_SUITE_P(Cases, PeaksOfBins, testing::ValuesIn(kPeakCases),
                         [](const auto& row) { return row.param.name; });

TEST_P(PeaksOfBins, AreMaximalWithinTheWindow) {
    EXPECT_EQ(PeaksOf(GetParam().values, GetParam().reach), GetParam().peaks);
}

TEST(PeaksOf, AgreesWithALookAtEveryWindow) {
    Random random(6);
    std::size_t found = 0;
    for (int round = 0; round < 2000; ++round) {
        std::vector<float> values(1 + random() % 40);
        for (float& value : values) value = static_cast<float>(random() % 6);
        const auto reach = static_cast<std::size_t>(random() % 12);
        std::vector<std::int32_t> expected;
        bool wasPeak = false;
        for (std::size_t bin = 0; bin < values.size(); ++bin) {
            const auto first = values.begin() + static_cast<std::ptrdiff_t>(bin - std::min(bin, reach));
            const auto end = values.begin() + static_cast<std::ptrdiff_t>(std::min(bin + reach + 1, values.size()));
            const bool isPeak = values[bin] > 0.0f && *std::max_element(first, end) == values[bin];
            if (isPeak && !(wasPeak && values[bin - 1] == values[bin])) expected.push_back(static_cast<int>(bin));
            wasPeak = isPeak;
        }
        ASSERT_EQ(PeaksOf(values, static_cast<std::int32_t>(reach)), expected);
        found += expected.size();
    }
    EXPECT_GT(found, 2000u);
}

}  // namespace
