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

/// @param introductions  of DecodeFacets(), each vertex once
/// @throws DamagedData
[[nodiscard]] RawArray<float> DecodePositions(ByteSpan bytes, std::span<const Introduction> introductions);

}  // namespace KvComponents::Hps
