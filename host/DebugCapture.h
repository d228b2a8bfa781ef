// Tells the debugger output of one import from that of another, also when several run at once.
#pragma once
#include <functional>
#include <string>
#include <string_view>

/// Takes the debugger output of the process over, for as long as this lives. There is one at a time.
class DebugRouter {
public:
    /// @param rest  takes what comes while its thread captures nothing; called from any thread
    explicit DebugRouter(std::function<void(std::string_view text)> rest);
    ~DebugRouter();
    DebugRouter(const DebugRouter&) = delete;
    DebugRouter& operator=(const DebugRouter&) = delete;
};

/// Collects what this thread writes to the debugger output while it lives, with a DebugRouter in place. Does not nest.
class DebugCapture {
public:
    DebugCapture();
    ~DebugCapture();
    DebugCapture(const DebugCapture&) = delete;
    DebugCapture& operator=(const DebugCapture&) = delete;

    /// All lines, joined to one by "; ".
    [[nodiscard]] std::string OneLine() const;

private:
    std::string m_strText;
};

/// Lines to one line, joined by "; "; empty lines are left out.
[[nodiscard]] std::string JoinLines(std::string_view text);

/// The debugger output of an import as a reason why it added nothing; never empty.
[[nodiscard]] std::string ReasonOf(const DebugCapture& capture);
