// Bitmap text: glyphs, advance, display lists and OpenGL state, with made-up fonts and with the installed ones.
#include "render/TextDraw.h"

#include <GL/glew.h>
#include <gtest/gtest.h>

#include <memory>
#include <numeric>
#include <optional>
#include <stdexcept>

#include "platform/CurrentContext.h"
#include "support/BareContext.h"
#include "support/TextPicture.h"

namespace {

GLint Integer(GLenum name) {
    GLint value = -12345;
    glGetIntegerv(name, &value);
    return value;
}

/// Glyphs that can be drawn by hand: each font has its own line height, and each character its own advance.
GlyphSet MadeUpGlyphs(const FontRequest& request) {
    GlyphSet set;
    set.lineHeight = request.height == 12 ? 5 : -request.height;
    for (std::int32_t code = 0; code < 256; ++code) {
        Glyph glyph;
        glyph.advance = code + (request.weight - 400) * 10;
        set.glyphs.push_back(glyph);
    }
    // Ten pixels wide, so that a row has two bytes, and symmetric in neither direction. The raster position is one
    // pixel right of its lower left corner and two above it.
    Glyph& a = set.glyphs['A'];
    a.width = 10, a.height = 3, a.originX = 1, a.originY = 2, a.advance = 12;
    a.bits = {0b11111111, 0b11000000, 0b10000000, 0b01000000, 0b11100000, 0b00000000};
    Glyph& dot = set.glyphs['.'];
    dot.width = dot.height = 1, dot.advance = 2, dot.bits = {0b10000000};
    set.glyphs[' '].advance = 3;
    return set;
}

GlyphSet NoGlyphs(const FontRequest&) { return {}; }

class TextDraw : public testing::Test {
protected:
    TextDraw() { text.emplace(); }
    ~TextDraw() override {
        context.MakeCurrent();
        text.reset();
        EXPECT_EQ(glGetError(), GLenum{GL_NO_ERROR});
    }
    TextPicture Drawn(std::u16string_view characters, int fontIndex, int width, int height, int x, int y) {
        BeginText(x, y);
        text->PrintText(characters, fontIndex);
        return TextPicture::OfFramebuffer(width, height);
    }

    BareContext context;
    std::optional<COpenGLTextDraw> text;
};

// ---- glyphs by hand

TEST_F(TextDraw, DrawsAGlyphUprightAtTheRasterPosition) {
    text->CreateFonts(MadeUpGlyphs);
    EXPECT_EQ(Drawn(u"A", 0, 14, 6, 2, 3).Rows(), (std::vector<std::string>{"..............",  //
                                                                            "..............",  //
                                                                            ".###..........",  //
                                                                            ".#........#...",  //
                                                                            ".##########...",  //
                                                                            ".............."}));
}

TEST_F(TextDraw, AdvancesByTheWidthOfGlyphsAndSpaces) {
    text->CreateFonts(MadeUpGlyphs);
    EXPECT_EQ(Drawn(u". . A.", 1, 27, 5, 0, 2).Rows(), (std::vector<std::string>{"...........................",  //
                                                                                 "...........................",  //
                                                                                 "#....#...###..........#....",  //
                                                                                 ".........#........#........",  //
                                                                                 ".........##########........"}));
}

TEST_F(TextDraw, UsesTheColourThatWasCurrentWithTheRasterPosition) {
    text->CreateFonts(MadeUpGlyphs);
    BeginText(0, 0);
    glColor3f(0, 1, 0);
    glWindowPos2i(4, 4);
    glColor3f(0, 0, 1);
    text->PrintText(u".", 2);
    std::array<std::uint8_t, 4> pixel{};
    glReadPixels(4, 4, 1, 1, GL_RGBA, GL_UNSIGNED_BYTE, pixel.data());
    EXPECT_EQ(pixel, (std::array<std::uint8_t, 4>{0, 255, 0, 255}));
}

TEST_F(TextDraw, SumsTheWidthsOfTheBytesOfAText) {
    text->CreateFonts(MadeUpGlyphs);
    EXPECT_EQ(text->GetTextWidth("", 1), 0);
    EXPECT_EQ(text->GetTextWidth("BC", 1), 66 + 67);
    EXPECT_EQ(text->GetTextWidth("BC", 2), 66 + 67 + 6000);
    EXPECT_EQ(text->GetTextWidth("BC", 3), 66 + 67 + 10000);
    EXPECT_EQ(text->GetTextWidth("\x80\xFE\xFF", 1), 128 + 254 + 255) << "bytes above 127 are characters";
    EXPECT_EQ(text->GetTextWidth(std::string_view("B\0C", 3), 2), 66 + 67 + 9000) << "byte 0 is a character";
}

TEST_F(TextDraw, ReturnsTheHeightOfEachFont) {
    text->CreateFonts(MadeUpGlyphs);
    EXPECT_EQ(text->GetFontHeight(1), 5);
    EXPECT_EQ(text->GetFontHeight(2), 24);
    EXPECT_EQ(text->GetFontHeight(3), 100);
}

TEST_F(TextDraw, ThrowsForAnInvalidFontNumber) {
    text->CreateFonts(MadeUpGlyphs);
    for (const std::int32_t number : {0, 4, -1, INT32_MIN, INT32_MAX}) {
        try {
            (void)text->GetFontHeight(number);
            ADD_FAILURE() << "the height of font " << number;
        } catch (const std::out_of_range& error) {
            EXPECT_STREQ(error.what(), "invalid array<T, N> subscript");
        }
        try {
            (void)text->GetTextWidth("", number);
            ADD_FAILURE() << "the width in font " << number;
        } catch (const std::out_of_range& error) {
            EXPECT_STREQ(error.what(), "invalid array<T, N> subscript");
        }
    }
}

TEST_F(TextDraw, RequestsTheThreeFonts) {
    std::vector<FontRequest> asked;
    text->CreateFonts([&](const FontRequest& request) {
        asked.push_back(request);
        return GlyphSet();
    });
    EXPECT_EQ(asked, std::vector<FontRequest>(std::begin(kFonts), std::end(kFonts)));
}

// ---- lists and state

TEST_F(TextDraw, KeepsItsGlyphsInListsAtFixedNumbers) {
    text->CreateFonts(MadeUpGlyphs);
    for (const GLuint first : {1000u, 1256u, 1512u}) {
        EXPECT_TRUE(glIsList(first)) << first;
        EXPECT_TRUE(glIsList(first + 254)) << first;
        EXPECT_FALSE(glIsList(first + 255)) << first;
    }
    EXPECT_FALSE(glIsList(999));
    EXPECT_FALSE(glIsList(1768));
}

TEST_F(TextDraw, RestoresTheOpenGlState) {
    glPixelStorei(GL_UNPACK_ALIGNMENT, 8);
    glListBase(77);
    text->CreateFonts(MadeUpGlyphs);
    text->PrintText(u"A\u0141.", 0);
    text->PrintText(u"", 1);
    EXPECT_EQ(Integer(GL_UNPACK_ALIGNMENT), 8);
    EXPECT_EQ(Integer(GL_LIST_BASE), 77);
    EXPECT_EQ(Integer(GL_ATTRIB_STACK_DEPTH), 0);
    EXPECT_EQ(Integer(GL_CLIENT_ATTRIB_STACK_DEPTH), 0);
    EXPECT_EQ(Integer(GL_LIST_INDEX), 0);
    EXPECT_EQ(glGetError(), GLenum{GL_NO_ERROR});
}

TEST_F(TextDraw, DeletesItsListsAndNoOthers) {
    text->CreateFonts(MadeUpGlyphs);
    for (const GLuint foreign : {999u, 1768u}) {
        glNewList(foreign, GL_COMPILE);
        glEndList();
    }
    text.reset();
    for (GLuint list = 1000; list < 1768; ++list) EXPECT_FALSE(glIsList(list)) << list;
    EXPECT_TRUE(glIsList(999));
    EXPECT_TRUE(glIsList(1768));
}

TEST_F(TextDraw, RemainsWhenTextInAnotherContextIsDestroyed) {
    text->CreateFonts(MadeUpGlyphs);
    BareContext other;
    {
        COpenGLTextDraw otherText;
        otherText.CreateFonts(MadeUpGlyphs);
    }
    EXPECT_FALSE(glIsList(1000));
    context.MakeCurrent();
    EXPECT_TRUE(glIsList(1000));
    EXPECT_EQ(Drawn(u"A", 0, 20, 20, 3, 3).Count(), 15u);
}

TEST_F(TextDraw, DeletesNothingWithoutAContext) {
    text->CreateFonts(MadeUpGlyphs);
    { const BareContext goes; }
    ASSERT_EQ(CurrentContext(), nullptr);
    text.reset();
    context.MakeCurrent();
    EXPECT_TRUE(glIsList(1000));
    EXPECT_EQ(glGetError(), GLenum{GL_NO_ERROR});
}

// ---- characters without a glyph

TEST_F(TextDraw, IgnoresCharactersAbove254) {
    text->CreateFonts(MadeUpGlyphs);
    const TextPicture plain = Drawn(u".A", 0, 40, 20, 5, 5);
    ASSERT_EQ(plain.Count(), 16u);
    // Counted from the first list of the font, U+0141 and U+0241 would be the lists of 'A' in the next fonts.
    for (const std::u16string_view withOthers :
         {u".\u00FFA", u".\u0100A", u".\u0141A", u".\u0241A", u".\uFFFFA", u"\u0141\u0141.\u0141\u0141A\u0141"})
        EXPECT_EQ(Drawn(withOthers, 0, 40, 20, 5, 5), plain);
    EXPECT_EQ(Drawn(u"\u0141\uFFFF", 0, 40, 20, 5, 5).Count(), 0u);
    EXPECT_EQ(Drawn(u"", 0, 40, 20, 5, 5).Count(), 0u);
    EXPECT_EQ(glGetError(), GLenum{GL_NO_ERROR});
}

TEST_F(TextDraw, DrawsCharacter254) {
    text->CreateFonts([](const FontRequest& request) {
        GlyphSet set = MadeUpGlyphs(request);
        set.glyphs[254] = set.glyphs['A'];
        set.glyphs[255] = set.glyphs['A'];
        return set;
    });
    EXPECT_EQ(Drawn(u"\u00FE", 0, 40, 20, 5, 5).Count(), 15u);
    EXPECT_EQ(Drawn(u"\u00FF", 0, 40, 20, 5, 5).Count(), 0u);
}

// ---- without installed fonts

TEST_F(TextDraw, WithoutFontsDrawsNothingAndHasNoSize) {
    text->CreateFonts(NoGlyphs);
    for (const int font : {0, 1, 2}) {
        BeginText(7, 8);
        text->PrintText(u"1234", font);
        EXPECT_EQ(TextPicture::OfFramebuffer(640, 480).Count(), 0u);
        std::array<float, 4> position{};
        glGetFloatv(GL_CURRENT_RASTER_POSITION, position.data());
        EXPECT_EQ(position[0], 7.0f);
        EXPECT_EQ(text->GetFontHeight(font + 1), 0);
        EXPECT_EQ(text->GetTextWidth("1234", font + 1), 0);
    }
    EXPECT_FALSE(glIsList(1000));
    EXPECT_THROW((void)text->GetFontHeight(4), std::out_of_range);
    EXPECT_EQ(glGetError(), GLenum{GL_NO_ERROR});
}

TEST_F(TextDraw, DrawsTheOtherFontsWhenOneIsMissing) {
    text->CreateFonts(
        [](const FontRequest& request) { return request.weight == 700 ? GlyphSet() : MadeUpGlyphs(request); });
    EXPECT_EQ(Drawn(u"A", 0, 40, 20, 5, 5).Count(), 15u);
    EXPECT_EQ(Drawn(u"A", 1, 40, 20, 5, 5).Count(), 0u);
    EXPECT_EQ(Drawn(u"A", 2, 40, 20, 5, 5).Count(), 15u);
    EXPECT_EQ(text->GetFontHeight(2), 0);
    EXPECT_EQ(text->GetFontHeight(3), 100);
}

TEST_F(TextDraw, IsEmptyBeforeItsFontsAreCreated) {
    EXPECT_EQ(Drawn(u"A", 0, 40, 20, 5, 5).Count(), 0u);
    EXPECT_EQ(text->GetTextWidth("A", 1), 0);
    EXPECT_EQ(text->GetFontHeight(3), 0);
}

// ---- the installed fonts

class TextInInstalledFonts : public TextDraw, public testing::WithParamInterface<int> {
protected:
    TextInInstalledFonts() { text->CreateFonts(RasterizeFont); }
};
INSTANTIATE_TEST_SUITE_P(Fonts, TextInInstalledFonts, testing::Values(-1, 0, 1, 2, 3),
                         [](const auto& row) { return row.param < 0 ? "Minus1" : std::to_string(row.param); });

TEST_P(TextInInstalledFonts, MatchesItsGlyphsPixelByPixel) {
    const int font = GetParam() == 0 || GetParam() == 1 ? GetParam() : 2;
    const GlyphSet glyphs = RasterizeFont(kFonts[font]);
    ASSERT_EQ(glyphs.glyphs.size(), 256u);
    TextPicture expected(640, 480);
    const int end = expected.Write(glyphs, "10 78.9-\xC4y", 11, 123);
    ASSERT_GT(expected.Count(), 50u);
    EXPECT_EQ(Drawn(u"10 78.9-\u00C4y", GetParam(), 640, 480, 11, 123), expected);
    std::array<float, 4> position{};
    glGetFloatv(GL_CURRENT_RASTER_POSITION, position.data());
    EXPECT_EQ(position[0], static_cast<float>(end));
    EXPECT_EQ(position[1], 123.0f);
    EXPECT_EQ(text->GetTextWidth("10 78.9-\xC4y", font + 1), end - 11);
    EXPECT_EQ(text->GetFontHeight(font + 1), glyphs.lineHeight);
}

TEST_P(TextInInstalledFonts, DrawsAllCharacters) {
    const int font = GetParam() == 0 || GetParam() == 1 ? GetParam() : 2;
    const GlyphSet glyphs = RasterizeFont(kFonts[font]);
    ASSERT_FALSE(glyphs.IsEmpty());
    for (char16_t code = 0; code < 255; ++code) {
        TextPicture expected(130, 140);
        expected.Write(glyphs, std::string(1, static_cast<char>(code)), 10, 40);
        EXPECT_EQ(Drawn(std::u16string(1, code), GetParam(), 130, 140, 10, 40), expected) << "character " << +code;
    }
}

}  // namespace
