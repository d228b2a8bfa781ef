// The tools that align: by hand, by points, the keys of the latter, and finish.
#pragma once
#include <QIcon>
#include <QToolBar>
#include <optional>

#include "AlignProgress.h"

class QAction;
class QMenu;

/// What the tools show.
struct AlignToolState {
    bool canAlign = false;  ///< there is a viewer, and neither an import nor a lasso runs
    std::optional<AlignWay> way = {};
    AlignProgress progress = {};
};

/// Reports what the user asked for; it calls no viewer.
class AlignToolBar : public QToolBar {
    Q_OBJECT
public:
    explicit AlignToolBar(QWidget* parent = nullptr);
    /// Adds all tools to a menu, with their keys.
    void FillMenu(QMenu& menu) const;
    void Show(const AlignToolState& state);

signals:
    void WayWanted(AlignWay way);
    void ContinueWanted();
    void DropWanted();
    void FinishWanted();

private:
    QAction* MakeWay(AlignWay way, const char* name, const QString& text, const QKeySequence& keys, const QString& tip);

    /// The tool that ends says what becomes of the alignment.
    void ShowEnd(bool discards);

    const QIcon m_finishIcon, m_endIcon;
    QAction *m_pByHand, *m_pByPoints, *m_pContinue, *m_pDrop, *m_pFinish;
};
