// Separates the debugger output of one import from that of another, also when several run at once, and makes the reason
// that a user reads out of it.
#pragma once
#include <functional>
#include <string>
#include <string_view>

/// Receives the debugger output of the whole process for as long as it exists. Only one can exist at a time.
class DebugRouter {
public:
    /// @param rest  receives the output of threads that capture nothing; called from any thread, one call at a time
    explicit DebugRouter(std::function<void(std::string_view text)> rest);
    /// The output goes to standard error again.
    ~DebugRouter();
    DebugRouter(const DebugRouter&) = delete;
    DebugRouter& operator=(const DebugRouter&) = delete;
};

/// Collects what the constructing thread writes to the debugger output until the destructor. Needs a DebugRouter.
/// Must be destroyed on the same thread. Does not nest.
class DebugCapture {
public:
    DebugCapture();
    ~DebugCapture();
    DebugCapture(const DebugCapture&) = delete;
    DebugCapture& operator=(const DebugCapture&) = delete;

    /// The output unchanged, with its line feeds.
    [[nodiscard]] const std::string& Text() const { return m_strText; }
    /// All lines, joined by JoinLines().
    [[nodiscard]] std::string OneLine() const;

private:
    std::string m_strText;
};

/// Joins the lines of a text to one line with "; " between them. Empty lines are left out.
[[nodiscard]] std::string JoinLines(std::string_view text);

/// @p line without the name of the function that wrote it: "ImportPly(): " or "CPLYFile::Read(): ".
[[nodiscard]] std::string_view WithoutFunctionName(std::string_view line);

/// The messages of the viewer about a file as one line for the user: first the debugger output, then the exception,
/// each in the words of PlainWords().
/// Removed are what the user does not need, or sees beside the message: the name of the function at the start of a line
/// ("ImportPly(): "), the path of the file ("path: "), repetitions, an exception beside a line with the path, and,
/// beside another line, the fixed line about a grid without an object. Control characters become question marks, and a
/// message of more than a thousand bytes is cut and ends with "...".
/// @param file     path in bytes, as it was passed to the viewer
/// @param written  the debugger output of the import or export
/// @param thrown   text of the exception that ended it; empty without one
[[nodiscard]] std::string FileMessage(std::string_view file, std::string_view written, std::string_view thrown = {});

/// FileMessage() of an import that added nothing. Never empty: there is a general sentence for a viewer that gave no
/// reason.
[[nodiscard]] std::string FailureReason(std::string_view file, std::string_view written, std::string_view thrown = {});
