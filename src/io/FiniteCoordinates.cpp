// Counts four numbers at a time.
#include "io/FiniteCoordinates.h"

#include <algorithm>
#include <string>

#include "base/DebugOutput.h"
#include "geometry/FloatLanes.h"
#include "io/FileMessage.h"

namespace {

constexpr std::int32_t kExponent = 0x7F800000;  // of IsNotFinite()

/// Sum of the lanes, each of which counts down.
std::size_t CountOf(Int4 lanes) {
    return static_cast<std::size_t>(-(std::int64_t{lanes[0]} + lanes[1] + lanes[2] + lanes[3]));
}

/// Adds add(i) of all items in blocks, so that a lane cannot overflow.
template <class Add>
std::size_t CountInBlocks(std::size_t items, Add add) {
    constexpr std::size_t kBlock = std::size_t{1} << 28;
    std::size_t count = 0;
    for (std::size_t first = 0; first < items; first += kBlock) {
        Int4 lanes{};
        for (std::size_t i = first, last = std::min(items, first + kBlock); i < last; ++i) lanes += add(i);
        count += CountOf(lanes);
    }
    return count;
}

}  // namespace

std::size_t CountNotFinite(std::span<const float> coordinates) {
    constexpr Int4 kExponents{kExponent, kExponent, kExponent, kExponent};
    constexpr std::size_t kStep = 16;  // by hand: compilers do not unroll this loop
    const std::size_t steps = coordinates.size() / kStep;
    std::size_t count = CountInBlocks(steps, [&](std::size_t i) {
        const float* const at = coordinates.data() + kStep * i;
        const auto areOdd = [at](std::size_t offset) {
            return (LoadLanes<Int4>(at + offset) & kExponents) == kExponents;
        };
        return (areOdd(0) + areOdd(4)) + (areOdd(8) + areOdd(12));
    });
    for (const float last : coordinates.subspan(kStep * steps)) count += IsNotFinite(last) ? 1 : 0;
    return count;
}

std::size_t CountNotFinite(std::span<const Vertex> vertices) {
    constexpr Int4 kExponents{kExponent, kExponent, kExponent, kExponent};
    constexpr Int4 kPosition{kExponent, kExponent, kExponent, 0};  // the fourth number belongs to the normal
    return CountInBlocks(vertices.size(),
                         [&](std::size_t i) { return (LoadLanes<Int4>(&vertices[i].x) & kPosition) == kExponents; });
}

// Blocks that fit into the cache: the points of a block are tested again, one by one, only when some are not finite.
std::size_t CountNotFinite(const float* points, std::span<const std::uint16_t> mask) {
    constexpr std::size_t kPixels = 1024;
    std::size_t count = 0;
    for (std::size_t first = 0; first < mask.size(); first += kPixels) {
        const std::size_t last = std::min(mask.size(), first + kPixels);
        if (CountNotFinite({points + 3 * first, 3 * (last - first)}) == 0) continue;
        for (std::size_t pixel = first; pixel < last; ++pixel)
            if (mask[pixel] == 0) count += CountNotFinite({points + 3 * pixel, 3});
    }
    return count;
}

void NotFiniteCounter::Add() {
    m_uCount += CountNotFinite(std::span(m_vertices).subspan(m_uDone));
    m_uDone = m_vertices.size();
}

void ReportNotFinite(std::wstring_view file, std::size_t count) {
    if (count > 0) ReportFileRemark(file, std::to_string(count) + " coordinates are not finite");
}
