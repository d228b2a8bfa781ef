// The log of the process: how the OpenGL context came up and why it did not. A text file "viewer.log" in the system's
// temporary folder, appended to, never rotated.
#pragma once
#include <ostream>

enum class LogLevel { Error, Warning, Info, Debug };

/// The log stream with the header of a new record, "[" time "] <" level ">: ", already written. The caller streams its
/// text and then std::endl; one who leaves the line end out and calls again gets two headers in one line. Every level
/// is always written; when the file cannot be opened all writes fall away silently. The first use is safe against
/// concurrent callers, records are not.
[[nodiscard]] std::ostream& Log(LogLevel level);
