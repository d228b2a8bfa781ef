// The tools that cut: six ways to draw a lasso, cancel, undo, save, and the tints of the freehand lasso.
#pragma once
#include <QList>
#include <QToolBar>
#include <cstdint>
#include <optional>

#include "KV_ScenePane/Cutting.h"
#include "Settings.h"

class QAction;
class QMenu;

/// What the tools show.
struct CutToolState {
    bool canCut = false;                                     ///< there is a viewer, and no import runs
    std::optional<KV_ScenePane::SegmentationMode> way = {};  ///< of the lasso that is drawn
    int undoSteps = 0;
    int deletedObjects = 0;  ///< that undo restores; 0: it takes a cut back
};

/// Reports what the user asked for; it calls no viewer.
class CutToolBar : public QToolBar {
    Q_OBJECT
public:
    /// @param settings  shown first; emits nothing
    explicit CutToolBar(const LassoSettings& settings, QWidget* parent = nullptr);
    [[nodiscard]] const LassoSettings& Settings() const { return m_settings; }
    /// In the order of SegmentationMode.
    [[nodiscard]] const QList<QAction*>& Ways() const { return m_ways; }
    // Each tool is in one of three menus, with its keys.
    /// Adds the ways, and the end of a lasso.
    void FillMenu(QMenu& menu) const;
    /// Adds undo.
    void FillEditMenu(QMenu& menu) const;
    /// Adds save.
    void FillFileMenu(QMenu& menu) const;
    void Show(const CutToolState& state);

signals:
    void WayWanted(KV_ScenePane::SegmentationMode way);
    void CancelWanted();
    void UndoWanted();
    void SaveWanted();
    /// Settings() has changed.
    void ColorsChanged();

private:
    void MakeWays();
    void MakeCommands();
    /// @param name  "Inside" or "Outside", as the viewer calls the tint: part of the names of both controls
    /// @param part  of the scene, as a part of a sentence
    void MakeTint(const QString& name, const QString& title, const QString& part, std::int32_t LassoSettings::*color,
                  int LassoSettings::*opacity);

    LassoSettings m_settings;
    QList<QAction*> m_ways;
    QAction *m_pCancel = nullptr, *m_pUndo = nullptr, *m_pSave = nullptr;
};
