// The OpenGL objects of a freehand session, made from what the scene shows.
#include <GL/glew.h>

#include <algorithm>
#include <cstring>

#include "base/ScopeExit.h"
#include "control/ScenePaneCtrl.h"
#include "platform/WaitCursor.h"
#include "render/MeshDraw.h"

namespace {

using Pixels = std::vector<std::uint8_t>;  ///< bytes r, g, b, a

/// The program stays bound.
void DrawSilhouette(CKV_ScenePaneCtrl& control) {
    glClearColor(0, 0, 0, 0);
    glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
    glColorMaterial(GL_FRONT, GL_DIFFUSE);
    glEnable(GL_COLOR_MATERIAL);
    glUseProgram(control.m_progCreateMask);
    control.m_clipPlane.SetClipUniforms(control.m_progCreateMask, control.m_bClipPlaneActive != 0);
    DrawVisible(control.m_vpMeshes, KV_ScenePane::DrawModeGouraud, false);
}

/// White where the drawing area shows objects, else 0; top row first. White throughout when the driver cannot make a
/// framebuffer for it: the tint is then not limited to the objects.
Pixels ReadSilhouette(CKV_ScenePaneCtrl& control) {
    const auto width = static_cast<std::size_t>(control.m_nWidth), height = static_cast<std::size_t>(control.m_nHeight);
    Pixels bottomFirst(width * height * 4), topFirst(bottomFirst.size(), 255);
    FrameTarget target;
    glPushAttrib(GL_ALL_ATTRIB_BITS);
    const ScopeExit restore([&] {
        glUseProgram(0);
        target.Release();
        control.m_frameTarget.Bind();  // before the attributes, which hold the draw buffer of the frame
        glPopAttrib();
    });
    target.SetSize(control.m_nWidth, control.m_nHeight, 0);
    if (target.Name() == 0) return topFirst;
    DrawSilhouette(control);
    glReadPixels(0, 0, control.m_nWidth, control.m_nHeight, GL_RGBA, GL_UNSIGNED_BYTE, bottomFirst.data());
    const std::size_t rowBytes = width * 4;
    for (std::size_t row = 0; row < height; ++row)
        std::memcpy(&topFirst[row * rowBytes], &bottomFirst[(height - 1 - row) * rowBytes], rowBytes);
    return topFirst;
}

void MakeTexture(std::uint32_t* name, const CutMaskTextures& size, const Pixels& pixels) {
    glGenTextures(1, name);
    glBindTexture(GL_TEXTURE_2D, *name);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_NEAREST);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_NEAREST);
    glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA8, size.m_nWidth, size.m_nHeight, 0, GL_RGBA, GL_UNSIGNED_BYTE,
                 pixels.data());
    glBindTexture(GL_TEXTURE_2D, 0);
}

void MakeBuffer(std::uint32_t* name, const Pixels& pixels) {
    glGenBuffers(1, name);
    glBindBuffer(GL_PIXEL_UNPACK_BUFFER, *name);
    glBufferData(GL_PIXEL_UNPACK_BUFFER, static_cast<GLsizeiptr>(pixels.size()), pixels.data(), GL_STREAM_DRAW);
    glBindBuffer(GL_PIXEL_UNPACK_BUFFER, 0);
}

bool FitsIntoATexture(const CKV_ScenePaneCtrl& control) {
    GLint longest = 0;
    glGetIntegerv(GL_MAX_TEXTURE_SIZE, &longest);
    return std::min(control.m_nWidth, control.m_nHeight) >= 1 &&
           std::max(control.m_nWidth, control.m_nHeight) <= longest;
}

}  // namespace

std::unique_ptr<CutMaskTextures> CKV_ScenePaneCtrl::CreateCutMaskTextures() {
    const WaitCursor waitCursor(*m_pWindow);
    const std::lock_guard lock(*g_drawLock);
    if (!MakeContextCurrent()) return nullptr;
    // So that the silhouette has the shape that the next frame shows. What the last one has left is of the old size.
    if (StoreWindowSize()) m_bObjectDepths = false;
    if (!FitsIntoATexture(*this)) return nullptr;
    const Pixels silhouette = ReadSilhouette(*this);
    const Pixels zeros(silhouette.size());
    InvalidateControl(false);

    auto textures = std::make_unique<CutMaskTextures>();
    textures->m_nWidth = m_nWidth;
    textures->m_nHeight = m_nHeight;
    textures->m_dModelView = m_viewMatrices.ModelView();
    MakeTexture(&textures->m_uLineTexture, *textures, zeros);
    MakeTexture(&textures->m_uFillTexture, *textures, zeros);
    MakeTexture(&textures->m_uSilhouetteTexture, *textures, silhouette);
    MakeBuffer(&textures->m_uFillBuffer, zeros);
    MakeBuffer(&textures->m_uLineBuffer, zeros);
    return textures;
}
