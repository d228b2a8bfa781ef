// The first frames of new objects. A frame uploads what it shows for the first time, so the objects are shown a few per
// pass of the event loop: the user sees progress and can cancel.
#pragma once
#include <QObject>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <optional>

#include "ArrivalFit.h"
#include "KV_ScenePane/ScenePane.h"

/// Objects wait in the order in which they were added. A pass shows some of them and draws one frame, whose cost grows
/// with all that is visible. Each frame therefore shows up to kGrowth times the triangles that are visible already (or
/// one object): the frames are few, and together they cost about one and a half frames of the whole scene. Used on the
/// thread of the viewer.
class ScenePreparation : public QObject {
    Q_OBJECT
public:
    static constexpr double kGrowth = 2.0;

    /// @param pane            outlives the preparation, or Stop() is called before it ends
    /// @param shownTriangles  visible in the scene so far
    /// @param fit             fits the view in each pass to the objects that were added; empty: the view is not changed
    ScenePreparation(KV_ScenePane::ScenePane& pane, std::int64_t shownTriangles, std::optional<ArrivalFit> fit,
                     QObject* parent = nullptr);

    /// An object that the viewer has and that no frame has shown yet. It waits, visible until the next call of another
    /// method, which must come before a frame. Emits Waiting().
    void Add(int index, std::int64_t triangles);
    /// Hides all objects that wait.
    void Hide();
    /// Shows objects if there are enough for a frame, kGrowth times the triangles that are visible; else hides them.
    /// More come later.
    void ShowArrived();
    /// No object is added any more: shows all that wait, in this pass and in later ones.
    void ShowRest();
    /// What waits, or is added later, stays in the scene, hidden.
    void Cancel();
    /// The viewer may be gone: it is not called any more. What waits is neither shown nor hidden.
    void Stop();

    [[nodiscard]] int Count() const { return m_nAdded; }
    /// Objects that were in a frame.
    [[nodiscard]] int DrawnCount() const { return m_nDrawn; }
    [[nodiscard]] int ShownCount() const { return m_nAdded - static_cast<int>(m_waiting.size()); }
    [[nodiscard]] bool IsCancelled() const { return m_bCancelled; }

signals:
    void Waiting(int index);
    /// The object is visible from here on; its frame follows.
    void Shown(int index);
    /// A frame will be drawn, which blocks the thread.
    void AboutToDraw();
    /// The frame was drawn, or has failed.
    void Drawn();
    /// A frame was not drawn. What waits stays hidden. @param reason  one line
    void Failed(const QString& reason);
    /// After ShowRest() and the last frame, or the end by a failure, Cancel() or Stop(). Emitted exactly once.
    void Finished();

private:
    struct Object {
        int index = 0;
        std::int64_t triangles = 0;
        bool isHidden = false;
    };

    void Pass();
    /// With all objects visible that wait.
    void FitToAll();
    /// How many of the objects that wait the next frame shows.
    [[nodiscard]] std::size_t CountForPass() const;
    /// How many triangles it should show for the first time.
    [[nodiscard]] double TrianglesForPass() const;
    void ShowFirst(std::size_t count);
    /// @return whether it was drawn
    bool Draw();
    void SetVisible(Object& object, bool visible);
    void PassLater();
    void Finish();

    KV_ScenePane::ScenePane& m_pane;
    std::optional<ArrivalFit> m_fit;
    std::deque<Object> m_waiting;
    std::int64_t m_nShownTriangles = 0, m_nWaitingTriangles = 0;  // all visible ones of the scene; of what waits
    int m_nAdded = 0, m_nDrawn = 0;                               // objects
    bool m_bFits = false;                                         // objects were added since the last fit
    bool m_bComplete = false;                                     // after ShowRest()
    bool m_bGivenUp = false;  // nothing more is shown: it was cancelled or stopped, or a frame failed
    bool m_bCancelled = false, m_bStopped = false, m_bOver = false;
    bool m_bInPass = false;  // a message box of the viewer runs the event loop inside a frame
};
