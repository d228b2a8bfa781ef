// What the library does not check in off files: it shows another triangle where an index is wrong or the file is cut.
#pragma once
#include <string_view>

#include "FoundMesh.h"

/// Compares the counts and the indices of an off file as text with what it holds; other forms pass.
/// @throws UnreadableFile
void RequireWholeOff(std::string_view text);
