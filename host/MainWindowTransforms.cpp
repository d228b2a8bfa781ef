// Transforms in the window: the pane, take back, and their files. What is taken back is in TransformCommands.h.
#include <QAction>
#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QMenu>
#include <algorithm>
#include <utility>

#include "CaughtError.h"
#include "ClipPanel.h"
#include "CutCommands.h"
#include "FileListDialog.h"
#include "MainWindow.h"
#include "MessagePane.h"
#include "ObjectList.h"
#include "ResidualPanel.h"
#include "TransformCommands.h"
#include "TransformFile.h"
#include "TransformPanel.h"
#include "TranslatedText.h"
#include "ViewerWidget.h"

namespace {

constexpr const char* kFilter = QT_TRANSLATE_NOOP("MainWindow", "Transforms (*.json);;All files (*)");

/// Beside the first scan; in the working folder without one.
QString FirstTransformFile(const std::vector<std::string>& files) {
    QString name = "transforms.json";
    if (files.empty()) return name;
    return QFileInfo(QFile::decodeName(QByteArray::fromStdString(files.front()))).dir().filePath(name);
}

/// The paths of these objects.
std::vector<std::string> FilesOf(const ObjectList& list, const std::vector<int>& objects) {
    const std::vector<ObjectRow> rows = list.Rows();
    std::vector<std::string> files;
    files.reserve(objects.size());
    for (const int object : objects) files.push_back(rows[static_cast<std::size_t>(object)].file);
    return files;
}

/// What a file that will be replaced holds of scans that are not open; nothing of a file that cannot be read.
std::vector<StoredTransform> OtherEntries(const std::string& path, const std::vector<std::string>& files) {
    std::vector<StoredTransform> entries, others;
    std::string reason;
    if (!ReadTransformFile(path, &entries, &reason)) return others;
    for (const std::size_t i : MatchTransforms(path, entries, files).unusedEntries)
        others.push_back({StoredPath(path, entries[i].file), entries[i].matrix});
    return others;
}

/// "1 transform", "2 transforms".
QString CountText(std::size_t count) {
    return count == 1 ? MainWindow::tr("1 transform") : MainWindow::tr("%1 transforms").arg(count);
}

}  // namespace

void MainWindow::MakeTransforms() {
    m_pTransforms = new TransformCommands(*m_pObjects, this);
    m_pTakeBack = new QAction(m_pTransforms->TakeBackText(), this);
    m_pTakeBack->setObjectName("takeBackAlignment");
    m_pTakeBack->setShortcut(Qt::CTRL | Qt::ALT | Qt::Key_Z);
    m_pTakeBack->setStatusTip(tr("Set the transforms of before the last alignment, or before the last load, again"));
    connect(m_pTakeBack, &QAction::triggered, m_pTransforms, &TransformCommands::TakeBack);
    connect(m_pTakeBack, &QAction::triggered, m_pResiduals, &ResidualPanel::Clear);  // they hold no more
    connect(m_pTransforms, &TransformCommands::Changed, this, &MainWindow::FollowTransforms);
    connect(m_pTransforms, &TransformCommands::ObjectsMoved, m_pClip, &ClipPanel::FollowScene);
    connect(m_pTransforms, &TransformCommands::Report, this, &MainWindow::Report);
    connect(m_pCuts, &CutCommands::AboutToReplaceObjects, m_pTransforms, &TransformCommands::Note);
    connect(m_pObjects, &ObjectList::currentItemChanged, this, &MainWindow::ShowTransform);
    // During an alignment by the mouse.
    connect(m_pViewer, &ViewerWidget::Handled, this, [this] {
        if (m_pTransforms->IsOpen()) ShowTransform();
    });
}

void MainWindow::MakeTransformActions(QMenu& menu) {
    m_pSaveTransforms = menu.addAction(tr("Save &transforms..."), this, &MainWindow::AskForTransformFileToSave);
    m_pSaveTransforms->setStatusTip(tr("Write the transform of each object, as it is now, into a json file"));
    m_pLoadTransforms = menu.addAction(tr("Loa&d transforms..."), this, &MainWindow::AskForTransformFileToLoad);
    m_pLoadTransforms->setStatusTip(tr("Give the objects the transforms that a json file has for them"));
}

void MainWindow::FollowTransforms() {
    const bool isIdle = Pane() != nullptr && !IsImporting() && !IsLassoRunning() && !m_pTransforms->IsOpen();
    m_pTakeBack->setText(m_pTransforms->TakeBackText());
    m_pTakeBack->setEnabled(isIdle && m_pTransforms->CanTakeBack());
    m_pSaveTransforms->setEnabled(isIdle && HaveObjects());
    m_pLoadTransforms->setEnabled(isIdle && HaveObjects());
    MarkUnsaved();
    ShowTransform();
}

void MainWindow::MarkUnsaved() {
    FollowFiles();
    setWindowModified(m_pCuts->HaveUnsaved() || m_pTransforms->HaveUnsaved());
}

void MainWindow::ShowTransform() {
    const int row = SelectedObject();
    const std::optional<Matrix4> transform = m_pTransforms->TransformOfRow(row);
    if (!transform) {
        m_pTransform->Show(nullptr);
        return;
    }
    TransformPanel::Shown shown{m_pObjects->NameOf(row), tr("As imported"), *transform};
    if (std::ranges::binary_search(m_pTransforms->UnsavedRows(), row))
        shown.state = tr("Moved, not saved");
    else if (std::ranges::binary_search(m_pTransforms->MovedRows(), row))
        shown.state = tr("Moved, saved");
    m_pTransform->Show(&shown);
}

// ---- files

bool MainWindow::AskForTransformFileToSave() {
    // Not getSaveFileName(), which has no default suffix.
    const QFileInfo first(FirstTransformFile(FilesOf(*m_pObjects, m_pObjects->PresentObjects())));
    QFileDialog dialog(this, tr("Save transforms"), first.path(), tr(kFilter));
    dialog.setAcceptMode(QFileDialog::AcceptSave);
    dialog.setDefaultSuffix("json");
    dialog.selectFile(first.fileName());
    if (dialog.exec() != QDialog::Accepted) return false;
    return SaveTransforms(QFile::encodeName(dialog.selectedFiles().constFirst()).toStdString());
}

void MainWindow::AskForTransformFileToLoad() {
    const QFileInfo first(FirstTransformFile(FilesOf(*m_pObjects, m_pObjects->PresentObjects())));
    QFileDialog dialog(this, tr("Load transforms"), first.path(), tr(kFilter));
    dialog.setFileMode(QFileDialog::ExistingFile);
    if (first.exists()) dialog.selectFile(first.fileName());
    if (dialog.exec() != QDialog::Accepted) return;
    (void)LoadTransforms(QFile::encodeName(dialog.selectedFiles().constFirst()).toStdString());
}

bool MainWindow::SaveTransforms(const std::string& path) {
    if (Pane() == nullptr || IsImporting() || m_pTransforms->IsOpen()) return false;
    FinishDeletions();
    const QString file = QString::fromStdString(path);
    std::string reason = tr("there is no object").toStdString();
    try {
        std::vector<StoredTransform> transforms;
        const std::vector<int> objects = m_pObjects->PresentObjects();
        const std::vector<std::string> files = FilesOf(*m_pObjects, objects);
        transforms.reserve(objects.size());
        for (std::size_t i = 0; i < objects.size(); ++i) {
            if (const auto matrix = m_pTransforms->TransformOfRow(objects[i]))
                transforms.push_back({files[i], *matrix});
        }
        const std::size_t count = transforms.size();
        const std::vector<StoredTransform> others = OtherEntries(path, files);
        transforms.insert(transforms.end(), others.begin(), others.end());
        if (count > 0 && WriteTransformFile(path, transforms, &reason)) {
            m_pTransforms->OnSaved();
            QString text = tr("%1: %2 saved").arg(file, CountText(count));
            if (!others.empty()) text += tr("; %1 of scans that are not open kept").arg(CountText(others.size()));
            Report(text);
            return true;
        }
    } catch (...) {  // no exception may pass through Qt
        reason = TextOfCaughtError();
    }
    ReportFailure(tr("%1: not written: %2").arg(file, TranslatedText(reason)));
    return false;
}

void MainWindow::LoadTransformsOfOptions() {
    // Once: objects of later imports stay where they are.
    const std::string file = std::exchange(m_options.transformFile, {});
    std::string failure;
    if (file.empty() || LoadTransforms(file, &failure)) return;
    ++m_nFilesNotAdded;
    emit FileFailed(file, failure);
}

bool MainWindow::LoadTransforms(const std::string& path, std::string* failure) {
    if (Pane() == nullptr || IsReading() || m_pTransforms->IsOpen()) return false;
    const QString file = QString::fromStdString(path);
    std::string reason;
    try {
        std::vector<StoredTransform> entries;
        if (ReadTransformFile(path, &entries, &reason)) {
            const std::vector<int> objects = m_pObjects->PresentObjects();
            const std::vector<std::string> files = FilesOf(*m_pObjects, objects);
            const TransformMatch match = MatchTransforms(path, entries, files);
            QStringList lines;
            for (const std::string& line : UnmatchedLines(match, entries, files))
                lines << file + ": " + QString::fromStdString(line);
            std::map<int, Matrix4> byRow;
            for (std::size_t i = 0; i < match.entryOfObject.size(); ++i) {
                if (const auto entry = match.entryOfObject[i]) byRow.emplace(objects[i], entries[*entry].matrix);
            }
            const int moved = m_pTransforms->Place(tr("load of transforms"), byRow);
            lines << tr("%1: transforms for %2 of %3 objects, %4 moved")
                         .arg(file, QString::number(byRow.size()), QString::number(files.size()),
                              QString::number(moved));
            Report(lines.join('\n'));
            if (byRow.empty() && failure != nullptr) *failure = "holds no transform for any of the files";
            return !byRow.empty();
        }
    } catch (...) {  // no exception may pass through Qt
        reason = TextOfCaughtError();
    }
    ReportFailure(tr("%1: no transforms loaded: %2").arg(file, TranslatedText(reason)));
    if (failure != nullptr) *failure = reason;
    return false;
}

bool MainWindow::AskAboutTransforms(const QString& title) {
    const std::vector<int> unsaved = m_pTransforms->UnsavedRows();
    if (unsaved.empty()) return true;
    FileListDialog::Texts texts{title, tr("There are objects whose transforms are not saved:"), {}, {}};
    for (const int row : unsaved) texts.lines << m_pObjects->NameOf(row);
    texts.note = tr("Save writes the transforms of all objects into one file, which can be loaded again.");
    constexpr auto kButtons = QDialogButtonBox::Save | QDialogButtonBox::Discard | QDialogButtonBox::Cancel;
    const auto answer = FileListDialog(texts, kButtons, QDialogButtonBox::Save, this).Ask();
    if (answer == QDialogButtonBox::Save) return AskForTransformFileToSave();
    return answer == QDialogButtonBox::Discard;
}
