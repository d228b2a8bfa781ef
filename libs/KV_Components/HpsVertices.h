// The positions of an hps file. Lossless: every bit of every coordinate is kept, NaNs and signed zeros included.
#pragma once
#include <cstdint>
#include <span>

#include "HpsFacets.h"
#include "HpsPacking.h"

namespace KvComponents::Hps {

/// Packs the positions; the order is that of the introductions.
/// @param positions      x, y, z of each vertex
/// @param introductions  of EncodeFacets()
[[nodiscard]] ByteVector EncodePositions(std::span<const float> positions, std::span<const Introduction> introductions);

/// Unpacks positions in two steps. The first one, the entropy decoding, does not need the triangles and can run on
/// another thread while they are decoded.
class PackedPositions {
public:
    /// Decodes the residuals. @throws DamagedData
    PackedPositions(ByteSpan bytes, std::uint32_t vertexCount);
    /// Adds the predictions. To be called once.
    /// @param introductions  of DecodeFacets(), each vertex once
    /// @return x, y, z of each vertex
    /// @throws DamagedData
    [[nodiscard]] RawArray<float> Decode(std::span<const Introduction> introductions);
    /// The same while the introductions are still being made.
    /// @param introductions  the array that they are made in
    /// @return empty when the feed ended before all of them were there
    [[nodiscard]] RawArray<float> Decode(std::span<const Introduction> introductions, const IntroductionFeed& feed);

private:
    std::uint32_t m_uGain = 0;
    NumberReader m_numbers;
};

}  // namespace KvComponents::Hps
