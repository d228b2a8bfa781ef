// Numbers in text by the rules of extraction from a std::istream in the classic locale, but many times faster and
// independent of the process's locale. StreamNumberTest compares both.
#pragma once
#include <bit>
#include <cstdint>
#include <cstring>

/// The digits at the start of 8 characters.
struct ShortDigits {
    std::uint64_t m_uValue;
    int m_iCount;  // 0 to 8
};

/// Parses eight characters at once, within one 64-bit word: neighbouring digits are combined to numbers of two digits,
/// these to numbers of four, and these to the result.
/// @param at  8 readable characters
inline ShortDigits ReadShortDigits(const char* at) {
    std::uint64_t word = 0;
    std::memcpy(&word, at, sizeof word);
    word ^= 0x3030303030303030;  // digits become 0 to 9, all other characters more
    // the high bit of every byte that is no digit
    const std::uint64_t others = ((word + 0x7676767676767676) | word) & 0x8080808080808080;
    const int count = std::countr_zero(others) / 8;
    if (count == 0) return {0, 0};
    word <<= 64 - 8 * count;  // leading zeros in place of the other characters
    word = word * 10 + (word >> 8);
    word = ((word & 0x000000ff000000ff) * (100 + (std::uint64_t{1000000} << 32)) +
            (word >> 16 & 0x000000ff000000ff) * (1 + (std::uint64_t{10000} << 32))) >>
           32;
    return {word, count};
}
static_assert(std::endian::native == std::endian::little);

/// ReadStreamInt() for numbers of any length, with signs and white space.
[[nodiscard]] const char* ReadAnyStreamInt(const char* first, const char* last, int& value);

/// A decimal integer as `stream >> value` reads it: optional white space, an optional sign, then all digits that
/// follow.
/// @return the position after the last digit; null where the stream would fail: without a digit (value is then 0) or
///         outside int (value is then the limit). When there is white space alone, the value does not change
[[nodiscard]] inline const char* ReadStreamInt(const char* first, const char* last, int& value) {
    if (last - first >= 8) {
        const ShortDigits digits = ReadShortDigits(first);
        if (digits.m_iCount > 0 && digits.m_iCount < 8) {
            value = static_cast<int>(digits.m_uValue);
            return first + digits.m_iCount;
        }
    }
    return ReadAnyStreamInt(first, last, value);
}

/// A float as `stream >> value` reads it, rounded to nearest. The position after it is returned, or null where the
/// stream would fail: an exponent's letter without digits (value is then 0), and a number that rounds to more than the
/// largest float (value is then that float). "inf", "nan" and hexadecimal digits are not numbers.
[[nodiscard]] const char* ReadStreamFloat(const char* first, const char* last, float& value);
