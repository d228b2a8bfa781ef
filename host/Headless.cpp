// Imports one file after the other into a viewer without a window, and tells of each that added nothing.
#include "Headless.h"

#include <cerrno>
#include <cstring>
#include <functional>
#include <memory>
#include <string_view>

#include "DebugCapture.h"
#include "KV_ScenePane/ScenePane.h"
#include "PngFile.h"
#include "ScanImport.h"
#include "SceneReport.h"

namespace {

using KV_ScenePane::ScenePane;
using KV_ScenePane::WindowRequest;

void Complain(std::FILE* err, const std::string& line) { (void)PrintTo(err, "scenepane: " + line + '\n'); }

/// What comes to the debugger output outside an import, line by line.
std::function<void(std::string_view)> ComplainOfTheRest(std::FILE* err) {
    return [err](std::string_view text) {
        if (const std::string line = JoinLines(text); !line.empty()) Complain(err, line);
    };
}

std::unique_ptr<ScenePane> OpenPane(WindowRequest::Kind kind, const HostOptions& options, std::FILE* err) {
    WindowRequest request;
    request.kind = kind;
    request.width = options.width;
    request.height = options.height;
    const auto message = std::make_shared<std::string>();  // lives as long as the viewer may show one
    request.showMessage = [message](const std::string& text) { *message = JoinLines(text); };
    std::string reason;
    std::unique_ptr<ScenePane> pane = CreateScenePane(request, &reason);
    if (!pane) Complain(err, "there is no viewer: " + (reason.empty() ? *message : JoinLines(reason)));
    return pane;
}

SceneReport ImportFiles(ScenePane& pane, const HostOptions& options, std::FILE* err) {
    KV_ScenePane::_DKV_ScenePane& methods = pane.Methods();
    ApplySettings(methods, options.import);
    SceneReport report;
    for (const std::string& file : options.files) {
        const ImportResult result = ImportScanFile(methods, file, options.import.color);
        if (result.state == ImportResult::State::Added) {
            const auto index = static_cast<std::int16_t>(methods.GetNumObjects() - 1);
            report.objects.push_back(ReportObject(pane, index, file));
        } else {
            report.failed.push_back({file, result.text});
        }
        if (!result.text.empty()) Complain(err, file + ": " + result.text);
    }
    return report;
}

/// The fitted scene as it shall be drawn.
void SetUpView(KV_ScenePane::_DKV_ScenePane& methods, const HostOptions& options) {
    methods.SetViewMode(static_cast<std::int16_t>(options.view));
    methods.SetDrawMode(static_cast<std::int16_t>(options.drawMode));
    methods.SetShadowMode(options.shadows ? 1 : 0);
    FitView(methods, options.zoom);
}

}  // namespace

bool PrintTo(std::FILE* out, const std::string& text) {
    return std::fwrite(text.data(), 1, text.size(), out) == text.size() && std::fflush(out) == 0;
}

int RunText(const std::string& text, std::FILE* out, std::FILE* err) {
    if (PrintTo(out, text)) return kExitGood;
    Complain(err, std::string("standard output: ") + strerrordesc_np(errno));
    return kExitFailure;
}

int RunScreenshot(const HostOptions& options, std::FILE* err) {
    const DebugRouter router(ComplainOfTheRest(err));
    const std::unique_ptr<ScenePane> pane = OpenPane(WindowRequest::Kind::OffScreen, options, err);
    if (!pane) return kExitFailure;
    const SceneReport report = ImportFiles(*pane, options, err);
    if (report.objects.empty()) {
        Complain(err, options.screenshotPath + ": not written, there is nothing to show");
        return kExitFailure;
    }
    SetUpView(pane->Methods(), options);
    KV_ScenePane::Picture picture;
    if (!pane->CapturePicture(&picture)) {
        Complain(err, options.screenshotPath + ": not written, the viewer gave no picture");
        return kExitFailure;
    }
    std::string reason;
    if (!WritePng(options.screenshotPath, picture, &reason)) {
        Complain(err, options.screenshotPath + ": " + reason);
        return kExitFailure;
    }
    return report.failed.empty() ? kExitGood : kExitFailure;
}

int RunInfo(const HostOptions& options, std::FILE* out, std::FILE* err) {
    const DebugRouter router(ComplainOfTheRest(err));
    const std::unique_ptr<ScenePane> pane = OpenPane(WindowRequest::Kind::NoPicture, options, err);
    if (!pane) return kExitFailure;
    const SceneReport report = ImportFiles(*pane, options, err);
    const int printed = RunText(options.json ? ReportJson(report) : ReportText(report), out, err);
    if (printed != kExitGood) return printed;
    return report.failed.empty() ? kExitGood : kExitFailure;
}
