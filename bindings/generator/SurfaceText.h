// The automation surface with its texts: rows of the automation table joined with the docstrings of the public headers.
// Everything that generate-bindings writes is made of these plain structs.
#pragma once
#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "HeaderReader.h"

namespace bindings {

enum class MemberKind { Method, Property, Event };

/// One argument of a method or an event.
struct Argument {
    std::string
        type;  ///< as declared: short, long, int, float, VARIANT_BOOL, BSTR, VARIANT*, float*, long*, int*, int64
    std::string name;
    bool output = false;  ///< the method writes through the pointer
    std::string element;  ///< of a pointer: int32, float32, uint8, uint32, pointer, mesh; else empty
    std::string shape;    ///< elements per dimension of an array, slowest first: "number x 3"; else empty
    /// Text of its @param; empty when the docstring has none. Arguments that share a @param have equal texts.
    std::string text;
};

/// One method, property or event. Texts have no line breaks but "\n\n" between paragraphs.
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

/// The whole surface, members in the order of the table.
struct Surface {
    std::string text;        ///< of the class of the methods: units, frames, ownership, errors
    std::string eventsText;  ///< of the class of the events
    std::vector<Member> methods, properties, events;
    std::vector<ModeList> modes;
};

/// The public headers that hold the texts, each as a whole.
struct HeaderTexts {
    std::string methods;  ///< _DKV_ScenePane.h
    std::string events;   ///< _DKV_ScenePaneEvents.h
    std::string modes;    ///< Modes.h
    std::string cutting;  ///< Cutting.h
};

/// The bytes of a file; nothing when it cannot be read.
[[nodiscard]] std::optional<std::string> FileText(const std::filesystem::path& file);

/// Reads the headers below @p root/include/KV_ScenePane.
/// @throws SourceError
[[nodiscard]] HeaderTexts ReadHeaders(const std::filesystem::path& root);

/// Joins the automation table with the headers.
/// @throws SourceError when the functions of a header are not those of the table, in their order and in the names of
///         their arguments, for a function without a text, a @param of an unknown argument, two of the same one, and a
///         @return without a result
[[nodiscard]] Surface JoinSurface(const HeaderTexts& headers);

}  // namespace bindings
