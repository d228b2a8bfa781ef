// simulate-scans as its users call it: command line, files, exit status.
#include "simulate-scans/Run.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <nlohmann/json.hpp>
#include <sstream>
#include <string>
#include <vector>

#include "simulate-scans/Scanner.h"
#include "support/ScratchFolder.h"

namespace simulate {
namespace {

using testing::HasSubstr;

struct Outcome {
    int status = -1;
    std::string output, errors;
};

Outcome Call(const std::vector<std::string>& arguments) {
    const std::vector<std::string_view> views(arguments.begin(), arguments.end());
    std::ostringstream output, errors;
    const int status = Run(views, output, errors);
    return {status, output.str(), errors.str()};
}

std::string ContentOf(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

std::vector<std::string> NamesIn(const std::filesystem::path& folder) {
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(folder))
        names.push_back(entry.path().filename().string());
    std::sort(names.begin(), names.end());
    return names;
}

TEST(Run, WritesOneFilePerPoseAndTheDescription) {
    const ScratchFolder folder;
    const auto out = folder.Path() / "made" / "here";
    const Outcome outcome = Call({"--out", out.string(), "--scans", "3", "--size", "120x100", "--format", "xdt"});
    EXPECT_EQ(outcome.status, 0) << outcome.errors;
    EXPECT_EQ(outcome.errors, "");
    EXPECT_THAT(NamesIn(out), testing::ElementsAre("bust.json", "bust_001.xdt", "bust_002.xdt", "bust_003.xdt"));
    for (int i = 1; i <= 3; ++i)
        EXPECT_EQ(std::filesystem::file_size(out / ("bust_00" + std::to_string(i) + ".xdt")), 4u + 120 * 100 * 12);
    EXPECT_THAT(outcome.output, HasSubstr("Mray/s"));
}

TEST(Run, TheDescriptionHasShapeSeedSettingsAndTheTransformsOfTheFiles) {
    const ScratchFolder folder;
    const Outcome outcome =
        Call({"--out=" + folder.Path().string(), "--scans=2", "--size=100x100", "--format=pax", "--shape=torus",
              "--seed=18446744073709551615", "--noise=0.125", "--dropout=0", "--prefix=t-1"});
    ASSERT_EQ(outcome.status, 0) << outcome.errors;
    const auto json = nlohmann::json::parse(ContentOf(folder.Path() / "t-1.json"));
    EXPECT_EQ(json.at("version"), 1);
    EXPECT_EQ(json.at("shape"), "torus");
    EXPECT_EQ(json.at("seed").get<std::uint64_t>(), UINT64_MAX);
    EXPECT_EQ(json.at("format"), "pax");
    EXPECT_EQ(json.at("scanner").at("width"), 100);
    EXPECT_EQ(json.at("scanner").at("noise"), 0.125);
    EXPECT_EQ(json.at("scanner").at("rays"), "pinhole");
    EXPECT_EQ(json.at("scanner").at("colors"), false);
    ASSERT_EQ(json.at("scans").size(), 2u);
    for (const auto& scan : json.at("scans")) {
        const std::string bytes = ContentOf(folder.Path() / scan.at("file").get<std::string>());
        ASSERT_EQ(bytes.size(), 4u + 100 * 100 * 16 + 64);
        // The pax file ends with its transform; this machine's floats are little-endian wherever the tests run.
        ASSERT_EQ(scan.at("transform").size(), 16u);
        std::size_t measured = 0;
        for (std::size_t i = 0; i < 16; ++i) {
            float inFile = 0;
            std::copy_n(bytes.end() - 64 + static_cast<std::ptrdiff_t>(4 * i), 4, reinterpret_cast<char*>(&inFile));
            EXPECT_EQ(scan.at("transform").at(i).get<float>(), inFile) << i;
        }
        for (std::size_t i = 0; i < 10'000; ++i) {
            float confidence = 0;
            std::copy_n(bytes.begin() + static_cast<std::ptrdiff_t>(4 + 120'000 + 4 * i), 4,
                        reinterpret_cast<char*>(&confidence));
            measured += confidence >= 0;
        }
        EXPECT_EQ(scan.at("measured"), measured);
        EXPECT_GT(measured, 500u);
    }
}

TEST(Run, TheSameSeedGivesTheSameBytesOnOneThreadAndOnTwo) {
    const ScratchFolder folder;
    for (const std::string format : {"pcm", "pax", "xdt"}) {
        const auto callInto = [&](const char* place, const char* threads, const char* seed) {
            return Call({"--out", (folder.Path() / place).string(), "--scans", "2", "--size", "100x100", "--format",
                         format, "--threads", threads, "--seed", seed})
                .status;
        };
        ASSERT_EQ(callInto("one", "1", "5"), 0);
        ASSERT_EQ(callInto("two", "2", "5"), 0);
        ASSERT_EQ(callInto("other", "2", "6"), 0);
        for (const std::string name : {"bust_001.", "bust_002."}) {
            const std::string one = ContentOf(folder.Path() / "one" / (name + format));
            ASSERT_GT(one.size(), 120'000u / 4);
            EXPECT_TRUE(one == ContentOf(folder.Path() / "two" / (name + format))) << name << format;
            EXPECT_FALSE(one == ContentOf(folder.Path() / "other" / (name + format))) << name << format;
        }
        EXPECT_EQ(ContentOf(folder.Path() / "one" / "bust.json"), ContentOf(folder.Path() / "two" / "bust.json"));
    }
}

TEST(Run, PrintsHelpAndVersionWhateverTheOtherArguments) {
    const Outcome help = Call({"--nonsense", "--help"});
    EXPECT_EQ(help.status, 0);
    for (const char* option : {"--shape", "--scans", "--size", "--format", "--noise", "--dropout", "--colors", "--seed",
                               "--threads", "--out", "--prefix", "bracket"})
        EXPECT_THAT(help.output, HasSubstr(option));
    EXPECT_EQ(Call({"-h"}).output, help.output);
    const Outcome version = Call({"--version"});
    EXPECT_EQ(Call({"-V"}).output, version.output);
    EXPECT_EQ(version.status, 0);
    EXPECT_THAT(version.output, testing::MatchesRegex("simulate-scans [0-9]+\\.[0-9]+\\.[0-9]+\n"));
}

TEST(Run, FailsWithOneLineWhenTheFolderCannotBeCreated) {
    const ScratchFolder folder;
    std::ofstream(folder.Path() / "file") << "a file where a folder is needed";
    const Outcome outcome = Call({"--out", (folder.Path() / "file" / "sub").string(), "--size", "100x100"});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_THAT(outcome.errors, testing::MatchesRegex("simulate-scans: .+\n"));
    EXPECT_EQ(std::count(outcome.errors.begin(), outcome.errors.end(), '\n'), 1);
}

TEST(Run, NamesTheFileThatCannotBeWritten) {
    const ScratchFolder folder;
    std::filesystem::create_directory(folder.Path() / "bust_002.pcm");  // no file can replace it
    const Outcome outcome = Call({"--out", folder.Path().string(), "--scans", "3", "--size", "100x100"});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_THAT(outcome.errors, testing::StartsWith("simulate-scans: " + (folder / "bust_002.pcm") + ": "));
    EXPECT_EQ(std::count(outcome.errors.begin(), outcome.errors.end(), '\n'), 1);
    EXPECT_FALSE(std::filesystem::exists(folder / "bust.json"));
}

TEST(Run, PrintsNoControlCharactersOfAFolder) {
    const ScratchFolder folder;
    const Outcome good = Call({"--out", folder / "a\033[2Jb", "--scans", "1", "--size", "100x100"});
    EXPECT_EQ(good.status, 0) << good.errors;
    EXPECT_THAT(good.output, HasSubstr("/a?[2Jb/bust_001.pcm: "));
    EXPECT_THAT(good.output, testing::Not(HasSubstr("\033")));
    EXPECT_THAT(Call({"--out=x", "\033[2J"}).errors, HasSubstr("unexpected argument '?[2J'"));
}

struct WrongCall {
    const char* name;
    std::vector<std::string> arguments;
    const char* reason;
};
void PrintTo(const WrongCall& row, std::ostream* out) { *out << row.name; }

const WrongCall kWrongCalls[] = {
    {"NoFolder", {}, "--out FOLDER is missing"},
    {"EmptyFolder", {"--out", ""}, "--out must be a folder"},
    {"UnknownOption", {"--out", "x", "--speed", "3"}, "unknown option '--speed'"},
    {"UnknownOptionAtTheEnd", {"--out", "x", "--speed"}, "unknown option '--speed'"},
    {"UnknownShortOption", {"--out", "x", "-s"}, "unknown option '-s'"},
    {"ValueForASwitch", {"--out", "x", "--colors=yes"}, "--colors takes no value"},
    {"ValueMissing", {"--out", "x", "--seed"}, "--seed needs a value"},
    {"StrayArgument", {"--out", "x", "file.pcm"}, "unexpected argument 'file.pcm'"},
    {"UnknownShape", {"--out", "x", "--shape", "teapot"}, "--shape must be one of bust, bracket"},
    {"NoScans", {"--out", "x", "--scans", "0"}, "--scans must be a number from 1 to 999, not '0'"},
    {"TooManyScans", {"--out", "x", "--scans", "1000"}, "--scans must be a number from 1 to 999, not '1000'"},
    {"ScansWithATail", {"--out", "x", "--scans", "3x"}, "--scans must be a number from 1 to 999, not '3x'"},
    {"ScansBeyondAnInteger", {"--out", "x", "--scans", "99999999999"}, "--scans must be a number"},
    {"SizeWithoutCross", {"--out", "x", "--size", "640"}, "--size must be WIDTHxHEIGHT, not '640'"},
    {"WidthTooSmall", {"--out", "x", "--size", "99x100"}, "--size: the width must be a number from 100 to 4096"},
    {"WidthTooLarge", {"--out", "x", "--size", "4097x100"}, "--size: the width must be a number from 100 to 4096"},
    {"HeightTooLarge", {"--out", "x", "--size", "4096x3073"}, "--size: the height must be a number from 100 to 3072"},
    {"UnknownFormat", {"--out", "x", "--format", "ply"}, "--format must be pcm, pax or xdt, not 'ply'"},
    {"NegativeNoise", {"--out", "x", "--noise", "-0.1"}, "--noise must be a number from 0 to 10, not '-0.1'"},
    {"NoiseIsNoNumber", {"--out", "x", "--noise", "nan"}, "--noise must be a number from 0 to 10, not 'nan'"},
    {"DropoutAboveOne", {"--out", "x", "--dropout", "1.01"}, "--dropout must be a number from 0 to 1"},
    {"NoThreads", {"--out", "x", "--threads", "0"}, "--threads must be a number from 1 to 256"},
    {"PrefixWithFolder", {"--out", "x", "--prefix", "a/b"}, "--prefix must have letters, digits"},
    {"ColorsWithoutPlace", {"--out", "x", "--colors", "--format", "xdt"}, "--colors: only pcm can hold colours"},
};
class RunRefuses : public testing::TestWithParam<WrongCall> {};

TEST_P(RunRefuses, WithStatusTwoAndOneLineOnStandardError) {
    const Outcome outcome = Call(GetParam().arguments);
    EXPECT_EQ(outcome.status, 2);
    EXPECT_EQ(outcome.output, "");
    EXPECT_THAT(outcome.errors, testing::StartsWith(std::string("simulate-scans: ") + GetParam().reason));
    EXPECT_EQ(std::count(outcome.errors.begin(), outcome.errors.end(), '\n'), 1);
    EXPECT_FALSE(std::filesystem::exists("x"));
}
INSTANTIATE_TEST_SUITE_P(CommandLine, RunRefuses, testing::ValuesIn(kWrongCalls),
                         [](const auto& row) { return row.param.name; });

}  // namespace
}  // namespace simulate
