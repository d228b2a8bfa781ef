// What text and binary data have in common.
#include <gtest/gtest.h>

#include "io/PlySectionSample.h"

namespace {

/// The same records as text and as bytes, with unknown elements before, between and after them and one without records.
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

TEST_P(PlySections, SeekToTheEndOfTheRecordForAMissingItem) {
    m_rData.Seek("camera", "z");
    EXPECT_EQ(m_rData.m_iCursor, IsText() ? 4 : 13);
    m_rData.Seek("vertex", "z");
    EXPECT_EQ(m_rData.m_iCursor, IsText() ? 6 : 21);
}

TEST_P(PlySections, StopWhenTheCallbackReturnsFalse) {
    Ints seen;
    const auto append = [](std::int64_t, int value, void* user) {
        static_cast<Ints*>(user)->push_back(value);
        return false;
    };
    m_rData.ForEachInt("vertex", "n", append, &seen);
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

TEST_P(PlySections, AreNotMisledByTheDataAfterTheRecordsOfAnElement) {
    // the last step from m, and the first one in an element without records, read a count where x is
    const char* const body =
        "element f 2 property list uchar uchar l property list uchar uchar m element none 0 property list uchar uchar "
        "l property uchar m element t 1 property float x";
    PlySample sample(IsText() ? AsciiFile(body, "1 5 1 6 0 2 7 8 .5")
                              : BinaryFile(body, "\1\5\1\6" + std::string(1, '\0') + "\2\7\x08" + Raw(0.5F)));
    EXPECT_EQ(AllIntLists(sample.Data(), "f", "m"), (std::vector<Ints>{{6}, {7, 8}}));
    EXPECT_EQ(AllInts(sample.Data(), "none", "m"), Ints{});
    EXPECT_EQ(AllFloats(sample.Data(), "t", "x"), Floats{0.5F});
}

TEST_P(PlySections, ReadANegativeCountAsAnEmptyList) {
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
    EXPECT_EQ(AllInts(sample.Data(), "d", "x"), Ints{});  // no items: no values, for any number of records
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
    EXPECT_NO_THROW(m_rData.Scan());  // without records the items are not looked at
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
        m_rData.ReadLists("camera", "s", 2, ints));  // the slow walk gives another result for a list after a property
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

TEST(PlyCounts, AreScannedInTimeThatDoesNotDependOnThem) {
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

}  // namespace
