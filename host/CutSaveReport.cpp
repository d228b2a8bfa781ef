// Texts about the entries of PlanCutSave() and GetCutSaveResults(), for standard output and the window.
#include "CutSaveReport.h"

#include <algorithm>
#include <filesystem>
#include <map>
#include <system_error>
#include <utility>

#include "KV_ScenePane/PathText.h"
#include "MessageTable.h"

namespace {

using KV_ScenePane::CutSaveEntry;

std::string NameOf(const CutSaveEntry& entry) {
    return entry.file.empty() ? "object " + std::to_string(entry.object) : KV_ScenePane::PathBytes(entry.file);
}

/// The name itself when there is no such file.
std::filesystem::path WithoutLinks(const std::string& name) {
    std::error_code error;
    std::filesystem::path path = std::filesystem::canonical(name, error);
    return error ? std::filesystem::path(name) : path;
}

/// @param reason  empty when none is known
std::string WithReason(const char* text, const std::string& reason) {
    return reason.empty() ? text : std::string(text).append(": ").append(PlainWords(reason));
}

std::string OutcomeText(const CutSaveEntry& entry) {
    switch (entry.outcome) {
        case KV_ScenePane::CutToBeWritten:
            return "to be written";
        case KV_ScenePane::CutWritten:
            return entry.isNothingLeft ? "written, no point is left in it" : "written";
        case KV_ScenePane::CutNothingToSave:
            return "skipped, nothing new was cut from it";
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

std::vector<FileToWrite> FilesToWrite(std::span<const CutSaveEntry> plan) {
    std::vector<FileToWrite> files;
    std::map<std::filesystem::path, std::size_t> indexOf;
    for (const CutSaveEntry& entry : plan) {
        if (entry.outcome != KV_ScenePane::CutToBeWritten) continue;
        std::string name = KV_ScenePane::PathBytes(entry.file);
        const auto [index, isNew] = indexOf.try_emplace(WithoutLinks(name), files.size());
        if (isNew) files.emplace_back();
        FileToWrite& file = files[index->second];
        file.hasCuts = file.hasCuts || entry.numberOfCuts > 0;
        if (std::ranges::find(file.names, name) == file.names.end()) file.names.push_back(std::move(name));
    }
    return files;
}

std::vector<std::string> MovedObjectLines(std::span<const CutSaveEntry> plan) {
    std::vector<std::string> lines;
    for (const CutSaveEntry& entry : plan) {
        if (entry.outcome != KV_ScenePane::CutToBeWritten) continue;
        if (entry.isCutWhileMoved)  // also an object that is still moved: the undo brings the move back
            lines.push_back(
                NameOf(entry) +
                ": was cut while it was moved; undo these cuts, take back the alignment first, and cut again");
        else if (entry.isMoved)
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
