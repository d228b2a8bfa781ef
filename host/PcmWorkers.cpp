// Each thread imports the next file of the list until none is left or the import is cancelled.
#include "PcmWorkers.h"

#include <algorithm>
#include <system_error>
#include <utility>

PcmWorkers::PcmWorkers(Task task, unsigned threads, std::function<void()> fileFinished)
    : m_task(std::move(task)), m_fileFinished(std::move(fileFinished)), m_vResults(m_task.files.size()) {
    const std::size_t count = std::clamp<std::size_t>(m_task.files.size(), 1, std::max(threads, 1u));
    // Counted before they start: the first thread may end before the last one begins.
    m_nRunningThreads = static_cast<unsigned>(count);
    for (std::size_t i = 0; i < count; ++i) {
        try {
            m_vThreads.emplace_back(&PcmWorkers::Work, this);
        } catch (const std::system_error&) {
            // The system gives no more threads. Those that exist do all the work; without any, this one does.
            const auto missing = static_cast<unsigned>(count - i);
            if (i == 0) {
                m_nRunningThreads = 1;
                Work();
            } else if ((m_nRunningThreads -= missing) == 0) {
                m_fileFinished();
            }
            break;
        }
    }
}

PcmWorkers::~PcmWorkers() { Join(); }

const std::vector<ImportResult>& PcmWorkers::Join() {
    for (std::thread& thread : m_vThreads) thread.join();
    m_vThreads.clear();
    return m_vResults;
}

void PcmWorkers::Work() {
    while (!m_bCancelled) {
        const std::size_t index = m_nNext++;
        if (index >= m_task.files.size()) break;
        m_vResults[index] = ImportGridFile(m_task.entry, m_task.files[index], static_cast<std::int32_t>(index));
        ++m_nFinished;
        m_fileFinished();
    }
    // After the count: whoever is notified by this call finds IsDone() true.
    if (--m_nRunningThreads == 0) m_fileFinished();
}
