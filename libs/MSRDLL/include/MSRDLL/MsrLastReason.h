// Why the last operation of class MSR failed.
#pragma once

/// The reason why the last MSR::Load(), MSR::Save() or MSR::SaveTrafoMatrix() on the calling thread failed, as a
/// sentence without its subject: "header is cut short at byte 100", "cannot be opened: No such file or directory".
/// Empty when that operation succeeded, and before the first one on this thread. A program looks this symbol up at run
/// time (dlsym) and does without the reason where it is missing: a site can replace the library by its own, which has
/// class MSR but perhaps not this function.
/// @return UTF-8, never null. The memory belongs to the library; the text is valid until the next operation on this
///         thread
extern "C" __attribute__((visibility("default"))) const char* MsrLastReason();
