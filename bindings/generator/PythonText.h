// Types and docstrings of the Python package, from the declared types and the docstrings of C++.
#pragma once
#include <string>
#include <string_view>

#include "SurfaceText.h"

namespace bindings {

/// Letter of a value in the Python package: s short, b VARIANT_BOOL, i long and int, f float, w string, p pointer,
/// l 64-bit address, v none.
[[nodiscard]] std::string ValueCode(std::string_view type);

/// Type of the kv_value that holds it.
[[nodiscard]] int ValueTag(std::string_view type);

/// Annotation of a result or a property.
[[nodiscard]] std::string PythonType(std::string_view type);
/// Annotation of an argument; of an output that of the value that is returned.
[[nodiscard]] std::string PythonType(const Argument& argument);
/// Annotation of an input, which may be None for some.
[[nodiscard]] std::string PythonInputType(const Member& method, const Argument& argument);

/// Whether an argument only gives the length of an array among the arguments.
[[nodiscard]] bool IsLength(const Member& method, std::string_view name);

/// Refuses a surface that has lost a text, a method or an argument that Python words otherwise, so that these stay
/// together.
/// @throws SourceError
void CheckPhrases(const Surface& surface);

// Docstrings with their quotes, indented as where they belong, ended by a line feed.

[[nodiscard]] std::string MethodDocString(const Member& method);
[[nodiscard]] std::string PropertyDocString(const Member& property);
[[nodiscard]] std::string ClassDocString(const Surface& surface);
[[nodiscard]] std::string ModeDocString(const ModeList& mode);
/// A string literal of several lines, without a line feed at its end.
[[nodiscard]] std::string EventDocString(const Member& event);

}  // namespace bindings
