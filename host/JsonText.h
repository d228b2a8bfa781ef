// Reads JSON text value by value, without a tree in memory: an untrusted file costs no more than its own size.
// Numbers keep the sign of a zero, which QJsonDocument drops.
#pragma once
#include <cstddef>
#include <functional>
#include <string>
#include <string_view>

/// A position in a JSON text. All members throw std::runtime_error with a reason without the line when the text is
/// something else; Line() is then the line of the fault.
class JsonText {
public:
    /// @param text  in UTF-8; must outlive this object
    explicit JsonText(std::string_view text);

    /// Reads an object. @param read  is called for each key and must read or skip its value
    void ReadObject(const std::function<void(const std::string& key)>& read);
    /// Reads an array. @param read  is called for each element and must read or skip it
    void ReadArray(const std::function<void()>& read);
    [[nodiscard]] std::string ReadString();
    /// Finite. A number beyond the range of a double, to either side, is refused.
    [[nodiscard]] double ReadNumber();
    /// Skips a value of any type that is nested up to 64 deep.
    void SkipValue(int depth = 0);
    /// Refuses anything but white space.
    void ExpectEnd();

    /// Of the position, from 1.
    [[nodiscard]] std::size_t Line() const;

private:
    /// The next character that is not white space; a null character at the end.
    [[nodiscard]] char Peek();
    /// Skips @p c if it is next.
    bool Accept(char c);
    void Expect(char c);
    void SkipDigits();
    void AppendEscaped(std::string* text);

    std::string_view m_text;
    std::size_t m_uAt = 0;
};
