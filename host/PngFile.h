// Pictures as PNG files.
#pragma once
#include <string>

#include "KV_ScenePane/ScenePane.h"

/// Writes the picture's colours, without its alpha, as an 8-bit RGB file. A regular file is written beside its target,
/// flushed to disk and renamed over it, so that a failure leaves an older file whole; a device or pipe is written to.
/// @param reason  takes why it failed, in clear words
[[nodiscard]] bool WritePng(const std::string& path, const KV_ScenePane::Picture& picture, std::string* reason);
