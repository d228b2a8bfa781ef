// From a pcm file to arrays in the units of the scene.
#include "io/MeasurementFile.h"

#include <gmock/gmock.h>

#include <cmath>

#include "KV_ScenePane/PathText.h"
#include "MSRDLL/Msr.h"
#include "MSRDLL/PcmFile.h"
#include "support/ScratchFolder.h"

using KV_ScenePane::WidePath;
using testing::Each;
using testing::ElementsAre;

namespace {

class MeasurementFile : public testing::Test {
protected:
    MeasurementFile() {
        for (std::size_t i = 0; i < 16; ++i) trafo[i] = static_cast<float>(i + 1);
    }
    void Write(bool withColors = false) {
        MsrStorage::WritePcmFile(file, {.m_iWidth = 3,
                                        .m_iHeight = 2,
                                        .m_pPoints = points.data(),
                                        .m_pConfidence = confidence.data(),
                                        .m_pClassification = classification.data(),
                                        .m_pColors = withColors ? colors.data() : nullptr,
                                        .m_pTrafo = trafo.data(),
                                        .m_foreign = {}});
    }
    [[nodiscard]] MeasurementData Read(float limit = 0.0f) const {
        return LoadMeasurementFile(WidePath(file).c_str(), limit, nullptr);
    }
    static void ExpectNothing(const MeasurementData& data) {
        EXPECT_EQ(data.m_iWidth, 0);
        EXPECT_EQ(data.m_iHeight, 0);
        EXPECT_EQ(data.m_iMasked, 0);
        EXPECT_TRUE(data.m_vXYZ.empty() && data.m_vMask.empty() && data.m_vColors.empty());
        EXPECT_THAT(data.m_fTrafo, Each(0.0f));
    }

    ScratchFolder folder;
    std::string file = folder / "scan.pcm";
    std::vector<float> points = {1000, 2000, 3000, -500, 9, 0, 1, 1, 1, 2, 2, 2, 3, 3, 3, 4, 4, 4};
    std::vector<float> confidence = {1, 1, 1, 1, 1, 1};
    std::vector<std::uint8_t> classification = {0, 0, 0, 0, 0, 0};
    std::vector<std::uint32_t> colors = {0xFF000001, 2, 3, 4, 5, 6};
    std::array<float, 16> trafo{};
};

}  // namespace

TEST_F(MeasurementFile, ScalesPointsAndTranslationToThousandths) {
    Write();
    const MeasurementData data = Read();
    EXPECT_EQ(data.m_iWidth, 3);
    EXPECT_EQ(data.m_iHeight, 2);
    ASSERT_EQ(data.m_vXYZ.size(), 18u);
    EXPECT_EQ(data.m_vXYZ[0], 1000.0f * 0.001f);
    EXPECT_EQ(data.m_vXYZ[3], -500.0f * 0.001f);
    EXPECT_EQ(data.m_vXYZ[4], 9.0f * 0.001f);  // and not 9 / 1000, which differs in the last bit
    EXPECT_EQ(data.m_vXYZ[17], 4.0f * 0.001f);
    EXPECT_THAT(data.m_fTrafo,
                ElementsAre(1, 2, 3, 4 * 0.001f, 5, 6, 7, 8 * 0.001f, 9, 10, 11, 12 * 0.001f, 13, 14, 15, 16));
}

TEST_F(MeasurementFile, MasksFromClass240On) {
    classification = {0, 239, 240, 241, 255, 127};
    Write();
    const MeasurementData data = Read();
    EXPECT_THAT(data.m_vMask, ElementsAre(0, 0, 1, 1, 1, 0));
    EXPECT_EQ(data.m_iMasked, 3);
}

TEST_F(MeasurementFile, MasksConfidenceBelowTheLimitAndNotAtIt) {
    confidence = {0.5f, std::nextafter(0.5f, 0.0f), std::nextafter(0.5f, 1.0f), -1.0f, NAN, 0.5f};
    classification = {239, 0, 0, 0, 0, 240};
    Write();
    const MeasurementData data = Read(0.5f);
    EXPECT_THAT(data.m_vMask, ElementsAre(0, 1, 0, 1, 0, 1));
    EXPECT_EQ(data.m_iMasked, 3);
}

TEST_F(MeasurementFile, CountsAPixelWithBothFaultsOnce) {
    confidence[0] = -1.0f;
    classification[0] = 250;
    Write();
    EXPECT_EQ(Read().m_iMasked, 1);
}

TEST_F(MeasurementFile, MasksNegativeConfidenceOnlyWithTheLimitZero) {
    confidence = {-1e-30f, 0.0f, -0.0f, 1.0f, 2.0f, -5.0f};
    Write();
    EXPECT_THAT(Read(0.0f).m_vMask, ElementsAre(1, 0, 0, 0, 0, 1));
}

TEST_F(MeasurementFile, HasTheColorsOfTheFile) {
    Write(true);
    EXPECT_EQ(Read().m_vColors, colors);
    Write(false);
    EXPECT_TRUE(Read().m_vColors.empty());
}

TEST_F(MeasurementFile, GivesNothingButAReasonForAMissingOrDamagedFile) {
    ExpectNothing(Read());
    Write();
    auto bytes = ReadBytes(file);
    bytes[bytes.size() / 2] ^= std::byte{1};
    WriteBytes(file, bytes);
    ExpectNothing(Read());
}

TEST_F(MeasurementFile, LeavesTheCallersObjectLoaded) {
    Write();
    MsrStorage::MSR msr;
    const MeasurementData data = LoadMeasurementFile(WidePath(file).c_str(), 0.0f, &msr);
    EXPECT_EQ(data.m_vXYZ[0], 1000.0f * 0.001f);
    ASSERT_NE(msr.GetXYZ(), nullptr);
    EXPECT_EQ(msr.GetXYZ()[0], 1000.0f);
    EXPECT_EQ(msr.GetTrafo()[3], 4.0f);
}

TEST_F(MeasurementFile, UsesALoadedObjectWithoutAPath) {
    Write();
    MsrStorage::MSR msr;
    ExpectNothing(LoadMeasurementFile(nullptr, 0.0f, &msr));
    ExpectNothing(LoadMeasurementFile(nullptr, 0.0f, nullptr));
    ASSERT_TRUE(msr.Load(WidePath(file).c_str(), false, true, false));
    msr.GetPixelClassification()[5] = 250;
    const MeasurementData data = LoadMeasurementFile(nullptr, 0.0f, &msr);
    EXPECT_EQ(data.m_iWidth, 3);
    EXPECT_THAT(data.m_vMask, ElementsAre(0, 0, 0, 0, 0, 1));
}
