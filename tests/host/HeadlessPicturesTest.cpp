// Looks, views and fits of pictures without a window.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>

#include "ForeignReader.h"
#include "Headless.h"
#include "host/HeadlessRuns.h"
#include "host/MeshFiles.h"

namespace {

constexpr unsigned kBackground = 0x191932;  // 0xRRGGBB

/// The smallest rectangle of all pixels of another colour; the ends are exclusive.
struct Shown {
    int left = 1 << 20, top = 1 << 20, right = 0, bottom = 0;
};
Shown FindShown(const Png& png, unsigned background = kBackground) {
    Shown shown;
    for (int y = 0; y < png.height; ++y) {
        for (int x = 0; x < png.width; ++x) {
            if (png.At(x, y) == background) continue;
            shown.left = std::min(shown.left, x);
            shown.right = std::max(shown.right, x + 1);
            shown.top = std::min(shown.top, y);
            shown.bottom = std::max(shown.bottom, y + 1);
        }
    }
    return shown;
}

// ---- --fit

TEST_F(GridPictures, ThatAreFittedTightlyAreFilledByTheGrid) {
    const Shown loose = FindShown(Taken());
    EXPECT_NEAR(loose.right - loose.left, 141, 2) << "the diagonal of the box fills a side";
    m_options.isTight = true;
    const Shown shown = FindShown(Taken());
    EXPECT_LE(shown.left, 2);
    EXPECT_LE(shown.top, 2);
    EXPECT_GE(shown.right, 198);
    EXPECT_GE(shown.bottom, 198);
    // Nothing is cut off: the background shows at the corners' outermost pixels.
    EXPECT_GE(shown.left, 1);
    EXPECT_LE(shown.right, 199);
}

TEST_F(GridPictures, ThatAreFittedTightlyTouchTheSidesOfTheLongerExtent) {
    WriteXdt(m_folder / "a.xdt", 31, 4);  // 30 x 3 units
    m_options.isTight = true;
    m_options.width = 300;
    const Shown shown = FindShown(Taken());
    EXPECT_NEAR(shown.right - shown.left, 298, 1);
    EXPECT_NEAR(shown.bottom - shown.top, 29.8, 2);
    EXPECT_NEAR(shown.top + shown.bottom, 200, 3) << "in the middle";
}

TEST_F(GridPictures, ThatAreFittedTightlyEnlargeWhatIsDeepMoreThanTenTimes) {
    // Two small grids 400 units apart along the line of sight: seen from the top they are 3 units wide.
    WriteXdt(m_folder / "a.xdt", 4, 4, -200.0f);
    WriteXdt(m_folder / "b.xdt", 4, 4, 200.0f);
    m_options.files.push_back(m_folder / "b.xdt");
    const Shown loose = FindShown(Taken());
    EXPECT_LE(loose.right - loose.left, 4);
    m_options.isTight = true;
    const Shown shown = FindShown(Taken());
    EXPECT_NEAR(shown.right - shown.left, 198, 1);
    EXPECT_NEAR(shown.bottom - shown.top, 198, 1);
}

TEST_F(GridPictures, ThatAreFittedTightlyKeepTheirBackgroundAndTheZoom) {
    m_options.isTight = true;
    m_options.zoom = 0.5f;
    const Png png = Taken();
    EXPECT_EQ(png.At(0, 0), kBackground);
    const Shown shown = FindShown(png);
    EXPECT_NEAR(shown.right - shown.left, 99, 2);
}

TEST_F(GridPictures, ThatAreFittedTightlyShowNothingOfAGridFromItsSide) {
    m_options.isTight = true;
    m_options.view = KV_ScenePane::ViewFromMinusYZUp;
    EXPECT_EQ(Taken().At(100, 60), kBackground);
}

TEST_F(GridPictures, PicksAreInThePictureThatIsFittedTightly) {
    m_options.isTight = true;
    m_options.picks = {{3, 3}, {196, 196}};
    m_options.json = true;
    const Printed out, err;
    EXPECT_EQ(RunPick(m_options, out, err), kExitGood);
    EXPECT_EQ(out.Text().find("\"object\":-1"), std::string::npos) << out.Text();
    m_options.isTight = false;
    const Printed loose;
    EXPECT_EQ(RunPick(m_options, loose, err), kExitFailure);
}

// ---- looks

TEST_F(GridPictures, HaveTheColoursOfTheirBackground) {
    m_options.background = {0x302010, 0x0000FF};
    const Png png = Taken();  // the first row is half a pixel below the top
    EXPECT_NEAR(png.At(0, 0) >> 16, 0x10, 2);
    EXPECT_NEAR(png.At(0, 0) & 0xFF, 0x30, 2);
    EXPECT_NEAR(png.At(0, 199) >> 16, 0xFF, 2);
    EXPECT_NEAR(png.At(0, 199) & 0xFF, 0, 2);
    m_options.background = {0x302010, 0x302010};
    m_options.isTight = true;
    EXPECT_EQ(FindShown(Taken(), 0x102030).left, 1) << "also after a tight fit";
}

TEST_F(GridPictures, HaveTheirBackgroundInACaptureToo) {
    m_options.background = {0x302010, 0x302010};
    const Printed err;
    EXPECT_EQ(RunCapture(m_options, err), kExitGood);
    EXPECT_EQ(ReadPng(m_options.picturePath).At(0, 0), 0x102030u);
}

TEST_F(GridPictures, ShowTheAxesFromTheChosenSide) {
    m_options.zoom = 0.5f;  // the grid from 64.6 to 135.4
    EXPECT_NEAR(FindShown(Taken()).left, 64, 1);
    m_options.axes = true;
    const Shown with = FindShown(Taken());
    EXPECT_LT(with.left, 50) << "the axes at the upper left";
    EXPECT_LT(with.top, 50);
    EXPECT_NEAR(with.right, 136, 1);
    m_options.view = KV_ScenePane::ViewFromMinusYZUp;
    EXPECT_EQ(Taken().At(100, 60), kBackground) << "the grid from its side: the axes turn no view";
}

TEST_F(GridPictures, ShowPointsInTheirSize) {
    m_options.drawMode = KV_ScenePane::DrawModePoints;
    const auto count = [&] {
        const Png png = Taken();
        int shown = 0;
        for (int y = 0; y < 200; ++y)
            for (int x = 0; x < 200; ++x) shown += png.At(x, y) != kBackground ? 1 : 0;
        return shown;
    };
    EXPECT_NEAR(count(), 121 * 4, 60) << "2 x 2 pixels each";
    m_options.pointSize = 6.0f;
    EXPECT_NEAR(count(), 121 * 36, 400);
}

TEST_F(GridPictures, HaveSmoothEdgesWithSamples) {
    m_options.view = KV_ScenePane::ViewObliqueZUp;
    const auto countColors = [&] {
        const Png png = Taken();
        std::vector<unsigned> colors;
        for (int y = 0; y < 200; ++y)
            for (int x = 0; x < 200; ++x) colors.push_back(png.At(x, y));
        std::ranges::sort(colors);
        return std::ranges::distance(colors.begin(), std::ranges::unique(colors).begin());
    };
    const auto without = countColors();
    m_options.samples = 4;
    m_options.gpu = KV_ScenePane::WindowRequest::kSoftware;  // has four samples
    EXPECT_GT(countColors(), without) << "mixtures with the background";
}

TEST_F(GridPictures, AreNotWrittenWhenTheDriverHasNoSuchSamples) {
    m_options.samples = 3;
    const Printed err;
    EXPECT_EQ(RunScreenshot(m_options, err), kExitFailure);
    EXPECT_EQ(err.Text(), "scenepane: the driver draws no 3 samples per pixel\n");
    EXPECT_FALSE(std::filesystem::exists(m_options.picturePath));
}

// ---- colours

TEST_F(GridPictures, HaveColoursOfThePaletteWhenTheOptionsSaySo) {
    m_options.view = KV_ScenePane::ViewFromMinusZYUp;
    const unsigned plain = Taken().At(100, 100);
    m_options.usesPalette = true;
    const unsigned color = Taken().At(100, 100);  // 4098D8 under light
    EXPECT_NE(color, plain);
    EXPECT_GT(color & 0xFF, (color >> 16) + 40);
}

TEST_F(GridPictures, GiveMeshesTheColourOfTheCommandLine) {
    WriteText(m_folder / "t.ply", TetraPlyText());
    m_options.files = {m_folder / "t.ply"};
    m_options.view = KV_ScenePane::ViewFromMinusZYUp;  // with X to the left: (0.25, 0.25) is at 129, 129
    const unsigned gray = Taken().At(125, 125);
    EXPECT_EQ(gray >> 16, gray & 0xFF);
    m_options.import.color = 0x0000FF;
    m_options.given.color = true;
    const unsigned red = Taken().At(125, 125);
    EXPECT_GT(red >> 16, (red & 0xFF) + 40);
    m_options.json = true;
    const Printed out, err;
    EXPECT_EQ(RunInfo(m_options, out, err), kExitGood);
    EXPECT_NE(out.Text().find("\"color\": \"FF0000\""), std::string::npos) << out.Text();
}

/// What is reported of a file, with and without the colours of its vertices.
struct ColorsOf {
    std::string with, without;
    std::string warnings;
};
ColorsOf ReportColors(const std::string& file) {
    HostOptions options;
    options.json = true;
    options.files = {file};
    const auto report = [&](const Printed& err) {
        const Printed out;
        EXPECT_EQ(RunInfo(options, out, err), kExitGood);
        const std::string json = out.Text();
        const std::size_t at = json.find("\"hasVertexColors\": ");
        return json.substr(at, json.find(',', at) - at);
    };
    const Printed none, err;
    ColorsOf colors;
    colors.with = report(none);
    options.import.leavesOutColors = true;
    colors.without = report(err);
    colors.warnings = err.Text();
    return colors;
}

TEST_F(GridPictures, OfScansCanLeaveOutTheColoursOfTheirPoints) {
    const std::string file = m_folder / "c.pcm";
    WritePcm(file, 3, 3, 0.0f, 1.0f, {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1},
             std::vector<std::uint32_t>(9, 0xFF00FF00));
    const ColorsOf colors = ReportColors(file);
    EXPECT_EQ(colors.with, "\"hasVertexColors\": true");
    EXPECT_EQ(colors.without, "\"hasVertexColors\": false");
    EXPECT_EQ(colors.warnings, "");
}

TEST_F(GridPictures, OfMeshesLeaveOutTheColoursOrSayThatTheyStay) {
    const std::string file = m_folder / "c.ply";
    WriteText(file,
              "ply\nformat ascii 1.0\nelement vertex 3\nproperty float x\nproperty float y\nproperty float z\n"
              "property uchar red\nproperty uchar green\nproperty uchar blue\nelement face 1\n"
              "property list uchar int vertex_indices\nend_header\n0 0 0 255 0 0\n1 0 0 255 0 0\n0 1 0 255 0 0\n"
              "3 0 1 2\n");
    const ColorsOf colors = ReportColors(file);
    EXPECT_EQ(colors.with, "\"hasVertexColors\": true");
    if (ReaderProgram().empty()) {  // it reads the file without them
        EXPECT_EQ(colors.without, colors.with);
        EXPECT_EQ(colors.warnings, "scenepane: " + file + ": it keeps the colours of its vertices\n");
    } else {
        EXPECT_EQ(colors.without, "\"hasVertexColors\": false");
        EXPECT_EQ(colors.warnings, "");
    }
}

// ---- several views

TEST_F(GridPictures, OfSeveralViewsAreFilesOfTheirOwn) {
    m_options.picturePath = m_folder / "{view}.png";
    m_options.views = {KV_ScenePane::ViewFromPlusZYUp, KV_ScenePane::ViewFromMinusYZUp,
                       KV_ScenePane::ViewFromMinusZYUp};
    m_options.isTight = true;
    const Printed err;
    EXPECT_EQ(RunScreenshot(m_options, err), kExitGood);
    EXPECT_EQ(err.Text(), "");
    for (const char* const name : {"top.png", "bottom-y-up.png"}) {
        const Shown shown = FindShown(ReadPng(m_folder / name));
        EXPECT_NEAR(shown.right - shown.left, 198, 1) << name;
    }
    EXPECT_EQ(ReadPng(m_folder / "front.png").At(100, 60), kBackground);
    EXPECT_EQ(m_folder.FileCount(), 4u);
}

TEST_F(GridPictures, OfSeveralViewsAreWrittenAlsoAfterOneThatFailed) {
    std::filesystem::create_directory(m_folder.Path() / "top.png");
    m_options.picturePath = m_folder / "{view}.png";
    m_options.views = {KV_ScenePane::ViewFromPlusZYUp, KV_ScenePane::ViewFromMinusZYUp};
    const Printed err;
    EXPECT_EQ(RunScreenshot(m_options, err), kExitFailure);
    EXPECT_NE(err.Text().find("/top.png: "), std::string::npos) << err.Text();
    EXPECT_NE(ReadPng(m_folder / "bottom-y-up.png").At(100, 100), kBackground);
}

// ---- folders, lists, warnings

TEST_F(GridPictures, ShowTheFilesOfAFolderAndOfAList) {
    WriteXdt(m_folder / "b.xdt", 5, 5, -1.0f);
    WriteText(m_folder / "list.txt", (m_folder / "a.xdt") + '\n' + (m_folder / "b.xdt") + '\n');
    const auto index = [&](const std::string& file) {
        HostOptions options;
        options.files = {file};
        const Printed out, err;
        EXPECT_EQ(RunInfo(options, out, err), kExitGood);
        EXPECT_EQ(err.Text(), "");
        const std::string text = out.Text();
        return text.find("a.xdt") < text.find("b.xdt") && text.find("b.xdt") != std::string::npos;
    };
    EXPECT_TRUE(index(m_folder.Path().string()));
    EXPECT_TRUE(index("@" + (m_folder / "list.txt")));
}

TEST_F(GridPictures, PrintNoWarningsWhenQuiet) {
    m_options.clip = ClipPlane{{0, 0, 100}, {0, 0, 1}};
    (void)Taken("scenepane: the clip plane cuts away all objects\n");
    m_options.quiet = true;
    (void)Taken("");
    m_options.files.push_back(m_folder / "none.ply");
    const Printed err;
    EXPECT_EQ(RunScreenshot(m_options, err), kExitFailure);
    EXPECT_EQ(err.Text(),
              "scenepane: " + (m_folder / "none.ply") + ": there is no such file: check its name and its folder\n");
}

TEST_F(GridPictures, PrintNoControlCharactersOfFileNames) {
    m_options.files = {m_folder / "a\033[2J.ply"};
    const Printed err;
    EXPECT_EQ(RunScreenshot(m_options, err), kExitFailure);
    EXPECT_EQ(err.Text().find('\033'), std::string::npos);
    EXPECT_NE(err.Text().find("/a?[2J.ply: "), std::string::npos) << err.Text();
}

TEST_F(GridPictures, ReportNoControlCharactersOfFileNames) {
    HostOptions options;
    options.files = {m_folder / "a\033[2J.xdt"};
    WriteXdt(options.files.front(), 2, 2);
    const Printed out, err;
    EXPECT_EQ(RunInfo(options, out, err), kExitGood);
    EXPECT_EQ(out.Text().find('\033'), std::string::npos) << "in the text";
    options.json = true;
    const Printed json;
    EXPECT_EQ(RunInfo(options, json, err), kExitGood);
    EXPECT_NE(json.Text().find("\\u001b[2J.xdt"), std::string::npos) << "all of the name: " << json.Text();
}

TEST_F(GridPictures, PrintWhichFileIsReadWhenAsked) {
    m_options.progress = true;
    (void)Taken("scenepane: 1 of 1: " + (m_folder / "a.xdt") + '\n');
}

}  // namespace
