// The lines of the debugger output about a file: why an import added nothing, why an export wrote nothing.
#pragma once
#include <string>
#include <string_view>

/// A path or object name in bytes, as all lines show it. For an empty one, such as that of arrays in memory without a
/// name, "(no file)".
[[nodiscard]] std::string FileLabel(std::wstring_view file);

/// Hosts may pass null for an empty path or name.
[[nodiscard]] inline std::wstring_view TextOrEmpty(const wchar_t* text) {
    return text == nullptr ? std::wstring_view() : text;
}

/// Writes one line to the debugger output: "OPERATION(): FILE: REASON". Any thread.
void ReportFileError(const char* operation, std::wstring_view file, std::string_view reason);

/// Why the exception that is being handled was thrown, as a sentence without its subject; never empty. Must be called
/// inside a catch block.
[[nodiscard]] std::string TextOfCaughtError();

/// ReportFileError() with the text of the exception that is being handled. Must be called inside a catch block.
void ReportCaughtError(const char* operation, std::wstring_view name);
/// The same for the import of a file: where the file cannot be opened, that is the reason.
void ReportCaughtFileError(const char* operation, std::wstring_view file);
