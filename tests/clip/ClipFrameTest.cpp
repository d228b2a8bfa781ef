// Which pixels of a frame the clip plane cuts away, in every draw mode, with and without shadows, in both kinds of
// window. A flat plate is seen, so that the point of the scene at a pixel is known.
#include <ostream>

#include "render/GlSnapshot.h"
#include "render/SceneFixture.h"
#include "support/DriverTraits.h"

using namespace lighting;
using KV_ScenePane::DrawMode;
using KV_ScenePane::Picture;

namespace {

constexpr int kWidth = 320, kHeight = 240;
constexpr double kHalf = 4.0;                // of the plate along x and y
const Vec3 kSlope = Unit({-0.4, 0.3, 1.0});  // its normal
const Vec3 kShade{1.5, 0.5, 3.0};            // the centre of the small square above it

/// A clip plane; what the normal points to is kept.
struct Half {
    Vec3 center, normal;
    [[nodiscard]] double DistanceOf(const Vec3& p) const { return Dot(p - center, Unit(normal)); }
};
// Across the plate; oblique to all axes; by height, seen from above, with either side kept.
const Half kHalves[] = {{{1.0, 0, 0}, {1, 0, 0}},
                        {{0.3, -0.4, 0.2}, {0.5, -0.7, 0.4}},
                        {{0, 0, 0.3}, {0, 0, 1}},
                        {{0, 0, 0.3}, {0, 0, -1}}};

/// Of the plate; vertex colours run along x and y.
std::shared_ptr<Mesh> Plate(bool hasColors, int cells = 16) {
    std::vector<Vertex> vertices;
    std::vector<Triangle> triangles;
    for (int j = 0; j <= cells; ++j)
        for (int i = 0; i <= cells; ++i) {
            const double x = kHalf * (2.0 * i / cells - 1), y = kHalf * (2.0 * j / cells - 1);
            const double z = -(kSlope[0] * x + kSlope[1] * y) / kSlope[2];
            const auto red = static_cast<std::uint32_t>(100 + 150 * i / cells),
                       green = static_cast<std::uint32_t>(100 + 150 * j / cells);
            vertices.push_back(MakeVertex({x, y, z}, kSlope, red << 16 | green << 8 | 0x60));
        }
    const auto index = [cells](int i, int j) { return j * (cells + 1) + i; };
    for (int j = 0; j < cells; ++j)
        for (int i = 0; i < cells; ++i) {
            triangles.push_back({{index(i, j), index(i + 1, j), index(i + 1, j + 1)}});
            triangles.push_back({{index(i, j), index(i + 1, j + 1), index(i, j + 1)}});
        }
    return std::make_shared<Mesh>(std::move(vertices), std::move(triangles), std::wstring(), hasColors);
}

/// What the objects of a frame are drawn with.
struct Case {
    const char* name;
    DrawMode mode = KV_ScenePane::DrawModeGouraud;
    bool shadows = false, reduced = false, textured = false;
    int samples = 0;
    double margin = 1.5;  ///< pixels beside the cut that are not compared: more for points and lines, which are wide
    int moved = 2;        ///< pixels of the kept side that a cut may change
};
void PrintTo(const Case& row, std::ostream* out) { *out << row.name; }

constexpr double kWide = 3.5;
/// A line that is cut has a new end, from which virgl counts its pixels: steps of the line move by a pixel. Between two
/// triangles softpipe may leave a pixel out, and where depends on the cut, too.
constexpr int kMovedOnLines = 40;
const Case kCases[] = {
    {.name = "Points", .mode = KV_ScenePane::DrawModePoints, .margin = kWide},
    {.name = "Wireframe", .mode = KV_ScenePane::DrawModeWireframe, .margin = kWide, .moved = kMovedOnLines},
    {.name = "Flat", .mode = KV_ScenePane::DrawModeFlat},
    {.name = "Gouraud"},
    {.name = "Textured", .textured = true},
    {.name = "Samples", .samples = 4},
    {.name = "Reduced", .reduced = true, .margin = kWide},
    {.name = "ShadowsOnPoints", .mode = KV_ScenePane::DrawModePoints, .shadows = true, .margin = kWide},
    {.name = "ShadowsOnWireframe",
     .mode = KV_ScenePane::DrawModeWireframe,
     .shadows = true,
     .margin = kWide,
     .moved = kMovedOnLines},
    {.name = "ShadowsOnFlat", .mode = KV_ScenePane::DrawModeFlat, .shadows = true},
    {.name = "ShadowsOnGouraud", .shadows = true},
    {.name = "ShadowsOnTextured", .shadows = true, .textured = true},
    {.name = "ShadowsWithSamples", .shadows = true, .samples = 4},
    {.name = "ShadowsOnReduced", .shadows = true, .reduced = true, .margin = kWide},
    {.name = "PerPixel", .mode = KV_ScenePane::DrawModePerPixel},
    {.name = "PerPixelTextured", .mode = KV_ScenePane::DrawModePerPixel, .textured = true},
    {.name = "PerPixelSamples", .mode = KV_ScenePane::DrawModePerPixel, .samples = 4},
    {.name = "PerPixelReduced", .mode = KV_ScenePane::DrawModePerPixel, .reduced = true, .margin = kWide},
};

class ClipFrameTest : public SceneTest {
protected:
    explicit ClipFrameTest(WindowKind kind) : SceneTest(kind, kWidth, kHeight) {}

    void SetMode(const Case& row) {
        pane->m_nDrawMode = row.mode;
        pane->m_bShadowEnabled = row.shadows ? 1 : 0;
        pane->m_bMoveReduced = row.reduced ? 1 : 0;
        pane->m_bMoving = row.reduced ? 1 : 0;
        pane->m_fPointCloudSize = 3;
    }
    void Clip(const Half& half) {
        pane->m_clipPlane.SetCenter(half.center);
        pane->m_clipPlane.SetNormal(half.normal);
        pane->m_bClipPlaneActive = 1;
    }
    void LookFromTheSide() {
        camera.axisZ = Unit({0.5, -0.6, 0.8});
        camera.axisX = Unit({0.8, 0.5, -0.125});  // across axisZ
        const Vec3 &z = camera.axisZ, &x = camera.axisX;
        camera.axisY = {z[1] * x[2] - z[2] * x[1], z[2] * x[0] - z[0] * x[2], z[0] * x[1] - z[1] * x[0]};
        const auto store = [](const Vec3& from, Float3& to) {
            for (std::size_t i = 0; i < 3; ++i) to[i] = static_cast<float>(from[i]);
        };
        store(camera.axisX, pane->m_fAxisX), store(camera.axisY, pane->m_fAxisY), store(camera.axisZ, pane->m_fAxisZ);
        pane->SetupViewMatrices();
    }
    static Vec3 ToColor(std::uint32_t p) {
        return {(p >> 16 & 255) / 255.0, (p >> 8 & 255) / 255.0, (p & 255) / 255.0};
    }
    static bool IsOnPlate(const Vec3& p) { return std::abs(p[0]) < kHalf && std::abs(p[1]) < kHalf; }
    static bool IsOnShade(const Vec3& p) { return std::abs(p[0] - kShade[0]) < 1 && std::abs(p[1] - kShade[1]) < 1; }
};

/// The plate with a small square above it, which casts a shadow on it.
class ClippedFrames : public ClipFrameTest, public testing::WithParamInterface<std::tuple<Case, WindowKind>> {
protected:
    ClippedFrames() : ClipFrameTest(std::get<WindowKind>(GetParam())), row(std::get<Case>(GetParam())) {}

    void SetUp() override {
        ASSERT_TRUE(pane->MakeContextCurrent());
        if (row.samples > 0) {
            if (AvailableSamples(row.samples) == 0) GTEST_SKIP() << "the driver has no samples";
            pane->RecreateOpenglContext(3, 3, row.samples);
            Frame();
            Look(kWidth, kHeight);
        }
        const auto plate = Plate(!row.textured);
        pane->m_vpMeshes.push_back(plate);
        if (row.textured) AddPlainTexture(*plate, {200, 220, 100, 255});
        Add({.center = kShade, .half = 0.8}, {0.2, 0.8, 1});
        SetMode(row);
    }

    /// Expects the picture to be @p whole on the side that is kept and background on the other one, where it shows the
    /// plate.
    void ExpectCut(const Half& half, const Picture& whole) {
        const auto onPlate = [this](int x, int y) { return camera.PointAt(x, y, {0, 0, 0}, kSlope); };
        int kept = 0, keptDrawn = 0, cut = 0, wrongKept = 0, wrongCut = 0;
        for (int y = 0; y < kHeight; ++y)
            for (int x = 0; x < kWidth; ++x) {
                if (!IsOnPlate(onPlate(x, y)) || IsOnShade(camera.PointAt(x, y, kShade, {0, 0, 1}))) continue;
                const double d = half.DistanceOf(onPlate(x, y));
                const double perPixel =
                    std::hypot(half.DistanceOf(onPlate(x + 1, y)) - d, half.DistanceOf(onPlate(x, y + 1)) - d);
                if (std::abs(d) < row.margin * perPixel) continue;
                const Vec3 was = ToColor(whole.pixels.at(static_cast<std::size_t>(y * kWidth + x)));
                if (d > 0) {
                    ++kept;
                    keptDrawn += was != ToColor(whole.pixels[0]) ? 1 : 0;
                    wrongKept += DistanceAt(x, y, was) > kTolerance ? 1 : 0;
                } else {
                    ++cut;
                    wrongCut += DistanceAt(x, y, kBackground) > 1 ? 1 : 0;
                }
            }
        EXPECT_EQ(wrongCut, 0);
        EXPECT_LE(wrongKept, row.moved);
        EXPECT_GT(kept, 2500);
        EXPECT_GT(cut, 2500);
        EXPECT_GT(keptDrawn, row.reduced ? 20 : 200);
    }

    const Case& row;
};

INSTANTIATE_TEST_SUITE_P(Modes, ClippedFrames,
                         testing::Combine(testing::ValuesIn(kCases), testing::ValuesIn(WindowKinds())),
                         [](const auto& row) {
                             return std::string(std::get<Case>(row.param).name) +
                                    NameOf(std::get<WindowKind>(row.param));
                         });

// The kept side includes the shadow of the small square, also where the square itself is cut away.
TEST_P(ClippedFrames, ShowTheSideOfTheNormalAsWithoutThePlane) {
    for (const bool aside : {false, true}) {
        if (aside) LookFromTheSide();
        pane->m_bClipPlaneActive = 0;
        Frame();
        const Picture whole = picture;
        for (const Half& half : kHalves) {
            SCOPED_TRACE(testing::Message() << "half " << &half - kHalves << ", from the side " << aside);
            Clip(half);
            Frame();
            ExpectCut(half, whole);
        }
    }
}

// The shadow program alone discards during a drag, too.
TEST_P(ClippedFrames, AreWholeWhileThePlaneIsDraggedExceptWithShadows) {
    Frame();
    const Picture whole = picture;
    Clip(kHalves[1]);
    for (const InteractionMode mode : {ModePlaneHandle, ModePlaneRotate, ModePlaneMove}) {
        pane->m_nInteractionMode = mode;
        Frame();
        if (row.shadows)
            ExpectCut(kHalves[1], whole);
        else
            EXPECT_EQ(picture.pixels, whole.pixels);
    }
    for (const InteractionMode mode : {ModeRotate, ModePan}) {  // of the view
        pane->m_nInteractionMode = mode;
        Frame();
        ExpectCut(kHalves[1], whole);
    }
}

// ---- cases of their own

class ClipFrames : public ClipFrameTest, public testing::WithParamInterface<WindowKind> {
protected:
    ClipFrames() : ClipFrameTest(GetParam()) {}
};

INSTANTIATE_TEST_SUITE_P(Windows, ClipFrames, testing::ValuesIn(WindowKinds()),
                         [](const auto& row) { return NameOf(row.param); });

// A transform is applied to the vertices: the plane cuts moved objects where it cuts the others.
TEST_P(ClipFrames, CutATransformedObjectAtTheSamePlaneOfTheWorld) {
    Add({.center = {0, 0, 0}, .half = 1});
    pane->SetTrafoOfScan(0, 0, -2, 0, 2, 1, 0, 0, -1, 0, 0, 1, 0, 0, 0, 0, 1);  // x' = 2 - 2 y, y' = x - 1
    Frame();
    const Picture whole = picture;
    ASSERT_GT(DistanceAt(160 + 70, 120 + 24, kBackground), 5);  // x = 2.9, y = -1
    Clip({{2, 0, 0}, {1, 0, 0}});
    for (const Case& row : kCases) {
        if (row.reduced || row.samples > 0 || row.textured || row.mode < KV_ScenePane::DrawModeFlat) continue;
        SCOPED_TRACE(row.name);
        SetMode(row);
        Frame();
        ExpectBackground(160 + 46, 120 + 24);  // x = 1.9
        EXPECT_GT(DistanceAt(160 + 51, 120 + 24, kBackground), 5);
        EXPECT_GT(DistanceAt(160 + 70, 120 + 24, kBackground), 5);
    }
}

// Unlike the boxes of the selection.
TEST_P(ClipFrames, CutTheBoxesOfTheBoundingBoxMode) {
    Add({.center = {0, 0, 0}, .half = 2}).ComputeBoundingBox();  // columns 112 to 208, rows 72 to 168
    for (const bool shadows : {false, true}) {
        SetMode({.name = "", .mode = KV_ScenePane::DrawModeBoundingBoxes, .shadows = shadows});
        pane->m_bClipPlaneActive = 0;
        Frame();
        EXPECT_GT(DrawnPixelsIn(110, 80, 115, 160), 70);
        Clip({{-1, 0, 0}, {1, 0, 0}});  // column 136
        Frame();
        EXPECT_EQ(DrawnPixelsIn(100, 60, 134, 180), 0);
        EXPECT_GT(DrawnPixelsIn(140, 70, 206, 75), 60);
        EXPECT_GT(DrawnPixelsIn(206, 80, 211, 160), 70);
    }
}

TEST_P(ClipFrames, CutObjectsAndNothingElse) {
    pane->m_vpMeshes.push_back(Plate(true));
    pane->m_vpMeshes.back()->ComputeBoundingBox();
    pane->AddSelection(0);
    pane->SetPickMode(KV_ScenePane::PickModePoints);
    pane->m_bPickPointValid = 1;
    pane->SetPickRadius(0.4f);
    pane->AddPickPointSphere(2, 1, 0, 0x20C040);
    pane->SetNeedleDrawingMode(-1);
    pane->CreateNeedle(1, -2, 1, 0, -3, 2, 1);
    pane->SetLine3DDrawingMode(-1);
    const float line[] = {-3, -3, 0, 3, -2, 0};
    pane->CreateLine3D(1, 2, line);
    pane->m_nShowArrow = pane->m_nShowAxes = 1;
    SetMode({.name = "", .mode = KV_ScenePane::DrawModeNothing});
    Frame();
    const Picture without = picture;
    ASSERT_GT(PixelsThatAreNotBackground(), 1500);
    Clip({{0, 0, 100}, {0, 0, 1}});
    pane->m_clipPlane.m_dRadius = 1;
    for (const Case& row : kCases) {
        if (row.samples > 0) continue;
        SCOPED_TRACE(row.name);
        SetMode(row);
        Frame();
        EXPECT_EQ(picture.pixels, without.pixels);
    }
}

TEST_P(ClipFrames, ShowTheWholeShadowMap) {
    pane->m_vpMeshes.push_back(Plate(true));
    SetMode({.name = "", .mode = KV_ScenePane::DrawModeShadowMap});
    Frame();
    const Picture whole = picture;
    for (const Half& half : kHalves) {
        Clip(half);
        Frame();
        EXPECT_EQ(picture.pixels, whole.pixels);
    }
}

// A frozen image holds the cut as it was; the plane itself is not drawn over it again.
TEST_P(ClipFrames, FreezeTheCut) {
    pane->m_vpMeshes.push_back(Plate(true));
    Clip(kHalves[0]);
    Frame();
    const Picture cut = picture;
    pane->FreezeFrame();
    pane->m_bClipPlaneActive = 0;
    pane->m_bClipPlaneVisible = 1;
    pane->m_clipPlane.m_dRadius = 3;
    Frame();
    EXPECT_EQ(picture.pixels, cut.pixels);
}

TEST_P(ClipFrames, LeaveTheOpenGlStateOfFramesWithoutThePlane) {
    pane->m_vpMeshes.push_back(Plate(true));
    for (const Case& row : kCases) {
        if (row.samples > 0) continue;
        SetMode(row);
        pane->m_bClipPlaneActive = pane->m_bClipPlaneVisible = 0;
        Frame();
        glColor4f(1, 1, 1, 1), glNormal3f(0, 0, 1);  // what the last vertex leaves
        const GlSnapshot before = TakeGlSnapshot();
        Clip(kHalves[1]);
        pane->m_bClipPlaneVisible = 1;
        pane->m_clipPlane.m_dRadius = 3;
        for (const std::uint32_t pick : {0u, 1u}) {  // the arrow; a sphere, with its axis and circle
            pane->m_clipPlane.OnPicked(pick);
            Frame();
            glColor4f(1, 1, 1, 1), glNormal3f(0, 0, 1);
            ExpectSameGlState(before, TakeGlSnapshot(), row.name);
        }
    }
}

// Not only each by itself: what clips is the driver, by another interface to the window system.
TEST(ClipFramesOfBothWindows, AreEqual) {
    class Scene : public ClipFrameTest {
    public:
        explicit Scene(WindowKind kind) : ClipFrameTest(kind) {
            pane->m_vpMeshes.push_back(Plate(true));
            Add({.center = kShade, .half = 0.8}, {0.2, 0.8, 1});
            LookFromTheSide();
        }
        std::vector<std::uint32_t> Draw(const Case& row, const Half& half) {
            SetMode(row);
            Clip(half);
            Frame();
            return picture.pixels;
        }
        void TestBody() override {}
    };
    Scene offScreen(WindowKind::OffScreen), window(WindowKind::TopLevel);
    for (const Case& row : kCases) {
        if (row.samples > 0 || row.textured) continue;
        for (const Half& half : kHalves)
            EXPECT_EQ(offScreen.Draw(row, half), window.Draw(row, half)) << row.name << ' ' << &half - kHalves;
    }
}

}  // namespace
