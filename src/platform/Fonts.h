// Bitmap glyphs of the fonts that are installed on the machine.
#pragma once
#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

/// What is requested of a font.
struct FontRequest {
    std::string family;         ///< UTF-8; empty: the default font, fixed pitch
    std::int32_t weight = 400;  ///< 400 normal, 700 bold, 900 black
    std::int32_t height = 12;   ///< pixels, not 0. Negative: the em size; positive: the largest line height
    bool operator==(const FontRequest&) const = default;
};

/// One character in the layout of glBitmap(): rows from the bottom up, padded to bytes, leftmost pixel in the highest
/// bit.
struct Glyph {
    std::int32_t width = 0, height = 0;    ///< of the bitmap, pixels; 0 x 0 for a space
    float originX = 0.0f, originY = 0.0f;  ///< the raster position in the bitmap, pixels from its lower left corner
    std::int32_t advance = 0;              ///< pixels to the next character
    std::vector<std::uint8_t> bits;
};

/// The characters 0 to 255 of the code page Windows-1252; control characters are spaces. Without a usable font there
/// are no glyphs and the line height is 0.
struct GlyphSet {
    std::vector<Glyph> glyphs;    ///< 256, or none
    std::int32_t lineHeight = 0;  ///< pixels from one base line to the next
    [[nodiscard]] bool IsEmpty() const { return glyphs.empty(); }
};

/// Returns the glyphs of a request; RasterizeFont() or, in tests, a font of their own.
using GlyphSource = std::function<GlyphSet(const FontRequest&)>;

/// From the outline fonts of the machine: the named family, else a metric-compatible one, else a fixed-pitch one; of
/// that family the upright face of the nearest weight. Any thread. Each request is rasterised once per process
/// and then kept.
[[nodiscard]] GlyphSet RasterizeFont(const FontRequest& request);
