// What a run would destroy by what it writes, found by the files on disk before anything is read.
#pragma once
#include <string>
#include <vector>

#include "CommandLine.h"

/// The pictures of Screenshot and Capture, in the order of their views.
[[nodiscard]] std::vector<std::string> PicturePaths(const HostOptions& options);

/// Why a run must not write its results, as a mistake of the command line: a file that it writes is one that it also
/// reads, by its name or by any link to it, or as an image or a material that a mesh names (NamedFilesCheck.h); or a
/// picture would be printed to a terminal. Empty when it may. A file of transforms may be read and written again:
/// entries for other files are kept.
[[nodiscard]] std::string OutputRefusal(const HostOptions& options);
