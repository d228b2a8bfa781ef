// What the window remembers of its place and its panes.
#pragma once
#include <QByteArray>
#include <QPoint>
#include <QRect>
#include <QSize>
#include <QStringList>
#include <optional>

/// Upper left corner of the frame and size without the frame, both of the window that is neither maximised nor full
/// screen; pixels of Qt.
struct WindowPlace {
    QPoint corner;
    QSize size;

    friend bool operator==(const WindowPlace&, const WindowPlace&) = default;
};

struct WindowState {
    std::optional<WindowPlace> place;
    bool maximized = false;
    /// Of QMainWindow::saveState(); empty for the panes of a first start.
    QByteArray panes;
    /// Object names of panes that the window had opened without being asked: they start closed.
    QStringList openedByWindow;

    friend bool operator==(const WindowState&, const WindowState&) = default;
};

/// What was stored last. Values that are missing or not valid are those of a first start.
[[nodiscard]] WindowState StoredWindow();
void StoreWindow(const WindowState& state);

/// Where a window is shown whole.
/// @param frame      of the window on the screen
/// @param available  of the screen: without its panels. Not smaller than the frame
/// @return the frame, moved into the area by the shortest way
[[nodiscard]] QRect MovedInside(const QRect& frame, const QRect& available);
