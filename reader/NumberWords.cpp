// Numbers by std::from_chars, which the locale does not change.
#include "NumberWords.h"

#include <algorithm>
#include <charconv>
#include <limits>

namespace {

bool IsLineEnd(char c) { return c == '\n' || c == '\r'; }
bool IsBlank(char c) { return c == ' ' || c == '\t' || c == '\v' || c == '\f' || c == '\0'; }

char Lower(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

/// Of a number that is out of range: whether it is too small, by the sign of its exponent. Without an exponent it has
/// hundreds of digits.
bool IsTiny(std::string_view word) {
    const std::size_t exponent = word.find_first_of("eE");
    if (exponent != std::string_view::npos) return word.substr(exponent + 1).starts_with('-');
    return word.substr(0, word.find('.')).find_first_of("123456789") == std::string_view::npos;
}

}  // namespace

bool NumberWords::Next() {
    while (!NextOfLine()) {
        if (m_uAt == m_sText.size()) return false;
        ++m_uAt;  // the end of the line
    }
    return true;
}

bool NumberWords::NextOfLine() {
    const std::size_t size = m_sText.size();
    while (m_uAt < size && IsBlank(m_sText[m_uAt])) ++m_uAt;
    if (m_uAt < size && m_sText[m_uAt] == '#') SkipLine();
    const std::size_t start = m_uAt;
    while (m_uAt < size && !IsBlank(m_sText[m_uAt]) && !IsLineEnd(m_sText[m_uAt]) && m_sText[m_uAt] != '#') ++m_uAt;
    m_sWord = m_sText.substr(start, m_uAt - start);
    return !m_sWord.empty();
}

void NumberWords::SkipLine() {
    while (m_uAt < m_sText.size() && !IsLineEnd(m_sText[m_uAt])) ++m_uAt;
}

bool NumberWords::Is(std::string_view lower) const { return std::ranges::equal(m_sWord, lower, {}, Lower); }

bool NumberWords::Number(double& value) const {
    std::string_view word = m_sWord;
    if (word.starts_with('+')) word.remove_prefix(1);
    const char* const end = word.data() + word.size();
    const auto [rest, error] = std::from_chars(word.data(), end, value);
    if (rest != end || word.empty()) return false;
    if (error == std::errc::result_out_of_range) {
        value = IsTiny(word) ? 0.0 : std::numeric_limits<double>::infinity();
        if (word.starts_with('-')) value = -value;
        return true;
    }
    return error == std::errc();
}

UnreadableFile NumberWords::Error(const std::string& reason) const {
    std::size_t line = 1;
    for (std::size_t i = 0; i < m_uAt; ++i)  // a carriage return before a line feed is no line of itself
        line += m_sText[i] == '\n' || (m_sText[i] == '\r' && (i + 1 == m_sText.size() || m_sText[i + 1] != '\n'));
    return UnreadableFile("line " + std::to_string(line) + ": " + reason);
}

UnreadableFile NumberWords::NoNumber() const {
    constexpr std::size_t kMostQuoted = 40;
    return Error("there is \"" + std::string(m_sWord.substr(0, kMostQuoted)) + "\" in place of a number");
}
