// Plain text as Markdown.
#include "generator/Markdown.h"

#include <gtest/gtest.h>

#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "generator/TextParts.h"

namespace bindings {
namespace {

TEST(TextParts, AreWhatIsBetweenTheSeparators) {
    using Parts = std::vector<std::string_view>;
    EXPECT_EQ(TextParts("a x b x c", " x "), (Parts{"a", "b", "c"}));
    EXPECT_EQ(TextParts("a  b", " "), (Parts{"a", "", "b"}));
    EXPECT_EQ(TextParts("a", "\n\n"), Parts{"a"});
    EXPECT_EQ(TextParts("", " "), Parts{});
}

const std::set<std::string> kNames = {"SetSize", "DrawMode"};

TEST(Prose, EscapesWhatWouldBeMarkup) {
    EXPECT_EQ(Prose("a * b < c > d | e [f] `g` \\h", {}), "a \\* b \\< c \\> d \\| e \\[f\\] \\`g\\` \\\\h");
    EXPECT_EQ(Prose("x_min and _Name", {}), "x_min and \\_Name");
}

TEST(Prose, MakesLinksOfKnownNamesOnly) {
    EXPECT_EQ(Prose("SetSize() and SetSize, SetSizes()", kNames), "[SetSize()] and [SetSize], SetSizes()");
}

TEST(Prose, ABracketOrAColonAfterALinkIsText) {
    EXPECT_EQ(Prose("SetSize(1) DrawMode: x", kNames), "[SetSize]\\(1) [DrawMode]\\: x");
}

TEST(Wrapped, BreaksAtBlanksBeforeTheWidth) {
    EXPECT_EQ(Wrapped("aaa bbb ccc", "  ", 7), "aaa\n  bbb\n  ccc");
    EXPECT_EQ(Wrapped("aaa bbb ccc", "", 7), "aaa bbb\nccc");
    EXPECT_EQ(Wrapped("aaaaaaaaaa b", "", 7), "aaaaaaaaaa\nb");
}

TEST(Wrapped, KeepsParagraphs) { EXPECT_EQ(Wrapped("a b\n\nc", "  ", 80), "a b\n\n  c"); }

TEST(Wrapped, StartsNoLineWithAWordThatIsMarkupThere) {
    for (const char* word : {"-", "+", "*", "1.", "12)", "#4", ">", "|", "=="})
        EXPECT_EQ(Wrapped(std::string("aaaa ") + word + " b", "", 5), std::string("aaaa ") + word + "\nb") << word;
    for (const char* word : {"-1", "+X", "1", ".", "1.5", ")"})
        EXPECT_EQ(Wrapped(std::string("aaaa ") + word, "", 5), std::string("aaaa\n") + word) << word;
}

TEST(Anchor, IsTheHeadingInSmallLettersWithoutMarks) {
    EXPECT_EQ(Anchor("Scene and objects"), "scene-and-objects");
    EXPECT_EQ(Anchor("SetMeshFilename_Removed"), "setmeshfilename_removed");
    EXPECT_EQ(Anchor("Pick-point: spheres"), "pick-point-spheres");
}

}  // namespace
}  // namespace bindings
