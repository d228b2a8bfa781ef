// Sums of weighted samples in bins. A position t counts bins from the centre of the first one: the centre of bin j is
// at t = j.
#include "HeightHistogram.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <deque>
#include <limits>

namespace KvComponents {

namespace {

/// A weight is below 2^62 in the unit of its group, so that 2^60 samples fit into 2^127.
constexpr int kWeightBits = 62;
constexpr double kMaxShare = 0x1p62;

/// 2^exponent, for exponents of normal numbers.
double PowerOfTwo(int exponent) { return std::bit_cast<double>(static_cast<std::uint64_t>(1023 + exponent) << 52); }

/// The nearest integer, for 0 to 2^62; more, which only shares that are not used can be, counts as 2^62.
std::uint64_t Rounded(double share) {
    return static_cast<std::uint64_t>(std::int64_t(std::min(share, kMaxShare) + 0.5));
}

}  // namespace

HeightHistogram::HeightHistogram(float low, float high, std::int32_t bins)
    : m_fLow(low), m_fHigh(high), m_fBinsPerUnit(bins / (double{high} - double{low})), m_iBins(bins) {
    m_values.resize(static_cast<std::size_t>(bins));
}

void HeightHistogram::Add(float value, float spread, float weight) {
    if (!(weight > 0.0f && value >= m_fLow && value <= m_fHigh)) return;

    // The group of the weight, and the number of its units in the weight.
    const int group = static_cast<int>(std::bit_cast<std::uint32_t>(weight) >> 23) / kExponentsPerGroup;
    Differences& differences = m_groups[static_cast<std::size_t>(group)];
    if (differences.empty()) differences.resize(static_cast<std::size_t>(m_iBins) + 1);
    const double units = weight * PowerOfTwo(kWeightBits + 127 - kExponentsPerGroup * (group + 1));

    // The bins first..peak are on the rising line, peak + 1..last on the falling one. Either may be without bins.
    const double t = (value - m_fLow) * m_fBinsPerUnit - 0.5;
    const double reach = spread * m_fBinsPerUnit;
    const double left = std::max(t - reach, 0.0), right = std::min(t + reach, m_iBins - 1.0);
    std::int32_t first = static_cast<std::int32_t>(left);
    first += first < left;
    std::int32_t peak = static_cast<std::int32_t>(t);
    peak -= t < 0.0;
    std::int32_t last = static_cast<std::int32_t>(right);
    last -= right < 0.0;

    // Heights of the triangle of slope 1 at the outer bins, and the sum of its heights at all bins.
    double atFirst = std::max(reach - (t - first), 0.0), atLast = std::max(reach - (last - t), 0.0);
    const double rising = peak - first + 1, falling = last - peak;
    double sum = rising * (atFirst + 0.5 * (rising - 1.0)) + falling * (atLast + 0.5 * (falling - 1.0));
    if (!(sum > 0.0)) {  // no centre within the kernel: one bin, on a rising line of that bin alone
        first = peak = last = std::min(static_cast<std::int32_t>(t + 0.5), m_iBins - 1);
        atFirst = sum = 1.0;
    }
    const double unit = units / sum;
    const std::uint64_t slope = Rounded(unit);
    const Wide risingConstant = Wide{Rounded(unit * atFirst)} - Wide{slope} * static_cast<std::uint32_t>(first);
    const Wide fallingConstant = Wide{Rounded(unit * atLast)} + Wide{slope} * static_cast<std::uint32_t>(last);

    Line& start = differences[static_cast<std::size_t>(first)];
    start.constant += risingConstant;
    start.slope += slope;
    Line& turn = differences[static_cast<std::size_t>(peak + 1)];
    turn.constant += fallingConstant - risingConstant;
    turn.slope -= Wide{slope} * 2;
    Line& end = differences[static_cast<std::size_t>(last + 1)];
    end.constant -= fallingConstant;
    end.slope += slope;

    AddToMoments(value, weight);
    m_bValuesAreOld = true;
}

void HeightHistogram::AddToMoments(double value, double weight) {
    if (m_fWeight == 0.0) m_fOrigin = value;
    const double moment = weight * (value - m_fOrigin);
    m_fWeight += weight;
    m_fMoment1 += moment;
    m_fMoment2 += moment * (value - m_fOrigin);
}

void HeightHistogram::Reset() {
    for (Differences& differences : m_groups) std::fill(differences.begin(), differences.end(), Line{});
    m_fWeight = m_fMoment1 = m_fMoment2 = 0.0;
    m_bValuesAreOld = true;
}

std::optional<double> HeightHistogram::Mean() const {
    if (m_fWeight == 0.0) return std::nullopt;
    return std::clamp(m_fOrigin + m_fMoment1 / m_fWeight, m_fLow, m_fHigh);
}

std::optional<double> HeightHistogram::Variance() const {
    if (m_fWeight == 0.0) return std::nullopt;
    const double mean = m_fMoment1 / m_fWeight;
    return std::max(m_fMoment2 / m_fWeight - mean * mean, 0.0);
}

std::span<const float> HeightHistogram::Values() {
    if (m_bValuesAreOld) SumUp();
    m_bValuesAreOld = false;
    return m_values;
}

void HeightHistogram::SumUp() {
    std::vector<double> sums(m_values.size());
    for (int group = 0; group < kGroupCount; ++group) {
        const Differences& differences = m_groups[static_cast<std::size_t>(group)];
        if (differences.empty()) continue;
        const double weightOfUnit = PowerOfTwo(kExponentsPerGroup * (group + 1) - 127 - kWeightBits);
        Line line;
        for (std::size_t bin = 0; bin < sums.size(); ++bin) {
            line.constant += differences[bin].constant;
            line.slope += differences[bin].slope;
            sums[bin] += static_cast<double>(line.constant + line.slope * bin) * weightOfUnit;
        }
    }
    constexpr double kMax = std::numeric_limits<float>::max();
    for (std::size_t bin = 0; bin < sums.size(); ++bin) m_values[bin] = static_cast<float>(std::min(sums[bin], kMax));
}

std::optional<std::int32_t> HighestBin(std::span<const float> values) {
    const auto highest = std::max_element(values.begin(), values.end());
    if (highest == values.end() || *highest <= 0.0f) return std::nullopt;
    return static_cast<std::int32_t>(highest - values.begin());
}

std::vector<std::int32_t> PeaksOf(std::span<const float> values, std::int32_t reach) {
    std::vector<std::int32_t> peaks;
    const auto count = static_cast<std::int64_t>(values.size());
    const auto at = [&](std::int64_t bin) { return values[static_cast<std::size_t>(bin)]; };
    std::deque<std::int64_t> highest;  // of the window: each bin that no later one exceeds, falling
    std::int64_t next = 0;             // first bin right of the window
    bool wasMaximal = false;
    for (std::int64_t bin = 0; bin < count; ++bin) {
        for (; next < count && next - bin <= reach; ++next) {
            while (!highest.empty() && at(highest.back()) < at(next)) highest.pop_back();
            highest.push_back(next);
        }
        while (bin - highest.front() > reach) highest.pop_front();
        const bool isMaximal = at(bin) > 0.0f && at(bin) >= at(highest.front());
        const bool continuesPlateau = wasMaximal && at(bin) == at(bin - 1);
        if (isMaximal && !continuesPlateau) peaks.push_back(static_cast<std::int32_t>(bin));
        wasMaximal = isMaximal;
    }
    return peaks;
}

}  // namespace KvComponents
