// Alignments in the window: the tools, the hint above the viewer, and what follows the end of one. What the tools do is
// in AlignCommands.h, what takes an alignment back in TransformCommands.h.
#include <QDockWidget>
#include <QMenu>
#include <QMenuBar>
#include <QStatusBar>

#include "AlignCommands.h"
#include "AlignHint.h"
#include "AlignToolBar.h"
#include "ClipPanel.h"
#include "CutCommands.h"
#include "MainWindow.h"
#include "ObjectList.h"
#include "ResidualPanel.h"
#include "TransformCommands.h"
#include "ViewerWidget.h"

void MainWindow::MakeAligns() {
    m_pAlignTools = new AlignToolBar;
    addToolBar(m_pAlignTools);
    m_pAligns = new AlignCommands([this] { return m_pObjects->MovingRows(); }, this);
    m_pAligns->SetObjectCount([this] { return static_cast<int>(m_pObjects->PresentObjects().size()); });
    connect(m_pAlignTools, &AlignToolBar::WayWanted, this, [this](AlignWay way) {
        m_pCuts->Cancel();
        if (const QString obstacle = ObstacleTo(way); !obstacle.isEmpty()) {
            Report(obstacle);
            FollowAlign();  // the tool that was pressed is released again
            return;
        }
        m_pAligns->Start(way);
        if (IsAligning()) m_pViewer->TakeKeyboard();
    });
    connect(m_pAlignTools, &AlignToolBar::ContinueWanted, m_pAligns, &AlignCommands::Continue);
    connect(m_pAlignTools, &AlignToolBar::DropWanted, m_pAligns, &AlignCommands::DropPoint);
    connect(m_pAlignTools, &AlignToolBar::FinishWanted, m_pAligns, &AlignCommands::Finish);
    connect(m_pAligns, &AlignCommands::AboutToStart, this, &MainWindow::PrepareAlign);
    connect(m_pAligns, &AlignCommands::Changed, this, &MainWindow::FollowAlign);
    connect(m_pAligns, &AlignCommands::Ended, this, &MainWindow::OnAlignmentEnded);
    connect(m_pAligns, &AlignCommands::Report, this, &MainWindow::Report);
    // At once: what can be used is right whenever the user can use it.
    connect(m_pViewer, &ViewerWidget::AlignmentEnded, m_pAligns, &AlignCommands::OnAlignmentDone);
    connect(m_pViewer, &ViewerWidget::Handled, m_pAligns, &AlignCommands::FollowViewer);
    connect(m_pClip, &ClipPanel::Changed, this, &MainWindow::FollowAlign);
}

bool MainWindow::IsAligning() const { return m_pAligns->IsRunning(); }

QString MainWindow::ObstacleTo(AlignWay way) const {
    if (way == AlignWay::ByHand && !m_pMouseMoves->isChecked())
        return tr("The mouse moves nothing: switch \"Mouse moves the scene\" on in the View menu.");
    for (const int row : m_pObjects->MovingRows()) {
        if (m_pObjects->IsHidden(row))
            return tr("%1 is hidden and would move unseen: show it, or uncheck \"May move\".")
                .arg(m_pObjects->NameOf(row));
    }
    return {};
}

void MainWindow::PrepareAlign(AlignWay way) {
    QStringList names;
    for (const int row : m_pObjects->MovingRows()) names << m_pObjects->NameOf(row);
    m_alignedObjects = ObjectNames(names);
    m_bAlignsColored = false;
    for (int row = 0; row < m_pObjects->ObjectCount(); ++row) {
        KV_ScenePane::ObjectInfo info;
        if (Pane()->GetObjectInfo(static_cast<std::int16_t>(row), &info) && info.hasVertexColors)
            m_bAlignsColored = true;
    }
    m_pResiduals->Clear();
    m_pTransforms->Begin(way == AlignWay::ByHand ? tr("alignment by hand") : tr("alignment by points"));
}

void MainWindow::SayWhySpaceDoesNothing() {
    if (m_pAligns->Progress() == AlignProgress{KV_ScenePane::AlignmentPhase::PickMoving, 0, 0})
        statusBar()->showMessage(tr("Space continues after the first point: click one on the objects that move."));
}

void MainWindow::FollowAlign() {
    m_pAlignTools->Show({.canAlign = Pane() != nullptr && !IsImporting() && !IsLassoRunning(),
                         .way = m_pAligns->RunningWay(),
                         .progress = m_pAligns->Progress()});
    m_pAlignHint->Show({.progress = m_pAligns->Progress(),
                        .scheme = m_mouseScheme,
                        .isPlaneShown = m_pClip->IsClipping() && m_pClip->Settings().shown,
                        .moving = m_alignedObjects,
                        .hasColors = m_bAlignsColored});
    FollowMouseUse();
}

void MainWindow::OnAlignmentEnded(const AlignOutcome& outcome) {
    (void)m_pTransforms->End();
    const QString text = SummaryOf(outcome);
    Report(text);
    if (outcome.result.pairs.empty()) return;
    m_pResiduals->Show(outcome.result, text);
    OpenPaneOf(*m_pResiduals);
}
