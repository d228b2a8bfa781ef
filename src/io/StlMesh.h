// Binary stl. docs/formats/stl.md describes every byte.
#pragma once
#include <cstddef>
#include <functional>
#include <span>
#include <string>

#include "io/ByteInput.h"
#include "io/FileMesh.h"

class Mesh;

/// From a file, from the bytes of one, or from any input. All corners at the same position share one vertex; vertices
/// are in the order of their first use, in the file's units, and normals are zero. A file that was cut short is
/// accepted when it has at least half of its bytes; missing coordinates repeat the last ones.
/// @throws FileReadError when the file cannot be opened, is not a regular file, has no triangle, or has less than half
/// of
///         the announced bytes; the reason mentions when it looks like text. std::length_error for more vertices than
///         an index can count
/// @param threads  at most so many, and at most four, work on a large file; the result does not depend on them. Each
///                 further one needs memory for the vertices of its part: 30 to 60 bytes per vertex
[[nodiscard]] FileMesh ReadStlFile(const std::wstring& path, unsigned threads = 1);
[[nodiscard]] FileMesh ReadStl(std::span<const std::byte> bytes, unsigned threads = 1);
[[nodiscard]] FileMesh ReadStl(ByteInput& input, unsigned threads = 1);

/// Receives the next bytes of a file.
using ByteSink = std::function<void(std::span<const std::byte>)>;

/// Writes header and triangles in blocks of 250 kB. Normals are those of the triangles, computed from the positions.
/// @throws std::out_of_range "invalid vector subscript" when a triangle refers to a vertex that does not exist;
///         std::length_error for more triangles than the header can count; any exception of @p sink
void WriteStl(const Mesh& mesh, const ByteSink& sink);
