// Measurements as files. All are little-endian on every machine.
#pragma once
#include <cstdint>
#include <filesystem>
#include <string_view>

#include "Scanner.h"

namespace simulate {

/// Pcm: everything, micrometres, sensor frame with its transform. Pax: points, confidence and transform, millimetres,
/// sensor frame. Xdt: points alone, micrometres, world frame; a pixel that was not measured is -1 three times.
enum class FileFormat { Pcm, Pax, Xdt };

/// Writes a measurement; a file with the wanted name is always whole.
/// @param grid  is used up: the pcm format rescales it in place instead of copying it
/// @throws std::runtime_error (what failed, and the system's reason); the old file is whole then
void WriteScan(const std::filesystem::path& path, FileFormat format, ScanGrid&& grid);

/// Moves a measured point (micrometres) by the smallest step when its coordinates are equal and negative, the mark of a
/// pixel that was not measured.
[[nodiscard]] Vec3 AvoidXdtHole(Vec3 point);

/// Writes a text in the same way.
void WriteText(const std::filesystem::path& path, std::string_view text);

}  // namespace simulate
