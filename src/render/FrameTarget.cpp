// Framebuffer objects with renderbuffers, in the format of the windows: 8 bits per channel, 24 bits of depth.
#include "render/FrameTarget.h"

#include <GL/glew.h>

#include <algorithm>

#include "log/Log.h"

void FrameTarget::SetSize(std::int32_t width, std::int32_t height, std::int32_t samples) {
    width = std::max(width, 1);
    height = std::max(height, 1);
    samples = std::max(samples, 0);
    // Also after a failure: a frame of the same size does not try again.
    if (width == m_nWidth && height == m_nHeight && samples == m_nSamples) return;
    Delete(m_drawn);
    Delete(m_resolved);
    m_nWidth = width;
    m_nHeight = height;
    m_nSamples = samples;
    if (!Make(m_drawn, samples) || (samples > 0 && !Make(m_resolved, 0))) {
        Delete(m_drawn);
        Delete(m_resolved);
        glGetError();  // out of memory, which is handled here
        if (!m_bLogged) Log(LogLevel::Warning) << "Frames are drawn into the framebuffer of the window." << std::endl;
        m_bLogged = true;
    }
    Bind();
}

/// Leaves the new framebuffer bound, cleared.
bool FrameTarget::Make(Buffers& buffers, std::int32_t samples) const {
    const auto storage = [&](std::uint32_t* name, GLenum format, GLenum attachment) {
        glGenRenderbuffers(1, name);
        glBindRenderbuffer(GL_RENDERBUFFER, *name);
        glRenderbufferStorageMultisample(GL_RENDERBUFFER, samples, format, m_nWidth, m_nHeight);
        glFramebufferRenderbuffer(GL_FRAMEBUFFER, attachment, GL_RENDERBUFFER, *name);
    };
    glGenFramebuffers(1, &buffers.framebuffer);
    glBindFramebuffer(GL_FRAMEBUFFER, buffers.framebuffer);
    // Mesa keeps the rows of windows from the top down. In the same order a picture is the same to the bit as one drawn
    // into a window, where roundings depend on the direction, and its copy to the window needs no flip.
    if (GLEW_MESA_framebuffer_flip_y && GLEW_VERSION_4_3)
        glFramebufferParameteri(GL_FRAMEBUFFER, GL_FRAMEBUFFER_FLIP_Y_MESA, GL_TRUE);
    storage(&buffers.color, GL_RGBA8, GL_COLOR_ATTACHMENT0);
    storage(&buffers.depth, GL_DEPTH_COMPONENT24, GL_DEPTH_ATTACHMENT);
    glBindRenderbuffer(GL_RENDERBUFFER, 0);
    if (glCheckFramebufferStatus(GL_FRAMEBUFFER) != GL_FRAMEBUFFER_COMPLETE) return false;
    glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
    return true;
}

/// Names of 0 are ignored by OpenGL, and deleting the bound framebuffer binds the window's.
void FrameTarget::Delete(Buffers& buffers) {
    glDeleteFramebuffers(1, &buffers.framebuffer);
    glDeleteRenderbuffers(1, &buffers.color);
    glDeleteRenderbuffers(1, &buffers.depth);
    buffers = {};
}

void FrameTarget::Bind() const {
    glBindFramebuffer(GL_FRAMEBUFFER, Name());
    if (ReadName() != Name()) glBindFramebuffer(GL_READ_FRAMEBUFFER, ReadName());
}

void FrameTarget::Resolve() const {
    if (ReadName() == Name()) return;
    glBindFramebuffer(GL_READ_FRAMEBUFFER, Name());
    glBindFramebuffer(GL_DRAW_FRAMEBUFFER, ReadName());
    glBlitFramebuffer(0, 0, m_nWidth, m_nHeight, 0, 0, m_nWidth, m_nHeight, GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT,
                      GL_NEAREST);
    Bind();
}

void FrameTarget::CopyToWindow() const {
    if (Name() == 0) return;
    glBindFramebuffer(GL_READ_FRAMEBUFFER, ReadName());
    glBindFramebuffer(GL_DRAW_FRAMEBUFFER, 0);
    glBlitFramebuffer(0, 0, m_nWidth, m_nHeight, 0, 0, m_nWidth, m_nHeight, GL_COLOR_BUFFER_BIT, GL_NEAREST);
    Bind();
}
