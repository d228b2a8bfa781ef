// The reader of the docstrings: what it understands, and that everything else is an error with a place.
#include "generator/HeaderReader.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace bindings {
namespace {

using Lines = std::vector<std::string>;

DocString Parse(const Lines& lines) { return ParseDocString(lines, "a.h", 10); }

TEST(ParseDocString, JoinsTheLinesOfATextWithOneBlank) {
    const DocString doc = Parse({" Sets the size", " of the window."});
    EXPECT_EQ(doc.text, "Sets the size of the window.");
    EXPECT_EQ(doc.line, 10);
    EXPECT_TRUE(doc.parameters.empty());
    EXPECT_EQ(doc.returns, "");
    EXPECT_EQ(doc.throws, "");
}

TEST(ParseDocString, AnEmptyLineSeparatesParagraphs) {
    EXPECT_EQ(Parse({" One.", "", " Two", " lines."}).text, "One.\n\nTwo lines.");
}

TEST(ParseDocString, ReadsTagsWithTheirIndentedLines) {
    const DocString doc = Parse({" Cuts.", " @param a, b  first", "              and second", " @param c  third",
                                 " @return yes", "         or no", " @throws std::exception  always"});
    EXPECT_EQ(doc.text, "Cuts.");
    ASSERT_EQ(doc.parameters.size(), 2u);
    EXPECT_EQ(doc.parameters[0].names, (Lines{"a", "b"}));
    EXPECT_EQ(doc.parameters[0].text, "first and second");
    EXPECT_EQ(doc.parameters[1].names, Lines{"c"});
    EXPECT_EQ(doc.parameters[1].text, "third");
    EXPECT_EQ(doc.returns, "yes or no");
    EXPECT_EQ(doc.throws, "std::exception: always");
}

TEST(ParseDocString, ATextMayStartOnTheLineAfterItsTag) {
    const DocString doc = Parse({" Cuts.", " @param a", "          first", " @return", "     yes"});
    EXPECT_EQ(doc.parameters.at(0).text, "first");
    EXPECT_EQ(doc.returns, "yes");
}

TEST(ParseDocString, ASentenceThatIsNotIndentedReturnsToTheText) {
    const DocString doc = Parse({" Sets the size.", " @param sx, sy  pixels", " Asks for no repaint.", " Never."});
    EXPECT_EQ(doc.text, "Sets the size.\n\nAsks for no repaint. Never.");
    EXPECT_EQ(doc.parameters.at(0).text, "pixels");
}

struct BadDocString {
    const char* name;
    Lines lines;
    const char* message;
};
void PrintTo(const BadDocString& row, std::ostream* out) { *out << row.name; }

const BadDocString kBadDocStrings[] = {
    {"UnknownTag",
     {" Cuts.", " @returns yes"},
     "a.h:11: the tag @returns is not known: @param, @return and @throws are"},
    {"ParameterWithoutName", {" @param"}, "a.h:10: @param needs names and a text: \"\""},
    {"ParameterWithoutText", {" @param a", " @return yes"}, "a.h:11: a tag without a text"},
    {"LastTagWithoutText", {" Cuts.", " @return"}, "a.h:11: a tag without a text"},
    {"SecondReturn", {" @return a", " @return b"}, "a.h:11: a second @return"},
    {"SecondThrows", {" @throws a", " @throws b"}, "a.h:11: a second @throws"},
    {"ContinuationWithoutIndentation",
     {" @param a  array of", " floats"},
     "a.h:11: a line after a tag is neither indented nor a new sentence: \"floats\""},
};
class ParseDocStringRefuses : public testing::TestWithParam<BadDocString> {};

TEST_P(ParseDocStringRefuses, AndNamesTheLine) {
    try {
        (void)Parse(GetParam().lines);
        FAIL() << "it was accepted";
    } catch (const SourceError& error) {
        EXPECT_STREQ(error.what(), GetParam().message);
    }
}
INSTANTIATE_TEST_SUITE_P(DocString, ParseDocStringRefuses, testing::ValuesIn(kBadDocStrings),
                         [](const auto& row) { return row.param.name; });

// ---- functions

TEST(ParseFunctions, ReadsNamesArgumentsAndDocstringsInOrder) {
    const auto functions = ParseFunctions(
        "class A {\n"
        "    /// First.\n"
        "    /// @param b  an array\n"
        "    virtual std::int32_t One(float a,\n"
        "                             const ACAD::CutMask** b) = 0;\n"
        "    // ---- no docstring\n"
        "    virtual void Two() {}\n"
        "    /// Third.\n"
        "    virtual const Kind* Three(float /*px*/, void** p_this) {}\n"
        "    ~A() = default;\n"
        "};\n",
        "a.h");
    ASSERT_EQ(functions.size(), 3u);
    EXPECT_EQ(functions[0].name, "One");
    EXPECT_EQ(functions[0].line, 4);
    EXPECT_EQ(functions[0].argumentNames, (Lines{"a", "b"}));
    EXPECT_EQ(functions[0].doc.text, "First.");
    EXPECT_EQ(functions[0].doc.line, 2);
    EXPECT_EQ(functions[0].doc.parameters.at(0).text, "an array");
    EXPECT_EQ(functions[1].name, "Two");
    EXPECT_TRUE(functions[1].argumentNames.empty());
    EXPECT_EQ(functions[1].doc.line, 0);
    EXPECT_EQ(functions[2].name, "Three");
    EXPECT_EQ(functions[2].argumentNames, (Lines{"px", "p_this"}));
}

struct BadText {
    const char* name;
    const char* text;
    const char* message;
};
void PrintTo(const BadText& row, std::ostream* out) { *out << row.name; }

const BadText kBadFunctions[] = {
    {"ArgumentWithoutName", "/// A.\nvirtual void A(float) = 0;\n", "a.h:2: the argument \"float\" is not understood"},
    {"EmptyArgument", "virtual void A(float a, ) = 0;\n", "a.h:1: the argument \"\" is not understood"},
    {"NoEnd", "virtual void A(float a)\n", "a.h:1: the declaration is not understood: \"virtual void A(float a)\""},
    {"Body", "virtual void A() { return; }\n",
     "a.h:1: the declaration is not understood: \"virtual void A() { return; }\""},
    {"NoParentheses", "virtual int a;\n", "a.h:1: the declaration is not understood: \"virtual int a;\""},
};
class ParseFunctionsRefuses : public testing::TestWithParam<BadText> {};

TEST_P(ParseFunctionsRefuses, AndNamesTheLine) {
    try {
        (void)ParseFunctions(GetParam().text, "a.h");
        FAIL() << "it was accepted";
    } catch (const SourceError& error) {
        EXPECT_STREQ(error.what(), GetParam().message);
    }
}
INSTANTIATE_TEST_SUITE_P(Header, ParseFunctionsRefuses, testing::ValuesIn(kBadFunctions),
                         [](const auto& row) { return row.param.name; });

// ---- classes and modes

TEST(ParseClassText, IsTheDocstringBeforeTheClass) {
    EXPECT_EQ(ParseClassText("/// Other.\nclass B {\n};\n/// All of\n/// it.\nclass A {\n};\n", "A", "a.h").text,
              "All of it.");
}

TEST(ParseClassText, RefusesAHeaderWithoutTheClassOrItsDocstring) {
    EXPECT_THROW((void)ParseClassText("/// B.\nclass B {\n};\n", "A", "a.h"), SourceError);
    EXPECT_THROW((void)ParseClassText("\nclass A {\n};\n", "A", "a.h"), SourceError);
}

constexpr const char* kModeText =
    "/// Ways.\n"
    "enum Way : std::int16_t {\n"
    "    /// On foot.\n"
    "    WayWalk = 0,\n"
    "\n"
    "    WayNone = -1\n"
    "};\n";

TEST(ParseMode, ReadsValuesAndTheirTexts) {
    const ModeList mode = ParseMode(kModeText, "Way", "a.h");
    EXPECT_EQ(mode.name, "Way");
    EXPECT_EQ(mode.text, "Ways.");
    ASSERT_EQ(mode.constants.size(), 2u);
    EXPECT_EQ(mode.constants[0].name, "WayWalk");
    EXPECT_EQ(mode.constants[0].value, 0);
    EXPECT_EQ(mode.constants[0].text, "On foot.");
    EXPECT_EQ(mode.constants[1].name, "WayNone");
    EXPECT_EQ(mode.constants[1].value, -1);
    EXPECT_EQ(mode.constants[1].text, "");
}

const BadText kBadModes[] = {
    {"NoSuchEnum", "/// A.\nenum Ways : int {\n    A = 0\n};\n", "a.h:1: there is no enum Way"},
    {"NoDocstring", "enum Way : int {\n    A = 0\n};\n", "a.h:1: Way has no docstring"},
    {"NoValue", "/// A.\nenum Way : int {\n    A,\n};\n", "a.h:3: the value is not understood: \"A,\""},
    {"NoEnumerator", "/// A.\nenum Way : int {\n};\n", "a.h:2: Way has no values"},
};
class ParseModeRefuses : public testing::TestWithParam<BadText> {};

TEST_P(ParseModeRefuses, AndNamesTheLine) {
    try {
        (void)ParseMode(GetParam().text, "Way", "a.h");
        FAIL() << "it was accepted";
    } catch (const SourceError& error) {
        EXPECT_STREQ(error.what(), GetParam().message);
    }
}
INSTANTIATE_TEST_SUITE_P(Header, ParseModeRefuses, testing::ValuesIn(kBadModes),
                         [](const auto& row) { return row.param.name; });

}  // namespace
}  // namespace bindings
