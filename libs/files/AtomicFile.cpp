// Write, flush, rename, flush the folder. Every name but those of temporary files that is visible at any moment, also
// after a crash or a power cut, belongs to a whole file.
#include "files/AtomicFile.h"

#include <fcntl.h>
#include <signal.h>
#include <stdio.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <climits>
#include <cstddef>
#include <memory>
#include <system_error>
#include <utility>

#include "files/SystemMessage.h"
#include "files/TemporaryFiles.h"

namespace FileStorage {

int FileCalls::Open(const char* path, int flags, mode_t mode) { return ::open(path, flags, mode); }
ssize_t FileCalls::WriteAt(int fd, const void* bytes, std::size_t size, off_t offset) {
    return ::pwrite(fd, bytes, size, offset);
}
int FileCalls::ChangeMode(int fd, mode_t mode) { return ::fchmod(fd, mode); }
int FileCalls::Sync(int fd) { return ::fsync(fd); }
int FileCalls::Link(int fd, const char* path) {
    // AT_EMPTY_PATH needs a privilege in older kernels.
    char source[40];
    std::snprintf(source, sizeof source, "/proc/self/fd/%d", fd);
    return ::linkat(AT_FDCWD, source, AT_FDCWD, path, AT_SYMLINK_FOLLOW);
}
int FileCalls::Close(int fd) { return ::close(fd); }
int FileCalls::Rename(const char* from, const char* to) { return ::rename(from, to); }
int FileCalls::Unlink(const char* path) { return ::unlink(path); }

FileCalls& FileCalls::Real() {
    static FileCalls calls;
    return calls;
}

namespace {

[[noreturn]] void Fail(const char* what) { throw std::system_error(errno, SystemErrors(), what); }

/// The path that remains when the last component of @p path is resolved while it is a symbolic link. The result need
/// not exist, so realpath() cannot be used.
std::string FollowLinks(std::string path) {
    constexpr int kMaxLinks = 40;  // the limit of the system itself
    for (int i = 0; i <= kMaxLinks; ++i) {
        char link[PATH_MAX];
        const ssize_t length = ::readlink(path.c_str(), link, sizeof link);
        if (length < 0) return path;  // not a link, or missing
        const std::string to(link, static_cast<std::size_t>(length));
        path = to.starts_with('/') ? to : FolderOf(path).append("/").append(to);
    }
    errno = ELOOP;
    Fail("too many links");
}

/// Signals that end a program wait until the end of this object, if this thread is the one that would handle them.
class DelayedSignals {
public:
    DelayedSignals() {
        sigset_t signals;
        sigemptyset(&signals);
        for (const int signal : {SIGINT, SIGTERM, SIGHUP}) sigaddset(&signals, signal);
        ::pthread_sigmask(SIG_BLOCK, &signals, &m_before);
    }
    ~DelayedSignals() { ::pthread_sigmask(SIG_SETMASK, &m_before, nullptr); }
    DelayedSignals(const DelayedSignals&) = delete;
    DelayedSignals& operator=(const DelayedSignals&) = delete;

private:
    sigset_t m_before{};
};

}  // namespace

AtomicFile::AtomicFile(const std::string& target, FileCalls& calls) : m_calls(calls), m_sTarget(FollowLinks(target)) {
    struct stat old {};
    const bool exists = ::stat(m_sTarget.c_str(), &old) == 0;
    if (exists && !S_ISREG(old.st_mode)) {
        errno = S_ISDIR(old.st_mode) ? EISDIR : EOPNOTSUPP;
        Fail(S_ISDIR(old.st_mode) ? "cannot be written" : "not a regular file");
    }
    // A rename needs write permission for the folder only, but a write-protected file must not be replaced.
    if (exists && ::access(m_sTarget.c_str(), W_OK) != 0) Fail("cannot be written");
    try {
        m_iFolderFd = m_calls.Open(FolderOf(m_sTarget).c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC, 0);
        if (m_iFolderFd < 0) Fail("cannot open the folder");
        // First, since they may fill the disk.
        RemoveLeftFiles(m_sTarget);
        // Private until the old file's mode is set below: the new content must not be more readable than the old.
        const mode_t mode = exists ? S_IRUSR | S_IWUSR : 0666;
        OpenNameless(mode);
        if (m_iFd < 0) OpenNamed(mode);
        if (exists) KeepOwnerAndMode(old.st_uid, old.st_gid, old.st_mode & 07777);
    } catch (...) {
        Discard();
        throw;
    }
}

AtomicFile::~AtomicFile() { Discard(); }

/// Leaves no file where the file system cannot make one without a name. Any error counts as that: OpenNamed() will
/// meet what is wrong for both.
void AtomicFile::OpenNameless(mode_t mode) {
    m_iFd = m_calls.Open(FolderOf(m_sTarget).c_str(), O_RDWR | O_TMPFILE | O_CLOEXEC, mode);
    // Before it has a name, so that it never has one without this mark.
    if (m_iFd >= 0) (void)MarkInUse(m_iFd);
}

void AtomicFile::OpenNamed(mode_t mode) {
    constexpr int kAttempts = 100;
    for (int i = 0; i < kAttempts; ++i) {
        std::string name = TemporaryPath(m_sTarget);
        m_iFd = m_calls.Open(name.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC | O_NOFOLLOW, mode);
        if (m_iFd < 0 && errno == EEXIST) continue;
        if (m_iFd < 0) break;
        m_sTemp = std::move(name);
        if (MarkInUse(m_iFd)) return;
        // Another process has found it before it was marked, and removes it.
        (void)m_calls.Close(std::exchange(m_iFd, -1));
        m_sTemp.clear();
        errno = EEXIST;
    }
    Fail("cannot create a file beside the target");
}

void AtomicFile::KeepOwnerAndMode(uid_t user, gid_t group, mode_t mode) {
    // Only a privileged process can keep a foreign owner; otherwise the file belongs to the writing process.
    if (::fchown(m_iFd, user, group) != 0) errno = 0;
    if (m_calls.ChangeMode(m_iFd, mode) != 0) Fail("cannot set the mode");
}

void AtomicFile::WriteAt(std::uint64_t offset, const void* bytes, std::size_t size) {
    const char* from = static_cast<const char*>(bytes);
    while (size > 0) {
        const ssize_t written = m_calls.WriteAt(m_iFd, from, size, static_cast<off_t>(offset));
        if (written < 0 && errno == EINTR) continue;
        if (written < 0) Fail("cannot write");
        if (written == 0) {  // no progress and no error: treated as a full disk, or the loop would never end
            errno = ENOSPC;
            Fail("cannot write");
        }
        from += written;
        offset += static_cast<std::uint64_t>(written);
        size -= static_cast<std::size_t>(written);
    }
}

void AtomicFile::Commit() {
    if (m_calls.Sync(m_iFd) != 0) Fail("cannot flush");
    {
        // A file that was written without a name is not among those that RemoveOpenTemporaryFiles() finds.
        const DelayedSignals delay;
        if (m_sTemp.empty()) GiveName();
        // The descriptor stays open as a copy: it marks the file as in use until it is renamed, and
        // RemoveOpenTemporaryFiles() finds the file by it.
        const int copy = ::fcntl(m_iFd, F_DUPFD_CLOEXEC, 0);
        if (copy < 0) Fail("cannot close");
        const int fd = std::exchange(m_iFd, copy);
        if (m_calls.Close(fd) != 0) Fail("cannot close");
        if (m_calls.Rename(m_sTemp.c_str(), m_sTarget.c_str()) != 0) Fail("cannot rename");
        m_sTemp.clear();
    }
    // The new file is complete and in place, so a failure here is not reported: some file systems cannot flush folders.
    // Without this flush a power cut may restore the old file, which is whole too.
    (void)m_calls.Sync(m_iFolderFd);
}

void AtomicFile::GiveName() {
    constexpr int kAttempts = 100;
    for (int i = 0; i < kAttempts; ++i) {
        std::string name = TemporaryPath(m_sTarget);
        if (m_calls.Link(m_iFd, name.c_str()) == 0) {
            m_sTemp = std::move(name);
            return;
        }
        if (errno != EEXIST) break;
    }
    // Without /proc, by the rules of a security module, or on a file system that makes nameless files but no links.
    CopyToNamedFile();
}

void AtomicFile::CopyToNamedFile() {
    struct stat state {};
    if (::fstat(m_iFd, &state) != 0) Fail("cannot read the written file");
    const int from = std::exchange(m_iFd, -1);
    try {
        OpenNamed(S_IRUSR | S_IWUSR);
        KeepOwnerAndMode(state.st_uid, state.st_gid, state.st_mode & 07777);
        constexpr std::size_t kBlock = 1 << 20;
        const auto block = std::make_unique<std::byte[]>(kBlock);
        for (off_t at = 0; at < state.st_size;) {
            const ssize_t got = ::pread(from, block.get(), kBlock, at);
            if (got < 0 && errno == EINTR) continue;
            if (got <= 0) Fail("cannot read the written file");
            WriteAt(static_cast<std::uint64_t>(at), block.get(), static_cast<std::size_t>(got));
            at += got;
        }
        if (m_calls.Sync(m_iFd) != 0) Fail("cannot flush");
    } catch (...) {
        (void)m_calls.Close(from);
        throw;
    }
    (void)m_calls.Close(from);
}

void AtomicFile::Discard() noexcept {
    const int error = errno;
    if (m_iFd >= 0) (void)m_calls.Close(std::exchange(m_iFd, -1));
    if (m_iFolderFd >= 0) (void)m_calls.Close(std::exchange(m_iFolderFd, -1));
    if (!m_sTemp.empty()) (void)m_calls.Unlink(m_sTemp.c_str());
    m_sTemp.clear();
    errno = error;
}

}  // namespace FileStorage
