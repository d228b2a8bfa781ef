// Files of pairs of points: what is read, and what is refused with which reason.
#include "PairFile.h"

#include <gtest/gtest.h>

#include <limits>
#include <ostream>

#include "host/CommaLocale.h"
#include "host/MeshFiles.h"
#include "support/ScratchFolder.h"

namespace {

using KV_ScenePane::AlignmentPair;

/// All numbers of the pairs, twelve for each.
std::vector<float> NumbersOf(const std::vector<AlignmentPair>& pairs) {
    std::vector<float> numbers;
    for (const AlignmentPair& pair : pairs)
        for (const auto* const point : {&pair.moving, &pair.fixed})
            for (const auto* const values : {&point->point, &point->normal})
                numbers.insert(numbers.end(), std::begin(*values), std::end(*values));
    return numbers;
}

std::vector<float> Parsed(std::string_view text) {
    std::vector<AlignmentPair> pairs;
    std::string reason;
    EXPECT_TRUE(ParsePairs(text, &pairs, &reason)) << reason;
    EXPECT_EQ(reason, "");
    return NumbersOf(pairs);
}

std::string Refusal(std::string_view text) {
    std::vector<AlignmentPair> pairs(7);
    std::string reason;
    EXPECT_FALSE(ParsePairs(text, &pairs, &reason)) << text;
    EXPECT_EQ(pairs.size(), 7u) << "a refused text changes nothing";
    return reason;
}

const std::vector<float> kTwo = {1, 2, 3, 0, 0, 0, 4, 5, 6, 0, 0, 0, -1, -2, -3, 0, 0, 0, 0.5f, 1e3f, 0, 0, 0, 0};
const std::vector<float> kOneWithNormals = {1, 2, 3, 0, 0, 1, 4, 5, 6, 1, 0, 0};

TEST(PairFile, ReadsAMovingAndAFixedPointPerLine) {
    EXPECT_EQ(Parsed("1 2 3 4 5 6\n-1 -2 -3 .5 1e3 0\n"), kTwo);
    EXPECT_EQ(Parsed("\n1 2 3 4 5 6\n\n \t\n-1 -2 -3 .5 1e3 0"), kTwo) << "blank lines, no line feed at the end";
}

TEST(PairFile, ReadsPointsWithNormals) {
    EXPECT_EQ(Parsed("1 2 3 0 0 1 4 5 6 1 0 0"), kOneWithNormals);
    EXPECT_EQ(Parsed("1 2 3 0 0 1 4 5 6 1 0 0\n1 2 3 0 0 1 4 5 6 1 0 0").size(), 24u) << "also of several pairs";
    EXPECT_EQ(Parsed("1 2 3 0 0 0 4 5 6 1 0 0\n7 2 3 0 0 1 9 5 6 0 0 0").size(), 24u) << "several need no normals";
    EXPECT_EQ(Parsed("1 2 3 0 0 1e-38 4 5 6 -1e-38 0 0").size(), 12u) << "of any other length";
}

TEST(PairFile, AcceptsBlanksTabsAndCommasBetweenNumbers) {
    for (const char* const text :
         {"1 2 3 0 0 1 4 5 6 1 0 0", "\t1\t2\t3\t0\t0\t1\t4\t5\t6\t1\t0\t0\t", "1,2,3,0,0,1,4,5,6,1,0,0",
          "1, 2, 3 , 0;0;1; 4 5 6,1,0,0,", "+1 2.0 3e0 0 0 1 4 5 6 1 0 0"})
        EXPECT_EQ(Parsed(text), kOneWithNormals) << text;
}

TEST(PairFile, SkipsCommentsAndAcceptsLineEndsOfOtherSystems) {
    EXPECT_EQ(
        Parsed("\xEF\xBB\xBF# moving, fixed\r\n1 2 3 4 5 6 # the corner\r\n#1 1 1 1 1 1\r\n-1 -2 -3 .5 1e3 0#\r\n"),
        kTwo);
}

TEST(PairFile, ReadsDecimalPointsInAnyLocale) {
    const CommaLocale locale;
    if (!locale.IsSet()) GTEST_SKIP() << "this machine cannot make a locale";
    EXPECT_EQ(Parsed("0.5 0 0 0 0 1 0 0 0.25 0 0 1"), (std::vector<float>{0.5f, 0, 0, 0, 0, 1, 0, 0, 0.25f, 0, 0, 1}));
}

struct Refused {
    const char* name;
    const char* text;
    const char* reason;
};
void PrintTo(const Refused& row, std::ostream* out) { *out << row.name; }

const Refused kRefused[] = {
    {"Empty", "", "no pairs of points"},
    {"CommentsOnly", "# nothing\n\n", "no pairs of points"},
    {"OnePairWithoutNormals", "# one\n1 2 3 4 5 6\n",
     "a single pair needs twelve numbers: moving point, its normal, fixed point, its normal"},
    {"OnePairWithoutAMovingNormal", "# one\n\n1 2 3 0 -0 0 4 5 6 1 0 0\n\n# end\n",
     "line 3: a single pair needs both normals, and one has the length 0"},
    {"OnePairWithoutAFixedNormal", "1 2 3 0 0 1 4 5 6 0 0 0",
     "line 1: a single pair needs both normals, and one has the length 0"},
    {"FiveNumbers", "1 2 3 4 5 6\n1 2 3 4 5\n", "line 2: 5 numbers, not six or twelve for a pair of points"},
    {"OneNumber", "\n\n7\n", "line 3: 1 number, not six or twelve for a pair of points"},
    {"ThirteenNumbers", "1 2 3 4 5 6 7 8 9 10 11 12 13", "line 1: 13 numbers, not six or twelve for a pair of points"},
    {"NormalsOnSomeLines", "1 2 3 4 5 6\n# with normals\n1 2 3 0 0 1 4 5 6 0 0 1\n",
     "line 3: 12 numbers, not 6 as in the lines before"},
    {"NormalsMissing", "1 2 3 0 0 1 4 5 6 0 0 1\n1 2 3 4 5 6\n", "line 2: 6 numbers, not 12 as in the lines before"},
    {"Word", "1 2 3 4 5 six\n", "line 1: \"six\" is not a number"},
    {"CommaInNumber", "1,,2,3,4,5\n", "line 1: a number is missing before \",\""},
    {"NotFinite", "1 2 3 4 5 nan\n", "line 1: \"nan\" is not a finite number"},
    {"TooLarge", "1 2 3 4 5 1e39\n", "line 1: \"1e39\" is outside the range of coordinates"},
    {"Binary", "\x01\x02\xff 1\n", "line 1: \"???\" is not a number"},
};
class PairFileRefuses : public testing::TestWithParam<Refused> {};

TEST_P(PairFileRefuses, AndNamesTheLine) { EXPECT_EQ(Refusal(GetParam().text), GetParam().reason); }
INSTANTIATE_TEST_SUITE_P(PairFile, PairFileRefuses, testing::ValuesIn(kRefused),
                         [](const auto& row) { return row.param.name; });

TEST(PairFile, IsReadFromRegularFilesOfALimitedSizeOnly) {
    const ScratchFolder folder;
    std::vector<AlignmentPair> pairs;
    std::string reason;
    WriteText(folder / "p.txt", "1 2 3 4 5 6\n-1 -2 -3 .5 1e3 0\n");
    EXPECT_TRUE(ReadPairFile(folder / "p.txt", &pairs, &reason)) << reason;
    EXPECT_EQ(NumbersOf(pairs), kTwo);
    EXPECT_FALSE(ReadPairFile(folder / "none.txt", &pairs, &reason));
    EXPECT_EQ(reason, "cannot be opened: No such file or directory");
    EXPECT_FALSE(ReadPairFile(folder / "", &pairs, &reason));
    EXPECT_EQ(reason, "is not a regular file");
    // The size counts without a read: these files are sparse. A zero byte is not a number, a space is one of text.
    WriteText(folder / "limit.txt", "7 ");
    std::filesystem::resize_file(folder / "limit.txt", kMaxPairFileSize);
    EXPECT_FALSE(ReadPairFile(folder / "limit.txt", &pairs, &reason));
    EXPECT_EQ(reason, "line 1: \"????????????????????...\" is not a number");
    std::filesystem::resize_file(folder / "limit.txt", kMaxPairFileSize + 1);
    EXPECT_FALSE(ReadPairFile(folder / "limit.txt", &pairs, &reason));
    EXPECT_EQ(reason, "is too large for a file of pairs");
    EXPECT_EQ(NumbersOf(pairs), kTwo) << "a refused file changes nothing";
}

}  // namespace
