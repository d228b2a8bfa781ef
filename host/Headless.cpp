// Each run: make a viewer without a window, import one file after the other, produce the result, and report each file
// that added nothing. Only pictures have markers.
#include "Headless.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <exception>
#include <functional>
#include <memory>
#include <string_view>
#include <utility>

#include "ClipCut.h"
#include "DebugCapture.h"
#include "FileExport.h"
#include "FileImport.h"
#include "KV_ScenePane/ScenePane.h"
#include "MarkBox.h"
#include "MarkerFiles.h"
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

/// What the user can do about a file that was not added; empty when there is nothing to say.
std::string HintAbout(const ImportResult& result) {
    // The viewer's words about a ply file of vertices only.
    return result.text == "holds no faces" ? "; without a window --points adds its vertices" : "";
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
        if (!result.text.empty()) PrintError(err, file + ": " + result.text + HintAbout(result));
    }
    return report;
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
        if (!showsPoints) PrintError(err, file + ": the capture is fitted to these free points, but shows none");
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
        if (!failed && marks.empty()) hasFailed(file, "the file holds no needles");
        report.markFiles += marks.empty() ? 0 : 1;
        for (const NeedleMark& mark : marks) {
            report.box.Merge(mark.pin.data());
            report.box.Merge(mark.head.data());
        }
    }
    return report;
}

/// The direction of the view, then the fit, which depends on it.
void ShowView(ScenePane& pane, const HostOptions& options) {
    pane.Methods().SetViewMode(static_cast<std::int16_t>(options.view));
    FitView(pane.Methods(), options.zoom);
}

/// The same for a scene of lines and needles alone. The viewer fits to objects and free points: the corners of the box
/// are free points for the moment of the fit.
void ShowViewOfMarks(ScenePane& pane, const MarkBox& box, const HostOptions& options) {
    const std::int32_t id = AddPoints(pane.Methods(), {box.Corners(), {}}, 0, 1.0f);
    ShowView(pane, options);
    pane.Methods().DeletePoints(id);
}

/// Places the clip plane at the data; it clips there, and is not drawn. Prints a line when no height was found.
/// @throws what SetClipPlaneEnabled() throws
ClipReport PlaceClipPlane(ScenePane& pane, std::FILE* err) {
    pane.Methods().SetClipPlaneEnabled(1);
    pane.Methods().SetClipPlaneEnabled(0);
    ClipReport clip = ReportClip(pane);
    if (!clip.height.found)
        PrintError(err, "no clip height was found, the plane is at " + NumberText(clip.height.height));
    return clip;
}

/// Clips by the plane of the options. After the fit of the view, which moves the plane within its surface.
/// @return false when no height was found
/// @throws what SetClipPlaneEnabled() throws
bool ClipObjects(ScenePane& pane, const HostOptions& options, std::FILE* err) {
    if (options.clipAuto) return PlaceClipPlane(pane, err).height.found;
    if (options.clip) {
        const auto& [x, y, z] = options.clip->center;
        const auto& [normalX, normalY, normalZ] = options.clip->normal;
        pane.Methods().SetClipPlane(x, y, z, normalX, normalY, normalZ);
        pane.Methods().SetClipPlaneEnabled(0);
    }
    return true;
}

/// Prints a line when the picture will show none of the objects.
void WarnIfAllIsCutAway(ScenePane& pane, const std::vector<ObjectReport>& objects, std::FILE* err) {
    const ClipReport clip = ReportClip(pane);
    const auto isCutAway = [&](const ObjectReport& object) {
        const auto& [minX, maxX, minY, maxY, minZ, maxZ] = object.box;
        return IsCutAway({minX, minY, minZ}, {maxX, maxY, maxZ}, clip.center, clip.normal);
    };
    if (!objects.empty() && std::ranges::all_of(objects, isCutAway))
        PrintError(err, "the clip plane cuts away all objects");
}

/// The text for a placement that threw.
std::string NoPlacement(const std::exception& error) { return std::string("no clip height: ") + error.what(); }

/// Imports the files, fits the view to them and writes the picture that is then taken.
/// @param showsPoints  the picture shows free points
/// @param capture      returns the picture; of width 0 when there is none
int RunPicture(const HostOptions& options, std::FILE* err, bool showsPoints,
               const std::function<KV_ScenePane::Picture(ScenePane& pane)>& capture) {
    const DebugRouter router(PrintOtherOutput(err));
    const std::unique_ptr<ScenePane> pane = OpenPane(WindowRequest::Kind::OffScreen, options, err);
    if (!pane) return kExitFailure;
    const RegistryStart registry(pane->Methods());
    const SceneReport report = ImportFiles(*pane, options, err);
    const MarkerReport markers = AddMarkers(*pane, options, showsPoints, err);
    // An older picture at that path stays when there is nothing to replace it by.
    const auto refuse = [&](const std::string& reason) {
        PrintError(err, options.picturePath + ": " + reason);
        return kExitFailure;
    };
    const bool isFitted = !report.objects.empty() || markers.pointFiles > 0;
    if (report.objects.empty() && markers.markFiles == 0 && !(showsPoints && markers.pointFiles > 0))
        return refuse("not written, there is nothing to show");
    if (isFitted || markers.box.IsEmpty())
        ShowView(*pane, options);
    else
        ShowViewOfMarks(*pane, markers.box, options);
    bool isPlaced = false;
    try {
        isPlaced = ClipObjects(*pane, options, err);
    } catch (const std::exception& error) {
        return refuse("not written, " + NoPlacement(error));
    }
    if (options.clipAuto || options.clip) WarnIfAllIsCutAway(*pane, report.objects, err);
    const KV_ScenePane::Picture picture = capture(*pane);
    if (picture.width == 0) return refuse("not written, the viewer gave no picture");
    std::string reason;
    if (!WritePng(options.picturePath, picture, &reason)) return refuse(reason);
    return report.failed.empty() && !markers.hasFailed && isPlaced ? kExitGood : kExitFailure;
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

}  // namespace

void PrintError(std::FILE* err, const std::string& line) { (void)WriteText(err, "scenepane: " + line + '\n'); }

int PrintResult(const std::string& text, std::FILE* out, std::FILE* err) {
    if (WriteText(out, text)) return kExitGood;
    PrintError(err, std::string("standard output: ") + strerrordesc_np(errno));
    return kExitFailure;
}

int RunScreenshot(const HostOptions& options, std::FILE* err) {
    return RunPicture(options, err, true, [&](ScenePane& pane) {
        pane.Methods().SetDrawMode(static_cast<std::int16_t>(options.drawMode));
        pane.Methods().SetShadowMode(options.shadows ? 1 : 0);
        KV_ScenePane::Picture picture;
        return pane.CapturePicture(&picture) ? picture : KV_ScenePane::Picture{};
    });
}

int RunCapture(const HostOptions& options, std::FILE* err) {
    return RunPicture(options, err, false, [](ScenePane& pane) { return TakeScreenShot(pane.Methods()); });
}

int RunPick(const HostOptions& options, std::FILE* out, std::FILE* err) {
    const DebugRouter router(PrintOtherOutput(err));
    const std::unique_ptr<ScenePane> pane = OpenPane(WindowRequest::Kind::OffScreen, options, err);
    if (!pane) return kExitFailure;
    const RegistryStart registry(pane->Methods());
    const SceneReport report = ImportFiles(*pane, options, err);
    ShowView(*pane, options);
    const std::vector<PickReport> picks = Pick(*pane, options, report.objects);
    const int printed = PrintResult(options.json ? PickJson(picks) : PickText(picks), out, err);
    if (printed != kExitGood) return printed;
    const bool hasHit = std::ranges::any_of(picks, [](const PickReport& pick) { return pick.hit.has_value(); });
    return hasHit && report.failed.empty() ? kExitGood : kExitFailure;
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
    SceneReport report = ImportFiles(*pane, options, err);
    if (options.clipAuto) {
        try {
            report.clip = PlaceClipPlane(*pane, err);
        } catch (const std::exception& error) {
            PrintError(err, NoPlacement(error));
        }
    }
    const bool isPlaced = !options.clipAuto || (report.clip && report.clip->height.found);
    const int printed = PrintResult(options.json ? ReportJson(report) : ReportText(report), out, err);
    if (printed != kExitGood) return printed;
    return report.failed.empty() && isPlaced ? kExitGood : kExitFailure;
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
