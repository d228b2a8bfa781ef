// Write beside the target, flush, rename, flush the folder. Every name that is visible at any moment, also after a
// crash or a power cut, belongs to a whole file.
#include "files/AtomicFile.h"

#include <fcntl.h>
#include <stdio.h>
#include <sys/random.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <climits>
#include <system_error>
#include <utility>

#include "files/SystemMessage.h"

namespace FileStorage {

int FileCalls::Open(const char* path, int flags, mode_t mode) { return ::open(path, flags, mode); }
ssize_t FileCalls::WriteAt(int fd, const void* bytes, std::size_t size, off_t offset) {
    return ::pwrite(fd, bytes, size, offset);
}
int FileCalls::ChangeMode(int fd, mode_t mode) { return ::fchmod(fd, mode); }
int FileCalls::Sync(int fd) { return ::fsync(fd); }
int FileCalls::Close(int fd) { return ::close(fd); }
int FileCalls::Rename(const char* from, const char* to) { return ::rename(from, to); }
int FileCalls::Unlink(const char* path) { return ::unlink(path); }

FileCalls& FileCalls::Real() {
    static FileCalls calls;
    return calls;
}

namespace {

[[noreturn]] void Fail(const char* what) { throw std::system_error(errno, SystemErrors(), what); }

std::string FolderOf(const std::string& path) {
    const std::size_t slash = path.rfind('/');
    if (slash == std::string::npos) return ".";
    return slash == 0 ? "/" : path.substr(0, slash);
}

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

/// A name that no other process and no other thread uses. Not made from the target's name, which may already have the
/// greatest length that the file system allows.
std::string TempName() {
    static std::atomic<unsigned> counter{0};
    unsigned long long random = 0;
    if (::getrandom(&random, sizeof random, GRND_NONBLOCK) < 0) random = 0;  // O_EXCL detects a name in use
    char name[80];
    std::snprintf(name, sizeof name, ".kv-%ld-%u-%016llx.tmp", static_cast<long>(::getpid()), counter++, random);
    return name;
}

}  // namespace

AtomicFile::AtomicFile(const std::string& target, FileCalls& calls)
    : m_calls(calls), m_sTarget(FollowLinks(target)), m_sFolder(FolderOf(m_sTarget)) {
    struct stat old {};
    const bool exists = ::stat(m_sTarget.c_str(), &old) == 0;
    if (exists && !S_ISREG(old.st_mode)) {
        errno = EINVAL;
        Fail("not a regular file");
    }
    // A rename needs write permission for the folder only, but a write-protected file must not be replaced.
    if (exists && ::access(m_sTarget.c_str(), W_OK) != 0) Fail("cannot be written");
    try {
        m_iFolderFd = m_calls.Open(m_sFolder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC, 0);
        if (m_iFolderFd < 0) Fail("cannot open the folder");
        // Private until the old file's mode is set below: the new content must not be more readable than the old.
        OpenBesideTarget(exists ? S_IRUSR | S_IWUSR : 0666);
        if (exists) {
            // Only a privileged process can keep a foreign owner; otherwise the file belongs to the writing process.
            if (::fchown(m_iFd, old.st_uid, old.st_gid) != 0) errno = 0;
            if (m_calls.ChangeMode(m_iFd, old.st_mode & 07777) != 0) Fail("cannot set the mode");
        }
    } catch (...) {
        Discard();
        throw;
    }
}

AtomicFile::~AtomicFile() { Discard(); }

void AtomicFile::OpenBesideTarget(mode_t mode) {
    constexpr int kAttempts = 100;
    for (int i = 0; i < kAttempts; ++i) {
        std::string name = m_sFolder + "/" + TempName();
        m_iFd = m_calls.Open(name.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC | O_NOFOLLOW, mode);
        if (m_iFd >= 0) {
            m_sTemp = std::move(name);
            return;
        }
        if (errno != EEXIST) break;
    }
    Fail("cannot create a file beside the target");
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
    const int fd = std::exchange(m_iFd, -1);
    if (m_calls.Close(fd) != 0) Fail("cannot close");
    if (m_calls.Rename(m_sTemp.c_str(), m_sTarget.c_str()) != 0) Fail("cannot rename");
    m_sTemp.clear();
    // The new file is complete and in place, so a failure here is not reported: some file systems cannot flush folders.
    // Without this flush a power cut may restore the old file, which is whole too.
    (void)m_calls.Sync(m_iFolderFd);
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
