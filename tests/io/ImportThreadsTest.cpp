// How many threads an import starts: none for a small file, none on the threads of the host, and those that exist have
// ended when the call returns. pthread_create() of the C library is replaced by one that counts.
#include <dlfcn.h>
#include <gtest/gtest.h>
#include <pthread.h>

#include <atomic>
#include <chrono>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <thread>
#include <vector>

#include "base/ParallelTasks.h"
#include "io/ScanSample.h"
#include "support/ControlFixture.h"
#include "support/ScratchFolder.h"

namespace {

std::atomic<int> g_startedThreads = 0;

}  // namespace

extern "C" [[gnu::visibility("default")]] int pthread_create(pthread_t* thread, const pthread_attr_t* attributes,
                                                             void* (*start)(void*), void* argument) noexcept {
    using Create = int (*)(pthread_t*, const pthread_attr_t*, void* (*)(void*), void*);
    static const auto create = reinterpret_cast<Create>(::dlsym(RTLD_NEXT, "pthread_create"));
    ++g_startedThreads;
    return create(thread, attributes, start, argument);
}

namespace {

/// An stl file of separate triangles.
std::string StlFile(std::uint32_t triangles) {
    std::string file(84 + std::size_t{50} * triangles, '\0');
    std::memcpy(&file[80], &triangles, sizeof triangles);
    for (std::size_t i = 0; i < triangles; ++i) {
        const auto at = static_cast<float>(i);
        const float corners[] = {at, 0, 0, at, 1, 0, at, 0, 1};
        std::memcpy(&file[84 + 50 * i + 12], corners, sizeof corners);
    }
    return file;
}

std::string TextPlyFile(std::size_t faces) {
    std::string file =
        "ply\nformat ascii 1.0\nelement vertex 3\nproperty float x\nproperty float y\nproperty float z\n"
        "element face " +
        std::to_string(faces) + "\nproperty list uchar int vertex_indices\nend_header\n0 0 0\n1 0 0\n0 1 0\n";
    for (std::size_t i = 0; i < faces; ++i) file += "3 0 1 2\n";
    return file;
}

std::ptrdiff_t ThreadsNow() {
    return std::distance(std::filesystem::directory_iterator("/proc/self/task"), std::filesystem::directory_iterator());
}

class ImportThreads : public testing::Test {
protected:
    /// Threads that the work starts. All have ended after it.
    template <typename Work>
    int StartedBy(const Work& work) {
        const auto before = ThreadsNow();
        g_startedThreads = 0;
        work();
        // The kernel removes a thread from the list shortly after it has ended.
        const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(10);
        while (ThreadsNow() != before && std::chrono::steady_clock::now() < deadline)
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        EXPECT_EQ(ThreadsNow(), before);
        return g_startedThreads;
    }
    int StartedByFile(const char* name, const std::string& content) {
        const std::string path = m_folder / name;
        WriteText(path, content);
        const std::size_t objects = c->m_vpMeshes.size();
        const int started = StartedBy([&] { c->ImportMesh(KV_ScenePane::WidePath(path).c_str()); });
        EXPECT_EQ(c->m_vpMeshes.size(), objects + 1);
        return started;
    }
    static void WriteText(const std::string& path, const std::string& content) {
        std::ofstream(path, std::ios::binary) << content;
    }
    int StartedByGrid(const ScanSample& scan) {
        return StartedBy([&] {
            c->ImportMeasurementFromMemory(scan.width, scan.height, scan.points.data(), scan.confidence.data(),
                                           scan.trafo.data(), 0);
        });
    }

    const ScratchFolder m_folder;
    NoPictureControl c;
};

TEST_F(ImportThreads, CountsThreads) {
    EXPECT_EQ(StartedBy([] { std::thread([] {}).join(); }), 1);
}

TEST_F(ImportThreads, AreNotStartedForSmallFilesAndGrids) {
    EXPECT_EQ(StartedByFile("small.stl", StlFile(49'999)), 0);
    EXPECT_EQ(StartedByFile("small.ply", TextPlyFile(49'999)), 0);
    EXPECT_EQ(StartedByGrid(ScanSample(300, 333, 0.1f)), 0);
}

TEST_F(ImportThreads, AreStartedForLargeFilesAndGridsWhereThereAreCores) {
    if (AllowedCores() < 2) GTEST_SKIP() << "one core";
    EXPECT_GT(StartedByFile("large.stl", StlFile(50'000)), 0);
    EXPECT_GT(StartedByFile("large.ply", TextPlyFile(130'000)), 0);
    EXPECT_GT(StartedByGrid(ScanSample(400, 300, 0.1f)), 0);
}

TEST_F(ImportThreads, AreNotStartedDuringAParallelImport) {
    const ScanSample scan(400, 300, 100);
    void* control = nullptr;
    KV_ScenePane::ImportMeasurementEntry entry = nullptr;
    c->BeginParallelImport(&control, &entry);
    const auto import = [&] {
        EXPECT_TRUE(entry(control, L"scan", scan.width, scan.height, scan.points.data(), scan.confidence.data(),
                          scan.trafo.data(), scan.classification.data(), nullptr, 0, 0));
    };
    EXPECT_EQ(StartedBy(import), 0);
    EXPECT_EQ(StartedByFile("large.stl", StlFile(50'000)), 0);
    EXPECT_EQ(StartedByGrid(scan), 0);
    c->EndParallelImport();
    EXPECT_EQ(StartedBy(import), 0) << "by the entry, after the end";
}

}  // namespace
