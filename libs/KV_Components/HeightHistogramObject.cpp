// The histogram object. The sums are those of HeightHistogram.h.
#include <algorithm>
#include <cfloat>
#include <cmath>

#include "DefaultFloats.h"
#include "HeightHistogram.h"
#include "KV_Components/Geometry.h"
#include "ObjectRegistry.h"

namespace KvComponents {

namespace {

bool IsFiniteAndNotNegative(float value) { return value >= 0.0f && std::isfinite(value); }

/// See KV_Components/Geometry.h for the operations.
class HeightHistogramObject final : public SingleInterfaceComponent {
public:
    HeightHistogramObject() : SingleInterfaceComponent(height_histogram::kInterface, Operations()) {}

private:
    std::int32_t Initialize(float low, float high, std::int32_t bins) {
        const DefaultFloats standard;
        if (bins < 1 || bins > HeightHistogram::kMaxBins) return kInvalidArgument;
        // Above 0 as a float too, since callers divide by it. NaN where low or high is NaN, and then refused.
        const double width = (double{high} - double{low}) / bins;
        if (!(width <= double{FLT_MAX} && static_cast<float>(width) > 0.0f)) return kInvalidArgument;
        m_histogram = HeightHistogram(low, high, bins);
        return kSucceeded;
    }

    std::int32_t GetMean(float* mean) {
        const DefaultFloats standard;
        if (!m_histogram) return kFailed;
        return Give(m_histogram->Mean(), mean);
    }

    std::int32_t GetVariance(float* variance) {
        const DefaultFloats standard;
        if (!m_histogram) return kFailed;
        return Give(m_histogram->Variance(), variance);
    }

    std::int32_t Reset() {
        if (!m_histogram) return kFailed;
        m_histogram->Reset();
        return kSucceeded;
    }

    std::int32_t AddSample(float value, float spread, float weight) {
        if (!m_histogram) return kFailed;
        if (!std::isfinite(value) || !IsFiniteAndNotNegative(spread) || !IsFiniteAndNotNegative(weight))
            return kInvalidArgument;
        m_histogram->Add(value, spread, weight);
        return kSucceeded;
    }

    std::int32_t GetBinWidth(float* width) {
        const DefaultFloats standard;
        if (!m_histogram) return kFailed;
        return Give(m_histogram->BinWidth(), width);
    }

    std::int32_t GetBinCenters(std::int32_t count, float* centers) {
        const DefaultFloats standard;
        if (!m_histogram) return kFailed;
        if (centers == nullptr || count != m_histogram->BinCount()) return kInvalidArgument;
        for (std::int32_t bin = 0; bin < count; ++bin) centers[bin] = static_cast<float>(m_histogram->BinCenter(bin));
        return kSucceeded;
    }

    std::int32_t GetBinValues(std::int32_t count, float* values) {
        const DefaultFloats standard;
        if (!m_histogram) return kFailed;
        if (values == nullptr || count != m_histogram->BinCount()) return kInvalidArgument;
        std::ranges::copy(m_histogram->Values(), values);
        return kSucceeded;
    }

    std::int32_t FindMainPeak(std::int32_t width, std::int32_t reserved, std::int32_t* index) {
        const DefaultFloats standard;
        if (!m_histogram) return kFailed;
        if (index == nullptr || width < 1 || reserved != 1) return kInvalidArgument;
        const std::optional<std::int32_t> highest = HighestBin(m_histogram->Values());
        if (!highest) return kFailed;
        *index = *highest;
        return kSucceeded;
    }

    std::int32_t FindPeaks(std::int32_t width, height_histogram::PeakList* peaks) {
        const DefaultFloats standard;
        if (!m_histogram) return kFailed;
        if (peaks == nullptr || width < 1) return kInvalidArgument;
        m_vPeaks = PeaksOf(m_histogram->Values(), width / 2);
        *peaks = {static_cast<std::int32_t>(m_vPeaks.size()), m_vPeaks.data()};
        return kSucceeded;
    }

    static std::int32_t Give(std::optional<double> result, float* out) {
        if (out == nullptr) return kInvalidArgument;
        if (!result) return kFailed;
        *out = static_cast<float>(*result);
        return kSucceeded;
    }

    static const Object::Entry* Operations() {
        using namespace height_histogram;
        static const OperationTable table = OperationTable()
                                                .Set<&HeightHistogramObject::Initialize>(kInitialize)
                                                .Set<&HeightHistogramObject::GetMean>(kGetMean)
                                                .Set<&HeightHistogramObject::GetVariance>(kGetVariance)
                                                .Set<&HeightHistogramObject::Reset>(kReset)
                                                .Set<&HeightHistogramObject::AddSample>(kAddSample)
                                                .Set<&HeightHistogramObject::GetBinWidth>(kGetBinWidth)
                                                .Set<&HeightHistogramObject::GetBinCenters>(kGetBinCenters)
                                                .Set<&HeightHistogramObject::GetBinValues>(kGetBinValues)
                                                .Set<&HeightHistogramObject::FindMainPeak>(kFindMainPeak)
                                                .Set<&HeightHistogramObject::FindPeaks>(kFindPeaks);
        return table.Entries();
    }

    std::optional<HeightHistogram> m_histogram;  ///< none before Initialize()
    std::vector<std::int32_t> m_vPeaks;          ///< of the last FindPeaks()
};

}  // namespace

Component* MakeHeightHistogram() { return new HeightHistogramObject; }

}  // namespace KvComponents
