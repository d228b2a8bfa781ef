// The picture of the clip plane, and its handles as numbers. The camera looks at the origin, 48 pixels per unit.
#include <gtest/gtest.h>

#include <numbers>

#include "render/SceneFixture.h"
#include "support/DriverTraits.h"
#include "support/GlState.h"

namespace {

using lighting::operator+, lighting::operator*;

constexpr double kPixelsPerUnit = 48;
constexpr double kEdge = 192.5 / kPixelsPerUnit;                    // edges and corners lie in the middle of pixels
constexpr double kRadius = 192.5 * std::numbers::sqrt2;             // of the corners, pixels
constexpr int kLeft = 127, kRight = 512, kTop = 47, kBottom = 432;  // the outline's columns and rows

/// A host colour as channels in 0..1.
Vec3 FromHost(std::uint32_t color) {
    return {(color & 0xFF) / 255.0, (color >> 8 & 0xFF) / 255.0, (color >> 16 & 0xFF) / 255.0};
}

class PlanePicture : public SceneTest {
protected:
    PlanePicture() : SceneTest(KV_ScenePane::WindowRequest::Kind::OffScreen, 640, 480), plane(pane->m_clipPlane) {
        Frame();
        plane.SetCenter({0, 0, 0});
        plane.SetRadiusFromExtent(kEdge);
        plane.m_nColor = HostColor(100, 40, 20);
        plane.m_nHotColor = HostColor(30, 110, 60);
        plane.m_nHandleColor = HostColor(120, 120, 0);
        plane.m_nOutlineColor = HostColor(20, 60, 160);
        plane.m_nHotOutlineColor = HostColor(160, 10, 90);
        pane->m_bClipPlaneVisible = 1;
    }
    /// Looks at the origin from the direction axisZ, axisY up on the screen.
    void LookFrom(const Vec3& axisZ, const Vec3& axisY) {
        const auto toFloats = [](const Vec3& v) {
            return Float3{static_cast<float>(v[0]), static_cast<float>(v[1]), static_cast<float>(v[2])};
        };
        pane->m_fAxisZ = toFloats(axisZ);
        pane->m_fAxisY = toFloats(axisY);
        pane->m_fAxisX = Cross(pane->m_fAxisY, pane->m_fAxisZ);
        pane->SetupViewMatrices();
        camera.axisZ = axisZ;
        camera.axisY = axisY;
    }
    void ShowHandles(bool show) { plane.m_bMoveHandleVisible = plane.m_bRotateHandlesVisible = show; }

    /// Material of one colour for ambient and diffuse light, its front along @p eyeNormal.
    static Vec3 Lit(std::uint32_t color, const Vec3& eyeNormal = {0, 0, 1}) {
        const Vec3 light = lighting::Unit({0.0, -50000.0, 1000000.0});
        return lighting::Clamped((0.3 + std::max(lighting::Dot(eyeNormal, light), 0.0)) * FromHost(color));
    }
    static Vec3 OverBackground(const Vec3& color, double opacity) {
        return lighting::operator+(opacity* color, (1 - opacity) * kBackground);
    }

    /// The numbers that a pick draws, of the whole window, bottom row first; -1 outside the handles.
    std::vector<int> DrawIds() {
        EXPECT_TRUE(pane->MakeContextCurrent());
        glPushAttrib(GL_ALL_ATTRIB_BITS);
        glClearColor(1, 1, 1, 1);
        glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
        glEnable(GL_DEPTH_TEST);
        glDisable(GL_DITHER);
        glDisable(GL_LIGHTING);
        glDisable(GL_MULTISAMPLE);
        plane.DrawPickIds(0);
        glPopAttrib();
        std::vector<std::uint32_t> pixels(640 * 480);
        glReadPixels(0, 0, 640, 480, GL_RGBA, GL_UNSIGNED_BYTE, pixels.data());
        std::vector<int> ids;
        for (const std::uint32_t pixel : pixels)
            ids.push_back((pixel & 0xFFFFFF) == 0xFFFFFF ? -1 : static_cast<int>(pixel & 0xFFFFFF));
        return ids;
    }
    static int At(const std::vector<int>& ids, int x, int y) {
        return ids.at(static_cast<std::size_t>((479 - y) * 640 + x));
    }
    /// A sphere of ten slices: a ten-sided disc of the radius, 1 / 60 of that of the corners.
    static void ExpectSphere(const std::vector<int>& ids, double centerX, double centerY, int id) {
        for (int y = static_cast<int>(centerY) - 8; y <= centerY + 8; ++y)
            for (int x = static_cast<int>(centerX) - 8; x <= centerX + 8; ++x) {
                const double distance = std::hypot(x + 0.5 - centerX, y + 0.5 - centerY);
                if (distance < 0.94 * kRadius / 60) {
                    EXPECT_EQ(At(ids, x, y), id) << x << ", " << y;
                }
                if (distance > kRadius / 60 + 0.1) {
                    EXPECT_EQ(At(ids, x, y), -1) << x << ", " << y;
                }
            }
    }

    Plane& plane;
};

TEST_F(PlanePicture, HasATranslucentFaceAndAnOutline) {
    Frame();
    const Vec3 face = OverBackground(Lit(plane.m_nColor), 0.5);
    for (const auto& [x, y] : {std::pair{320, 200}, {kLeft + 2, kTop + 2}, {kRight - 2, kTop + 2}, {150, 400}})
        ExpectPixel(x, y, face);
    const Vec3 outline = Lit(plane.m_nOutlineColor);
    for (const auto& [x, y] : {std::pair{400, kTop}, {400, kBottom}, {kLeft, 150}, {kRight, 150}})
        ExpectPixel(x, y, outline);
    for (const auto& [x, y] : {std::pair{400, kTop - 1}, {400, kBottom + 1}, {kLeft - 1, 150}, {kRight + 1, 150}})
        ExpectBackground(x, y);
}

TEST_F(PlanePicture, IsShownInHotColoursWhenHighlightedOrPicked) {
    const auto expectHot = [this] {
        Frame();
        ExpectPixel(320, 200, OverBackground(Lit(plane.m_nHotColor), 0.8f));
        ExpectPixel(400, kTop, Lit(plane.m_nHotOutlineColor));
    };
    plane.m_bHighlighted = true;
    expectHot();
    plane.m_bHighlighted = false;
    plane.OnPicked(0);
    expectHot();
    plane.m_bHighlighted = true;
    expectHot();
}

TEST_F(PlanePicture, UsesItsOpacities) {
    plane.m_fOpacity = 1.0f;
    plane.m_fHotOpacity = 0.25f;
    Frame();
    ExpectPixel(320, 200, Lit(plane.m_nColor));
    plane.m_bHighlighted = true;
    Frame();
    ExpectPixel(320, 200, OverBackground(Lit(plane.m_nHotColor), 0.25));
}

TEST_F(PlanePicture, HasNoFaceFromItsBackSide) {
    ShowHandles(false);
    LookFrom({0, 0, -1}, {0, 1, 0});
    Frame();
    ExpectBackground(320, 200);
    ExpectPixel(400, kTop, 0.3 * FromHost(plane.m_nOutlineColor));  // its normal points away from the light
    plane.m_bCullBack = false;
    Frame();
    ExpectPixel(320, 200, OverBackground(Lit(plane.m_nColor), 0.5));
}

// The required result for a normal along -Z is a reflection. It keeps the winding of the face in its surface, so that
// the face shows its front to the side that is cut away, dark, since its normal points away from the viewer.
TEST_F(PlanePicture, OfANormalAlongMinusZShowsItsFaceFromAbove) {
    ShowHandles(false);
    plane.SetNormal({0, 0, -1});
    Frame();
    ExpectPixel(320, 200, OverBackground(Lit(plane.m_nColor, {0, 0, -1}), 0.5));
    ExpectPixel(400, kTop, Lit(plane.m_nOutlineColor, {0, 0, -1}));
    LookFrom({0, 0, -1}, {0, 1, 0});
    Frame();
    ExpectBackground(320, 200);
    plane.SetNormal({1e-4, 0, -1});  // a rotation: front where its normal points
    Frame();
    ExpectPixel(320, 200, OverBackground(Lit(plane.m_nColor), 0.5));
}

// Every pixel of a plane across a slope that it cuts: the slope where it is nearer, else the face over it.
TEST_F(PlanePicture, IsBlendedOverTheSlopeThatItCuts) {
    ShowHandles(false);
    plane.m_bOutlineVisible = false;
    plane.SetCenter({0, 0, 0.5});
    std::vector<Vertex> corners;
    for (const auto& [x, y] : {std::pair{-4.5, -4.5}, {4.5, -4.5}, {4.5, 4.5}, {-4.5, 4.5}})
        corners.push_back(MakeVertex({x, y, 0.4 * x - 0.2 * y}, {0, 0, 1}));
    Mesh& slope = AddMesh(*pane, corners, {Triangle{{0, 1, 2}}, Triangle{{0, 2, 3}}});
    std::fill_n(slope.m_fColor, 3, 0.6f);  // softpipe does not clamp what it blends with
    LookFrom(lighting::Unit({0.3, -0.5, 0.9}), lighting::Unit({0, 0.9, 0.5}));
    camera.axisX = lighting::Unit({1.06, 0.15, -0.27});
    for (const auto& [mode, shadows] : {std::pair{KV_ScenePane::DrawModeGouraud, 0},
                                        {KV_ScenePane::DrawModePerPixel, 0},
                                        {KV_ScenePane::DrawModeFlat, 1}}) {
        pane->m_nDrawMode = mode;
        pane->m_bShadowEnabled = static_cast<std::uint8_t>(shadows);
        pane->m_bClipPlaneVisible = 0;
        Frame();
        std::vector<Vec3> below;
        for (int y = 0; y < 480; ++y)
            for (int x = 0; x < 640; ++x) below.push_back(ColorAt(x, y));
        pane->m_bClipPlaneVisible = 1;
        Frame();
        const Vec3 face = Lit(plane.m_nColor, camera.TurnToEye({0, 0, 1}));
        int over = 0, behind = 0, wrong = 0;
        for (int y = 0; y < 480; ++y)
            for (int x = 0; x < 640; ++x) {
                const Vec3 p = camera.PointAt(x, y, {0, 0, 0.5}, {0, 0, 1});
                const Vec3 q = camera.PointAt(x, y, {0, 0, 0}, {-0.4, 0.2, 1});  // of the slope
                const double inside = kEdge - std::max(std::abs(p[0]), std::abs(p[1]));
                const double onSlope = 4.5 - std::max(std::abs(q[0]), std::abs(q[1]));
                const double above = lighting::Dot(lighting::operator-(p, q), camera.axisZ);
                if (std::min({std::abs(inside), std::abs(onSlope), std::abs(above)}) < 0.05) continue;
                const Vec3& was = below.at(static_cast<std::size_t>(640 * y + x));
                const bool shown = inside > 0 && (onSlope < 0 || above > 0);
                (shown ? over : behind) += inside > 0 ? 1 : 0;
                wrong += DistanceAt(x, y, shown ? 0.5 * face + 0.5 * was : was) > kTolerance ? 1 : 0;
            }
        EXPECT_EQ(wrong, 0) << mode;
        EXPECT_GT(over, 20'000);
        EXPECT_GT(behind, 20'000);
    }
}

TEST_F(PlanePicture, IsDrawnWithSamples) {
    ASSERT_TRUE(pane->MakeContextCurrent());
    if (AvailableSamples(4) == 0) GTEST_SKIP() << "the driver has no samples";
    pane->RecreateOpenglContext(3, 3, 4);
    Frame();
    Look(640, 480);
    plane.SetCenter({0, 0, 0});
    plane.SetRadiusFromExtent(kEdge);
    Frame();
    ExpectPixel(320, 200, OverBackground(Lit(plane.m_nColor), 0.5));
    ExpectPixel(400, kTop, Lit(plane.m_nOutlineColor));
    ExpectBackground(400, kTop - 2);
    ExpectPixel(320, kBottom, Lit(plane.m_nHandleColor), 12);  // the foremost point of a sphere of ten slices
}

TEST_F(PlanePicture, DrawsNothingWithAllPartsHidden) {
    plane.m_bFaceVisible = plane.m_bOutlineVisible = false;
    ShowHandles(false);
    plane.OnPicked(1);
    Frame();
    EXPECT_EQ(PixelsThatAreNotBackground(), 0);
    plane.m_bOutlineVisible = true;
    Frame();
    EXPECT_NEAR(PixelsThatAreNotBackground(), 4 * 385, 4);  // a driver may omit the last pixel of a line
    plane.m_bOutlineVisible = false;
    plane.m_bFaceVisible = true;
    Frame();
    EXPECT_NEAR(PixelsThatAreNotBackground(), 385 * 385, 2 * 385);
}

TEST_F(PlanePicture, IsLitByItsNormalWithoutAnOutline) {
    plane.m_bOutlineVisible = false;
    Frame();
    ExpectPixel(320, 200, OverBackground(Lit(plane.m_nColor), 0.5));
}

TEST_F(PlanePicture, IsHiddenWhileALassoIsDrawn) {
    for (const std::int32_t mode : {ModeLasso, ModeMaskLasso}) {
        pane->m_nInteractionMode = mode;
        Frame();
        EXPECT_EQ(PixelsThatAreNotBackground(), 0) << mode;
    }
    for (const std::int32_t mode : {ModeIdle, ModeRotate, ModePlaneHandle, ModePlaneRotate, ModePlaneMove}) {
        pane->m_nInteractionMode = mode;
        Frame();
        EXPECT_GT(PixelsThatAreNotBackground(), 0) << mode;
    }
    pane->m_bClipPlaneVisible = 0;
    Frame();
    EXPECT_EQ(PixelsThatAreNotBackground(), 0);
}

TEST_F(PlanePicture, IsDepthTestedAgainstTheObjects) {
    Add({.center = {-2, 0, 1}, .half = 0.5}, {0.2, 0.4, 0.6});
    Add({.center = {2, 0, -1}, .half = 0.5}, {0.2, 0.4, 0.6});
    pane->m_bClipPlaneVisible = 0;
    Frame();
    const Vec3 front = ColorAt(320 - 96, 245), back = ColorAt(320 + 96, 245);
    pane->m_bClipPlaneVisible = 1;
    Frame();
    ExpectPixel(320 - 96, 245, front);
    ExpectPixel(320 + 96, 245, 0.5 * Lit(plane.m_nColor) + 0.5 * back);
}

TEST_F(PlanePicture, IsDrawnWhereItsMatrixPutsIt) {
    ShowHandles(false);
    plane.SetNormal({1, 0, 0});  // seen edge-on from z: a line from top to bottom
    plane.SetCenter({1.0 + 0.5 / kPixelsPerUnit, 0, 0});
    Frame();
    EXPECT_GT(DistanceAt(368, 200, kBackground), 5);
    EXPECT_LE(PixelsThatAreNotBackground(), 3 * 386);
    LookFrom({1, 0, 0}, {0, 0, 1});  // from its front, y to the right
    Frame();
    ExpectPixel(320, 200, OverBackground(Lit(plane.m_nColor), 0.5));
    ExpectBackground(320, kTop - 2);
}

TEST_F(PlanePicture, HasTwoSpheresAndOneAtTheCentreOnDemand) {
    Frame();
    ExpectPixel(320, kBottom, Lit(plane.m_nHandleColor), 12);  // their poles face the viewer
    ExpectPixel(kLeft, 240, Lit(plane.m_nHandleColor), 12);
    ExpectPixel(320, 240, OverBackground(Lit(plane.m_nColor), 0.5));
    plane.m_bCenterVisible = true;
    plane.m_bRotateHandlesVisible = false;
    Frame();
    ExpectPixel(320, 240, Lit(plane.m_nColor), 12);
    ExpectPixel(320, kBottom, Lit(plane.m_nOutlineColor));
}

TEST_F(PlanePicture, HasADoubleArrowAtItsFirstCorner) {
    ShowHandles(false);
    Frame();
    ExpectBackground(kRight + 3, kBottom);
    plane.m_bMoveHandleVisible = true;
    Frame();
    const Vec3 head = ColorAt(kRight + 3, kBottom);
    EXPECT_NEAR(head[0], head[1], 1e-9);  // of the handles' colour, however it is lit
    EXPECT_GT(head[0], 0.3 * 120 / 255 - 0.01);
    EXPECT_EQ(head[2], 0);
    ExpectBackground(kRight + 6, kBottom);
}

TEST_F(PlanePicture, ShowsTheAxisAndTheCircleOfAPickedSphere) {
    plane.SetCenter({0.5 / kPixelsPerUnit, -0.5 / kPixelsPerUnit, 0});  // the axes in the middle of pixels
    plane.SetRadiusFromExtent(4);
    plane.m_bFaceVisible = plane.m_bOutlineVisible = false;  // the axis lies in the face, which would hide it
    Frame();
    ExpectBackground(200, 240);
    plane.OnPicked(0);  // the arrow has no axis and no circle
    Frame();
    ExpectBackground(200, 240);
    ExpectBackground(320, 100);

    plane.OnPicked(1);  // the sphere at -y tilts about the x axis
    Frame();
    for (const int x : {140, 200, 300, 500}) ExpectPixel(x, 240, Lit(plane.m_nOutlineColor));
    ExpectBackground(200, 239);
    ExpectBackground(200, 241);
    ExpectBackground(120, 240);
    ExpectBackground(516, 240);
    // The circle, seen on its edge, runs from top to bottom.
    ExpectPixel(320, 100, OverBackground(Lit(plane.m_nOutlineColor), 0.8f), 3);
    ExpectBackground(320, 44);

    plane.OnPicked(2);  // the sphere at -x tilts about the y axis
    Frame();
    ExpectPixel(320, 100, Lit(plane.m_nOutlineColor));
    ExpectPixel(200, 240, OverBackground(Lit(plane.m_nOutlineColor), 0.8f), 3);
}

TEST_F(PlanePicture, DrawsTheCircleOnWhichThePickedSphereMoves) {
    plane.m_bFaceVisible = plane.m_bOutlineVisible = plane.m_bMoveHandleVisible = false;
    plane.OnPicked(2);  // the arrow is hidden: there is no number 2
    plane.OnPicked(0);
    ASSERT_EQ(plane.GetPick(), (PlaneHandle{0, PlaneHandle::kSphere}));
    LookFrom({1, 0, 0}, {0, 0, 1});  // y to the right, the normal upward
    Frame();
    const Vec3 color = OverBackground(0.3 * FromHost(plane.m_nOutlineColor), 0.8f);  // the light comes from the side
    for (int degrees = 5; degrees < 360; degrees += 10) {
        const double angle = degrees * std::numbers::pi / 180;
        double nearest = 255;
        for (int dy = -1; dy <= 1; ++dy)
            for (int dx = -1; dx <= 1; ++dx)
                nearest = std::min(nearest, DistanceAt(static_cast<int>(320 - 192.5 * std::cos(angle)) + dx,
                                                       static_cast<int>(240 - 192.5 * std::sin(angle)) + dy, color));
        EXPECT_LE(nearest, kTolerance) << degrees;
    }
    ExpectBackground(320 - 192, 240 - 192);
}

TEST_F(PlanePicture, DrawsAPlaneWithoutExtent) {
    plane.m_dRadius = 0;
    plane.m_bCenterVisible = true;
    plane.OnPicked(1);
    Frame();  // and leaves no error
    EXPECT_LE(PixelsThatAreNotBackground(), 4);
}

TEST_F(PlanePicture, RestoresTheOpenGlState) {
    ASSERT_TRUE(pane->MakeContextCurrent());
    EXPECT_EQ(plane.m_uAttribMask, 0x6040u);
    glPushAttrib(GL_ALL_ATTRIB_BITS);
    glDisable(GL_LIGHTING);
    glDisable(GL_DEPTH_TEST);
    glEnable(GL_COLOR_MATERIAL);
    glColorMaterial(GL_FRONT, GL_DIFFUSE);
    glBlendFunc(GL_ONE, GL_ONE_MINUS_DST_ALPHA);
    glFrontFace(GL_CW);
    glCullFace(GL_FRONT);
    plane.m_bCenterVisible = true;
    for (const bool cull : {true, false})
        for (const std::uint32_t pick : {0u, 1u, 2u}) {
            plane.m_bCullBack = cull;
            plane.OnPicked(pick);
            glColor4f(0.5f, 0.25f, 0.125f, 1);
            const GlState before = ReadGlState();
            pane->DrawClipPlane();
            glColor4f(0.5f, 0.25f, 0.125f, 1);
            ExpectGlStateIs(before);
        }
    glPopAttrib();
    EXPECT_EQ(glGetError(), GLenum{GL_NO_ERROR});
}

// ---- the handles as numbers

TEST_F(PlanePicture, DrawsItsHandlesAsNumbersAtTheirPlaces) {
    const std::vector<int> ids = DrawIds();
    ExpectSphere(ids, kRight + 0.5, kBottom + 0.5, 0);  // the arrow seen along it: the base of its head
    ExpectSphere(ids, 320, kBottom + 0.5, 1);
    ExpectSphere(ids, kLeft + 0.5, 240, 2);
    EXPECT_EQ(At(ids, 320, 200), -1);
    EXPECT_EQ(At(ids, 400, kTop), -1);
    EXPECT_EQ(At(ids, kRight, kTop), -1);
}

TEST_F(PlanePicture, DrawsNumbersOnlyForVisibleHandles) {
    plane.m_bMoveHandleVisible = false;
    std::vector<int> ids = DrawIds();
    EXPECT_EQ(At(ids, kRight, kBottom), -1);
    EXPECT_EQ(At(ids, 320, kBottom), 0);
    EXPECT_EQ(At(ids, kLeft, 240), 1);
    plane.m_bMoveHandleVisible = true;
    plane.m_bRotateHandlesVisible = false;
    ids = DrawIds();
    EXPECT_EQ(At(ids, kRight, kBottom), 0);
    EXPECT_EQ(At(ids, 320, kBottom), -1);
    ShowHandles(false);
    for (const int id : DrawIds()) ASSERT_EQ(id, -1);
}

TEST_F(PlanePicture, CountsItsNumbersFromTheBase) {
    ASSERT_TRUE(pane->MakeContextCurrent());
    glPushAttrib(GL_ALL_ATTRIB_BITS);
    glDisable(GL_LIGHTING);
    glDisable(GL_DITHER);
    glDisable(GL_MULTISAMPLE);
    EXPECT_EQ(plane.DrawPickIds(0x0301FF), 3u);
    const auto colorAt = [](int x, int y) {
        std::array<std::uint8_t, 4> pixel{};
        glReadPixels(x, 479 - y, 1, 1, GL_RGBA, GL_UNSIGNED_BYTE, pixel.data());
        return std::array<int, 3>{pixel[0], pixel[1], pixel[2]};
    };
    EXPECT_EQ(colorAt(kRight, kBottom), (std::array<int, 3>{0xFF, 0x01, 0x03}));
    EXPECT_EQ(colorAt(320, kBottom), (std::array<int, 3>{0x00, 0x02, 0x03}));
    EXPECT_EQ(colorAt(kLeft, 240), (std::array<int, 3>{0x01, 0x02, 0x03}));
    plane.m_bMoveHandleVisible = false;
    EXPECT_EQ(plane.DrawPickIds(0), 2u);
    plane.m_bRotateHandlesVisible = false;
    EXPECT_EQ(plane.DrawPickIds(0), 0u);
    glPopAttrib();
    EXPECT_EQ(glGetError(), GLenum{GL_NO_ERROR});
    EXPECT_EQ(Get(GL_MODELVIEW_STACK_DEPTH), 1);
}

TEST_F(PlanePicture, HasAnArrowOfShaftAndHeadOnBothSides) {
    LookFrom({0, -1, 0}, {0, 0, 1});  // along the plane, the normal upward
    const std::vector<int> ids = DrawIds();
    const double gap = kRadius / 60, neck = kRadius / 60 + kRadius / 30, tip = kRadius / 60 + kRadius / 15;
    int inside = 0;
    for (int y = 240 - 40; y < 240 + 40; ++y)
        for (int x = kRight - 10; x <= kRight + 10; ++x) {
            const double up = std::abs(239.5 - y), aside = std::abs(x - kRight);
            double halfWidth = 0;
            if (up > gap && up < neck) halfWidth = kRadius / 90;
            if (up >= neck && up < tip) halfWidth = kRadius / 60 * (tip - up) / (tip - neck);
            const bool nearALimit = std::abs(up - gap) < 0.6 || std::abs(up - neck) < 0.6 || std::abs(up - tip) < 0.6;
            if (!nearALimit && aside < 0.93 * halfWidth - 0.2) {  // nine sides
                EXPECT_EQ(At(ids, x, y), 0) << x << ", " << y;
                ++inside;
            }
            if (!nearALimit && aside > halfWidth + 0.2) {
                EXPECT_EQ(At(ids, x, y), -1) << x << ", " << y;
            }
        }
    EXPECT_GT(inside, 100);
    ExpectSphere(ids, 320, 240, 1);  // before the centre
    ExpectSphere(ids, kLeft + 0.5, 240, 2);
}

}  // namespace
