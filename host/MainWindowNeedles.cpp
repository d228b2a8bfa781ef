// Needles in the window: the panel, its connections, and their files.
#include <QFileDialog>
#include <QMessageBox>
#include <QStatusBar>

#include "CaughtError.h"
#include "MainWindow.h"
#include "MessagePane.h"
#include "NeedleFile.h"
#include "NeedlePanel.h"
#include "RecentFiles.h"
#include "TranslatedText.h"
#include "ViewerWidget.h"

namespace {

constexpr const char* kFilter = QT_TRANSLATE_NOOP("MainWindow", "Needles (*.json);;All files (*)");

/// "1, 4, 7"; the first ones of a long list.
QString IdList(const std::vector<std::int32_t>& ids) {
    constexpr std::size_t kShown = 20;
    QStringList texts;
    for (std::size_t i = 0; i < ids.size() && i < kShown; ++i) texts.push_back(QString::number(ids[i]));
    if (ids.size() > kShown) texts.push_back(MainWindow::tr("and %1 more").arg(ids.size() - kShown));
    return texts.join(", ");
}

/// "1 needle", "2 needles".
QString CountText(std::size_t count) {
    return count == 1 ? MainWindow::tr("1 needle") : MainWindow::tr("%1 needles").arg(count);
}

}  // namespace

void MainWindow::MakeNeedlePanel() {
    m_pNeedles = new NeedlePanel;
    // At once: the look of a needle is the one in force when it was created, and a deleted needle is gone.
    connect(m_pViewer, &ViewerWidget::NeedleWasCreated, m_pNeedles, &NeedlePanel::OnCreated);
    connect(m_pViewer, &ViewerWidget::NeedleWasDeleted, m_pNeedles, &NeedlePanel::OnDeleted);
    connect(m_pViewer, &ViewerWidget::NeedleWasSelected, m_pNeedles, &NeedlePanel::OnSelected);
    connect(m_pViewer, &ViewerWidget::NeedleWasDeselected, m_pNeedles, &NeedlePanel::OnDeselected);
    connect(m_pViewer, &ViewerWidget::Handled, m_pNeedles, &NeedlePanel::OnInput);
    connect(this, &MainWindow::ImportFinished, m_pNeedles, &NeedlePanel::FollowScene);
    connect(m_pNeedles, &NeedlePanel::SaveWanted, this, &MainWindow::AskForNeedleFileToSave);
    connect(m_pNeedles, &NeedlePanel::LoadWanted, this, &MainWindow::AskForNeedleFileToLoad);
    connect(m_pNeedles, &NeedlePanel::CreationWanted, this, &MainWindow::ChooseNeedleCreation);
    connect(m_pNeedles, &NeedlePanel::Hint, this, [this](const QString& text) { statusBar()->showMessage(text); });
}

void MainWindow::ChooseNeedleCreation(bool on) {
    const bool wasPicking = on && Pane() != nullptr && IsPicking(Pane()->Methods().GetPickMode());
    if (wasPicking && !AskAboutPickPoints()) {
        m_pNeedles->SwitchCreation(false);
        return;
    }
    if (wasPicking) ChoosePickMode(KV_ScenePane::PickModeOff);
    m_pNeedles->SwitchCreation(on);
    if (wasPicking) statusBar()->showMessage(tr("A double click creates needles now and picks no points."));
}

bool MainWindow::AskAboutNeedles() {
    if (!m_pNeedles->HaveUnsaved()) return true;
    const QString question = tr("There are needles that are not saved. Save them?");
    constexpr auto kAnswers = QMessageBox::Save | QMessageBox::Discard | QMessageBox::Cancel;
    switch (QMessageBox::question(this, tr("Close the window"), question, kAnswers, QMessageBox::Save)) {
        case QMessageBox::Save:
            return AskForNeedleFileToSave();
        case QMessageBox::Discard:
            return true;
        default:
            return false;
    }
}

bool MainWindow::AskForNeedleFileToSave() {
    // Not getSaveFileName(), which has no default suffix.
    QFileDialog dialog(this, tr("Save needles"), StoredFolder(FolderUse::Needles), tr(kFilter));
    dialog.setAcceptMode(QFileDialog::AcceptSave);
    dialog.setDefaultSuffix("json");
    dialog.selectFile(tr("needles.json"));
    if (dialog.exec() != QDialog::Accepted) return false;
    StoreFolderOf(FolderUse::Needles, dialog.selectedFiles().constFirst());
    return SaveNeedles(QFile::encodeName(dialog.selectedFiles().constFirst()).toStdString());
}

void MainWindow::AskForNeedleFileToLoad() {
    const QString file =
        QFileDialog::getOpenFileName(this, tr("Load needles"), StoredFolder(FolderUse::Needles), tr(kFilter));
    StoreFolderOf(FolderUse::Needles, file);
    if (!file.isEmpty()) (void)LoadNeedles(QFile::encodeName(file).toStdString());
}

bool MainWindow::SaveNeedles(const std::string& path) {
    if (Pane() == nullptr) return false;
    const QString file = QString::fromStdString(path);
    std::string reason;
    try {
        const std::vector<NeedleMark> marks = m_pNeedles->Marks();
        if (WriteNeedleFile(path, marks, &reason)) {
            m_pNeedles->SetSaved();
            Report(tr("%1: %2 saved").arg(file, CountText(marks.size())));
            return true;
        }
    } catch (...) {  // no exception may pass through Qt
        reason = TextOfCaughtError();
    }
    ReportFailure(tr("%1: not written: %2").arg(file, TranslatedText(reason)));
    return false;
}

bool MainWindow::LoadNeedles(const std::string& path, std::string* failure) {
    std::string reason = "there is no viewer";
    if (failure != nullptr) *failure = reason;
    if (Pane() == nullptr) return false;
    const QString file = QString::fromStdString(path);
    try {
        std::vector<NeedleMark> marks;
        if (ReadNeedleFile(path, &marks, &reason)) reason = marks.empty() ? kNoNeedles : "";
        if (reason.empty()) {
            const QString inUse = PlaceNeedlesOf(file, marks);
            if (failure != nullptr)
                *failure = inUse.isEmpty() ? "" : "not added, their numbers are in use: " + inUse.toStdString();
            return true;
        }
    } catch (...) {  // no exception may pass through Qt
        reason = TextOfCaughtError();
    }
    ReportFailure(tr("%1: no needles added: %2").arg(file, TranslatedText(reason)));
    if (failure != nullptr) *failure = reason;
    return false;
}

QString MainWindow::PlaceNeedlesOf(const QString& file, const std::vector<NeedleMark>& marks) {
    const bool hadUnsaved = m_pNeedles->HaveUnsaved();
    const std::vector<std::int32_t> inUse = m_pNeedles->Place(marks);
    if (!hadUnsaved) m_pNeedles->SetSaved();
    QString text = tr("%1: %2 added").arg(file, CountText(marks.size() - inUse.size()));
    if (!inUse.empty()) text += tr("; not added, because there are needles with their numbers: %1").arg(IdList(inUse));
    Report(text);
    return IdList(inUse);
}
