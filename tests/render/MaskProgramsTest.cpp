// The two shader programs of the masks: the silhouette of the scene, and the product of a mask and an image.
#include "render/SceneFixture.h"

namespace {

class MaskPrograms : public SceneTest {
protected:
    void SetUp() override {
        Frame();  // sets viewport and matrices
        ASSERT_TRUE(pane->MakeContextCurrent());
        glClearColor(0, 0, 0, 0);
        glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
    }
    /// Red, green and blue of a pixel of what was drawn last; y downward.
    static std::array<int, 3> Drawn(int x, int y) {
        std::array<std::uint8_t, 4> pixel{};
        glReadPixels(x, 239 - y, 1, 1, GL_RGBA, GL_UNSIGNED_BYTE, pixel.data());
        return {pixel[0], pixel[1], pixel[2]};
    }
    static GLuint TextureOf(int width, int height, const std::vector<std::uint8_t>& rgba) {
        GLuint name = 0;
        glGenTextures(1, &name);
        glBindTexture(GL_TEXTURE_2D, name);
        glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_NEAREST);
        glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_NEAREST);
        glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA, width, height, 0, GL_RGBA, GL_UNSIGNED_BYTE, rgba.data());
        return name;
    }

    const std::array<int, 3> kWhite{255, 255, 255}, kBlack{0, 0, 0};
};

TEST_F(MaskPrograms, DrawAWhiteSilhouetteThatEndsAtTheClipPlane) {
    Mesh& mesh = Add({}, {1, 0, 0});  // columns 112 to 207
    const GLuint program = pane->m_progCreateMask;
    glUseProgram(program);
    glUniform4f(glGetUniformLocation(program, "clipPlaneEquation0"), -1, 0, 0, 1);  // keeps x below 1, column 184
    glUniform1i(glGetUniformLocation(program, "clipPlane0Enabled"), 1);
    mesh.Draw(KV_ScenePane::DrawModeFlat, false);
    EXPECT_EQ(Drawn(114, 120), kWhite);
    EXPECT_EQ(Drawn(182, 120), kWhite);
    EXPECT_EQ(Drawn(186, 120), kBlack);
    EXPECT_EQ(Drawn(100, 120), kBlack);
    glUniform1i(glGetUniformLocation(program, "clipPlane0Enabled"), 0);
    mesh.Draw(KV_ScenePane::DrawModeFlat, false);
    EXPECT_EQ(Drawn(186, 120), kWhite);
    glUseProgram(0);
}

TEST_F(MaskPrograms, MultiplyMaskAndImageWithTheFirstRowAtTheTop) {
    const GLuint mask = TextureOf(1, 2, {255, 255, 255, 255, 0, 255, 255, 255});
    const GLuint image = TextureOf(2, 1, {200, 100, 50, 255, 40, 80, 120, 255});
    const GLuint program = pane->m_progUseMask;
    glUseProgram(program);
    glActiveTexture(GL_TEXTURE1);
    glBindTexture(GL_TEXTURE_2D, image);
    glActiveTexture(GL_TEXTURE0);
    glBindTexture(GL_TEXTURE_2D, mask);
    glUniform1i(glGetUniformLocation(program, "mask"), 0);
    glUniform1i(glGetUniformLocation(program, "tex"), 1);
    glRectf(-1, -1, 1, 1);
    glUseProgram(0);
    EXPECT_EQ(Drawn(40, 20), (std::array{200, 100, 50}));
    EXPECT_EQ(Drawn(280, 20), (std::array{40, 80, 120}));
    EXPECT_EQ(Drawn(40, 220), (std::array{0, 100, 50}));
    EXPECT_EQ(Drawn(280, 220), (std::array{0, 80, 120}));
}

}  // namespace
