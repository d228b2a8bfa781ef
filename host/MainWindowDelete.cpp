// Objects leave the scene: deletions that can be restored, those that are final, and the clearing of the scene. What
// deletes and restores is in DeletionCommands.h.
#include <QStatusBar>
#include <algorithm>

#include "AlignCommands.h"
#include "ClipPanel.h"
#include "CutCommands.h"
#include "CutToolBar.h"
#include "DeletionCommands.h"
#include "FileListDialog.h"
#include "MainWindow.h"
#include "MarkerPanel.h"
#include "MessagePane.h"
#include "NeedlePanel.h"
#include "ObjectColors.h"
#include "ObjectCommands.h"
#include "ObjectList.h"
#include "ResidualPanel.h"
#include "StatusLine.h"
#include "TransformCommands.h"

void MainWindow::MakeDeletions() {
    m_pDeletions = new DeletionCommands(*m_pObjects, this);
    connect(m_pDeletions, &DeletionCommands::Restored, m_pTransforms, &TransformCommands::OnObjectsReplaced);
    connect(m_pDeletions, &DeletionCommands::Changed, this, &MainWindow::FollowDeletions);
    connect(m_pCuts, &CutCommands::AboutToWrite, this, &MainWindow::FinishDeletions);
    connect(m_pCutTools, &CutToolBar::UndoWanted, this, &MainWindow::Undo);
    connect(m_pStatus, &StatusLine::UndoWanted, this, &MainWindow::Undo);
}

// ---- deletions that can be restored

void MainWindow::RemoveObjects(const std::vector<int>& indices) {
    if (Pane() == nullptr || IsImporting()) return;
    m_pCuts->Cancel();
    m_pAligns->Finish();
    m_pTransforms->Note();  // where they are, should they be restored
    const QString lost = LossText(indices);
    const QString text = indices.size() == 1 ? tr("%1 deleted").arg(m_pObjects->NameOf(indices.front()))
                                             : tr("%Ln object(s) deleted", nullptr, static_cast<int>(indices.size()));
    m_pDeletions->Delete(indices);
    if (m_pDeletions->UndoCount() == 0) return;
    statusBar()->clearMessage();
    m_pStatus->OfferUndo(lost.isEmpty() ? text : lost);
    QStringList sentences{tr("%1. Undo restores what was deleted, until the next import or save.").arg(text)};
    if (!lost.isEmpty()) sentences << lost + '.';
    m_pMessages->AddText(sentences.join(' '));
}

QString MainWindow::LossText(const std::vector<int>& indices) const {
    const std::vector<int> moved = m_pTransforms->UnsavedRows();
    int cuts = 0, transforms = 0;
    for (const int index : indices) {
        if (m_pCuts->IsUnsaved(index)) ++cuts;
        if (std::ranges::find(moved, index) != moved.end()) ++transforms;
    }
    if (cuts == 0 && transforms == 0) return {};
    if (transforms == 0) return tr("Deleted with cuts that are not saved");
    if (cuts == 0) return tr("Deleted with transforms that are not saved");
    return tr("Deleted with cuts and transforms that are not saved");
}

void MainWindow::Undo() {
    if (!m_pDeletions->CanUndo()) {
        m_pCuts->Undo();
        return;
    }
    if (Pane() == nullptr || IsImporting() || !IsMouseFree()) return;
    const int count = m_pDeletions->UndoCount();
    m_pDeletions->Undo();
    const QString text = tr("%Ln object(s) restored", nullptr, count);
    Report(text);
}

void MainWindow::FollowDeletions() {
    if (Pane() == nullptr) return;
    MarkDeletedPicks();
    m_pClip->FollowScene();
    EnableActions();
}

// ---- final ones

void MainWindow::FinishDeletions() {
    const std::vector<int> deleted = m_pDeletions->Deleted();
    if (deleted.empty()) return;
    DeleteObjects(deleted);
    m_pDeletions->Clear();
}

void MainWindow::DeleteObject(int index) { DeleteObjects({index}); }

void MainWindow::DeleteObjects(const std::vector<int>& indices) {
    if (Pane() == nullptr || IsImporting()) return;
    m_pCuts->Cancel();
    m_pAligns->Finish();
    KV_ScenePane::_DKV_ScenePane& methods = Pane()->Methods();
    // An undo step of a cut may keep the objects: their boxes would be drawn as long as they are selected.
    methods.ResetSelection();
    methods.ResetVariableObjects();
    std::vector<int> newIndex(static_cast<std::size_t>(m_pObjects->ObjectCount()));
    int next = 0;
    for (std::size_t i = 0; i < newIndex.size(); ++i)
        newIndex[i] = std::ranges::binary_search(indices, static_cast<int>(i)) ? -1 : next++;
    // From the end: later objects then have an index less.
    for (auto index = indices.rbegin(); index != indices.rend(); ++index) {
        methods.DeleteObject(static_cast<std::int16_t>(*index));
        m_pObjects->RemoveObject(*index);
    }
    m_pObjectCommands->FollowSelection();
    methods.PerformInvalidate();  // the method requests no repaint
    RenumberPicks(newIndex);
    m_pClip->FollowScene();
    FollowCuts();
}

// ---- the whole scene

void MainWindow::ClearScene() {
    if (Pane() == nullptr || IsImporting()) return;
    KV_ScenePane::_DKV_ScenePane& methods = Pane()->Methods();
    m_pCuts->Cancel();
    m_pAligns->Finish();
    // The viewer keeps plain pointers to selected objects; they must not outlive the objects.
    methods.ResetSelection();
    methods.ResetVariableObjects();
    // ClearData() keeps free points and fits the view to them; it removes lines.
    DeleteAllPoints();
    methods.ClearData();
    m_pObjects->RemoveAll();
    m_pColors->OnSceneCleared();
    m_pCuts->OnSceneCleared();
    m_pTransforms->OnSceneCleared();
    m_pResiduals->Clear();
    m_pMarkers->Clear();
    ClearPickPoints();
    ForgetPicks();
    ShowView(m_options.view);  // ClearData() resets the view
    m_pDeletions->Clear();
}

QStringList MainWindow::ClearingLines() const {
    QStringList lines;
    const auto add = [&lines](std::size_t count, const QString& text) {
        if (count > 0) lines << text;
    };
    const auto count = [](std::size_t size) { return static_cast<int>(size); };
    const std::size_t objects = m_pObjects->PresentObjects().size(), sets = m_pMarkers->PointIds().size();
    add(objects, tr("%Ln object(s)", nullptr, count(objects)));
    add(sets, tr("%Ln set(s) of free points", nullptr, count(sets)));
    add(static_cast<std::size_t>(m_pMarkers->LineCount()), tr("%Ln line(s)", nullptr, m_pMarkers->LineCount()));
    add(m_vPickPoints.size(), tr("%Ln picked point(s)", nullptr, count(m_vPickPoints.size())));
    return lines;
}

QStringList MainWindow::UnsavedLines() const {
    QStringList lines;
    const std::vector<int> moved = m_pTransforms->UnsavedRows();
    for (const int index : m_pObjects->PresentObjects()) {
        const QString name = m_pObjects->NameOf(index);
        const bool isMoved = std::ranges::binary_search(moved, index);
        if (m_pCuts->IsUnsaved(index)) lines << tr("%1: cuts").arg(name);
        if (isMoved) lines << tr("%1: transform").arg(name);
    }
    return lines;
}

void MainWindow::AskToClear() {
    if (Pane() == nullptr) return;
    FileListDialog::Texts texts{tr("Clear the scene"), tr("Remove all of this? There is no undo."), ClearingLines(),
                                tr("Needles stay. Files stay as they are.")};
    if (texts.lines.isEmpty()) {
        ClearScene();  // the view and what is left of deletions
        return;
    }
    if (const QStringList unsaved = UnsavedLines(); !unsaved.isEmpty())
        texts.lines << QString() << tr("Not saved:") << unsaved;
    FileListDialog dialog(texts, QDialogButtonBox::Yes | QDialogButtonBox::Cancel, QDialogButtonBox::Cancel, this);
    dialog.SetButtonText(QDialogButtonBox::Yes, tr("Clear"));
    if (dialog.Ask() == QDialogButtonBox::Yes) ClearScene();
}
