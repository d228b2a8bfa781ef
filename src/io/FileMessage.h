// The lines of the debugger output about a file: why an import added nothing, why an export wrote nothing.
#pragma once
#include <string>
#include <string_view>
#include <vector>

/// A path or object name in bytes, as all lines show it. For an empty one, such as that of arrays in memory without a
/// name, "(no file)".
[[nodiscard]] std::string FileLabel(std::wstring_view file);

/// Hosts may pass null for an empty path or name.
[[nodiscard]] inline std::wstring_view TextOrEmpty(const wchar_t* text) {
    return text == nullptr ? std::wstring_view() : text;
}

/// Writes one line to the debugger output: "OPERATION(): FILE: REASON". Any thread.
void ReportFileError(const char* operation, std::wstring_view file, std::string_view reason);

/// Writes the line "FILE: REMARK" about a file that was imported. Any thread.
void ReportFileRemark(std::wstring_view file, std::string_view remark);

/// Collects the reasons and remarks that this thread reports while it exists, for a host that reads them after the
/// call. They go to the debugger output all the same. Nests: the innermost one receives them.
class FileReasons {
public:
    FileReasons();
    ~FileReasons();
    FileReasons(const FileReasons&) = delete;
    FileReasons& operator=(const FileReasons&) = delete;

    /// All in one line, each once, without operation and file. Control characters, which a file may hold, are question
    /// marks.
    [[nodiscard]] std::string OneLine() const;

private:
    friend void ReportFileError(const char* operation, std::wstring_view file, std::string_view reason);
    friend void ReportFileRemark(std::wstring_view file, std::string_view remark);
    static void Note(std::string_view text);

    FileReasons* m_pOuter;
    std::vector<std::string> m_vTexts;
};

/// Why the exception that is being handled was thrown, as a sentence without its subject; never empty. Must be called
/// inside a catch block.
[[nodiscard]] std::string TextOfCaughtError();

/// ReportFileError() with the text of the exception that is being handled. Must be called inside a catch block.
void ReportCaughtError(const char* operation, std::wstring_view name);
/// The same for the import of a file: where the file cannot be opened, that is the reason.
void ReportCaughtFileError(const char* operation, std::wstring_view file);
