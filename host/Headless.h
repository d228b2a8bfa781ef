// The runs without a window: a picture into a file, numbers to standard output, a file into another format. They need
// neither a display nor Qt.
#pragma once
#include <cstdio>
#include <string>

#include "CommandLine.h"

/// Exit status of a run.
inline constexpr int kExitGood = 0;  ///< every file added what it holds and all results were written
/// A file added nothing, a result could not be written, no pick hit, no clip height was found, no lasso has changed an
/// object, stored transforms could not be read or belong to no file, or pairs of points gave no transform.
inline constexpr int kExitFailure = 1;
inline constexpr int kExitWrongUsage = 2;  ///< the command line was wrong

// All runs return an exit status and write one line for each failure to err: "scenepane: FILE: REASON". Runs that
// import files apply the transforms of options.transformFile to them first; when these cannot be read, or belong to
// none of the files, the run ends without a result.

/// Renders the files and markers into options.picturePath, or for each of options.views into a file of its name, as a
/// window of that size shows them, in the look of the options, clipped by their plane and cut by their lassos. Without
/// an object and without a marker no picture is written, nor when the plane could not be placed.
[[nodiscard]] int RunScreenshot(const HostOptions& options, std::FILE* err);

/// Renders the files, lines and needles in the same way into the viewer's screenshot of a fixed size. Without
/// any of these no picture is written.
[[nodiscard]] int RunCapture(const HostOptions& options, std::FILE* err);

/// Prints to @p out what is under the pixels options.picks of the picture that RunScreenshot() takes.
[[nodiscard]] int RunPick(const HostOptions& options, std::FILE* out, std::FILE* err);

/// Prints the content of the files to @p out, after the lassos of the options, and with options.clipAuto the clip plane
/// that fits them. Without these and without transforms one file at a time is in memory, so that there may be any
/// number.
[[nodiscard]] int RunInfo(const HostOptions& options, std::FILE* out, std::FILE* err);

/// Imports the one file of the options and writes its object to options.exportPath.
[[nodiscard]] int RunConvert(const HostOptions& options, std::FILE* err);

/// Writes the clip plane and the lassos of the options into the pcm files, and prints one line per file to @p out.
/// Nothing is saved when there are lassos and none has changed an object, nor when the plane could not be placed.
[[nodiscard]] int RunSaveCuts(const HostOptions& options, std::FILE* out, std::FILE* err);

/// Imports the one file of the options, cuts its object by the lassos and writes what is left to options.exportPath.
/// Nothing is written when no lasso has changed it.
[[nodiscard]] int RunExport(const HostOptions& options, std::FILE* err);

/// Moves the moving files of the options onto the fixed ones by the pairs of options.pairFile, and prints the transform
/// and the residuals to @p out. Needs no OpenGL. With options.savedTransforms the transforms of all files after that
/// are written; not when a file could not be imported. Without a transform, and without an object that it moves,
/// nothing is printed or written.
[[nodiscard]] int RunAlign(const HostOptions& options, std::FILE* out, std::FILE* err);

/// Prints the version to @p out, and with options.verbose what draws pictures without a window.
[[nodiscard]] int RunVersion(const HostOptions& options, std::FILE* out, std::FILE* err);

/// Prints a result to @p out and flushes it: a full disk or a closed pipe is a failure of the run.
[[nodiscard]] int PrintResult(const std::string& text, std::FILE* out, std::FILE* err);

/// Prints one line "scenepane: LINE". There is no place left to report a failure of this to.
void PrintError(std::FILE* err, const std::string& line);
