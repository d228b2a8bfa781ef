// The line of the debugger output about a file that was refused or could not be written.
#pragma once
#include <string>
#include <string_view>

#include "KV_ScenePane/PathText.h"
#include "base/DebugOutput.h"

/// Writes one line to the debugger output: "OPERATION(): PATH: REASON". The path keeps its bytes. Any thread.
inline void ReportFileError(const char* operation, const wchar_t* path, std::string_view reason) {
    std::string line = std::string(operation) + "(): " + KV_ScenePane::PathBytes(path) + ": ";
    DebugOutput(line.append(reason).append("\n"));
}
