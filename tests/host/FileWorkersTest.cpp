#include "FileWorkers.h"

#include <gtest/gtest.h>

#include <condition_variable>
#include <functional>
#include <mutex>
#include <set>
#include <utility>

#include "FileImport.h"
#include "KV_ScenePane/PathText.h"
#include "host/ScanFiles.h"

namespace {

/// In place of the viewer: records the calls of its entry, which do not return while it is closed.
struct Receiver {
    std::mutex mutex;
    std::condition_variable changed;
    std::set<std::pair<std::int32_t, std::string>> taken;  // index and name
    float firstPoint[3] = {0, 0, 0};
    std::uint32_t color = 0;
    bool isClosed = false;
    std::int32_t refused = -1;  // index that gives no object

    void Open() {
        const std::scoped_lock lock(mutex);
        isClosed = false;
        changed.notify_all();
    }
};

bool Entry(void* control, const wchar_t* name, std::int32_t width, std::int32_t height, const float* points,
           const float* confidence, const float* trafo, const std::uint8_t* classification, const std::uint32_t* colors,
           std::uint32_t color, std::int32_t index) {
    auto& receiver = *static_cast<Receiver*>(control);
    std::unique_lock lock(receiver.mutex);
    receiver.taken.emplace(index, KV_ScenePane::PathBytes(name));
    receiver.changed.notify_all();
    receiver.changed.wait(lock, [&] { return !receiver.isClosed; });
    EXPECT_EQ(width, 3);
    EXPECT_EQ(height, 2);
    EXPECT_EQ(confidence[5], 1.0f);
    EXPECT_EQ(classification[5], 0);
    EXPECT_EQ(trafo[15], 1.0f);
    EXPECT_EQ(colors, nullptr);
    if (index == 0) std::copy_n(points + 15, 3, receiver.firstPoint);
    receiver.color = color;
    return index != receiver.refused;
}

/// Workers that import pcm files into a receiver.
class PcmWorkers {
public:
    PcmWorkers(Receiver& receiver, std::vector<std::string> files, unsigned threads, std::function<void()> fileFinished)
        : m_entry{&receiver, Entry, 0x112233},
          m_files(std::move(files)),
          m_results(m_files.size()),
          m_workers(
              m_files.size(), threads,
              [this](std::size_t i) {
                  m_results[i] = ImportGridFile(m_entry, m_files[i], static_cast<std::int32_t>(i));
              },
              std::move(fileFinished)) {}

    FileWorkers& operator*() { return m_workers; }
    const std::vector<ImportResult>& Join() {
        m_workers.Join();
        return m_results;
    }

private:
    const GridEntry m_entry;
    const std::vector<std::string> m_files;
    std::vector<ImportResult> m_results;
    FileWorkers m_workers;
};

std::vector<std::string> WritePcms(const ScratchFolder& folder, int count) {
    std::vector<std::string> files;
    for (int i = 0; i < count; ++i) {
        files.push_back(folder / (std::to_string(i) + ".pcm"));
        WritePcm(files.back(), 3, 2, 7.0f);
    }
    return files;
}

void IgnoreProgress() {}

TEST(FileWorkers, PassEveryFileOnceToTheEntryWithItsPositionInTheList) {
    const ScratchFolder folder;
    Receiver receiver;
    std::atomic<int> calls = 0;
    PcmWorkers workers(receiver, WritePcms(folder, 20), 4, [&] { ++calls; });
    const auto& results = workers.Join();
    ASSERT_EQ(results.size(), 20u);
    for (const ImportResult& result : results) EXPECT_EQ(result.state, ImportResult::State::Added) << result.text;
    ASSERT_EQ(receiver.taken.size(), 20u);
    for (const auto& [index, name] : receiver.taken) EXPECT_EQ(name, folder / (std::to_string(index) + ".pcm"));
    EXPECT_EQ(receiver.color, 0x112233u);
    EXPECT_EQ(receiver.firstPoint[0], 2000.0f);  // column 2, row 1, height 7, in file units
    EXPECT_EQ(receiver.firstPoint[1], 1000.0f);
    EXPECT_EQ(receiver.firstPoint[2], 7000.0f);
    EXPECT_EQ(calls, 21) << "one per file, one for the end";
    EXPECT_EQ((*workers).FinishedFiles(), 20u);
    EXPECT_TRUE((*workers).IsDone());
}

TEST(FileWorkers, ReportMissingDamagedAndRefusedFiles) {
    const ScratchFolder folder;
    Receiver receiver;
    receiver.refused = 3;
    std::vector<std::string> files = WritePcms(folder, 4);
    ASSERT_EQ(unlink(files[1].c_str()), 0);
    const DamagedPcm damaged = WriteDamagedPcms(folder).front();
    files[2] = damaged.path;
    PcmWorkers workers(receiver, files, 2, IgnoreProgress);
    const auto& results = workers.Join();
    EXPECT_EQ(results[0].state, ImportResult::State::Added);
    EXPECT_EQ(results[1].state, ImportResult::State::Failed);
    EXPECT_EQ(results[1].text, "there is no such file: check its name and its folder");
    EXPECT_EQ(results[2].state, ImportResult::State::Failed);
    EXPECT_EQ(results[2].text, damaged.reason);
    EXPECT_EQ(results[3].state, ImportResult::State::Failed);
    EXPECT_EQ(results[3].text, "nothing in it could be imported");
}

TEST(FileWorkers, FinishFilesInProgressAfterACancelAndStartNoMore) {
    const ScratchFolder folder;
    Receiver receiver;
    receiver.isClosed = true;
    PcmWorkers workers(receiver, WritePcms(folder, 6), 2, IgnoreProgress);
    {
        std::unique_lock lock(receiver.mutex);
        receiver.changed.wait(lock, [&] { return receiver.taken.size() == 2; });
    }
    EXPECT_FALSE((*workers).IsDone());
    (*workers).Cancel();
    receiver.Open();
    const auto& results = workers.Join();
    for (std::size_t i = 0; i < 6; ++i)
        EXPECT_EQ(results[i].state, i < 2 ? ImportResult::State::Added : ImportResult::State::NotStarted) << i;
}

TEST(FileWorkers, WithoutFilesAreDoneImmediately) {
    FileWorkers workers(
        0, 4, [](std::size_t) { ADD_FAILURE(); }, IgnoreProgress);
    workers.Join();
    EXPECT_TRUE(workers.IsDone());
}

TEST(FileWorkers, UseOneThreadWhenNoneIsRequested) {
    const ScratchFolder folder;
    Receiver receiver;
    PcmWorkers workers(receiver, WritePcms(folder, 2), 0, IgnoreProgress);
    EXPECT_EQ(workers.Join()[1].state, ImportResult::State::Added);
}

}  // namespace
