// Positions by their differences from a prediction: the parallelogram over the triangle next door. The noise of a
// measurement is in all three of its corners, so the prediction starts from smoothed positions instead: each is the
// prediction plus a share of the difference from it.
#include "HpsVertices.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <limits>
#include <utility>

#include "DefaultFloats.h"

namespace KvComponents::Hps {

namespace {

using Float4 = float __attribute__((vector_size(16)));
using Int4 = std::int32_t __attribute__((vector_size(16)));
using Bits4 = std::uint32_t __attribute__((vector_size(16)));

constexpr std::size_t kAxisCount = 3;
/// Shares are stored in sixteenths. More than one follows a curvature that stays the same.
constexpr std::uint32_t kShareUnit = 16;
constexpr std::uint32_t kMaxShare = 32;
constexpr std::uint32_t kSharesToTry[] = {5, 8, 12, 16, 20};

/// Predictions from the vertices introduced so far. Values without a sense (overflow, NaN) count as zero, so that they
/// spread no further and are the same on every machine.
class Predictor {
public:
    Predictor(std::size_t vertexCount, std::uint32_t share)
        : m_smoothed(vertexCount + 1), m_fShare(static_cast<float>(share) / static_cast<float>(kShareUnit)) {
        m_smoothed[vertexCount] = Float4{};  // the point of origin
    }
    [[nodiscard]] Float4 Predict(const Introduction& of) const {
        return ZeroUnlessFinite(m_smoothed[of.a] + m_smoothed[of.b] - m_smoothed[of.c]);
    }
    void Follow(std::uint32_t vertex, Float4 predicted, Float4 position) {
        m_smoothed[vertex] = ZeroUnlessFinite(predicted + m_fShare * (position - predicted));
    }

private:
    static Float4 ZeroUnlessFinite(Float4 values) {
        const Int4 isFinite = (values - values) == Float4{};
        return std::bit_cast<Float4>(std::bit_cast<Int4>(values) & isFinite);
    }
    RawArray<Float4> m_smoothed;
    float m_fShare;
};

// The conversions of single numbers, on all axes at once.
Bits4 Ordered4(Bits4 bits) { return bits ^ ((0u - (bits >> 31)) | 0x80000000u); }
Bits4 Float4Bits(Bits4 ordered) { return ordered ^ ((0u - ((ordered >> 31) ^ 1u)) | 0x80000000u); }
Bits4 Unfold4(Bits4 folded) { return (folded >> 1) ^ (0u - (folded & 1u)); }

Float4 PositionOf(std::span<const float> positions, std::size_t vertex) {
    const float* const p = &positions[kAxisCount * vertex];
    return Float4{p[0], p[1], p[2], 0.0f};
}

/// Bits that the differences need with a share, roughly; over some of the vertices.
std::uint64_t CostOf(std::span<const float> positions, std::span<const Introduction> introductions,
                     std::uint32_t share) {
    Predictor predictor(positions.size() / kAxisCount, share);
    std::uint64_t cost = 0;
    for (const Introduction& introduction : introductions) {
        const Float4 predicted = predictor.Predict(introduction);
        const Float4 position = PositionOf(positions, introduction.vertex);
        const auto from = std::bit_cast<Bits4>(predicted), to = std::bit_cast<Bits4>(position);
        for (std::size_t axis = 0; axis < kAxisCount; ++axis)
            cost += ClassOf(ZigzagEncode(OrderedBits(to[axis]) - OrderedBits(from[axis])));
        predictor.Follow(introduction.vertex, predicted, position);
    }
    return cost;
}

std::uint32_t BestShare(std::span<const float> positions, std::span<const Introduction> introductions) {
    // A prefix: what is not introduced yet cannot be predicted from.
    constexpr std::size_t kSample = 20'000;
    const auto sample = introductions.first(std::min(introductions.size(), kSample));
    std::uint32_t best = kShareUnit;
    std::uint64_t least = std::numeric_limits<std::uint64_t>::max();
    for (const std::uint32_t share : kSharesToTry) {
        const std::uint64_t cost = CostOf(positions, sample, share);
        if (cost < least) least = cost, best = share;
    }
    return best;
}

}  // namespace

ByteVector EncodePositions(std::span<const float> positions, std::span<const Introduction> introductions) {
    const DefaultFloats standard;
    const std::uint32_t share = BestShare(positions, introductions);
    Predictor predictor(introductions.size(), share);
    NumberWriter numbers(kAxisCount);
    for (const Introduction& introduction : introductions) {
        const Float4 predicted = predictor.Predict(introduction);
        const Float4 position = PositionOf(positions, introduction.vertex);
        const auto from = std::bit_cast<Bits4>(predicted), to = std::bit_cast<Bits4>(position);
        for (std::size_t axis = 0; axis < kAxisCount; ++axis) {
            const std::uint32_t difference = OrderedBits(to[axis]) - OrderedBits(from[axis]);
            numbers.Put(axis, ZigzagEncode(difference), ExponentOf(from[axis]));
        }
        predictor.Follow(introduction.vertex, predicted, position);
    }
    ByteVector bytes;
    AppendValue(bytes, share);
    numbers.Append(bytes);
    return bytes;
}

PackedPositions::PackedPositions(ByteSpan bytes, std::uint32_t vertexCount) {
    ByteReader from(bytes);
    m_uShare = from.TakeValue<std::uint32_t>();
    if (m_uShare > kMaxShare) throw DamagedData("impossible share");
    m_numbers = NumberReader(from, kAxisCount, vertexCount);
    if (!from.Rest().empty()) throw DamagedData("bytes behind the positions");
}

RawArray<float> PackedPositions::Decode(std::span<const Introduction> introductions) {
    const DefaultFloats standard;
    NumberReader numbers = std::move(m_numbers);  // its state in registers: nobody else can see a local one
    RawArray<float> positions(kAxisCount * introductions.size());
    Predictor predictor(introductions.size(), m_uShare);
    for (const Introduction& introduction : introductions) {
        const Float4 predicted = predictor.Predict(introduction);
        const auto from = std::bit_cast<Bits4>(predicted);
        const auto taken = numbers.TakeThree((from >> 23) & 0xFF);
        const Bits4 difference = Unfold4(Bits4{taken[0], taken[1], taken[2], 0});
        const auto position = std::bit_cast<Float4>(Float4Bits(Ordered4(from) + difference));
        std::memcpy(&positions[kAxisCount * introduction.vertex], &position, kAxisCount * sizeof(float));
        predictor.Follow(introduction.vertex, predicted, position);
    }
    numbers.ExpectEnd();
    return positions;
}

}  // namespace KvComponents::Hps
