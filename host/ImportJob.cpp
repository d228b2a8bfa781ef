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
      m_vRuns(PlanImport(m_vFiles)),
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
    if (m_bCancelled || m_nNextRun == m_vRuns.size()) {
        Finish();
        return;
    }
    const ImportRun& run = m_vRuns[m_nNextRun++];
    if (run.parallel) {
        BeginParallelRun(run);
        return;
    }
    // One file, by the viewer, on this thread: the window does not react until it is imported.
    const std::size_t file = run.files.front();
    m_vResults[file] = ImportFile(m_pane.Methods(), m_vFiles[file], m_settings.color);
    emit Progress(++m_nFinishedFiles);
    QMetaObject::invokeMethod(this, &ImportJob::NextRun, Qt::QueuedConnection);
}

void ImportJob::BeginParallelRun(const ImportRun& run) {
    PcmWorkers::Task task;
    task.entry.color = static_cast<std::uint32_t>(m_settings.color);
    m_pane.Methods().BeginParallelImport(&task.entry.control, &task.entry.entry);
    for (const std::size_t file : run.files) task.files.push_back(m_vFiles[file]);
    // Called on the worker threads; the queue brings it to this one.
    const auto notifyThisThread = [this] {
        QMetaObject::invokeMethod(this, &ImportJob::CheckWorkers, Qt::QueuedConnection);
    };
    m_pWorkers = std::make_unique<PcmWorkers>(std::move(task), std::thread::hardware_concurrency(), notifyThisThread);
}

void ImportJob::CheckWorkers() {
    if (!m_pWorkers) return;  // queued before Stop() ended the run
    if (!m_pWorkers->IsDone()) {
        emit Progress(m_nFinishedFiles + static_cast<int>(m_pWorkers->FinishedFiles()));
        return;
    }
    EndParallelRun();
    emit Progress(m_nFinishedFiles);
    NextRun();
}

void ImportJob::EndParallelRun() {
    // A copy: the workers own the results. The viewer must not end the import before all threads have left its entry.
    const std::vector<ImportResult> results = m_pWorkers->Join();
    m_pWorkers.reset();
    m_pane.Methods().EndParallelImport();
    // The results of this run, back to the positions of their files in the whole list.
    const std::vector<std::size_t>& files = m_vRuns[m_nNextRun - 1].files;
    for (std::size_t i = 0; i < results.size(); ++i) m_vResults[files[i]] = results[i];
    m_nFinishedFiles += static_cast<int>(results.size());
}

void ImportJob::Finish() {
    if (m_bOver) return;
    m_bOver = true;
    emit Finished();
}
