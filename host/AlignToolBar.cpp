// The tools are actions, which the menu shows, too.
#include "AlignToolBar.h"

#include <QAction>
#include <QMenu>

#include "AlignIcons.h"
#include "ToolAction.h"

AlignToolBar::AlignToolBar(QWidget* parent)
    : QToolBar(parent), m_finishIcon(AlignFinishIcon()), m_endIcon(AlignEndIcon()) {
    setObjectName("alignments");
    setWindowTitle(tr("Alignment tools"));
    setIconSize({kToolIconSide, kToolIconSide});
    m_pByHand = MakeWay(AlignWay::ByHand, "alignByHand", tr("Align by &hand"), Qt::Key_H,
                        tr("turn and move the objects that may move with the mouse"));
    m_pByPoints = MakeWay(AlignWay::ByPoints, "alignByPoints", tr("Align by &points"), Qt::Key_A,
                          tr("pick points on the objects that may move, then the same points on the others"));
    m_pContinue = MakeToolAction(this, "alignContinue", AlignContinueIcon(), tr("&Continue on the objects that stay"),
                                 Qt::Key_Space, tr("ends the picks on the objects that move"));
    connect(m_pContinue, &QAction::triggered, this, &AlignToolBar::ContinueWanted);
    m_pDrop = MakeToolAction(this, "alignDrop", AlignDropIcon(), tr("&Drop the last point"), Qt::Key_Delete,
                             tr("removes the point that was picked last"));
    connect(m_pDrop, &QAction::triggered, this, &AlignToolBar::DropWanted);
    m_pFinish = MakeToolAction(this, "alignFinish", m_finishIcon, {}, Qt::Key_Escape, {});
    connect(m_pFinish, &QAction::triggered, this, &AlignToolBar::FinishWanted);
    addActions({m_pByHand, m_pByPoints, m_pContinue, m_pDrop, m_pFinish});
    Show({});
}

QAction* AlignToolBar::MakeWay(AlignWay way, const char* name, const QString& text, const QKeySequence& keys,
                               const QString& tip) {
    QAction* const action = MakeToolAction(this, name, AlignWayIcon(way), text, keys, tip);
    action->setCheckable(true);
    // The check mark follows the viewer in Show(). A second click on the way that runs finishes it.
    connect(action, &QAction::triggered, this, [this, way](bool checked) {
        if (checked)
            emit WayWanted(way);
        else
            emit FinishWanted();
    });
    return action;
}

void AlignToolBar::FillMenu(QMenu& menu) const {
    menu.addActions({m_pByHand, m_pByPoints});
    menu.addSeparator();
    menu.addActions({m_pContinue, m_pDrop, m_pFinish});
}

void AlignToolBar::Show(const AlignToolState& state) {
    using KV_ScenePane::AlignmentPhase;
    m_pByHand->setEnabled(state.canAlign);
    m_pByPoints->setEnabled(state.canAlign);
    m_pByHand->setChecked(state.way == AlignWay::ByHand);
    m_pByPoints->setChecked(state.way == AlignWay::ByPoints);
    const AlignProgress& progress = state.progress;
    const bool picksMoving = progress.phase == AlignmentPhase::PickMoving;
    const bool picksFixed = progress.phase == AlignmentPhase::PickFixed;
    m_pContinue->setEnabled(picksMoving && progress.moving > 0);
    m_pDrop->setEnabled((picksMoving && progress.moving > 0) || (picksFixed && progress.fixed > 0));
    m_pFinish->setEnabled(state.way.has_value());
    ShowEnd(state.way == AlignWay::ByPoints);
}

void AlignToolBar::ShowEnd(bool discards) {
    m_pFinish->setIcon(discards ? m_endIcon : m_finishIcon);
    m_pFinish->setText(discards ? tr("&End without moving") : tr("&Finish the alignment"));
    SetToolTips(*m_pFinish, discards ? tr("drops the points") : tr("the objects stay where they are"));
}
