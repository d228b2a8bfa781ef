// Texts about the entries of PlanCutSave() and GetCutSaveResults(), for standard output and the window.
#include "CutSaveReport.h"

#include <algorithm>
#include <utility>

#include "KV_ScenePane/PathText.h"

namespace {

using KV_ScenePane::CutSaveEntry;

std::string NameOf(const CutSaveEntry& entry) {
    return entry.file.empty() ? "object " + std::to_string(entry.object) : KV_ScenePane::PathBytes(entry.file);
}

/// @param reason  empty when none is known
std::string WithReason(const char* text, const std::string& reason) {
    return reason.empty() ? text : std::string(text).append(": ").append(reason);
}

std::string OutcomeText(const CutSaveEntry& entry) {
    switch (entry.outcome) {
        case KV_ScenePane::CutToBeWritten:
            return "to be written";
        case KV_ScenePane::CutWritten:
            return "written";
        case KV_ScenePane::CutNothingToSave:
            return "skipped, it has no cut that is not in the file";
        case KV_ScenePane::CutNotFromPcm:
            return "skipped, only pcm files can hold cuts";
        case KV_ScenePane::CutFileNotRead:
            return WithReason("failed, the file could not be read", entry.reason);
        case KV_ScenePane::CutFileNotWritten:
            return WithReason("failed, the file could not be written and is as before", entry.reason);
    }
    return "failed";  // an outcome of a newer viewer
}

}  // namespace

std::string CutSaveLine(const CutSaveEntry& entry, const std::string& refusal) {
    const bool isRefused = entry.outcome == KV_ScenePane::CutToBeWritten && !refusal.empty();
    return NameOf(entry).append(": ").append(isRefused ? "skipped, " + refusal : OutcomeText(entry));
}

bool HasFailed(const CutSaveEntry& entry) {
    return entry.outcome == KV_ScenePane::CutFileNotRead || entry.outcome == KV_ScenePane::CutFileNotWritten;
}

std::vector<std::string> FilesToWrite(std::span<const CutSaveEntry> plan) {
    std::vector<std::string> files;
    for (const CutSaveEntry& entry : plan) {
        if (entry.outcome != KV_ScenePane::CutToBeWritten) continue;
        std::string file = KV_ScenePane::PathBytes(entry.file);
        if (std::ranges::find(files, file) == files.end()) files.push_back(std::move(file));
    }
    return files;
}

std::vector<std::string> MovedObjectLines(std::span<const CutSaveEntry> plan) {
    std::vector<std::string> lines;
    for (const CutSaveEntry& entry : plan) {
        if (entry.outcome == KV_ScenePane::CutToBeWritten && entry.isMoved)
            lines.push_back(NameOf(entry) + ": moved since its import, take back the alignment first");
    }
    return lines;
}

std::vector<std::string> OtherRemovals(bool clips, float confidence) {
    std::vector<std::string> sentences;
    if (clips) sentences.emplace_back("the clip plane is active: what it clips is removed from every pcm file");
    if (confidence > 0.0f)
        sentences.emplace_back("the confidence filter is above 0: points below it are removed from the files, too");
    return sentences;
}
