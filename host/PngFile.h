// Pictures as PNG files: 8 bits per channel, red, green, blue.
#pragma once
#include <string>

#include "KV_ScenePane/ScenePane.h"

/// Writes the picture, without its alpha. A file is replaced as a whole or not at all: after a failure the old one is
/// unchanged. A symbolic link stays and its target is replaced, an existing file keeps its mode, and a new one has the
/// mode that the process's umask gives. A pipe or a device is written directly.
/// @param path    in bytes
/// @param reason  receives why nothing was written, in English; unchanged after a success
/// @return whether it was written
[[nodiscard]] bool WritePng(const std::string& path, const KV_ScenePane::Picture& picture, std::string* reason);
