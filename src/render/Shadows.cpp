// Programs and off-screen framebuffers of a context, and the depth pass of the shadows. ShadowCamera.h computes the
// position of the light; the shader that reads the map is in ShaderSources.cpp.
#include <GL/glew.h>
//
#include <GL/glu.h>

#include <algorithm>
#include <cstdlib>

#include "base/ScopeExit.h"
#include "control/ScenePaneCtrl.h"
#include "log/Log.h"
#include "render/MeshDraw.h"
#include "render/ShaderPrograms.h"
#include "render/ShaderSources.h"

namespace {

[[noreturn]] void EndProcess(const char* reason) {
    Log(LogLevel::Error) << reason << std::endl;
    std::exit(1);
}

void RequireCompleteFramebuffer() {
    if (glCheckFramebufferStatus(GL_FRAMEBUFFER) != GL_FRAMEBUFFER_COMPLETE) EndProcess("Framebuffer is incomplete. ");
}

/// Allocates the depth texture and attaches it to the bound framebuffer, which then has no colour buffer.
void AttachDepthTexture(std::uint32_t texture, std::int32_t width, std::int32_t height) {
    glBindTexture(GL_TEXTURE_2D, texture);
    glTexImage2D(GL_TEXTURE_2D, 0, GL_DEPTH_COMPONENT, width, height, 0, GL_DEPTH_COMPONENT, GL_FLOAT, nullptr);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_NEAREST);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_NEAREST);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_S, GL_CLAMP_TO_EDGE);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_T, GL_CLAMP_TO_EDGE);
    const GLfloat border[4] = {1.0f, 0.0f, 0.0f, 0.0f};
    glTexParameterfv(GL_TEXTURE_2D, GL_TEXTURE_BORDER_COLOR, border);
    glFramebufferTexture2D(GL_FRAMEBUFFER, GL_DEPTH_ATTACHMENT, GL_TEXTURE_2D, texture, 0);
    const GLenum none = GL_NONE;
    glDrawBuffers(1, &none);
    glReadBuffer(GL_NONE);  // without it the framebuffer is incomplete on strict 3.3 drivers
    glBindTexture(GL_TEXTURE_2D, 0);
}

}  // namespace

void CKV_ScenePaneCtrl::SetShadowMode(std::int16_t mode) { m_bShadowEnabled = mode == 1 ? 1 : 0; }

std::int16_t CKV_ScenePaneCtrl::GetShadowMode() { return m_bShadowEnabled != 0 ? 1 : 0; }

void CKV_ScenePaneCtrl::SetShadowColor(float red, float green, float blue) { m_fShadowColor = {red, green, blue}; }

void CKV_ScenePaneCtrl::InitFramebuffers() {
    // The programs, in the order of ShaderIndex.
    std::uint32_t* const programs[kShaderCount] = {
        &m_progPerPixel, &m_progTexPerPixel, &m_progCreateMask, &m_progUseMask,
        &m_progDepth,    &m_progQuad,        &m_progShadow,     &m_progFreeFloatingPoints};
    for (std::size_t i = 0; i < kShaderCount; ++i) {
        const ShaderSource& source = ShaderSources()[i];
        *programs[i] = BuildProgram(source.name, source.vertex, source.fragment);
    }
    glEnable(GL_MULTISAMPLE);

    // The shadow map: a framebuffer with a depth texture.
    Log(LogLevel::Info) << "Initalize framebuffer. " << std::endl;
    m_nShadowFbo = 0;
    glGenFramebuffers(1, &m_nShadowFbo);
    if (m_nShadowFbo == 0) EndProcess("Failed to create framebuffer.");
    glBindFramebuffer(GL_FRAMEBUFFER, m_nShadowFbo);
    m_nShadowTexture = 0;
    glGenTextures(1, &m_nShadowTexture);
    if (m_nShadowTexture == 0) EndProcess("Failed to create texture. ");
    Log(LogLevel::Info) << "Init textures." << std::endl;
    AttachDepthTexture(m_nShadowTexture, m_nShadowMapWidth, m_nShadowMapHeight);
    RequireCompleteFramebuffer();
    glBindFramebuffer(GL_FRAMEBUFFER, 0);

    // The target of screenshots: a framebuffer with renderbuffers for colour and depth.
    Log(LogLevel::Info) << "Initialize renderbuffer." << std::endl;
    glGenRenderbuffers(1, &m_nOffscreenColorRb);
    glGenRenderbuffers(1, &m_nOffscreenDepthRb);
    glGenFramebuffers(1, &m_nOffscreenFbo);
    glBindRenderbuffer(GL_RENDERBUFFER, m_nOffscreenColorRb);
    glRenderbufferStorage(GL_RENDERBUFFER, GL_RGBA, kOffscreenSize, kOffscreenSize);
    glBindRenderbuffer(GL_RENDERBUFFER, m_nOffscreenDepthRb);
    glRenderbufferStorage(GL_RENDERBUFFER, GL_DEPTH_COMPONENT, kOffscreenSize, kOffscreenSize);
    glBindRenderbuffer(GL_RENDERBUFFER, 0);
    glBindFramebuffer(GL_FRAMEBUFFER, m_nOffscreenFbo);
    glFramebufferRenderbuffer(GL_FRAMEBUFFER, GL_DEPTH_ATTACHMENT, GL_RENDERBUFFER, m_nOffscreenDepthRb);
    glFramebufferRenderbuffer(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_RENDERBUFFER, m_nOffscreenColorRb);
    RequireCompleteFramebuffer();

    // The target of frames. It exists before the first one, so that all that follows finds it bound.
    const WindowSize size = m_pWindow->ClientSize();
    m_frameTarget.SetSize(size.width, size.height, m_nGlSamples);
}

void CKV_ScenePaneCtrl::RenderShadowMap(float* projection, float* modelView) {
    // The light uses the projection of the camera: it is orthographic and its depth range extends to both sides of the
    // eye, so that it covers the scene from the light, too.
    std::ranges::copy(m_viewMatrices.ProjectionAsFloats(), projection);
    glMatrixMode(GL_MODELVIEW);
    glPushMatrix();
    glLoadIdentity();
    gluLookAt(m_fShadowEye[0], m_fShadowEye[1], m_fShadowEye[2], m_fShadowCenter[0], m_fShadowCenter[1],
              m_fShadowCenter[2], m_fShadowUp[0], m_fShadowUp[1], m_fShadowUp[2]);
    std::ranges::copy(m_viewMatrices.ShadowModelView(), modelView);

    // The depth pass.
    glBindFramebuffer(GL_FRAMEBUFFER, m_nShadowFbo);
    // Restores the viewport, and the depth test: the selection is drawn without it.
    glPushAttrib(GL_DEPTH_BUFFER_BIT | GL_VIEWPORT_BIT);
    const ScopeExit restore([this] {
        glPopAttrib();
        m_frameTarget.Bind();
        glMatrixMode(GL_MODELVIEW);
        glPopMatrix();
        // An unmatched pop on purpose: it raises GL_STACK_UNDERFLOW and changes nothing. Hosts that query OpenGL errors
        // recognise a shadow pass by it.
        glMatrixMode(GL_PROJECTION);
        glPopMatrix();
        glMatrixMode(GL_MODELVIEW);
    });
    glViewport(0, 0, m_nShadowMapWidth, m_nShadowMapHeight);
    glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
    glEnable(GL_DEPTH_TEST);
    glUseProgram(m_progDepth);
    // m_progDepth stays bound: the caller binds its own program next.
    DrawVisible(m_vpMeshes, KV_ScenePane::DrawModeFlat, false);  // in full detail during drags
}
