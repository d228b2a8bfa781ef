// The folder for temporary files.
#pragma once
#include <string>

/// @return a path without a slash at the end: $TMPDIR when it is set, names an existing folder and has at most 260
/// bytes;
///         otherwise /tmp. The environment is read on each call
[[nodiscard]] std::string TempFolder();
