// Worker threads for files that are read beside the viewer's thread. They schedule; the work on a file is a function.
#pragma once
#include <algorithm>
#include <atomic>
#include <cstddef>
#include <functional>
#include <thread>
#include <vector>

/// One run over a list of files: starts with the constructor, ends with Join(). Files are started in their order.
class FileWorkers {
public:
    /// Called on a worker thread, once per file that is started. Must not throw. @param file  position in the list
    using Work = std::function<void(std::size_t file)>;

    /// @param threads       how many, at least 1; never more than there are files
    /// @param fileFinished  called on the worker threads, after each file and once more when the last thread ends
    FileWorkers(std::size_t files, unsigned threads, Work work, std::function<void()> fileFinished);
    /// Joins.
    ~FileWorkers();
    FileWorkers(const FileWorkers&) = delete;
    FileWorkers& operator=(const FileWorkers&) = delete;

    /// No further file is started; those in progress are finished. Any thread.
    void Cancel() { m_bCancelled = true; }
    [[nodiscard]] std::size_t FinishedFiles() const { return m_nFinished; }
    /// Finished ones and those in progress.
    [[nodiscard]] std::size_t StartedFiles() const { return std::min<std::size_t>(m_nNext, m_nFiles); }
    /// All threads have finished their work, so that Join() does not wait.
    [[nodiscard]] bool IsDone() const { return m_nRunningThreads == 0; }
    /// Waits for the threads.
    void Join();

private:
    void Run();

    const std::size_t m_nFiles;
    const Work m_work;
    const std::function<void()> m_fileFinished;
    std::atomic<std::size_t> m_nNext = 0;  // position of the next file to start; may run past the end
    std::atomic<std::size_t> m_nFinished = 0;
    std::atomic<unsigned> m_nRunningThreads = 0;
    std::atomic<bool> m_bCancelled = false;
    std::vector<std::thread> m_vThreads;
};
