// The UV block of an hps file: a few pairs u, v a vertex, handed out in turn to the corners that use it.
#pragma once
#include <cstdint>
#include <optional>
#include <span>

#include "HpsPacking.h"

namespace KvComponents::Hps {

inline constexpr std::size_t kMaxPairsOfVertex = 255;

/// The block of the pairs of all corners. Corner for corner in the order of the triangles, a vertex's pairs are its
/// list over and over; the list is the shortest that does so. Pairs are alike when their bits are.
/// @param pairs  two values for each of the indices
/// @return nothing when a vertex needs a list of more than kMaxPairsOfVertex
[[nodiscard]] std::optional<ByteVector> PackUv(std::span<const std::int32_t> indices, std::uint32_t vertexCount,
                                               std::span<const float> pairs);

struct UvCounts {
    std::uint32_t vertices = 0, pairs = 0;
};

/// What the block announces, checked against its length. @throws DamagedData
[[nodiscard]] UvCounts MeasureUv(ByteSpan block);

/// @param pairsOfVertex  MeasureUv().vertices entries
/// @param pairs          two values for each of MeasureUv().pairs, those of vertex 0 first
/// @throws DamagedData
void UnpackUv(ByteSpan block, std::span<std::uint8_t> pairsOfVertex, std::span<float> pairs);

}  // namespace KvComponents::Hps
