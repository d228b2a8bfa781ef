// The filter lists what is allowed: what a kernel adds later is refused. Under a sanitizer the limit of the address
// space is not set, as its shadow memory alone is larger.
#include "Sandbox.h"

#include <fcntl.h>
#include <seccomp.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <memory>
#include <system_error>

namespace {

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr bool kHasSanitizer = true;
#else
constexpr bool kHasSanitizer = false;
#endif

[[noreturn]] void Fail(int error, const char* what) { throw std::system_error(error, std::generic_category(), what); }

void Limit(__rlimit_resource resource, rlim_t soft, rlim_t hard) {
    rlimit limit{};
    if (getrlimit(resource, &limit) != 0) Fail(errno, "getrlimit");
    // A limit that is already lower stays.
    limit.rlim_cur = std::min(soft, limit.rlim_cur);
    limit.rlim_max = std::min(hard, limit.rlim_max);
    if (setrlimit(resource, &limit) != 0) Fail(errno, "setrlimit");
}

/// Memory, clocks, and the files that are open.
constexpr int kAllowed[] = {
    SCMP_SYS(read),          SCMP_SYS(pread64),
    SCMP_SYS(readv),         SCMP_SYS(write),
    SCMP_SYS(pwrite64),      SCMP_SYS(writev),
    SCMP_SYS(lseek),         SCMP_SYS(close),
    SCMP_SYS(fstat),         SCMP_SYS(newfstatat),
    SCMP_SYS(stat),          SCMP_SYS(lstat),
    SCMP_SYS(statx),         SCMP_SYS(access),
    SCMP_SYS(faccessat),     SCMP_SYS(faccessat2),
    SCMP_SYS(readlink),      SCMP_SYS(readlinkat),
    SCMP_SYS(getcwd),        SCMP_SYS(fcntl),
    SCMP_SYS(fadvise64),     SCMP_SYS(mmap),
    SCMP_SYS(munmap),        SCMP_SYS(mremap),
    SCMP_SYS(mprotect),      SCMP_SYS(madvise),
    SCMP_SYS(brk),           SCMP_SYS(futex),
    SCMP_SYS(rt_sigaction),  SCMP_SYS(rt_sigprocmask),
    SCMP_SYS(rt_sigreturn),  SCMP_SYS(sigaltstack),
    SCMP_SYS(exit),          SCMP_SYS(exit_group),
    SCMP_SYS(clock_gettime), SCMP_SYS(clock_getres),
    SCMP_SYS(gettimeofday),  SCMP_SYS(time),
    SCMP_SYS(getpid),        SCMP_SYS(gettid),
    SCMP_SYS(getuid),        SCMP_SYS(geteuid),
    SCMP_SYS(getgid),        SCMP_SYS(getegid),
    SCMP_SYS(getrandom),     SCMP_SYS(getrlimit),
    SCMP_SYS(getrusage),     SCMP_SYS(sysinfo),
    SCMP_SYS(uname),         SCMP_SYS(sched_getaffinity),
    SCMP_SYS(sched_yield),
};

}  // namespace

void SetLimits(const SandboxLimits& limits) {
    if (prctl(PR_SET_PDEATHSIG, SIGKILL) != 0) Fail(errno, "prctl");
    Limit(RLIMIT_CORE, 0, 0);
    if (limits.memoryBytes > 0 && !kHasSanitizer) Limit(RLIMIT_AS, limits.memoryBytes, limits.memoryBytes);
    // The result is a memory file, which is no part of the address space. SIGXFSZ at the limit.
    if (limits.memoryBytes > 0) Limit(RLIMIT_FSIZE, limits.memoryBytes, limits.memoryBytes);
    // SIGXCPU at the first limit, SIGKILL at the second.
    if (limits.seconds > 0) Limit(RLIMIT_CPU, limits.seconds, limits.seconds + 1);
}

void EnterSandbox() {
    const std::unique_ptr<void, void (*)(scmp_filter_ctx)> filter(seccomp_init(SCMP_ACT_ERRNO(EPERM)),
                                                                  &seccomp_release);
    if (!filter) Fail(ENOMEM, "seccomp_init");
    const auto check = [](int result) {
        if (result != 0) Fail(-result, "seccomp");
    };
    for (const int call : kAllowed) check(seccomp_rule_add(filter.get(), SCMP_ACT_ALLOW, call, 0));
    const auto allowIf = [&](int call, const scmp_arg_cmp& argument) {
        check(seccomp_rule_add(filter.get(), SCMP_ACT_ALLOW, call, 1, argument));
    };
    // Opened for reading: none of the bits that write or create.
    constexpr scmp_datum_t kWriting = O_WRONLY | O_RDWR | O_CREAT | O_TRUNC | O_APPEND;
    allowIf(SCMP_SYS(open), {.arg = 1, .op = SCMP_CMP_MASKED_EQ, .datum_a = kWriting, .datum_b = 0});
    allowIf(SCMP_SYS(openat), {.arg = 2, .op = SCMP_CMP_MASKED_EQ, .datum_a = kWriting, .datum_b = 0});
    // abort(): a signal to this process alone.
    const auto self = static_cast<scmp_datum_t>(getpid());
    allowIf(SCMP_SYS(tgkill), {.arg = 0, .op = SCMP_CMP_EQ, .datum_a = self, .datum_b = 0});
    check(seccomp_load(filter.get()));
}
