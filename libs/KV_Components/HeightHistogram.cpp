// Sums of weighted samples in bins. Positions are in bins, from half a bin below the range: the centre of bin j is at
// j + 1, so that the integer part of a position is the number of centres up to it. docs/decisions/height-histogram.md
// derives the sums.
#include "HeightHistogram.h"

#include <algorithm>
#include <bit>
#include <deque>
#include <limits>

#include "DefaultFloats.h"

namespace KvComponents {

namespace {

/// A weight is below 2^46 units of its group, and rounding adds less than 2^13 units to its share in a bin. After 2^16
/// samples a bin has less than 2^63 units; its sum modulo 2^64 is then the sum.
constexpr int kWeightBits = 46;
constexpr std::int32_t kSamplesToSettle = 1 << 16;

/// 2^exponent, for exponents of normal numbers.
double PowerOfTwo(int exponent) { return std::bit_cast<double>(static_cast<std::uint64_t>(1023 + exponent) << 52); }

// Doubles from 2^52 to 2^53 are integers: adding 1.5 * 2^52 rounds to an integer, which is then in the last bits. This
// is faster than a conversion, and there is a result for every number.
constexpr double kRounding = 0x1.8p52;

/// The nearest integer, for -2^51 to 2^51; any number for others. In other rounding modes a neighbouring integer.
std::uint64_t Rounded(double number) {
    return std::bit_cast<std::uint64_t>(number + kRounding) - std::bit_cast<std::uint64_t>(kRounding);
}

/// The number of bin centres up to a position from 0.5 to bins + 0.5: 0 to bins in every rounding mode, since a
/// conversion to an integer truncates.
struct Centres {
    explicit Centres(double position)
        : index(static_cast<std::int64_t>(position)), number(static_cast<double>(index)) {}
    std::int64_t index;  ///< of the bin after them
    double number;
};

}  // namespace

HeightHistogram::HeightHistogram(float low, float high, std::int32_t bins) {
    const DefaultFloats standard;
    m_fLow = low;
    m_fHigh = high;
    m_fHighEdge = bins + 0.5;
    m_fBinsPerUnit = bins / (m_fHigh - m_fLow);
    m_values.resize(static_cast<std::size_t>(bins));
}

void HeightHistogram::Add(float value, float spread, float weight) {
    if (!(weight > 0.0f && value >= m_fLow && value <= m_fHigh)) return;

    // The group of the weight, and the number of its units in the weight.
    const auto number = static_cast<int>(std::bit_cast<std::uint32_t>(weight) >> 23) / kExponentsPerGroup;
    Group& group = m_groups[static_cast<std::size_t>(number)];
    if (group.newest == kSamplesToSettle || group.differences.empty()) Settle(group);
    const double units = weight * PowerOfTwo(kWeightBits + 127 - kExponentsPerGroup * (number + 1));
    ++group.newest;
    AddToMoments(value, weight);
    m_bValuesAreOld = true;
    AddTriangle((value - m_fLow) * m_fBinsPerUnit + m_fLowEdge, spread * m_fBinsPerUnit, units, group.differences);
}

/// Adds a triangle to the differences: its share of @p units to each bin whose centre is in it.
/// @param position, reach  of its middle, and from there to both ends, in bins
inline void HeightHistogram::AddTriangle(double position, double reach, double units, std::vector<Line>& differences) {
    // Bins in [first, turn) are on the rising line, bins in [turn, end) on the falling one; either range may be empty.
    // All three are 0 to bins: the errors of several roundings, in any direction, do not make bins + 1 of a position at
    // the upper edge.
    // The height is 0 at both ends of the triangle and the same on both lines at its top, so a centre that is exactly
    // there may count on either side.
    const double left = position - reach, right = position + reach;
    const Centres first(std::max(left, m_fLowEdge)), turn(position), end(std::min(right, m_fHighEdge));

    // Heights at the outermost bins, of a triangle with slope 1, and twice the sum of its heights at all bins: for each
    // line the number of bins times the sum of the heights at its first and last bin.
    const double atFirst = first.number + 1.0 - left, atLast = right - end.number;
    const double twiceSum = (turn.number - first.number) * (turn.number + 1.0 + first.number - 2.0 * left) +
                            (end.number - turn.number) * (2.0 * right - (turn.number + 1.0 + end.number));
    if (!(twiceSum > 0.0)) {  // no centre is within the triangle
        const auto own = static_cast<std::int64_t>(std::min(position - 0.5, m_fHighEdge - 1.5));
        const Line constant{Rounded(units), 0};
        differences[own] += constant;
        differences[own + 1] -= constant;
        return;
    }

    // A line of no bins is subtracted where it is added, and the slope of a line of one bin does not matter: there the
    // integers may be anything.
    const double unit = 2.0 * units / twiceSum;
    const std::uint64_t slope = Rounded(unit);
    const Line rising{Rounded(unit * atFirst) - slope * static_cast<std::uint64_t>(first.index), slope};
    const Line falling{Rounded(unit * atLast) + slope * static_cast<std::uint64_t>(end.index - 1), 0 - slope};
    differences[first.index] += rising;
    differences[turn.index] += falling - rising;
    differences[end.index] -= falling;
}

/// Adds the differences to the sums. Allocates both for the first sample of a group.
void HeightHistogram::Settle(Group& group) const {
    const auto bins = m_values.size();
    group.sums.resize(bins);
    group.differences.resize(bins + 1);
    Line line{};
    for (std::size_t bin = 0; bin < bins; ++bin) {
        line += group.differences[bin];
        group.sums[bin] += line[0] + line[1] * bin;
    }
    std::fill(group.differences.begin(), group.differences.end(), Line{});
    group.newest = 0;
}

void HeightHistogram::AddToMoments(double value, double weight) {
    if (m_fWeight == 0.0) m_fOrigin = value;
    const double moment = weight * (value - m_fOrigin);
    m_fWeight += weight;
    m_fMoment1 += moment;
    m_fMoment2 += moment * (value - m_fOrigin);
}

void HeightHistogram::Reset() {
    for (Group& group : m_groups) {
        std::fill(group.differences.begin(), group.differences.end(), Line{});
        std::fill(group.sums.begin(), group.sums.end(), Wide{0});
        group.newest = 0;
    }
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
    if (!m_bValuesAreOld) return m_values;
    std::vector<double> sums(m_values.size());
    for (std::size_t number = 0; number < m_groups.size(); ++number) {
        Group& group = m_groups[number];
        if (group.differences.empty()) continue;
        Settle(group);
        const double weightOfUnit = PowerOfTwo(kExponentsPerGroup * (static_cast<int>(number) + 1) - 127 - kWeightBits);
        for (std::size_t bin = 0; bin < sums.size(); ++bin)
            sums[bin] += static_cast<double>(group.sums[bin]) * weightOfUnit;
    }
    constexpr double kMax = std::numeric_limits<float>::max();
    for (std::size_t bin = 0; bin < sums.size(); ++bin) m_values[bin] = static_cast<float>(std::min(sums[bin], kMax));
    m_bValuesAreOld = false;
    return m_values;
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
    // The bins of the window that no later bin in it exceeds: their values descend, and the first is the highest.
    std::deque<std::int64_t> highest;
    std::int64_t next = 0;  // first bin right of the window
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
