// One import of many files while the window stays usable: worker threads read what is read beside the viewer, the
// viewer imports the other files between two passes of the event loop.
#pragma once
#include <QObject>
#include <atomic>
#include <memory>
#include <string>
#include <vector>

#include "FileImport.h"
#include "FileWorkers.h"
#include "ImportPlan.h"
#include "KV_ScenePane/ScenePane.h"
#include "ReaderResult.h"

/// Files are imported in runs (ImportPlan.h), one after the other. Used on the thread of the viewer.
class ImportJob : public QObject {
    Q_OBJECT
public:
    /// @param pane      outlives the job; its import settings must not change while the job runs
    /// @param files     paths in bytes; the objects get this order
    ImportJob(KV_ScenePane::ScenePane& pane, std::vector<std::string> files, const ImportSettings& settings,
              QObject* parent = nullptr);
    /// Stops.
    ~ImportJob() override;

    /// Returns at once; the first file is started by the event loop.
    void Start();
    /// No further file is started, and scenepane-read is ended; Finished() is emitted when the others in progress are
    /// done.
    void Cancel();
    /// Cancels and waits for the files in progress. All that was finished is in the viewer then, and Finished() was
    /// emitted.
    void Stop();

    [[nodiscard]] const std::vector<std::string>& Files() const { return m_vFiles; }
    /// One result per file, in their order; final once Finished() was emitted.
    [[nodiscard]] const std::vector<ImportResult>& Results() const { return m_vResults; }

    /// The files of the runs that are over: the results before this position are final.
    [[nodiscard]] std::size_t FinishedFiles() const { return m_nFinishedFiles; }

signals:
    /// A file is read from here on. The viewer reads the files of some types on this thread, which is then blocked.
    /// @param file  position in the list
    void Reading(int file, bool isBlocking);
    /// @param finishedFiles  of all files of the job, added or not
    void Progress(int finishedFiles);
    /// Objects of the files before FinishedFiles() have joined those in the viewer, visible; others will follow.
    /// Emitted in the call that has added them, but for files that the viewer reads only after the first one and
    /// whenever their number has doubled: it is the time for a frame. If threads read the next files they do so
    /// already.
    void Arrived();
    /// Emitted exactly once, also after Cancel() and Stop().
    void Finished();

private:
    /// Starts the next run, or finishes when none is left or the import was cancelled.
    void NextRun();
    void ImportAlone(std::size_t file);
    void BeginGridRun(const ImportRun& run);
    /// @param files  positions in the list
    void BeginProcessRun(const std::vector<std::size_t>& files);
    void StartWorkers(std::vector<std::size_t> files, FileWorkers::Work work);
    /// After each run: starts the next one, or finishes.
    void EndRun();
    [[nodiscard]] bool IsLastRunOver() const { return m_bCancelled || m_nNextRun == m_vRuns.size(); }
    /// Reports the progress of the workers; ends their run when all of them are done.
    void CheckWorkers();
    /// Waits for the workers and lets the viewer add their objects.
    void EndWorkers();
    void AddReaderResults();
    /// Emits Finished(), once.
    void Finish();

    KV_ScenePane::ScenePane& m_pane;
    const std::vector<std::string> m_vFiles;
    const ImportSettings m_settings;
    const unsigned m_nThreads;  // that read files
    const std::vector<ImportRun> m_vRuns;
    std::vector<ImportResult> m_vResults;
    std::size_t m_nNextRun = 0;        // position in m_vRuns
    std::size_t m_nFinishedFiles = 0;  // of the runs that are over
    std::size_t m_nNextArrival = 1;    // Arrived() is due for files of the viewer
    std::atomic<bool> m_bCancelled = false;
    bool m_bOver = false;
    // The run of the workers. They write into the results of their files alone; these are read after they were joined.
    std::vector<std::size_t> m_vRunFiles;     // positions in the list
    std::vector<ImportResult> m_vRunResults;  // one per file
    std::vector<ReaderResult> m_vFound;       // one per file of a run of processes, else empty
    std::unique_ptr<FileWorkers> m_pWorkers;
};
