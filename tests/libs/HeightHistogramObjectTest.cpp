// The histogram object through its table of operations, as callers see it.
#include <array>
#include <cfloat>
#include <cmath>

#include "GeometryObjects.h"
#include "KV_Components/HeightHistogram.h"

namespace {

using namespace GeometryObjects;
namespace hh = height_histogram;

class HeightHistogramObject : public NoLeak {
protected:
    [[nodiscard]] std::vector<float> Values(std::int32_t bins) const {
        std::vector<float> values(static_cast<std::size_t>(bins), -7.0f);
        EXPECT_EQ(hh::kGetBinValues(histogram.get(), bins, values.data()), kOk);
        return values;
    }
    void Add(float value, float spread, float weight) const {
        EXPECT_EQ(hh::kAddSample(histogram.get(), value, spread, weight), kOk);
    }
    const ObjectPointer histogram = Make(hh::kFactory);
};

TEST_F(HeightHistogramObject, FailsBeforeItIsInitialized) {
    float number = 7.0f, array[2] = {7.0f, 7.0f};
    std::int32_t index = 7;
    hh::PeakList peaks{7, nullptr};
    Object* const object = histogram.get();
    EXPECT_EQ(hh::kGetMean(object, &number), kNo);
    EXPECT_EQ(hh::kGetVariance(object, &number), kNo);
    EXPECT_EQ(hh::kReset(object), kNo);
    EXPECT_EQ(hh::kAddSample(object, 1, 1, 1), kNo);
    EXPECT_EQ(hh::kGetBinWidth(object, &number), kNo);
    EXPECT_EQ(hh::kGetBinCenters(object, 2, array), kNo);
    EXPECT_EQ(hh::kGetBinValues(object, 2, array), kNo);
    EXPECT_EQ(hh::kFindMainPeak(object, 1, 1, &index), kNo);
    EXPECT_EQ(hh::kFindPeaks(object, 1, &peaks), kNo);
    EXPECT_EQ(hh::kGetMean(object, nullptr), kNo) << "whatever its arguments are";
    EXPECT_EQ(hh::kAddSample(object, NAN, 1, 1), kNo) << "whatever its arguments are";
    EXPECT_EQ(number, 7.0f);
    EXPECT_EQ(array[0], 7.0f);
    EXPECT_EQ(index, 7);
    EXPECT_EQ(peaks.count, 7);
}

TEST_F(HeightHistogramObject, RefusesRangesWithoutAWidth) {
    Object* const object = histogram.get();
    ASSERT_EQ(hh::kInitialize(object, 0, 4, 4), kOk);
    Add(2.5f, 0, 3);
    const float nan = NAN, inf = INFINITY;
    for (const auto& [low, high] : {std::pair{1.0f, 1.0f},
                                    {1.0f, 0.5f},
                                    {-0.0f, 0.0f},
                                    {nan, 1.0f},
                                    {0.0f, nan},
                                    {nan, nan},
                                    {-inf, 1.0f},
                                    {0.0f, inf},
                                    {inf, inf},
                                    {-inf, inf}})
        EXPECT_EQ(hh::kInitialize(object, low, high, 4), kWrong) << low << " to " << high;
    for (const std::int32_t bins : {0, -1, INT32_MIN, HeightHistogram::kMaxBins + 1, INT32_MAX})
        EXPECT_EQ(hh::kInitialize(object, 0, 8, bins), kWrong) << bins;
    EXPECT_EQ(hh::kInitialize(object, 0, FLT_TRUE_MIN, 2), kWrong) << "half of the smallest float is 0";
    EXPECT_EQ(hh::kInitialize(object, -FLT_MAX, FLT_MAX, 1), kWrong) << "the width is beyond the floats";
    EXPECT_EQ(Values(4), (std::vector<float>{0, 0, 3, 0})) << "a call that fails changes nothing";
}

TEST_F(HeightHistogramObject, AcceptsTheSmallestAndTheLargestRanges) {
    Object* const object = histogram.get();
    EXPECT_EQ(hh::kInitialize(object, 1.0f, std::nextafter(1.0f, 2.0f), 500), kOk);
    EXPECT_EQ(hh::kInitialize(object, 0, FLT_TRUE_MIN, 1), kOk);
    EXPECT_EQ(hh::kInitialize(object, -FLT_MAX, FLT_MAX, 2), kOk);
    float width = 0;
    EXPECT_EQ(hh::kGetBinWidth(object, &width), kOk);
    EXPECT_EQ(width, FLT_MAX);
    EXPECT_EQ(hh::kInitialize(object, 0, 1, HeightHistogram::kMaxBins), kOk);
    EXPECT_EQ(hh::kInitialize(object, 0, 1, 1), kOk);
}

TEST_F(HeightHistogramObject, InitializeForgetsTheSamples) {
    ASSERT_EQ(hh::kInitialize(histogram.get(), 0, 4, 4), kOk);
    Add(2.5f, 0, 3);
    ASSERT_EQ(hh::kInitialize(histogram.get(), 0, 4, 2), kOk);
    EXPECT_EQ(Values(2), (std::vector<float>{0, 0}));
    float mean = 7;
    EXPECT_EQ(hh::kGetMean(histogram.get(), &mean), kNo);
}

TEST_F(HeightHistogramObject, ReturnsTheMiddleAndTheWidthOfEachBin) {
    Object* const object = histogram.get();
    ASSERT_EQ(hh::kInitialize(object, -1, 1, 4), kOk);
    float width = 0;
    std::array<float, 4> centers{};
    EXPECT_EQ(hh::kGetBinWidth(object, &width), kOk);
    EXPECT_EQ(width, 0.5f);
    EXPECT_EQ(hh::kGetBinCenters(object, 4, centers.data()), kOk);
    EXPECT_EQ(centers, (std::array<float, 4>{-0.75f, -0.25f, 0.25f, 0.75f}));
    EXPECT_EQ(hh::kGetBinWidth(object, nullptr), kWrong);
    EXPECT_EQ(hh::kGetBinCenters(object, 4, nullptr), kWrong);
    EXPECT_EQ(hh::kGetBinValues(object, 4, nullptr), kWrong);
    for (const std::int32_t count : {3, 5, 0, -4}) {
        EXPECT_EQ(hh::kGetBinCenters(object, count, centers.data()), kWrong) << count;
        EXPECT_EQ(hh::kGetBinValues(object, count, centers.data()), kWrong) << count;
    }
    EXPECT_EQ(centers[0], -0.75f);
}

TEST_F(HeightHistogramObject, RefusesSamplesThatAreNoNumbers) {
    Object* const object = histogram.get();
    ASSERT_EQ(hh::kInitialize(object, 0, 4, 4), kOk);
    for (const float bad : {NAN, INFINITY, -INFINITY}) {
        EXPECT_EQ(hh::kAddSample(object, bad, 1, 1), kWrong) << bad;
        EXPECT_EQ(hh::kAddSample(object, 1, bad, 1), kWrong) << bad;
        EXPECT_EQ(hh::kAddSample(object, 1, 1, bad), kWrong) << bad;
    }
    EXPECT_EQ(hh::kAddSample(object, 1, -0.5f, 1), kWrong);
    EXPECT_EQ(hh::kAddSample(object, 1, 1, -0.5f), kWrong);
    EXPECT_EQ(Values(4), std::vector<float>(4));
    Add(1.5f, -0.0f, 2);
    Add(1.5f, 1, -0.0f);
    Add(99, 1, 1);
    Add(2.5f, FLT_MAX, FLT_TRUE_MIN);
    EXPECT_EQ(Values(4)[1], 2.0f);
}

TEST_F(HeightHistogramObject, ReturnsTheMomentsOfTheSamples) {
    Object* const object = histogram.get();
    ASSERT_EQ(hh::kInitialize(object, 0, 10, 5), kOk);
    float mean = 7, variance = 7;
    EXPECT_EQ(hh::kGetMean(object, &mean), kNo);
    EXPECT_EQ(hh::kGetVariance(object, &variance), kNo);
    EXPECT_EQ(mean, 7.0f);
    Add(1, 3, 3);
    Add(5, 3, 1);
    EXPECT_EQ(hh::kGetMean(object, &mean), kOk);
    EXPECT_EQ(hh::kGetVariance(object, &variance), kOk);
    EXPECT_EQ(mean, 2.0f);
    EXPECT_EQ(variance, 3.0f);
    EXPECT_EQ(hh::kGetMean(object, nullptr), kWrong);
    EXPECT_EQ(hh::kGetVariance(object, nullptr), kWrong);
    EXPECT_EQ(hh::kReset(object), kOk);
    EXPECT_EQ(hh::kGetMean(object, &mean), kNo);
    EXPECT_EQ(Values(5), std::vector<float>(5));
}

TEST_F(HeightHistogramObject, FindsTheHighestBin) {
    Object* const object = histogram.get();
    ASSERT_EQ(hh::kInitialize(object, 0, 8, 8), kOk);
    std::int32_t index = 7;
    EXPECT_EQ(hh::kFindMainPeak(object, 5, 1, &index), kNo) << "all bins are 0";
    Add(3, 2, 0);
    EXPECT_EQ(hh::kFindMainPeak(object, 5, 1, &index), kNo) << "without a weight";
    EXPECT_EQ(index, 7);
    Add(1.5f, 0, 2);
    Add(6.5f, 0, 3);
    Add(4.5f, 0, 3);
    for (const std::int32_t width : {1, 5, 8, INT32_MAX}) {
        EXPECT_EQ(hh::kFindMainPeak(object, width, 1, &index), kOk) << width;
        EXPECT_EQ(index, 4) << width;
    }
    for (const std::int32_t width : {0, -1, INT32_MIN})
        EXPECT_EQ(hh::kFindMainPeak(object, width, 1, &index), kWrong) << width;
    for (const std::int32_t reserved : {0, 2, -1})
        EXPECT_EQ(hh::kFindMainPeak(object, 5, reserved, &index), kWrong) << reserved;
    EXPECT_EQ(hh::kFindMainPeak(object, 5, 1, nullptr), kWrong);
}

TEST_F(HeightHistogramObject, ListsThePeaksInAWindowOfTheWidth) {
    Object* const object = histogram.get();
    ASSERT_EQ(hh::kInitialize(object, 0, 8, 8), kOk);
    const auto peaks = [&](std::int32_t width) {
        hh::PeakList list{7, nullptr};
        EXPECT_EQ(hh::kFindPeaks(object, width, &list), kOk);
        return std::vector<std::int32_t>(list.indices, list.indices + list.count);
    };
    EXPECT_TRUE(peaks(3).empty());
    Add(0.5f, 0, 2);
    Add(2.5f, 0, 3);
    Add(6.5f, 0, 1);
    EXPECT_EQ(peaks(1), (std::vector<std::int32_t>{0, 2, 6}));
    EXPECT_EQ(peaks(3), (std::vector<std::int32_t>{0, 2, 6})) << "half of 3 is 1 bin to each side";
    EXPECT_EQ(peaks(4), (std::vector<std::int32_t>{2, 6}));
    EXPECT_EQ(peaks(7), (std::vector<std::int32_t>{2, 6}));
    EXPECT_EQ(peaks(8), std::vector<std::int32_t>{2});
    EXPECT_EQ(peaks(INT32_MAX), std::vector<std::int32_t>{2});
    hh::PeakList list{7, nullptr};
    for (const std::int32_t width : {0, -1, INT32_MIN}) EXPECT_EQ(hh::kFindPeaks(object, width, &list), kWrong);
    EXPECT_EQ(hh::kFindPeaks(object, 5, nullptr), kWrong);
    EXPECT_EQ(list.count, 7);
}

}  // namespace
