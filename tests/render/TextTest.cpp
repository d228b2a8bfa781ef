// The text of a control: its fonts are created with its context, and released with it and with no other context.
#include <gtest/gtest.h>

#include <memory>

#include "render/SceneFixture.h"
#include "support/ScratchFolder.h"
#include "support/TextPicture.h"

namespace {

TextPicture Expected(const FontRequest& font, std::string_view text) {
    TextPicture picture(640, 480);
    picture.Write(RasterizeFont(font), text, 20, 60);
    return picture;
}

TextPicture Drawn(CKV_ScenePaneCtrl& control, std::u16string_view text, int font) {
    EXPECT_TRUE(control.MakeContextCurrent());
    BeginText(20, 60);
    control.m_textDraw.PrintText(text, font);
    EXPECT_EQ(glGetError(), GLenum{GL_NO_ERROR});
    return TextPicture::OfFramebuffer(640, 480);
}

void ExpectText(CKV_ScenePaneCtrl& control) {
    for (int font = 0; font < 3; ++font) {
        const TextPicture expected = Expected(kFonts[font], "8 1");
        ASSERT_GT(expected.Count(), 10u);
        EXPECT_EQ(Drawn(control, u"8 1", font), expected) << "font " << font;
        EXPECT_EQ(control.m_textDraw.GetFontHeight(font + 1), RasterizeFont(kFonts[font]).lineHeight);
    }
}

class Text : public testing::Test {
protected:
    Text() { TestFolder(); }
};

TEST_F(Text, IsAvailableInANewControl) {
    const OffscreenControl control;
    ExpectText(*control);
}

TEST_F(Text, IsAvailableAgainInANewContext) {
    const OffscreenControl control;
    control->RecreateOpenglContext(3, 3, 0);
    ExpectText(*control);
    EXPECT_TRUE(glIsList(control->m_nFontListBase + 95));
}

TEST_F(Text, SurvivesTheDestructionOfAnotherControl) {
    auto first = std::make_unique<OffscreenControl>();
    auto second = std::make_unique<OffscreenControl>();
    const OffscreenControl third;
    ExpectText(**second);
    ASSERT_TRUE((*first)->MakeContextCurrent());
    second.reset();
    ExpectText(**first);
    ASSERT_TRUE(third->MakeContextCurrent());
    first.reset();
    ExpectText(*third);
}

TEST_F(Text, SurvivesTheDestructionOfAControlWithoutAContext) {
    auto closed = std::make_unique<OffscreenControl>();
    const OffscreenControl open;
    closed->window->Destroy();
    ASSERT_TRUE(open->MakeContextCurrent());
    closed.reset();
    ExpectText(*open);
}

TEST_F(Text, HasNoSizeWithoutOpenGl) {
    const NoPictureControl control;
    EXPECT_EQ(control->m_textDraw.GetTextWidth("12", 2), 0);
    EXPECT_EQ(control->m_textDraw.GetFontHeight(2), 0);
}

TEST_F(Text, HasNinetySixBoldListsFromTheSpaceOn) {
    const OffscreenControl control;
    const GlyphSet bold = RasterizeFont({.family = "Courier New", .weight = 700, .height = -16});
    ASSERT_FALSE(bold.IsEmpty());
    ASSERT_TRUE(control->MakeContextCurrent());
    std::string all;
    for (GLuint i = 0; i < 96; ++i) {
        EXPECT_TRUE(glIsList(control->m_nFontListBase + i)) << i;
        all.push_back(static_cast<char>(32 + i));
    }
    for (const std::string& half : {all.substr(0, 48), all.substr(48)}) {
        TextPicture expected(640, 480);
        const int end = expected.Write(bold, half, 3, 60);
        ASSERT_LT(end, 640);
        ASSERT_GT(expected.Count(), 1000u);
        BeginText(3, 60);
        for (const char c : half) glCallList(control->m_nFontListBase + static_cast<GLuint>(c) - 32);
        EXPECT_EQ(TextPicture::OfFramebuffer(640, 480), expected);
    }
    EXPECT_EQ(glGetError(), GLenum{GL_NO_ERROR});
}

/// Uses a control with an empty font configuration.
/// @return 0, or the number of the check that failed
int WorkWithoutFonts() {
    const ScratchFolder folder;
    std::ofstream(folder / "fonts.conf") << "<?xml version=\"1.0\"?><!DOCTYPE fontconfig SYSTEM "
                                            "\"urn:fontconfig:fonts.dtd\"><fontconfig></fontconfig>";
    setenv("FONTCONFIG_FILE", (folder / "fonts.conf").c_str(), 1);
    const OffscreenControl control;
    KV_ScenePane::Picture picture;
    if (!control->CapturePicture(&picture)) return 1;
    for (int font = 0; font < 3; ++font) {
        if (Drawn(*control, u"123", font).Count() != 0) return 2;
        if (control->m_textDraw.GetTextWidth("123", font + 1) != 0) return 3;
        if (control->m_textDraw.GetFontHeight(font + 1) != 0) return 4;
    }
    BeginText(20, 60);
    for (GLuint i = 0; i < 96; ++i) glCallList(control->m_nFontListBase + i);
    if (TextPicture::OfFramebuffer(640, 480).Count() != 0) return 5;
    if (glIsList(1000) == GL_TRUE || glIsList(control->m_nFontListBase) == GL_FALSE) return 6;
    control->RecreateOpenglContext(3, 3, 0);
    if (Drawn(*control, u"123", 1).Count() != 0 || testing::Test::HasFailure()) return 7;
    return 0;
}

TEST_F(Text, IsEmptyWithoutInstalledFontsAndTheControlStillWorks) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(std::exit(WorkWithoutFonts()), testing::ExitedWithCode(0), "");
}

}  // namespace
