// Numbers in text by the rules of extraction from a std::istream in the classic locale, many times faster and whatever
// the process's locale. StreamNumberTest holds them against the stream.
#pragma once
#include <bit>
#include <cstdint>
#include <cstring>

/// Digits at the start of 8 characters.
struct ShortDigits {
    std::uint64_t m_uValue;
    int m_iCount;  // 0 to 8
};

/// Eight characters at once: pairs, then pairs of pairs are weighed up and added within one word.
inline ShortDigits TakeShortDigits(const char* at) {
    std::uint64_t word = 0;
    std::memcpy(&word, at, sizeof word);
    word ^= 0x3030303030303030;  // digits become 0 to 9, anything else more
    const std::uint64_t others = ((word + 0x7676767676767676) | word) & 0x8080808080808080;
    const int count = std::countr_zero(others) / 8;
    if (count == 0) return {0, 0};
    word <<= 64 - 8 * count;  // zeros in front
    word = word * 10 + (word >> 8);
    word = ((word & 0x000000ff000000ff) * (100 + (std::uint64_t{1000000} << 32)) +
            (word >> 16 & 0x000000ff000000ff) * (1 + (std::uint64_t{10000} << 32))) >>
           32;
    return {word, count};
}
static_assert(std::endian::native == std::endian::little);

/// ReadStreamInt() for numbers of any length, with signs and white space.
[[nodiscard]] const char* ReadAnyStreamInt(const char* first, const char* last, int& value);

/// A decimal integer as `stream >> value` takes it: behind white space, with either sign, as many digits as there are.
/// @return behind the last character taken; null where the stream would fail: without a digit (value is 0) or outside
///         int (value is the limit). Nothing but white space leaves the value as it was
[[nodiscard]] inline const char* ReadStreamInt(const char* first, const char* last, int& value) {
    if (last - first >= 8) {
        const ShortDigits digits = TakeShortDigits(first);
        if (digits.m_iCount > 0 && digits.m_iCount < 8) {
            value = static_cast<int>(digits.m_uValue);
            return first + digits.m_iCount;
        }
    }
    return ReadAnyStreamInt(first, last, value);
}

/// A float as `stream >> value` takes it. An exponent's letter without digits fails (0), and so does what rounds to
/// more than the largest float (that float); "inf", "nan" and hexadecimal digits are not numbers. Rounded to nearest.
[[nodiscard]] const char* ReadStreamFloat(const char* first, const char* last, float& value);
