// The import of point files while the window stays usable: a thread reads one file after the other, and the viewer is
// given the points of each on its own thread.
#pragma once
#include <QObject>
#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <thread>
#include <vector>

namespace KV_ScenePane {
struct PointCloud;
class _DKV_ScenePane;
}  // namespace KV_ScenePane

/// How the points of a file are shown. The viewer cannot change it later.
struct PointsLook {
    /// 0 to 1; from 0.99 on the points are opaque.
    float alpha = 1.0f;
    /// 0x00BBGGRR, for points without a colour: a light beige, as for scans.
    std::int32_t color = 0xC8D4DC;
};

/// Files that are imported together.
struct PointsRequest {
    std::vector<std::string> files;  ///< paths in bytes
    PointsLook look;
    /// The scene was empty when the files were chosen: the view is fitted to their points.
    bool fitsView = false;
};

/// The result for one file.
struct PointsResult {
    enum class State {
        NotStarted,  ///< cancelled before or during its turn
        Added,
        Failed
    };
    State state = State::NotStarted;
    /// Of the set in the viewer, when it was added.
    std::int32_t id = -1;
    std::int32_t points = 0;
    /// One line without the file's name: the reason of a failure.
    std::string reason;
};

/// Used on the thread of the viewer. At most one file is in memory, and once: the points move from the thread that
/// reads to the viewer.
class PointsJob : public QObject {
    Q_OBJECT
public:
    /// As ReadAnyPoints().
    using Reader = std::function<bool(const std::string& path, KV_ScenePane::PointCloud* cloud, std::string* reason,
                                      const std::function<bool(double)>& progress)>;

    /// The range of Progress() for one file.
    static constexpr int kStepsPerFile = 1000;

    /// @param methods  of the viewer; outlives the job
    /// @param reader   called on the thread that reads; other than ReadAnyPoints() in tests
    PointsJob(KV_ScenePane::_DKV_ScenePane& methods, PointsRequest request, QObject* parent = nullptr,
              Reader reader = {});
    /// Stops.
    ~PointsJob() override;

    /// Returns at once; files are read from here on.
    void Start();
    /// The file in progress and the later ones add nothing; Finished() is emitted soon.
    void Cancel();
    /// Cancels and waits for the thread that reads. Finished() was emitted then.
    void Stop();

    [[nodiscard]] const PointsRequest& Request() const { return m_request; }
    /// One result per file, in the order of the request; final once Finished() was emitted.
    [[nodiscard]] const std::vector<PointsResult>& Results() const { return m_vResults; }

signals:
    /// @param steps  of kStepsPerFile for each file
    void Progress(int steps);
    /// A file is read from here on. @param file  position in the request
    void Reading(int file);
    /// The viewer is given the points of a file that was read, which blocks the thread. Emitted before.
    void Adding(int file);
    /// Emitted exactly once, also after Cancel() and Stop().
    void Finished();

private:
    /// Starts the thread for the next file, or finishes when none is left or the import was cancelled.
    void NextFile();
    /// On the thread that reads.
    void ReadFile(std::size_t file);
    /// The end of that thread: EndFile() is called later, even when memory is exhausted now.
    void PostEndFile();
    /// Emits Progress() for the file that is read.
    void ReportProgress();
    /// The thread has read its file: adds the points to the viewer, unless the import was cancelled.
    void EndFile();
    void AddToViewer(PointsResult& result);
    /// Emits Finished(), once.
    void Finish();

    KV_ScenePane::_DKV_ScenePane& m_methods;
    const PointsRequest m_request;
    const Reader m_reader;
    std::vector<PointsResult> m_vResults;
    std::size_t m_nNextFile = 0;
    bool m_bOver = false;
    std::thread m_reading;
    std::atomic<bool> m_bCancelled = false;
    std::atomic<int> m_nSteps = 0;  // of the file that is read
    // Written by the thread that reads; read after it was joined.
    std::unique_ptr<KV_ScenePane::PointCloud> m_pCloud;  // null when the file could not be read
    std::string m_strReason;
};
