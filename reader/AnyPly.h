// The mesh or the points in any ply file, also in those that the viewer's own reader refuses or misreads: polygons, all
// types of numbers, big-endian data, triangle strips, elements in any order, images beside the file.
#pragma once
#include <functional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "FoundMesh.h"

/// The bytes of a file that is named in another one; empty when there is none.
using LoadNamedFile = std::function<std::vector<std::uint8_t>(const std::string& name)>;

/// @param load  for the image that the header names
/// @throws UnreadableFile; std::runtime_error from the header
[[nodiscard]] FoundMesh ReadAnyPly(std::string_view file, const LoadNamedFile& load);
