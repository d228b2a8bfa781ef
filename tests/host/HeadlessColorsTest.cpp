// Pictures without a window have the colours of the window, what is printed those of the files.
#include <gtest/gtest.h>

#include "Headless.h"
#include "host/HeadlessRuns.h"
#include "host/MeshFiles.h"

namespace {

struct Rgb {
    unsigned red, green, blue;
};
Rgb ColorAt(const Png& png, int x, int y) {
    const unsigned pixel = png.At(x, y);
    return {pixel >> 16, (pixel >> 8) & 0xFF, pixel & 0xFF};
}

/// Seen from -Z, which scans of tests face, with X to the left: a second grid lies 1 unit in front of the first one,
/// over the corner from (0, 0) to (4, 4).
class PicturesOfTwoScans : public GridPictures {
protected:
    void SetUp() override {
        GridPictures::SetUp();
        WriteXdt(m_folder / "b.xdt", 5, 5, -1.0f);
        m_options.view = KV_ScenePane::ViewFromMinusZYUp;
        m_options.files.push_back(m_folder / "b.xdt");
    }
    [[nodiscard]] static Rgb First(const Png& png) { return ColorAt(png, 58, 58); }
    [[nodiscard]] static Rgb Second(const Png& png) { return ColorAt(png, 142, 142); }
};

TEST_F(PicturesOfTwoScans, TellThemApartByColoursOfThePalette) {
    const Png png = Taken();
    const Rgb first = First(png), second = Second(png);  // 4098D8 and D84010 under light
    EXPECT_GT(first.blue, first.green + 20);
    EXPECT_GT(first.green, first.red + 20);
    EXPECT_GT(second.red, second.green + 60);
    EXPECT_GT(second.green, second.blue + 10);
}

TEST_F(PicturesOfTwoScans, HaveTheColourOfTheCommandLine) {
    m_options.import.color = 0x00FF00;
    m_options.given.color = true;
    const Png png = Taken();
    for (const Rgb& color : {First(png), Second(png)}) {
        EXPECT_GT(color.green, color.red + 100);
        EXPECT_GT(color.green, color.blue + 100);
    }
}

TEST_F(PicturesOfTwoScans, LeaveTheReportAsItIs) {
    m_options.json = true;
    const Printed out, err;
    EXPECT_EQ(RunInfo(m_options, out, err), kExitGood);
    EXPECT_EQ(out.Text().find("4098D8"), std::string::npos);
    EXPECT_NE(out.Text().find("\"color\": \"DCD4C8\""), std::string::npos) << out.Text();
}

TEST_F(GridPictures, OfOneScanHaveTheColourOfScans) {
    m_options.view = KV_ScenePane::ViewFromMinusZYUp;
    const Rgb color = ColorAt(Taken(), 100, 100);  // DCD4C8 under light
    EXPECT_GE(color.red, color.green);
    EXPECT_GE(color.green, color.blue);
    EXPECT_LT(color.red, color.blue + 40);
}

TEST_F(GridPictures, OfAMeshAreGrayAndTheReportIsNot) {
    WriteText(m_folder / "square.ply", PlyHeader(4, 2) + "0 0 0\n10 0 0\n10 10 0\n0 10 0\n3 0 1 2\n3 0 2 3\n");
    m_options.files = {m_folder / "square.ply"};
    const Rgb color = ColorAt(Taken(), 100, 90);
    EXPECT_EQ(color.red, color.green);
    EXPECT_EQ(color.green, color.blue);
    EXPECT_LT(color.red, 240u);
    EXPECT_GT(color.red, 150u);
    m_options.json = true;
    const Printed out, err;
    EXPECT_EQ(RunInfo(m_options, out, err), kExitGood);
    EXPECT_NE(out.Text().find("\"color\": \"FFFFFF\""), std::string::npos) << out.Text();
}

}  // namespace
