// Opening files: drops, the job with its progress dialog, and the messages and list rows at its end.
#include <QDragEnterEvent>
#include <QDropEvent>
#include <QMimeData>
#include <QProgressDialog>
#include <QStatusBar>
#include <QUrl>
#include <utility>

#include "CutCommands.h"
#include "FileTypes.h"
#include "ImportJob.h"
#include "MainWindow.h"
#include "MessagePane.h"
#include "ObjectColors.h"
#include "ObjectList.h"
#include "SceneReport.h"
#include "ViewerWidget.h"

namespace {

/// The local files among the URLs, as the bytes of their names on disk: a QString loses bytes that are not UTF-8.
std::vector<std::string> LocalFiles(const QMimeData& data) {
    std::vector<std::string> files;
    for (const QUrl& url : data.urls()) {
        if (url.isLocalFile())
            files.push_back(QByteArray::fromPercentEncoding(url.path(QUrl::FullyEncoded).toUtf8()).toStdString());
    }
    return files;
}

/// What the user can do about a file that was not added; empty when there is nothing to say.
QString HintAbout(const ImportResult& result) {
    // The viewer's words about a ply file of vertices only.
    return result.text == "holds no faces" ? MainWindow::tr("; File > Import free points shows its vertices")
                                           : QString();
}

}  // namespace

void MainWindow::OpenFiles(const std::vector<std::string>& files) {
    for (const std::string& file : files) {
        const FileType* const type = FindFileType(file);
        if (type != nullptr && IsPoints(*type)) {
            m_unaskedPoints.files.push_back(file);
            m_unaskedPoints.fitsView = m_unaskedPoints.fitsView || IsSceneEmpty();
        } else {
            m_vWaitingFiles.push_back(file);
        }
    }
    OpenWaitingFiles();
    AskForPointsLook();
    DropWaitingFiles();
}

void MainWindow::OpenWaitingFiles() {
    if (Pane() == nullptr || IsImporting() || !IsMouseFree() || m_vWaitingFiles.empty()) return;
    // All files that wait become one job, so that consecutive pcm files are read in parallel.
    std::vector<std::string> files;
    files.swap(m_vWaitingFiles);
    StartImport(files);
}

std::vector<std::string> MainWindow::TakeWaitingFiles() {
    std::vector<std::string> files = std::exchange(m_vWaitingFiles, {});
    const auto take = [&files](std::vector<std::string>& from) {
        files.insert(files.end(), from.begin(), from.end());
        from.clear();
    };
    take(m_unaskedPoints.files);
    m_unaskedPoints = {};
    for (PointsRequest& request : m_vWaitingPoints) take(request.files);
    m_vWaitingPoints.clear();
    for (auto* const ofOptions : {&m_options.pointFiles, &m_options.lineFiles, &m_options.needleFiles})
        take(*ofOptions);
    return files;
}

void MainWindow::DropWaitingFiles() {
    if (!m_bRefused) return;
    for (const std::string& file : TakeWaitingFiles()) ReportNoViewerFor(file);
}

void MainWindow::ReportNoViewerFor(const std::string& file) {
    ++m_nFilesNotAdded;
    m_pMessages->AddText(tr("%1: not opened, there is no viewer").arg(QString::fromStdString(file)));
    emit FileFailed(file, "not opened, there is no viewer");
}

void MainWindow::ReportNotStarted(const std::string& file) {
    if (Pane() == nullptr) {  // it was lost during the import
        ReportNoViewerFor(file);
        return;
    }
    ++m_nFilesNotAdded;
    m_pMessages->AddText(tr("%1: not opened, cancelled").arg(QString::fromStdString(file)));
}

void MainWindow::StartImport(const std::vector<std::string>& files) {
    m_pJob = new ImportJob(*Pane(), files, m_options.import, this);
    const auto count = static_cast<int>(files.size());
    m_pProgress = std::make_unique<QProgressDialog>(tr("Importing files"), tr("Cancel"), 0, count, this);
    m_pProgress->setWindowTitle(tr("scenepane"));
    m_pProgress->setAutoReset(false);  // it is deleted at the end, whatever its value is then
    // Not modal: with a modal dialog the window could not be closed during a long import.
    m_pProgress->setModal(false);
    connect(m_pJob, &ImportJob::Progress, m_pProgress.get(), &QProgressDialog::setValue);
    connect(m_pProgress.get(), &QProgressDialog::canceled, this, &MainWindow::CancelImport);
    connect(m_pJob, &ImportJob::Finished, this, &MainWindow::OnImportFinished);
    m_pProgress->setValue(0);  // starts the time after which Qt shows the dialog: short imports show none
    EnableActions();
    m_pCuts->SetConfidence(m_options.import.confidence);
    m_pJob->Start();
}

void MainWindow::CancelImport() {
    if (m_pPointsJob != nullptr) m_pPointsJob->Cancel();
    if (m_pJob == nullptr) return;
    m_pJob->Cancel();
    statusBar()->showMessage(tr("Cancelled; the files in progress are being finished."));
}

void MainWindow::OnImportFinished() {
    ReportResults();
    // Only the first import fits the view: a later one must not move what the user looks at.
    const bool wasEmpty = IsSceneEmpty();
    if (Pane() != nullptr) ListNewObjects();
    m_pJob->deleteLater();
    m_pJob = nullptr;
    m_pProgress.release()->deleteLater();  // not at once: this may be a call from its own signal
    if (Pane() != nullptr) {
        LoadTransformsOfOptions();
        if (wasEmpty) FitView(Pane()->Methods(), m_options.zoom);
        Pane()->Methods().PerformRefresh();
    }
    EnableActions();
    emit ImportFinished();
    OpenWaitingFiles();  // files that were added while this import ran
    OpenWaitingPoints();
}

void MainWindow::ReportResults() {
    std::size_t added = 0;
    const std::vector<ImportResult>& results = m_pJob->Results();
    for (std::size_t i = 0; i < results.size(); ++i) {
        const QString file = QString::fromStdString(m_pJob->Files()[i]);
        const QString text = QString::fromStdString(results[i].text);
        // A file that was added has a message only when the viewer wrote something about it.
        switch (results[i].state) {
            case ImportResult::State::Added:
                ++added;
                if (!text.isEmpty()) m_pMessages->AddText(file + ": " + text);
                break;
            case ImportResult::State::Failed:
                ++m_nFilesNotAdded;
                m_pMessages->AddText(tr("%1: nothing added: %2").arg(file, text) + HintAbout(results[i]));
                emit FileFailed(m_pJob->Files()[i], results[i].text);
                break;
            case ImportResult::State::NotStarted:
                ReportNotStarted(m_pJob->Files()[i]);
                break;
        }
    }
    statusBar()->showMessage(tr("%1 of %2 files opened").arg(added).arg(results.size()));
}

void MainWindow::ListNewObjects() {
    // The list has a row for each object that the viewer had before this import.
    int index = m_pObjects->ObjectCount();
    const int count = Pane()->Methods().GetNumObjects();
    // The viewer's new objects have the order of the files that added them.
    for (std::size_t i = 0; i < m_pJob->Results().size() && index < count; ++i) {
        if (m_pJob->Results()[i].state == ImportResult::State::Added)
            m_pColors->AddImported(ReportObject(*Pane(), static_cast<std::int16_t>(index++), m_pJob->Files()[i]),
                                   TellsScansApart(m_pJob->Files()));
    }
}

void MainWindow::dragEnterEvent(QDragEnterEvent* event) {
    if (!LocalFiles(*event->mimeData()).empty()) event->acceptProposedAction();
}

void MainWindow::dropEvent(QDropEvent* event) {
    OpenFiles(LocalFiles(*event->mimeData()));
    event->acceptProposedAction();
}
