// Numbers in text files that people write: a line of numbers with blanks, commas or semicolons between them. Numbers
// are read by std::from_chars, whose result does not depend on the locale.
#pragma once
#include <cstddef>
#include <functional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

/// What is wrong with a line, without its number.
class LineError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

[[nodiscard]] std::string_view WithoutBlanks(std::string_view text);

/// Appends the finite numbers of a line; one that is nearer to 0 than any float is 0. One comma or semicolon may follow
/// each of them, blanks may be anywhere between.
/// @throws LineError
void AppendNumbers(std::string_view line, std::vector<float>& numbers);

/// "1 number", "7 numbers"
[[nodiscard]] std::string NumberCount(std::size_t count);

/// Calls @p addLine for each line in its order, without its end and without a comment that begins with #. Lines of a
/// comment alone are left out.
/// @param atEnd   called after the last line
/// @param reason  receives "line N: " and the text of a LineError; unchanged on success
/// @return false for a LineError, after which nothing more is called
[[nodiscard]] bool ForEachLine(std::string_view text, const std::function<void(std::string_view line)>& addLine,
                               const std::function<void()>& atEnd, std::string* reason);
