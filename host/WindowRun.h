// The run with a window.
#pragma once
#include "CommandLine.h"

/// Shows the window until the user closes it. @param program  the program's own name
/// @return an exit status (Headless.h)
[[nodiscard]] int RunWindow(const HostOptions& options, char* program);
