// The check of the indices of triangles that come from files.
#pragma once
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>

#include "geometry/Vertex.h"

/// An index that is no vertex, and the triangle that has it.
struct BadIndex {
    std::size_t triangle;
    std::int32_t index;
};

/// The first index below 0 or not below the number of vertices, in the order of the corners; none when all are valid.
[[nodiscard]] inline std::optional<BadIndex> FindBadIndex(std::span<const Triangle> triangles,
                                                          std::size_t vertexCount) {
    constexpr std::uint32_t kSign = 0x80000000;
    const auto last = static_cast<std::uint32_t>(vertexCount) - 1;
    // The sign bit of i or of (last - i) is set for an index below 0 or above the last, also when there is no vertex.
    // One OR over all triangles has no branch per index; only when it finds one are they searched for the first.
    const auto outside = [last](std::int32_t index) {
        const auto i = static_cast<std::uint32_t>(index);
        return i | (last - i);
    };
    std::uint32_t any = 0;
    for (const Triangle& t : triangles) any |= outside(t.v[0]) | outside(t.v[1]) | outside(t.v[2]);
    if ((any & kSign) == 0) return {};
    for (std::size_t i = 0; i < triangles.size(); ++i)
        for (const std::int32_t index : triangles[i].v)
            if ((outside(index) & kSign) != 0) return BadIndex{i, index};
    return {};
}
