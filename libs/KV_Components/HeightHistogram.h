// Sums of weighted samples in equal bins, each sample spread over the bins around it by a triangular kernel.
#pragma once
#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

namespace KvComponents {

/// A histogram whose samples cost the same for every spread. Sums are integers: the values in the bins do not depend on
/// the order of the samples, and a bin that no sample reaches is exactly 0.
///
/// A sample is a triangle over the bins, that is, two straight lines. Each line is added to the bins it covers in
/// constant time, as a difference at both of its ends; Values() sums the differences up.
///
/// Samples may be added in every rounding mode. Results are read in the default floating-point environment.
class HeightHistogram {
public:
    static constexpr std::int32_t kMaxBins = 4096;

    /// @param low, high  finite, low below high
    /// @param bins       1 to kMaxBins
    HeightHistogram(float low, float high, std::int32_t bins);

    /// Adds a sample; outside low..high it is ignored.
    /// @param value   finite
    /// @param spread  half width of the kernel, finite, 0 or more
    /// @param weight  finite, 0 or more
    void Add(float value, float spread, float weight);
    /// Forgets the samples.
    void Reset();

    [[nodiscard]] std::int32_t BinCount() const { return static_cast<std::int32_t>(m_values.size()); }
    [[nodiscard]] double BinWidth() const { return (m_fHigh - m_fLow) / BinCount(); }
    [[nodiscard]] double BinCenter(std::int32_t bin) const { return m_fLow + (bin + 0.5) * BinWidth(); }

    /// Weighted mean of the values inside the range. None without a weight above 0.
    [[nodiscard]] std::optional<double> Mean() const;
    /// Weighted mean of their squared differences from the mean.
    [[nodiscard]] std::optional<double> Variance() const;

    /// The weight in each bin, valid until the next sample.
    [[nodiscard]] std::span<const float> Values();

private:
    /// A constant and a slope: constant + slope * bin, all modulo 2^64. Integers cancel exactly.
    using Line = std::uint64_t __attribute__((vector_size(16)));
    __extension__ using Wide = unsigned __int128;

    /// Samples of similar weight, as multiples of one unit: a light sample keeps its digits beside a heavy one.
    struct Group {
        std::vector<Line> differences;  ///< of the latest samples, bins + 1 of them; empty before the first sample
        std::vector<Wide> sums;         ///< in each bin, of the samples before those
        std::int32_t newest = 0;        ///< samples in the differences
    };
    static constexpr int kExponentsPerGroup = 2;  ///< binary exponents of weights
    static constexpr int kGroupCount = 256 / kExponentsPerGroup;

    void AddToMoments(double value, double weight);
    void AddTriangle(double position, double reach, double units, std::vector<Line>& differences);
    void Settle(Group& group) const;

    double m_fLow = 0.0, m_fHigh = 0.0;
    /// Positions of low and high. Both are members: the compiler makes a branch of a limit that is constant.
    double m_fLowEdge = 0.5, m_fHighEdge = 0.5;
    double m_fBinsPerUnit = 0.0;

    std::array<Group, kGroupCount> m_groups;
    std::vector<float> m_values;  ///< the weight in each bin; out of date when m_bValuesAreOld
    bool m_bValuesAreOld = true;

    // Moments about the first value: equal values have no variance, and narrow peaks keep their digits.
    double m_fOrigin = 0.0;
    double m_fWeight = 0.0, m_fMoment1 = 0.0, m_fMoment2 = 0.0;
};

/// The index of the highest value, of several the first. None when all are 0.
[[nodiscard]] std::optional<std::int32_t> HighestBin(std::span<const float> values);

/// The bins above 0 that no bin within @p reach to each side exceeds, ascending; of adjacent ones with the same value
/// the first. Linear in the number of bins.
[[nodiscard]] std::vector<std::int32_t> PeaksOf(std::span<const float> values, std::int32_t reach);

}  // namespace KvComponents
