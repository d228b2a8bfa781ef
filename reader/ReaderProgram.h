// What scenepane and scenepane-read agree on: scenepane-read MEGABYTES SECONDS FILE.
#pragma once

/// The descriptor of the empty file that receives the result (ReaderResult.h), open for reading and writing.
inline constexpr int kReaderResultFd = 3;

/// Beside the program that runs it, or in the folder of programs that are not run by hand.
inline constexpr const char* kReaderName = "scenepane-read";
