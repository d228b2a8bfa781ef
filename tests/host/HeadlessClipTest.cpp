// --clip and --clip-auto: pictures that are clipped, and the plane that --info prints.
#include <gtest/gtest.h>

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <algorithm>
#include <array>
#include <string>
#include <utility>
#include <vector>

#include "Headless.h"
#include "host/HeadlessRuns.h"
#include "host/MeshFiles.h"
#include "simulate-scans/Blocks.h"
#include "simulate-scans/RayCaster.h"
#include "simulate-scans/ScanFiles.h"
#include "simulate-scans/Scanner.h"

namespace {

constexpr unsigned kBackground = 0x191932;  // 0xRRGGBB
const std::string kAllIsCutAway = "scenepane: the clip plane cuts away all objects\n";
constexpr float kLeftOfPoints = 5.25f;  // between two columns of the grid, world x

/// A half of the picture of the grid below.
enum class Half { Left, Right };

class ClippedScreenshot : public GridPictures {
protected:
    static constexpr int kPlanePixel = 103;  // the plane x = 5.25 is at 103.5

    /// Where pixels of the two pictures differ in one half, without the two columns on each side of the plane.
    [[nodiscard]] static int Differences(const Png& a, const Png& b, Half half) {
        int differences = 0;
        for (int y = 0; y < a.height; ++y) {
            const int begin = half == Half::Left ? 0 : kPlanePixel + 3;
            const int end = half == Half::Left ? kPlanePixel - 2 : a.width;
            for (int x = begin; x < end; ++x) differences += a.At(x, y) != b.At(x, y) ? 1 : 0;
        }
        return differences;
    }
    [[nodiscard]] static int ObjectPixels(const Png& png, Half half) {
        Png empty = png;
        for (std::size_t i = 0; i < empty.bytes.size(); i += 3) {
            empty.bytes[i] = kBackground >> 16;
            empty.bytes[i + 1] = kBackground >> 8 & 0xFF;
            empty.bytes[i + 2] = kBackground & 0xFF;
        }
        return Differences(png, empty, half);
    }
};

struct DrawnWith {
    const char* name;
    KV_ScenePane::DrawMode mode;
    bool shadows;
};
void PrintTo(const DrawnWith& row, std::ostream* out) { *out << row.name; }

const DrawnWith kDrawnWith[] = {
    {"Points", KV_ScenePane::DrawModePoints, false},
    {"Wireframe", KV_ScenePane::DrawModeWireframe, false},
    {"Flat", KV_ScenePane::DrawModeFlat, false},
    {"Gouraud", KV_ScenePane::DrawModeGouraud, false},
    {"Boxes", KV_ScenePane::DrawModeBoundingBoxes, false},
    {"PerPixel", KV_ScenePane::DrawModePerPixel, false},
    {"PointsWithShadows", KV_ScenePane::DrawModePoints, true},
    {"WireframeWithShadows", KV_ScenePane::DrawModeWireframe, true},
    {"FlatWithShadows", KV_ScenePane::DrawModeFlat, true},
    {"GouraudWithShadows", KV_ScenePane::DrawModeGouraud, true},
    {"BoxesWithShadows", KV_ScenePane::DrawModeBoundingBoxes, true},
};

class ClippedScreenshotIn : public ClippedScreenshot, public testing::WithParamInterface<DrawnWith> {};

TEST_P(ClippedScreenshotIn, ShowsTheSideOfTheNormalAsBeforeAndNothingOfTheOther) {
    m_options.drawMode = GetParam().mode;
    m_options.shadows = GetParam().shadows;
    const Png whole = Taken();
    for (const Half half : {Half::Left, Half::Right}) ASSERT_GT(ObjectPixels(whole, half), 50);
    for (const Half kept : {Half::Left, Half::Right}) {
        const Half other = kept == Half::Left ? Half::Right : Half::Left;
        m_options.clip = ClipPlane{{kLeftOfPoints, 0, 0}, {kept == Half::Left ? -1.0f : 1.0f, 0, 0}};
        const Png clipped = Taken();
        EXPECT_EQ(ObjectPixels(clipped, other), 0);
        // A line that is cut begins at another fraction of a pixel: softpipe then rounds some of its pixels to the next
        // row. Other drivers have no difference.
        EXPECT_LE(100 * Differences(clipped, whole, kept), 3 * ObjectPixels(whole, kept));
    }
}
INSTANTIATE_TEST_SUITE_P(DrawModes, ClippedScreenshotIn, testing::ValuesIn(kDrawnWith),
                         [](const auto& row) { return std::string(row.param.name); });

TEST_F(ClippedScreenshot, DependsOnTheDirectionOfTheNormalAlone) {
    m_options.clip = ClipPlane{{kLeftOfPoints, 0, 0}, {1, 0, 0}};
    const Png unit = Taken();
    m_options.clip = ClipPlane{{kLeftOfPoints, 7, -3}, {2000, 0, 0}};
    EXPECT_EQ(Taken().bytes, unit.bytes);
    m_options.clip = ClipPlane{{kLeftOfPoints, 0, 0}, {1e-30f, 0, 0}};
    EXPECT_EQ(Taken().bytes, unit.bytes);
}

// The fit of the view moves the plane within itself and keeps its normal; the picture is framed to the whole object.
TEST_F(ClippedScreenshot, IsFramedAsWithoutThePlane) {
    m_options.zoom = 0.5f;
    const Png whole = Taken();
    m_options.clip = ClipPlane{{0, 0, -1}, {0, 0, 1}};
    EXPECT_EQ(Taken().bytes, whole.bytes) << "all of the object is on the side of the normal, and no plane is drawn";
    m_options.clip = ClipPlane{{0, 0, 1}, {0, 0, 1}};
    const Png empty = Taken(kAllIsCutAway);
    for (const Half half : {Half::Left, Half::Right}) EXPECT_EQ(ObjectPixels(empty, half), 0);
}

TEST_F(ClippedScreenshot, IsWrittenWithAWarningWhenThePlaneCutsAwayAllObjects) {
    m_options.clip = ClipPlane{{11, 0, 0}, {1, 0, 0}};
    EXPECT_EQ(ObjectPixels(Taken(kAllIsCutAway), Half::Right), 0);
    m_options.clip = ClipPlane{{9, 0, 0}, {1, 0, 0}};
    EXPECT_GT(ObjectPixels(Taken(), Half::Right), 10);
}

TEST_F(ClippedScreenshot, ShowsMarkersOnBothSidesOfThePlane) {
    WriteText(m_folder / "points.xyz", "2 5 1\n8 5 1\n");
    WriteText(m_folder / "lines.txt", "1 2 1\n9 2 1\n");
    WriteText(m_folder / "n.json",
              R"({"format": "scenepane needles", "version": 1,
                  "needles": [{"id": 1, "pin": [3, 8, 0], "head": [2, 8, 2]}]})");
    m_options.pointFiles = {m_folder / "points.xyz"};
    m_options.lineFiles = {m_folder / "lines.txt"};
    m_options.needleFiles = {m_folder / "n.json"};
    m_options.clip = ClipPlane{{kLeftOfPoints, 0, 0}, {1, 0, 0}};
    const Png clipped = Taken();
    m_options.clip = ClipPlane{{0, 0, 99}, {0, 0, 1}};
    const Png markersAlone = Taken(kAllIsCutAway);
    EXPECT_GT(ObjectPixels(markersAlone, Half::Left), 50);
    EXPECT_GT(ObjectPixels(markersAlone, Half::Right), 50);
    EXPECT_EQ(Differences(clipped, markersAlone, Half::Left), 0) << "left of the plane only the markers are left";
}

TEST_F(ClippedScreenshot, OfMarkersAloneIsThatWithoutThePlane) {
    WriteText(m_folder / "lines.txt", "0 0 0\n10 10 0\n");
    m_options.files.clear();
    m_options.lineFiles = {m_folder / "lines.txt"};
    const Png whole = Taken();
    EXPECT_GT(ObjectPixels(whole, Half::Left), 50);
    m_options.clip = ClipPlane{{5, 5, 0}, {1, 0, 0}};
    EXPECT_EQ(Taken().bytes, whole.bytes);
}

// ---- --clip-auto

/// The text of a ply file with the two triangles of each rectangle, seen from +Z.
struct Rectangle {
    float x0, y0, x1, y1, z;
};
std::string RectanglesPly(const std::vector<Rectangle>& rectangles) {
    const int count = static_cast<int>(rectangles.size());
    std::string text = PlyHeader(4 * count, 2 * count);
    for (const auto& [x0, y0, x1, y1, z] : rectangles) {
        for (const auto& [x, y] : {std::pair{x0, y0}, {x1, y0}, {x1, y1}, {x0, y1}})
            text += std::to_string(x) + ' ' + std::to_string(y) + ' ' + std::to_string(z) + '\n';
    }
    for (int first = 0; first < 4 * count; first += 4) {
        const auto corner = [first](int i) { return ' ' + std::to_string(first + i); };
        text += '3' + corner(0) + corner(1) + corner(2) + "\n3" + corner(0) + corner(2) + corner(3) + '\n';
    }
    return text;
}

/// Two rectangles of four vertices each: at the left one at the height 1, at the right one at the height 4. As few
/// vertices as these are weighted equally, and the plane is at their mean, 2.5.
const std::vector<Rectangle> kLowAndHigh = {{0, 0, 10, 10, 1}, {10, 0, 20, 10, 4}};

QJsonObject JsonOf(const std::string& text) {
    QJsonParseError error;
    const QJsonDocument document = QJsonDocument::fromJson(QByteArray::fromStdString(text), &error);
    EXPECT_EQ(error.error, QJsonParseError::NoError) << error.errorString().toStdString() << '\n' << text;
    return document.object();
}

std::array<double, 3> Three(const QJsonValue& value) {
    const QJsonArray array = value.toArray();
    EXPECT_EQ(array.size(), 3);
    return {array.at(0).toDouble(), array.at(1).toDouble(), array.at(2).toDouble()};
}

struct InfoRun {
    int status;
    std::string out, err;
};

InfoRun RunClipInfo(const std::vector<std::string>& files, bool json) {
    HostOptions options;
    options.action = HostAction::Info;
    options.files = files;
    options.clipAuto = true;
    options.json = json;
    const Printed out, err;
    const int status = RunInfo(options, out, err);
    return {status, out.Text(), err.Text()};
}

/// The member "clip" of a run that succeeded.
QJsonObject ClipOf(const std::vector<std::string>& files) {
    const InfoRun run = RunClipInfo(files, true);
    EXPECT_EQ(run.status, kExitGood);
    EXPECT_EQ(run.err, "");
    return JsonOf(run.out).value("clip").toObject();
}

TEST(ClipInfo, PrintsHeightRuleAndPlaneOfAllFilesTogether) {
    const ScratchFolder folder;
    WriteText(folder / "low.ply", RectanglesPly({kLowAndHigh[0]}));
    WriteText(folder / "high.ply", RectanglesPly({kLowAndHigh[1]}));
    const QJsonObject clip = ClipOf({folder / "low.ply", folder / "high.ply"});
    EXPECT_EQ(clip.keys(), (QStringList{"center", "found", "height", "normal", "rule"}));
    EXPECT_EQ(clip.value("found"), QJsonValue(true));
    EXPECT_EQ(clip.value("rule").toString(), "all points");
    EXPECT_NEAR(clip.value("height").toDouble(), 2.5, 1e-5);
    const std::array<double, 3> center = Three(clip.value("center"));
    EXPECT_EQ(center[0], 10);
    EXPECT_EQ(center[1], 5);
    EXPECT_EQ(center[2], clip.value("height").toDouble());
    EXPECT_EQ(Three(clip.value("normal")), (std::array<double, 3>{0, 0, 1}));
    // The rest is as without the plane.
    const InfoRun run = RunClipInfo({folder / "low.ply", folder / "high.ply"}, true);
    EXPECT_EQ(JsonOf(run.out).keys(), (QStringList{"clip", "failed", "objects", "points", "warnings"}));
    EXPECT_EQ(JsonOf(run.out).value("objects").toArray().size(), 2);
}

TEST(ClipInfo, PrintsThePlaneAfterTheFilesAsText) {
    const ScratchFolder folder;
    WriteText(folder / "a.ply", RectanglesPly(kLowAndHigh));
    const InfoRun run = RunClipInfo({folder / "a.ply"}, false);
    EXPECT_EQ(run.status, kExitGood);
    EXPECT_EQ(run.out.substr(0, run.out.find('\n')), folder / "a.ply");
    EXPECT_NE(run.out.find("                 0 0 0 1\n"
                           "clip plane\n"
                           "  height         2.5\n"
                           "  rule           all points\n"
                           "  center         10 5 2.5\n"
                           "  normal         0 0 1\n"),
              std::string::npos)
        << run.out;
}

TEST(ClipInfo, WithoutAVertexHasTheDefaultHeightAndNoRule) {
    const ScratchFolder folder;
    const InfoRun run = RunClipInfo({folder / "none.ply"}, true);
    EXPECT_EQ(run.status, kExitFailure);
    EXPECT_EQ(run.err, "scenepane: " + (folder / "none.ply") +
                           ": there is no such file: check its name and its folder\n"
                           "scenepane: no clip height was found, the plane is at -20\n");
    const QJsonObject clip = JsonOf(run.out).value("clip").toObject();
    EXPECT_EQ(clip.keys(), (QStringList{"center", "found", "height", "normal"}));
    EXPECT_EQ(clip.value("found"), QJsonValue(false));
    EXPECT_EQ(clip.value("height").toDouble(), -20);
    EXPECT_EQ(Three(clip.value("center")), (std::array<double, 3>{0, 0, -20}));
    EXPECT_EQ(Three(clip.value("normal")), (std::array<double, 3>{0, 0, 1}));
}

// The library refuses a range of heights from 1 to 1. What the files hold is printed all the same.
TEST(ClipInfo, OfVerticesAtOneHeightPrintsTheFilesAndTheReasonOfTheLibrary) {
    const ScratchFolder folder;
    WriteText(folder / "a.ply", RectanglesPly({kLowAndHigh[0]}));
    const InfoRun run = RunClipInfo({folder / "a.ply"}, true);
    EXPECT_EQ(run.status, kExitFailure);
    EXPECT_EQ(run.err, "scenepane: no clip height: an invalid argument was passed to an interface method\n");
    EXPECT_EQ(JsonOf(run.out).keys(), (QStringList{"failed", "objects", "points", "warnings"}));
    EXPECT_EQ(JsonOf(run.out).value("objects").toArray().size(), 1);
}

TEST(ClipInfo, IsNotPrintedWithoutTheOption) {
    const ScratchFolder folder;
    WriteText(folder / "a.ply", RectanglesPly(kLowAndHigh));
    HostOptions options;
    options.files = {folder / "a.ply"};
    for (const bool json : {false, true}) {
        options.json = json;
        const Printed out, err;
        EXPECT_EQ(RunInfo(options, out, err), kExitGood);
        EXPECT_EQ(out.Text().find("clip"), std::string::npos);
    }
}

// ---- simulated scans of a known level

/// Blocks of 40 x 40 mm around the Z axis in strips along X, each with its own height, scanned from +Z.
/// @param strips  the first edge in y of each strip, and its height; the first one at -20
/// @param pixels  columns and rows of the scan, which covers 60 x 60 mm
void WriteScanOfStrips(const std::string& path, const std::vector<std::pair<float, float>>& strips, int pixels) {
    using namespace simulate;
    BlockGrid grid;
    grid.breaks = {std::vector<float>{-20, 20}, {}, {-30}};
    for (const auto& [y, height] : strips) {
        grid.breaks[1].push_back(y);
        grid.breaks[2].push_back(height);
    }
    grid.breaks[1].push_back(20);
    std::ranges::sort(grid.breaks[2]);
    const auto repeated = std::ranges::unique(grid.breaks[2]);
    grid.breaks[2].erase(repeated.begin(), repeated.end());
    grid.blockAt = [&](int, int y, int z) {
        return Block{grid.breaks[2][static_cast<std::size_t>(z)] < strips[static_cast<std::size_t>(y)].second, -1, 0};
    };
    ScannerSettings settings;
    settings.width = settings.height = pixels;
    settings.parallel = true;
    settings.objectRadius = 30;
    const Transform pose = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, settings.distance, 0, 0, 0, 1};
    WriteScan(path, FileFormat::Pcm, MeasureFrom(RayCaster(MeshOf(grid)), pose, settings, 0, 1));
}

struct SimulatedLevel {
    const char* name;
    std::vector<std::pair<float, float>> strips;
    int pixels;
    const char* rule;
    /// Where a person would put the plane.
    double lowest, highest;
};
void PrintTo(const SimulatedLevel& row, std::ostream* out) { *out << row.name; }

// The estimate looks at a circle of radius 12 around (0, -10).
const SimulatedLevel kSimulatedLevels[] = {
    {"APlateWithAStepUp", {{-20, 0}, {-6, 2}, {-2, 0}}, 200, "flat spot", 1.9, 2.1},
    {"APlateWithADeepDrop", {{-20, 0}, {-6, -9}}, 200, "curved spot", -0.3, 0},
    {"ACoarsePlate", {{-20, 3}}, 14, "all points", 2.95, 3.05},
};
class SimulatedScan : public testing::TestWithParam<SimulatedLevel> {};

TEST_P(SimulatedScan, IsClippedAtItsLevel) {
    const SimulatedLevel& level = GetParam();
    const ScratchFolder folder;
    WriteScanOfStrips(folder / "a.pcm", level.strips, level.pixels);
    const QJsonObject clip = ClipOf({folder / "a.pcm"});
    EXPECT_EQ(clip.value("rule").toString().toStdString(), level.rule);
    EXPECT_GT(clip.value("height").toDouble(), level.lowest);
    EXPECT_LT(clip.value("height").toDouble(), level.highest);
}
INSTANTIATE_TEST_SUITE_P(ClipInfo, SimulatedScan, testing::ValuesIn(kSimulatedLevels),
                         [](const auto& row) { return std::string(row.param.name); });

class ScreenshotClippedAtTheData : public ClippedScreenshot {
protected:
    void SetUp() override {
        ClippedScreenshot::SetUp();
        m_options.clipAuto = true;
    }
    /// Runs with other results than a good picture.
    [[nodiscard]] std::string ErrorsOfFailure() const {
        const Printed err;
        EXPECT_EQ(RunScreenshot(m_options, err), kExitFailure);
        return err.Text();
    }
};

TEST_F(ScreenshotClippedAtTheData, ShowsWhatIsAboveTheHeight) {
    WriteText(m_folder / "a.ply", RectanglesPly(kLowAndHigh));
    m_options.files = {m_folder / "a.ply"};
    for (const bool shadows : {false, true}) {
        m_options.shadows = shadows;
        m_options.clipAuto = false;
        const Png whole = Taken();
        m_options.clipAuto = true;
        const Png clipped = Taken();
        // 20 x 10 x 3 units, whose diagonal of 22.6 fills the picture: the rectangles meet at pixel 100.
        EXPECT_NE(whole.At(60, 100), kBackground);
        EXPECT_EQ(clipped.At(60, 100), kBackground);
        EXPECT_NE(clipped.At(140, 100), kBackground);
        EXPECT_EQ(Differences(clipped, whole, Half::Right), 0) << "nor is the plane drawn";
    }
    m_options.view = KV_ScenePane::ViewFromMinusZYUp;
    const Png below = Taken();
    EXPECT_EQ(below.At(140, 100), kBackground) << "from below the high rectangle is at the left";
}

// The plate from -20 to 20 fills the pixels 29 to 171; the drop begins at 65 % of its height, pixel 120 from below.
TEST_F(ScreenshotClippedAtTheData, ShowsThePlateOfASimulatedScanWithoutTheDrop) {
    WriteScanOfStrips(m_folder / "a.pcm", {{-20, 0}, {-6, -9}}, 200);
    m_options.files = {m_folder / "a.pcm"};
    m_options.clipAuto = false;
    const Png whole = Taken();
    m_options.clipAuto = true;
    const Png clipped = Taken();
    int kept = 0, cut = 0, wanted = 0, unwanted = 0;
    for (int y = 0; y < 200; ++y) {
        for (int x = 0; x < 200; ++x) {
            if (whole.At(x, y) == kBackground) continue;
            const bool isPlate = y > 125, isDrop = y < 115;
            const bool isShown = clipped.At(x, y) != kBackground;
            wanted += isPlate ? 1 : 0;
            unwanted += isDrop ? 1 : 0;
            kept += isPlate && isShown ? 1 : 0;
            cut += isDrop && !isShown ? 1 : 0;
        }
    }
    EXPECT_GT(wanted, 5000);
    EXPECT_GT(unwanted, 10000);
    EXPECT_GT(kept, 0.99 * wanted);
    EXPECT_EQ(cut, unwanted);
}

TEST_F(ScreenshotClippedAtTheData, WithoutAVertexIsTakenWithThePlaneAtTheDefaultHeight) {
    WriteText(m_folder / "lines.txt", "0 0 0\n10 10 0\n");
    m_options.files.clear();
    m_options.lineFiles = {m_folder / "lines.txt"};
    EXPECT_EQ(ErrorsOfFailure(), "scenepane: no clip height was found, the plane is at -20\n");
    EXPECT_GT(ObjectPixels(ReadPng(m_options.picturePath), Half::Left), 50);
}

// No weight is above 0 then. The plane at -20 is below the rectangles and cuts nothing off.
TEST_F(ScreenshotClippedAtTheData, OfSurfacesThatFaceDownShowsThemWhole) {
    WriteText(m_folder / "a.ply", RectanglesPly({{10, 0, 0, 10, 1}, {20, 0, 10, 10, 4}}));
    m_options.files = {m_folder / "a.ply"};
    m_options.view = KV_ScenePane::ViewFromMinusZYUp;
    m_options.clipAuto = false;
    const Png whole = Taken();
    m_options.clipAuto = true;
    EXPECT_EQ(ErrorsOfFailure(), "scenepane: no clip height was found, the plane is at -20\n");
    EXPECT_GT(ObjectPixels(whole, Half::Left), 1000);
    EXPECT_EQ(ReadPng(m_options.picturePath).bytes, whole.bytes);
}

TEST_F(ScreenshotClippedAtTheData, OfVerticesAtOneHeightKeepsAnOlderPicture) {
    WriteText(m_options.picturePath, "older");
    EXPECT_EQ(ErrorsOfFailure(),
              "scenepane: " + m_options.picturePath +
                  ": not written, no clip height: an invalid argument was passed to an interface method\n");
    EXPECT_EQ(ReadBytes(m_options.picturePath).size(), 5u);
}

}  // namespace
