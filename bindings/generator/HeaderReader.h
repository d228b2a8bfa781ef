// Reads the docstrings ("///") of the public headers: functions, classes and modes. It understands the form in which
// these headers are written and refuses every other one.
#pragma once
#include <cstdint>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace bindings {

/// A header that is not understood, or that the automation table does not agree with. what() is "FILE:LINE: reason".
struct SourceError : std::runtime_error {
    using std::runtime_error::runtime_error;
};

/// The docstring of one function, class or enumerator. Texts have no line breaks but "\n\n" between paragraphs.
struct DocString {
    struct Parameter {
        std::vector<std::string> names;
        std::string text;
    };
    int line = 0;  ///< of its first line, from 1; 0 when there is no docstring
    std::string text, returns, throws;
    std::vector<Parameter> parameters;
};

/// A virtual function.
struct DeclaredFunction {
    int line = 0;
    std::string name;
    std::vector<std::string> argumentNames;
    DocString doc;
};

/// One named value.
struct Constant {
    std::string name;
    std::int32_t value = 0;
    std::string text;  ///< empty where the name says all
};

/// The values that a mode of the surface can have.
struct ModeList {
    std::string name;  ///< DrawMode, ViewMode, RotationMode, PickMode, SegmentationMode
    std::string text;
    std::vector<Constant> constants;
};

/// Reads the lines of a docstring, each without its "///". Lines before the first tag are the text. The line of a tag
/// goes on with lines that are indented by more than one blank; a line that is not starts one more paragraph of the
/// text.
/// @param place  the file, for messages
/// @param line   number of the first line
/// @throws SourceError for an unknown tag, a tag without a text, a @param without a name, a tag other than @param that
///         occurs twice, and a line after a tag that starts with a small letter: a continuation without indentation
[[nodiscard]] DocString ParseDocString(const std::vector<std::string>& lines, const std::string& place, int line);

/// The virtual functions of a header in order.
/// @param text   the whole file
/// @param place  the file, for messages
/// @throws SourceError also for a declaration that is not understood
[[nodiscard]] std::vector<DeclaredFunction> ParseFunctions(std::string_view text, const std::string& place);

/// The docstring of a class.
/// @throws SourceError when the header has no such class, or the class no docstring
[[nodiscard]] DocString ParseClassText(std::string_view text, std::string_view className, const std::string& place);

/// The enum @p name, whose values are written out, one per line.
/// @throws SourceError when there is none, when it has no docstring or no value, and for a line that is not understood
[[nodiscard]] ModeList ParseMode(std::string_view text, std::string_view name, const std::string& place);

}  // namespace bindings
