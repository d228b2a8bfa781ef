// The display lists of the three fonts.
#include "render/TextDraw.h"

#include <GL/gl.h>

#include <algorithm>
#include <stdexcept>

namespace {

constexpr std::array<GLuint, 3> kFirstLists = {1000, 1256, 1512};
constexpr std::size_t kGlyphCount = 255;
constexpr GLsizei kListSpan = 256;

const std::array<FontRequest, 3>& Fonts() {
    static const std::array<FontRequest, 3> fonts = {FontRequest{},
                                                     {.family = "Courier New", .weight = 700, .height = -24},
                                                     {.family = "Courier New", .weight = 900, .height = -100}};
    return fonts;
}

std::size_t IndexOf(std::int32_t fontNumber) {
    if (fontNumber < 1 || fontNumber > 3) throw std::out_of_range("invalid array<T, N> subscript");
    return static_cast<std::size_t>(fontNumber - 1);
}

}  // namespace

void CompileGlyphs(std::uint32_t firstList, std::span<const Glyph> glyphs) {
    glPushClientAttrib(GL_CLIENT_PIXEL_STORE_BIT);
    glPixelStorei(GL_UNPACK_ALIGNMENT, 1);
    // Mesa refuses a bitmap of 0 x 0 at a null pointer inside a display list: a blank then no longer moves on.
    constexpr std::uint8_t kNoBits = 0;
    for (const Glyph& glyph : glyphs) {
        glNewList(firstList++, GL_COMPILE);
        glBitmap(glyph.width, glyph.height, glyph.originX, glyph.originY, static_cast<GLfloat>(glyph.advance), 0.0f,
                 glyph.bits.empty() ? &kNoBits : glyph.bits.data());
        glEndList();
    }
    glPopClientAttrib();
}

COpenGLTextDraw::~COpenGLTextDraw() {
    for (const GLuint first : kFirstLists)
        if (glIsList(first) == GL_TRUE) glDeleteLists(first, kListSpan);
}

void COpenGLTextDraw::CreateFonts(const GlyphSource& source) {
    m_vCharWidths = {};
    m_vLineHeights = {};
    for (std::size_t font = 0; font < kFirstLists.size(); ++font) {
        const GlyphSet set = source(Fonts()[font]);
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
    // A character that has no glyph is left out: its list number may be that of another font's glyph.
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
