// Each run: make a viewer without a window, import one file after the other, produce the result, and report each file
// that added nothing.
#include "Headless.h"

#include <cerrno>
#include <cstring>
#include <functional>
#include <memory>
#include <string_view>

#include "DebugCapture.h"
#include "FileExport.h"
#include "FileImport.h"
#include "KV_ScenePane/ScenePane.h"
#include "PngFile.h"
#include "RegistryStart.h"
#include "SceneReport.h"
#include "ScreenShot.h"

namespace {

using KV_ScenePane::ScenePane;
using KV_ScenePane::WindowRequest;

/// Writes all of @p text and flushes; false with errno when a part of it was not written.
bool WriteText(std::FILE* out, const std::string& text) {
    return std::fwrite(text.data(), 1, text.size(), out) == text.size() && std::fflush(out) == 0;
}

/// For the debugger output that belongs to no import or export: one line per text.
std::function<void(std::string_view)> PrintOtherOutput(std::FILE* err) {
    return [err](std::string_view text) {
        if (const std::string line = JoinLines(text); !line.empty()) PrintError(err, line);
    };
}

/// @param kind  OffScreen where a picture is wanted; NoPicture needs no OpenGL
/// @return null without a viewer; the reason is printed then
std::unique_ptr<ScenePane> OpenPane(WindowRequest::Kind kind, const HostOptions& options, std::FILE* err) {
    WindowRequest request;
    request.kind = kind;
    request.width = options.width;
    request.height = options.height;
    request.gpu = options.gpu;
    const auto message = std::make_shared<std::string>();  // lives as long as the viewer may show one
    request.showMessage = [message](const std::string& text) { *message = JoinLines(text); };
    std::string reason;
    std::unique_ptr<ScenePane> pane = CreateScenePane(request, &reason);
    if (!pane) PrintError(err, "there is no viewer: " + (reason.empty() ? *message : JoinLines(reason)));
    return pane;
}

/// Imports the files in their order and prints a line for each that failed, or that the viewer had a message about.
SceneReport ImportFiles(ScenePane& pane, const HostOptions& options, std::FILE* err) {
    KV_ScenePane::_DKV_ScenePane& methods = pane.Methods();
    ApplySettings(methods, options.import);
    SceneReport report;
    for (const std::string& file : options.files) {
        const ImportResult result = ImportFile(methods, file, options.import.color);
        if (result.state == ImportResult::State::Added) {
            const auto index = static_cast<std::int16_t>(methods.GetNumObjects() - 1);
            report.objects.push_back(ReportObject(pane, index, file));
        } else {
            report.failed.push_back({file, result.text});
        }
        if (!result.text.empty()) PrintError(err, file + ": " + result.text);
    }
    return report;
}

/// Imports the files, fits the view to them and writes the picture that is then taken.
/// @param capture  returns the picture; of width 0 when there is none
int RunPicture(const HostOptions& options, std::FILE* err,
               const std::function<KV_ScenePane::Picture(ScenePane& pane)>& capture) {
    const DebugRouter router(PrintOtherOutput(err));
    const std::unique_ptr<ScenePane> pane = OpenPane(WindowRequest::Kind::OffScreen, options, err);
    if (!pane) return kExitFailure;
    const RegistryStart registry(pane->Methods());
    const SceneReport report = ImportFiles(*pane, options, err);
    // An older picture at that path stays when there is nothing to replace it by.
    const auto refuse = [&](const std::string& reason) {
        PrintError(err, options.picturePath + ": " + reason);
        return kExitFailure;
    };
    if (report.objects.empty()) return refuse("not written, there is nothing to show");
    // The view mode first: the fit depends on the direction of the view.
    pane->Methods().SetViewMode(static_cast<std::int16_t>(options.view));
    FitView(pane->Methods(), options.zoom);
    const KV_ScenePane::Picture picture = capture(*pane);
    if (picture.width == 0) return refuse("not written, the viewer gave no picture");
    std::string reason;
    if (!WritePng(options.picturePath, picture, &reason)) return refuse(reason);
    return report.failed.empty() ? kExitGood : kExitFailure;
}

}  // namespace

void PrintError(std::FILE* err, const std::string& line) { (void)WriteText(err, "scenepane: " + line + '\n'); }

int PrintResult(const std::string& text, std::FILE* out, std::FILE* err) {
    if (WriteText(out, text)) return kExitGood;
    PrintError(err, std::string("standard output: ") + strerrordesc_np(errno));
    return kExitFailure;
}

int RunScreenshot(const HostOptions& options, std::FILE* err) {
    return RunPicture(options, err, [&](ScenePane& pane) {
        pane.Methods().SetDrawMode(static_cast<std::int16_t>(options.drawMode));
        pane.Methods().SetShadowMode(options.shadows ? 1 : 0);
        KV_ScenePane::Picture picture;
        return pane.CapturePicture(&picture) ? picture : KV_ScenePane::Picture{};
    });
}

int RunCapture(const HostOptions& options, std::FILE* err) {
    return RunPicture(options, err, [](ScenePane& pane) { return TakeScreenShot(pane.Methods()); });
}

// The version first: it is printed also where nothing can draw.
int RunVersion(const HostOptions& options, std::FILE* out, std::FILE* err) {
    const int printed = PrintResult(VersionText(), out, err);
    if (printed != kExitGood || !options.verbose) return printed;
    const DebugRouter router(PrintOtherOutput(err));
    const std::unique_ptr<ScenePane> pane = OpenPane(WindowRequest::Kind::OffScreen, options, err);
    KV_ScenePane::GraphicsInfo info;
    if (!pane) return kExitFailure;
    if (!pane->GetGraphicsInfo(&info)) {
        std::fputs("scenepane: the driver does not name itself\n", err);
        return kExitFailure;
    }
    return PrintResult("device   " + info.device + "\ndriver   " + info.renderer + "\nvendor   " + info.vendor +
                           "\nOpenGL   " + info.version + '\n',
                       out, err);
}

int RunInfo(const HostOptions& options, std::FILE* out, std::FILE* err) {
    const DebugRouter router(PrintOtherOutput(err));
    const std::unique_ptr<ScenePane> pane = OpenPane(WindowRequest::Kind::NoPicture, options, err);
    if (!pane) return kExitFailure;
    const RegistryStart registry(pane->Methods());
    const SceneReport report = ImportFiles(*pane, options, err);
    const int printed = PrintResult(options.json ? ReportJson(report) : ReportText(report), out, err);
    if (printed != kExitGood) return printed;
    return report.failed.empty() ? kExitGood : kExitFailure;
}

int RunConvert(const HostOptions& options, std::FILE* err) {
    const DebugRouter router(PrintOtherOutput(err));
    const std::unique_ptr<ScenePane> pane = OpenPane(WindowRequest::Kind::NoPicture, options, err);
    if (!pane) return kExitFailure;
    const RegistryStart registry(pane->Methods());
    const SceneReport report = ImportFiles(*pane, options, err);
    if (report.objects.empty()) return kExitFailure;
    const ExportResult result = ExportObject(pane->Methods(), report.objects.front().index, options.exportPath);
    if (!result.text.empty())
        PrintError(err, options.exportPath + (result.written ? ": " : ": not written: ") + result.text);
    return result.written ? kExitGood : kExitFailure;
}
