// The options of alignments and of stored transforms.
#include <gtest/gtest.h>

#include "host/ParsedCommandLine.h"

namespace {

using Files = std::vector<std::string>;

TEST(CommandLineOfAlignments, GivesTheFilesAfterEachOptionToIt) {
    const HostOptions options = Parsed({"--align", "p.txt", "--moving", "a.pcm", "b.pcm", "--fixed", "c.pcm", "d.pcm"});
    EXPECT_EQ(options.action, HostAction::Align);
    EXPECT_EQ(options.pairFile, "p.txt");
    EXPECT_EQ(options.movingFiles, (Files{"a.pcm", "b.pcm"}));
    EXPECT_EQ(options.fixedFiles, (Files{"c.pcm", "d.pcm"}));
    EXPECT_TRUE(options.files.empty());
    EXPECT_EQ(options.transformFile, "");
    EXPECT_EQ(options.savedTransforms, "");
    EXPECT_FALSE(options.json);
}

TEST(CommandLineOfAlignments, ReadsItsOptionsInAnyOrderAndSeveralTimes) {
    const HostOptions options =
        Parsed({"--fixed", "c.pcm", "--json", "--moving", "a.pcm", "--save-transforms=o.json", "--fixed", "d.pcm",
                "--transforms", "t.json", "--skip=4", "--moving", "b.pcm", "--align=p.txt"});
    EXPECT_EQ(options.action, HostAction::Align);
    EXPECT_EQ(options.pairFile, "p.txt");
    EXPECT_EQ(options.movingFiles, (Files{"a.pcm", "b.pcm"}));
    EXPECT_EQ(options.fixedFiles, (Files{"c.pcm", "d.pcm"}));
    EXPECT_EQ(options.transformFile, "t.json");
    EXPECT_EQ(options.savedTransforms, "o.json");
    EXPECT_EQ(options.import.skip, 4);
    EXPECT_TRUE(options.json);
}

TEST(CommandLineOfAlignments, GivesNamesThatBeginWithAMinusToTheLastList) {
    const HostOptions options = Parsed({"--align=p.txt", "--moving", "a.pcm", "--fixed", "--", "-b.pcm", "--json"});
    EXPECT_EQ(options.fixedFiles, (Files{"-b.pcm", "--json"}));
}

TEST(CommandLineOfAlignments, ReadsStoredTransformsForEveryRunWithFiles) {
    for (const Files& run :
         {Files{"a.pcm"}, Files{"--screenshot=o.png", "a.pcm"}, Files{"--capture=o.png", "a.pcm"},
          Files{"--pick=1,1", "a.pcm"}, Files{"--info", "a.pcm"}, Files{"--convert", "a.pcm", "b.ply"},
          Files{"--save-cuts", "--clip-auto", "a.pcm"}, Files{"--export=o.ply", "--cut=inside:0,0;1,1", "a.pcm"}}) {
        Files arguments = run;
        arguments.insert(arguments.begin(), "--transforms=dir/t.json");
        EXPECT_EQ(Parsed(arguments).transformFile, "dir/t.json") << run.front();
        EXPECT_EQ(Parsed(run).transformFile, "") << run.front();
    }
}

const WrongUsage kWrongUsages[] = {
    {"AlignAlone", {"--align", "p.txt"}, "--align needs at least one file after --moving"},
    {"AlignWithoutName", {"--align"}, "--align needs a value: a file name"},
    {"AlignWithAnEmptyName",
     {"--align=", "--moving", "a.pcm", "--fixed", "b.pcm"},
     "--align takes a file name, not \"\""},
    {"AlignTwice",
     {"--align=p.txt", "--moving", "a.pcm", "--fixed", "b.pcm", "--align", "q.txt"},
     "--align may be given only once"},
    {"TransformsTwice", {"--transforms=t.json", "a.pcm", "--transforms=t.json"}, "--transforms may be given only once"},
    {"SaveTransformsTwice",
     {"--align=p.txt", "--save-transforms=a.json", "--save-transforms=b.json", "--moving", "a.pcm", "--fixed", "b.pcm"},
     "--save-transforms may be given only once"},
    {"AlignWithoutMoving", {"--align=p.txt", "--fixed", "a.pcm"}, "--align needs at least one file after --moving"},
    {"AlignWithAnEmptyList",
     {"--align=p.txt", "--moving", "--fixed", "a.pcm"},
     "--align needs at least one file after --moving"},
    {"AlignWithoutFixed", {"--align=p.txt", "--moving", "a.pcm"}, "--align needs at least one file after --fixed"},
    {"AlignWithAFileOfItsOwn",
     {"--align=p.txt", "x.pcm", "--moving", "a.pcm", "--fixed", "b.pcm"},
     "x.pcm: --align needs every file after --moving or --fixed"},
    {"AlignWithAFileAfterAnotherOption",
     {"--align=p.txt", "--fixed", "b.pcm", "--moving", "a.pcm", "--skip", "2", "x.pcm"},
     "x.pcm: --align needs every file after --moving or --fixed"},
    {"AlignOfAFileToItself",
     {"--align=p.txt", "--moving", "a.pcm", "b.pcm", "--fixed", "c.pcm", "b.pcm"},
     "b.pcm is after --moving and after --fixed"},
    {"AlignWithAnEmptyFileName", {"--align=p.txt", "--moving", ""}, "a file name is empty"},
    {"MovingWithAValue", {"--align=p.txt", "--moving=a.pcm", "--fixed", "b.pcm"}, "--moving takes no value"},
    {"MovingWithoutAlign", {"--info", "--moving", "a.pcm"}, "--moving goes with --align only"},
    {"FixedOfTheWindow", {"--fixed", "a.pcm"}, "--fixed goes with --align only"},
    {"AlignAndScreenshot",
     {"--align=p.txt", "--moving", "a.pcm", "--fixed", "b.pcm", "--screenshot", "o.png"},
     "--align and --screenshot do not go together"},
    {"AlignAndConvert",
     {"--convert", "--align=p.txt", "--moving", "a.pcm", "--fixed", "b.ply"},
     "--align and --convert do not go together"},
    {"AlignWithAView",
     {"--align=p.txt", "--view=1", "--moving", "a.pcm", "--fixed", "b.ply"},
     "--view has no meaning with --align"},
    {"AlignWithLines",
     {"--align=p.txt", "--lines=l.txt", "--moving", "a.pcm", "--fixed", "b.ply"},
     "--lines has no meaning with --align"},
    {"TransformsWithoutName", {"--info", "a.pcm", "--transforms="}, "--transforms takes a file name, not \"\""},
    {"TransformsWithVersion",
     {"--version", "--verbose", "--transforms=t.json"},
     "--version --verbose goes with --gpu only"},
    {"SaveTransformsOfInfo",
     {"--info", "--save-transforms=o.json", "a.pcm"},
     "--save-transforms goes with --align only"},
    {"SaveTransformsWithoutName",
     {"--align=p.txt", "--save-transforms=", "--moving", "a.pcm"},
     "--save-transforms takes a file name that ends in .json and does not begin with -, not \"\""},
};
class CommandLineOfAlignmentsRejects : public testing::TestWithParam<WrongUsage> {};

TEST_P(CommandLineOfAlignmentsRejects, AndSaysWhy) {
    EXPECT_EQ(UsageErrorOf(GetParam().arguments), GetParam().message);
}
INSTANTIATE_TEST_SUITE_P(CommandLine, CommandLineOfAlignmentsRejects, testing::ValuesIn(kWrongUsages),
                         [](const auto& row) { return row.param.name; });

}  // namespace
