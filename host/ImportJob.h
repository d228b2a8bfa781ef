// One import of many files while the window stays alive: pcm files on worker threads, the others in between.
#pragma once
#include <QObject>
#include <memory>
#include <string>
#include <vector>

#include "FileImport.h"
#include "ImportPlan.h"
#include "KV_ScenePane/ScenePane.h"
#include "PcmWorkers.h"

class ImportJob : public QObject {
    Q_OBJECT
public:
    /// @param pane  outlives the job; its settings must not change while the job runs
    /// @param files  bytes; the objects end in this order
    ImportJob(KV_ScenePane::ScenePane& pane, std::vector<std::string> files, const ImportSettings& settings,
              QObject* parent = nullptr);
    /// Stops.
    ~ImportJob() override;

    /// The first file is begun when the event loop comes round.
    void Start();
    /// No further file is begun; Finished() comes when those under way are done.
    void Cancel();
    /// Cancel(), and returns when the viewer has all that was finished. Finished() was emitted then.
    void Stop();

    [[nodiscard]] const std::vector<std::string>& Files() const { return m_vFiles; }
    /// One result a file; final once Finished() was emitted.
    [[nodiscard]] const std::vector<ImportResult>& Results() const { return m_vResults; }

signals:
    void Progress(int finishedFiles);
    void Finished();

private:
    void NextRun();
    void BeginParallelRun(const ImportRun& run);
    void CheckWorkers();
    void EndParallelRun();
    void Finish();

    KV_ScenePane::ScenePane& m_pane;
    const std::vector<std::string> m_vFiles;
    const ImportSettings m_settings;
    const std::vector<ImportRun> m_vRuns;
    std::vector<ImportResult> m_vResults;
    std::size_t m_nNextRun = 0;
    int m_nFinishedFiles = 0;  // of the runs that are over
    bool m_bCancelled = false, m_bOver = false;
    std::unique_ptr<PcmWorkers> m_pWorkers;  // exactly while the viewer is in a parallel import
};
