// Worker threads that read pcm files and hand them to the viewer's import entry.
#pragma once
#include <atomic>
#include <cstdint>
#include <functional>
#include <string>
#include <thread>
#include <vector>

#include "FileImport.h"
#include "KV_ScenePane/Types.h"

/// One parallel import: starts with the constructor, ends with Join(). The files are taken in order.
class PcmWorkers {
public:
    struct Task {
        void* control = nullptr;  ///< from BeginParallelImport
        KV_ScenePane::ImportMeasurementEntry entry = nullptr;
        std::vector<std::string> files;  ///< bytes; the place in the list is the object's index
        std::uint32_t color = 0;         ///< 0x00BBGGRR
    };

    /// @param threads       how many, at least 1; no more are started than there are files
    /// @param fileFinished  called on the worker threads, after each file and once more when the last thread ends
    PcmWorkers(Task task, unsigned threads, std::function<void()> fileFinished);
    /// Joins.
    ~PcmWorkers();
    PcmWorkers(const PcmWorkers&) = delete;
    PcmWorkers& operator=(const PcmWorkers&) = delete;

    /// Files not yet begun are not begun any more; those under way are finished.
    void Cancel() { m_bCancelled = true; }
    [[nodiscard]] std::size_t FinishedFiles() const { return m_nFinished; }
    /// All threads have done their work; Join() does not wait then.
    [[nodiscard]] bool IsDone() const { return m_nRunningThreads == 0; }
    /// Waits for the threads. One result a file, in their order.
    const std::vector<ImportResult>& Join();

private:
    void Work();
    [[nodiscard]] ImportResult ImportFile(std::size_t index) const;

    const Task m_task;
    const std::function<void()> m_fileFinished;
    std::vector<ImportResult> m_vResults;  // each written by the one thread that took the file
    std::atomic<std::size_t> m_nNext = 0, m_nFinished = 0;
    std::atomic<unsigned> m_nRunningThreads = 0;
    std::atomic<bool> m_bCancelled = false;
    std::vector<std::thread> m_vThreads;
};
