// Polylines in a text file.
#pragma once
#include <string>
#include <string_view>
#include <vector>

/// A polyline: 3 floats per point, world frame; at least two points when it comes from a file.
using Polyline = std::vector<float>;

/// Reads polylines from text: one point per line with blank lines between the polylines, or one polyline per line
/// (docs/formats/lines.md). Any thread.
/// @param polylines  receives those of the file, at least one; unchanged on failure
/// @param reason     receives one line that names the line of the file and the cause; unchanged on success
/// @throws std::bad_alloc; memory is bounded by the length of the text
[[nodiscard]] bool ParseLines(std::string_view text, std::vector<Polyline>* polylines, std::string* reason);

/// ParseLines() of a regular file.
/// @param path  in bytes
/// @throws std::bad_alloc
[[nodiscard]] bool ReadLineFile(const std::string& path, std::vector<Polyline>* polylines, std::string* reason);
