// scenepane-read as a process: what it finds, and every way in which it can end.
#include "ForeignReader.h"

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <random>
#include <thread>

#include "host/MeshFiles.h"
#include "host/ScanFiles.h"

namespace {

using Kind = ReaderResult::Kind;
using namespace std::chrono_literals;

constexpr const char* kObj = "v 0 0 0\nv 1 0 0\nv 0 1 0\nf 1 2 3\n";

class ForeignReader : public testing::Test {
protected:
    /// A program in place of scenepane-read. @param body  of a shell script
    [[nodiscard]] ReaderRun RunOf(const std::string& body) const {
        const std::string program = m_folder / "reader";
        WriteText(program, "#!/bin/sh\n" + body + "\n");
        EXPECT_EQ(chmod(program.c_str(), 0700), 0);
        ReaderRun run;
        run.program = program;
        run.limits = LimitsFor(m_file);
        return run;
    }
    [[nodiscard]] std::string ReasonOf(const std::string& body) const {
        const ReaderResult result = RunReader(m_file, RunOf(body));
        EXPECT_EQ(result.kind, Kind::Refused);
        return result.text;
    }
    void SetUp() override { WriteText(m_file, kObj); }

    const ScratchFolder m_folder;
    const std::string m_file = m_folder / "a.obj";
};

const std::string kFailed = "the file is damaged, or of a form that is not read: its reader failed: ";

std::string Crashed(const std::string& how) {
    return "the file is damaged, or of a form that is not read: its reader ended with " + how;
}

TEST_F(ForeignReader, ReadsAFileInAProcess) {
    ASSERT_NE(ReaderProgram(), "") << "scenepane-read is beside the tests";
    const ReaderResult result = RunReader(m_file);
    ASSERT_EQ(result.kind, Kind::Mesh) << result.text;
    EXPECT_EQ(result.text, "");
    EXPECT_EQ(result.mesh.m_vVertices.size(), 3u);
    EXPECT_EQ(result.mesh.m_vTriangles.size(), 1u);
    EXPECT_EQ(result.mesh.m_vVertices[0].nz, 1.0f) << "the normal was computed";
}

TEST_F(ForeignReader, ReportsHowTheProcessEnded) {
    EXPECT_EQ(ReasonOf("kill -SEGV $$"), Crashed("SIGSEGV"));
    EXPECT_EQ(ReasonOf("kill -ABRT $$"), Crashed("SIGABRT"));
    EXPECT_EQ(ReasonOf("exit 3"), Crashed("exit status 3"));
    EXPECT_EQ(ReasonOf("exit 0"), kFailed + "the result is cut short") << "nothing was written";
    EXPECT_EQ(ReasonOf("head -c 100 /dev/zero >&3"), kFailed + "there is no result");
    EXPECT_EQ(ReasonOf("echo noise; echo noise >&2; exit 1"), Crashed("exit status 1"));
    EXPECT_EQ(ReasonOf("kill -XCPU $$"),
              "reading the file was given up after 60 seconds: it is damaged or too large for its format");
    EXPECT_TRUE(ReasonOf("kill -XFSZ $$").starts_with("what the file holds does not fit into memory"));
}

TEST_F(ForeignReader, EndsAProcessThatDoesNotEnd) {
    ReaderRun run = RunOf("exec sleep 1000");
    run.limits.whole = 1s;
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(RunReader(m_file, run).text,
              "reading the file was given up after 1 seconds: it is damaged or too large for its format");
    EXPECT_LT(std::chrono::steady_clock::now() - start, 100s);
}

// The end of its output is not that of the process.
TEST_F(ForeignReader, EndsAProcessThatClosesItsDescriptorsAndDoesNotEnd) {
    ReaderRun run = RunOf("exec 1>&- 3>&-; exec sleep 30");
    run.limits.whole = 1s;
    EXPECT_EQ(RunReader(m_file, run).text,
              "reading the file was given up after 1 seconds: it is damaged or too large for its format");
}

TEST_F(ForeignReader, EndsTheProcessWhenItIsCancelled) {
    ReaderRun run = RunOf("exec 1>&-; exec sleep 30");
    int calls = 0;
    run.isCancelled = [&] { return ++calls > 2; };
    const ReaderResult result = RunReader(m_file, run);
    EXPECT_EQ(result.kind, Kind::Refused);
    EXPECT_EQ(result.text, kCancelled);
}

TEST_F(ForeignReader, NamesAMissingProgram) {
    ReaderRun run;
    run.program.clear();
    EXPECT_EQ(RunReader(m_file, run).text,
              "the program scenepane-read, which reads such files, is missing: install scenepane again");
    run.program = m_folder / "none";
    EXPECT_EQ(RunReader(m_file, run).text,
              "the program scenepane-read, which reads such files, could not be started: No such file or directory: "
              "install scenepane again");
}

TEST_F(ForeignReader, NamesALackOfDescriptors) {
    const ReaderRun run = RunOf("exit 0");
    rlimit saved{};
    ASSERT_EQ(getrlimit(RLIMIT_NOFILE, &saved), 0);
    rlimit none = saved;
    none.rlim_cur = 3;
    ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &none), 0);
    const ReaderResult result = RunReader(m_file, run);
    ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &saved), 0);
    EXPECT_EQ(result.text,
              "the program scenepane-read, which reads such files, could not be started: Too many open files: close "
              "other programs");
}

TEST_F(ForeignReader, PassesOnNoDescriptorsOfThisProgram) {
    const int kept = dup(STDERR_FILENO);
    ASSERT_GE(kept, 0);
    const std::string list = m_folder / "descriptors";
    (void)ReasonOf("ls /proc/$$/fd > " + list);
    close(kept);
    std::ifstream in(list);
    int last = -1;
    for (int fd = 0; in >> fd;) last = std::max(last, fd);
    // A shell keeps its script at 10 and above.
    EXPECT_TRUE(last == 3 || last >= 10) << last;
    EXPECT_GE(last, 3) << "the list was written";
}

TEST_F(ForeignReader, RefusesAFileThatNeedsMoreMemoryThanItMayHave) {
    if (!KV_LIMITS_MEMORY) GTEST_SKIP() << "the sanitizer needs more address space than any limit";
    std::string text =
        "ply\nformat ascii 1.0\nelement vertex 1000000\nproperty float x\nproperty float y\nproperty float z\n"
        "element face 1\nproperty list uchar int vertex_indices\nend_header\n";
    for (int i = 0; i < 1'000'000; ++i) text += "0 0 0\n";
    const std::string file = m_folder / "a.ply";
    WriteText(file, text + "3 0 1 2\n");
    ReaderRun run;
    run.limits = LimitsFor(file);
    EXPECT_EQ(RunReader(file, run).kind, Kind::Mesh);
    run.limits.megabytes = 40;
    const ReaderResult result = RunReader(file, run);
    EXPECT_EQ(result.kind, Kind::Refused);
    EXPECT_EQ(result.text, "there is not enough memory");
}

// In some of these files the library ends the process.
TEST_F(ForeignReader, HasAReasonForEachDamagedFile) {
    for (const auto& [name, text] : {std::pair<const char*, const char*>{"a.gltf", "{"},
                                     {"a.glb", "glTF"},
                                     {"a.off", "OFF\n9 9 9\n"},
                                     {"a.dae", "<"},
                                     {"a.3mf", "PK"},
                                     {"a.obj", ""},
                                     {"b.obj", "f 1 2 3\n"},
                                     {"a.fbx", "Kaydara"},
                                     {"a.3ds", "MM"},
                                     {"a.blend", "BLENDER"},
                                     {"a.x", "xof"},
                                     {"a.ply", "ply"},
                                     {"a.stl", "solid"}}) {
        WriteText(m_folder / name, text);
        const ReaderResult result = RunReader(m_folder / name);
        EXPECT_EQ(result.kind, Kind::Refused) << name;
        EXPECT_NE(result.text, "") << name;
    }
}

TEST(ReaderLimits, GrowWithTheFileAndEndAtHalfOfTheMemory) {
    const ScratchFolder folder;
    WriteText(folder / "a.obj", kObj);
    const ReaderLimits small = LimitsFor(folder / "a.obj");
    EXPECT_LE(small.megabytes, 2048u);
    EXPECT_EQ(small.processor, 60s);
    EXPECT_EQ(small.whole, 120s);
    WriteText(folder / "b.obj", "");
    ASSERT_EQ(truncate((folder / "b.obj").c_str(), 100 << 20), 0);
    EXPECT_EQ(LimitsFor(folder / "b.obj").processor, 160s);
    EXPECT_GE(LimitsFor(folder / "b.obj").megabytes, small.megabytes);
}

/// The processes that this one has started.
std::vector<pid_t> Children() {
    std::vector<pid_t> children;
    for (const auto& thread : std::filesystem::directory_iterator("/proc/self/task")) {
        std::ifstream in(thread.path() / "children");
        for (pid_t child = 0; in >> child;) children.push_back(child);
    }
    return children;
}

// Whatever the reader was doing, this program goes on and has a result or a reason.
TEST_F(ForeignReader, MayBeKilledAtAnyMoment) {
    std::string text(kObj);
    for (int i = 0; i < 20'000; ++i) text += "v 0 0 0\nf 1 2 3\n";
    WriteText(m_file, text);
    std::atomic<bool> isOver = false;
    int meshes = 0, killed = 0;
    std::thread reading([&] {
        for (int i = 0; i < 200; ++i) {
            const ReaderResult result = RunReader(m_file);
            if (result.kind == Kind::Mesh) {
                ++meshes;
                EXPECT_EQ(result.mesh.m_vTriangles.size(), 20'001u);
            } else {
                ++killed;
                EXPECT_EQ(result.text, Crashed("SIGKILL"));
            }
        }
        isOver = true;
    });
    std::minstd_rand random(7);
    std::uniform_int_distribution<int> pause(0, 40'000);  // microseconds: about as long as a run
    while (!isOver) {
        std::this_thread::sleep_for(std::chrono::microseconds(pause(random)));
        for (const pid_t child : Children()) kill(child, SIGKILL);
    }
    reading.join();
    EXPECT_GT(killed, 0);
    EXPECT_EQ(meshes + killed, 200);
}

}  // namespace
