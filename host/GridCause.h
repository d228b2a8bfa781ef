// Why no triangle is left of a scan: the steps of the import again, with and without each of its limits.
#pragma once
#include <cstdint>
#include <string>

/// The grid of a pcm file, as the measurement library returns it. The arrays have an entry per point, row after row.
struct ScanGrid {
    int width = 0, height = 0;
    const float* points = nullptr;  ///< x, y, z per point, thousandths of mm
    const float* confidence = nullptr;
    const std::uint8_t* classification = nullptr;
};

/// A sentence of the message table, filled; empty when a triangle is left, when no point is valid, and when there is
/// not enough memory to find out. Only for a grid whose sides are above 0 and whose arrays are there.
/// @param skip             of the import, 1 or more
/// @param confidenceLimit  of the import
[[nodiscard]] std::string CauseOfNoTriangle(const ScanGrid& grid, int skip, float confidenceLimit);

/// A triangle with an angle below the first or above the second is left out, in whole degrees.
inline constexpr char kLeastAngle[] = "15", kLargestAngle[] = "165";

/// Neighbouring points of a thinned grid that are further apart are not connected, in mm. @param skip  2 or more
[[nodiscard]] float LargestGap(int skip);
