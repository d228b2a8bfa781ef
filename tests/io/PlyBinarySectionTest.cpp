// Data of binary files: types, views and blocks.
#include <gtest/gtest.h>

#include <random>

#include "io/PlySectionSample.h"

namespace {

TEST(PlyBinary, RefusesToWalkAMixedElementFromAnotherItem) {
    PlySample sample(BinaryFile("element e 2 property uchar a property list uchar uchar b", "\1\1\2\3\1\4"));
    sample.Data().Seek("e", "b");
    ExpectPlyError([&] { sample.Data().NextRecord(); },
                   "Lists and properties are mixed in element e, and only its first item can be walked.", -1);
}

TEST(PlyBinary, HasNoItemOfTheElementBeforeWhenSeekingFails) {
    PlySample sample(BinaryFile(
        "element v 1 property uchar a property uchar b element f 0 property list float int l property int x", "\1\2"));
    sample.Data().Seek("v", "b");
    ExpectPlyError([&] { sample.Data().Seek("f", "x"); }, "not an integer: float", -1);
    EXPECT_EQ(sample.Data().m_iItemIndex, 0);
    EXPECT_EQ(sample.Data().m_iCursor, 2);
    ExpectPlyError([&] { (void)sample.Data().GetInt(); }, "not an integer: none", -1);
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

TEST(PlyBinary, SkipsButDoesNotReadAfterTheEnd) {
    PlySample sample(
        BinaryFile("element v 3 property int a element f 2 property list int short l", Raw(1) + Raw(2) + "\3\4"));
    auto& data = sample.Data();
    EXPECT_EQ(data.m_vElementStart, (Starts{0, 12}));
    EXPECT_EQ(data.m_iEnd, 20);  // after the end all lists are empty
    ExpectPlyError([&] { AllInts(data, "v", "a"); }, "Unexpected end of data.", 8);
    ExpectPlyError([&] { AllIntLists(data, "f", "l"); }, "Unexpected end of data.", 12);
    data.Seek("f", "l");
    data.NextRecord();
    EXPECT_EQ(data.m_iCursor, 16);
    ExpectPlyError([&] { data.RequireRecords("v"); }, "Unexpected end of data.", 10);
    ExpectPlyError([&] { data.RequireRecords("f"); }, "Unexpected end of data.", 10);
}

TEST(PlyBinary, ReadsNoListMemberAfterTheEnd) {
    PlySample sample(BinaryFile("element f 1 property list uchar int l", Raw('\3') + Raw(1) + Raw(2) + "\1\2\3"));
    ExpectPlyError([&] { AllIntLists(sample.Data(), "f", "l"); }, "Unexpected end of data.", 9);
    int values[3] = {};
    EXPECT_FALSE(sample.Data().ReadLists("f", "l", 3, values));
    PlySample large(BinaryFile("element f 1 property list uint double l", Raw(0xffffffffU) + "x"));
    ExpectPlyError([&] { AllFloatLists(large.Data(), "f", "l"); }, "Unexpected end of data.", 4);
}

TEST(PlyBinary, SkipsListsAfterTheEndAsEmpty) {
    PlySample sample(BinaryFile("element f 1 property list int uchar l", "\7\1"));  // two bytes of a count of 263
    EXPECT_EQ(sample.Data().m_iEnd, 4 + 263);
    ExpectPlyError([&] { AllIntLists(sample.Data(), "f", "l"); }, "Unexpected end of data.", 0);
}

TEST(PlyBinary, ScansRecordsOfTheSameAndOfOtherLengths) {
    // runs of records of equal size, which are skipped by comparison, and others between them
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

TEST(PlyBinary, OffersPropertiesInPlace) {
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

TEST(PlyBinary, OffersNoArrayViewOfListsOrMissingRecords) {
    PlySample sample(
        BinaryFile("element f 1 property uchar a property list uchar uchar l element v 3 property short c element w 0 "
                   "property int i",
                   "\1" + std::string(6, '\0')));
    ExpectPlyError([&] { (void)sample.Data().GetArrayView("f", "a"); },
                   "No array-style access to elements that contain list properties.", -1);
    ExpectPlyError([&] { (void)sample.Data().GetArrayView("v", "c"); }, "Unexpected end of data.", 7);
    const PlyArrayView empty = sample.Data().GetArrayView("w", "i");  // its position is after the data
    EXPECT_EQ(empty.m_iCount, 0);
    EXPECT_EQ(empty.m_pFirst, sample.Data().m_sData.data());
    EXPECT_NO_THROW(empty.RequireWidth(100));
}

struct FaceItems {
    const char* items;
    bool isBlock;
};
TEST(PlyBinary, OffersFacesWithByteCountsAnd32BitMembersAsABlock) {
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
