// The usual form of a text mesh: one record per line, first all vertices, then all triangles. It is read without the
// index of tokens that CPLYFile needs, and by several threads.
#pragma once
#include <string_view>

#include "io/CPLYFile.h"
#include "io/PlyMesh.h"

/// Reads positions, colours and triangles.
/// @param file     with its header; the elements must be those of a mesh
/// @param data     the bytes after the header
/// @param threads  at most so many work on a large file; the result does not depend on them
/// @param mesh     empty; receives what CPLYFile would give, without a check of the indices
/// @return false when the file has any other form, or something is wrong in it: the content of the mesh is then
///         undefined, and the reader by tokens must read the data or find the reason
[[nodiscard]] bool ReadPlyTextLines(const CPLYFile& file, std::string_view data, unsigned threads, PlyMeshData& mesh);
