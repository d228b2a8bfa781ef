#include "NumberLines.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdint>

namespace {

bool IsBlank(char c) { return c == ' ' || c == '\t'; }
bool IsSeparator(char c) { return c == ',' || c == ';'; }

/// The start of a word for a message: printable and short, whatever the file holds.
std::string Quoted(std::string_view word) {
    constexpr std::size_t kMaxLength = 20;
    std::string text = "\"";
    for (const char c : word.substr(0, kMaxLength)) text += c > ' ' && c < '\x7f' ? c : '?';
    return text + (word.size() > kMaxLength ? "...\"" : "\"");
}

/// Whether a number that std::from_chars() finds out of range is too small, not too large: the errors are equal.
bool IsTooSmall(std::string_view number) {
    constexpr std::string_view kExponents = "eE";
    const std::size_t end = std::min(number.find_first_of(kExponents), number.size());
    const std::string_view digits = number.substr(0, end);
    std::string_view power = number.substr(std::min(end + 1, number.size()));
    if (power.starts_with('+')) power.remove_prefix(1);
    std::int64_t exponent = 0;
    if (std::from_chars(power.data(), power.data() + power.size(), exponent).ec == std::errc::result_out_of_range)
        return power.starts_with('-');
    // Out of range is far from 1, so the position of the first digit decides.
    const auto point = static_cast<std::int64_t>(std::min(digits.find('.'), digits.size()));
    const auto first = static_cast<std::int64_t>(std::min(digits.find_first_of("123456789"), digits.size()));
    return exponent < first - point;
}

/// The whole word as a finite float; a number that is nearer to 0 than any float is 0.
float NumberOf(std::string_view word) {
    std::string_view digits = word;
    if (digits.size() > 1 && digits[0] == '+' && digits[1] != '-') digits.remove_prefix(1);
    float value = 0.0f;
    const char* const end = digits.data() + digits.size();
    const auto [last, error] = std::from_chars(digits.data(), end, value);
    if (last != end || error == std::errc::invalid_argument) throw LineError(Quoted(word) + " is not a number");
    if (error == std::errc::result_out_of_range) {
        if (!IsTooSmall(digits)) throw LineError(Quoted(word) + " is outside the range of coordinates");
        return 0.0f;
    }
    if (!std::isfinite(value)) throw LineError(Quoted(word) + " is not a finite number");
    return value;
}

/// Removes the next line from the text; returns it without line feed and carriage return.
std::string_view TakeLine(std::string_view& text) {
    const std::size_t end = text.find('\n');
    std::string_view line = text.substr(0, end);
    text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
    if (!line.empty() && line.back() == '\r') line.remove_suffix(1);
    return line;
}

}  // namespace

std::string_view WithoutBlanks(std::string_view text) {
    while (!text.empty() && IsBlank(text.front())) text.remove_prefix(1);
    return text;
}

void AppendNumbers(std::string_view line, std::vector<float>& numbers) {
    while (!(line = WithoutBlanks(line)).empty()) {
        std::size_t length = 0;
        while (length < line.size() && !IsBlank(line[length]) && !IsSeparator(line[length])) ++length;
        if (length == 0) throw LineError(std::string("a number is missing before ") + Quoted(line.substr(0, 1)));
        numbers.push_back(NumberOf(line.substr(0, length)));
        line = WithoutBlanks(line.substr(length));
        if (!line.empty() && IsSeparator(line.front())) line.remove_prefix(1);
    }
}

std::string NumberCount(std::size_t count) { return std::to_string(count) + (count == 1 ? " number" : " numbers"); }

bool ForEachLine(std::string_view text, const std::function<void(std::string_view line)>& addLine,
                 const std::function<void()>& atEnd, std::string* reason) {
    if (text.starts_with("\xEF\xBB\xBF")) text.remove_prefix(3);  // byte order mark of UTF-8
    std::size_t number = 0;
    try {
        while (!text.empty()) {
            ++number;
            const std::string_view line = TakeLine(text);
            const std::string_view numbers = line.substr(0, line.find('#'));
            if (numbers.size() < line.size() && WithoutBlanks(numbers).empty()) continue;
            addLine(numbers);
        }
        atEnd();
        return true;
    } catch (const LineError& error) {
        *reason = "line " + std::to_string(number) + ": " + error.what();
    }
    return false;
}
