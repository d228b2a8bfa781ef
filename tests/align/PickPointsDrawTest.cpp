// What frames show of an alignment by picked points: points, needles along the normals, numbers at their tips, and the
// side that is not picked on, dimmed.
#include "align/PickScene.h"
#include "platform/Fonts.h"
#include "render/SceneFixture.h"
#include "render/ScreenshotHelp.h"
#include "support/GlState.h"
#include "support/TextPicture.h"

using namespace lighting;

namespace {

constexpr Vec3 kRed{1, 0, 0}, kBlue{0, 0, 1}, kNumberRed{0.75, 0, 0}, kNumberBlue{0, 0, 0.75};
constexpr double kNeedle = 3;  // units, 48 pixels each

struct At {
    int x, y;  ///< pixel of a click
};

/// Small slopes, so that a needle ends beside its point and not on another one.
constexpr PlateSpec kMovingPlateSpec{.x = -3, .z = 1, .half = 2, .slopeX = 0.13f, .slopeY = -0.1f, .color = 0x6090F0};
constexpr PlateSpec kFixedPlateSpec{.x = 3, .z = -1, .half = 2, .slopeX = -0.13f, .slopeY = -0.2f, .color = 0x40C08F};

class PickPointsDraw : public SceneTest {
protected:
    PickPointsDraw() : SceneTest(WindowKind::OffScreen, 640, 480) {
        pane->m_vpMeshes = {MakeSlopedPlate(kMovingPlateSpec), MakeSlopedPlate(kFixedPlateSpec)};
        pane->AddVariableObject(0);
        pane->AlignPickPoints();
    }

    void Click(const At& at) {
        using Kind = KV_ScenePane::MouseInput::Kind;
        pane->SendMouse({.kind = Kind::LeftDown, .flags = KV_ScenePane::kMouseLeft, .x = at.x, .y = at.y});
        pane->SendMouse({.kind = Kind::LeftUp, .x = at.x, .y = at.y});
    }
    void NextPhase() { pane->SendKey({.nChar = KV_ScenePane::kKeySpace}); }

    /// Where a click hits a plate, and the tip of the needle there; world frame.
    struct Expected {
        Vec3 point, tip;
    };
    [[nodiscard]] Expected OnPlate(const PlateSpec& plate, const At& at) const {
        const Vec3 normal = Unit({-plate.slopeX, -plate.slopeY, 1});
        // The click is at the corner of its pixel.
        const double x = (at.x - 320) / 48.0, y = (240 - at.y) / 48.0;
        const Vec3 point{x, y, plate.z + plate.slopeX * (x - plate.x) + plate.slopeY * (y - plate.y)};
        return {point, point + kNeedle * normal};
    }
    /// The square of a point: all pixels that are clearly in it have its colour.
    void ExpectPoint(const At& at, double side, const Vec3& color) {
        const int half = static_cast<int>(side / 2);
        for (int y = at.y - half; y < at.y + half; ++y)
            for (int x = at.x - half; x < at.x + half; ++x) ExpectPixel(x, y, color, 0.5);
        // Below it: the needles go upward.
        for (const auto& [dx, dy] : {std::pair{half + 1, half + 1}, {-half - 2, half + 1}, {0, half + 1}})
            EXPECT_GT(DistanceAt(at.x + dx, at.y + dy, color), 20) << at.x + dx << " " << at.y + dy;
    }
    /// A pixel with this colour within one pixel of a place in the window.
    [[nodiscard]] bool IsNear(const std::array<double, 2>& window, const Vec3& color) const {
        const int x = static_cast<int>(std::floor(window[0])), y = static_cast<int>(std::floor(window[1]));
        for (int dy = -1; dy <= 1; ++dy)
            for (int dx = -1; dx <= 1; ++dx)
                if (DistanceAt(x + dx, y + dy, color) < 0.5) return true;
        return false;
    }
    void ExpectNeedle(const Expected& pick, const Vec3& color) {
        for (int i = 0; i <= 10; ++i) {
            const Vec3 p = pick.point + (i / 10.0) * (pick.tip - pick.point);
            EXPECT_TRUE(IsNear(camera.ToWindow(p), color)) << i << " tenths of the needle";
        }
    }
    /// All pixels of a colour.
    [[nodiscard]] TextPicture PixelsOf(const Vec3& color) const {
        TextPicture pixels(picture.width, picture.height);
        for (int y = 0; y < picture.height; ++y)
            for (int x = 0; x < picture.width; ++x)
                if (DistanceAt(x, y, color) < 0.5) pixels.Set(x, picture.height - 1 - y);
        return pixels;
    }
    /// The numbers from 1 on at these tips.
    [[nodiscard]] TextPicture Numbers(const PlateSpec& plate, std::span<const At> clicks,
                                      const FontRequest& font = kFonts[1]) const {
        const GlyphSet glyphs = RasterizeFont(font);
        TextPicture numbers(picture.width, picture.height);
        for (std::size_t i = 0; i < clicks.size(); ++i) {
            const auto [x, y] = camera.ToWindow(OnPlate(plate, clicks[i]).tip);
            numbers.Write(glyphs, std::to_string(i + 1), static_cast<int>(std::floor(x)),
                          static_cast<int>(std::floor(picture.height - y)));
        }
        return numbers;
    }
    [[nodiscard]] Vec3 PlateColor(const PlateSpec& plate, std::uint32_t color) const {
        Surface surface;
        surface.tint = {(color & 0xFF) / 255.0, (color >> 8 & 0xFF) / 255.0, (color >> 16 & 0xFF) / 255.0};
        surface.normal = {0, 0, 1};  // that of the vertices
        surface.position = {plate.x, plate.y, plate.z};
        return FixedFunction(camera, surface);
    }
};

// ---- places and colours

TEST_F(PickPointsDraw, ShowPointsNeedlesAndNumbersOfBothSides) {
    const At moving[] = {{150, 170}, {230, 230}, {130, 300}}, fixed[] = {{420, 190}, {500, 290}};
    for (const At& at : moving) Click(at);
    NextPhase();
    for (const At& at : fixed) Click(at);
    Frame();
    for (const At& at : moving) {
        ExpectPoint(at, 5, kRed);
        ExpectNeedle(OnPlate(kMovingPlateSpec, at), kRed);
    }
    for (const At& at : fixed) {
        ExpectPoint(at, 5, kBlue);
        ExpectNeedle(OnPlate(kFixedPlateSpec, at), kBlue);
    }
    EXPECT_GT(PixelsOf(kNumberRed).Count(), 100u);
    EXPECT_EQ(PixelsOf(kNumberRed), Numbers(kMovingPlateSpec, moving));
    EXPECT_EQ(PixelsOf(kNumberBlue), Numbers(kFixedPlateSpec, fixed));
}

TEST_F(PickPointsDraw, CountAboveNine) {
    std::vector<At> clicks;
    for (int i = 0; i < 12; ++i) clicks.push_back({110 + i % 4 * 45, 190 + i / 4 * 55});
    for (const At& at : clicks) Click(at);
    Frame();
    EXPECT_EQ(PixelsOf(kNumberRed), Numbers(kMovingPlateSpec, clicks));
    for (const At& at : clicks) ExpectPoint(at, 5, kRed);
}

TEST_F(PickPointsDraw, FollowTheViewAndTheirPoints) {
    const At clicks[] = {{150, 170}, {230, 230}};
    for (const At& at : clicks) Click(at);
    Look(640, 480, 2);
    Frame();
    // Half as far from the centre of the window, the size in pixels stays.
    ExpectPoint({235, 205}, 5, kRed);
    ExpectPoint({275, 235}, 5, kRed);
    ExpectNeedle(OnPlate(kMovingPlateSpec, clicks[0]), kRed);
    EXPECT_EQ(PixelsOf(kNumberRed), Numbers(kMovingPlateSpec, clicks));
    Look(640, 480);
    pane->SendKey({.nChar = KV_ScenePane::kKeyDelete});
    Frame();
    ExpectPoint(clicks[0], 5, kRed);
    EXPECT_FALSE(IsNear({230, 230}, kRed));
    EXPECT_EQ(PixelsOf(kNumberRed), Numbers(kMovingPlateSpec, std::span(clicks, 1)));
}

TEST_F(PickPointsDraw, GrowWithTheScaleOfTheScreen) {
    pane->SetScale(2);
    const At click[] = {{190, 240}};
    Click(click[0]);
    Frame();
    ExpectPoint(click[0], 10, kRed);
    EXPECT_EQ(PixelsOf(kNumberRed), Numbers(kMovingPlateSpec, click, {"Courier New", 700, -48}));
    // Across the needle, halfway: 4 pixels of the line.
    const auto pick = OnPlate(kMovingPlateSpec, click[0]);
    const auto [x, y] = camera.ToWindow(0.5 * (pick.point + pick.tip));
    int across = 0;
    for (int dy = -6; dy <= 6; ++dy)
        across += DistanceAt(static_cast<int>(x), static_cast<int>(y) + dy, kRed) < 0.5 ? 1 : 0;
    EXPECT_NEAR(across, 4, 1);
}

TEST_F(PickPointsDraw, ShowNothingWithoutPointsAndAfterTheEnd) {
    Frame();
    for (const Vec3& color : {kRed, kBlue, kNumberRed, kNumberBlue}) EXPECT_EQ(PixelsOf(color).Count(), 0u);
    Click({150, 170});
    Frame();
    EXPECT_GT(PixelsOf(kRed).Count(), 20u);
    pane->FinishInteraction();
    Frame();
    for (const Vec3& color : {kRed, kNumberRed}) EXPECT_EQ(PixelsOf(color).Count(), 0u);
}

// ---- depth

TEST_F(PickPointsDraw, AreHiddenByASurfaceInFront) {
    const At click[] = {{190, 240}};
    Click(click[0]);
    const double tipZ = OnPlate(kMovingPlateSpec, click[0]).tip[2];
    const auto cover = MakeSlopedPlate({.x = -3, .z = static_cast<float>(tipZ) + 0.2f, .half = 2});
    pane->m_vpMeshes.push_back(cover);
    Frame();
    EXPECT_EQ(PixelsOf(kRed).Count(), 0u);
    EXPECT_EQ(PixelsOf(kNumberRed).Count(), 0u);
    // Between the point and the tip: the upper part of the needle comes through.
    pane->m_vpMeshes.back() = MakeSlopedPlate({.x = -3, .z = 2.5f, .half = 2});
    Frame();
    EXPECT_FALSE(IsNear({190, 240}, kRed));
    EXPECT_GT(PixelsOf(kRed).Count(), 5u);
    EXPECT_EQ(PixelsOf(kNumberRed), Numbers(kMovingPlateSpec, click));
}

// The surface itself, seen at a slant, hides no part of a point.
TEST_F(PickPointsDraw, AreWholeOnASlantedSurface) {
    pane->m_vpMeshes[0] = MakeSlopedPlate({.x = -3, .z = 1, .half = 2, .slopeX = 1.2f, .slopeY = -1.2f});
    pane->FinishInteraction();
    pane->ResetVariableObjects();
    pane->AddVariableObject(0);
    pane->AlignPickPoints();
    for (const At& at : {At{150, 170}, {230, 230}, {130, 300}, {181, 263}}) {
        Click(at);
        Frame();
        ExpectPoint(at, 5, kRed);
        pane->SendKey({.nChar = KV_ScenePane::kKeyDelete});
    }
}

// ---- around them

TEST_F(PickPointsDraw, DimTheSideThatIsNotPickedOn) {
    const auto expect = [&](std::uint32_t moving, std::uint32_t fixed) {
        Frame();
        ExpectPixel(250, 310, PlateColor(kMovingPlateSpec, moving));
        ExpectPixel(540, 310, PlateColor(kFixedPlateSpec, fixed));
    };
    expect(kMovingPlateSpec.color, DimmedColor(kFixedPlateSpec.color));
    Click({150, 170});
    NextPhase();
    expect(DimmedColor(kMovingPlateSpec.color), kFixedPlateSpec.color);
    pane->FinishInteraction();
    expect(kMovingPlateSpec.color, kFixedPlateSpec.color);
}

TEST_F(PickPointsDraw, HaveTheirColoursInEveryDrawMode) {
    Click({150, 170});
    Click({230, 300});
    NextPhase();
    Click({420, 190});
    AddPlainTexture(*pane->m_vpMeshes[1], {10, 200, 30, 255});
    const auto check = [&](const char* what) {
        SCOPED_TRACE(what);
        Frame();
        ExpectPoint({150, 170}, 5, kRed);
        const At clicks[] = {{150, 170}, {230, 300}};
        EXPECT_EQ(PixelsOf(kNumberRed), Numbers(kMovingPlateSpec, clicks));
    };
    for (std::int16_t mode = 0; mode <= KV_ScenePane::DrawModePerPixel; ++mode) {
        pane->SetDrawMode(mode);
        check(("draw mode " + std::to_string(mode)).c_str());
    }
    pane->SetDrawMode(KV_ScenePane::DrawModeGouraud);
    pane->m_bClipPlaneActive = pane->m_bClipPlaneVisible = 1;
    pane->SetClipPlane(0, 0, -8, 0, 0, 1);
    check("clip plane");
    pane->m_bClipPlaneActive = pane->m_bClipPlaneVisible = 0;
    pane->m_bShadowEnabled = 1;
    check("shadows");
    pane->m_bShadowEnabled = 0;
    pane->SetPickMode(KV_ScenePane::PickModePoints);
    pane->m_bPickPointValid = 1;
    pane->AddPickPointSphere(0, -4, 0, 0x00FF00);
    check("pick points");
}

TEST_F(PickPointsDraw, RestoreTheStateOfOpenGl) {
    Click({150, 170});
    Click({230, 300});
    NextPhase();
    Click({420, 190});
    Frame();
    ASSERT_TRUE(pane->MakeContextCurrent());
    // Lit, translucent and without depth test: the points are as usual.
    glPushAttrib(GL_ALL_ATTRIB_BITS);
    for (const GLenum name : {GL_LIGHTING, GL_LIGHT0, GL_BLEND}) glEnable(name);
    glDisable(GL_DEPTH_TEST);
    glBlendFunc(GL_ONE, GL_ONE);
    glColor3f(0.25f, 0.5f, 0.75f);
    glPointSize(7);
    glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
    const GlState before = ReadGlState();
    pane->m_pInteractionDlg->DrawInteraction();
    ExpectGlStateIs(before);
    EXPECT_EQ(Get(GL_POINT_SIZE), 7);
    glPopAttrib();
    EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
    std::array<std::uint8_t, 4> pixel{};
    glReadPixels(150, 480 - 1 - 170, 1, 1, GL_RGBA, GL_UNSIGNED_BYTE, pixel.data());
    EXPECT_EQ(pixel, (std::array<std::uint8_t, 4>{255, 0, 0, 255}));
    glReadPixels(420, 480 - 1 - 190, 1, 1, GL_RGBA, GL_UNSIGNED_BYTE, pixel.data());
    EXPECT_EQ(pixel, (std::array<std::uint8_t, 4>{0, 0, 255, 255}));
}

TEST_F(PickPointsDraw, AreInNoScreenshot) {
    Click({150, 170});
    const Shot shot = Capture(*pane);
    for (int y = 0; y < kSide; ++y)
        for (int x = 0; x < kSide; ++x) ASSERT_NE(PixelOf(shot, x, y), 0xFFFF0000u) << x << " " << y;
}

}  // namespace
