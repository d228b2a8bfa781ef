// The display lists of the three fonts: one list per glyph, numbered by character code from the first list of the font.
#include "render/TextDraw.h"

#include <GL/gl.h>

#include <algorithm>
#include <cmath>
#include <stdexcept>

namespace {

constexpr std::array<GLuint, 3> kFirstLists = {1000, 1256, 1512};
constexpr std::size_t kScaledFonts = 2;   // the first ones; the third is that of screenshots
constexpr std::size_t kGlyphCount = 255;  // character 255 has no list
constexpr GLsizei kListSpan = 256;        // between the first lists of two fonts

/// In the order of the font indices: stock font, bold, black.
const std::array<FontRequest, 3>& Fonts() {
    static const std::array<FontRequest, 3> fonts = {FontRequest{},
                                                     {.family = "Courier New", .weight = 700, .height = -24},
                                                     {.family = "Courier New", .weight = 900, .height = -100}};
    return fonts;
}

/// @throws std::out_of_range for a number that is not 1, 2 or 3; hosts see this text
std::size_t IndexOf(std::int32_t fontNumber) {
    if (fontNumber < 1 || fontNumber > 3) throw std::out_of_range("invalid array<T, N> subscript");
    return static_cast<std::size_t>(fontNumber - 1);
}

}  // namespace

void CompileGlyphs(std::uint32_t firstList, std::span<const Glyph> glyphs) {
    glPushClientAttrib(GL_CLIENT_PIXEL_STORE_BIT);
    glPixelStorei(GL_UNPACK_ALIGNMENT, 1);
    // A glyph without pixels is one clear pixel. With 0 x 0 pixels inside a display list Mesa makes a texture of size
    // 0, which ends the process on virgl; a null pointer is rejected, and a space would not advance the raster
    // position.
    constexpr std::uint8_t kClearPixel = 0;
    for (const Glyph& glyph : glyphs) {
        const auto advance = static_cast<GLfloat>(glyph.advance);
        glNewList(firstList++, GL_COMPILE);
        if (glyph.width == 0 || glyph.height == 0)
            glBitmap(1, 1, 0.0f, 0.0f, advance, 0.0f, &kClearPixel);
        else
            glBitmap(glyph.width, glyph.height, glyph.originX, glyph.originY, advance, 0.0f, glyph.bits.data());
        glEndList();
    }
    glPopClientAttrib();
}

FontRequest ScaledFont(FontRequest request, float scale) {
    const auto height = static_cast<std::int32_t>(std::lround(static_cast<float>(request.height) * scale));
    if (height != 0) request.height = height;  // 0 is no font size
    return request;
}

COpenGLTextDraw::~COpenGLTextDraw() { DeleteLists(); }

void COpenGLTextDraw::DeleteLists() {
    for (const GLuint first : kFirstLists)
        if (glIsList(first) == GL_TRUE) glDeleteLists(first, kListSpan);
}

void COpenGLTextDraw::CreateFonts(const GlyphSource& source, float scale) {
    DeleteLists();
    m_vCharWidths = {};
    m_vLineHeights = {};
    for (std::size_t font = 0; font < kFirstLists.size(); ++font) {
        const GlyphSet set = source(font < kScaledFonts ? ScaledFont(Fonts()[font], scale) : Fonts()[font]);
        if (set.IsEmpty()) continue;
        CompileGlyphs(kFirstLists[font], std::span(set.glyphs).first(kGlyphCount));
        std::ranges::transform(set.glyphs, m_vCharWidths[font].begin(), &Glyph::advance);
        m_vLineHeights[font] = set.lineHeight;
    }
}

void COpenGLTextDraw::PrintText(std::u16string_view text, std::int32_t fontIndex) const {
    const auto hasGlyph = [](char16_t c) { return c < kGlyphCount; };
    glPushAttrib(GL_LIST_BIT);
    glListBase(kFirstLists[fontIndex == 0 || fontIndex == 1 ? static_cast<std::size_t>(fontIndex) : 2]);
    // Runs of characters with a glyph, one call per run. Others are skipped: their list numbers may belong to the
    // glyphs of another font.
    for (auto at = std::ranges::find_if(text, hasGlyph); at != text.end();) {
        const auto end = std::find_if_not(at, text.end(), hasGlyph);
        glCallLists(static_cast<GLsizei>(end - at), GL_UNSIGNED_SHORT, &*at);
        at = std::find_if(end, text.end(), hasGlyph);
    }
    glPopAttrib();
}

std::int32_t COpenGLTextDraw::GetFontHeight(std::int32_t fontNumber) const {
    return m_vLineHeights[IndexOf(fontNumber)];
}

std::int32_t COpenGLTextDraw::GetTextWidth(std::string_view text, std::int32_t fontNumber) const {
    const auto& widths = m_vCharWidths[IndexOf(fontNumber)];
    std::int32_t sum = 0;
    for (const char c : text) sum += widths[static_cast<unsigned char>(c)];
    return sum;
}
