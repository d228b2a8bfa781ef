// The sink passes each text to the capture of the thread that wrote it; then the steps from such a text to one line.
#include "DebugCapture.h"

#include <algorithm>
#include <utility>
#include <vector>

#include "KV_ScenePane/DebugOutput.h"
#include "MessageTable.h"
#include "options/TerminalText.h"

namespace {

/// Where the DebugCapture of this thread collects; null without one.
thread_local std::string* g_capturedText = nullptr;

constexpr std::string_view kSeparator = "; ";

/// What the viewer writes in addition to the reason when a grid gives no object.
constexpr std::string_view kNoMesh = "CreateInternalMesh() returned nullptr";

/// The lines that are not empty.
std::vector<std::string_view> Lines(std::string_view text) {
    std::vector<std::string_view> lines;
    while (!text.empty()) {
        const std::size_t end = text.find_first_of("\r\n");
        if (end != 0) lines.push_back(text.substr(0, end));
        if (end == std::string_view::npos) break;
        text.remove_prefix(end + 1);
    }
    return lines;
}

std::string Join(const std::vector<std::string_view>& lines) {
    std::string joined;
    for (const std::string_view line : lines) {
        if (!joined.empty()) joined += kSeparator;
        joined += line;
    }
    return joined;
}

/// The sentences of the messages, each once: several texts may have the same one.
std::string JoinWords(const std::vector<std::string_view>& messages) {
    std::vector<std::string> sentences;
    for (const std::string_view message : messages) {
        std::string sentence = PlainWords(message);
        if (std::ranges::find(sentences, sentence) == sentences.end()) sentences.push_back(std::move(sentence));
    }
    return Join({sentences.begin(), sentences.end()});
}

/// Makes a line safe to print. Reasons quote the file, which anybody may have written: no control sequences for a
/// terminal, and no line as long as the file.
std::string SanitizeForTerminal(std::string line) {
    constexpr std::size_t kMaxBytes = 1000;
    if (line.size() > kMaxBytes) {
        // Cut between two UTF-8 characters: a continuation byte (10xxxxxx) is never the first byte that is cut off.
        std::size_t end = kMaxBytes;
        const auto isContinuation = [&line](std::size_t at) {
            return (static_cast<unsigned char>(line[at]) & 0xC0) == 0x80;
        };
        while (end > kMaxBytes - 3 && isContinuation(end)) --end;
        line.resize(end);
        line += "...";
    }
    return ProgramOptions::TerminalText(std::move(line));
}

/// @p text without any occurrence of @p part.
std::string Without(std::string text, const std::string& part) {
    for (std::size_t at = 0; (at = text.find(part, at)) != std::string::npos;) text.erase(at, part.size());
    return text;
}

}  // namespace

DebugRouter::DebugRouter(std::function<void(std::string_view text)> rest) {
    KV_ScenePane::SetDebugOutputSink([rest = std::move(rest)](std::string_view text) {
        if (g_capturedText != nullptr) {
            g_capturedText->append(text);
        } else {
            rest(text);
        }
    });
}

DebugRouter::~DebugRouter() { KV_ScenePane::SetDebugOutputSink({}); }

// The sink runs on the thread that writes, so a thread-local pointer is enough to find the right capture.
DebugCapture::DebugCapture() { g_capturedText = &m_strText; }

DebugCapture::~DebugCapture() { g_capturedText = nullptr; }

std::string DebugCapture::OneLine() const { return JoinLines(m_strText); }

std::string JoinLines(std::string_view text) { return Join(Lines(text)); }

std::string_view WithoutFunctionName(std::string_view line) {
    const std::size_t end = line.find("(): ");
    if (end == 0 || end == std::string_view::npos) return line;
    const auto isNameCharacter = [](char c) {
        return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_' || c == ':';
    };
    return std::ranges::all_of(line.substr(0, end), isNameCharacter) ? line.substr(end + 4) : line;
}

std::string FileMessage(std::string_view file, std::string_view written, std::string_view thrown) {
    // The path first: it may contain line feeds.
    const std::string path = std::string(file) + ": ";
    const std::string output = Without(std::string(written), path), error = Without(JoinLines(thrown), path);
    std::vector<std::string_view> messages;
    for (const std::string_view line : Lines(output)) {
        const std::string_view message = WithoutFunctionName(line);
        if (!message.empty() && std::ranges::find(messages, message) == messages.end()) messages.push_back(message);
    }
    if (messages.size() > 1) std::erase(messages, kNoMesh);
    // Where the viewer wrote a line about the file, that is the reason, and the exception is its other form. It may
    // have written the text of the exception as part of another line, too.
    const std::string_view exception = WithoutFunctionName(error);
    const auto containsException = [&](std::string_view line) {
        return line.find(exception) != std::string_view::npos;
    };
    const bool hasReason = output.size() < written.size() && !messages.empty();
    if (!exception.empty() && !hasReason && std::ranges::none_of(messages, containsException))
        messages.push_back(exception);
    return SanitizeForTerminal(JoinWords(messages));
}

std::string FailureReason(std::string_view file, std::string_view written, std::string_view thrown) {
    const std::string message = FileMessage(file, written, thrown);
    return message.empty() ? "nothing in it could be imported" : message;
}
