// The binary mesh formats ois and msh. docs/formats/ois.md and msh.md describe every byte.
#pragma once
#include <cstddef>
#include <span>
#include <string>

#include "io/ByteInput.h"
#include "io/FileMesh.h"

/// From a file or from the bytes of one. Vertices are those of the file, in its units; colours are zero, and so are the
/// normals of ois. A file without triangles or vertices is a valid mesh. A file that was cut short is accepted when it
/// has at least half of its bytes; missing values repeat those of the last record.
/// @throws FileReadError when the file cannot be opened, is not a regular file, ends before its counts, announces a
///         negative one, has less than half of the announced bytes, or has a triangle that refers to a missing vertex
///         (the reason names the first one)
[[nodiscard]] FileMesh ReadOisFile(const std::wstring& path);
[[nodiscard]] FileMesh ReadOis(std::span<const std::byte> bytes);
[[nodiscard]] FileMesh ReadMshFile(const std::wstring& path);
[[nodiscard]] FileMesh ReadMsh(std::span<const std::byte> bytes);
