// What the tool bars share: an action with its key in the tip, and icons that are drawn by code.
#pragma once
#include <QIcon>
#include <QKeySequence>
#include <QString>
#include <functional>

class QAction;
class QPainter;
class QToolBar;

/// Of the icons in tool bars, pixels of a screen of plain density.
inline constexpr int kToolIconSide = 24;

/// Draws at two sizes, for screens of two densities. @param draw  on a square of kToolIconSide units
[[nodiscard]] QIcon DrawToolIcon(const std::function<void(QPainter&)>& draw);

/// An action of the bar, with its key in the tip. It is not added to the bar.
/// @param name  the object name; not shown
/// @param tip   what it does, as the end of a sentence
[[nodiscard]] QAction* MakeToolAction(QToolBar* bar, const char* name, const QIcon& icon, const QString& text,
                                      const QKeySequence& keys, const QString& tip);
/// Tips that name the action, its key and what it does.
void SetToolTips(QAction& action, const QString& tip);
