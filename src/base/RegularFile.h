// Reads a regular file whole or by offset. The implementation is libs/files/RegularFile.cpp, which the libraries use
// too.
#pragma once
#include "files/RegularFile.h"

/// Why a file could not be opened or read; what() is the reason in words, without the path.
using FileStorage::FileAccessError;
/// A file that is open for reading: `RegularFile file(path); file.ReadAt(offset, to, size);` or `file.ReadWhole()`.
using FileStorage::RegularFile;
