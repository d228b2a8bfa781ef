// From a reason or an exception to the line.
#include "io/FileMessage.h"

#include <algorithm>
#include <exception>
#include <new>

#include "KV_ScenePane/PathText.h"
#include "base/DebugOutput.h"
#include "base/RegularFile.h"

namespace {

/// Of this thread, the innermost one; null without one.
thread_local FileReasons* g_reasons = nullptr;

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
    FileReasons::Note(reason);
    std::string line = std::string(operation) + "(): " + FileLabel(file) + ": ";
    DebugOutput(line.append(reason).append("\n"));
}

void ReportFileRemark(std::wstring_view file, std::string_view remark) {
    FileReasons::Note(remark);
    std::string line = FileLabel(file) + ": ";
    DebugOutput(line.append(remark).append("\n"));
}

FileReasons::FileReasons() : m_pOuter(g_reasons) { g_reasons = this; }

FileReasons::~FileReasons() { g_reasons = m_pOuter; }

void FileReasons::Note(std::string_view text) {
    if (g_reasons == nullptr) return;
    std::vector<std::string>& texts = g_reasons->m_vTexts;
    if (std::ranges::find(texts, text) == texts.end()) texts.emplace_back(text);
}

std::string FileReasons::OneLine() const {
    std::string line;
    for (const std::string& text : m_vTexts) line.append(line.empty() ? "" : "; ").append(text);
    std::ranges::replace_if(
        line, [](unsigned char byte) { return byte < ' ' || byte == 0x7F; }, '?');
    return line;
}

void ReportCaughtError(const char* operation, std::wstring_view name) {
    ReportFileError(operation, name, TextOfCaughtError());
}

void ReportCaughtFileError(const char* operation, std::wstring_view file) {
    const std::string refusal = OpenRefusal(file);
    ReportFileError(operation, file, refusal.empty() ? TextOfCaughtError() : refusal);
}
