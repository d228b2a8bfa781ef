// The triangles of an hps file. Lossless: triangles and their corners keep their order.
#pragma once
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "HpsPacking.h"

namespace KvComponents::Hps {

/// A vertex at its first use by a triangle, and the parents of its parallelogram prediction: its position is predicted
/// as a + b - c. The parents were introduced before, or are the origin (0, 0, 0), whose number is the vertex count.
struct Introduction {
    std::uint32_t vertex, a, b, c;
};

/// Packs the triangles. Linear in their number.
/// @param indices       three per triangle, each below @p vertexCount
/// @param introductions  receives each vertex once, in the order in which DecodeFacets() returns them; vertices that no
///                       triangle uses come last
[[nodiscard]] ByteVector EncodeFacets(std::span<const std::int32_t> indices, std::uint32_t vertexCount,
                                      RawArray<Introduction>& introductions);

struct Facets {
    RawArray<std::int32_t> indices;  ///< three per triangle
    RawArray<Introduction> introductions;
    /// The first triangle with an index that is no vertex, or kNone. With such a triangle there are no introductions.
    static constexpr std::size_t kNone = static_cast<std::size_t>(-1);
    std::size_t firstBad = kNone;
};

/// @throws DamagedData when the bytes are not @p triangleCount packed triangles
[[nodiscard]] Facets DecodeFacets(ByteSpan bytes, std::uint32_t vertexCount, std::uint32_t triangleCount);

}  // namespace KvComponents::Hps
