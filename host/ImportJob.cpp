// One run after the other, each started from the event loop, so that the window repaints and can be cancelled in
// between.
#include "ImportJob.h"

#include <algorithm>
#include <thread>
#include <utility>

ImportJob::ImportJob(KV_ScenePane::ScenePane& pane, std::vector<std::string> files, const ImportSettings& settings,
                     QObject* parent)
    : QObject(parent),
      m_pane(pane),
      m_vFiles(std::move(files)),
      m_settings(settings),
      m_nThreads(std::max(std::thread::hardware_concurrency(), 1u)),
      m_vRuns(PlanImport(m_vFiles, m_nThreads)),
      m_vResults(m_vFiles.size()) {}

ImportJob::~ImportJob() { Stop(); }

void ImportJob::Start() {
    ApplySettings(m_pane.Methods(), m_settings);
    QMetaObject::invokeMethod(this, &ImportJob::NextRun, Qt::QueuedConnection);
}

void ImportJob::Cancel() {
    m_bCancelled = true;
    if (m_pWorkers) m_pWorkers->Cancel();
}

void ImportJob::Stop() {
    Cancel();
    if (m_pWorkers) EndParallelRun();
    Finish();
}

void ImportJob::NextRun() {
    if (m_bOver) return;  // queued before Stop()
    if (IsLastRunOver()) {
        Finish();
        return;
    }
    const ImportRun& run = m_vRuns[m_nNextRun++];
    const std::size_t file = run.files.front();
    emit Reading(static_cast<int>(file), !run.parallel);
    if (m_bOver) return;  // stopped by the slot
    if (run.parallel) {
        BeginParallelRun(run);
        return;
    }
    // One file, by the viewer, on this thread: the window does not react until it is imported.
    m_vResults[file] = ImportFile(m_pane.Methods(), m_vFiles[file], m_settings);
    ++m_nFinishedFiles;
    EndRun();
}

void ImportJob::BeginParallelRun(const ImportRun& run) {
    PcmWorkers::Task task;
    task.entry = EntryFor(m_settings);
    m_pane.Methods().BeginParallelImport(&task.entry.control, &task.entry.entry);
    for (const std::size_t file : run.files) task.files.push_back(m_vFiles[file]);
    // Called on the worker threads; the queue brings it to this one.
    const auto notifyThisThread = [this] {
        QMetaObject::invokeMethod(this, &ImportJob::CheckWorkers, Qt::QueuedConnection);
    };
    m_pWorkers = std::make_unique<PcmWorkers>(std::move(task), m_nThreads, notifyThisThread);
}

void ImportJob::CheckWorkers() {
    if (!m_pWorkers) return;  // queued before Stop() ended the run
    if (m_pWorkers->IsDone()) {
        EndParallelRun();
        EndRun();
        return;
    }
    const ImportRun& run = m_vRuns[m_nNextRun - 1];
    const std::size_t started = std::max<std::size_t>(m_pWorkers->StartedFiles(), 1);
    const std::size_t finished = m_nFinishedFiles + m_pWorkers->FinishedFiles();
    emit Reading(static_cast<int>(run.files[started - 1]), false);
    emit Progress(static_cast<int>(finished));
}

void ImportJob::EndRun() {
    emit Progress(static_cast<int>(m_nFinishedFiles));
    if (m_bOver) return;  // stopped by the slot
    if (IsLastRunOver()) {
        Finish();
        return;
    }
    const bool hasArrived = m_vRuns[m_nNextRun - 1].parallel || m_nFinishedFiles >= m_nNextArrival;
    if (hasArrived) m_nNextArrival = 2 * m_nFinishedFiles;
    // The first frame of new objects can take long: threads read the next files meanwhile.
    if (m_vRuns[m_nNextRun].parallel)
        NextRun();
    else
        QMetaObject::invokeMethod(this, &ImportJob::NextRun, Qt::QueuedConnection);
    if (hasArrived && !m_bOver) emit Arrived();
}

void ImportJob::EndParallelRun() {
    // A copy: the workers own the results. The viewer must not end the import before all threads have left its entry.
    const std::vector<ImportResult> results = m_pWorkers->Join();
    m_pWorkers.reset();
    m_pane.Methods().EndParallelImport();
    // The results of this run, back to the positions of their files in the whole list.
    const std::vector<std::size_t>& files = m_vRuns[m_nNextRun - 1].files;
    for (std::size_t i = 0; i < results.size(); ++i) m_vResults[files[i]] = results[i];
    m_nFinishedFiles += results.size();
}

void ImportJob::Finish() {
    if (m_bOver) return;
    m_bOver = true;
    emit Finished();
}
