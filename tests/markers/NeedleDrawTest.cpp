// The picture of needles: balls, the taper of the pin, what hides them, and coordinates that are not finite.
// NeedleNumberTest.cpp has the numbers.
#include <GL/glew.h>
#include <dlfcn.h>
#include <gtest/gtest.h>
//
#include <GL/glu.h>

#include <algorithm>
#include <cmath>
#include <limits>

#include "markers/NeedleFrames.h"
#include "support/GlState.h"

using namespace lighting;

namespace {
int g_cylinders = 0;
}  // namespace

/// In the place of GLU's function for the whole test program: counts its calls.
extern "C" void gluCylinder(GLUquadric* quadric, GLdouble base, GLdouble top, GLdouble height, GLint slices,
                            GLint stacks) {
    static const auto original = reinterpret_cast<decltype(&gluCylinder)>(dlsym(RTLD_NEXT, "gluCylinder"));
    ++g_cylinders;
    original(quadric, base, top, height, slices, stacks);
}

namespace {

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
        // A pin of 20 sides is up to 1.2 % narrower than a cylinder, and widths are whole pixels.
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
    g_cylinders = 0;
    Frame();
    EXPECT_EQ(g_cylinders, 0) << "drawn at no pixel, perhaps, but drawn";
    EXPECT_EQ(picture.pixels, before.pixels);
}

// Counted, because a pin without a direction may be drawn at no pixel at all.
TEST_F(NeedleFrames, DrawOnlyPinsThatHaveADirection) {
    const auto pinsOfAFrame = [this](const Vec3& pin) {
        pane->DeleteNeedles();
        AddNeedle(1, pin, {-1, 1, 0}, {.headRadius = 0.5f, .pinSize = 3.0f});
        g_cylinders = 0;
        Frame();
        return g_cylinders;
    };
    EXPECT_EQ(pinsOfAFrame({-1, -1, 0}), 1);
    const double inf = std::numeric_limits<double>::infinity(), nan = std::numeric_limits<double>::quiet_NaN();
    for (const Vec3& pin :
         {Vec3{-1, 1, 0}, Vec3{inf, 1, 0}, Vec3{-1, -inf, 0}, Vec3{-1, 1, inf}, Vec3{nan, 1, 0}, Vec3{inf, nan, 0}})
        EXPECT_EQ(pinsOfAFrame(pin), 0) << pin[0] << ", " << pin[1] << ", " << pin[2];
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

// ---- beside other drawing

TEST_F(NeedleFrames, AreCoveredByTheCrossAndByOverlays) {
    AddNeedle(1, {0, 0, 0}, {0, 0, 0});
    pane->m_nPickMode = KV_ScenePane::PickModeCross;
    pane->SetCrossColor(0x2040C0);
    const std::vector<std::uint8_t> image(4 * 4 * 4, 255);
    pane->AddOverlayData(image.data(), 4, 4, 0, 0, 0, 0, 165, 125);
    Frame();
    ExpectPixel(160 + 10, 120, {0xC0 / 255.0, 0x40 / 255.0, 0x20 / 255.0});
    ExpectPixel(167, 127, {1, 1, 1});
    ExpectPixel(150, 110, Lit({-0.396, 0.396, 0.829}, kWhite), 5.0);
}

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

}  // namespace
