// The triangles of an hps file. Lossless: triangles and their corners keep their order.
#pragma once
#include <atomic>
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

/// Introductions that one thread makes and another one reads while more are made. Both use the same array.
class IntroductionFeed {
public:
    // ---- the thread that makes them
    /// The first @p count introductions do not change any more.
    void Publish(std::size_t count);
    /// There will be no more: all are made, or the triangles are damaged.
    void End();

    // ---- the thread that reads them
    /// Waits until there are more than @p known introductions or the end.
    /// @return their number; @p known at the end
    [[nodiscard]] std::size_t WaitForMore(std::size_t known) const;

private:
    static constexpr std::uint64_t kEnd = std::uint64_t{1} << 63;
    std::atomic<std::uint64_t> m_uState{0};  ///< number of introductions, and kEnd at the end
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
/// The same for a thread that reads the introductions while they are made.
/// @param facets  receives the result. Its introductions are allocated by the caller, with one per vertex, and keep
///                undefined ones when there is a bad triangle
/// @param feed    receives what can be read. The caller ends it, whether this returns or throws
void DecodeFacets(ByteSpan bytes, std::uint32_t triangleCount, Facets& facets, IntroductionFeed& feed);

}  // namespace KvComponents::Hps
