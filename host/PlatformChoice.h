// The window system that Qt uses. Qt ends the process when it finds none, so this is decided before Qt starts.
#pragma once
#include <QStringList>
#include <string>

/// Makes Qt use X11, which the viewer needs, whatever QT_QPA_PLATFORM names: also in a Wayland session that offers
/// both. The platforms "offscreen" and "minimal" stay, on which the window starts without a viewer. Before the
/// QApplication.
/// @return why Qt cannot start, as one line; empty when it can
[[nodiscard]] std::string ChoosePlatform();

/// Why Qt cannot load its plugin for a platform; empty when it can.
/// @param platform  as in QT_QPA_PLATFORM, "xcb"
/// @param folders   that may hold it, in the order of the search
[[nodiscard]] std::string PluginProblem(const QString& platform, const QStringList& folders);
