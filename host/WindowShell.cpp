// The place follows the frame that the window manager adds, which is known only when the window is on the screen.
#include "WindowShell.h"

#include <unistd.h>

#include <QAction>
#include <QDockWidget>
#include <QEvent>
#include <QFileInfo>
#include <QGuiApplication>
#include <QMainWindow>
#include <QMenu>
#include <QScreen>
#include <QTabBar>
#include <QTimer>
#include <QToolBar>
#include <QWindow>
#include <algorithm>
#include <utility>

#include "RecentFiles.h"
#include "WindowState.h"

namespace {

constexpr int kPanesVersion = 1;                           // another one when panes of the same name have another place
constexpr QSize kUsualFrame(16, 48);                       // title bar and borders of common window managers
constexpr const char* kOpenedByWindow = "openedByWindow";  // property of a pane

QAction* MakeSwitch(QObject* parent, const QString& text, Qt::Key key, const char* name) {
    auto* const action = new QAction(text, parent);
    action->setObjectName(name);
    action->setCheckable(true);
    action->setShortcut(key);
    return action;
}

/// Name and folder of a path, as the text of an action.
QString ActionText(const QString& path) {
    const QFileInfo file(path);
    return QString("%1   (%2)").arg(file.fileName(), file.path()).replace('&', "&&");
}

}  // namespace

WindowShell::WindowShell(QMainWindow& window)
    : QObject(&window),
      m_window(window),
      m_pFullScreen(MakeSwitch(this, tr("&Full screen"), Qt::Key_F11, "fullScreen")),
      m_pLeave(new QAction(this)),
      m_pHidePanes(MakeSwitch(this, tr("&Hide all panes"), Qt::Key_F9, "hidePanes")) {
    m_pLeave->setObjectName("leaveFullScreen");
    m_pLeave->setShortcut(Qt::Key_Escape);
    m_pLeave->setEnabled(false);
    m_pFullScreen->setStatusTip(tr("Cover the whole screen; F11 or Escape returns to the window"));
    m_pHidePanes->setStatusTip(tr("Give the scene the whole width; F9 opens the same panes again"));
    window.addActions({m_pFullScreen, m_pLeave, m_pHidePanes});
    connect(m_pFullScreen, &QAction::toggled, this, &WindowShell::ShowFullScreen);
    connect(m_pLeave, &QAction::triggered, m_pFullScreen, [this] { m_pFullScreen->setChecked(false); });
    connect(m_pHidePanes, &QAction::toggled, this, &WindowShell::HidePanes);
    window.installEventFilter(this);
}

QList<QDockWidget*> WindowShell::Panes() const { return m_window.findChildren<QDockWidget*>(); }

void WindowShell::MakeRecentMenu(QMenu& menu) {
    connect(&menu, &QMenu::aboutToShow, this, [this, &menu] { FillRecentMenu(menu); });
}

void WindowShell::NoteAdded(const std::vector<std::string>& files) {
    std::vector<std::string> opened;
    for (const std::string& file : files) {
        if (m_vWanted.erase(file) > 0) opened.push_back(file);
    }
    if (!opened.empty()) NoteOpened(opened);
}

void WindowShell::NoteOpened(const std::vector<std::string>& files) {
    // Later: at the start the first picture must not wait for the disk.
    constexpr int kDelayMs = 1000;
    if (m_vOpened.empty()) QTimer::singleShot(kDelayMs, this, &WindowShell::StoreOpened);
    m_vOpened.insert(m_vOpened.begin(), files.begin(), files.end());
}

void WindowShell::StoreOpened() { AddRecentFiles(std::exchange(m_vOpened, {})); }

void WindowShell::FillRecentMenu(QMenu& menu) {
    StoreOpened();
    menu.clear();
    int number = 0;
    for (const std::string& file : StoredRecentFiles()) {
        const QString path = QString::fromStdString(file);
        const QString name = ActionText(path);
        const bool isThere = access(file.c_str(), F_OK) == 0;
        // A digit opens the entry; the tenth one has none.
        const QString text = ++number < 10 ? QString("&%1  %2").arg(number).arg(name) : name;
        QAction* const action = menu.addAction(isThere ? text : tr("%1: not found").arg(text), this,
                                               [this, file] { emit OpenWanted(file); });
        action->setEnabled(isThere);
    }
    if (number == 0) menu.addAction(tr("No file was opened yet"))->setEnabled(false);
    menu.addSeparator();
    menu.addAction(tr("&Clear list"), this, [] { ClearRecentFiles(); })->setEnabled(number > 0);
}

void WindowShell::Restore() {
    for (QDockWidget* const pane : Panes()) {
        // The user's own choice is remembered, as opposed to what the window has opened.
        connect(pane->toggleViewAction(), &QAction::triggered, pane,
                [pane] { pane->setProperty(kOpenedByWindow, false); });
    }
    for (QAction* const action : m_window.findChildren<QAction*>()) {
        if (action == m_pLeave || !action->shortcuts().contains(QKeySequence(Qt::Key_Escape))) continue;
        m_escapes << action;
        connect(action, &QAction::changed, this, &WindowShell::EnableLeave);
    }
    m_firstPanes = m_window.saveState(kPanesVersion);
    const WindowState stored = StoredWindow();
    const bool hasPanes = !stored.panes.isEmpty() && m_window.restoreState(stored.panes, kPanesVersion);
    if (hasPanes) {
        for (QDockWidget* const pane : Panes())
            if (stored.openedByWindow.contains(pane->objectName())) pane->hide();
    }
    Place(stored.place);
    m_bFitsPanes = m_bFitsPanes || !hasPanes;
    if (stored.maximized) m_window.setWindowState(Qt::WindowMaximized);
}

void WindowShell::Place(const std::optional<WindowPlace>& last) {
    const QScreen* screen = m_window.screen();
    const QSize wanted = last ? last->size : m_window.sizeHint();
    // A screen may be gone; the window manager then chooses the place.
    const QScreen* const before = last ? QGuiApplication::screenAt(QRect(last->corner, wanted).center()) : nullptr;
    if (before != nullptr) screen = before;
    // The first time with space for a frame, so that the size need not change when the window is on the screen.
    const QSize size = wanted.boundedTo(last ? screen->availableSize() : screen->availableSize() - kUsualFrame);
    m_window.resize(size);
    if (before != nullptr) m_window.move(MovedInside({last->corner, size}, screen->availableGeometry()).topLeft());
    m_bFitsPanes = !last || size != wanted;
}

void WindowShell::Store() {
    StoreOpened();
    WindowState state;
    const QPoint margin = m_window.geometry().topLeft() - m_window.frameGeometry().topLeft();
    const bool isNormal = !m_window.isMaximized() && !m_window.isFullScreen();
    const QRect normal = isNormal ? m_window.geometry() : m_window.normalGeometry();
    if (normal.isValid()) state.place = WindowPlace{normal.topLeft() - margin, normal.size()};
    state.maximized = m_window.windowState().testFlag(Qt::WindowMaximized);
    state.panes = m_pHidePanes->isChecked() ? m_panesBefore : m_window.saveState(kPanesVersion);
    for (const QDockWidget* const pane : Panes())
        if (pane->property(kOpenedByWindow).toBool()) state.openedByWindow << pane->objectName();
    StoreWindow(state);
}

void WindowShell::Reset() {
    m_pFullScreen->setChecked(false);
    m_pHidePanes->setChecked(false);
    m_window.restoreState(m_firstPanes, kPanesVersion);
    m_window.setWindowState(m_window.windowState() & ~Qt::WindowMaximized);
    Place(std::nullopt);
    KeepInside();
}

void WindowShell::OpenPane(QDockWidget& pane) {
    if (m_pHidePanes->isChecked()) {
        if (!m_toOpen.contains(&pane)) m_toOpen << &pane;
        return;
    }
    if (pane.isHidden()) pane.setProperty(kOpenedByWindow, true);
    pane.show();
    pane.raise();  // in front of the panes that share its place
}

void WindowShell::HidePanes(bool hide) {
    if (hide) {
        m_panesBefore = m_window.saveState(kPanesVersion);
        for (QDockWidget* const pane : Panes()) pane->hide();
        return;
    }
    // What was opened or closed meanwhile stays so.
    QList<QWidget*> open;
    for (QDockWidget* const pane : Panes())
        if (!pane->isHidden()) open << pane;
    QList<std::pair<QToolBar*, bool>> bars;
    for (auto* const bar : m_window.findChildren<QToolBar*>()) bars.emplace_back(bar, !bar->isHidden());
    m_window.restoreState(m_panesBefore, kPanesVersion);
    for (QWidget* const pane : open) pane->show();
    for (const auto& [bar, isOpen] : bars) bar->setVisible(isOpen);
    const auto waiting = std::exchange(m_toOpen, {});
    for (const QPointer<QDockWidget>& pane : waiting)
        if (pane != nullptr) OpenPane(*pane);
}

void WindowShell::ShowFullScreen(bool on) {
    if (on != m_window.isFullScreen()) m_window.setWindowState(m_window.windowState() ^ Qt::WindowFullScreen);
    EnableLeave();
}

void WindowShell::EnableLeave() {
    bool isUsed = false;
    for (const QPointer<QAction>& other : m_escapes) isUsed = isUsed || (other != nullptr && other->isEnabled());
    m_pLeave->setEnabled(m_pFullScreen->isChecked() && !isUsed);
}

bool WindowShell::eventFilter(QObject* watched, QEvent* event) {
    if (watched == &m_window && event->type() == QEvent::WindowStateChange) {
        m_pFullScreen->setChecked(m_window.isFullScreen());  // the window manager can change it too
    } else if (watched == &m_window && event->type() == QEvent::Show && !m_bPlaced) {
        if (m_window.windowHandle() != nullptr) m_window.windowHandle()->installEventFilter(this);
    } else if (watched == m_window.windowHandle() && event->type() == QEvent::Expose && !m_bPlaced) {
        m_bPlaced = true;
        QMetaObject::invokeMethod(this, &WindowShell::KeepInside, Qt::QueuedConnection);
    }
    // The window makes the tab bars of its panes when it needs them.
    if (watched == &m_window && event->type() == QEvent::ChildPolished) {
        if (auto* const tabs = qobject_cast<QTabBar*>(static_cast<QChildEvent*>(event)->child())) {
            tabs->setElideMode(Qt::ElideNone);
            tabs->setUsesScrollButtons(true);
        }
    }
    return QObject::eventFilter(watched, event);
}

void WindowShell::KeepInside() {
    if (m_window.isMaximized() || m_window.isFullScreen()) return FitPanes();
    const QRect available = m_window.screen()->availableGeometry(), frame = m_window.frameGeometry();
    if (!available.contains(frame)) {
        const QSize margins = frame.size() - m_window.size();
        m_window.resize(m_window.size().boundedTo(available.size() - margins));
        m_window.move(MovedInside({frame.topLeft(), m_window.size() + margins}, available).topLeft());
    }
    FitPanes();
}

void WindowShell::FitPanes() {
    if (!m_bFitsPanes) return;
    for (const Qt::DockWidgetArea area : {Qt::LeftDockWidgetArea, Qt::RightDockWidgetArea}) {
        QDockWidget* widest = nullptr;
        for (QDockWidget* const pane : Panes()) {
            if (m_window.dockWidgetArea(pane) != area || pane->isHidden() || pane->isFloating()) continue;
            if (widest == nullptr || pane->sizeHint().width() > widest->sizeHint().width()) widest = pane;
        }
        if (widest == nullptr) continue;
        const int width = std::min(widest->sizeHint().width(), m_window.width() * 2 / 5);
        m_window.resizeDocks({widest}, {width}, Qt::Horizontal);  // the others of the area follow
    }
}
