// The automation surface with its texts: rows of the automation table joined with the docstrings of the public headers.
// Everything that generate-bindings writes is made of these plain structs.
#pragma once
#include <cstdint>
#include <filesystem>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace bindings {

/// A header that cannot be joined with the table, or a file that cannot be read. what() is "FILE:LINE: reason".
struct SourceError : std::runtime_error {
    using std::runtime_error::runtime_error;
};

enum class MemberKind { Method, Property, Event };

/// One argument of a method or an event.
struct Argument {
    std::string type;  ///< as declared: short, long, int, float, VARIANT_BOOL, BSTR, VARIANT*, float*, long*, int*, int64
    std::string name;
    bool output = false;  ///< the method writes through the pointer
    std::string element;  ///< of a pointer: int32, float32, uint8, uint32, pointer, mesh; else empty
    std::string shape;    ///< elements per dimension of an array, slowest first: "number x 3"; else empty
    /// Text of its @param; empty when the docstring has none. Arguments that share a @param have equal texts.
    std::string text;
};

/// One method, property or event. Texts are plain English without line breaks; "\n\n" is between paragraphs.
struct Member {
    MemberKind kind = MemberKind::Method;
    std::int32_t id = 0;
    std::string name;
    std::string type;  ///< of the result or of the property, as declared: void, short, long, int, VARIANT_BOOL
    std::vector<Argument> arguments;
    bool writable = false;   ///< of a property
    std::string text;        ///< what it does; of a property what the value is
    std::string setterText;  ///< of a writable property: what a change does
    std::string returns;     ///< text of @return; empty when there is none
    std::string throws;      ///< text of @throws; empty when there is none
};

/// One named value of an argument.
struct Constant {
    std::string name;
    std::int32_t value = 0;
    std::string text;  ///< may be empty where the name says all
};

/// The values that a mode of the surface can have.
struct ModeList {
    std::string name;  ///< DrawMode, ViewMode, RotationMode, PickMode, SegmentationMode
    std::string text;
    std::vector<Constant> constants;
};

/// The whole surface, members in the order of the table.
struct Surface {
    std::string text;        ///< of the class of the methods: units, frames, ownership, errors
    std::string eventsText;  ///< of the class of the events
    std::vector<Member> methods, properties, events;
    std::vector<ModeList> modes;
};

/// The docstring of one function, class or enumerator.
struct DocString {
    struct Parameter {
        std::vector<std::string> names;
        std::string text;
    };
    int line = 0;  ///< of its first line, from 1
    std::string text, returns, throws;
    std::vector<Parameter> parameters;
};

/// A virtual function of a public header.
struct DeclaredFunction {
    int line = 0;
    std::string name;
    std::vector<std::string> argumentNames;
    DocString doc;  ///< line 0 when there is none
};

/// Reads the lines of a docstring, each without its "///". Lines before the first tag are the text; the line of a tag
/// goes on with lines that are indented by more than one blank; a line that is not is one more paragraph of the text.
/// @param place  "FILE", for messages
/// @param line   of the first line
/// @throws SourceError for an unknown tag, a @param without a name or a text, a tag that occurs twice, and a paragraph
///         after a tag that starts with a small letter: it is a continuation that has lost its indentation
[[nodiscard]] DocString ParseDocString(const std::vector<std::string>& lines, const std::string& place, int line);

/// The virtual functions of a header in order, without its destructors.
/// @param text   the whole file
/// @param place  "FILE", for messages
/// @throws SourceError for a declaration that is not understood
[[nodiscard]] std::vector<DeclaredFunction> ParseFunctions(std::string_view text, const std::string& place);

/// The docstring of a class.
/// @throws SourceError when the header has no such class, or the class no docstring
[[nodiscard]] DocString ParseClassText(std::string_view text, std::string_view className, const std::string& place);

/// The enums of a header that have this form: "enum NAME : std::int16_t {", one enumerator with its value per line.
/// @throws SourceError when there is none, for an enum without a docstring and for a line that is not understood
[[nodiscard]] std::vector<ModeList> ParseModes(std::string_view text, const std::string& place);

/// The headers that hold the texts.
struct HeaderTexts {
    std::string methods;  ///< _DKV_ScenePane.h
    std::string events;   ///< _DKV_ScenePaneEvents.h
    std::string modes;    ///< Modes.h
    std::string cutting;  ///< Cutting.h
};

/// Joins the automation table with the headers.
/// @throws SourceError when the functions of a header are not those of the table, in order and in the names of their
///         arguments, for a function without docstring, a @param of an unknown argument and a @return of none
[[nodiscard]] Surface JoinSurface(const HeaderTexts& headers);

/// Reads the headers below @p root/include/KV_ScenePane.
/// @throws SourceError
[[nodiscard]] HeaderTexts ReadHeaders(const std::filesystem::path& root);

/// A whole file.
/// @throws SourceError when it cannot be read
[[nodiscard]] std::string ReadText(const std::filesystem::path& file);

}  // namespace bindings
