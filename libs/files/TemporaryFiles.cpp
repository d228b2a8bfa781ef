// A file in use is locked by flock(): a process id in its name could be that of a newer process, or of a process of
// another computer or container that writes into the same folder.
#include "files/TemporaryFiles.h"

#include <dirent.h>
#include <fcntl.h>
#include <stdio.h>
#include <sys/file.h>
#include <sys/random.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <charconv>
#include <climits>
#include <cstdint>
#include <cstring>
#include <string_view>
#include <system_error>

namespace FileStorage {

namespace {

constexpr std::string_view kStart = ".kv-", kEnd = ".tmp";

/// The names of temporary files of this target begin so.
std::string NameStart(const std::string& target) {
    // FNV-1a. std::hash may differ between two builds that write into the same folder.
    std::uint64_t hash = 0xcbf29ce484222325;
    for (const char c : target.substr(target.rfind('/') + 1))
        hash = (hash ^ static_cast<unsigned char>(c)) * 0x100000001b3;
    char name[40];
    std::snprintf(name, sizeof name, "%s%016llx-", kStart.data(), static_cast<unsigned long long>(hash));
    return name;
}

/// Whether this process has made the name. For signal handlers.
bool IsOwnName(std::string_view name) {
    constexpr std::size_t kHashDigits = 16;
    if (!name.starts_with(kStart) || !name.ends_with(kEnd) || name.size() < kStart.size() + kHashDigits + 1)
        return false;
    name.remove_prefix(kStart.size() + kHashDigits);
    long process = 0;
    const char* const first = name.data() + 1;
    const auto number = std::from_chars(first, name.data() + name.size(), process);
    return name.front() == '-' && number.ec == std::errc() && *number.ptr == '-' && process == ::getpid();
}

/// Removes the file unless a process uses it or it is not one of ours.
void RemoveIfLeft(const std::string& path, uid_t targetOwner) {
    struct stat named {
    }, opened{};
    const auto isOurs = [&] {
        return ::lstat(path.c_str(), &named) == 0 && S_ISREG(named.st_mode) &&
               (named.st_uid == ::geteuid() || named.st_uid == targetOwner);
    };
    if (!isOurs()) return;
    // Writable, which some network file systems require of a lock; without waiting, should it be a pipe by now.
    const int fd = ::open(path.c_str(), O_WRONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC);
    if (fd < 0) return;
    // Its writer may have renamed it before it was opened or locked: the path then belongs to no file, or to another.
    if (::flock(fd, LOCK_EX | LOCK_NB) == 0 && ::fstat(fd, &opened) == 0 && isOurs() && named.st_ino == opened.st_ino &&
        named.st_dev == opened.st_dev)
        (void)::unlink(path.c_str());
    ::close(fd);
}

}  // namespace

std::string FolderOf(const std::string& path) {
    const std::size_t slash = path.rfind('/');
    if (slash == std::string::npos) return ".";
    return slash == 0 ? "/" : path.substr(0, slash);
}

std::string TemporaryPath(const std::string& target) {
    static std::atomic<unsigned> counter{0};
    unsigned long long random = 0;
    if (::getrandom(&random, sizeof random, GRND_NONBLOCK) < 0) random = 0;  // O_EXCL detects a name in use
    char name[80];
    std::snprintf(name, sizeof name, "%ld-%u-%016llx%s", static_cast<long>(::getpid()), counter++, random, kEnd.data());
    return FolderOf(target) + "/" + NameStart(target) + name;
}

bool MarkInUse(int fd) {
    if (::flock(fd, LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK) return false;
    // Another process may have had the lock, removed the file and closed it.
    struct stat state {};
    return ::fstat(fd, &state) != 0 || state.st_nlink > 0;
}

void RemoveLeftFiles(const std::string& target) {
    struct stat old {};
    const uid_t owner = ::stat(target.c_str(), &old) == 0 ? old.st_uid : ::geteuid();
    const std::string folder = FolderOf(target), start = NameStart(target);
    DIR* const entries = ::opendir(folder.c_str());
    if (entries == nullptr) return;
    while (const dirent* entry = ::readdir(entries)) {
        const std::string_view name = entry->d_name;
        if (name.starts_with(start) && name.ends_with(kEnd)) RemoveIfLeft(folder + "/" + entry->d_name, owner);
    }
    ::closedir(entries);
}

void RemoveOpenTemporaryFiles() noexcept {
    const int error = errno;
    const int folder = ::open("/proc/self/fd", O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    alignas(dirent64) char entries[4096];
    ssize_t size = 0;
    while (folder >= 0 && (size = ::getdents64(folder, entries, sizeof entries)) > 0) {
        for (ssize_t at = 0; at < size;) {
            const auto* entry = reinterpret_cast<const dirent64*>(&entries[at]);
            at += entry->d_reclen;
            char path[PATH_MAX + 1];
            const ssize_t length = ::readlinkat(folder, entry->d_name, path, PATH_MAX);
            if (length <= 0) continue;
            path[length] = '\0';
            const char* const slash = std::strrchr(path, '/');
            if (slash != nullptr && IsOwnName(slash + 1)) (void)::unlink(path);
        }
    }
    if (folder >= 0) ::close(folder);
    errno = error;
}

}  // namespace FileStorage
