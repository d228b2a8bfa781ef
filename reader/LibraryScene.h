// Files that a general-purpose library parses: obj, off, gltf, 3mf, collada and many others.
#pragma once
#include <string>

#include "FoundMesh.h"
#include "NamedFiles.h"

/// All meshes of the file's scene, with the transforms of its nodes applied, in the axes that the format defines.
/// Colours are those of the vertices, else of the materials where these have some; where several images
/// are used, or one by a part of the triangles only, they colour the vertices.
/// @throws UnreadableFile with the library's reason; std::bad_alloc
[[nodiscard]] FoundMesh ReadByLibrary(const std::string& file, const NamedFiles& files);
