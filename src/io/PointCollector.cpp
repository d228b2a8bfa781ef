// Blocks of points are checked while they are in the cache, and copied to the end of the arrays.
#include "io/PointCollector.h"

#include <algorithm>
#include <cmath>
#include <string>
#include <utility>

#include "io/ByteInput.h"
#include "io/FiniteCoordinates.h"

namespace {
[[noreturn]] void FailAt(std::uint64_t point, const std::string& reason) {
    throw FileReadError(std::string("point ").append(std::to_string(point)).append(": ").append(reason));
}

/// What is appended to the arrays at a time.
void Append(std::vector<float>& to, std::span<const float> block) { to.insert(to.end(), block.begin(), block.end()); }
}  // namespace

// Most blocks have finite points only, which the first line finds out.
std::size_t KeepFinitePoints(std::span<float> xyz, std::span<float> colors, PointHoles holes, std::uint64_t before) {
    const std::size_t points = xyz.size() / 3;
    if (CountNotFinite(xyz) == 0) return points;
    std::size_t kept = 0;
    for (std::size_t i = 0; i < points; ++i) {
        const std::span<const float> point = xyz.subspan(3 * i, 3);
        if (CountNotFinite(point) > 0) {
            const bool isHole = std::ranges::any_of(point, [](float value) { return std::isnan(value); });
            if (holes == PointHoles::kRefused || !isHole) FailAt(before + i + 1, "a coordinate is not a finite number");
            continue;
        }
        if (kept != i) {
            std::ranges::copy(point, xyz.begin() + static_cast<std::ptrdiff_t>(3 * kept));
            if (!colors.empty())
                std::ranges::copy(colors.subspan(3 * i, 3), colors.begin() + static_cast<std::ptrdiff_t>(3 * kept));
        }
        ++kept;
    }
    return kept;
}

PointCollector::PointCollector(std::uint64_t capacity, bool hasColors, PointHoles holes)
    : m_bHasColors(hasColors), m_eHoles(holes) {
    m_cloud.xyz.reserve(3 * capacity);
    if (hasColors) m_cloud.colors.reserve(3 * capacity);
}

void PointCollector::Add(std::size_t points) {
    const std::span<float> xyz(m_fXyz.data(), 3 * points);
    const std::span<float> colors(m_fColors.data(), m_bHasColors ? 3 * points : 0);
    const std::size_t kept = KeepFinitePoints(xyz, colors, m_eHoles, m_uSeen);
    Append(m_cloud.xyz, xyz.first(3 * kept));
    if (m_bHasColors) Append(m_cloud.colors, colors.first(3 * kept));
    m_uSeen += points;
}

// A NaN is in no range.
void PointCollector::RequireColors(std::size_t points, float largest) const {
    for (std::size_t i = 0; i < 3 * points; ++i) {
        if (m_fColors[i] >= 0 && m_fColors[i] <= largest) continue;
        FailAt(m_uSeen + i / 3 + 1, "a colour is not from 0 to " + std::to_string(static_cast<int>(largest)));
    }
}

void PointCollector::AddScaled(std::size_t points, float scale) {
    RequireColors(points, scale);
    for (std::size_t i = 0; i < 3 * points; ++i) m_fColors[i] /= scale;
    Add(points);
}

void PointCollector::AddUnscaled(std::size_t points) {
    if (m_bHasColors) {
        RequireColors(points, kLargestColor);
        for (std::size_t i = 0; i < 3 * points; ++i) m_fLargest = std::max(m_fLargest, m_fColors[i]);
    }
    Add(points);
}

KV_ScenePane::PointCloud PointCollector::Finish() {
    if (m_cloud.xyz.empty()) throw FileReadError("the file holds no points");
    if (m_fLargest > 1)
        for (float& color : m_cloud.colors) color /= kLargestColor;
    return std::move(m_cloud);
}
