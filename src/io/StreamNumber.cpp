// Three ways, from fast to general: numbers of the usual form with up to 15 digits, parsed 8 digits at a time; any
// number that is exact in a double; std::from_chars for the rest. All of them round to the nearest float.
#include "io/StreamNumber.h"

#include <bit>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <limits>

namespace {
bool IsDigit(char c) { return static_cast<unsigned char>(c - '0') < 10; }

/// The white space of the classic locale.
const char* SkipSpace(const char* at, const char* last) {
    while (at != last && (*at == ' ' || (*at >= '\t' && *at <= '\r'))) ++at;
    return at;
}

/// Reads an optional sign.
/// @return whether it is a minus
bool ReadSign(const char*& at, const char* last) {
    if (at == last || (*at != '-' && *at != '+')) return false;
    return *at++ == '-';
}

/// A decimal number, value m_uDigits * 10^m_iExponent as long as m_bExact.
struct Decimal {
    std::uint64_t m_uDigits = 0;
    std::int64_t m_iExponent = 0;
    bool m_bHasDigits = false;
    bool m_bExact = true;  // false: m_uDigits holds the first digits only, the others do not fit
};

constexpr std::uint64_t kMaxBeforeDigit = (std::numeric_limits<std::uint64_t>::max() - 9) / 10;

/// Appends digits to the number.
/// @param exponentStep  what each digit adds to the exponent: 0 before the decimal point, -1 after it
const char* ReadDigits(const char* at, const char* last, Decimal& number, int exponentStep) {
    for (; at != last && IsDigit(*at); ++at) {
        number.m_bHasDigits = true;
        if (number.m_uDigits > kMaxBeforeDigit) {
            number.m_bExact = false;
            number.m_iExponent += exponentStep + 1;
            continue;
        }
        number.m_uDigits = number.m_uDigits * 10 + static_cast<std::uint64_t>(*at - '0');
        number.m_iExponent += exponentStep;
    }
    return at;
}

/// @param at  after the exponent's letter
/// @return null when there is no digit
const char* ReadExponent(const char* at, const char* last, Decimal& number) {
    const bool negative = ReadSign(at, last);
    if (at == last || !IsDigit(*at)) return nullptr;
    std::int64_t exponent = 0;
    constexpr std::int64_t kBeyondAnyText = std::int64_t{1} << 56;  // larger than the number of digits of any text
    for (; at != last && IsDigit(*at); ++at)
        if (exponent < kBeyondAnyText) exponent = exponent * 10 + (*at - '0');
    number.m_iExponent += negative ? -exponent : exponent;
    return at;
}

constexpr double kPowersOfTen[] = {1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,  1e8,  1e9,  1e10, 1e11,
                                   1e12, 1e13, 1e14, 1e15, 1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22};

constexpr std::uint64_t kWholePowersOfTen[] = {1, 10, 100, 1000, 10000, 100000, 1000000, 10000000, 100000000};

/// With digits below 2^53 and a power of ten up to 22 both are exact doubles, so that their product or quotient is the
/// double nearest to the number. Rounding that to float gives the float nearest to the number, too, unless the double
/// is exactly between two floats: the number can be on either side then. Every result is a normal float or 0.
/// @return false when the number is outside these limits
bool RoundExactly(const Decimal& number, float& value) {
    if (!number.m_bExact || number.m_uDigits > std::uint64_t{1} << 53) return false;
    if (number.m_iExponent < -22 || number.m_iExponent > 22) return false;
    const auto digits = static_cast<double>(static_cast<std::int64_t>(number.m_uDigits));
    const double nearest =
        number.m_iExponent < 0 ? digits / kPowersOfTen[-number.m_iExponent] : digits * kPowersOfTen[number.m_iExponent];
    // The low 29 bits of a double do not fit into a float; 100...0 is exactly between two floats.
    constexpr std::uint64_t kDroppedBits = (std::uint64_t{1} << 29) - 1;
    if ((std::bit_cast<std::uint64_t>(nearest) & kDroppedBits) == std::uint64_t{1} << 28) return false;
    value = static_cast<float>(nearest);
    return true;
}

/// The usual form "12.3456", with up to 7 digits before the point and up to 8 after it.
/// @return null when the text has any other form
const char* ReadShortFloat(const char* first, const char* last, float& value) {
    constexpr int kLongest = 1 + 7 + 1 + 8;
    if (last - first <= kLongest) return nullptr;
    const bool negative = *first == '-';
    const char* at = first + static_cast<int>(negative);
    const ShortDigits whole = ReadShortDigits(at);
    at += whole.m_iCount;
    if (whole.m_iCount == 0 || whole.m_iCount == 8 || *at != '.') return nullptr;
    const ShortDigits fraction = ReadShortDigits(at + 1);
    at += 1 + fraction.m_iCount;
    if (IsDigit(*at) || *at == 'e' || *at == 'E') return nullptr;
    Decimal number;
    number.m_uDigits = whole.m_uValue * kWholePowersOfTen[fraction.m_iCount] + fraction.m_uValue;
    number.m_iExponent = -fraction.m_iCount;
    if (!RoundExactly(number, value)) return nullptr;
    // The sign as a bit, not as a branch: it is hard to predict.
    value = std::bit_cast<float>(std::bit_cast<std::uint32_t>(value) | static_cast<std::uint32_t>(negative) << 31);
    return at;
}

/// @return false when the number rounds to more than the largest float; value is then that float
/// std::from_chars() rounds any number to nearest; it needs the text without a sign.
bool RoundByLibrary(const char* first, const char* last, const Decimal& number, float& value) {
    const std::errc result = std::from_chars(first, last, value).ec;
    if (result == std::errc{} && std::isfinite(value)) return true;
    // Out of range: too large or too small. from_chars() does not say which; the exponent with its digits does, since
    // the number is far from 1.
    const bool large = number.m_uDigits != 0 && number.m_iExponent > -20;
    value = large ? std::numeric_limits<float>::max() : 0.0F;
    return !large;
}
}  // namespace

// A number outside int is read to its end; its value is the limit, as that of a stream.
const char* ReadAnyStreamInt(const char* first, const char* last, int& value) {
    const char* at = SkipSpace(first, last);
    if (at == last) return nullptr;
    const bool negative = ReadSign(at, last);
    constexpr std::int64_t kLimit = std::numeric_limits<int>::max();
    std::int64_t number = 0;
    const char* const digits = at;
    for (; at != last && IsDigit(*at); ++at)
        if (number <= kLimit) number = number * 10 + (*at - '0');
    const std::int64_t largest = negative ? kLimit + 1 : kLimit;
    const bool fits = number <= largest;
    if (!fits) number = largest;
    value = static_cast<int>(negative ? -number : number);
    return fits && at != digits ? at : nullptr;
}

const char* ReadStreamFloat(const char* first, const char* last, float& value) {
    if (const char* const end = ReadShortFloat(first, last, value)) return end;
    const char* at = SkipSpace(first, last);
    if (at == last) return nullptr;
    const bool negative = ReadSign(at, last);
    const char* const unsignedFirst = at;
    // digits, point, digits, exponent: what the stream would collect
    Decimal number;
    at = ReadDigits(at, last, number, 0);
    if (at != last && *at == '.') at = ReadDigits(at + 1, last, number, -1);
    if (number.m_bHasDigits && at != last && (*at == 'e' || *at == 'E')) at = ReadExponent(at + 1, last, number);
    if (!number.m_bHasDigits || at == nullptr) {
        value = 0;
        return nullptr;
    }
    const bool fits = RoundExactly(number, value) || RoundByLibrary(unsignedFirst, at, number, value);
    if (negative) value = -value;
    return fits ? at : nullptr;
}
