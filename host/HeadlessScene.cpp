// The steps of a run without a window before its result.
#include "HeadlessScene.h"

#include <algorithm>
#include <array>
#include <exception>
#include <utility>

#include "ClipCut.h"
#include "DebugCapture.h"
#include "FileImport.h"
#include "Headless.h"
#include "MessageTable.h"
#include "ObjectPalette.h"
#include "PaintBlock.h"
#include "TransformFile.h"

namespace {

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
    const auto message = std::make_shared<std::string>();  // lives as long as the viewer may show one
    request.showMessage = [message](const std::string& text) { *message = PlainLines(text); };
    std::string reason;
    std::unique_ptr<ScenePane> pane = CreateScenePane(request, &reason);
    if (!pane) PrintError(err, "there is no viewer: " + (reason.empty() ? *message : PlainLines(reason)));
    return pane;
}

void ImportFiles(ScenePane& pane, const std::vector<std::string>& files, const ImportSettings& settings,
                 SceneReport& report, std::FILE* err) {
    KV_ScenePane::_DKV_ScenePane& methods = pane.Methods();
    ApplySettings(methods, settings);
    for (const std::string& file : files) {
        const ImportResult result = ImportFile(methods, file, settings);
        if (result.state == ImportResult::State::Added) {
            const auto index = static_cast<std::int16_t>(methods.GetNumObjects() - 1);
            report.objects.push_back(ReportObject(pane, index, file));
        } else {
            report.failed.push_back({file, result.text});
        }
        if (!result.text.empty()) PrintError(err, file + ": " + result.text);
        if (result.state != ImportResult::State::Added) continue;
        if (!result.text.empty()) report.warnings.push_back({file, result.text});
        if (HasPosition(report.objects.back())) continue;
        PrintError(err, file + ": " + kNoFiniteCoordinate);
        report.warnings.push_back({file, kNoFiniteCoordinate});
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
        PrintError(err, path + ": " + line);
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

std::optional<SceneReport> ImportScene(ScenePane& pane, const HostOptions& options, std::FILE* err) {
    SceneReport report;
    ImportFiles(pane, options.files, options.import, report, err);
    return ApplyTransforms(pane, options, report, err) ? std::optional(std::move(report)) : std::nullopt;
}

void ShowColors(ScenePane& pane, const HostOptions& options, const SceneReport& report) {
    const bool tellsApart = TellsScansApart(options.files, options.import.color, options.given.color);
    const std::vector<std::int32_t> colors = ShownColors(report.objects, tellsApart);
    for (std::size_t i = 0; i < colors.size(); ++i)
        pane.Methods().SetObjectColor(static_cast<std::int16_t>(report.objects[i].index), colors[i]);
}

void ShowView(ScenePane& pane, const HostOptions& options) {
    pane.Methods().SetViewMode(static_cast<std::int16_t>(options.view));
    FitView(pane.Methods(), options.zoom);
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

void WarnIfAllIsCutAway(ScenePane& pane, const std::vector<ObjectReport>& objects, std::FILE* err) {
    const ClipReport clip = ReportClip(pane);
    const auto isCutAway = [&](const ObjectReport& object) {
        const auto& [minX, maxX, minY, maxY, minZ, maxZ] = object.box;
        return IsCutAway({minX, minY, minZ}, {maxX, maxY, maxZ}, clip.center, clip.normal);
    };
    if (!objects.empty() && std::ranges::all_of(objects, isCutAway))
        PrintError(err, "the clip plane cuts away all objects");
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
