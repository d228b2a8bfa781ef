// The runs without a window: a picture into a file, numbers to standard output, a file into another format. They need
// neither a display nor Qt.
#pragma once
#include <cstdio>
#include <string>

#include "CommandLine.h"

/// Exit status of a run.
inline constexpr int kExitGood = 0;        ///< every file added an object and all results were written
inline constexpr int kExitFailure = 1;     ///< a file added none, or a result could not be written
inline constexpr int kExitWrongUsage = 2;  ///< the command line was wrong

// All runs return an exit status and write one line for each failure to err: "scenepane: FILE: REASON".

/// Renders the files into options.picturePath, as a window of that size shows them. Without an object no picture is
/// written.
[[nodiscard]] int RunScreenshot(const HostOptions& options, std::FILE* err);

/// Renders the files into options.picturePath, as the viewer's screenshot of a fixed size. Without an object no picture
/// is written.
[[nodiscard]] int RunCapture(const HostOptions& options, std::FILE* err);

/// Prints the content of the files to @p out.
[[nodiscard]] int RunInfo(const HostOptions& options, std::FILE* out, std::FILE* err);

/// Imports the one file of the options and writes its object to options.exportPath.
[[nodiscard]] int RunConvert(const HostOptions& options, std::FILE* err);

/// Prints the version to @p out, and with options.verbose what draws pictures without a window.
[[nodiscard]] int RunVersion(const HostOptions& options, std::FILE* out, std::FILE* err);

/// Prints a result to @p out and flushes it: a full disk or a closed pipe is a failure of the run.
[[nodiscard]] int PrintResult(const std::string& text, std::FILE* out, std::FILE* err);

/// Prints one line "scenepane: LINE". There is no place left to report a failure of this to.
void PrintError(std::FILE* err, const std::string& line);
