// The points of a freehand lasso and the mask that it encloses, without OpenGL.
#include "cut/CutSession.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>
#include <stdexcept>

#include "cut/LassoScript.h"

namespace {

constexpr LassoTint kCyan{0xFFFF00, 1.0f}, kRed{255, 0.5f}, kNothing{0, 0.0f};

CutSession MakeSession(LassoPixel start, int width = 40, int height = 30) {
    return {TexturesOfSize(width, height), start, kCyan, kRed, kNothing, 0};
}

/// As the mouse reports the middle of a pixel.
void AddPixel(CutSession& session, int x, int y) {
    session.AddPoint((static_cast<float>(x) + 0.5f) / static_cast<float>(session.m_nWidth),
                     (static_cast<float>(y) + 0.5f) / static_cast<float>(session.m_nHeight));
}

std::size_t BitCount(const MaskBits& mask) {
    std::size_t count = 0;
    for (std::size_t i = 0; i < mask.m_vBits.m_uCount; ++i) count += mask.m_vBits.IsSet(i) ? 1 : 0;
    return count;
}

// ---- construction

struct PackedTint {
    const char* name;
    LassoTint tint;
    std::uint32_t pixel;
};
void PrintTo(const PackedTint& row, std::ostream* out) { *out << row.name; }

constexpr float kNaN = std::numeric_limits<float>::quiet_NaN(), kHuge = std::numeric_limits<float>::max();

const PackedTint kPackedTints[] = {
    {"HalfIsTruncated", {0x010203, 0.5f}, 0x7F010203},
    {"Opaque", {0x010203, 1.0f}, 0xFF010203},
    {"JustBelowOpaque", {0, std::nextafter(1.0f, 0.0f)}, 0xFE000000},
    {"TooOpaque", {0x010203, 7.0f}, 0xFF010203},
    {"Huge", {0x010203, kHuge}, 0xFF010203},
    {"Infinite", {0x010203, INFINITY}, 0xFF010203},
    {"Negative", {0x010203, -0.5f}, 0x00010203},
    {"MinusInfinite", {0x010203, -INFINITY}, 0x00010203},
    {"NotANumber", {0x010203, kNaN}, 0x00010203},
    {"OneStep", {0, 0.00393f}, 0x01000000},  // 1.002
    {"BelowOneStep", {0, 0.0039f}, 0},       // 0.9945
    {"HighByteOfTheColour", {0xAB010203, 1.0f}, 0xFF010203},
};
class CutSessionColours : public testing::TestWithParam<PackedTint> {};

TEST_P(CutSessionColours, ArePackedWithTheOpacityAsTheHighByte) {
    const CutSession session(TexturesOfSize(9, 9), {4, 4}, kCyan, GetParam().tint, kNothing, 3);
    EXPECT_EQ(session.m_uFillColor, GetParam().pixel);
    const CutSession other(TexturesOfSize(9, 9), {4, 4}, kCyan, kRed, GetParam().tint, 3);
    EXPECT_EQ(other.m_uOutsideColor, GetParam().pixel);
    EXPECT_EQ(other.m_uFillColor, 0x7F0000FFu);
    EXPECT_EQ(other.m_uLineColor, 0xFFFFFF00u);
    EXPECT_EQ(other.m_uPreviewColor, 0xFFFFFF00u);
    EXPECT_EQ(other.m_uProgram, 3u);
}
INSTANTIATE_TEST_SUITE_P(Tints, CutSessionColours, testing::ValuesIn(kPackedTints),
                         [](const auto& row) { return row.param.name; });

std::string ReasonOf(LassoTint line, LassoTint fill, LassoTint outside) {
    try {
        const CutSession session(TexturesOfSize(9, 9), {4, 4}, line, fill, outside, 0);
    } catch (const std::invalid_argument& error) {
        return error.what();
    }
    return "";
}

TEST(CutSessionConstruction, RefusesTheMarkerOfTheFloodFill) {
    const LassoTint marker{255, 0.0f};
    EXPECT_EQ(ReasonOf(marker, kRed, kNothing), "Cannot use internal marker color");
    EXPECT_EQ(ReasonOf(kCyan, marker, kNothing), "Cannot use internal marker color");
    EXPECT_EQ(ReasonOf(kCyan, kRed, marker), "Cannot use internal marker color");
    EXPECT_EQ(ReasonOf(marker, marker, kNothing), "Cannot use internal marker color") << "the first of two reasons";
    EXPECT_EQ(ReasonOf(kCyan, {255, kNaN}, kNothing), "Cannot use internal marker color");
    EXPECT_EQ(ReasonOf(kCyan, {254, 0.0f}, kNothing), "");
}

TEST(CutSessionConstruction, RefusesAFillLikeTheLineButNotAnOutsideLikeTheLine) {
    EXPECT_EQ(ReasonOf(kCyan, kCyan, kNothing), "Fill and lasso color must be different");
    EXPECT_EQ(ReasonOf(kCyan, kRed, kCyan), "");
    EXPECT_EQ(ReasonOf(kCyan, kRed, kRed), "");
}

TEST(CutSessionConstruction, MovesTheStartOffTheOutermostPixels) {
    for (const auto& [start, expected] : {std::pair<LassoPixel, LassoPixel>{{0, 0}, {1, 1}},
                                          {{39, 29}, {38, 28}},
                                          {{38, 1}, {38, 1}},
                                          {{-7, 400}, {1, 28}},
                                          {{INT32_MIN, INT32_MAX}, {1, 28}},
                                          {{20, 10}, {20, 10}}}) {
        const CutSession session = MakeSession(start);
        EXPECT_EQ(session.m_ptStart, expected);
        EXPECT_EQ(session.m_ptLast, expected);
        EXPECT_EQ(session.m_rcBounds, BoxOf(expected));
        EXPECT_EQ(session.m_rcShown, BoxOf(expected));
        EXPECT_EQ(session.GetLastPoint(), std::nullopt);
    }
}

TEST(CutSessionConstruction, MakesEmptyImagesAndReservesTheStack) {
    const CutSession session = MakeSession({20, 10});
    EXPECT_EQ(session.m_nWidth, 40);
    EXPECT_EQ(session.m_nHeight, 30);
    EXPECT_EQ(session.m_vLines, CutSession::Image(1200, 0));
    EXPECT_EQ(session.m_vComposite, CutSession::Image(1200, 0));
    EXPECT_TRUE(session.m_vFloodStack.empty());
    EXPECT_GE(session.m_vFloodStack.capacity(), 1200u);
    EXPECT_TRUE(session.m_vPending.empty());
    EXPECT_FALSE(session.m_optPreview.has_value());
}

TEST(CutSessionConstruction, InTheSmallestImageHasOnePixel) {
    CutSession session = MakeSession({2, 0}, 3, 3);
    EXPECT_EQ(session.m_ptStart, (LassoPixel{1, 1}));
    AddPixel(session, 1, 1);
    AddPixel(session, 2, 2);
    EXPECT_TRUE(session.m_vPending.empty());
    const MaskBits mask = session.CreateMaskBits(3, 3);
    EXPECT_EQ(mask.m_vBits.m_vWords, (std::vector<std::uint32_t>{1u << 4}));
}

// ---- points

TEST(CutSessionPoint, IsTruncatedToItsPixel) {
    CutSession session = MakeSession({20, 10});
    session.AddPoint(0.1249f, 0.5f);  // 4.996, 15
    EXPECT_EQ(session.m_vPending, (std::vector<LassoPixel>{{4, 15}}));
    EXPECT_EQ(session.GetLastPoint(), (LassoPixel{4, 15}));
}

TEST(CutSessionPoint, OnTheOutermostPixelsOrOutsideIsDropped) {
    CutSession session = MakeSession({20, 10});
    for (const auto& [x, y] : {std::pair{0, 10}, {39, 10}, {20, 0}, {20, 29}, {-1, 10}, {40, 10}, {20, -1}, {20, 30}}) {
        AddPixel(session, x, y);
        session.SetPreviewPoint((static_cast<float>(x) + 0.5f) / 40, (static_cast<float>(y) + 0.5f) / 30);
    }
    EXPECT_TRUE(session.m_vPending.empty());
    EXPECT_FALSE(session.m_optPreview.has_value());
    EXPECT_EQ(session.GetLastPoint(), std::nullopt);
    for (const auto& [x, y] : {std::pair{1, 1}, {38, 1}, {38, 28}, {1, 28}}) AddPixel(session, x, y);
    EXPECT_EQ(session.m_vPending.size(), 4u);
}

TEST(CutSessionPoint, ThatIsNoPixelNumberIsDropped) {
    CutSession session = MakeSession({20, 10});
    for (const float odd : {kNaN, INFINITY, -INFINITY, kHuge, -kHuge, 1e9f, -1e9f}) {
        session.AddPoint(odd, 0.5f);
        session.AddPoint(0.5f, odd);
        session.SetPreviewPoint(odd, odd);
    }
    EXPECT_TRUE(session.m_vPending.empty());
    EXPECT_FALSE(session.m_optPreview.has_value());
}

TEST(CutSessionPoint, OnThePixelOfThePointBeforeIsDropped) {
    CutSession session = MakeSession({20, 10});
    AddPixel(session, 20, 10);
    EXPECT_TRUE(session.m_vPending.empty()) << "the start";
    AddPixel(session, 21, 10);
    AddPixel(session, 21, 10);
    session.AddPoint(21.9f / 40, 10.1f / 30);
    EXPECT_EQ(session.m_vPending, (std::vector<LassoPixel>{{21, 10}}));
    AddPixel(session, 22, 10);
    AddPixel(session, 21, 10);
    EXPECT_EQ(session.m_vPending.size(), 3u) << "only the newest pending point counts";
    AddPixel(session, 20, 10);
    EXPECT_EQ(session.m_vPending.size(), 3u) << "the last drawn point counts until the next frame";
}

TEST(CutSessionPoint, OfTheRubberBandIsKeptApart) {
    CutSession session = MakeSession({20, 10});
    session.SetPreviewPoint(0.5f, 0.5f);
    EXPECT_EQ(session.m_optPreview, (LassoPixel{20, 15}));
    EXPECT_EQ(session.GetLastPoint(), (LassoPixel{20, 15}));
    EXPECT_TRUE(session.m_vPending.empty());
    session.SetPreviewPoint(20.5f / 40, 10.5f / 30);  // where the lasso ends
    EXPECT_EQ(session.m_optPreview, (LassoPixel{20, 15}));
    AddPixel(session, 5, 5);
    EXPECT_EQ(session.GetLastPoint(), (LassoPixel{5, 5}));
    session.SetPreviewPoint(5.5f / 40, 5.5f / 30);
    EXPECT_EQ(session.m_optPreview, (LassoPixel{20, 15}));
}

// ---- masks

TEST(CutSessionMask, HasTheInsideAndTheLines) {
    CutSession session = MakeSession({10, 5});
    AddPixel(session, 20, 5);
    AddPixel(session, 20, 15);
    AddPixel(session, 10, 15);  // closed by the mask
    const MaskBits mask = session.CreateMaskBits(40, 30);
    EXPECT_EQ(mask.m_vBits.m_uCount, 1200u);
    EXPECT_EQ(mask.m_rcBounds, (ACAD::CutMask::Rectangle{10, 5, 20, 15}));
    EXPECT_EQ(BitCount(mask), 11u * 11u);
    for (int y = 5; y <= 15; ++y)
        for (int x = 10; x <= 20; ++x) EXPECT_TRUE(mask.m_vBits.IsSet(static_cast<std::size_t>(40 * y + x)));
}

TEST(CutSessionMask, DoesNotChangeTheSession) {
    CutSession session = MakeSession({10, 5});
    AddPixel(session, 20, 5);
    AddPixel(session, 20, 15);
    const auto pending = session.m_vPending;
    const MaskBits first = session.CreateMaskBits(40, 30), second = session.CreateMaskBits(40, 30);
    EXPECT_EQ(first.m_vBits.m_vWords, second.m_vBits.m_vWords);
    EXPECT_EQ(session.m_vPending, pending);
    EXPECT_EQ(session.m_vLines, CutSession::Image(1200, 0));
    EXPECT_EQ(session.m_ptLast, (LassoPixel{10, 5}));
}

TEST(CutSessionMask, IgnoresTheRubberBand) {
    CutSession session = MakeSession({10, 5});
    AddPixel(session, 20, 5);
    session.SetPreviewPoint(0.5f, 0.9f);
    const MaskBits mask = session.CreateMaskBits(40, 30);
    EXPECT_EQ(mask.m_rcBounds, (ACAD::CutMask::Rectangle{10, 5, 20, 5}));
    EXPECT_EQ(BitCount(mask), 11u);
}

TEST(CutSessionMask, OfCollinearPointsHasThePixelsOfTheLine) {
    CutSession session = MakeSession({10, 5});
    AddPixel(session, 30, 5);
    AddPixel(session, 20, 5);
    EXPECT_EQ(BitCount(session.CreateMaskBits(40, 30)), 21u);
}

TEST(CutSessionMask, OfTheStartAloneIsOnePixel) {
    const CutSession session = MakeSession({10, 5});
    const MaskBits mask = session.CreateMaskBits(40, 30);
    EXPECT_EQ(mask.m_rcBounds, (ACAD::CutMask::Rectangle{10, 5, 10, 5}));
    EXPECT_EQ(BitCount(mask), 1u);
}

TEST(CutSessionMask, WithEqualTintsHasTheLinesOnly) {
    CutSession session(TexturesOfSize(40, 30), {10, 5}, kCyan, kRed, kRed, 0);
    AddPixel(session, 20, 5);
    AddPixel(session, 20, 15);
    AddPixel(session, 10, 15);
    EXPECT_EQ(BitCount(session.CreateMaskBits(40, 30)), 40u);
}

TEST(CutSessionMask, WithAnOutsideLikeTheLinesHasNoLines) {
    CutSession session(TexturesOfSize(40, 30), {10, 5}, kCyan, kRed, kCyan, 0);
    AddPixel(session, 20, 5);
    AddPixel(session, 20, 15);
    AddPixel(session, 10, 15);
    const MaskBits mask = session.CreateMaskBits(40, 30);
    EXPECT_EQ(BitCount(mask), 81u);
    EXPECT_EQ(mask.m_rcBounds, (ACAD::CutMask::Rectangle{11, 6, 19, 14}));
}

TEST(CutSessionMask, WithoutASetBitHasAnEmptyRectangle) {
    CutSession session(TexturesOfSize(40, 30), {10, 5}, kCyan, kRed, kCyan, 0);
    AddPixel(session, 20, 5);
    const MaskBits mask = session.CreateMaskBits(40, 30);
    EXPECT_EQ(BitCount(mask), 0u);
    EXPECT_EQ(mask.m_rcBounds, ACAD::CutMask::kNoPixel);
    EXPECT_EQ(mask.m_vBits.m_uCount, 1200u);
}

TEST(CutSessionMask, OfAWindowWithoutAreaHasNoBits) {
    const CutSession session = MakeSession({10, 5});
    for (const auto& [width, height] : {std::pair{0, 0}, {0, 10}, {10, 0}, {-1, -1}, {-5, 7}}) {
        const MaskBits mask = session.CreateMaskBits(width, height);
        EXPECT_EQ(mask.m_vBits.m_uCount, 0u);
        EXPECT_TRUE(mask.m_vBits.m_vWords.empty());
        EXPECT_EQ(mask.m_rcBounds, ACAD::CutMask::kNoPixel);
    }
}

TEST(CutSessionMask, FitsAWindowOfAnotherSize) {
    CutSession session = MakeSession({10, 5});
    AddPixel(session, 20, 5);
    AddPixel(session, 20, 15);
    AddPixel(session, 10, 15);
    const MaskBits mask = session.CreateMaskBits(80, 60);
    EXPECT_EQ(mask.m_rcBounds, (ACAD::CutMask::Rectangle{20, 10, 41, 31}));
    EXPECT_EQ(BitCount(mask), 22u * 22u);
    const MaskBits small = session.CreateMaskBits(20, 15);
    EXPECT_EQ(small.m_rcBounds, (ACAD::CutMask::Rectangle{5, 3, 10, 7}));
}

TEST(CutSessionMask, IsThatOfThePixelByPixelMethod) {
    std::mt19937 random(3);
    const std::vector<LassoTints> tints = AllTints();
    for (int round = 0; round < 300; ++round) {
        const int width = std::uniform_int_distribution<int>(3, 60)(random),
                  height = std::uniform_int_distribution<int>(3, 60)(random);
        LassoPair pair(TexturesOfSize(width, height), std::uniform_int_distribution<int>(0, width)(random),
                       std::uniform_int_distribution<int>(0, height)(random),
                       tints[static_cast<std::size_t>(round) % tints.size()], 0);
        for (int step = 0; step < 8; ++step) pair.DoSomething(random);
        ASSERT_EQ(pair.session.m_vPending.size(), pair.reference.pending.size());
        ExpectSameMask(pair, width, height);
        ExpectSameMask(pair, std::uniform_int_distribution<int>(1, 97)(random),
                       std::uniform_int_distribution<int>(1, 97)(random));
        ExpectSameMask(pair, 1, 1);
        if (HasFailure()) return;
    }
}

// 4101 x 4093 has more digits than a float: column 4093 shows pixel 4092.
TEST(CutSessionMask, RoundsTheColumnsOfLargeWindowsAsFloats) {
    LassoPair pair(TexturesOfSize(4101, 3), 4093, 1, {}, 0);
    pair.Add(4097, 1);
    EXPECT_FALSE(pair.session.CreateMaskBits(4101, 3).m_vBits.IsSet(4101 + 4093));
    EXPECT_TRUE(pair.session.CreateMaskBits(4101, 3).m_vBits.IsSet(4101 + 4095));
    ExpectSameMask(pair, 4101, 3);
    ExpectSameMask(pair, 4111, 5);
    ExpectSameMask(pair, 16001, 2);
}

}  // namespace
