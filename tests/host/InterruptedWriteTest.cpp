// Signals at random moments of writes: a whole file remains, and nothing beside it after the next write.
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <map>
#include <random>
#include <stdexcept>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include "files/AtomicFile.h"
#include "host/InterruptedWriter.h"
#include "host/MeshFiles.h"
#include "support/ChildProcess.h"
#include "support/ScratchFolder.h"

namespace {

constexpr std::array kSignals = {SIGKILL, SIGTERM, SIGINT, SIGHUP};

/// A program that writes one byte to its standard output when it has begun.
class WriterProcess {
public:
    WriterProcess(const std::string& target, const char* way) {
        int ends[2];
        if (::pipe(ends) != 0) throw std::runtime_error("no pipe");
        m_process = ::fork();
        if (m_process == 0) {
            ::dup2(ends[1], STDOUT_FILENO);
            ::execl(KV_INTERRUPTED_WRITER, "kv_interrupted_writer", target.c_str(), way, nullptr);
            ::_exit(127);
        }
        ::close(ends[1]);
        char byte = 0;
        m_hasBegun = ::read(ends[0], &byte, 1) == 1;
        ::close(ends[0]);
    }
    [[nodiscard]] bool HasBegun() const { return m_hasBegun; }
    /// @return the signal that has ended it; 0 for an exit
    [[nodiscard]] int End(int signal) const {
        ::kill(m_process, signal);
        int status = 0;
        ::waitpid(m_process, &status, 0);
        return WIFSIGNALED(status) ? WTERMSIG(status) : 0;
    }

private:
    pid_t m_process = -1;
    bool m_hasBegun = false;
};

bool IsWhole(const std::string& path) {
    const std::vector<std::byte> bytes = ReadBytes(path);
    return bytes.size() == kInterruptedBytes && (bytes[0] == std::byte{'a'} || bytes[0] == std::byte{'b'}) &&
           std::ranges::all_of(bytes, [&](std::byte byte) { return byte == bytes[0]; });
}

/// Without the waits for the disk, which would be most of the time of the tests.
class QuickCalls : public FileStorage::FileCalls {
public:
    int Sync(int) override { return 0; }
};

void Replace(const std::string& path, char letter) {
    const std::string content(kInterruptedBytes, letter);
    QuickCalls calls;
    FileStorage::AtomicFile file(path, calls);
    file.WriteAt(0, content.data(), content.size());
    file.Commit();
}

/// Half of a thousand interruptions each, of files that have no name until they are whole, and of others.
class InterruptedWrite : public testing::TestWithParam<const char*> {};
INSTANTIATE_TEST_SUITE_P(Files, InterruptedWrite, testing::Values("nameless", "named"),
                         [](const auto& row) { return std::string(row.param); });

TEST_P(InterruptedWrite, LeavesAWholeFileAndAfterTheNextWriteNothingElse) {
    const ScratchFolder folder;
    const std::string target = folder / "mesh.ply";
    const bool isNamed = GetParam() == std::string_view("named");
    std::mt19937 random(20261123);
    std::uniform_int_distribution<int> microseconds(0, 2000);
    int remained = 0, contents[2] = {};
    for (int run = 0; run < 500; ++run) {
        Replace(target, 'a');
        ASSERT_EQ(folder.FileCount(), 1u) << "what run " << run - 1 << " left is still there after the next write";
        const int signal = kSignals[random() % kSignals.size()];
        const WriterProcess writer(target, GetParam());
        ASSERT_TRUE(writer.HasBegun());
        std::this_thread::sleep_for(std::chrono::microseconds(microseconds(random)));
        ASSERT_EQ(writer.End(signal), signal) << "run " << run;
        ASSERT_TRUE(IsWhole(target)) << "run " << run << ", signal " << signal;
        ++contents[ReadBytes(target)[0] == std::byte{'b'}];
        const std::size_t others = folder.FileCount() - 1;
        if (signal == SIGKILL) {
            ASSERT_LE(others, 1u);
            remained += static_cast<int>(others);
        } else {
            ASSERT_EQ(others, 0u) << "after signal " << signal << " in run " << run;
        }
    }
    Replace(target, 'a');
    EXPECT_EQ(folder.FileCount(), 1u);
    RecordProperty("remained", remained);
    EXPECT_GT(contents[0], 50);
    EXPECT_GT(contents[1], 50) << "most signals came too soon";
    EXPECT_GT(remained, isNamed ? 10 : -1) << "hardly any signal came during a write";
}

/// Large enough that the program is writing it for some milliseconds.
void WriteLargeStl(const std::string& path) {
    std::vector<StlTriangle> triangles;
    for (int i = 0; i < 20000; ++i) {
        const auto x = static_cast<float>(i);
        triangles.push_back({{{x, 0, 0}, {x + 1, 0, 0}, {x, 1, 0}}});
    }
    WriteStl(path, triangles);
}

/// The whole program, some dozen times.
class InterruptedConvert : public testing::TestWithParam<const char*> {};
INSTANTIATE_TEST_SUITE_P(Files, InterruptedConvert, testing::Values("nameless", "named"),
                         [](const auto& row) { return std::string(row.param); });

TEST_P(InterruptedConvert, LeavesAWholeFileAndAfterTheNextExportNothingElse) {
    const ScratchFolder inputs, folder;
    const std::string mesh = inputs / "mesh.stl";
    WriteLargeStl(mesh);
    std::map<std::string, std::string> environment = {{"DISPLAY", ""}};
    if (GetParam() == std::string_view("named"))
        environment = {{"DISPLAY", ""},
                       {"LD_PRELOAD", KV_FILE_FAULTS_PRELOAD},
                       {"KV_FILE_FAULT_CALL", "0"},
                       {"KV_FILE_FAULT_KIND", "kill"},
                       {"KV_FILE_FAULT_NAMED", "1"}};
    std::mt19937 random(20261123);
    int early = 0, late = 0;
    for (const char* const extension : {"ply", "stl", "hps"}) {
        const std::string target = folder / (std::string("mesh.") + extension);
        const std::vector<std::string> convert = {KV_SCENEPANE_PROGRAM, "--convert", mesh, target};
        const auto start = std::chrono::steady_clock::now();
        ASSERT_EQ(ChildProcess(convert, environment).WaitForEnd(), 0);
        const auto duration = std::chrono::steady_clock::now() - start;
        const std::vector<std::byte> newBytes = ReadBytes(target), oldBytes(100, std::byte{'o'});
        for (int run = 0; run < 8; ++run) {
            WriteBytes(target, oldBytes);
            const int signal = kSignals[random() % kSignals.size()];
            {
                ChildProcess process(convert, environment);
                // The second half of the run: in the first one it starts and reads.
                std::this_thread::sleep_for(duration / 2 + duration * (random() % 512) / 1024);
                ::kill(process.Id(), signal);
                ASSERT_TRUE(process.WaitForEnd());
            }
            const std::vector<std::byte> bytes = ReadBytes(target);
            ASSERT_TRUE(bytes == oldBytes || bytes == newBytes) << target << ", run " << run;
            ++(bytes == oldBytes ? early : late);
            ASSERT_LE(folder.FileCount(), signal == SIGKILL ? 2u : 1u) << target << ", signal " << signal;
            ASSERT_EQ(ChildProcess(convert, environment).WaitForEnd(), 0);
            ASSERT_EQ(folder.FileCount(), 1u) << target << ", after the next export";
            ASSERT_EQ(ReadBytes(target), newBytes);
        }
        std::filesystem::remove(target);
    }
    EXPECT_GT(early, 3);
}

TEST(FileSizeLimit, IsAReasonAndNoEndOfTheProgram) {
    const ScratchFolder inputs, folder;
    const std::string mesh = inputs / "mesh.stl", target = folder / "mesh.ply", output = inputs / "error.txt";
    WriteLargeStl(mesh);
    ChildProcess process(
        {"bash", "-c", "ulimit -f 8; exec \"$@\" 2>" + output, "bash", KV_SCENEPANE_PROGRAM, "--convert", mesh, target},
        {{"DISPLAY", ""}});
    EXPECT_EQ(process.WaitForEnd(), 1);
    const std::vector<std::byte> bytes = ReadBytes(output);
    const std::string text(reinterpret_cast<const char*>(bytes.data()), bytes.size());
    EXPECT_NE(text.find("File too large"), std::string::npos) << text;
    EXPECT_EQ(folder.FileCount(), 0u);
}

}  // namespace
