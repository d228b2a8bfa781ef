// What the host itself tells of a scan file before the viewer opens it.
#pragma once
#include <string>
#include <string_view>

enum class ScanKind { Pcm, Pax, Xdt, Unknown };

/// By the extension behind the last point, in any case; the same rule as the viewer's import.
[[nodiscard]] ScanKind KindOfScan(std::string_view path);

/// Why the file cannot be imported whatever it holds: not there, a folder, not readable, or of an unknown type. Empty
/// when there is no such reason. In English, whatever the locale.
[[nodiscard]] std::string WhyNoScanFile(const std::string& path);
