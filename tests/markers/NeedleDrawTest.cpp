// The picture of needles: balls, the taper of the pin, the number beside the head, in frames and in screenshots. The
// camera looks down the z axis, 24 pixels per unit, so that (x, y) is shown at (160 + 24 x, 120 - 24 y).
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>

#include "platform/Fonts.h"
#include "render/SceneFixture.h"
#include "render/ScreenshotHelp.h"
#include "support/GlState.h"
#include "support/TextPicture.h"

using namespace lighting;

namespace {

constexpr double kPixelsPerUnit = 24;
constexpr std::uint32_t kWhite = 0xFFFFFF, kBlackPixel = 0xFF000000;

/// What a test says about a needle; the rest is unimportant to it.
struct Style {
    float headRadius = 1.0f;
    std::uint32_t headColor = kWhite;
    float pinSize = 0.0f;
    std::uint32_t pinColor = kWhite;
    float hitPointRadius = 0.0f;
    std::uint32_t hitPointColor = kWhite;
    std::uint32_t headSelectionColor = kWhite;
};

class NeedleFrames : public SceneTest {
protected:
    NeedleFrames() { pane->SetNeedleDrawingMode(-1); }

    void AddNeedle(std::int32_t id, const Vec3& pin, const Vec3& head, const Style& style = {}) {
        const auto f = [](double value) { return static_cast<float>(value); };
        pane->SetMaxNumberOfNeedles(100);
        pane->SetNeedleRenderParameters(10, style.headRadius, static_cast<std::int32_t>(style.headColor), style.pinSize,
                                        static_cast<std::int32_t>(style.pinColor), style.hitPointRadius,
                                        static_cast<std::int32_t>(style.hitPointColor),
                                        static_cast<std::int32_t>(style.headSelectionColor));
        ASSERT_NE(pane->CreateNeedle(id, f(pin[0]), f(pin[1]), f(pin[2]), f(head[0]), f(head[1]), f(head[2])), 0);
    }
    /// Turns the camera so that a direction points down the screen.
    void LookAcross(const Vec3& down) {
        const Vec3 axisY = Unit(-1.0 * down);
        const Vec3 other = std::abs(axisY[0]) < 0.6 ? Vec3{1, 0, 0} : Vec3{0, 1, 0};
        const Vec3 axisX = Unit(other - Dot(other, axisY) * axisY);
        const Vec3 axisZ{axisX[1] * axisY[2] - axisX[2] * axisY[1], axisX[2] * axisY[0] - axisX[0] * axisY[2],
                         axisX[0] * axisY[1] - axisX[1] * axisY[0]};
        camera.axisX = axisX, camera.axisY = axisY, camera.axisZ = axisZ;
        const auto store = [](Float3& to, const Vec3& from) {
            for (std::size_t i = 0; i < 3; ++i) to[i] = static_cast<float>(from[i]);
        };
        store(pane->m_fAxisX, axisX);
        store(pane->m_fAxisY, axisY);
        store(pane->m_fAxisZ, axisZ);
        pane->SetupViewMatrices();
    }
    /// A ball or a pin where its surface has this normal, in eye coordinates of the first camera.
    [[nodiscard]] Vec3 Lit(const Vec3& normal, std::uint32_t color) const {
        Surface surface;
        surface.normal = normal;
        surface.color = {(color & 0xFF) / 255.0, (color >> 8 & 0xFF) / 255.0, (color >> 16 & 0xFF) / 255.0};
        return FixedFunction(camera, surface);
    }
    /// A ball of the camera that looks down the z axis: its colour at nine points, and where it ends.
    void ExpectBall(double x, double y, double radius, std::uint32_t color) {
        const int centerX = static_cast<int>(160 + kPixelsPerUnit * x),
                  centerY = static_cast<int>(120 - kPixelsPerUnit * y);
        const double radiusPx = kPixelsPerUnit * radius;
        const int half = static_cast<int>(radiusPx / 2);
        for (const int dx : {-half, 0, half})
            for (const int dy : {-half, 0, half}) {
                const double nx = (dx + 0.5) / radiusPx, ny = -(dy + 0.5) / radiusPx;
                ExpectPixel(centerX + dx, centerY + dy, Lit({nx, ny, std::sqrt(1 - nx * nx - ny * ny)}, color), 4.0);
            }
        const int inside = static_cast<int>(radiusPx) - 2, outside = static_cast<int>(radiusPx) + 1;
        for (const auto& [dx, dy] : {std::pair{1, 0}, {-1, 0}, {0, 1}, {0, -1}}) {
            EXPECT_GT(DistanceAt(centerX + inside * dx, centerY + inside * dy, kBackground), 10) << dx << dy;
            ExpectBackground(centerX + outside * dx, centerY + outside * dy);
        }
    }

    // ---- the number

    [[nodiscard]] TextPicture BlackPixels() const {
        TextPicture black(picture.width, picture.height);
        for (int y = 0; y < picture.height; ++y)
            for (int x = 0; x < picture.width; ++x)
                if (picture.pixels[static_cast<std::size_t>(y * picture.width + x)] == kBlackPixel)
                    black.Set(x, picture.height - 1 - y);
        return black;
    }
    /// Where the number of a needle must be; rows of pixels run from the bottom.
    [[nodiscard]] TextPicture ExpectedNumber(const std::string& text, const Vec3& head, double radius,
                                             const FontRequest& font = kFonts[1]) const {
        const GlyphSet glyphs = RasterizeFont(font);
        const auto [x, y] = camera.ToWindow(head);
        int width = 0;
        for (const char c : text) width += glyphs.glyphs.at(static_cast<unsigned char>(c)).advance;
        const double pixelsPerUnit = camera.height / (2 * camera.HalfHeight());
        const double left = x + radius * pixelsPerUnit + width / 2.0;
        const double bottom = camera.height - y - glyphs.lineHeight / 2.0;
        TextPicture expected(camera.width, camera.height);
        expected.Write(glyphs, text, static_cast<int>(std::floor(left)), static_cast<int>(std::floor(bottom)));
        return expected;
    }
};

// ---- balls and pins

TEST_F(NeedleFrames, ShowHeadAndHitPointAsLitBallsInTheirColours) {
    AddNeedle(1, {2, -2, 0}, {-2, 1, 0}, {.headColor = 0x20A0F0, .hitPointRadius = 0.5f, .hitPointColor = 0xF04080});
    Frame();
    ExpectBall(-2, 1, 1, 0x20A0F0);
    ExpectBall(2, -2, 0.5, 0xF04080);
}

TEST_F(NeedleFrames, ShowASelectedHeadInItsOwnColour) {
    AddNeedle(1, {0, 0, 0}, {-2, 1, 0}, {.headColor = 0x0000FF, .headSelectionColor = 0x00FF00});
    AddNeedle(2, {0, 0, 0}, {2, 1, 0}, {.headColor = 0xFF0000, .headSelectionColor = 0x00FFFF});
    pane->SelectNeedle(2);
    Frame();
    ExpectBall(-2, 1, 1, 0x0000FF);
    ExpectBall(2, 1, 1, 0x00FFFF);
    pane->SelectNeedle(1);
    Frame();
    ExpectBall(-2, 1, 1, 0x00FF00);
    ExpectBall(2, 1, 1, 0xFF0000);
}

TEST_F(NeedleFrames, IgnoreTheHighByteOfAColour) {
    AddNeedle(1, {0, 0, 0}, {-2, 1, 0}, {.headColor = 0xAB20A0F0});
    Frame();
    ExpectBall(-2, 1, 1, 0x20A0F0);
}

TEST_F(NeedleFrames, ShowNoHitPointWithoutARadius) {
    for (const float radius : {0.0f, -1.0f, std::numeric_limits<float>::quiet_NaN()}) {
        pane->DeleteNeedles();
        AddNeedle(1, {2, -2, 0}, {-2, 1, 0}, {.hitPointRadius = radius});
        Frame();
        EXPECT_EQ(DrawnPixelsIn(190, 150, 230, 190), 0) << radius;
    }
}

TEST_F(NeedleFrames, ShowThePinInItsColour) {
    AddNeedle(1, {2, -3, 0}, {-2, 1, 0}, {.headRadius = 0.3f, .pinSize = 0.5f, .pinColor = 0x30C060});
    Frame();
    // Half of its length; the slices of the pin are 18 degrees wide, so the normal there is off by 9 at most.
    ExpectPixel(160, 144, Lit({0, 0, 1}, 0x30C060), 5.0);
}

struct PinDirection {
    const char* name;
    Vec3 direction;
};
void PrintTo(const PinDirection& row, std::ostream* out) { *out << row.name; }

class PinsAlong : public NeedleFrames, public testing::WithParamInterface<PinDirection> {};

// 5 units or 120 pixels from the head at row 60 to the surface at row 180, 24 pixels wide at the head.
TEST_P(PinsAlong, EveryDirectionTaperToAFifthAtTheSurface) {
    const Vec3 along = Unit(GetParam().direction);
    LookAcross(along);
    AddNeedle(1, 2.5 * along, -2.5 * along, {.headRadius = 0, .pinSize = 0.5f});
    Frame();
    for (const int row : {80, 96, 120, 150, 175}) {  // below the number
        const double width = 24 * (1 - 0.8 * (row + 0.5 - 60) / 120);
        int first = 320, last = -1;
        for (int x = 0; x < 320; ++x) {
            if (DistanceAt(x, row, kBackground) <= 1) continue;
            first = std::min(first, x);
            last = x;
        }
        // A 20-sided pin is by up to 1.2 % narrower than a round one, and pixels count whole.
        EXPECT_LE(last - first + 1, width + 1.01) << "row " << row;
        EXPECT_GE(last - first + 1, 0.987 * width - 1.01) << "row " << row;
        EXPECT_NEAR((first + last + 1) / 2.0, 160, 0.76) << "row " << row;
    }
    EXPECT_GT(DrawnPixelsIn(0, 177, 320, 178), 0);
    EXPECT_EQ(DrawnPixelsIn(0, 182, 320, 240), 0) << "it ends at the surface";
    EXPECT_EQ(DrawnPixelsIn(0, 0, 320, 40), 0) << "it points away from there";
}

const PinDirection kPinDirections[] = {
    {"PlusX", {1, 0, 0}},
    {"MinusX", {-1, 0, 0}},
    {"PlusY", {0, 1, 0}},
    {"MinusY", {0, -1, 0}},
    {"PlusZ", {0, 0, 1}},
    {"MinusZ", {0, 0, -1}},
    {"AlmostPlusZ", {1e-6, 0, 1}},
    {"AlmostMinusZ", {0, 1e-6, -1}},
    {"NearMinusZ", {-0.01, 0.02, -1}},
    {"Diagonal", {1, -2, 3}},
    {"OtherDiagonal", {-3, -1, -2}},
};
INSTANTIATE_TEST_SUITE_P(Needle, PinsAlong, testing::ValuesIn(kPinDirections),
                         [](const auto& row) { return row.param.name; });

TEST_F(NeedleFrames, ShowNoPinWhenItHasNoLength) {
    AddNeedle(1, {-1, 1, 0}, {-1, 1, 0}, {.headRadius = 0.5f, .pinSize = 0.1f});
    Frame();
    const KV_ScenePane::Picture before = picture;
    pane->DeleteNeedles();
    AddNeedle(1, {-1, 1, 0}, {-1, 1, 0}, {.headRadius = 0.5f, .pinSize = 3.0f});
    Frame();
    EXPECT_EQ(picture.pixels, before.pixels);
}

TEST_F(NeedleFrames, ShowNothingWhileDrawingIsOff) {
    pane->SetNeedleDrawingMode(0);
    AddNeedle(1, {2, -2, 0}, {-2, 1, 0}, {.pinSize = 0.5f, .hitPointRadius = 0.5f});
    Frame();
    EXPECT_EQ(PixelsThatAreNotBackground(), 0);
    pane->SetNeedleDrawingMode(-1);
    Frame();
    EXPECT_GT(PixelsThatAreNotBackground(), 1000);
}

// ---- depth

TEST_F(NeedleFrames, AreHiddenByWhatIsNearer) {
    AddNeedle(1, {0, 0, 0}, {-2, 1, 0});
    Square square{.center = {0, 0, 3}, .half = 10};
    Add(square);
    Frame();
    const KV_ScenePane::Picture before = picture;
    pane->SetNeedleDrawingMode(0);
    Frame();
    EXPECT_EQ(picture.pixels, before.pixels);
}

// At half the radius of the head: its number is in the depth of its centre.
TEST_F(NeedleFrames, ShowANumberInTheDepthOfTheCentreOfItsHead) {
    AddNeedle(8, {0, 0, 0}, {-2, 1, 0});
    Square square{.center = {0, 0, 0.5}, .half = 10};
    Add(square);
    Frame();
    EXPECT_EQ(BlackPixels().Count(), 0u);
    ExpectPixel(112, 96, Lit({0, 0, 1}, kWhite), 4);
    pane->m_vpMeshes.clear();
    square.center[2] = -0.5;
    Add(square);
    Frame();
    EXPECT_EQ(BlackPixels(), ExpectedNumber("8", {-2, 1, 0}, 1));
    EXPECT_GT(BlackPixels().Count(), 20u);
}

// ---- the number

struct NumberRow {
    const char* name;
    std::int32_t id;
    Vec3 head;
    float radius;
    double zoom;
};
void PrintTo(const NumberRow& row, std::ostream* out) { *out << row.name; }

class NumberOfANeedle : public NeedleFrames, public testing::WithParamInterface<NumberRow> {};

TEST_P(NumberOfANeedle, IsBlackToTheRightOfTheHead) {
    const NumberRow& row = GetParam();
    Look(320, 240, row.zoom);
    AddNeedle(row.id, {0, 0, -1}, row.head, {.headRadius = row.radius});
    Frame();
    const TextPicture expected = ExpectedNumber(std::to_string(row.id), row.head, row.radius);
    ASSERT_GT(expected.Count(), 20u);
    EXPECT_EQ(BlackPixels(), expected);
}

// Heads that keep the beginning of the text away from the borders of pixels, where the driver's rounding decides.
const NumberRow kNumbers[] = {
    {"Digit", 8, {0.0125, 0.0125, 0}, 1, 1},
    {"TwoDigits", 42, {-1.0125, 1.5125, 2}, 1, 1},
    {"Zero", 0, {0.5125, 0.0125, -4}, 0.5f, 1},
    {"Negative", -7, {-2.0125, -1.0125, 0}, 1, 1},
    {"Largest", 2147483647, {-5.5125, 0.0125, 0}, 0.5f, 1},
    {"Smallest", -2147483647 - 1, {-5.5125, -2.0125, 0}, 0.5f, 1},
    {"WithoutAHead", 5, {0.0125, 0.0125, 0}, 0, 1},
    {"Zoomed", 31, {0.0125, 0.0125, 0}, 1, 0.5},
    {"ZoomedOut", 31, {0.025, 0.025, 0}, 2, 2},
};
INSTANTIATE_TEST_SUITE_P(Needle, NumberOfANeedle, testing::ValuesIn(kNumbers),
                         [](const auto& row) { return row.param.name; });

TEST_F(NeedleFrames, ShowTheNumberOnTheRightOfTheScreenInEveryView) {
    for (const Vec3& down : {Vec3{1, 0, 0}, Vec3{0, 0, 1}, Vec3{1, -2, 3}, Vec3{-3, -1, -2}}) {
        pane->DeleteNeedles();
        LookAcross(down);
        const Vec3 head = -0.5125 * camera.axisX + 1.0125 * camera.axisY;
        AddNeedle(77, {0, 0, 0}, head, {.headRadius = 0.5f});
        Frame();
        EXPECT_EQ(BlackPixels(), ExpectedNumber("77", head, 0.5)) << down[0] << " " << down[1] << " " << down[2];
    }
}

TEST_F(NeedleFrames, ShowNoNumberThatBeginsOutsideTheWindow) {
    for (const double x : {6.4, 7.0, 100.0, -8.2, -20.0}) {  // a part of the first head is visible
        pane->DeleteNeedles();
        AddNeedle(8, {0, 0, 0}, {x, 0, 0});
        Frame();
        EXPECT_EQ(BlackPixels().Count(), 0u) << x;
    }
    // Further than the view volume is deep.
    pane->DeleteNeedles();
    AddNeedle(8, {0, 0, 0}, {0, 0, -21});
    Frame();
    EXPECT_EQ(PixelsThatAreNotBackground(), 0);
}

TEST_F(NeedleFrames, EnlargeTheNumberWithTheScreen) {
    pane->SetScale(2);
    AddNeedle(42, {0, 0, 0}, {-2.0125, 0.5125, 0});
    Frame();
    const TextPicture expected = ExpectedNumber("42", {-2.0125, 0.5125, 0}, 1, {"Courier New", 700, -48});
    ASSERT_GT(expected.Count(), 200u);
    EXPECT_EQ(BlackPixels(), expected);
}

// ---- beside other drawing

TEST_F(NeedleFrames, LookTheSameInEveryDrawMode) {
    AddNeedle(42, {2, -2, 0}, {-2, 1, 0}, {.headColor = 0x20A0F0, .pinSize = 0.5f, .hitPointRadius = 0.5f});
    Frame();
    const KV_ScenePane::Picture before = picture;
    Add({.center = {1, 1, -5}, .half = 0.5}, {1, 0, 0});
    pane->SetObjectVisibility(0, 0);
    pane->SetShadowColor(0.5f, 0, 0);
    for (const int shadows : {0, 1})
        for (int mode = 0; mode <= 6; ++mode) {
            pane->SetShadowMode(static_cast<std::int16_t>(shadows));
            pane->SetDrawMode(static_cast<std::int16_t>(mode));
            Frame();
            EXPECT_EQ(picture.pixels, before.pixels) << "mode " << mode << ", shadows " << shadows;
        }
}

TEST_F(NeedleFrames, RestoreTheState) {
    AddNeedle(1, {2, -2, 0}, {-2, 1, 0}, {.pinSize = 0.5f, .hitPointRadius = 0.5f});
    AddNeedle(2, {2, -2, 0}, {1, 1, 0}, {.pinSize = 0.5f, .hitPointRadius = 0.5f});
    pane->SelectNeedle(2);
    Frame();
    const GlState before = ReadGlState();
    glColor4f(0.5f, 0.25f, 0.125f, 1);
    for (const int font : {1, 2}) {
        pane->DrawNeedles(font);
        EXPECT_EQ(glGetError(), GLenum{GL_NO_ERROR});
        ExpectGlStateIs(before);
        GLfloat color[4] = {};
        glGetFloatv(GL_CURRENT_COLOR, color);
        EXPECT_EQ(color[1], 0.25f);
    }
}

TEST_F(NeedleFrames, FollowEveryChangeOfTheView) {
    AddNeedle(42, {0, 0, 0}, {-2.0125, 1.0125, 0});
    for (const Vec3& center : {Vec3{1, 0, 0}, Vec3{0, 0, 0}, Vec3{0, 2, 0}, Vec3{1, 0, 0}}) {
        camera.center = center;
        pane->m_fViewCenter = {static_cast<float>(center[0]), static_cast<float>(center[1]), 0};
        pane->SetupViewMatrices();
        Frame();
        EXPECT_EQ(BlackPixels(), ExpectedNumber("42", {-2.0125, 1.0125, 0}, 1)) << center[0] << " " << center[1];
    }
}

// ---- coordinates and sizes that are not finite

constexpr double kInf = std::numeric_limits<double>::infinity(), kNan = std::numeric_limits<double>::quiet_NaN();
constexpr float kNanF = std::numeric_limits<float>::quiet_NaN(), kInfF = std::numeric_limits<float>::infinity();

TEST_F(NeedleFrames, ThatAreNowhereChangeNothing) {
    Add({.center = {0, 0, -3}, .half = 3}, {0.2, 0.9, 0.4});
    AddNeedle(1, {2, -2, 0}, {-2, 1, 0}, {.pinSize = 0.5f, .hitPointRadius = 0.5f});
    Frame();
    const KV_ScenePane::Picture before = picture;
    std::int32_t id = 2;
    const Style style{.pinSize = 0.5f, .hitPointRadius = 0.5f};
    for (const Vec3& at : {Vec3{kNan, kNan, kNan}, Vec3{kInf, 0, 0}, Vec3{0, -kInf, 0}, Vec3{0, 0, kInf},
                           Vec3{kNan, 0, kInf}, Vec3{3e38, -3e38, 3e38}, Vec3{0, 3e38, 0}})
        AddNeedle(id++, at, at, style);
    AddNeedle(id++, {kInf, 0, 0}, {-kInf, 0, 0}, style);
    AddNeedle(id++, {0, 0, 0}, {kNan, 0, 0}, {.pinSize = 0.5f});
    AddNeedle(4000, {2, -2, 0}, {-2, 1, 0}, {.pinSize = 0.5f, .hitPointRadius = 0.5f});
    pane->DeleteNeedle(1);  // the same needle, now drawn after all those
    pane->m_vNeedles.back().id = 1;
    Frame();
    EXPECT_EQ(picture.pixels, before.pixels);
}

TEST_F(NeedleFrames, WithAPinThatIsNowhereShowTheirHead) {
    AddNeedle(1, {-2, 1, 0}, {-2, 1, 0}, {.pinSize = 0.5f});
    Frame();
    const KV_ScenePane::Picture before = picture;
    pane->DeleteNeedles();
    AddNeedle(1, {kNan, kNan, 0}, {-2, 1, 0}, {.pinSize = 0.5f, .hitPointRadius = 0.5f});
    Frame();
    EXPECT_EQ(picture.pixels, before.pixels);
}

TEST_F(NeedleFrames, OfOddSizesLeaveNoOpenGlError) {
    std::int32_t id = 10;
    for (const float size : {kNanF, kInfF, -kInfF, -1.0f, 3e38f, -3e38f, 1e-42f})
        for (const float other : {1.0f, size}) {
            pane->DeleteNeedles();
            AddNeedle(id++, {1, 1, 0}, {2, 2, 0}, {.headRadius = size, .pinSize = other, .hitPointRadius = other});
            AddNeedle(id++, {1, 1, 0}, {2, 2, 0}, {.headRadius = other, .pinSize = size, .hitPointRadius = size});
            Frame();
        }
    pane->DeleteNeedles();
    AddNeedle(1, {0, 0, 0}, {-2, 1, 0});
    Frame();
    ExpectBall(-2, 1, 1, kWhite);
}

TEST_F(NeedleFrames, InViewsWithoutExtentLeaveNoOpenGlError) {
    AddNeedle(1, {2, -2, 0}, {-2, 1, 0}, {.pinSize = 0.5f, .hitPointRadius = 0.5f});
    for (const float size : {0.0f, kNanF, kInfF, 1e-42f}) {
        pane->m_fSceneSize = size;
        pane->SetupViewMatrices();
        glGetError();
        pane->DrawNeedles(1);
        EXPECT_EQ(glGetError(), GLenum{GL_NO_ERROR}) << size;
    }
}

// ---- screenshots

class NeedleScreenshots : public NeedleFrames {
protected:
    struct Extent {
        int left = kSide, top = kSide, right = -1, bottom = -1;  ///< right and bottom are inclusive
        void Add(int x, int y) {
            left = std::min(left, x), right = std::max(right, x);
            top = std::min(top, y), bottom = std::max(bottom, y);
        }
    };
    template <typename Predicate>
    static Extent ExtentOf(const Shot& shot, Predicate isIn) {
        Extent extent;
        for (int y = 0; y < kSide; ++y)
            for (int x = 0; x < kSide; ++x)
                if (isIn(PixelOf(shot, x, y))) extent.Add(x, y);
        return extent;
    }
    static Extent BlackOf(const Shot& shot) {
        return ExtentOf(shot, [](std::uint32_t pixel) { return pixel == kBlackPixel; });
    }
    /// What is neither background nor text.
    static Extent BallOf(const Shot& shot) {
        return ExtentOf(shot, [](std::uint32_t pixel) { return pixel != kBlackPixel && pixel != kBackgroundPixel; });
    }
};

TEST_F(NeedleScreenshots, HaveNumbersInTheFontOfHundredPixels) {
    AddNeedle(42, {-2, 1, 0}, {-2, 1, 0}, {.headColor = 0x0000FF});
    const Shot shot = Capture(*pane);
    const Extent black = BlackOf(shot), ball = BallOf(shot);
    ASSERT_GE(black.right, 0);
    ASSERT_GE(ball.right, 0);
    const GlyphSet glyphs = RasterizeFont(kFonts[2]);
    TextPicture expected(400, 200);
    const int width = expected.Write(glyphs, "42", 100, 50) - 100;
    // The same pixels, row by row, from the first one that is set.
    int left = 400, top = 200, right = -1, bottom = -1;
    for (int y = 0; y < 200; ++y)
        for (int x = 0; x < 400; ++x)
            if (expected.Rows()[static_cast<std::size_t>(y)][static_cast<std::size_t>(x)] == '#') {
                left = std::min(left, x), right = std::max(right, x);
                top = std::min(top, y), bottom = std::max(bottom, y);
            }
    ASSERT_EQ(black.right - black.left, right - left);
    ASSERT_EQ(black.bottom - black.top, bottom - top);
    int different = 0;
    for (int y = top; y <= bottom; ++y)
        for (int x = left; x <= right; ++x) {
            const bool isSet = PixelOf(shot, black.left + x - left, black.top + y - top) == kBlackPixel;
            different += isSet != (expected.Rows()[static_cast<std::size_t>(y)][static_cast<std::size_t>(x)] == '#');
        }
    EXPECT_EQ(different, 0);
    // Half its width to the right of the ball, half a line below the middle.
    EXPECT_NEAR(black.left - (left - 100), ball.right + 1 + width / 2.0, 1.5);
    const double middle = (ball.top + ball.bottom + 1) / 2.0;
    const int baseline = black.bottom + (150 - 1 - bottom);  // the row below which nothing of a digit is
    EXPECT_NEAR(baseline + 1, middle + glyphs.lineHeight / 2.0, 1.5);
}

TEST_F(NeedleScreenshots, AreTheSameOnEveryScreen) {
    AddNeedle(42, {2, -1, 0}, {-2, 1, 0}, {.headColor = 0x0000FF, .pinSize = 0.5f, .hitPointRadius = 0.5f});
    const Shot shot = Capture(*pane);
    pane->SetScale(2);
    ExpectSame(Capture(*pane), shot, "at twice the pixels per inch");
    Resize(200, 500);
    pane->PerformRefresh();
    ExpectSame(Capture(*pane), shot, "from a window of another shape");
}

TEST_F(NeedleScreenshots, HaveNeedlesOnlyWhileDrawingIsOn) {
    Add({});
    AddNeedle(42, {0, 0, 0}, {0, 0, 3}, {.headColor = 0x0000FF});
    pane->SetNeedleDrawingMode(0);
    EXPECT_EQ(BlackOf(Capture(*pane)).right, -1);
    pane->SetNeedleDrawingMode(-1);
    EXPECT_GT(BlackOf(Capture(*pane)).right, 0);
}

TEST_F(NeedleScreenshots, LeaveTheNextFrameAsItWas) {
    AddNeedle(42, {2, -1, 0}, {-2, 1, 0}, {.pinSize = 0.5f});
    Frame();
    const KV_ScenePane::Picture before = picture;
    const ViewState state = StateOf(*pane);
    Capture(*pane);
    ExpectSame(StateOf(*pane), state);
    Frame();
    EXPECT_EQ(picture.pixels, before.pixels);
    EXPECT_EQ(BlackPixels(), ExpectedNumber("42", {-2, 1, 0}, 1)) << "in the font of frames";
}

}  // namespace
