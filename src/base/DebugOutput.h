// The process-wide debugger output. Hosts take it over through KV_ScenePane/DebugOutput.h.
#pragma once
#include <string_view>

#include "KV_ScenePane/DebugOutput.h"

/// Hands one piece of text in UTF-8 to the sink; standard error by default. Any thread.
void DebugOutput(std::string_view text);
