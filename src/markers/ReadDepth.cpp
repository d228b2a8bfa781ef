// Reads the depth buffer at one pixel, or of a whole frame.
#include "markers/ReadDepth.h"

#include <GL/glew.h>

#include <cstddef>

namespace {

/// The depth of a framebuffer with several samples cannot be read: copies that of one sample per pixel to the
/// framebuffer that is bound for reading. FrameTarget::Bind() binds two different ones only when its target has
/// samples.
void ResolveDepth(GLint x, GLint y, GLint width, GLint height) {
    GLint drawn = 0, read = 0;
    glGetIntegerv(GL_DRAW_FRAMEBUFFER_BINDING, &drawn);
    glGetIntegerv(GL_READ_FRAMEBUFFER_BINDING, &read);
    if (drawn == read) return;
    glBindFramebuffer(GL_READ_FRAMEBUFFER, static_cast<GLuint>(drawn));
    glBindFramebuffer(GL_DRAW_FRAMEBUFFER, static_cast<GLuint>(read));
    glBlitFramebuffer(x, y, x + width, y + height, x, y, x + width, y + height, GL_DEPTH_BUFFER_BIT, GL_NEAREST);
    glBindFramebuffer(GL_READ_FRAMEBUFFER, static_cast<GLuint>(read));
    glBindFramebuffer(GL_DRAW_FRAMEBUFFER, static_cast<GLuint>(drawn));
}

}  // namespace

std::optional<float> ReadDepthAt(std::int32_t x, std::int32_t y, std::int32_t width, std::int32_t height, float limit) {
    // OpenGL defines no value for a pixel outside of the framebuffer. Row 1 is the top one.
    if (x < 0 || x >= width || y < 1 || y > height) return std::nullopt;
    float depth = 1.0f;  // unchanged when the read fails
    const std::int32_t row = height - y;
    ResolveDepth(x, row, 1, 1);
    glReadPixels(x, row, 1, 1, GL_DEPTH_COMPONENT, GL_FLOAT, &depth);
    if (!(depth < limit)) return std::nullopt;
    return depth;
}

std::vector<float> ReadDepths(std::int32_t width, std::int32_t height) {
    if (width <= 0 || height <= 0) return {};
    std::vector<float> depths(static_cast<std::size_t>(width) * static_cast<std::size_t>(height), 1.0f);
    ResolveDepth(0, 0, width, height);
    glReadPixels(0, 0, width, height, GL_DEPTH_COMPONENT, GL_FLOAT, depths.data());
    return depths;
}
