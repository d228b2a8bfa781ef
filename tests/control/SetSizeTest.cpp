// The size of the drawing area, as the host sets it.
#include <GL/glew.h>
#include <gtest/gtest.h>

#include "support/ControlFixture.h"

namespace {

TEST(SetSize, ResizesTheWindowAndSetsViewportAndAspect) {
    OffscreenControl c(640, 480);
    c->SetSize(300, 120);
    EXPECT_EQ(c.window->ClientSize().width, 300);
    EXPECT_EQ(c.window->ClientSize().height, 120);
    EXPECT_EQ(c->m_nWidth, 300);
    EXPECT_EQ(c->m_nHeight, 120);
    EXPECT_FLOAT_EQ(c->m_fAspectX, 2.5f);
    EXPECT_EQ(c->m_fAspectY, 1.0f);
    ASSERT_TRUE(c->MakeContextCurrent());
    GLint viewport[4] = {};
    glGetIntegerv(GL_VIEWPORT, viewport);
    EXPECT_EQ((std::vector<GLint>(viewport, viewport + 4)), (std::vector<GLint>{0, 0, 300, 120}));
    KV_ScenePane::Picture picture;
    ASSERT_TRUE(c->CapturePicture(&picture));
    EXPECT_EQ(picture.width, 300);
    EXPECT_EQ(picture.height, 120);
}

TEST(SetSize, KeepsViewportAndAspectAtHeightZero) {
    for (const std::int16_t height : std::initializer_list<std::int16_t>{0, -1, INT16_MIN}) {
        OffscreenControl c(640, 480);
        const float aspect = c->m_fAspectX;
        c->SetSize(100, height);
        EXPECT_EQ(c->m_fAspectX, aspect);
        ASSERT_TRUE(c->MakeContextCurrent());
        GLint viewport[4] = {};
        glGetIntegerv(GL_VIEWPORT, viewport);
        EXPECT_EQ((std::vector<GLint>(viewport, viewport + 4)), (std::vector<GLint>{0, 0, 640, 480}));
        c->PerformRefresh();
        EXPECT_EQ(glGetError(), GLenum{GL_NO_ERROR});
    }
}

TEST(SetSize, WorksInANoPictureViewer) {
    NoPictureControl c;
    c->SetSize(120, 300);
    EXPECT_EQ(c->m_nWidth, 120);
    EXPECT_EQ(c->m_nHeight, 300);
}

}  // namespace
