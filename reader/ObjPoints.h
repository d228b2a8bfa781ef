// The points of an obj file without faces, of which the library keeps nothing.
#pragma once
#include <string_view>

#include "FoundMesh.h"

/// The lines "v x y z", also with red, green and blue from 0 to 1 after them.
/// @throws UnreadableFile with the line when a coordinate is no number
[[nodiscard]] FoundMesh ReadObjPoints(std::string_view text);
