// Replaces a file as a whole or not at all: write a nameless file, or one beside the target, flush, rename.
#pragma once
#include <sys/types.h>

#include <cstddef>
#include <cstdint>
#include <string>

namespace FileStorage {

/// The system calls that replace a file, each with the arguments and the result of its namesake (errno on failure).
/// A class of its own so that tests can let each call fail.
class FileCalls {
public:
    virtual ~FileCalls() = default;
    virtual int Open(const char* path, int flags, mode_t mode);
    virtual ssize_t WriteAt(int fd, const void* bytes, std::size_t size, off_t offset);
    virtual int ChangeMode(int fd, mode_t mode);
    virtual int Sync(int fd);
    /// Gives an open file without a name this one, by linkat().
    virtual int Link(int fd, const char* path);
    virtual int Close(int fd);
    virtual int Rename(const char* from, const char* to);
    virtual int Unlink(const char* path);

    /// The calls of the system itself. One object for the process, without state, for any thread.
    static FileCalls& Real();
};

/// A temporary file in the target's folder that replaces the target in Commit(). Until then the target is unchanged,
/// and without a Commit() nothing remains of the temporary file.
/// It has no name before Commit() where the file system can make such files, so that nothing remains when the process
/// is killed either. Elsewhere a killed process leaves a file named .kv-*.tmp, unless it calls
/// RemoveOpenTemporaryFiles() before its end; the next AtomicFile for the same target removes it.
/// A symbolic link is followed: the file that it points to is replaced. An existing file keeps its mode, and where the
/// process may set it its owner; other hard links to it keep the old content.
/// Not for two threads at once. All members throw std::system_error: code() is the system's error number, what() the
/// failed step and the system's message.
class AtomicFile {
public:
    /// @param target  path in bytes, as open() receives it; the file need not exist
    /// @param calls   must outlive this object
    /// @throws std::system_error when the target exists and is not a regular file or is write-protected, or when no
    ///         file can be created in its folder
    explicit AtomicFile(const std::string& target, FileCalls& calls = FileCalls::Real());
    ~AtomicFile();
    AtomicFile(const AtomicFile&) = delete;
    AtomicFile& operator=(const AtomicFile&) = delete;

    /// Writes all @p size bytes at @p offset from the start of the file, in any order; unwritten gaps read as zeros.
    void WriteAt(std::uint64_t offset, const void* bytes, std::size_t size);
    /// Flushes to the disk and renames. An error means that the target is still the old file. Call it once, last.
    void Commit();

private:
    void OpenNameless(mode_t mode);
    void OpenNamed(mode_t mode);
    void KeepOwnerAndMode(uid_t user, gid_t group, mode_t mode);
    void GiveName();
    void CopyToNamedFile();
    void Discard() noexcept;

    FileCalls& m_calls;
    std::string m_sTarget;  ///< links followed
    std::string m_sTemp;    ///< path of the temporary file; empty when none exists or it has no name
    int m_iFd = -1;
    int m_iFolderFd = -1;
};

}  // namespace FileStorage
