// The run that aligns files by pairs of points. The viewer computes and applies the transform, without OpenGL.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "DebugCapture.h"
#include "Headless.h"
#include "HeadlessScene.h"
#include "PairFile.h"
#include "PairShape.h"
#include "RegistryStart.h"
#include "TransformFile.h"

namespace {

using KV_ScenePane::AlignmentPair;
using KV_ScenePane::ScenePane;

/// Moves the first objects of the list. @return false without a transform
bool MoveFirstObjects(ScenePane& pane, std::size_t count, const std::vector<AlignmentPair>& pairs) {
    pane.Methods().ResetVariableObjects();
    for (std::size_t i = 0; i < count; ++i) pane.Methods().AddVariableObject(static_cast<std::int16_t>(i));
    return pane.AlignByPairs(pairs);
}

/// The entries of the file that was applied and that belong to none of the objects, with their absolute paths: they are
/// kept when transforms are saved.
std::vector<StoredTransform> OtherEntries(const HostOptions& options, const std::vector<std::string>& files) {
    std::vector<StoredTransform> entries, others;
    std::string reason;  // ApplyTransforms() has read the same file
    if (options.transformFile.empty() || !ReadTransformFile(options.transformFile, &entries, &reason)) return others;
    for (const std::size_t i : MatchTransforms(options.transformFile, entries, files).unusedEntries)
        others.push_back({StoredPath(options.transformFile, entries[i].file), entries[i].matrix});
    return others;
}

/// @return why nothing was written; empty otherwise
std::string SaveTransforms(ScenePane& pane, const HostOptions& options, const SceneReport& report) {
    std::vector<StoredTransform> transforms;
    std::vector<std::string> files;
    transforms.reserve(report.objects.size());
    files.reserve(report.objects.size());
    for (const ObjectReport& object : report.objects) {
        const auto matrix = TransformOf(pane.Methods(), static_cast<std::int16_t>(object.index));
        transforms.push_back({object.file, matrix.value()});
        files.push_back(object.file);
    }
    for (StoredTransform& entry : OtherEntries(options, files)) transforms.push_back(std::move(entry));
    std::string reason;
    return WriteTransformFile(options.savedTransforms, transforms, &reason) ? "" : reason;
}

}  // namespace

int RunAlign(const HostOptions& options, std::FILE* out, std::FILE* err) {
    const DebugRouter router(PrintOtherOutput(err));
    std::vector<AlignmentPair> pairs;
    std::string reason;
    if (!ReadPairFile(options.pairFile, &pairs, &reason)) {
        PrintError(err, options.pairFile + ": " + reason);
        return kExitFailure;
    }
    const std::unique_ptr<ScenePane> pane = OpenPane(KV_ScenePane::WindowRequest::Kind::NoPicture, options, err);
    if (!pane) return kExitFailure;
    const RegistryStart registry(pane->Methods());
    SceneReport report;
    ImportFiles(*pane, options.movingFiles, options, PointFiles::Refused, report, err);
    const std::size_t movingCount = report.objects.size();
    ImportFiles(*pane, options.fixedFiles, options, PointFiles::Refused, report, err);
    // Without a moving object each failed file has its line.
    if (movingCount == 0 || !ApplyTransforms(*pane, options, report, err)) return kExitFailure;
    if (!MoveFirstObjects(*pane, movingCount, pairs)) {
        PrintError(err,
                   options.pairFile + ": no transform was found; the points of each side must not be all the same");
        return kExitFailure;
    }
    if (AreOnALine(pairs))
        PrintWarning(options, err,
                     options.pairFile +
                         ": the points are on one line, or nearly: the turn about it is arbitrary; add a pair away "
                         "from the line");
    const KV_ScenePane::AlignmentResult result = pane->GetAlignmentResult();
    const int printed = PrintResult(options.json ? AlignmentJson(result) : AlignmentText(result), out, err);
    if (printed != kExitGood) return printed;
    if (!options.savedTransforms.empty()) {
        reason = report.failed.empty() ? SaveTransforms(*pane, options, report) : "not every file was imported";
        if (!reason.empty()) PrintError(err, options.savedTransforms + ": not written: " + reason);
    }
    return HasImportedAll(report, options) && reason.empty() ? kExitGood : kExitFailure;
}
