// The sink hands each text to the capture of the thread that wrote it.
#include "DebugCapture.h"

#include <algorithm>
#include <utility>
#include <vector>

#include "KV_ScenePane/DebugOutput.h"

namespace {

thread_local std::string* g_capturedText = nullptr;

constexpr std::string_view kJoint = "; ";

/// Lines that are not empty.
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
        if (!joined.empty()) joined += kJoint;
        joined += line;
    }
    return joined;
}

/// Reasons quote the file, which anybody may have made: no commands for a terminal, and no line as long as the file.
std::string SanitizeForTerminal(std::string line) {
    constexpr std::size_t kLongest = 1000;
    if (line.size() > kLongest) {
        std::size_t end = kLongest;
        const auto continues = [&line](std::size_t at) {
            return (static_cast<unsigned char>(line[at]) & 0xC0) == 0x80;
        };
        while (end > kLongest - 3 && continues(end)) --end;  // whole characters
        line.resize(end);
        line += "...";
    }
    for (std::size_t i = 0; i < line.size(); ++i) {
        const auto byte = static_cast<unsigned char>(line[i]);
        if (byte < ' ' || byte == 0x7F) line[i] = '?';
        // U+0080 to U+009F are control characters, too
        if (i > 0 && line[i - 1] == '\xC2' && byte >= 0x80 && byte < 0xA0) {
            line.erase(i, 1);
            line[--i] = '?';
        }
    }
    return line;
}

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

DebugCapture::DebugCapture() { g_capturedText = &m_strText; }

DebugCapture::~DebugCapture() { g_capturedText = nullptr; }

std::string DebugCapture::OneLine() const { return JoinLines(m_strText); }

std::string JoinLines(std::string_view text) { return Join(Lines(text)); }

std::string TextAbout(std::string_view file, std::string_view written, std::string_view thrown) {
    const std::string path = std::string(file) + ": ";
    const std::string output = Without(std::string(written), path), error = Without(JoinLines(thrown), path);
    std::vector<std::string_view> said;
    for (const std::string_view line : Lines(output)) {
        if (std::ranges::find(said, line) == said.end()) said.push_back(line);
    }
    const auto holdsError = [&](std::string_view line) { return line.find(error) != std::string_view::npos; };
    if (!error.empty() && std::ranges::none_of(said, holdsError)) said.push_back(error);
    return SanitizeForTerminal(Join(said));
}

std::string ReasonOf(std::string_view file, std::string_view written, std::string_view thrown) {
    const std::string text = TextAbout(file, written, thrown);
    return text.empty() ? "nothing in it could be imported" : text;
}
