// The view in the window: the note over it, the menu of a right click in it, what shadows exclude, and the table of its
// keys.
#include <QApplication>
#include <QClipboard>
#include <QMenu>
#include <QStackedWidget>
#include <QStatusBar>

#include "ClipPanel.h"
#include "MainWindow.h"
#include "MarkerPanel.h"
#include "NeedlePanel.h"
#include "ObjectList.h"
#include "PickPanel.h"
#include "SceneReport.h"
#include "ShortcutDialog.h"
#include "ToolAction.h"
#include "ViewNote.h"
#include "ViewerWidget.h"

// ---- the note

void MainWindow::MakeViewNote() {
    m_pNote = new ViewNote(
        *m_pViewer, [this] { return NoteState(); }, m_pCentre);
    // What can change what the picture shows. Each frame that the viewer draws comes from one of them.
    connect(m_pViewer, &ViewerWidget::Handled, m_pNote, &ViewNote::CheckLater);
    connect(m_pViewer, &ViewerWidget::Refused, m_pNote, &ViewNote::CheckLater);
    connect(this, &MainWindow::ImportFinished, m_pNote, &ViewNote::CheckLater);
    connect(m_pClip, &ClipPanel::Changed, m_pNote, &ViewNote::CheckLater);
    const QAbstractItemModel* const rows = m_pObjects->model();
    connect(rows, &QAbstractItemModel::dataChanged, m_pNote, &ViewNote::CheckLater);
    connect(rows, &QAbstractItemModel::rowsInserted, m_pNote, &ViewNote::CheckLater);
    connect(rows, &QAbstractItemModel::rowsRemoved, m_pNote, &ViewNote::CheckLater);
    connect(rows, &QAbstractItemModel::modelReset, m_pNote, &ViewNote::CheckLater);
}

ViewNoteState MainWindow::NoteState() const {
    ViewNoteState state;
    state.hasViewer = Pane() != nullptr;
    if (!state.hasViewer) return state;
    KV_ScenePane::_DKV_ScenePane& methods = Pane()->Methods();
    state.isBusy = IsImporting() || !m_vWaitingFiles.empty();
    for (const int index : m_pObjects->PresentObjects()) {
        ++state.objects;
        if (!m_pObjects->IsHidden(index)) ++state.visibleObjects;
    }
    state.hasMarks = !m_pMarkers->PointIds().empty() || m_pMarkers->LineCount() > 0 || methods.GetNumberOfNeedles() > 0;
    state.drawMode = methods.GetDrawMode();
    state.shadows = methods.GetShadowMode() != 0;
    state.isAllClipped = m_pClip->IsClipping() && m_pClip->CutsAwayAll();
    return state;
}

// ---- shadows

// Shadows exclude the modes that show nothing with them, and such a mode excludes shadows. What is on can be left.
void MainWindow::FollowShadows() {
    if (Pane() == nullptr) return;
    KV_ScenePane::_DKV_ScenePane& methods = Pane()->Methods();
    const bool shadows = methods.GetShadowMode() != 0, usable = !IsLassoRunning();
    const std::int16_t mode = methods.GetDrawMode();
    if (m_bShadowsApplied) m_pShadows->setChecked(shadows);
    for (int i = 0; i < m_drawModeActions.size(); ++i) {
        QAction& action = *m_drawModeActions[i];
        const bool isExcluded = shadows && i != mode && IsBlankWithShadows(i);
        action.setEnabled(usable && !isExcluded);
        SetToolTips(action, isExcluded ? tr("shows no objects while shadows are on") : QString());
    }
    const bool isExcluded = !shadows && IsBlankWithShadows(mode);
    m_pShadows->setEnabled(usable && !isExcluded);
    SetToolTips(*m_pShadows, isExcluded ? tr("not with this render mode, which would show no objects") : QString());
    m_pNote->CheckLater();
}

// ---- the menu of a right click

void MainWindow::ShowMenuAt(QPoint pixel) {
    if (Pane() == nullptr || !IsMouseFree()) return;
    if (QApplication::activePopupWidget() != nullptr || QApplication::activeModalWidget() != nullptr) return;
    auto* const menu = new QMenu(this);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    menu->setObjectName("viewMenu");
    if (AddPickEntries(*menu, pixel)) {
        menu->setObjectName("pickMenu");
        m_pPickMenu = menu;
        menu->addSeparator();
        FillViewMenu(*menu->addMenu(tr("&View and object")), pixel);
    } else {
        FillViewMenu(*menu, pixel);
    }
    menu->popup(m_pViewer->mapToGlobal((QPointF(pixel) / m_pViewer->devicePixelRatioF()).toPoint()));
}

void MainWindow::FillViewMenu(QMenu& menu, QPoint pixel) {
    KV_ScenePane::SurfacePoint hit;
    if (Pane()->PickSurface(pixel.x(), pixel.y(), &hit)) AddObjectEntries(menu, hit);
    menu.addAction(m_pFit);
    menu.addMenu(tr("V&iews"))->addActions(m_viewActions);
    QMenu* const modes = menu.addMenu(tr("&Render mode"));
    modes->setToolTipsVisible(true);  // why a mode cannot be used now
    modes->addActions(m_drawModeActions);
    menu.addAction(m_pShadows);
    menu.addSeparator();
    menu.addAction(m_pBackground);
    menu.addAction(m_pSavePicture);
}

void MainWindow::AddObjectEntries(QMenu& menu, const KV_ScenePane::SurfacePoint& hit) {
    const int object = hit.object;
    QTreeWidgetItem* const row = m_pObjects->Row(object);
    if (row == nullptr) return;  // the import that has added it still runs
    const QString name = QString(m_pObjects->NameOf(object)).replace('&', "&&");  // one alone marks a key
    menu.addAction(name)->setEnabled(false);
    menu.addAction(tr("S&elect in the list"), this, [this, object] {
        if (QTreeWidgetItem* const item = m_pObjects->Row(object)) m_pObjects->setCurrentItem(item);
    });
    menu.addAction(tr("&Hide"), this, [this, object] {
        if (QTreeWidgetItem* const item = m_pObjects->Row(object))
            item->setCheckState(ObjectList::kName, Qt::Unchecked);  // the list reports it
    });
    QAction* const remove = menu.addAction(tr("&Delete"), this, [this, object] { RemoveObjects({object}); });
    remove->setEnabled(!IsImporting());
    QStringList numbers;
    for (const float part : hit.point) numbers << QString::fromStdString(NumberText(part));
    menu.addAction(tr("&Copy the point %1").arg(ShownPoint(hit.point)), this, [this, numbers] {
        QGuiApplication::clipboard()->setText(numbers.join('\t'));
        statusBar()->showMessage(tr("Copied: %1").arg(numbers.join(' ')));
    });
    menu.addSeparator();
}

// ---- help

void MainWindow::ShowShortcuts() {
    if (m_pShortcuts == nullptr) m_pShortcuts = new ShortcutDialog(this);
    std::vector<ShortcutRow> rows = ViewerInputs(m_mouseScheme);
    const std::vector<ShortcutRow> actions = ActionShortcuts(*this);
    rows.insert(rows.end(), actions.begin(), actions.end());
    m_pShortcuts->ShowRows(rows);
    m_pShortcuts->show();
    m_pShortcuts->raise();
    m_pShortcuts->activateWindow();
}
