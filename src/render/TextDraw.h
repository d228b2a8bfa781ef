// Bitmap text in the scene: three fonts as display lists at fixed numbers.
#pragma once
#include <array>
#include <cstdint>
#include <span>
#include <string_view>

#include "platform/Fonts.h"

/// Compiles one display list per glyph in the current context: firstList, firstList + 1 and so on. Calling a list draws
/// the glyph at the raster position and moves the position right by the advance.
void CompileGlyphs(std::uint32_t firstList, std::span<const Glyph> glyphs);

/// The font in another size; its own when the scaled one would have no height.
[[nodiscard]] FontRequest ScaledFont(FontRequest request, float scale);

/// Three bitmap fonts. Those of frames: index 0 is the stock font, fixed pitch and small; 1 is bold, 24 pixels; both
/// times the scale. That of screenshots: 2 is black (weight 900), 100 pixels at every scale, as screenshots have the
/// same size on every screen. Nothing else in the context may use the display lists 1000 to 1767.
class COpenGLTextDraw {
public:
    COpenGLTextDraw() = default;
    /// Deletes the display lists in the context that is current at that time; without a context it does nothing.
    virtual ~COpenGLTextDraw();
    COpenGLTextDraw(const COpenGLTextDraw&) = delete;
    COpenGLTextDraw& operator=(const COpenGLTextDraw&) = delete;

    /// Compiles the glyphs of all fonts in the current context; again for another scale. Text in a font that
    /// @p source does not have draws nothing and has width and height 0.
    /// @param scale  factor of the sizes of the fonts 0 and 1, above 0
    void CreateFonts(const GlyphSource& source, float scale = 1.0f);

    /// Draws at the current raster position in the raster colour, and moves the position to the end of the text.
    /// Characters above 254 have no glyph: they draw nothing and do not advance.
    /// @param fontIndex  every value other than 0 and 1 means 2
    void PrintText(std::u16string_view text, std::int32_t fontIndex) const;

    /// Distance between lines, pixels.
    /// @param fontNumber  the font index plus 1
    /// @throws std::out_of_range for a number that is not 1, 2 or 3
    [[nodiscard]] std::int32_t GetFontHeight(std::int32_t fontNumber) const;
    /// Width of a text, pixels; each byte is one character of the ANSI character set. Font number and exception as
    /// above.
    [[nodiscard]] std::int32_t GetTextWidth(std::string_view text, std::int32_t fontNumber) const;

    static void DeleteLists();

    std::array<std::array<std::int32_t, 256>, 3> m_vCharWidths{};  ///< pixels, per font
    std::array<std::int32_t, 3> m_vLineHeights{};                  ///< pixels, per font
};
