// Cuts in the window: the tools, and what follows a lasso, a cut and an undo. What the tools do is in CutCommands.h.
#include <QLabel>
#include <QMenu>
#include <QMenuBar>
#include <QStatusBar>

#include "ClipPanel.h"
#include "CutCommands.h"
#include "CutToolBar.h"
#include "DeletionCommands.h"
#include "MainWindow.h"
#include "ObjectList.h"
#include "StatusLine.h"
#include "TransformCommands.h"
#include "ViewerWidget.h"

void MainWindow::MakeCuts() {
    m_pCutTools = new CutToolBar(StoredLasso());
    addToolBar(m_pCutTools);
    m_pCuts = new CutCommands(*m_pObjects, m_pCutTools->Settings(), this);
    m_pCuts->SetClipping([this] { return m_pClip->IsClipping(); });
    connect(m_pCutTools, &CutToolBar::WayWanted, m_pCuts, &CutCommands::Start);
    connect(m_pCutTools, &CutToolBar::CancelWanted, m_pCuts, &CutCommands::Cancel);
    connect(m_pCutTools, &CutToolBar::SaveWanted, m_pCuts, &CutCommands::Save);
    connect(m_pCutTools, &CutToolBar::ColorsChanged, this, [this] {
        m_pCuts->SetColors(m_pCutTools->Settings());
        StoreLasso(m_pCutTools->Settings());
    });
    // At once: list, picks and tools are equal to the viewer whenever the user can use either.
    connect(m_pViewer, &ViewerWidget::CutAboutToApply, m_pCuts, &CutCommands::OnCutAboutToApply);
    connect(m_pViewer, &ViewerWidget::LassoEnded, m_pCuts, &CutCommands::OnLassoEnded);
    connect(m_pCuts, &CutCommands::Changed, this, &MainWindow::FollowCuts);
    connect(m_pCuts, &CutCommands::ObjectsReplaced, this, &MainWindow::FollowReplacedObjects);
    connect(m_pCuts, &CutCommands::Report, this, &MainWindow::Report);
    // Permanent: no message hides it while it holds.
    m_pLassoHint = new QLabel(tr("click to add, right click to cut, Esc to cancel"));
    m_pLassoHint->setObjectName("lassoHint");
    QFont font = m_pLassoHint->font();
    font.setBold(true);
    m_pLassoHint->setFont(font);
    statusBar()->insertPermanentWidget(0, m_pLassoHint);
    m_pLassoHint->hide();
}

bool MainWindow::IsLassoRunning() const { return m_pCuts->RunningWay().has_value(); }

void MainWindow::FollowCuts() {
    m_pCutTools->Show({.canCut = Pane() != nullptr && !IsImporting() && !IsAligning(),
                       .way = m_pCuts->RunningWay(),
                       .undoSteps = m_pCuts->UndoSteps(),
                       .deletedObjects = m_pDeletions != nullptr ? m_pDeletions->UndoCount() : 0});
    if (m_pDeletions != nullptr && !m_pDeletions->CanUndo()) m_pStatus->WithdrawUndo();
    m_pTransforms->Follow();
    FollowMouseUse();
}

void MainWindow::FollowReplacedObjects(const std::vector<int>& newIndex) {
    RenumberPicks(newIndex);
    m_pTransforms->OnObjectsReplaced();
    m_pClip->FollowScene();
}
