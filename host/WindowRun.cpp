// Qt is started only when its window system can be reached: without one it would end the process.
#include "WindowRun.h"

#include <QApplication>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "DisplayProbe.h"
#include "FileTypes.h"
#include "Headless.h"
#include "MainWindow.h"
#include "SceneFile.h"

namespace {

bool IsSet(const char* variable) {
    const char* const value = std::getenv(variable);
    return value != nullptr && *value != '\0';
}

/// Makes Qt use X11, which the embedding of the viewer needs, also in a Wayland session that offers both.
/// @return why Qt cannot start; empty when it can
std::string ChoosePlatform() {
    if (IsSet("QT_QPA_PLATFORM")) return {};
    if (!IsSet("DISPLAY")) return IsSet("WAYLAND_DISPLAY") ? "" : "there is no display (DISPLAY is not set)";
    if (!CanOpenDisplay()) return std::string("the display ") + std::getenv("DISPLAY") + " cannot be opened";
    setenv("QT_QPA_PLATFORM", "xcb", 0);
    return {};
}

/// The window opens files of free points like those of objects.
bool HoldsPoints(const std::string& file) {
    const FileType* const type = FindFileType(file);
    return type != nullptr && IsPoints(*type);
}

}  // namespace

int RunWindow(const HostOptions& options, char* program) {
    const auto printFailure = [](const std::string& file, const std::string& reason) {
        PrintError(stderr, file + ": " + reason);
    };
    // Without a display the files are checked all the same: a script learns of both problems at once.
    if (const std::string reason = ChoosePlatform(); !reason.empty()) {
        for (const auto* const files :
             {&options.files, &options.pointFiles, &options.lineFiles, &options.needleFiles}) {
            for (const std::string& file : *files) {
                const bool isObject = files == &options.files && !HoldsPoints(file);
                const std::string refusal = isObject ? ImportRefusal(file) : ReadRefusal(file);
                if (!refusal.empty()) printFailure(file, refusal);
            }
        }
        const std::string refusal = options.transformFile.empty() ? "" : ReadRefusal(options.transformFile);
        if (!refusal.empty()) printFailure(options.transformFile, refusal);
        PrintError(
            stderr,
            reason +
                "; --screenshot, --capture, --pick, --info, --save-cuts, --export, --align and --convert need none");
        return kExitFailure;
    }
    // The options of the command line are not passed on: Qt would act on those that it knows.
    int argumentCount = 1;  // the options are ours, none is Qt's
    char* arguments[] = {program, nullptr};
    const QApplication application(argumentCount, arguments);
    MainWindow window(options);
    // The message pane has the same reasons: standard error is for a script that started the window.
    QObject::connect(&window, &MainWindow::FileFailed, printFailure);
    window.show();
    (void)QApplication::exec();
    return window.HaveAllFilesAdded() ? kExitGood : kExitFailure;
}
