// A freehand lasso: its textures and its drawing. The images are made in cut/CutSession.cpp.
#include <GL/glew.h>

#include <algorithm>
#include <cmath>

#include "cut/CutSession.h"
#include "render/FlatView.h"

namespace {

/// Sends a rectangle of pixels to a texture through a pixel buffer. The buffer holds the rectangle alone, from its
/// start, so that no more is mapped and transferred than what has changed.
class TextureUpload {
public:
    TextureUpload(std::uint32_t buffer, const PixelRectangle& rectangle) : m_rectangle(rectangle) {
        glBindBuffer(GL_PIXEL_UNPACK_BUFFER, buffer);
        const std::size_t bytes = WidthOf(rectangle) * HeightOf(rectangle) * sizeof(std::uint32_t);
        m_pPixels = static_cast<std::uint32_t*>(glMapBufferRange(
            GL_PIXEL_UNPACK_BUFFER, 0, static_cast<GLsizeiptr>(bytes), GL_MAP_WRITE_BIT | GL_MAP_INVALIDATE_RANGE_BIT));
    }
    ~TextureUpload() { glBindBuffer(GL_PIXEL_UNPACK_BUFFER, 0); }
    TextureUpload(const TextureUpload&) = delete;
    TextureUpload& operator=(const TextureUpload&) = delete;

    [[nodiscard]] bool IsMapped() const { return m_pPixels != nullptr; }
    /// A row of the rectangle, to be written only. @param y  of the texture
    [[nodiscard]] std::uint32_t* Row(std::int32_t y) const {
        return m_pPixels + static_cast<std::size_t>(y - m_rectangle[1]) * WidthOf(m_rectangle);
    }
    /// @return false when the driver has lost the pixels: the texture is as before
    [[nodiscard]] bool Send(std::uint32_t texture) const {
        if (glUnmapBuffer(GL_PIXEL_UNPACK_BUFFER) == GL_FALSE) return false;
        GLint alignment = 0;
        glGetIntegerv(GL_UNPACK_ALIGNMENT, &alignment);
        glPixelStorei(GL_UNPACK_ALIGNMENT, 4);
        GLint bound = 0;
        glGetIntegerv(GL_TEXTURE_BINDING_2D, &bound);
        glBindTexture(GL_TEXTURE_2D, texture);
        glTexSubImage2D(GL_TEXTURE_2D, 0, m_rectangle[0], m_rectangle[1], static_cast<GLsizei>(WidthOf(m_rectangle)),
                        static_cast<GLsizei>(HeightOf(m_rectangle)), GL_RGBA, GL_UNSIGNED_BYTE, nullptr);
        glBindTexture(GL_TEXTURE_2D, static_cast<GLuint>(bound));
        glPixelStorei(GL_UNPACK_ALIGNMENT, alignment);
        return true;
    }

private:
    const PixelRectangle m_rectangle;
    std::uint32_t* m_pPixels;
};

void BindTexture(GLenum unit, std::uint32_t texture) {
    glActiveTexture(unit);
    glBindTexture(GL_TEXTURE_2D, texture);
}

}  // namespace

// Without a context nothing was made, and the entry points may not be loaded.
CutMaskTextures::~CutMaskTextures() {
    for (const std::uint32_t* texture : {&m_uSilhouetteTexture, &m_uLineTexture, &m_uFillTexture})
        if (*texture != 0) glDeleteTextures(1, texture);
    for (const std::uint32_t* buffer : {&m_uLineBuffer, &m_uFillBuffer})
        if (*buffer != 0) glDeleteBuffers(1, buffer);
}

/// Shows new points. When the buffer cannot be mapped they wait for the next frame.
void CutSession::UpdateLines() {
    const Rectangle lines = FindChangedLines();
    const Rectangle changed = m_optLinesToUpload ? Union(lines, *m_optLinesToUpload) : lines;
    const TextureUpload upload(m_pTextures->m_uLineBuffer, changed);
    if (!upload.IsMapped()) return;

    if (!m_vPending.empty() || m_optPreview) CommitLines(lines);
    for (std::int32_t y = changed[1]; y <= changed[3]; ++y) {
        const std::size_t row = static_cast<std::size_t>(y) * static_cast<std::size_t>(m_nWidth);
        std::copy_n(&m_vComposite[row + static_cast<std::size_t>(changed[0])], WidthOf(changed), upload.Row(y));
    }
    m_optLinesToUpload.reset();
    if (!upload.Send(m_pTextures->m_uLineTexture)) m_optLinesToUpload = changed;
}

/// Tints the lasso as m_vComposite shows it. What a larger lasso has tinted before becomes outside again.
void CutSession::UpdateFill() {
    if (!m_bFillIsStale) return;
    const Rectangle box = Widened(m_rcShown);
    const Rectangle changed = Union(box, m_rcFillShown);
    const TextureUpload upload(m_pTextures->m_uFillBuffer, changed);
    if (!upload.IsMapped()) return;

    FillLasso(box);
    const std::size_t width = WidthOf(box), left = static_cast<std::size_t>(box[0] - changed[0]);
    for (std::int32_t y = changed[1]; y <= changed[3]; ++y) {
        std::uint32_t* const row = upload.Row(y);
        if (y < box[1] || y > box[3]) {
            std::fill_n(row, WidthOf(changed), m_uOutsideColor);
            continue;
        }
        const std::uint8_t* const markers = &m_vMarkers[static_cast<std::size_t>(y - box[1]) * width];
        std::fill_n(row, left, m_uOutsideColor);
        std::transform(markers, markers + width, row + left, [this](std::uint8_t marker) { return TintOf(marker); });
        std::fill(row + left + width, row + WidthOf(changed), m_uOutsideColor);
    }
    m_rcFillShown = changed;
    if (!upload.Send(m_pTextures->m_uFillTexture)) return;
    m_rcFillShown = box;
    m_bFillIsStale = false;
}

/// Restricts drawing to what shows a box of the images: drivers without a graphics card draw each pixel of the window
/// that the quads cover. The images cover the viewport, whatever its size is by now.
void CutSession::LimitTo(const Rectangle& box) const {
    GLint viewport[4] = {};
    glGetIntegerv(GL_VIEWPORT, viewport);
    const double scaleX = static_cast<double>(viewport[2]) / m_nWidth,
                 scaleY = static_cast<double>(viewport[3]) / m_nHeight;
    // One pixel more on every side, for what is rounded here and in the driver.
    const auto left = static_cast<GLint>(std::floor(box[0] * scaleX)) - 1;
    const auto right = static_cast<GLint>(std::ceil((box[2] + 1) * scaleX)) + 1;
    const auto top = static_cast<GLint>(std::floor(box[1] * scaleY)) - 1;
    const auto bottom = static_cast<GLint>(std::ceil((box[3] + 1) * scaleY)) + 1;
    glEnable(GL_SCISSOR_TEST);
    glScissor(viewport[0] + left, viewport[1] + viewport[3] - bottom, right - left, bottom - top);
}

/// Multiplies silhouette and tint: objects are tinted, the background is not.
void CutSession::DrawTint() const {
    BindTexture(GL_TEXTURE1, m_pTextures->m_uFillTexture);
    BindTexture(GL_TEXTURE0, m_pTextures->m_uSilhouetteTexture);
    glUseProgram(m_uProgram);
    glUniform1i(glGetUniformLocation(m_uProgram, "mask"), 0);
    glUniform1i(glGetUniformLocation(m_uProgram, "tex"), 1);
    DrawWholeWindow();
    glUseProgram(0);
    BindTexture(GL_TEXTURE1, 0);
    glActiveTexture(GL_TEXTURE0);
}

void CutSession::DrawLines() const {
    glBindTexture(GL_TEXTURE_2D, m_pTextures->m_uLineTexture);
    glColor4ub(255, 255, 255, 255);
    const auto width = static_cast<float>(m_nWidth), height = static_cast<float>(m_nHeight);
    glBegin(GL_QUADS);
    glTexCoord2f(0, 0);
    glVertex2f(0, 0);
    glTexCoord2f(0, 1);
    glVertex2f(0, height);
    glTexCoord2f(1, 1);
    glVertex2f(width, height);
    glTexCoord2f(1, 0);
    glVertex2f(width, 0);
    glEnd();
    glBindTexture(GL_TEXTURE_2D, 0);
}

void CutSession::Draw(bool withFill) {
    if (m_pTextures->m_uLineTexture == 0) return;
    if (!m_vPending.empty() || m_optPreview || m_optLinesToUpload) UpdateLines();
    if (withFill) UpdateFill();

    glPushAttrib(GL_ALL_ATTRIB_BITS);
    {
        const FlatView view(0, m_nWidth, m_nHeight, 0, 0, 1);
        glActiveTexture(GL_TEXTURE0);
        glEnable(GL_TEXTURE_2D);
        glDisable(GL_DEPTH_TEST);
        glDisable(GL_LIGHTING);
        glEnable(GL_BLEND);
        // The alpha of the frame stays as it is.
        glBlendFuncSeparate(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA, GL_ZERO, GL_ONE);
        glBlendEquation(GL_FUNC_ADD);
        // Beyond their boxes the tint, if it is invisible there, and the lines change no pixel.
        if (m_uOutsideColor >> 24 == 0) LimitTo(Union(m_rcFillShown, m_rcShown));
        DrawTint();
        LimitTo(m_optLinesToUpload ? Union(m_rcShown, *m_optLinesToUpload) : m_rcShown);
        DrawLines();
    }
    glPopAttrib();
}
