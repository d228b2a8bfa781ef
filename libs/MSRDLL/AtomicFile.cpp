// Write beside, flush, rename, flush the folder: at every moment the target's name leads to a whole file.
#include "MSRDLL/AtomicFile.h"

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

namespace MsrStorage {

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

[[noreturn]] void Fail(const char* what) { throw std::system_error(errno, std::generic_category(), what); }

std::string FolderOf(const std::string& path) {
    const std::size_t slash = path.rfind('/');
    if (slash == std::string::npos) return ".";
    return slash == 0 ? "/" : path.substr(0, slash);
}

/// The path behind the links that the last part of @p path may be; it need not exist.
std::string FollowLinks(std::string path) {
    constexpr int kMaxLinks = 40;  // as many as the system itself follows
    for (int i = 0; i <= kMaxLinks; ++i) {
        char link[PATH_MAX];
        const ssize_t length = ::readlink(path.c_str(), link, sizeof link);
        if (length < 0) return path;  // no link, or nothing there
        const std::string to(link, static_cast<std::size_t>(length));
        path = to.starts_with('/') ? to : FolderOf(path).append("/").append(to);
    }
    errno = ELOOP;
    Fail("too many links");
}

/// A name that no other process and no other thread takes; short, since the target's own may be as long as names can
/// be.
std::string TempName() {
    static std::atomic<unsigned> counter{0};
    unsigned long long random = 0;
    if (::getrandom(&random, sizeof random, GRND_NONBLOCK) < 0) random = 0;  // the open call tells when it is taken
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
    // A rename asks for the folder's permission only; a file that is write-protected shall stay.
    if (exists && ::access(m_sTarget.c_str(), W_OK) != 0) Fail("cannot be written");
    try {
        m_iFolderFd = m_calls.Open(m_sFolder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC, 0);
        if (m_iFolderFd < 0) Fail("cannot open the folder");
        // Nobody who may not read the old file shall read the new one meanwhile.
        OpenBesideTarget(exists ? S_IRUSR | S_IWUSR : 0666);
        if (exists) {
            // Without the right to give files away the new one belongs to who wrote it, as with most programs.
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
        if (written == 0) {
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
    // From here on the new file is in its place and whole, so an error is none of the caller's: some file systems know
    // no flush of folders, and after a failed one a power cut may bring the old file back, whole as well.
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

}  // namespace MsrStorage
