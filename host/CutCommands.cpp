// Lasso, undo, and the list of objects after both. The save is in CutCommandsSave.cpp.
#include "CutCommands.h"

#include <algorithm>
#include <utility>

#include "CaughtError.h"
#include "FileListDialog.h"
#include "LassoTints.h"
#include "PaintBlock.h"
#include "SceneReport.h"
#include "TranslatedText.h"

namespace {

const ObjectRow* RowOf(const std::vector<ObjectRow>& rows, int id) {
    const auto row = std::ranges::find(rows, id, &ObjectRow::id);
    return row != rows.end() ? &*row : nullptr;
}

std::int64_t VerticesOf(const std::vector<ObjectRow>& rows) {
    std::int64_t count = 0;
    for (const ObjectRow& row : rows) count += row.vertices;
    return count;
}

/// File without its folders.
QString NameOf(const ObjectRow& row) { return QString::fromStdString(row.file.substr(row.file.rfind('/') + 1)); }

}  // namespace

CutCommands::CutCommands(ObjectList& objects, const LassoSettings& lasso, QWidget* window)
    : QObject(window), m_objects(objects), m_pWindow(window), m_lasso(lasso) {}

void CutCommands::SetViewer(KV_ScenePane::ScenePane* viewer) {
    m_pViewer = viewer;
    m_way.reset();
    OnSceneCleared();  // another viewer has other objects
    if (viewer != nullptr) ApplyColors();
}

void CutCommands::SetColors(const LassoSettings& lasso) {
    m_lasso = lasso;
    if (m_pViewer != nullptr) ApplyColors();
}

void CutCommands::ApplyColors() {
    const LassoTints tints = TintsOf(m_lasso);
    m_pViewer->Methods().SetLassoCuttingColors(tints.inside, tints.insideOpacity, tints.outside, tints.outsideOpacity);
}

int CutCommands::UndoSteps() const { return m_pViewer != nullptr ? m_pViewer->GetUndoStepCount() : 0; }

// ---- the lasso

void CutCommands::Start(Way way) {
    if (m_pViewer == nullptr) return;
    Cancel();
    if (m_objects.PresentObjects().empty()) {
        emit Report(tr("There is no object to cut."));
        emit Changed();  // a tool that was pressed is released again
        return;
    }
    m_way = way;
    emit Changed();  // before the viewer: its other uses of the mouse end first
    m_pViewer->Methods().StopAnimation();
    try {
        m_pViewer->Methods().StartSegmentation(way);
    } catch (...) {  // no exception may pass through Qt
        const QString reason = TranslatedText(TextOfCaughtError());
        m_way.reset();
        emit Changed();
        emit Report(tr("No lasso can be drawn: %1").arg(reason));
    }
}

void CutCommands::Cancel() {
    if (m_pViewer == nullptr || !m_way) return;
    m_pViewer->Methods().EndSegmentation();
    if (m_way) OnLassoEnded(-1);  // the viewer had ended it before
}

void CutCommands::OnCutAboutToApply() {
    m_vSteps.push_back(m_objects.Rows());
    emit AboutToReplaceObjects();
}

void CutCommands::OnLassoEnded(int objects) {
    m_way.reset();
    if (objects < 0 || m_pViewer == nullptr) {
        // The viewer may have failed after it announced a cut.
        if (const auto steps = static_cast<std::size_t>(UndoSteps()); m_vSteps.size() > steps) m_vSteps.resize(steps);
        emit Changed();
        emit Report(tr("Nothing was cut."));
        return;
    }
    const std::vector<ObjectRow> before = m_objects.Rows();
    ShowObjects(before);
    emit Changed();
    const std::int64_t removed = VerticesOf(before) - VerticesOf(m_objects.Rows());
    emit Report(removed == 1 ? tr("Cut: 1 point was removed.") : tr("Cut: %1 points were removed.").arg(removed));
}

// ---- undo

void CutCommands::Undo() {
    if (m_pViewer == nullptr || m_way || UndoSteps() == 0 || !AskToUndo()) return;
    const std::vector<ObjectRow> before = m_objects.Rows();
    emit AboutToReplaceObjects();
    {
        const PaintBlock block(m_pViewer->Methods());  // one frame, with the visibility that the list shows
        (void)m_pViewer->Methods().PerformUndo();
        std::vector<ObjectRow> rows = TakeStep();
        DropDeleted(&rows, before);
        for (std::size_t i = 0; i < rows.size(); ++i)
            m_pViewer->Methods().SetObjectVisibility(static_cast<std::int16_t>(i),
                                                     rows[i].isVisible && !rows[i].isRemoved ? 1 : 0);
        ShowObjects(rows);
    }
    m_pViewer->Methods().PerformInvalidate();
    const QString text = UndoText(before);
    m_ledger.OnUndone(Objects(Plan()), UndoSteps());
    emit Changed();
    emit Report(text);
}

bool CutCommands::AskToUndo() {
    if (m_vSteps.empty()) return true;
    QStringList opened;
    for (const ObjectRow& row : m_objects.Rows()) {
        if (!row.isRemoved && RowOf(m_vSteps.back(), row.id) == nullptr) opened << NameOf(row);
    }
    if (opened.isEmpty()) return true;
    const int steps = UndoSteps();
    FileListDialog dialog({tr("Take back the cut"), tr("Taking this cut back also removes what was opened after it:"),
                           opened, tr("Their files stay as they are and can be opened again.")},
                          QDialogButtonBox::Yes | QDialogButtonBox::Cancel, QDialogButtonBox::Cancel, m_pWindow);
    dialog.SetButtonText(QDialogButtonBox::Yes, tr("Take back"));
    // The viewer can be lost while the dialog is open.
    return dialog.Ask() == QDialogButtonBox::Yes && m_pViewer != nullptr && UndoSteps() == steps;
}

std::vector<ObjectRow> CutCommands::TakeStep() {
    if (m_vSteps.empty()) return m_objects.Rows();  // a cut that this has not seen
    std::vector<ObjectRow> rows = std::move(m_vSteps.back());
    m_vSteps.pop_back();
    const std::vector<ObjectRow> now = m_objects.Rows();
    for (ObjectRow& row : rows) {
        const ObjectRow* const present = RowOf(now, row.id);
        if (present == nullptr) continue;
        row.isVisible = present->isVisible;
        row.mayMove = present->mayMove;
        row.isRemoved = present->isRemoved;
    }
    return rows;
}

void CutCommands::DropDeleted(std::vector<ObjectRow>* rows, const std::vector<ObjectRow>& before) {
    for (std::size_t i = rows->size(); i-- > 0;) {
        if (!(*rows)[i].isRemoved || RowOf(before, (*rows)[i].id) != nullptr) continue;
        m_pViewer->Methods().DeleteObject(static_cast<std::int16_t>(i));
        rows->erase(rows->begin() + static_cast<std::ptrdiff_t>(i));
    }
}

QString CutCommands::UndoText(const std::vector<ObjectRow>& before) const {
    const std::vector<ObjectRow> after = m_objects.Rows();
    QStringList gone, restored, saved;
    for (const ObjectRow& row : before) {
        if (RowOf(after, row.id) == nullptr) gone << NameOf(row);
    }
    for (const ObjectRow& row : after) {
        const ObjectRow* const former = RowOf(before, row.id);
        if (former == nullptr) restored << NameOf(row);
        const bool hasChanged = former == nullptr || former->vertices != row.vertices;
        if (hasChanged && m_ledger.IsInFile(row.id, UndoSteps() + 1)) saved << NameOf(row);
    }
    QString text = UndoSteps() == 0 ? tr("The cut was taken back.")
                                    : tr("The cut was taken back; %1 can be taken back, too.").arg(UndoSteps());
    if (!gone.isEmpty()) text += tr(" Removed, because opened after the cut: %1.").arg(gone.join(", "));
    if (!restored.isEmpty()) text += tr(" Restored, because deleted after the cut: %1.").arg(restored.join(", "));
    if (saved.size() == 1) text += tr(" The file stays cut: %1.").arg(saved.front());
    if (saved.size() > 1) text += tr(" The files stay cut: %1.").arg(saved.join(", "));
    return text;
}

// ---- the list

void CutCommands::ShowObjects(std::vector<ObjectRow> rows) {
    const std::vector<ObjectRow> before = m_objects.Rows();
    const std::int16_t count = m_pViewer->Methods().GetNumObjects();
    // A host that does more than this one could have changed the number; a row without an id is never found again.
    rows.resize(static_cast<std::size_t>(count));
    std::vector<ObjectReport> reports;
    reports.reserve(rows.size());
    for (std::int16_t i = 0; i < count; ++i)
        reports.push_back(ReportObject(*m_pViewer, i, rows[static_cast<std::size_t>(i)].file));
    m_objects.ShowRows(rows, reports);
    std::vector<int> newIndex;
    newIndex.reserve(before.size());
    for (const ObjectRow& row : before) {
        const ObjectRow* const now = RowOf(rows, row.id);
        newIndex.push_back(now != nullptr ? static_cast<int>(now - rows.data()) : -1);
    }
    emit ObjectsReplaced(newIndex);
}

void CutCommands::OnSceneCleared() {
    m_vSteps.clear();
    m_ledger.Clear();
    emit Changed();
}
