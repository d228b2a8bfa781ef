// A reader by recursive descent. Numbers are converted by std::from_chars, which knows no locale.
#include "JsonText.h"

#include <algorithm>
#include <charconv>
#include <stdexcept>

namespace {

constexpr int kMaxDepth = 64;

bool IsDigit(char c) { return c >= '0' && c <= '9'; }

/// @param code  below 0x10000; halves of a surrogate pair are encoded one by one, no key or value here needs more
void AppendUtf8(unsigned code, std::string* text) {
    const auto add = [text](unsigned byte) { *text += static_cast<char>(byte); };
    if (code < 0x80) {
        add(code);
    } else if (code < 0x800) {
        add(0xC0 | (code >> 6));
        add(0x80 | (code & 0x3F));
    } else {
        add(0xE0 | (code >> 12));
        add(0x80 | ((code >> 6) & 0x3F));
        add(0x80 | (code & 0x3F));
    }
}

}  // namespace

JsonText::JsonText(std::string_view text) : m_text(text) {
    if (m_text.starts_with("\xEF\xBB\xBF")) m_uAt = 3;  // some editors write a byte order mark
}

std::size_t JsonText::Line() const {
    const auto end = m_text.begin() + static_cast<std::ptrdiff_t>(std::min(m_uAt, m_text.size()));
    return 1 + static_cast<std::size_t>(std::count(m_text.begin(), end, '\n'));
}

char JsonText::Peek() {
    m_uAt = std::min(m_text.find_first_not_of(" \t\r\n", m_uAt), m_text.size());
    return m_uAt < m_text.size() ? m_text[m_uAt] : '\0';
}

bool JsonText::Accept(char c) {
    if (Peek() != c || m_uAt == m_text.size()) return false;
    ++m_uAt;
    return true;
}

void JsonText::Expect(char c) {
    if (!Accept(c)) throw std::runtime_error(std::string("there is no ").append(1, c));
}

void JsonText::ExpectEnd() {
    (void)Peek();
    if (m_uAt < m_text.size()) throw std::runtime_error("there is more text after the end");
}

void JsonText::ReadObject(const std::function<void(const std::string&)>& read) {
    Expect('{');
    if (Accept('}')) return;
    do {
        const std::string key = ReadString();
        Expect(':');
        read(key);
    } while (Accept(','));
    Expect('}');
}

void JsonText::ReadArray(const std::function<void()>& read) {
    Expect('[');
    if (Accept(']')) return;
    do {
        read();
    } while (Accept(','));
    Expect(']');
}

std::string JsonText::ReadString() {
    Expect('"');
    std::string text;
    while (m_uAt < m_text.size()) {
        const char c = m_text[m_uAt++];
        if (c == '"') return text;
        if (static_cast<unsigned char>(c) < 0x20) break;
        if (c == '\\')
            AppendEscaped(&text);
        else
            text += c;
    }
    throw std::runtime_error("a text has no end");
}

void JsonText::AppendEscaped(std::string* text) {
    constexpr std::string_view kLetters = "\"\\/bfnrt", kMeanings = "\"\\/\b\f\n\r\t";
    const char letter = m_uAt < m_text.size() ? m_text[m_uAt++] : '\0';
    if (const std::size_t place = kLetters.find(letter); place != std::string_view::npos) {
        *text += kMeanings[place];
        return;
    }
    const std::string_view digits = m_text.substr(m_uAt, 4);
    unsigned code = 0;
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), code, 16);
    if (letter != 'u' || error != std::errc() || end != digits.data() + 4)
        throw std::runtime_error("a text has an unknown escape");
    m_uAt += 4;
    AppendUtf8(code, text);
}

void JsonText::SkipDigits() {
    const std::size_t begin = m_uAt;
    while (m_uAt < m_text.size() && IsDigit(m_text[m_uAt])) ++m_uAt;
    if (m_uAt == begin) throw std::runtime_error("there is no number");
}

double JsonText::ReadNumber() {
    (void)Peek();
    const std::size_t begin = m_uAt;
    const auto skip = [this](std::string_view any) {
        if (m_uAt == m_text.size() || any.find(m_text[m_uAt]) == std::string_view::npos) return false;
        ++m_uAt;
        return true;
    };
    // The grammar of JSON is narrower than that of from_chars().
    skip("-");
    if (!skip("0")) SkipDigits();
    if (skip(".")) SkipDigits();
    if (skip("eE")) {
        skip("+-");
        SkipDigits();
    }
    double number = 0;
    const auto [end, error] = std::from_chars(m_text.data() + begin, m_text.data() + m_uAt, number);
    if (error != std::errc() || end != m_text.data() + m_uAt) throw std::runtime_error("the number is out of range");
    return number;
}

void JsonText::SkipValue(int depth) {
    if (depth == kMaxDepth) throw std::runtime_error("values are nested too deep");
    switch (Peek()) {
        case '{':
            ReadObject([&](const std::string&) { SkipValue(depth + 1); });
            return;
        case '[':
            ReadArray([&] { SkipValue(depth + 1); });
            return;
        case '"':
            (void)ReadString();
            return;
        default:
            break;
    }
    for (const std::string_view word : {"true", "false", "null"}) {
        if (!m_text.substr(m_uAt).starts_with(word)) continue;
        m_uAt += word.size();
        return;
    }
    (void)ReadNumber();
}
