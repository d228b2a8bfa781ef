// A single cone: its position, and the directions in which it is not rotated.
#include "render/Cone.h"

#include "render/FrameWitness.h"
#include "render/SceneFixture.h"

using namespace lighting;

namespace {

class Cones : public SceneTest {
protected:
    /// 24 pixels per unit; the camera looks down -y, with z to the top and -x to the right.
    void DrawAndRead(const Float3& base, const Float3& tip, float radius) {
        pane->SetViewMode(KV_ScenePane::ViewFromPlusYZUp);
        camera.axisX = {-1, 0, 0}, camera.axisY = {0, 0, 1}, camera.axisZ = {0, 1, 0};
        FrameWitness witness(*pane);
        witness.inside = [&] { DrawCone(base, tip, radius, {1, 1, 1}); };
        Frame();
    }
    [[nodiscard]] bool IsDrawnAt(const Vec3& p) const {
        const auto [x, y] = camera.ToWindow(p);
        return DistanceAt(static_cast<int>(x), static_cast<int>(y), kBackground) > 10;
    }
};

TEST_F(Cones, ExtendFromBaseToTip) {
    const Float3 tips[] = {{3, 0, 0}, {-3, 0, 0}, {0, 0, 3}, {2, 0, -2}, {-2, 0.5f, -2}, {1, -1, 2}};
    for (const Float3& tip : tips) {
        DrawAndRead({0, 0, 0}, tip, 1);
        const Vec3 t{tip[0], tip[1], tip[2]},
            side = Unit({-t[2], 0, t[0]});  // perpendicular to the axis and the line of sight
        EXPECT_TRUE(IsDrawnAt(0.1 * t)) << tip[0] << tip[1] << tip[2];
        EXPECT_TRUE(IsDrawnAt(0.93 * t));
        EXPECT_TRUE(IsDrawnAt(0.1 * t + 0.75 * side));
        EXPECT_TRUE(IsDrawnAt(0.1 * t + -0.75 * side));
        EXPECT_FALSE(IsDrawnAt(1.05 * t));
        EXPECT_FALSE(IsDrawnAt(0.1 * t + 1.1 * side));
        EXPECT_FALSE(IsDrawnAt(0.8 * t + 0.45 * side));
        EXPECT_FALSE(IsDrawnAt(-0.3 * t));
    }
}

// It keeps its base and its length and points along +z. So does one whose cosine differs from -1 by less than a
// millionth: at a length of 3 the tip is then up to 0.0042 beside the axis.
TEST_F(Cones, AlongMinusZAreNotRotated) {
    for (const float aside : {0.0f, 0.001f, 0.004f}) {
        DrawAndRead({1, 0, 1}, {1 + aside, 0, -2}, 1);
        EXPECT_TRUE(IsDrawnAt({1, 0, 3.7})) << aside;
        EXPECT_TRUE(IsDrawnAt({1.8, 0, 1.2})) << aside;
        EXPECT_FALSE(IsDrawnAt({1, 0, 0.7})) << aside;
        EXPECT_FALSE(IsDrawnAt({1, 0, -1})) << aside;
    }
    DrawAndRead({1, 0, 1}, {1.006f, 0, -2}, 1);
    EXPECT_TRUE(IsDrawnAt({1, 0, -1.7}));
    EXPECT_FALSE(IsDrawnAt({1, 0, 1.3}));
}

TEST_F(Cones, OfZeroLengthDrawNothing) {
    DrawAndRead({1, 0, 1}, {1, 0, 1}, 0);
    EXPECT_EQ(PixelsThatAreNotBackground(), 0);
}

}  // namespace
