// The clip plane in the window: the panel, its menu, the note in the status bar, and what is kept for the next start.
#include <QLabel>
#include <QMenu>
#include <QStatusBar>
#include <QTimer>

#include "ClipPanel.h"
#include "MainWindow.h"
#include "MessagePane.h"
#include "ObjectList.h"
#include "Settings.h"
#include "ViewerWidget.h"

namespace {
constexpr int kStorageDelayMs = 1000;  // a drag changes the plane with each frame, and each storage writes a file
}  // namespace

void MainWindow::MakeClipPanel() {
    m_storedClip = StoredClip();
    m_pClip = new ClipPanel(m_storedClip);
    m_pClip->SetHiddenObjects([this](int index) { return m_pObjects->IsHidden(index); });
    m_pClipStorage = new QTimer(this);
    m_pClipStorage->setSingleShot(true);
    m_pClipStorage->setInterval(kStorageDelayMs);
    connect(m_pClipStorage, &QTimer::timeout, this, &MainWindow::StoreClipIfChanged);
    // Permanent: a scene that was clipped at the last start is clipped at this one, and a hidden plane is not seen.
    m_pClipState = new QLabel(tr("Clipped by the clip plane"));
    m_pClipState->setObjectName("clipState");
    statusBar()->addPermanentWidget(m_pClipState);
    m_pClipState->hide();
    connect(m_pClip, &ClipPanel::Changed, this, &MainWindow::FollowClip);
    connect(m_pClip, &ClipPanel::Report, this, &MainWindow::Report);
    connect(m_pViewer, &ViewerWidget::ClipPlacementAsked, m_pClip, &ClipPanel::ExpectPlacement);
    connect(m_pViewer, &ViewerWidget::Handled, m_pClip, &ClipPanel::FollowViewer);
    connect(this, &MainWindow::ImportFinished, m_pClip, &ClipPanel::FollowScene);
}

void MainWindow::MakeClipMenu(QMenu& menu) {
    const ClipSettings& clip = m_pClip->Settings();
    m_pClipOn = AddSwitch(menu, tr("&Clip the scene"), clip.on, [this](bool on) { m_pClip->SwitchClipping(on); });
    m_pClipOn->setShortcut(QKeySequence(Qt::Key_P));
    m_pClipShown = AddSwitch(menu, tr("&Show the plane"), clip.shown, [this](bool on) { m_pClip->SwitchPlane(on); });
    const auto add = [&](const QString& text, auto run) {
        m_vViewerActions.push_back(menu.addAction(text, this, run));
    };
    menu.addSeparator();
    add(tr("Place at &data"), [this] { m_pClip->PlaceAtData(); });
    add(tr("Normal along +&X"), [this] { m_pClip->AlignNormal(0); });
    add(tr("Normal along +&Y"), [this] { m_pClip->AlignNormal(1); });
    add(tr("Normal along +&Z"), [this] { m_pClip->AlignNormal(2); });
    add(tr("&Flip"), [this] { m_pClip->Flip(); });
}

void MainWindow::FollowClip() {
    // No recursion: the panel ignores a switch that asks for its present state.
    m_pClipOn->setChecked(m_pClip->Settings().on);
    m_pClipShown->setChecked(m_pClip->Settings().shown);
    m_pClipState->setVisible(m_pClip->IsClipping());
    if (!m_pClipStorage->isActive()) m_pClipStorage->start();
}

void MainWindow::StoreClipIfChanged() {
    m_pClipStorage->stop();
    if (m_storedClip == m_pClip->Settings()) return;
    m_storedClip = m_pClip->Settings();
    StoreClip(m_storedClip);
}

void MainWindow::ReportViewerFailure(const QString& reason) {
    ReportFailure(tr("The viewer could not finish what was asked for: %1").arg(reason));
    if (Pane() != nullptr) Pane()->Methods().PerformInvalidate();
}
