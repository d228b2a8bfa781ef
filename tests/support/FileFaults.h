// A shared library that takes the place of the system calls by which files are replaced, and lets one of them fail or
// end the process. Linked before all other libraries, or preloaded into any program.
//
// A preloaded program sets the faults by its environment: KV_FILE_FAULT_CALL is the number of the call, and
// KV_FILE_FAULT_KIND one of "kill", "half", "after", "error"; with KV_FILE_FAULT_NAMED=1 there are no nameless files.
#pragma once
#include <cstdint>

struct FileFaults {
    enum Kind : std::int32_t {
        KillBefore,  ///< the process ends by SIGKILL in place of the call
        KillHalf,    ///< a write puts half of its bytes into the file, then the process ends; others as KillBefore
        KillAfter,   ///< the process ends right after the call
        Error        ///< the call does nothing and fails with @c error
    };
    Kind kind = KillBefore;
    std::int32_t error = 5;  ///< EIO
    /// Number of the call that it happens to, counted from 1 since the faults were set: opening of a file that is
    /// created, pwrite, fchmod, fsync, linkat, rename and unlink. 0 for none.
    std::int64_t call = 0;
    /// Bytes that can be written by pwrite() before the disk is full; negative for no limit.
    std::int64_t bytesLeft = -1;
    /// fsync() returns at once: it matters to a power cut and not to the end of a process.
    bool skipsSync = true;
    /// The file system makes no files without a name. Opening one then does not count as a call.
    bool hasNoNameless = false;
};

extern "C" {
/// Replaces the faults, and sets the count to 0.
void KvSetFileFaults(const FileFaults* faults);
/// The calls since then.
std::int64_t KvFileCalls();
}

/// The faults last as long as this object.
class ScopedFileFaults {
public:
    explicit ScopedFileFaults(const FileFaults& faults) { KvSetFileFaults(&faults); }
    ~ScopedFileFaults() {
        const FileFaults none;
        KvSetFileFaults(&none);
    }
    ScopedFileFaults(const ScopedFileFaults&) = delete;
    ScopedFileFaults& operator=(const ScopedFileFaults&) = delete;
};
