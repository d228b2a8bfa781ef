// Numbers in text by the rules of extraction from a std::istream in the classic locale, many times faster and whatever
// the process's locale. StreamNumberTest holds them against the stream.
#pragma once

/// A decimal integer as `stream >> value` takes it: behind white space, with either sign, as many digits as there are.
/// @return behind the last character taken; null where the stream would fail: without a digit (value is 0) or outside
///         int (value is the limit). Nothing but white space leaves the value as it was
[[nodiscard]] const char* ReadStreamInt(const char* first, const char* last, int& value);

/// A float as `stream >> value` takes it. An exponent's letter without digits fails (0), and so does what rounds to
/// more than the largest float (that float); "inf", "nan" and hexadecimal digits are not numbers. Rounded to nearest.
[[nodiscard]] const char* ReadStreamFloat(const char* first, const char* last, float& value);
