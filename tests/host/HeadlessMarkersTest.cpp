// Pictures with the markers of files, and picks, without a display.
#include <gtest/gtest.h>

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <algorithm>
#include <memory>

#include "Headless.h"
#include "host/CommaLocale.h"
#include "host/HeadlessRuns.h"
#include "host/MeshFiles.h"

namespace {

constexpr unsigned kBackground = 0x191932;  // 0xRRGGBB
constexpr int kCaptureSide = 2048;

/// A triangle with the legs 6 along x and 8 along y. Seen from above, its hypotenuse of 10 fills the shorter side of a
/// picture: its place in a picture of 200 x 200 is 20 pixels per unit about the middle (3, 4).
constexpr const char* kThreePoints = "0 0 0\n6 0 0\n0 8 0\n";
/// Pixels of the picture of 200 x 200.
constexpr int kLeft = 40, kRight = 160, kTop = 20, kBottom = 180, kMiddle = 100;

class MarkerPictures : public testing::Test {
protected:
    void SetUp() override {
        unsetenv("DISPLAY");
        m_options.picturePath = m_folder / "a.png";
        m_options.width = m_options.height = 200;
    }
    /// @return the path of a new file
    [[nodiscard]] std::string File(const std::string& name, std::string_view text) const {
        WriteText(m_folder / name, text);
        return m_folder / name;
    }
    /// Needles with the numbers from @p first on, each from (x, 0, 0) to (x, 0, 2).
    [[nodiscard]] std::string NeedleFileOf(const std::string& name, int first, int count) const {
        std::string text = R"({"format": "scenepane needles", "version": 1, "needles": [)";
        for (int i = 0; i < count; ++i) {
            text += (i == 0 ? "" : ",");
            text += "\n{\"id\": " + std::to_string(first + i) + ", \"pin\": [" + std::to_string(4 * i) +
                    ", 0, 0], \"head\": [" + std::to_string(4 * i) + ", 0, 2]}";
        }
        return File(name, text + "]}\n");
    }
    [[nodiscard]] Png Taken(int status = kExitGood, const std::string& errors = "") const {
        const Printed err;
        EXPECT_EQ(RunScreenshot(m_options, err), status);
        EXPECT_EQ(err.Text(), errors);
        return ReadPng(m_options.picturePath);
    }
    [[nodiscard]] Png Captured(int status = kExitGood, const std::string& errors = "") const {
        const Printed err;
        EXPECT_EQ(RunCapture(m_options, err), status);
        EXPECT_EQ(err.Text(), errors);
        return ReadPng(m_options.picturePath);
    }

    ScratchFolder m_folder;
    HostOptions m_options;
};

/// A black line in the ambient light: the background has more blue.
bool IsBlack(unsigned rgb) { return (rgb & 0xFF) < 0x20 && (rgb >> 8 & 0xFF) < 0x20 && rgb >> 16 < 0x20; }
bool IsReddish(unsigned rgb) { return (rgb >> 16) > 2 * (rgb >> 8 & 0xFF) && (rgb >> 16) > 2 * (rgb & 0xFF); }

// ---- free points

TEST_F(MarkerPictures, ShowPointsInTheChosenColourAndAreFittedToThem) {
    m_options.pointFiles = {File("p.xyz", kThreePoints)};
    m_options.import.color = 0x0080FF;
    const Png png = Taken();
    for (const auto& [x, y] : {std::pair{kLeft, kBottom}, {kRight, kBottom}, {kLeft, kTop}})
        EXPECT_EQ(png.At(x, y), 0xFF8000u) << x << ", " << y;
    for (const auto& [x, y] : {std::pair{kRight, kTop}, {kMiddle, kMiddle}, {kLeft, kMiddle}})
        EXPECT_EQ(png.At(x, y), kBackground) << x << ", " << y;
}

TEST_F(MarkerPictures, ShowPointsInTheColoursOfTheirFile) {
    m_options.pointFiles = {File("p.xyzrgb", "0 0 0 255 0 0\n6 0 0 0 255 0\n0 8 0 0 0 255\n")};
    m_options.import.color = 0x808080;
    const Png png = Taken();
    EXPECT_EQ(png.At(kLeft, kBottom), 0xFF0000u);
    EXPECT_EQ(png.At(kRight, kBottom), 0x00FF00u);
    EXPECT_EQ(png.At(kLeft, kTop), 0x0000FFu);
}

TEST_F(MarkerPictures, AreFittedToTheObjectsAndThePointsTogether) {
    // The grid is 3 wide and high; without the points it would fill the picture.
    WriteXdt(m_folder / "a.xdt", 4, 4);
    m_options.files = {m_folder / "a.xdt"};
    m_options.import.color = 0x0000FF;
    m_options.pointFiles = {File("p.xyz", kThreePoints)};
    const Png png = Taken();
    EXPECT_EQ(png.At(kLeft, kTop), 0xFF0000u);
    EXPECT_NE(png.At(kLeft + 50, kBottom - 50), kBackground) << "(2.5, 2.5) is on the grid";
    EXPECT_EQ(png.At(kLeft + 70, kBottom - 70), kBackground) << "(3.5, 3.5) is beside it";
}

TEST_F(MarkerPictures, OfACaptureAreFittedToThePointsButShowNone) {
    WriteXdt(m_folder / "a.xdt", 4, 4);
    m_options.files = {m_folder / "a.xdt"};
    m_options.pointFiles = {File("p.xyz", "20 0 0\n")};
    const std::string file = m_options.pointFiles[0];
    const Png png =
        Captured(kExitGood, "scenepane: " + file + ": the capture is fitted to these free points, but shows none\n");
    // The box from (0, 0) to (20, 3) is widened by 2; its diagonal fills the picture.
    const double pixelsPerUnit = kCaptureSide / std::sqrt(24.0 * 24.0 + 7.0 * 7.0 + 4.02 * 4.02);
    const auto column = [&](double x) { return static_cast<int>(kCaptureSide / 2 + (x - 10) * pixelsPerUnit); };
    const int row = kCaptureSide / 2;  // y is 1.5
    EXPECT_EQ(png.At(column(0) - 3, row), kBackground);
    EXPECT_NE(png.At(column(0) + 3, row), kBackground);
    EXPECT_NE(png.At(column(3) - 3, row), kBackground);
    EXPECT_EQ(png.At(column(3) + 3, row), kBackground);
    for (int y = 0; y < kCaptureSide; y += 8) EXPECT_EQ(png.At(column(20), y), kBackground) << y;
}

TEST_F(MarkerPictures, OfACaptureNeedMoreThanPoints) {
    m_options.pointFiles = {File("p.xyz", kThreePoints)};
    const Printed err;
    EXPECT_EQ(RunCapture(m_options, err), kExitFailure);
    EXPECT_NE(err.Text().find("a.png: not written, there is nothing to show\n"), std::string::npos) << err.Text();
    EXPECT_NE(access(m_options.picturePath.c_str(), F_OK), 0);
}

TEST_F(MarkerPictures, ShowASinglePoint) {
    m_options.pointFiles = {File("p.xyz", "5 6 7\n")};
    m_options.import.color = 0x0000FF;
    EXPECT_EQ(Taken().At(kMiddle, kMiddle), 0xFF0000u);
}

// ---- lines

TEST_F(MarkerPictures, ShowLinesAloneFittedToThem) {
    m_options.lineFiles = {File("l.txt", "0 0 0\n6 0 0\n0 8 0\n")};
    const Png png = Taken();
    EXPECT_TRUE(IsBlack(png.At(kMiddle, kBottom))) << "on the leg along x";
    EXPECT_TRUE(IsBlack(png.At(kMiddle, kMiddle))) << "the middle of the hypotenuse";
    EXPECT_EQ(png.At(kLeft, kMiddle), kBackground) << "the line is not closed";
    EXPECT_EQ(png.At(kMiddle, kBottom - 20), kBackground);
}

TEST_F(MarkerPictures, ShowTheLinesOfSeveralFiles) {
    m_options.lineFiles = {File("a.txt", "0 0 0 6 0 0\n"), File("b.txt", "0 0 0 0 8 0\n0 8 0 6 0 0\n")};
    const Png png = Taken();
    for (const auto& [x, y] : {std::pair{kMiddle, kBottom}, {kLeft, kMiddle}, {kMiddle, kMiddle}})
        EXPECT_TRUE(IsBlack(png.At(x, y))) << x << ", " << y;
}

TEST_F(MarkerPictures, AreNotFittedToLinesBesideAnObject) {
    WriteXdt(m_folder / "a.xdt", 11, 11);
    m_options.files = {m_folder / "a.xdt"};
    m_options.lineFiles = {File("l.txt", "0 5 1 10 5 1\n0 -20 0 500 -500 0\n")};
    const Png png = Taken();
    EXPECT_TRUE(IsBlack(png.At(kMiddle, kMiddle)));
    EXPECT_NE(png.At(32, 168), kBackground) << "the corner of the grid";
    EXPECT_FALSE(IsBlack(png.At(32, 168)));
}

TEST_F(MarkerPictures, OfACaptureShowLinesAlone) {
    m_options.lineFiles = {File("l.txt", "0 0 0\n6 0 0\n6 8 0\n")};
    const Png png = Captured();
    // The box of the line is widened by 2 on each side; its diagonal fills the picture.
    const double pixelsPerUnit = kCaptureSide / std::sqrt(10.0 * 10.0 + 12.0 * 12.0 + 4.0 * 4.0);
    const int middle = kCaptureSide / 2, column = middle + static_cast<int>(3 * pixelsPerUnit),
              row = middle + static_cast<int>(4 * pixelsPerUnit);
    EXPECT_TRUE(IsBlack(png.At(middle, row)));
    EXPECT_TRUE(IsBlack(png.At(column, middle)));
    EXPECT_EQ(png.At(middle, middle), kBackground);
}

// ---- needles

TEST_F(MarkerPictures, ShowNeedlesAlone) {
    m_options.needleFiles = {NeedleFileOf("n.json", 1, 2)};
    m_options.view = KV_ScenePane::ViewFromMinusYZUp;
    // From (0, 0) to (4, 2) in x and z: the diagonal 4.47 fills the picture, 44.7 pixels per unit.
    const Png png = Taken();
    const auto at = [&](double x, double z) {
        return png.At(static_cast<int>(100 + (x - 2) * 44.7), static_cast<int>(100 - (z - 1) * 44.7));
    };
    EXPECT_TRUE(IsReddish(at(0.5, 2))) << "a head of radius 1, red at first";
    EXPECT_TRUE(IsReddish(at(3.5, 2)));
    EXPECT_EQ(at(2, 2), kBackground) << "between the heads";
    EXPECT_EQ(at(2, 0.5), kBackground);
}

TEST_F(MarkerPictures, ShowASinglePlaceFarOut) {
    m_options.needleFiles = {File("far.json", R"({"format": "scenepane needles", "version": 1, "needles": [
        {"id": 1, "pin": [1e9, 0, 0], "head": [1e9, 0, 0], "headRadius": 1000}]})")};
    // The box is 2000 on each side, its diagonal 3464: 17 units per pixel.
    const Png png = Taken();
    EXPECT_TRUE(IsReddish(png.At(kMiddle, kMiddle)));
    EXPECT_TRUE(IsReddish(png.At(kMiddle, kMiddle + 40)));
    EXPECT_EQ(png.At(kMiddle, kMiddle + 80), kBackground);
    EXPECT_EQ(png.At(kMiddle + 80, kMiddle), kBackground);
}

TEST_F(MarkerPictures, ShowMoreNeedlesThanAViewerStartsWith) {
    m_options.needleFiles = {NeedleFileOf("a.json", 1, 10), NeedleFileOf("b.json", 11, 1)};
    m_options.view = KV_ScenePane::ViewFromMinusYZUp;
    const Png png = Taken();
    // From 0 to 36 in x and to 2 in z: 5.547 pixels per unit; the heads have a radius of 5 pixels.
    for (int i = 0; i < 10; ++i)
        EXPECT_TRUE(IsReddish(png.At(static_cast<int>(100 + (4 * i - 18) * 5.547), 100 - 4))) << i;
}

TEST_F(MarkerPictures, SayThatANeedleFileHoldsNone) {
    m_options.needleFiles = {NeedleFileOf("none.json", 1, 0), NeedleFileOf("n.json", 1, 1)};
    (void)Taken(kExitFailure, "scenepane: " + m_options.needleFiles[0] + ": the file holds no needles\n");
}

TEST_F(MarkerPictures, ShowThePointsOfAPlyFileWithoutFaces) {
    m_options.files = {
        File("points.ply",
             "ply\nformat ascii 1.0\nelement vertex 3\nproperty float x\nproperty float y\nproperty float z\n"
             "element face 0\nproperty list uchar int vertex_indices\nend_header\n" +
                 std::string(kThreePoints))};
    m_options.import.color = 0x0080FF;
    const Png png = Taken();
    for (const auto& [x, y] : {std::pair{kLeft, kBottom}, {kRight, kBottom}, {kLeft, kTop}})
        EXPECT_EQ(png.At(x, y), 0xFF8000u) << x << ", " << y;
}

TEST_F(MarkerPictures, OfACaptureShowNeedlesAlone) {
    m_options.needleFiles = {NeedleFileOf("n.json", 1, 1)};
    const Png png = Captured();
    bool hasHead = false;
    for (int y = 0; y < kCaptureSide; ++y) hasHead = hasHead || IsReddish(png.At(kCaptureSide / 2, y));
    EXPECT_TRUE(hasHead);
}

TEST_F(MarkerPictures, ReportNeedlesWhoseNumbersAreInUse) {
    m_options.needleFiles = {NeedleFileOf("a.json", 1, 2), NeedleFileOf("b.json", 2, 2), NeedleFileOf("c.json", 1, 14)};
    const std::string b = m_options.needleFiles[1], c = m_options.needleFiles[2];
    const Png png =
        Taken(kExitFailure, "scenepane: " + b + ": a needle was not added, its number is in use: 2\nscenepane: " + c +
                                ": needles were not added, their numbers are in use: 1, 2, 3\n");
    EXPECT_EQ(png.width, 200) << "the picture is written all the same";
}

// ---- files that fail

TEST_F(MarkerPictures, AreWrittenWithTheGoodFilesAndFailWhenOneIsBad) {
    m_options.pointFiles = {m_folder / "none.xyz", File("p.xyz", kThreePoints), File("bad.xyz", "1 2 x\n")};
    m_options.lineFiles = {File("bad.txt", "0 0 0\n1 2\n"), m_folder.Path().string()};
    m_options.needleFiles = {File("bad.json", "{")};
    m_options.import.color = 0x0000FF;
    const Printed err;
    EXPECT_EQ(RunScreenshot(m_options, err), kExitFailure);
    EXPECT_EQ(ReadPng(m_options.picturePath).At(kLeft, kTop), 0xFF0000u);
    const std::string lines = err.Text();
    EXPECT_EQ(std::count(lines.begin(), lines.end(), '\n'), 5) << lines;
    for (const char* const line :
         {"none.xyz: there is no such file: check its name and its folder\n", "bad.xyz: line 1", "bad.json: line 1",
          "bad.txt: line 2: 2 numbers, not x y z as in the lines before\n",
          ": this is a folder: name its files, or open it in the window\n"})
        EXPECT_NE(lines.find(line), std::string::npos) << line << lines;
}

TEST_F(MarkerPictures, AreNotWrittenWithoutAnythingToShow) {
    WriteText(m_options.picturePath, "old");
    m_options.lineFiles = {m_folder / "none.txt"};
    const Printed err;
    EXPECT_EQ(RunScreenshot(m_options, err), kExitFailure);
    EXPECT_EQ(err.Text(), "scenepane: " + m_options.lineFiles[0] +
                              ": there is no such file: check its name and its folder\nscenepane: " +
                              m_options.picturePath + ": not written, there is nothing to show\n");
    EXPECT_EQ(ReadBytes(m_options.picturePath).size(), 3u) << "the older picture stays";
}

TEST_F(MarkerPictures, ShowPointsThatAreGivenWithoutTheirOption) {
    m_options.files = {File("p.xyz", kThreePoints)};
    EXPECT_NE(Taken().At(kLeft, kTop), kBackground);
}

TEST_F(MarkerPictures, ShowTheVerticesOfAMeshAsPointsWhereTheseAreAskedFor) {
    m_options.pointFiles = {File("m.obj", "v 0 0 0\nv 6 0 0\nv 0 8 0\nf 1 2 3\n")};
    m_options.import.color = 0x0080FF;
    const Png png = Taken();
    for (const auto& [x, y] : {std::pair{kLeft, kBottom}, {kRight, kBottom}, {kLeft, kTop}})
        EXPECT_EQ(png.At(x, y), 0xFF8000u) << x << ", " << y;
    EXPECT_EQ(png.At(kLeft, kMiddle), kBackground) << "no surface";
}

TEST_F(MarkerPictures, OfACaptureAreFittedToSuchPointsAndSayThatTheyShowNone) {
    WriteXdt(m_folder / "a.xdt", 4, 4);
    m_options.files = {m_folder / "a.xdt", File("p.xyz", kThreePoints)};
    (void)Captured(kExitGood, "scenepane: " + m_options.files[1] +
                                  ": the capture is fitted to these free points, but shows none\n");
}

TEST_F(MarkerPictures, OfPointsAloneAreNoCapture) {
    m_options.files = {File("p.xyz", kThreePoints)};
    const Printed err;
    EXPECT_EQ(RunCapture(m_options, err), kExitFailure);
    EXPECT_NE(err.Text().find("not written, there is nothing to show"), std::string::npos) << err.Text();
}

// ---- --pick. A rectangle of 6 x 2 at z = 0, and one of 2 x 2 at z = 3 above its right end: the diagonal of the box is
// 7, so that a picture of 700 x 700 has 100 pixels per unit about the middle (3, 1, 1.5).

constexpr const char* kSteps =
    "0 0 0\n6 0 0\n6 2 0\n0 2 0\n4 0 3\n6 0 3\n6 2 3\n4 2 3\n3 0 1 2\n3 0 2 3\n3 4 5 6\n3 4 6 7\n";

class Pick : public testing::Test {
protected:
    void SetUp() override {
        unsetenv("DISPLAY");
        WriteText(m_folder / "steps.ply", PlyHeader(8, 4) + kSteps);
        m_options.width = m_options.height = 700;
        m_options.files = {m_folder / "steps.ply"};
        m_options.json = true;
    }
    /// The results by an independent reader of JSON.
    [[nodiscard]] QJsonArray Picked(int status = kExitGood) const {
        const Printed out, err;
        EXPECT_EQ(RunPick(m_options, out, err), status) << err.Text();
        const std::string text = out.Text();
        QJsonParseError error{};
        const QJsonDocument document = QJsonDocument::fromJson(QByteArray::fromStdString(text), &error);
        EXPECT_EQ(error.error, QJsonParseError::NoError) << text;
        EXPECT_EQ(document.object().keys(), QStringList{"picks"}) << text;
        return document.object()["picks"].toArray();
    }

    ScratchFolder m_folder;
    HostOptions m_options;
};

struct Expected {
    int x, y, triangle;
    double point[3], distance;
};

void ExpectHit(const QJsonObject& pick, const Expected& expected, const std::string& file) {
    EXPECT_EQ(pick.size(), 7) << "keys";
    EXPECT_EQ(pick["x"].toInt(-1), expected.x);
    EXPECT_EQ(pick["y"].toInt(-1), expected.y);
    EXPECT_EQ(pick["object"].toInt(-1), 0);
    EXPECT_EQ(pick["file"].toString().toStdString(), file);
    EXPECT_EQ(pick["triangle"].toInt(-1), expected.triangle);
    const QJsonArray point = pick["point"].toArray();
    ASSERT_EQ(point.size(), 3);
    for (int i = 0; i < 3; ++i) EXPECT_NEAR(point[i].toDouble(-9), expected.point[i], 1e-4) << i;
    EXPECT_NEAR(pick["distance"].toDouble(-9), expected.distance, 1e-4);
}

// The line starts at window depth 0.1: the eye is 2 diagonals in front of the middle, and the depth range of 4
// diagonals to both sides of the eye starts 3.2 diagonals in front of it at 0.1. So z is 1.5 + 5.2 x 7 = 37.9.
TEST_F(Pick, FindsTheTriangleThePointAndTheDistanceThatFollowFromTheMesh) {
    const Expected expected[] = {
        {250, 350, 1, {2, 1, 0}, 37.9},    // above the diagonal of the lower rectangle, y = x / 3
        {250, 400, 0, {2, 0.5, 0}, 37.9},  // below it
        {500, 350, 3, {4.5, 1, 3}, 34.9},  // above that of the upper one, y = x - 4, which hides the lower one
        {550, 400, 2, {5, 0.5, 3}, 34.9},  // below it
    };
    for (const Expected& row : expected) m_options.picks.push_back({row.x, row.y});
    const QJsonArray picks = Picked();
    ASSERT_EQ(picks.size(), 4);
    for (int i = 0; i < 4; ++i) {
        SCOPED_TRACE(i);
        ExpectHit(picks[i].toObject(), expected[i], m_options.files[0]);
    }
}

TEST_F(Pick, LooksFromTheChosenViewWithTheChosenZoom) {
    m_options.picks = {{200, 350}};
    m_options.view = KV_ScenePane::ViewFromMinusZYUp;  // x to the left; the lower rectangle is in front
    ExpectHit(Picked()[0].toObject(), {200, 350, 0, {4.5, 1, 0}, 34.9}, m_options.files[0]);
    m_options.view = KV_ScenePane::ViewFromPlusZYUp;
    m_options.zoom = 2;  // 200 pixels per unit; the depth range is that of zoom 1
    ExpectHit(Picked()[0].toObject(), {200, 350, 1, {2.25, 1, 0}, 37.9}, m_options.files[0]);
}

TEST_F(Pick, LooksThroughADrawingAreaOfTheChosenSize) {
    m_options.width = 1400;  // the shorter side has 100 pixels per unit still; the middle is at 700
    m_options.picks = {{600, 350}};
    ExpectHit(Picked()[0].toObject(), {600, 350, 1, {2, 1, 0}, 37.9}, m_options.files[0]);
}

TEST_F(Pick, ReportsAMissWithoutMoreKeysAndSucceedsWhenAnotherPickHits) {
    m_options.picks = {{350, 100}, {250, 350}, {0, 699}};
    const QJsonArray picks = Picked(kExitGood);
    ASSERT_EQ(picks.size(), 3);
    const QJsonObject miss{{"x", 350}, {"y", 100}, {"object", -1}};
    EXPECT_EQ(picks[0].toObject(), miss);
    EXPECT_EQ(picks[1].toObject()["object"].toInt(-1), 0);
    EXPECT_EQ(picks[2].toObject()["object"].toInt(0), -1);
}

TEST_F(Pick, FailsWhenNothingWasHit) {
    m_options.picks = {{350, 100}, {0, 0}};
    EXPECT_EQ(Picked(kExitFailure).size(), 2);
}

TEST_F(Pick, PrintsOneLineOfJson) {
    m_options.picks = {{350, 100}};
    const Printed out, err;
    EXPECT_EQ(RunPick(m_options, out, err), kExitFailure);
    EXPECT_EQ(out.Text(), "{\"picks\":[{\"x\":350,\"y\":100,\"object\":-1}]}\n");
    EXPECT_EQ(err.Text(), "");
}

TEST_F(Pick, PrintsText) {
    m_options.json = false;
    m_options.picks = {{350, 100}, {250, 350}};
    const Printed out, err;
    EXPECT_EQ(RunPick(m_options, out, err), kExitGood);
    const std::string start = "350,100\n  nothing\n250,350\n  object         0\n  file           " +
                              m_options.files[0] + "\n  triangle       1\n  point          ";
    EXPECT_EQ(out.Text().substr(0, start.size()), start);
    EXPECT_NE(out.Text().find("\n  distance       37."), std::string::npos) << out.Text();
}

TEST_F(Pick, NamesTheFileOfTheHitObjectAndFailsWhenAnotherFileIsBad) {
    // The second object is a copy 10 units to the right; both together have the middle (8, 1, 1.5).
    WriteText(m_folder / "\"\xff.ply", PlyHeader(8, 4) +
                                           "10 0 0\n16 0 0\n16 2 0\n10 2 0\n14 0 3\n16 0 3\n16 2 3\n14 2 3\n"
                                           "3 0 1 2\n3 0 2 3\n3 4 5 6\n3 4 6 7\n");
    m_options.files = {m_folder / "none.ply", m_folder / "steps.ply", m_folder / "\"\xff.ply"};
    m_options.picks = {{350, 350}, {350 - 200, 350}, {350 + 200, 350}};
    const Printed out, err;
    EXPECT_EQ(RunPick(m_options, out, err), kExitFailure);
    EXPECT_EQ(err.Text(),
              "scenepane: " + m_options.files[0] + ": there is no such file: check its name and its folder\n");
    const std::string json = out.Text();
    EXPECT_NE(json.find("{\"x\":350,\"y\":350,\"object\":-1}"), std::string::npos) << json;
    EXPECT_NE(json.find("\"x\":150,\"y\":350,\"object\":0,\"file\":\"" + m_options.files[1] + '"'), std::string::npos)
        << json;
    EXPECT_NE(json.find("\"x\":550,\"y\":350,\"object\":1,\"file\":\"" + (m_folder / "\\\"\\udcff.ply\"")),
              std::string::npos)
        << json;
}

TEST_F(Pick, FindsNothingOnAPointSetAndWithoutAnObject) {
    m_options.picks = {{350, 350}};
    WriteXdt(m_folder / "row.xdt", 5, 1);  // points without a triangle
    m_options.files = {m_folder / "row.xdt"};
    EXPECT_EQ(Picked(kExitFailure).size(), 1);
    m_options.files = {m_folder / "none.ply"};
    EXPECT_EQ(Picked(kExitFailure).size(), 1);
}

TEST_F(Pick, PrintsTheSameInALocaleWithCommas) {
    m_options.picks = {{251, 351}};
    const Printed plain, comma, err;
    EXPECT_EQ(RunPick(m_options, plain, err), kExitGood);
    const CommaLocale locale;
    if (!locale.IsSet()) GTEST_SKIP() << "this machine cannot make a locale";
    EXPECT_EQ(RunPick(m_options, comma, err), kExitGood);
    EXPECT_EQ(plain.Text(), comma.Text());
}

TEST_F(Pick, FailsWhenStandardOutputIsFull) {
    m_options.picks = {{250, 350}};
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> full(std::fopen("/dev/full", "w"), std::fclose);
    ASSERT_TRUE(full);
    const Printed err;
    EXPECT_EQ(RunPick(m_options, full.get(), err), kExitFailure);
    EXPECT_EQ(err.Text(), "scenepane: standard output: No space left on device\n");
}

}  // namespace
