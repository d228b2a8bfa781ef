// The import of point files into an off-screen viewer: order, progress, cancelling, failures and memory.
#include "PointsJob.h"

#include <gtest/gtest.h>
#include <pthread.h>

#include <atomic>
#include <fstream>
#include <new>
#include <stdexcept>

#include "KV_ScenePane/PointFiles.h"
#include "KV_ScenePane/ScenePane.h"
#include "host/MeshFiles.h"
#include "host/QtUnderXvfb.h"

namespace {

using KV_ScenePane::PointCloud;
using Progress = std::function<bool(double)>;
using State = PointsResult::State;

class PointsJobTest : public testing::Test {
protected:
    void SetUp() override {
        KV_ScenePane::WindowRequest request;
        request.kind = KV_ScenePane::WindowRequest::Kind::OffScreen;
        request.width = request.height = 64;
        std::string reason;
        m_pane = CreateScenePane(request, &reason);
        ASSERT_NE(m_pane, nullptr) << reason;
    }
    void Make(PointsRequest request, PointsJob::Reader reader = {}) {
        m_job = std::make_unique<PointsJob>(m_pane->Methods(), std::move(request), nullptr, std::move(reader));
        QObject::connect(m_job.get(), &PointsJob::Finished, [this] { ++m_finished; });
        QObject::connect(m_job.get(), &PointsJob::Progress, [this](int steps) { m_steps.push_back(steps); });
    }
    void Run() {
        m_job->Start();
        ASSERT_TRUE(WaitUntil([&] { return m_finished > 0; }));
    }
    [[nodiscard]] std::vector<State> States() const {
        std::vector<State> states;
        for (const PointsResult& result : m_job->Results()) states.push_back(result.state);
        return states;
    }
    /// The id that the viewer gives to the next set: the number of sets, as long as none is deleted.
    [[nodiscard]] int SetsInViewer() const {
        constexpr float kPoint[3] = {};
        return m_pane->Methods().ImportPoints(1, kPoint, kPoint, 1.0f);
    }
    /// The middle of a frame of the fitted scene, 0xRRGGBB.
    [[nodiscard]] std::uint32_t MiddlePixel() const {
        m_pane->Methods().CenterView();
        KV_ScenePane::Picture picture;
        EXPECT_TRUE(m_pane->CapturePicture(&picture));
        return picture.pixels.at(static_cast<std::size_t>(32 * 64 + 32)) & 0xFFFFFF;
    }
    static bool OnePoint(PointCloud* cloud) {
        cloud->xyz = {0, 0, 0};
        return true;
    }

    const ScratchFolder m_folder;
    std::unique_ptr<KV_ScenePane::ScenePane> m_pane;
    std::unique_ptr<PointsJob> m_job;
    int m_finished = 0;
    std::vector<int> m_steps;
};

TEST_F(PointsJobTest, AddsOneSetPerFileInTheirOrder) {
    WriteText(m_folder / "a.xyz", "0 0 0\n1 0 0\n0 1 0\n");
    WriteText(m_folder / "b.xyzrgb", "0 0 0 255 0 0\n");
    Make({{m_folder / "a.xyz", m_folder / "b.xyzrgb"}, {}});
    Run();
    ASSERT_EQ(States(), (std::vector<State>{State::Added, State::Added}));
    EXPECT_EQ(m_job->Results()[0].id, 0);
    EXPECT_EQ(m_job->Results()[0].points, 3);
    EXPECT_EQ(m_job->Results()[1].id, 1);
    EXPECT_EQ(m_job->Results()[1].points, 1);
    EXPECT_EQ(m_steps.back(), 2 * PointsJob::kStepsPerFile);
}

TEST_F(PointsJobTest, ShowsPointsWithoutColoursInTheChosenOne) {
    WriteText(m_folder / "a.xyz", "0 0 0\n10 10 0\n5 5 0\n");
    Make({{m_folder / "a.xyz"}, {.alpha = 1.0f, .color = 0x3366FF}});
    Run();
    EXPECT_EQ(MiddlePixel(), 0xFF6633u);
}

TEST_F(PointsJobTest, ShowsTheColoursOfTheFileInsteadOfTheChosenOne) {
    WriteText(m_folder / "a.xyzrgb", "0 0 0 0 255 0\n10 10 0 0 255 0\n5 5 0 0 255 0\n");
    Make({{m_folder / "a.xyzrgb"}, {.alpha = 1.0f, .color = 0x0000FF}});
    Run();
    EXPECT_EQ(MiddlePixel(), 0x00FF00u);
}

TEST_F(PointsJobTest, BlendsPointsWithTheBackgroundByTheirOpacity) {
    WriteText(m_folder / "a.xyz", "0 0 0\n10 10 0\n5 5 0\n");
    m_pane->Methods().SetBackgroundColorsFourCorners(0, 0, 0, 0);
    Make({{m_folder / "a.xyz"}, {.alpha = 0.4f, .color = 0x0000FF}});
    Run();
    const std::uint32_t pixel = MiddlePixel();
    EXPECT_NEAR(static_cast<double>(pixel >> 16), 0.4 * 255, 1.0);
    EXPECT_EQ(pixel & 0xFFFF, 0u);
}

TEST_F(PointsJobTest, ReportsRisingProgressOverAllFiles) {
    const auto reader = [](const std::string&, PointCloud* cloud, std::string*, const Progress& progress) {
        for (int i = 1; i <= 4; ++i) EXPECT_TRUE(progress(i / 4.0));
        return OnePoint(cloud);
    };
    Make({{"a", "b"}, {}}, reader);
    Run();
    EXPECT_TRUE(std::ranges::is_sorted(m_steps));
    EXPECT_GE(m_steps.front(), 250);
    EXPECT_EQ(m_steps.back(), 2000);
}

TEST_F(PointsJobTest, LeavesTheEventLoopRunningWhileAFileIsRead) {
    std::atomic<bool> wasSeen = false;
    const auto reader = [&](const std::string&, PointCloud* cloud, std::string*, const Progress& progress) {
        (void)progress(0.5);
        while (!wasSeen) std::this_thread::yield();  // until the thread of the window has seen the progress
        return OnePoint(cloud);
    };
    Make({{"a"}, {}}, reader);
    QObject::connect(m_job.get(), &PointsJob::Progress, [&] { wasSeen = true; });
    Run();
    EXPECT_EQ(States(), std::vector<State>{State::Added});
    EXPECT_EQ(m_steps.front(), 500);
}

TEST_F(PointsJobTest, CancelledDuringAFileKeepsThoseBeforeAndAddsNothingElse) {
    const auto reader = [&](const std::string& path, PointCloud* cloud, std::string* reason, const Progress& progress) {
        if (path == "first") return OnePoint(cloud);
        while (progress(0.5)) std::this_thread::yield();
        *reason = "cancelled";
        return false;
    };
    Make({{"first", "slow", "later"}, {}}, reader);
    QObject::connect(m_job.get(), &PointsJob::Progress, [&](int steps) {
        if (steps > 1000) m_job->Cancel();
    });
    Run();
    EXPECT_EQ(States(), (std::vector<State>{State::Added, State::NotStarted, State::NotStarted}));
    EXPECT_EQ(m_finished, 1);
    EXPECT_EQ(SetsInViewer(), 1);
}

TEST_F(PointsJobTest, CancelledAfterTheLastByteAddsNothingOfThatFile) {
    std::atomic<bool> isRead = false;
    Make({{"a"}, {}}, [&](const std::string&, PointCloud* cloud, std::string*, const Progress&) {
        isRead = true;
        return OnePoint(cloud);
    });
    m_job->Start();
    QCoreApplication::processEvents();
    while (!isRead) std::this_thread::yield();  // the window handles no event in between
    m_job->Cancel();
    ASSERT_TRUE(WaitUntil([&] { return m_finished > 0; }));
    EXPECT_EQ(States(), std::vector<State>{State::NotStarted});
    EXPECT_EQ(SetsInViewer(), 0);
}

TEST_F(PointsJobTest, StoppedEndsTheThreadAndFinishesOnce) {
    std::atomic<bool> hasStarted = false, hasEnded = false;
    Make({{"a", "b"}, {}}, [&](const std::string&, PointCloud*, std::string*, const Progress& progress) {
        hasStarted = true;
        while (progress(0.1)) std::this_thread::yield();
        hasEnded = true;
        return false;
    });
    m_job->Start();
    ASSERT_TRUE(WaitUntil([&] { return hasStarted.load(); }));
    m_job->Stop();
    EXPECT_TRUE(hasEnded);
    EXPECT_EQ(m_finished, 1);
    QCoreApplication::processEvents();  // the calls that the thread has queued
    EXPECT_EQ(m_finished, 1);
    EXPECT_EQ(States(), (std::vector<State>{State::NotStarted, State::NotStarted}));
    m_job.reset();
    EXPECT_EQ(m_finished, 1);
}

TEST_F(PointsJobTest, StoppedBeforeItsFirstFileReadsNothing) {
    std::atomic<bool> hasStarted = false;
    Make({{"a"}, {}}, [&](const std::string&, PointCloud* cloud, std::string*, const Progress&) {
        hasStarted = true;
        return OnePoint(cloud);
    });
    m_job->Start();
    m_job->Stop();
    QCoreApplication::processEvents();
    EXPECT_FALSE(hasStarted);
    EXPECT_EQ(m_finished, 1);
}

TEST_F(PointsJobTest, GoesOnAfterAFileThatCannotBeRead) {
    const auto reader = [](const std::string& path, PointCloud* cloud, std::string* reason, const Progress&) {
        if (path == "memory") throw std::bad_alloc();
        if (path == "bad") *reason = "line 3: no number";
        return path == "good" && OnePoint(cloud);
    };
    Make({{"bad", "memory", "good"}, {}}, reader);
    Run();
    EXPECT_EQ(States(), (std::vector<State>{State::Failed, State::Failed, State::Added}));
    EXPECT_EQ(m_job->Results()[0].reason, "line 3: no number");
    EXPECT_FALSE(m_job->Results()[1].reason.empty());
    EXPECT_EQ(m_job->Results()[2].id, 0);
    EXPECT_EQ(m_job->Results()[2].reason, "");
}

TEST_F(PointsJobTest, ReportsAFolderAndAMissingFileAsFailures) {
    Make({{m_folder.Path(), m_folder / "none.xyz"}, {}});
    Run();
    EXPECT_EQ(States(), (std::vector<State>{State::Failed, State::Failed}));
    for (const PointsResult& result : m_job->Results()) EXPECT_FALSE(result.reason.empty());
}

/// A line of /proc/self/status, bytes.
std::int64_t MemoryOfProcess(const std::string& name) {
    std::ifstream status("/proc/self/status");
    for (std::string line; std::getline(status, line);)
        if (line.starts_with(name + ":")) return std::stoll(line.substr(name.size() + 1)) * 1024;
    throw std::runtime_error("no " + name + " in /proc/self/status");
}

TEST_F(PointsJobTest, NeedsAtMostSixtyBytesAPoint) {
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
    GTEST_SKIP() << "the sanitizer's own memory is counted too";
#endif
    constexpr int kPoints = 3'000'000;  // so many that the slice of a draw that a driver queues counts little
    {
        std::ofstream file(m_folder / "large.xyz");
        std::string line;
        for (int i = 0; i < kPoints; ++i)
            file << (line = std::to_string(i % 1000) + ' ' + std::to_string(i / 1000) + " 1\n");
        ASSERT_TRUE(file.good());
    }
    // The first frame and the first set allocate what every viewer has.
    m_pane->Methods().SetPointCloudRenderPointSize(0.1f);
    (void)SetsInViewer();
    (void)MiddlePixel();
    std::ofstream("/proc/self/clear_refs") << 5;  // the peak starts again at the present size
    const std::int64_t before = MemoryOfProcess("VmRSS");
    ASSERT_LT(MemoryOfProcess("VmHWM"), before + (4 << 20)) << "the peak was not reset";
    Make({{m_folder / "large.xyz"}, {}});
    Run();
    ASSERT_EQ(States(), std::vector<State>{State::Added});
    EXPECT_LT(static_cast<double>(MemoryOfProcess("VmHWM") - before) / kPoints, 60.0);  // of the import
    EXPECT_LT(static_cast<double>(MemoryOfProcess("VmRSS") - before) / kPoints, 36.0) << "the arrays are still there";
    (void)MiddlePixel();
    EXPECT_LT(static_cast<double>(MemoryOfProcess("VmHWM") - before) / kPoints, 60.0);  // of a frame
}

TEST_F(PointsJobTest, ReportsTheFilesForWhichTheSystemHasNoThread) {
    Make({{"a", "b"}, {}},
         [](const std::string&, PointCloud* cloud, std::string*, const Progress&) { return OnePoint(cloud); });
    pthread_attr_t usual, endless;
    ASSERT_EQ(pthread_getattr_default_np(&usual), 0);
    ASSERT_EQ(pthread_attr_init(&endless), 0);
    ASSERT_EQ(pthread_attr_setstacksize(&endless, std::size_t{1} << 48), 0) << "more than there are addresses";
    ASSERT_EQ(pthread_setattr_default_np(&endless), 0);
    Run();
    ASSERT_EQ(pthread_setattr_default_np(&usual), 0);
    EXPECT_EQ(States(), (std::vector<State>{State::Failed, State::Failed}));
    for (const PointsResult& result : m_job->Results()) EXPECT_FALSE(result.reason.empty());
    EXPECT_EQ(m_finished, 1);
}

}  // namespace
