// Opening files: drops, the job that reads them, list rows and first frames of what it adds, and its messages.
#include <QDragEnterEvent>
#include <QDropEvent>
#include <QMimeData>
#include <QStatusBar>
#include <QUrl>
#include <algorithm>
#include <optional>
#include <utility>

#include "CaughtError.h"
#include "CutCommands.h"
#include "FileLook.h"
#include "ImportJob.h"
#include "ImportProgress.h"
#include "ImportStatus.h"
#include "MainWindow.h"
#include "MessagePane.h"
#include "ObjectColors.h"
#include "ObjectList.h"
#include "ObjectPalette.h"
#include "ScenePreparation.h"
#include "SceneReport.h"
#include "TranslatedText.h"
#include "ViewerWidget.h"
#include "WindowShell.h"

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

}  // namespace

void MainWindow::OpenFiles(const std::vector<std::string>& files) {
    for (const std::string& file : WithFilesOfFolders(files)) {
        if (LookAt(file) == FileLook::Points)
            AddUnaskedPoints(file);
        else
            m_vWaitingFiles.push_back(file);
    }
    OpenWaitingFiles();
    AskForPointsLook();
    DropWaitingFiles();
}

void MainWindow::AddUnaskedPoints(const std::string& file) {
    m_unaskedPoints.files.push_back(file);
    m_unaskedPoints.fitsView = m_unaskedPoints.fitsView || IsSceneEmpty();
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
    m_pMessages->AddProblem(tr("%1: not opened, there is no viewer").arg(QString::fromStdString(file)));
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

// ---- the course of an import: files are read and their objects arrive, then the rest of the objects is shown

void MainWindow::MakeImportProgress() {
    m_pProgress = new ImportProgress;
    statusBar()->insertPermanentWidget(0, m_pProgress);
    m_pProgress->hide();
    connect(m_pProgress, &ImportProgress::Cancelled, this, &MainWindow::CancelImport);
}

void MainWindow::StartImport(const std::vector<std::string>& files) {
    FinishDeletions();
    MakePreparation();
    m_nListedFiles = 0;
    m_notShown.clear();
    m_pJob = new ImportJob(*Pane(), files, m_options.import, this);
    connect(m_pJob, &ImportJob::Reading, this, &MainWindow::ShowReading);
    connect(m_pJob, &ImportJob::Progress, m_pProgress, &ImportProgress::SetValue);
    connect(m_pJob, &ImportJob::Arrived, this, &MainWindow::OnFilesArrived);
    connect(m_pJob, &ImportJob::Finished, this, &MainWindow::OnImportFinished);
    m_pProgress->Begin(static_cast<int>(files.size()));
    ShowReading(0, false);
    EnableActions();
    m_pCuts->SetConfidence(m_options.import.confidence);
    m_pJob->Start();
}

void MainWindow::MakePreparation() {
    KV_ScenePane::_DKV_ScenePane& methods = Pane()->Methods();
    std::int64_t shownTriangles = 0;
    for (const int index : m_pObjects->PresentObjects()) {
        std::int32_t vertices = 0, triangles = 0;
        methods.GetMeshDataSize(static_cast<std::int16_t>(index), &vertices, &triangles);
        if (!m_pObjects->IsHidden(index)) shownTriangles += triangles;
    }
    // Only the first import fits the view: a later one must not move what the user looks at.
    std::optional<ArrivalFit> fit;
    if (IsSceneEmpty()) fit.emplace(m_options.zoom);
    m_pPreparation = new ScenePreparation(*Pane(), shownTriangles, fit, this);
    connect(m_pPreparation, &ScenePreparation::Waiting, m_pObjects,
            [this](int index) { m_pObjects->ShowVisible(index, false); });
    connect(m_pPreparation, &ScenePreparation::Shown, m_pObjects,
            [this](int index) { m_pObjects->ShowVisible(index, true); });
    connect(m_pPreparation, &ScenePreparation::AboutToDraw, this, [this] {
        if (IsReading()) {  // the bar counts files
            m_pProgress->Interrupt(tr("Preparing the picture"));
            return;
        }
        const int drawn = m_pPreparation->DrawnCount(), count = m_pPreparation->Count();
        m_pProgress->ShowText(tr("Preparing the picture: %1 of %2 objects").arg(drawn).arg(count));
        m_pProgress->SetValue(drawn);
        m_pProgress->PaintNow();
    });
    connect(m_pPreparation, &ScenePreparation::Drawn, this, [this] {
        if (IsReading()) m_pProgress->Resume();
    });
    connect(m_pPreparation, &ScenePreparation::Failed, this, &MainWindow::ReportViewerFailure);
    connect(m_pPreparation, &ScenePreparation::Finished, this, &MainWindow::OnPicturePrepared);
}

void MainWindow::ShowReading(int file, bool isBlocking) {
    const std::vector<std::string>& files = m_pJob->Files();
    const std::string& path = files[static_cast<std::size_t>(file)];
    const QString name = QString::fromStdString(path.substr(path.rfind('/') + 1));
    m_pProgress->ShowText(
        tr("Reading %1 (%2 of %3)").arg(name, QString::number(file + 1), QString::number(files.size())));
    if (isBlocking) m_pProgress->PaintNow();
}

void MainWindow::CancelImport() {
    if (m_pPointsJob != nullptr) m_pPointsJob->Cancel();
    if (m_pJob != nullptr) {
        m_pJob->Cancel();
        statusBar()->showMessage(tr("Cancelled; the files in progress are being finished."));
    } else if (m_pPreparation != nullptr) {
        m_pPreparation->Cancel();
    }
}

void MainWindow::OnFilesArrived() {
    if (Pane() == nullptr) return;
    ListNewObjects();
    FollowImport();
    // Objects that the command line places are shown where they will be, once all of them are there.
    if (m_options.transformFile.empty())
        m_pPreparation->ShowArrived();
    else
        m_pPreparation->Hide();
}

void MainWindow::OnImportFinished() {
    ReportResults();
    if (Pane() != nullptr) ListNewObjects();
    if (m_pPreparation->Count() == 0 && !m_notShown.isEmpty()) statusBar()->showMessage(m_notShown);
    m_pJob->deleteLater();
    m_pJob = nullptr;
    if (Pane() != nullptr) {
        LoadTransformsOfOptions();
        FollowImport();
    }
    m_pProgress->Begin(std::max(m_pPreparation->Count(), 1));
    m_pPreparation->ShowRest();
}

void MainWindow::OnPicturePrepared() {
    const int count = m_pPreparation->Count(), hidden = count - m_pPreparation->ShownCount();
    if (m_pPreparation->IsCancelled() && hidden > 0) {
        const QString text =
            tr("Cancelled: %1 of %2 new objects are shown; the check marks in the list show the others")
                .arg(count - hidden)
                .arg(count);
        Report(text);
    }
    m_pPreparation->deleteLater();  // not at once: this is a call from its own signal
    m_pPreparation = nullptr;
    m_pProgress->End();
    EnableActions();
    emit ImportFinished();
    OpenWaitingFiles();  // files that were added while this import ran
    OpenWaitingPoints();
    AskForPointsLook();  // of files that have turned out to hold points
}

void MainWindow::DrawPicture() {
    try {
        Pane()->Methods().PerformRefresh();
    } catch (...) {  // no exception may pass through Qt
        ReportViewerFailure(TranslatedText(TextOfCaughtError()));
    }
}

void MainWindow::ReportResults() {
    std::vector<std::string> added;
    std::size_t notStarted = 0;
    const std::vector<ImportResult>& results = m_pJob->Results();
    for (std::size_t i = 0; i < results.size(); ++i) {
        const QString file = QString::fromStdString(m_pJob->Files()[i]);
        const QString text = TranslatedText(results[i].text);
        // A file that was added has a message only when the viewer wrote something about it.
        switch (results[i].state) {
            case ImportResult::State::Added:
                added.push_back(m_pJob->Files()[i]);
                if (!text.isEmpty()) m_pMessages->AddProblem(file + ": " + text);
                break;
            case ImportResult::State::Failed:
                ++m_nFilesNotAdded;
                m_pMessages->AddProblem(tr("%1: nothing added: %2").arg(file, text));
                emit FileFailed(m_pJob->Files()[i], results[i].text);
                break;
            case ImportResult::State::Points:  // only reading it has shown that
                AddUnaskedPoints(m_pJob->Files()[i]);
                break;
            case ImportResult::State::NotStarted:
                ++notStarted;
                ReportNotStarted(m_pJob->Files()[i]);
                break;
        }
    }
    m_pShell->NoteAdded(added);
    if (notStarted == 0 || Pane() == nullptr) {
        statusBar()->showMessage(ImportStatus(m_pJob->Files(), results));
        return;
    }
    const QString kept = tr("Import cancelled: %1 of %2 files kept; %3 were not opened")
                             .arg(added.size())
                             .arg(results.size())
                             .arg(notStarted);
    Report(kept);
}

void MainWindow::ListNewObjects() {
    // The list has a row for each object that the viewer had before.
    int index = m_pObjects->ObjectCount();
    const int count = Pane()->Methods().GetNumObjects();
    // The viewer's new objects have the order of the files that added them.
    for (; m_nListedFiles < m_pJob->FinishedFiles() && index < count; ++m_nListedFiles) {
        if (m_pJob->Results()[m_nListedFiles].state != ImportResult::State::Added) continue;
        const auto object = static_cast<std::int16_t>(index);
        const ObjectReport report = ReportObject(*Pane(), object, m_pJob->Files()[m_nListedFiles]);
        m_pColors->AddImported(report, TellsScansApart(m_pJob->Files(), m_options.import.color, m_options.given.color));
        if (HasPosition(report))
            m_pPreparation->Add(index, report.triangles);
        else
            HideWithoutPosition(index, m_pJob->Files()[m_nListedFiles]);
        ++index;
    }
    ShowSceneCounts();
}

void MainWindow::HideWithoutPosition(int index, const std::string& file) {
    Pane()->Methods().SetObjectVisibility(static_cast<std::int16_t>(index), 0);
    m_pObjects->ShowVisible(index, false);
    const QString text = QString::fromStdString(file) + ": " + TranslatedText(kNoFiniteCoordinate);
    m_pMessages->AddProblem(text);
    m_notShown = text.mid(static_cast<int>(QString::fromStdString(file.substr(0, file.rfind('/') + 1)).size()));
}

void MainWindow::dragEnterEvent(QDragEnterEvent* event) {
    if (!LocalFiles(*event->mimeData()).empty()) event->acceptProposedAction();
}

void MainWindow::dropEvent(QDropEvent* event) {
    OpenFiles(LocalFiles(*event->mimeData()));
    event->acceptProposedAction();
}
