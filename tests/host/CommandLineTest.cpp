#include "CommandLine.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <ostream>

#include "FileTypes.h"
#include "host/CommaLocale.h"
#include "host/ParsedCommandLine.h"

namespace {

TEST(CommandLine, WithoutArgumentsOpensAnEmptyWindow) {
    const HostOptions options = Parsed({});
    EXPECT_EQ(options.action, HostAction::Window);
    EXPECT_TRUE(options.files.empty());
    EXPECT_EQ(options.import.skip, 1);
    EXPECT_EQ(options.import.confidence, 0.0f);
    EXPECT_EQ(options.zoom, 1.0f);
    EXPECT_EQ(options.drawMode, std::nullopt);
    EXPECT_FALSE(options.shadows);
}

TEST(CommandLine, ReadsEveryOptionOfAScreenshot) {
    const HostOptions options =
        Parsed({"--screenshot", "out.png", "--size", "333x777", "--view", "6", "--draw-mode", "5", "--zoom", "2.5",
                "--skip", "3", "--confidence", "0.25", "--color", "102030", "--shadows", "a.pcm", "b.pax"});
    EXPECT_EQ(options.action, HostAction::Screenshot);
    EXPECT_EQ(options.picturePath, "out.png");
    EXPECT_EQ(options.width, 333);
    EXPECT_EQ(options.height, 777);
    EXPECT_EQ(options.view, 6);
    EXPECT_EQ(options.drawMode, 5);
    EXPECT_EQ(options.zoom, 2.5f);
    EXPECT_EQ(options.import.skip, 3);
    EXPECT_EQ(options.import.confidence, 0.25f);
    EXPECT_TRUE(options.shadows);
    EXPECT_EQ(options.files, (std::vector<std::string>{"a.pcm", "b.pax"}));
}

TEST(CommandLine, ReadsTheOptionsThatApplyToACapture) {
    const HostOptions options = Parsed({"--capture", "out.png", "--view", "6", "--zoom", "2.5", "--skip", "3",
                                        "--confidence", "0.25", "--color", "102030", "a.pcm"});
    EXPECT_EQ(options.action, HostAction::Capture);
    EXPECT_EQ(options.picturePath, "out.png");
    EXPECT_EQ(options.view, 6);
    EXPECT_EQ(options.zoom, 2.5f);
    EXPECT_EQ(options.import.skip, 3);
    EXPECT_EQ(options.files, std::vector<std::string>{"a.pcm"});
}

TEST(CommandLine, ReadsPicksInTheirOrder) {
    const HostOptions options = Parsed({"--pick", "3,4", "a.ply", "--json", "--pick=0,0", "--size", "5x6", "--view=2",
                                        "--zoom", "2", "--gpu=software", "--skip=2", "--pick", "4,5"});
    EXPECT_EQ(options.action, HostAction::Pick);
    EXPECT_TRUE(options.json);
    ASSERT_EQ(options.picks.size(), 3u);
    const int expected[3][2] = {{3, 4}, {0, 0}, {4, 5}};
    for (std::size_t i = 0; i < 3; ++i) {
        EXPECT_EQ(options.picks[i].x, expected[i][0]) << i;
        EXPECT_EQ(options.picks[i].y, expected[i][1]) << i;
    }
    EXPECT_EQ(options.view, 2);
    EXPECT_EQ(options.zoom, 2.0f);
    EXPECT_EQ(options.import.skip, 2);
    EXPECT_EQ(options.files, std::vector<std::string>{"a.ply"});
}

TEST(CommandLine, ReadsMarkerFilesOfPicturesAndOfTheWindow) {
    const std::vector<std::string> markers = {"--points",  "a.xyz",  "--lines",       "l.txt",
                                              "--needles", "n.json", "--points=b.pcd"};
    for (const std::vector<std::string>& run :
         {std::vector<std::string>{}, {"--screenshot=o.png"}, {"--capture=o.png"}}) {
        std::vector<std::string> arguments = run;
        arguments.insert(arguments.end(), markers.begin(), markers.end());
        const HostOptions options = Parsed(arguments);
        EXPECT_EQ(options.pointFiles, (std::vector<std::string>{"a.xyz", "b.pcd"}));
        EXPECT_EQ(options.lineFiles, std::vector<std::string>{"l.txt"});
        EXPECT_EQ(options.needleFiles, std::vector<std::string>{"n.json"});
        EXPECT_TRUE(options.files.empty());
    }
}

TEST(CommandLine, AScreenshotOfMarkersAloneNeedsNoOtherFile) {
    for (const char* const option : {"--points", "--lines", "--needles"})
        EXPECT_EQ(Parsed({"--screenshot", "o.png", option, "a"}).action, HostAction::Screenshot) << option;
    for (const char* const option : {"--lines", "--needles"})
        EXPECT_EQ(Parsed({"--capture", "o.png", option, "a"}).action, HostAction::Capture) << option;
}

TEST(CommandLine, ReadsTheTwoFilesOfAConversionAndItsImportOptions) {
    const HostOptions options = Parsed({"--skip", "2", "in.pcm", "--convert", "--confidence=0.5", "dir/out.STL"});
    EXPECT_EQ(options.action, HostAction::Convert);
    EXPECT_EQ(options.files, std::vector<std::string>{"in.pcm"});
    EXPECT_EQ(options.exportPath, "dir/out.STL");
    EXPECT_EQ(options.import.skip, 2);
    EXPECT_EQ(Parsed({"--convert", "--", "-a.ply", "b.hps"}).files, std::vector<std::string>{"-a.ply"});
}

TEST(CommandLine, ConvertsColoursToRedInTheLowByte) {
    EXPECT_EQ(Parsed({"--color", "FF8001"}).import.color, 0x0180FF);
    EXPECT_EQ(Parsed({"--color=0a0b0c"}).import.color, 0x0C0B0A);
}

TEST(CommandLine, ReadsValuesAfterAnEqualsSign) {
    const HostOptions options = Parsed({"--screenshot=a=b.png", "--size=1x16384", "--confidence=-1e-3", "x.xdt"});
    EXPECT_EQ(options.picturePath, "a=b.png");
    EXPECT_EQ(options.width, 1);
    EXPECT_EQ(options.height, 16384);
    EXPECT_EQ(options.import.confidence, -1e-3f);
}

TEST(CommandLine, ReadsEverythingAfterTwoDashesAsFileNames) {
    const HostOptions options = Parsed({"--info", "a.pcm", "--", "--json", "-x", "--"});
    EXPECT_FALSE(options.json);
    EXPECT_EQ(options.files, (std::vector<std::string>{"a.pcm", "--json", "-x", "--"}));
}

TEST(CommandLine, ReadsOptionsAfterFiles) {
    const HostOptions options = Parsed({"a.pcm", "--info", "b.pcm", "--json"});
    EXPECT_EQ(options.action, HostAction::Info);
    EXPECT_TRUE(options.json);
    EXPECT_EQ(options.files.size(), 2u);
}

TEST(CommandLine, IgnoresTheRestAfterHelpOrVersion) {
    EXPECT_EQ(Parsed({"--help"}).action, HostAction::Help);
    EXPECT_EQ(Parsed({"-h", "--zoom", "99"}).action, HostAction::Help);
    EXPECT_EQ(Parsed({"--version", "--unknown"}).action, HostAction::Version);
    EXPECT_EQ(Parsed({"-V"}).action, HostAction::Version);
    EXPECT_EQ(UsageErrorOf({"--zoom", "99", "--help"}), "--zoom takes a number from 0.1 to 10, not \"99\"");
    EXPECT_EQ(VersionText(), "scenepane 5.5.0\n");
}

TEST(CommandLine, ReadsWhatDrawsOffScreen) {
    using KV_ScenePane::WindowRequest;
    EXPECT_EQ(Parsed({"--screenshot", "a.png", "a.pcm"}).gpu, WindowRequest::kAnyGpu);
    EXPECT_EQ(Parsed({"--screenshot", "a.png", "--gpu", "0", "a.pcm"}).gpu, 0);
    EXPECT_EQ(Parsed({"--gpu=31", "--capture", "a.png", "a.pcm"}).gpu, 31);
    EXPECT_EQ(Parsed({"--gpu", "software", "--capture", "a.png", "a.pcm"}).gpu, WindowRequest::kSoftware);
}

TEST(CommandLine, AVerboseVersionIsARunWithADevice) {
    for (const auto& arguments :
         {std::vector<std::string>{"--version", "--verbose", "--gpu", "2"}, {"--gpu=2", "--verbose", "--version"}}) {
        const HostOptions options = Parsed(arguments);
        EXPECT_EQ(options.action, HostAction::Version);
        EXPECT_TRUE(options.verbose);
        EXPECT_EQ(options.gpu, 2);
    }
    EXPECT_FALSE(Parsed({"--version"}).verbose);
    EXPECT_FALSE(Parsed({"--version", "--", "--verbose"}).verbose) << "a file name";
}

TEST(CommandLine, KeepsFileNamesThatAreNotUtf8) {
    EXPECT_EQ(Parsed({"\xff\x80.pcm"}).files, (std::vector<std::string>{"\xff\x80.pcm"}));
}

TEST(CommandLine, ReadsNumbersWithADecimalPointInAnyLocale) {
    const CommaLocale locale;
    if (!locale.IsSet()) GTEST_SKIP() << "this machine cannot make a locale";
    EXPECT_EQ(Parsed({"--zoom", "1.5"}).zoom, 1.5f);
    EXPECT_EQ(UsageErrorOf({"--zoom", "1,5"}), "--zoom takes a number from 0.1 to 10, not \"1,5\"");
}

TEST(CommandLine, NamesTheFileTypesInTheHelp) {
    std::string help = HelpText();
    std::ranges::replace(help, '\n', ' ');
    for (const std::string& list : {ExtensionList(IsImportedScan, "and"), ExtensionList(IsImportedMesh, "and")})
        EXPECT_NE(help.find('(' + list), std::string::npos) << list;
    EXPECT_NE(help.find("as the " + ExtensionList(IsExported, "or") + " file OUT"), std::string::npos);
}

TEST(CommandLine, ReadsThePlaneOfAScreenshot) {
    EXPECT_FALSE(Parsed({"--screenshot=o.png", "a.ply"}).clip.has_value());
    const HostOptions options = Parsed({"--screenshot=o.png", "--clip", "-1.5,2e3,.25,0,-1,1e-20", "a.ply"});
    ASSERT_TRUE(options.clip.has_value());
    EXPECT_EQ(options.clip->center, (std::array{-1.5f, 2000.0f, 0.25f}));
    EXPECT_EQ(options.clip->normal, (std::array{0.0f, -1.0f, 1e-20f}));
    EXPECT_FALSE(options.clipAuto);
    const HostOptions again = Parsed({"--clip=1,2,3,4,5,6", "a.ply", "--screenshot=o.png", "--clip=7,8,9,0,0,1"});
    EXPECT_EQ(again.clip->center, (std::array{7.0f, 8.0f, 9.0f})) << "the last one counts, as for every option";
}

TEST(CommandLine, ReadsTheLargestAndTheSmallestNumbersOfAPlane) {
    const HostOptions options = Parsed(
        {"--screenshot=o.png", "--clip", "3.4028235e38,-3.4028235e+38,1e-45,-1e-50,1e-300,7.038531e-26", "a.ply"});
    ASSERT_TRUE(options.clip.has_value());
    EXPECT_EQ(options.clip->center, (std::array{0x1.fffffep+127f, -0x1.fffffep+127f, 0x1p-149f}));
    EXPECT_EQ(options.clip->normal, (std::array{0.0f, 0.0f, 7.038531e-26f})) << "too small for a float: 0";
}

TEST(CommandLine, ReadsAPlaneAtTheDataForAScreenshotAndForInfo) {
    EXPECT_TRUE(Parsed({"--screenshot=o.png", "--clip-auto", "a.ply"}).clipAuto);
    EXPECT_TRUE(Parsed({"--clip-auto", "--info", "--json", "a.ply", "b.ply"}).clipAuto);
    EXPECT_FALSE(Parsed({"--info", "a.ply", "--", "--clip-auto"}).clipAuto);
}

TEST(CommandLine, RejectsWhatIsNoPlaneAndNamesIt) {
    for (const std::string value : {"",
                                    "1",
                                    "0,0,1",
                                    "1,2,3,4,5",
                                    "1,2,3,4,5,",
                                    ",1,2,3,4,5",
                                    "1,2,3,4,5,6,",
                                    "1,2,3,4,5,6,7",
                                    "1,,3,4,5,6",
                                    "1,2,3,0,0,0",
                                    "1,2,3,-0,0,0",
                                    "1,2,3,1e-50,0,0",
                                    "nan,2,3,4,5,6",
                                    "1,2,3,4,5,inf",
                                    "1,-infinity,3,4,5,6",
                                    "1e39,2,3,4,5,6",
                                    "1,2,3,4,5,-1e39",
                                    "1e999,2,3,4,5,6",
                                    "1,2,3,1e-400,0,1",
                                    " 1,2,3,4,5,6",
                                    "1, 2,3,4,5,6",
                                    "1,2,3,4,5,6 ",
                                    "1;2;3;4;5;6",
                                    "1,2,3,4,5,z",
                                    "1,2,3,4,5,6x",
                                    "+1,2,3,4,5,6",
                                    "0x1,2,3,4,5,6",
                                    "1.5.2,2,3,4,5,6"})
        EXPECT_EQ(
            UsageErrorOf({"--screenshot=o.png", "--clip", value, "a.ply"}),
            "--clip takes CX,CY,CZ,NX,NY,NZ, six finite numbers with a normal other than 0,0,0, not \"" + value + '"');
}

TEST(CommandLine, ReadsAPlaneWithDecimalPointsInAnyLocale) {
    const CommaLocale locale;
    if (!locale.IsSet()) GTEST_SKIP() << "this machine cannot make a locale";
    const HostOptions options = Parsed({"--screenshot=o.png", "--clip=1.5,2.5,3.5,4.5,5.5,6.5", "a.ply"});
    EXPECT_EQ(options.clip->center, (std::array{1.5f, 2.5f, 3.5f}));
    EXPECT_EQ(options.clip->normal, (std::array{4.5f, 5.5f, 6.5f}));
}

TEST(CommandLine, ListsEveryOptionInTheHelp) {
    for (const char* const option :
         {"--screenshot", "--capture",    "--size",    "--view",    "--draw-mode",  "--zoom",
          "--skip",       "--confidence", "--color",   "--shadows", "--info",       "--json",
          "--convert",    "--gpu",        "--help",    "--version", "--verbose",    "--pick",
          "--points",     "--lines",      "--needles", "--clip ",   "--clip-auto ", "--cut ",
          "--save-cuts ", "--export ",    "--align ",  "--moving ", "--fixed ",     "--save-transforms ",
          "--transforms "})
        EXPECT_NE(HelpText().find(option), std::string::npos) << option;
}

struct Limit {
    const char* name;
    std::vector<std::string> inside, outside;
    const char* option;
};
void PrintTo(const Limit& row, std::ostream* out) { *out << row.name; }

const Limit kLimits[] = {
    {"Size",
     {"1x1", "16384x1", "1x16384", "16384x8192", "8192x16384"},
     {"16384x8193", "11586x11585", "16384x16384", "0x1", "1x0", "16385x1", "1x16385", "12", "1x", "x1", "1X1", "1x1x1",
      " 1x1", "-1x5", ""},
     "--size"},
    {"View",
     {"0", "7", "back", "bottom-y-up"},
     {"-1", "8", "1.0", "+1", "0x1", "", "7 ", "Front", "fron", "front "},
     "--view"},
    {"DrawMode", {"0", "7", "points", "shadow-map"}, {"-1", "8", "three", "", "Flat"}, "--draw-mode"},
    {"Zoom", {"0.1", "10", "1e0"}, {"0.0999", "10.001", "nan", "inf", "-1", "", "2x"}, "--zoom"},
    {"Skip", {"1", "32767"}, {"0", "-1", "32768", "99999999999999", "2.5"}, "--skip"},
    {"Confidence", {"0", "-5", "1e30", ".5"}, {"nan", "inf", "-inf", "1e99", "high", ""}, "--confidence"},
    {"Color",
     {"000000", "ffffff", "FFFFFF"},
     {"12345", "1234567", "00000g", "-12345", "+12345", "0x1234", "#12345", ""},
     "--color"},
    {"Pick",
     {"0,0", "1023,767"},
     {"-1,0", "0,-1", "16384,0", "0,16384", "1", "1,", ",1", "1;1", "1x1", "1,1,1", "1, 1", " 1,1", "1.5,1", "a,b", ""},
     "--pick"},
};
class CommandLineLimits : public testing::TestWithParam<Limit> {};

TEST_P(CommandLineLimits, AcceptValuesUpToTheLimitAndNoOthers) {
    // A file, which some runs need.
    for (const std::string& value : GetParam().inside)
        EXPECT_EQ(UsageErrorOf({GetParam().option, value, "a.ply"}), "accepted");
    for (const std::string& value : GetParam().outside) {
        const std::string start = std::string(GetParam().option) + " takes ";
        EXPECT_EQ(UsageErrorOf({GetParam().option, value, "a.ply"}).substr(0, start.size()), start)
            << '"' << value << '"';
    }
}
INSTANTIATE_TEST_SUITE_P(CommandLine, CommandLineLimits, testing::ValuesIn(kLimits),
                         [](const auto& row) { return row.param.name; });

TEST(CommandLine, RejectsWhatIsNeitherANumberOfADeviceNorSoftware) {
    for (const std::string value : {"32", "-1", "-2", "any", "Software", "0x1", "1 ", ""})
        EXPECT_EQ(UsageErrorOf({"--screenshot", "a.png", "--gpu", value, "a.pcm"}),
                  "--gpu takes the number of a graphics device from 0 to 31, or software, not \"" + value + "\"");
}

const WrongUsage kWrongUsages[] = {
    {"UnknownOption", {"--skipp", "3"}, "unknown option --skipp"},
    {"UnknownOptionWithValue", {"--skipp=3"}, "unknown option --skipp=3"},
    {"SingleDash", {"-v"}, "unknown option -v"},
    {"DashAlone", {"-"}, "unknown option -"},
    {"ValueMissing", {"a.pcm", "--zoom"}, "--zoom needs a value: a number from 0.1 to 10"},
    {"ValueForASwitch", {"--json=yes"}, "--json takes no value"},
    {"ValueForHelp", {"--help=me"}, "--help takes no value"},
    {"EmptyFileName", {""}, "a file name is empty"},
    {"EmptyFileNameAfterTwoDashes", {"--", ""}, "a file name is empty"},
    {"ScreenshotWithoutFile", {"--screenshot", "a.png"}, "--screenshot needs at least one file"},
    {"ScreenshotWithoutName",
     {"--screenshot=", "a.pcm"},
     "--screenshot takes a file name that ends in .png, .jpg, .jpeg or .webp and does not begin with -, or - alone for "
     "standard output, not \"\""},
    {"InfoWithoutFile", {"--info"}, "--info needs at least one file"},
    {"JsonWithoutInfo", {"--json", "a.pcm"}, "--json goes with --info, --pick and --align only"},
    {"InfoAndScreenshot", {"--info", "--screenshot", "a.png", "a.pcm"}, "--info and --screenshot do not go together"},
    {"CaptureWithoutFile", {"--capture", "a.png"}, "--capture needs at least one file"},
    {"CaptureWithoutName",
     {"--capture=", "a.pcm"},
     "--capture takes a file name that ends in .png, .jpg, .jpeg or .webp and does not begin with -, or - alone for "
     "standard output, not \"\""},
    {"CaptureAtTheEnd",
     {"a.pcm", "--capture"},
     "--capture needs a value: a file name that ends in .png, .jpg, .jpeg or .webp and does not begin with -, or - "
     "alone for standard output"},
    {"CaptureAndScreenshot",
     {"--capture", "a.png", "--screenshot", "b.png", "a.pcm"},
     "--screenshot and --capture do not go together"},
    {"CaptureAndInfo", {"--info", "--capture", "a.png", "a.pcm"}, "--info and --capture do not go together"},
    {"CaptureWithJson", {"--capture", "a.png", "--json", "a.pcm"}, "--json goes with --info, --pick and --align only"},
    {"CaptureWithASize", {"--capture", "a.png", "--size", "9x9", "a.pcm"}, "--size has no meaning with --capture"},
    {"CaptureWithADrawMode",
     {"--draw-mode=1", "--capture", "a.png", "--zoom", "2", "a.pcm"},
     "--draw-mode has no meaning with --capture"},
    {"CaptureWithShadows", {"--shadows", "--capture", "a.png", "a.pcm"}, "--shadows has no meaning with --capture"},
    {"ConvertWithoutFiles", {"--convert"}, "--convert needs two files, the one to read and the one to write"},
    {"ConvertOfOneFile", {"--convert", "a.ply"}, "--convert needs two files, the one to read and the one to write"},
    {"ConvertOfThreeFiles",
     {"--convert", "a.ply", "b.ply", "c.ply"},
     "--convert needs two files, the one to read and the one to write"},
    {"ConvertWithAValue", {"--convert=a.ply", "b.ply"}, "--convert takes no value"},
    {"ConvertToAnUnknownType", {"--convert", "a.ply", "b.obj"}, "b.obj: only ply, stl and hps files can be written"},
    {"ConvertToATypeThatIsOnlyRead",
     {"--convert", "a.ply", "b.msh"},
     "b.msh: only ply, stl and hps files can be written"},
    {"ConvertAndInfo", {"--convert", "--info", "a.ply", "b.ply"}, "--convert and --info do not go together"},
    {"ConvertAndScreenshot",
     {"--convert", "--screenshot", "a.png", "a.ply", "b.ply"},
     "--convert and --screenshot do not go together"},
    {"ConvertAndCapture",
     {"--convert", "--capture", "a.png", "a.ply", "b.ply"},
     "--convert and --capture do not go together"},
    {"ConvertWithJson", {"--convert", "--json", "a.ply", "b.ply"}, "--json goes with --info, --pick and --align only"},
    {"ConvertWithAView", {"--convert", "--view", "1", "a.ply", "b.ply"}, "--view has no meaning with --convert"},
    {"PictureOptionWithInfo", {"--info", "--zoom", "2", "a.pcm"}, "--zoom has no meaning with --info"},
    {"ShadowsWithInfo", {"--info", "--shadows", "a.pcm"}, "--shadows has no meaning with --info"},
    {"GpuOfTheWindow",
     {"--gpu", "0", "a.pcm"},
     "--gpu goes with --screenshot, --capture, --pick, --cut and --version --verbose only"},
    {"GpuWithInfo",
     {"--gpu", "0", "--info", "a.pcm"},
     "--gpu goes with --screenshot, --capture, --pick, --cut and --version --verbose only"},
    {"VerboseWithoutVersion", {"--verbose", "a.pcm"}, "--verbose goes with --version only"},
    {"VerboseVersionWithAFile", {"--version", "--verbose", "a.pcm"}, "--version --verbose goes with --gpu only"},
    {"VerboseVersionWithARun",
     {"--version", "--info", "--verbose", "a.pcm"},
     "--version --verbose goes with --gpu only"},
    {"VerboseVersionWithAView", {"--version", "--verbose", "--view", "1"}, "--version --verbose goes with --gpu only"},
    {"VerboseVersionWithASkip", {"--version", "--verbose", "--skip", "1"}, "--version --verbose goes with --gpu only"},
    {"PickWithoutFile", {"--pick", "1,2"}, "--pick needs at least one file"},
    {"PickAtTheEnd", {"a.ply", "--pick"}, "--pick needs a value: X,Y, two whole numbers from 0 to 16383"},
    {"PickOutsideTheWidth",
     {"--pick", "1,1", "--pick", "1024,0", "a.ply"},
     "--pick 1024,0 is outside of the 1024x768 pixels"},
    {"PickOutsideTheHeight", {"--pick", "4,6", "--size", "5x6", "a.ply"}, "--pick 4,6 is outside of the 5x6 pixels"},
    {"PickAndScreenshot",
     {"--screenshot", "a.png", "--pick", "1,1", "a.ply"},
     "--pick and --screenshot do not go together"},
    {"PickAndInfo", {"--info", "--pick", "1,1", "a.ply"}, "--pick and --info do not go together"},
    {"PickAndConvert", {"--convert", "--pick", "1,1", "a.ply", "b.ply"}, "--pick and --convert do not go together"},
    {"PickWithADrawMode", {"--pick", "1,1", "--draw-mode=1", "a.ply"}, "--draw-mode has no meaning with --pick"},
    {"PickWithShadows", {"--pick", "1,1", "--shadows", "a.ply"}, "--shadows has no meaning with --pick"},
    {"PickWithPoints", {"--pick", "1,1", "--points=a.xyz", "a.ply"}, "--points has no meaning with --pick"},
    {"PickWithVersion",
     {"--version", "--verbose", "--pick", "1,1", "a.ply"},
     "--version --verbose goes with --gpu only"},
    {"ClipInTheWindow", {"--clip=0,0,0,0,0,1", "a.ply"}, "--clip goes with --screenshot, --save-cuts and --cut only"},
    {"ClipOfACapture",
     {"--capture=a.png", "--clip=0,0,0,0,0,1", "a.ply"},
     "--clip goes with --screenshot, --save-cuts and --cut only"},
    {"ClipOfAPick",
     {"--pick=1,1", "--clip=0,0,0,0,0,1", "a.ply"},
     "--clip goes with --screenshot, --save-cuts and --cut only"},
    {"ClipWithInfo",
     {"--info", "--clip=0,0,0,0,0,1", "a.ply"},
     "--clip goes with --screenshot, --save-cuts and --cut only"},
    {"ClipOfAConversion",
     {"--convert", "--clip=0,0,0,0,0,1", "a.ply", "b.ply"},
     "--clip goes with --screenshot, --save-cuts and --cut only"},
    {"ClipWithVersion", {"--version", "--verbose", "--clip=0,0,0,0,0,1"}, "--version --verbose goes with --gpu only"},
    {"ClipAtTheEnd",
     {"--screenshot=a.png", "a.ply", "--clip"},
     "--clip needs a value: CX,CY,CZ,NX,NY,NZ, six finite numbers with a normal other than 0,0,0"},
    {"ClipAutoInTheWindow",
     {"--clip-auto", "a.ply"},
     "--clip-auto goes with --screenshot, --info, --save-cuts and --cut only"},
    {"ClipAutoOfACapture",
     {"--capture=a.png", "--clip-auto", "a.ply"},
     "--clip-auto goes with --screenshot, --info, --save-cuts and --cut only"},
    {"ClipAutoOfAPick",
     {"--pick=1,1", "--clip-auto", "a.ply"},
     "--clip-auto goes with --screenshot, --info, --save-cuts and --cut only"},
    {"ClipAutoOfAConversion",
     {"--convert", "--clip-auto", "a.ply", "b.ply"},
     "--clip-auto goes with --screenshot, --info, --save-cuts and --cut only"},
    {"ClipAutoWithAValue", {"--screenshot=a.png", "--clip-auto=1", "a.ply"}, "--clip-auto takes no value"},
    {"ClipAndClipAuto",
     {"--screenshot=a.png", "--clip-auto", "--clip=0,0,0,0,0,1", "a.ply"},
     "--clip and --clip-auto do not go together"},
    {"ClipAutoWithoutFile", {"--info", "--clip-auto"}, "--info needs at least one file"},
    {"LinesWithInfo", {"--info", "--lines=a.txt", "a.ply"}, "--lines has no meaning with --info"},
    {"NeedlesWithConvert", {"--convert", "--needles=a", "a.ply", "b.ply"}, "--needles has no meaning with --convert"},
    {"PointsWithoutName", {"--points", "", "a.ply"}, "--points takes a file name, not \"\""},
    {"LinesAtTheEnd", {"a.ply", "--lines"}, "--lines needs a value: a file name"},
    {"CaptureOfPointsAlone",
     {"--capture", "a.png", "--points", "a.xyz"},
     "--capture draws no free points and needs at least one other file"},
    {"VersionWithNeedles", {"--version", "--verbose", "--needles=a"}, "--version --verbose goes with --gpu only"},
    {"VerboseWithAValue", {"--verbose=1"}, "--verbose takes no value"},
};
class CommandLineRejects : public testing::TestWithParam<WrongUsage> {};

TEST_P(CommandLineRejects, AndSaysWhy) { EXPECT_EQ(UsageErrorOf(GetParam().arguments), GetParam().message); }
INSTANTIATE_TEST_SUITE_P(CommandLine, CommandLineRejects, testing::ValuesIn(kWrongUsages),
                         [](const auto& row) { return row.param.name; });

}  // namespace
