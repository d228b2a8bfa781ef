// The runs that write what cuts leave: into the measurement files, or into a file of another format.
#include <algorithm>
#include <exception>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "CaughtError.h"
#include "CutSaveReport.h"
#include "DebugCapture.h"
#include "FileExport.h"
#include "Headless.h"
#include "HeadlessScene.h"
#include "KV_ScenePane/PathText.h"
#include "RegistryStart.h"
#include "options/TerminalText.h"

namespace {

using KV_ScenePane::CutSaveEntry;
using KV_ScenePane::ScenePane;
using KV_ScenePane::WindowRequest;

/// A view needs OpenGL, which a clip plane alone does not.
WindowRequest::Kind PaneKind(const HostOptions& options) {
    return options.cuts.empty() ? WindowRequest::Kind::NoPicture : WindowRequest::Kind::OffScreen;
}

constexpr const char* kOtherMoved = "another file was moved by --transforms";
constexpr const char* kMoved = "was moved by --transforms: leave that out to save cuts";

/// Clips and cuts the objects as the options say.
/// @return why nothing must be written; empty otherwise. Standard error has a line about it, too
std::string CutScene(ScenePane& pane, const HostOptions& options, const SceneReport& report, std::FILE* err) {
    if (!options.cuts.empty()) ShowView(pane, options);
    try {
        if (!ClipObjects(pane, options, err)) return "no clip height was found";
    } catch (const std::exception& error) {
        PrintError(err, NoPlacement(error));
        return "no clip height was found";
    }
    if (options.clip || options.clipAuto) WarnIfAllIsCutAway(pane, options, report.objects, err);
    return HasCutOrNoLasso(CutObjects(pane, options, err)) ? "" : "no lasso has changed an object";
}

/// Whether the file would lose other points than the cuts removed. Only --transforms moves objects here.
bool IsMoved(const CutSaveEntry& entry) {
    return entry.outcome == KV_ScenePane::CutToBeWritten && (entry.isMoved || entry.isCutWhileMoved);
}

/// Why nothing must be written because --transforms has moved a file; empty otherwise. Prints a line about it.
std::string MovedRefusal(const std::vector<CutSaveEntry>& plan, std::FILE* err) {
    if (std::ranges::none_of(plan, IsMoved)) return {};
    PrintError(err, "no cuts are saved: --transforms moved a file; leave it out to save cuts");
    return kOtherMoved;
}

/// Saves, and prints a line for each file that failed.
std::vector<CutSaveEntry> SaveCuts(ScenePane& pane, const HostOptions& options, std::FILE* err) {
    for (const std::string& sentence : OtherRemovals(false, options.import.confidence))
        PrintWarning(options, err, sentence);
    const DebugCapture capture;
    std::string thrown;
    try {
        pane.Methods().SaveCuttingToPcms();
    } catch (...) {
        thrown = TextOfCaughtError();
    }
    std::vector<CutSaveEntry> results = pane.GetCutSaveResults();
    for (const CutSaveEntry& entry : results)
        if (HasFailed(entry)) PrintError(err, CutSaveLine(entry));
    // What the viewer wrote about these files is in their entries.
    if (std::ranges::none_of(results, HasFailed)) {
        for (const std::string& text : {capture.OneLine(), thrown})
            if (!text.empty()) PrintError(err, text);
    }
    return results;
}

/// One line per file, the ones that were not imported last.
std::string SaveText(std::vector<CutSaveEntry> entries, const std::string& refusal, const SceneReport& report) {
    std::string text;
    for (CutSaveEntry& entry : entries) {
        // The viewer has no name of a mesh.
        const auto object = std::ranges::lower_bound(report.objects, entry.object, {}, &ObjectReport::index);
        if (entry.file.empty() && object != report.objects.end()) entry.file = KV_ScenePane::WidePath(object->file);
        const bool isRefusedItself = refusal == kOtherMoved && IsMoved(entry);
        text += ProgramOptions::TerminalText(CutSaveLine(entry, isRefusedItself ? kMoved : refusal)) + '\n';
    }
    for (const FailedFile& failed : report.failed)
        text += ProgramOptions::TerminalText(failed.file + ": failed, not imported: " + failed.reason) + '\n';
    return text;
}

}  // namespace

int RunSaveCuts(const HostOptions& options, std::FILE* out, std::FILE* err) {
    const DebugRouter router(PrintOtherOutput(err));
    const std::unique_ptr<ScenePane> pane = OpenPane(PaneKind(options), options, err);
    if (!pane) return kExitFailure;
    const RegistryStart registry(pane->Methods());
    const std::optional<SceneReport> imported = ImportScene(*pane, options, PointFiles::Refused, err);
    if (!imported) return kExitFailure;
    const SceneReport& report = *imported;
    std::string refusal = CutScene(*pane, options, report, err);
    std::vector<CutSaveEntry> entries = pane->PlanCutSave();
    if (refusal.empty()) refusal = MovedRefusal(entries, err);
    if (refusal.empty() && !FilesToWrite(entries).empty()) entries = SaveCuts(*pane, options, err);
    const int printed = PrintResult(SaveText(entries, refusal, report), out, err);
    if (printed != kExitGood) return printed;
    const auto isWritten = [](const CutSaveEntry& entry) { return entry.outcome == KV_ScenePane::CutWritten; };
    const bool isGood = std::ranges::any_of(entries, isWritten) && std::ranges::none_of(entries, HasFailed);
    return isGood && HasImportedAll(report, options) ? kExitGood : kExitFailure;
}

int RunExport(const HostOptions& options, std::FILE* err) {
    const DebugRouter router(PrintOtherOutput(err));
    const std::unique_ptr<ScenePane> pane = OpenPane(PaneKind(options), options, err);
    if (!pane) return kExitFailure;
    const RegistryStart registry(pane->Methods());
    const std::optional<SceneReport> report = ImportScene(*pane, options, PointFiles::Refused, err);
    if (!report || report->objects.empty()) return kExitFailure;
    const std::string refusal = CutScene(*pane, options, *report, err);
    if (!refusal.empty()) {
        PrintError(err, options.exportPath + ": not written, " + refusal);
        return kExitFailure;
    }
    const ExportResult result = ExportObject(pane->Methods(), report->objects.front().index, options.exportPath);
    if (!result.text.empty())
        PrintError(err, options.exportPath + (result.written ? ": " : ": not written: ") + result.text);
    return result.written && HasImportedAll(*report, options) ? kExitGood : kExitFailure;
}
