// The steps of a run without a window before its result.
#include "HeadlessScene.h"

#include <algorithm>
#include <array>
#include <exception>
#include <utility>

#include "CaughtError.h"
#include "ClipCut.h"
#include "DebugCapture.h"
#include "FileImport.h"
#include "FileLook.h"
#include "ForeignReader.h"
#include "GraphicsLimits.h"
#include "Headless.h"
#include "InputFiles.h"
#include "MarkerFiles.h"
#include "MessageTable.h"
#include "ObjectPalette.h"
#include "PaintBlock.h"
#include "ProgressLine.h"
#include "SceneFile.h"
#include "TightFit.h"
#include "TransformFile.h"
#include "ViewerStartNotice.h"

namespace {

constexpr std::int32_t kViewerBackground = 0x321919;  // the one that a viewer starts with, 0x00BBGGRR

using KV_ScenePane::ScenePane;
using KV_ScenePane::WindowRequest;

/// Places the clip plane at the data. Prints a line when no height was found.
bool IsPlacedAtData(ScenePane& pane, std::FILE* err) {
    pane.Methods().SetClipPlaneEnabled(1);
    pane.Methods().SetClipPlaneEnabled(0);
    const KV_ScenePane::ClipHeight height = pane.GetClipHeight();
    if (!height.found) PrintError(err, "no clip height was found, the plane is at " + NumberText(height.height));
    return height.found;
}

/// What becomes of a file that holds free points. @return its result
ImportResult WithPoints(KV_ScenePane::_DKV_ScenePane& methods, const ImportSettings& settings, PointFiles points,
                        const std::string& file, const ImportResult& read, SceneReport& report) {
    if (points == PointFiles::Refused) return {ImportResult::State::Failed, kPointsAlone};
    PointsReport counted = ReportPoints(*read.points, file);
    if (points == PointFiles::Shown) {
        try {
            AddDrawnPoints(methods, std::move(*read.points), settings.color, 1.0f);
        } catch (...) {
            return {ImportResult::State::Failed, FailureReason(file, {}, TextOfCaughtError())};
        }
    }
    report.points.push_back(std::move(counted));
    return {ImportResult::State::Points, read.text};
}

/// The files of the arguments. A run that writes one object reads one file: a folder or a list in its place is a
/// failure.
InputFiles InputOf(const std::vector<std::string>& files, const HostOptions& options) {
    const bool isConvert = options.action == HostAction::Convert;
    if (!isConvert && options.action != HostAction::Export) return ExpandedFiles(files);
    InputFiles input;
    const std::string readsOne = isConvert ? ": --convert reads one file" : ": --export reads one file";
    for (const std::string& file : files) {
        const std::string refusal = ReadRefusal(file);
        if (refusal == kIsFolder)
            input.failed.push_back({file, "this is a folder" + readsOne});
        else if (refusal == kNoSuchFile && IsFileList(file))
            input.failed.push_back({file, "this is a list of files" + readsOne});
        else
            input.files.push_back(file);
    }
    return input;
}

/// Imports a file. Colours of vertices that the viewer's own readers add are left out by reading it once more.
ImportResult ImportOne(ScenePane& pane, const HostOptions& options, const std::string& file) {
    KV_ScenePane::_DKV_ScenePane& methods = pane.Methods();
    ImportResult result = ImportFile(methods, file, options.import);
    if (!options.import.leavesOutColors || result.state != ImportResult::State::Added) return result;
    const auto index = static_cast<std::int16_t>(methods.GetNumObjects() - 1);
    KV_ScenePane::ObjectInfo info;
    if (!pane.GetObjectInfo(index, &info) || !info.hasVertexColors) return result;
    if (HasSecondReader(file) && !ReaderProgram().empty()) {
        ImportResult again = ImportByProcess(methods, file, options.import);
        if (again.state == ImportResult::State::Added && pane.GetObjectInfo(index + 1, &info) &&
            !info.hasVertexColors) {
            methods.DeleteObject(index);
            return again;
        }
        if (again.state == ImportResult::State::Added) methods.DeleteObject(index + 1);
    }
    result.text += (result.text.empty() ? "" : "; ") + std::string("it keeps the colours of its vertices");
    return result;
}

/// The object that was added last, in the colour of the options when it is a mesh without any.
ObjectReport ReportAdded(ScenePane& pane, const HostOptions& options, const std::string& file) {
    const auto index = static_cast<std::int16_t>(pane.Methods().GetNumObjects() - 1);
    ObjectReport object = ReportObject(pane, index, file);
    if (!options.given.color || !IsPlainMesh(object)) return object;
    pane.Methods().SetObjectColor(index, options.import.color);
    object.color = options.import.color;
    return object;
}

/// With --strict a warning about a file changes the exit status, and is printed in any case.
void PrintFileWarning(const HostOptions& options, std::FILE* err, const std::string& line) {
    if (options.strict)
        PrintError(err, line);
    else
        PrintWarning(options, err, line);
}

}  // namespace

std::function<void(std::string_view)> PrintOtherOutput(std::FILE* err) {
    return [err](std::string_view text) {
        if (const std::string line = PlainLines(text); !line.empty()) PrintError(err, line);
    };
}

std::unique_ptr<ScenePane> OpenPane(WindowRequest::Kind kind, const HostOptions& options, std::FILE* err) {
    WindowRequest request;
    request.kind = kind;
    request.width = options.width;
    request.height = options.height;
    request.gpu = options.gpu;
    if (kind == WindowRequest::Kind::OffScreen) request.samples = options.samples;
    const auto message = std::make_shared<std::string>();  // lives as long as the viewer may show one
    request.showMessage = [message](const std::string& text) { *message = PlainLines(text); };
    std::string reason;
    const ViewerStartNotice notice;
    std::unique_ptr<ScenePane> pane = CreateScenePane(request, &reason);
    if (!pane) {
        PrintError(err, "there is no viewer: " + (reason.empty() ? *message : PlainLines(reason)));
        return pane;
    }
    if (request.samples > 0) {
        pane->Methods().PerformRefresh();  // the limits are known after a frame
        const std::optional<GraphicsLimits> limits = GraphicsLimitsOf(*pane);
        if (!limits || limits->samples != request.samples) {
            PrintError(err, "the driver draws no " + std::to_string(request.samples) + " samples per pixel");
            return nullptr;
        }
    }
    return pane;
}

void PrintWarning(const HostOptions& options, std::FILE* err, const std::string& line) {
    if (!options.quiet) PrintError(err, line);
}

void ImportFiles(ScenePane& pane, const std::vector<std::string>& files, const HostOptions& options, PointFiles points,
                 SceneReport& report, std::FILE* err, const std::function<void()>& afterEach) {
    KV_ScenePane::_DKV_ScenePane& methods = pane.Methods();
    ApplySettings(methods, options.import);
    const InputFiles input = InputOf(files, options);
    for (const FailedFile& failed : input.failed) {
        report.failed.push_back(failed);
        PrintError(err, failed.file + ": " + failed.reason);
    }
    for (const std::string& line : input.warnings) PrintWarning(options, err, line);
    ProgressLine progress(options, input.files.size(), err);
    for (const std::string& file : input.files) {
        progress.Show(file);
        ImportResult result = ImportOne(pane, options, file);
        if (result.state == ImportResult::State::Points)
            result = WithPoints(methods, options.import, points, file, result, report);
        if (result.state == ImportResult::State::Failed) {
            progress.Erase();
            report.failed.push_back({file, result.text});
            PrintError(err, file + ": " + result.text);
            continue;
        }
        const auto warn = [&](const std::string& text) {
            progress.Erase();
            PrintFileWarning(options, err, file + ": " + text);
            report.warnings.push_back({file, text});
        };
        if (!result.text.empty()) warn(result.text);
        if (result.state != ImportResult::State::Added) continue;
        report.objects.push_back(ReportAdded(pane, options, file));
        if (!HasPosition(report.objects.back())) warn(kNoFiniteCoordinate);
        if (afterEach) afterEach();
    }
}

bool HasImportedAll(const SceneReport& report, const HostOptions& options) {
    return report.failed.empty() && (!options.strict || report.warnings.empty());
}

bool ApplyTransforms(ScenePane& pane, const HostOptions& options, SceneReport& report, std::FILE* err) {
    const std::string& path = options.transformFile;
    if (path.empty()) return true;
    std::vector<StoredTransform> entries;
    std::string reason;
    if (!ReadTransformFile(path, &entries, &reason)) {
        PrintError(err, path + ": " + reason);
        return false;
    }
    std::vector<std::string> files(report.objects.size());
    std::ranges::transform(report.objects, files.begin(), &ObjectReport::file);
    const TransformMatch match = MatchTransforms(path, entries, files);
    if (!match.HasAny()) {
        PrintError(err, path + ": holds no transform for any of the files");
        return false;
    }
    // Entries for other files are normal when all files of the run have theirs.
    if (const std::string line = MissingTransformsLine(match, entries, files); !line.empty())
        PrintWarning(options, err, path + ": " + line);
    const PaintBlock block(pane.Methods());
    for (std::size_t i = 0; i < files.size(); ++i) {
        if (!match.entryOfObject[i]) continue;
        ObjectReport& object = report.objects[i];
        const auto index = static_cast<std::int16_t>(object.index);
        SetTransformOf(pane.Methods(), index, entries[*match.entryOfObject[i]].matrix);
        object = ReportObject(pane, index, object.file);
    }
    return true;
}

std::optional<SceneReport> ImportScene(ScenePane& pane, const HostOptions& options, PointFiles points, std::FILE* err) {
    SceneReport report;
    ImportFiles(pane, options.files, options, points, report, err);
    return ApplyTransforms(pane, options, report, err) ? std::optional(std::move(report)) : std::nullopt;
}

void ShowColors(ScenePane& pane, const HostOptions& options, const SceneReport& report) {
    std::vector<std::string> files(report.objects.size());
    std::ranges::transform(report.objects, files.begin(), &ObjectReport::file);
    const bool tellsApart = TellsScansApart(files, options.import.color, options.given.color);
    std::vector<std::int32_t> colors = ShownColors(report.objects, tellsApart);
    std::size_t position = 0;
    for (std::size_t i = 0; i < colors.size(); ++i) {
        const ObjectReport& object = report.objects[i];
        const bool isPlain = IsPlainMesh(object) || IsPlainScan(object);
        if (options.usesPalette && isPlain) colors[i] = PaletteColor(position++);
        if (options.given.color) colors[i] = object.color;
        pane.Methods().SetObjectColor(static_cast<std::int16_t>(object.index), colors[i]);
    }
}

void ShowView(ScenePane& pane, const HostOptions& options) { ShowView(pane, options, options.view); }

void ShowView(ScenePane& pane, const HostOptions& options, KV_ScenePane::ViewMode view) {
    KV_ScenePane::_DKV_ScenePane& methods = pane.Methods();
    methods.SetViewMode(static_cast<std::int16_t>(view));
    if (!options.isTight) {
        FitView(methods, options.zoom);
        return;
    }
    methods.SetDefaultZoomFactor(1.0f);     // a tight fit changes it
    if (options.axes) methods.ShowAxes(0);  // of the picture before
    methods.CenterView();
    FitTightly(pane);
    methods.SetBackgroundColors(kViewerBackground, kViewerBackground);
    MagnifyView(methods, options.zoom);
}

void ShowLook(ScenePane& pane, const HostOptions& options) {
    KV_ScenePane::_DKV_ScenePane& methods = pane.Methods();
    if (options.background) methods.SetBackgroundColors((*options.background)[0], (*options.background)[1]);
    if (options.pointSize) methods.SetPointCloudRenderPointSize(*options.pointSize);
    if (options.axes) methods.ShowAxes(1);
}

bool ClipObjects(ScenePane& pane, const HostOptions& options, std::FILE* err) {
    if (options.clipAuto) return IsPlacedAtData(pane, err);
    if (options.clip) {
        const auto& [x, y, z] = options.clip->center;
        const auto& [normalX, normalY, normalZ] = options.clip->normal;
        pane.Methods().SetClipPlane(x, y, z, normalX, normalY, normalZ);
        pane.Methods().SetClipPlaneEnabled(0);
    }
    return true;
}

void WarnIfAllIsCutAway(ScenePane& pane, const HostOptions& options, const std::vector<ObjectReport>& objects,
                        std::FILE* err) {
    const ClipReport clip = ReportClip(pane);
    const auto isCutAway = [&](const ObjectReport& object) {
        const auto& [minX, maxX, minY, maxY, minZ, maxZ] = object.box;
        return IsCutAway({minX, minY, minZ}, {maxX, maxY, maxZ}, clip.center, clip.normal);
    };
    if (!objects.empty() && std::ranges::all_of(objects, isCutAway))
        PrintWarning(options, err, "the clip plane cuts away all objects");
}

std::string NoPlacement(const std::exception& error) { return "no clip height: " + PlainLines(error.what()); }

std::vector<CutReport> CutObjects(ScenePane& pane, const HostOptions& options, std::FILE* err) {
    std::vector<CutReport> cuts;
    cuts.reserve(options.cuts.size());
    // The start of each session draws a frame, whose camera and depths the lasso is applied with.
    for (const LassoCut& lasso : options.cuts)
        cuts.push_back({lasso.mode, pane.CutWithLasso(lasso.mode, lasso.points)});
    if (!HasCutOrNoLasso(cuts)) PrintError(err, "no lasso has changed an object");
    return cuts;
}

bool HasCutOrNoLasso(std::span<const CutReport> cuts) {
    return cuts.empty() || std::ranges::any_of(cuts, &CutReport::hasChanged);
}
