// One file after the other, each read by a thread of its own, which has ended before the viewer is given the points.
#include "PointsJob.h"

#include <chrono>
#include <new>
#include <stdexcept>
#include <utility>

#include "CaughtError.h"
#include "ForeignImport.h"
#include "MarkerFiles.h"

PointsJob::PointsJob(KV_ScenePane::_DKV_ScenePane& methods, PointsRequest request, QObject* parent, Reader reader)
    : QObject(parent),
      m_methods(methods),
      m_request(std::move(request)),
      m_reader(reader ? std::move(reader) : ReadAnyPoints),
      m_vResults(m_request.files.size()) {}

PointsJob::~PointsJob() { Stop(); }

void PointsJob::Start() { QMetaObject::invokeMethod(this, &PointsJob::NextFile, Qt::QueuedConnection); }

void PointsJob::Cancel() { m_bCancelled = true; }

void PointsJob::Stop() {
    Cancel();
    if (m_reading.joinable()) m_reading.join();
    m_pCloud.reset();
    Finish();
}

void PointsJob::NextFile() {
    if (m_bOver) return;  // queued before Stop()
    if (m_bCancelled || m_nNextFile == m_request.files.size()) {
        Finish();
        return;
    }
    m_nSteps = 0;
    emit Reading(static_cast<int>(m_nNextFile));
    const std::size_t file = m_nNextFile++;
    try {
        m_reading = std::thread(&PointsJob::ReadFile, this, file);
    } catch (...) {  // the system has no further thread
        m_vResults[file] = {PointsResult::State::Failed, -1, 0, TextOfCaughtError()};
        Start();  // goes on with the next file
    }
}

void PointsJob::ReadFile(std::size_t file) {
    const auto progress = [this](double part) {
        const auto steps = static_cast<int>(part * kStepsPerFile);
        // One call in the queue per step, whatever the number of calls here.
        if (m_nSteps.exchange(steps) != steps)
            QMetaObject::invokeMethod(this, &PointsJob::ReportProgress, Qt::QueuedConnection);
        return !m_bCancelled;
    };
    m_strReason.clear();
    try {
        m_pCloud = std::make_unique<KV_ScenePane::PointCloud>();
        if (!m_reader(m_request.files[file], m_pCloud.get(), &m_strReason, progress)) m_pCloud.reset();
    } catch (...) {  // exhausted memory for one file must not end the program
        m_pCloud.reset();
        m_strReason = TextOfCaughtError();
    }
    PostEndFile();
}

void PointsJob::PostEndFile() {
    for (;;) {
        try {
            QMetaObject::invokeMethod(this, &PointsJob::EndFile, Qt::QueuedConnection);
            return;
        } catch (const std::bad_alloc&) {
            // The import would never end without the call: the points are given up for it.
            m_pCloud.reset();
            m_strReason = "no memory";  // short enough to need none
            std::this_thread::sleep_for(std::chrono::milliseconds(10));
        }
    }
}

void PointsJob::ReportProgress() {
    if (m_bOver || m_bCancelled) return;
    emit Progress(static_cast<int>(m_nNextFile - 1) * kStepsPerFile + m_nSteps);
}

void PointsJob::EndFile() {
    if (m_bOver) return;  // queued before Stop()
    m_reading.join();
    if (!m_bCancelled) {
        PointsResult& result = m_vResults[m_nNextFile - 1];
        AddToViewer(result);
        m_nSteps = kStepsPerFile;
        ReportProgress();
    }
    m_pCloud.reset();
    NextFile();
}

void PointsJob::AddToViewer(PointsResult& result) {
    try {
        if (!m_pCloud) throw std::runtime_error(m_strReason);
        emit Adding(static_cast<int>(m_nNextFile - 1));
        const std::size_t points = m_pCloud->xyz.size() / 3;
        // Moved: a copy of a large cloud would double the memory of the import.
        result.id = AddDrawnPoints(m_methods, std::move(*m_pCloud), m_request.look.color, m_request.look.alpha);
        result.points = static_cast<std::int32_t>(points);
        result.state = PointsResult::State::Added;
    } catch (...) {
        result.state = PointsResult::State::Failed;
        result.reason = TextOfCaughtError();
    }
}

void PointsJob::Finish() {
    if (m_bOver) return;
    m_bOver = true;
    emit Finished();
}
