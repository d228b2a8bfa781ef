// The clip plane in OpenGL, and which side of it a frame shows.
#include <gtest/gtest.h>

#include "support/ControlFixture.h"
#include "support/GlNow.h"

namespace {

TEST(PlaneClipping, IsSetInTheCurrentViewAndSwitchedOff) {
    OffscreenControl control;
    ASSERT_TRUE(control->MakeContextCurrent());
    Plane plane;
    plane.SetCenter({0, 0, 10});
    glMatrixMode(GL_MODELVIEW);
    glPushMatrix();
    glLoadIdentity();
    glTranslated(0, 0, -3);  // z = 10 in the world is z = 7 in eye coordinates
    plane.EnableClipping();
    glPopMatrix();
    double equation[4] = {};
    glGetClipPlane(GL_CLIP_PLANE0, equation);
    const double expected[] = {0, 0, 1, -7};
    for (int i = 0; i < 4; ++i) EXPECT_NEAR(equation[i], expected[i], 1e-6) << i;
    EXPECT_TRUE(glIsEnabled(GL_CLIP_PLANE0));
    Plane::DisableClipping();
    EXPECT_FALSE(glIsEnabled(GL_CLIP_PLANE0));
    EXPECT_EQ(glGetError(), GLenum{GL_NO_ERROR});
}

class ClippedFrame : public testing::Test {
protected:
    /// A square in the plane z = 0 from -10 to 10, and the plane x = 2 that keeps the larger x.
    void SetUp() override {
        AddMesh(*control, {{-10, -10, 0, 0, 0, 1}, {10, -10, 0, 0, 0, 1}, {10, 10, 0, 0, 0, 1}, {-10, 10, 0, 0, 0, 1}},
                {Triangle{{0, 1, 2}}, Triangle{{0, 2, 3}}});
        control->CenterView();
        control->m_clipPlane.SetNormal({1, 0, 0});
        control->m_clipPlane.SetCenter({2, 0, 0});
        control->m_bClipPlaneActive = 1;
    }
    /// Whether the square is visible at a world x.
    bool IsSeenAt(float x) {
        KV_ScenePane::Picture picture;
        EXPECT_TRUE(control->CapturePicture(&picture));
        std::int32_t column = 0, row = 0;
        control->ProjectPoint(x, 0.5f, 0, &column, &row);
        return picture.pixels[static_cast<std::size_t>(row * picture.width + column)] != picture.pixels[0];
    }

    OffscreenControl control{200, 200};
};

TEST_F(ClippedFrame, ShowsOnlyTheSideOfTheNormal) {
    EXPECT_TRUE(IsSeenAt(5));
    EXPECT_TRUE(IsSeenAt(2.5f));
    EXPECT_FALSE(IsSeenAt(1.5f));
    EXPECT_FALSE(IsSeenAt(-5));
    control->m_bClipPlaneActive = 0;
    EXPECT_TRUE(IsSeenAt(-5));
}

TEST_F(ClippedFrame, ShowsAllWhileThePlaneIsDragged) {
    for (const std::int32_t mode : {ModePlaneHandle, ModePlaneRotate, ModePlaneMove}) {
        control->m_nInteractionMode = mode;
        EXPECT_TRUE(IsSeenAt(-5)) << mode;
    }
    control->m_nInteractionMode = ModeRotate;
    EXPECT_FALSE(IsSeenAt(-5));
}

TEST_F(ClippedFrame, SwitchesClippingOffAfterwards) {
    control->PerformRefresh();
    ASSERT_TRUE(control->MakeContextCurrent());
    EXPECT_FALSE(glIsEnabled(GL_CLIP_PLANE0));
}

TEST_F(ClippedFrame, MovesThePlaneWithinItsSurfaceWhenTheViewIsCentred) {
    control->m_clipPlane.SetCenter({2, 50, 70});
    control->CenterView();
    const Double3 center = control->m_clipPlane.GetCenter();
    EXPECT_NEAR(center[0], 2, 1e-6);
    EXPECT_NEAR(center[1], 0, 1e-6);
    EXPECT_NEAR(center[2], 0, 1e-6);
    EXPECT_NEAR(control->m_clipPlane.m_dRadius, 10 * 1.4142135623730951, 1e-5);  // half the largest extent is 10
}

}  // namespace
