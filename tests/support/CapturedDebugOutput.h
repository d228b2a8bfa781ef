// Takes over the debugger output for the length of a scope.
#pragma once
#include <mutex>
#include <string>
#include <string_view>
#include <utility>

#include "KV_ScenePane/DebugOutput.h"

class CapturedDebugOutput {
public:
    CapturedDebugOutput() {
        KV_ScenePane::SetDebugOutputSink([this](std::string_view text) {
            const std::lock_guard guard(m_mutex);
            m_text += text;
        });
    }
    ~CapturedDebugOutput() { KV_ScenePane::SetDebugOutputSink({}); }
    CapturedDebugOutput(const CapturedDebugOutput&) = delete;
    CapturedDebugOutput& operator=(const CapturedDebugOutput&) = delete;

    /// What came since the last call.
    std::string Take() {
        const std::lock_guard guard(m_mutex);
        return std::exchange(m_text, {});
    }

private:
    std::mutex m_mutex;
    std::string m_text;
};
