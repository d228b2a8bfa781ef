// Checks of a file by its name and its state on disk, before the viewer opens or writes it.
#pragma once
#include <string>
#include <string_view>

/// Why the file cannot be read whatever its name and content are: missing, a folder, or not readable. Empty when none
/// of these applies. In English, whatever the locale.
[[nodiscard]] std::string ReadRefusal(const std::string& path);

/// Why the file cannot be imported whatever its content is: missing, a folder, not readable, or of an unknown type.
/// Empty when none of these applies. In English, whatever the locale.
[[nodiscard]] std::string ImportRefusal(const std::string& path);

/// Why no object can be exported to a file of this name: the viewer does not write its type. Empty for a type that it
/// writes.
[[nodiscard]] std::string ExportRefusal(std::string_view path);

/// Why a regular file cannot be written at this path, as far as the state on disk says it: a folder or a device of that
/// name, a write-protected file, a missing or write-protected folder. Empty when none of these applies. In English.
[[nodiscard]] std::string WriteRefusal(const std::string& path);
