// The positions of an hps file, to the bit.
#pragma once
#include <cstdint>
#include <span>

#include "HpsFacets.h"
#include "HpsPacking.h"

namespace KvComponents::Hps {

/// The packed positions.
/// @param positions      x, y, z of each vertex
/// @param introductions  of EncodeFacets()
[[nodiscard]] ByteVector EncodePositions(std::span<const float> positions, std::span<const Introduction> introductions);

/// Positions unpacked in two steps, of which the first needs no triangles and may run beside their decoding.
class PackedPositions {
public:
    /// @throws DamagedData
    PackedPositions(ByteSpan bytes, std::uint32_t vertexCount);
    /// Once. @param introductions  of DecodeFacets(), each vertex once
    /// @throws DamagedData
    [[nodiscard]] RawArray<float> Decode(std::span<const Introduction> introductions);

private:
    std::uint32_t m_uShare = 0;
    NumberReader m_numbers;
};

}  // namespace KvComponents::Hps
