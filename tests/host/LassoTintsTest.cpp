// The tints that reach the viewer are never ones that it refuses or confuses.
#include "LassoTints.h"

#include <gtest/gtest.h>

namespace {

constexpr std::uint32_t kMarker = 255, kLine = 0xFFFFFF00u;

TEST(LassoTints, OfTheFirstStartAreThoseOfTheViewer) {
    const LassoTints tints = TintsOf({});
    EXPECT_EQ(tints.inside, 0x0000FF);
    EXPECT_EQ(tints.outside, 0);
    EXPECT_EQ(tints.insideOpacity, 0.5f);
    EXPECT_EQ(tints.outsideOpacity, 0.0f);
}

TEST(LassoTints, AreRedFromTheLowestByteWithTheOpacityInTheHighest) {
    EXPECT_EQ(PackedTint(0x332211, 1.0f), 0xFF332211u);
    EXPECT_EQ(PackedTint(0x0000FF, 0.5f), 0x7F0000FFu) << "127.5 is truncated";
    EXPECT_EQ(PackedTint(0x0000FF, 0.0f), kMarker);
}

TEST(LassoTints, ChangeByAStepThatNobodySeesWhereTheViewerWouldRefuseThem) {
    // Invisible red is the mark of the viewer's fill, opaque cyan is the colour of its lines.
    const LassoTints red = TintsOf({.insideColor = 0x0000FF, .insideOpacity = 0});
    EXPECT_EQ(red.inside, 0x0100FF);
    const LassoTints cyan = TintsOf({.insideColor = 0xFFFF00, .insideOpacity = 100});
    EXPECT_EQ(cyan.inside, 0xFEFF00);
    const LassoTints outside =
        TintsOf({.insideColor = 0xFFFF00, .outsideColor = 0xFFFF00, .insideOpacity = 100, .outsideOpacity = 100});
    EXPECT_EQ(outside.outside, 0xFEFF00);
    EXPECT_EQ(outside.inside, 0xFDFF00);
    EXPECT_EQ(TintsOf({.insideColor = 0x0000FF, .insideOpacity = 1}).inside, 0x0000FF) << "faint red is allowed";
}

TEST(LassoTints, OfBothPartsDifferForAllPairsOfDifficultSettings) {
    const std::int32_t colors[] = {0x000000, 0x0000FF, 0x0100FF, 0xFFFF00, 0xFEFF00};
    const int opacities[] = {0, 1, 50, 100};
    for (const std::int32_t inside : colors)
        for (const std::int32_t outside : colors)
            for (const int insideOpacity : opacities)
                for (const int outsideOpacity : opacities) {
                    const LassoTints tints = TintsOf({inside, outside, insideOpacity, outsideOpacity});
                    const std::uint32_t a = PackedTint(tints.inside, tints.insideOpacity);
                    const std::uint32_t b = PackedTint(tints.outside, tints.outsideOpacity);
                    EXPECT_NE(a, b);
                    for (const std::uint32_t tint : {a, b}) {
                        EXPECT_NE(tint, kMarker);
                        EXPECT_NE(tint, kLine);
                    }
                }
}

}  // namespace
