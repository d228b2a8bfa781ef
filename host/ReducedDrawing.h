// When drags show the objects with fewer points: by the user's choice, or for each drag of a scene that is drawn
// slowly.
#pragma once
#include <QList>
#include <QObject>

#include "KV_ScenePane/ScenePane.h"

class QAction;
class QMenu;

enum class ReducedChoice { Automatic, Always, Never };

/// "Always" is the property MoveReduced of the viewer, which the viewer's store keeps. The other two differ by a
/// setting of this program. With "Automatic" the property is on during a drag only; neither the store, nor the property
/// page, nor IsModified() of the viewer show that.
class ReducedDrawing : public QObject {
    Q_OBJECT
public:
    /// A scene is slow whose last full frame took longer, seconds.
    static constexpr double kSlowFrame = 0.1;

    explicit ReducedDrawing(QObject* parent);
    /// @param viewer  must outlive this or be replaced by null; its properties are loaded
    void SetViewer(KV_ScenePane::ScenePane* viewer);
    /// Adds the choices. @return their actions
    QList<QAction*> FillMenu(QMenu& menu);
    /// Stores the choice and applies it. Nothing happens without a viewer.
    void Choose(ReducedChoice choice);
    [[nodiscard]] ReducedChoice Choice() const;

    /// @param seconds  in place of kSlowFrame; 0 makes every scene a slow one
    void SetSlowFrame(double seconds) { m_fSlowFrame = seconds; }

    /// An input, before the viewer handles it.
    /// @param canDrag  false where a move with a button held moves nothing
    void See(const KV_ScenePane::MouseInput& input, bool canDrag);
    /// The property is on for a drag.
    [[nodiscard]] bool IsOn() const { return m_bOn; }
    /// Sets the property back before the drag ends: something else is about to read or store it.
    void End();
    /// The properties of the viewer may have been changed by others. Not while IsOn().
    void Follow();

signals:
    /// The property is about to be set for a drag. What the user has changed must be stored before.
    void AboutToStart();
    /// The user has chosen, and the property of the viewer may be another one.
    void Chosen();

private:
    void Start();
    /// Whether the last frame that showed the objects fully was slow.
    bool IsSceneSlow();
    void SetProperty(bool on);
    void ShowChoice();

    KV_ScenePane::ScenePane* m_pViewer = nullptr;
    QList<QAction*> m_actions;  // in the order of ReducedChoice
    double m_fSlowFrame = kSlowFrame;
    bool m_bAutomatic;       // with the property off: "Automatic" and not "Never"
    bool m_bAlways = false;  // the property, as Follow() has seen it
    bool m_bOn = false;
    bool m_bSlow = false;              // the scene, when it was last drawn fully
    std::uint64_t m_nFramesAtEnd = 0;  // of the viewer, when the last reduced drag ended
};
