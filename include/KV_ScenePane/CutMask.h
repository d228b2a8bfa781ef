// The record of one finished cut: a region of the window with the camera that it was drawn in. A host receives its
// address from CutMaskApplied() and GetCutMasks() and may read the fields.
#pragma once
#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "KV_ScenePane/MeshBuffers.h"

namespace ACAD {

/// Which points a cut removes.
enum CutKind : std::uint32_t {
    /// Those that project into the region.
    CutKindInside = 0,
    /// Those that do not project into the region.
    CutKindOutside = 1,
    /// Those that project into the region and were not hidden by a surface when the region was drawn.
    CutKindVisibleInside = 2
};

/// Bits in words of 32: bit i is bit i % 32, counted from the lowest, of word i / 32.
struct PackedBits {
    std::vector<std::uint32_t> m_vWords;
    /// Number of bits; those of the last word above it are 0.
    std::uint64_t m_uCount = 0;

    /// @param i  below m_uCount
    [[nodiscard]] bool IsSet(std::size_t i) const { return ((m_vWords[i / 32] >> (i % 32)) & 1) != 0; }
};

/// A region of the window with the camera that it was drawn in. Never changed after a viewer has made it, so that any
/// thread may read it. Order and width of the fields are fixed: hosts read them by the address of the mask.
class __attribute__((visibility("default"))) CutMask {
public:
    using Rectangle = std::array<std::int32_t, 4>;  ///< min x, min y, max x, max y, all inclusive
    /// The rectangle of no pixel.
    static constexpr Rectangle kNoPixel = {INT32_MAX, INT32_MAX, INT32_MIN, INT32_MIN};

    std::uint32_t m_nKind = CutKindInside;      ///< a CutKind
    std::array<double, 16> m_dProjection{};     ///< column-major, eye to clip coordinates
    std::array<double, 16> m_dModelView{};      ///< column-major, world to eye coordinates
    std::array<std::int32_t, 4> m_nViewport{};  ///< x, y, width, height in pixels, y upward
    /// Window depths 0 to 1 with CutKindVisibleInside, width x height, bottom row first; else empty.
    std::vector<float> m_vDepth;
    /// Of the set bits, window pixels, y downward; kNoPixel when there is none.
    Rectangle m_rcBounds = kNoPixel;
    /// One bit per pixel of the window, bit y * width + x, y downward; set inside the region.
    PackedBits m_vBits;

    /// Sets the bit of each vertex that the cut removes; positions in the world frame. Any thread.
    /// @param bits  bit i of word i / 32 for vertex i; enough words for all vertices. Bits of others are unchanged
    /// @return whether it removes one
    bool MarkVertices(std::span<const KV_ScenePane::Vertex> vertices, std::span<std::uint32_t> bits) const;
    /// Sets gridIndex to -1 in each vertex that the cut removes and whose gridIndex is not negative as a signed number.
    /// @return whether it removes one
    bool InvalidateVertices(std::span<KV_ScenePane::Vertex> vertices) const;
};

static_assert(offsetof(CutMask, m_nKind) == 0 && sizeof(CutMask::m_nKind) == 4);
static_assert(offsetof(CutMask, m_dProjection) == 8 && sizeof(CutMask::m_dProjection) == 128);
static_assert(offsetof(CutMask, m_dModelView) == 136 && sizeof(CutMask::m_dModelView) == 128);
static_assert(offsetof(CutMask, m_nViewport) == 264 && sizeof(CutMask::m_nViewport) == 16);
static_assert(offsetof(CutMask, m_vDepth) == 280 && offsetof(CutMask, m_rcBounds) == 304);
static_assert(sizeof(CutMask::m_rcBounds) == 16 && offsetof(CutMask, m_vBits) == 320 && sizeof(CutMask) == 352);

}  // namespace ACAD
