// The extension of a path, which decides the reader or writer of a file.
#pragma once
#include <algorithm>
#include <string>
#include <string_view>

/// The text after the last point of the path in lower case, without the point; the whole path when it has no point.
[[nodiscard]] inline std::wstring LowerCaseExtension(std::wstring_view path) {
    const std::size_t point = path.rfind(L'.');
    std::wstring extension(point == std::wstring_view::npos ? path : path.substr(point + 1));
    // A to Z alone: the process's locale must not decide the reader.
    std::ranges::transform(extension, extension.begin(), [](wchar_t c) {
        return c >= L'A' && c <= L'Z' ? static_cast<wchar_t>(c - L'A' + L'a') : c;
    });
    return extension;
}
