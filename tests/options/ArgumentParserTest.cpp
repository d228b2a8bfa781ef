#include "options/ArgumentParser.h"

#include <gtest/gtest.h>

#include <array>
#include <ostream>

namespace ProgramOptions {
namespace {

const std::array kRows = {Row{.name = "--help", .shortName = "-h"}, Row{.name = "--zoom", .value = "Z"},
                          Row{.name = "--out", .shortName = "-o", .value = "FILE"}, Row{.name = "--json"}};

/// "--zoom=3", "file a", or at the end "unknown --what".
using Words = std::vector<std::string>;

Words Read(const Words& arguments) {
    std::vector<const Row*> rows;
    for (const Row& row : kRows) rows.push_back(&row);
    const ParsedArguments parsed = ParseArguments(rows, arguments);
    Words words;
    for (const Argument& argument : parsed.arguments) {
        if (argument.row == nullptr)
            words.push_back("file " + argument.text);
        else
            words.push_back(std::string(argument.row->name) + (argument.row->value.empty() ? "" : '=' + argument.text));
    }
    if (parsed.mistake) {
        const char* const kinds[] = {"unknown ", "needs a value: ", "has a value: "};
        words.push_back(kinds[static_cast<int>(parsed.mistake->kind)] + parsed.mistake->argument);
    }
    return words;
}

struct Line {
    const char* name;
    Words arguments, result;
};
void PrintTo(const Line& row, std::ostream* out) { *out << row.name; }

const Line kLines[] = {
    {"Nothing", {}, {}},
    {"OptionsAndFilesInTheirOrder",
     {"a", "--zoom", "3", "b", "--json", "c"},
     {"file a", "--zoom=3", "file b", "--json", "file c"}},
    {"ValueAfterAnEqualsSign", {"--zoom=a=b", "x"}, {"--zoom=a=b", "file x"}},
    {"EmptyValue", {"--zoom=", "x"}, {"--zoom=", "file x"}},
    {"EmptyArgumentAsValue", {"--zoom", "", "x"}, {"--zoom=", "file x"}},
    {"SeveralTimes", {"--zoom", "1", "--json", "--zoom=2", "--json"}, {"--zoom=1", "--json", "--zoom=2", "--json"}},
    {"ValueThatLooksLikeAnOption", {"--out", "--json", "-1"}, {"--out=--json", "unknown -1"}},
    {"ValueOfBrackets", {"--zoom", "[1,2]", "--out={}"}, {"--zoom=[1,2]", "--out={}"}},
    {"ValueOfTwoDashes", {"--zoom", "--", "a"}, {"--zoom=--", "file a"}},
    {"ShortNames", {"-h", "-o", "x", "-oy"}, {"--help", "--out=x", "--out=y"}},
    {"ShortNamesInOneArgument", {"-ho", "x"}, {"--help", "--out=x"}},
    {"EverythingAfterTwoDashesIsAFile",
     {"a", "--", "-h", "--json=x", "--zoom=", "-", "--", "b"},
     {"file a", "file -h", "file --json=x", "file --zoom=", "file -", "file --", "file b"}},
    {"EmptyFile", {""}, {"file "}},
    {"FileWithAnEqualsSign", {"a=b", "="}, {"file a=b", "file ="}},
    {"UnknownLongName", {"--json", "--jso", "a"}, {"--json", "unknown --jso"}},
    {"UnknownShortName", {"a", "-x"}, {"file a", "unknown -x"}},
    {"UnknownWithAValue", {"--what=3"}, {"unknown --what=3"}},
    {"DashAlone", {"-"}, {"unknown -"}},
    {"NumberThatIsNegative", {"-5"}, {"unknown -5"}},
    {"ThreeDashes", {"---"}, {"unknown ---"}},
    {"ValueIsMissing", {"a", "--zoom"}, {"file a", "needs a value: --zoom"}},
    {"ValueOfAShortNameIsMissing", {"-o"}, {"needs a value: -o"}},
    {"ValueOfTheLastShortNameIsMissing", {"-ho"}, {"--help", "needs a value: -o"}},
    {"FirstMistakeOfTwo", {"--what", "--json", "--zoom"}, {"unknown --what"}},
    {"ValueOfASwitch", {"a", "--json=yes", "b"}, {"file a", "has a value: --json"}},
    {"EmptyValueOfASwitch", {"--json="}, {"has a value: --json"}},
    {"TrueAsValueOfASwitch", {"--json=true"}, {"has a value: --json"}},
    {"NamesAreNotShortened", {"--zoo", "3"}, {"unknown --zoo"}},
    {"BytesThatAreNotUtf8", {"\xff\x80"}, {"file \xff\x80"}},
};

class ParseArgumentsReads : public testing::TestWithParam<Line> {};

TEST_P(ParseArgumentsReads, ThisLine) { EXPECT_EQ(Read(GetParam().arguments), GetParam().result); }
INSTANTIATE_TEST_SUITE_P(Options, ParseArgumentsReads, testing::ValuesIn(kLines),
                         [](const auto& row) { return row.param.name; });

TEST(ParseArguments, ReadsTensOfThousandsOfFiles) {
    const Words arguments(40000, "a");
    EXPECT_EQ(Read(arguments).size(), arguments.size());
}

}  // namespace
}  // namespace ProgramOptions
