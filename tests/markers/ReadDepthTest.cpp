// The depth of the last frame at a pixel. The camera looks down the z axis, 24 pixels per unit; window depth runs from
// 0 at z = 60 to 1 at z = -20.
#include "markers/ReadDepth.h"

#include <gtest/gtest.h>

#include "render/SceneFixture.h"
#include "support/GlNow.h"

namespace {

class ReadDepth : public SceneInEveryWindow {
protected:
    std::optional<float> At(int x, int y, float limit = 0.99f) {
        EXPECT_TRUE(pane->MakeContextCurrent());
        const auto depth = ReadDepthAt(x, y, 240, limit);
        EXPECT_EQ(glGetError(), GLenum{GL_NO_ERROR});
        return depth;
    }
};

TEST_P(ReadDepth, ReturnsTheWindowDepthOfTheSurface) {
    Add({});
    Add({.center = {0, 0, 20}, .half = 1});
    Frame();
    ASSERT_TRUE(At(160, 120).has_value());
    EXPECT_NEAR(*At(160, 120), 0.5, 1e-5);                   // (60 - 20) / 80
    EXPECT_NEAR(At(160 + 36, 120).value_or(9), 0.75, 1e-5);  // (60 - 0) / 80
}

TEST_P(ReadDepth, FindsNothingOnTheBackground) {
    Add({.half = 1});
    Frame();
    EXPECT_FALSE(At(10, 10).has_value());
}

TEST_P(ReadDepth, FindsNothingAtOrBeyondTheLimit) {
    Add({});
    Frame();
    EXPECT_TRUE(At(160, 120, 0.7501f).has_value());
    EXPECT_FALSE(At(160, 120, 0.7499f).has_value());
}

TEST_P(ReadDepth, CountsRowsDownwardFromOneAboveTheWindow) {
    Add({.half = 20});
    Frame();
    EXPECT_FALSE(At(160, 0).has_value());
    EXPECT_TRUE(At(160, 1).has_value());
    EXPECT_TRUE(At(160, 240).has_value());
    EXPECT_FALSE(At(160, 241).has_value());
    EXPECT_FALSE(At(-1, 120).has_value());
    EXPECT_FALSE(At(320, 120).has_value());
}

INSTANTIATE_TEST_SUITE_P(Windows, ReadDepth, testing::ValuesIn(WindowKinds()),
                         [](const auto& row) { return NameOf(row.param); });

}  // namespace
