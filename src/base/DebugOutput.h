// The process-wide debugger output, where the viewer reports reasons. A host replaces its sink through
// KV_ScenePane/DebugOutput.h.
#pragma once
#include <string_view>

#include "KV_ScenePane/DebugOutput.h"

/// Passes one text to the sink, by default standard error. Calls from several threads are serialised; a sink must not
/// call this function.
/// @param text  UTF-8, mostly one line with its line end
void DebugOutput(std::string_view text);
