// The system's temporary folder.
#pragma once
#include <string>

/// Path without a slash at the end: $TMPDIR when that is set, not longer than 260 bytes and a folder; else /tmp.
[[nodiscard]] std::string TempFolder();
