// The menus and the small dialogs that they open.
#include <QDockWidget>
#include <QFileDialog>
#include <QInputDialog>
#include <QMenuBar>
#include <iterator>

#include "AlignToolBar.h"
#include "Appearance.h"
#include "BackgroundDialog.h"
#include "CutToolBar.h"
#include "FileTypes.h"
#include "ImportJob.h"
#include "MainToolBar.h"
#include "MainWindow.h"
#include "RecentFiles.h"
#include "ScanImportDialog.h"
#include "Settings.h"
#include "ToolAction.h"
#include "ViewerWidget.h"
#include "WindowShell.h"

namespace {

// In the order of KV_ScenePane::ViewMode.
constexpr const char* kViewNames[] = {
    QT_TRANSLATE_NOOP("MainWindow", "From +Y, Z up"), QT_TRANSLATE_NOOP("MainWindow", "From -Y, Z up"),
    QT_TRANSLATE_NOOP("MainWindow", "From +X, Z up"), QT_TRANSLATE_NOOP("MainWindow", "From -X, Z up"),
    QT_TRANSLATE_NOOP("MainWindow", "From +Z, Y up"), QT_TRANSLATE_NOOP("MainWindow", "From -Z, Y down"),
    QT_TRANSLATE_NOOP("MainWindow", "Oblique, Z up"), QT_TRANSLATE_NOOP("MainWindow", "From -Z, Y up"),
};

// In the order of KV_ScenePane::DrawMode.
constexpr const char* kDrawModeNames[] = {
    QT_TRANSLATE_NOOP("MainWindow", "Points"),          QT_TRANSLATE_NOOP("MainWindow", "Wireframe"),
    QT_TRANSLATE_NOOP("MainWindow", "Flat shaded"),     QT_TRANSLATE_NOOP("MainWindow", "Gouraud shaded"),
    QT_TRANSLATE_NOOP("MainWindow", "Bounding boxes"),  QT_TRANSLATE_NOOP("MainWindow", "Lit per pixel"),
    QT_TRANSLATE_NOOP("MainWindow", "Background only"), QT_TRANSLATE_NOOP("MainWindow", "Shadow map"),
};

// The picture is not what the window shows.
constexpr const char* kScreenShotTip =
    QT_TRANSLATE_NOOP("MainWindow", "The whole scene, 2048 x 2048 pixels, shaded, without axes, cross, arrow and logo");

// In the order of Appearance.
constexpr const char* kAppearanceNames[] = {
    QT_TRANSLATE_NOOP("MainWindow", "As the &desktop"),
    QT_TRANSLATE_NOOP("MainWindow", "&Light"),
    QT_TRANSLATE_NOOP("MainWindow", "D&ark"),
};

}  // namespace

void MainWindow::MakeMenus() {
    MakeFileMenu();
    MakeEditMenu();
    MakeViewMenu();
    MakeRenderMenu();
    MakeToolsMenu();
    MakeHelpMenu();
    m_pMainTools = new MainToolBar({.open = m_pOpen,
                                    .savePicture = m_pSavePicture,
                                    .fit = m_pFit,
                                    .shadows = m_pShadows,
                                    .views = m_viewActions,
                                    .drawModes = m_drawModeActions});
    // The tints of the lasso, at the end of the cut tools, are used least: a narrow window hides the end.
    insertToolBar(m_pCutTools, m_pAlignTools);
    insertToolBar(m_pAlignTools, m_pMainTools);
    MakePaneMenu();
}

void MainWindow::MakeFileMenu() {
    QMenu* const menu = menuBar()->addMenu(tr("&File"));
    m_pOpen = menu->addAction(tr("&Open..."), QKeySequence::Open, this, &MainWindow::AskForFiles);
    SetToolTips(*m_pOpen, tr("scans and meshes"));
    m_vFileActions.push_back(m_pOpen);
    m_pShell->MakeRecentMenu(*menu->addMenu(tr("Open &recent")));
    MakeMarkerActions(*menu);
    menu->addAction(tr("Scan &import settings..."), this, &MainWindow::AskForImportSettings);
    menu->addSeparator();
    m_pCutTools->FillFileMenu(*menu);
    MakeTransformActions(*menu);
    QAction* const exports = menu->addAction(tr("&Export selected object..."), QKeySequence(Qt::CTRL | Qt::Key_E), this,
                                             &MainWindow::AskForExport);
    exports->setStatusTip(
        tr("Write the selected objects as %1 files").arg(QString::fromStdString(ExtensionList(IsExported, "or"))));
    m_vIdleActions.push_back(exports);
    menu->addSeparator();
    MakePictureActions(*menu);
    m_pSavePicture = menu->findChild<QAction*>("savePicture");
    QAction* const shot = menu->addAction(tr("Save screens&hot of the whole scene (2048 x 2048)..."), this,
                                          &MainWindow::AskForScreenShot);
    shot->setStatusTip(tr(kScreenShotTip));
    m_vFileActions.push_back(shot);
    menu->addSeparator();
    m_vIdleActions.push_back(
        menu->addAction(tr("&Clear"), QKeySequence(Qt::CTRL | Qt::Key_L), this, &MainWindow::AskToClear));
    menu->addSeparator();
    menu->addAction(tr("&Quit"), QKeySequence(Qt::CTRL | Qt::Key_Q), this, &QWidget::close);
}

void MainWindow::MakeEditMenu() {
    QMenu* const menu = menuBar()->addMenu(tr("&Edit"));
    m_pCutTools->FillEditMenu(*menu);
    menu->addAction(m_pTakeBack);
    menu->addSeparator();
    MakeObjectActions(*menu->addMenu(tr("&Objects")));
}

// The digits are the shortcuts of the views, by their position in the table.
void MainWindow::MakeViewMenu() {
    QMenu* const menu = menuBar()->addMenu(tr("&View"));
    m_pFit = menu->addAction(tr("Fi&t the view"), this, [this] {
        if (Pane() != nullptr) FitView(Pane()->Methods(), 1.0f);
    });
    m_pFit->setShortcuts({QKeySequence(Qt::Key_C), QKeySequence(Qt::Key_Home)});
    SetToolTips(*m_pFit, tr("all that is shown, as large as possible"));
    m_vViewerActions.push_back(m_pFit);
    menu->addSeparator();
    for (int mode = 0; mode < static_cast<int>(std::size(kViewNames)); ++mode) {
        QAction* const action = menu->addAction(tr(kViewNames[mode]), QKeySequence(Qt::Key_0 + mode), this,
                                                [this, mode] { ShowView(static_cast<KV_ScenePane::ViewMode>(mode)); });
        SetToolTips(*action, {});
        m_viewActions.push_back(action);
        m_vViewerActions.push_back(action);
    }
    menu->addSeparator();
    MakeInputMenus(*menu);
    menu->addSeparator();
    m_pBackground = menu->addAction(tr("&Background colours..."), this, &MainWindow::AskForBackground);
    m_vViewerActions.push_back(m_pBackground);
    MakeAppearanceMenu(*menu->addMenu(tr("&Appearance")));
    menu->addSeparator();
    menu->addAction(m_pShell->FullScreenAction());
    menu->addAction(m_pShell->HidePanesAction());
    m_pPanes = menu->addMenu(tr("Pa&nes and tool bars"));
    menu->addAction(tr("R&eset settings..."), this, &MainWindow::AskToReset);
}

// The docks and tool bars exist already: this is called last.
void MainWindow::MakePaneMenu() {
    for (QDockWidget* const dock : findChildren<QDockWidget*>()) m_pPanes->addAction(dock->toggleViewAction());
    m_pPanes->addSeparator();
    for (QToolBar* const bar : findChildren<QToolBar*>()) m_pPanes->addAction(bar->toggleViewAction());
}

void MainWindow::MakeAppearanceMenu(QMenu& menu) {
    QStringList texts;
    for (const char* const name : kAppearanceNames) texts << tr(name);
    m_appearanceActions = AddChoices(menu, texts, static_cast<int>(StoredAppearance()), [](int chosen) {
        const auto appearance = static_cast<Appearance>(chosen);
        StoreAppearance(appearance);
        ShowAppearance(appearance);
    });
}

// Ctrl and a digit are the shortcuts of the render modes, by their position in the table.
void MainWindow::MakeRenderMenu() {
    QMenu* const menu = menuBar()->addMenu(tr("&Render"));
    menu->setToolTipsVisible(true);  // why a mode cannot be used now
    m_drawModeActions = AddModeActions(*menu, kDrawModeNames, std::size(kDrawModeNames),
                                       m_options.drawMode.value_or(KV_ScenePane::DrawModeGouraud),
                                       [this](int mode) { ShowDrawMode(static_cast<KV_ScenePane::DrawMode>(mode)); });
    for (int mode = 0; mode < m_drawModeActions.size(); ++mode)
        m_drawModeActions[mode]->setShortcut(QKeySequence(Qt::CTRL | static_cast<Qt::Key>(Qt::Key_0 + mode)));
    menu->addSeparator();
    m_pShadows = AddSwitch(*menu, tr("&Shadows"), m_options.shadows, [this](bool on) { ShowShadows(on); });
    m_pShadows->setShortcut(QKeySequence(Qt::Key_S));
    menu->addSeparator();
    MakeColorActions(*menu);
    m_vViewerActions.push_back(menu->addAction(tr("&Point size..."), this, &MainWindow::AskForPointSize));
    MakeSamplesMenu(*menu->addMenu(tr("Smooth &edges")));
    MakeReducedMenu(*menu->addMenu(tr("Re&duced while moving")));
    menu->addSeparator();
    QAction* const page = menu->addAction(tr("Proper&ties..."), QKeySequence(Qt::ALT | Qt::Key_Return), this,
                                          &MainWindow::ShowProperties);
    m_vViewerActions.push_back(page);
}

void MainWindow::MakeToolsMenu() {
    QMenu* const menu = menuBar()->addMenu(tr("&Tools"));
    m_pCutTools->FillMenu(*menu->addMenu(tr("&Cut")));
    m_pAlignTools->FillMenu(*menu->addMenu(tr("&Align")));
    MakeClipMenu(*menu->addMenu(tr("Clip &plane")));
    MakePickMenu(*menu->addMenu(tr("Pic&king")));
}

QList<QAction*> MainWindow::AddModeActions(QMenu& menu, const char* const* names, int count, int checked,
                                           const std::function<void(int)>& choose) {
    QStringList texts;
    for (int mode = 0; mode < count; ++mode) texts << tr(names[mode]);
    QList<QAction*> actions = AddChoices(menu, texts, checked, choose);
    m_vViewerActions.insert(m_vViewerActions.end(), actions.begin(), actions.end());
    return actions;
}

QAction* MainWindow::AddSwitch(QMenu& menu, const QString& text, bool checked,
                               const std::function<void(bool)>& choose) {
    QAction* const action = menu.addAction(text);
    action->setCheckable(true);
    action->setChecked(checked);
    connect(action, &QAction::toggled, this, choose);  // by the user and by setChecked()
    m_vViewerActions.push_back(action);
    return action;
}

void MainWindow::AskForFiles() {
    const QString all = QString::fromStdString(ExtensionPatterns(IsImported));
    const QString scans = QString::fromStdString(ExtensionPatterns(IsImportedScan));
    const QString meshes = QString::fromStdString(ExtensionPatterns(IsImportedMesh));
    const QStringList names = QFileDialog::getOpenFileNames(
        this, tr("Open scans and meshes"), StoredFolder(FolderUse::Open),
        tr("Scans and meshes (%1);;Scans (%2);;Meshes (%3);;All files (*)").arg(all, scans, meshes));
    StoreFolderOf(FolderUse::Open, names.value(0));
    std::vector<std::string> files;
    // encodeName() gives the bytes that the file has on disk.
    for (const QString& name : names) files.push_back(QFile::encodeName(name).toStdString());
    OpenFiles(files);
}

void MainWindow::AskForScreenShot() {
    // Not getSaveFileName(), which has no default suffix.
    QFileDialog dialog(this, tr("Save screenshot"), StoredFolder(FolderUse::Picture),
                       tr("PNG pictures (*.png);;All files (*)"));
    dialog.setAcceptMode(QFileDialog::AcceptSave);
    dialog.setDefaultSuffix(
        "png");  // added by the dialog, so that it asks before it overwrites the file of the full name
    dialog.selectFile(tr("screenshot.png"));
    if (dialog.exec() != QDialog::Accepted) return;
    StoreFolderOf(FolderUse::Picture, dialog.selectedFiles().constFirst());
    (void)SaveScreenShot(QFile::encodeName(dialog.selectedFiles().constFirst()).toStdString());
}

void MainWindow::AskForBackground() {
    BackgroundDialog dialog(m_nBackground, this);
    if (dialog.exec() == QDialog::Accepted) ShowBackground(dialog.Colors());
}

void MainWindow::AskForPointSize() {
    bool accepted = false;
    const QString label = tr("Pixels per point of an object;\nhalf the side of a free point in scene units:");
    constexpr double kLowest = kMinPointSize, kHighest = kMaxPointSize;
    const double size = QInputDialog::getDouble(this, tr("Point size"), label, static_cast<double>(m_fPointSize),
                                                kLowest, kHighest, 2, &accepted);
    if (accepted) ShowPointSize(static_cast<float>(size));
}

void MainWindow::AskForImportSettings() {
    ScanImportDialog dialog(m_options.import, this);
    if (dialog.exec() != QDialog::Accepted) return;
    const ImportSettings before = m_options.import, chosen = dialog.Settings();
    SetImportSettings(chosen);
    // One by one: a value of the command line is for this window only.
    if (before.skip != chosen.skip) StoreSkip(chosen.skip);
    if (before.confidence != chosen.confidence) StoreConfidence(chosen.confidence);
    if (before.color != chosen.color) StoreScanColor(chosen.color);
}
