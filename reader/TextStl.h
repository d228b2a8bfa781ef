// Stl as text, which the viewer does not read.
#pragma once
#include <string_view>

#include "FoundMesh.h"

/// Corners at the same position share one vertex, as in the viewer's import of binary files, so that both forms of a
/// mesh give the same object. Normals of the file are ignored; so are comments from '#' to the end of the line. Any
/// number of solids; facets with more than three corners become several triangles.
/// A text that ends within a facet lacks this one, and that is noted, as is a missing "endsolid" at the end.
/// @throws UnreadableFile with the line when a facet has fewer than three corners or a coordinate is no number, and
///         when the text holds no facet or ends within the first one
[[nodiscard]] FoundMesh ReadTextStl(std::string_view text);
