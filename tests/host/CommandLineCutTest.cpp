// The options of cuts: --cut, --save-cuts and --export.
#include <gtest/gtest.h>

#include <utility>

#include "host/ParsedCommandLine.h"

namespace {

TEST(CommandLineOfCuts, ReadsLassosInTheirOrderForEachOfTheirRuns) {
    const std::pair<std::vector<std::string>, HostAction> runs[] = {{{"--screenshot=o.png"}, HostAction::Screenshot},
                                                                    {{"--info"}, HostAction::Info},
                                                                    {{"--info", "--json"}, HostAction::Info},
                                                                    {{"--save-cuts"}, HostAction::SaveCuts},
                                                                    {{"--export", "o.ply"}, HostAction::Export}};
    for (const auto& [run, action] : runs) {
        std::vector<std::string> arguments = {"--cut",    "outside:0,0;1,0.5", "--size=50x60", "--view", "2",
                                              "--zoom=2", "--gpu=software",    "--skip=2",     "a.pcm"};
        arguments.insert(arguments.end(), run.begin(), run.end());
        arguments.emplace_back("--cut=freehand-visible:0.25,-3");
        const HostOptions options = Parsed(arguments);
        EXPECT_EQ(options.action, action);
        EXPECT_EQ(options.width, 50);
        EXPECT_EQ(options.view, 2);
        ASSERT_EQ(options.cuts.size(), 2u);
        EXPECT_EQ(options.cuts[0].mode, KV_ScenePane::PolygonOutside);
        EXPECT_EQ(options.cuts[0].points.size(), 2u);
        EXPECT_EQ(options.cuts[1].mode, KV_ScenePane::FreehandVisible);
        ASSERT_EQ(options.cuts[1].points.size(), 1u);
        EXPECT_EQ(options.cuts[1].points[0].x, 0.25);
        EXPECT_EQ(options.cuts[1].points[0].y, -3);
    }
    EXPECT_EQ(Parsed({"--cut=inside:0,0;1,1", "--export", "dir/o.STL", "a.pcm"}).exportPath, "dir/o.STL");
    EXPECT_TRUE(Parsed({"--info", "a.pcm"}).cuts.empty());
}

TEST(CommandLineOfCuts, ReadsAPlaneForARunWithLassosAndForASaveWithoutThem) {
    for (const char* const run : {"--screenshot=o.png", "--info", "--save-cuts", "--export=o.ply"}) {
        EXPECT_TRUE(Parsed({run, "--cut=inside:0,0;1,1", "--clip=0,0,0,0,0,1", "a.pcm"}).clip) << run;
        EXPECT_TRUE(Parsed({run, "--cut=inside:0,0;1,1", "--clip-auto", "a.pcm"}).clipAuto) << run;
    }
    EXPECT_TRUE(Parsed({"--save-cuts", "--clip=0,0,0,0,0,1", "a.pcm", "b.pcm"}).clip);
    EXPECT_TRUE(Parsed({"--save-cuts", "--clip-auto", "a.pcm"}).clipAuto);
}

const WrongUsage kWrongUsages[] = {
    {"CutWithoutARun",
     {"--cut=inside:0,0;1,1", "a.pcm"},
     "--cut goes with --screenshot, --info, --save-cuts and --export only"},
    {"CutOfACapture",
     {"--capture=a.png", "--cut=inside:0,0;1,1", "a.pcm"},
     "--cut goes with --screenshot, --info, --save-cuts and --export only"},
    {"CutOfAPick",
     {"--pick=1,1", "--size=9x9", "--cut=inside:0,0;1,1", "a.pcm"},
     "--cut goes with --screenshot, --info, --save-cuts and --export only"},
    {"CutOfAConversion",
     {"--convert", "--cut=inside:0,0;1,1", "a.pcm", "b.ply"},
     "--cut goes with --screenshot, --info, --save-cuts and --export only"},
    {"CutWithVersion", {"--version", "--verbose", "--cut=inside:0,0;1,1"}, "--version --verbose goes with --gpu only"},
    {"CutAtTheEnd",
     {"--info", "a.pcm", "--cut"},
     "--cut needs a value: MODE:X,Y;X,Y;... with the mode inside, outside, visible, freehand-inside, freehand-outside "
     "or freehand-visible"},
    {"CutWithABadPoint",
     {"--info", "a.pcm", "--cut", "inside:0,0;1;0,1"},
     "--cut takes MODE:X,Y;X,Y;... with the mode inside, outside, visible, freehand-inside, freehand-outside or "
     "freehand-visible: point 2 is \"1\" and not X,Y, two finite numbers"},
    {"CutWithABadMode",
     {"--info", "a.pcm", "--cut=in:0,0;1,1"},
     "--cut takes MODE:X,Y;X,Y;... with the mode inside, outside, visible, freehand-inside, freehand-outside or "
     "freehand-visible: \"in\" is no mode"},
    {"CutInfoWithShadows",
     {"--info", "--cut=inside:0,0;1,1", "--shadows", "a.pcm"},
     "--shadows has no meaning with --info"},
    {"CutInfoWithLines",
     {"--info", "--cut=inside:0,0;1,1", "--lines=l", "a.pcm"},
     "--lines has no meaning with --info"},
    {"InfoWithASizeAndNoCut", {"--info", "--size=9x9", "a.pcm"}, "--size has no meaning with --info"},
    {"InfoWithAViewAndNoCut", {"--info", "--view=1", "a.pcm"}, "--view has no meaning with --info"},
    {"SaveCutsOfNothing", {"--save-cuts", "a.pcm"}, "--save-cuts needs --cut, --clip or --clip-auto"},
    {"SaveCutsWithoutFile", {"--save-cuts", "--clip-auto"}, "--save-cuts needs at least one file"},
    {"SaveCutsWithAValue", {"--save-cuts=a.pcm", "--clip-auto"}, "--save-cuts takes no value"},
    {"SaveCutsWithAViewAndNoCut",
     {"--save-cuts", "--clip-auto", "--view=1", "a.pcm"},
     "--view has no meaning with --save-cuts"},
    {"SaveCutsWithJson",
     {"--save-cuts", "--clip-auto", "--json", "a.pcm"},
     "--json goes with --info, --pick and --align only"},
    {"SaveCutsAndInfo",
     {"--info", "--save-cuts", "--cut=inside:0,0;1,1", "a.pcm"},
     "--save-cuts and --info do not go together"},
    {"SaveCutsAndScreenshot",
     {"--screenshot=o.png", "--save-cuts", "--cut=inside:0,0;1,1", "a.pcm"},
     "--save-cuts and --screenshot do not go together"},
    {"SaveCutsAndExport",
     {"--export=o.ply", "--save-cuts", "--cut=inside:0,0;1,1", "a.pcm"},
     "--save-cuts and --export do not go together"},
    {"ExportWithoutCut", {"--export=o.ply", "a.pcm"}, "--export needs --cut; --convert writes a file without cuts"},
    {"ExportWithoutFile",
     {"--export=o.ply", "--cut=inside:0,0;1,1"},
     "--export writes one object and needs one file to read"},
    {"ExportOfTwoFiles",
     {"--export=o.ply", "--cut=inside:0,0;1,1", "a.pcm", "b.pcm"},
     "--export writes one object and needs one file to read"},
    {"ExportToATypeThatIsOnlyRead",
     {"--export=o.pcm", "--cut=inside:0,0;1,1", "a.pcm"},
     "o.pcm: only ply, stl and hps files can be written"},
    {"ExportWithoutName",
     {"--export=", "--cut=inside:0,0;1,1", "a.pcm"},
     "--export takes a file name that does not begin with -, not \"\""},
    {"ExportAndConvert",
     {"--export=o.ply", "--convert", "a.pcm", "b.ply"},
     "--convert and --export do not go together"},
};
class CommandLineOfCutsRejects : public testing::TestWithParam<WrongUsage> {};

TEST_P(CommandLineOfCutsRejects, AndSaysWhy) { EXPECT_EQ(UsageErrorOf(GetParam().arguments), GetParam().message); }
INSTANTIATE_TEST_SUITE_P(CommandLine, CommandLineOfCutsRejects, testing::ValuesIn(kWrongUsages),
                         [](const auto& row) { return row.param.name; });

}  // namespace
