// Qt is started only when its window system can be reached: without one it would end the process.
#include "WindowRun.h"

#include <QApplication>
#include <cstdio>
#include <filesystem>
#include <string>
#include <system_error>

#include "Appearance.h"
#include "FileTypes.h"
#include "Headless.h"
#include "Language.h"
#include "MainWindow.h"
#include "PlatformChoice.h"
#include "SceneFile.h"
#include "Settings.h"
#include "WindowIcon.h"

namespace {

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
                std::error_code error;  // a name can be too long to be looked up
                if (files == &options.files && std::filesystem::is_directory(file, error)) continue;  // for the window
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
    TranslateWindow();
    QGuiApplication::setDesktopFileName("scenepane");  // groups the windows of the program in a task bar
    QGuiApplication::setWindowIcon(WindowIcon());
    if (options.resetsSettings) ForgetSettings();
    ShowAppearance(StoredAppearance());
    MainWindow window(options);
    // The message pane has the same reasons: standard error is for a script that started the window.
    QObject::connect(&window, &MainWindow::FileFailed, printFailure);
    window.show();
    (void)QApplication::exec();
    return window.HaveAllFilesAdded() ? kExitGood : kExitFailure;
}
