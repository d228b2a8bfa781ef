// What mouse and keys do: the menus for it, the one use of the mouse while a lasso or an alignment runs, the window's
// shortcuts while the viewer has the keyboard, and the keys that stay in an input.
#include <QAbstractItemView>
#include <QAbstractSlider>
#include <QAbstractSpinBox>
#include <QApplication>
#include <QDockWidget>
#include <QKeyEvent>
#include <QLabel>
#include <QMenu>
#include <QMenuBar>
#include <QStatusBar>
#include <algorithm>
#include <iterator>
#include <utility>

#include "AlignCommands.h"
#include "AnimationPanel.h"
#include "DecorationPanel.h"
#include "KV_ScenePane/Input.h"
#include "KeyShortcut.h"
#include "MainWindow.h"
#include "ObjectCommands.h"
#include "ObjectList.h"
#include "Settings.h"
#include "ViewerWidget.h"

namespace {

// In the order of KV_ScenePane::RotationMode.
constexpr const char* kRotationNames[] = {
    QT_TRANSLATE_NOOP("MainWindow", "About the &horizontal axis"),
    QT_TRANSLATE_NOOP("MainWindow", "About the &vertical axis"),
    QT_TRANSLATE_NOOP("MainWindow", "About the viewing &axis"),
    QT_TRANSLATE_NOOP("MainWindow", "&Free"),
};

// In the order of MouseScheme.
constexpr const char* kSchemeNames[] = {
    QT_TRANSLATE_NOOP("MainWindow", "&Normal: left turns, right moves"),
    QT_TRANSLATE_NOOP("MainWindow", "&Flipped: left moves, right turns"),
    QT_TRANSLATE_NOOP("MainWindow", "&Delayed: right turns, both move, left picks"),
};

struct PickChoice {
    const char* text;
    KV_ScenePane::PickMode mode;
};

// The other modes of the viewer do the same for the user as one of these.
constexpr PickChoice kPickChoices[] = {
    {QT_TRANSLATE_NOOP("MainWindow", "&Off"), KV_ScenePane::PickModeOff},
    {QT_TRANSLATE_NOOP("MainWindow", "&Points on objects"), KV_ScenePane::PickModePoints},
    {QT_TRANSLATE_NOOP("MainWindow", "&Centre cross"), KV_ScenePane::PickModeCross},
};

/// Whether keys typed into the widget change a value or search a row.
bool IsInput(const QObject* widget) {
    return qobject_cast<const QAbstractSlider*>(widget) != nullptr ||
           qobject_cast<const QAbstractSpinBox*>(widget) != nullptr ||
           qobject_cast<const QAbstractItemView*>(widget) != nullptr;
}

/// Whether a pane stays usable. Messages and events only report; an alignment is looked at through the clip plane.
bool IsUsableDuring(bool alignment, const QString& dock) {
    if (dock == "messages" || dock == "events") return true;
    return alignment && (dock == "clip" || dock == "alignment" || dock == "transform");
}

/// A character without Ctrl, Alt or Meta; Escape and the function keys are none.
bool IsPlainKey(int key, Qt::KeyboardModifiers modifiers) {
    return key >= Qt::Key_Space && key < Qt::Key_Escape &&
           (modifiers & (Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier)) == Qt::NoModifier;
}

}  // namespace

void MainWindow::MakeInputMenus(QMenu& menu) {
    m_rotationActions =
        AddModeActions(*menu.addMenu(tr("R&otation")), kRotationNames, std::size(kRotationNames), m_rotation,
                       [this](int mode) { ChooseRotation(static_cast<KV_ScenePane::RotationMode>(mode)); });
    m_schemeActions = AddModeActions(*menu.addMenu(tr("Mouse b&uttons")), kSchemeNames, std::size(kSchemeNames),
                                     static_cast<int>(m_mouseScheme),
                                     [this](int scheme) { ChooseMouseScheme(static_cast<MouseScheme>(scheme)); });
    m_pMouseMoves = AddSwitch(menu, tr("&Mouse moves the scene"), true, [this](bool on) { AllowMouse(on); });
}

void MainWindow::MakePickMenu(QMenu& menu) {
    std::array<const char*, std::size(kPickChoices)> names{};
    std::transform(std::begin(kPickChoices), std::end(kPickChoices), names.begin(),
                   [](const PickChoice& choice) { return choice.text; });
    m_pickActions = AddModeActions(menu, names.data(), static_cast<int>(names.size()), 0,
                                   [this](int choice) { AskForPickMode(kPickChoices[choice].mode); });
    MakePickActions(menu);
}

void MainWindow::ChooseRotation(KV_ScenePane::RotationMode mode) {
    if (Pane() == nullptr) return;
    m_rotation = mode;
    StoreRotation(mode);
    Pane()->Methods().SetRotationMode(mode);
}

void MainWindow::ChooseMouseScheme(MouseScheme scheme) {
    if (Pane() == nullptr) return;
    m_mouseScheme = scheme;
    StoreMouseScheme(scheme);
    ApplyMouseScheme();
    FollowAlign();
}

void MainWindow::ApplyMouseScheme() {
    const MouseScheme scheme = m_mouseScheme;
    m_pPicks->ShowClicks(scheme == MouseScheme::Delayed ? 1 : scheme == MouseScheme::Flipped ? 0 : 2);
    // Two settings of the viewer that exclude each other here.
    Pane()->Methods().SetIGDRotation(scheme == MouseScheme::Delayed ? 1 : 0);
    Pane()->Methods().FlipMouseButtons(scheme == MouseScheme::Flipped ? 1 : 0);
}

void MainWindow::AllowMouse(bool on) {
    if (Pane() != nullptr) Pane()->Methods().AllowMouseInteraction(on ? 1 : 0);
}

void MainWindow::FollowMouseUse() {
    const MouseUse use = IsLassoRunning() ? MouseUse::Lasso : IsAligning() ? MouseUse::Alignment : MouseUse::View;
    if (use == m_mouseUse) return;
    const MouseUse before = std::exchange(m_mouseUse, use);
    const bool isFree = use == MouseUse::View;
    m_pViewer->SetTakesPresses(!isFree, m_pAligns->RunningWay() == AlignWay::ByPoints);
    m_pLassoHint->setVisible(use == MouseUse::Lasso);
    m_pObjectCommands->SuspendOutline(!isFree);
    if (!isFree) statusBar()->clearMessage();
    EnableActions();
    // A dock and not its contents, which know by themselves when they can be used.
    for (QDockWidget* const dock : findChildren<QDockWidget*>())
        dock->setEnabled(isFree || IsUsableDuring(use == MouseUse::Alignment, dock->objectName()));
    if (Pane() == nullptr) return;
    if (isFree)
        ResumeMouseUses(before);
    else
        SuspendMouseUses();
}

void MainWindow::SuspendMouseUses() {
    KV_ScenePane::_DKV_ScenePane& methods = Pane()->Methods();
    MovePickPoint(-1);  // Escape would cancel both
    // The drag of a needle's head has precedence over a lasso and an alignment.
    m_bNeedlesOfMouse = methods.GetNeedlePickingMode() != 0;
    if (m_bNeedlesOfMouse) methods.SetNeedlePickingMode(KV_ScenePane::kVariantFalse);
    // A delayed press would lose its corner.
    if (m_mouseUse == MouseUse::Lasso && m_mouseScheme == MouseScheme::Delayed) methods.SetIGDRotation(0);
    // Space continues an alignment by points.
    methods.StopAnimation();
    methods.ToggleAnimationOnSpacebar(0);
}

void MainWindow::ResumeMouseUses(MouseUse before) {
    KV_ScenePane::_DKV_ScenePane& methods = Pane()->Methods();
    if (m_bNeedlesOfMouse) methods.SetNeedlePickingMode(KV_ScenePane::kVariantTrue);
    if (before == MouseUse::Lasso && m_mouseScheme == MouseScheme::Delayed) methods.SetIGDRotation(1);
    m_pAnimation->ApplySpacebar();
    // What was opened meanwhile. Queued: this may be a call from inside the viewer.
    QMetaObject::invokeMethod(
        this,
        [this] {
            OpenWaitingFiles();
            OpenWaitingPoints();
            AskForPointsLook();
        },
        Qt::QueuedConnection);
}

void MainWindow::ReservePlainKeysForInputs() {
    for (QWidget* const widget : findChildren<QWidget*>()) {
        if (IsInput(widget)) widget->installEventFilter(this);
    }
    // A held key: each repeat would draw a frame, also those that waited for a slow one. Neither Qt nor the viewer's
    // widget passes them to an action.
    for (QAction* const action : findChildren<QAction*>()) action->setAutoRepeat(false);
    // At the start the keys go to the viewer. Qt would choose the first input in the tab order.
    m_pViewer->setFocus();
}

bool MainWindow::eventFilter(QObject* watched, QEvent* event) {
    // Qt asks the widget that has the keyboard before it looks for a shortcut.
    if (event->type() == QEvent::ShortcutOverride) {
        const auto* const press = static_cast<QKeyEvent*>(event);
        // The list of objects has no search, and uses Space only.
        const bool isUsed = watched != m_pObjects || press->key() == Qt::Key_Space;
        if (isUsed && IsPlainKey(press->key(), press->modifiers())) {
            event->accept();  // the press then goes to the input and triggers no shortcut
            return true;
        }
    }
    return QMainWindow::eventFilter(watched, event);
}

void MainWindow::RunShortcut(int key, Qt::KeyboardModifiers modifiers) {
    // Qt would run no shortcut then either.
    if (QApplication::activeModalWidget() != nullptr || QApplication::activePopupWidget() != nullptr) return;
    if (m_pAligns->ActsOnKey(key)) {  // the viewer has done what the tool with this key would do
        if (key == KV_ScenePane::kKeySpace) SayWhySpaceDoesNothing();
        return;
    }
    if (QAction* const action = ActionOfKey(findChildren<QAction*>(), key, modifiers)) {
        action->trigger();
    } else if (QAction* const menu = MenuOfKey(menuBar()->actions(), key, modifiers)) {
        menuBar()->setActiveAction(menu);
    }
}
