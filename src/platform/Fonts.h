// Bitmap glyphs of the machine's fonts.
#pragma once
#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

struct FontRequest {
    std::string family;         ///< empty: the stock font, fixed pitch
    std::int32_t weight = 400;  ///< 400 normal, 700 bold, 900 black
    std::int32_t height = 12;   ///< pixels, not 0: negative the character height (em), positive the line height at most
    bool operator==(const FontRequest&) const = default;
};

/// One character as glBitmap() takes it: rows from the bottom up, padded to bytes, leftmost pixel in the highest bit.
struct Glyph {
    std::int32_t width = 0, height = 0;    ///< of the bitmap, pixels; 0 x 0 for a blank
    float originX = 0.0f, originY = 0.0f;  ///< of the raster position within the bitmap
    std::int32_t advance = 0;              ///< pixels to the next character
    std::vector<std::uint8_t> bits;
};

/// The characters 0 to 255 of the ANSI character set, Windows-1252; control characters are blanks. No glyphs and a line
/// height of 0 where there is no font.
struct GlyphSet {
    std::vector<Glyph> glyphs;  ///< 256, or none
    std::int32_t lineHeight = 0;
    [[nodiscard]] bool IsEmpty() const { return glyphs.empty(); }
};

/// Where glyphs come from.
using GlyphSource = std::function<GlyphSet(const FontRequest&)>;

/// From the outline fonts of the machine: the named family, else its metric twin, else a fixed-pitch one; of that
/// family the upright face of the nearest weight. Any thread; a request is rasterised once a process.
[[nodiscard]] GlyphSet RasterizeFont(const FontRequest& request);
