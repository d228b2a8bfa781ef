// Numbers and texts of JSON, whatever the locale.
#pragma once
#include <string>
#include <string_view>

/// A JSON string of UTF-8, quoted. A byte of a name that is not UTF-8 is a lone surrogate \udc80 to \udcff
/// (PathText.h).
[[nodiscard]] std::string JsonString(std::wstring_view text);
[[nodiscard]] std::string JsonString(std::string_view bytes);

/// The shortest text that reads back as the same double; 0 for -0. Other readers of JSON read doubles: a float that is
/// widened here is read back as the same float.
/// @throws std::runtime_error for NaN and infinity, which JSON cannot hold
[[nodiscard]] std::string JsonDouble(double value);
