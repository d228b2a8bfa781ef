// What a save of cuts does with the objects of a scene, as lines for the user.
#pragma once
#include <span>
#include <string>
#include <vector>

#include "KV_ScenePane/Cutting.h"

/// One line about one object without a line feed: "FILE: written", "FILE: skipped, REASON" or "FILE: failed, REASON";
/// of a plan also "FILE: to be written". An object that is from no file is named by its index.
/// @param refusal  why a plan is not carried out: its files are then skipped for this reason
[[nodiscard]] std::string CutSaveLine(const KV_ScenePane::CutSaveEntry& entry, const std::string& refusal = {});

/// The file could not be read or not be written.
[[nodiscard]] bool HasFailed(const KV_ScenePane::CutSaveEntry& entry);

/// The files that a plan writes, as bytes, each once, in the order of the objects.
[[nodiscard]] std::vector<std::string> FilesToWrite(std::span<const KV_ScenePane::CutSaveEntry> plan);

/// Why a plan must not be carried out: one line without a line feed for each object that would be written and was moved
/// since its import, as its cuts would remove other pixels of the file than the lasso enclosed. Usually none.
[[nodiscard]] std::vector<std::string> MovedObjectLines(std::span<const KV_ScenePane::CutSaveEntry> plan);

/// What a save also removes beside the cuts, as sentences without a full stop or a line feed; usually none.
/// @param clips       the clip plane is active
/// @param confidence  limit of the viewer's confidence filter
[[nodiscard]] std::vector<std::string> OtherRemovals(bool clips, float confidence);
