// The clip plane in OpenGL. What frames show of the scene is in ClipFrameTest.cpp.
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

}  // namespace
