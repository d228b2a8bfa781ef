// Glyphs of the fonts of this machine, and of machines with other fonts.
#include "platform/Fonts.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <ostream>
#include <thread>

#include "support/ScratchFolder.h"

// In the namespace of its type, where gtest finds it.
void PrintTo(const FontRequest& request, std::ostream* out) { *out << request.family << ' ' << request.height; }

namespace {

namespace fs = std::filesystem;

const FontRequest kDefault;
const FontRequest kMedium{.family = "Courier New", .weight = 700, .height = -24};
const FontRequest kLarge{.family = "Courier New", .weight = 900, .height = -100};
const FontRequest kNumbers{.family = "Courier New", .weight = 700, .height = -16};

bool SameGlyphs(const GlyphSet& a, const GlyphSet& b) {
    return a.lineHeight == b.lineHeight && std::ranges::equal(a.glyphs, b.glyphs, [](const Glyph& l, const Glyph& r) {
               return l.width == r.width && l.height == r.height && l.originX == r.originX && l.originY == r.originY &&
                      l.advance == r.advance && l.bits == r.bits;
           });
}

const Glyph& At(const GlyphSet& set, char c) { return set.glyphs.at(static_cast<unsigned char>(c)); }

/// Top and bottom of a glyph, pixels above the base line.
int Top(const Glyph& glyph) { return glyph.height - static_cast<int>(glyph.originY); }
int Bottom(const Glyph& glyph) { return -static_cast<int>(glyph.originY); }

/// The drawn pixels of one row; row 0 is the lowest.
int Ink(const Glyph& glyph, int row) {
    const int rowBytes = (glyph.width + 7) / 8;
    int ink = 0;
    for (int i = 0; i < rowBytes; ++i)
        ink += __builtin_popcount(glyph.bits.at(static_cast<std::size_t>(row * rowBytes + i)));
    return ink;
}
int Ink(const Glyph& glyph) {
    int ink = 0;
    for (int row = 0; row < glyph.height; ++row) ink += Ink(glyph, row);
    return ink;
}

bool HasAStraightLeftEdge(const Glyph& glyph) {
    const std::size_t rowBytes = static_cast<std::size_t>(glyph.width + 7) / 8;
    for (std::size_t first = 0; first < glyph.bits.size(); first += rowBytes)
        if ((glyph.bits[first] & 0x80) == 0) return false;
    return glyph.height > 4;
}

class EveryFont : public testing::TestWithParam<FontRequest> {
protected:
    void SetUp() override { ASSERT_EQ(set.glyphs.size(), 256u); }
    const GlyphSet set = RasterizeFont(GetParam());
};
INSTANTIATE_TEST_SUITE_P(Fonts, EveryFont, testing::Values(kDefault, kMedium, kLarge, kNumbers),
                         [](const auto& row) { return "Height" + std::to_string(std::abs(row.param.height)); });

TEST_P(EveryFont, HasTheSameAdvanceForAllItsCharacters) {
    for (const Glyph& glyph : set.glyphs) EXPECT_EQ(glyph.advance, set.glyphs[0].advance);
    EXPECT_GT(set.glyphs[0].advance, 0);
}

TEST_P(EveryFont, HasBitsForEachRowOfEachGlyph) {
    for (const Glyph& glyph : set.glyphs) {
        const auto bytes = static_cast<std::size_t>((glyph.width + 7) / 8 * glyph.height);
        EXPECT_EQ(glyph.bits.size(), bytes);
        EXPECT_EQ(glyph.width == 0, glyph.height == 0);
    }
}

TEST_P(EveryFont, HasPixelsForPrintableCharactersAndNoneForTheOthers) {
    for (int code = 0; code < 256; ++code) {
        const bool unused = code == 0x81 || code == 0x8D || code == 0x8F || code == 0x90 || code == 0x9D;
        const bool blank = code <= 32 || code == 127 || unused || code == 0xA0;
        EXPECT_EQ(set.glyphs[static_cast<std::size_t>(code)].height == 0, blank) << "character " << code;
    }
}

TEST_P(EveryFont, IsUprightOnTheBaseLine) {
    const Glyph& l = At(set, 'L');  // a stem and a foot: the lowest row is the longest
    EXPECT_EQ(Bottom(l), 0);
    EXPECT_GT(Ink(l, 0), Ink(l, l.height - 1));
    const Glyph& t = At(set, 'T');
    EXPECT_LT(Ink(t, t.height / 2), Ink(t, t.height - 1));
    EXPECT_LT(Bottom(At(set, 'g')), 0);
    EXPECT_GT(Bottom(At(set, '\'')), 0);
    EXPECT_LE(Top(At(set, '|')) - Bottom(At(set, '|')), set.lineHeight);
}

TEST_P(EveryFont, IsNeitherMirroredNorSlanted) { EXPECT_TRUE(HasAStraightLeftEdge(At(set, '['))); }

TEST_P(EveryFont, HasTheCharactersOfWindows1252) {
    EXPECT_GT(Top(At(set, '\x8A')), Top(At(set, 'S'))) << "S with caron";
    EXPECT_GT(Top(At(set, '\x8E')), Top(At(set, 'Z'))) << "Z with caron";
    EXPECT_GT(Top(At(set, '\x9A')), Top(At(set, 's'))) << "s with caron";
    EXPECT_GT(Top(At(set, '\x9E')), Top(At(set, 'z'))) << "z with caron";
    EXPECT_GT(Top(At(set, '\x9F')), Top(At(set, 'Y'))) << "Y with diaeresis";
    EXPECT_GT(Top(At(set, '\xC4')), Top(At(set, 'A'))) << "A with diaeresis";
    EXPECT_GT(At(set, '\x97').width, At(set, '\x96').width) << "the long dash and the short one";
    EXPECT_LT(Bottom(At(set, '\x82')), Bottom(At(set, '\x91'))) << "low and high quotation mark";
    EXPECT_GT(At(set, '\x84').width, At(set, '\x82').width) << "double and single low quotation mark";
    EXPECT_LT(Bottom(At(set, '\x83')), 0) << "f with hook";
    EXPECT_EQ(Bottom(At(set, '\x85')), Bottom(At(set, '.'))) << "ellipsis";
    EXPECT_EQ(Top(At(set, '\x85')), Top(At(set, '.')));
    EXPECT_GE(At(set, '\x89').width, At(set, '%').width) << "per mille";
    EXPECT_GT(Ink(At(set, '\x8C')), Ink(At(set, 'O'))) << "OE";
    EXPECT_GT(Bottom(At(set, '\x99')), 0) << "trade mark";
}

// The requested face and its metric-compatible replacements have advances of 1229/2048, ascents of 1705/2048 and
// descents of 615/2048.
TEST(NamedFont, OrItsMetricCompatibleReplacementHasTheRequestedMetrics) {
    const auto expectMetrics = [](const FontRequest& request, int advance, int lineHeight) {
        const GlyphSet set = RasterizeFont(request);
        ASSERT_FALSE(set.IsEmpty()) << "fonts-liberation is not installed";
        EXPECT_EQ(set.glyphs['0'].advance, advance) << request.height;
        EXPECT_EQ(set.lineHeight, lineHeight) << request.height;
    };
    expectMetrics(kNumbers, 10, 13 + 5);
    expectMetrics(kMedium, 14, 20 + 7);
    expectMetrics(kLarge, 60, 83 + 30);
    expectMetrics(kDefault, 7, 9 + 3);
    for (int height = 8; height <= 60; ++height) {
        const GlyphSet set = RasterizeFont({.family = "Courier New", .weight = 400, .height = height});
        EXPECT_LE(set.lineHeight, height);
        EXPECT_GE(set.lineHeight, height - 2);
    }
}

TEST(DefaultFont, HasNormalWeight) {
    const GlyphSet defaultFont = RasterizeFont({.family = "", .weight = 400, .height = -40});
    const GlyphSet bold = RasterizeFont({.family = "Courier New", .weight = 700, .height = -40});
    EXPECT_LT(Ink(At(defaultFont, 'H')) * 5, Ink(At(bold, 'H')) * 4);
}

TEST(UnknownFont, IsReplacedByAFixedPitchOne) {
    const GlyphSet set = RasterizeFont({.family = "No Such Family \xC3\xA4<&>:-,", .weight = 400, .height = -30});
    ASSERT_EQ(set.glyphs.size(), 256u);
    for (const Glyph& glyph : set.glyphs) EXPECT_EQ(glyph.advance, set.glyphs[0].advance);
}

TEST(RasterizeFont, ReturnsTheSameGlyphsToAllThreads) {
    std::vector<GlyphSet> sets(12);
    {
        std::vector<std::jthread> threads;
        for (std::size_t i = 0; i < sets.size(); ++i)
            threads.emplace_back([&sets, i] {
                sets[i] =
                    RasterizeFont({.family = "Courier New", .weight = 700, .height = -30 - static_cast<int>(i % 3)});
            });
    }
    for (std::size_t i = 3; i < sets.size(); ++i) EXPECT_TRUE(SameGlyphs(sets[i], sets[i % 3]));
    EXPECT_FALSE(SameGlyphs(sets[0], sets[1]));
    EXPECT_FALSE(sets[0].IsEmpty());
}

// ---- machines with other fonts, each in a separate process

/// A font of fonts-liberation, which the tests need.
fs::path InstalledFont(const std::string& name) {
    std::error_code error;
    for (const auto& entry : fs::recursive_directory_iterator("/usr/share/fonts", error))
        if (entry.path().filename() == name) return entry.path();
    throw std::runtime_error(name + " is not installed");
}

/// The fonts of a process that has not used fontconfig yet.
class OnlyFonts {
public:
    explicit OnlyFonts(const std::vector<std::string>& names = {}) {
        fs::create_directory(m_folder / "fonts");
        for (const std::string& name : names) fs::copy(InstalledFont(name), m_folder / ("fonts/" + name));
        std::ofstream(m_folder / "fonts.conf")
            << "<?xml version=\"1.0\"?><!DOCTYPE fontconfig SYSTEM \"urn:fontconfig:fonts.dtd\"><fontconfig>"
            << (names.empty() ? "" : "<dir>" + m_folder / "fonts" + "</dir>") << "<cachedir>" << m_folder / "cache"
            << "</cachedir></fontconfig>";
        setenv("FONTCONFIG_FILE", (m_folder / "fonts.conf").c_str(), 1);
    }
    [[nodiscard]] std::string PathOf(const std::string& name) const { return m_folder / ("fonts/" + name); }

private:
    ScratchFolder m_folder;
};

class MachineWith : public testing::Test {
protected:
    void SetUp() override { GTEST_FLAG_SET(death_test_style, "threadsafe"); }
};

/// Ends the process: with 0 when all conditions hold, else with the number of the first that does not.
void ExitWith(std::initializer_list<bool> held) {
    int number = 0;
    for (const bool holds : held) {
        ++number;
        if (!holds) std::exit(number);
    }
    std::exit(0);
}

#define EXPECT_IN_SEPARATE_PROCESS(function) EXPECT_EXIT(function(), testing::ExitedWithCode(0), "")

void FindNothing() {
    std::vector<bool> held;
    {
        const OnlyFonts machine;
        for (int again = 0; again < 2; ++again)
            for (const FontRequest& request : {kDefault, kMedium, kLarge, kNumbers}) {
                const GlyphSet set = RasterizeFont(request);
                held.push_back(set.IsEmpty() && set.lineHeight == 0);
            }
    }
    ExitWith({held.size() == 8, std::ranges::count(held, true) == 8});
}
TEST_F(MachineWith, NoFontsHasNoGlyphs) { EXPECT_IN_SEPARATE_PROCESS(FindNothing); }

void RefuseProportional() {
    bool any = false, named = false;
    {
        const OnlyFonts machine({"LiberationSerif-Regular.ttf"});
        any = !RasterizeFont(kMedium).IsEmpty() || !RasterizeFont(kDefault).IsEmpty();
        const GlyphSet set = RasterizeFont({.family = "liberation serif", .weight = 400, .height = -30});
        named = !set.IsEmpty() && set.glyphs['i'].advance < set.glyphs['m'].advance;
    }
    ExitWith({!any, named});
}
TEST_F(MachineWith, OneProportionalFontUsesItOnlyWhenItIsNamed) { EXPECT_IN_SEPARATE_PROCESS(RefuseProportional); }

void UseAnyFixedPitch() {
    GlyphSet normal, bold;
    {
        const OnlyFonts machine({"LiberationSerif-Bold.ttf", "LiberationMono-Regular.ttf"});
        bold = RasterizeFont(kMedium);
        normal = RasterizeFont({.family = "Liberation Mono", .weight = 400, .height = -24});
    }
    ExitWith({!bold.IsEmpty(), SameGlyphs(bold, normal)});
}
TEST_F(MachineWith, OneFixedPitchFontUsesItForEveryRequest) { EXPECT_IN_SEPARATE_PROCESS(UseAnyFixedPitch); }

void UseTheBoldest() {
    GlyphSet normal, bold, black;
    {
        const OnlyFonts machine(
            {"LiberationMono-BoldItalic.ttf", "LiberationMono-Regular.ttf", "LiberationMono-Bold.ttf"});
        normal = RasterizeFont({.family = "Courier New", .weight = 400, .height = -40});
        bold = RasterizeFont({.family = "Courier New", .weight = 700, .height = -40});
        black = RasterizeFont({.family = "Courier New", .weight = 900, .height = -40});
    }
    ExitWith({!bold.IsEmpty(), SameGlyphs(bold, black), Ink(At(bold, 'H')) > Ink(At(normal, 'H')),
              HasAStraightLeftEdge(At(black, '['))});
}
TEST_F(MachineWith, ABoldFaceUsesItForBlack) { EXPECT_IN_SEPARATE_PROCESS(UseTheBoldest); }

void SkipDamagedFont() {
    GlyphSet found, regular;
    {
        const OnlyFonts machine({"LiberationMono-Bold.ttf", "LiberationMono-Regular.ttf"});
        // Whole when fontconfig lists it, and damaged when it is opened.
        (void)RasterizeFont({.family = "Liberation Mono", .weight = 700, .height = -10});
        fs::resize_file(machine.PathOf("LiberationMono-Bold.ttf"), 100);
        found = RasterizeFont(kMedium);
        regular = RasterizeFont({.family = "Courier New", .weight = 400, .height = -24});
    }
    ExitWith({!regular.IsEmpty(), SameGlyphs(found, regular)});
}
TEST_F(MachineWith, ADamagedFontUsesTheNext) { EXPECT_IN_SEPARATE_PROCESS(SkipDamagedFont); }

/// Overwrites the character map of a font: it has 'A' alone then.
void LeaveOnlyTheLetterA(const std::string& path) {
    const auto bytes = ReadBytes(path);
    const auto number = [&](std::size_t at) {
        std::size_t value = 0;
        for (std::size_t i = at; i < at + 4; ++i) value = value << 8 | std::to_integer<std::size_t>(bytes.at(i));
        return value;
    };
    constexpr std::size_t kCmapTag = 0x636D6170, kDirectory = 12, kEntry = 16;
    std::size_t entry = kDirectory;
    while (number(entry) != kCmapTag) entry += kEntry;
    const std::uint8_t map[] = {0, 0,  0, 1, 0, 3, 0, 10,  0, 0, 0, 12,                 // one map, of all of Unicode
                                0, 12, 0, 0, 0, 0, 0, 28,  0, 0, 0, 0,                  // in format 12
                                0, 0,  0, 1, 0, 0, 0, 'A', 0, 0, 0, 'A', 0, 0, 0, 36};  // one group, glyph 36
    std::fstream file(path, std::ios::binary | std::ios::in | std::ios::out);
    file.seekp(static_cast<std::streamoff>(number(entry + 8)));
    file.write(reinterpret_cast<const char*>(map), sizeof map);
}

void SkipFontWithoutLetters() {
    GlyphSet found, regular;
    {
        const OnlyFonts machine({"LiberationMono-Bold.ttf", "LiberationMono-Regular.ttf"});
        (void)RasterizeFont({.family = "Liberation Mono", .weight = 700, .height = -10});
        LeaveOnlyTheLetterA(machine.PathOf("LiberationMono-Bold.ttf"));
        found = RasterizeFont(kMedium);
        regular = RasterizeFont({.family = "Courier New", .weight = 400, .height = -24});
    }
    ExitWith({!regular.IsEmpty(), SameGlyphs(found, regular)});
}
TEST_F(MachineWith, AFontWithoutAsciiLettersUsesTheNext) { EXPECT_IN_SEPARATE_PROCESS(SkipFontWithoutLetters); }

}  // namespace
