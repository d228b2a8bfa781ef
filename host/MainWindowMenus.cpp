// The menus and the small dialogs that they open.
#include <QActionGroup>
#include <QColorDialog>
#include <QDockWidget>
#include <QFileDialog>
#include <QInputDialog>
#include <QMenuBar>
#include <iterator>

#include "AlignToolBar.h"
#include "BackgroundDialog.h"
#include "ColorButton.h"
#include "CutToolBar.h"
#include "FileTypes.h"
#include "ImportJob.h"
#include "MainWindow.h"
#include "Settings.h"
#include "ViewerWidget.h"

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

// Status tip of the menu and title of the dialog: the picture is not what the window shows.
constexpr const char* kScreenShotSummary = QT_TRANSLATE_NOOP(
    "MainWindow", "Save screenshot: the whole scene, 2048 x 2048 pixels, shaded, without axes, cross, arrow and logo");

}  // namespace

void MainWindow::MakeMenus() {
    MakeFileMenu();
    MakeViewMenu();
    MakeCutMenu();
    MakeAlignMenu();
    MakeImportMenu();
    MakeHelpMenu();
}

void MainWindow::MakeFileMenu() {
    QMenu* const menu = menuBar()->addMenu(tr("&File"));
    m_vFileActions.push_back(menu->addAction(tr("&Open..."), QKeySequence::Open, this, &MainWindow::AskForFiles));
    MakeMarkerActions(*menu);
    m_vIdleActions.push_back(
        menu->addAction(tr("&Clear"), QKeySequence(Qt::CTRL | Qt::Key_L), this, &MainWindow::AskToClear));
    menu->addSeparator();
    QAction* const exports = menu->addAction(tr("&Export selected object..."), QKeySequence(Qt::CTRL | Qt::Key_E), this,
                                             &MainWindow::AskForExport);
    exports->setStatusTip(tr("Export the object of the list's current row as a %1 file")
                              .arg(QString::fromStdString(ExtensionList(IsExported, "or"))));
    m_vIdleActions.push_back(exports);
    MakeTransformActions(*menu);
    QAction* const shot = menu->addAction(tr("&Save screenshot..."), QKeySequence(Qt::CTRL | Qt::Key_S), this,
                                          &MainWindow::AskForScreenShot);
    shot->setStatusTip(tr(kScreenShotSummary));
    m_vFileActions.push_back(shot);
    menu->addSeparator();
    menu->addAction(tr("&Quit"), QKeySequence(Qt::CTRL | Qt::Key_Q), this, &QWidget::close);
}

// The digits are the shortcuts of the views, Ctrl and a digit those of the render modes, by the position in their
// tables.
void MainWindow::MakeViewMenu() {
    QMenu* const menu = menuBar()->addMenu(tr("&View"));
    for (int mode = 0; mode < static_cast<int>(std::size(kViewNames)); ++mode) {
        QAction* const action = menu->addAction(tr(kViewNames[mode]), QKeySequence(Qt::Key_0 + mode), this,
                                                [this, mode] { ShowView(static_cast<KV_ScenePane::ViewMode>(mode)); });
        m_vViewerActions.push_back(action);
    }
    const auto add = [&](const QString& text, const QKeySequence& keys, auto run) {
        QAction* const action = menu->addAction(text, keys, this, run);
        m_vViewerActions.push_back(action);
        return action;
    };
    menu->addSeparator();
    add(tr("&Centre"), QKeySequence(Qt::Key_C), [this] { FitView(Pane()->Methods(), 1.0f); });
    menu->addSeparator();
    m_drawModeActions = AddModeActions(*menu->addMenu(tr("&Render mode")), kDrawModeNames, std::size(kDrawModeNames),
                                       m_options.drawMode.value_or(KV_ScenePane::DrawModeGouraud),
                                       [this](int mode) { ShowDrawMode(static_cast<KV_ScenePane::DrawMode>(mode)); });
    for (int mode = 0; mode < m_drawModeActions.size(); ++mode)
        m_drawModeActions[mode]->setShortcut(QKeySequence(Qt::CTRL | static_cast<Qt::Key>(Qt::Key_0 + mode)));
    AddSwitch(*menu, tr("&Shadows"), m_options.shadows, [this](bool on) {
        ShowShadows(on);
    })->setShortcut(QKeySequence(Qt::Key_S));
    MakeClipMenu(*menu->addMenu(tr("C&lip plane")));
    menu->addSeparator();
    MakeInputMenus(*menu);
    menu->addSeparator();
    add(tr("&Background colours..."), {}, [this] { AskForBackground(); });
    add(tr("&Point size..."), {}, [this] { AskForPointSize(); });
    QAction* const smooth = menu->addAction(tr("Smooth &edges (from the next start)"));
    smooth->setCheckable(true);
    smooth->setChecked(HasSmoothEdges());
    smooth->setStatusTip(tr("Draw with %1 samples per pixel where the driver has them").arg(kSmoothSamples));
    connect(smooth, &QAction::toggled, this, &SetSmoothEdges);
    add(tr("Proper&ties..."), QKeySequence(Qt::ALT | Qt::Key_Return), [this] { ShowProperties(); });
    menu->addSeparator();
    QMenu* const panes = menu->addMenu(tr("Pa&nes"));
    // The docks exist already: the menus are made last.
    for (QDockWidget* const dock : findChildren<QDockWidget*>()) panes->addAction(dock->toggleViewAction());
    panes->addAction(m_pCutTools->toggleViewAction());
    panes->addAction(m_pAlignTools->toggleViewAction());
}

QList<QAction*> MainWindow::AddModeActions(QMenu& menu, const char* const* names, int count, int checked,
                                           const std::function<void(int)>& choose) {
    auto* const group = new QActionGroup(this);  // exclusive: checking one action clears the others
    for (int mode = 0; mode < count; ++mode) {
        QAction* const action = menu.addAction(tr(names[mode]), this, [choose, mode] { choose(mode); });
        action->setCheckable(true);
        action->setChecked(mode == checked);
        group->addAction(action);
        m_vViewerActions.push_back(action);
    }
    return group->actions();
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

void MainWindow::MakeImportMenu() {
    QMenu* const menu = menuBar()->addMenu(tr("&Import"));
    menu->addAction(tr("&Skip value..."), this, &MainWindow::AskForSkip);
    menu->addAction(tr("&Confidence limit..."), this, &MainWindow::AskForConfidence);
    menu->addAction(tr("Scan c&olour..."), this, &MainWindow::AskForScanColor);
}

void MainWindow::AskForFiles() {
    const QString all = QString::fromStdString(ExtensionPatterns(IsImported));
    const QString scans = QString::fromStdString(ExtensionPatterns(IsImportedScan));
    const QString meshes = QString::fromStdString(ExtensionPatterns(IsImportedMesh));
    const QStringList names = QFileDialog::getOpenFileNames(
        this, tr("Open scans and meshes"), {},
        tr("Scans and meshes (%1);;Scans (%2);;Meshes (%3);;All files (*)").arg(all, scans, meshes));
    std::vector<std::string> files;
    // encodeName() gives the bytes that the file has on disk.
    for (const QString& name : names) files.push_back(QFile::encodeName(name).toStdString());
    OpenFiles(files);
}

void MainWindow::AskForScreenShot() {
    // Not getSaveFileName(), which has no default suffix.
    QFileDialog dialog(this, tr(kScreenShotSummary), {}, tr("PNG pictures (*.png);;All files (*)"));
    dialog.setAcceptMode(QFileDialog::AcceptSave);
    dialog.setDefaultSuffix(
        "png");  // added by the dialog, so that it asks before it overwrites the file of the full name
    dialog.selectFile(tr("screenshot.png"));
    if (dialog.exec() != QDialog::Accepted) return;
    (void)SaveScreenShot(QFile::encodeName(dialog.selectedFiles().constFirst()).toStdString());
}

void MainWindow::AskForBackground() {
    BackgroundDialog dialog(m_nBackground, this);
    if (dialog.exec() == QDialog::Accepted) ShowBackground(dialog.Colors());
}

void MainWindow::AskForPointSize() {
    bool accepted = false;
    const QString label = tr("Pixels per point of an object;\nhalf the side of a free point in scene units:");
    const double size = QInputDialog::getDouble(this, tr("Point size"), label, static_cast<double>(m_fPointSize), 0.01,
                                                64.0, 2, &accepted);
    if (accepted) ShowPointSize(static_cast<float>(size));
}

void MainWindow::AskForSkip() {
    bool accepted = false;
    const int skip = QInputDialog::getInt(this, tr("Skip value"), tr("One point for N x N grid points, N:"),
                                          m_options.import.skip, 1, 32767, 1, &accepted);
    if (accepted) m_options.import.skip = static_cast<std::int16_t>(skip);
}

void MainWindow::AskForConfidence() {
    bool accepted = false;
    const double limit =
        QInputDialog::getDouble(this, tr("Confidence limit"), tr("Leave out points with a confidence below:"),
                                static_cast<double>(m_options.import.confidence), -1e9, 1e9, 4, &accepted);
    if (accepted) m_options.import.confidence = static_cast<float>(limit);
}

void MainWindow::AskForScanColor() {
    const QColor color = QColorDialog::getColor(ColorFromPacked(m_options.import.color), this, tr("Scan colour"));
    if (color.isValid()) m_options.import.color = PackedFromColor(color);
}
