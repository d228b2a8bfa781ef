// The runs without a window: a picture into a file, or numbers to standard output. No display, no Qt.
#pragma once
#include <cstdio>
#include <string>

#include "CommandLine.h"

/// Exit status of a run: every file added an object, or not, or the command line was wrong.
inline constexpr int kExitGood = 0;
inline constexpr int kExitFailure = 1;
inline constexpr int kExitWrongUsage = 2;

/// Renders the files into options.picturePath, as a window of that size shows them. @param err  takes one line for each
/// file or step that failed
[[nodiscard]] int RunScreenshot(const HostOptions& options, std::FILE* err);

/// Renders the files into options.picturePath, as the viewer's screenshot of a fixed size.
/// @param err  takes one line for each file or step that failed
[[nodiscard]] int RunCapture(const HostOptions& options, std::FILE* err);

/// Prints what the files hold to @p out. A failure to write is a failure of the run.
[[nodiscard]] int RunInfo(const HostOptions& options, std::FILE* out, std::FILE* err);

/// Imports the one file of the options and writes its object to options.exportPath.
/// @param err  takes one line for the step that failed
[[nodiscard]] int RunConvert(const HostOptions& options, std::FILE* err);

/// Prints @p text to @p out. A failure to write is a failure of the run.
[[nodiscard]] int RunText(const std::string& text, std::FILE* out, std::FILE* err);

/// Writes all of @p text and flushes; false when the other end takes no more.
[[nodiscard]] bool PrintTo(std::FILE* out, const std::string& text);
