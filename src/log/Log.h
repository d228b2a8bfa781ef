// The log of the process: how the OpenGL context was created, and why it could not be. A text file "viewer.log" in the
// system's temporary folder, appended to, never rotated.
#pragma once
#include <cstdint>
#include <ctime>
#include <ostream>
#include <string>

enum class LogLevel { Error, Warning, Info, Debug };

/// The calling thread's log stream with the header of a new record, "[" time "] <" level ">: ", already written. The
/// caller streams its text and then std::endl; without the line end, the header of the thread's next record is in the
/// same line. Every level is always written. When the file cannot be opened, all writes are ignored.
///
/// Any thread. What a thread writes reaches the file when it flushes, or at its end, as one piece: the lines of other
/// threads come before or after it. No thread waits for another one's line end.
[[nodiscard]] std::ostream& Log(LogLevel level);

/// The time in the header of a record: "hh:mm:ss.nnn" in local time.
/// @param milliseconds  since the first record of the process; nnn is this modulo 1000, not the fraction of the second
/// @return "Error in NowTime()" for a time that has no local date
[[nodiscard]] std::string LogTime(std::time_t now, std::int64_t milliseconds);
