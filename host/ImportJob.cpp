// One run after the other, each started from the event loop, so that the window repaints and can be cancelled in
// between.
#include "ImportJob.h"

#include <algorithm>
#include <thread>
#include <utility>

#include "CaughtError.h"
#include "DebugCapture.h"
#include "FileLook.h"
#include "ForeignImport.h"
#include "ForeignReader.h"
#include "MessageTable.h"
#include "SceneFile.h"

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
    if (m_pWorkers) EndWorkers();
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
    emit Reading(static_cast<int>(file), run.kind == ImportRun::Kind::Viewer);
    if (m_bOver) return;  // stopped by the slot
    switch (run.kind) {
        case ImportRun::Kind::Viewer:
            ImportAlone(file);
            break;
        case ImportRun::Kind::Grids:
            BeginGridRun(run);
            break;
        case ImportRun::Kind::Process:
            BeginProcessRun(run.files);
            break;
    }
}

void ImportJob::ImportAlone(std::size_t file) {
    // By the viewer, on this thread: the window does not react until it is imported.
    ImportResult& result = m_vResults[file];
    result = ImportByViewer(m_pane.Methods(), m_vFiles[file], m_settings);
    if (result.state == ImportResult::State::Failed && HasSecondReader(m_vFiles[file]) && !ReaderProgram().empty()) {
        BeginProcessRun({file});
        return;
    }
    ++m_nFinishedFiles;
    EndRun();
}

void ImportJob::BeginGridRun(const ImportRun& run) {
    GridEntry entry = EntryFor(m_settings);
    m_pane.Methods().BeginParallelImport(&entry.control, &entry.entry);
    m_vFound.clear();
    const auto places = static_cast<std::size_t>(FreePlaces(m_pane.Methods()));
    StartWorkers(run.files, [this, entry, places](std::size_t i) {
        if (i >= places)
            m_vRunResults[i] = {ImportResult::State::Failed, kSceneIsFull};
        else
            m_vRunResults[i] = ImportGridFile(entry, m_vFiles[m_vRunFiles[i]], static_cast<std::int32_t>(i));
    });
}

void ImportJob::BeginProcessRun(const std::vector<std::size_t>& files) {
    m_vFound.clear();
    m_vFound.resize(files.size());
    StartWorkers(files, [this](std::size_t i) {
        const std::string& file = m_vFiles[m_vRunFiles[i]];
        try {
            m_vRunResults[i] = {ImportResult::State::Failed, ImportRefusal(file)};
            if (!m_vRunResults[i].text.empty()) return;
            m_vFound[i] = RunReader(file, [this] { return m_bCancelled.load(); });
        } catch (...) {  // exhausted memory for one file must not end the import of the others
            m_vRunResults[i] = {ImportResult::State::Failed, FailureReason(file, {}, TextOfCaughtError())};
        }
    });
}

void ImportJob::StartWorkers(std::vector<std::size_t> files, FileWorkers::Work work) {
    m_vRunFiles = std::move(files);
    m_vRunResults.assign(m_vRunFiles.size(), {});
    // Called on the worker threads; the queue brings it to this one.
    const auto notifyThisThread = [this] {
        QMetaObject::invokeMethod(this, &ImportJob::CheckWorkers, Qt::QueuedConnection);
    };
    m_pWorkers = std::make_unique<FileWorkers>(m_vRunFiles.size(), m_nThreads, std::move(work), notifyThisThread);
}

void ImportJob::CheckWorkers() {
    if (!m_pWorkers) return;  // queued before Stop() ended the run
    if (m_pWorkers->IsDone()) {
        EndWorkers();
        EndRun();
        return;
    }
    const std::size_t started = std::max<std::size_t>(m_pWorkers->StartedFiles(), 1);
    const std::size_t finished = m_nFinishedFiles + m_pWorkers->FinishedFiles();
    emit Reading(static_cast<int>(m_vRunFiles[started - 1]), false);
    emit Progress(static_cast<int>(finished));
}

void ImportJob::EndRun() {
    using Kind = ImportRun::Kind;
    emit Progress(static_cast<int>(m_nFinishedFiles));
    if (m_bOver) return;  // stopped by the slot
    if (IsLastRunOver()) {
        Finish();
        return;
    }
    const bool hasArrived = m_vRuns[m_nNextRun - 1].kind != Kind::Viewer || m_nFinishedFiles >= m_nNextArrival;
    if (hasArrived) m_nNextArrival = 2 * m_nFinishedFiles;
    // The first frame of new objects can take long: threads read the next files meanwhile.
    if (m_vRuns[m_nNextRun].kind != Kind::Viewer)
        NextRun();
    else
        QMetaObject::invokeMethod(this, &ImportJob::NextRun, Qt::QueuedConnection);
    if (hasArrived && !m_bOver) emit Arrived();
}

void ImportJob::EndWorkers() {
    m_pWorkers->Join();
    m_pWorkers.reset();
    if (m_vFound.empty())
        m_pane.Methods().EndParallelImport();  // all threads have left its entry
    else
        AddReaderResults();
    // The results of this run, back to the positions of their files in the whole list.
    for (std::size_t i = 0; i < m_vRunFiles.size(); ++i) m_vResults[m_vRunFiles[i]] = std::move(m_vRunResults[i]);
    m_nFinishedFiles += m_vRunFiles.size();
}

void ImportJob::AddReaderResults() {
    for (std::size_t i = 0; i < m_vRunFiles.size(); ++i) {
        ImportResult& result = m_vRunResults[i];
        // Refused before the process was started, or not started at all.
        if (!result.text.empty() || result.state == ImportResult::State::NotStarted) continue;
        if (m_vFound[i].text == kCancelled)
            result = {};
        else
            result = AddReaderResult(m_pane.Methods(), m_vFiles[m_vRunFiles[i]], std::exchange(m_vFound[i], {}));
    }
    m_vFound.clear();
}

void ImportJob::Finish() {
    if (m_bOver) return;
    m_bOver = true;
    emit Finished();
}
