// Each test runs in a process of its own: a sandbox is never left.
#include "Sandbox.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/mman.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <functional>

namespace {

/// What a function returns in a new process, from 0 to 255.
int InChild(const std::function<int()>& run) {
    const pid_t child = fork();
    if (child == 0) _exit(run());
    int status = 0;
    EXPECT_EQ(waitpid(child, &status, 0), child);
    EXPECT_TRUE(WIFEXITED(status)) << "ended by signal " << WTERMSIG(status);
    return WEXITSTATUS(status);
}

/// The error of a call in the sandbox; 0 when it succeeds.
int ErrorOf(const std::function<int()>& call) {
    return InChild([&] {
        EnterSandbox();
        return call() < 0 ? errno : 0;
    });
}

struct Forbidden {
    const char* name;
    int (*call)();
};
void PrintTo(const Forbidden& row, std::ostream* out) { *out << row.name; }
const Forbidden kForbidden[] = {
    {"Internet", [] { return socket(AF_INET, SOCK_STREAM, 0); }},
    {"Internet6", [] { return socket(AF_INET6, SOCK_DGRAM, 0); }},
    {"LocalSockets", [] { return socket(AF_UNIX, SOCK_STREAM, 0); }},
    {"SocketPairs",
     [] {
         int ends[2];
         return socketpair(AF_UNIX, SOCK_STREAM, 0, ends);
     }},
    {"Writing", [] { return open("/dev/null", O_WRONLY); }},
    {"ReadingAndWriting", [] { return open("/dev/null", O_RDWR); }},
    {"Creating", [] { return open("/tmp/kv-sandbox", O_RDONLY | O_CREAT, 0600); }},
    {"Truncating", [] { return open("/dev/null", O_RDONLY | O_TRUNC); }},
    {"AnotherProcess", [] { return static_cast<int>(fork()); }},
    {"AnotherProgram", [] { return execl("/bin/true", "true", nullptr); }},
    {"Removing", [] { return unlink("/tmp/kv-sandbox-none"); }},
    {"Signals", [] { return kill(getppid(), 0); }},
};
class Sandbox : public testing::TestWithParam<Forbidden> {};
TEST_P(Sandbox, Refuses) { EXPECT_EQ(ErrorOf(GetParam().call), EPERM); }
INSTANTIATE_TEST_SUITE_P(Reader, Sandbox, testing::ValuesIn(kForbidden),
                         [](const auto& row) { return row.param.name; });

TEST(SandboxAllows, ReadingFilesAndWritingIntoOpenOnes) {
    EXPECT_EQ(ErrorOf([] { return open("/dev/null", O_RDONLY); }), 0);
    const int result = open("/dev/null", O_RDWR);
    EXPECT_EQ(ErrorOf([result] { return static_cast<int>(write(result, "a", 1)); }), 0);
    EXPECT_EQ(ErrorOf([result] { return static_cast<int>(pwrite(result, "a", 1, 0)); }), 0);
    close(result);
}

TEST(ReaderProcess, HasTheLimitsThatItWasGiven) {
    const auto limitOf = [](__rlimit_resource resource) {
        return [resource] {
            SetLimits({std::uint64_t{1} << 40, 7});
            rlimit limit{};
            getrlimit(resource, &limit);
            return static_cast<int>(limit.rlim_cur >> 40 > 0 ? limit.rlim_cur >> 40 : limit.rlim_cur);
        };
    };
    EXPECT_EQ(InChild(limitOf(RLIMIT_CPU)), 7);
    EXPECT_EQ(InChild(limitOf(RLIMIT_CORE)), 0);
    if (KV_LIMITS_MEMORY) {
        EXPECT_EQ(InChild(limitOf(RLIMIT_AS)), 1);
    }
}

TEST(ReaderProcess, CannotWriteALargerResultThanItsMemory) {
    const int status = InChild([] {
        signal(SIGXFSZ, SIG_IGN);
        SetLimits({std::uint64_t{1} << 40, 0});
        rlimit limit{};
        getrlimit(RLIMIT_FSIZE, &limit);
        if (limit.rlim_cur != rlim_t{1} << 40 || limit.rlim_max != rlim_t{1} << 40) return 1;
        const int result = memfd_create("result", 0);
        if (pwrite(result, "a", 1, (off_t{1} << 40) - 1) != 1) return 2;
        return pwrite(result, "a", 1, off_t{1} << 40) < 0 && errno == EFBIG ? 0 : 3;
    });
    EXPECT_EQ(status, 0);
}

TEST(ReaderProcess, KeepsLimitsThatAreLowerAlready) {
    const int status = InChild([] {
        for (const auto resource : {RLIMIT_FSIZE, RLIMIT_CPU}) {
            const rlimit lower{5, 6};
            if (setrlimit(resource, &lower) != 0) return 1;
        }
        SetLimits({std::uint64_t{1} << 40, 100});
        for (const auto resource : {RLIMIT_FSIZE, RLIMIT_CPU}) {
            rlimit limit{};
            getrlimit(resource, &limit);
            if (limit.rlim_cur != 5 || limit.rlim_max != 6) return 2;
        }
        return 0;
    });
    EXPECT_EQ(status, 0);
}

}  // namespace
