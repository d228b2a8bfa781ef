// The UV block of an hps file: a short list of (u, v) pairs per vertex, which its corners use in turn.
#pragma once
#include <cstdint>
#include <optional>
#include <span>

#include "HpsPacking.h"

namespace KvComponents::Hps {

inline constexpr std::size_t kMaxPairsOfVertex = 255;

/// Packs the texture coordinates of all corners. In the order of the triangles, the corners that use a vertex have the
/// pairs of its list one after the other, from the start again after its end; the list is the shortest that does so.
/// Pairs are equal when their bits are.
/// @param pairs  u, v for each of the indices
/// @return nullopt when a vertex needs a list of more than kMaxPairsOfVertex
[[nodiscard]] std::optional<ByteVector> PackUv(std::span<const std::int32_t> indices, std::uint32_t vertexCount,
                                               std::span<const float> pairs);

struct UvCounts {
    std::uint32_t vertices = 0, pairs = 0;
};

/// The counts at the start of a block, checked against its length. @throws DamagedData
[[nodiscard]] UvCounts MeasureUv(ByteSpan block);

/// Unpacks a block.
/// @param pairsOfVertex  receives the length of each vertex's list; MeasureUv().vertices entries
/// @param pairs          receives u, v of each pair, those of vertex 0 first; 2 * MeasureUv().pairs entries
/// @throws DamagedData
void UnpackUv(ByteSpan block, std::span<std::uint8_t> pairsOfVertex, std::span<float> pairs);

}  // namespace KvComponents::Hps
