// Bitmap text in the scene: three fonts as display lists at fixed numbers.
#pragma once
#include <array>
#include <cstdint>
#include <span>
#include <string_view>

#include "platform/Fonts.h"

/// Compiles one display list a glyph into the current context: firstList, firstList + 1 and so on. A list draws at the
/// raster position and moves it on by the advance.
void CompileGlyphs(std::uint32_t firstList, std::span<const Glyph> glyphs);

/// Font indices: 0 the stock font, fixed pitch and small, 1 bold of 24 pixels, 2 black of 100 pixels. Nothing else
/// in the context may use the lists 1000 to 1767.
class COpenGLTextDraw {
public:
    COpenGLTextDraw() = default;
    /// Deletes the glyphs in the context that is then current; without one nothing.
    virtual ~COpenGLTextDraw();
    COpenGLTextDraw(const COpenGLTextDraw&) = delete;
    COpenGLTextDraw& operator=(const COpenGLTextDraw&) = delete;

    /// Makes the glyphs in the current context, once for each context. A source without a font leaves no glyphs, and
    /// text of no size.
    void CreateFonts(const GlyphSource& source);

    /// Draws at the current raster position in the current raster colour. A character above 254 is no glyph: it draws
    /// and moves nothing.
    /// @param fontIndex  any other than 0 and 1 is 2
    void PrintText(std::u16string_view text, std::int32_t fontIndex) const;

    /// Pixels from line to line.
    /// @param fontNumber  the font index plus 1
    /// @throws std::out_of_range for a number that is not 1, 2 or 3
    [[nodiscard]] std::int32_t GetFontHeight(std::int32_t fontNumber) const;
    /// Pixels of a text in the ANSI character set; number and throw as above.
    [[nodiscard]] std::int32_t GetTextWidth(std::string_view text, std::int32_t fontNumber) const;

    std::array<std::array<std::int32_t, 256>, 3> m_vCharWidths{};  ///< pixels, per font
    std::array<std::int32_t, 3> m_vLineHeights{};                  ///< pixels, per font
};
