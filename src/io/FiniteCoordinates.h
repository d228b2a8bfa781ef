// Coordinates that are infinite or not a number, in what an import has read. The object is added all the same; the host
// gets one line about it.
#pragma once
#include <bit>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

#include "geometry/Vertex.h"

/// By the bits, so that no floating-point mode of the thread or the compiler matters: an exponent of all ones is an
/// infinity or a NaN.
[[nodiscard]] inline bool IsNotFinite(float value) {
    constexpr std::uint32_t kExponent = 0x7F800000;
    return (std::bit_cast<std::uint32_t>(value) & kExponent) == kExponent;
}

/// How many of the numbers are infinite or NaN.
[[nodiscard]] std::size_t CountNotFinite(std::span<const float> coordinates);
/// The same over the positions of vertices.
[[nodiscard]] std::size_t CountNotFinite(std::span<const Vertex> vertices);
/// The same over the valid pixels of a grid.
/// @param points  three per pixel
/// @param mask    one word per pixel, 0 is valid
[[nodiscard]] std::size_t CountNotFinite(const float* points, std::span<const std::uint16_t> mask);

/// Counts in the positions of vertices while they are appended to an array, in blocks that are in the cache: another
/// pass over a large mesh would read it from main memory again.
class NotFiniteCounter {
public:
    /// @param vertices  must outlive this object; the vertices that it has already do not count
    explicit NotFiniteCounter(const std::vector<Vertex>& vertices) : m_vertices(vertices), m_uDone(vertices.size()) {}
    /// Vertices between two calls of Add(), about.
    static constexpr std::size_t kBlock = 256;
    /// Counts in the vertices that were appended since the last call.
    void Add();
    /// In all that were added.
    [[nodiscard]] std::size_t Count() const { return m_uCount; }

private:
    const std::vector<Vertex>& m_vertices;
    std::size_t m_uDone;  ///< vertices that were counted
    std::size_t m_uCount = 0;
};

/// Writes the line "FILE: N coordinates are not finite" to the debugger output, unless the count is 0. Any thread.
/// @param file  path or name, shown as FileLabel() shows it
void ReportNotFinite(std::wstring_view file, std::size_t count);
