// The checks are what Qt does at its start, where a failure is an abort(): the name of the platform, its plugin, and
// the connection to the server.
#include "PlatformChoice.h"

#include <QCoreApplication>
#include <QFileInfo>
#include <QPluginLoader>
#include <cstdlib>

#include "DisplayProbe.h"

namespace {

constexpr const char* kPlatformVariable = "QT_QPA_PLATFORM";

bool IsSet(const char* variable) {
    const char* const value = std::getenv(variable);
    return value != nullptr && *value != '\0';
}

/// The first one of a list such as "offscreen:size=big;xcb", without its options and in lower case, as Qt compares it.
QString AskedPlatform() {
    return qEnvironmentVariable(kPlatformVariable).section(';', 0, 0).section(':', 0, 0).toLower();
}

/// As Qt searches: the folder of the variable is one of plugins of platforms only.
QStringList PluginFolders() {
    QStringList folders = qEnvironmentVariable("QT_QPA_PLATFORM_PLUGIN_PATH").split(':', Qt::SkipEmptyParts);
    for (const QString& folder : QCoreApplication::libraryPaths()) folders << folder + "/platforms";
    return folders;
}

std::string DisplayProblem() {
    if (!IsSet("DISPLAY"))
        return IsSet("WAYLAND_DISPLAY") ? "there is no X display (DISPLAY is not set): under Wayland the window needs "
                                          "Xwayland"
                                        : "there is no display (DISPLAY is not set)";
    if (!CanOpenDisplay()) return std::string("the display ") + std::getenv("DISPLAY") + " cannot be opened";
    return {};
}

}  // namespace

std::string PluginProblem(const QString& platform, const QStringList& folders) {
    QString reason;
    for (const QString& folder : folders) {
        const QString file = folder + "/libq" + platform + ".so";
        if (!QFileInfo::exists(file)) continue;
        QPluginLoader plugin(file);  // stays loaded: Qt needs it next
        if (plugin.load()) return {};
        reason = plugin.errorString();
    }
    const std::string name = platform.toStdString();
    return reason.isEmpty()
               ? "Qt has no platform plugin " + name
               : "Qt's platform plugin " + name + " cannot be loaded: " + reason.simplified().toStdString();
}

std::string ChoosePlatform() {
    const QString asked = AskedPlatform();
    if (asked == "offscreen" || asked == "minimal") return PluginProblem(asked, PluginFolders());
    if (std::string problem = DisplayProblem(); !problem.empty()) return problem;
    setenv(kPlatformVariable, "xcb", 1);
    return PluginProblem("xcb", PluginFolders());
}
