// The line about a file that was refused or could not be written.
#pragma once
#include <string>
#include <string_view>

#include "KV_ScenePane/PathText.h"
#include "base/DebugOutput.h"

/// Tells the debugger output, in one line: the operation, the file and the reason.
inline void ReportFileError(const char* operation, const wchar_t* path, std::string_view reason) {
    std::string line = std::string(operation) + "(): " + KV_ScenePane::PathBytes(path) + ": ";
    DebugOutput(line.append(reason).append("\n"));
}
