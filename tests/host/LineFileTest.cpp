#include "LineFile.h"

#include <gtest/gtest.h>

#include <cmath>
#include <ostream>

#include "host/CommaLocale.h"
#include "support/ScratchFolder.h"

namespace {

std::vector<Polyline> Parsed(std::string_view text) {
    std::vector<Polyline> polylines;
    std::string reason;
    EXPECT_TRUE(ParseLines(text, &polylines, &reason)) << reason;
    EXPECT_EQ(reason, "");
    return polylines;
}

std::string Refusal(std::string_view text) {
    std::vector<Polyline> polylines = {{7}};
    std::string reason;
    EXPECT_FALSE(ParseLines(text, &polylines, &reason)) << text;
    EXPECT_EQ(polylines, std::vector<Polyline>{{7}}) << "a refused text adds nothing";
    return reason;
}

const std::vector<Polyline> kTwo = {{0, 0, 0, 1, 0, 0}, {5, 5, 5, 6, 6, 6, 7, 7, 7}};

TEST(LineFile, SeparatesPolylinesOfOnePointPerLineByBlankLines) {
    EXPECT_EQ(Parsed("0 0 0\n1 0 0\n\n5 5 5\n6 6 6\n7 7 7\n"), kTwo);
    EXPECT_EQ(Parsed("\n\n0 0 0\n1 0 0\n \t\n\n\n5 5 5\n6 6 6\n7 7 7"), kTwo) << "several, and none at the end";
}

TEST(LineFile, ReadsOnePolylinePerLine) {
    EXPECT_EQ(Parsed("0 0 0 1 0 0\n5 5 5 6 6 6 7 7 7\n"), kTwo);
    EXPECT_EQ(Parsed("\n0 0 0 1 0 0\n\n\n5 5 5 6 6 6 7 7 7"), kTwo) << "blank lines separate nothing more";
}

TEST(LineFile, AcceptsEverySeparatorBetweenNumbers) {
    for (const char* const text :
         {"1 2 3 4 5 6", "\t1\t2  3 4\t 5 6 ", "1,2,3,4,5,6", "1;2;3;4;5;6;", "1, 2 ,3 , 4;5 ; 6,", "1,2,3;4,5,6"})
        EXPECT_EQ(Parsed(text), (std::vector<Polyline>{{1, 2, 3, 4, 5, 6}})) << text;
}

TEST(LineFile, AcceptsLineEndsAndAMarkOfOtherSystems) {
    EXPECT_EQ(Parsed("\xEF\xBB\xBF"
                     "0 0 0\r\n1 0 0\r\n\r\n5 5 5\r\n6 6 6\r\n7 7 7\r\n"),
              kTwo);
}

TEST(LineFile, SkipsComments) {
    EXPECT_EQ(Parsed("# a, b and 1 2 3\n0 0 0 # first\n  # between two points\n1 0 0#second\n\n5 5 5\n6 6 6\n7 7 7\n#"),
              kTwo);
}

TEST(LineFile, ReadsNumbersInEveryNotation) {
    EXPECT_EQ(Parsed("+1 -2 .5 1e3 -1.5E-2 16777217"), (std::vector<Polyline>{{1, -2, 0.5f, 1000, -0.015f, 16777216}}));
}

TEST(LineFile, ReadsANumberBelowTheSmallestFloatAsZero) {
    EXPECT_EQ(Parsed("1e-60 -1e-60 0 1 1 1"), (std::vector<Polyline>{{0, 0, 0, 1, 1, 1}}));
    const std::string zeros(400, '0'), digits = '1' + zeros;
    for (const std::string& tiny :
         {std::string("1e-400"), std::string("-2.5E-400"), std::string("1e-99999999999999999999"), "0." + zeros + "1",
          "." + zeros + "1e+9", digits + "e-900"})
        EXPECT_EQ(Parsed(tiny + " 0 0 1 1 1"), (std::vector<Polyline>{{0, 0, 0, 1, 1, 1}})) << tiny;
}

TEST(LineFile, ReadsTheSameInALocaleWithCommas) {
    const CommaLocale locale;
    if (!locale.IsSet()) GTEST_SKIP() << "this machine cannot make a locale";
    EXPECT_EQ(Parsed("1.5 2 3 4 5 6"), (std::vector<Polyline>{{1.5f, 2, 3, 4, 5, 6}}));
}

struct BadLines {
    const char* name;
    std::string text;
    const char* reason;
};
void PrintTo(const BadLines& row, std::ostream* out) { *out << row.name; }

const BadLines kBadLines[] = {
    {"Empty", "", "no polylines"},
    {"CommentsAlone", "# 1 2 3\n\n", "no polylines"},
    {"Words", "0 0 0\nx y z\n", "line 2: \"x\" is not a number"},
    {"NumberWithATail", "0 0 0mm\n", "line 1: \"0mm\" is not a number"},
    {"HexadecimalNumber", "0 0 0x10\n", "line 1: \"0x10\" is not a number"},
    {"TwoSigns", "0 0 +-1\n", "line 1: \"+-1\" is not a number"},
    {"SignAlone", "0 0 +\n", "line 1: \"+\" is not a number"},
    {"NotANumber", "0 0 0\n1 1 1\n# c\n0 nan 0", "line 4: \"nan\" is not a finite number"},
    {"Infinity", "0 0 -inf", "line 1: \"-inf\" is not a finite number"},
    {"TooLarge", "0 0 1e39", "line 1: \"1e39\" is outside the range of coordinates"},
    {"FarTooLarge", "0 0 -1e999", "line 1: \"-1e999\" is outside the range of coordinates"},
    {"TooLargeByItsExponent", "0 0 1e99999999999999999999",
     "line 1: \"1e999999999999999999...\" is outside the range of coordinates"},
    {"TooLargeByItsDigits", std::string(400, '9') + "e-9 0 0",
     "line 1: \"99999999999999999999...\" is outside the range of coordinates"},
    {"TooLargeAfterZeros", "0.001e+400 0 0", "line 1: \"0.001e+400\" is outside the range of coordinates"},
    {"TwoNumbers", "1 2\n", "line 1: 2 numbers, not three for each point"},
    {"OneNumber", "1\n", "line 1: 1 number, not three for each point"},
    {"SevenNumbers", "1 2 3 4 5 6\n1 2 3 4 5 6 7\n", "line 2: 7 numbers, not three for each point"},
    {"PointAmongPolylines", "1 2 3 4 5 6\n1 2 3\n", "line 2: a polyline of one point"},
    {"PolylineAmongPoints", "1 2 3\n1 2 3 4 5 6\n", "line 2: 6 numbers, not x y z as in the lines before"},
    {"CutPoint", "1 2 3\n4 5", "line 2: 2 numbers, not x y z as in the lines before"},
    {"OnePointBeforeABlankLine", "1 2 3\n\n4 5 6\n7 8 9\n", "line 2: a polyline of one point ends here"},
    {"OnePointAtTheEnd", "1 2 3\n4 5 6\n\n7 8 9", "line 4: a polyline of one point ends here"},
    {"EmptyField", "1,,2,3\n", "line 1: a number is missing before \",\""},
    {"EmptyFieldOfBlanks", "1 , ; 2 3\n", "line 1: a number is missing before \";\""},
    {"EmptyFirstField", ",1,2,3\n", "line 1: a number is missing before \",\""},
    {"CarriageReturnsAlone", "1 2 3\r4 5 6\r", "line 1: \"3?4\" is not a number"},
    {"Binary", std::string("\0\1\xff\x80", 4), "line 1: \"????\" is not a number"},
    {"EscapeSequence", "1 2 \x1b[31m", "line 1: \"?[31m\" is not a number"},
    {"LongWord", std::string(1000, 'a'), "line 1: \"aaaaaaaaaaaaaaaaaaaa...\" is not a number"},
    {"LongNumberWithATail", std::string(1000, '1') + "x", "line 1: \"11111111111111111111...\" is not a number"},
};
class LineFileRejects : public testing::TestWithParam<BadLines> {};

TEST_P(LineFileRejects, AndSaysWhereAndWhy) { EXPECT_EQ(Refusal(GetParam().text), GetParam().reason); }
INSTANTIATE_TEST_SUITE_P(LineFile, LineFileRejects, testing::ValuesIn(kBadLines),
                         [](const auto& row) { return row.param.name; });

TEST(LineFile, ReadsOneLineOfManyPoints) {
    std::string text;
    constexpr std::size_t kPoints = 100'000;
    for (std::size_t i = 0; i < kPoints; ++i) text += std::to_string(i) + " 0 1 ";
    const std::vector<Polyline> polylines = Parsed(text);
    ASSERT_EQ(polylines.size(), 1u);
    ASSERT_EQ(polylines[0].size(), 3 * kPoints);
    EXPECT_EQ(polylines[0][3 * 99'999], 99'999.0f);
}

TEST(LineFile, ReadsAFile) {
    const ScratchFolder folder;
    const std::string_view text = "0 0 0\n1 0 0\n";
    const auto* const bytes = reinterpret_cast<const std::byte*>(text.data());
    WriteBytes(folder / "a.txt", {bytes, bytes + text.size()});
    std::vector<Polyline> polylines;
    std::string reason;
    EXPECT_TRUE(ReadLineFile(folder / "a.txt", &polylines, &reason)) << reason;
    EXPECT_EQ(polylines, std::vector<Polyline>{kTwo[0]});
}

TEST(LineFile, RefusesWhatIsNoRegularFile) {
    const ScratchFolder folder;
    std::vector<Polyline> polylines;
    std::string reason;
    EXPECT_FALSE(ReadLineFile(folder / "none.txt", &polylines, &reason));
    EXPECT_EQ(reason, "cannot be opened: No such file or directory");
    EXPECT_FALSE(ReadLineFile("/dev/zero", &polylines, &reason));
    EXPECT_EQ(reason, "is not a regular file");
}

}  // namespace
