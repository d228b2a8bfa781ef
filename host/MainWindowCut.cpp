// Cuts in the window: the tools, and what follows a lasso, a cut and an undo. What the tools do is in CutCommands.h.
#include <QDockWidget>
#include <QLabel>
#include <QMenu>
#include <QMenuBar>
#include <QStatusBar>

#include "AnimationPanel.h"
#include "ClipPanel.h"
#include "CutCommands.h"
#include "CutToolBar.h"
#include "MainWindow.h"
#include "MessagePane.h"
#include "ObjectList.h"
#include "ViewerWidget.h"

void MainWindow::MakeCuts() {
    m_pCutTools = new CutToolBar(StoredLasso());
    addToolBar(m_pCutTools);
    m_pCuts = new CutCommands(*m_pObjects, m_pCutTools->Settings(), this);
    m_pCuts->SetClipping([this] { return m_pClip->IsClipping(); });
    connect(m_pCutTools, &CutToolBar::WayWanted, m_pCuts, &CutCommands::Start);
    connect(m_pCutTools, &CutToolBar::CancelWanted, m_pCuts, &CutCommands::Cancel);
    connect(m_pCutTools, &CutToolBar::UndoWanted, m_pCuts, &CutCommands::Undo);
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
    connect(m_pCuts, &CutCommands::Report, this, &MainWindow::ReportCut);
    // Permanent: no message hides it while it holds.
    m_pLassoHint = new QLabel(tr("click to add, right click to cut, Esc to cancel"));
    m_pLassoHint->setObjectName("lassoHint");
    QFont font = m_pLassoHint->font();
    font.setBold(true);
    m_pLassoHint->setFont(font);
    statusBar()->insertPermanentWidget(0, m_pLassoHint);
    m_pLassoHint->hide();
}

void MainWindow::MakeCutMenu() { m_pCutTools->FillMenu(*menuBar()->addMenu(tr("&Edit"))); }

bool MainWindow::IsLassoRunning() const { return m_pCuts->RunningWay().has_value(); }

void MainWindow::FollowCuts() {
    m_pCutTools->Show({.canCut = Pane() != nullptr && !IsImporting(),
                       .way = m_pCuts->RunningWay(),
                       .undoSteps = m_pCuts->UndoSteps()});
    setWindowModified(m_pCuts->HaveUnsaved());
    if (m_bLassoRuns == IsLassoRunning()) return;
    m_bLassoRuns = IsLassoRunning();
    FollowLasso();
}

void MainWindow::FollowLasso() {
    m_pViewer->SetLassoRuns(m_bLassoRuns);
    m_pLassoHint->setVisible(m_bLassoRuns);
    if (m_bLassoRuns) statusBar()->clearMessage();
    EnableActions();
    // A dock and not its contents, which know by themselves when they can be used.
    for (QDockWidget* const dock : findChildren<QDockWidget*>()) {
        if (dock->widget() != m_pMessages && dock->objectName() != "events") dock->setEnabled(!m_bLassoRuns);
    }
    if (Pane() == nullptr) return;
    KV_ScenePane::_DKV_ScenePane& methods = Pane()->Methods();
    if (m_bLassoRuns) {
        MovePickPoint(-1);  // Escape would cancel both
        // The drag of a needle's head has precedence over a lasso, and a delayed press would lose its corner.
        m_bNeedlesOfMouse = methods.GetNeedlePickingMode() != 0;
        if (m_bNeedlesOfMouse) methods.SetNeedlePickingMode(KV_ScenePane::kVariantFalse);
        if (m_mouseScheme == MouseScheme::Delayed) methods.SetIGDRotation(0);
        return;
    }
    if (m_bNeedlesOfMouse) methods.SetNeedlePickingMode(KV_ScenePane::kVariantTrue);
    if (m_mouseScheme == MouseScheme::Delayed) methods.SetIGDRotation(1);
    m_pAnimation->ApplySpacebar();
    // What was opened meanwhile. Queued: this may be a call from inside the viewer.
    QMetaObject::invokeMethod(
        this,
        [this] {
            OpenWaitingFiles();
            OpenWaitingPoints();
            AskForPointsLook();
        },
        Qt::QueuedConnection);
}

void MainWindow::FollowReplacedObjects(const std::vector<int>& newIndex) {
    RenumberPicks([&newIndex](int object) {
        const auto i = static_cast<std::size_t>(object);
        return i < newIndex.size() ? newIndex[i] : -1;
    });
    m_pClip->FollowScene();
}

void MainWindow::ReportCut(const QString& text) {
    m_pMessages->AddText(text);  // the next menu that opens clears the status bar
    statusBar()->showMessage(text.section('\n', -1));
}

void MainWindow::AskToClear() {
    if (Pane() != nullptr && m_pCuts->AskAboutUnsaved(tr("Clear the scene"))) ClearScene();
}

void MainWindow::AskToDelete(int index) {
    if (Pane() != nullptr && m_pCuts->AskAboutUnsaved(tr("Delete the object"), index)) DeleteObject(index);
}
