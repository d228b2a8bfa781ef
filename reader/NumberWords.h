// The words of a text between white space, with the numbers of their lines, for tolerant readers of text formats.
#pragma once
#include <cstddef>
#include <string>
#include <string_view>

#include "FoundMesh.h"

/// Lines end with a line feed, a carriage return, or both. From '#' to the end of a line is a comment.
class NumberWords {
public:
    /// @param start  where the words begin; lines are counted from the start of the text
    explicit NumberWords(std::string_view text, std::size_t start = 0) : m_sText(text), m_uAt(start) {}

    /// Goes to the next word. @return false at the end of the text
    bool Next();
    /// Goes to the next word of the same line. @return false at its end
    bool NextOfLine();
    /// Goes to the end of the line of the current word.
    void SkipLine();
    [[nodiscard]] std::string_view Word() const { return m_sWord; }
    /// Whether the text ends with the current word: it may be cut off.
    [[nodiscard]] bool IsAtEnd() const { return m_uAt == m_sText.size(); }
    /// Bytes from the start of the current word to the end of the text.
    [[nodiscard]] std::size_t BytesFromWord() const { return m_sText.size() - m_uAt + m_sWord.size(); }
    /// Compares the current word without regard to the case of ASCII letters. @param lower  in lower case
    [[nodiscard]] bool Is(std::string_view lower) const;
    /// The current word as a number, whatever the locale; also "nan", "inf" and with a leading plus. A number that is
    /// too large or too small for a double is infinite or 0.
    /// @return false when it is none
    [[nodiscard]] bool Number(double& value) const;
    /// "line N: REASON", with the line of the current word.
    [[nodiscard]] UnreadableFile Error(const std::string& reason) const;
    /// The same about the current word: "line N: there is \"WORD\" in place of a number".
    [[nodiscard]] UnreadableFile NoNumber() const;

private:
    std::string_view m_sText;  // all of it
    std::string_view m_sWord;
    std::size_t m_uAt;  // after the current word
};
