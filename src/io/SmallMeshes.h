// The two small binary mesh formats, byte by byte in docs/formats/ois.md and msh.md.
#pragma once
#include <cstddef>
#include <span>
#include <string>

#include "geometry/Vertex.h"
#include "io/ByteInput.h"

/// Vertices as the file has them, colours and normals zero; msh brings normals. A file without triangles or vertices is
/// a mesh, too. A file that was cut short is taken as long as half of it is there: what is missing repeats the last
/// values.
/// @throws FileReadError when the file cannot be opened, is no regular file, ends before its counts, announces a
///         negative one, holds less than half of what it announces, or has a triangle that refers to a vertex that is
///         not there: the first such triangle is told
[[nodiscard]] MeshBuffers ReadOisFile(const std::wstring& path);
[[nodiscard]] MeshBuffers ReadOis(std::span<const std::byte> bytes);
[[nodiscard]] MeshBuffers ReadMshFile(const std::wstring& path);
[[nodiscard]] MeshBuffers ReadMsh(std::span<const std::byte> bytes);
