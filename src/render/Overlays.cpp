// The images that the host places over the scene. They are drawn unscaled and blended, after the scene and before the
// free points. FlatView.h makes the view in pixels.
#include <GL/glew.h>

#include <algorithm>
#include <cassert>
#include <utility>

#include "base/DebugOutput.h"
#include "control/ScenePaneCtrl.h"
#include "render/FlatView.h"

namespace {

/// Reads and clears all OpenGL error flags.
/// @return whether one was set
bool ClearGlErrors() {
    bool any = false;
    // Bounded: a lost context may report its loss at every call.
    for (int i = 0; i < 100 && glGetError() != GL_NO_ERROR; ++i) any = true;
    return any;
}

bool HasSize(const Overlay& overlay) { return overlay.m_nWidth >= 1 && overlay.m_nHeight >= 1; }

std::size_t ByteCount(const Overlay& overlay) {
    return 4 * static_cast<std::size_t>(overlay.m_nWidth) * static_cast<std::size_t>(overlay.m_nHeight);
}

/// Makes and uploads the texture in the current context. A failure is reported in the debugger output.
/// @return its name; 0 when the overlay has no size or the driver rejects the image
GLuint MakeTexture(const Overlay& overlay) {
    if (!HasSize(overlay)) return 0;
    GLint longestSide = 0;
    glGetIntegerv(GL_MAX_TEXTURE_SIZE, &longestSide);
    if (std::max(overlay.m_nWidth, overlay.m_nHeight) > longestSide) {
        DebugOutput("CKV_ScenePaneCtrl::AddOverlayData(): the image is larger than the driver's textures\n");
        return 0;
    }
    // Pixels of the host, or transparent ones.
    std::vector<std::uint8_t> transparent;  // null pixels would leave the texture undefined
    if (overlay.m_vPixels.empty()) transparent.resize(ByteCount(overlay));
    const std::vector<std::uint8_t>& pixels = overlay.m_vPixels.empty() ? transparent : overlay.m_vPixels;
    ClearGlErrors();  // earlier errors are not caused by this image
    // Linear filters, for images whose corner is between two pixels; their edges must not mix with the opposite edge.
    GLuint texture = 0;
    glGenTextures(1, &texture);
    glActiveTexture(GL_TEXTURE0);
    glBindTexture(GL_TEXTURE_2D, texture);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_LINEAR);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_LINEAR);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_S, GL_CLAMP_TO_EDGE);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_T, GL_CLAMP_TO_EDGE);
    glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA, overlay.m_nWidth, overlay.m_nHeight, 0, GL_BGRA, GL_UNSIGNED_BYTE,
                 pixels.data());
    glBindTexture(GL_TEXTURE_2D, 0);
    if (!ClearGlErrors()) return texture;
    glDeleteTextures(1, &texture);
    DebugOutput("CKV_ScenePaneCtrl::AddOverlayData(): OpenGL did not take the image\n");
    return 0;
}

/// Draws one image at its anchor. The current view must be in pixels with y downward; it is not filtered when the
/// corner is at a whole pixel.
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
    DelayedDebugOutput delayed;  // a sink may add an overlay itself
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
    // Without a context the overlay is listed and uploaded when one is created.
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
            // Without a texture the quad would be a white rectangle.
            if (overlay.m_bVisible != 0 && overlay.m_uTexture != 0) DrawImage(overlay, m_nWidth, m_nHeight);
        }
    }
    glPopAttrib();
}
