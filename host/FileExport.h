// The export of one object through the viewer's own methods.
#pragma once
#include <functional>
#include <string>

#include "KV_ScenePane/_DKV_ScenePane.h"

struct ExportResult {
    bool written = false;
    /// One line without the file's name: the reason of a failure, never empty; or the viewer's messages about a file
    /// that was written, usually none.
    std::string text;
};

/// Writes one object into a file of the type that its extension names (FileType::canExport). Needs a DebugRouter for
/// the reason of a failure, and the component registry for hps files. Throws nothing that the export throws: that is a
/// reason too.
/// @param index  of an object in the viewer's list
/// @param file   path in bytes
[[nodiscard]] ExportResult ExportObject(KV_ScenePane::_DKV_ScenePane& methods, int index, const std::string& file);

/// Calls @p write, which may throw, and finds out by the state on disk whether it has written @p file. Needs a
/// DebugRouter for the reason of a failure.
[[nodiscard]] ExportResult WatchWrite(const std::string& file, const std::function<void()>& write);
