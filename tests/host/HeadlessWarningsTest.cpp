// Files that are imported although something is wrong with them: the line on standard error, the members of --info, and
// the exit status with and without --strict.
#include <gtest/gtest.h>

#include "Headless.h"
#include "host/HeadlessRuns.h"
#include "host/MeshFiles.h"
#include "host/ParsedCommandLine.h"

namespace {

constexpr char kCutText[] =
    "3 of 4 triangles are in the file, the rest was cut off: copy or export it again from its source";

/// A file with three and a half of its four triangles.
class CutOffFile : public testing::Test {
protected:
    void SetUp() override {
        WriteStl(m_file);
        std::vector<std::byte> bytes = ReadBytes(m_file);
        bytes.resize(bytes.size() - 25);
        WriteBytes(m_file, bytes);
        m_options.files = {m_file};
    }
    [[nodiscard]] std::string Line() const { return "scenepane: " + m_file + ": " + kCutText + '\n'; }

    ScratchFolder m_folder;
    const std::string m_file = m_folder / "a.stl";
    HostOptions m_options;
};

TEST_F(CutOffFile, IsAWarningOfInfoAndNoFailure) {
    m_options.json = true;
    const Printed out, err;
    EXPECT_EQ(RunInfo(m_options, out, err), kExitGood);
    EXPECT_EQ(err.Text(), Line());
    EXPECT_NE(out.Text().find("\"triangles\": 4,"), std::string::npos) << out.Text();
    EXPECT_NE(out.Text().find("\"failed\": [],\n\"warnings\": [\n  {\"file\": \"" + m_file + "\", \"text\": \"" +
                              kCutText + "\"}\n],\n"),
              std::string::npos)
        << out.Text();
}

TEST_F(CutOffFile, IsAWarningInTheTextOfInfo) {
    const Printed out, err;
    EXPECT_EQ(RunInfo(m_options, out, err), kExitGood);
    EXPECT_TRUE(out.Text().ends_with(m_file + "\n  warning: " + kCutText + "\n")) << out.Text();
}

TEST_F(CutOffFile, IsAFailureOfAStrictRun) {
    m_options.strict = true;
    m_options.exportPath = m_folder / "b.ply";
    m_options.picturePath = m_folder / "b.png";
    {
        const Printed out, err;
        EXPECT_EQ(RunInfo(m_options, out, err), kExitFailure);
        EXPECT_EQ(err.Text(), Line());
    }
    {
        const Printed err;
        EXPECT_EQ(RunConvert(m_options, err), kExitFailure);
        EXPECT_EQ(err.Text(), Line());
        EXPECT_FALSE(ReadBytes(m_options.exportPath).empty()) << "the result is written all the same";
    }
    m_options.cuts = {{KV_ScenePane::PolygonInside, {{0, 0}, {0.5, 0}, {0.5, 0.99}, {0, 0.99}}}};
    {
        const Printed err;
        EXPECT_EQ(RunExport(m_options, err), kExitFailure);
        EXPECT_EQ(err.Text(), Line());
    }
    m_options.cuts.clear();
    {
        const Printed err;
        EXPECT_EQ(RunScreenshot(m_options, err), kExitFailure);
        EXPECT_EQ(err.Text(), Line());
        EXPECT_EQ(ReadPng(m_options.picturePath).width, m_options.width);
    }
    WriteStl(m_file);  // a whole file
    const Printed out, err;
    EXPECT_EQ(RunInfo(m_options, out, err), kExitGood);
    EXPECT_EQ(err.Text(), "");
}

// The reader of hps files refuses them; the length in the header says more than that the file is invalid.
TEST(HpsOfAnotherLength, IsRefusedWhenItIsShorterAndHasAWarningWhenItIsLonger) {
    const ScratchFolder folder;
    WriteStl(folder / "a.stl");
    HostOptions options;
    options.files = {folder / "a.stl"};
    options.exportPath = folder / "a.hps";
    {
        const Printed err;
        ASSERT_EQ(RunConvert(options, err), kExitGood) << err.Text();
    }
    const std::vector<std::byte> whole = ReadBytes(options.exportPath);
    const auto reasonOf = [&](const std::vector<std::byte>& bytes, int status = kExitFailure) {
        WriteBytes(folder / "b.hps", bytes);
        HostOptions info;
        info.files = {folder / "b.hps"};
        const Printed out, err;
        EXPECT_EQ(RunInfo(info, out, err), status);
        return err.Text().substr(("scenepane: " + (folder / "b.hps") + ": ").size());
    };
    std::vector<std::byte> longer = whole, damaged = whole;
    longer.resize(whole.size() + 6);
    damaged[30] ^= std::byte{1};
    EXPECT_EQ(reasonOf(longer, kExitGood),
              "the file goes on for 6 bytes after the end of its data, they are ignored: check that it is the right "
              "file\n");
    for (const std::size_t size : {whole.size() - 1, std::size_t{40}, std::size_t{10}})
        EXPECT_EQ(reasonOf({whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(size)}),
                  "the file is cut short: copy or export it again from its source\n");
    EXPECT_EQ(reasonOf(damaged), "this is no hps file, or it is damaged\n");
}

TEST(StrictOption, GoesWithTheRunsWithoutAWindow) {
    EXPECT_FALSE(Parsed({"--info", "a.stl"}).strict);
    EXPECT_TRUE(Parsed({"--info", "--strict", "a.stl"}).strict);
    EXPECT_TRUE(Parsed({"--strict", "--convert", "a.stl", "b.ply"}).strict);
    EXPECT_EQ(UsageErrorOf({"--strict", "a.stl"}), "--strict goes with the runs without a window only");
}

}  // namespace
