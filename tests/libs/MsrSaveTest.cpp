// Rewriting of a pcm file that fails, or during which the process dies: at every byte and at every system call a whole
// file remains.
#include <fcntl.h>
#include <gmock/gmock.h>
#include <signal.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <functional>
#include <limits>

#include "KV_ScenePane/PathText.h"
#include "MSRDLL/Msr.h"
#include "libs/PcmSample.h"
#include "support/ScratchFolder.h"

using KV_ScenePane::WidePath;
using namespace MsrStorage;
using FileStorage::FileCalls;

namespace {

constexpr int kDied = 77;

/// Forwards system calls up to the call or the byte that is to fail.
class FailingCalls : public FileCalls {
public:
    /// @param hasNameless  whether the file system makes files without a name
    explicit FailingCalls(bool hasNameless = true) : m_hasNameless(hasNameless) {}

    int failingCall = std::numeric_limits<int>::max();
    std::string failingName;  ///< of the call that fails in place of a number
    std::uint64_t bytesLeft =
        std::numeric_limits<std::uint64_t>::max();  ///< that can be written before the disk is full
    bool die = false;                               ///< ends the process there instead of returning an error
    int error = EIO;
    int calls = 0;
    std::vector<std::string> made;  ///< names of the calls in order; consecutive writes count once
    std::string failed;             ///< name of the call that failed

    int Open(const char* path, int flags, mode_t mode) override {
        const bool isNameless = (flags & O_TMPFILE) == O_TMPFILE;
        if (isNameless && !m_hasNameless) {
            errno = EOPNOTSUPP;
            return -1;
        }
        return Fails(isNameless ? "nameless" : "open") ? -1 : FileCalls::Open(path, flags, mode);
    }
    ssize_t WriteAt(int fd, const void* bytes, std::size_t size, off_t offset) override {
        if (Fails("write")) return -1;
        if (bytesLeft == 0) {
            if (die) _exit(kDied);
            errno = ENOSPC;
            return -1;
        }
        const auto part = std::min<std::uint64_t>(size, bytesLeft);
        const ssize_t written = FileCalls::WriteAt(fd, bytes, part, offset);
        if (written > 0) bytesLeft -= static_cast<std::uint64_t>(written);
        return written;
    }
    int ChangeMode(int fd, mode_t mode) override { return Fails("mode") ? -1 : FileCalls::ChangeMode(fd, mode); }
    int Sync(int fd) override { return Fails("sync") ? -1 : FileCalls::Sync(fd); }
    int Link(int fd, const char* path) override { return Fails("link") ? -1 : FileCalls::Link(fd, path); }
    int Close(int fd) override {
        const bool fails = Fails("close");
        const int result = FileCalls::Close(fd);  // a failed close releases the descriptor too
        return fails ? -1 : result;
    }
    int Rename(const char* from, const char* to) override { return Fails("rename") ? -1 : FileCalls::Rename(from, to); }

private:
    bool Fails(const char* name) {
        if (made.empty() || made.back() != name || made.back() != "write") made.emplace_back(name);
        if (++calls != failingCall && name != failingName) return false;
        if (die) _exit(kDied);
        failed = name;
        errno = error;
        return true;
    }

    bool m_hasNameless;
};

bool Writes(const std::string& path, const PcmSample& sample, FileCalls& calls) {
    try {
        WritePcmFile(path, sample.View(), calls);
        return true;
    } catch (const std::system_error&) {
        return false;
    }
}

/// Runs a function in a child process. @return its exit status, or -1 when a signal ended it
int InAnotherProcess(const std::function<int()>& run) {
    const pid_t child = fork();
    if (child == 0) _exit(run());
    int status = 0;
    EXPECT_EQ(waitpid(child, &status, 0), child);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

/// Sets the file size limit of the process: writing beyond @p bytes fails, or ends the process by a signal.
void LimitFileSize(std::size_t bytes, bool die) {
    rlimit none{};
    setrlimit(RLIMIT_CORE, &none);
    signal(SIGXFSZ, die ? SIG_DFL : SIG_IGN);
    const rlimit limit{bytes, bytes};
    if (setrlimit(RLIMIT_FSIZE, &limit) != 0) _exit(99);
}

class MsrSave : public testing::Test {
protected:
    void SetUp() override { WriteBytes(file, oldBytes); }
    void ExpectOldFileAlone() {
        EXPECT_EQ(ReadBytes(file), oldBytes);
        EXPECT_EQ(folder.FileCount(), 1u) << "a temporary file remained";
    }
    /// Checks that the file is the old or the new one.
    void ExpectWholeFile(const PcmSample& changed) {
        const auto bytes = ReadBytes(file);
        EXPECT_TRUE(bytes == oldBytes || bytes == WritePcm(changed.View()));
        EXPECT_NO_THROW((void)ReadPcm(bytes));
    }
    static PcmSample Changed() {
        PcmSample sample = SmallSample();
        for (auto& value : sample.classification) value = 250;
        return sample;
    }

    ScratchFolder folder;
    std::string file = folder / "scan.pcm";
    std::vector<std::byte> oldBytes = WritePcm(SmallSample().View());
};

}  // namespace

/// On file systems that make files without a name, and on others.
class MsrSaveNameless : public MsrSave, public testing::WithParamInterface<bool> {};
INSTANTIATE_TEST_SUITE_P(Files, MsrSaveNameless, testing::Bool(),
                         [](const auto& row) { return row.param ? "Nameless" : "Named"; });

TEST_P(MsrSaveNameless, KeepsTheOldFileWhenAnySystemCallFails) {
    std::vector<std::string> failed;
    for (int call = 1;; ++call) {
        FailingCalls calls(GetParam());
        calls.failingCall = call;
        const bool written = Writes(file, Changed(), calls);
        if (calls.failed.empty()) {
            EXPECT_TRUE(written);
            break;
        }
        failed.push_back(calls.failed);
        if (written) {
            EXPECT_EQ(ReadBytes(file), WritePcm(Changed().View())) << "reported as written";
            EXPECT_EQ(folder.FileCount(), 1u);
            WriteBytes(file, oldBytes);
        } else {
            ExpectOldFileAlone();
        }
        ASSERT_LT(call, 1000);
    }
    // Each kind of call was among them. After the rename an error is ignored.
    for (const char* name : {GetParam() ? "link" : "open", "mode", "write", "sync", "close", "rename"}) {
        EXPECT_NE(std::find(failed.begin(), failed.end(), name), failed.end()) << name;
    }
    EXPECT_EQ(ReadBytes(file), WritePcm(Changed().View()));
}

// Without this order a power cut could leave an empty new file and no old one.
TEST_F(MsrSave, FlushesTheFileBeforeTheRenameAndTheFolderAfterIt) {
    FailingCalls nameless(true), named(false);
    ASSERT_TRUE(Writes(file, Changed(), nameless));
    ASSERT_TRUE(Writes(file, Changed(), named));
    if (folder.HasNamelessFiles()) {
        EXPECT_THAT(nameless.made, testing::ElementsAre("open", "nameless", "mode", "write", "sync", "link", "close",
                                                        "rename", "sync", "close", "close"));
    }
    EXPECT_THAT(named.made, testing::ElementsAre("open", "open", "mode", "write", "sync", "close", "rename", "sync",
                                                 "close", "close"));
}

TEST_P(MsrSaveNameless, ReportsEveryErrorBeforeTheRename) {
    for (int call = 1;; ++call) {
        FailingCalls calls(GetParam());
        calls.failingCall = call;
        const bool written = Writes(file, Changed(), calls);
        ASSERT_FALSE(calls.failed.empty());
        // Without these two the file is written in another way.
        EXPECT_EQ(written, calls.failed == "nameless" || calls.failed == "link") << calls.failed;
        if (calls.failed == "rename") break;
    }
}

// A security module may refuse the link, or there is no /proc.
TEST_F(MsrSave, CopiesAFileWithoutANameThatCannotBeGivenOne) {
    if (!folder.HasNamelessFiles()) GTEST_SKIP() << "this file system makes none";
    FailingCalls calls;
    calls.failingName = "link";
    calls.error = EPERM;
    EXPECT_TRUE(Writes(file, Changed(), calls));
    EXPECT_EQ(calls.failed, "link");
    EXPECT_EQ(ReadBytes(file), WritePcm(Changed().View()));
    EXPECT_EQ(folder.FileCount(), 1u);
}

TEST_F(MsrSave, RepeatsAnInterruptedWrite) {
    FailingCalls calls;
    FailingCalls counting;
    ASSERT_TRUE(Writes(folder / "other.pcm", Changed(), counting));
    calls.failingCall = 4;  // folder, file, mode, then the first write
    calls.error = EINTR;
    EXPECT_TRUE(Writes(file, Changed(), calls));
    EXPECT_EQ(calls.failed, "write");
    EXPECT_EQ(ReadBytes(file), WritePcm(Changed().View()));
}

TEST_P(MsrSaveNameless, KeepsTheOldFileWhenTheDiskIsFullAtAnyByte) {
    const std::size_t size = WritePcm(Changed().View()).size();
    for (std::size_t bytes = 0; bytes < size; ++bytes) {
        FailingCalls calls(GetParam());
        calls.bytesLeft = bytes;
        EXPECT_FALSE(Writes(file, Changed(), calls)) << bytes;
        ExpectOldFileAlone();
    }
    FailingCalls calls(GetParam());
    calls.bytesLeft = size;
    EXPECT_TRUE(Writes(file, Changed(), calls));
}

TEST_P(MsrSaveNameless, KeepsAWholeFileWhenTheProcessDiesAtAnyByte) {
    const std::size_t size = WritePcm(Changed().View()).size();
    for (std::size_t bytes = 0; bytes < size; ++bytes) {
        const int status = InAnotherProcess([&] {
            FailingCalls calls(GetParam());
            calls.die = true;
            calls.bytesLeft = bytes;
            return Writes(file, Changed(), calls) ? 0 : 1;
        });
        ASSERT_EQ(status, kDied) << bytes;
        ASSERT_EQ(ReadBytes(file), oldBytes) << bytes;
        ASSERT_LE(folder.FileCount(), GetParam() ? 1u : 2u) << "the next process removes what the last one left";
    }
    FailingCalls calls(GetParam());
    EXPECT_TRUE(Writes(file, Changed(), calls));
    EXPECT_EQ(folder.FileCount(), 1u) << "a temporary file of a process that died";
}

TEST_P(MsrSaveNameless, KeepsAWholeFileWhenTheProcessDiesAtAnySystemCall) {
    int status = kDied;
    for (int call = 1; status == kDied; ++call) {
        status = InAnotherProcess([&] {
            FailingCalls calls(GetParam());
            calls.die = true;
            calls.failingCall = call;
            return Writes(file, Changed(), calls) ? 0 : 1;
        });
        ExpectWholeFile(Changed());
        FailingCalls next;
        EXPECT_TRUE(Writes(file, Changed(), next));
        EXPECT_EQ(folder.FileCount(), 1u) << "after the write that follows a death at call " << call;
        WriteBytes(file, oldBytes);
        ASSERT_LT(call, 1000);
    }
    EXPECT_EQ(status, 0);
}

// The operations of class MSR, with failures of the system itself.
TEST_F(MsrSave, SaveAndSaveTrafoMatrixReturnFalseWhenTheDiskIsFullAtAnyByte) {
    const std::array<float, 16> trafo{1, 2, 3};
    for (std::size_t bytes = 0; bytes < oldBytes.size(); ++bytes) {
        const int status = InAnotherProcess([&] {
            MSR msr;
            if (!msr.Load(WidePath(file).c_str(), false, true, false)) return 2;
            LimitFileSize(bytes, false);
            const bool saved = msr.Save(WidePath(file).c_str(), true, true);
            return saved || MSR::SaveTrafoMatrix(WidePath(file).c_str(), trafo.data()) ? 1 : 0;
        });
        ASSERT_EQ(status, 0) << bytes;
        ExpectOldFileAlone();
    }
}

TEST_F(MsrSave, SaveTrafoMatrixKeepsTheOldFileWhenKilledAtAnyByte) {
    const std::array<float, 16> trafo{1, 2, 3};
    for (std::size_t bytes = 0; bytes < oldBytes.size(); ++bytes) {
        const int status = InAnotherProcess([&] {
            LimitFileSize(bytes, true);
            return MSR::SaveTrafoMatrix(WidePath(file).c_str(), trafo.data()) ? 1 : 0;
        });
        ASSERT_EQ(status, -1) << "not ended by a signal at byte " << bytes;
        ASSERT_EQ(ReadBytes(file), oldBytes) << bytes;
    }
    EXPECT_TRUE(MSR::SaveTrafoMatrix(WidePath(file).c_str(), trafo.data()));
}
