// Reads the back buffer, resolves its samples and flips its rows.
#include "render/ReadFrame.h"

#include <GL/glew.h>

#include <algorithm>
#include <cstddef>

namespace {

/// A copy of the back buffer with one sample per pixel, bound as the read framebuffer during its lifetime. The blit
/// computes the mean of the samples; glReadPixels() on a multisampled window returns a single sample on llvmpipe.
class ResolvedBackBuffer {
public:
    ResolvedBackBuffer(GLsizei width, GLsizei height) {
        glGenFramebuffers(1, &m_framebuffer);
        glGenRenderbuffers(1, &m_colors);
        glBindRenderbuffer(GL_RENDERBUFFER, m_colors);
        glRenderbufferStorage(GL_RENDERBUFFER, GL_RGBA8, width, height);
        glBindRenderbuffer(GL_RENDERBUFFER, 0);
        glBindFramebuffer(GL_DRAW_FRAMEBUFFER, m_framebuffer);
        glFramebufferRenderbuffer(GL_DRAW_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_RENDERBUFFER, m_colors);
        glBlitFramebuffer(0, 0, width, height, 0, 0, width, height, GL_COLOR_BUFFER_BIT, GL_NEAREST);
        glBindFramebuffer(GL_READ_FRAMEBUFFER, m_framebuffer);
    }
    /// Binds the framebuffer of the window again.
    ~ResolvedBackBuffer() {
        glBindFramebuffer(GL_FRAMEBUFFER, 0);
        glDeleteFramebuffers(1, &m_framebuffer);
        glDeleteRenderbuffers(1, &m_colors);
    }
    ResolvedBackBuffer(const ResolvedBackBuffer&) = delete;
    ResolvedBackBuffer& operator=(const ResolvedBackBuffer&) = delete;

private:
    GLuint m_framebuffer = 0, m_colors = 0;
};

}  // namespace

std::vector<std::uint32_t> ReadBackBuffer(std::int32_t width, std::int32_t height) {
    if (width <= 0 || height <= 0) return {};
    std::vector<std::uint32_t> pixels(static_cast<std::size_t>(width) * static_cast<std::size_t>(height));
    GLint readBuffer = GL_BACK, sampleBuffers = 0;  // of the window's framebuffer
    glGetIntegerv(GL_READ_BUFFER, &readBuffer);
    glGetIntegerv(GL_SAMPLE_BUFFERS, &sampleBuffers);
    glReadBuffer(GL_BACK);
    const auto read = [&] { glReadPixels(0, 0, width, height, GL_BGRA, GL_UNSIGNED_INT_8_8_8_8_REV, pixels.data()); };
    if (sampleBuffers > 0) {
        const ResolvedBackBuffer resolved(width, height);
        read();
    } else {
        read();
    }
    glReadBuffer(static_cast<GLenum>(readBuffer));

    // To the form that hosts receive.
    for (std::uint32_t& pixel : pixels) pixel |= 0xFF000000;  // opaque, whatever alpha the drawing wrote
    const auto row = [&](std::int32_t y) { return pixels.begin() + std::ptrdiff_t{y} * width; };
    for (std::int32_t y = 0; y < height / 2; ++y)  // OpenGL returns the bottom row first
        std::swap_ranges(row(y), row(y) + width, row(height - 1 - y));
    return pixels;
}
