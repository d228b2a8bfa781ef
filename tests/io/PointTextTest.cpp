// Points as text: separators, headers, colours, and what is refused.
#include "io/PointText.h"

#include <gmock/gmock.h>

#include <bit>
#include <charconv>
#include <clocale>
#include <cmath>
#include <cstdint>
#include <random>

#include "host/CommaLocale.h"
#include "io/PointSample.h"
#include "io/TextBlocks.h"

using testing::ElementsAre;
using testing::FloatEq;
using testing::IsEmpty;

namespace {

KV_ScenePane::PointCloud Read(const std::string& text) { return ReadBytesAsPoints(ReadPointText, text); }
std::string Refusal(const std::string& text) { return PointRefusal(ReadPointText, text); }

TEST(PointText, ReadsCoordinatesWithoutColors) {
    const auto cloud = Read("1 2 3\n-4.5 +5e-1 .25\n");
    EXPECT_THAT(cloud.xyz, ElementsAre(1, 2, 3, -4.5f, 0.5f, 0.25f));
    EXPECT_THAT(cloud.colors, IsEmpty());
}

struct Line {
    const char* name;
    const char* text;
};
void PrintTo(const Line& line, std::ostream* out) { *out << line.name; }

class PointTextLine : public testing::TestWithParam<Line> {};

// Each of them is the point 1, 2, 3 in the colour 255, 0, 51.
TEST_P(PointTextLine, IsThePointWithItsColor) {
    const auto cloud = Read(GetParam().text);
    EXPECT_THAT(cloud.xyz, ElementsAre(1, 2, 3));
    EXPECT_THAT(cloud.colors, ElementsAre(1, 0, FloatEq(0.2f)));
}

const Line kLines[] = {
    {"Blanks", "1 2 3 255 0 51\n"},
    {"Tabs", "1\t2\t3\t255\t0\t51\n"},
    {"RunsOfBlanks", "  1   2 \t 3 255    0 51  \t\n"},
    {"Commas", "1,2,3,255,0,51\n"},
    {"CommasWithBlanks", " 1, 2 ,3 , 255,0,\t51 \n"},
    {"Semicolons", "1;2;3;255;0;51\n"},
    {"NoLineEndAtTheEnd", "1 2 3 255 0 51"},
    {"CarriageReturns", "1 2 3 255 0 51\r\n"},
    {"ByteOrderMark",
     "\xEF\xBB\xBF"
     "1 2 3 255 0 51\n"},
    {"CommentsAndBlankLines", "# one\n\n//X Y Z R G B\n  \t\n1 2 3 255 0 51\n# end\n\n"},
    {"Alpha", "1 2 3 255 0 51 7\n"},
    {"SeparatorAfterTheLastNumber", "1,2,3,255,0,51,\n"},
    {"FloatingPointNumbersInAllColumns", "1.0 2.0 3.0 255.0 0.0 51.0\n"},
    {"FractionsOfOne", "1 2 3 1 0 0.2\n"},
    {"Quoted", "\"1\",\"2\", \"3\" ,\"255\",\"0\",\"51\"\n"},
    {"Header", "x,y,z,r,g,b\n1,2,3,255,0,51\n"},
    {"HeaderWithWords", "X,Y,Z,Red,Green,Blue\r\n1,2,3,255,0,51\r\n"},
    {"QuotedHeader", "\"x\";\"y\";\"z\";\"r\";\"g\";\"b\"\n1;2;3;255;0;51\n"},
    {"HeaderInAnotherOrder", "b,z,g,y,r,x\n51,3,0,2,255,1\n"},
    {"HeaderWithOtherColumns", "id,x,name,y,z,note,red,green,blue,\n9,1,two words,2,3,,255,0,51,\n"},
    {"QuotedTextWithSeparators", "x,y,z,note,r,g,b\n1,2,3,\"a, b \"\"c\"\"; d\",255,0,51\n"},
    {"QuotedNameWithASeparator", "x,y,z,\"a;b\",r,g,b\n1,2,3,4,255,0,51\n"},
    {"CommentsBelowATextColumn", "name,x,y,z,r,g,b\n#1,9,9,9,9,9,9\n  //2,9,bad\n\"#3\",1,2,3,255,0,51\n#4,9,bad\n"},
    {"CommentsBelowATextColumnWithBlanks", "name x y z r g b\n#1 9 9 9 9 9 9\n//2 9\na/b 1 2 3 255 0 51\n"},
    {"CarriageReturnAtTheEndOfTheFile", "1 2 3 255 0 51\r"},
    {"CarriageReturnsAfterBlanksAndText", "x,y,z,r,g,b,note\r\n\r\n# c\r\n1,2,3,255,0,51,two words \t\r\n"},
    {"AlphaThatIsNoNumber", "1 2 3 255 0 51 nan\n"},
    {"HeaderSeparatedByBlanks", "x y z name r g b\n1 2 3 abc,d 255 0 51\n"},
    {"HeaderAfterComments", "# made by hand\n\nx;y;z;r;g;b\n1;2;3;255;0;51\n"},
    {"SemicolonsWithCommasInTexts", "x;y;z;note;r;g;b\n1;2;3;a,b;255;0;51\n"},
};
INSTANTIATE_TEST_SUITE_P(PointText, PointTextLine, testing::ValuesIn(kLines),
                         [](const auto& row) { return row.param.name; });

TEST(PointText, ReadsFourColumnsAsCoordinatesAndAValueThatIsIgnored) {
    const auto cloud = Read("1 2 3 900\n4 5 6 -7\n");
    EXPECT_THAT(cloud.xyz, ElementsAre(1, 2, 3, 4, 5, 6));
    EXPECT_THAT(cloud.colors, IsEmpty());
}

// Numbers and other words are read in different ways.
TEST(PointText, IgnoresTheFourthValueWhateverItIs) {
    EXPECT_THAT(Read("1 2 3 nan\n4 5 6 7\n7 8 9 -inf\n1 2 3 1e99\n4 5 6 four\n").xyz,
                ElementsAre(1, 2, 3, 4, 5, 6, 7, 8, 9, 1, 2, 3, 4, 5, 6));
}

TEST(PointText, ReadsEachLineWithItsOwnSeparatorWhenThereIsNoHeader) {
    EXPECT_THAT(Read("1 2 3\n4,5,6\n7;8;9\n1\t2\t3\n").xyz, ElementsAre(1, 2, 3, 4, 5, 6, 7, 8, 9, 1, 2, 3));
}

TEST(PointText, HasNoColorsWhenTheHeaderNamesNone) {
    const auto cloud = Read("nx,ny,nz,x,y,z\n0,0,-1,1,2,3\n");
    EXPECT_THAT(cloud.xyz, ElementsAre(1, 2, 3));
    EXPECT_THAT(cloud.colors, IsEmpty());
}

// One value above 1 anywhere decides for the whole file.
TEST(PointText, ScalesAllColorsByTheLargestOne) {
    EXPECT_THAT(Read("0 0 0 1 1 0\n0 0 0 0 0 255\n").colors,
                ElementsAre(FloatEq(1 / 255.0f), FloatEq(1 / 255.0f), 0, 0, 0, 1));
    EXPECT_THAT(Read("0 0 0 1 1 0\n0 0 0 0 0 1\n").colors, ElementsAre(1, 1, 0, 0, 0, 1));
    EXPECT_THAT(Read("0 0 0 1 1 0\n0 0 0 0 0 1.5\n").colors[0], FloatEq(1 / 255.0f));
}

TEST(PointText, DoesNotScaleByAlphaOrByOtherColumns) {
    EXPECT_THAT(Read("0 0 0 1 0.5 0 255\n").colors, ElementsAre(1, 0.5f, 0));
    EXPECT_THAT(Read("x y z r g b a q\n0 0 0 1 0.5 0 255 9000\n").colors, ElementsAre(1, 0.5f, 0));
}

struct Refused {
    const char* name;
    std::string text;
    const char* reason;
};
void PrintTo(const Refused& row, std::ostream* out) { *out << row.name; }

class PointTextRefuses : public testing::TestWithParam<Refused> {};
TEST_P(PointTextRefuses, WithTheReason) { EXPECT_EQ(Refusal(GetParam().text), GetParam().reason); }

const Refused kRefused[] = {
    {"NoPoints", "", "the file holds no points"},
    {"CommentsAlone", "# x\n\n//y\n", "the file holds no points"},
    {"HeaderAlone", "x,y,z\n", "the file holds no points"},
    {"TwoNumbers", "1 2\n", "line 1: expected 3, 4, 6 or 7 numbers, found 2"},
    {"FiveNumbers", "1 2 3 4 5\n", "line 1: expected 3, 4, 6 or 7 numbers, found 5"},
    {"EightNumbers", "1 2 3 4 5 6 7 8\n", "line 1: expected 3, 4, 6 or 7 numbers, found 8"},
    {"FewerNumbersThanBefore", "1 2 3 4 5 6\n1 2 3 4 5\n", "line 2: expected 6 numbers, found 5"},
    {"MoreNumbersThanBefore", "1 2 3\n\n# c\n1 2 3 4\n", "line 4: expected 3 numbers, found 4"},
    {"SeparatorAtTheEndOfOneLine", "1,2,3\n1,2,3,\n", "line 2: expected 3 numbers, found 4"},
    {"Word", "1 2 3\n1 two 3\n", "line 2: \"two\" is not a number"},
    {"FirstLineOfWords", "hello world\n", "line 1: \"hello\" is not a number"},
    {"UnitAfterTheNumber", "1 2 3mm\n", "line 1: \"3mm\" is not a number"},
    {"Hexadecimal", "1 2 0x10\n", "line 1: \"0x10\" is not a number"},
    {"ExponentWithoutDigits", "1 2 3e\n", "line 1: \"3e\" is not a number"},
    {"TwoSigns", "1 2 +-3\n", "line 1: \"+-3\" is not a number"},
    {"EmptyField", "1,,3\n", "line 1: \"\" is not a number"},
    {"NotANumber", "1 2 3\n1 2 nan\n", "line 2: \"nan\" is not a finite number"},
    {"Infinite", "1 2 3\n1 -inf 3\n", "line 2: \"-inf\" is not a finite number"},
    {"TooLarge", "1 2 1e39\n", "line 1: \"1e39\" is too large for a float"},
    {"NotANumberAsAColor", "1 2 3 4 5 nan\n", "line 1: \"nan\" is not a finite number"},
    {"ColorAbove255", "1 2 3 4 5 6\n1 2 3 4 256 6\n", "line 2: colour \"256\" is not from 0 to 255"},
    {"NegativeColor", "1 2 3 0.5 -0.5 0\n", "line 1: colour \"-0.5\" is not from 0 to 255"},
    {"CarriageReturnBetweenNumbers", "1 2\r3\n", "line 1: a carriage return is not at the end of the line"},
    {"CarriageReturnsAlone", "1 2 3\r4 5 6\r", "line 1: a carriage return is not at the end of the line"},
    {"TwoCarriageReturns", "1 2 3\n1 2 3\r\r\n", "line 2: a carriage return is not at the end of the line"},
    {"CarriageReturnInAComment", "# c\r1 2 3\n1 2 3\n", "line 1: a carriage return is not at the end of the line"},
    {"CarriageReturnInAText", "t,x,y,z\na\rb,1,2,3\n", "line 2: a carriage return is not at the end of the line"},
    {"CarriageReturnInALaterLine", "1,2,3\n1,\r2,3\n", "line 2: a carriage return is not at the end of the line"},
    {"DecimalCommas", "1,5 2,5 3,5\n", "line 1: \"5 2\" is not a number"},
    {"DecimalCommasBetweenSemicolons", "1,5;2,5;3,5\n", "line 1: \"1,5\" is not a number"},
    {"DecimalCommasInALaterLine", "1 2 3 4\n1,5 2,5 3,5\n", "line 2: \"5 2\" is not a number"},
    {"CommasAndBlanksInALaterLine", "1 2 3 4\n1,5 2 3\n", "line 2: expected 4 numbers, found 2"},
    {"NumberInTheNextLine", "1 2 3\n1 2 \n3\n", "line 2: expected 3 numbers, found 2"},
    {"NoZ", "x,y,r,g,b\n1,2,3,4,5\n", "line 1: the header has no column \"z\""},
    {"NoGreen", "x,y,z,red,blue\n1,2,3,4,5\n", "line 1: the header has no column \"green\""},
    {"TwoColumnsX", "x,X,y,z\n1,1,2,3\n", "line 1: the header names \"X\" twice"},
    {"FewerColumnsThanTheHeader", "x,y,z,t\n1,2,3\n", "line 2: expected 4 columns, found 3"},
    {"AnotherSeparatorThanTheHeader", "x,y,z\n1 2 3\n", "line 2: expected 3 columns, found 1"},
    {"OpenQuotationMark", "x,y,z,t\n1,2,3,\"a\n", "line 2: a quotation mark is not closed"},
    {"TextAfterAQuotationMark", "x,y,z,t\n1,2,3,\"a\"b\n", "line 2: there is text after a quotation mark"},
    {"Utf16", "\xFF\xFE\x31", "line 1: text in UTF-16 is not read"},
    {"ControlCharactersAndLongWords", "1 2 \x01\x1b[0m12345678901234567890123456789012345678901234567890\n",
     "line 1: \"??[0m12345678901234567890123456789012345...\" is not a number"},
};
INSTANTIATE_TEST_SUITE_P(PointText, PointTextRefuses, testing::ValuesIn(kRefused),
                         [](const auto& row) { return row.param.name; });

TEST(PointText, RefusesALineThatIsLongerThanABlock) {
    const std::string longest(TextBlocks::kBlock, ' ');
    const char* const reason = "line 2: the line is longer than 262144 characters";
    EXPECT_THAT(Read("1 2 3\n" + longest + "\n4 5 6\n").xyz, ElementsAre(1, 2, 3, 4, 5, 6));
    EXPECT_THAT(Read("1 2 3\n" + longest).xyz, ElementsAre(1, 2, 3));
    EXPECT_EQ(Refusal("1 2 3\n" + longest + " \n4 5 6\n"), reason);
    EXPECT_EQ(Refusal("1 2 3\n" + longest + " "), reason);
}

// Numbers of all lengths move the lines over all positions at the ends of the blocks.
TEST(PointText, ReadsLinesAcrossTheEndsOfBlocks) {
    std::string text;
    std::vector<float> expected;
    std::mt19937 random(1);
    while (text.size() < 3 * TextBlocks::kBlock) {
        for (int i = 0; i < 3; ++i) {
            const auto value = static_cast<float>(random() % 1000000) / static_cast<float>(1 + random() % 1000);
            char digits[64];
            text.append(digits, std::to_chars(digits, digits + sizeof digits, value).ptr).append(i < 2 ? " " : "\n");
            expected.push_back(value);
        }
    }
    EXPECT_EQ(Read(text).xyz, expected);
    text.pop_back();
    EXPECT_EQ(Read(text).xyz, expected);
}

/// What std::from_chars() makes of the text.
std::uint32_t BitsByLibrary(const std::string& text) {
    float value = -1;
    const auto [end, fault] = std::from_chars(text.data(), text.data() + text.size(), value);
    EXPECT_EQ(end, text.data() + text.size()) << text;
    EXPECT_EQ(fault, std::errc{}) << text;
    return std::bit_cast<std::uint32_t>(value);
}

/// A decimal number with up to 19 digits and an exponent that may be large.
std::string RandomNumber(std::mt19937_64& random) {
    std::string text = random() % 2 == 0 ? "-" : "";
    const std::size_t digits = 1 + random() % 19;
    const std::size_t point = random() % (digits + 1);
    for (std::size_t i = 0; i < digits; ++i) {
        if (i == point) text += '.';
        text += static_cast<char>('0' + random() % 10);
    }
    if (random() % 4 == 0) text += "e" + std::to_string(static_cast<int>(random() % 40) - 25);
    return text;
}

TEST(PointText, RoundsTwoMillionRandomNumbersAsTheLibraryDoes) {
    std::mt19937_64 random(10);
    for (int round = 0; round < 20; ++round) {
        std::vector<std::uint32_t> expected;
        std::string text;
        for (int i = 0; i < 99'999; ++i) {
            const std::string number = RandomNumber(random);
            expected.push_back(BitsByLibrary(number));
            text.append(number).append(i % 3 == 2 ? "\n" : " ");
        }
        const auto cloud = Read(text);
        ASSERT_EQ(cloud.xyz.size(), expected.size());
        for (std::size_t i = 0; i < expected.size(); ++i)
            ASSERT_EQ(std::bit_cast<std::uint32_t>(cloud.xyz[i]), expected[i]) << "number " << i << " of " << round;
    }
}

TEST(PointText, ReadsNumbersBelowTheSmallestFloatAsZeroAndDenormalOnesExactly) {
    EXPECT_THAT(Read("1e-60 -1e-400 1e-45\n").xyz, ElementsAre(0, 0, std::bit_cast<float>(1)));
}

TEST(PointText, AllocatesTheArraysOnceAndNotForLinesWithoutPoints) {
    std::string text;
    for (int i = 0; i < 5000; ++i) text += "1 2 3 4 5 6\n";
    const auto cloud = Read(text);
    EXPECT_EQ(cloud.xyz.size(), 15000u);
    EXPECT_EQ(cloud.xyz.capacity(), 15000u);
    EXPECT_EQ(cloud.colors.capacity(), 15000u);
    const auto sparse = Read("1 2 3\n" + std::string(60000, '\n'));
    EXPECT_LE(sparse.xyz.capacity(), 3 * 60006u / 6);
}

TEST(PointText, ReportsRisingProgress) {
    std::string text;
    for (int i = 0; i < 1'000'000; ++i) text += "1.5 2.5 3.5\n";
    std::vector<double> parts;
    (void)ReadBytesAsPoints(ReadPointText, text, [&](double part) {
        parts.push_back(part);
        return true;
    });
    ASSERT_GE(parts.size(), 40u);
    EXPECT_TRUE(std::ranges::is_sorted(parts, std::less_equal<>{})) << "not strictly rising";
    EXPECT_GT(parts.front(), 0);
    EXPECT_LE(parts.back(), 1);
}

// Cancelling must not wait for the end of that part of the work.
TEST(PointText, ReportsAsOftenWhileLinesAreCounted) {
    const std::string line(1000, '#');
    std::string text = "1 2 3\n";
    while (text.size() < 60 * TextBlocks::kBlock) text.append(line).append("\n");
    int whileCounted = 0, later = 0;
    (void)ReadBytesAsPoints(ReadPointText, text, [&](double part) {
        ++(part <= 0.05 ? whileCounted : later);
        return true;
    });
    EXPECT_GE(whileCounted, 55);
    EXPECT_GE(later, 55);
}

TEST(ReadProgress, ReportsEveryHundredthOrEvery16MegabytesAlsoInAShareOfTheWork) {
    for (const auto& [bytes, expected] :
         {std::pair(std::uint64_t{1000}, 100), std::pair(std::uint64_t{8'000'000'000}, 500)}) {
        int calls = 0;
        ReadProgress progress([&](double) { return ++calls > 0; }, bytes);
        for (int i = 1; i <= 100'000; ++i) progress.Report(0.05 * i / 100'000, 0.05);
        EXPECT_NEAR(calls, expected, expected / 50) << bytes;
    }
}

TEST(PointText, EndsWithAReasonWhenTheFileBecomesShorter) {
    const std::string text = "1 2 3\n4 5 6\n";
    ShortenedInput input(text, text.size() + 1);
    ReadProgress progress({}, input.Size());
    EXPECT_THAT([&] { (void)ReadPointText(input, progress); },
                testing::ThrowsMessage<FileReadError>("the file became shorter while it was read"));
}

}  // namespace
