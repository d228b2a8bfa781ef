// Each thread takes the next file of the list until there is none or the import is cancelled.
#include "PcmWorkers.h"

#include <algorithm>
#include <system_error>
#include <utility>

#include "CaughtError.h"
#include "DebugCapture.h"
#include "KV_ScenePane/PathText.h"
#include "MSRDLL/Msr.h"
#include "SceneFile.h"

PcmWorkers::PcmWorkers(Task task, unsigned threads, std::function<void()> fileFinished)
    : m_task(std::move(task)), m_fileFinished(std::move(fileFinished)), m_vResults(m_task.files.size()) {
    const std::size_t count = std::clamp<std::size_t>(m_task.files.size(), 1, std::max(threads, 1u));
    m_nRunningThreads = static_cast<unsigned>(count);
    for (std::size_t i = 0; i < count; ++i) {
        try {
            m_vThreads.emplace_back(&PcmWorkers::Work, this);
        } catch (const std::system_error&) {
            // The system gives no more threads: those there are do all the work, or else this one.
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
        m_vResults[index] = ImportFile(index);
        ++m_nFinished;
        m_fileFinished();
    }
    if (--m_nRunningThreads == 0) m_fileFinished();
}

ImportResult PcmWorkers::ImportFile(std::size_t index) const {
    const std::string& file = m_task.files[index];
    if (std::string reason = WhyNoSceneFile(file); !reason.empty()) return {ImportResult::State::Failed, reason};
    const std::wstring path = KV_ScenePane::WidePath(file);
    const DebugCapture capture;
    try {
        MsrStorage::MSR scan;
        if (!scan.Load(path.c_str(), false, true, false) || scan.GetXYZ() == nullptr)
            return {ImportResult::State::Failed, "not a pcm file, or a damaged one"};
        if (m_task.entry(m_task.control, path.c_str(), scan.GetWidth(), scan.GetHeight(), scan.GetXYZ(),
                         scan.GetConfidence(), scan.GetTrafo(), scan.GetPixelClassification(), scan.GetColorData(),
                         m_task.color, static_cast<std::int32_t>(index)))
            return {ImportResult::State::Added, TextAbout(file, capture.Text())};
    } catch (...) {  // out of memory for this file is no reason to end the others
        return {ImportResult::State::Failed, ReasonOf(file, capture.Text(), TextOfCaughtError())};
    }
    return {ImportResult::State::Failed, ReasonOf(file, capture.Text())};
}
