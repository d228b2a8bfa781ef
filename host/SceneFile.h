// What the host itself tells of a file by its name and from outside, before the viewer opens or writes it.
#pragma once
#include <string>
#include <string_view>

/// Scans are measurements, with import settings of their own; a mesh is imported as it is.
enum class FileKind { Pcm, Pax, Xdt, Mesh, Unknown };

/// The text behind the last point of the path in lower case, or the whole path without one; the same rule as the
/// viewer's. The locale has no say.
[[nodiscard]] std::string ExtensionOf(std::string_view path);

[[nodiscard]] FileKind KindOfFile(std::string_view path);

/// Why the file cannot be imported whatever it holds: not there, a folder, not readable, or of an unknown type. Empty
/// when there is no such reason. In English, whatever the locale.
[[nodiscard]] std::string WhyNoSceneFile(const std::string& path);

/// Why no object can be exported to a file of that name: its type is none that the viewer writes. Empty when it is one.
[[nodiscard]] std::string WhyNoExportName(std::string_view path);
