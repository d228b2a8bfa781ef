// What the tools of alignments do: an alignment from its start to its end.
#pragma once
#include <QObject>
#include <array>
#include <functional>
#include <optional>
#include <utility>
#include <vector>

#include "AlignProgress.h"
#include "AlignSummary.h"
#include "KV_ScenePane/ScenePane.h"

/// Calls the viewer.
class AlignCommands : public QObject {
    Q_OBJECT
public:
    /// @param movingRows  returns the indices of the objects that may move
    AlignCommands(std::function<std::vector<int>()> movingRows, QObject* parent);
    /// @param count  returns the number of objects in the scene; without it those of the viewer are counted
    void SetObjectCount(std::function<int()> count) { m_objectCount = std::move(count); }
    /// @param viewer  must outlive this or be replaced by null
    void SetViewer(KV_ScenePane::ScenePane* viewer);

    [[nodiscard]] bool IsRunning() const { return m_way.has_value(); }
    [[nodiscard]] std::optional<AlignWay> RunningWay() const { return m_way; }
    [[nodiscard]] const AlignProgress& Progress() const { return m_progress; }
    /// Whether the viewer acts on the key now. @param key  a key code of the viewer's events
    [[nodiscard]] bool ActsOnKey(int key) const;

    // What the user does. Nothing happens without a viewer.
    /// Another alignment that runs is finished before. Reports what to change when the objects do not allow it.
    void Start(AlignWay way);
    /// Keeps what was moved.
    void Finish();
    /// By points: on to the objects that stay.
    void Continue();
    /// By points: without the last one of the phase.
    void DropPoint();

    // What happened.
    /// The viewer has handled input: Progress() follows it.
    void FollowViewer();
    void OnAlignmentDone();

signals:
    /// The objects will be moved from where they are now.
    void AboutToStart(AlignWay way);
    /// An alignment was started or has ended, or Progress() has changed.
    void Changed();
    /// Emitted before Changed(). Every AboutToStart() is followed by one.
    void Ended(const AlignOutcome& outcome);
    /// What the user must know, one line.
    void Report(const QString& text);

private:
    struct Place {
        int row = 0;
        Matrix4 transform{};
        std::array<double, 3> centre{};  ///< of the box
    };

    /// Where the objects of these rows are.
    [[nodiscard]] std::vector<Place> PlacesOf(const std::vector<int>& rows) const;
    [[nodiscard]] AlignOutcome Outcome(AlignWay way) const;
    void PressKey(std::int32_t key);

    const std::function<std::vector<int>()> m_movingRows;
    std::function<int()> m_objectCount;
    KV_ScenePane::ScenePane* m_pViewer = nullptr;
    std::optional<AlignWay> m_way;
    AlignProgress m_progress;
    std::vector<Place> m_vPlaces;  ///< at the start
};
