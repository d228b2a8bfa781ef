// What the window keeps from one start to the next, full screen and panes: the parts that know the viewer. The others
// are in WindowShell.h.
#include <QDockWidget>
#include <QLabel>
#include <QMenu>
#include <QMessageBox>
#include <QPushButton>
#include <QStatusBar>
#include <filesystem>

#include "Appearance.h"
#include "FolderFiles.h"
#include "KV_ScenePane/PropertyPage.h"
#include "MainWindow.h"
#include "MessageTable.h"
#include "ReducedDrawing.h"
#include "SceneReport.h"
#include "Settings.h"
#include "WindowShell.h"

namespace {

/// The settings of the command line, and those of the last window where it gives none.
ImportSettings MergedImport(const HostOptions& options) {
    const ImportSettings start, stored = StoredImport();
    ImportSettings import = options.import;
    if (!options.given.skip && import.skip == start.skip) import.skip = stored.skip;
    if (!options.given.confidence && import.confidence == start.confidence) import.confidence = stored.confidence;
    if (!options.given.color && import.color == start.color) import.color = stored.color;
    return import;
}

}  // namespace

void MainWindow::ReadStoredView() {
    const ViewSettings view = StoredView();
    m_nBackground = view.background;
    m_fPointSize = view.pointSize;
    m_mouseScheme = view.mouse;
    m_rotation = view.rotation;
    m_options.import = MergedImport(m_options);
}

void MainWindow::MakeShell() {
    m_pImportNote = new QLabel;
    m_pImportNote->setObjectName("importNote");
    m_pImportNote->setToolTip(tr("Settings for the import of scans that leave points out"));
    statusBar()->addPermanentWidget(m_pImportNote);
    ShowImportNote();
    connect(m_pShell, &WindowShell::OpenWanted, this, [this](const std::string& file) { OpenFiles({file}); });
    m_pShell->Restore();
}

// What differs from the viewer's own start values, before its first frame.
void MainWindow::RestoreView() {
    if (Pane() == nullptr) return;
    const ViewSettings start;
    if (m_nBackground != start.background) ShowBackgroundNow();
    if (m_fPointSize != start.pointSize) Pane()->Methods().SetPointCloudRenderPointSize(m_fPointSize);
    if (m_rotation != start.rotation) Pane()->Methods().SetRotationMode(m_rotation);
    if (m_mouseScheme != start.mouse) ApplyMouseScheme();
}

std::vector<std::string> MainWindow::WithFilesOfFolders(const std::vector<std::string>& paths) {
    std::vector<std::string> files;
    for (const std::string& path : paths) {
        std::error_code error;
        if (!std::filesystem::is_directory(path, error)) {
            m_pShell->NoteWanted(path);
            files.push_back(path);
            continue;
        }
        const FolderFiles found = FilesInFolder(path);
        files.insert(files.end(), found.files.begin(), found.files.end());
        if (!found.files.empty()) m_pShell->NoteOpened({path});
        // Queued: at the start nothing follows the failures of the window yet.
        const auto report = [this](const std::string& folder, const std::string& reason) {
            QMetaObject::invokeMethod(
                this, [this, folder, reason] { ReportFileFailure(folder, reason); }, Qt::QueuedConnection);
        };
        for (const UnreadFolder& unread : found.unread) report(unread.path, unread.reason);
        if (found.files.empty() && found.unread.empty())
            report(path, kEmptyFolder);
        else if (found.isCut)
            report(path, kFullFolder);
    }
    return files;
}

void MainWindow::OpenPaneOf(QWidget& content) {
    QWidget* widget = &content;
    while (widget != nullptr && qobject_cast<QDockWidget*>(widget) == nullptr) widget = widget->parentWidget();
    if (widget != nullptr) m_pShell->OpenPane(static_cast<QDockWidget&>(*widget));
}

void MainWindow::ShowImportNote() {
    const ImportSettings start, now = m_options.import;
    const QString confidence = QString::fromStdString(NumberText(now.confidence));
    const bool thins = now.skip != start.skip, filters = now.confidence != start.confidence;
    if (thins && filters)
        m_pImportNote->setText(tr("Skip %1, confidence from %2").arg(QString::number(now.skip), confidence));
    else if (thins)
        m_pImportNote->setText(tr("Skip %1").arg(now.skip));
    else if (filters)
        m_pImportNote->setText(tr("Confidence from %1").arg(confidence));
    m_pImportNote->setVisible(thins || filters);
}

void MainWindow::SetImportSettings(const ImportSettings& settings) {
    m_options.import = settings;
    ShowImportNote();
}

void MainWindow::AskToReset() {
    QMessageBox box(QMessageBox::Warning, tr("Reset settings"), tr("Forget all settings of the window?"),
                    QMessageBox::Cancel, this);
    box.setInformativeText(
        tr("These are: place and panes of the window, appearance, mouse buttons, rotation, background, point size, "
           "render mode and other properties, reduced drawing, smooth edges, import settings, clip plane, tints of the "
           "lasso, recent files and folders.\n\n"
           "Files and what is open stay. Clip plane, tints and smooth edges change at the next start."));
    QPushButton* const reset = box.addButton(tr("Reset"), QMessageBox::DestructiveRole);
    box.setDefaultButton(QMessageBox::Cancel);
    box.exec();
    if (box.clickedButton() == reset) ResetSettings();
}

void MainWindow::ResetSettings() {
    const ViewSettings start;
    ShowBackground(start.background);
    ShowPointSize(start.pointSize);
    // Not by trigger(), which does nothing while a lasso is drawn: the actions are disabled then.
    m_rotationActions.value(start.rotation)->setChecked(true);
    ChooseRotation(start.rotation);
    m_schemeActions.value(static_cast<int>(start.mouse))->setChecked(true);
    ChooseMouseScheme(start.mouse);
    m_appearanceActions.value(static_cast<int>(Appearance::Desktop))->trigger();
    SetImportSettings({});
    m_options.drawMode.reset();
    m_pReducing->Choose(ReducedChoice::Automatic);
    if (Pane() != nullptr) {
        KV_ScenePane::CKV_ScenePanePropPage().Apply(Pane()->Methods());
        FollowProperties();
        Pane()->Methods().PerformInvalidate();
    }
    m_pShell->Reset();
    ForgetSettings();  // last: what was changed above was stored
    statusBar()->showMessage(tr("The settings are those of a first start."));
}
