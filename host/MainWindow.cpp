// Life of the window and the changes that it makes in the viewer. Menus: MainWindowMenus.cpp and MainWindowInput.cpp;
// panes: MainWindowPanels.cpp; imports and exports: MainWindowImport.cpp and MainWindowExport.cpp.
#include "MainWindow.h"

#include <QCloseEvent>
#include <QLabel>
#include <QStackedWidget>
#include <QStatusBar>
#include <QVBoxLayout>
#include <new>

#include "AlignCommands.h"
#include "AlignHint.h"
#include "AnimationPanel.h"
#include "ClipPanel.h"
#include "CutCommands.h"
#include "DecorationPanel.h"
#include "DeletionCommands.h"
#include "ImportJob.h"
#include "LogoPanel.h"
#include "MarkerPanel.h"
#include "MessagePane.h"
#include "MessageTable.h"
#include "NeedlePanel.h"
#include "ObjectColors.h"
#include "ObjectCommands.h"
#include "ObjectList.h"
#include "PngFile.h"
#include "PropertyDialog.h"
#include "ResidualPanel.h"
#include "ScenePreparation.h"
#include "ScreenShot.h"
#include "Settings.h"
#include "TransformCommands.h"
#include "TranslatedText.h"
#include "ViewerWidget.h"
#include "WindowShell.h"

MainWindow::MainWindow(const HostOptions& options, QWidget* parent) : QMainWindow(parent), m_options(options) {
    ReadStoredView();
    setAcceptDrops(true);
    m_pShell = new WindowShell(*this);
    // In this order: all parts use the status bar, the docks connect to the viewer widget, and a menu lists the docks.
    MakeStatus();
    MakeImportProgress();
    MakeCentre();
    MakeDocks();
    MakePictures();
    MakeCuts();
    MakeTransforms();
    MakeAligns();
    MakeDeletions();
    MakeViewNote();
    MakeMenus();
    ReservePlainKeysForInputs();
    OpenFiles(options.files);  // they wait for the viewer
    // Imports have captures of their own; this is for everything else that the viewer writes, from any thread.
    MessagePane* const messages = m_pMessages;
    m_pRouter = std::make_unique<DebugRouter>(
        [messages](std::string_view text) { messages->AddProblemLater(TranslatedWords(PlainLines(text))); });
    EnableActions();
    MakeShell();
}

MainWindow::~MainWindow() {
    (void)TakeWaitingFiles();  // the end of an import starts the next one
    StopImport();              // its threads call the viewer
    m_pAnimation->SetViewer(nullptr);
    m_pDecorations->SetViewer(nullptr);
    m_pLogo->SetViewer(nullptr);
    m_pNeedles->SetViewer(nullptr);
    m_pColors->SetViewer(nullptr);
    m_pObjectCommands->SetViewer(nullptr);
    m_pClip->SetViewer(nullptr);
    m_pDeletions->SetViewer(nullptr);
    m_pCuts->SetViewer(nullptr);
    m_pAligns->SetViewer(nullptr);
    m_pTransforms->SetViewer(nullptr);
    if (m_pProperties != nullptr) m_pProperties->SetViewer(nullptr);
    StorePropertiesIfChanged();
    StoreClipIfChanged();
    delete m_pViewer;  // now: what it writes while it closes still goes to the message pane
    m_pRouter.reset();
}

KV_ScenePane::ScenePane* MainWindow::Pane() const { return m_pViewer->Pane(); }

bool MainWindow::HaveObjects() const { return !m_pObjects->PresentObjects().empty(); }

void MainWindow::Report(const QString& text) {
    m_pMessages->AddText(text);  // the next menu that opens clears the status bar
    statusBar()->showMessage(text.section('\n', -1));
}

void MainWindow::ReportFailure(const QString& text) {
    Report(text);
    m_pMessages->PointOut();
}

void MainWindow::MakeCentre() {
    m_pViewer = new ViewerWidget({m_options.width, m_options.height}, m_viewerSamples);
    m_pRefusal = new QLabel;
    m_pRefusal->setTextFormat(Qt::PlainText);
    m_pRefusal->setAlignment(Qt::AlignCenter);
    m_pRefusal->setWordWrap(true);
    m_pRefusal->setTextInteractionFlags(Qt::TextSelectableByMouse);
    m_pRefusal->setMargin(24);
    // The viewer covers its widget with a window of its own, so the reason of a refusal is shown in place of the
    // widget.
    m_pCentre = new QStackedWidget;
    m_pCentre->addWidget(m_pViewer);
    m_pCentre->addWidget(m_pRefusal);
    m_pAlignHint = new AlignHint;
    auto* const centre = new QWidget;
    auto* const column = new QVBoxLayout(centre);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
    column->addWidget(m_pAlignHint);
    column->addWidget(m_pCentre, 1);
    setCentralWidget(centre);
    // Queued: the viewer is made while Qt is still showing the window for the first time.
    connect(m_pViewer, &ViewerWidget::Ready, this, &MainWindow::OnViewerReady, Qt::QueuedConnection);
    connect(m_pViewer, &ViewerWidget::Refused, this, &MainWindow::OnViewerRefused, Qt::QueuedConnection);
    connect(m_pViewer, &ViewerWidget::KeyPressed, this, &MainWindow::RunShortcut, Qt::QueuedConnection);
    connect(m_pViewer, &ViewerWidget::Failed, this, &MainWindow::ReportViewerFailure);
    // At once: before the viewer draws its first frame.
    connect(m_pViewer, &ViewerWidget::Ready, this, &MainWindow::LoadProperties);
    connect(m_pViewer, &ViewerWidget::Ready, this, &MainWindow::RestoreView);
    connect(m_pViewer, &ViewerWidget::Handled, this, &MainWindow::FollowProperties);
    connect(m_pViewer, &ViewerWidget::Handled, this, &MainWindow::FollowFrames);
    // At once: neither an import nor a panel may call a viewer that is gone.
    connect(m_pViewer, &ViewerWidget::AboutToClose, this, &MainWindow::StopImport);
    connect(m_pViewer, &ViewerWidget::Refused, this, &MainWindow::PassViewerToPanels);
}

void MainWindow::OnViewerReady() {
    if (Pane() == nullptr) return;
    PassViewerToPanels();
    // The viewer has its start values: what was chosen before is applied now.
    ShowView(m_options.view);
    ShowShadows(m_options.shadows);
    EnableActions();
    OpenWaitingFiles();
    OpenMarkersOfOptions();
    OpenWaitingPoints();
    AskForPointsLook();
}

void MainWindow::OnViewerRefused(const QString& reason) {
    m_bRefused = true;
    m_pRefusal->setText(tr("There is no viewer: %1").arg(reason));
    m_pCentre->setCurrentWidget(m_pRefusal);
    m_pMessages->AddProblem(m_pRefusal->text());
    m_pObjects->RemoveAll();
    m_pMarkers->Clear();
    EnableActions();
    DropWaitingFiles();
}

void MainWindow::StopImport() {
    if (m_pPreparation != nullptr) m_pPreparation->Stop();
    if (m_pJob != nullptr) m_pJob->Stop();
    if (m_pPointsJob != nullptr) m_pPointsJob->Stop();
}

void MainWindow::EnableActions() {
    const bool viewer = Pane() != nullptr;
    const bool usable = viewer && !IsLassoRunning();  // most of them would move the scene below the lasso
    const bool isFree = viewer && IsMouseFree();
    for (QAction* const action : m_vViewerActions) action->setEnabled(usable);
    FollowShadows();
    m_pMouseMoves->setEnabled(usable && m_pAligns->RunningWay() != AlignWay::ByHand);  // which needs it
    for (QAction* const action : m_pickActions) action->setEnabled(isFree);
    for (QAction* const action : m_vFileActions) action->setEnabled(isFree);
    for (QAction* const action : m_vIdleActions) action->setEnabled(isFree && !IsImporting());
    m_pObjects->setEnabled(viewer && !IsImporting());
    EnableObjectActions();
    m_pMarkers->setEnabled(viewer);
    if (m_pProperties != nullptr) m_pProperties->SetUsable(usable);
    FollowCuts();
    FollowAlign();
}

void MainWindow::ShowView(KV_ScenePane::ViewMode mode) {
    m_options.view = mode;
    if (Pane() != nullptr) Pane()->Methods().SetViewMode(mode);
}

void MainWindow::ShowShadows(bool on) {
    m_options.shadows = on;
    if (Pane() == nullptr) return;
    m_bShadowsApplied = true;
    Pane()->Methods().SetShadowMode(on ? 1 : 0);
    Pane()->Methods().PerformInvalidate();
    FollowShadows();
}

void MainWindow::ShowBackground(const std::array<std::int32_t, 4>& colors) {
    m_nBackground = colors;
    StoreBackground(colors);
    ShowBackgroundNow();
}

void MainWindow::ShowBackgroundNow() {
    if (Pane() == nullptr) return;
    const auto& [topLeft, topRight, bottomLeft, bottomRight] = m_nBackground;
    Pane()->Methods().SetBackgroundColorsFourCorners(topLeft, topRight, bottomLeft, bottomRight);
}

void MainWindow::ShowPointSize(float pixels) {
    m_fPointSize = pixels;
    StorePointSize(pixels);
    if (Pane() == nullptr) return;
    Pane()->Methods().SetPointCloudRenderPointSize(pixels);
    Pane()->Methods().PerformInvalidate();
}

bool MainWindow::SaveScreenShot(const std::string& path) {
    if (Pane() == nullptr) return false;
    const QString file = QString::fromStdString(path);
    std::string reason = tr("the viewer gave no picture").toStdString();  // or that of WritePng()
    QString text;
    try {
        const KV_ScenePane::Picture picture = TakeScreenShot(Pane()->Methods());
        if (picture.width != 0 && WritePng(path, picture, &reason))
            text = tr("%1: screenshot of %2 x %3 pixels")
                       .arg(file, QString::number(picture.width), QString::number(picture.height));
    } catch (const std::bad_alloc&) {  // no exception may pass through Qt
        reason = "there is not enough memory";
    }
    const bool saved = !text.isEmpty();
    if (saved)
        Report(text);
    else
        ReportFailure(tr("%1: not written: %2").arg(file, TranslatedText(PlainWords(reason))));
    return saved;
}

void MainWindow::ShowObject(int index, bool visible) {
    if (Pane() == nullptr) return;
    Pane()->Methods().SetObjectVisibility(static_cast<std::int16_t>(index), visible ? 1 : 0);
    m_pClip->FollowScene();
    ShowSceneCounts();
}

void MainWindow::closeEvent(QCloseEvent* event) {
    m_pAligns->Finish();  // what it has moved is asked about
    const QString title = tr("Close the window");
    if (!AskAboutNeedles() || !m_pCuts->AskAboutUnsaved(title) || !AskAboutTransforms(title)) {
        event->ignore();
        return;
    }
    m_nFilesNotAdded += TakeWaitingFiles().size();
    StopImport();
    if (m_pProperties != nullptr) m_pProperties->reject();
    m_pShell->Store();
    event->accept();
}
