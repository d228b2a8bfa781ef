// The choice of a reader for a foreign file.
#pragma once
#include <string>

#include "ReaderResult.h"

/// By the extension, in any case of letters; stl files also by their start. @param file  path in bytes
/// @throws std::exception with the reason as one line
[[nodiscard]] ReaderResult ReadForeignFile(const std::string& file);
