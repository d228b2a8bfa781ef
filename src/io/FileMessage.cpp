// From a reason or an exception to the line.
#include "io/FileMessage.h"

#include <exception>
#include <new>

#include "KV_ScenePane/PathText.h"
#include "base/DebugOutput.h"
#include "base/RegularFile.h"

namespace {

/// Why a file cannot be opened; empty when it can.
std::string OpenRefusal(std::wstring_view file) {
    try {
        (void)RegularFile(KV_ScenePane::PathBytes(file));
        return {};
    } catch (const FileAccessError& error) {
        return error.what();
    }
}

}  // namespace

std::string TextOfCaughtError() {
    try {
        throw;  // the exception that the caller is handling
    } catch (const std::bad_alloc&) {
        return "there is not enough memory";
    } catch (const std::exception& error) {
        return *error.what() == '\0' ? "an error without a text" : error.what();
    } catch (...) {
        return "an unknown error";
    }
}

std::string FileLabel(std::wstring_view file) { return file.empty() ? "(no file)" : KV_ScenePane::PathBytes(file); }

void ReportFileError(const char* operation, std::wstring_view file, std::string_view reason) {
    std::string line = std::string(operation) + "(): " + FileLabel(file) + ": ";
    DebugOutput(line.append(reason).append("\n"));
}

void ReportCaughtError(const char* operation, std::wstring_view name) {
    ReportFileError(operation, name, TextOfCaughtError());
}

void ReportCaughtFileError(const char* operation, std::wstring_view file) {
    const std::string refusal = OpenRefusal(file);
    ReportFileError(operation, file, refusal.empty() ? TextOfCaughtError() : refusal);
}
