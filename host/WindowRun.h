// The run with a window.
#pragma once
#include "CommandLine.h"

/// Shows the window until the user closes it. Files that added nothing are printed to standard error too.
/// @param program  argv[0]
/// @return an exit status (Headless.h)
[[nodiscard]] int RunWindow(const HostOptions& options, char* program);
