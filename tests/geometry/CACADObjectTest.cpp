// Colour, box and centre of the base class, on an object without geometry.
#include "geometry/CACADObject.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using testing::ElementsAre;

namespace {

class AnyObject : public CACADObject {
public:
    void Draw(std::int32_t, bool) override {}
    void ComputeBoundingBox() override {}
};

}  // namespace

TEST(CACADObject, StartsVisibleWhiteAndFixedWithTheUnitBox) {
    const AnyObject object;
    EXPECT_THAT(object.m_fBoundingBox, ElementsAre(-1, 1, -1, 1, -1, 1));
    EXPECT_THAT(object.m_fColor, ElementsAre(1, 1, 1));
    EXPECT_FALSE(object.m_bCenterValid);
    EXPECT_EQ(object.m_iObjectTag, -1);
    EXPECT_EQ(object.m_iVisible, 1);
    EXPECT_EQ(object.GetColorRef(), 0xFFFFFFu);
}

TEST(CACADObject, HasItsCentreAtTheOrigin) {
    AnyObject object;
    object.m_fCenter[1] = 5;
    float center[3] = {9, 9, 9};
    object.GetCenter(center);
    EXPECT_THAT(center, ElementsAre(0, 0, 0));
    EXPECT_TRUE(object.m_bCenterValid);
    object.m_bCenterValid = false;
    EXPECT_EQ(object.ComputeCenter(), 0);
    EXPECT_TRUE(object.m_bCenterValid);
}

TEST(CACADObject, ComputesTheCentreOnlyOnce) {
    AnyObject object;
    float center[3];
    object.GetCenter(center);
    object.m_fCenter[2] = 3;
    object.GetCenter(center);
    EXPECT_EQ(center[2], 3);
}

TEST(CACADObject, SetColorRefReadsRedFromTheLowByte) {
    AnyObject object;
    object.SetColorRef(0xAB00FF33);
    EXPECT_FLOAT_EQ(object.m_fColor[0], 0.2f);
    EXPECT_EQ(object.m_fColor[1], 1.0f);
    EXPECT_EQ(object.m_fColor[2], 0.0f);
    EXPECT_EQ(object.GetColorRef(), 0x00FF33u) << "the high byte is ignored";
}

TEST(CACADObject, GetColorRefTruncatesTheChannels) {
    AnyObject object;
    object.m_fColor[0] = 0.5f;    // 127.5
    object.m_fColor[1] = 0.999f;  // 254.7
    object.m_fColor[2] = 0.003f;  // 0.77
    EXPECT_EQ(object.GetColorRef(), 127u | (254u << 8));
}

TEST(CACADObject, ReturnsEveryColourByteThatWasSet) {
    AnyObject object;
    for (std::uint32_t byte = 0; byte < 256; ++byte) {
        object.SetColorRef(byte | (byte << 8) | (byte << 16));
        EXPECT_EQ(object.GetColorRef(), byte | (byte << 8) | (byte << 16));
    }
}

TEST(CACADObject, ReturnsTheBoxAxisByAxis) {
    AnyObject object;
    object.SetBoundingBox(1, 2, 3, 5, 7, 11);
    float box[6];
    object.GetBoundingBox(&box[0], &box[1], &box[2], &box[3], &box[4], &box[5]);
    EXPECT_THAT(box, ElementsAre(1, 2, 3, 5, 7, 11));
}

TEST(CACADObject, WidensEachThinAxisSeparately) {
    AnyObject object;
    object.SetBoundingBox(0, 0.00009f, 0, 0.00011f, 5, 5);
    EXPECT_THAT(object.m_fBoundingBox, ElementsAre(-0.01f, 0.00009f + 0.01f, 0, 0.00011f, 5.0f - 0.01f, 5.0f + 0.01f));
}

TEST(CACADObject, WidensAnInvertedAxis) {
    AnyObject object;
    object.SetBoundingBox(1, -1, 0, 1, 0, 1);
    EXPECT_THAT(object.m_fBoundingBox, ElementsAre(0.99f, -0.99f, 0, 1, 0, 1));
}
