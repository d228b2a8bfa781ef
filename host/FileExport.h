// The export of one object through the viewer's own methods.
#pragma once
#include <functional>
#include <string>

#include "KV_ScenePane/_DKV_ScenePane.h"

struct ExportResult {
    bool written = false;
    std::string text;  ///< one line without the file's name: why not, or what the viewer said beside writing it
};

/// Writes an object into @p file (bytes): a ply, stl or hps file by its extension. Needs a DebugRouter for the reason
/// of a failure, and the component registry for an hps file. Never throws what the export throws: that is a reason,
/// too.
/// @param index  must be in the viewer's list
[[nodiscard]] ExportResult ExportObject(KV_ScenePane::_DKV_ScenePane& methods, int index, const std::string& file);

/// Calls @p write, which may throw, and finds out whether it has written @p file. Needs a DebugRouter for the reason.
[[nodiscard]] ExportResult WatchWrite(const std::string& file, const std::function<void()>& write);
