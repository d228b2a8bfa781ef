// Each thread works on the next file of the list until none is left or the run is cancelled.
#include "FileWorkers.h"

#include <system_error>
#include <utility>

FileWorkers::FileWorkers(std::size_t files, unsigned threads, Work work, std::function<void()> fileFinished)
    : m_nFiles(files), m_work(std::move(work)), m_fileFinished(std::move(fileFinished)) {
    const std::size_t count = std::clamp<std::size_t>(files, 1, std::max(threads, 1u));
    // Counted before they start: the first thread may end before the last one begins.
    m_nRunningThreads = static_cast<unsigned>(count);
    for (std::size_t i = 0; i < count; ++i) {
        try {
            m_vThreads.emplace_back(&FileWorkers::Run, this);
        } catch (const std::system_error&) {
            // The system gives no more threads. Those that exist do all the work; without any, this one does.
            const auto missing = static_cast<unsigned>(count - i);
            if (i == 0) {
                m_nRunningThreads = 1;
                Run();
            } else if ((m_nRunningThreads -= missing) == 0) {
                m_fileFinished();
            }
            break;
        }
    }
}

FileWorkers::~FileWorkers() { Join(); }

void FileWorkers::Join() {
    for (std::thread& thread : m_vThreads) thread.join();
    m_vThreads.clear();
}

void FileWorkers::Run() {
    while (!m_bCancelled) {
        const std::size_t file = m_nNext++;
        if (file >= m_nFiles) break;
        m_work(file);
        ++m_nFinished;
        m_fileFinished();
    }
    // After the count: whoever is notified by this call finds IsDone() true.
    if (--m_nRunningThreads == 0) m_fileFinished();
}
