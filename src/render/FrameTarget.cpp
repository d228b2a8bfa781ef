// Framebuffer objects in the format of the windows: 8 bits per channel, 24 bits of depth.
#include "render/FrameTarget.h"

#include <GL/glew.h>

#include <algorithm>
#include <cstring>

#include "log/Log.h"

namespace {

void AttachRenderbuffer(std::uint32_t* name, GLenum attachment, GLenum format, std::int32_t samples, std::int32_t width,
                        std::int32_t height) {
    glGenRenderbuffers(1, name);
    glBindRenderbuffer(GL_RENDERBUFFER, *name);
    glRenderbufferStorageMultisample(GL_RENDERBUFFER, samples, format, width, height);
    glFramebufferRenderbuffer(GL_FRAMEBUFFER, attachment, GL_RENDERBUFFER, *name);
    glBindRenderbuffer(GL_RENDERBUFFER, 0);
}

/// A texture of internal format GL_RGBA, for which Mesa chooses the byte order of the data, BGRA. That is the order of
/// windows, to which it is copied as it is; from a renderbuffer of GL_RGBA8 every pixel would be converted.
void AttachTexture(std::uint32_t* name, std::int32_t width, std::int32_t height) {
    glGenTextures(1, name);
    glBindTexture(GL_TEXTURE_2D, *name);
    glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA, width, height, 0, GL_BGRA, GL_UNSIGNED_INT_8_8_8_8_REV, nullptr);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_NEAREST);  // it has one level
    glFramebufferTexture2D(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_TEXTURE_2D, *name, 0);
    glBindTexture(GL_TEXTURE_2D, 0);
}

/// Of the current context: the flags of GLEW are those of the driver that was loaded last, by any viewer.
bool HasFlipExtension() {
    const auto* const list = reinterpret_cast<const char*>(glGetString(GL_EXTENSIONS));
    return glFramebufferParameteri != nullptr && list != nullptr &&
           std::strstr(list, "GL_MESA_framebuffer_flip_y") != nullptr;
}

}  // namespace

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
    if ((samples > 0 && !Make(m_resolved, 0)) || !Make(m_drawn, samples)) {
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
    GLint longest = 0;
    glGetIntegerv(GL_MAX_TEXTURE_SIZE, &longest);
    if (std::max(m_nWidth, m_nHeight) > longest) return false;  // softpipe would end the process
    glGenFramebuffers(1, &buffers.framebuffer);
    glBindFramebuffer(GL_FRAMEBUFFER, buffers.framebuffer);
    // Mesa keeps the rows of windows from the top down. In the same order a picture is the same to the bit as one drawn
    // into a window, where roundings depend on the direction, and its copy to the window needs no flip.
    if (HasFlipExtension()) glFramebufferParameteri(GL_FRAMEBUFFER, GL_FRAMEBUFFER_FLIP_Y_MESA, GL_TRUE);
    if (samples > 0)
        AttachRenderbuffer(&buffers.color, GL_COLOR_ATTACHMENT0, GL_RGBA8, samples, m_nWidth, m_nHeight);
    else
        AttachTexture(&buffers.texture, m_nWidth, m_nHeight);
    // With stencil bits that nothing uses: of 24 bits of depth alone, virgl returns the upper 16.
    AttachRenderbuffer(&buffers.depth, GL_DEPTH_STENCIL_ATTACHMENT, GL_DEPTH24_STENCIL8, samples, m_nWidth, m_nHeight);
    if (glCheckFramebufferStatus(GL_FRAMEBUFFER) != GL_FRAMEBUFFER_COMPLETE) return false;
    glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
    return true;
}

/// Names of 0 are ignored by OpenGL, and deleting the bound framebuffer binds the window's.
void FrameTarget::Delete(Buffers& buffers) {
    glDeleteFramebuffers(1, &buffers.framebuffer);
    glDeleteTextures(1, &buffers.texture);
    glDeleteRenderbuffers(1, &buffers.color);
    glDeleteRenderbuffers(1, &buffers.depth);
    buffers = {};
}

void FrameTarget::Bind() const {
    glBindFramebuffer(GL_FRAMEBUFFER, Name());
    if (ReadName() != Name()) glBindFramebuffer(GL_READ_FRAMEBUFFER, ReadName());
}

void FrameTarget::Resolve() const {
    if (ReadName() != Name()) CopyColors(Name(), ReadName());
}

void FrameTarget::CopyToWindow() const {
    if (Name() == 0) return;
    Resolve();
    CopyColors(ReadName(), 0);
}

void FrameTarget::CopyColors(std::uint32_t from, std::uint32_t to) const {
    glBindFramebuffer(GL_READ_FRAMEBUFFER, from);
    glBindFramebuffer(GL_DRAW_FRAMEBUFFER, to);
    glBlitFramebuffer(0, 0, m_nWidth, m_nHeight, 0, 0, m_nWidth, m_nHeight, GL_COLOR_BUFFER_BIT, GL_NEAREST);
    Bind();
}
