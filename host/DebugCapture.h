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

    /// As it was written.
    [[nodiscard]] const std::string& Text() const { return m_strText; }
    /// All lines, joined to one by "; ".
    [[nodiscard]] std::string OneLine() const;

private:
    std::string m_strText;
};

/// Lines to one line, joined by "; "; empty lines are left out.
[[nodiscard]] std::string JoinLines(std::string_view text);

/// What the work on a file had to say, as one line: the debugger output, then the exception; what both say stands once.
/// The viewer puts the path into its lines, and whoever shows this does so, too: "path: " is left out here. Control
/// characters become question marks, and three points stand for what is behind a thousand bytes.
/// @param file     path in bytes, as it was handed to the viewer
/// @param written  of the debugger output
/// @param thrown   text of the exception that ended the work; empty without one
[[nodiscard]] std::string TextAbout(std::string_view file, std::string_view written, std::string_view thrown = {});

/// TextAbout() an import that added nothing; never empty.
[[nodiscard]] std::string ReasonOf(std::string_view file, std::string_view written, std::string_view thrown = {});
