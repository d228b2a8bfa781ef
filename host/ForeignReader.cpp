// The process writes into a memory file. It is read after the process has ended: nobody can change it any more.
#include "ForeignReader.h"

#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <utility>

#include "FileTypes.h"
#include "MessageTable.h"
#include "ReaderProgram.h"

namespace {

using Clock = std::chrono::steady_clock;

ReaderResult Refusal(std::string reason) {
    ReaderResult result;
    result.text = std::move(reason);
    return result;
}

class Descriptor {
public:
    /// Above those that the new process has, so that these can be copied in any order.
    explicit Descriptor(int fd) : m_iFd(fd < 0 || fd > kReaderResultFd ? fd : Raised(fd)) {}
    ~Descriptor() { Close(); }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    void Close() {
        if (m_iFd >= 0) close(std::exchange(m_iFd, -1));
    }
    [[nodiscard]] int Get() const { return m_iFd; }

private:
    static int Raised(int fd) {
        const int raised = fcntl(fd, F_DUPFD_CLOEXEC, kReaderResultFd + 1);
        close(fd);
        return raised;
    }
    int m_iFd;
};

/// Starts the program with the result as kReaderResultFd. @return 0, or errno
int Start(const ReaderRun& run, const std::string& file, int result, pid_t& process) {
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
    posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
    posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
    posix_spawn_file_actions_adddup2(&actions, result, kReaderResultFd);
    posix_spawn_file_actions_addclosefrom_np(&actions, kReaderResultFd + 1);
    // Signals that this program ignores or blocks would end nothing there.
    posix_spawnattr_t attributes;
    posix_spawnattr_init(&attributes);
    sigset_t none, all;
    sigemptyset(&none);
    sigfillset(&all);
    posix_spawnattr_setsigmask(&attributes, &none);
    posix_spawnattr_setsigdefault(&attributes, &all);
    posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF);
    std::string megabytes = std::to_string(run.limits.megabytes);
    std::string seconds = std::to_string(run.limits.processor.count());
    std::string program = run.program, path = file;
    char* const arguments[] = {program.data(), megabytes.data(), seconds.data(), path.data(), nullptr};
    const int error = posix_spawn(&process, program.c_str(), &actions, &attributes, arguments, environ);
    posix_spawnattr_destroy(&attributes);
    posix_spawn_file_actions_destroy(&actions);
    return error;
}

enum class End { Normal, TooSlow, Cancelled };

/// Waits until the process has ended, and ends it when it must not go on. @param status  receives that of waitpid()
End WaitFor(pid_t process, const ReaderRun& run, int& status) {
    constexpr int kStepMs = 50;    // until a cancellation is seen
    constexpr int kWithoutMs = 5;  // where the kernel does not report the end of a process
    const Clock::time_point deadline = Clock::now() + run.limits.whole;
    // Not pidfd_open(): C++ programs cannot link that of glibc 2.36.
    const Descriptor ended(static_cast<int>(syscall(SYS_pidfd_open, process, 0)));
    End end = End::Normal;
    for (;;) {
        pollfd ready{ended.Get(), POLLIN, 0};  // one of -1 is left out: a pause
        poll(&ready, 1, ended.Get() >= 0 ? kStepMs : kWithoutMs);
        const pid_t gone = waitpid(process, &status, WNOHANG);
        if (gone == process || (gone < 0 && errno != EINTR)) return end;
        if (end != End::Normal) continue;
        if (run.isCancelled && run.isCancelled()) end = End::Cancelled;
        if (Clock::now() > deadline) end = End::TooSlow;
        if (end != End::Normal) kill(process, SIGKILL);
    }
}

/// Why no process was started.
std::string StartRefusal(int error) {
    const std::string reason = strerrordesc_np(error);
    const bool isShortage = error == EAGAIN || error == ENOMEM || error == EMFILE || error == ENFILE;
    return FilledSentence(isShortage ? kReaderNotStarted : kReaderDamaged, {&reason, 1});
}

std::string CrashText(int status, End end, const ReaderRun& run) {
    if (end == End::Cancelled) return kCancelled;
    if (WIFSIGNALED(status) && WTERMSIG(status) == SIGXFSZ) return kReaderResultTooLarge;
    const bool isSlow = end == End::TooSlow || (WIFSIGNALED(status) && WTERMSIG(status) == SIGXCPU);
    const std::string seconds = std::to_string((end == End::TooSlow ? run.limits.whole : run.limits.processor).count());
    if (isSlow) return FilledSentence(kReaderTooSlow, {&seconds, 1});
    const char* const name = WIFSIGNALED(status) ? sigabbrev_np(WTERMSIG(status)) : nullptr;
    const std::string how =
        name != nullptr ? std::string("SIG").append(name) : "exit status " + std::to_string(WEXITSTATUS(status));
    return FilledSentence(kReaderCrashed, {&how, 1});
}

/// Of the machine, in MB.
std::uint64_t PhysicalMegabytes() {
    const long pages = sysconf(_SC_PHYS_PAGES), bytes = sysconf(_SC_PAGESIZE);
    return pages <= 0 || bytes <= 0 ? 0 : static_cast<std::uint64_t>(pages) * static_cast<std::uint64_t>(bytes) >> 20;
}

std::uint64_t SizeOf(const std::string& file) {
    struct stat state {};
    return stat(file.c_str(), &state) == 0 ? static_cast<std::uint64_t>(state.st_size) : 0;
}

}  // namespace

ReaderLimits LimitsFor(const std::string& file) {
    constexpr std::uint64_t kTimesFile = 64, kLeastMegabytes = 2048, kLeastSeconds = 60;
    const std::uint64_t fileMegabytes = SizeOf(file) >> 20,
                        half = std::max<std::uint64_t>(PhysicalMegabytes() / 2, 512);
    ReaderLimits limits;
    // The data of a gltf file are in other files.
    const bool isWhole = ExtensionOf(file) != "gltf";
    limits.megabytes = isWhole ? std::min(half, kLeastMegabytes + kTimesFile * fileMegabytes) : half;
    limits.processor = std::chrono::seconds(kLeastSeconds + fileMegabytes);
    limits.whole = 2 * limits.processor;
    return limits;
}

std::string ReaderProgram() {
    std::array<char, 4096> link;
    const ssize_t length = readlink("/proc/self/exe", link.data(), link.size());
    if (length <= 0) return {};
    std::string folder(link.data(), static_cast<std::size_t>(length));
    folder.erase(folder.rfind('/') + 1);
    for (const char* const place : {"", KV_LIBEXEC_FROM_BIN}) {
        std::string program = folder + place + kReaderName;
        if (access(program.c_str(), X_OK) == 0) return program;
    }
    return {};
}

ReaderResult RunReader(const std::string& file, const ReaderRun& run) {
    if (run.program.empty()) return Refusal(kNoReader);
    const Descriptor result(memfd_create("scenepane-read", MFD_CLOEXEC));
    if (result.Get() < 0) return Refusal(StartRefusal(errno));
    pid_t process = -1;
    if (const int error = Start(run, file, result.Get(), process); error != 0) return Refusal(StartRefusal(error));
    int status = 0;
    const End end = WaitFor(process, run, status);
    if (end != End::Normal || !WIFEXITED(status) || WEXITSTATUS(status) != 0)
        return Refusal(CrashText(status, end, run));
    try {
        return ReadReaderResult(result.Get());
    } catch (const ReaderResultError& error) {
        const std::string reason = error.what();
        return Refusal(FilledSentence(kReaderFailed, {&reason, 1}));
    }
}

ReaderResult RunReader(const std::string& file, std::function<bool()> isCancelled) {
    ReaderRun run;
    run.limits = LimitsFor(file);
    run.isCancelled = std::move(isCancelled);
    return RunReader(file, run);
}
