// The host's images over the scene, pixel by pixel and never scaled.
#include <GL/glew.h>

#include <algorithm>
#include <cassert>
#include <utility>

#include "control/ScenePaneCtrl.h"
#include "base/DebugOutput.h"
#include "render/FlatView.h"

namespace {

/// Takes all errors of OpenGL that wait.
/// @return whether there was one
bool TakeGlErrors() {
    bool any = false;
    // A context that is lost may report that for ever.
    for (int i = 0; i < 100 && glGetError() != GL_NO_ERROR; ++i) any = true;
    return any;
}

bool HasSize(const Overlay& overlay) { return overlay.m_nWidth >= 1 && overlay.m_nHeight >= 1; }

std::size_t ByteCount(const Overlay& overlay) {
    return 4 * static_cast<std::size_t>(overlay.m_nWidth) * static_cast<std::size_t>(overlay.m_nHeight);
}

/// In the context that is current.
/// @return 0 when the overlay has no size, or the driver does not take the image
GLuint MakeTexture(const Overlay& overlay) {
    if (!HasSize(overlay)) return 0;
    GLint longestSide = 0;
    glGetIntegerv(GL_MAX_TEXTURE_SIZE, &longestSide);
    if (std::max(overlay.m_nWidth, overlay.m_nHeight) > longestSide) {
        DebugOutput("CKV_ScenePaneCtrl::AddOverlayData(): the image is larger than the driver's textures\n");
        return 0;
    }
    std::vector<std::uint8_t> transparent;  // without bytes of ours the texture would hold whatever the memory held
    if (overlay.m_vPixels.empty()) transparent.resize(ByteCount(overlay));
    const std::vector<std::uint8_t>& pixels = overlay.m_vPixels.empty() ? transparent : overlay.m_vPixels;
    TakeGlErrors();  // what came before is no fault of the image
    GLuint texture = 0;
    glGenTextures(1, &texture);
    glActiveTexture(GL_TEXTURE0);
    glBindTexture(GL_TEXTURE_2D, texture);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_LINEAR);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_LINEAR);
    glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA, overlay.m_nWidth, overlay.m_nHeight, 0, GL_BGRA, GL_UNSIGNED_BYTE,
                 pixels.data());
    glBindTexture(GL_TEXTURE_2D, 0);
    if (!TakeGlErrors()) return texture;
    glDeleteTextures(1, &texture);
    DebugOutput("CKV_ScenePaneCtrl::AddOverlayData(): OpenGL did not take the image\n");
    return 0;
}

/// In a view of pixels with y downward.
void DrawImage(const Overlay& overlay, std::int32_t windowWidth, std::int32_t windowHeight) {
    const auto width = static_cast<float>(overlay.m_nWidth), height = static_cast<float>(overlay.m_nHeight);
    const float x =
        static_cast<float>(windowWidth) * overlay.m_fRelPosX + width * overlay.m_fRelOffsetX + overlay.m_fAbsOffsetX;
    const float y =
        static_cast<float>(windowHeight) * overlay.m_fRelPosY + height * overlay.m_fRelOffsetY + overlay.m_fAbsOffsetY;
    glBindTexture(GL_TEXTURE_2D, overlay.m_uTexture);
    glColor4ub(255, 255, 255, 255);
    glBegin(GL_QUADS);
    glTexCoord2f(0, 0);
    glVertex2f(x, y);
    glTexCoord2f(0, 1);
    glVertex2f(x, y + height);
    glTexCoord2f(1, 1);
    glVertex2f(x + width, y + height);
    glTexCoord2f(1, 0);
    glVertex2f(x + width, y);
    glEnd();
}

}  // namespace

std::int32_t CKV_ScenePaneCtrl::AddOverlayData(const std::uint8_t* argbU8DataPtrHack, std::int32_t width,
                                               std::int32_t height, float relPosX, float relPosY, float relOffsetX,
                                               float relOffsetY, float absOffsetX, float absOffsetY) {
    Overlay overlay{.m_nWidth = width,
                    .m_nHeight = height,
                    .m_fRelPosX = relPosX,
                    .m_fRelPosY = relPosY,
                    .m_fRelOffsetX = relOffsetX,
                    .m_fRelOffsetY = relOffsetY,
                    .m_fAbsOffsetX = absOffsetX,
                    .m_fAbsOffsetY = absOffsetY,
                    .m_vPixels = {}};
    if (HasSize(overlay) && argbU8DataPtrHack != nullptr)
        overlay.m_vPixels.assign(argbU8DataPtrHack, argbU8DataPtrHack + ByteCount(overlay));
    if (MakeContextCurrent()) overlay.m_uTexture = MakeTexture(overlay);
    m_vOverlays.push_back(std::move(overlay));
    return static_cast<std::int32_t>(m_vOverlays.size()) - 1;
}

void CKV_ScenePaneCtrl::UploadOverlays() {
    for (Overlay& overlay : m_vOverlays) overlay.m_uTexture = MakeTexture(overlay);
}

void CKV_ScenePaneCtrl::SetOverlayVisibility(std::int32_t index, std::int32_t enable) {
    assert(index >= 0 && static_cast<std::size_t>(index) < m_vOverlays.size());
    m_vOverlays[static_cast<std::size_t>(index)].m_bVisible = static_cast<std::uint8_t>(enable);  // the low byte counts
}

void CKV_ScenePaneCtrl::DrawOverlays() {
    if (m_vOverlays.empty() || m_nWidth < 1 || m_nHeight < 1) return;
    glPushAttrib(GL_ALL_ATTRIB_BITS);
    glDisable(GL_DEPTH_TEST);
    {
        const FlatView view(0, m_nWidth, m_nHeight, 0, 0, 1);
        glActiveTexture(GL_TEXTURE0);
        glEnable(GL_TEXTURE_2D);
        glUseProgram(0);
        glEnable(GL_BLEND);
        glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
        glDisable(GL_LIGHTING);
        for (const Overlay& overlay : m_vOverlays) {
            // Texturing without an image would paint a white rectangle.
            if (overlay.m_bVisible != 0 && overlay.m_uTexture != 0) DrawImage(overlay, m_nWidth, m_nHeight);
        }
    }
    glPopAttrib();
}
