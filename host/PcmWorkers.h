// Worker threads for the files that the host reads itself. They schedule; ImportGridFile() does the work on each file.
#pragma once
#include <algorithm>
#include <atomic>
#include <functional>
#include <string>
#include <thread>
#include <vector>

#include "FileImport.h"

/// One parallel import: starts with the constructor, ends with Join(). Files are started in their order.
class PcmWorkers {
public:
    struct Task {
        GridEntry entry;
        std::vector<std::string> files;  ///< paths in bytes; the position in the list is the index of the object
    };

    /// @param threads       how many, at least 1; never more than there are files
    /// @param fileFinished  called on the worker threads, after each file and once more when the last thread ends
    PcmWorkers(Task task, unsigned threads, std::function<void()> fileFinished);
    /// Joins.
    ~PcmWorkers();
    PcmWorkers(const PcmWorkers&) = delete;
    PcmWorkers& operator=(const PcmWorkers&) = delete;

    /// No further file is started; those in progress are finished. Any thread.
    void Cancel() { m_bCancelled = true; }
    [[nodiscard]] std::size_t FinishedFiles() const { return m_nFinished; }
    /// Finished ones and those in progress.
    [[nodiscard]] std::size_t StartedFiles() const { return std::min<std::size_t>(m_nNext, m_task.files.size()); }
    /// All threads have finished their work, so that Join() does not wait.
    [[nodiscard]] bool IsDone() const { return m_nRunningThreads == 0; }
    /// Waits for the threads. @return one result per file, in their order
    const std::vector<ImportResult>& Join();

private:
    void Work();

    const Task m_task;
    const std::function<void()> m_fileFinished;
    std::vector<ImportResult> m_vResults;  // each written by the one thread that took the file; read after Join()
    std::atomic<std::size_t> m_nNext = 0;  // position of the next file to start; may run past the end
    std::atomic<std::size_t> m_nFinished = 0;
    std::atomic<unsigned> m_nRunningThreads = 0;
    std::atomic<bool> m_bCancelled = false;
    std::vector<std::thread> m_vThreads;
};
