// The options of pictures: names of views and modes, several views, looks, and names of files that are no pictures.
#include <gtest/gtest.h>

#include "ModeNames.h"
#include "host/ParsedCommandLine.h"

namespace {

HostOptions Picture(const std::vector<std::string>& arguments) {
    std::vector<std::string> all = {"--screenshot", "o.png", "a.ply"};
    all.insert(all.end(), arguments.begin(), arguments.end());
    return Parsed(all);
}

TEST(CommandLineOfPictures, ReadsViewsAndDrawModesByNameAndByNumber) {
    for (std::size_t i = 0; i < 8; ++i) {
        EXPECT_EQ(Picture({"--view", std::string(kViewNames[i])}).view, static_cast<int>(i));
        EXPECT_EQ(Picture({"--view", std::to_string(i)}).view, static_cast<int>(i));
        EXPECT_EQ(Picture({"--draw-mode", std::string(kDrawModeNames[i])}).drawMode, static_cast<int>(i));
        EXPECT_EQ(Picture({"--draw-mode", std::to_string(i)}).drawMode, static_cast<int>(i));
    }
    EXPECT_EQ(Picture({"--view=front"}).view, KV_ScenePane::ViewFromMinusYZUp);
    EXPECT_EQ(Picture({"--view=bottom"}).view, KV_ScenePane::ViewFromMinusZYDown);
    EXPECT_EQ(Picture({"--draw-mode=gouraud"}).drawMode, KV_ScenePane::DrawModeGouraud);
    EXPECT_EQ(Parsed({"--view=right", "a.ply"}).view, KV_ScenePane::ViewFromPlusXZUp) << "in the window, too";
}

TEST(CommandLineOfPictures, ListsTheNamesInTheHelp) {
    for (const auto* const names : {&kViewNames, &kDrawModeNames})
        for (std::size_t i = 0; i < names->size(); ++i)
            EXPECT_NE(HelpText().find(std::to_string(i) + ' ' + std::string((*names)[i])), std::string::npos) << i;
}

TEST(CommandLineOfPictures, ReadsWhatTheyLookLike) {
    const HostOptions plain = Picture({});
    EXPECT_FALSE(plain.background || plain.axes || plain.pointSize || plain.isTight || plain.usesPalette);
    EXPECT_EQ(plain.samples, 0);
    const HostOptions options = Picture({"--background", "102030,aabbcc", "--axes", "--samples", "4", "--point-size",
                                         "3.5", "--fit", "--color", "auto"});
    EXPECT_EQ((*options.background)[0], 0x302010);
    EXPECT_EQ((*options.background)[1], 0xCCBBAA);
    EXPECT_TRUE(options.axes && options.isTight && options.usesPalette);
    EXPECT_FALSE(options.given.color);
    EXPECT_EQ(options.samples, 4);
    EXPECT_EQ(options.pointSize, 3.5f);
    EXPECT_EQ((*Picture({"--background=102030"}).background)[1], 0x302010) << "one colour for both";
    EXPECT_TRUE(Picture({"--no-vertex-colors"}).import.leavesOutColors);
    EXPECT_FALSE(Picture({"--color=auto", "--color=010203"}).usesPalette) << "the last one counts";
}

TEST(CommandLineOfPictures, ReadsSeveralViews) {
    const auto views = [](const std::string& value) {
        return Parsed({"--screenshot", "o-{view}.png", "--views", value, "a.ply"}).views;
    };
    EXPECT_EQ(views("front"), std::vector{KV_ScenePane::ViewFromMinusYZUp});
    EXPECT_EQ(views("top,0,left"), (std::vector{KV_ScenePane::ViewFromPlusZYUp, KV_ScenePane::ViewFromPlusYZUp,
                                                KV_ScenePane::ViewFromMinusXZUp}));
    EXPECT_EQ(views("all").size(), 8u);
    EXPECT_EQ(Parsed({"--capture={view}/o.jpg", "--views=all", "a.ply"}).views.size(), 8u);
}

TEST(CommandLineOfPictures, ReadsNamesOfEveryFormat) {
    for (const char* const name : {"a.png", "a.PNG", "a.jpg", "dir.ply/a.JPEG", "a.webp", "-"}) {
        EXPECT_EQ(Parsed({"--screenshot", name, "a.ply"}).picturePath, name);
        EXPECT_EQ(Parsed({"--capture", name, "a.ply"}).picturePath, name);
    }
}

TEST(CommandLineOfPictures, RefusesNamesThatAreNoPictures) {
    for (const std::string name :
         {"a.stl", "png", ".stl", "--info", "-a.png", "--", "a", "a.png ", "a.tiff", "a.svg", ""})
        for (const std::string option : {"--screenshot", "--capture"})
            EXPECT_EQ(UsageErrorOf({option, name, "a.ply"}),
                      option +
                          " takes a file name that ends in .png, .jpg, .jpeg or .webp and does not begin with -, "
                          "or - alone for standard output, not \"" +
                          name + '"');
}

const WrongUsage kWrongUsages[] = {
    {"UnknownView",
     {"--view=side", "a.ply"},
     "--view takes back, front, right, left, top, bottom, oblique or bottom-y-up, or its number from 0 to 7, not "
     "\"side\""},
    {"UnknownDrawMode",
     {"--draw-mode=smooth", "a.ply"},
     "--draw-mode takes points, wireframe, flat, gouraud, boxes, per-pixel, nothing or shadow-map, or its number from "
     "0 to 7, not \"smooth\""},
    {"SizeWithTooManyPixels",
     {"--screenshot=o.png", "--size=16384x16384", "a.ply"},
     "--size takes WIDTHxHEIGHT, each from 1 to 16384, with at most 134217728 pixels together, not \"16384x16384\""},
    {"BackgroundOfThreeColours",
     {"--screenshot=o.png", "--background=000000,000000,000000", "a.ply"},
     "--background takes one or two colours RRGGBB of six hexadecimal digits, with a comma between them, not "
     "\"000000,000000,000000\""},
    {"BackgroundWithoutSecondColour",
     {"--screenshot=o.png", "--background=000000,", "a.ply"},
     "--background takes one or two colours RRGGBB of six hexadecimal digits, with a comma between them, not "
     "\"000000,\""},
    {"BackgroundOfTheWindow",
     {"--background=000000", "a.ply"},
     "--background goes with --screenshot and --capture only"},
    {"AxesOfACapture", {"--capture=o.png", "--axes", "a.ply"}, "--axes goes with --screenshot only"},
    {"TooManySamples",
     {"--screenshot=o.png", "--samples=33", "a.ply"},
     "--samples takes a whole number from 0 to 32, not \"33\""},
    {"PointsWithoutSize",
     {"--screenshot=o.png", "--point-size=0", "a.ply"},
     "--point-size takes a number above 0 and up to 1000, not \"0\""},
    {"FitOfACapture", {"--capture=o.png", "--fit", "a.ply"}, "--fit goes with --screenshot, --pick and --cut only"},
    {"ViewTwiceAmongSeveral",
     {"--screenshot=o-{view}.png", "--views=front,1", "a.ply"},
     "--views takes all, or views with commas between them, each once: back, front, right, left, top, bottom, "
     "oblique, bottom-y-up or numbers from 0 to 7, not \"front,1\""},
    {"CommaAtTheEndOfSeveralViews",
     {"--screenshot=o-{view}.png", "--views=front,", "a.ply"},
     "--views takes all, or views with commas between them, each once: back, front, right, left, top, bottom, "
     "oblique, bottom-y-up or numbers from 0 to 7, not \"front,\""},
    {"ViewsWithoutPlace",
     {"--screenshot=o.png", "--views=all", "a.ply"},
     "--views needs {view} in the name of the picture, such as out-{view}.png"},
    {"ViewsToStandardOutput",
     {"--screenshot=-", "--views=all", "a.ply"},
     "--views needs {view} in the name of the picture, such as out-{view}.png"},
    {"PlaceWithoutViews",
     {"--screenshot=o-{view}.png", "a.ply"},
     "{view} in the name of the picture goes with --views only"},
    {"ViewAndViews",
     {"--screenshot=o-{view}.png", "--view=1", "--views=all", "a.ply"},
     "--view and --views do not go together"},
    {"CutAndViews",
     {"--screenshot=o-{view}.png", "--cut=inside:0,0;1,1", "--views=all", "a.ply"},
     "--cut and --views do not go together"},
    {"ViewsOfAPick", {"--pick=1,1", "--views=all", "a.ply"}, "--views goes with --screenshot and --capture only"},
    {"ColorOfAConversion", {"--convert", "--color=010203", "a.ply", "b.ply"}, "--color has no meaning with --convert"},
    {"ColorOfAnExport",
     {"--export=b.ply", "--cut=inside:0,0;1,1", "--color=010203", "a.ply"},
     "--color has no meaning with --export"},
    {"PaletteOfTheWindow", {"--color=auto", "a.ply"}, "--color auto goes with the runs without a window only"},
    {"WindowWithoutVertexColors",
     {"--no-vertex-colors", "a.ply"},
     "--no-vertex-colors goes with the runs without a window only"},
    {"ProgressAndQuiet", {"--info", "--progress", "--quiet", "a.ply"}, "--progress and --quiet do not go together"},
    {"QuietWindow", {"--quiet", "a.ply"}, "--quiet goes with the runs without a window only"},
    {"ConvertToAnOption",
     {"--convert", "--", "a.ply", "--b.hps"},
     "--b.hps: the name of a file to write must not begin with -; write ./--b.hps"},
    {"ExportToAnOption",
     {"--export", "--info", "--cut=inside:0,0;1,1", "a.ply"},
     "--export takes a file name that does not begin with -, not \"--info\""},
    {"TransformsIntoAScan",
     {"--align=p.txt", "--save-transforms=b.pcm", "--moving", "a.pcm", "--fixed", "b.pcm"},
     "--save-transforms takes a file name that ends in .json and does not begin with -, not \"b.pcm\""},
};
class CommandLineOfPicturesRejects : public testing::TestWithParam<WrongUsage> {};

TEST_P(CommandLineOfPicturesRejects, AndSaysWhy) { EXPECT_EQ(UsageErrorOf(GetParam().arguments), GetParam().message); }
INSTANTIATE_TEST_SUITE_P(CommandLine, CommandLineOfPicturesRejects, testing::ValuesIn(kWrongUsages),
                         [](const auto& row) { return row.param.name; });

}  // namespace
