// The sink hands each text to the capture of the thread that wrote it.
#include "DebugCapture.h"

#include <utility>

#include "KV_ScenePane/DebugOutput.h"

namespace {
thread_local std::string* g_capturedText = nullptr;
}

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

std::string JoinLines(std::string_view text) {
    std::string joined;
    while (!text.empty()) {
        const std::size_t end = text.find_first_of("\r\n");
        const std::string_view line = text.substr(0, end);
        if (!line.empty()) {
            if (!joined.empty()) joined += "; ";
            joined += line;
        }
        if (end == std::string_view::npos) break;
        text.remove_prefix(end + 1);
    }
    return joined;
}

std::string ReasonOf(const DebugCapture& capture) {
    const std::string line = capture.OneLine();
    return line.empty() ? "nothing in it could be imported" : line;
}
