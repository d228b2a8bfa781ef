// The pcm format: a measurement that is written and read is the same to the bit, the file is small, and its layout is
// the documented one.
#include "MSRDLL/PcmFile.h"

#include <gmock/gmock.h>

#include <cmath>
#include <limits>
#include <tuple>

#include "libs/PcmSample.h"

using namespace MsrStorage;

namespace {

std::string Trafo() {
    std::string bytes;
    for (int i = 0; i < 16; ++i) bytes += Packed(static_cast<float>(i));
    return bytes;
}

/// Two pixels: the first is covered, the second a hole.
std::vector<RawSection> TwoPixels() {
    return {{"TRAF", 0, 1, Trafo()},
            {"COVR", 0, 1, Packed(std::uint8_t{0b01})},
            {"XYZ ", 2, 1, Packed(-1.0f, -2.0f, -3.0f, 1.5f, 2.5f, 3.5f)},
            {"CONF", 0, 1, Packed(0.25f, 0.75f)},
            {"CLAS", 1, 1, Packed(std::uint8_t{239})}};
}

}  // namespace

TEST(PcmFile, ReadsAFileThatWasAssembledByHand) {
    auto sections = TwoPixels();
    sections.push_back({"COLR", 2, 0, Packed(std::uint32_t{0xFF000000}, std::uint32_t{0xFF102030})});
    const PcmMeasurement got = ReadPcm(Assemble({}, sections));
    EXPECT_EQ(got.m_iWidth, 2);
    EXPECT_EQ(got.m_iHeight, 1);
    EXPECT_THAT(std::vector<float>(got.m_pPoints.get(), got.m_pPoints.get() + 6),
                testing::ElementsAre(1.5f, 2.5f, 3.5f, -1.0f, -2.0f, -3.0f));
    EXPECT_EQ(got.m_pConfidence[0], 0.25f);
    EXPECT_EQ(got.m_pConfidence[1], 0.75f);
    EXPECT_EQ(got.m_pClassification[0], 239);
    EXPECT_EQ(got.m_pClassification[1], 239);
    ASSERT_TRUE(got.m_pColors);
    EXPECT_EQ(got.m_pColors[0], 0xFF102030u);
    EXPECT_EQ(got.m_pColors[1], 0xFF000000u);
    for (std::size_t i = 0; i < 16; ++i) EXPECT_EQ(got.m_fTrafo[i], static_cast<float>(i));
}

TEST(PcmFile, IsWrittenInTheDocumentedLayout) {
    PcmSample sample(1, 2);
    sample.points = {1, 2, 3, 4, 5, 6};
    sample.confidence = {0.5f, 0.25f};
    sample.classification = {7, 7};
    for (std::size_t i = 0; i < 16; ++i) sample.trafo[i] = static_cast<float>(i);
    const auto expected =
        Assemble({.width = 1, .height = 2}, {{"TRAF", 0, 1, Trafo()},
                                             {"XYZ ", 0, 1, Packed(1.0f, 2.0f, 3.0f, 4.0f, 5.0f, 6.0f)},
                                             {"CONF", 0, 1, Packed(0.5f, 0.25f)},
                                             {"CLAS", 1, 1, Packed(std::uint8_t{7})}});
    EXPECT_EQ(WritePcm(sample.View()), expected);
}

TEST(PcmFile, KeepsEveryBitOfNansZerosAndDenormals) {
    PcmSample sample(4, 1);
    sample.SetPoint(0, {0x7F800001, 0xFFC00ABC, 0x7FFFFFFF});  // signalling and quiet NaNs with payloads
    sample.SetPoint(1, {0x80000000, 0x00000001, 0x807FFFFF});  // negative zero, denormals
    sample.SetPoint(2, {0x7F800000, 0xFF800000, 0x7F7FFFFF});  // infinities, the largest number
    sample.confidence = {NAN, -0.0f, std::numeric_limits<float>::denorm_min(), -INFINITY};
    sample.classification = {0, 239, 240, 255};
    sample.trafo[5] = NAN;
    ExpectSame(ReadPcm(WritePcm(sample.View())), sample);
}

using Shape = std::tuple<int, int, double, bool>;
class PcmFileOfRandomBits : public testing::TestWithParam<Shape> {};

TEST_P(PcmFileOfRandomBits, IsReadToTheBit) {
    const auto [width, height, holes, withColors] = GetParam();
    const PcmSample sample = RandomSample(width, height, holes, withColors, 1);
    ExpectSame(ReadPcm(WritePcm(sample.View())), sample);
}

static std::string ShapeName(const testing::TestParamInfo<Shape>& row) {
    const auto [width, height, holes, withColors] = row.param;
    return "W" + std::to_string(width) + "H" + std::to_string(height) + "Holes" +
           std::to_string(static_cast<int>(holes * 100)) + (withColors ? "Colors" : "");
}

// Sizes around the 64 pixels of a word of the coverage, and more than one block of 192 KiB.
INSTANTIATE_TEST_SUITE_P(Shapes, PcmFileOfRandomBits,
                         testing::Combine(testing::Values(1, 63, 64, 65, 300), testing::Values(1, 3, 128),
                                          testing::Values(0.0, 0.02, 0.3, 0.6, 0.97, 1.0), testing::Bool()),
                         ShapeName);

TEST(PcmFile, WithHolesInLongRunsIsReadToTheBit) {
    PcmSample sample = RandomSample(640, 200, 0, true, 3);
    for (std::size_t i = 0; i < sample.Pixels(); ++i) {
        if ((i / 1000) % 3 != 1) continue;
        sample.SetPoint(i, {0, 0, 0});
        sample.confidence[i] = 0;
        sample.classification[i] = 255;
        sample.colors[i] = 0xFF000000;
    }
    ExpectSame(ReadPcm(WritePcm(sample.View())), sample);
}

TEST(PcmFile, StoresTheValueOfHolesOnce) {
    PcmSample sample = RandomSample(100, 100, 0, false, 5);
    for (std::size_t i = 0; i < 4000; ++i) {
        sample.SetPoint(i, {0, 0, 0});
        sample.confidence[i] = 0;
        sample.classification[i] = 240;
    }
    // Header with five sections, transform, coverage, then for 6,000 pixels and one hole 12 + 4 + 1 bytes each.
    EXPECT_EQ(WritePcm(sample.View()).size(), (32 + 5 * 24 + 8) + 64 + 1250 + 6001 * 17u);
}

TEST(PcmFile, KeepsTheClassOfAHoleThatDiffersFromTheOthers) {
    PcmSample sample = RandomSample(100, 100, 0.5, true, 5);
    for (std::size_t i = 0; i < sample.Pixels(); i += 3) sample.classification[i] = 250;
    ExpectSame(ReadPcm(WritePcm(sample.View())), sample);
}

TEST(PcmFile, OfAnEmptySceneIsReadAgain) {
    const PcmSample sample(1000, 1000);  // all zero: the smallest encoding would be out of proportion to the grid
    const auto bytes = WritePcm(sample.View());
    EXPECT_GE(bytes.size() * kPcmMaxExpansion, 1000 * 1000 * 17u);
    ExpectSame(ReadPcm(bytes), sample);
}

TEST(PcmFile, AcceptsTheLongestSidesAndNoLongerOnes) {
    PcmSample longest(32767, 1);
    ExpectSame(ReadPcm(WritePcm(longest.View())), longest);
    PcmView view = longest.View();
    view.m_iWidth = 32768;
    EXPECT_THROW((void)WritePcm(view), PcmError);
    view.m_iWidth = 0;
    EXPECT_THROW((void)WritePcm(view), PcmError);
    view.m_iWidth = -1;
    EXPECT_THROW((void)WritePcm(view), PcmError);
}

TEST(PcmFile, IsNotWrittenFromAViewWithoutArrays) {
    EXPECT_THROW((void)WritePcm(ViewOf(PcmMeasurement{})), PcmError);
    PcmSample sample(1, 1);
    PcmView view = sample.View();
    view.m_pConfidence = nullptr;
    EXPECT_THROW((void)WritePcm(view), PcmError);
}

TEST(PcmFile, KeepsSectionsOfLaterVersions) {
    auto sections = TwoPixels();
    sections.insert(sections.begin() + 1, {"note", 77, 0x8000, "somebody's remark"});
    sections.push_back({"note", 1, 0, ""});
    const PcmMeasurement read = ReadPcm(Assemble({}, sections));
    const PcmMeasurement again = ReadPcm(WritePcm(ViewOf(read)));
    ASSERT_EQ(again.m_vForeign.size(), 2u);
    const PcmForeignSection& note = again.m_vForeign[0];
    EXPECT_EQ(note.m_uId, 0x65746F6Eu);  // "note", first character in the lowest byte
    EXPECT_EQ(note.m_uEncoding, 77);
    EXPECT_EQ(note.m_uFlags, 0x8000);
    EXPECT_EQ(std::memcmp(note.m_vBytes.data(), "somebody's remark", 17), 0);
    EXPECT_EQ(note.m_vBytes.size(), 17u);
    EXPECT_EQ(again.m_vForeign[1].m_uEncoding, 1);
    EXPECT_TRUE(again.m_vForeign[1].m_vBytes.empty());
}

TEST(PcmFile, IsNotWrittenWithAForeignSectionThatReadersRefuse) {
    PcmSample sample(2, 2);
    sample.foreign.push_back({0x464E4F43, 0, 0, {}});  // "CONF"
    EXPECT_THROW((void)WritePcm(sample.View()), PcmError);
    sample.foreign[0] = {0x65746F6E, 0, 1, {}};  // flagged as needed: readers of this version would refuse the file
    EXPECT_THROW((void)WritePcm(sample.View()), PcmError);
}

TEST(PcmFile, IsNotWrittenWithMoreSectionsThanReadersAccept) {
    PcmSample sample(2, 2);
    for (std::uint32_t i = 0; i < 65; ++i) sample.foreign.push_back({0x61000000 + i, 0, 0, {}});
    EXPECT_THROW((void)WritePcm(sample.View()), PcmError);
}
