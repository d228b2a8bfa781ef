// Cuts that are saved or not: the questions, the save and its summary. The lines about single objects are in
// CutSaveReport.h.
#include <QGuiApplication>
#include <algorithm>

#include "CaughtError.h"
#include "CutCommands.h"
#include "CutSaveReport.h"
#include "FileListDialog.h"
#include "KV_ScenePane/PathText.h"
#include "TranslatedText.h"

namespace {

using KV_ScenePane::CutSaveEntry;

QString Sentence(const std::string& text) {
    QString sentence = TranslatedText(text);
    if (!sentence.isEmpty()) sentence[0] = sentence[0].toUpper();
    return sentence + '.';
}

/// "1 file", "2 files".
QString FileCount(std::size_t count) {
    return count == 1 ? CutCommands::tr("1 file") : CutCommands::tr("%1 files").arg(count);
}

/// The files that a save writes, one line each with all of its names.
QStringList FileLines(const std::vector<CutSaveEntry>& plan) {
    QStringList lines;
    for (const FileToWrite& file : FilesToWrite(plan)) {
        QString line = QString::fromStdString(file.names.front());
        for (std::size_t i = 1; i < file.names.size(); ++i)
            line += CutCommands::tr(", which is also %1").arg(QString::fromStdString(file.names[i]));
        lines << (file.hasCuts ? line : CutCommands::tr("%1 (clip plane only)").arg(line));
    }
    return lines;
}

bool IsToBeWritten(const CutSaveEntry& entry) { return entry.outcome == KV_ScenePane::CutToBeWritten; }

}  // namespace

// ---- what is unsaved

CutCommands::Entries CutCommands::Plan() const {
    if (m_pViewer == nullptr) return {};
    Entries plan = m_pViewer->PlanCutSave();
    // Deleted objects are in the viewer as long as they can be restored. A save comes after that.
    for (std::size_t i = 0; i < plan.size(); ++i) {
        if (!m_objects.IsRemoved(static_cast<int>(i))) continue;
        CutSaveEntry nothing;
        nothing.object = plan[i].object;
        nothing.file = plan[i].file;
        plan[i] = nothing;
    }
    NameFiles(plan);
    return plan;
}

void CutCommands::NameFiles(Entries& entries) const {
    const std::vector<ObjectRow> rows = m_objects.Rows();
    for (CutSaveEntry& entry : entries) {
        const auto row = static_cast<std::size_t>(entry.object);
        if (entry.file.empty() && row < rows.size()) entry.file = KV_ScenePane::WidePath(rows[row].file);
    }
}

std::vector<CutObject> CutCommands::Objects(const Entries& plan) const {
    const std::vector<ObjectRow> rows = m_objects.Rows();
    std::vector<CutObject> objects;
    objects.reserve(plan.size());
    for (std::size_t i = 0; i < plan.size() && i < rows.size(); ++i)
        objects.push_back({.id = rows[i].isRemoved ? -1 : rows[i].id,
                           .cuts = plan[i].numberOfCuts,
                           .isFromPcm = plan[i].outcome != KV_ScenePane::CutNotFromPcm,
                           .vertices = rows[i].vertices});
    return objects;
}

bool CutCommands::HaveUnsaved() const {
    return std::ranges::any_of(Objects(Plan()), [this](const CutObject& object) { return m_ledger.IsUnsaved(object); });
}

bool CutCommands::IsUnsaved(int index) const {
    const std::vector<CutObject> objects = Objects(Plan());
    const auto i = static_cast<std::size_t>(index);
    return i < objects.size() && m_ledger.IsUnsaved(objects[i]);
}

QStringList CutCommands::UnsavedLines(const Entries& plan, bool* canSave) const {
    const std::vector<CutObject> objects = Objects(plan);
    QStringList lines;
    *canSave = false;
    for (std::size_t i = 0; i < objects.size(); ++i) {
        if (!m_ledger.IsUnsaved(objects[i])) continue;
        const QString file = QString::fromStdString(KV_ScenePane::PathBytes(plan[i].file));
        if (m_ledger.HasLostCuts(objects[i].id))
            lines << file + ": " + FailedBefore(objects[i]);
        else if (!objects[i].isFromPcm)
            lines << tr("%1: only pcm files can hold cuts; export the object to keep them").arg(file);
        else
            lines << file;
        *canSave = *canSave || IsToBeWritten(plan[i]);
    }
    return lines;
}

bool CutCommands::AskAboutUnsaved(const QString& title) {
    // Once more after a save: cuts that it could not write are named, and can only be discarded.
    while (m_pViewer != nullptr) {
        const Entries plan = Plan();
        bool canSave = false;
        const QStringList lines = UnsavedLines(plan, &canSave);
        if (lines.isEmpty()) return true;
        FileListDialog::Texts texts{title, tr("There are cuts that are not saved:"), lines, {}};
        QDialogButtonBox::StandardButtons buttons = QDialogButtonBox::Discard | QDialogButtonBox::Cancel;
        if (canSave) {
            buttons |= QDialogButtonBox::Save;
            texts.lines << QString() << tr("Save rewrites %1:").arg(FileCount(FilesToWrite(plan).size()))
                        << FileLines(plan);
            texts.note = SaveNote();
        }
        const auto answer =
            FileListDialog(texts, buttons, canSave ? QDialogButtonBox::Save : QDialogButtonBox::Cancel, m_pWindow)
                .Ask();
        if (answer == QDialogButtonBox::Discard) return true;
        if (answer != QDialogButtonBox::Save) return false;
        Cancel();
        if (RefuseMoved(Plan()) || !Write()) return false;
    }
    return true;  // the cuts are gone with the viewer
}

void CutCommands::OnExported(int index) {
    const std::vector<CutObject> objects = Objects(Plan());
    const auto i = static_cast<std::size_t>(index);
    if (i < objects.size()) m_ledger.OnExported(objects[i]);
    emit Changed();
}

// ---- the save

QString CutCommands::SaveNote() const {
    QStringList sentences;
    for (const std::string& text : OtherRemovals(m_isClipping(), m_fConfidence)) sentences << Sentence(text);
    sentences << tr("What is removed from a file cannot be restored: undo does not bring files back.");
    return sentences.join('\n');
}

bool CutCommands::Save() {
    if (m_pViewer == nullptr) return false;
    Cancel();
    const Entries plan = Plan();
    if (std::ranges::any_of(plan, IsToBeWritten)) return !RefuseMoved(plan) && AskToWrite(plan) && Write();
    const std::vector<CutObject> objects = Objects(plan);
    QStringList lines;
    bool hasFailures = false;
    for (std::size_t i = 0; i < objects.size(); ++i) {
        if (const QString text = FailedBefore(objects[i]); !text.isEmpty()) {
            hasFailures = true;
            lines << QString::fromStdString(KV_ScenePane::PathBytes(plan[i].file)) + ": " + text;
        } else if (plan[i].outcome == KV_ScenePane::CutNotFromPcm && plan[i].numberOfCuts > 0) {
            lines << TranslatedText(CutSaveLine(plan[i]));
        }
    }
    lines << (hasFailures ? tr("Nothing was saved: what has failed is not written again.")
                          : tr("Nothing was saved: no new cut concerns a pcm file."));
    emit Report(lines.join('\n'));
    return false;
}

QString CutCommands::FailedBefore(const CutObject& object) const {
    if (m_ledger.HasLostCuts(object.id)) return tr("a save has failed; undo the cut and draw it again");
    if (m_ledger.HasLostPlane(object.id) && m_isClipping())
        return tr("a save of the clip plane has failed; move the plane a little, or open the file again");
    return {};
}

bool CutCommands::RefuseMoved(const Entries& plan) {
    QStringList lines;
    for (const std::string& line : MovedObjectLines(plan)) lines << TranslatedText(line);
    if (lines.isEmpty()) return false;
    emit Report(lines.join('\n') + '\n' + tr("No cuts were saved."));
    const FileListDialog::Texts texts{
        tr("Save cuts"), tr("No cuts are saved:"), lines,
        tr("The file of an object that was moved would lose other points than the lasso enclosed.")};
    (void)FileListDialog(texts, QDialogButtonBox::Close, QDialogButtonBox::Close, m_pWindow).Ask();
    return true;
}

bool CutCommands::AskToWrite(const Entries& plan) {
    const QStringList files = FileLines(plan);
    const FileListDialog::Texts texts{
        tr("Save cuts"), tr("Save cuts? This rewrites %1:").arg(FileCount(static_cast<std::size_t>(files.size()))),
        files, SaveNote()};
    FileListDialog dialog(texts, QDialogButtonBox::Save | QDialogButtonBox::Cancel, QDialogButtonBox::Save, m_pWindow);
    return dialog.Ask() == QDialogButtonBox::Save && m_pViewer != nullptr;  // it may be lost meanwhile
}

bool CutCommands::Write() {
    if (m_pViewer == nullptr) return false;
    emit AboutToWrite();
    const Entries plan = Plan();
    QString failure;
    QGuiApplication::setOverrideCursor(Qt::WaitCursor);
    try {
        (void)m_pViewer->Methods().SaveCuttingToPcms();
    } catch (...) {  // no exception may pass through Qt
        failure = TranslatedText(TextOfCaughtError());
    }
    QGuiApplication::restoreOverrideCursor();
    Entries results = m_pViewer->GetCutSaveResults();
    NameFiles(results);
    const bool good = ReportSave(plan, results) && failure.isEmpty();
    if (!failure.isEmpty()) emit Report(tr("The cuts were not saved: %1").arg(failure));
    return good;
}

QStringList CutCommands::KeepResults(const Entries& plan, const Entries& results) {
    const std::vector<CutObject> objects = Objects(plan);
    const Entries after = Plan();
    bool isKept = false, hasLostCuts = false, hasLostPlane = false;
    for (std::size_t i = 0; i < results.size() && i < objects.size() && i < after.size(); ++i) {
        const CutObject& object = objects[i];
        const bool isLeft = IsToBeWritten(after[i]);
        if (HasFailed(results[i])) {
            if (!isLeft && object.cuts > 0) m_ledger.OnSaveFailed(object, UndoSteps());
            if (!isLeft && object.cuts == 0) m_ledger.OnPlaneFailed(object.id);
            isKept = isKept || isLeft;
            hasLostCuts = hasLostCuts || m_ledger.HasLostCuts(object.id);
            hasLostPlane = hasLostPlane || (!isLeft && object.cuts == 0);
        } else if (results[i].outcome == KV_ScenePane::CutWritten && !isLeft) {
            m_ledger.OnSaved(object.id, UndoSteps());
        }
    }
    QStringList advice;
    if (hasLostCuts)
        advice << tr("The viewer keeps no cuts of a file that failed: undo these cuts and draw them again.");
    if (hasLostPlane)
        advice << tr("A clip plane that failed is not written again: move it a little, or open the file again.");
    if (isKept) advice << tr("The viewer still has cuts that were not written, as memory was short: save them again.");
    return advice;
}

bool CutCommands::ReportSave(const Entries& plan, const Entries& results) {
    const QStringList advice = KeepResults(plan, results);
    const std::vector<CutObject> objects = Objects(plan);
    QStringList lines;
    std::size_t written = 0, skipped = 0, failed = 0, failedBefore = 0;
    for (std::size_t i = 0; i < results.size() && i < objects.size(); ++i) {
        const CutSaveEntry& result = results[i];
        if (result.outcome == KV_ScenePane::CutNothingToSave) {
            const QString text = FailedBefore(objects[i]);
            if (text.isEmpty()) continue;
            ++failedBefore;
            lines << QString::fromStdString(KV_ScenePane::PathBytes(result.file)) + ": " + text;
            continue;
        }
        lines << TranslatedText(CutSaveLine(result));
        ++(HasFailed(result) ? failed : result.outcome == KV_ScenePane::CutWritten ? written : skipped);
    }
    emit Changed();
    // Objects are counted: two of them may be from one file.
    QString summary = tr("Cuts saved: %1 written").arg(written);
    if (skipped > 0) summary += tr(", %1 skipped").arg(skipped);
    if (failed > 0) summary += tr(", %1 failed").arg(failed);
    if (failedBefore > 0) summary += tr(", %1 failed before").arg(failedBefore);
    emit Report(lines.join('\n') + '\n' + summary);
    if (skipped + failed + failedBefore == 0) return true;
    (void)FileListDialog({tr("Save cuts"), summary + ':', lines, advice.join('\n')}, QDialogButtonBox::Close,
                         QDialogButtonBox::Close, m_pWindow)
        .Ask();
    return failed == 0;
}
