// Pictures as files: PNG with 8 bits per channel, and bytes of other formats.
#pragma once
#include <cstddef>
#include <span>
#include <string>

#include "KV_ScenePane/ScenePane.h"

/// Whether a file has the alpha of its picture.
enum class PngAlpha { Dropped, Kept };

/// Writes the picture. A file is replaced as a whole or not at all: after a failure the old one is
/// unchanged. A symbolic link stays and its target is replaced, an existing file keeps its mode, and a new one has the
/// mode that the process's umask gives. A pipe or a device is written directly.
/// @param path    in bytes
/// @param reason  receives why nothing was written, in English; unchanged after a success
/// @return whether it was written
[[nodiscard]] bool WritePng(const std::string& path, const KV_ScenePane::Picture& picture, std::string* reason,
                            PngAlpha alpha = PngAlpha::Dropped);

/// Writes the bytes of a file in the same way. @param bytes  the whole content
[[nodiscard]] bool WriteFileBytes(const std::string& path, std::span<const std::byte> bytes, std::string* reason);
