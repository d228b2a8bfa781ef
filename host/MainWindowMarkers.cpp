// Free points and lines: the imports of their files, with dialog and progress, and what their panel asks for.
#include <QFileDialog>
#include <QFileInfo>
#include <QLabel>
#include <QMenu>
#include <QStatusBar>
#include <utility>

#include "CaughtError.h"
#include "FileImport.h"
#include "FileTypes.h"
#include "ImportProgress.h"
#include "MainWindow.h"
#include "MarkBox.h"
#include "MarkerFiles.h"
#include "MarkerPanel.h"
#include "MessagePane.h"
#include "ObjectList.h"
#include "PointsDialog.h"
#include "RecentFiles.h"
#include "TranslatedText.h"
#include "WindowShell.h"

namespace {

/// The bytes that the files have on disk.
std::vector<std::string> PathsOf(const QStringList& names) {
    std::vector<std::string> files;
    for (const QString& name : names) files.push_back(QFile::encodeName(name).toStdString());
    return files;
}

QStringList NamesOf(const std::vector<std::string>& files) {
    QStringList names;
    for (const std::string& file : files) names += QString::fromStdString(file.substr(file.rfind('/') + 1));
    return names;
}

/// Fits the view to lines. The viewer fits to objects and free points only: the corners of the box are free points for
/// the moment of the fit.
void FitViewToLines(KV_ScenePane::_DKV_ScenePane& methods, const MarkBox& box, float zoom) {
    if (!box.HasExtent()) return;
    const int id = AddPoints(methods, {box.Corners(), {}}, 0, 1.0f);
    FitView(methods, zoom);
    methods.DeletePoints(id);
}

}  // namespace

void MainWindow::MakeMarkerActions(QMenu& menu) {
    QAction* const points = menu.addAction(tr("Import free &points..."), this, &MainWindow::AskForPointFiles);
    points->setStatusTip(tr("Import points from %1 files, and the vertices of ply files")
                             .arg(QString::fromStdString(ExtensionList(IsPoints, "and"))));
    QAction* const lines = menu.addAction(tr("Import &lines..."), this, &MainWindow::AskForLineFiles);
    lines->setStatusTip(tr("Import polylines from text files"));
    m_vFileActions.insert(m_vFileActions.end(), {points, lines});
    m_pointsLook.color = m_options.import.color;
}

// ---- points: from the choice of the files to the waiting request

void MainWindow::AskForPointFiles() {
    const QStringList names = QFileDialog::getOpenFileNames(
        this, tr("Import free points"), StoredFolder(FolderUse::Open),
        tr("Points (%1 *.ply);;All files (*)").arg(QString::fromStdString(ExtensionPatterns(IsPoints))));
    if (names.isEmpty() || Pane() == nullptr) return;
    StoreFolderOf(FolderUse::Open, names.constFirst());
    const std::vector<std::string> files = PathsOf(names);
    m_unaskedPoints.fitsView = m_unaskedPoints.fitsView || IsSceneEmpty();
    m_unaskedPoints.files.insert(m_unaskedPoints.files.end(), files.begin(), files.end());
    AskForPointsLook();
}

void MainWindow::AskForPointsLook() {
    if (Pane() == nullptr || m_bAsksForPoints || !IsMouseFree() || m_unaskedPoints.files.empty()) return;
    m_bAsksForPoints = true;
    const PointsRequest request = std::exchange(m_unaskedPoints, {});
    auto* const dialog = new PointsDialog(NamesOf(request.files), m_pointsLook, this);
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    connect(dialog, &QDialog::finished, this, [this, dialog, request](int result) {
        const bool accepted = result == QDialog::Accepted;
        if (accepted) m_pointsLook = dialog->Look();
        EndPointsDialog(request, accepted);
    });
    dialog->open();  // returns at once: the source of a drop must not wait for the answer
}

void MainWindow::EndPointsDialog(const PointsRequest& request, bool accepted) {
    m_bAsksForPoints = false;
    if (accepted) {
        m_vWaitingPoints.push_back({request.files, m_pointsLook, request.fitsView});
        OpenWaitingPoints();
        DropWaitingFiles();
    } else {
        m_nFilesNotAdded += request.files.size();
        for (const std::string& file : request.files)
            m_pMessages->AddText(tr("%1: not opened, cancelled").arg(QString::fromStdString(file)));
    }
    // Files that came while the dialog was open. Queued: that dialog is still closing.
    QMetaObject::invokeMethod(this, &MainWindow::AskForPointsLook, Qt::QueuedConnection);
}

void MainWindow::ImportPointFiles(const std::vector<std::string>& files, const PointsLook& look) {
    if (files.empty()) return;
    m_vWaitingPoints.push_back({files, look, IsSceneEmpty()});
    OpenWaitingPoints();
    DropWaitingFiles();
}

// ---- points: the import

void MainWindow::OpenWaitingPoints() {
    if (Pane() == nullptr || IsImporting() || !IsMouseFree() || m_vWaitingPoints.empty()) return;
    PointsRequest request = std::move(m_vWaitingPoints.front());
    m_vWaitingPoints.erase(m_vWaitingPoints.begin());
    FinishDeletions();
    m_pPointsJob = new PointsJob(Pane()->Methods(), std::move(request), this);
    FollowPointsProgress();
    connect(m_pPointsJob, &PointsJob::Finished, this, &MainWindow::OnPointsImported);
    EnableActions();
    m_pPointsJob->Start();
}

void MainWindow::FollowPointsProgress() {
    const QStringList names = NamesOf(m_pPointsJob->Request().files);
    m_pProgress->Begin(static_cast<int>(names.size()) * PointsJob::kStepsPerFile);
    m_pProgress->ShowText(tr("Reading %1").arg(names.front()));
    connect(m_pPointsJob, &PointsJob::Progress, m_pProgress, &ImportProgress::SetValue);
    connect(m_pPointsJob, &PointsJob::Reading, m_pProgress,
            [this, names](int file) { m_pProgress->ShowText(tr("Reading %1").arg(names[file])); });
    connect(m_pPointsJob, &PointsJob::Adding, m_pProgress, [this, names](int file) {
        m_pProgress->ShowText(tr("Adding %1 to the scene").arg(names[file]));
        m_pProgress->PaintNow();  // the thread is blocked until the points are added
    });
}

void MainWindow::OnPointsImported() {
    const bool added = ReportPoints() > 0;
    const bool fitsView = m_pPointsJob->Request().fitsView;
    m_pPointsJob->deleteLater();
    m_pPointsJob = nullptr;
    if (Pane() != nullptr && added) {
        if (fitsView) FitView(Pane()->Methods(), m_options.zoom);
        m_pProgress->ShowText(tr("Preparing the picture"));
        m_pProgress->PaintNow();
        DrawPicture();
    }
    m_pProgress->End();
    EnableActions();
    emit ImportFinished();
    OpenWaitingFiles();  // files that were added while this import ran
    OpenWaitingPoints();
}

std::size_t MainWindow::ReportPoints() {
    std::vector<std::string> added;
    const std::vector<PointsResult>& results = m_pPointsJob->Results();
    for (std::size_t i = 0; i < results.size(); ++i) {
        const std::string& file = m_pPointsJob->Request().files[i];
        switch (results[i].state) {
            case PointsResult::State::Added:
                added.push_back(file);
                m_pMarkers->AddPoints(results[i].id, file, results[i].points, m_pPointsJob->Request().look.alpha);
                break;
            case PointsResult::State::Failed:
                ReportFileFailure(file, results[i].reason);
                break;
            case PointsResult::State::NotStarted:
                ReportNotStarted(file);
                break;
        }
    }
    m_pShell->NoteAdded(added);
    statusBar()->showMessage(tr("%1 of %2 files opened").arg(added.size()).arg(results.size()));
    return added.size();
}

void MainWindow::ReportFileFailure(const std::string& file, const std::string& reason) {
    ++m_nFilesNotAdded;
    m_pMessages->AddProblem(tr("%1: nothing added: %2").arg(QString::fromStdString(file), TranslatedText(reason)));
    emit FileFailed(file, reason);
}

void MainWindow::OpenMarkersOfOptions() {
    // Once: a later viewer, or none, must not open them again.
    ImportPointFiles(std::exchange(m_options.pointFiles, {}), {.alpha = 1.0f, .color = m_options.import.color});
    ImportLineFiles(std::exchange(m_options.lineFiles, {}));
    for (const std::string& file : std::exchange(m_options.needleFiles, {})) {
        std::string failure;
        (void)LoadNeedles(file, &failure);  // it adds the message
        if (failure.empty()) continue;
        ++m_nFilesNotAdded;
        emit FileFailed(file, failure);
    }
}

// ---- lines

void MainWindow::AskForLineFiles() {
    const QStringList names =
        QFileDialog::getOpenFileNames(this, tr("Import lines"), StoredFolder(FolderUse::Open), tr("All files (*)"));
    StoreFolderOf(FolderUse::Open, names.value(0));
    ImportLineFiles(PathsOf(names));
}

void MainWindow::ImportLineFiles(const std::vector<std::string>& files) {
    if (files.empty()) return;
    if (Pane() == nullptr) {
        m_options.lineFiles.insert(m_options.lineFiles.end(), files.begin(), files.end());  // they wait for the viewer
        DropWaitingFiles();
        return;
    }
    std::size_t lines = 0;  // of all files, as their box
    MarkBox box;
    for (const std::string& file : files) {
        std::vector<Polyline> added;
        const std::string reason = AddLineFile(Pane()->Methods(), file, &added);
        lines += added.size();
        for (const Polyline& line : added)
            for (std::size_t i = 0; i + 2 < line.size(); i += 3) box.Merge(&line[i]);
        if (!reason.empty()) ReportFileFailure(file, reason);
    }
    // An import that runs or waits fits the view to what it adds.
    const bool isOnlyContent = IsSceneEmpty() && m_pMarkers->LineCount() == 0 && !IsImporting() &&
                               m_vWaitingPoints.empty() && m_unaskedPoints.files.empty() && !m_bAsksForPoints;
    m_pMarkers->ShowLineCount(m_pMarkers->LineCount() + static_cast<int>(lines));
    if (lines > 0) ShowLines(true);
    statusBar()->showMessage(tr("%Ln line(s) added", nullptr, static_cast<int>(lines)));
    if (!isOnlyContent) return;
    try {
        FitViewToLines(Pane()->Methods(), box, m_options.zoom);
    } catch (...) {  // no exception may pass through Qt
        const QString reason = TranslatedText(TextOfCaughtError());
        m_pMessages->AddProblem(tr("The view was not fitted to the lines: %1").arg(reason));
    }
}

// ---- what the panel asks for

void MainWindow::ShowPoints(int id, bool visible) {
    if (Pane() == nullptr) return;
    Pane()->Methods().SetPointsVisibility(id, visible ? KV_ScenePane::kVariantTrue : KV_ScenePane::kVariantFalse);
    Pane()->Methods().PerformInvalidate();
}

void MainWindow::DeletePoints(int id) {
    if (Pane() == nullptr) return;
    Pane()->Methods().DeletePoints(id);
    m_pMarkers->RemovePoints(id);
    FollowFiles();
}

void MainWindow::DeleteAllPoints() {
    for (const int id : m_pMarkers->PointIds()) DeletePoints(id);
}

void MainWindow::ShowLines(bool on) {
    if (Pane() == nullptr) return;
    Pane()->Methods().SetLine3DDrawingMode(on ? KV_ScenePane::kVariantTrue : KV_ScenePane::kVariantFalse);
    Pane()->Methods().PerformInvalidate();
    m_pMarkers->ShowLinesDrawn(on);
}

bool MainWindow::IsSceneEmpty() const { return !HaveObjects() && m_pMarkers->PointIds().empty(); }
