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

/// A file that a plan writes.
struct FileToWrite {
    std::vector<std::string> names;  ///< as bytes; several when objects are from links to it
    bool hasCuts = false;            ///< else only the clip plane is written
};

/// Each file once, in the order of the objects. Two hard links are two files: a save replaces each by a file of its
/// own.
[[nodiscard]] std::vector<FileToWrite> FilesToWrite(std::span<const KV_ScenePane::CutSaveEntry> plan);

/// Why a plan must not be carried out: one line without a line feed for each object that would be written and is moved,
/// or was when it was cut, as other pixels of the file would be removed than the lasso enclosed. Usually none.
[[nodiscard]] std::vector<std::string> MovedObjectLines(std::span<const KV_ScenePane::CutSaveEntry> plan);

/// What a save also removes beside the cuts, as sentences without a full stop or a line feed; usually none.
/// @param clips       the clip plane is active
/// @param confidence  limit of the viewer's confidence filter
[[nodiscard]] std::vector<std::string> OtherRemovals(bool clips, float confidence);
