// Which files a mesh file names: images and materials, found in its text without loading the scene.
#pragma once
#include <string>
#include <vector>

/// Whether reading one of the meshes may also read @p file. True when the text of a mesh, or of an mtl file beside it,
/// has the name of @p file, raw or percent-encoded, in any case: also where it only looks like a name. Of ply and obj
/// files only the start is searched, and formats without other files (stl, scans) are not opened.
/// @param meshes  paths in bytes, of files of any type
/// @param file    path of a regular file that exists, else the result is false
[[nodiscard]] bool IsNamedByAny(const std::vector<std::string>& meshes, const std::string& file);
