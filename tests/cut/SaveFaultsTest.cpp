// Saves of cuts during which the process dies, the disk is full, a system call fails, memory is short, or the files are
// exchanged: every file is the old or the new one, whole, and the next save works. Between the program and the system
// are the file faults (support/FileFaults.h).
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <cstdlib>
#include <functional>
#include <map>
#include <new>
#include <set>
#include <thread>

#include "cut/CutScan.h"
#include "support/ControlFixture.h"
#include "support/FileFaults.h"

using KV_ScenePane::CutFileNotRead;
using KV_ScenePane::CutFileNotWritten;
using KV_ScenePane::CutWritten;
namespace fs = std::filesystem;

namespace {

// Allocations of this size and above fail; set while no other thread works.
std::atomic<std::size_t> g_failingAllocation{std::numeric_limits<std::size_t>::max()};

}  // namespace

// Not inlined: the compiler would report a pair of new and free().
[[gnu::noinline]] void* operator new(std::size_t size) {
    void* const memory = size < g_failingAllocation ? std::malloc(size == 0 ? 1 : size) : nullptr;
    if (memory == nullptr) throw std::bad_alloc();
    return memory;
}
[[gnu::noinline]] void operator delete(void* memory) noexcept { std::free(memory); }
[[gnu::noinline]] void operator delete(void* memory, std::size_t) noexcept { std::free(memory); }
// Those of a sanitizer do not call the ones above.
[[gnu::noinline]] void* operator new[](std::size_t size) { return operator new(size); }
[[gnu::noinline]] void operator delete[](void* memory) noexcept { std::free(memory); }
[[gnu::noinline]] void operator delete[](void* memory, std::size_t) noexcept { std::free(memory); }

namespace {

constexpr int kWidth = 24, kHeight = 10;
constexpr int kKilled = -1;

bool IsLeft(int x, int) { return x == 0; }

/// Runs a function in a child process. @return its exit status, or kKilled when a signal ended it
int InAnotherProcess(const std::function<int()>& run) {
    const pid_t child = fork();
    if (child == 0) _exit(run());
    int status = 0;
    EXPECT_EQ(waitpid(child, &status, 0), child);
    return WIFEXITED(status) ? WEXITSTATUS(status) : kKilled;
}

/// A scene of objects from pcm files with cuts. All objects from one file have different cuts.
class SavedScene : public testing::Test {
protected:
    using Files = std::map<std::string, std::vector<std::byte>>;

    /// With holes and colours, so that the files have all kinds of sections.
    void MakeScene(int files, int objectsPerFile) {
        scan.colors.resize(scan.confidence.size(), 0xFF102030);
        for (std::size_t i = 0; i < scan.confidence.size(); ++i) {
            scan.colors[i] += static_cast<std::uint32_t>(i);
            if (i % 24 < 18) continue;
            scan.SetPoint(i, {0, 0, 0});
            scan.confidence[i] = -1.0f;
            scan.classification[i] = 240;
            scan.colors[i] = 0;
        }
        for (int i = 0; i < files; ++i) {
            paths.push_back(folder / ("scan" + std::to_string(i) + ".pcm"));
            scan.confidence[0] = static_cast<float>(i);  // the files differ
            scan.WritePcm(paths.back());
        }
        for (int object = 0; object < objectsPerFile; ++object)
            for (const std::string& path : paths)
                c->m_vpMeshes.push_back(ObjectOf(path, {MaskOf(scan, [&](int x, int) { return x == object; })}));
        // Every content that a file has after one of its objects was saved.
        for (const std::string& path : paths) {
            const auto old = ReadBytes(path);
            wholeOnes[path].insert(old);
            oldFiles[path] = old;
            MsrStorage::PcmMeasurement measurement = MsrStorage::ReadPcmFile(path);
            for (int object = 0; object < objectsPerFile; ++object) {
                for (int y = 0; y < kHeight; ++y) {
                    std::uint8_t& value = measurement.m_pClassification[y * kWidth + object];
                    if (value < 240) value = 250;
                }
                newFiles[path] = MsrStorage::WritePcm(ViewOf(measurement));
                wholeOnes[path].insert(newFiles[path]);
            }
        }
    }
    void RestoreFiles() {
        for (const auto& entry : fs::directory_iterator(folder.Path())) fs::remove(entry.path());
        for (const auto& [path, bytes] : oldFiles) WriteBytes(path, bytes);
    }
    /// Saves in a child process, so that the objects here keep their cuts.
    int Save(const FileFaults& faults) {
        return InAnotherProcess([&] {
            KvSetFileFaults(&faults);
            return c->SaveCuttingToPcms() == 1 ? 0 : 1;
        });
    }
    void ExpectWholeFiles(std::int64_t call) const {
        for (const std::string& path : paths)
            ASSERT_TRUE(wholeOnes.at(path).contains(ReadBytes(path))) << path << " after call " << call;
        // What a killed process leaves is a temporary file beside its target.
        for (const auto& entry : fs::directory_iterator(folder.Path())) {
            const std::string name = entry.path().filename().string();
            ASSERT_TRUE(name.starts_with("scan") || (name.starts_with(".kv-") && name.ends_with(".tmp"))) << name;
        }
    }
    void ExpectNewFiles() const {
        for (const std::string& path : paths) ASSERT_EQ(ReadBytes(path), newFiles.at(path)) << path;
    }
    /// Kills the process at each call in turn, in the given way; the tests do so more than a thousand times.
    /// @return the number of kills
    std::int64_t KillAtEveryCall(FileFaults::Kind kind, bool hasNameless = true) {
        for (std::int64_t call = 1;; ++call) {
            FileFaults faults;
            faults.kind = kind;
            faults.hasNoNameless = !hasNameless;
            faults.call = call;
            const int status = Save(faults);
            ExpectWholeFiles(call);
            if (HasFatalFailure()) return call;
            if (status != kKilled) {
                EXPECT_EQ(status, 0);
                ExpectNewFiles();
                return call - 1;
            }
            if (call % 10 == 0) {  // the next run works, whatever the killed one left
                EXPECT_EQ(Save({}), 0);
                ExpectNewFiles();
                EXPECT_EQ(folder.FileCount(), paths.size()) << "what the killed run left remains";
            }
            RestoreFiles();
        }
    }

    ScratchFolder folder;
    ScanSample scan = FlatCutScan(kWidth, kHeight);
    std::vector<std::string> paths;
    Files oldFiles, newFiles;
    std::map<std::string, std::set<std::vector<std::byte>>> wholeOnes;
    NoPictureControl c;
};

using SaveKilled = SavedScene;
using SaveWithFaults = SavedScene;

}  // namespace

TEST_F(SaveKilled, LeavesWholeFilesWhenItDiesBeforeEveryCall) {
    MakeScene(20, 1);
    EXPECT_GE(KillAtEveryCall(FileFaults::KillBefore), 240);
}

TEST_F(SaveKilled, LeavesWholeFilesWhenItDiesInTheMiddleOfEveryWrite) {
    MakeScene(20, 1);
    EXPECT_GE(KillAtEveryCall(FileFaults::KillHalf), 240);
}

TEST_F(SaveKilled, LeavesWholeFilesWhereTheFileSystemMakesNoFilesWithoutAName) {
    MakeScene(6, 1);
    EXPECT_GE(KillAtEveryCall(FileFaults::KillHalf, false), 60);
}

TEST_F(SaveKilled, LeavesWholeFilesWhenItDiesAfterEveryCall) {
    MakeScene(20, 1);
    EXPECT_GE(KillAtEveryCall(FileFaults::KillAfter), 240);
}

TEST_F(SaveKilled, LeavesWholeFilesOfSeveralObjectsEach) {
    MakeScene(3, 10);
    EXPECT_GE(KillAtEveryCall(FileFaults::KillHalf), 360);
}

// Each call in turn fails: the save goes on, says which object was not written, and leaves no temporary file.
TEST_F(SaveWithFaults, GoesOnWhenASystemCallFails) {
    MakeScene(4, 1);
    std::size_t failed = 0;
    const auto meshes = c->m_vpMeshes;
    for (std::int64_t call = 1; call < 1000; ++call) {
        c->m_vpMeshes.clear();
        for (const auto& mesh : meshes)
            c->m_vpMeshes.push_back(ObjectOf(KV_ScenePane::PathBytes(mesh->m_sName), mesh->m_vpCutMasks));
        FileFaults faults;
        faults.kind = FileFaults::Error;
        faults.call = call;
        c.debugOutput.Clear();
        const ScopedFileFaults scope(faults);
        ASSERT_EQ(c->SaveCuttingToPcms(), 1);
        const bool isReached = KvFileCalls() >= call;
        std::size_t lines = 0;
        for (std::size_t i = 0; i < c->m_vCutSaveResults.size(); ++i) {
            const auto& entry = c->m_vCutSaveResults[i];
            const auto bytes = ReadBytes(paths[i]);
            if (entry.outcome == CutWritten) {
                ASSERT_EQ(bytes, newFiles.at(paths[i])) << call;
                ASSERT_TRUE(entry.reason.empty());
                continue;
            }
            ++lines;
            ASSERT_EQ(entry.outcome, CutFileNotWritten) << call;
            ASSERT_THAT(entry.reason, testing::HasSubstr("Input/output error")) << call;
            ASSERT_EQ(bytes, oldFiles.at(paths[i])) << call;
            ASSERT_EQ(c.debugOutput.Text(), "SaveCuttingToPcms(): " + paths[i] + ": " + entry.reason + "\n");
            ASSERT_TRUE(c->m_vpMeshes[i]->m_vpCutMasks.empty());
        }
        ASSERT_LE(lines, 1u);
        ASSERT_EQ(folder.FileCount(), paths.size()) << "a temporary file remained after call " << call;
        failed += lines;
        RestoreFiles();
        if (!isReached) break;
    }
    EXPECT_GE(failed, 4u * 8u);
}

TEST_F(SaveWithFaults, LeavesTheOldFilesWhenTheDiskIsFull) {
    MakeScene(3, 1);
    std::int64_t all = 0;
    for (const auto& [path, bytes] : newFiles) all += static_cast<std::int64_t>(bytes.size());
    const auto meshes = c->m_vpMeshes;
    std::size_t failed = 0;
    for (std::int64_t bytesLeft = 0; bytesLeft <= all; bytesLeft += 97) {
        c->m_vpMeshes.clear();
        for (const auto& mesh : meshes)
            c->m_vpMeshes.push_back(ObjectOf(KV_ScenePane::PathBytes(mesh->m_sName), mesh->m_vpCutMasks));
        FileFaults faults;
        faults.bytesLeft = bytesLeft;
        const ScopedFileFaults scope(faults);
        ASSERT_EQ(c->SaveCuttingToPcms(), 1);
        for (std::size_t i = 0; i < paths.size(); ++i) {
            const auto& entry = c->m_vCutSaveResults[i];
            ASSERT_EQ(ReadBytes(paths[i]), entry.outcome == CutWritten ? newFiles.at(paths[i]) : oldFiles.at(paths[i]));
            if (entry.outcome == CutWritten) continue;
            ++failed;
            ASSERT_EQ(entry.outcome, CutFileNotWritten);
            ASSERT_THAT(entry.reason, testing::HasSubstr("No space left"));
        }
        ASSERT_EQ(folder.FileCount(), paths.size());
        RestoreFiles();
    }
    EXPECT_GT(failed, paths.size());
}

// ---- memory

TEST_F(SaveWithFaults, PassesOnWhatTheFirstObjectThrowsAndSavesTheOthers) {
    constexpr int kSide = 100;
    const ScanSample large = FlatCutScan(kSide, kSide);
    large.WritePcm(folder / "large.pcm");
    c->m_vpMeshes = {ObjectOf(folder / "large.pcm", {MaskOf(large, IsLeft)})};
    MakeScene(1, 1);
    // Above every array of the file and below the vertices of a block of its rows.
    g_failingAllocation = 200'000;
    EXPECT_THROW(c->SaveCuttingToPcms(), std::bad_alloc);
    g_failingAllocation = std::numeric_limits<std::size_t>::max();
    ASSERT_EQ(c->m_vCutSaveResults.size(), 2u);
    EXPECT_EQ(c->m_vCutSaveResults[0].outcome, CutFileNotWritten);
    EXPECT_EQ(c->m_vCutSaveResults[0].reason, "there is not enough memory");
    EXPECT_EQ(c->m_vCutSaveResults[1].outcome, CutWritten);
    EXPECT_EQ(c.debugOutput.Text(), "SaveCuttingToPcms(): " + folder / "large.pcm" + ": there is not enough memory\n");
    EXPECT_EQ(c.window->waitCursorsBegun, 1);
    EXPECT_EQ(c.window->waitCursorsEnded, 1);
    EXPECT_EQ(c->m_vpMeshes[0]->m_vpCutMasks.size(), 1u) << "its cuts are in no file";
    EXPECT_EQ(ClassesIn(folder / "large.pcm"), large.classification);
    ExpectNewFiles();
    // With enough memory the next save takes it.
    EXPECT_EQ(c->SaveCuttingToPcms(), 1);
    EXPECT_EQ(ClassesIn(folder / "large.pcm"), ClassesAfterCut(large, IsLeft));
}

// The sink of the debugger output cannot hide what the save threw.
TEST_F(SaveWithFaults, PassesOnWhatTheSaveThrowsBeforeWhatTheSinkThrows) {
    constexpr int kSide = 100;
    const ScanSample large = FlatCutScan(kSide, kSide);
    large.WritePcm(folder / "large.pcm");
    c->m_vpMeshes = {ObjectOf(folder / "large.pcm", {MaskOf(large, IsLeft)})};
    int lines = 0;
    KV_ScenePane::SetDebugOutputSink([&](std::string_view) {
        ++lines;
        throw std::runtime_error("sink");
    });
    g_failingAllocation = 200'000;
    EXPECT_THROW(c->SaveCuttingToPcms(), std::bad_alloc);
    g_failingAllocation = std::numeric_limits<std::size_t>::max();
    EXPECT_EQ(lines, 1);
}

// Memory that is short while the file is read is a failure of the file: its cuts are dropped, and nothing is thrown.
TEST_F(SaveWithFaults, CountsAFileWhoseArraysHaveNoMemoryAsWritten) {
    constexpr int kSide = 100;
    const ScanSample large = FlatCutScan(kSide, kSide);
    large.WritePcm(folder / "large.pcm");
    c->m_vpMeshes = {ObjectOf(folder / "large.pcm", {MaskOf(large, IsLeft)})};
    g_failingAllocation = 100'000;  // below the points of the file, 12 bytes per pixel
    std::int32_t result = 0;
    EXPECT_NO_THROW(result = c->SaveCuttingToPcms());
    g_failingAllocation = std::numeric_limits<std::size_t>::max();
    EXPECT_EQ(result, 1);
    EXPECT_EQ(c->m_vCutSaveResults[0].outcome, CutFileNotRead);
    EXPECT_EQ(c->m_vCutSaveResults[0].reason, "not enough memory");
    EXPECT_TRUE(c->m_vpMeshes[0]->m_vpCutMasks.empty());
    EXPECT_EQ(ClassesIn(folder / "large.pcm"), large.classification);
}

TEST_F(SaveWithFaults, KeepsToItselfWhatAnObjectAfterAWrittenOneThrows) {
    constexpr int kSide = 100;
    const ScanSample large = FlatCutScan(kSide, kSide);
    large.WritePcm(folder / "large.pcm");
    MakeScene(1, 1);
    c->m_vpMeshes.push_back(ObjectOf(folder / "large.pcm", {MaskOf(large, IsLeft)}));
    g_failingAllocation = 200'000;
    EXPECT_EQ(c->SaveCuttingToPcms(), 1);
    g_failingAllocation = std::numeric_limits<std::size_t>::max();
    EXPECT_EQ(c->m_vCutSaveResults[0].outcome, CutWritten);
    EXPECT_EQ(c->m_vCutSaveResults[1].outcome, CutFileNotWritten);
    EXPECT_EQ(c->m_vpMeshes[1]->m_vpCutMasks.size(), 1u);
}

// ---- files that are exchanged during the save

TEST_F(SaveWithFaults, LeavesWholeFilesWhileAnotherProgramExchangesThem) {
    MakeScene(2, 1);
    const auto meshes = c->m_vpMeshes;
    const FileFaults none;  // without waiting for the disk
    const ScopedFileFaults scope(none);
    // Grids of other sizes, a link, a folder, half a file, and nothing take the place of the first file.
    const ScanSample wide = FlatCutScan(3 * kWidth, kHeight);
    const auto wideBytes = [&] {
        wide.WritePcm(folder / "wide");
        return ReadBytes(folder / "wide");
    }();
    std::atomic<bool> isDone = false;
    std::thread exchange([&] {
        const std::string path = paths[0], spare = folder / "spare";
        const auto put = [&](const std::vector<std::byte>& bytes) {
            WriteBytes(spare, bytes);
            fs::rename(spare, path);
        };
        while (!isDone) {
            put(wideBytes);
            put({oldFiles[path].begin(), oldFiles[path].begin() + 100});
            fs::remove(path);
            fs::create_symlink("wide", spare);
            fs::rename(spare, path);
            fs::remove(path);
            std::error_code taken;  // a save may have put a file there
            if (fs::create_directory(path, taken)) fs::remove(path, taken);
            fs::remove(path, taken);
            put(oldFiles[path]);
        }
    });
    std::map<KV_ScenePane::CutSaveOutcome, int> outcomes;
    for (int i = 0; i < 300; ++i) {
        c->m_vpMeshes.clear();
        for (const auto& mesh : meshes)
            c->m_vpMeshes.push_back(ObjectOf(KV_ScenePane::PathBytes(mesh->m_sName), mesh->m_vpCutMasks));
        EXPECT_EQ(c->SaveCuttingToPcms(), 1);
        ++outcomes[c->m_vCutSaveResults[0].outcome];
        EXPECT_EQ(c->m_vCutSaveResults[1].outcome, CutWritten);
    }
    isDone = true;
    exchange.join();
    EXPECT_EQ(ReadBytes(paths[1]), newFiles[paths[1]]) << "the other file";
    EXPECT_NO_THROW((void)MsrStorage::ReadPcmFile(folder / "wide")) << "the file behind the link";
    EXPECT_NO_THROW((void)MsrStorage::ReadPcmFile(paths[0]));
    EXPECT_GT(outcomes[CutWritten], 0);
    EXPECT_GT(outcomes[CutFileNotRead] + outcomes[CutFileNotWritten], 0);
    EXPECT_EQ(folder.FileCount(), 3u);
}
