// Lists of pairs by vertex, packed as the residuals of the previous pair.
#include "HpsUv.h"

#include <algorithm>
#include <bit>

namespace KvComponents::Hps {

namespace {

/// A pair's bits: pairs are compared by bits, so that NaNs and signed zeros are kept.
struct Pair {
    std::uint32_t u, v;
    bool operator==(const Pair&) const = default;
};

constexpr std::size_t kPlaneCount = 2;

/// The pairs of all corners, sorted by vertex (counting sort, so that the order of the corners is kept).
class PairsByVertex {
public:
    PairsByVertex(std::span<const std::int32_t> indices, std::uint32_t vertexCount, std::span<const float> pairs)
        : m_vEnds(std::size_t{vertexCount} + 1), m_vPairs(indices.size()) {
        // Counts per vertex, then their running sum, then each pair to its place.
        for (const std::int32_t vertex : indices) ++m_vEnds[static_cast<std::size_t>(vertex) + 1];
        for (std::size_t v = 0; v < vertexCount; ++v) m_vEnds[v + 1] += m_vEnds[v];
        std::vector<std::size_t> next(m_vEnds.begin(), m_vEnds.end() - 1);
        for (std::size_t i = 0; i < indices.size(); ++i) {
            m_vPairs[next[static_cast<std::size_t>(indices[i])]++] = {std::bit_cast<std::uint32_t>(pairs[2 * i]),
                                                                      std::bit_cast<std::uint32_t>(pairs[2 * i + 1])};
        }
    }
    [[nodiscard]] std::span<const Pair> Of(std::size_t vertex) const {
        return std::span(m_vPairs).subspan(m_vEnds[vertex], m_vEnds[vertex + 1] - m_vEnds[vertex]);
    }

private:
    std::vector<std::size_t> m_vEnds;  ///< entry v is where the pairs of vertex v begin, entry v + 1 where they end
    std::vector<Pair> m_vPairs;
};

/// @return the smallest period of @p pairs, the length of the shortest list whose repetition they are: their length
/// minus
///         the length of their longest border (a proper prefix that is also a suffix), which the failure function of
///         Knuth, Morris and Pratt computes in linear time
/// @param borders  scratch memory
std::size_t PeriodOf(std::span<const Pair> pairs, std::vector<std::size_t>& borders) {
    if (std::all_of(pairs.begin(), pairs.end(), [&](const Pair& pair) { return pair == pairs[0]; }))
        return std::min<std::size_t>(pairs.size(), 1);
    borders.assign(pairs.size(), 0);
    for (std::size_t i = 1; i < pairs.size(); ++i) {
        std::size_t border = borders[i - 1];
        while (border > 0 && pairs[i] != pairs[border]) border = borders[border - 1];
        borders[i] = border + (pairs[i] == pairs[border] ? 1 : 0);
    }
    return pairs.size() - borders.back();
}

void PutResidual(NumberWriter& numbers, std::size_t plane, std::uint32_t value, std::uint32_t before) {
    numbers.Put(plane, ZigzagEncode(OrderedBits(value) - OrderedBits(before)), ExponentOf(before));
}

std::uint32_t ReadValue(NumberReader& numbers, std::size_t plane, std::uint32_t before) {
    return FloatBits(OrderedBits(before) + ZigzagDecode(numbers.Read(plane, ExponentOf(before))));
}

/// Memory for the unpacked lists.
std::uint64_t BytesOf(const UvCounts& counts) { return counts.vertices + std::uint64_t{sizeof(Pair)} * counts.pairs; }

}  // namespace

std::optional<ByteVector> PackUv(std::span<const std::int32_t> indices, std::uint32_t vertexCount,
                                 std::span<const float> pairs) {
    // The shortest list of each vertex, and its values as residuals of the previous pair.
    const PairsByVertex lists(indices, vertexCount, pairs);
    std::vector<std::uint8_t> pairsOfVertex;
    std::vector<std::size_t> borders;
    NumberWriter numbers(kPlaneCount);
    Pair before{0, 0};
    std::uint64_t pairCount = 0;
    for (std::size_t vertex = 0; vertex < vertexCount; ++vertex) {
        const std::span<const Pair> list = lists.Of(vertex);
        const std::size_t period = PeriodOf(list, borders);
        if (period > kMaxPairsOfVertex) return std::nullopt;
        pairsOfVertex.push_back(static_cast<std::uint8_t>(period));
        pairCount += period;
        for (const Pair& pair : list.first(period)) {
            PutResidual(numbers, 0, pair.u, before.u);
            PutResidual(numbers, 1, pair.v, before.v);
            before = pair;
        }
    }
    if (pairCount > kMaxCount) return std::nullopt;
    // Counts, list lengths, values; then zeros where the block would be out of proportion to its counts.
    ByteVector block;
    AppendValue(block, vertexCount);
    AppendValue(block, static_cast<std::uint32_t>(pairCount));
    AppendBlock(block, std::as_bytes(std::span(pairsOfVertex)), Redundancy::kMatches);
    numbers.Append(block);
    const std::uint64_t minSize = BytesOf({vertexCount, static_cast<std::uint32_t>(pairCount)}) / kMaxExpansion;
    if (block.size() < minSize) block.resize(minSize);
    return block;
}

UvCounts MeasureUv(ByteSpan block) {
    ByteReader from(block);
    UvCounts counts;
    counts.vertices = from.ReadValue<std::uint32_t>();
    counts.pairs = from.ReadValue<std::uint32_t>();
    if (counts.vertices > kMaxCount || counts.pairs > kMaxCount) throw DamagedData("impossible number of pairs");
    if (BytesOf(counts) / kMaxExpansion > block.size()) throw DamagedData("pairs out of proportion to the block");
    return counts;
}

void UnpackUv(ByteSpan block, std::span<std::uint8_t> pairsOfVertex, std::span<float> pairs) {
    const UvCounts counts = MeasureUv(block);
    ByteReader from(block.subspan(2 * sizeof(std::uint32_t)));
    const RawArray<std::byte> lengths = ReadBlock(from, counts.vertices);
    if (lengths.size() - kBlockPadding != pairsOfVertex.size()) throw DamagedData("another number of vertices");
    // The lengths must add up to the announced count before any value is read.
    std::uint64_t sum = 0;
    for (std::size_t v = 0; v < pairsOfVertex.size(); ++v) sum += static_cast<std::uint8_t>(lengths[v]);
    if (sum != counts.pairs || pairs.size() != 2 * sum) throw DamagedData("another number of pairs");
    NumberReader numbers(from, kPlaneCount, counts.pairs);
    Pair before{0, 0};
    for (std::size_t i = 0; i < pairs.size(); i += 2) {
        before = {ReadValue(numbers, 0, before.u), ReadValue(numbers, 1, before.v)};
        std::memcpy(&pairs[i], &before, sizeof before);
    }
    numbers.ExpectEnd();
    if (!pairsOfVertex.empty()) std::memcpy(pairsOfVertex.data(), lengths.data(), pairsOfVertex.size());
}

}  // namespace KvComponents::Hps
