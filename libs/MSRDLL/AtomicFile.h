// Replaces a file as a whole or not at all.
#pragma once
#include <sys/types.h>

#include <cstddef>
#include <cstdint>
#include <string>

namespace MsrStorage {

/// The calls into the system by which a file is replaced, each as its namesake: tests let them fail one by one.
class FileCalls {
public:
    virtual ~FileCalls() = default;
    virtual int Open(const char* path, int flags, mode_t mode);
    virtual ssize_t WriteAt(int fd, const void* bytes, std::size_t size, off_t offset);
    virtual int ChangeMode(int fd, mode_t mode);
    virtual int Sync(int fd);
    virtual int Close(int fd);
    virtual int Rename(const char* from, const char* to);
    virtual int Unlink(const char* path);

    static FileCalls& Real();
};

/// A new file beside its target, which takes the target's place in Commit(). Until then the target stays as it is, and
/// without a Commit() the new file vanishes with the object.
/// A link is followed: the file that it leads to is replaced. An old file keeps its mode, and where the system allows
/// it its owner; other hard links to it keep the old content. All members throw std::system_error.
class AtomicFile {
public:
    /// Refuses a target that is there and no regular file, or that may not be written.
    AtomicFile(const std::string& target, FileCalls& calls);
    ~AtomicFile();
    AtomicFile(const AtomicFile&) = delete;
    AtomicFile& operator=(const AtomicFile&) = delete;

    void WriteAt(std::uint64_t offset, const void* bytes, std::size_t size);
    /// Flushes to the disk and renames. An error means that the target is still the old file.
    void Commit();

private:
    void OpenBesideTarget(mode_t mode);
    void Discard() noexcept;

    FileCalls& m_calls;
    std::string m_sTarget;  ///< links followed
    std::string m_sFolder;
    std::string m_sTemp;  ///< empty when there is none on the disk
    int m_iFd = -1;
    int m_iFolderFd = -1;
};

}  // namespace MsrStorage
