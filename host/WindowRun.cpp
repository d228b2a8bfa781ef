// Qt is started only when its window system is there: without one it would end the process.
#include "WindowRun.h"

#include <QApplication>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "DisplayProbe.h"
#include "Headless.h"
#include "MainWindow.h"
#include "SceneFile.h"

namespace {

bool IsSet(const char* variable) {
    const char* const value = std::getenv(variable);
    return value != nullptr && *value != '\0';
}

/// Lets Qt use X11, on which the viewer's embedding stands, also where a Wayland session offers both. Empty when Qt can
/// start, else why not.
std::string ChoosePlatform() {
    if (IsSet("QT_QPA_PLATFORM")) return {};
    if (!IsSet("DISPLAY")) return IsSet("WAYLAND_DISPLAY") ? "" : "there is no display (DISPLAY is not set)";
    if (!CanOpenDisplay()) return std::string("the display ") + std::getenv("DISPLAY") + " cannot be opened";
    setenv("QT_QPA_PLATFORM", "xcb", 0);
    return {};
}

}  // namespace

int RunWindow(const HostOptions& options, char* program) {
    const auto complain = [](const std::string& file, const std::string& reason) {
        (void)PrintTo(stderr, "scenepane: " + file + ": " + reason + '\n');
    };
    if (const std::string reason = ChoosePlatform(); !reason.empty()) {
        for (const std::string& file : options.files) {
            if (const std::string fileReason = WhyNoSceneFile(file); !fileReason.empty()) complain(file, fileReason);
        }
        (void)PrintTo(stderr, "scenepane: " + reason + "; --screenshot, --capture, --info and --convert need none\n");
        return kExitFailure;
    }
    int argumentCount = 1;  // the options are ours, none is Qt's
    char* arguments[] = {program, nullptr};
    const QApplication application(argumentCount, arguments);
    MainWindow window(options);
    QObject::connect(&window, &MainWindow::FileFailed, complain);
    window.show();
    (void)QApplication::exec();
    return window.HaveAllFilesAdded() ? kExitGood : kExitFailure;
}
