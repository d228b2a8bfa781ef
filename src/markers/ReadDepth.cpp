// Reads the depth buffer at one pixel.
#include "markers/ReadDepth.h"

#include <GL/glew.h>

namespace {

/// The depth of a framebuffer with several samples cannot be read: copies that of one sample of the pixel to the
/// framebuffer that is bound for reading. FrameTarget::Bind() binds two different ones only when its target has
/// samples.
void ResolveDepthAt(GLint x, GLint y) {
    GLint drawn = 0, read = 0;
    glGetIntegerv(GL_DRAW_FRAMEBUFFER_BINDING, &drawn);
    glGetIntegerv(GL_READ_FRAMEBUFFER_BINDING, &read);
    if (drawn == read) return;
    glBindFramebuffer(GL_READ_FRAMEBUFFER, static_cast<GLuint>(drawn));
    glBindFramebuffer(GL_DRAW_FRAMEBUFFER, static_cast<GLuint>(read));
    glBlitFramebuffer(x, y, x + 1, y + 1, x, y, x + 1, y + 1, GL_DEPTH_BUFFER_BIT, GL_NEAREST);
    glBindFramebuffer(GL_READ_FRAMEBUFFER, static_cast<GLuint>(read));
    glBindFramebuffer(GL_DRAW_FRAMEBUFFER, static_cast<GLuint>(drawn));
}

}  // namespace

std::optional<float> ReadDepthAt(std::int32_t x, std::int32_t y, std::int32_t width, std::int32_t height, float limit) {
    // OpenGL defines no value for a pixel outside of the framebuffer. Row 1 is the top one.
    if (x < 0 || x >= width || y < 1 || y > height) return std::nullopt;
    float depth = 1.0f;  // unchanged when the read fails
    const std::int32_t row = height - y;
    ResolveDepthAt(x, row);
    glReadPixels(x, row, 1, 1, GL_DEPTH_COMPONENT, GL_FLOAT, &depth);
    if (!(depth < limit)) return std::nullopt;
    return depth;
}
