// The pane of the objects, its commands, and the selection of objects in the view. What the commands do to the scene is
// in ObjectCommands.h and ObjectColors.h.
#include <QAction>
#include <QApplication>
#include <QMenu>

#include "ClipPanel.h"
#include "MainWindow.h"
#include "ObjectColors.h"
#include "ObjectCommands.h"
#include "ObjectList.h"
#include "ObjectPalette.h"
#include "ObjectPane.h"
#include "ViewerWidget.h"

QWidget* MainWindow::MakeObjectPane() {
    m_pObjects = new ObjectList;
    m_pColors = new ObjectColors(*m_pObjects, this);
    m_pObjectCommands = new ObjectCommands(*m_pObjects, this);
    connect(m_pObjects, &ObjectList::VisibilityWanted, this, &MainWindow::ShowObject);
    connect(m_pObjects, &ObjectList::ColorWanted, this, &MainWindow::ColorObject);
    connect(m_pObjects, &ObjectList::CentringWanted, this, &MainWindow::CentreOnObject);
    connect(m_pObjects, &ObjectList::Renamed, this, &MainWindow::FollowName);
    connect(m_pObjects, &ObjectList::itemSelectionChanged, this, &MainWindow::EnableObjectActions);
    connect(m_pObjects, &ObjectList::CountsChanged, this, &MainWindow::EnableObjectActions);
    connect(m_pObjectCommands, &ObjectCommands::VisibilityChanged, this, [this] {
        m_pClip->FollowScene();
        ShowSceneCounts();
    });
    // Queued: the viewer handles the click first. A pick selects at once, as it reports a point of the object.
    connect(m_pViewer, &ViewerWidget::LeftClicked, this, &MainWindow::SelectByClick, Qt::QueuedConnection);
    connect(m_pViewer, &ViewerWidget::ObjectPicked, this, [this](int object) {
        if (IsMouseFree() && !IsImporting()) m_pObjects->Select({object});
    });
    MakeObjectCommands();
    auto* const pane = new ObjectPane(m_pObjects);
    MakeObjectActions(pane->Commands());
    return pane;
}

void MainWindow::MakeObjectCommands() {
    QAction* const before = m_pObjects->actions().front();
    const auto add = [this, before](const QString& text, const char* name, const QString& tip, auto run) {
        auto* const action = new QAction(text, this);
        action->setObjectName(name);
        action->setStatusTip(tip);
        connect(action, &QAction::triggered, this, run);
        m_pObjects->insertAction(before, action);
        return action;
    };
    const auto separate = [this, before] {
        auto* const separator = new QAction(this);
        separator->setSeparator(true);
        m_pObjects->insertAction(before, separator);
    };
    ObjectCommands* const commands = m_pObjectCommands;
    m_vSelectionActions = {
        add(tr("&Show"), "showObjects", tr("Show the selected objects"), [=] { commands->ShowSelected(); }),
        add(tr("&Hide"), "hideObjects", tr("Hide the selected objects"), [=] { commands->HideSelected(); }),
        add(tr("Show on&ly these"), "showOnlyObjects", tr("Hide all objects but the selected ones"),
            [=] { commands->ShowOnlySelected(); }),
        add(tr("&Centre in the view"), "centreObject", tr("Move the view to the object of the current row"),
            [this] { CentreOnObject(m_pObjects->CurrentObject()); })};
    m_vObjectActions = {add(tr("&Invert visibility"), "invertObjects", tr("Show what is hidden and hide what is shown"),
                            [=] { commands->InvertVisibility(); }),
                        add(tr("Show &all"), "showAllObjects", tr("Show all objects"), [=] { commands->ShowAll(); })};
    separate();
    m_pColorByObject =
        add(tr("Colour &by object"), "colorByObject", tr("Give each object a colour of a palette, to distinguish them"),
            [this] { m_pColors->ColorByObject(); });
    m_pColorAsImported = add(tr("One colo&ur"), "oneColor",
                             tr("Take the colours of the palette back; colours that you have chosen stay"),
                             [this] { m_pColors->ColorAsImported(); });
    m_vObjectActions.push_back(m_pColorByObject);
    m_vObjectActions.push_back(m_pColorAsImported);
    m_vObjectActions.push_back(add(tr("Order o&f opening"), "sortAsOpened",
                                   tr("Sort the rows in the order in which the objects were opened"),
                                   [this] { m_pObjects->SortBy(ObjectList::kUnsorted); }));
    separate();
    m_vSelectionActions.push_back(add(tr("&Export..."), "exportObjects", tr("Write the selected objects into files"),
                                      [this] { AskForExport(); }));
    for (const char* const name : {"deleteObjects", "renameObject", "onlyThisMayMove", "allOthersMayMove"})
        m_vSelectionActions.push_back(m_pObjects->findChild<QAction*>(name));
    m_vObjectActions.push_back(m_pObjects->findChild<QAction*>("noneMayMove"));
}

void MainWindow::MakeObjectActions(QMenu& menu) { menu.addActions(m_pObjects->actions()); }

void MainWindow::MakeColorActions(QMenu& menu) { menu.addActions({m_pColorByObject, m_pColorAsImported}); }

void MainWindow::EnableObjectActions() {
    const bool isIdle = Pane() != nullptr && IsMouseFree() && !IsImporting();
    for (QAction* const action : m_vObjectActions) action->setEnabled(isIdle && HaveObjects());
    const bool hasSelection = !m_pObjects->SelectedObjects().empty();
    for (QAction* const action : m_vSelectionActions) action->setEnabled(isIdle && hasSelection);
}

void MainWindow::ColorObject(int index, std::int32_t packed) {
    if (Pane() != nullptr) m_pColors->Choose(index, packed);
}

void MainWindow::CentreOnObject(int index) {
    if (!IsLassoRunning()) m_pObjectCommands->Centre(index, m_pViewer->size());
}

void MainWindow::FollowName(int index) {
    for (std::vector<PickedPoint>* const picks : {&m_vPickPoints, &m_vLastPicks}) {
        for (PickedPoint& pick : *picks) {
            if (pick.object == index) pick.name = m_pObjects->NameOf(index);
        }
    }
    FollowPickPoints();
    ShowLastPick();
    ShowTransform();
}

void MainWindow::SelectByClick(QPoint pixel) {
    if (Pane() == nullptr || !IsMouseFree() || IsImporting()) return;
    if (QApplication::activePopupWidget() != nullptr || QApplication::activeModalWidget() != nullptr) return;
    // Where a click has another meaning, its object is not selected: picks select by themselves.
    KV_ScenePane::_DKV_ScenePane& methods = Pane()->Methods();
    const std::int16_t mode = methods.GetPickMode();
    const bool picks = mode == KV_ScenePane::PickModeObjects || mode == KV_ScenePane::PickModeObjectsSecond ||
                       mode == KV_ScenePane::PickModePoints;
    if (picks || methods.GetNeedlePickingMode() != 0 || m_nPointToMove >= 0) return;
    m_pObjectCommands->SelectAt(pixel.x(), pixel.y());
}
