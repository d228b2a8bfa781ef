// Numbers in text compared with those of a stream, on random and on chosen texts.
#include "io/StreamNumber.h"

#include <gtest/gtest.h>

#include <bit>
#include <cstdint>
#include <locale>
#include <random>
#include <sstream>
#include <string>

#include "host/CommaLocale.h"

namespace {
/// The reference: a stream that reads one token after the other.
class Stream {
public:
    Stream() { m_stream.imbue(std::locale::classic()); }
    /// @return number of characters read, -1 where the stream fails
    template <class Number>
    int Read(const std::string& token, Number& value) {
        m_stream.clear();
        m_stream.str(token);
        if (!(m_stream >> value)) return -1;
        return m_stream.eof() ? static_cast<int>(token.size()) : static_cast<int>(m_stream.tellg());
    }

private:
    std::istringstream m_stream;
};

std::string Difference(Stream& stream, const std::string& token) {
    const char* const first = token.data();
    const char* const last = first + token.size();
    int expectedInt = 7;
    int readInt = 7;
    const int expectedIntEnd = stream.Read(token, expectedInt);
    const char* const intEnd = ReadStreamInt(first, last, readInt);
    if (readInt != expectedInt) return "int " + std::to_string(readInt) + " for " + std::to_string(expectedInt);
    if ((intEnd == nullptr ? -1 : intEnd - first) != expectedIntEnd) return "end of int";

    float expected = 7;
    float read = 7;
    const int expectedEnd = stream.Read(token, expected);
    const char* const end = ReadStreamFloat(first, last, read);
    if (std::bit_cast<std::uint32_t>(read) != std::bit_cast<std::uint32_t>(expected))
        return "float " + std::to_string(read) + " for " + std::to_string(expected);
    if ((end == nullptr ? -1 : end - first) != expectedEnd) return "end of float";
    return {};
}

using Random = std::mt19937;
int Below(Random& random, int limit) { return static_cast<int>(random() % static_cast<unsigned>(limit)); }
std::string Digits(Random& random, int most) {
    std::string digits;
    for (int n = Below(random, most + 1); n > 0; --n) digits += static_cast<char>('0' + Below(random, 10));
    return digits;
}

/// Characters that occur in numbers, in any order.
std::string Soup(Random& random) {
    static constexpr char kSoup[] = "0123456789000111999+-..eExXnaif,\v\f\t \n_d";
    std::string token;
    for (int n = Below(random, 12); n > 0; --n) token += kSoup[Below(random, sizeof kSoup - 1)];
    return token;
}

/// In the form of a number, sometimes with an error.
std::string Shaped(Random& random) {
    std::string token = Below(random, 3) == 0 ? (Below(random, 2) == 0 ? "-" : "+") : "";
    if (Below(random, 4) == 0) token += std::string(static_cast<std::size_t>(Below(random, 30)), '0');
    token += Digits(random, Below(random, 5) == 0 ? 60 : 9);
    if (Below(random, 2) == 0) (token += '.') += Digits(random, Below(random, 5) == 0 ? 60 : 9);
    if (Below(random, 3) == 0) {
        token += Below(random, 2) == 0 ? "e" : "E";
        if (Below(random, 2) == 0) token += Below(random, 3) == 0 ? "+" : "-";
        token += Below(random, 8) == 0 ? Digits(random, 25) : std::to_string(Below(random, 60));
    }
    if (Below(random, 10) == 0) token += Soup(random);
    return token;
}

/// Exactly between two floats, or next to that.
std::string BetweenFloats(Random& random) {
    const auto bits = static_cast<std::uint32_t>(random()) & 0x7fffffff;
    const auto low = std::bit_cast<float>(bits < 0x7f7fffff ? bits : 0x7f000000U);
    const double middle = (static_cast<double>(low) + std::bit_cast<float>(std::bit_cast<std::uint32_t>(low) + 1)) / 2;
    char text[400];
    const int digits = Below(random, 2) == 0 ? 150 : 8 + Below(random, 12);
    std::snprintf(text, sizeof text, "%.*e", digits, middle);
    std::string token = text;
    if (digits == 150 && Below(random, 2) == 0) token.insert(token.find('e'), 1, '1');
    return token;
}

/// In the form that programs write.
std::string Printed(Random& random) {
    char text[400];
    const float value = std::bit_cast<float>(static_cast<std::uint32_t>(random()));
    static constexpr const char* kForms[] = {"%g", "%f", "%.9g", "%.17g", "%.3f", "%e", "%a", "%.0f"};
    std::snprintf(text, sizeof text, kForms[Below(random, 8)], static_cast<double>(value));
    return text;
}

TEST(StreamNumber, AgreesWithTheStreamOnAMillionRandomTokens) {
    Random random(20260101);
    Stream stream;
    std::string (*const kMakers[])(Random&) = {Soup, Shaped, BetweenFloats, Printed};
    const std::string kBehind[] = {" 1234567890123456789", "\n                   5", "\r\n-1.5 2.5 3.5 4.5 5.5",
                                   "x234567890123456789"};
    int differences = 0;
    for (int i = 0; i < 1'000'000 && differences < 10; ++i) {
        const std::string token = kMakers[i % 4](random);
        // as a token at the end of a text, and with others after it
        const std::string difference =
            Difference(stream, token) + Difference(stream, token + kBehind[Below(random, 4)]);
        if (difference.empty()) continue;
        ADD_FAILURE() << '"' << token << "\": " << difference;
        ++differences;
    }
}

struct NumberCase {
    const char* token;
    bool isInt;
    int integer;
    bool isFloat;
    float floating;
};
// Expected values by hand: the reference of the test above could be wrong.
const NumberCase kNumbers[] = {
    {"12", true, 12, true, 12},
    {"+5", true, 5, true, 5},
    {"-0", true, 0, true, -0.0F},
    {"--5", false, 0, false, 0},
    {"5abc", true, 5, true, 5},
    {"1.5abc", true, 1, true, 1.5F},
    {"010", true, 10, true, 10},
    {"0x10", true, 0, true, 0},
    {"2147483647", true, 2147483647, true, 2147483648.0F},
    {"2147483648", false, 2147483647, true, 2147483648.0F},
    {"-2147483648", true, -2147483647 - 1, true, -2147483648.0F},
    {"-2147483649", false, -2147483647 - 1, true, -2147483648.0F},
    {"99999999999999999999999", false, 2147483647, true, 1e23F},
    {".", false, 0, false, 0},
    {"1.", true, 1, true, 1},
    {".5", false, 0, true, 0.5F},
    {"-.5", false, 0, true, -0.5F},
    {"1,5", true, 1, true, 1},
    {"1e", true, 1, false, 0},
    {"1e+", true, 1, false, 0},
    {"1e2", true, 1, true, 100},
    {"1E-2x", true, 1, true, 0.01F},
    {"e5", false, 0, false, 0},
    {".e5", false, 0, false, 0},
    {"1e39", true, 1, false, 3.40282347e38F},
    {"-1e39", true, -1, false, -3.40282347e38F},
    {"1e-50", true, 1, true, 0},
    {"1e-40", true, 1, true, 1e-40F},
    {"0e999999999999999999999", true, 0, true, 0},
    {"nan", false, 0, false, 0},
    {"inf", false, 0, false, 0},
    {"\v5", true, 5, true, 5},
    {"", false, 7, false, 7},
    {"\v", false, 7, false, 7},
};

TEST(StreamNumber, IsReadOrRefused) {
    for (const NumberCase& row : kNumbers) {
        const std::string token = row.token;
        SCOPED_TRACE(token);
        int integer = 7;
        float floating = 7;
        EXPECT_EQ(ReadStreamInt(token.data(), token.data() + token.size(), integer) != nullptr, row.isInt);
        EXPECT_EQ(integer, row.integer);
        EXPECT_EQ(ReadStreamFloat(token.data(), token.data() + token.size(), floating) != nullptr, row.isFloat);
        EXPECT_EQ(std::bit_cast<std::uint32_t>(floating), std::bit_cast<std::uint32_t>(row.floating));
    }
}

TEST(StreamNumber, DoesNotDependOnTheProcessLocale) {
    const CommaLocale comma;
    if (!comma.IsSet()) GTEST_SKIP() << "the system cannot make a locale with a decimal comma";
    for (const std::string token : {"1.5", "1.00000017881393432617187500000001"}) {  // exact arithmetic; the library
        float value = 0;
        ASSERT_EQ(ReadStreamFloat(token.data(), token.data() + token.size(), value), token.data() + token.size());
        EXPECT_EQ(value, token == "1.5" ? 1.5F : 1.00000024F);
    }
}
}  // namespace
