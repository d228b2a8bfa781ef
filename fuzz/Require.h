// Checks of the harnesses: a condition that is false ends the process, which the fuzzer reports as a finding.
#pragma once
#include <cstddef>
#include <cstdint>
#include <cstdlib>

inline void Require(bool condition) {
    if (!condition) std::abort();
}

/// Requires that each corner of each triangle is one of the vertices.
template <class Triangles>
void RequireValidIndices(const Triangles& triangles, std::size_t vertexCount) {
    for (const auto& triangle : triangles)
        for (const std::int32_t index : triangle.v) Require(static_cast<std::uint32_t>(index) < vertexCount);
}
