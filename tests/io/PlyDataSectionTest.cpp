// What text and bytes have in common, and where they differ on purpose.
#include <gtest/gtest.h>

#include <algorithm>
#include <random>

#include "io/PlySectionSample.h"

namespace {
using Ints = std::vector<int>;
using Floats = std::vector<float>;
using Starts = std::vector<std::int64_t>;

/// Everything that ForEachInt hands out; checks that the index counts.
Ints AllInts(DataSection& data, std::string_view element, std::string_view property) {
    Ints values;
    const auto take = [](std::int64_t index, int value, void* user) {
        auto& list = *static_cast<Ints*>(user);
        EXPECT_EQ(index, static_cast<std::int64_t>(list.size()));
        list.push_back(value);
        return true;
    };
    data.ForEachInt(element, property, take, &values);
    return values;
}

Floats AllFloats(DataSection& data, std::string_view element, std::string_view property) {
    Floats values;
    const auto take = [](std::int64_t, float value, void* user) {
        static_cast<Floats*>(user)->push_back(value);
        return true;
    };
    data.ForEachFloat(element, property, take, &values);
    return values;
}

std::vector<Ints> AllIntLists(DataSection& data, std::string_view element, std::string_view property) {
    std::vector<Ints> values;
    const auto take = [](std::int64_t, const Ints& value, void* user) {
        static_cast<std::vector<Ints>*>(user)->push_back(value);
        return true;
    };
    data.ForEachIntList(element, property, take, &values);
    return values;
}

std::vector<Floats> AllFloatLists(DataSection& data, std::string_view element, std::string_view property) {
    std::vector<Floats> values;
    const auto take = [](std::int64_t, const Floats& value, void* user) {
        static_cast<std::vector<Floats>*>(user)->push_back(value);
        return true;
    };
    data.ForEachFloatList(element, property, take, &values);
    return values;
}

/// The same records as text and as bytes: something unknown before, between and behind, and an element without records.
constexpr char kBody[] =
    "element camera 1 property double f property list uchar short s\n"
    "element vertex 2 property float x property int n\n"
    "element none 0 property int a property list int int b\n"
    "element face 3 property list uchar int vertex_indices\n"
    "element tail 2 property uchar t";
constexpr char kText[] = "0.5 2 -7 8\n 1.5 10 \r\n\t-2.5 -20\n3 0 1 2\n4 5 6 7 8\n0\n200 7 surplus";
std::string Bytes() {
    const auto face = [](const Ints& members) {
        std::string bytes = Raw(static_cast<std::uint8_t>(members.size()));
        for (const int member : members) bytes += Raw(member);
        return bytes;
    };
    return Raw(0.5) + Raw(std::uint8_t{2}) + Raw(std::int16_t{-7}) + Raw(std::int16_t{8}) + Raw(1.5F) + Raw(10) +
           Raw(-2.5F) + Raw(-20) + face({0, 1, 2}) + face({5, 6, 7, 8}) + face({}) + Raw(std::uint8_t{200}) +
           Raw(std::uint8_t{7}) + "surplus";
}

class PlySections : public testing::TestWithParam<bool> {
protected:
    PlySections() : m_sample(GetParam() ? AsciiFile(kBody, kText) : BinaryFile(kBody, Bytes())) {}
    bool IsText() const { return GetParam(); }
    PlySample m_sample;
    DataSection& m_rData = m_sample.Data();
};

TEST_P(PlySections, KnowWhereElementsBegin) {
    EXPECT_EQ(m_rData.m_vElementStart, IsText() ? (Starts{0, 4, 8, 8, 18}) : (Starts{0, 13, 29, 29, 60}));
    EXPECT_EQ(m_rData.m_iEnd, IsText() ? 20 : 62);
    EXPECT_EQ(m_rData.m_pFile, &m_sample.File());
}

TEST_P(PlySections, GiveValuesByName) {
    EXPECT_EQ(AllFloats(m_rData, "vertex", "x"), (Floats{1.5F, -2.5F}));
    EXPECT_EQ(AllInts(m_rData, "vertex", "n"), (Ints{10, -20}));
    EXPECT_EQ(AllFloats(m_rData, "camera", "f"), Floats{0.5F});
    m_rData.Seek("camera", "s");
    Ints list;
    m_rData.GetIntList(list);
    EXPECT_EQ(list, (Ints{-7, 8}));
    EXPECT_EQ(AllIntLists(m_rData, "face", "vertex_indices"), (std::vector<Ints>{{0, 1, 2}, {5, 6, 7, 8}, {}}));
    EXPECT_EQ(AllInts(m_rData, "tail", "t"), (Ints{200, 7}));
    EXPECT_EQ(AllInts(m_rData, "none", "a"), Ints{});
    ExpectPlyError([&] { AllInts(m_rData, "nothing", "a"); }, "No such element: nothing", -1);
}

TEST_P(PlySections, SeekAnItemAndStepFromRecordToRecord) {
    m_rData.Seek("vertex", "n");
    EXPECT_EQ(m_rData.m_iCurrentElement, 1);
    EXPECT_EQ(m_rData.m_pElement, &m_sample.File().GetElement("vertex"));
    EXPECT_EQ(m_rData.m_iItemIndex, 1);
    EXPECT_EQ(m_rData.m_iCursor, IsText() ? 5 : 17);
    m_rData.NextRecord();
    EXPECT_EQ(m_rData.m_iItemIndex, 1);
    EXPECT_EQ(m_rData.m_iCursor, IsText() ? 7 : 25);
    EXPECT_EQ(m_rData.GetInt(), -20);
    EXPECT_EQ(m_rData.m_iCursor, IsText() ? 7 : 25);  // reading does not move it
}

TEST_P(PlySections, SeekBehindTheRecordForAMissingItem) {
    m_rData.Seek("camera", "z");
    EXPECT_EQ(m_rData.m_iCursor, IsText() ? 4 : 13);
    m_rData.Seek("vertex", "z");
    EXPECT_EQ(m_rData.m_iCursor, IsText() ? 6 : 21);
}

TEST_P(PlySections, StopWhenTheCallbackSaysSo) {
    Ints seen;
    const auto take = [](std::int64_t, int value, void* user) {
        static_cast<Ints*>(user)->push_back(value);
        return false;
    };
    m_rData.ForEachInt("vertex", "n", take, &seen);
    EXPECT_EQ(seen, Ints{10});
}

TEST_P(PlySections, WalkMixedElementsFromTheirFirstItem) {
    const char* const body = "element e 2 property uchar a property list uchar uchar b property uchar c";
    PlySample sample(IsText() ? AsciiFile(body, "1 2 8 9 3  4 0 5")
                              : BinaryFile(body, "\1\2\x08\x09\3\4" + std::string(1, '\0') + "\5"));
    EXPECT_EQ(AllInts(sample.Data(), "e", "a"), (Ints{1, 4}));
}

TEST_P(PlySections, ReadUCharLists) {
    const char* const body = "element e 1 property list uchar uint b";
    PlySample sample(IsText() ? AsciiFile(body, "2 258 -1")
                              : BinaryFile(body, Raw('\2') + Raw(std::uint32_t{258}) + Raw(std::uint32_t{0xffffffff})));
    sample.Data().Seek("e", "b");
    std::vector<unsigned char> list{1, 2, 3};
    sample.Data().GetUCharList(list);
    EXPECT_EQ(list, (std::vector<unsigned char>{2, 255}));
}

TEST_P(PlySections, AreNotMisledByWhatStandsBehindTheRecordsOfAnElement) {
    // the last step from m, and the first one in an element without records, ask for a count where x stands
    const char* const body =
        "element f 2 property list uchar uchar l property list uchar uchar m element none 0 property list uchar uchar "
        "l property uchar m element t 1 property float x";
    PlySample sample(IsText() ? AsciiFile(body, "1 5 1 6 0 2 7 8 .5")
                              : BinaryFile(body, "\1\5\1\6" + std::string(1, '\0') + "\2\7\x08" + Raw(0.5F)));
    EXPECT_EQ(AllIntLists(sample.Data(), "f", "m"), (std::vector<Ints>{{6}, {7, 8}}));
    EXPECT_EQ(AllInts(sample.Data(), "none", "m"), Ints{});
    EXPECT_EQ(AllFloats(sample.Data(), "t", "x"), Floats{0.5F});
}

TEST_P(PlySections, TakeANegativeCountAsAnEmptyList) {
    const char* const body = "element e 2 property list char int b";
    PlySample sample(IsText() ? AsciiFile(body, "-3 1 77") : BinaryFile(body, Raw('\xfd') + Raw('\1') + Raw(77)));
    EXPECT_EQ(AllIntLists(sample.Data(), "e", "b"), (std::vector<Ints>{{}, {77}}));
}

TEST_P(PlySections, HaveAStartForEveryElementWithoutData) {
    const char* const body =
        "element a 0 property int x element b 5 element c 0 property list int int l element d 2147483647";
    PlySample sample(IsText() ? AsciiFile(body, "") : BinaryFile(body, ""));
    EXPECT_EQ(sample.Data().m_vElementStart, (Starts{0, 0, 0, 0}));
    EXPECT_EQ(sample.Data().m_iEnd, 0);
    EXPECT_EQ(AllInts(sample.Data(), "d", "x"), Ints{});  // no items: nothing to walk, however many records
    EXPECT_NO_THROW(sample.Data().RequireRecords("d"));
    PlySample without(IsText() ? AsciiFile("", "1 2") : BinaryFile("", "1 2"));
    EXPECT_EQ(without.Data().m_iEnd, 0);
    EXPECT_TRUE(without.Data().m_vElementStart.empty());
}

TEST_P(PlySections, RefuseItemsOfNeitherKind) {
    class Odd : public Element::ElementSubItem {
        std::string ToString() const override { return "odd"; }
    };
    auto& element = const_cast<Element&>(m_sample.File().GetElement("tail"));
    element.m_vItems.push_back(std::make_unique<Odd>());
    ExpectPlyError([&] { m_rData.Scan(); }, "internal error (unknown property type)", -1);
    element.m_iCount = 0;
    EXPECT_NO_THROW(m_rData.Scan());  // without a record nobody looks
}

TEST_P(PlySections, ReadColumnsAsTheSlowWalkDoes) {
    const char* const body =
        "element p 3 property float x property uchar r property float y property float z property uchar g";
    std::string bytes;
    for (int i = 0; i < 3; ++i)
        bytes += Raw(0.1F * static_cast<float>(i)) + Raw(static_cast<std::uint8_t>(250 + i)) + Raw(2.5F) + Raw(-3.F) +
                 Raw(static_cast<std::uint8_t>(i));
    PlySample sample(IsText() ? AsciiFile(body, "0 250 2.5 -3 0\n0.1 251 2.5 -3 1\n0.2 252 2.5 -3 2")
                              : BinaryFile(body, bytes));
    struct Record {
        std::uint8_t g = 99, r = 99;
        float z = 99, x = 99;
    } records[3];
    const PlyColumn columns[] = {{"z", PlyColumn::kFloat, &records[0].z, sizeof(Record)},
                                 {"g", PlyColumn::kLowByte, &records[0].g, sizeof(Record)},
                                 {"x", PlyColumn::kFloat, &records[0].x, sizeof(Record)},
                                 {"r", PlyColumn::kLowByte, &records[0].r, sizeof(Record)}};
    sample.Data().ReadColumns("p", columns);
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(records[i].x,
                  IsText() ? std::strtof(("0." + std::to_string(i)).c_str(), nullptr) : 0.1F * static_cast<float>(i));
        EXPECT_EQ(records[i].z, -3);
        EXPECT_EQ(records[i].r, 250 + i);
        EXPECT_EQ(records[i].g, i);
    }
}

TEST_P(PlySections, ReadListsOnlyWhenAllHaveTheLength) {
    int ints[9] = {};
    EXPECT_FALSE(m_rData.ReadLists("face", "vertex_indices", 3, ints));
    EXPECT_FALSE(m_rData.ReadLists("face", "other", 3, ints));
    EXPECT_FALSE(m_rData.ReadLists("vertex", "n", 3, ints));
    EXPECT_FALSE(
        m_rData.ReadLists("camera", "s", 2, ints));  // the slow walk has its own idea of a list behind a property
    const char* const body =
        "element f 2 property list uchar int v property list int float t property list uchar short s";
    const std::string bytes = Raw('\3') + Raw(1) + Raw(2) + Raw(-3) + Raw(2) + Raw(0.5F) + Raw(.25F) + Raw('\1') +
                              Raw(std::int16_t{-9}) + Raw('\3') + Raw(4) + Raw(5) + Raw(6) + Raw(2) + Raw(-1.F) +
                              Raw(8.F) + Raw('\1') + Raw(std::int16_t{10});
    PlySample sample(IsText() ? AsciiFile(body, "3 1 2 -3 2 .5 2.5e-1 1 -9\n3 4 5 6 2 -1 +8 1 10")
                              : BinaryFile(body, bytes));
    ASSERT_TRUE(sample.Data().ReadLists("f", "v", 3, ints));
    EXPECT_EQ((Ints{ints, ints + 6}), (Ints{1, 2, -3, 4, 5, 6}));
    float floats[4] = {};
    ASSERT_TRUE(sample.Data().ReadLists("f", "t", 2, floats));
    EXPECT_EQ((Floats{floats, floats + 4}), (Floats{0.5F, 0.25F, -1, 8}));
    ASSERT_TRUE(sample.Data().ReadLists("f", "s", 1, ints));
    EXPECT_EQ((Ints{ints, ints + 2}), (Ints{-9, 10}));
    EXPECT_FALSE(sample.Data().ReadLists("f", "v", 2, ints));
}
INSTANTIATE_TEST_SUITE_P(Ply, PlySections, testing::Bool(),
                         [](const auto& isText) { return std::string(isText.param ? "Text" : "Binary"); });

TEST(PlyText, MixedElementsAreLeftInDisorderFromAnotherItem) {
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

TEST(PlyText, ADisorderedWalkWritesNothingBehindTheRecords) {
    // from b each step takes two tokens of the long list in the third record
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

TEST(PlyBinary, RefusesToWalkAMixedElementFromAnotherItem) {
    PlySample sample(BinaryFile("element e 2 property uchar a property list uchar uchar b", "\1\1\2\3\1\4"));
    sample.Data().Seek("e", "b");
    ExpectPlyError([&] { sample.Data().NextRecord(); },
                   "Lists and properties are mixed in element e, and only its first item can be walked.", -1);
}

TEST(PlyBinary, ForgetsTheElementBeforeWhenSeekingFails) {
    PlySample sample(BinaryFile(
        "element v 1 property uchar a property uchar b element f 0 property list float int l property int x", "\1\2"));
    sample.Data().Seek("v", "b");
    ExpectPlyError([&] { sample.Data().Seek("f", "x"); }, "not an integer: float", -1);
    EXPECT_EQ(sample.Data().m_iItemIndex, 0);
    EXPECT_EQ(sample.Data().m_iCursor, 2);
    ExpectPlyError([&] { (void)sample.Data().GetInt(); }, "not an integer: none", -1);
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

TEST(PlyText, ACountThatIsNoIntegerFailsWhenTheFileIsRead) {
    ExpectPlyError([] { PlySample(AsciiFile("element f 2 property list int int l", "1 5 many 1")); },
                   "Integer expected, but found this: many", 5);
}

TEST(PlyText, TheLargestCountOfAListIsMoreThanThereIs) {
    const std::string body = "element f 1 property list int int l";
    ExpectPlyError([&] { PlySample(AsciiFile(body, "2147483647 1")); }, "Unexpected end of data.", 13);
    PlySample sample(AsciiFile(body, "1 2147483647"));
    sample.Data().Seek("f", "l");
    std::int64_t cursor = 1;
    sample.Data().SkipList(sample.File().GetElement("f"), 0, cursor);
    EXPECT_EQ(cursor, 2147483649);
}

TEST(PlyText, ListsWhoseCountsNeedTheSlowWalkAreScannedOneByOne) {
    PlySample sample(AsciiFile("element f 3 property list int int l", "\v1 5 2 6 7 3 1 2 3"));
    EXPECT_EQ(sample.Data().m_iEnd, 9);
    EXPECT_EQ(AllIntLists(sample.Data(), "f", "l"), (std::vector<Ints>{{5}, {6, 7}, {1, 2, 3}}));
}

TEST(PlyText, PrefixesThatParseAreTaken) {
    PlySample sample(AsciiFile("element v 2 property int a", "7.9 0x10"));
    EXPECT_EQ(AllInts(sample.Data(), "v", "a"), (Ints{7, 0}));
    EXPECT_EQ(AllFloats(sample.Data(), "v", "a"), (Floats{7.9F, 0}));
}

TEST(PlyText, OtherWhiteSpaceBelongsToItsToken) {
    PlySample sample(AsciiFile("element v 3 property int a", "\v1 2\f3 \v \f4"));
    EXPECT_EQ(sample.Data().m_iEnd, 3);
    ExpectPlyError([&] { AllInts(sample.Data(), "v", "a"); }, "Integer expected, but found this: \v", 8);
    float values[3] = {};
    const PlyColumn column{"a", PlyColumn::kFloat, values, sizeof(float)};
    ExpectPlyError([&] { sample.Data().ReadColumns("v", {&column, 1}); }, "Float expected, but found this: \v", 8);
    EXPECT_EQ(values[1], 2);
}

TEST(PlyText, FewerTokensThanTheGrammarAsksForAreRefused) {
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

TEST(PlyText, SkipsBehindTheEndButReadsNothingThere) {
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

TEST(PlyText, TellsTheOffsetOfABadTokenAnywhere) {
    for (int bad = 0; bad < 200; ++bad) {
        std::string text;
        std::int64_t offset = 0;
        for (int i = 0; i < 200; ++i) {
            text.append(static_cast<std::size_t>(1 + i * 7 % 90), i % 2 == 0 ? ' ' : '\t');
            if (i == bad) offset = static_cast<std::int64_t>(text.size()) + 1;  // behind the header's line end
            text += i == bad ? "x7" : "12";
        }
        PlySample sample(AsciiFile("element v 200 property int a", text));
        ExpectPlyError([&] { AllInts(sample.Data(), "v", "a"); }, "Integer expected, but found this: x7", offset);
        sample.Data().m_iCursor = 199 - bad;  // coming from elsewhere
        EXPECT_EQ(sample.Data().GetInt(), 12);
        sample.Data().m_iCursor = bad;
        ExpectPlyError([&] { (void)sample.Data().GetFloat(); }, "Float expected, but found this: x7", offset);
    }
}

TEST(PlyBinary, ReadsEveryTypeAtAnyAlignment) {
    for (int shift = 0; shift < 8; ++shift) {
        const std::string pad(static_cast<std::size_t>(shift), 'p');
        const std::string body =
            "element pad " + std::to_string(shift) +
            " property uchar p element v 1 property float32 a property uint8 b property uint32 c property char d "
            "property uchar e property short f property ushort g property int h property uint i property float j "
            "property double k";
        PlySample sample(BinaryFile(body, pad + Raw(1.5F) + Raw('\xff') + Raw(0x80000001U) + Raw('\xff') + Raw('\xfe') +
                                              Raw(std::int16_t{-2}) + Raw(std::uint16_t{65534}) + Raw(-3) + Raw(7U) +
                                              Raw(-2.5F) + Raw(0.1)));
        auto& data = sample.Data();
        EXPECT_EQ(AllInts(data, "v", "b"), Ints{255});
        EXPECT_EQ(AllInts(data, "v", "c"), Ints{static_cast<int>(0x80000001U)});
        EXPECT_EQ(AllInts(data, "v", "d"), Ints{-1});
        EXPECT_EQ(AllInts(data, "v", "e"), Ints{254});
        EXPECT_EQ(AllInts(data, "v", "f"), Ints{-2});
        EXPECT_EQ(AllInts(data, "v", "g"), Ints{65534});
        EXPECT_EQ(AllInts(data, "v", "h"), Ints{-3});
        EXPECT_EQ(AllInts(data, "v", "i"), Ints{7});
        EXPECT_EQ(AllFloats(data, "v", "a"), Floats{1.5F});
        EXPECT_EQ(AllFloats(data, "v", "j"), Floats{-2.5F});
        EXPECT_EQ(AllFloats(data, "v", "k"), Floats{0.1F});
        EXPECT_EQ(static_cast<BinaryDataSection&>(data).m_iReadOffset, data.m_iEnd);
    }
}

TEST(PlyBinary, RefusesTypesOfTheOtherClass) {
    const char* const types[] = {"float32", "uint8", "uint32", "char",  "uchar", "short",
                                 "ushort",  "int",   "uint",   "float", "double"};
    for (const std::string type : types) {
        const bool floating = type == "float32" || type == "float" || type == "double";
        PlySample sample(
            BinaryFile("element v 1 property " + type + " a element f 1 property list uchar " + type + " l",
                       std::string(8, '\0') + "\1" + std::string(8, '\0')));
        auto& data = sample.Data();
        if (floating) {
            EXPECT_NO_THROW(AllFloats(data, "v", "a"));
            ExpectPlyError([&] { AllInts(data, "v", "a"); }, "not an integer: " + type, -1);
        } else {
            EXPECT_NO_THROW(AllInts(data, "v", "a"));
            ExpectPlyError([&] { AllFloats(data, "v", "a"); }, "not a floating-point: " + type, -1);
        }
    }
}

TEST(PlyBinary, RefusesMembersOfTheOtherClass) {
    PlySample sample(BinaryFile("element f 1 property list uchar float l element g 1 property list uchar int l",
                                Raw('\1') + Raw(1.F) + Raw('\1') + Raw(1)));
    ExpectPlyError([&] { AllIntLists(sample.Data(), "f", "l"); }, "not an integer: float", -1);
    ExpectPlyError([&] { AllFloatLists(sample.Data(), "g", "l"); }, "not a floating-point: int", -1);
    EXPECT_EQ(AllFloatLists(sample.Data(), "f", "l"), std::vector<Floats>{{1}});
    EXPECT_EQ(AllIntLists(sample.Data(), "g", "l"), std::vector<Ints>{{1}});
    ExpectPlyError([&] { AllInts(sample.Data(), "g", "l"); }, "not an integer: none", -1);
    ExpectPlyError([&] { AllFloats(sample.Data(), "g", "l"); }, "not a floating-point: none", -1);
}

TEST(PlyBinary, RefusesAListWhereAPropertyIs) {
    PlySample sample(BinaryFile("element v 1 property int a", Raw(3)));
    ExpectPlyError([&] { AllIntLists(sample.Data(), "v", "a"); }, "not a list: a", -1);
}

TEST(PlyBinary, AcceptsACountOfFloatsUntilItIsRead) {
    EXPECT_NO_THROW(PlySample(BinaryFile("element f 0 property list float int l", "")));
    ExpectPlyError([] { PlySample(BinaryFile("element f 1 property list float int l", Raw(1.F) + Raw(1))); },
                   "not an integer: float", -1);
}

TEST(PlyBinary, SkipsBehindTheEndButReadsNothingThere) {
    PlySample sample(
        BinaryFile("element v 3 property int a element f 2 property list int short l", Raw(1) + Raw(2) + "\3\4"));
    auto& data = sample.Data();
    EXPECT_EQ(data.m_vElementStart, (Starts{0, 12}));
    EXPECT_EQ(data.m_iEnd, 20);  // behind the end all lists are empty
    ExpectPlyError([&] { AllInts(data, "v", "a"); }, "Unexpected end of data.", 8);
    ExpectPlyError([&] { AllIntLists(data, "f", "l"); }, "Unexpected end of data.", 12);
    data.Seek("f", "l");
    data.NextRecord();
    EXPECT_EQ(data.m_iCursor, 16);
    ExpectPlyError([&] { data.RequireRecords("v"); }, "Unexpected end of data.", 10);
    ExpectPlyError([&] { data.RequireRecords("f"); }, "Unexpected end of data.", 10);
}

TEST(PlyBinary, ReadsNoMemberBehindTheEnd) {
    PlySample sample(BinaryFile("element f 1 property list uchar int l", Raw('\3') + Raw(1) + Raw(2) + "\1\2\3"));
    ExpectPlyError([&] { AllIntLists(sample.Data(), "f", "l"); }, "Unexpected end of data.", 9);
    int values[3] = {};
    EXPECT_FALSE(sample.Data().ReadLists("f", "l", 3, values));
    PlySample large(BinaryFile("element f 1 property list uint double l", Raw(0xffffffffU) + "x"));
    ExpectPlyError([&] { AllFloatLists(large.Data(), "f", "l"); }, "Unexpected end of data.", 4);
}

TEST(PlyBinary, CountsBytesBehindTheEndAsZeroWhenItSkips) {
    PlySample sample(BinaryFile("element f 1 property list int uchar l", "\7\1"));  // two bytes of a count of 263
    EXPECT_EQ(sample.Data().m_iEnd, 4 + 263);
    ExpectPlyError([&] { AllIntLists(sample.Data(), "f", "l"); }, "Unexpected end of data.", 0);
}

TEST(PlyCounts, AreScannedInNoTimeWhateverTheCounts) {
    const std::string lists =
        "element a 2147483647 property list uchar int l property list uchar int m element b 2147483647 property double "
        "d ";
    std::string body;
    for (int i = 0; i < 2000; ++i) body += lists;
    PlySample sample(BinaryFile(body, "\1abcd"));
    EXPECT_EQ(sample.Data().m_vElementStart[1], 5 + 1 + 2147483646LL * 2);
    EXPECT_EQ(sample.Data().m_iEnd, 2000 * (2147483647LL * 2 + 2147483647LL * 8) + 4);
    ExpectPlyError([&] { sample.Data().RequireRecords("a"); }, "Unexpected end of data.", 5);
    ExpectPlyError([&] { PlySample(AsciiFile(body, "1 5")); }, "Unexpected end of data.", 4);
}

TEST(PlyBinary, ScansRecordsOfTheSameAndOfOtherLengths) {
    // runs of equal lengths, which are stepped over at once, with others between
    std::string bytes;
    std::vector<Ints> first;
    std::vector<Ints> second;
    std::mt19937 random(5);
    for (int run = 0; run < 200; ++run) {
        const int n = static_cast<int>(random() % 5);
        const int m = static_cast<int>(random() % 3);
        for (int i = static_cast<int>(random() % 6); i >= 0; --i) {
            first.emplace_back();
            second.emplace_back();
            bytes += Raw(static_cast<std::uint8_t>(n));
            for (int k = 0; k < n; ++k) bytes += Raw(first.back().emplace_back(static_cast<int>(random())));
            bytes += Raw(static_cast<std::int16_t>(m));
            for (int k = 0; k < m; ++k) bytes += Raw(static_cast<std::int8_t>(second.back().emplace_back(k)));
        }
    }
    const std::string body = "element f " + std::to_string(first.size()) +
                             " property list uchar int l property list short char m "
                             "element end 1 property uchar e";
    PlySample sample(BinaryFile(body, bytes + "E"));
    EXPECT_EQ(sample.Data().m_vElementStart[1], static_cast<std::int64_t>(bytes.size()));
    EXPECT_EQ(AllIntLists(sample.Data(), "f", "l"), first);
    EXPECT_EQ(AllIntLists(sample.Data(), "f", "m"), second);
    EXPECT_EQ(AllInts(sample.Data(), "end", "e"), Ints{'E'});
}

TEST(PlyBinary, OffersPropertiesWhereTheyLie) {
    PlySample sample(BinaryFile("element v 3 property uchar a property float b property short c",
                                Raw('\1') + Raw(1.5F) + Raw(std::int16_t{7}) + Raw('\2') + Raw(2.5F) +
                                    Raw(std::int16_t{8}) + Raw('\3') + Raw(3.5F) + Raw(std::int16_t{9})));
    auto& data = sample.Data();
    const PlyArrayView view = data.GetArrayView("v", "b");
    EXPECT_EQ(view.m_pFirst, data.m_sData.data() + 1);
    EXPECT_EQ(view.m_iCount, 3);
    EXPECT_EQ(view.m_iStride, 7);
    EXPECT_EQ(view.m_iBytes, 20);
    EXPECT_EQ(data.GetDataEnd(), data.m_sData.data() + 21);
    EXPECT_NO_THROW(view.RequireWidth(6));
    ExpectPlyError([&] { view.RequireWidth(7); }, "Unexpected end of data.", 15);
    ExpectPlyError([&] { (void)data.GetArrayView("v", "d"); }, "No such property: d", -1);
    ExpectPlyError([&] { (void)data.GetArrayView("w", "b"); }, "No such element: w", -1);
}

TEST(PlyBinary, OffersNoArrayWhereRecordsVaryOrLack) {
    PlySample sample(
        BinaryFile("element f 1 property uchar a property list uchar uchar l element v 3 property short c element w 0 "
                   "property int i",
                   "\1" + std::string(6, '\0')));
    ExpectPlyError([&] { (void)sample.Data().GetArrayView("f", "a"); },
                   "No array-style access to elements that contain list properties.", -1);
    ExpectPlyError([&] { (void)sample.Data().GetArrayView("v", "c"); }, "Unexpected end of data.", 7);
    const PlyArrayView empty = sample.Data().GetArrayView("w", "i");  // its place lies behind the data
    EXPECT_EQ(empty.m_iCount, 0);
    EXPECT_EQ(empty.m_pFirst, sample.Data().m_sData.data());
    EXPECT_NO_THROW(empty.RequireWidth(100));
}

struct FaceItems {
    const char* items;
    bool isBlock;
};
TEST(PlyBinary, OffersABlockOfFacesWithByteCountsAndWideMembers) {
    const FaceItems rows[] = {{"property list uchar int i", true},
                              {"property list char int i", true},
                              {"property list uchar uint i", true},
                              {"property list char uint32 i", true},
                              {"property list uint8 int i", false},
                              {"property list short int i", false},
                              {"property list uchar short i", false},
                              {"property list uchar float i", false},
                              {"property int i", false},
                              {"", false},
                              {"property list uchar int i property uchar b", false},
                              {"property list uchar int i property list uchar int j", false}};
    for (const FaceItems& row : rows) {
        SCOPED_TRACE(row.items);
        PlySample sample(BinaryFile("element pad 1 property uchar p element face 2 " + std::string(row.items),
                                    std::string(100, '\0')));
        const char* index = nullptr;
        int count = 99;
        EXPECT_EQ(sample.Data().GetFaceBlock("face", index, count), row.isBlock);
        EXPECT_EQ(index, row.isBlock ? sample.Data().m_sData.data() + 1 : nullptr);
        EXPECT_EQ(count, row.isBlock ? 2 : 99);
    }
    PlySample text(AsciiFile("element face 1 property list uchar int i", "0"));
    const char* index = nullptr;
    int count = 0;
    EXPECT_FALSE(text.Data().GetFaceBlock("face", index, count));
    PlySample cut(BinaryFile("element face 2 property list uchar int i", Raw('\1') + Raw(1)));
    ExpectPlyError([&] { (void)cut.Data().GetFaceBlock("face", index, count); }, "Unexpected end of data.", 5);
}
}  // namespace
