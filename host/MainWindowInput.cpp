// How the mouse and the keys move the scene: the menus for it, and the window's shortcuts while the viewer has the
// keyboard.
#include <QAbstractItemView>
#include <QAbstractSlider>
#include <QAbstractSpinBox>
#include <QApplication>
#include <QKeyEvent>
#include <QMenu>
#include <QMenuBar>
#include <iterator>

#include "DecorationPanel.h"
#include "KeyShortcut.h"
#include "MainWindow.h"
#include "ViewerWidget.h"

namespace {

// In the order of the modes that SetRotationMode takes.
constexpr const char* kRotationNames[] = {
    QT_TRANSLATE_NOOP("MainWindow", "About the &horizontal axis"),
    QT_TRANSLATE_NOOP("MainWindow", "About the &vertical axis"),
    QT_TRANSLATE_NOOP("MainWindow", "About the viewing &axis"),
    QT_TRANSLATE_NOOP("MainWindow", "&Free"),
};
constexpr int kRotationFree = 3;  // what the viewer starts with

// In the order of MouseScheme.
constexpr const char* kSchemeNames[] = {
    QT_TRANSLATE_NOOP("MainWindow", "&Normal: left turns, right moves"),
    QT_TRANSLATE_NOOP("MainWindow", "&Flipped: left moves, right turns"),
    QT_TRANSLATE_NOOP("MainWindow", "&Delayed: right turns, both move, left picks"),
};

// In the order of the modes that SetPickMode takes.
constexpr const char* kPickNames[] = {
    QT_TRANSLATE_NOOP("MainWindow", "&Off"),
    QT_TRANSLATE_NOOP("MainWindow", "&Centre cross"),
    QT_TRANSLATE_NOOP("MainWindow", "&Points on objects"),
    QT_TRANSLATE_NOOP("MainWindow", "Points on objects, &second mode"),
    QT_TRANSLATE_NOOP("MainWindow", "Off, s&econd mode"),
    QT_TRANSLATE_NOOP("MainWindow", "Points on objects, with the spheres of a &host"),
};

/// Takes what is typed, as values or to find a row.
bool IsInput(const QObject* widget) {
    return qobject_cast<const QAbstractSlider*>(widget) != nullptr ||
           qobject_cast<const QAbstractSpinBox*>(widget) != nullptr ||
           qobject_cast<const QAbstractItemView*>(widget) != nullptr;
}

/// A character by itself: no command by Ctrl or Alt, no key like Escape.
bool IsPlainKey(int key, Qt::KeyboardModifiers modifiers) {
    return key >= Qt::Key_Space && key < Qt::Key_Escape &&
           (modifiers & (Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier)) == Qt::NoModifier;
}

}  // namespace

void MainWindow::MakeInputMenus(QMenu& menu) {
    AddModeActions(*menu.addMenu(tr("R&otation")), kRotationNames, std::size(kRotationNames), kRotationFree,
                   [this](int mode) { ChooseRotation(mode); });
    AddModeActions(*menu.addMenu(tr("Mouse b&uttons")), kSchemeNames, std::size(kSchemeNames), 0,
                   [this](int scheme) { ChooseMouseScheme(static_cast<MouseScheme>(scheme)); });
    m_pickActions = AddModeActions(*menu.addMenu(tr("P&icking")), kPickNames, std::size(kPickNames), kPickModeOff,
                                   [this](int mode) { ChoosePickMode(mode); });
    AddSwitch(menu, tr("&Mouse moves the scene"), true, [this](bool on) { AllowMouse(on); });
    AddSwitch(menu, tr("Re&duced while moving"), false, [this](bool on) { ReduceWhileMoving(on); });
}

void MainWindow::ChooseRotation(int mode) {
    if (Pane() != nullptr) Pane()->Methods().SetRotationMode(static_cast<std::int16_t>(mode));
}

void MainWindow::ChooseMouseScheme(MouseScheme scheme) {
    if (Pane() == nullptr) return;
    Pane()->Methods().SetIGDRotation(scheme == MouseScheme::Delayed ? 1 : 0);
    Pane()->Methods().FlipMouseButtons(scheme == MouseScheme::Flipped ? 1 : 0);
}

void MainWindow::AllowMouse(bool on) {
    if (Pane() != nullptr) Pane()->Methods().AllowMouseInteraction(on ? 1 : 0);
}

void MainWindow::ChoosePickMode(int mode) {
    if (Pane() == nullptr) return;
    Pane()->Methods().SetPickMode(static_cast<std::int16_t>(mode));
    Pane()->Methods().PerformInvalidate();  // the cross comes and goes with the mode
    m_pickActions[mode]->setChecked(true);
    m_pDecorations->ShowCross(mode == kPickModeCross);
}

void MainWindow::ReduceWhileMoving(bool on) {
    if (Pane() == nullptr) return;
    Pane()->Methods().SetMoveReduced(on ? KV_ScenePane::kVariantTrue : KV_ScenePane::kVariantFalse);
}

void MainWindow::KeepPlainKeysWithInputs() {
    for (QWidget* const widget : findChildren<QWidget*>()) {
        if (IsInput(widget)) widget->installEventFilter(this);
    }
    // At first the keys are the viewer's, not those of the first input in the order of tabs.
    m_pViewer->setFocus();
}

bool MainWindow::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::ShortcutOverride) {
        const auto* const press = static_cast<QKeyEvent*>(event);
        if (IsPlainKey(press->key(), press->modifiers())) {
            event->accept();  // it stays with the input
            return true;
        }
    }
    return QMainWindow::eventFilter(watched, event);
}

void MainWindow::RunShortcut(int key, Qt::KeyboardModifiers modifiers) {
    if (QApplication::activeModalWidget() != nullptr || QApplication::activePopupWidget() != nullptr) return;
    if (QAction* const action = ActionOfKey(findChildren<QAction*>(), key, modifiers)) {
        action->trigger();
    } else if (QAction* const menu = MenuOfKey(menuBar()->actions(), key, modifiers)) {
        menuBar()->setActiveAction(menu);
    }
}
