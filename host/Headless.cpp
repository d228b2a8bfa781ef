// Each run: make a viewer without a window, import one file after the other, produce the result, and report each file
// that added nothing. Only pictures have markers.
#include "Headless.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <exception>
#include <functional>
#include <memory>
#include <optional>
#include <string_view>
#include <utility>

#include "DebugCapture.h"
#include "FileExport.h"
#include "FileImport.h"
#include "HeadlessScene.h"
#include "KV_ScenePane/ScenePane.h"
#include "MarkBox.h"
#include "MarkerFiles.h"
#include "MessageTable.h"
#include "OutputGuard.h"
#include "PictureFile.h"
#include "RegistryStart.h"
#include "ScreenShot.h"
#include "options/TerminalText.h"

namespace {

using KV_ScenePane::ScenePane;
using KV_ScenePane::WindowRequest;

constexpr const char* kPointsNotDrawn = "the capture is fitted to these free points, but shows none";

/// Writes all of @p text and flushes; false with errno when a part of it was not written.
bool WriteText(std::FILE* out, const std::string& text) {
    return std::fwrite(text.data(), 1, text.size(), out) == text.size() && std::fflush(out) == 0;
}

/// What the marker files of a run added.
struct MarkerReport {
    bool hasFailed = false;  ///< some file, or a part of one
    int pointFiles = 0;
    int markFiles = 0;  ///< of lines and needles
    MarkBox box;        ///< of lines and needles
};

/// Adds the marker files of the options and prints a line for each that failed.
/// @param showsPoints  the picture shows free points; if not, a line says so: who gives points expects to see them
MarkerReport AddMarkers(ScenePane& pane, const HostOptions& options, bool showsPoints, std::FILE* err) {
    KV_ScenePane::_DKV_ScenePane& methods = pane.Methods();
    MarkerReport report;
    const auto hasFailed = [&](const std::string& file, const std::string& reason) {
        if (reason.empty()) return false;
        PrintError(err, file + ": " + reason);
        return report.hasFailed = true;
    };
    for (const std::string& file : options.pointFiles) {
        if (hasFailed(file, AddPointFile(methods, file, options.import.color, 1.0f))) continue;
        ++report.pointFiles;
        if (!showsPoints) PrintWarning(options, err, file + ": " + kPointsNotDrawn);
    }
    for (const std::string& file : options.lineFiles) {
        std::vector<Polyline> polylines;
        hasFailed(file, AddLineFile(methods, file, &polylines));
        report.markFiles += polylines.empty() ? 0 : 1;
        for (const Polyline& polyline : polylines)
            for (std::size_t i = 0; i + 2 < polyline.size(); i += 3) report.box.Merge(&polyline[i]);
    }
    std::int32_t limit = kStartNeedleLimit;
    for (const std::string& file : options.needleFiles) {
        std::vector<NeedleMark> marks;
        const bool failed = hasFailed(file, AddNeedleFile(methods, file, NeedleLook{}, &limit, &marks));
        if (!failed && marks.empty()) hasFailed(file, kNoNeedles);
        report.markFiles += marks.empty() ? 0 : 1;
        for (const NeedleMark& mark : marks) {
            report.box.Merge(mark.pin.data());
            report.box.Merge(mark.head.data());
        }
    }
    return report;
}

/// The same for a scene of lines and needles alone. The viewer fits to objects and free points: the corners of the box
/// are free points for the moment of the fit.
void ShowViewOfMarks(ScenePane& pane, const MarkBox& box, const HostOptions& options, KV_ScenePane::ViewMode view) {
    const std::int32_t id = AddPoints(pane.Methods(), {box.Corners(), {}}, 0, 1.0f);
    ShowView(pane, options, view);
    pane.Methods().DeletePoints(id);
}

std::vector<KV_ScenePane::ViewMode> ShownViews(const HostOptions& options) {
    return options.views.empty() ? std::vector{options.view} : options.views;
}

/// Writes a picture; one line when that fails.
bool WriteShown(const KV_ScenePane::Picture& picture, const std::string& path, std::FILE* err) {
    std::string reason = "not written, the viewer gave no picture";
    const bool isWritten = picture.width > 0 && WritePicture(path, picture, &reason);
    const std::string name = path == kStandardOutput ? "standard output" : path;
    if (!isWritten) PrintError(err, reason == kClosedOutput ? reason : name + ": " + reason);
    return isWritten;
}

/// Imports the files, and for each view of the options fits it to them and writes the picture that is then taken.
/// @param showsPoints  the picture shows free points
/// @param capture      returns the picture; of width 0 when there is none
int RunPicture(const HostOptions& options, std::FILE* err, bool showsPoints,
               const std::function<KV_ScenePane::Picture(ScenePane& pane)>& capture) {
    const DebugRouter router(PrintOtherOutput(err));
    const std::unique_ptr<ScenePane> pane = OpenPane(WindowRequest::Kind::OffScreen, options, err);
    if (!pane) return kExitFailure;
    const RegistryStart registry(pane->Methods());
    const std::optional<SceneReport> imported = ImportScene(*pane, options, PointFiles::Shown, err);
    if (!imported) return kExitFailure;
    const SceneReport& report = *imported;
    ShowColors(*pane, options, report);
    MarkerReport markers = AddMarkers(*pane, options, showsPoints, err);
    for (const PointsReport& points : report.points) {
        ++markers.pointFiles;
        if (!showsPoints) PrintWarning(options, err, points.file + ": " + kPointsNotDrawn);
    }
    const bool isFitted = !report.objects.empty() || markers.pointFiles > 0 || markers.box.IsEmpty();
    // An older picture at that path stays when there is nothing to replace it by.
    const auto refuse = [&](const std::string& reason) {
        PrintError(err, options.picturePath + ": not written, " + reason);
        return kExitFailure;
    };
    if (report.objects.empty() && markers.markFiles == 0 && !(showsPoints && markers.pointFiles > 0))
        return refuse("there is nothing to show");
    const std::vector<KV_ScenePane::ViewMode> views = ShownViews(options);
    const auto show = [&](KV_ScenePane::ViewMode view) {
        if (isFitted)
            ShowView(*pane, options, view);
        else
            ShowViewOfMarks(*pane, markers.box, options, view);
    };
    show(views.front());
    bool isPlaced = false;
    try {
        isPlaced = ClipObjects(*pane, options, err);
    } catch (const std::exception& error) {
        return refuse(NoPlacement(error));
    }
    if (options.clipAuto || options.clip) WarnIfAllIsCutAway(*pane, options, report.objects, err);
    const std::vector<std::string> paths = PicturePaths(options);
    bool isWritten = true;
    for (std::size_t i = 0; i < views.size(); ++i) {
        if (i > 0) show(views[i]);
        ShowLook(*pane, options);
        isWritten = WriteShown(capture(*pane), paths[i], err) && isWritten;
    }
    return isWritten && HasImportedAll(report, options) && !markers.hasFailed && isPlaced ? kExitGood : kExitFailure;
}

/// The surface points under the pixels of the options.
/// @param objects  of the scene, by rising index
std::vector<PickReport> Pick(ScenePane& pane, const HostOptions& options, const std::vector<ObjectReport>& objects) {
    std::vector<PickReport> picks;
    for (const PickPixel& pixel : options.picks) {
        PickReport pick{pixel.x, pixel.y, {}, {}};
        KV_ScenePane::SurfacePoint hit;
        if (pane.PickSurface(pixel.x, pixel.y, &hit)) {
            pick.hit = hit;
            // A file is reported by its last object.
            const auto object = std::ranges::lower_bound(objects, hit.object, {}, &ObjectReport::index);
            if (object != objects.end()) pick.file = object->file;
        }
        picks.push_back(std::move(pick));
    }
    return picks;
}

/// What the files hold, with one object in memory at a time.
SceneReport ReportEach(ScenePane& pane, const HostOptions& options, std::FILE* err) {
    SceneReport report;
    ImportFiles(pane, options.files, options, PointFiles::Counted, report, err, [&] {
        pane.Methods().DeleteObject(0);
        report.objects.back().index = static_cast<int>(report.objects.size()) - 1;
    });
    return report;
}

}  // namespace

void PrintError(std::FILE* err, const std::string& line) {
    (void)WriteText(err, "scenepane: " + ProgramOptions::TerminalText(line) + '\n');
}

int PrintResult(const std::string& text, std::FILE* out, std::FILE* err) {
    if (WriteText(out, text)) return kExitGood;
    PrintError(err, errno == EBADF ? kClosedOutput : std::string("standard output: ") + strerrordesc_np(errno));
    return kExitFailure;
}

int RunScreenshot(const HostOptions& options, std::FILE* err) {
    std::vector<CutReport> cuts;
    const int status = RunPicture(options, err, true, [&](ScenePane& pane) {
        pane.Methods().SetDrawMode(static_cast<std::int16_t>(options.drawMode.value_or(KV_ScenePane::DrawModeGouraud)));
        pane.Methods().SetShadowMode(options.shadows ? 1 : 0);
        cuts = CutObjects(pane, options, err);
        KV_ScenePane::Picture picture;
        return pane.CapturePicture(&picture) ? picture : KV_ScenePane::Picture{};
    });
    return HasCutOrNoLasso(cuts) ? status : kExitFailure;
}

int RunCapture(const HostOptions& options, std::FILE* err) {
    return RunPicture(options, err, false, [](ScenePane& pane) { return TakeScreenShot(pane.Methods()); });
}

int RunPick(const HostOptions& options, std::FILE* out, std::FILE* err) {
    const DebugRouter router(PrintOtherOutput(err));
    const std::unique_ptr<ScenePane> pane = OpenPane(WindowRequest::Kind::OffScreen, options, err);
    if (!pane) return kExitFailure;
    const RegistryStart registry(pane->Methods());
    const std::optional<SceneReport> report = ImportScene(*pane, options, PointFiles::Refused, err);
    if (!report) return kExitFailure;
    ShowView(*pane, options);
    const std::vector<PickReport> picks = Pick(*pane, options, report->objects);
    const int printed = PrintResult(options.json ? PickJson(picks) : PickText(picks), out, err);
    if (printed != kExitGood) return printed;
    const bool hasHit = std::ranges::any_of(picks, [](const PickReport& pick) { return pick.hit.has_value(); });
    return hasHit && HasImportedAll(*report, options) ? kExitGood : kExitFailure;
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

// Lassos need a view, which needs OpenGL. Without lassos, plane and transforms no object needs another one.
int RunInfo(const HostOptions& options, std::FILE* out, std::FILE* err) {
    const DebugRouter router(PrintOtherOutput(err));
    const bool isCut = !options.cuts.empty();
    const auto kind = isCut ? WindowRequest::Kind::OffScreen : WindowRequest::Kind::NoPicture;
    const std::unique_ptr<ScenePane> pane = OpenPane(kind, options, err);
    if (!pane) return kExitFailure;
    const RegistryStart registry(pane->Methods());
    const bool needsAll = isCut || options.clipAuto || !options.transformFile.empty();
    std::optional<SceneReport> imported =
        needsAll ? ImportScene(*pane, options, PointFiles::Counted, err) : ReportEach(*pane, options, err);
    if (!imported) return kExitFailure;
    SceneReport& report = *imported;
    if (isCut) ShowView(*pane, options);
    bool isPlaced = false;
    try {
        isPlaced = ClipObjects(*pane, options, err);
        if (options.clipAuto) report.clip = ReportClip(*pane);
    } catch (const std::exception& error) {
        PrintError(err, NoPlacement(error));
    }
    report.cuts = CutObjects(*pane, options, err);
    if (isCut) {
        for (ObjectReport& object : report.objects)
            object = ReportObject(*pane, static_cast<std::int16_t>(object.index), object.file);
    }
    const int printed = PrintResult(options.json ? ReportJson(report) : ReportText(report), out, err);
    if (printed != kExitGood) return printed;
    return HasImportedAll(report, options) && isPlaced && HasCutOrNoLasso(report.cuts) ? kExitGood : kExitFailure;
}

int RunConvert(const HostOptions& options, std::FILE* err) {
    const DebugRouter router(PrintOtherOutput(err));
    const std::unique_ptr<ScenePane> pane = OpenPane(WindowRequest::Kind::NoPicture, options, err);
    if (!pane) return kExitFailure;
    const RegistryStart registry(pane->Methods());
    const std::optional<SceneReport> report = ImportScene(*pane, options, PointFiles::Refused, err);
    if (!report || report->objects.empty()) return kExitFailure;
    const ExportResult result = ExportObject(pane->Methods(), report->objects.front().index, options.exportPath);
    if (!result.text.empty())
        PrintError(err, options.exportPath + (result.written ? ": " : ": not written: ") + result.text);
    return result.written && HasImportedAll(*report, options) ? kExitGood : kExitFailure;
}
