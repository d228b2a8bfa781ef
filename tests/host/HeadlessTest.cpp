#include "Headless.h"

#include <gtest/gtest.h>

#include <memory>

#include "host/CommaLocale.h"
#include "host/HeadlessRuns.h"
#include "host/ScanFiles.h"

namespace {

constexpr unsigned kBackground = 0x191932;  // 0xRRGGBB

// ---- --info

// The viewer extends a box without thickness by 0.01 to both sides.
TEST(Info, ReportsOfFlatGridsWhatFollowsFromTheirPoints) {
    const ScratchFolder folder;
    WritePcm(folder / "a.pcm", 3, 2, 5.0f);
    WritePax(folder / "b.pax", 4, 4);
    WriteXdt(folder / "c.XDT", 2, 2);
    HostOptions options;
    options.json = true;
    options.import.color = 0x302010;
    options.files = {folder / "a.pcm", folder / "b.pax", folder / "c.XDT"};
    const Printed out, err;
    EXPECT_EQ(RunInfo(options, out, err), kExitGood);
    EXPECT_EQ(err.Text(), "");
    const std::string a = folder / "a.pcm", b = folder / "b.pax", c = folder / "c.XDT";
    const std::string same =
        ", \"color\": \"102030\", \"hasVertexColors\": false, \"transform\": [1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, "
        "0, 0, "
        "1]}";
    EXPECT_EQ(
        out.Text(),
        "{\"objects\": [\n  {\"file\": \"" + a + "\", \"index\": 0, \"name\": \"" + a +
            "\", \"vertices\": 6, \"triangles\": 4, \"box\": [0, 2, 0, 1, 4.99, 5.01], \"center\": [1, 0.5, 5]" + same +
            ",\n  {\"file\": \"" + b + "\", \"index\": 1, \"name\": \"" + b +
            "\", \"vertices\": 16, \"triangles\": 18, \"box\": [0, 3, 0, 3, -0.01, 0.01], \"center\": [1.5, 1.5, 0]" +
            same + ",\n  {\"file\": \"" + c + "\", \"index\": 2, \"name\": \"" + c +
            "\", \"vertices\": 4, \"triangles\": 2, \"box\": [0, 1, 0, 1, -0.01, 0.01], \"center\": [0.5, 0.5, 0]" +
            same + "\n],\n\"failed\": [],\n\"warnings\": [],\n\"points\": []}\n");
}

TEST(Info, NamesEachFileThatAddsNothingWithItsReason) {
    const ScratchFolder folder;
    WriteXdt(folder / "good.xdt", 2, 2);
    WriteBytes(folder / "short.pax", {std::byte{2}});
    WriteBytes(folder / "damaged.pcm", {std::byte{2}});
    WriteBytes(folder / "a.dat", {std::byte{2}});
    HostOptions options;
    options.json = true;
    for (const char* const name : {"none.pcm", "good.xdt", "short.pax", "damaged.pcm", "a.dat"})
        options.files.push_back(folder / name);
    const Printed out, err;
    EXPECT_EQ(RunInfo(options, out, err), kExitFailure);
    const std::string json = out.Text();
    EXPECT_NE(json.find("none.pcm\", \"reason\": \"there is no such file: check its name and its folder\"}"),
              std::string::npos)
        << json;
    EXPECT_NE(json.find("a.dat\", \"reason\": \"the type of the file is not known: it is none of pcm, pax, xdt, ply, "
                        "stl, hps, ois, msh, obj, off, gltf, glb, 3mf, dae and others\"}"),
              std::string::npos)
        << json;
    EXPECT_NE(json.find("short.pax\", \"reason\": \"the file is cut short: copy or export it again from its source\"}"),
              std::string::npos)
        << json;
    EXPECT_NE(json.find("damaged.pcm\", \"reason\": \"the file is cut short after 1 bytes: copy or export it again "
                        "from its source\"}"),
              std::string::npos)
        << json;
    EXPECT_EQ(json.find("()"), std::string::npos) << "no names of functions\n" << json;
    EXPECT_NE(json.find("good.xdt\", \"index\": 0,"), std::string::npos) << json;
    const std::string lines = err.Text();
    EXPECT_EQ(std::count(lines.begin(), lines.end(), '\n'), 4) << lines;
    EXPECT_NE(
        lines.find("scenepane: " + (folder / "none.pcm") + ": there is no such file: check its name and its folder\n"),
        std::string::npos);
}

TEST(Info, OpensFilesWhoseNamesAreNotUtf8) {
    const ScratchFolder folder;
    WriteXdt(folder / "\xff\xe4.xdt", 2, 2);
    HostOptions options;
    options.files = {folder / "\xff\xe4.xdt"};
    const Printed text, json, err;
    EXPECT_EQ(RunInfo(options, text, err), kExitGood);
    EXPECT_NE(text.Text().find("/\xff\xe4.xdt\n"), std::string::npos);
    options.json = true;
    EXPECT_EQ(RunInfo(options, json, err), kExitGood);
    EXPECT_NE(json.Text().find("\\udcff\\udce4.xdt\""), std::string::npos);
    EXPECT_EQ(err.Text(), "");
}

TEST(Info, AppliesSkipValueAndConfidenceLimit) {
    const ScratchFolder folder;
    WritePcm(folder / "all.pcm", 11, 11, 0, 0.5f);
    HostOptions options;
    options.files = {folder / "all.pcm"};
    options.import.skip = 2;
    options.import.confidence = 0.5f;  // equal to the limit is kept
    const Printed out, err;
    EXPECT_EQ(RunInfo(options, out, err), kExitGood);
    EXPECT_NE(out.Text().find("  vertices       35\n"), std::string::npos)
        << "6 x 6 cells without the corner cell, which has a single pixel\n"
        << out.Text();
    options.import.confidence = 0.50001f;
    EXPECT_EQ(RunInfo(options, out, err), kExitFailure);
    EXPECT_EQ(err.Text(), "scenepane: " + (folder / "all.pcm") +
                              ": no point is left: none has the confidence 0.50001: lower the limit of the import\n");
}

TEST(Info, GivesADifferentReasonForEachDamageOfAPcmFile) {
    const ScratchFolder folder;
    const std::vector<DamagedPcm> files = WriteDamagedPcms(folder);
    HostOptions options;
    std::string expected;
    for (const DamagedPcm& file : files) {
        options.files.push_back(file.path);
        expected += "scenepane: " + file.path + ": " + file.reason + '\n';
    }
    const Printed out, err;
    EXPECT_EQ(RunInfo(options, out, err), kExitFailure);
    EXPECT_EQ(err.Text(), expected);
}

TEST(Info, PrintsTheSameInALocaleWithCommas) {
    const ScratchFolder folder;
    WritePcm(folder / "a.pcm", 3, 2, 0.5f);
    HostOptions options;
    options.json = true;
    options.files = {folder / "a.pcm"};
    const Printed plain, comma, err;
    EXPECT_EQ(RunInfo(options, plain, err), kExitGood);
    const CommaLocale locale;
    if (!locale.IsSet()) GTEST_SKIP() << "this machine cannot make a locale";
    EXPECT_EQ(RunInfo(options, comma, err), kExitGood);
    EXPECT_EQ(plain.Text(), comma.Text());
}

TEST(Info, FailsWhenStandardOutputIsFull) {
    const ScratchFolder folder;
    WriteXdt(folder / "a.xdt", 2, 2);
    HostOptions options;
    options.files = {folder / "a.xdt"};
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> full(std::fopen("/dev/full", "w"), std::fclose);
    ASSERT_TRUE(full);
    const Printed err;
    EXPECT_EQ(RunInfo(options, full.get(), err), kExitFailure);
    EXPECT_EQ(err.Text(), "scenepane: standard output: No space left on device\n");
}

// ---- --screenshot

class Screenshot : public GridPictures {};

TEST_F(Screenshot, ShowsTheFittedSceneOnTheBackground) {
    const Png png = Taken();
    ASSERT_EQ(png.width, 200);
    ASSERT_EQ(png.height, 200);
    for (const auto& [x, y] : {std::pair{100, 100}, {32, 32}, {168, 32}, {32, 168}, {168, 168}})
        EXPECT_NE(png.At(x, y), kBackground) << x << ", " << y;
    for (const auto& [x, y] : {std::pair{27, 100}, {173, 100}, {100, 27}, {100, 173}, {0, 0}})
        EXPECT_EQ(png.At(x, y), kBackground) << x << ", " << y;
}

TEST_F(Screenshot, ShowsHalfAsMuchAtZoomTwo) {
    m_options.zoom = 2.0f;
    const Png png = Taken();
    for (const auto& [x, y] : {std::pair{0, 0}, {199, 0}, {0, 199}, {199, 199}}) EXPECT_NE(png.At(x, y), kBackground);
}

TEST_F(Screenshot, ShowsTwiceAsMuchAtZoomOneHalf) {
    m_options.zoom = 0.5f;  // pixels 64.6 to 135.4
    const Png png = Taken();
    EXPECT_NE(png.At(68, 100), kBackground);
    EXPECT_EQ(png.At(61, 100), kBackground);
}

TEST_F(Screenshot, HasTheRequestedSize) {
    m_options.width = 333;
    m_options.height = 77;
    const Png png = Taken();
    EXPECT_EQ(png.width, 333);
    EXPECT_EQ(png.height, 77);
    EXPECT_NE(png.At(166, 38), kBackground);
}

TEST_F(Screenshot, ShowsNothingOfAFlatGridSeenFromTheSide) {
    m_options.view = KV_ScenePane::ViewFromMinusYZUp;  // along the grid, which is in z = 0
    EXPECT_EQ(Taken().At(100, 60), kBackground);
}

TEST_F(Screenshot, IsDrawnInTheChosenDrawMode) {
    m_options.drawMode = KV_ScenePane::DrawModeNothing;
    EXPECT_EQ(Taken().At(100, 100), kBackground);
    m_options.drawMode = KV_ScenePane::DrawModeBoundingBoxes;  // the outline, not the middle
    const Png boxes = Taken();
    EXPECT_EQ(boxes.At(100, 100), kBackground);
    bool outline = false;
    for (int x = 25; x < 34; ++x) outline = outline || boxes.At(x, 80) != kBackground;
    EXPECT_TRUE(outline);
}

TEST_F(Screenshot, ShowsScansInTheChosenColour) {
    m_options.import.color = 0x0000FF;
    const unsigned red = Taken().At(100, 100);
    m_options.import.color = 0xFF0000;
    const unsigned blue = Taken().At(100, 100);
    EXPECT_GT(red >> 16, red & 0xFF);
    EXPECT_LT(blue >> 16, blue & 0xFF);
}

TEST_F(Screenshot, IsDrawnWithShadowsWhenTheyAreOn) {
    // With shadows the viewer has no shader program for the per-pixel mode, and draws no object.
    m_options.drawMode = KV_ScenePane::DrawModePerPixel;
    EXPECT_NE(Taken().At(100, 100), kBackground);
    m_options.shadows = true;
    EXPECT_EQ(Taken().At(100, 100), kBackground);
}

TEST_F(Screenshot, ShowsTheGoodFilesAndFailsWhenOneIsBad) {
    m_options.files.push_back(m_folder / "none.pax");
    const Printed err;
    EXPECT_EQ(RunScreenshot(m_options, err), kExitFailure);
    EXPECT_EQ(err.Text(),
              "scenepane: " + (m_folder / "none.pax") + ": there is no such file: check its name and its folder\n");
    EXPECT_NE(ReadPng(m_options.picturePath).At(100, 100), kBackground);
}

TEST_F(Screenshot, IsNotWrittenWithoutAnObject) {
    m_options.files = {m_folder / "none.pax"};
    const Printed err;
    EXPECT_EQ(RunScreenshot(m_options, err), kExitFailure);
    EXPECT_NE(access(m_options.picturePath.c_str(), F_OK), 0);
    EXPECT_NE(err.Text().find("a.png: not written, there is nothing to show\n"), std::string::npos);
}

TEST_F(Screenshot, ReportsAPictureThatCannotBeWritten) {
    m_options.picturePath = m_folder / "no/a.png";
    const Printed err;
    EXPECT_EQ(RunScreenshot(m_options, err), kExitFailure);
    EXPECT_EQ(
        err.Text(),
        "scenepane: " + (m_folder / "no/a.png") +
            ": the file could not be replaced: No such file or directory: check the folder and its permissions\n");
}

}  // namespace
