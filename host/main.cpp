// The scenepane program: chooses between the window and the runs without one. Every run returns an exit status.
#include <fcntl.h>
#include <unistd.h>

#include <cstdio>
#include <exception>
#include <string>
#include <utility>
#include <variant>
#include <vector>

#include "CaughtError.h"
#include "CommandLine.h"
#include "Headless.h"
#include "InputFiles.h"
#include "InterruptSignals.h"
#include "OutputGuard.h"
#include "WindowRun.h"

namespace {

/// The window with the names in lists of files (InputFiles.h) in place of the lists.
int RunWindowWithLists(HostOptions options, char* program) {
    InputFiles input = ExpandedLists(options.files);
    for (const FailedFile& failed : input.failed) PrintError(stderr, failed.file + ": " + failed.reason);
    options.files = std::move(input.files);
    const int status = RunWindow(options, program);
    return status == kExitGood && !input.failed.empty() ? kExitFailure : status;
}

/// @return an exit status (Headless.h)
int Run(int argc, char** argv) {
    // A program may be started without even its own name.
    const std::vector<std::string> arguments(argv + (argc > 0 ? 1 : 0), argv + argc);
    const auto parsed = ParseCommandLine(arguments);
    if (const auto* error = std::get_if<UsageError>(&parsed)) {
        PrintError(stderr, error->text + " (see scenepane --help)");
        return kExitWrongUsage;
    }
    HostOptions options = std::get<HostOptions>(parsed);
    if (options.action != HostAction::Convert && options.action != HostAction::Export) {
        for (auto* const files : {&options.files, &options.movingFiles, &options.fixedFiles})
            *files = WithoutPipedLists(*files);
    }
    if (const std::string refusal = OutputRefusal(options); !refusal.empty()) {
        PrintError(stderr, refusal + " (see scenepane --help)");
        return kExitWrongUsage;
    }
    switch (options.action) {
        case HostAction::Help:
            return PrintResult(HelpText(), stdout, stderr);
        case HostAction::Version:
            return RunVersion(options, stdout, stderr);
        case HostAction::Screenshot:
            return RunScreenshot(options, stderr);
        case HostAction::Capture:
            return RunCapture(options, stderr);
        case HostAction::Pick:
            return RunPick(options, stdout, stderr);
        case HostAction::Info:
            return RunInfo(options, stdout, stderr);
        case HostAction::Convert:
            return RunConvert(options, stderr);
        case HostAction::SaveCuts:
            return RunSaveCuts(options, stdout, stderr);
        case HostAction::Export:
            return RunExport(options, stderr);
        case HostAction::Align:
            return RunAlign(options, stdout, stderr);
        case HostAction::Window:
            break;
    }
    return RunWindowWithLists(options, argv[0]);
}

/// Standard streams that are closed must stay so: the next file that is opened would get the output of the program.
void HoldClosedStreams() {
    for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
        if (fcntl(stream, F_GETFD) != -1) continue;
        // The lowest number that is free. Writing to standard output must fail, not only be lost.
        (void)open("/dev/null", stream == STDOUT_FILENO ? O_RDONLY : O_RDWR);
    }
}

}  // namespace

int main(int argc, char** argv) {
    HoldClosedStreams();
    HandleInterruptSignals();
    try {
        return Run(argc, argv);
    } catch (...) {  // such as exhausted memory
        PrintError(stderr, TextOfCaughtError());
        return kExitFailure;
    }
}
