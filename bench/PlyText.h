// Numbers in the text ply files of the benchmarks.
#pragma once
#include <charconv>
#include <string>

/// Appends the number and a space. A float has the fewest digits that read back as the same value; independent of the
/// locale.
inline void AppendNumber(std::string& text, auto value) {
    char digits[32];
    text.append(digits, std::to_chars(digits, digits + sizeof digits, value).ptr);
    text += ' ';
}
