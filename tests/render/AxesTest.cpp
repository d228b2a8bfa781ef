// The axes in the corner: position, directions, colours, labels and depth, and their effect on the view.
#include <algorithm>
#include <optional>

#include "render/FrameWitness.h"
#include "render/SceneFixture.h"
#include "render/TextDraw.h"

using namespace lighting;

namespace {

using Point = std::array<double, 2>;

double DistanceToSegment(const Point& p, const Point& a, const Point& b) {
    const double dx = b[0] - a[0], dy = b[1] - a[1], square = dx * dx + dy * dy;
    const double t = square > 0 ? std::clamp(((p[0] - a[0]) * dx + (p[1] - a[1]) * dy) / square, 0.0, 1.0) : 0.0;
    return std::hypot(p[0] - a[0] - t * dx, p[1] - a[1] - t * dy);
}

struct View {
    const char* name;
    Vec3 axisX, axisY, axisZ;
};
constexpr double kS = 0.70710678118654752;
const View kViews[] = {
    {"FromAbove", {-1, 0, 0}, {0, 0, 1}, {0, 1, 0}},
    {"FromBelow", {1, 0, 0}, {0, 0, 1}, {0, -1, 0}},
    {"FromTheRight", {0, 1, 0}, {0, 0, 1}, {1, 0, 0}},
    {"FromTheLeft", {0, -1, 0}, {0, 0, 1}, {-1, 0, 0}},
    {"Standard", {1, 0, 0}, {0, 1, 0}, {0, 0, 1}},
    {"UpsideDown", {1, 0, 0}, {0, -1, 0}, {0, 0, -1}},
    {"Oblique", {-kS, kS, 0}, {-0.5, -0.5, kS}, {0.5, 0.5, kS}},
    {"FromBehind", {-1, 0, 0}, {0, 1, 0}, {0, 0, -1}},
    {"Turned", {0.6, 0, -0.8}, {-0.64, 0.6, -0.48}, {0.48, 0.8, 0.36}},
};

const Vec3 kDirections[] = {{1, 0, 0}, {0, 1, 0}, {0, 0, 1}};
const Vec3 kColors[] = {{1, 0, 0}, {0, 1, 0}, {0.25, 0.25, 1}};

/// A font in which X, Y and Z are a single pixel at the raster position.
GlyphSet DotsForLetters(const FontRequest&) {
    GlyphSet set;
    set.glyphs.resize(256);
    for (const char letter : {'X', 'Y', 'Z'}) {
        Glyph& glyph = set.glyphs[static_cast<std::size_t>(letter)];
        glyph.width = glyph.height = 1, glyph.bits = {0b10000000};
    }
    return set;
}

GlyphSet BlankGlyphs(const FontRequest&) {
    GlyphSet set;
    set.glyphs.resize(256);
    return set;
}

/// A window whose shorter side is 1010 pixels. Lengths as fractions of 1010 pixels: the shaft 1/15; the cone starts at
/// 1/20, is 1/50 long and has a base radius of 1/150; the label starts 1/200 after the end of the shaft.
class AxesScene : public SceneTest {
protected:
    static constexpr double kShaft = 1010 / 15.0, kConeFrom = 1010 / 20.0, kConeLength = 1010 / 50.0;
    static constexpr double kConeRadius = 1010 / 150.0, kLabel = kShaft + 1010 / 200.0;
    /// In the standard view the cone of x and the gap before its label end 75.75 pixels from the origin: rounded down
    /// to 75, plus 15 for the label.
    static constexpr double kOrigin = 90;

    explicit AxesScene(int width = 1300, int height = 1010) : SceneTest(WindowKind::OffScreen, width, height) {
        pane->m_nShowAxes = 1;
    }
    void Turn(const View& view) {
        const auto narrow = [](const Vec3& v) {
            return Float3{static_cast<float>(v[0]), static_cast<float>(v[1]), static_cast<float>(v[2])};
        };
        camera.axisX = view.axisX, camera.axisY = view.axisY, camera.axisZ = view.axisZ;
        pane->m_fAxisX = narrow(view.axisX), pane->m_fAxisY = narrow(view.axisY), pane->m_fAxisZ = narrow(view.axisZ);
        pane->SetupViewMatrices();
    }
    /// The window position @p pixels along an axis from the origin of the axes.
    [[nodiscard]] Point Along(std::size_t axis, double pixels) const {
        return {kOrigin + pixels * Dot(kDirections[axis], camera.axisX),
                kOrigin - pixels * Dot(kDirections[axis], camera.axisY)};
    }
    /// Whether one of the nine pixels around the point has the colour.
    [[nodiscard]] bool IsNear(const Point& p, const Vec3& color) const {
        for (int y = static_cast<int>(p[1]) - 1; y <= static_cast<int>(p[1]) + 1; ++y)
            for (int x = static_cast<int>(p[0]) - 1; x <= static_cast<int>(p[0]) + 1; ++x)
                if (DistanceAt(x, y, color) <= kTolerance) return true;
        return false;
    }
    /// Lines of x and y and nothing outside the three axes, in a view where x and y are seen at full length.
    void ExpectOnlyTheAxes() {
        EXPECT_TRUE(IsNear(Along(0, 25), kColors[0]));
        EXPECT_TRUE(IsNear(Along(1, 25), kColors[1]));
        ExpectNothingBesideTheAxes();
    }
    /// Expects that every drawn pixel belongs to the line, the cone or the label of an axis.
    void ExpectNothingBesideTheAxes() {
        for (int y = 0; y < picture.height; ++y)
            for (int x = 0; x < picture.width; ++x) {
                if (DistanceAt(x, y, kBackground) <= 1.0) continue;
                bool belongs = false;
                for (std::size_t axis = 0; axis < 3; ++axis) {
                    const Point p{x + 0.5, y + 0.5}, label = Along(axis, kLabel);
                    // The silhouette of a cone is at most its radius away from the axis.
                    const Point coneEnd = Along(axis, kConeFrom + kConeLength);
                    belongs |= DistanceToSegment(p, Along(axis, 0), Along(axis, kShaft)) <= 1.5;
                    belongs |= DistanceToSegment(p, Along(axis, kConeFrom), coneEnd) <= kConeRadius + 1;
                    belongs |= p[0] >= label[0] - 1 && p[0] <= label[0] + 40 && std::abs(p[1] - label[1]) <= 20 &&
                               DistanceAt(x, y, kColors[axis]) <= kTolerance;
                }
                if (!belongs) {
                    ADD_FAILURE() << "(" << x << ", " << y << ") belongs to no axis";
                    return;
                }
            }
    }
};

class AxesInView : public AxesScene, public testing::WithParamInterface<View> {
protected:
    AxesInView() { Turn(GetParam()); }
};
void PrintTo(const View& view, std::ostream* out) { *out << view.name; }

INSTANTIATE_TEST_SUITE_P(Views, AxesInView, testing::ValuesIn(kViews), [](const auto& row) { return row.param.name; });

TEST_P(AxesInView, PointAlongTheWorldAxesInTheirColours) {
    Frame();
    int seen = 0;
    for (std::size_t axis = 0; axis < 3; ++axis) {
        const Point end = Along(axis, 1);
        if (std::hypot(end[0] - kOrigin, end[1] - kOrigin) < 0.3) continue;  // along the line of sight
        ++seen;
        // The first one beside the label of an axis along the line of sight, which may cover a row of the line.
        for (const double pixels : {14.0, 20.0, 35.0}) {
            EXPECT_TRUE(IsNear(Along(axis, pixels), kColors[axis])) << axis << " at " << pixels;
            EXPECT_FALSE(IsNear(Along(axis, -pixels), kColors[axis])) << axis << " at " << -pixels;
        }
    }
    EXPECT_GE(seen, 2);
    ExpectNothingBesideTheAxes();
}

/// The first intersection of the line of sight through a pixel with a cone.
struct ConeHit {
    double fromTip;  ///< distance from the tip along the axis, 1 at the base
    double aside;    ///< distance sideways from the axis as seen, 1 at the silhouette
    Vec3 normal;     ///< outward
};
std::optional<ConeHit> HitCone(const Camera& camera, const Vec3& tip, const Vec3& axis, double length, double radius,
                               int x, int y) {
    const Vec3 near = camera.PointAt(x, y, camera.center, camera.axisZ), sight = camera.axisZ;
    const double slope = radius / length;
    // |p - tip + k axis| = slope k with k = (tip - p) . axis, along p = near + t sight.
    const Vec3 d = near - tip;
    const double ka = -Dot(d, axis), kb = -Dot(sight, axis), m = 1 + slope * slope;
    const double a = Dot(sight, sight) - m * kb * kb, b = Dot(d, sight) - m * ka * kb, c = Dot(d, d) - m * ka * ka;
    const double root = b * b - a * c;
    if (root < 0 || std::abs(a) < 1e-9) return std::nullopt;
    std::optional<ConeHit> nearest;
    double nearestT = -1e30;
    for (const double sign : {-1.0, 1.0}) {
        const double t = (-b + sign * std::sqrt(root)) / a, k = ka + t * kb;
        if (k < 0 || k > length || t < nearestT) continue;
        nearestT = t;
        const Vec3 radial = Unit(d + t * sight + k * axis);
        const Vec3 normal = Unit(radial + slope * axis);
        const Vec3 across = {axis[1] * sight[2] - axis[2] * sight[1], axis[2] * sight[0] - axis[0] * sight[2],
                             axis[0] * sight[1] - axis[1] * sight[0]};
        nearest = ConeHit{k / length, std::abs(Dot(radial, Unit(across))), normal};
    }
    return nearest;
}

TEST_P(AxesInView, EndInLitConesOfTheirColours) {
    ASSERT_TRUE(pane->MakeContextCurrent());
    pane->m_textDraw.CreateFonts(BlankGlyphs);  // a label could cover a cone
    Frame();
    int checked = 0;
    const double unit = camera.sceneSize / 1010;  // scene units per pixel
    const Vec3 origin = camera.center + (unit * (kOrigin - picture.width / 2.0)) * camera.axisX +
                        (unit * (picture.height / 2.0 - kOrigin)) * camera.axisY;
    for (std::size_t axis = 0; axis < 3; ++axis) {
        const Vec3& e = kDirections[axis];
        const double toViewer = Dot(e, camera.axisZ);
        if (toViewer < -0.1 || toViewer > 0.95) continue;  // shows its inside, or along the line of sight
        const Vec3 tip = origin + (unit * (kConeFrom + kConeLength)) * e;
        for (int y = 0; y < 200; ++y)
            for (int x = 0; x < 200; ++x) {
                const auto hit = HitCone(camera, tip, e, unit * kConeLength, unit * kConeRadius, x, y);
                if (!hit || hit->fromTip < 0.4 || hit->fromTip > 0.85 || hit->aside > 0.75) continue;
                ++checked;
                Surface surface;
                surface.normal = hit->normal;
                surface.color = kColors[axis];
                // The cone has 24 flat sides: the tolerance covers their difference to a round one.
                ExpectPixel(x, y, FixedFunction(camera, surface), 12.0);
            }
    }
    EXPECT_GT(checked, 50);
}

// A cone has no base: seen from the base, the cone of the z axis shows its inside in the back material.
TEST_F(AxesScene, ShowTheInsideOfAConeThatPointsAway) {
    Turn(kViews[5]);
    Frame();
    for (const auto& [dx, dy] : {std::pair{3.5, 3.5}, {-3.5, 3.5}, {3.5, -3.5}, {-3.5, -3.5}}) {
        const int x = static_cast<int>(kOrigin + dx), y = static_cast<int>(kOrigin + dy);
        Surface surface;
        surface.front = false;
        const double px = x + 0.5 - kOrigin, py = kOrigin - (y + 0.5), r = std::hypot(px, py);
        // Right and up on the screen are x and -y of the world. The radius is a third of the height.
        surface.normal = Unit({3 * px / r, -3 * py / r, 1});
        ExpectPixel(x, y, FixedFunction(camera, surface), 6.0);
    }
}

// ---- labels

TEST_P(AxesInView, HaveTheirLabelsAfterTheTips) {
    ASSERT_TRUE(pane->MakeContextCurrent());
    pane->m_textDraw.CreateFonts(DotsForLetters);
    Frame();
    const auto labelled = picture.pixels;
    pane->m_textDraw.CreateFonts(BlankGlyphs);
    Frame();
    std::vector<Point> dots;
    for (std::size_t i = 0; i < labelled.size(); ++i)
        if (labelled[i] != picture.pixels[i])
            dots.push_back({static_cast<double>(i % 1300) + 0.5, static_cast<double>(i / 1300) + 0.5});
    picture.pixels = labelled;
    std::size_t seen = 0;
    for (std::size_t axis = 0; axis < 3; ++axis) {
        if (Dot(kDirections[axis], camera.axisZ) < -0.9) continue;  // covered by its own cone
        ++seen;
        const Point expected = Along(axis, kLabel);
        const auto isThere = [&](const Point& dot) {
            return std::abs(dot[0] - expected[0]) <= 1.0 && std::abs(dot[1] - expected[1]) <= 1.0;
        };
        const auto dot = std::find_if(dots.begin(), dots.end(), isThere);
        ASSERT_NE(dot, dots.end()) << axis << " is not labelled at " << expected[0] << " " << expected[1];
        ExpectPixel(static_cast<int>((*dot)[0]), static_cast<int>((*dot)[1]), kColors[axis]);
    }
    EXPECT_EQ(dots.size(), seen);
}

TEST_F(AxesScene, AreLabelledWithTheirOwnLetters) {
    // In each font only one letter has a dot.
    const auto dotFor = [](char letter) {
        return [letter](const FontRequest& request) {
            GlyphSet set = DotsForLetters(request);
            set.glyphs[' '].advance = 4;  // the space before the letter
            for (const char other : {'X', 'Y', 'Z'})
                if (other != letter) set.glyphs[static_cast<std::size_t>(other)].width = 0;
            return set;
        };
    };
    for (std::size_t axis = 0; axis < 3; ++axis) {
        ASSERT_TRUE(pane->MakeContextCurrent());
        pane->m_textDraw.CreateFonts(dotFor("XYZ"[axis]));
        Frame();
        for (std::size_t other = 0; other < 2; ++other) {  // z points to the viewer: its label covers its cone
            const Point end = Along(other, kLabel);
            EXPECT_EQ(IsNear({end[0] + 4, end[1]}, kColors[other]), other == axis) << axis << " " << other;
        }
    }
}

// ---- position

TEST_F(AxesScene, KeepPositionAndSizeAtEveryZoomAndSceneSize) {
    for (const double zoom : {0.125, 8.0}) {
        Look(1300, 1010, zoom);
        Frame();
        ExpectOnlyTheAxes();
    }
    pane->m_fSceneSize = 1280;
    pane->m_fViewCenter = {500, -300, 70};
    pane->SetupViewMatrices();
    Frame();
    ExpectOnlyTheAxes();
}

TEST_F(AxesScene, HaveTheSamePositionInATallWindow) {
    Resize(1010, 1300);
    camera.width = 1010, camera.height = 1300;
    Frame();
    ExpectOnlyTheAxes();
}

// 250 pixels: cone and gap end 18.75 pixels from the origin, which is therefore 18 + 15 = 33 pixels from the corner.
TEST_F(AxesScene, AreOnTheDiagonalInASmallWindow) {
    Resize(400, 250);
    Frame();
    EXPECT_TRUE(IsNear({33 + 8, 33}, kColors[0]));
    EXPECT_TRUE(IsNear({33, 33 - 8}, kColors[1]));
    ExpectBackground(29, 33);
    ExpectBackground(33, 37);
}

// ---- depth

TEST_F(AxesScene, AreHiddenByObjectsInFrontOfThemOnly) {
    Square square{.center = {0, 0, 45}, .half = 20};
    Add(square);
    Frame();
    EXPECT_TRUE(IsNear(Along(0, 25), kColors[0]));
    EXPECT_TRUE(IsNear(Along(1, 25), kColors[1]));
    pane->m_vpMeshes.clear();
    // The axes are at a tenth of the depth range. The range is 40 units to both sides of the eye, which is at z = 20:
    // the axes are 32 units towards the viewer, at z = 52.
    square.center = {0, 0, 55};
    Add(square);
    Frame();
    const Vec3 lit = FixedFunction(camera, square.At(camera, 90, 90, {1, 1, 1}));
    for (int y = 0; y < 200; ++y)
        for (int x = 0; x < 200; ++x) ASSERT_LE(DistanceAt(x, y, lit), kTolerance) << x << " " << y;
    pane->m_vpMeshes[0]->m_iVisible = 0;
    Frame();
    EXPECT_TRUE(IsNear(Along(0, 25), kColors[0]));
}

// The z axis points to the viewer: its cone covers the lines of the other two.
TEST_F(AxesScene, HideEachOtherByDepth) {
    Frame();
    for (const auto& [dx, dy] : {std::pair{3.5, 0.5}, {-3.5, 0.5}, {0.5, 3.5}, {0.5, -3.5}, {3.5, -3.5}}) {
        const int x = static_cast<int>(kOrigin + dx), y = static_cast<int>(kOrigin + dy);
        Surface surface;
        const double px = x + 0.5 - kOrigin, py = kOrigin - (y + 0.5), r = std::hypot(px, py);
        surface.normal = Unit({3 * px / r, 3 * py / r, 1});  // a third of the height is the radius
        surface.color = kColors[2];
        ExpectPixel(x, y, FixedFunction(camera, surface), 6.0);
    }
}

// ---- effect on the view

TEST_F(AxesScene, RestoreTheViewAndSetTheStandardViewMode) {
    Turn(kViews[8]);
    pane->m_fViewCenter = {1, 2, 3};
    pane->m_nViewMode = KV_ScenePane::ViewFromPlusXZUp;
    pane->SetupViewMatrices();
    const ViewFrame before = pane->LiveFrame();
    pane->m_savedView.center = {9, 9, 9};
    Frame();
    const ViewFrame after = pane->LiveFrame();
    EXPECT_EQ(after.wx, before.wx);
    EXPECT_EQ(after.wy, before.wy);
    EXPECT_EQ(after.wz, before.wz);
    EXPECT_EQ(after.center, before.center);
    EXPECT_EQ(pane->m_nViewMode, KV_ScenePane::ViewFromPlusZYUp);
    EXPECT_EQ(pane->m_savedView.wx, before.wx);
    EXPECT_EQ(pane->m_savedView.wz, before.wz);
    EXPECT_EQ(pane->m_savedView.center, before.center);
}

TEST_F(AxesScene, ChangeNeitherViewModeNorSavedViewWhileOff) {
    pane->m_nShowAxes = 0;
    pane->m_nViewMode = KV_ScenePane::ViewFromPlusXZUp;
    pane->m_savedView.center = {9, 9, 9};
    Frame();
    EXPECT_EQ(pane->m_nViewMode, KV_ScenePane::ViewFromPlusXZUp);
    EXPECT_EQ(pane->m_savedView.center, (Float3{9, 9, 9}));
}

TEST_F(AxesScene, AreDrawnOnlyForTheValueOne) {
    for (const std::int16_t show : std::vector<std::int16_t>{2, 0, -1, 257}) {
        pane->ShowAxes(show);
        Frame();
        EXPECT_EQ(PixelsThatAreNotBackground(), 0) << show;
    }
    pane->ShowAxes(1);
    EXPECT_EQ(pane.debugOutput.Take(), "");
    Frame();
    EXPECT_GT(PixelsThatAreNotBackground(), 100);
}

// 15 pixels: the origin is 1 + 15 = 16 pixels from the corner, outside the window.
TEST_F(AxesScene, AreNotVisibleInAWindowTooSmallForThem) {
    for (const auto& [width, height] : {std::pair{0, 0}, {5, 0}, {0, 5}, {1, 1}, {7, 7}, {15, 15}}) {
        Resize(width, height);
        pane->m_nViewMode = KV_ScenePane::ViewFromPlusXZUp;
        pane->PerformRefresh();
        EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR)) << width << " " << height;
        EXPECT_EQ(pane->m_nViewMode, KV_ScenePane::ViewFromPlusZYUp);
        if (width == 0 || height == 0) continue;  // no pixel to look at
        Frame();
        EXPECT_EQ(PixelsThatAreNotBackground(), 0) << width << " " << height;
    }
}

TEST_F(AxesScene, ShrinkToAPointInASceneWithoutSize) {
    pane->m_fSceneSize = 1e-30f;
    pane->SetupViewMatrices();
    ASSERT_TRUE(pane->MakeContextCurrent());
    EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
    pane->m_textDraw.CreateFonts(DotsForLetters);
    Frame();
    // The viewing direction underflows in single precision, and with it every length: all points are in the centre of
    // the window, where the x axis is drawn first.
    EXPECT_TRUE(IsNear({650, 505}, kColors[0]));
    EXPECT_LE(PixelsThatAreNotBackground(), 2);
    EXPECT_EQ(pane->m_nViewMode, KV_ScenePane::ViewFromPlusZYUp);
}

// A file may hold coordinates close to the largest float: the size of their box overflows to infinity.
TEST_F(AxesScene, AreNotDrawnInASceneOfInfiniteSize) {
    pane->m_fSceneSize = INFINITY;
    pane->SetupViewMatrices();
    Frame();
    EXPECT_EQ(PixelsThatAreNotBackground(), 0);
    pane->m_fSceneSize = 10;
    pane->m_fViewCenter = {INFINITY, 0, 0};
    pane->SetupViewMatrices();
    Frame();
    EXPECT_EQ(PixelsThatAreNotBackground(), 0);
    EXPECT_EQ(pane->m_nViewMode, KV_ScenePane::ViewFromPlusZYUp);
}

// DrawAxes() sets the standard view mode inside each frame, and setting a view mode asks for a repaint.
class AxesInEveryWindow : public SceneInEveryWindow {};

INSTANTIATE_TEST_SUITE_P(Windows, AxesInEveryWindow, testing::ValuesIn(WindowKinds()),
                         [](const auto& row) { return NameOf(row.param); });

TEST_P(AxesInEveryWindow, RequestNoFurtherFrame) {
    for (int i = 0; i < 3; ++i) pane->ProcessEvents();
    FrameWitness witness(*pane);
    pane->ShowAxes(1);
    EXPECT_EQ(witness.frames, 1);
    EXPECT_FALSE(pane.window->IsPaintPending());
    for (int i = 0; i < 5; ++i) pane->ProcessEvents();
    EXPECT_EQ(witness.frames, 1);

    pane->PerformInvalidate();
    for (int i = 0; i < 5; ++i) pane->ProcessEvents();
    EXPECT_EQ(witness.frames, 2);
    EXPECT_FALSE(pane.window->IsPaintPending());
    EXPECT_EQ(pane->m_bInDraw, 0);
}

TEST_P(AxesInEveryWindow, AreShown) {
    pane->ShowAxes(1);
    Frame();
    // 240 pixels: cone and gap are 18 pixels long, or 17 by rounding; 15 more are the distance of the origin.
    const auto redOrGreen = [&](int x, int y) {
        return DistanceAt(x, y, kColors[0]) <= kTolerance || DistanceAt(x, y, kColors[1]) <= kTolerance;
    };
    EXPECT_TRUE(redOrGreen(33 + 7, 32) || redOrGreen(33 + 7, 31) || redOrGreen(33 + 7, 33));
    EXPECT_TRUE(redOrGreen(32, 33 - 7) || redOrGreen(31, 33 - 7) || redOrGreen(33, 33 - 7));
}

}  // namespace
