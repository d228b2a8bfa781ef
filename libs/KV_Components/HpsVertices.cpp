// Positions as residuals of the parallelogram prediction over the neighbour triangle. All three corners of that
// triangle have measurement noise, and their errors add up; the prediction therefore starts from filtered positions:
// each is the prediction plus a gain times the residual, as in a fixed-gain tracking filter.
#include "HpsVertices.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>
#include <limits>
#include <utility>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

#include "DefaultFloats.h"

namespace KvComponents::Hps {

namespace {

using Float4 = float __attribute__((vector_size(16)));
using Int4 = std::int32_t __attribute__((vector_size(16)));
using Bits4 = std::uint32_t __attribute__((vector_size(16)));

constexpr std::size_t kAxisCount = 3;
/// Gains are stored in sixteenths. A gain of 1 is the plain parallelogram, a smaller one suppresses noise, a larger one
/// extrapolates constant curvature.
constexpr std::uint32_t kGainUnit = 16;
constexpr std::uint32_t kMaxGain = 32;
constexpr std::uint32_t kGainsToTry[] = {5, 8, 12, 16, 20};

/// @param mask  0 or -1 in each lane
bool IsSetInAllLanes(Int4 mask) {
#if defined(__SSE2__)
    return _mm_movemask_epi8(std::bit_cast<__m128i>(mask)) == 0xFFFF;
#else
    return (mask[0] & mask[1] & mask[2] & mask[3]) != 0;
#endif
}

/// Predicts from the vertices introduced so far. Coordinates that are not finite count as zero: they would spread over
/// the rest of the mesh, and the payload of a computed NaN differs between processors.
class Predictor {
public:
    Predictor(std::size_t vertexCount, std::uint32_t gain)
        : m_smoothed(vertexCount + 1), m_fGain(static_cast<float>(gain) / static_cast<float>(kGainUnit)) {
        m_smoothed[vertexCount] = Float4{};  // the origin
    }
    /// The parallelogram prediction from the filtered positions of the parents.
    [[nodiscard]] Float4 Predict(const Introduction& of) const {
        return ZeroUnlessFinite(m_smoothed[of.a] + m_smoothed[of.b] - m_smoothed[of.c]);
    }
    /// Computes the filtered position of a vertex, once its exact position is known.
    void Update(std::uint32_t vertex, Float4 predicted, Float4 position) {
        m_smoothed[vertex] = ZeroUnlessFinite(predicted + m_fGain * (position - predicted));
    }

private:
    // A branch, since the next vertex waits for the result: the processor goes on before it is known.
    static Float4 ZeroUnlessFinite(Float4 values) {
        // x - x is 0 for finite x and NaN otherwise.
        const Int4 isFinite = (values - values) == Float4{};
        if (IsSetInAllLanes(isFinite)) return values;
        return std::bit_cast<Float4>(std::bit_cast<Int4>(values) & isFinite);
    }
    RawArray<Float4> m_smoothed;
    float m_fGain;
};

/// Keeps the compiler from making a conditional move of the branch that calls it.
void KeepBranch() { __asm__ volatile(""); }

/// x, y, z of a vertex; the fourth lane is 0.
Float4 PositionOf(std::span<const float> positions, std::size_t vertex) {
    const float* const p = &positions[kAxisCount * vertex];
    return Float4{p[0], p[1], p[2], 0.0f};
}

/// Estimates the size of the residuals with a gain, in bits: the class grows by 2 per bit.
std::uint64_t CostOf(std::span<const float> positions, std::span<const Introduction> introductions,
                     std::uint32_t gain) {
    Predictor predictor(positions.size() / kAxisCount, gain);
    std::uint64_t cost = 0;
    for (const Introduction& introduction : introductions) {
        const Float4 predicted = predictor.Predict(introduction);
        const Float4 position = PositionOf(positions, introduction.vertex);
        const auto from = std::bit_cast<Bits4>(predicted), to = std::bit_cast<Bits4>(position);
        for (std::size_t axis = 0; axis < kAxisCount; ++axis)
            cost += ClassOf(ZigzagEncode(OrderedBits(to[axis]) - OrderedBits(from[axis])));
        predictor.Update(introduction.vertex, predicted, position);
    }
    return cost;
}

/// The gain with the smallest residuals, found on the first part of the mesh.
std::uint32_t BestGain(std::span<const float> positions, std::span<const Introduction> introductions) {
    // A prefix: what is not introduced yet cannot be predicted from.
    constexpr std::size_t kSample = 20'000;
    const auto sample = introductions.first(std::min(introductions.size(), kSample));
    std::uint32_t best = kGainUnit;
    std::uint64_t least = std::numeric_limits<std::uint64_t>::max();
    for (const std::uint32_t gain : kGainsToTry) {
        const std::uint64_t cost = CostOf(positions, sample, gain);
        if (cost < least) least = cost, best = gain;
    }
    return best;
}

}  // namespace

ByteVector EncodePositions(std::span<const float> positions, std::span<const Introduction> introductions) {
    const DefaultFloats standard;  // decoders predict with the same rounding
    const std::uint32_t gain = BestGain(positions, introductions);
    Predictor predictor(introductions.size(), gain);
    NumberWriter numbers(kAxisCount);
    for (const Introduction& introduction : introductions) {
        const Float4 predicted = predictor.Predict(introduction);
        const Float4 position = PositionOf(positions, introduction.vertex);
        const auto from = std::bit_cast<Bits4>(predicted), to = std::bit_cast<Bits4>(position);
        for (std::size_t axis = 0; axis < kAxisCount; ++axis) {
            const std::uint32_t residual = OrderedBits(to[axis]) - OrderedBits(from[axis]);
            numbers.Put(axis, ZigzagEncode(residual), ExponentOf(from[axis]));
        }
        predictor.Update(introduction.vertex, predicted, position);
    }
    ByteVector bytes;
    AppendValue(bytes, gain);
    numbers.Append(bytes);
    return bytes;
}

PackedPositions::PackedPositions(ByteSpan bytes, std::uint32_t vertexCount) {
    ByteReader from(bytes);
    m_uGain = from.ReadValue<std::uint32_t>();
    if (m_uGain > kMaxGain) throw DamagedData("impossible gain");
    m_numbers = NumberReader(from, kAxisCount, vertexCount);
    if (!from.Rest().empty()) throw DamagedData("bytes after the positions");
}

RawArray<float> PackedPositions::Decode(std::span<const Introduction> introductions) {
    IntroductionFeed feed;
    feed.Publish(introductions.size());
    feed.End();
    return Decode(introductions, feed);
}

RawArray<float> PackedPositions::Decode(std::span<const Introduction> introductions, const IntroductionFeed& feed) {
    const DefaultFloats standard;
    NumberReader numbers = std::move(m_numbers);  // a local object, whose state the compiler can keep in registers
    RawArray<float> positions(kAxisCount * introductions.size());
    Predictor predictor(introductions.size(), m_uGain);
    std::size_t done = 0;
    // The exponents of the last prediction. Those of the next one are the same almost always: by a branch on that, and
    // not by a copy, the processor decodes the next residual while it still computes the prediction.
    std::array<std::uint32_t, 4> scales{};
    while (done < introductions.size()) {
        const std::size_t ready = feed.WaitForMore(done);
        if (ready == done) return {};
        for (; done < ready; ++done) {
            // Prediction, residual per axis, exact position, filtered position.
            const Introduction introduction = introductions[done];
            const Float4 predicted = predictor.Predict(introduction);
            const auto from = std::bit_cast<Bits4>(predicted);
            const Bits4 exponents = (from >> 23) & 0xFF;
            if (!IsSetInAllLanes(exponents == std::bit_cast<Bits4>(scales))) [[unlikely]] {
                scales = std::bit_cast<std::array<std::uint32_t, 4>>(exponents);
                KeepBranch();
            }
            const auto coded = numbers.ReadThree(scales);
            const Bits4 residual = ZigzagDecode(Bits4{coded[0], coded[1], coded[2], 0});
            const auto position = std::bit_cast<Float4>(FloatBits(OrderedBits(from) + residual));
            std::memcpy(&positions[kAxisCount * introduction.vertex], &position, kAxisCount * sizeof(float));
            predictor.Update(introduction.vertex, predicted, position);
        }
    }
    numbers.ExpectEnd();
    return positions;
}

}  // namespace KvComponents::Hps
