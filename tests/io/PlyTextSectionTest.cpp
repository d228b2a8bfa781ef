// Data of text files: tokens, and errors in them.
#include <gtest/gtest.h>

#include "io/PlySectionSample.h"

namespace {

TEST(PlyText, LosesTheOrderInMixedElementsFromAnotherItem) {
    // a b: the step from b skips b's count as a property, then its first member as the count of a list
    PlySample sample(AsciiFile("element e 2 property int a property list int int b", "1 2 1 20  5 1 30"));
    auto& data = sample.Data();
    data.Seek("e", "b");
    EXPECT_EQ(data.m_iCursor, 1);
    data.NextRecord();
    EXPECT_EQ(data.m_iCursor, 1 + 1 + (1 + 1));
    EXPECT_EQ(data.m_iItemIndex, 1);
    EXPECT_EQ(data.GetInt(), 5);
}

TEST(PlyText, WritesNothingAfterTheTargetsInAMixedElement) {
    // from b each step skips two tokens of the long list in the third record
    PlySample sample(AsciiFile("element e 3 property list int int l property int b", "0 0  0 0  6 0 0 0 0 0 0 9"));
    int calls = 0;
    const auto count = [](std::int64_t, int, void* user) { return ++*static_cast<int*>(user) > 0; };
    sample.Data().ForEachInt("e", "b", count, &calls);
    ASSERT_GT(calls, 3);
    float target[4] = {0, 0, 0, 99};
    const PlyColumn column{"b", PlyColumn::kFloat, target, sizeof(float)};
    sample.Data().ReadColumns("e", {&column, 1});
    EXPECT_EQ(target[3], 99);
}

struct BadText {
    const char* name;
    std::string data;
    void (*read)(DataSection&);
    std::string message;
    std::int64_t position;
};
void PrintTo(const BadText& row, std::ostream* out) { *out << row.name; }
const BadText kBadTexts[] = {
    {"NoInteger", "1 2 \n x7\t 2 4 5", [](DataSection& data) { AllInts(data, "v", "b"); },
     "Integer expected, but found this: x7", 6},
    {"IntegerTooLarge", "1 2147483648 2 1 5", [](DataSection& data) { AllInts(data, "v", "a"); },
     "Integer expected, but found this: 2147483648", 2},
    {"NoFloat", "1 2 1e 2 4 5", [](DataSection& data) { AllFloats(data, "v", "b"); },
     "Float expected, but found this: 1e", 4},
    {"NotANumberIsNoFloat", "1 2 nan\r\n2 4 5", [](DataSection& data) { AllFloats(data, "v", "b"); },
     "Float expected, but found this: nan", 4},
    {"NoListInteger", "1 2 3 2 4 -", [](DataSection& data) { AllIntLists(data, "f", "l"); },
     "List element is not an integer: -", 10},
    {"NoListFloat", "1 2 3 2 . 5", [](DataSection& data) { AllFloatLists(data, "f", "l"); },
     "List element is not a float: .", 8},
    {"NoListByte", "1 2 3 2 4 five5",
     [](DataSection& data) {
         data.Seek("f", "l");
         std::vector<unsigned char> list;
         data.GetUCharList(list);
     },
     "List element is not an integer: five5", 10},
};
class PlyTextRejects : public testing::TestWithParam<BadText> {};

TEST_P(PlyTextRejects, ATokenAndSaysWhichAndWhere) {
    PlySample sample(AsciiFile(
        "element head 1 property int h element v 1 property int a property int b element f 1 property list int int l",
        GetParam().data));
    // the line end of the header is the data's first byte
    ExpectPlyError([&] { GetParam().read(sample.Data()); }, GetParam().message, GetParam().position + 1);
}
INSTANTIATE_TEST_SUITE_P(Ply, PlyTextRejects, testing::ValuesIn(kBadTexts),
                         [](const auto& row) { return std::string(row.param.name); });

TEST(PlyText, RefusesAListCountThatIsNotAnInteger) {
    ExpectPlyError([] { PlySample(AsciiFile("element f 2 property list int int l", "1 5 many 1")); },
                   "Integer expected, but found this: many", 5);
}

TEST(PlyText, RefusesTheLargestListCountForLackOfData) {
    const std::string body = "element f 1 property list int int l";
    ExpectPlyError([&] { PlySample(AsciiFile(body, "2147483647 1")); }, "Unexpected end of data.", 13);
    PlySample sample(AsciiFile(body, "1 2147483647"));
    sample.Data().Seek("f", "l");
    std::int64_t cursor = 1;
    sample.Data().SkipList(sample.File().GetElement("f"), 0, cursor);
    EXPECT_EQ(cursor, 2147483649);
}

TEST(PlyText, ScansListsWithUnusualCountsOneByOne) {
    PlySample sample(AsciiFile("element f 3 property list int int l", "\v1 5 2 6 7 3 1 2 3"));
    EXPECT_EQ(sample.Data().m_iEnd, 9);
    EXPECT_EQ(AllIntLists(sample.Data(), "f", "l"), (std::vector<Ints>{{5}, {6, 7}, {1, 2, 3}}));
}

TEST(PlyText, ReadsTheNumberAtTheStartOfAToken) {
    PlySample sample(AsciiFile("element v 2 property int a", "7.9 0x10"));
    EXPECT_EQ(AllInts(sample.Data(), "v", "a"), (Ints{7, 0}));
    EXPECT_EQ(AllFloats(sample.Data(), "v", "a"), (Floats{7.9F, 0}));
}

TEST(PlyText, TreatsOtherWhiteSpaceAsPartOfTheToken) {
    PlySample sample(AsciiFile("element v 3 property int a", "\v1 2\f3 \v \f4"));
    EXPECT_EQ(sample.Data().m_iEnd, 3);
    ExpectPlyError([&] { AllInts(sample.Data(), "v", "a"); }, "Integer expected, but found this: \v", 8);
    float values[3] = {};
    const PlyColumn column{"a", PlyColumn::kFloat, values, sizeof(float)};
    ExpectPlyError([&] { sample.Data().ReadColumns("v", {&column, 1}); }, "Float expected, but found this: \v", 8);
    EXPECT_EQ(values[1], 2);
}

TEST(PlyText, RefusesFewerTokensThanAnnounced) {
    for (const std::string data : {"", "1", "1 2 3", "1 2 3 4 0 2 1", "1 2 3 4 0 "})
        ExpectPlyError(
            [&] {
                PlySample(
                    AsciiFile("element v 2 property int a property int b element f 2 property list uchar int l", data));
            },
            "Unexpected end of data.", static_cast<std::int64_t>(data.size()) + 1);
    EXPECT_NO_THROW(PlySample(
        AsciiFile("element v 2 property int a property int b element f 2 property list uchar int l", "1 2 3 4 0 1 1")));
}

TEST(PlyText, SkipsButDoesNotReadAfterTheEnd) {
    PlySample sample(AsciiFile("element f 1 property list int int l", "1 5 "));
    auto& data = sample.Data();
    data.Seek("f", "l");
    data.NextRecord();
    EXPECT_EQ(data.m_iCursor, 2);
    data.NextRecord();
    EXPECT_EQ(data.m_iCursor, 3);
    ExpectPlyError([&] { (void)data.GetInt(); }, "Unexpected end of data.", 5);
    ExpectPlyError([&] { (void)data.GetFloat(); }, "Unexpected end of data.", 5);
    Ints list;
    ExpectPlyError([&] { data.GetIntList(list); }, "Unexpected end of data.", 5);
    data.m_iCursor = 1;  // 5 members announced, none there
    ExpectPlyError([&] { data.GetIntList(list); }, "Unexpected end of data.", 5);
}

TEST(PlyText, IsReadAtAnyTokenInAnyOrder) {
    std::string text;
    Ints expected(1000);
    for (int i = 0; i < 1000; ++i) {
        expected[static_cast<std::size_t>(i)] = i * i;
        text += std::to_string(i * i) + std::string(static_cast<std::size_t>(1 + i % 100), i % 3 == 0 ? '\n' : ' ');
    }
    PlySample sample(AsciiFile("element v 1000 property int a", text));
    auto& data = sample.Data();
    data.Seek("v", "a");
    for (int i = 0; i < 5000; ++i) {
        data.m_iCursor = (static_cast<std::int64_t>(i) * 7919 + i / 3) % 1000;
        ASSERT_EQ(data.GetInt(), expected[static_cast<std::size_t>(data.m_iCursor)]);
    }
}

TEST(PlyText, ReportsTheOffsetOfABadTokenAnywhere) {
    for (int bad = 0; bad < 200; ++bad) {
        std::string text;
        std::int64_t offset = 0;
        for (int i = 0; i < 200; ++i) {
            text.append(static_cast<std::size_t>(1 + i * 7 % 90), i % 2 == 0 ? ' ' : '\t');
            if (i == bad) offset = static_cast<std::int64_t>(text.size()) + 1;  // after the header's line end
            text += i == bad ? "x7" : "12";
        }
        PlySample sample(AsciiFile("element v 200 property int a", text));
        ExpectPlyError([&] { AllInts(sample.Data(), "v", "a"); }, "Integer expected, but found this: x7", offset);
        sample.Data().m_iCursor = 199 - bad;  // from another position
        EXPECT_EQ(sample.Data().GetInt(), 12);
        sample.Data().m_iCursor = bad;
        ExpectPlyError([&] { (void)sample.Data().GetFloat(); }, "Float expected, but found this: x7", offset);
    }
}

}  // namespace
