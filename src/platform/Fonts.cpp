// Fontconfig finds the face, FreeType rasterises its glyphs with one bit per pixel.
#include "platform/Fonts.h"

#include <fontconfig/fontconfig.h>
#include <freetype/freetype.h>

#include <algorithm>
#include <array>
#include <cassert>
#include <memory>
#include <mutex>
#include <utility>

namespace {

struct Free {
    void operator()(FcConfig* config) const { FcConfigDestroy(config); }
    void operator()(FcPattern* pattern) const { FcPatternDestroy(pattern); }
    void operator()(FcFontSet* set) const { FcFontSetDestroy(set); }
    void operator()(FT_Library library) const { FT_Done_FreeType(library); }
    void operator()(FT_Face face) const { FT_Done_Face(face); }
};
template <class Type>
using Owned = std::unique_ptr<Type, Free>;
using Library = Owned<std::remove_pointer_t<FT_Library>>;
using Face = Owned<std::remove_pointer_t<FT_Face>>;

// ---- the face

struct FaceFile {
    std::string path;
    int index = 0;
};

const FcChar8* Utf8(const std::string& text) { return reinterpret_cast<const FcChar8*>(text.c_str()); }

/// For a request without a family. With one bit per pixel it is clearer at 12 pixels than the system's monospace font.
const std::string kDefaultFamily = "Courier New";

Owned<FcPattern> PatternOf(const FontRequest& request, FcConfig* config) {
    Owned<FcPattern> pattern(FcPatternCreate());
    if (!pattern) return nullptr;
    FcPatternAddString(pattern.get(), FC_FAMILY, Utf8(request.family.empty() ? kDefaultFamily : request.family));
    FcPatternAddInteger(pattern.get(), FC_WEIGHT, FcWeightFromOpenType(request.weight));
    FcPatternAddInteger(pattern.get(), FC_SLANT, FC_SLANT_ROMAN);
    FcPatternAddInteger(pattern.get(), FC_SPACING, FC_MONO);
    FcPatternAddBool(pattern.get(), FC_SCALABLE, FcTrue);
    FcPatternAddString(pattern.get(), FC_LANG, Utf8("en"));  // otherwise the locale of the process would decide
    FcConfigSubstitute(config, pattern.get(), FcMatchPattern);
    FcDefaultSubstitute(pattern.get());
    return pattern;
}

/// The requested family and its metric-compatible replacements. Substitution adds these with a strong binding, and
/// generic families with a weak one.
std::vector<std::string> StronglyBoundFamilies(const FcPattern* pattern) {
    std::vector<std::string> families;
    FcValue value;
    FcValueBinding binding = FcValueBindingWeak;
    for (int i = 0; FcPatternGetWithBinding(pattern, FC_FAMILY, i, &value, &binding) == FcResultMatch; ++i)
        if (binding != FcValueBindingWeak && value.type == FcTypeString)
            families.emplace_back(reinterpret_cast<const char*>(value.u.s));
    return families;
}

bool IsOfFamily(const FcPattern* font, const std::string& family) {
    FcChar8* name = nullptr;
    for (int i = 0; FcPatternGetString(font, FC_FAMILY, i, &name) == FcResultMatch; ++i)
        if (FcStrCmpIgnoreCase(name, Utf8(family)) == 0) return true;
    return false;
}

bool IsOutline(const FcPattern* font) {
    FcBool scalable = FcFalse;
    return FcPatternGetBool(font, FC_SCALABLE, 0, &scalable) == FcResultMatch && scalable == FcTrue;
}

bool IsFixedPitch(const FcPattern* font) {
    int spacing = FC_PROPORTIONAL;
    return FcPatternGetInteger(font, FC_SPACING, 0, &spacing) == FcResultMatch && spacing >= FC_MONO;
}

/// The faces that may serve the request, best first.
std::vector<FaceFile> FindFaces(const FontRequest& request) {
    const Owned<FcConfig> config(FcConfigReference(nullptr));
    if (!config) return {};
    const Owned<FcPattern> pattern = PatternOf(request, config.get());
    if (!pattern) return {};
    const auto families = StronglyBoundFamilies(pattern.get());
    FcResult result = FcResultNoMatch;
    const Owned<FcFontSet> sorted(FcFontSort(config.get(), pattern.get(), FcFalse, nullptr, &result));
    if (!sorted) return {};

    std::vector<FaceFile> faces;
    for (int i = 0; i < sorted->nfont; ++i) {
        const FcPattern* font = sorted->fonts[i];
        const auto isFont = [font](const std::string& family) { return IsOfFamily(font, family); };
        if (!IsOutline(font) || !(IsFixedPitch(font) || std::ranges::any_of(families, isFont))) continue;
        FcChar8* path = nullptr;
        FaceFile face;
        if (FcPatternGetString(font, FC_FILE, 0, &path) != FcResultMatch) continue;
        FcPatternGetInteger(font, FC_INDEX, 0, &face.index);
        face.path = reinterpret_cast<const char*>(path);
        faces.push_back(std::move(face));
    }
    return faces;
}

// ---- its glyphs

/// Windows-1252 to Unicode. Its five unassigned codes are control characters.
FT_ULong UnicodeOf(std::size_t code) {
    static constexpr std::array<std::uint16_t, 32> k80To9F = {
        0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
        0x2039, 0x0152, 0x008D, 0x017D, 0x008F, 0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
        0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};
    return code >= 0x80 && code <= 0x9F ? k80To9F[code - 0x80] : code;
}

/// Control characters and spaces: no pixels, only an advance.
bool IsSpace(FT_ULong unicode) { return unicode <= ' ' || (unicode >= 0x7F && unicode <= 0xA0); }

/// Symbol fonts lack letters.
bool HasAsciiGlyphs(FT_Face face) {
    for (FT_ULong c = ' '; c < 0x7F; ++c)
        if (FT_Get_Char_Index(face, c) == 0) return false;
    return true;
}

/// Ascent plus descent, each rounded to whole pixels.
std::int32_t LineHeight(FT_Face face, std::int32_t emPixels) {
    const FT_Long em = face->units_per_EM;
    const auto pixels = [&](FT_Long units) { return (2 * units * emPixels + em) / (2 * em); };
    return static_cast<std::int32_t>(pixels(face->ascender) + pixels(-face->descender));
}

/// The em size in pixels for FontRequest::height.
std::int32_t EmPixels(FT_Face face, std::int32_t height) {
    if (height < 0) return -height;
    std::int32_t pixels = 2 * height;  // no face has a line height below half its em size
    while (pixels > 1 && LineHeight(face, pixels) > height) --pixels;
    return pixels;
}

Glyph RasterizeGlyph(FT_Face face, FT_ULong unicode) {
    const FT_UInt index = FT_Get_Char_Index(face, IsSpace(unicode) ? ' ' : unicode);
    if (FT_Load_Glyph(face, index, FT_LOAD_TARGET_MONO | FT_LOAD_NO_BITMAP) != 0) return {};
    const FT_GlyphSlot slot = face->glyph;
    Glyph glyph;
    // Not the hinted advance: at 16 pixels that of the cent sign differs from the other characters of a fixed-pitch
    // font.
    glyph.advance = static_cast<std::int32_t>((slot->linearHoriAdvance + 0x8000) / 0x10000);
    if (slot->outline.n_points == 0 || FT_Render_Glyph(slot, FT_RENDER_MODE_MONO) != 0) return glyph;
    const FT_Bitmap& bitmap = slot->bitmap;
    if (bitmap.width == 0 || bitmap.rows == 0) return glyph;
    glyph.width = static_cast<std::int32_t>(bitmap.width);
    glyph.height = static_cast<std::int32_t>(bitmap.rows);
    glyph.originX = static_cast<float>(-slot->bitmap_left);
    glyph.originY = static_cast<float>(glyph.height - slot->bitmap_top);
    // FreeType's rows run from the top down, pitch bytes apart. The bits of a row already have OpenGL's order.
    const std::ptrdiff_t rowBytes = (glyph.width + 7) / 8;
    for (std::ptrdiff_t row = glyph.height - 1; row >= 0; --row) {
        const std::uint8_t* first = bitmap.buffer + row * bitmap.pitch;
        glyph.bits.insert(glyph.bits.end(), first, first + rowBytes);
    }
    return glyph;
}

/// Empty when the file is damaged or lacks ASCII letters.
GlyphSet RasterizeFace(FT_Library library, const FaceFile& file, std::int32_t height) {
    FT_Face opened = nullptr;
    if (FT_New_Face(library, file.path.c_str(), file.index, &opened) != 0) return {};
    const Face face(opened);
    if (!FT_IS_SCALABLE(opened) || FT_Select_Charmap(opened, FT_ENCODING_UNICODE) != 0 || !HasAsciiGlyphs(opened))
        return {};
    const std::int32_t emPixels = EmPixels(opened, height);
    if (FT_Set_Pixel_Sizes(opened, 0, static_cast<FT_UInt>(emPixels)) != 0) return {};

    GlyphSet set;
    set.lineHeight = LineHeight(opened, emPixels);
    for (std::size_t code = 0; code < 256; ++code) set.glyphs.push_back(RasterizeGlyph(opened, UnicodeOf(code)));
    return set;
}

/// The first face that can be used. A file may be damaged although fontconfig lists it.
GlyphSet RasterizeUncached(const FontRequest& request) {
    FT_Library started = nullptr;
    if (FT_Init_FreeType(&started) != 0) return {};
    const Library library(started);
    for (const FaceFile& file : FindFaces(request)) {
        GlyphSet set = RasterizeFace(started, file, request.height);
        if (!set.IsEmpty()) return set;
    }
    return {};
}

}  // namespace

GlyphSet RasterizeFont(const FontRequest& request) {
    assert(request.height != 0);
    static std::mutex mutex;
    // Never deleted: a control may be opened while static objects are being destroyed.
    static auto& known = *new std::vector<std::pair<FontRequest, GlyphSet>>;
    const std::lock_guard lock(mutex);
    for (const auto& [knownRequest, set] : known)
        if (knownRequest == request) return set;
    return known.emplace_back(request, RasterizeUncached(request)).second;
}
