// The panes around the viewer, and which of them call it.
#include <QDockWidget>
#include <QHBoxLayout>
#include <QMenu>
#include <QPushButton>

#include "AlignCommands.h"
#include "AnimationPanel.h"
#include "ClipPanel.h"
#include "CutCommands.h"
#include "DecorationPanel.h"
#include "DeletionCommands.h"
#include "EventPane.h"
#include "LogoPanel.h"
#include "MainWindow.h"
#include "MarkerPanel.h"
#include "MessagePane.h"
#include "NeedlePanel.h"
#include "ObjectColors.h"
#include "ObjectCommands.h"
#include "ObjectList.h"
#include "PanelArea.h"
#include "PropertyDialog.h"
#include "ResidualPanel.h"
#include "TransformCommands.h"
#include "TransformPanel.h"
#include "ViewerWidget.h"
#include "WindowShell.h"

namespace {

/// The messages, and at their right, where it costs no line, a button that clears them.
QWidget* WithClearButton(MessagePane* messages) {
    auto* const pane = new QWidget;
    auto* const clear = new QPushButton(MainWindow::tr("Clear"));
    clear->setObjectName("clearMessages");
    QObject::connect(clear, &QPushButton::clicked, messages, &QPlainTextEdit::clear);
    auto* const row = new QHBoxLayout(pane);
    row->setContentsMargins(0, 0, 0, 0);
    row->addWidget(messages, 1);
    row->addWidget(clear, 0, Qt::AlignBottom);
    return pane;
}

}  // namespace

QDockWidget* MainWindow::AddDock(const QString& title, const QString& name, QWidget* widget, Qt::DockWidgetArea area) {
    auto* const dock = new QDockWidget(title, this);
    dock->setObjectName(name);
    dock->setWidget(widget);
    addDockWidget(area, dock);
    connect(dock->toggleViewAction(), &QAction::triggered, dock, [dock](bool on) {
        if (on) dock->raise();  // in front of the panes that share its place
    });
    return dock;
}

void MainWindow::MakeDocks() {
    // The panes only report what the user asked for; the window changes the viewer. Decorations, logo and animation
    // call the viewer themselves: nothing outside of them depends on it.
    QWidget* const objects = MakeObjectPane();
    connect(m_pObjects, &ObjectList::DeletionWanted, this, &MainWindow::RemoveObjects);
    m_pMessages = new MessagePane;
    m_pEvents = new EventPane;
    connect(m_pViewer, &ViewerWidget::EventFired, m_pEvents, &EventPane::AddLine);
    connect(m_pEvents, &EventPane::TracingWanted, this, [this](bool on) {
        if (Pane() != nullptr) Pane()->Methods().TracingMode(on ? 1 : 0);
    });
    m_pDecorations = new DecorationPanel;
    connect(m_pDecorations, &DecorationPanel::BackgroundWanted, this, &MainWindow::AskForBackground);
    connect(m_pDecorations, &DecorationPanel::CrossWanted, this,
            [this](bool on) { AskForPickMode(on ? KV_ScenePane::PickModeCross : KV_ScenePane::PickModeOff); });
    m_pLogo = new LogoPanel;
    connect(m_pLogo, &LogoPanel::Failed, m_pMessages, &MessagePane::AddProblem);
    m_pMarkers = new MarkerPanel;
    connect(m_pMarkers, &MarkerPanel::PointsVisibilityWanted, this, &MainWindow::ShowPoints);
    connect(m_pMarkers, &MarkerPanel::PointsDeletionWanted, this, &MainWindow::DeletePoints);
    connect(m_pMarkers, &MarkerPanel::LinesWanted, this, &MainWindow::ShowLines);
    MakeNeedlePanel();
    m_pAnimation = new AnimationPanel;
    // A key in the viewer may have started the animation, which reports no event.
    connect(m_pViewer, &ViewerWidget::Handled, m_pAnimation, &AnimationPanel::Check);

    MakePickPanel();
    MakeClipPanel();
    m_pTransform = new TransformPanel;
    m_pResiduals = new ResidualPanel;

    // The panes on the right have the whole height: the list of objects would have a row or two beside the others.
    setCorner(Qt::BottomRightCorner, Qt::RightDockWidgetArea);
    AddDock(tr("Objects"), "objects", objects, Qt::RightDockWidgetArea);
    // The others share one place, as tabs. Those that are used most come first: where there is no space for all tabs,
    // the last ones are beyond an arrow.
    const auto tab = [this](const QString& title, const char* name, QWidget* panel) {
        return AddDock(title, name, new PanelArea(panel), Qt::RightDockWidgetArea);
    };
    QDockWidget* const picks = tab(tr("Picks"), "picks", m_pPicks);
    for (QDockWidget* const dock :
         {tab(tr("Clip plane"), "clip", m_pClip), tab(tr("Needles"), "needles", m_pNeedles),
          tab(tr("Points and lines"), "markers", m_pMarkers), tab(tr("Animation"), "animation", m_pAnimation),
          tab(tr("Decorations"), "decorations", m_pDecorations), tab(tr("Logo"), "logo", m_pLogo)})
        tabifyDockWidget(picks, dock);
    picks->raise();
    QDockWidget* const messages =
        AddDock(tr("Messages"), "messages", WithClearButton(m_pMessages), Qt::BottomDockWidgetArea);
    QDockWidget* const events = AddDock(tr("Events"), "events", m_pEvents, Qt::BottomDockWidgetArea);
    // Not beside the others: more tabs there would make the viewer narrower.
    tabifyDockWidget(events, AddDock(tr("Transform"), "transform", m_pTransform, Qt::BottomDockWidgetArea));
    tabifyDockWidget(events, AddDock(tr("Alignment"), "alignment", m_pResiduals, Qt::BottomDockWidgetArea));
    events->raise();
    // At the first start the viewer has their height. Messages and the alignment open when there is something to read.
    for (QDockWidget* const dock : findChildren<QDockWidget*>())
        if (dockWidgetArea(dock) == Qt::BottomDockWidgetArea) dock->hide();
    connect(m_pMessages, &MessagePane::ProblemAdded, this, [this, messages] { m_pShell->OpenPane(*messages); });
}

void MainWindow::PassViewerToPanels() {
    KV_ScenePane::_DKV_ScenePane* const methods = Pane() != nullptr ? &Pane()->Methods() : nullptr;
    m_pDeletions->SetViewer(Pane());   // before the cuts, whose end asks it what undo does
    m_pTransforms->SetViewer(Pane());  // first: it follows what the others change
    m_pDecorations->SetViewer(methods);
    m_pLogo->SetViewer(methods);
    m_pAnimation->SetViewer(methods);
    m_pNeedles->SetViewer(methods);
    m_pColors->SetViewer(Pane());
    m_pObjectCommands->SetViewer(Pane());
    m_pClip->SetViewer(Pane());
    m_pCuts->SetViewer(Pane());
    m_pAligns->SetViewer(Pane());
    if (m_pProperties != nullptr) m_pProperties->SetViewer(methods);
    m_pEvents->setEnabled(methods != nullptr);
    m_pPicks->setEnabled(methods != nullptr);
    if (methods == nullptr) ForgetPicks();
}
