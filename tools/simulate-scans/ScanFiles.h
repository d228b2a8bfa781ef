// Writes scans as measurement files. All formats are little-endian on every machine.
#pragma once
#include <cstdint>
#include <filesystem>
#include <string_view>

#include "Scanner.h"

namespace simulate {

/// Pcm: all arrays, micrometres, sensor frame, with the transform. Pax: points, confidence and transform, millimetres,
/// sensor frame. Xdt: points only, micrometres, world frame; a pixel that was not measured is (-1, -1, -1).
enum class FileFormat { Pcm, Pax, Xdt };

/// Writes a scan. The file is replaced as a whole (base/AtomicFile.h).
/// @param grid  its content is undefined afterwards: pcm converts the units in place instead of copying the grid
/// @throws std::runtime_error with the failed step and the system's reason; the old file is unchanged then
void WriteScan(const std::filesystem::path& path, FileFormat format, ScanGrid&& grid);

/// Moves a measured point (micrometres) by the smallest possible step when its three coordinates are equal and
/// negative: readers regard such a point as not measured.
[[nodiscard]] Vec3 AvoidXdtHole(Vec3 point);

/// Writes a text file in the same way.
void WriteText(const std::filesystem::path& path, std::string_view text);

}  // namespace simulate
