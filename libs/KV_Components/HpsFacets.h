// The triangles of an hps file: indices in their order, corner by corner.
#pragma once
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "HpsPacking.h"

namespace KvComponents::Hps {

/// A vertex at its first use by a triangle, with those that tell where to look for it: at a + b - c. All of them were
/// introduced before, or are the point of origin, whose number is the vertex count.
struct Introduction {
    std::uint32_t vertex, a, b, c;
};

/// The packed triangles.
/// @param indices       three a triangle
/// @param introductions  receives each vertex once, in the order in which DecodeFacets() gives them; those that no
///                       triangle uses at the end
[[nodiscard]] ByteVector EncodeFacets(std::span<const std::int32_t> indices, std::uint32_t vertexCount,
                                      RawArray<Introduction>& introductions);

struct Facets {
    RawArray<std::int32_t> indices;
    RawArray<Introduction> introductions;
    /// The first triangle that names no vertex; there are no introductions then.
    static constexpr std::size_t kNone = static_cast<std::size_t>(-1);
    std::size_t firstBad = kNone;
};

/// @throws DamagedData
[[nodiscard]] Facets DecodeFacets(ByteSpan bytes, std::uint32_t vertexCount, std::uint32_t triangleCount);

}  // namespace KvComponents::Hps
