// Binary stl, byte by byte in docs/formats/stl.md.
#pragma once
#include <cstddef>
#include <functional>
#include <span>
#include <string>

#include "geometry/Vertex.h"
#include "io/ByteInput.h"

class Mesh;

/// Triangles with one vertex for all corners at the same position, in order of first use; normals stay zero. A file
/// that was cut short is taken as long as half of it is there: what is missing repeats the last coordinates.
/// @throws FileReadError when the file cannot be opened, is no regular file, holds no triangle, or holds less than half
///         of what it announces; the reason tells when it looks like text
[[nodiscard]] MeshBuffers ReadStlFile(const std::wstring& path);
[[nodiscard]] MeshBuffers ReadStl(std::span<const std::byte> bytes);

/// Takes the next bytes of a file.
using ByteSink = std::function<void(std::span<const std::byte>)>;

/// Writes header and triangles in blocks. Normals are those of the triangles, computed from the positions.
/// @throws std::out_of_range "invalid vector subscript" when a triangle refers to a vertex that does not exist;
///         std::length_error for more triangles than the header can count; what @p sink throws
void WriteStl(const Mesh& mesh, const ByteSink& sink);
