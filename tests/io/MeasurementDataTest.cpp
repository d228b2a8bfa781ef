// The rules by which arrays of a measurement become points, mask, transform and colours in scene units.
#include "io/MeasurementData.h"

#include <gmock/gmock.h>

#include <cmath>
#include <limits>

using testing::Each;
using testing::ElementsAre;

namespace {

/// 3 x 2 pixels in the form of pcm files.
class MakeMeasurement : public testing::Test {
protected:
    MakeMeasurement() {
        for (std::size_t i = 0; i < 16; ++i) trafo[i] = static_cast<float>(i + 1);
    }
    [[nodiscard]] MeasurementArrays Arrays() const {
        return {.m_iWidth = 3,
                .m_iHeight = 2,
                .m_pPoints = points.data(),
                .m_pConfidence = confidence.data(),
                .m_pClassification = classification.data(),
                .m_pTrafo = trafo.data(),
                .m_pColors = colors.data()};
    }
    [[nodiscard]] MeasurementArrays ArraysWithoutClasses() const {
        MeasurementArrays arrays = Arrays();
        arrays.m_pClassification = nullptr;
        return arrays;
    }
    /// Mask of a row of pixels by their points alone.
    static std::vector<std::uint16_t> UnmeasuredMask(const std::vector<float>& row) {
        const MeasurementArrays arrays = {
            .m_iWidth = static_cast<std::int32_t>(row.size() / 3), .m_iHeight = 1, .m_pPoints = row.data()};
        return MakeMeasurementData(arrays, {.m_eMask = GridMask::EqualNegatives}).m_vMask;
    }
    /// Mask of a row of pixels by their confidence alone.
    static std::vector<std::uint16_t> ConfidenceMask(const std::vector<float>& row, float limit) {
        const std::vector<float> points(3 * row.size());
        const MeasurementArrays arrays = {.m_iWidth = static_cast<std::int32_t>(row.size()),
                                          .m_iHeight = 1,
                                          .m_pPoints = points.data(),
                                          .m_pConfidence = row.data()};
        return MakeMeasurementData(arrays, {.m_fConfidenceLimit = limit}).m_vMask;
    }

    std::vector<float> points = {1000, 2000, 3000, -500, 9, 0, 1, 1, 1, 2, 2, 2, 3, 3, 3, 4, 4, 4};
    std::vector<float> confidence = {1, 1, 1, 1, 1, 1};
    std::vector<std::uint8_t> classification = {0, 0, 0, 0, 0, 0};
    std::vector<std::uint32_t> colors = {0xFF000001, 2, 3, 4, 5, 6};
    std::array<float, 16> trafo{};
};

}  // namespace

// ---- scale

TEST_F(MakeMeasurement, MultipliesPointsAndTranslationByAThousandth) {
    const MeasurementData data = MakeMeasurementData(Arrays(), {.m_eScale = GridScale::Thousandths});
    EXPECT_EQ(data.m_iWidth, 3);
    EXPECT_EQ(data.m_iHeight, 2);
    ASSERT_EQ(data.m_vXYZ.size(), 18u);
    EXPECT_EQ(data.Points(), data.m_vXYZ.data());
    ASSERT_NE(9.0f * 0.001f, 9.0f / 1000.0f);
    for (std::size_t i = 0; i < 18; ++i) EXPECT_EQ(data.m_vXYZ[i], points[i] * 0.001f) << "coordinate " << i;
    EXPECT_THAT(data.m_fTrafo,
                ElementsAre(1, 2, 3, 4 * 0.001f, 5, 6, 7, 8 * 0.001f, 9, 10, 11, 12 * 0.001f, 13, 14, 15, 16));
    EXPECT_EQ(data.Trafo(), data.m_fTrafo.data());
    EXPECT_EQ(points[0], 1000) << "the source's arrays stay as they are";
}

TEST_F(MakeMeasurement, UsesPointsInSceneUnitsWithoutACopy) {
    const MeasurementData data = MakeMeasurementData(Arrays(), {});
    EXPECT_EQ(data.Points(), points.data());
    EXPECT_TRUE(data.m_vXYZ.empty());
    EXPECT_EQ(data.m_fTrafo, trafo);
}

TEST_F(MakeMeasurement, UsesTheColorsWithoutACopy) {
    EXPECT_EQ(MakeMeasurementData(Arrays(), {}).Colors(), colors.data());
    EXPECT_EQ(MakeMeasurementData(Arrays(), {.m_eScale = GridScale::Thousandths}).Colors(), colors.data());
    MeasurementArrays arrays = Arrays();
    arrays.m_pColors = nullptr;
    EXPECT_EQ(MakeMeasurementData(arrays, {}).Colors(), nullptr);
}

TEST_F(MakeMeasurement, HasNoTransformWhereTheSourceHasNone) {
    MeasurementArrays arrays = Arrays();
    arrays.m_pTrafo = nullptr;
    EXPECT_EQ(MakeMeasurementData(arrays, {}).Trafo(), nullptr);
    EXPECT_EQ(MakeMeasurementData(arrays, {.m_eScale = GridScale::Thousandths}).Trafo(), nullptr);
}

// ---- mask by class and confidence

TEST_F(MakeMeasurement, MasksFromClass240On) {
    classification = {0, 239, 240, 241, 255, 127};
    const MeasurementData data = MakeMeasurementData(Arrays(), {});
    EXPECT_THAT(data.m_vMask, ElementsAre(0, 0, 1, 1, 1, 0));
    EXPECT_EQ(data.m_iMasked, 3);
}

TEST_F(MakeMeasurement, MasksConfidenceBelowTheLimitAndNotAtIt) {
    const float below = std::nextafter(0.5f, 0.0f), above = std::nextafter(0.5f, 1.0f);
    EXPECT_THAT(ConfidenceMask({below, 0.5f, above, -1.0f, NAN}, 0.5f), ElementsAre(1, 0, 0, 1, 0));
    confidence = {0.5f, below, above, -1.0f, NAN, 0.5f};
    classification = {239, 0, 0, 0, 0, 240};
    const MeasurementData data = MakeMeasurementData(Arrays(), {.m_fConfidenceLimit = 0.5f});
    EXPECT_THAT(data.m_vMask, ElementsAre(0, 1, 0, 1, 0, 1));
    EXPECT_EQ(data.m_iMasked, 3);
}

TEST_F(MakeMeasurement, MasksNegativeConfidenceOnlyWithTheLimitZero) {
    EXPECT_THAT(ConfidenceMask({-1e-30f, -0.0f, 0.0f, 1.0f}, 0.0f), ElementsAre(1, 0, 0, 0));
}

TEST_F(MakeMeasurement, CountsAPixelWithBothFaultsOnce) {
    confidence[0] = -1.0f;
    classification[0] = 250;
    EXPECT_EQ(MakeMeasurementData(Arrays(), {}).m_iMasked, 1);
}

TEST_F(MakeMeasurement, NeedsNoClasses) {
    confidence[2] = -1.0f;
    const MeasurementData data = MakeMeasurementData(ArraysWithoutClasses(), {});
    EXPECT_THAT(data.m_vMask, ElementsAre(0, 0, 1, 0, 0, 0));
    EXPECT_EQ(data.m_iMasked, 1);
}

// ---- mask by equal negative coordinates

TEST_F(MakeMeasurement, MasksPixelsOfOneNegativeNumberThreeTimes) {
    EXPECT_THAT(UnmeasuredMask({-1, -1, -1, 0, 0,  0,  -1, -1, -2, -2, -1,    -1,    -1,   -2,
                                -1, 5,  5,  5, -7, -7, -7, -1, -1, 1,  -0.0f, -0.0f, -0.0f}),
                ElementsAre(1, 0, 0, 0, 0, 0, 1, 0, 0));
}

TEST_F(MakeMeasurement, DoesNotTreatNanAsEqualCoordinates) {
    const float inf = std::numeric_limits<float>::infinity();
    EXPECT_THAT(UnmeasuredMask({NAN, NAN, NAN, -inf, -inf, -inf, inf, inf, inf}), ElementsAre(0, 1, 0));
}

TEST_F(MakeMeasurement, IgnoresConfidenceAndClassesWhereCoordinatesDecide) {
    confidence.assign(6, -1.0f);
    classification.assign(6, 255);
    points[0] = points[1] = points[2] = -1;
    const MeasurementData data = MakeMeasurementData(Arrays(), {.m_eMask = GridMask::EqualNegatives});
    EXPECT_THAT(data.m_vMask, ElementsAre(1, 0, 0, 0, 0, 0));
    EXPECT_EQ(data.m_iMasked, 1);
}

// ---- size

TEST_F(MakeMeasurement, GivesEmptyArraysForAGridWithoutPixels) {
    MeasurementArrays arrays = Arrays();
    arrays.m_iHeight = 0;
    const MeasurementData data = MakeMeasurementData(arrays, {.m_eScale = GridScale::Thousandths});
    EXPECT_TRUE(data.m_vMask.empty() && data.m_vXYZ.empty());
    EXPECT_EQ(data.m_fTrafo[3], 4 * 0.001f);
}

TEST_F(MakeMeasurement, ReadsNothingForAnImpossibleSize) {
    const std::pair<int, int> sizes[] = {{-1, 3}, {3, -1}, {-4, -4}, {32768, 1}, {1, 32768}, {2147483647, 2147483647}};
    for (const auto& [width, height] : sizes) {
        const MeasurementArrays arrays = {.m_iWidth = width, .m_iHeight = height};  // reading would crash
        for (const GridScale scale : {GridScale::None, GridScale::Thousandths}) {
            const MeasurementData data = MakeMeasurementData(arrays, {.m_eScale = scale});
            EXPECT_EQ(data.m_iWidth, width);
            EXPECT_EQ(data.m_iHeight, height);
            EXPECT_TRUE(data.m_vMask.empty() && data.m_vXYZ.empty()) << width << " x " << height;
            EXPECT_THAT(data.m_fTrafo, Each(0.0f));
        }
    }
}
