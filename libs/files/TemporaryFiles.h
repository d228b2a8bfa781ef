// The temporary files with a name that AtomicFile makes: their names, whose they are, and how they are removed.
#pragma once
#include <string>

namespace FileStorage {

/// A new path in the target's folder, one that no other process and no other thread uses. It has a hash of the
/// target's name and not the name, which may already have the greatest length that the file system allows.
/// @param target  path in bytes, links followed
[[nodiscard]] std::string TemporaryPath(const std::string& target);

/// Marks an open temporary file as in use, as long as its descriptor or a copy of it is open: the end of the process
/// ends the mark, whatever ended the process. A file system without locks cannot mark files; there nothing is removed
/// by RemoveLeftFiles() either.
/// @return false when another process is about to remove the file: it must not be used
[[nodiscard]] bool MarkInUse(int fd);

/// The folder of a path, "." for a path without one.
[[nodiscard]] std::string FolderOf(const std::string& path);

/// Removes the temporary files beside @p target that processes left which were killed while they wrote it. Only
/// regular files with a name of TemporaryPath() for this target, that belong to this user or to the owner of the
/// target and that no process has in use; files that cannot be opened or removed stay. Reads the whole folder.
void RemoveLeftFiles(const std::string& target);

/// Removes the temporary files that this process is writing, in whichever library of it. For the signal handlers of a
/// program that is about to end: it allocates nothing, waits for nothing and keeps errno. It finds the files by the
/// descriptors in /proc/self/fd; without /proc it removes nothing.
void RemoveOpenTemporaryFiles() noexcept;

}  // namespace FileStorage
