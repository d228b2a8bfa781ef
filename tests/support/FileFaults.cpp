// Each function is defined and exported under its own name; the system's is the next one after it.
#include "support/FileFaults.h"

#include <dlfcn.h>
#include <fcntl.h>
#include <signal.h>
#include <stdarg.h>
#include <stdio.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <string_view>

namespace {

FileFaults g_faults;  // written while no other thread works on files
std::atomic<std::int64_t> g_calls{0};
std::atomic<std::int64_t> g_bytesLeft{-1};

template <class Function>
Function* Next(const char* name) {
    return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

[[noreturn]] void Die() {
    ::kill(::getpid(), SIGKILL);
    for (;;) ::pause();
}

/// What happens to a call.
enum class Fate { Done, Dies, DiesHalfway, DiesAfterwards, Fails };

Fate NextFate() {
    if (++g_calls != g_faults.call) return Fate::Done;
    switch (g_faults.kind) {
        case FileFaults::KillBefore:
            return Fate::Dies;
        case FileFaults::KillHalf:
            return Fate::DiesHalfway;
        case FileFaults::KillAfter:
            return Fate::DiesAfterwards;
        case FileFaults::Error:
            break;
    }
    errno = g_faults.error;
    return Fate::Fails;
}

/// Makes a call that cannot be done by halves.
template <class Call>
int Make(const Call& call) {
    const Fate fate = NextFate();
    if (fate == Fate::Fails) return -1;
    if (fate == Fate::Dies || fate == Fate::DiesHalfway) Die();
    const int result = call();
    if (fate == Fate::DiesAfterwards) Die();
    return result;
}

ssize_t Write(int fd, const void* bytes, size_t size, off_t offset) {
    static auto* const real = Next<ssize_t(int, const void*, size_t, off_t)>("pwrite");
    const Fate fate = NextFate();
    if (fate == Fate::Fails) return -1;
    if (fate == Fate::Dies) Die();
    if (fate == Fate::DiesHalfway) {
        (void)real(fd, bytes, size / 2, offset);
        Die();
    }
    if (g_bytesLeft >= 0) {
        // The part that fits is written, as a full disk does.
        std::int64_t left = g_bytesLeft, part = 0;
        do part = left < static_cast<std::int64_t>(size) ? left : static_cast<std::int64_t>(size);
        while (!g_bytesLeft.compare_exchange_weak(left, left - part));
        size = static_cast<size_t>(part);
        if (size == 0) {
            errno = ENOSPC;
            return -1;
        }
    }
    const ssize_t written = real(fd, bytes, size, offset);
    if (fate == Fate::DiesAfterwards) Die();
    return written;
}

int Open(const char* path, int flags, mode_t mode) {
    static auto* const real = Next<int(const char*, int, ...)>("open");
    const bool isNameless = (flags & O_TMPFILE) == O_TMPFILE;
    if (isNameless && g_faults.hasNoNameless) {
        errno = EOPNOTSUPP;
        return -1;
    }
    if ((flags & O_CREAT) == 0 && !isNameless) return real(path, flags, mode);
    return Make([&] { return real(path, flags, mode); });
}

/// The faults of the environment, for a program that does not set any.
const bool g_bEnvironmentRead = [] {
    const char* const call = std::getenv("KV_FILE_FAULT_CALL");
    const char* const kind = std::getenv("KV_FILE_FAULT_KIND");
    if (call == nullptr || kind == nullptr) return false;
    g_faults.call = std::atoll(call);
    g_faults.hasNoNameless = std::getenv("KV_FILE_FAULT_NAMED") != nullptr;
    const std::string_view name = kind;
    g_faults.kind = name == "half"    ? FileFaults::KillHalf
                    : name == "after" ? FileFaults::KillAfter
                    : name == "error" ? FileFaults::Error
                                      : FileFaults::KillBefore;
    return true;
}();

}  // namespace

extern "C" {

void KvSetFileFaults(const FileFaults* faults) {
    g_faults = *faults;
    g_calls = 0;
    g_bytesLeft = faults->bytesLeft;
}

std::int64_t KvFileCalls() { return g_calls; }

int open(const char* path, int flags, ...) {
    va_list arguments;
    va_start(arguments, flags);
    const auto mode =
        (flags & O_CREAT) != 0 || (flags & O_TMPFILE) == O_TMPFILE ? static_cast<mode_t>(va_arg(arguments, int)) : 0;
    va_end(arguments);
    return Open(path, flags, mode);
}

int open64(const char* path, int flags, ...) {
    va_list arguments;
    va_start(arguments, flags);
    const auto mode =
        (flags & O_CREAT) != 0 || (flags & O_TMPFILE) == O_TMPFILE ? static_cast<mode_t>(va_arg(arguments, int)) : 0;
    va_end(arguments);
    return Open(path, flags, mode);
}

ssize_t pwrite(int fd, const void* bytes, size_t size, off_t offset) { return Write(fd, bytes, size, offset); }
ssize_t pwrite64(int fd, const void* bytes, size_t size, off_t offset) { return Write(fd, bytes, size, offset); }

int fchmod(int fd, mode_t mode) noexcept {
    static auto* const real = Next<int(int, mode_t)>("fchmod");
    return Make([&] { return real(fd, mode); });
}

int fsync(int fd) {
    static auto* const real = Next<int(int)>("fsync");
    return Make([&] { return g_faults.skipsSync ? 0 : real(fd); });
}

int linkat(int fromFolder, const char* from, int toFolder, const char* to, int flags) noexcept {
    static auto* const real = Next<int(int, const char*, int, const char*, int)>("linkat");
    return Make([&] { return real(fromFolder, from, toFolder, to, flags); });
}

int rename(const char* from, const char* to) noexcept {
    static auto* const real = Next<int(const char*, const char*)>("rename");
    return Make([&] { return real(from, to); });
}

int unlink(const char* path) noexcept {
    static auto* const real = Next<int(const char*)>("unlink");
    return Make([&] { return real(path); });
}
}
