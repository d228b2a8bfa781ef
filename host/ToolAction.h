// What menus and tool bars share: actions with their keys in the tip, choices of which one is checked, and icons that
// are drawn by code.
#pragma once
#include <QColor>
#include <QIcon>
#include <QKeySequence>
#include <QList>
#include <QString>
#include <QStringList>
#include <functional>

class QAction;
class QMenu;
class QPainter;
class QPalette;
class QToolBar;

/// Of the icons in tool bars, pixels of a screen of plain density.
inline constexpr int kToolIconSide = 24;

/// Colours for lines of icons. Each has a contrast of 3 to 1 at least to the window that it is drawn on.
struct ToolInk {
    QColor line, red, green, blue;
};
[[nodiscard]] bool IsDark(const QPalette& palette);
[[nodiscard]] ToolInk InkOn(const QPalette& palette);
/// For the palette of the application, which the user can change at any time: draw with it, keep no copy.
[[nodiscard]] ToolInk Ink();

/// An icon that is drawn when it is shown: sharp on screens of any density, and in the colours of the present theme.
/// @param draw  on a square of kToolIconSide units
[[nodiscard]] QIcon DrawToolIcon(std::function<void(QPainter&)> draw);

/// An action of the bar, with its key in the tip. It is not added to the bar.
/// @param name  the object name; not shown
/// @param tip   what it does, as the end of a sentence
[[nodiscard]] QAction* MakeToolAction(QToolBar* bar, const char* name, const QIcon& icon, const QString& text,
                                      const QKeySequence& keys, const QString& tip);
/// Tips that name the action, its keys and what it does. @param tip  may be empty
void SetToolTips(QAction& action, const QString& tip);

/// Adds actions of which one is checked.
/// @param checked  position of the first one that is; -1 for none
/// @param choose   receives the position of an action that the user triggers
/// @return the actions in the order of their texts
QList<QAction*> AddChoices(QMenu& menu, const QStringList& texts, int checked, const std::function<void(int)>& choose);
