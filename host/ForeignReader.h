// Runs scenepane-read on a file. Whatever happens there, this program gets a result or a reason.
#pragma once
#include <chrono>
#include <cstdint>
#include <functional>
#include <string>

#include "ReaderResult.h"

/// What one run may use.
struct ReaderLimits {
    std::uint64_t megabytes = 0;       ///< of address space
    std::chrono::seconds processor{};  ///< processor time
    std::chrono::seconds whole{};      ///< from start to end, also while it waits for a disk
};

/// Generous for a good file: 60 s and a second per MB; half of the machine's memory, but not more than 64 times the
/// file and 2 GB, except for formats whose data is in other files.
[[nodiscard]] ReaderLimits LimitsFor(const std::string& file);

/// The program beside this one, or where an installation has it; empty when there is none.
[[nodiscard]] std::string ReaderProgram();

/// The reason of a run that was cancelled, as that of KV_ScenePane::ReadPointFile().
inline constexpr const char* kCancelled = "cancelled";

struct ReaderRun {
    std::string program = ReaderProgram();
    ReaderLimits limits;
    /// Called again and again on the thread that waits; true ends the run. Empty: it cannot be cancelled.
    std::function<bool()> isCancelled;
};

/// Reads one file in a process of its own, which is ended when it exceeds its limits. Any thread, several at once; the
/// thread that calls this must live as long as the run.
/// @param file  path in bytes
/// @return a result that was checked (ReadReaderResult()). Of the kind Refused also when the process crashed, was
///         cancelled or could not be started; the text says why
/// @throws std::bad_alloc for a result that does not fit into memory
[[nodiscard]] ReaderResult RunReader(const std::string& file, const ReaderRun& run);
/// With the limits for the file.
[[nodiscard]] ReaderResult RunReader(const std::string& file, std::function<bool()> isCancelled = {});
